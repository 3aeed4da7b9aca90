#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <memory>
#include <sys/types.h>

class QLocalSocket;

/** @file Where the participants of a bus meet: the socket file, the lock beside it, and the listening socket.
 */
namespace Tavrik::Bazaar::Details
{

/** Identifies a socket file, so that a later one of the same name is not taken for it. */
struct SocketFile
{
  dev_t device = 0;
  ino_t node = 0;
  qint64 changed = 0; ///< Milliseconds since 1970.

  bool operator==(const SocketFile& other) const { return IsSameNode(other) && changed == other.changed; }

  /** Enough while the other's socket lives: its node is not reused then. */
  bool IsSameNode(const SocketFile& other) const { return device == other.device && node == other.node; }
  bool IsMissing() const { return device == 0 && node == 0; }
};

/** @return The socket file under that name; missing when there is none, or a link or anything else. */
SocketFile LookAtSocketFile(const QString& serverName);

/** @return Whether another server listens where the one with the file @p own did. */
bool HasSuccessor(const QString& serverName, const SocketFile& own);

/** @return Whether a server of this user, or of root, may be reached under that name. */
bool IsTrustedSocketFile(const QString& serverName);

/** @return Whether a socket or a file of @p user is this user's or root's. */
bool IsTrustedUser(uid_t user);

/**
 * The lock that makes looking for a server, removing the file of a dead one and listening one step.
 *
 * A lock that cannot be taken at all, because its file cannot be opened or belongs to another user, is
 * not busy: a participant proceeds without it.
 */
class StartupLock
{
public:
  /** Takes the lock when that needs no waiting. */
  explicit StartupLock(const QString& serverName);
  ~StartupLock();

  StartupLock(const StartupLock&) = delete;
  StartupLock& operator=(const StartupLock&) = delete;

  /** @return Whether another participant holds the lock; takes it otherwise. */
  bool IsBusy();

  /** Blocks until the lock is taken, for at most @p timeout milliseconds. */
  void Wait(int timeout);

private:
  bool IsOwn() const;

  int file = -1;
  bool isTaken = false;
};

/**
 * Accepts the connections of a server.
 *
 * Unlike QLocalServer it goes on listening after a connection could not be accepted, and leaves its file
 * where it is when it ends. Accepted sockets are its children.
 */
class ListeningSocket : public QObject
{
  Q_OBJECT

public:
  /** @return Null when the process has no descriptor left for it. */
  static std::unique_ptr<ListeningSocket> Open();
  ~ListeningSocket() override;

  /** @return Whether others can connect from now on. */
  bool Listen(const QString& serverName);

  /** Accepts again after Pause(), or after a connection that could not be accepted. */
  void Resume() { notifier.setEnabled(true); }

  /** Lets connections wait. */
  void Pause() { notifier.setEnabled(false); }

signals:
  void Accepted(QLocalSocket* client);

private:
  explicit ListeningSocket(int listener);

  void Accept();

  const int listener;
  QSocketNotifier notifier;
};

} // namespace Tavrik::Bazaar::Details
