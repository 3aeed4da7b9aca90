#include "Terminal.h"

#include <gtest/gtest.h>

using namespace Ostrel;

namespace
{

QString Utf8(const char* text)
{
  return QString::fromUtf8(text);
}

Table::Row Cells(const QStringList& texts)
{
  Table::Row row;
  for (const QString& text : texts)
    row.append(text);
  return row;
}

TEST(Columns, AreTwoForWideCharactersAndNoneForCombiningOnes)
{
  EXPECT_EQ(CountColumns("plain"), 5);
  EXPECT_EQ(CountColumns(Utf8("grün")), 4);
  EXPECT_EQ(CountColumns(Utf8("日本語")), 6);
  EXPECT_EQ(CountColumns(Utf8("한글")), 4);
  EXPECT_EQ(CountColumns(Utf8("\xF0\x9F\x9A\x80")), 2); // beyond the first 65536
  EXPECT_EQ(CountColumns(Utf8("e\xCC\x81")), 1);        // an accent of its own
  EXPECT_EQ(CountColumns(Utf8("\xE2\x80\x8B")), 0);     // a blank without width
  EXPECT_EQ(CountColumns(QString()), 0);
  EXPECT_EQ(CountColumns(QString(QChar(0xD800))), 1);
}

TEST(Shortened, KeepsBeginningAndEndWithinTheColumns)
{
  EXPECT_EQ(Shorten("abcdefghij", 10), "abcdefghij");
  EXPECT_EQ(Shorten("abcdefghij", 9), Utf8("abcd…ghij"));
  EXPECT_EQ(Shorten("abcdefghij", 6), Utf8("abc…ij"));
  EXPECT_EQ(Shorten("abcdefghij", 1), Utf8("…"));
  EXPECT_EQ(Shorten("abcdefghij", 0), "");
  EXPECT_EQ(Shorten(Utf8("日本語日本語"), 6), Utf8("日…語"));
}

TEST(Shortened, NeverTakesMoreThanItsColumnsNorSplitsACharacter)
{
  const QString text = Utf8("a日e\xCC\x81\xF0\x9F\x9A\x80한z").repeated(5);
  for (int columns = 1; columns < CountColumns(text); ++columns)
  {
    const QString shortened = Shorten(text, columns);
    EXPECT_LE(CountColumns(shortened), columns);
    EXPECT_GE(CountColumns(shortened), columns - 2);
    EXPECT_TRUE(shortened.contains(QChar(0x2026)));
    EXPECT_TRUE(shortened.isValidUtf16()) << columns;
  }
}

TEST(Table, AlignsWideCharactersAndLeavesNoBlanksAtTheEnd)
{
  Table table({{"Name"}, {"Size", Table::Align::Right}, {"Note"}});
  table.AddRow(Cells({Utf8("日本"), "1", "x"}));
  table.AddRow(Cells({"a", "20000", ""}));
  EXPECT_EQ(table.ToLines(Style(false), 0),
            (QStringList{"Name   Size  Note", Utf8("日本      1  x"), "a     20000"}));
}

TEST(Table, ShrinksOnlyWhatMayAndOnlyAsFarAsNeeded)
{
  Table table({{{}, Table::Align::Left, true}, {{}, Table::Align::Right}});
  table.AddRow(Cells({"abcdefghijklmnopqrst", "123456"}));
  EXPECT_EQ(table.ToLines(Style(false), 0), QStringList("abcdefghijklmnopqrst  123456"));
  EXPECT_EQ(table.ToLines(Style(false), 19), QStringList(Utf8("abcde…pqrst  123456")));
  EXPECT_EQ(table.ToLines(Style(false), 3), QStringList(Utf8("ab…st  123456")));
}

TEST(Table, PaintsWithoutCountingTheColours)
{
  Table table({{}, {}});
  table.AddRow({Table::Cell("ab", &Style::Green), QString("x")});
  table.AddRow(Cells({"abc", "y"}));
  EXPECT_EQ(table.ToLines(Style(true), 0), (QStringList{"\x1B[32mab\x1B[0m   x", "abc  y"}));
}

TEST(Bar, IsFullExactlyAtTheEnd)
{
  EXPECT_EQ(MakeBar(0, 4), "----");
  EXPECT_EQ(MakeBar(0.5, 4), "##--");
  EXPECT_EQ(MakeBar(0.99, 4), "###-");
  EXPECT_EQ(MakeBar(1, 4), "####");
  EXPECT_EQ(MakeBar(-1, 4), "----");
  EXPECT_EQ(MakeBar(7, 4), "####");
}

} // namespace
