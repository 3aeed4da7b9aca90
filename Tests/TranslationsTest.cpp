// The catalogues as they are built into the programs.

#include "Texts.h"

#include <Common/DaemonSettings.h>
#include <Common/FormatText.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTranslator>
#include <QXmlStreamReader>

namespace
{

struct Language
{
  const char* name;
  const char* locale;
  const char* yearly;
  const char* monthly;
  const char* twoBytes;
  const char* twoKilobytes;
  const char* nobody; // the beginning of what is said where nobody serves
};

void PrintTo(const Language& language, std::ostream* stream)
{
  *stream << language.name;
}

const Language languages[] = {
    {"de", "de_DE.UTF-8", "Jährlich", "Monatlich", "2 Byte", "2 kB", "niemand bedient"},
    {"es", "es_MX.UTF-8", "Cada año", "Cada mes", "2 bytes", "2 kB", "nadie sirve"},
    {"fr", "fr_CA.UTF-8", "Chaque année", "Chaque mois", "2 octets", "2 ko", "personne ne sert"},
    {"ja", "ja_JP.UTF-8", "毎年", "毎月", "2 バイト", "2 kB", "バス ostrel を担う"},
    {"ru", "ru_RU.UTF-8", "Ежегодно", "Ежемесячно", "2 байт", "2 кБ", "шину ostrel"},
    {"zh_CN", "zh_CN.UTF-8", "每年", "每月", "2 字节", "2 kB", "总线 ostrel"},
};

class Translation : public testing::TestWithParam<Language>
{
};

QString RunMembers(const QString& locale)
{
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANGUAGE"})
    environment.remove(name);
  environment.insert("LANG", locale);
  QProcess process;
  process.setProcessEnvironment(environment);
  process.start(QStringLiteral(OSTREL), {"bus", "members"});
  EXPECT_TRUE(process.waitForFinished());
  return QString::fromUtf8(process.readAllStandardError());
}

QSet<QString> GetPlaceholders(const QString& text)
{
  QSet<QString> found;
  const QRegularExpression placeholder("%[0-9]");
  for (auto match = placeholder.globalMatch(text); match.hasNext();)
    found.insert(match.next().captured());
  return found;
}

TEST_P(Translation, CoversThePeriodsAndTheSizes)
{
  Ostrel::InstallTranslations(); // makes the catalogues known; this process has no language of its own
  QTranslator translator;
  ASSERT_TRUE(translator.load(QStringLiteral(":/translations/ostrel_%1.qm").arg(GetParam().name)));
  QCoreApplication::installTranslator(&translator);
  using Tavrik::Cleaner::DaemonSettings;
  const DaemonSettings settings;
  EXPECT_EQ(settings.RemindPeriodToString(DaemonSettings::Annually), QString::fromUtf8(GetParam().yearly));
  EXPECT_EQ(settings.RemindPeriodToString(DaemonSettings::Monthly), QString::fromUtf8(GetParam().monthly));
  EXPECT_EQ(Tavrik::Cleaner::FormatSize(2, 0), QString::fromUtf8(GetParam().twoBytes));
  EXPECT_EQ(Tavrik::Cleaner::FormatSize(2048, 0), QString::fromUtf8(GetParam().twoKilobytes));
}

TEST_P(Translation, IsChosenByTheLocale)
{
  const QString said = RunMembers(GetParam().locale);
  EXPECT_TRUE(said.startsWith(QStringLiteral("ostrel: ") + QString::fromUtf8(GetParam().nobody)))
      << said.toStdString();
}

TEST_P(Translation, KeepsThePlaceholdersOfEveryText)
{
  QFile file(QStringLiteral(TAVRIK_TRANSLATIONS "/ostrel_%1.ts").arg(GetParam().name));
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  QXmlStreamReader xml(&file);
  QString source;
  int count = 0;
  while (!xml.atEnd())
  {
    if (xml.readNext() != QXmlStreamReader::StartElement)
      continue;
    if (xml.name() == QLatin1String("source"))
      source = xml.readElementText();
    else if (xml.name() == QLatin1String("translation"))
    {
      EXPECT_FALSE(xml.attributes().hasAttribute("type")) << source.toStdString();
      const QString text = xml.readElementText();
      EXPECT_FALSE(text.trimmed().isEmpty()) << source.toStdString();
      EXPECT_EQ(GetPlaceholders(text), GetPlaceholders(source)) << text.toStdString();
      ++count;
    }
  }
  EXPECT_FALSE(xml.hasError());
  EXPECT_GT(count, 12);
}

INSTANTIATE_TEST_SUITE_P(Languages, Translation, testing::ValuesIn(languages));

TEST(TranslationOfNobody, LeavesTheTextsEnglish)
{
  for (const char* locale : {"C", "C.UTF-8", "en_US.UTF-8", "pt_BR.UTF-8", "zh_TW.UTF-8"})
    EXPECT_EQ(RunMembers(locale), "ostrel: nobody serves the bus ostrel\n") << locale;
}

} // namespace
