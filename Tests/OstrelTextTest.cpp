#include "Output.h"
#include "SafeText.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace Ostrel;

namespace
{

struct Row
{
  const char* name;
  QByteArray bytes;
  QByteArray shown;
};

std::ostream& operator<<(std::ostream& stream, const Row& row)
{
  return stream << row.name;
}

std::string NameRow(const testing::TestParamInfo<Row>& info)
{
  return info.param.name;
}

class EscapedBytes : public testing::TestWithParam<Row>
{
};

TEST_P(EscapedBytes, AreSafeToShow)
{
  EXPECT_EQ(EscapeBytes(GetParam().bytes).toStdString(), GetParam().shown.toStdString());
}

INSTANTIATE_TEST_SUITE_P(
    Text, EscapedBytes,
    testing::Values(Row{"Nothing", "", ""}, Row{"PlainText", "plain text, 100%", "plain text, 100%"},
                    Row{"Umlauts", "gr\xC3\xBC\xC3\x9F", "gr\xC3\xBC\xC3\x9F"},
                    Row{"FourBytes", "\xF0\x9F\x9A\x80", "\xF0\x9F\x9A\x80"},
                    Row{"LastCharacter", "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
                    Row{"Backslash", "a\\nb", "a\\\\nb"}, Row{"LineEnds", "a\r\n\tb", "a\\r\\n\\tb"},
                    Row{"ZeroByte", QByteArray("a\0b", 3), "a\\u0000b"},
                    Row{"EscapeSequence", "\x1B[31mred", "\\u001b[31mred"}, Row{"Delete", "\x7F", "\\u007f"},
                    Row{"EightBitControl",
                        "\xC2\x9B"
                        "31m",
                        "\\u009b31m"},
                    Row{"TurnedRound",
                        "\xE2\x80\xAE"
                        "abc\xE2\x81\xA9",
                        "\\u202eabc\\u2069"},
                    Row{"LineSeparator", "\xE2\x80\xA8", "\\u2028"},
                    Row{"ByteOrderMark", "\xEF\xBB\xBFx", "\\ufeffx"}),
    NameRow);

INSTANTIATE_TEST_SUITE_P(NotText, EscapedBytes,
                         testing::Values(Row{"LoneContinuation", "a\x80z", "a\\x80z"},
                                         Row{"CutTwoBytes", "\xC3", "\\xc3"},
                                         Row{"CutThreeBytes", "\xE2\x82", "\\xe2\\x82"},
                                         Row{"CutFourBytes", "\xF0\x9F\x9A", "\\xf0\\x9f\\x9a"},
                                         Row{"WrongContinuation", "\xC3(", "\\xc3("},
                                         Row{"OverlongSlash", "\xC0\xAF", "\\xc0\\xaf"},
                                         Row{"OverlongThreeBytes", "\xE0\x80\xAF", "\\xe0\\x80\\xaf"},
                                         Row{"OverlongFourBytes", "\xF0\x80\x80\xAF", "\\xf0\\x80\\x80\\xaf"},
                                         Row{"Surrogate", "\xED\xA0\x80", "\\xed\\xa0\\x80"},
                                         Row{"BeyondTheLast", "\xF4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},
                                         Row{"NeverALead", "\xFE\xFF", "\\xfe\\xff"}),
                         NameRow);

TEST(SafeText, KnowsWellFormedUtf8)
{
  EXPECT_TRUE(IsUtf8(""));
  EXPECT_TRUE(IsUtf8("gr\xC3\xBC\xC3\x9F"));
  EXPECT_TRUE(IsUtf8(QByteArray("\0", 1)));
  EXPECT_FALSE(IsUtf8("\xC3"));
  EXPECT_FALSE(IsUtf8("\xED\xA0\x80"));
}

TEST(SafeText, EscapingLeavesNoByteThatATerminalObeys)
{
  QByteArray everything;
  for (int first = 0; first < 256; ++first)
    for (int second = 0; second < 256; ++second)
      everything.append(static_cast<char>(first)).append(static_cast<char>(second));
  const QByteArray shown = EscapeBytes(everything);
  EXPECT_TRUE(IsUtf8(shown));
  for (const QChar character : QString::fromUtf8(shown))
    ASSERT_NE(character.category(), QChar::Other_Control);
}

TEST(SafeText, QuotesANameThatCouldBeMisread)
{
  EXPECT_EQ(QuoteName("daemon-1.a").toStdString(), "daemon-1.a");
  EXPECT_EQ(QuoteName(QString::fromUtf8("Gr\xC3\xBC\xC3\x9F")).toStdString(), "Gr\xC3\xBC\xC3\x9F");
  EXPECT_EQ(QuoteName("").toStdString(), "\"\"");
  EXPECT_EQ(QuoteName("bob: hi").toStdString(), "\"bob: hi\"");
  EXPECT_EQ(QuoteName("a\"b\n").toStdString(), "\"a\\\"b\\n\"");
}

TEST(SafeText, DecodingKeepsMarksAndZeroBytes)
{
  const QByteArray bytes("\xEF\xBB\xBF"
                         "a\0b",
                         6);
  EXPECT_EQ(DecodeUtf8(bytes).toUtf8(), bytes);
}

TEST(JsonLine, HoldsNoControlCharacter)
{
  QString text;
  for (ushort code = 0; code < 0x100; ++code)
    text.append(QChar(code));
  const QByteArray line = ToJsonLine({{"text", text}});
  for (const QChar character : QString::fromUtf8(line))
    ASSERT_NE(character.category(), QChar::Other_Control);
  EXPECT_EQ(QJsonDocument::fromJson(line).object().value("text").toString(), text);
}

} // namespace
