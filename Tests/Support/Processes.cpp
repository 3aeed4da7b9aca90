#include "Support/Processes.h"

#include "Support/Wire.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace
{

QByteArray ReadAll(const QString& path)
{
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QList<QByteArray> ListeningNodes(const QString& context)
{
  const QByteArray path = QFile::encodeName(Wire::ServerName(context));
  const QByteArray listening("00010000");
  QList<QByteArray> nodes;
  for (const QByteArray& line : ReadAll(QStringLiteral("/proc/net/unix")).split('\n'))
  {
    // Num RefCount Protocol Flags Type St Inode Path
    const QList<QByteArray> fields = line.simplified().split(' ');
    if (fields.value(3) == listening && fields.value(7) == path)
      nodes.append(fields.value(6));
  }
  return nodes;
}

bool HoldsSocket(qint64 pid, const QByteArray& node)
{
  const QDir files(QStringLiteral("/proc/%1/fd").arg(pid));
  const QString wanted = QStringLiteral("socket:[%1]").arg(QString::fromLatin1(node));
  for (const QString& name : files.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot))
  {
    char target[64] = {};
    if (readlink(QFile::encodeName(files.filePath(name)).constData(), target, sizeof(target) - 1) > 0 &&
        wanted == QLatin1String(target))
      return true;
  }
  return false;
}

} // namespace

// Qt's handler of SIGCHLD interrupts system calls.
int WaitForEnd(pid_t child)
{
  int status = 0;
  while (waitpid(child, &status, 0) < 0)
    if (errno != EINTR)
      return -1;
  return status;
}

Forked::Forked(const std::function<void()>& work)
{
  const pid_t parent = getpid();
  pid = fork();
  if (pid != 0)
    return;
#ifdef __linux__
  prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
  if (getppid() == parent)
    work();
  _exit(EXIT_FAILURE);
}

Forked::~Forked()
{
  Kill();
}

void Forked::Kill()
{
  if (pid <= 0)
    return;
  kill(pid, SIGKILL);
  WaitForEnd(pid);
  pid = -1;
}

long long MemoryOf(qint64 pid, const QByteArray& field)
{
  for (const QByteArray& line : ReadAll(QStringLiteral("/proc/%1/status").arg(pid)).split('\n'))
    if (line.startsWith(field + ':'))
      return line.simplified().split(' ').value(1).toLongLong() * 1024;
  return -1;
}

long long ProcessorTimeOf(qint64 pid)
{
  const QByteArray text = ReadAll(QStringLiteral("/proc/%1/stat").arg(pid));
  const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
  const long long ticks = fields.value(11).toLongLong() + fields.value(12).toLongLong();
  return ticks * 1000 / sysconf(_SC_CLK_TCK);
}

int CountServers(const QString& context)
{
  return ListeningNodes(context).size();
}

Peer* FindServer(const std::vector<Peer*>& peers, const QString& context)
{
  for (const QByteArray& node : ListeningNodes(context))
    for (Peer* peer : peers)
      if (peer->IsRunning() && HoldsSocket(peer->Pid(), node))
        return peer;
  return nullptr;
}
