// The packet reader that never blocks, against the clock and against the one that blocks.

#include <Common/Bazaar/PacketReader.h>

#include "Support/LogCapture.h"
#include "Support/Spin.h"
#include "Support/Wire.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>

#include <algorithm>
#include <memory>
#include <random>
#include <sys/socket.h>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace Tavrik::Bazaar::Details
{
namespace
{

const QByteArray good = Wire::Message("demo", 1, "agent", "hi"); // header of 25 bytes, body of 23
const QByteArray garbage(30, 'g');

struct Arrival
{
  int time; // ms
  QByteArray bytes;
};

// A connection whose bytes come at given times of a clock that only waits and the test move.
class Line : public QIODevice
{
public:
  Line() { open(ReadOnly); }

  bool isSequential() const override { return true; }
  qint64 bytesAvailable() const override { return here.size() + QIODevice::bytesAvailable(); }

  bool waitForReadyRead(int timeout) override
  {
    const int end = now + timeout;
    while (now < end)
    {
      const int before = here.size();
      MoveTo(now + 1);
      if (here.size() > before)
        return true;
    }
    return false;
  }

  void MoveTo(int time)
  {
    now = time;
    for (; !arrivals.empty() && arrivals.front().time <= now; arrivals.erase(arrivals.begin()))
      here += arrivals.front().bytes;
  }

  int now = 0;
  std::vector<Arrival> arrivals;

protected:
  qint64 readData(char* data, qint64 size) override
  {
    const int taken = static_cast<int>(std::min<qint64>(size, here.size()));
    std::copy_n(here.constData(), taken, data);
    here.remove(0, taken);
    return taken;
  }
  qint64 writeData(const char*, qint64) override { return -1; }

private:
  QByteArray here;
};

struct Timed : testing::Test
{
  void Come(int time, const QByteArray& bytes) { line.arrivals.push_back({time, bytes}); }

  bool TakeAt(int time)
  {
    line.MoveTo(time);
    return reader.Take(&line, &packet, PacketReader::Clock::time_point() + boost::chrono::milliseconds(time));
  }

  // The time of the look, one each millisecond, that ends a packet; -1 when none does within `span` ms.
  int EndOfPacket(int span = 100000)
  {
    for (const int limit = line.now + span; line.now < limit;)
      if (TakeAt(line.now + 1))
        return line.now;
    return -1;
  }

  // A packet that comes at `time` is read in whole.
  void ExpectGoodPacketAt(int time)
  {
    log.Clear();
    Come(time, good);
    EXPECT_EQ(EndOfPacket(), time);
    EXPECT_TRUE(IsUsable(packet));
    EXPECT_THAT(log.Lines(), IsEmpty());
  }

  Line line;
  PacketReader reader;
  Packet packet;
  LogCapture log;
};

// ---- The hunt -------------------------------------------------------------------------------------------

TEST_F(Timed, FindsAPacketThatComesAfterGarbageInSilence)
{
  for (const int pause : {1, 100, 999, 1000})
  {
    Come(line.now + 10, QByteArray(200, 'g'));
    Come(line.now + 10 + pause, good);
    EXPECT_GT(EndOfPacket(), 0) << pause;
    EXPECT_EQ(packet.body.size(), 23) << pause;
  }
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(Timed, FindsASignatureThatGarbageEndsWithAndThatContinuesInTime)
{
  Come(10, QByteArray(100, 'g') + good.left(10));
  Come(900, good.mid(10, 2));
  Come(1800, good.mid(12));
  EXPECT_EQ(EndOfPacket(), 1800);
  EXPECT_EQ(packet.body.size(), 23);
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(Timed, ReportsGarbageAfterASilentSecondAndTheWaitForASize)
{
  Come(10, QByteArray(200, 'g'));
  Come(500, "more");
  EXPECT_EQ(EndOfPacket(), 500 + 1000 + 500);
  EXPECT_FALSE(IsUsable(packet));
  EXPECT_THAT(log.Errors(),
              ElementsAre("Could't read 4 bytes. Have read only 0 (TIMEOUT)", "Can't read a header size: 0"));
  ExpectGoodPacketAt(line.now + 1);
}

TEST_F(Timed, TakesWhatComesAfterASilentHuntForTheSizeOfAHeader)
{
  // The first bytes of this packet are read as the size and the checksum of a header.
  Come(10, QByteArray(200, 'g'));
  Come(1200, good);
  const int claimed = 'T' << 8 | '<' | 'A' << 16 | 'V' << 24;
  EXPECT_EQ(EndOfPacket(), 1200 + 30000);
  EXPECT_EQ(packet.headerSize, claimed);
  EXPECT_EQ(packet.headerChecksum, 'R' | 'I' << 8);
  ASSERT_EQ(log.Errors().size(), 2u);
  EXPECT_EQ(log.Errors().front(), "Could't read " + std::to_string(claimed) + " bytes. Have read only " +
                                      std::to_string(good.size() - 6) + " (TIMEOUT)");
  EXPECT_THAT(log.Errors().back(), StartsWith("Invalid header checksum"));
  ExpectGoodPacketAt(40000);
}

TEST_F(Timed, BeginsOnlyWhen48BytesWait)
{
  Come(10, QByteArray(47, 'g'));
  EXPECT_EQ(EndOfPacket(60000), -1);
  EXPECT_EQ(line.bytesAvailable(), 47);
  ExpectGoodPacketAt(60010);
}

// ---- Packets that are cut off ---------------------------------------------------------------------------

TEST_F(Timed, ReportsAPacketThatIsCutOffInTheSizeOfItsHeader)
{
  for (const int cut : {23, 24, 26})
  {
    log.Clear();
    const int begin = line.now + 10;
    Come(begin, garbage + good.left(cut));
    EXPECT_EQ(EndOfPacket(), begin + 500) << cut;
    EXPECT_THAT(log.Errors(),
                ElementsAre("Could't read 4 bytes. Have read only " + std::to_string(cut - 23) + " (TIMEOUT)",
                            "Can't read a header size: 0"));
    ExpectGoodPacketAt(line.now + 1);
  }
}

TEST_F(Timed, ReportsAPacketThatIsCutOffAfterTheSizeOfItsHeader)
{
  Come(10, garbage + good.left(27));
  line.MoveTo(10);
  TakeAt(10);
  EXPECT_EQ(line.bytesAvailable(), 0);
  EXPECT_FALSE(TakeAt(510));
  EXPECT_THAT(log.Errors(), ElementsAre("Could't read 2 bytes. Have read only 0 (TIMEOUT)",
                                        "Can't read a header checksum: 0"));
  // No bytes fit the checksum 0 that is assumed.
  EXPECT_EQ(EndOfPacket(), 10 + 500 + 30000);
  EXPECT_EQ(log.Errors().at(2), "Could't read 25 bytes. Have read only 0 (TIMEOUT)");
  EXPECT_EQ(log.Errors().at(3), "Can't parse a context name");
  EXPECT_EQ(log.Errors().size(), 4u);
  ExpectGoodPacketAt(line.now + 1);
}

TEST_F(Timed, ReportsAPacketThatIsCutOffInItsHeaderOrItsBody)
{
  for (const int cut : {29, 40, 53, 54, 60, 76})
  {
    log.Clear();
    const int begin = line.now + 10;
    Come(begin, garbage + good.left(cut));
    EXPECT_EQ(EndOfPacket(), begin + 30000) << cut;
    EXPECT_FALSE(IsUsable(packet));
    const int size = cut < 54 ? 25 : 23;
    EXPECT_EQ(log.Errors().front(), "Could't read " + std::to_string(size) + " bytes. Have read only " +
                                        std::to_string(cut - (cut < 54 ? 29 : 54)) + " (TIMEOUT)");
    EXPECT_THAT(log.Errors().back(),
                StartsWith(cut < 54 ? "Invalid header checksum" : "Invalid body checksum"));
    EXPECT_EQ(log.Lines().front().file, "IOUtils.cpp");
    ExpectGoodPacketAt(line.now + 1);
  }
}

TEST_F(Timed, GivesEachWaitItsFullTime)
{
  // Every byte comes just before the time for it is over.
  const QByteArray bytes = garbage + good;
  int time = 0;
  Come(time, bytes.left(48));
  for (int i = 48; i < bytes.size(); ++i)
  {
    const int position = i - garbage.size();
    time += position < 23 ? 1000 : position < 29 ? 500 : 30000;
    Come(time, bytes.mid(i, 1));
  }
  EXPECT_EQ(EndOfPacket(time), time);
  EXPECT_EQ(packet.body.size(), 23);
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(Timed, CountsAsInTimeWhatIsThereAtALookThatComesTooLate)
{
  Come(0, garbage + good.left(24));
  EXPECT_FALSE(TakeAt(0));
  Come(100, good.mid(24, 10));
  EXPECT_FALSE(TakeAt(20000));
  EXPECT_THAT(log.Lines(), IsEmpty());
  Come(60000, good.mid(34));
  EXPECT_TRUE(TakeAt(60000));
  EXPECT_EQ(packet.body.size(), 23);
}

TEST_F(Timed, EndsAllWaitsThatAreOverAtOneLook)
{
  Come(0, garbage + good.left(27));
  EXPECT_FALSE(TakeAt(0));
  EXPECT_TRUE(TakeAt(30500));
  EXPECT_EQ(log.Errors().size(), 4u);
}

TEST_F(Timed, DoesNotReadAPacketThatIsTooLarge)
{
  reader = PacketReader(good.size() - 1);
  Come(0, good);
  EXPECT_FALSE(TakeAt(0));
  EXPECT_TRUE(reader.IsTooLarge());
  EXPECT_FALSE(TakeAt(100000));
  EXPECT_THAT(log.Lines(), IsEmpty());

  reader = PacketReader(good.size());
  Come(100001, QByteArray(60, 'g') + good);
  EXPECT_TRUE(TakeAt(100001));
  EXPECT_FALSE(reader.IsTooLarge());
  EXPECT_EQ(reader.LastSize(), 60 + good.size() + 23); // and the body that was left
}

// ---- Beside the reader that blocks ----------------------------------------------------------------------

struct Outcome
{
  QList<QByteArray> packets; // what is known of each
  std::vector<std::string> lines;
  qint64 rest = 0;
};

QByteArray Describe(const Packet& packet)
{
  return QByteArray::number(packet.headerSize) + ' ' + QByteArray::number(packet.headerChecksum) + ' ' +
         packet.contextName + ' ' + packet.command + ' ' + QByteArray::number(packet.bodySize) + ' ' +
         packet.body;
}

const int lastLook = 400000; // ms

Outcome ReadBlocking(const std::vector<Arrival>& arrivals)
{
  const LogCapture log;
  Outcome outcome;
  Line line;
  line.arrivals = arrivals;
  while (line.now < lastLook)
  {
    line.MoveTo(line.now + 1);
    while (line.bytesAvailable() >= smallestPacket)
      outcome.packets.append(Describe(ReadPacket(&line)));
  }
  outcome.lines = log.Errors();
  outcome.rest = line.bytesAvailable();
  return outcome;
}

Outcome ReadLooking(const std::vector<Arrival>& arrivals)
{
  const LogCapture log;
  Outcome outcome;
  Line line;
  line.arrivals = arrivals;
  PacketReader reader;
  Packet packet;
  while (line.now < lastLook)
  {
    line.MoveTo(line.now + 1);
    while (reader.Take(&line, &packet,
                       PacketReader::Clock::time_point() + boost::chrono::milliseconds(line.now)))
      outcome.packets.append(Describe(packet));
  }
  outcome.lines = log.Errors();
  outcome.rest = line.bytesAvailable();
  return outcome;
}

std::vector<Arrival> RandomArrivals(std::mt19937* random)
{
  const auto below = [&](int limit) { return static_cast<int>((*random)() % static_cast<unsigned>(limit)); };
  const int pauses[] = {0, 1, 100, 499, 500, 501, 999, 1000, 1001, 1400, 1499, 1500, 29999, 30000, 30001};
  std::vector<Arrival> arrivals;
  int time = 0;
  const auto come = [&](const QByteArray& bytes)
  {
    time += pauses[below(15)];
    arrivals.push_back({time, bytes});
  };
  for (int packets = 1 + below(4); packets > 0; --packets)
  {
    QByteArray bytes = good;
    if (below(3) == 0)
      bytes.prepend(QByteArray(below(80), below(2) == 0 ? 'g' : '<'));
    if (below(4) == 0)
      bytes[below(bytes.size())] = 'x';
    if (below(3) == 0)
      bytes.truncate(below(bytes.size()));
    for (int cuts = below(4); cuts > 0 && !bytes.isEmpty(); --cuts)
    {
      const int cut = below(bytes.size());
      come(bytes.left(cut));
      bytes.remove(0, cut);
    }
    come(bytes);
  }
  return arrivals;
}

TEST(PacketReader, ReadsAndLogsWhatTheBlockingReaderWouldHaveReadAndLogged)
{
  std::mt19937 random(1989);
  for (int round = 0; round < 150; ++round)
  {
    const std::vector<Arrival> arrivals = RandomArrivals(&random);
    const Outcome expected = ReadBlocking(arrivals);
    const Outcome outcome = ReadLooking(arrivals);
    ASSERT_EQ(outcome.packets, expected.packets) << round;
    ASSERT_EQ(outcome.lines, expected.lines) << round;
    ASSERT_EQ(outcome.rest, expected.rest) << round;
  }
}

// ---- Sockets --------------------------------------------------------------------------------------------

struct Socket : testing::Test
{
  Socket()
  {
    EXPECT_TRUE(server.listen(folder.filePath(QStringLiteral("s"))));
    peer.connectToServer(server.fullServerName());
    EXPECT_TRUE(peer.waitForConnected());
    EXPECT_TRUE(SpinUntil([&] { return server.hasPendingConnections(); }));
    end.reset(server.nextPendingConnection());
  }

  // Past Qt, so that no event loop has to run.
  void Send(const QByteArray& bytes)
  {
    EXPECT_EQ(send(static_cast<int>(peer.socketDescriptor()), bytes.constData(),
                   static_cast<std::size_t>(bytes.size()), 0),
              bytes.size());
  }

  void Fetch(int size)
  {
    EXPECT_TRUE(SpinUntil([&] { return end->bytesAvailable() == size; }));
  }

  QTemporaryDir folder;
  QLocalServer server;
  QLocalSocket peer;
  std::unique_ptr<QLocalSocket> end;
  PacketReader reader;
  Packet packet;
  LogCapture log;
  const PacketReader::Clock::time_point start = PacketReader::Clock::now();
};

TEST_F(Socket, WhoseBytesTheEventLoopHasNotFetchedIsNotSilent)
{
  const QByteArray begun = garbage + good.left(25);
  Send(begun);
  Fetch(begun.size());
  EXPECT_FALSE(reader.Take(end.get(), &packet, start));
  Send(good.mid(25));
  EXPECT_EQ(end->bytesAvailable(), 0);
  EXPECT_FALSE(reader.Take(end.get(), &packet, start + boost::chrono::seconds(100)));
  Fetch(good.size() - 25);
  EXPECT_TRUE(reader.Take(end.get(), &packet, start + boost::chrono::seconds(200)));
  EXPECT_EQ(packet.body.size(), 23);
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(Socket, ThatIsClosedEndsEveryWaitAtOnce)
{
  const QByteArray begun = garbage + good.left(60);
  Send(begun);
  Fetch(begun.size());
  EXPECT_FALSE(reader.Take(end.get(), &packet, start));
  peer.abort();
  EXPECT_TRUE(SpinUntil([&] { return end->state() == QLocalSocket::UnconnectedState; }));
  EXPECT_TRUE(reader.Take(end.get(), &packet, start));
  EXPECT_EQ(log.Errors().front(), "Could't read 23 bytes. Have read only 6 (TIMEOUT)");
}

} // namespace
} // namespace Tavrik::Bazaar::Details
