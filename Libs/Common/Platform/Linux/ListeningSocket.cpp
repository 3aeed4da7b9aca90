#include <Common/Platform/ListeningSocket.h>

#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace Tavrik::Platform
{

int OpenLocalSocket()
{
  return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

bool ListenPrivately(int socket, const QByteArray& path)
{
  const int backlog = 50; // connections that wait to be accepted
  const mode_t userOnly = S_IRUSR | S_IWUSR;
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  if (static_cast<std::size_t>(path.size()) >= sizeof(address.sun_path))
    return false;
  std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));

  // The file takes the mode of the socket, less the umask; the second call gives back what that took.
  if (fchmod(socket, userOnly) != 0 ||
      bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
    return false;
  if (chmod(path.constData(), userOnly) == 0 && listen(socket, backlog) == 0)
    return true;
  unlink(path.constData());
  return false;
}

int AcceptConnection(int listener)
{
  return accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
}

} // namespace Tavrik::Platform
