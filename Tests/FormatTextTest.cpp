#include <Common/FormatText.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTranslator>

#include <climits>

using namespace Tavrik::Cleaner;

namespace
{

TEST(ParseSize, ReadsBytesInAnyCase)
{
  EXPECT_EQ(ParseSize("12 bytes"), 12);
  EXPECT_EQ(ParseSize("12 Bytes"), 12);
  EXPECT_EQ(ParseSize("12 BYTES"), 12);
  EXPECT_EQ(ParseSize("500107862016 Bytes"), 500107862016);
  EXPECT_EQ(ParseSize("-3 bytes"), -3);
}

TEST(ParseSize, OfBytesThatAreNoWholeNumberIsZero)
{
  EXPECT_EQ(ParseSize("many bytes"), 0);
  EXPECT_EQ(ParseSize("1.5 bytes"), 0);
  EXPECT_EQ(ParseSize("1,234 bytes"), 0);
  EXPECT_EQ(ParseSize("0x10 bytes"), 0);
  EXPECT_EQ(ParseSize("9223372036854775808 bytes"), 0);
  EXPECT_EQ(ParseSize("9223372036854775807 bytes"), LLONG_MAX);
}

TEST(ParseSize, DropsSixCharactersForBytesEvenWithoutABlank)
{
  EXPECT_EQ(ParseSize("5bytes"), 0);
  EXPECT_EQ(ParseSize("15bytes"), 1);
  EXPECT_EQ(ParseSize("bytes"), 0);
}

TEST(ParseSize, ReadsUnitsOfAThousandInUpperCaseOnly)
{
  EXPECT_EQ(ParseSize("1.5 KB"), 1500);
  EXPECT_EQ(ParseSize("2 MB"), 2000000);
  EXPECT_EQ(ParseSize("1.5 GB"), 1500000000);
  EXPECT_EQ(ParseSize("-1.5 KB"), -1500);
  EXPECT_EQ(ParseSize("1.5 kB"), -1);
  EXPECT_EQ(ParseSize("1.5 kb"), -1);
  EXPECT_EQ(ParseSize("1.5 Gb"), -1);
}

TEST(ParseSize, TakesACommaForAPoint)
{
  EXPECT_EQ(ParseSize("1,5 GB"), 1500000000);
  EXPECT_EQ(ParseSize("1,234,5 GB"), 0);
}

TEST(ParseSize, OfAnyOtherUnitIsMinusOne)
{
  EXPECT_EQ(ParseSize("7 TB"), -1);
  EXPECT_EQ(ParseSize("7"), -1);
  EXPECT_EQ(ParseSize("7 KB "), -1);
  EXPECT_EQ(ParseSize(""), -1);
  EXPECT_EQ(ParseSize(QString()), -1);
  EXPECT_EQ(ParseSize("Not applicable"), -1);
}

TEST(ParseSize, OfAUnitWithoutANumberIsZero)
{
  EXPECT_EQ(ParseSize("KB"), 0);
  EXPECT_EQ(ParseSize("some GB"), 0);
  EXPECT_EQ(ParseSize("nan GB"), 0);
}

TEST(ParseSize, DropsThreeCharactersEvenWithoutABlank)
{
  EXPECT_EQ(ParseSize("15KB"), 1000);
}

TEST(ParseSize, CutsFractionsOff)
{
  EXPECT_EQ(ParseSize("1.9999 KB"), 1999);
  EXPECT_EQ(ParseSize("-1.9999 KB"), -1999);
  EXPECT_EQ(ParseSize("0.0001 KB"), 0);
}

TEST(ParseSize, SaturatesWhereTheProductLeavesTheRange)
{
  EXPECT_EQ(ParseSize("9223372036.854775807 GB"), LLONG_MAX);
  EXPECT_EQ(ParseSize("9223372036 GB"), 9223372036000000000);
  EXPECT_EQ(ParseSize("1e30 GB"), LLONG_MAX);
  EXPECT_EQ(ParseSize("-1e30 GB"), LLONG_MIN);
  EXPECT_EQ(ParseSize("1e400 KB"), LLONG_MAX);
  EXPECT_EQ(ParseSize("inf KB"), LLONG_MAX);
  EXPECT_EQ(ParseSize("-inf KB"), LLONG_MIN);
}

TEST(ParseFrequency, ReadsMegahertzAndGigahertz)
{
  EXPECT_EQ(ParseFrequency("2,4 GHz"), 2400000000);
  EXPECT_EQ(ParseFrequency("2.4 GHz"), 2400000000);
  EXPECT_EQ(ParseFrequency("800 MHz"), 800000000);
  EXPECT_EQ(ParseFrequency("-1 MHz"), -1000000);
}

TEST(ParseFrequency, OfAnyOtherUnitOrCaseIsMinusOne)
{
  EXPECT_EQ(ParseFrequency("5 kHz"), -1);
  EXPECT_EQ(ParseFrequency("5 Mhz"), -1);
  EXPECT_EQ(ParseFrequency("5 Hz"), -1);
  EXPECT_EQ(ParseFrequency("5"), -1);
  EXPECT_EQ(ParseFrequency(""), -1);
}

TEST(ParseFrequency, DropsFourCharactersEvenWithoutABlank)
{
  EXPECT_EQ(ParseFrequency("80MHz"), 8000000);
  EXPECT_EQ(ParseFrequency("GHz"), 0);
  EXPECT_EQ(ParseFrequency("fast GHz"), 0);
}

TEST(ParseFrequency, SaturatesWhereTheProductLeavesTheRange)
{
  EXPECT_EQ(ParseFrequency("1e30 GHz"), LLONG_MAX);
  EXPECT_EQ(ParseFrequency("-1e30 MHz"), LLONG_MIN);
}

TEST(FormatSize, ChoosesTheUnitByThePowerOfAThousand)
{
  EXPECT_EQ(FormatSize(0, 1), "0 bytes");
  EXPECT_EQ(FormatSize(999, 1), "999 bytes");
  EXPECT_EQ(FormatSize(1000, 1), "1.0 kB");
  EXPECT_EQ(FormatSize(999999, 2), "1000.00 kB");
  EXPECT_EQ(FormatSize(1000000, 0), "1 MB");
  EXPECT_EQ(FormatSize(999999999, 3), "1000.000 MB");
  EXPECT_EQ(FormatSize(1000000000, 1), "1.0 GB");
  EXPECT_EQ(FormatSize(7998551654400, 1), "7998.6 GB");
}

TEST(FormatSize, DropsTheSign)
{
  EXPECT_EQ(FormatSize(-1500, 1), "1.5 kB");
  EXPECT_EQ(FormatSize(-1, 1), "1 bytes");
  EXPECT_EQ(FormatSize(LLONG_MIN, 1), "9223372036.9 GB");
  EXPECT_EQ(FormatSize(LLONG_MAX, 1), "9223372036.9 GB");
}

TEST(FormatSize, PrintsAsManyDigitsAsAskedButNotForBytes)
{
  EXPECT_EQ(FormatSize(999, 5), "999 bytes");
  EXPECT_EQ(FormatSize(1234, 0), "1 kB");
  EXPECT_EQ(FormatSize(1234, 5), "1.23400 kB");
  EXPECT_EQ(FormatSize(1500, -1), "1.500000 kB");
  EXPECT_EQ(FormatSize(1500, INT_MIN), "1.500000 kB");
}

TEST(FormatSize, SurvivesAnAbsurdPrecision)
{
  EXPECT_EQ(FormatSize(1500, INT_MAX).size(), 1000000 + QString("1. kB").size());
}

TEST(FormatSize, WritesAFormThatParseSizeDoesNotReadForKilobytes)
{
  EXPECT_EQ(ParseSize(FormatSize(1500, 1)), -1);
  EXPECT_EQ(ParseSize(FormatSize(1500000, 1)), 1500000);
  EXPECT_EQ(ParseSize(FormatSize(999, 1)), 999);
}

TEST(FormatFrequencyMHz, CutsFractionsAndTheSignOff)
{
  EXPECT_EQ(FormatFrequencyMHz(2399999999), "2399 MHz");
  EXPECT_EQ(FormatFrequencyMHz(-2399999999), "2399 MHz");
  EXPECT_EQ(FormatFrequencyMHz(999999), "0 MHz");
  EXPECT_EQ(FormatFrequencyMHz(LLONG_MIN), "9223372036854 MHz");
}

TEST(FormatFrequencyGHz, PrintsAsManyDigitsAsAskedAndDropsTheSign)
{
  EXPECT_EQ(FormatFrequencyGHz(2400000000, 1), "2.4 GHz");
  EXPECT_EQ(FormatFrequencyGHz(2399999999, 0), "2 GHz");
  EXPECT_EQ(FormatFrequencyGHz(-2399999999, 2), "2.40 GHz");
  EXPECT_EQ(FormatFrequencyGHz(LLONG_MIN, 0), "9223372037 GHz");
}

TEST(RoundSize4K, RoundsUpToWholeUnits)
{
  EXPECT_EQ(RoundSize4K(0), 0);
  EXPECT_EQ(RoundSize4K(1), 4096);
  EXPECT_EQ(RoundSize4K(4095), 4096);
  EXPECT_EQ(RoundSize4K(4096), 4096);
  EXPECT_EQ(RoundSize4K(4097), 8192);
}

TEST(RoundSize4K, OfNegativeSizesIsUnusual)
{
  EXPECT_EQ(RoundSize4K(-1), 4096);
  EXPECT_EQ(RoundSize4K(-4096), -4096);
  EXPECT_EQ(RoundSize4K(-4097), 0);
  EXPECT_EQ(RoundSize4K(LLONG_MIN), LLONG_MIN);
}

TEST(RoundSize4K, SaturatesAtTheEndOfTheRange)
{
  EXPECT_EQ(RoundSize4K(LLONG_MAX), LLONG_MAX);
  EXPECT_EQ(RoundSize4K(LLONG_MAX - 4095), LLONG_MAX - 4095);
  EXPECT_EQ(RoundSize4K(LLONG_MAX - 4096), LLONG_MAX - 4095);
}

// Puts each text of the context in brackets.
class Brackets : public QTranslator
{
public:
  QString translate(const char* context, const char* text, const char*, int) const override
  {
    return qstrcmp(context, "FormatText") == 0 ? QString("[%1]").arg(text) : QString();
  }
  bool isEmpty() const override { return false; }
};

TEST(FormatText, TranslatesEveryPatternInItsContextBeforeFillingIt)
{
  Brackets brackets;
  ASSERT_TRUE(QCoreApplication::installTranslator(&brackets));
  EXPECT_EQ(FormatSize(999, 1), "[999 bytes]");
  EXPECT_EQ(FormatSize(1000, 1), "[1.0 kB]");
  EXPECT_EQ(FormatSize(1000000, 1), "[1.0 MB]");
  EXPECT_EQ(FormatSize(1000000000, 1), "[1.0 GB]");
  EXPECT_EQ(FormatFrequencyMHz(5000000), "[5 MHz]");
  EXPECT_EQ(FormatFrequencyGHz(5000000000, 1), "[5.0 GHz]");
  QCoreApplication::removeTranslator(&brackets);
}

} // namespace
