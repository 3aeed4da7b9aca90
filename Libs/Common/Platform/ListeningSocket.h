#pragma once

#include <QByteArray>

/** @file Seam: a listening local socket whose file only its user can open. */
namespace Tavrik::Platform
{

/** @return A local socket that neither blocks nor survives an exec; -1 without one. The caller closes it. */
int OpenLocalSocket();

/**
 * Binds @p socket to @p path and listens. The file has mode 0600 from its first instant, whatever the umask,
 * which stays as it is.
 *
 * @return False when there is something under that name, or the system refuses.
 */
bool ListenPrivately(int socket, const QByteArray& path);

/** @return The next connection of @p listener, closed by an exec; -1 and errno without one. The caller closes
 * it. */
int AcceptConnection(int listener);

} // namespace Tavrik::Platform
