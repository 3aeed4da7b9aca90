// The two packet readers, the blocking one and the one that never waits, compared with a second blocking
// reader over a connection whose bytes come at the script's times. A step of kind 0 brings its bytes a
// millisecond later, any other is a pause.

#include <Common/Bazaar/PacketReader.h>

#include "Support/LogCapture.h"
#include "Support/Require.h"
#include "Support/Script.h"
#include "Support/Wire.h"

#include <QIODevice>

#include <algorithm>
#include <array>
#include <optional>

namespace Tavrik::Bazaar::Details
{
namespace
{

struct Arrival
{
  qint64 time; // ms
  QByteArray bytes;
};

using Arrivals = QList<Arrival>;

class Connection : public QIODevice
{
public:
  explicit Connection(const Arrivals& arrivals) : later(arrivals) { open(ReadOnly); }

  bool isSequential() const override { return true; }
  qint64 bytesAvailable() const override { return bytes.size() + QIODevice::bytesAvailable(); }
  bool waitForReadyRead(int timeout) override
  {
    Require(timeout == 500 || timeout == 1000 || timeout == 30000, "a wait is one of the three");
    Require(bytesAvailable() == 0, "nobody waits while bytes are there");
    ++waits;
    const qint64 end = now + timeout;
    MoveTo(later.isEmpty() ? end : std::min(end, later.first().time));
    return !bytes.isEmpty();
  }
  void MoveTo(qint64 time)
  {
    now = time;
    while (!later.isEmpty() && later.first().time <= now)
      bytes += later.takeFirst().bytes;
  }

  Arrivals later;
  qint64 now = 0;
  int waits = 0;

protected:
  qint64 readData(char* data, qint64 size) override
  {
    const int taken = static_cast<int>(qMin<qint64>(size, bytes.size()));
    std::copy_n(bytes.constData(), taken, data);
    bytes.remove(0, taken);
    return taken;
  }
  qint64 writeData(const char*, qint64) override { return -1; }

private:
  QByteArray bytes;
};

// The reader, written down a second time over the list of arrivals.
class SecondReader
{
public:
  explicit SecondReader(const Arrivals& arrivals) : arrivals(arrivals) {}

  Packet ReadPacket()
  {
    Packet packet;
    Hunt();
    const std::optional<quint64> size = ReadNumber(4);
    if (!size)
    {
      log.push_back("Can't read a header size: 0");
      return packet;
    }
    const std::optional<quint64> checksum = ReadNumber(2);
    if (!checksum)
      log.push_back("Can't read a header checksum: 0"); // glog takes the line's end for its own
    packet.headerSize = static_cast<qint32>(*size);
    packet.headerChecksum = static_cast<quint16>(checksum.value_or(0));
    if (packet.headerSize < 14)
      return packet;
    const QByteArray header = Read(packet.headerSize, 30000);
    if (!Fits("header", header, packet.headerChecksum) || !ReadHeader(header, &packet))
      return packet;
    if (packet.command.isEmpty() || packet.bodySize < 4)
      return packet;
    const QByteArray body = Read(packet.bodySize, 30000);
    if (Fits("body", body, packet.bodyChecksum))
      packet.body = body;
    return packet;
  }

  // Lets the time pass until so many bytes are there; false when they never will be.
  bool WaitFor(int count)
  {
    int there = -offset;
    for (const Arrival& arrival : qAsConst(arrivals))
    {
      there += arrival.bytes.size();
      now = std::max(now, arrival.time);
      if (there >= count)
        return true;
    }
    return false;
  }

  int CountRest() const
  {
    int rest = -offset;
    for (const Arrival& arrival : arrivals)
      rest += arrival.bytes.size();
    return rest;
  }

  qint64 now = 0;
  std::vector<std::string> log;

private:
  // Whether a byte is there, or comes within the time.
  bool Await(int timeout)
  {
    while (!arrivals.isEmpty() && offset == arrivals.first().bytes.size())
    {
      arrivals.removeFirst();
      offset = 0;
    }
    if (arrivals.isEmpty() || arrivals.first().time > now + timeout)
    {
      now += timeout;
      return false;
    }
    now = std::max(now, arrivals.first().time);
    return true;
  }

  QByteArray Next(qint64 size)
  {
    const QByteArray part =
        arrivals.first().bytes.mid(offset, static_cast<int>(qMin<qint64>(size, longestPiece)));
    offset += part.size();
    return part;
  }

  void Hunt()
  {
    QByteArray seen;
    while (!seen.endsWith(Wire::Signature()) && Await(1000))
      seen = (seen + Next(1)).right(Wire::Signature().size());
  }

  QByteArray Read(qint64 size, int timeout)
  {
    QByteArray taken;
    while (taken.size() < size && Await(timeout))
      taken += Next(size - taken.size());
    if (taken.size() < size)
      log.push_back("Could't read " + std::to_string(size) + " bytes. Have read only " +
                    std::to_string(taken.size()) + " (TIMEOUT)");
    return taken;
  }

  static quint64 Number(const QByteArray& bytes)
  {
    quint64 number = 0;
    for (int i = bytes.size() - 1; i >= 0; --i)
      number = number << 8 | static_cast<quint8>(bytes.at(i));
    return number;
  }

