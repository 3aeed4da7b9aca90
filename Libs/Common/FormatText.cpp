#include <Common/FormatText.h>

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Tavrik::Cleaner
{

namespace
{

const long long largest = std::numeric_limits<long long>::max();
const long long smallest = std::numeric_limits<long long>::min();

// Far beyond what a double holds; more could make the text too long to be built.
const int mostDigits = 1000000;

const long long kilo = 1000;
const long long mega = 1000 * kilo;
const long long giga = 1000 * mega;

long long Truncate(double number)
{
  const double limit = 9223372036854775808.0; // 2^63, the first that does not fit
  if (std::isnan(number))
    return 0;
  if (number >= limit)
    return largest;
  if (number < -limit)
    return smallest;
  return static_cast<long long>(number);
}

long long Magnitude(long long number)
{
  if (number == smallest)
    return largest;
  return number < 0 ? -number : number;
}

double ReadNumber(QString text, int unitLength)
{
  text.chop(unitLength);
  return text.toDouble();
}

QString Fill(const QString& pattern, long long number, long long unit, int precision)
{
  const double quotient = static_cast<double>(number) / static_cast<double>(unit);
  return pattern.arg(quotient, 0, 'f', std::min(precision, mostDigits));
}

} // namespace

long long ParseSize(QString text)
{
  text.replace(QLatin1Char(','), QLatin1Char('.'));
  if (text.toLower().endsWith(QLatin1String("bytes")))
  {
    text.chop(6);
    return text.toLongLong();
  }

  const double number = ReadNumber(text, 3);
  if (text.endsWith(QLatin1String("KB")))
    return Truncate(number * kilo);
  if (text.endsWith(QLatin1String("MB")))
    return Truncate(number * mega);
  if (text.endsWith(QLatin1String("GB")))
    return Truncate(number * giga);
  return -1;
}

long long ParseFrequency(QString text)
{
  text.replace(QLatin1Char(','), QLatin1Char('.'));
  const double number = ReadNumber(text, 4);
  if (text.endsWith(QLatin1String("MHz")))
    return Truncate(number * mega);
  if (text.endsWith(QLatin1String("GHz")))
    return Truncate(number * giga);
  return -1;
}

QString FormatSize(long long bytes, int precision)
{
  const long long size = Magnitude(bytes);
  if (size < kilo)
    return QCoreApplication::translate("FormatText", "%1 bytes").arg(size);
  if (size < mega)
    return Fill(QCoreApplication::translate("FormatText", "%1 kB"), size, kilo, precision);
  if (size < giga)
    return Fill(QCoreApplication::translate("FormatText", "%1 MB"), size, mega, precision);
  return Fill(QCoreApplication::translate("FormatText", "%1 GB"), size, giga, precision);
}

QString FormatFrequencyMHz(long long hertz)
{
  return QCoreApplication::translate("FormatText", "%1 MHz").arg(Magnitude(hertz) / mega);
}

QString FormatFrequencyGHz(long long hertz, int precision)
{
  return Fill(QCoreApplication::translate("FormatText", "%1 GHz"), Magnitude(hertz), giga, precision);
}

long long RoundSize4K(long long bytes)
{
  const long long unit = 4096;
  const long long whole = bytes / unit * unit;
  if ((bytes & (unit - 1)) == 0)
    return whole;
  return whole > largest - unit ? largest : whole + unit;
}

} // namespace Tavrik::Cleaner
