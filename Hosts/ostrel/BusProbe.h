#pragma once

#include "LocalSockets.h"

#include <QStringList>

/** @file One look at the server of a bus, as a participant that introduces itself and goes again. */
namespace Ostrel
{

/** What came of it. */
enum class Answer
{
  Members,  ///< The server let the participant in and told who is there.
  Nobody,   ///< Nobody listens on the socket.
  Foreign,  ///< It is served by another user; nothing was said to him.
  Silent,   ///< No answer in time, or no room among those who wait for one.
  Starting, ///< Another participant has been starting all the while; nothing was said to anybody.
  Strange,  ///< The answer is not that of a bus.
  Refused   ///< The system refuses the connection; `error` tells why.
};

struct ProbeResult
{
  Answer answer = Answer::Silent;
  int error = 0;       ///< An errno.
  SocketPeer peer;     ///< Whom the connection reached.
  QStringList members; ///< The participant itself included.
};

/**
 * Asks the server at @p socketPath for its members. Never serves, never removes anything and never leaves the
 * server with somebody to wait for: the introduction is written at once, and whole, or not at all.
 *
 * Blocks until the answer, a signal or @p deadline.
 *
 * @param socketPath Short enough for the address of a socket.
 */
ProbeResult Probe(const QString& socketPath, const QString& contextName, const QString& clientName,
                  const QDeadlineTimer& deadline);

} // namespace Ostrel
