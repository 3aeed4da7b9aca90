// The packet reader and the intake, held against a second reader, over a connection whose bytes come in the
// script's pieces. A step of kind 0 brings its bytes, any other is a wait that runs out.

#include <Common/Bazaar/PacketReader.h>

#include "Support/LogCapture.h"
#include "Support/Require.h"
#include "Support/Script.h"
#include "Support/Wire.h"

#include <optional>

namespace Tavrik::Bazaar::Details
{
namespace
{

using Pieces = QList<QByteArray>; // an empty one is a wait that runs out

class Connection : public QIODevice
{
public:
  explicit Connection(const Pieces& pieces) : later(pieces) { open(ReadOnly); }

  bool isSequential() const override { return true; }
  qint64 bytesAvailable() const override { return bytes.size() + QIODevice::bytesAvailable(); }
  bool waitForReadyRead(int timeout) override
  {
    Require(timeout == 500 || timeout == 1000 || timeout == 30000, "a wait is one of the three");
    Require(bytesAvailable() == 0, "nobody waits while bytes are there");
    ++waits;
    return Arrive();
  }
  bool Arrive()
  {
    if (later.isEmpty())
      return false;
    bytes += later.takeFirst();
    return !bytes.isEmpty();
  }

  Pieces later;
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

// The reader, written down a second time over the list of pieces.
class SecondReader
{
public:
  explicit SecondReader(const Pieces& pieces) : pieces(pieces) {}

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
    const QByteArray header = Read(packet.headerSize);
    if (!Fits("header", header, packet.headerChecksum) || !ReadHeader(header, &packet))
      return packet;
    if (packet.command.isEmpty() || packet.bodySize < 4)
      return packet;
    const QByteArray body = Read(packet.bodySize);
    if (Fits("body", body, packet.bodyChecksum))
      packet.body = body;
    return packet;
  }

  int CountRest() const
  {
    int rest = -offset;
    for (const QByteArray& piece : pieces)
      rest += piece.size();
    return rest;
  }

  std::vector<std::string> log;

private:
  bool IsOver() const { return pieces.isEmpty() || pieces.first().isEmpty(); }

  QByteArray TakeFromPiece(qint64 size)
  {
    const QByteArray part = pieces.first().mid(offset, static_cast<int>(qMin<qint64>(size, longestPiece)));
    offset += part.size();
    if (offset == pieces.first().size())
      NextPiece();
    return part;
  }

  void NextPiece()
  {
    pieces = pieces.mid(1);
    offset = 0;
  }

  void Hunt()
  {
    QByteArray seen;
    while (!IsOver())
    {
      seen += TakeFromPiece(1);
      if (seen.endsWith('>') && seen.endsWith(Wire::Signature()))
        return;
    }
    NextPiece();
  }

  QByteArray Read(qint64 size)
  {
    QByteArray taken;
    while (taken.size() < size && !IsOver())
      taken += TakeFromPiece(size - taken.size());
    if (taken.size() == size)
      return taken;
    NextPiece();
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
    const QByteArray bytes = Read(size);
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
  Pieces pieces;
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

void ReadWithBoth(const Pieces& pieces)
{
  Connection connection(pieces);
  SecondReader second(pieces);
  while (connection.bytesAvailable() > 0 || !connection.later.isEmpty())
  {
    const LogCapture log;
    second.log.clear();
    RequireEqual(ReadPacket(&connection), second.ReadPacket());
    Require(log.Errors() == second.log, "the log lines are equal");
    qint64 rest = connection.bytesAvailable();
    for (const QByteArray& piece : qAsConst(connection.later))
      rest += piece.size();
    Require(rest == second.CountRest(), "both have taken the same bytes");
  }
}

QList<QByteArray> UsableBodies(QIODevice* device, const std::function<bool(Packet*)>& next)
{
  QList<QByteArray> bodies;
  for (Packet packet; device->bytesAvailable() > 0 && next(&packet); packet = Packet())
    if (IsUsable(packet))
      bodies.append(packet.body);
  return bodies;
}

// Piece by piece, without ever waiting, the intake finds what the reader finds in the whole. Only a last
// packet that has not come whole does it keep.
void TakeInPieces(const Pieces& pieces)
{
  Connection whole({pieces.join()});
  whole.Arrive();
  const QList<QByteArray> expected = UsableBodies(&whole,
                                                  [&](Packet* packet)
                                                  {
                                                    *packet = ReadPacket(&whole);
                                                    return true;
                                                  });

  Connection connection(pieces);
  Intake intake;
  QList<QByteArray> taken;
  while (!connection.later.isEmpty())
  {
    connection.Arrive();
    taken += UsableBodies(&connection,
                          [&](Packet* packet)
                          {
                            const qint64 before = connection.bytesAvailable();
                            const bool isTaken = intake.Take(&connection, packet);
                            const qint64 after = connection.bytesAvailable();
                            Require(isTaken ? after < before : after <= before, "the intake goes forward");
                            return isTaken;
                          });
  }
  Require(connection.waits == 0, "the intake does not wait");
  Require(taken == expected || taken == expected.mid(0, expected.size() - 1),
          "the intake finds what the reader finds");
}

} // namespace
} // namespace Tavrik::Bazaar::Details

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  Tavrik::Bazaar::Details::Pieces pieces;
  for (const Script::Step& step : Script::Read(data, size))
    pieces.append(step.kind == 0 ? step.bytes : QByteArray());
  Tavrik::Bazaar::Details::ReadWithBoth(pieces);
  Tavrik::Bazaar::Details::TakeInPieces(pieces);
  return 0;
}
