#include <Common/Platform/ListeningSocket.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace Tavrik::Platform
{

namespace
{

const mode_t userOnly = S_IRUSR | S_IWUSR;

bool Prepare(int socket)
{
  return fcntl(socket, F_SETFD, FD_CLOEXEC) == 0 && fcntl(socket, F_SETFL, O_NONBLOCK) == 0;
}

bool Bind(int socket, const QByteArray& path)
{
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  if (static_cast<std::size_t>(path.size()) >= sizeof(address.sun_path))
    return false;
  std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
  return bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
}

int PreparedOrClosed(int socket)
{
  if (socket < 0 || Prepare(socket))
    return socket;
  close(socket);
  return -1;
}

} // namespace

int OpenLocalSocket()
{
  return PreparedOrClosed(socket(AF_UNIX, SOCK_STREAM, 0));
}

// The system gives a socket's file every right that the umask leaves. So the file is made in a folder that
// only its user can enter, and moved when its mode is right.
bool ListenPrivately(int socket, const QByteArray& path)
{
  const int backlog = 50; // connections that wait to be accepted
  const std::size_t longest = sizeof(sockaddr_un::sun_path);
  QByteArray folder = path.left(path.lastIndexOf('/') + 1) + "XXXXXX";
  if (static_cast<std::size_t>(path.size()) >= longest || !mkdtemp(folder.data()))
    return false;

  const QByteArray hidden = folder + "/s";
  const bool isListening = chmod(folder.constData(), S_IRWXU) == 0 && Bind(socket, hidden) &&
                           chmod(hidden.constData(), userOnly) == 0 && listen(socket, backlog) == 0 &&
                           rename(hidden.constData(), path.constData()) == 0;
  if (!isListening)
    unlink(hidden.constData());
  rmdir(folder.constData());
  return isListening;
}

int AcceptConnection(int listener)
{
  return PreparedOrClosed(accept(listener, nullptr, nullptr));
}

} // namespace Tavrik::Platform
