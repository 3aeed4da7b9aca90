#include <Common/Platform/ToolOutput.h>

#include <QStringList>

#include <algorithm>

namespace Tavrik::Platform
{

namespace
{

const auto lineEnd = QLatin1Char('\n');
const auto colon = QLatin1Char(':');

/// @name The firewall tool
/// @{

struct Sentence
{
  const char* question;
  const char* newer; // up to its full stop; the older of them have none
  const char* classic;
};

const Sentence sentences[] = {
    {"--getglobalstate", "Firewall is blocking all non-essential incoming connections",
     "Firewall is enabled. (State = 2) "},
    {"--getblockall", "Firewall is blocking all non-essential incoming connections",
     "Firewall is set to block all non-essential incoming connections "},
    {"--getblockall", "Firewall has block all state set to enabled",
     "Firewall is set to block all non-essential incoming connections "},
    {"--getblockall", "Firewall has block all state set to disabled", "Block all DISABLED! "},
    {"--getstealthmode", "Firewall stealth mode is on", "Stealth mode enabled "},
    {"--getstealthmode", "Firewall stealth mode is off", "Stealth mode disabled "}};

QString ToClassicSentence(const QString& question, const QString& line)
{
  const QString said = line.left(line.indexOf(QLatin1Char('.'))).trimmed();
  for (const Sentence& sentence : sentences)
    if (question == QLatin1String(sentence.question) && said == QLatin1String(sentence.newer))
      return QLatin1String(sentence.classic);
  return line;
}

// Of "N : /path"; empty for any other line.
QString ToClassicEntry(const QString& line)
{
  const QString number = line.left(line.indexOf(colon)).trimmed();
  const bool isNumber =
      !number.isEmpty() && std::all_of(number.begin(), number.end(),
                                       [](QChar digit) { return digit.unicode() < 128 && digit.isDigit(); });
  const QString path = line.mid(line.indexOf(colon) + 1).trimmed();
  return isNumber && path.startsWith(QLatin1Char('/')) ? number + QLatin1String(" :  ") + path : QString();
}

// Of "(Allow incoming connections)"; empty for any other line.
QString ToClassicStatus(const QString& line)
{
  const QString status = line.trimmed();
  if (!status.startsWith(QLatin1Char('(')) || !status.endsWith(QLatin1Char(')')))
    return QString();
  return QLatin1String(" \t ( ") + status.mid(1, status.size() - 2).trimmed() + QLatin1String(" )");
}

// An entry whose status is not the next line holds a line break in its path and is left out: half a path may
// be another application's.
QString ToClassicList(const QString& list)
{
  const QStringList lines = list.split(lineEnd);
  auto line =
      std::find_if(lines.begin(), lines.end(), [](const QString& line) { return !line.trimmed().isEmpty(); });
  if (line == lines.end() || !line->startsWith(QLatin1String("Total number of apps =")))
    return list;

  QString classic = QLatin1String("ALF: t") + line->mid(1) + QLatin1String("\n\n");
  QString entry;
  while (++line != lines.end())
  {
    const QString status = ToClassicStatus(*line);
    if (!entry.isEmpty() && !status.isEmpty())
      classic += entry + QLatin1String(" \n") + status + QLatin1String(" \n\n");
    entry = ToClassicEntry(*line);
  }
  return classic;
}

/// @}
/// @name The disk tool
/// @{

const auto totalSize = QLatin1String("Total Size");
const auto freeSize = QLatin1String("Volume Free Space");

QString KeyOf(const QString& line)
{
  const int end = line.indexOf(colon);
  return end < 0 ? QString() : line.left(end).trimmed();
}

bool HasKey(const QStringList& lines, QLatin1String key)
{
  return std::any_of(lines.begin(), lines.end(), [key](const QString& line) { return KeyOf(line) == key; });
}

void RenameKey(QStringList* lines, QLatin1String key, QLatin1String classic)
{
  for (QString& line : *lines)
    if (KeyOf(line) == key)
      line.replace(line.indexOf(key), key.size(), classic);
}

/// @}

} // namespace

QString ToClassicFirewallAnswer(const QString& question, const QString& answer)
{
  if (question == QLatin1String("--listapps"))
    return ToClassicList(answer);
  QStringList lines = answer.split(lineEnd);
  for (QString& line : lines)
    line = ToClassicSentence(question, line);
  return lines.join(lineEnd);
}

QString ToClassicDiskAnswer(const QString& question, const QString& answer)
{
  const auto newerTotalSize = QLatin1String("Disk Size");
  QStringList lines = answer.split(lineEnd);
  if (question != QLatin1String("info") || !HasKey(lines, newerTotalSize) || HasKey(lines, totalSize))
    return answer;
  RenameKey(&lines, newerTotalSize, totalSize);
  for (const char* const name : {"Volume Available Space", "Container Free Space"})
    if (!HasKey(lines, freeSize))
      RenameKey(&lines, QLatin1String(name), freeSize);
  return lines.join(lineEnd);
}

} // namespace Tavrik::Platform
