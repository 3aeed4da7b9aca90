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
  char state = 0; // 0: there is no such process, or no /proc to look at
  long long startTime = 0;
};

ProcessState ReadState(pid_t pid)
{
  QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
  if (!file.open(QIODevice::ReadOnly))
    return {};

  // The command in the second field may hold blanks and parentheses of its own.
  const QByteArray text = file.readAll();
  const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
  const int startTimeField = 19;
  if (fields.size() <= startTimeField || fields.first().isEmpty())
    return {};
  return {fields.first().at(0), fields.at(startTimeField).toLongLong()};
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
  if (now.state == 0)
    return process.startTime == 0;
  return now.state != 'Z' && now.state != 'X' && now.startTime == process.startTime;
}

} // namespace Tavrik::Platform