  std::optional<quint64> ReadNumber(int size)
  {
    const QByteArray bytes = Read(size, 500);
    if (bytes.size() < size)
      return std::nullopt;
    return Number(bytes);
  }

  bool Fits(const char* what, const QByteArray& bytes, quint16 expected)
  {
    const quint16 computed = qChecksum(bytes.constData(), static_cast<uint>(bytes.size()));
    if (computed == expected)
      return true;
    log.push_back(std::string("Invalid ") + what + " checksum " + std::to_string(computed) +
                  " (expected: " + std::to_string(expected) + ")");
    return false;
  }

  static std::optional<QByteArray> Counted(const QByteArray& bytes)
  {
    if (bytes.size() < 4)
      return std::nullopt;
    const qint32 length = static_cast<qint32>(Number(bytes.left(4)));
    if (length < 0 || bytes.size() < 4LL + length)
      return std::nullopt;
    return bytes.mid(4, length);
  }

  bool ReadHeader(const QByteArray& header, Packet* packet)
  {
    const std::optional<QByteArray> context = Counted(header);
    if (!context)
    {
      log.push_back("Can't parse a context name");
      return false;
    }
    packet->contextName = *context;
    const QByteArray rest = header.mid(4 + context->size());
    const std::optional<QByteArray> command = Counted(rest);
    if (!command)
    {
      log.push_back("Can't parse a command");
      return false;
    }
    packet->command = *command;
    const QByteArray tail = rest.mid(4 + command->size());
    packet->bodySize = static_cast<qint32>(Number(tail.left(4)));
    packet->bodyChecksum = static_cast<quint16>(Number(tail.mid(4, 2)));
    return true;
  }

  static const int longestPiece = 0xffff;
  Arrivals arrivals;
  int offset = 0; // of what comes next in the first
};

void RequireEqual(const Packet& packet, const Packet& expected)
{
  Require(packet.headerSize == expected.headerSize, "the header sizes are equal");
  Require(packet.headerChecksum == expected.headerChecksum, "the header checksums are equal");
  Require(packet.contextName == expected.contextName, "the context names are equal");
  Require(packet.command == expected.command, "the commands are equal");
  Require(packet.bodySize == expected.bodySize, "the body sizes are equal");
  Require(packet.bodyChecksum == expected.bodyChecksum, "the body checksums are equal");
  Require(packet.body == expected.body, "the bodies are equal");
}

void ReadWithBoth(const Arrivals& arrivals)
{
  Connection connection(arrivals);
  SecondReader second(arrivals);
  while (connection.bytesAvailable() > 0 || !connection.later.isEmpty())
  {
    const LogCapture log;
    second.log.clear();
    RequireEqual(ReadPacket(&connection), second.ReadPacket());
    Require(log.Errors() == second.log, "the log lines are equal");
    qint64 rest = connection.bytesAvailable();
    for (const Arrival& arrival : qAsConst(connection.later))
      rest += arrival.bytes.size();
    Require(rest == second.CountRest(), "both have taken the same bytes");
  }
}

// The reader that never waits has the results of the one that does, whenever it is given a look.
class LookingReader
{
public:
  explicit LookingReader(const Arrivals& arrivals) : connection(arrivals), second(arrivals) {}

  void Read()
  {
    while (!connection.later.isEmpty())
    {
      const qint64 next = connection.later.first().time;
      LookAt(next - 1);
      LookAt(next);
    }
    LookAt(connection.now + 10 * 60000);
    Require(!second.WaitFor(smallestPacket), "no packet is left out");
    Require(connection.waits == 0, "it does not wait");
    Require(connection.bytesAvailable() == second.CountRest(), "both have taken the same bytes");
  }

private:
  void LookAt(qint64 time)
  {
    connection.MoveTo(time);
    const PacketReader::Clock::time_point now =
        PacketReader::Clock::time_point() + boost::chrono::milliseconds(time);
    for (Packet packet; reader.Take(&connection, &packet, now); packet = Packet())
    {
      Require(second.WaitFor(smallestPacket), "it begins when enough bytes are there");
      second.log.clear();
      RequireEqual(packet, second.ReadPacket());
      lines.insert(lines.end(), second.log.begin(), second.log.end());
      Require(log.Errors() == lines, "the log lines are equal");
    }
  }

  Connection connection;
  SecondReader second;
  PacketReader reader;
  const LogCapture log;
  std::vector<std::string> lines;
};

} // namespace
} // namespace Tavrik::Bazaar::Details

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  const std::array<int, 12> pauses = {1, 20, 100, 499, 500, 501, 1000, 1001, 1400, 30000, 30001, 100000};
  Tavrik::Bazaar::Details::Arrivals arrivals;
  qint64 time = 0;
  for (const Script::Step& step : Script::Read(data, size))
  {
    if (step.kind == 0 && !step.bytes.isEmpty())
      arrivals.append({++time, step.bytes});
    else
      time += pauses[step.argument % pauses.size()];
  }
  Tavrik::Bazaar::Details::ReadWithBoth(arrivals);
  Tavrik::Bazaar::Details::LookingReader(arrivals).Read();
  return 0;
}
