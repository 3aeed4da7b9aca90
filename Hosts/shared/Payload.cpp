#include "Payload.h"

#include "ExitCodes.h"
#include "Output.h"
#include "SafeText.h"
#include "Signals.h"
#include "Texts.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace Ostrel
{
namespace
{

int ReportTooLong()
{
  PrintError(Texts::tr("the message is longer than %1 bytes").arg(QString::number(longestPayload)));
  return Failed;
}

int ReportUnreadable(const QByteArray& source, int error)
{
  PrintError(Texts::tr("cannot read %1: %2").arg(QString::fromUtf8(source), ShowReason(error)));
  return Failed;
}

int ReadToEnd(int file, const QByteArray& source, QByteArray& payload)
{
  std::array<char, 65536> buffer;
  for (;;)
  {
    const ssize_t count = Signals::Caught() != 0 ? -1 : read(file, buffer.data(), buffer.size());
    if (Signals::Caught() != 0)
      return EndedBySignal + Signals::Caught();
    if (count == 0)
      return Done;
    if (count < 0 && errno == EINTR)
      continue;
    if (count < 0)
      return ReportUnreadable(source, errno);
    if (count > longestPayload - payload.size())
      return ReportTooLong();
    payload.append(buffer.data(), static_cast<int>(count));
  }
}

} // namespace

int TakePayload(const std::string& text, QByteArray& payload)
{
  if (text.size() > static_cast<std::size_t>(longestPayload))
    return ReportTooLong();
  payload = QByteArray::fromStdString(text);
  return Done;
}

int ReadPayload(const std::string& path, QByteArray& payload)
{
  if (path.empty() || path == "-")
    return ReadToEnd(STDIN_FILENO, Texts::tr("the standard input").toUtf8(), payload);
  const QByteArray source = EscapeBytes(QByteArray::fromStdString(path));
  int file = -1;
  do
    file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  while (file < 0 && errno == EINTR && Signals::Caught() == 0);
  if (file < 0)
    return Signals::Caught() != 0 ? EndedBySignal + Signals::Caught() : ReportUnreadable(source, errno);
  const int code = ReadToEnd(file, source, payload);
  close(file);
  return code;
}

} // namespace Ostrel
