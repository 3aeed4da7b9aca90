#include "SafeText.h"

#include <algorithm>
#include <cstring>

namespace Ostrel
{
namespace
{

struct Character
{
  uint code = 0;
  int length = 0; // 0: the byte here belongs to no character
};

bool IsContinuation(uchar byte)
{
  return (byte & 0xC0) == 0x80;
}

int GetSequenceLength(uchar lead)
{
  if (lead < 0x80)
    return 1;
  if (lead >= 0xC2 && lead <= 0xDF)
    return 2;
  if (lead >= 0xE0 && lead <= 0xEF)
    return 3;
  if (lead >= 0xF0 && lead <= 0xF4)
    return 4;
  return 0;
}

Character DecodeAt(const QByteArray& bytes, int position)
{
  const uchar lead = static_cast<uchar>(bytes.at(position));
  const int length = GetSequenceLength(lead);
  if (length == 0 || length > bytes.size() - position)
    return {};
  if (length == 1)
    return {lead, 1};
  uint code = lead & (0x7Fu >> length);
  for (int i = 1; i < length; ++i)
  {
    const uchar byte = static_cast<uchar>(bytes.at(position + i));
    if (!IsContinuation(byte))
      return {};
    code = code << 6 | (byte & 0x3Fu);
  }
  static constexpr uint smallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < smallest[length] || code > 0x10FFFF || isSurrogate)
    return {};
  return {code, length};
}

bool IsControl(uint code)
{
  return code < 0x20 || (code >= 0x7F && code <= 0x9F);
}

// Line and paragraph separators, the mark of byte order, and what makes text run the other way.
bool IsMisleading(uint code)
{
  return code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x2028 && code <= 0x202E) ||
         (code >= 0x2066 && code <= 0x2069) || code == 0xFEFF;
}

QByteArray ToHex(uint number, int digits)
{
  return QByteArray::number(number, 16).rightJustified(digits, '0');
}

QByteArray EscapeCharacter(uint code)
{
  switch (code)
  {
  case '\\':
    return QByteArrayLiteral("\\\\");
  case '\n':
    return QByteArrayLiteral("\\n");
  case '\r':
    return QByteArrayLiteral("\\r");
  case '\t':
    return QByteArrayLiteral("\\t");
  default:
    return "\\u" + ToHex(code, 4);
  }
}

bool IsPlainInName(QChar character)
{
  static const QString marks = QStringLiteral("-_.@+/");
  return character.isLetterOrNumber() || character.isSurrogate() || marks.contains(character);
}

} // namespace

bool IsUtf8(const QByteArray& bytes)
{
  for (int position = 0; position < bytes.size();)
  {
    const int length = DecodeAt(bytes, position).length;
    if (length == 0)
      return false;
    position += length;
  }
  return true;
}

QByteArray EscapeBytes(const QByteArray& bytes)
{
  QByteArray line;
  line.reserve(bytes.size());
  for (int position = 0; position < bytes.size();)
  {
    const Character character = DecodeAt(bytes, position);
    if (character.length == 0)
      line += "\\x" + ToHex(static_cast<uchar>(bytes.at(position)), 2);
    else if (character.code == '\\' || IsControl(character.code) || IsMisleading(character.code))
      line += EscapeCharacter(character.code);
    else
      line.append(bytes.constData() + position, character.length);
    position += std::max(character.length, 1);
  }
  return line;
}

QByteArray EscapeText(const QString& text)
{
  return EscapeBytes(text.toUtf8());
}

QByteArray QuoteName(const QString& name)
{
  const bool isPlain = !name.isEmpty() && std::all_of(name.begin(), name.end(), IsPlainInName);
  return isPlain ? EscapeText(name) : '"' + EscapeText(name).replace('"', "\\\"") + '"';
}

QString ShowName(const QString& name)
{
  return QString::fromUtf8(QuoteName(name));
}

QString ShowText(const QString& text)
{
  return QString::fromUtf8(EscapeText(text));
}

QString ShowReason(int error)
{
  return QString::fromLocal8Bit(std::strerror(error));
}

QString DecodeUtf8(const QByteArray& bytes)
{
  // QString swallows a mark of byte order at the beginning.
  const QString text = QString::fromUtf8(bytes.constData(), bytes.size());
  return bytes.startsWith("\xEF\xBB\xBF") ? QChar(QChar::ByteOrderMark) + text : text;
}

} // namespace Ostrel
