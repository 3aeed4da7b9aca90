#include "Values.h"

#include "Texts.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QStringList>

#include <limits>

namespace Ostrel
{
namespace
{

bool IsOneOf(const QString& text, const QStringList& words)
{
  return words.contains(text, Qt::CaseInsensitive);
}

bool IsNumber(const QString& text)
{
  static const QRegularExpression number(
      QRegularExpression::anchoredPattern(QStringLiteral("[0-9]+([.,][0-9]+)?")));
  return number.match(text).hasMatch();
}

bool IsWholeNumber(const QString& text)
{
  static const QRegularExpression number(QRegularExpression::anchoredPattern(QStringLiteral("[0-9]+")));
  return number.match(text).hasMatch();
}

/** A form in which the library prints a value, with "%1" in the place of the number. */
struct Form
{
  const char* pattern;
  double unit;
};

// The text in the place of "%1"; null when @p text does not have the form of @p pattern.
QString GetNumber(const QString& text, const QString& pattern)
{
  const int place = pattern.indexOf(QLatin1String("%1"));
  const int rest = pattern.size() - 2;
  if (place < 0 || text.size() < rest || !text.startsWith(pattern.left(place)) ||
      !text.endsWith(pattern.mid(place + 2)))
    return {};
  return text.mid(place, text.size() - rest);
}

// As the library's form and as its translation, which the programs print.
QString GetNumber(const QString& text, const char* pattern)
{
  const QString number = GetNumber(text, QString::fromLatin1(pattern));
  return number.isNull() ? GetNumber(text, QCoreApplication::translate("FormatText", pattern)) : number;
}

std::optional<long long> Multiply(QString number, double unit)
{
  const double product = number.replace(QLatin1Char(','), QLatin1Char('.')).toDouble() * unit;
  const auto limit = static_cast<double>(std::numeric_limits<long long>::max()); // 2^63, which is too large
  return product < limit ? std::optional<long long>(static_cast<long long>(product)) : std::nullopt;
}

template<typename Forms>
std::optional<long long> ParseForms(const QString& text, const Forms& forms)
{
  for (const Form& form : forms)
  {
    const QString number = GetNumber(text, form.pattern);
    if (IsNumber(number))
      return Multiply(number, form.unit);
  }
  return {};
}

} // namespace

std::optional<bool> ParseFlag(const QString& text)
{
  if (IsOneOf(text, {QStringLiteral("on"), QStringLiteral("true"), QStringLiteral("yes"), QStringLiteral("1"),
                     Texts::tr("on")}))
    return true;
  if (IsOneOf(text, {QStringLiteral("off"), QStringLiteral("false"), QStringLiteral("no"),
                     QStringLiteral("0"), Texts::tr("off")}))
    return false;
  return {};
}

bool IsNone(const QString& text)
{
  return IsOneOf(text, {QStringLiteral("none"), Texts::tr("none")});
}

std::optional<long long> ParseBytes(const QString& text)
{
  QString number = text;
  for (const char* pattern : {"%1 bytes", "%1 Bytes"})
    if (!GetNumber(text, pattern).isNull())
      number = GetNumber(text, pattern);
  if (IsWholeNumber(number))
  {
    bool isInRange = false;
    const long long bytes = number.toLongLong(&isInRange);
    return isInRange ? std::optional<long long>(bytes) : std::nullopt;
  }
  static const Form forms[] = {
      {"%1 kB", 1e3}, {"%1 KB", 1e3}, {"%1 MB", 1e6}, {"%1 GB", 1e9}, {"%1 TB", 1e12}};
  return ParseForms(text, forms);
}

std::optional<long long> ParseHertz(const QString& text)
{
  static const Form forms[] = {{"%1 MHz", 1e6}, {"%1 GHz", 1e9}};
  return ParseForms(text, forms);
}

} // namespace Ostrel
