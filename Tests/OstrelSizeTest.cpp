// Drives "ostrel size".

#include "ExitCodes.h"
#include "Support/HostProcess.h"

#include <gtest/gtest.h>

#include <QJsonDocument>

using namespace Ostrel;

namespace
{

Outcome RunSize(const QStringList& arguments)
{
  return RunHost(QStringLiteral(OSTREL), QStringList{"size"} + arguments);
}

TEST(SizeParse, PrintsBytesOnePerLine)
{
  const Outcome outcome = RunSize({"parse", "12 bytes", "1,5 GB", "20 MB", "1.5 KB"});
  EXPECT_EQ(outcome.code, Done);
  EXPECT_EQ(outcome.out, "12\n1500000000\n20000000\n1500\n");
  EXPECT_EQ(outcome.err, "");
}

TEST(SizeParse, TellsWhatCannotBeReadAndGoesOn)
{
  const Outcome outcome = RunSize({"parse", "7 PB", "1.5 k", "1 MB", ""});
  EXPECT_EQ(outcome.code, WrongUsage);
  EXPECT_EQ(outcome.out, "1000000\n");
  EXPECT_TRUE(outcome.err.startsWith("ostrel: cannot read \"7 PB\": a size is written like"))
      << outcome.err.toStdString();
  EXPECT_EQ(outcome.err.count('\n'), 3);
}

TEST(SizeParse, RefusesWhatIsNotASize)
{
  for (const char* text : {"2GB", "nan GB", "inf MB", "0x10 bytes", "1.0001 bytes", "-1 bytes", "--1 KB",
                           "1e3 KB", " 1 KB", "1 KB ", "1 KB\n", "1.5", "1. KB", ".5 KB", "1 gb",
                           "\xD9\xA1 KB", "bytes", "99999999999 GB", "9223372036854775808"})
  {
    const Outcome outcome = RunSize({"parse", "--", QString::fromUtf8(text)});
    EXPECT_EQ(outcome.code, WrongUsage) << text;
    EXPECT_EQ(outcome.out, "") << text;
  }
  for (const char* text : {"nan GHz", "2GHz", "0x1 MHz", "2 Ghz", "1000", "-1 MHz"})
    EXPECT_EQ(RunSize({"parse", "--frequency", "--", text}).code, WrongUsage) << text;
}

TEST(SizeParse, AcceptsWhatTheProgramsPrint)
{
  EXPECT_EQ(RunSize({"parse", "1.0 kB", "2 TB", "1.5 TB", "12 Bytes", "1000"}).out,
            "1000\n2000000000000\n1500000000000\n12\n1000\n");
  const QByteArray before = qgetenv("LC_ALL");
  for (const char* locale :
       {"C", "de_DE.UTF-8", "es_ES.UTF-8", "fr_FR.UTF-8", "ja_JP.UTF-8", "ru_RU.UTF-8", "zh_CN.UTF-8"})
  {
    qputenv("LC_ALL", locale);
    qunsetenv("LANGUAGE");
    const QStringList numbers{"0", "999", "1000", "20500000", "7000000000"};
    const Outcome texts = RunSize(QStringList{"format"} + numbers);
    QStringList lines = QString::fromUtf8(texts.out).split('\n');
    lines.removeLast();
    EXPECT_EQ(RunSize(QStringList{"parse"} + lines).out, (numbers.join('\n') + '\n').toUtf8()) << locale;
    const Outcome frequencies = RunSize({"format", "-f", "800000000", "2400000000"});
    lines = QString::fromUtf8(frequencies.out).split('\n');
    lines.removeLast();
    EXPECT_EQ(RunSize(QStringList{"parse", "-f"} + lines).out, "800000000\n2400000000\n") << locale;
  }
  qputenv("LC_ALL", before);
}

TEST(SizeParse, InJsonHasNullForWhatCannotBeRead)
{
  const Outcome outcome = RunSize({"parse", "--json", "1 MB", "7 PB\n"});
  EXPECT_EQ(outcome.code, WrongUsage);
  EXPECT_EQ(outcome.out, "{\"bytes\":1000000,\"text\":\"1 MB\"}\n{\"bytes\":null,\"text\":\"7 PB\\n\"}\n");
}

TEST(SizeParse, ReadsFrequencies)
{
  const Outcome outcome = RunSize({"parse", "--frequency", "2,4 GHz", "800 MHz", "5 kHz", "--json"});
  EXPECT_EQ(outcome.code, WrongUsage);
  EXPECT_EQ(outcome.out,
            "{\"hertz\":2400000000,\"text\":\"2,4 GHz\"}\n{\"hertz\":800000000,\"text\":\"800 MHz\"}\n"
            "{\"hertz\":null,\"text\":\"5 kHz\"}\n");
}

TEST(SizeFormat, PrintsTexts)
{
  EXPECT_EQ(RunSize({"format", "999", "1000", "-1500"}).out, "999 bytes\n1.0 kB\n1.5 kB\n");
  EXPECT_EQ(RunSize({"format", "--precision", "2", "999999"}).out, "1000.00 kB\n");
  EXPECT_EQ(RunSize({"format", "-p", "0", "1000000", "--json"}).out,
            "{\"bytes\":1000000,\"text\":\"1 MB\"}\n");
  EXPECT_EQ(RunSize({"format", "9223372036854775807", "-p0"}).out, "9223372037 GB\n");
}

TEST(SizeFormat, PrintsFrequenciesInTheUnitThatFits)
{
  EXPECT_EQ(RunSize({"format", "-f", "999999999", "1000000000", "2399999999"}).out,
            "999 MHz\n1.0 GHz\n2.4 GHz\n");
}

TEST(SizeFormat, RefusesWhatIsNoNumber)
{
  const Outcome outcome = RunSize({"format", "9223372036854775808", "x\x1B", "1"});
  EXPECT_EQ(outcome.code, WrongUsage);
  EXPECT_EQ(outcome.out, "1 bytes\n");
  EXPECT_EQ(outcome.err, "ostrel: not a whole number of 64 bits: 9223372036854775808\n"
                         "ostrel: not a whole number of 64 bits: x\\u001b\n");
  for (const QStringList& wrong :
       {QStringList{}, QStringList{"parse"}, QStringList{"format", "-p", "-1", "1"},
        QStringList{"format", "-p", "21", "1"}, QStringList{"guess", "1"}})
    EXPECT_EQ(RunSize(wrong).code, WrongUsage) << wrong.join(' ').toStdString();
}

#ifdef __linux__
TEST(SizeFormat, TellsThatItsOutputIsFull)
{
  HostProcess format(QStringLiteral(OSTREL), {"size", "format", "1"});
  format.setStandardOutputFile("/dev/full");
  format.Begin();
  EXPECT_EQ(format.Finish(), Failed);
}
#endif

} // namespace
