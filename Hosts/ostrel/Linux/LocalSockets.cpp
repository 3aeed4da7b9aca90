#include "LocalSockets.h"

#include <QDir>
#include <QFile>
#include <QHash>

#include <climits>
#include <sys/socket.h>
#include <unistd.h>

namespace Ostrel
{
namespace
{

QString ReadLink(const QString& path)
{
  char target[PATH_MAX];
  const ssize_t length = readlink(QFile::encodeName(path).constData(), target, sizeof target);
  return length > 0 ? QFile::decodeName(QByteArray(target, static_cast<int>(length))) : QString();
}

// Lines "Num: RefCount Protocol Flags Type St Inode Path"; the path may hold blanks.
struct Line
{
  bool isListening = false;
  QByteArray inode;
  QByteArray path;
};

Line ParseLine(const QByteArray& text)
{
  const uint acceptsConnections = 1u << 16;
  const int flagsField = 3;
  const int inodeField = 6;

  Line line;
  int position = 0;
  for (int field = 0; field <= inodeField; ++field)
  {
    while (position < text.size() && text.at(position) == ' ')
      ++position;
    const int end = text.indexOf(' ', position);
    if (end < 0)
      return {};
    const QByteArray value = text.mid(position, end - position);
    if (field == flagsField)
      line.isListening = (value.toUInt(nullptr, 16) & acceptsConnections) != 0;
    if (field == inodeField)
      line.inode = value;
    position = end;
  }
  line.path = text.mid(position + 1);
  return line;
}

using SocketsByLink = QHash<QString, int>; // of the list, by what a descriptor of the socket links to

void FindProcesses(QList<ServedSocket>& sockets, SocketsByLink& wanted, const QDeadlineTimer& deadline)
{
  const QStringList processes = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
  for (const QString& process : processes)
  {
    bool isProcess = false;
    const pid_t pid = process.toInt(&isProcess);
    if (!isProcess)
      continue;
    const QDir files(QStringLiteral("/proc/%1/fd").arg(process));
    for (const QString& file : files.entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System))
    {
      if (wanted.isEmpty() || deadline.hasExpired())
        return;
      const auto found = wanted.find(ReadLink(files.filePath(file)));
      if (found == wanted.end())
        continue;
      sockets[found.value()].pid = pid;
      wanted.erase(found);
    }
  }
}

} // namespace

SocketPeer GetSocketPeer(int socket)
{
  ucred credentials = {};
  socklen_t size = sizeof credentials;
  if (getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0)
    return {};
  return {true, credentials.uid, credentials.pid};
}

QString GetProgram(pid_t pid)
{
  QString path = ReadLink(QStringLiteral("/proc/%1/exe").arg(pid));
  if (!path.isEmpty())
    return path;
  QFile name(QStringLiteral("/proc/%1/comm").arg(pid));
  return name.open(QIODevice::ReadOnly) ? QFile::decodeName(name.readAll().trimmed()) : QString();
}

QList<ServedSocket> FindServedSockets(const QString& fileName, const QDeadlineTimer& deadline)
{
  QFile table(QStringLiteral("/proc/net/unix"));
  if (!table.open(QIODevice::ReadOnly))
    return {};
  QList<ServedSocket> sockets;
  SocketsByLink wanted;
  const QByteArray ending = '/' + QFile::encodeName(fileName);
  for (const QByteArray& text : table.readAll().split('\n'))
  {
    const Line line = ParseLine(text);
    if (!line.isListening || !line.path.startsWith('/') || !line.path.endsWith(ending))
      continue;
    wanted.insert(QStringLiteral("socket:[%1]").arg(QString::fromLatin1(line.inode)), sockets.size());
    sockets.append({QFile::decodeName(line.path), 0});
  }
  FindProcesses(sockets, wanted, deadline);
  return sockets;
}

} // namespace Ostrel
