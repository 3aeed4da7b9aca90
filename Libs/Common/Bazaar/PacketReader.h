#pragma once

#include <Common/Bazaar/Protocol.h>

#include <QBuffer>
#include <QLocalSocket>

#include <boost/chrono.hpp>

#include <algorithm>

namespace Tavrik::Bazaar::Details
{

const int smallestPacket = 48;      // bytes that must wait before a tick reads
const qint64 longestGlance = 65536; // bytes of garbage that are looked through at once

Packet ReadPacket(QIODevice* device);

// What is known of the packet at the head of one connection. It looks without taking, so that nobody blocks
// in the middle of a message.
class Intake
{
public:
  explicit Intake(long long largest = std::numeric_limits<long long>::max()) : largest(largest) {}

  // Whether the packet at the head is known to be larger than it may be; it is never taken then.
  bool IsTooLarge() const { return needed > largest; }

  // Reads a packet, good or bad, if that needs no waiting.
  bool Take(QIODevice* device, Packet* packet)
  {
    const bool isTaken = TakeWhole(device, packet);
    ResumeReading(qobject_cast<QLocalSocket*>(device));
    return isTaken;
  }

  bool IsPaused() const { return boost::chrono::steady_clock::now() < end; }

  // For as long as so many bytes take at `rate` a second.
  void PauseAfter(long long bytes, long long rate)
  {
    const double pause = static_cast<double>(bytes) / static_cast<double>(rate);
    end =
        boost::chrono::steady_clock::now() + boost::chrono::microseconds(static_cast<long long>(pause * 1e6));
  }

private:
  // Qt stops reading when its buffer is full. What is taken then does not make it go on, unless that is all
  // of it.
  static void ResumeReading(QLocalSocket* socket)
  {
    const qint64 size = socket ? socket->readBufferSize() : 0;
    if (size <= 0)
      return;
    socket->setReadBufferSize(0);
    socket->setReadBufferSize(size);
  }

  bool TakeWhole(QIODevice* device, Packet* packet)
  {
    if (device->bytesAvailable() < smallestPacket)
      return false;
    if (needed == 0 && !SkipToSignature(device, packet))
      return true;
    if (IsWhole(device))
    {
      *this = Intake(largest);
      *packet = ReadPacket(device);
      return true;
    }
    if (IsTooLarge() || !HasStalled(device->bytesAvailable()))
      return false;
    *this = Intake(largest);
    *packet = ReadCopy(device, device->bytesAvailable());
    return true;
  }

  // Where a signature, or what has come of it, begins.
  static int FindBeginning(const QByteArray& data)
  {
    const int whole = data.indexOf(signature);
    if (whole >= 0)
      return whole;
    int begun = std::max(data.size() - signature.size() + 1, 0);
    while (!signature.startsWith(data.mid(begun)))
      ++begun;
    return begun;
  }

  // False when there was nothing but bytes that belong to no packet: then `packet` tells so.
  bool SkipToSignature(QIODevice* device, Packet* packet)
  {
    while (device->peek(signature.size()) != signature)
    {
      // In pieces: what is looked at leaves the socket's buffer, which then takes in as much again.
      const QByteArray glance = device->peek(std::min(device->bytesAvailable(), longestGlance));
      const bool isAll = glance.size() == device->bytesAvailable();
      device->skip(FindBeginning(glance));
      if (isAll && device->bytesAvailable() < signature.size())
      {
        // Hunting through it byte by byte would find no more than this.
        *packet = ReadCopy(device, 0);
        return false;
      }
    }
    needed = preambleSize;
    return true;
  }

  bool IsWhole(QIODevice* device)
  {
    const long long available = device->bytesAvailable();
    if (available >= needed && !isHeaderKnown)
    {
      const int headerSize = UnpackNumber<int>(device->peek(preambleSize), signature.size());
      isHeaderKnown = true;
      isBodyKnown = headerSize < smallestHeader;
      if (!isBodyKnown)
        needed += headerSize;
    }
    if (available >= needed && !isBodyKnown && !IsTooLarge())
    {
      needed += BodySize(device->peek(needed));
      isBodyKnown = true;
    }
    return isBodyKnown && available >= needed && !IsTooLarge();
  }

  // What the packet reader will want behind this header.
  static long long BodySize(const QByteArray& beginning)
  {
    const QByteArray header = beginning.mid(preambleSize);
    if (Checksum(header) != UnpackNumber<quint16>(beginning, signature.size() + 4))
      return 0;
    QByteArray contextName;
    QByteArray command;
    if (!UnpackBytes(header, 0, &contextName) || !UnpackBytes(header, contextName.size() + 4LL, &command))
      return 0;
    const int size = UnpackNumber<int>(header, 8LL + contextName.size() + command.size());
    return command.isEmpty() || size < smallestBody ? 0 : size;
  }

  bool HasStalled(long long available)
  {
    const boost::chrono::steady_clock::time_point now = boost::chrono::steady_clock::now();
    if (available != seen)
    {
      seen = available;
      lastArrival = now;
    }
    return now - lastArrival >= boost::chrono::milliseconds(transferTimeout);
  }

  static Packet ReadCopy(QIODevice* device, long long size)
  {
    QByteArray bytes = device->read(size);
    QBuffer copy(&bytes);
    copy.open(QIODevice::ReadOnly);
    return ReadPacket(&copy);
  }

  long long largest;
  long long needed = 0; // bytes that the packet is known to have; 0 when none has begun
  bool isHeaderKnown = false;
  bool isBodyKnown = false;
  long long seen = 0;
  boost::chrono::steady_clock::time_point lastArrival;
  boost::chrono::steady_clock::time_point end; // of the pause
};

} // namespace Tavrik::Bazaar::Details
