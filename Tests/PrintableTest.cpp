#include <Common/Printable.h>

#include <gtest/gtest.h>

namespace
{

using Tavrik::Printable;

TEST(Printable, LeavesTextAsItIs)
{
  for (const QByteArray& text :
       {QByteArray(), QByteArray("anna"), QByteArray("a \\x1b \"b\" ~"),
        QByteArray("\xc3\xa9t\xc3\xa9 \xc2\xa0"), QByteArray("\xe6\x97\xa5\xe6\x9c\xac \xef\xbf\xbd"),
        QByteArray("\xf0\x9f\x91\xa9\xe2\x80\x8d\xf0\x9f\x94\xa7")})
    EXPECT_EQ(Printable(text), text);
}

TEST(Printable, EscapesEveryControlCharacter)
{
  EXPECT_EQ(Printable(QByteArray("a\nb\r\tc")), "a\\nb\\r\\tc");
  EXPECT_EQ(Printable(QByteArray("\x1b[2J\x7f")), "\\x1b[2J\\x7f");
  EXPECT_EQ(Printable(QByteArray("a\0b", 3)), "a\\x00b");
  EXPECT_EQ(Printable(QByteArray("\xc2\x80|\xc2\x9b|\xc2\x9f")), "\\xc2\\x80|\\xc2\\x9b|\\xc2\\x9f");
  for (int byte = 0; byte < 256; ++byte)
    for (const char shown : Printable(QByteArray(1, static_cast<char>(byte))))
      EXPECT_TRUE(shown >= 0x20 && shown < 0x7f) << byte;
}

TEST(Printable, EscapesLineSeparators)
{
  EXPECT_EQ(Printable(QByteArray("a\xe2\x80\xa8")), "a\\xe2\\x80\\xa8");
  EXPECT_EQ(Printable(QByteArray("\xe2\x80\xa9z")), "\\xe2\\x80\\xa9z");
}

TEST(Printable, EscapesWhatIsNotUtf8)
{
  EXPECT_EQ(Printable(QByteArray("\xff\xfe")), "\\xff\\xfe");
  EXPECT_EQ(Printable(QByteArray("a\xc3")), "a\\xc3");
  EXPECT_EQ(Printable(QByteArray("\xc0\x8a")), "\\xc0\\x8a");
  EXPECT_EQ(Printable(QByteArray("\xed\xa0\x80x")), "\\xed\\xa0\\x80x");
}

TEST(Printable, ShowsNoMoreOfAHugeValueThanALineOfTheLogHolds)
{
  EXPECT_LT(Printable(QByteArray(100 * 1000 * 1000, '\n')).size(), 32 * 1024);
}

TEST(Printable, EscapesInTextAsWell)
{
  EXPECT_EQ(Printable(QStringLiteral("/Applications/A\nB.app")), "/Applications/A\\nB.app");
}

} // namespace
