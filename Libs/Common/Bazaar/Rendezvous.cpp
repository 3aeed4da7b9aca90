#include <Common/Bazaar/Rendezvous.h>

#include <Common/Platform/ListeningSocket.h>

#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>

#include <boost/chrono.hpp>
#include <boost/thread/thread.hpp>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Tavrik::Bazaar::Details
{

namespace
{

// All zero when there is no socket under that name. A link is not followed: it may lead anywhere.
struct stat LookAtNode(const QString& serverName)
{
  struct stat status = {};
  if (lstat(QFile::encodeName(serverName).constData(), &status) != 0 || !S_ISSOCK(status.st_mode))
    return {};
  return status;
}

// Without the time, which costs ten times as much to find out.
SocketFile LookAtSocketNode(const QString& serverName)
{
  const struct stat status = LookAtNode(serverName);
  return {status.st_dev, status.st_ino};
}

} // namespace

SocketFile LookAtSocketFile(const QString& serverName)
{
  SocketFile file = LookAtSocketNode(serverName);
  if (!file.IsMissing())
    file.changed = QFileInfo(serverName).metadataChangeTime().toMSecsSinceEpoch();
  return file;
}

// The present server could not reach the one with the file `own`: that file had been removed, or it proceeded
// without the start-up lock.
bool HasSuccessor(const QString& serverName, const SocketFile& own)
{
  const SocketFile present = LookAtSocketNode(serverName);
  return !present.IsMissing() && !present.IsSameNode(own);
}

bool IsTrustedSocketFile(const QString& serverName)
{
  const struct stat status = LookAtNode(serverName);
  return S_ISSOCK(status.st_mode) && IsTrustedUser(status.st_uid);
}

bool IsTrustedUser(uid_t user)
{
  return user == getuid() || user == geteuid() || user == 0;
}

// ---- The lock -------------------------------------------------------------------------------------------

StartupLock::StartupLock(const QString& serverName)
{
  const QByteArray path = QFile::encodeName(serverName + QStringLiteral(".lock"));
  file = open(path.constData(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (file >= 0 && !IsOwn())
  {
    close(file);
    file = -1;
  }
  IsBusy();
}

StartupLock::~StartupLock()
{
  if (file >= 0)
    close(file);
}

// A shared temporary directory may hold another user's file of that name.
bool StartupLock::IsOwn() const
{
  struct stat status = {};
  if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode) || status.st_uid != geteuid() ||
      status.st_nlink != 1)
    return false;
  return (status.st_mode & ALLPERMS) == (S_IRUSR | S_IWUSR) || fchmod(file, S_IRUSR | S_IWUSR) == 0;
}

bool StartupLock::IsBusy()
{
  if (file < 0 || isTaken)
    return false;
  isTaken = flock(file, LOCK_EX | LOCK_NB) == 0;
  return !isTaken && (errno == EWOULDBLOCK || errno == EINTR);
}

void StartupLock::Wait(int timeout)
{
  QElapsedTimer waiting;
  waiting.start();
  while (IsBusy() && !waiting.hasExpired(timeout))
    boost::this_thread::sleep_for(boost::chrono::milliseconds(2));
}

// ---- The listening socket -------------------------------------------------------------------------------

std::unique_ptr<ListeningSocket> ListeningSocket::Open()
{
  const int listener = Platform::OpenLocalSocket();
  return std::unique_ptr<ListeningSocket>(listener < 0 ? nullptr : new ListeningSocket(listener));
}

ListeningSocket::ListeningSocket(int listener) : listener(listener), notifier(listener, QSocketNotifier::Read)
{
  notifier.setEnabled(false);
  QObject::connect(
      &notifier, &QSocketNotifier::activated, &notifier, [this] { Accept(); }, Qt::DirectConnection);
}

ListeningSocket::~ListeningSocket()
{
  notifier.setEnabled(false);
  close(listener);
}

bool ListeningSocket::Listen(const QString& serverName)
{
  if (!Platform::ListenPrivately(listener, QFile::encodeName(serverName)))
    return false;
  Resume();
  return true;
}

// Without a descriptor for it the connection keeps waiting, and would wake the process without end.
void ListeningSocket::Accept()
{
  const int connection = Platform::AcceptConnection(listener);
  if (connection < 0)
  {
    Pause();
    return;
  }
  auto client = std::make_unique<QLocalSocket>(this);
  if (client->setSocketDescriptor(connection))
    emit Accepted(client.release());
  else
    close(connection);
}

} // namespace Tavrik::Bazaar::Details
