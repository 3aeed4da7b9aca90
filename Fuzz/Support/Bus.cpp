#include "Support/Bus.h"

#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace Bus
{

namespace
{

sockaddr_un Address(const QByteArray& path)
{
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.constData(),
              std::min<std::size_t>(static_cast<std::size_t>(path.size()), sizeof(address.sun_path) - 1));
  return address;
}

int NewSocket()
{
  return socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
}

} // namespace

std::unique_ptr<Peer> Peer::Connect(const QString& path)
{
  auto peer = std::make_unique<Peer>(NewSocket());
  const sockaddr_un address = Address(QFile::encodeName(path));
  if (connect(peer->descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
    peer->Close();
  return peer;
}

void Peer::Send(const QByteArray& bytes)
{
  if (IsOpen())
    send(descriptor, bytes.constData(), static_cast<std::size_t>(bytes.size()), MSG_NOSIGNAL);
}

QByteArray Peer::Receive()
{
  QByteArray received;
  QByteArray part(65536, Qt::Uninitialized);
  while (IsOpen())
  {
    const ssize_t size = recv(descriptor, part.data(), static_cast<std::size_t>(part.size()), 0);
    if (size <= 0)
      break;
    received.append(part.constData(), static_cast<int>(size));
  }
  return received;
}

void Peer::EndSending()
{
  if (IsOpen())
    shutdown(descriptor, SHUT_WR);
}

void Peer::Close()
{
  if (IsOpen())
    close(descriptor);
  descriptor = -1;
}

Door::Door(const QString& path) : descriptor(NewSocket()), path(QFile::encodeName(path))
{
  const sockaddr_un address = Address(this->path);
  if (bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 &&
      listen(descriptor, 16) == 0)
    return;
  close(descriptor);
  descriptor = -1;
}

Door::~Door()
{
  if (!IsOpen())
    return;
  close(descriptor);
  unlink(path.constData());
}

std::unique_ptr<Peer> Door::Accept()
{
  const int accepted = IsOpen() ? accept4(descriptor, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC) : -1;
  return accepted >= 0 ? std::make_unique<Peer>(accepted) : nullptr;
}

void SetUp()
{
  static int count = 1;
  static char name[] = "fuzz";
  static char* arguments[] = {name, nullptr};
  setenv("QT_NO_GLIB", "1", 1); // its event loop would wait where nobody else gets a turn
  static QCoreApplication application(count, arguments);
}

QString ContextName()
{
  return QStringLiteral("fuzz:%1").arg(getpid());
}

} // namespace Bus
