#include <Common/Bazaar/PacketReader.h>

#include <QBuffer>
#include <QLocalSocket>

#include <glog/logging.h>

#include <algorithm>
#include <poll.h>
#include <utility>

namespace Tavrik::Bazaar::Details
{

namespace
{

const int huntTimeout = 1000;       // ms without a byte while no signature has been found
const int smallFieldTimeout = 500;  // ms without a byte of the header's size or checksum
const qint64 longestGlance = 65536; // bytes of garbage that are looked through at once

// Qt stops reading when its buffer is full, and does not resume when only a part is taken.
void ResumeReading(QIODevice* device)
{
  auto* const socket = qobject_cast<QLocalSocket*>(device);
  const qint64 size = socket ? socket->readBufferSize() : 0;
  if (size <= 0)
    return;
  socket->setReadBufferSize(0);
  socket->setReadBufferSize(size);
}

bool HasEnded(QIODevice* device)
{
  const auto* const socket = qobject_cast<QLocalSocket*>(device);
  return socket && socket->state() != QLocalSocket::ConnectedState;
}

// Whether bytes have come that the event loop had no time to fetch. Fetching them here could emit signals,
// whose receivers may drop the reader.
bool HasUnfetchedBytes(QIODevice* device)
{
  const auto* const socket = qobject_cast<QLocalSocket*>(device);
  pollfd end = {socket ? static_cast<int>(socket->socketDescriptor()) : -1, POLLIN, 0};
  return poll(&end, 1, 0) > 0;
}

} // namespace

Packet ReadPacket(QIODevice* device)
{
  PacketAssembly packet(std::numeric_limits<long long>::max());
  while (!packet.IsOver())
    if (!packet.Read(device) && !device->waitForReadyRead(packet.Timeout()))
      packet.EndWait();
  return packet.Result();
}

// ---- One packet -----------------------------------------------------------------------------------------

bool PacketAssembly::Read(QIODevice* device)
{
  const long long before = taken;
  int count = 1;
  // A device that claims bytes and returns none must not be read for ever.
  while (count > 0 && !IsOver() && !IsTooLarge() && device->bytesAvailable() > 0)
  {
    count = field == Field::Signature ? Hunt(device) : ReadField(device);
    taken += count;
  }
  return taken > before;
}

int PacketAssembly::Hunt(QIODevice* device)
{
  const QByteArray glance = device->peek(std::min(device->bytesAvailable(), longestGlance));
  int count = 0;
  while (count < glance.size() && matched < signature.size())
  {
    const char byte = glance.at(count++);
    if (byte == signature.at(matched))
      ++matched;
    else
      matched = byte == signature.at(0) ? 1 : 0;
  }
  device->skip(count);
  if (matched == signature.size())
    EndField();
  return count;
}

int PacketAssembly::ReadField(QIODevice* device)
{
  // The memory taken is that of the bytes that have come: the size of a field comes from the wire. A field
  // that no array can hold loses its end, and so does not match its checksum.
  const QByteArray part = device->read(std::min<qint64>(wanted - come, device->bytesAvailable()));
  come += part.size();
  bytes += part.left(largestArray - bytes.size());
  if (come == wanted)
    EndField();
  return part.size();
}

int PacketAssembly::Timeout() const
{
  switch (field)
  {
  case Field::Signature:
    return huntTimeout;
  case Field::HeaderSize:
  case Field::HeaderChecksum:
    return smallFieldTimeout;
  default:
    return transferTimeout;
  }
}

void PacketAssembly::EndWait()
{
  if (field != Field::Signature)
  {
    // The timed read logs what is missing in its own words.
    QBuffer part(&bytes);
    part.open(QIODevice::ReadOnly);
    ReadDataWithTimeout(&part, wanted, 0);
  }
  EndField();
}

void PacketAssembly::EndField()
{
  const QByteArray value = std::exchange(bytes, QByteArray());
  const bool isWhole = come == wanted;
  switch (field)
  {
  case Field::Signature: // or none: then the size that does not come ends the attempt
    return Begin(Field::HeaderSize, 4);
  case Field::HeaderSize:
    if (!isWhole)
    {
      LOG(ERROR) << "Can't read a header size: " << 0;
      return Begin(Field::None, 0);
    }
    packet.headerSize = UnpackNumber<int>(value, 0);
    return Begin(Field::HeaderChecksum, 2);
  case Field::HeaderChecksum:
    if (isWhole)
      packet.headerChecksum = UnpackNumber<quint16>(value, 0);
    else
      LOG(ERROR) << "Can't read a header checksum: " << 0 << '\n';
    return packet.headerSize < smallestHeader ? Begin(Field::None, 0)
                                              : Begin(Field::Header, packet.headerSize);
  case Field::Header:
    return TakeHeader(value);
  case Field::Body:
    return TakeBody(value);
  case Field::None:
    return;
  }
}

void PacketAssembly::Begin(Field next, int bytesWanted)
{
  size += wanted;
  field = next;
  wanted = bytesWanted;
  come = 0;
}

void PacketAssembly::TakeHeader(const QByteArray& header)
{
  const quint16 checksum = Checksum(header);
  if (checksum != packet.headerChecksum)
    LOG(ERROR) << "Invalid header checksum " << checksum << " (expected: " << packet.headerChecksum << ")";
  else if (ParseHeader(header, &packet) && HasBody(packet))
    return Begin(Field::Body, packet.bodySize);
  Begin(Field::None, 0);
}

void PacketAssembly::TakeBody(const QByteArray& body)
{
  const quint16 checksum = Checksum(body);
  if (checksum == packet.bodyChecksum)
    packet.body = body;
  else
    LOG(ERROR) << "Invalid body checksum " << checksum << " (expected: " << packet.bodyChecksum << ")";
  Begin(Field::None, 0);
}

// ---- The packets of a connection ------------------------------------------------------------------------

PacketReader::PacketReader(long long largest, int threshold)
    : largest(largest), threshold(threshold), current(largest)
{
}

bool PacketReader::IsDue(QIODevice* device) const
{
  return isReading || device->bytesAvailable() >= threshold;
}

bool PacketReader::Take(QIODevice* device, Packet* next, Clock::time_point now)
{
  if (!IsDue(device))
    return false;
  if (current.Read(device) || !isReading)
    lastArrival = now;
  isReading = true;
  ResumeReading(device);
  while (!current.IsOver() && !current.IsTooLarge() && HasRunOut(device, now))
  {
    // The next wait begins where this one ends, however late that is noticed.
    lastArrival += boost::chrono::milliseconds(current.Timeout());
    current.EndWait();
  }
  if (!current.IsOver())
    return false;
  *next = current.Result();
  lastSize = current.CountTaken();
  isReading = false;
  current = PacketAssembly(largest);
  return true;
}

bool PacketReader::HasRunOut(QIODevice* device, Clock::time_point now) const
{
  if (HasEnded(device))
    return true;
  return now - lastArrival >= boost::chrono::milliseconds(current.Timeout()) && !HasUnfetchedBytes(device);
}

} // namespace Tavrik::Bazaar::Details
