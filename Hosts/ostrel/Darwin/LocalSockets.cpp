#include "LocalSockets.h"

#include <QDir>
#include <QFile>

#include <climits>
#include <libproc.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace Ostrel
{
namespace
{

QString GetUserFolder()
{
  char folder[PATH_MAX];
  const size_t size = confstr(_CS_DARWIN_USER_TEMP_DIR, folder, sizeof folder);
  return size > 1 && size <= sizeof folder ? QFile::decodeName(folder) : QString();
}

bool IsSocket(const QString& path)
{
  struct stat status = {};
  return lstat(QFile::encodeName(path).constData(), &status) == 0 && S_ISSOCK(status.st_mode);
}

} // namespace

SocketPeer GetSocketPeer(int socket)
{
  SocketPeer peer;
  gid_t group = 0;
  if (getpeereid(socket, &peer.userId, &group) != 0)
    return peer;
  peer.isKnown = true;
  socklen_t size = sizeof peer.pid;
  if (getsockopt(socket, SOL_LOCAL, LOCAL_PEERPID, &peer.pid, &size) != 0)
    peer.pid = 0;
  return peer;
}

QString GetProgram(pid_t pid)
{
  char path[PROC_PIDPATHINFO_MAXSIZE];
  const int length = proc_pidpath(pid, path, sizeof path);
  return length > 0 ? QFile::decodeName(QByteArray(path, length)) : QString();
}

// The system has no list of sockets that a user may read, but few folders are anybody's temporary one.
QList<ServedSocket> FindServedSockets(const QString& fileName, const QDeadlineTimer&)
{
  QList<ServedSocket> sockets;
  for (const QString& folder : {GetUserFolder(), QStringLiteral("/tmp")})
  {
    const QString path = QDir(folder).absoluteFilePath(fileName);
    if (!folder.isEmpty() && IsSocket(path))
      sockets.append({path, 0});
  }
  return sockets;
}

} // namespace Ostrel
