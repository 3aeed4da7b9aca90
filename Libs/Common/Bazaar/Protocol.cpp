#include <Common/Bazaar/Protocol.h>

#include <glog/logging.h>

namespace Tavrik::Bazaar::Details
{

quint16 Checksum(const QByteArray& data)
{
  return qChecksum(data.constData(), static_cast<uint>(data.size()));
}

bool UnpackBytes(const QByteArray& data, long long offset, QByteArray* bytes)
{
  if (data.size() < offset + 4)
    return false;
  const int length = UnpackNumber<int>(data, offset);
  if (length < 0 || data.size() - offset - 4 < length)
    return false;
  *bytes = data.mid(static_cast<int>(offset + 4), length);
  return true;
}

QByteArray CreatePacket(const QByteArray& contextName, const QByteArray& command, const QByteArray& body)
{
  QByteArray header;
  header.reserve(smallestHeader + contextName.size() + command.size());
  header += PackNumber(contextName.size());
  header += contextName;
  header += PackNumber(command.size());
  header += command;
  header += PackNumber(body.size());
  header += CalcCRC(body);

  QByteArray packet;
  packet.reserve(preambleSize + header.size() + body.size());
  packet += signature;
  packet += PackNumber(header.size());
  packet += CalcCRC(header);
  packet += header;
  packet += body;
  return packet;
}

QByteArray CreateBodyMessage(long long id, const QByteArray& first, const QByteArray& second)
{
  QByteArray body;
  body.reserve(16 + first.size() + second.size());
  body += PackNumber(id);
  body += PackNumber(first.size());
  body += first;
  body += PackNumber(second.size());
  body += second;
  return body;
}

QByteArray CreateBodyStatus(const QList<QByteArray>& names)
{
  QByteArray body = PackNumber(names.size());
  for (const QByteArray& name : names)
    body += PackNumber(name.size()) + name;
  return body;
}

QByteArray CreateMessagePacket(const QByteArray& contextName, long long id, const QByteArray& name,
                               const QByteArray& data, long long largest)
{
  const long long size = 16LL + name.size() + data.size() + preambleSize + smallestHeader +
                         contextName.size() + commandMessage.size();
  return size > largest ? QByteArray()
                        : CreatePacket(contextName, commandMessage, CreateBodyMessage(id, name, data));
}

bool ParseHeader(const QByteArray& header, Packet* packet)
{
  if (!UnpackBytes(header, 0, &packet->contextName))
  {
    LOG(ERROR) << "Can't parse a context name";
    return false;
  }
  const long long rest = packet->contextName.size() + 4LL;
  if (!UnpackBytes(header, rest, &packet->command))
  {
    LOG(ERROR) << "Can't parse a command";
    return false;
  }
  const long long tail = rest + 4 + packet->command.size();
  packet->bodySize = UnpackNumber<int>(header, tail);
  packet->bodyChecksum = UnpackNumber<quint16>(header, tail + 4);
  return true;
}

bool HasBody(const Packet& packet)
{
  return !packet.command.isEmpty() && packet.bodySize >= smallestBody;
}

bool IsUsable(const Packet& packet)
{
  return packet.headerSize >= smallestHeader && HasBody(packet) && packet.body.size() >= smallestBody;
}

BodyMessage ParseBodyMessage(const QByteArray& body)
{
  BodyMessage message;
  message.id = UnpackNumber<long long>(body, 0);
  if (!UnpackBytes(body, 8, &message.first))
    LOG(ERROR) << "Can't parse a client name";
  else if (!UnpackBytes(body, message.first.size() + 12LL, &message.second))
    LOG(ERROR) << "Can't parse a message";
  return message;
}

BodyStatus ParseBodyStatus(const QByteArray& body)
{
  if (body.size() < 4)
    return {};
  const int count = UnpackNumber<int>(body, 0);
  if (body.size() < 4LL * count + 4)
    return {};

  BodyStatus status;
  long long offset = 4;
  for (int i = 0; i < count; ++i)
  {
    QByteArray name;
    if (!UnpackBytes(body, offset, &name))
      return {};
    offset += 4 + name.size();
    status.members.append(name);
  }
  return status;
}

} // namespace Tavrik::Bazaar::Details
