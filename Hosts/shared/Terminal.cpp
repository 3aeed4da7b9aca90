#include "Terminal.h"

#include <algorithm>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Ostrel
{
namespace
{

constexpr int usualWidth = 80;
constexpr int widestTerminal = 10000;
constexpr int gap = 2;       // between the columns of a table
constexpr int narrowest = 5; // that a column is shortened to

const QChar ellipsis(0x2026);

struct Range
{
  uint first;
  uint last;
};

// Characters that take two columns: Chinese, Japanese and Korean scripts, full-width forms, pictures.
const Range wideCharacters[] = {
    {0x1100, 0x115F},   {0x231A, 0x231B},   {0x2329, 0x232A},   {0x23E9, 0x23EC},   {0x2E80, 0x303E},
    {0x3041, 0x4DBF},   {0x4E00, 0xA4CF},   {0xA960, 0xA97F},   {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},
    {0xFE10, 0xFE19},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},   {0x16FE0, 0x18D08},
    {0x1B000, 0x1B2FB}, {0x1F004, 0x1F004}, {0x1F0CF, 0x1F0CF}, {0x1F18E, 0x1F18E}, {0x1F191, 0x1F19A},
    {0x1F200, 0x1F320}, {0x1F32D, 0x1F335}, {0x1F337, 0x1F37C}, {0x1F37E, 0x1F393}, {0x1F3A0, 0x1F3CA},
    {0x1F3CF, 0x1F3D3}, {0x1F3E0, 0x1F3F0}, {0x1F3F4, 0x1F3F4}, {0x1F3F8, 0x1F43E}, {0x1F440, 0x1F440},
    {0x1F442, 0x1F4FC}, {0x1F4FF, 0x1F53D}, {0x1F54B, 0x1F567}, {0x1F57A, 0x1F57A}, {0x1F595, 0x1F596},
    {0x1F5A4, 0x1F5A4}, {0x1F5FB, 0x1F64F}, {0x1F680, 0x1F6C5}, {0x1F6CC, 0x1F6CC}, {0x1F6D0, 0x1F6D7},
    {0x1F6EB, 0x1F6FC}, {0x1F7E0, 0x1F7EB}, {0x1F90C, 0x1F9FF}, {0x1FA70, 0x1FAFF}, {0x20000, 0x3FFFD}};

bool IsWide(uint code)
{
  return std::any_of(std::begin(wideCharacters), std::end(wideCharacters),
                     [code](const Range& range) { return code >= range.first && code <= range.last; });
}

// What is drawn over the character before it, or not at all.
bool IsCombining(uint code)
{
  const QChar::Category category = QChar::category(code);
  const bool isJungseong = code >= 0x1160 && code <= 0x11FF; // the later parts of a Korean syllable
  return category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing || isJungseong ||
         (category == QChar::Other_Format && code != 0xAD);
}

struct Cluster
{
  int begin; // in the text
  int columns;
};

// The pieces between which a text may be cut.
QVector<Cluster> Split(const QString& text)
{
  QVector<Cluster> clusters;
  for (int position = 0; position < text.size();)
  {
    const QChar character = text.at(position);
    const bool isPair =
        character.isHighSurrogate() && position + 1 < text.size() && text.at(position + 1).isLowSurrogate();
    const uint code = isPair ? QChar::surrogateToUcs4(character, text.at(position + 1)) : character.unicode();
    if (!IsCombining(code))
      clusters.append({position, IsWide(code) ? 2 : 1});
    else if (clusters.isEmpty())
      clusters.append({position, 0});
    position += isPair ? 2 : 1;
  }
  return clusters;
}

// A terminal in a program's hands may call itself as wide as it likes.
int ToWidth(int columns)
{
  return columns > 0 ? std::min(columns, widestTerminal) : 0;
}

QString TrimEnd(QString line)
{
  while (line.endsWith(QLatin1Char(' ')))
    line.chop(1);
  return line;
}

} // namespace

