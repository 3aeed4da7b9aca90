#include "Output.h"

#include "ExitCodes.h"
#include "SafeText.h"
#include "Signals.h"
#include "Terminal.h"
#include "Texts.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QJsonDocument>

#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace Ostrel
{
namespace
{

// A terminal that another program has made non-blocking refuses a write that it could take a moment later.
bool WaitWritable(int file)
{
  pollfd watched = {file, POLLOUT, 0};
  return poll(&watched, 1, -1) >= 0;
}

// 0 or the errno that ended it. A signal gives up: a reader that has stopped reading must not hold us.
int WriteAll(int file, const QByteArray& bytes)
{
  int position = 0;
  while (position < bytes.size())
  {
    const ssize_t written = write(file, bytes.constData() + position, bytes.size() - position);
    if (written >= 0)
      position += static_cast<int>(written);
    else if (errno == EAGAIN && WaitWritable(file))
      continue;
    else if (errno != EINTR || Signals::Caught() != 0)
      return errno;
  }
  return 0;
}

// The length of a control character from U+007F to U+009F in well-formed UTF-8; 0 when there is none here.
int GetLateControl(const QByteArray& text, int position)
{
  const char byte = text.at(position);
  if (byte == '\x7F')
    return 1;
  const bool isControl =
      byte == '\xC2' && position + 1 < text.size() && static_cast<uchar>(text.at(position + 1)) < 0xA0;
  return isControl ? 2 : 0;
}

int GetStatus(int error)
{
  if (error == EINTR)
    return EndedBySignal + Signals::Caught();
  return error == EPIPE ? OutputClosed : Failed;
}

} // namespace

QJsonObject MakeEvent(const QString& event, QJsonObject fields)
{
  fields.insert(QStringLiteral("event"), event);
  fields.insert(QStringLiteral("time"), QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs));
  return fields;
}

// JSON lets the controls beyond the first 32 through, and terminals obey some of them.
QByteArray ToJsonLine(const QJsonObject& object)
{
  const QByteArray json = QJsonDocument(object).toJson(QJsonDocument::Compact);
  QByteArray line;
  line.reserve(json.size());
  int copied = 0;
  for (int position = 0; position < json.size(); ++position)
  {
    const int length = GetLateControl(json, position);
    if (length == 0)
      continue;
    line.append(json.constData() + copied, position - copied);
    line += "\\u00" + QByteArray::number(static_cast<uchar>(json.at(position + length - 1)), 16);
    position += length - 1;
    copied = position + 1;
  }
  return line.append(json.constData() + copied, json.size() - copied);
}

Output::Output(Format format) : format(format), isTerminal(isatty(STDOUT_FILENO) != 0) {}

void Output::Print(const QByteArray& human, const QJsonObject& json)
{
  PrintLine(IsJson() ? ToJsonLine(json) : human);
}

void Output::PrintFitted(const QString& text)
{
  PrintLine((isTerminal ? Shorten(text, GetWidth(STDOUT_FILENO)) : text).toUtf8());
}

void Output::PrintTable(const Table& table)
{
  const QStringList lines = table.ToLines(Style(STDOUT_FILENO), isTerminal ? GetWidth(STDOUT_FILENO) : 0);
  for (const QString& line : lines)
    PrintLine(line.toUtf8());
}

void Output::OnClosed(std::function<void(int)> handler)
{
  closedHandler = std::move(handler);
}

void Output::PrintLine(QByteArray line)
{
  if (status != Done)
    return;
  line += '\n';
  if (const int error = WriteAll(STDOUT_FILENO, line))
    Close(error);
}

void Output::Close(int error)
{
  status = GetStatus(error);
  if (status == Failed)
    PrintError(Texts::tr("cannot write to the standard output: %1").arg(ShowReason(error)));
  if (closedHandler)
    closedHandler(status);
}

void WriteError(const QString& text)
{
  WriteAll(STDERR_FILENO, text.toUtf8());
}

void PrintError(const QString& text)
{
  WriteError(QCoreApplication::applicationName() + QStringLiteral(": ") + text + QLatin1Char('\n'));
}

} // namespace Ostrel
