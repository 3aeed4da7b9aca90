#pragma once

#include <QDeadlineTimer>
#include <QList>
#include <QString>

#include <sys/types.h>

/** @file Seam: who is behind a local socket. */
namespace Ostrel
{

/** The process at the other end of a socket, as far as the system tells. */
struct SocketPeer
{
  bool isKnown = false; ///< Whether the system told anything at all.
  uid_t userId = 0;
  pid_t pid = 0; ///< 0 when it cannot be seen from here.
};

/** A socket file that a process has, or may have, open. */
struct ServedSocket
{
  QString path;
  pid_t pid = 0; ///< 0 when it cannot be seen from here.
};

/** @param socket A connected local socket's descriptor. */
SocketPeer GetSocketPeer(int socket);

/** @return The path, or else the short name, of the program of @p pid; empty when the system does not tell.
 */
QString GetProgram(pid_t pid);

/**
 * Looks for sockets called @p fileName in every folder that the system tells of. On Linux a process listens
 * on each of them, be its file still there or not; on macOS they are files in the usual temporary folders.
 *
 * @param deadline When to stop looking for the processes.
 */
QList<ServedSocket> FindServedSockets(const QString& fileName, const QDeadlineTimer& deadline);

} // namespace Ostrel
