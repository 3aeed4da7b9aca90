#include "Output.h"

#include "ExitCodes.h"
#include "Signals.h"

#include <QJsonDocument>

#include <cerrno>
#include <cstring>
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

int GetStatus(int error)
{
  if (error == EINTR)
    return EndedBySignal + Signals::Caught();
  return error == EPIPE ? OutputClosed : Failed;
}

} // namespace

QByteArray ToJsonLine(const QJsonObject& object)
{
  QByteArray line = QJsonDocument(object).toJson(QJsonDocument::Compact);
  // JSON lets these through and terminals obey some of them. They occur inside of strings only.
  line.replace('\x7F', "\\u007f");
  for (int code = 0x80; code < 0xA0; ++code)
  {
    const char character[] = {'\xC2', static_cast<char>(code), '\0'};
    if (line.contains(character))
      line.replace(character, "\\u00" + QByteArray::number(code, 16));
  }
  return line;
}

Output::Output(Format format) : format(format), isTerminal(isatty(STDOUT_FILENO) != 0) {}

void Output::Print(const QByteArray& human, const QJsonObject& json)
{
  PrintLine(IsJson() ? ToJsonLine(json) : human);
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
    PrintError("cannot write to the standard output: " + QByteArray(std::strerror(error)));
  if (closedHandler)
    closedHandler(status);
}

void PrintError(const QByteArray& text)
{
  WriteAll(STDERR_FILENO, "ostrel: " + text + '\n');
}

} // namespace Ostrel