int GetWidth(int file)
{
  if (const int columns = ToWidth(qEnvironmentVariableIntValue("COLUMNS")))
    return columns;
  winsize size = {};
  if (ioctl(file, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
    return ToWidth(size.ws_col);
  return usualWidth;
}

bool IsCapable(int file)
{
  return isatty(file) != 0 && qgetenv("TERM") != "dumb";
}

int CountColumns(const QString& text)
{
  int columns = 0;
  for (const Cluster& cluster : Split(text))
    columns += cluster.columns;
  return columns;
}

QString Shorten(const QString& text, int columns)
{
  const QVector<Cluster> clusters = Split(text);
  int total = 0;
  for (const Cluster& cluster : clusters)
    total += cluster.columns;
  if (total <= columns)
    return text;
  if (columns < 1)
    return {};

  // The larger half in front: a beginning says where, an end says what.
  const int room = columns - 1;
  int head = 0;
  for (int used = 0; used + clusters.at(head).columns <= room - room / 2; ++head)
    used += clusters.at(head).columns;
  int tail = clusters.size();
  for (int used = 0; used + clusters.at(tail - 1).columns <= room / 2; --tail)
    used += clusters.at(tail - 1).columns;
  const int tailBegin = tail < clusters.size() ? clusters.at(tail).begin : text.size();
  return text.left(clusters.at(head).begin) + ellipsis + text.mid(tailBegin);
}

Style::Style(int file) : isColourful(IsCapable(file) && qgetenv("NO_COLOR").isEmpty()) {}

QString Style::Wrap(const QString& text, const char* code) const
{
  return isColourful && !text.isEmpty() ? QStringLiteral("\x1B[%1m%2\x1B[0m").arg(QLatin1String(code), text)
                                        : text;
}

QStringList Table::ToLines(const Style& style, int width) const
{
  const QVector<int> widths = GetWidths(width);
  Row titles;
  bool hasTitles = false;
  for (const Column& column : columns)
  {
    titles.append({column.title, &Style::Bold});
    hasTitles = hasTitles || !column.title.isEmpty();
  }
  QStringList lines;
  if (hasTitles)
    lines.append(ToLine(titles, widths, style));
  for (const Row& row : rows)
    lines.append(ToLine(row, widths, style));
  return lines;
}

QVector<int> Table::GetWidths(int width) const
{
  QVector<int> widths;
  int total = gap * (columns.size() - 1);
  for (int i = 0; i < columns.size(); ++i)
  {
    int widest = CountColumns(columns.at(i).title);
    for (const Row& row : rows)
      widest = std::max(widest, CountColumns(row.at(i).text));
    widths.append(widest);
    total += widest;
  }
  while (width > 0 && total > width)
  {
    int victim = -1;
    for (int i = 0; i < columns.size(); ++i)
      if (columns.at(i).mayShrink && widths.at(i) > narrowest &&
          (victim < 0 || widths.at(i) > widths.at(victim)))
        victim = i;
    if (victim < 0)
      break;
    --widths[victim];
    --total;
  }
  return widths;
}

QString Table::ToLine(const Row& row, const QVector<int>& widths, const Style& style) const
{
  QString line;
  for (int i = 0; i < columns.size(); ++i)
  {
    if (i > 0)
      line += QString(gap, QLatin1Char(' '));
    const Cell& cell = row.at(i);
    const QString text = Shorten(cell.text, widths.at(i));
    const QString blanks(widths.at(i) - CountColumns(text), QLatin1Char(' '));
    const QString painted = cell.paint ? (style.*cell.paint)(text) : text;
    line += columns.at(i).align == Align::Left ? painted + blanks : blanks + painted;
  }
  return TrimEnd(line);
}

QString MakeBar(double fraction, int columns)
{
  const int full = static_cast<int>(std::clamp(fraction, 0.0, 1.0) * columns);
  return QString(full, QLatin1Char('#')) + QString(columns - full, QLatin1Char('-'));
}

} // namespace Ostrel
