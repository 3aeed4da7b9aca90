#include <Common/Bazaar/PacketReader.h>

#include <glog/logging.h>

namespace Tavrik::Bazaar::Details
{

namespace
{

bool FindSignature(QIODevice* device)
{
  int matched = 0;
  while (matched < signature.size())
  {
    if (device->bytesAvailable() == 0 && !device->waitForReadyRead(1000))
      return true; // the header that does not come ends the attempt
    const QByteArray byte = ReadDataWithTimeout(device, 1, transferTimeout);
    if (byte.isEmpty())
      return false;
    if (byte.at(0) == signature.at(matched))
      ++matched;
    else
      matched = byte.at(0) == signature.at(0) ? 1 : 0;
  }
  return true;
}

bool ReadPreamble(QIODevice* device, Packet* packet)
{
  const QByteArray size = ReadDataWithTimeout(device, 4, 500);
  if (size.size() != 4)
  {
    LOG(ERROR) << "Can't read a header size: " << 0;
    return false;
  }
  const QByteArray checksum = ReadDataWithTimeout(device, 2, 500);
  if (checksum.size() == 2)
    packet->headerChecksum = UnpackNumber<quint16>(checksum, 0);
  else
    LOG(ERROR) << "Can't read a header checksum: " << 0 << std::endl;
  packet->headerSize = UnpackNumber<int>(size, 0);
  return packet->headerSize >= smallestHeader;
}

} // namespace

Packet ReadPacket(QIODevice* device)
{
  Packet packet;
  if (!FindSignature(device) || !ReadPreamble(device, &packet))
    return packet;

  const QByteArray header = ReadDataWithTimeout(device, packet.headerSize, transferTimeout);
  const quint16 headerChecksum = Checksum(header);
  if (headerChecksum != packet.headerChecksum)
  {
    LOG(ERROR) << "Invalid header checksum " << headerChecksum << " (expected: " << packet.headerChecksum
               << ")";
    return packet;
  }
  if (!ParseHeader(header, &packet) || !HasBody(packet))
    return packet;

  const QByteArray body = ReadDataWithTimeout(device, packet.bodySize, transferTimeout);
  const quint16 bodyChecksum = Checksum(body);
  if (bodyChecksum == packet.bodyChecksum)
    packet.body = body;
  else
    LOG(ERROR) << "Invalid body checksum " << bodyChecksum << " (expected: " << packet.bodyChecksum << ")";
  return packet;
}

} // namespace Tavrik::Bazaar::Details
