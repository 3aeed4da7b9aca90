#include <Common/IOUtils.h>

#include "Support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QBuffer>
#include <QElapsedTimer>
#include <QIODevice>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <deque>
#include <sys/socket.h>
#include <thread>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

// A device that hands out prepared pieces: each read takes one, and an empty one is a read that brings
// nothing.
class PieceDevice : public QIODevice
{
public:
  explicit PieceDevice(std::deque<QByteArray> pieces) : pieces(std::move(pieces))
  {
    open(ReadOnly | Unbuffered);
  }

  bool isSequential() const override { return true; }
  qint64 bytesAvailable() const override { return claimed >= 0 ? claimed : current.size(); }

  bool waitForReadyRead(int timeout) override
  {
    waits.push_back(timeout);
    if (pieces.empty())
      return false;
    Next();
    return true;
  }

  void Next()
  {
    current = pieces.front();
    pieces.pop_front();
  }

  QByteArray current;
  qint64 claimed = -1;
  std::deque<QByteArray> pieces;
  std::vector<int> waits;
  std::vector<qint64> reads;

protected:
  qint64 readData(char* data, qint64 size) override
  {
    reads.push_back(size);
    if (current.isEmpty() && polled && !pieces.empty())
      Next();
    const int taken = static_cast<int>(qMin<qint64>(size, current.size()));
    std::copy_n(current.constData(), taken, data);
    current.remove(0, taken);
    return taken;
  }
  qint64 writeData(const char*, qint64) override { return -1; }

public:
  bool polled = false;
};

TEST(PackNumber, IsLittleEndianAndAsLongAsItsType)
{
  EXPECT_EQ(Tavrik::PackNumber<int>(0x01020304), QByteArray("\x04\x03\x02\x01", 4));
  EXPECT_EQ(Tavrik::PackNumber<int>(-2), QByteArray("\xfe\xff\xff\xff", 4));
  EXPECT_EQ(Tavrik::PackNumber<long long>(1), QByteArray("\x01\0\0\0\0\0\0\0", 8));
  EXPECT_EQ(Tavrik::PackNumber<unsigned short>(0x9c93), QByteArray("\x93\x9c", 2));
}

TEST(CalcCRC, GivesTheCheckValueOfIso3309)
{
  EXPECT_EQ(Tavrik::CalcCRC("123456789"), QByteArray("\x6e\x90", 2));
  EXPECT_EQ(Tavrik::CalcCRC(QByteArray()), Tavrik::PackNumber<unsigned short>(0));
}

