#include <Common/Printable.h>

#include <QVector>

#include <algorithm>

namespace Tavrik
{

namespace
{

const int longestLine = 30000;  // bytes, after which the log cuts a line
const int longestCharacter = 4; // bytes of UTF-8

bool IsPrintable(uint character)
{
  const QChar::Category category = QChar::category(character);
  return category != QChar::Other_Control && category != QChar::Separator_Line &&
         category != QChar::Separator_Paragraph;
}

// Bytes of the printable character that begins at `at`, or 0.
int PrintableLength(const QByteArray& text, int at)
{
  const int most = std::min(longestCharacter, text.size() - at);
  for (int length = 1; length <= most; ++length)
  {
    const QByteArray bytes = text.mid(at, length);
    const QString decoded = QString::fromUtf8(bytes.constData(), length);
    if (decoded.toUtf8() == bytes)
      return IsPrintable(decoded.toUcs4().constFirst()) ? length : 0;
  }
  return 0;
}

QByteArray Escape(char byte)
{
  switch (byte)
  {
  case '\n':
    return "\\n";
  case '\r':
    return "\\r";
  case '\t':
    return "\\t";
  default:
    return "\\x" + QByteArray(1, byte).toHex();
  }
}

} // namespace

QByteArray Printable(const QByteArray& value)
{
  QByteArray shown;
  for (int at = 0; at < value.size() && shown.size() < longestLine;)
  {
    const int length = PrintableLength(value, at);
    shown += length > 0 ? value.mid(at, length) : Escape(value.at(at));
    at += std::max(length, 1);
  }
  return shown;
}

QByteArray Printable(const QString& value)
{
  return Printable(value.toLocal8Bit());
}

} // namespace Tavrik
