#include <Common/Platform/LocalPeer.h>

#include <QByteArray>
#include <QFile>
#include <QList>

#include <cerrno>
#include <csignal>
#include <sys/socket.h>

namespace Tavrik::Platform
{

namespace
{

struct ProcessState
{
  bool isMissing = false; // also where there is no /proc to look at
  char state = 0;         // 0 when it could not be read
  long long startTime = 0;
};

ProcessState ReadState(pid_t pid)
{
  QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
  errno = 0;
  if (!file.open(QIODevice::ReadOnly))
    return {errno == ENOENT};

  // The command in the second field may hold blanks and parentheses of its own.
  const QByteArray text = file.readAll();
  const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
  const int startTimeField = 19;
  if (fields.size() <= startTimeField || fields.first().isEmpty())
    return {true};
  return {false, fields.first().at(0), fields.at(startTimeField).toLongLong()};
}

} // namespace

LocalPeer GetLocalPeer(int socket)
{
  ucred credentials = {};
  socklen_t size = sizeof(credentials);
  if (getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0)
    return {};
  return {true, credentials.uid, {credentials.pid, ReadState(credentials.pid).startTime}};
}

bool IsAlive(const ProcessIdentity& process)
{
  if (process.pid <= 0 || (kill(process.pid, 0) != 0 && errno == ESRCH))
    return false;
  const ProcessState now = ReadState(process.pid);
  const bool isStartKnown = process.startTime != 0;
  if (now.isMissing)
    return !isStartKnown;
  // Without a descriptor left there is no more to know than that a process has this id.
  if (now.state == 0)
    return true;
  return now.state != 'Z' && now.state != 'X' && (!isStartKnown || now.startTime == process.startTime);
}

} // namespace Tavrik::Platform