TEST(ReadDataWithTimeout, ReturnsWhatIsThereWithoutWaiting)
{
  PieceDevice device({});
  device.current = "abcdef";
  const LogCapture log;
  EXPECT_EQ(Tavrik::ReadDataWithTimeout(&device, 4, 500), "abcd");
  EXPECT_THAT(device.waits, IsEmpty());
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(ReadDataWithTimeout, OnASilentDeviceWaitsOnceAndLogsTheShortfall)
{
  PieceDevice device({});
  const LogCapture log;
  EXPECT_EQ(Tavrik::ReadDataWithTimeout(&device, 4, 250), QByteArray());
  EXPECT_THAT(device.waits, ElementsAre(250));
  EXPECT_THAT(log.Errors(), ElementsAre("Could't read 4 bytes. Have read only 0 (TIMEOUT)"));
  EXPECT_EQ(log.Lines().front().file, "IOUtils.cpp");
}

TEST(ReadDataWithTimeout, GivesEachWaitTheFullTimeout)
{
  PieceDevice device({"a", "b", "c"});
  EXPECT_EQ(Tavrik::ReadDataWithTimeout(&device, 3, 70), "abc");
  EXPECT_THAT(device.waits, ElementsAre(70, 70, 70));
}

TEST(ReadDataWithTimeout, ReturnsThePartThatCame)
{
  PieceDevice device({"ab"});
  const LogCapture log;
  EXPECT_EQ(Tavrik::ReadDataWithTimeout(&device, 5, 10), "ab");
  EXPECT_THAT(log.Errors(), ElementsAre("Could't read 5 bytes. Have read only 2 (TIMEOUT)"));
}

TEST(ReadDataWithTimeout, LeavesWhatComesBehindTheLastByteToTheNextRead)
{
  PieceDevice device({"ab", "cdefgh"});
  EXPECT_EQ(Tavrik::ReadDataWithTimeout(&device, 3, 10), "abc");
  EXPECT_EQ(device.current, "defgh");
}

TEST(ReadDataWithTimeout, OfZeroBytesWaitsOnceWhenNothingIsPendingAndLogsNothing)
{
  PieceDevice device({});
  const LogCapture log;
  EXPECT_EQ(Tavrik::ReadDataWithTimeout(&device, 0, 30), QByteArray());
  EXPECT_THAT(device.waits, ElementsAre(30));
  device.current = "x";
  EXPECT_EQ(Tavrik::ReadDataWithTimeout(&device, 0, 30), QByteArray());
  EXPECT_EQ(device.waits.size(), 1u);
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(ReadDataWithTimeout, NeverAsksForMoreMemoryThanIsThereToFillIt)
{
  PieceDevice device({"tiny"});
  EXPECT_EQ(Tavrik::ReadDataWithTimeout(&device, 0x7fffffff, 10), "tiny");
  for (const qint64 size : device.reads)
    EXPECT_LE(size, 64 * 1024);
}

TEST(ReadDataWithTimeout, LeavesADeviceThatClaimsBytesItDoesNotHave)
{
  PieceDevice device({});
  device.claimed = 100;
  EXPECT_EQ(Tavrik::ReadDataWithTimeout(&device, 5, 10), QByteArray());
  EXPECT_THAT(device.waits, ElementsAre(10));
}

TEST(ReadDataWithTimeout, LogsANegativeSizeAsAShortfall)
{
  QBuffer device;
  device.setData("abc");
  device.open(QIODevice::ReadOnly);
  const LogCapture log;
  EXPECT_EQ(Tavrik::ReadDataWithTimeout(&device, -1, 10), QByteArray());
  EXPECT_THAT(log.Errors(), ElementsAre("Could't read -1 bytes. Have read only 0 (TIMEOUT)"));
  EXPECT_EQ(device.pos(), 0);
}

TEST(ReadData, ReturnsWhatIsThereWithoutSleeping)
{
  PieceDevice device({});
  device.current = "abcd";
  const unsigned int aDay = 86400u * 1000u * 1000u % 0xffffffffu;
  EXPECT_EQ(Tavrik::ReadData(&device, 4, aDay, 1), "abcd");
}

TEST(ReadData, WithoutAttemptsReadsNothingAndLogsTheShortfall)
{
  PieceDevice device({});
  device.current = "abcd";
  const LogCapture log;
  EXPECT_EQ(Tavrik::ReadData(&device, 4, 0, 0), QByteArray());
  EXPECT_THAT(device.reads, IsEmpty());
  EXPECT_THAT(log.Errors(), ElementsAre("Could't read 4 bytes. Have read only 0"));
}

TEST(ReadData, OnASilentDeviceGivesUpAfterThreeReadsAndThreeSleeps)
{
  PieceDevice device({});
  const LogCapture log;
  QElapsedTimer timer;
  timer.start();
  EXPECT_EQ(Tavrik::ReadData(&device, 4, 20000, 3), QByteArray());
  EXPECT_EQ(device.reads.size(), 3u);
  EXPECT_GE(timer.elapsed(), 60);
  EXPECT_THAT(log.Errors(), ElementsAre("Could't read 4 bytes. Have read only 0"));
}

TEST(ReadData, CountsOnlyEmptyReadsInARow)
{
  PieceDevice device({"a", "", "b", "", "c"});
  device.polled = true;
  const LogCapture log;
  EXPECT_EQ(Tavrik::ReadData(&device, 3, 1, 2), "abc");
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(ReadData, LeavesWhatComesBehindTheLastByteToTheNextRead)
{
  PieceDevice device({"ab", "cdefgh"});
  device.polled = true;
  EXPECT_EQ(Tavrik::ReadData(&device, 3, 1, 2), "abc");
  EXPECT_EQ(device.current, "defgh");
}

TEST(ReadData, SeesWhatComesToASocketWhileItSleeps)
{
  QTemporaryDir folder;
  QLocalServer server;
  ASSERT_TRUE(server.listen(folder.filePath(QStringLiteral("s"))));
  QLocalSocket socket;
  socket.connectToServer(server.fullServerName());
  ASSERT_TRUE(socket.waitForConnected());
  ASSERT_TRUE(server.waitForNewConnection(10000));
  const int end = static_cast<int>(server.nextPendingConnection()->socketDescriptor());
  std::thread sender(
      [end]
      {
        for (const char byte : {'a', 'b', 'c', 'd'})
        {
          std::this_thread::sleep_for(std::chrono::milliseconds(50));
          send(end, &byte, 1, 0);
        }
      });
  const LogCapture log;
  EXPECT_EQ(Tavrik::ReadData(&socket, 4, 10000, 2000), "abcd");
  EXPECT_THAT(log.Lines(), IsEmpty());
  sender.join();
}

TEST(ReadData, OfZeroBytesIsEmptyAndLogsNothing)
{
  PieceDevice device({});
  const LogCapture log;
  EXPECT_EQ(Tavrik::ReadData(&device, 0, 1, 1), QByteArray());
  EXPECT_EQ(Tavrik::ReadData(&device, 0, 1, 0), QByteArray());
  EXPECT_THAT(log.Lines(), IsEmpty());
}

} // namespace
