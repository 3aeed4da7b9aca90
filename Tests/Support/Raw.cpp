#include "Support/Raw.h"

#include <QFile>

Meeting::~Meeting()
{
  QFile::remove(Wire::ServerName(context));
}

Link::Link(std::unique_ptr<QLocalSocket> taken) : socket(std::move(taken))
{
  QObject::connect(socket.get(), &QLocalSocket::readyRead, socket.get(), [this] { Read(); });
  if (socket->isOpen())
    Read();
}

Link::~Link()
{
  socket->disconnect();
}

void Link::Read()
{
  const QByteArray arrived = socket->readAll();
  bytes += arrived;
  stream += arrived;
  for (Wire::Received packet = Wire::Take(&stream); !packet.command.isEmpty(); packet = Wire::Take(&stream))
    packets.push_back(packet);
}

void Link::Write(const QByteArray& data)
{
  socket->write(data);
  socket->flush();
}

// A byte in Qt's full buffer keeps it from taking more from the system.
void Link::StopReading()
{
  socket->blockSignals(true);
  socket->setReadBufferSize(1);
}

void Link::ResumeReading()
{
  socket->setReadBufferSize(0);
  socket->blockSignals(false);
  Read();
}

bool Link::IsClosed(int limit)
{
  return SpinUntil([&] { return socket->state() == QLocalSocket::UnconnectedState; }, limit);
}

std::vector<Wire::Received> Link::Of(const QByteArray& command) const
{
  std::vector<Wire::Received> found;
  for (const Wire::Received& packet : packets)
    if (packet.command == command)
      found.push_back(packet);
  return found;
}

bool Link::Got(const QByteArray& command, int count, int limit)
{
  return SpinUntil([&] { return Of(command).size() >= static_cast<std::size_t>(count); }, limit);
}

QByteArray Link::Result(qint64 id, int limit)
{
  QByteArray word;
  SpinUntil(
      [&]
      {
        for (const Wire::Received& packet : packets)
          if (packet.command == "RESULT" && packet.Id() == id)
            word = packet.First();
        return !word.isEmpty();
      },
      limit);
  return word;
}

QByteArray Link::Members() const
{
  const std::vector<Wire::Received> lists = Of("STATUS");
  return lists.empty() ? QByteArray() : lists.back().Names().toList().join(',');
}

bool Link::Sees(const QByteArray& members, int limit)
{
  return SpinUntil([&] { return Members() == members; }, limit);
}

RawClient::RawClient(const QString& context)
    : Link(std::make_unique<QLocalSocket>()), context(context.toUtf8())
{
  socket->connectToServer(Wire::ServerName(context));
  socket->waitForConnected();
}

bool RawClient::Join(const QByteArray& name)
{
  Write(Wire::Introduction(context, name));
  return SpinUntil([&] { return Members().split(',').contains(name); });
}

void RawClient::Say(qint64 id, const QByteArray& recipient, const QByteArray& data)
{
  Write(Wire::Message(context, id, recipient, data));
}

RawServer::RawServer(const QString& context)
{
  server.listen(Wire::ServerName(context));
}

std::unique_ptr<Link> RawServer::Next(int limit)
{
  if (!SpinUntil([&] { return server.hasPendingConnections(); }, limit))
    return {};
  std::unique_ptr<QLocalSocket> socket(server.nextPendingConnection());
  socket->setParent(nullptr);
  return std::make_unique<Link>(std::move(socket));
}
