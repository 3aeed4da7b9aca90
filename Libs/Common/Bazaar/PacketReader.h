#pragma once

#include <Common/Bazaar/Protocol.h>

#include <boost/chrono.hpp>

#include <limits>

class QIODevice;

namespace Tavrik::Bazaar::Details
{

const int smallestPacket = 48; // bytes that must wait before a tick begins to read

/**
 * Reads one packet blockingly: each wait for bytes lasts as long as PacketAssembly::Timeout() says, or until
 * the device ends.
 */
Packet ReadPacket(QIODevice* device);

/**
 * One packet, or one failed attempt to read one, while its bytes come.
 *
 * It knows the order of the fields and what a missing one means, but no clock: its owner says when a wait for
 * more bytes has run out.
 */
class PacketAssembly
{
public:
  explicit PacketAssembly(long long largest) : largest(largest) {}

  /** Takes from @p device what has come of this packet. Returns whether anything had. */
  bool Read(QIODevice* device);

  /** Milliseconds for which more bytes may stay away. */
  int Timeout() const;

  /** Ends the field that is being read for want of bytes, and logs what is missing. */
  void EndWait();

  bool IsOver() const { return field == Field::None; }

  /** Whether the packet is known to exceed the largest size. No more of it is read then. */
  bool IsTooLarge() const { return field != Field::Signature && !IsOver() && size + wanted > largest; }

  /** Bytes taken, those in front of the signature included. */
  long long CountTaken() const { return taken; }

  /** The packet as far as it has been read. */
  const Packet& Result() const { return packet; }

private:
  enum class Field
  {
    Signature,
    HeaderSize,
    HeaderChecksum,
    Header,
    Body,
    None // the packet is read, or the attempt has failed
  };

  int Hunt(QIODevice* device);
  int ReadField(QIODevice* device);
  void EndField();
  void Begin(Field next, int bytesWanted);
  void TakeHeader(const QByteArray& header);
  void TakeBody(const QByteArray& body);

  long long largest;
  Field field = Field::Signature;
  int matched = 0;               // bytes of the signature
  int wanted = signature.size(); // bytes of the field
  int come = 0;                  // bytes that have come of it
  QByteArray bytes;              // that are kept of those
  long long size = 0;            // of the fields before it
  long long taken = 0;
  Packet packet;
};

/**
 * Reads the packets of one connection without blocking, with the result that ReadPacket() would have had.
 *
 * A reader that has begun to read a packet takes its bytes as they come, and ends each wait for more after
 * the time that ReadPacket() would have waited.
 */
class PacketReader
{
public:
  using Clock = boost::chrono::steady_clock;

  /** Packets of more than @p largest bytes are not read. It begins once @p threshold bytes wait. */
  explicit PacketReader(long long largest = std::numeric_limits<long long>::max(),
                        int threshold = smallestPacket);

  /** Whether a packet is being read, or enough bytes wait to begin. */
  bool IsDue(QIODevice* device) const;

  /** Reads what has come. Returns true, and @p next, good or bad, when a packet has ended by @p now. */
  bool Take(QIODevice* device, Packet* next, Clock::time_point now = Clock::now());

  bool IsTooLarge() const { return current.IsTooLarge(); }

  /** Bytes taken for the last packet. */
  long long LastSize() const { return lastSize; }

private:
  bool HasRunOut(QIODevice* device, Clock::time_point now) const;

  long long largest;
  int threshold;
  bool isReading = false;
  PacketAssembly current;
  Clock::time_point lastArrival;
  long long lastSize = 0;
};

} // namespace Tavrik::Bazaar::Details
