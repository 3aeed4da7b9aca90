// What the bus hides: packets, their reader, and the participant's own state.

#include <Common/Bazaar.cpp>

#include "Support/LogCapture.h"
#include "Support/Recorder.h"
#include "Support/Spin.h"
#include "Support/Wire.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QLocalServer>

#include <boost/thread/thread.hpp>

#include <random>

using testing::ElementsAre;
using testing::IsEmpty;

namespace Tavrik::Bazaar
{
namespace
{

// A sequential device that holds what it is given; more can be given while somebody waits.
class Stream : public QIODevice
{
public:
  explicit Stream(const QByteArray& bytes = {}) : bytes(bytes) { open(ReadOnly); }

  bool isSequential() const override { return true; }
  qint64 bytesAvailable() const override { return bytes.size() + QIODevice::bytesAvailable(); }
  bool waitForReadyRead(int timeout) override
  {
    waits.append(timeout);
    if (later.isEmpty())
      return false;
    bytes += later.takeFirst();
    return true;
  }

  QByteArray bytes;
  QList<QByteArray> later;
  QList<int> waits;

protected:
  qint64 readData(char* data, qint64 size) override
  {
    const int taken = static_cast<int>(qMin<qint64>(size, bytes.size()));
    std::copy_n(bytes.constData(), taken, data);
    bytes.remove(0, taken);
    return taken;
  }
  qint64 writeData(const char*, qint64) override { return -1; }
};

Packet ReadFrom(const QByteArray& bytes)
{
  Stream stream(bytes);
  return ReadPacket(&stream);
}

const QByteArray agentPacket = QByteArray::fromHex("3c54415652494b3a42415a4141523a4950433a312e303e"
                                                   "19000000"
                                                   "4d7e"
                                                   "04000000"
                                                   "64656d6f"
                                                   "07000000"
                                                   "4d455353414745"
                                                   "17000000"
                                                   "939c"
                                                   "0100000000000000"
                                                   "05000000"
                                                   "6167656e74"
                                                   "02000000"
                                                   "6869");

// ---- Writing

TEST(CreatePacket, ReproducesTheWorkedExampleByteForByte)
{
  const QByteArray body = CreateBodyMessage(1, "agent", "hi");
  EXPECT_EQ(body.size(), 23);
  EXPECT_EQ(CalcCRC(body), QByteArray::fromHex("939c"));
  const QByteArray packet = CreatePacket("demo", commandMessage, body);
  EXPECT_EQ(packet.size(), 77);
  EXPECT_EQ(packet.toHex(), agentPacket.toHex());
}

TEST(CreatePacket, AgreesWithASecondEncoder)
{
  for (const QByteArray& context : {QByteArray(), QByteArray("demo"), QByteArray(300, 'c')})
    for (const QByteArray& data : {QByteArray(), QByteArray("\0\xff", 2), QByteArray(70000, 'd')})
    {
      EXPECT_EQ(CreatePacket(context, commandMessage, CreateBodyMessage(-7, "x", data)),
                Wire::Message(context, -7, "x", data));
      EXPECT_EQ(CreateMessagePacket(context, 5, "x", data), Wire::Message(context, 5, "x", data));
    }
  EXPECT_EQ(CreatePacket("c", commandStatus, CreateBodyStatus({"a", "", "bc"})),
            Wire::Status("c", {"a", "", "bc"}));
}

TEST(CreatePacket, ThenReadingGivesAnyContextCommandAndBodyBack)
{
  std::mt19937 random(4711);
  const auto bytes = [&](int size)
  {
    QByteArray result;
    for (int i = 0; i < size; ++i)
      result += static_cast<char>(random());
    return result;
  };
  for (int round = 0; round < 300; ++round)
  {
    const QByteArray context = bytes(static_cast<int>(random() % 40));
    const QByteArray command = bytes(static_cast<int>(random() % 20));
    const QByteArray body = bytes(static_cast<int>(random() % 200));
    const Packet packet = ReadFrom(CreatePacket(context, command, body));
    EXPECT_EQ(packet.contextName, context);
    EXPECT_EQ(packet.command, command);
    EXPECT_EQ(packet.bodySize, body.size());
    EXPECT_EQ(packet.body, command.isEmpty() || body.size() < 4 ? QByteArray() : body);
  }
}

TEST(CreateMessagePacket, GivesNothingForWhatNoArrayHolds)
{
  // No memory is touched: the sizes alone decide.
  const QByteArray huge = QByteArray::fromRawData("x", 0x7fffffff - 100);
  EXPECT_TRUE(CreateMessagePacket("demo", 1, "agent", huge).isEmpty());
  EXPECT_TRUE(CreateMessagePacket("demo", 1, huge, huge).isEmpty());
}

// ---- Reading

TEST(ReadPacket, GivesEveryFieldOfTheWorkedExample)
{
  const LogCapture log;
  const Packet packet = ReadFrom(agentPacket);
  EXPECT_EQ(packet.headerSize, 25);
  EXPECT_EQ(packet.headerChecksum, 0x7e4d);
  EXPECT_EQ(packet.contextName, "demo");
  EXPECT_EQ(packet.command, "MESSAGE");
  EXPECT_EQ(packet.bodySize, 23);
  EXPECT_EQ(packet.bodyChecksum, 0x9c93);
  EXPECT_EQ(packet.body.size(), 23);
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(ReadPacket, FindsTheSignatureBehindGarbage)
{
  for (const QByteArray& garbage : {QByteArray("garbage"), QByteArray("<"), QByteArray("<<<"),
                                    QByteArray("<TAVRIK:BAZAAR:IPC:1.0"), QByteArray("<TAV\0\xff", 6)})
  {
    const LogCapture log;
    EXPECT_EQ(ReadFrom(garbage + agentPacket).command, "MESSAGE") << garbage.constData();
    EXPECT_THAT(log.Lines(), IsEmpty());
  }
}

TEST(ReadPacket, RestartsAtASecondOpeningBracket)
{
  EXPECT_EQ(ReadFrom("<" + agentPacket).command, "MESSAGE");
  EXPECT_EQ(ReadFrom("<TAVRIK:BAZAAR:IPC:1.<" + agentPacket.mid(1)).command, "MESSAGE");
}

TEST(ReadPacket, OfNothingWaitsASecondAndReportsTheHeaderSize)
{
  Stream stream;
  const LogCapture log;
  const Packet packet = ReadPacket(&stream);
  EXPECT_EQ(packet.headerSize, 0);
  EXPECT_EQ(stream.waits, (QList<int>{1000, 500}));
  EXPECT_THAT(log.Errors(),
              ElementsAre("Could't read 4 bytes. Have read only 0 (TIMEOUT)", "Can't read a header size: 0"));
  EXPECT_EQ(log.Lines().back().file, "PacketReader.cpp");
}

TEST(ReadPacket, WaitsForEachPartAsLongAsItMay)
{
  Stream stream;
  stream.later = {agentPacket.left(5),    agentPacket.mid(5, 18),  agentPacket.mid(23, 4),
                  agentPacket.mid(27, 2), agentPacket.mid(29, 25), agentPacket.mid(54)};
  EXPECT_EQ(ReadPacket(&stream).body.size(), 23);
  EXPECT_EQ(stream.waits, (QList<int>{1000, 1000, 500, 500, 30000, 30000}));
}

TEST(ReadPacket, WithoutAHeaderChecksumLogsItAndThenTheExpectedValueZero)
{
  // The two bytes do not come in time; the header does.
  class Late : public Stream
  {
  public:
    using Stream::Stream;
    bool waitForReadyRead(int timeout) override
    {
      if (timeout == transferTimeout)
        bytes += agentPacket.mid(29, 25);
      return timeout == transferTimeout;
    }
  } late(agentPacket.left(27));
  const LogCapture log;
  const Packet packet = ReadPacket(&late);
  EXPECT_EQ(packet.headerSize, 25);
  EXPECT_EQ(packet.headerChecksum, 0);
  EXPECT_TRUE(packet.command.isEmpty());
  EXPECT_THAT(log.Errors(),
              ElementsAre("Could't read 2 bytes. Have read only 0 (TIMEOUT)",
                          "Can't read a header checksum: 0", "Invalid header checksum 32333 (expected: 0)"));
}

TEST(ReadPacket, DropsAHeaderOfThirteenBytesOrANegativeLengthSilently)
{
  for (const int size : {13, 0, -1, std::numeric_limits<int>::min()})
  {
    const LogCapture log;
    Stream stream(Wire::Signature() + Wire::Int(size) + "ab" + QByteArray(13, 'x'));
    const Packet packet = ReadPacket(&stream);
    EXPECT_EQ(packet.headerSize, size);
    EXPECT_EQ(packet.headerChecksum, 'a' | 'b' << 8);
    EXPECT_TRUE(packet.command.isEmpty());
    EXPECT_EQ(stream.bytes.size() + stream.QIODevice::bytesAvailable(), 13);
    EXPECT_THAT(log.Lines(), IsEmpty());
  }
}

TEST(ReadPacket, ReturnsAnyCommandWord)
{
  EXPECT_EQ(ReadFrom(Wire::Packet("c", "WHATEVER", "1234")).command, "WHATEVER");
}

TEST(ReadPacket, NeverReadsABodyOfFewerThanFourBytes)
{
  Stream stream(Wire::Packet("c", "MESSAGE", "abc") + agentPacket);
  const LogCapture log;
  const Packet packet = ReadPacket(&stream);
  EXPECT_EQ(packet.bodySize, 3);
  EXPECT_TRUE(packet.body.isEmpty());
  EXPECT_FALSE(IsUsable(packet));
  EXPECT_EQ(ReadPacket(&stream).contextName, "demo");
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(ReadPacket, ReportsAWrongHeaderChecksumInDecimal)
{
  QByteArray packet = agentPacket;
  packet[27] = 0;
  packet[28] = 1;
  const LogCapture log;
  const Packet read = ReadFrom(packet);
  EXPECT_EQ(read.headerSize, 25);
  EXPECT_EQ(read.headerChecksum, 256);
  EXPECT_TRUE(read.contextName.isEmpty());
  EXPECT_THAT(log.Errors(), ElementsAre("Invalid header checksum 32333 (expected: 256)"));
}

TEST(ReadPacket, ReportsAWrongBodyChecksumAndTakesTheBody)
{
  QByteArray packet = agentPacket;
  packet[76] = 'o';
  Stream stream(packet + agentPacket);
  const LogCapture log;
  const Packet read = ReadPacket(&stream);
  EXPECT_EQ(read.command, "MESSAGE");
  EXPECT_EQ(read.bodySize, 23);
  EXPECT_TRUE(read.body.isEmpty());
  EXPECT_EQ(log.Errors().size(), 1u);
  EXPECT_THAT(log.Errors().front(),
              testing::MatchesRegex("Invalid body checksum [0-9]+ \\(expected: 40083\\)"));
  EXPECT_EQ(ReadPacket(&stream).body.size(), 23);
}

TEST(ReadPacket, ReportsAnUnparsableContextName)
{
  for (const int length : {11, 100, -1, -4, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
  {
    const LogCapture log;
    const Packet packet = ReadFrom(Wire::WithPreamble(Wire::Int(length) + QByteArray(10, 'x')));
    EXPECT_EQ(packet.headerSize, 14);
    EXPECT_TRUE(packet.contextName.isEmpty());
    EXPECT_TRUE(packet.command.isEmpty());
    EXPECT_EQ(packet.bodySize, 0);
    EXPECT_THAT(log.Errors(), ElementsAre("Can't parse a context name")) << length;
  }
}

TEST(ReadPacket, ReportsAnUnparsableCommandAndKeepsTheContextName)
{
  for (const int length : {9, -1, std::numeric_limits<int>::max()})
  {
    const LogCapture log;
    const Packet packet =
        ReadFrom(Wire::WithPreamble(Wire::Counted("demo") + Wire::Int(length) + "12345678"));
    EXPECT_EQ(packet.contextName, "demo");
    EXPECT_TRUE(packet.command.isEmpty());
    EXPECT_EQ(packet.bodySize, 0);
    EXPECT_THAT(log.Errors(), ElementsAre("Can't parse a command")) << length;
  }
}

TEST(ReadPacket, ReadsTheMissingEndOfAHeaderAsZero)
{
  // The command takes all but five bytes: the last byte of the body's checksum is not there.
  const QByteArray body = "1234";
  const LogCapture log;
  const Packet packet = ReadFrom(Wire::WithPreamble(Wire::Counted("c") + Wire::Counted("MESSAGE") +
                                                    Wire::Int(4) + QByteArray("\x05", 1)) +
                                 body);
  EXPECT_EQ(packet.bodySize, 4);
  EXPECT_EQ(packet.bodyChecksum, 5);
  const Packet none = ReadFrom(Wire::WithPreamble(Wire::Counted("c") + Wire::Counted("MESSAGE")));
  EXPECT_EQ(none.command, "MESSAGE");
  EXPECT_EQ(none.bodySize, 0);
}

TEST(ReadPacket, SurvivesACutAtEveryByte)
{
  for (int cut = 0; cut < agentPacket.size(); ++cut)
  {
    const Packet packet = ReadFrom(agentPacket.left(cut));
    EXPECT_FALSE(IsUsable(packet)) << cut;
  }
}

TEST(ReadPacket, RejectsEveryChangedByte)
{
  for (int i = 0; i < agentPacket.size(); ++i)
    for (const int bit : {0, 3, 7})
    {
      QByteArray packet = agentPacket;
      packet[i] = static_cast<char>(packet.at(i) ^ 1 << bit);
      EXPECT_FALSE(IsUsable(ReadFrom(packet))) << i;
    }
}

TEST(ReadPacket, TakesNoMoreMemoryThanHasCome)
{
  const QByteArray body = Wire::Int(0x7fffffff) + "\x01\x02";
  const LogCapture log;
  const Packet packet =
      ReadFrom(Wire::WithPreamble(Wire::Counted("c") + Wire::Counted("MESSAGE") + body) + "only this");
  EXPECT_EQ(packet.bodySize, 0x7fffffff);
  EXPECT_EQ(log.Errors().front(), "Could't read 2147483647 bytes. Have read only 9 (TIMEOUT)");
}

// ---- Bodies

TEST(ParseBodyMessage, GivesTheFieldsBack)
{
  const BodyMessage message = ParseBodyMessage(CreateBodyMessage(-5, "first", QByteArray("\0s", 2)));
  EXPECT_EQ(message.id, -5);
  EXPECT_EQ(message.first, "first");
  EXPECT_EQ(message.second, QByteArray("\0s", 2));
}

TEST(ParseBodyMessage, WithABrokenSecondKeepsIdAndFirst)
{
  const LogCapture log;
  for (const int length : {3, -1, std::numeric_limits<int>::max()})
  {
    const BodyMessage message =
        ParseBodyMessage(Wire::Little(9, 8) + Wire::Counted("first") + Wire::Int(length) + "12");
    EXPECT_EQ(message.id, 9);
    EXPECT_EQ(message.first, "first");
    EXPECT_TRUE(message.second.isEmpty());
  }
  EXPECT_THAT(log.Errors(),
              ElementsAre("Can't parse a message", "Can't parse a message", "Can't parse a message"));
}

TEST(ParseBodyMessage, WithABrokenFirstKeepsTheId)
{
  for (const int length : {3, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
  {
    const LogCapture log;
    const BodyMessage message = ParseBodyMessage(Wire::Little(9, 8) + Wire::Int(length) + "12");
    EXPECT_EQ(message.id, 9);
    EXPECT_TRUE(message.first.isEmpty());
    EXPECT_THAT(log.Errors(), ElementsAre("Can't parse a client name"));
  }
}

TEST(ParseBodyMessage, ReadsTheMissingBytesOfAShortIdAsZero)
{
  EXPECT_EQ(ParseBodyMessage(QByteArray("\x01\x02\x03\x04", 4)).id, 0x04030201);
  EXPECT_EQ(ParseBodyMessage(QByteArray("\xff\xff\xff\xff\xff\xff\xff", 7)).id, 0x00ffffffffffffff);
}

TEST(ParseBodyStatus, GivesTheNamesInTheirOrder)
{
  EXPECT_EQ(ParseBodyStatus(CreateBodyStatus({"b", "", "a"})).members, (QVector<QByteArray>{"b", "", "a"}));
}

TEST(ParseBodyStatus, WhoseCountSaysThreeButHoldsTwoIsEmpty)
{
  const LogCapture log;
  EXPECT_TRUE(
      ParseBodyStatus(Wire::Int(3) + Wire::Counted("aaaa") + Wire::Counted("bbbb")).members.isEmpty());
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(ParseBodyStatus, OfAnyWrongLengthIsEmpty)
{
  for (const int count : {-1, 4, 0x40000000, 0x7fffffff, std::numeric_limits<int>::min()})
    EXPECT_TRUE(ParseBodyStatus(Wire::Int(count) + Wire::Counted("a")).members.isEmpty()) << count;
  for (const int length : {-1, 2, 0x7fffffff, std::numeric_limits<int>::min()})
    EXPECT_TRUE(ParseBodyStatus(Wire::Int(1) + Wire::Int(length) + "a").members.isEmpty()) << length;
  EXPECT_TRUE(ParseBodyStatus("abc").members.isEmpty());
  EXPECT_TRUE(ParseBodyStatus(Wire::Int(0)).members.isEmpty());
}

// ---- Packets that come in pieces

struct Feed
{
  bool Take() { return intake.Take(&stream, &packet); }

  Stream stream;
  Details::Intake intake;
  Packet packet;
};

TEST(Intake, TakesAPacketOnceItIsWholeWhereverItIsCut)
{
  const QByteArray body = Wire::MessageBody(1, "agent", QByteArray(60, 'p'));
  const QByteArray packet = Wire::Packet("demo", "MESSAGE", body);
  for (int cut = 0; cut < packet.size(); ++cut)
  {
    Feed feed;
    const LogCapture log;
    feed.stream.bytes = packet.left(cut);
    ASSERT_FALSE(feed.Take()) << cut;
    feed.stream.bytes += packet.mid(cut) + "<TAV";
    ASSERT_TRUE(feed.Take()) << cut;
    EXPECT_EQ(feed.packet.body, body);
    EXPECT_FALSE(feed.Take());
    EXPECT_THAT(feed.stream.waits, IsEmpty());
    EXPECT_THAT(log.Lines(), IsEmpty());
  }
}

TEST(Intake, ComingByteByByteIsTakenInTheEnd)
{
  Feed feed;
  for (int i = 0; i < agentPacket.size() - 1; ++i)
  {
    feed.stream.bytes += agentPacket.at(i);
    ASSERT_FALSE(feed.Take()) << i;
  }
  feed.stream.bytes += agentPacket.at(agentPacket.size() - 1);
  EXPECT_TRUE(feed.Take());
  EXPECT_EQ(feed.packet.body.size(), 23);
}

TEST(Intake, SkipsGarbageInFrontOfAPacketSilently)
{
  Feed feed;
  const LogCapture log;
  feed.stream.bytes = QByteArray(100, 'g') + agentPacket.left(40);
  EXPECT_FALSE(feed.Take());
  feed.stream.bytes += agentPacket.mid(40);
  EXPECT_TRUE(feed.Take());
  EXPECT_EQ(feed.packet.command, "MESSAGE");
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(Intake, LooksNoFurtherThroughGarbageThanToTheNextSignature)
{
  const QByteArray piece = QByteArray(200000, 'g') + Wire::Signature() + Wire::Int(30);
  const int pieces = 50;
  Stream stream(piece.repeated(pieces));
  Details::Intake intake;
  Packet packet;
  intake.Take(&stream, &packet);
  EXPECT_GT(stream.bytes.size(), piece.size() * (pieces - 2));
}

TEST(Intake, FindsASignatureAcrossThePiecesItLooksAt)
{
  const QByteArray packet = CreatePacket("demo", "MESSAGE", CreateBodyMessage(1, "a", "b"));
  for (int garbage = 65536 - 8; garbage <= 65536 + 8; ++garbage)
  {
    Stream stream(QByteArray(garbage, 'g') + packet);
    Details::Intake intake;
    Packet taken;
    ASSERT_TRUE(intake.Take(&stream, &taken)) << garbage;
    EXPECT_EQ(taken.command, "MESSAGE") << garbage;
    EXPECT_EQ(stream.bytesAvailable(), 0) << garbage;
  }
}

TEST(Intake, HandsABadPacketToTheReaderWithoutWaiting)
{
  QByteArray badHeader = agentPacket;
  badHeader[30] = 'x';
  Feed feed;
  feed.stream.bytes = badHeader + agentPacket;
  EXPECT_TRUE(feed.Take());
  EXPECT_TRUE(feed.packet.command.isEmpty());
  // What is left of the bad packet is skipped on the way to the next.
  EXPECT_TRUE(feed.Take());
  EXPECT_EQ(feed.packet.body.size(), 23);
  EXPECT_THAT(feed.stream.waits, IsEmpty());
}

TEST(Intake, WaitsForAClaimOfTwoGibibytes)
{
  Feed feed;
  feed.stream.bytes = Wire::Signature() + Wire::Int(0x7fffffff) + "ab" + QByteArray(1000, 'x');
  EXPECT_FALSE(feed.Take());
  EXPECT_FALSE(feed.Take());
  EXPECT_FALSE(feed.intake.IsTooLarge());
}

TEST(Intake, AfterThirtySilentSecondsTakesWhatCameWithTheReadersLines)
{
  // The clock is the system's own, so this case runs for as long as the bus is patient.
  Feed feed;
  feed.stream.bytes = agentPacket.left(60);
  ASSERT_FALSE(feed.Take());
  const LogCapture log;
  QElapsedTimer timer;
  timer.start();
  while (!feed.Take())
    boost::this_thread::sleep_for(boost::chrono::milliseconds(20));
  EXPECT_GE(timer.elapsed(), transferTimeout - 10);
  EXPECT_LT(timer.elapsed(), 3 * transferTimeout);
  EXPECT_THAT(feed.stream.waits, IsEmpty());
  EXPECT_EQ(feed.stream.bytesAvailable(), 0);
  EXPECT_EQ(log.Errors().front(), "Could't read 23 bytes. Have read only 6 (TIMEOUT)");
  EXPECT_THAT(log.Errors().back(), testing::StartsWith("Invalid body checksum"));
  // What comes afterwards is found again.
  feed.stream.bytes = agentPacket.mid(60) + agentPacket;
  EXPECT_TRUE(feed.Take());
  EXPECT_EQ(feed.packet.body.size(), 23);
}

// ---- Names and words

TEST(ServerName, HoldsTheUserAndTheContextButNotTheClient)
{
  const auto one = std::make_shared<Context::Impl>(QStringLiteral("demo"), QStringLiteral("anna"), 0);
  const auto two = std::make_shared<Context::Impl>(QStringLiteral("demo"), QStringLiteral("ben"), 0);
  const auto other = std::make_shared<Context::Impl>(QStringLiteral("other"), QStringLiteral("ben"), 0);
  EXPECT_EQ(one->serverName, Wire::ServerName(QStringLiteral("demo")));
  EXPECT_EQ(one->serverName, two->serverName);
  EXPECT_NE(one->serverName, other->serverName);
  EXPECT_EQ(userIdString, QStringLiteral(":%1").arg(getuid()));
  EXPECT_EQ(pathToSocket, QDir(QDir::tempPath()).absolutePath() + '/');
  EXPECT_EQ(baseServerName, pathToSocket + "tavrik:bazaar:ipc:1.0" + userIdString);
}

TEST(ServerName, OfTwoUsersDiffersSoThatTheyNeverMeet)
{
  const auto nameOf = [](const char* user)
  {
    return QCryptographicHash::hash(QByteArray("tavrik:bazaar:ipc:1.0:") + user + ":demo",
                                    QCryptographicHash::Sha1);
  };
  EXPECT_NE(nameOf("501"), nameOf("502"));
  const auto mine = std::make_shared<Context::Impl>(QStringLiteral("demo"), QStringLiteral("anna"), 0);
  EXPECT_TRUE(mine->serverName.endsWith(QString::fromLatin1(nameOf(QByteArray::number(getuid())).toHex())));
}

struct InsideTest : testing::Test
{
  std::shared_ptr<Context::Impl> MakeImpl(int flags = 0)
  {
    auto made = std::make_shared<Context::Impl>(QStringLiteral("demo"), QStringLiteral("anna"), flags);
    made->listeners.append(recorder);
    return made;
  }

  std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
  std::shared_ptr<Context::Impl> impl = MakeImpl();
};

using ErrorCodes = InsideTest;

TEST_F(ErrorCodes, ConvertEveryWordAndAnythingElseToUnknown)
{
  EXPECT_EQ(impl->ConvertErrorCode("OK"), 0);
  EXPECT_EQ(impl->ConvertErrorCode("NOT SENT"), 2);
  EXPECT_EQ(impl->ConvertErrorCode("NOT WRITTEN"), 3);
  EXPECT_EQ(impl->ConvertErrorCode("NO RECIPIENT"), 4);
  for (const QByteArray& word :
       {QByteArray("UNKNOWN"), QByteArray("ok"), QByteArray(), QByteArray(" OK"), QByteArray("\xff\xfe", 2)})
    EXPECT_EQ(impl->ConvertErrorCode(word), 1);
}

TEST_F(ErrorCodes, AreCutAtTheFirstZeroByte)
{
  EXPECT_EQ(impl->ConvertErrorCode(QByteArray("OK\0junk", 7)), NoError);
}

TEST_F(ErrorCodes, SurviveTheWayToTextAndBack)
{
  for (const Error error : {NoError, ErrorNotSent, ErrorNotWritten, ErrorNoRecipient})
    EXPECT_EQ(impl->ConvertErrorCode(GetErrorString(error).toLatin1()), error);
}

TEST_F(ErrorCodes, TableHoldsFourWordsInKeyOrderWithoutUnknown)
{
  EXPECT_EQ(GetErrorCodes().keys(), (QStringList{"NO RECIPIENT", "NOT SENT", "NOT WRITTEN", "OK"}));
  EXPECT_EQ(GetErrorCodes(), errorCodes);
}

// ---- Members

using Membership = InsideTest;

BodyStatus StatusOf(const QVector<QByteArray>& names)
{
  return {names};
}

TEST_F(Membership, ReportsDeparturesBeforeArrivals)
{
  impl->DispatchMembership(StatusOf({"a", "b"}));
  recorder->events.clear();
  impl->DispatchMembership(StatusOf({"b", "c"}));
  EXPECT_THAT(recorder->events, ElementsAre("left a", "joined c"));
}

TEST_F(Membership, FirstStatusReportsEveryNameInItsOrderTheOwnIncluded)
{
  impl->DispatchMembership(StatusOf({"Z", "anna", "b"}));
  EXPECT_THAT(recorder->events, ElementsAre("joined Z", "joined anna", "joined b"));
}

TEST_F(Membership, AnEmptyStatusReportsEverybodyAsLeft)
{
  impl->DispatchMembership(StatusOf({"a", "b"}));
  recorder->events.clear();
  impl->DispatchMembership(BodyStatus());
  EXPECT_THAT(recorder->events, ElementsAre("left a", "left b"));
  EXPECT_THAT(impl->members, IsEmpty());
}

TEST_F(Membership, TheSameListTwiceCallsNobodyTheSecondTime)
{
  impl->DispatchMembership(StatusOf({"a", "b"}));
  recorder->events.clear();
  impl->DispatchMembership(StatusOf({"b", "a"}));
  EXPECT_THAT(recorder->events, IsEmpty());
  EXPECT_THAT(impl->members, ElementsAre("b", "a"));
}

TEST_F(Membership, DuplicatesAreKeptAndReportedOncePerOccurrence)
{
  impl->DispatchMembership(StatusOf({"a", "a"}));
  EXPECT_THAT(recorder->events, ElementsAre("joined a", "joined a"));
  EXPECT_THAT(impl->members, ElementsAre("a", "a"));
}

TEST_F(Membership, ListenersSeeTheNewStateAlready)
{
  impl->DispatchMembership(StatusOf({"a"}));
  QVector<bool> seen;
  recorder->onEvent = [&](const std::string&) { seen = {impl->HasMember("a"), impl->HasMember("b")}; };
  impl->DispatchMembership(StatusOf({"b"}));
  EXPECT_EQ(seen, (QVector<bool>{false, true}));
}

TEST_F(Membership, NamesAreCutAtTheirFirstZeroByteForListeners)
{
  impl->DispatchMembership(StatusOf({QByteArray("a\0b", 3)}));
  EXPECT_THAT(recorder->events, ElementsAre("joined a"));
  EXPECT_TRUE(impl->HasMember(QByteArray("a\0b", 3)));
  EXPECT_FALSE(impl->HasMember("a"));
}

TEST_F(Membership, ThousandsOfNamesTakeNoTime)
{
  QVector<QByteArray> names;
  for (int i = 0; i < 200000; ++i)
    names.append(QByteArray::number(i));
  impl->listeners.clear();
  impl->DispatchMembership(StatusOf(names));
  names.removeFirst();
  impl->DispatchMembership(StatusOf(names));
  EXPECT_EQ(impl->members.size(), 199999);
}

TEST_F(InsideTest, ADestroyedListenerIsErasedOnTheNextDispatchOnly)
{
  impl->listeners.append(std::make_shared<Recorder>());
  EXPECT_EQ(impl->listeners.size(), 2);
  impl->DispatchMembership(StatusOf({"a"}));
  EXPECT_EQ(impl->listeners.size(), 1);
  EXPECT_THAT(recorder->events, ElementsAre("joined a"));
}

TEST_F(InsideTest, StagedListenersMoveBehindTheOthersOnDispatch)
{
  const auto staged = std::make_shared<Recorder>();
  impl->stagedListeners.append(staged);
  impl->DispatchMembership(StatusOf({"a"}));
  EXPECT_THAT(impl->stagedListeners, IsEmpty());
  ASSERT_EQ(impl->listeners.size(), 2);
  EXPECT_EQ(impl->listeners.last().lock(), staged);
  EXPECT_THAT(staged->events, ElementsAre("joined a"));
}

TEST_F(InsideTest, AnEmptyCallableThrowsTheStandardException)
{
  EXPECT_THROW(impl->ForAllListeners(nullptr), std::bad_function_call);
}

// ---- Dispatch of packets

using Dispatch = InsideTest;

Packet ResultPacket(const QByteArray& body)
{
  return ReadFrom(Wire::Packet("demo", "RESULT", body));
}

TEST_F(Dispatch, AResultReachesEveryListenerWithItsNote)
{
  impl->DispatchPacket(ResultPacket(Wire::MessageBody(7, "NOT WRITTEN", QByteArray(" note\0cut", 9))));
  EXPECT_THAT(recorder->events, ElementsAre("result 7 NOT WRITTEN note"));
}

TEST_F(Dispatch, AResultThatHoldsOnlyTheIdLogsAndReportsAnEmptyCode)
{
  const LogCapture log;
  impl->DispatchPacket(ResultPacket(Wire::Little(7, 8)));
  EXPECT_THAT(log.Errors(), ElementsAre("Can't parse an error code"));
  EXPECT_THAT(recorder->events, ElementsAre("result 7 UNKNOWN"));
}

TEST_F(Dispatch, AResultWithAShortIdReadsTheRestAsZero)
{
  impl->DispatchPacket(ResultPacket(QByteArray("\x05\0\0\0", 4)));
  EXPECT_THAT(recorder->events, ElementsAre("result 5 UNKNOWN"));
}

TEST_F(Dispatch, AResultWithABrokenDescriptionKeepsItsCode)
{
  const LogCapture log;
  impl->DispatchPacket(ResultPacket(Wire::Little(7, 8) + Wire::Counted("OK") + Wire::Int(-1)));
  impl->DispatchPacket(ResultPacket(Wire::Little(8, 8) + Wire::Counted("OK") + "ab"));
  EXPECT_THAT(log.Errors(),
              ElementsAre("Can't parse an error description", "Can't parse an error description"));
  EXPECT_THAT(recorder->events, ElementsAre("result 7 OK", "result 8 OK"));
}

TEST_F(Dispatch, AnUnexpectedCommandIsLoggedWithoutAClosingQuote)
{
  const LogCapture log;
  impl->DispatchPacket(ReadFrom(Wire::Packet("demo", "HELLO", "1234")));
  EXPECT_THAT(log.Errors(), ElementsAre("Unexpected command \"HELLO"));
}

TEST_F(Dispatch, AnUnusablePacketIsLoggedAndSkipped)
{
  const LogCapture log;
  impl->DispatchPacket(Packet());
  EXPECT_THAT(log.Errors(), ElementsAre("Can't read a packet"));
  EXPECT_THAT(recorder->events, IsEmpty());
}

TEST_F(Dispatch, AnEmptyStatusIsIgnoredWithItsLine)
{
  impl->isSettled = true;
  impl->DispatchMembership(StatusOf({"a"}));
  recorder->events.clear();
  const LogCapture log;
  impl->DispatchPacket(ReadFrom(Wire::Status("demo", {})));
  impl->DispatchPacket(ReadFrom(Wire::Packet("demo", "STATUS", Wire::Int(2) + "1234")));
  EXPECT_THAT(log.Errors(), ElementsAre("Can't parse a body of the command STATUS",
                                        "Can't parse a body of the command STATUS"));
  EXPECT_THAT(recorder->events, IsEmpty());
  EXPECT_THAT(impl->members, ElementsAre("a"));
}

TEST_F(Dispatch, AStatusBeforeTheConnectionHasSettledReplacesTheDeferredOne)
{
  impl->isSettled = false;
  impl->DispatchPacket(ReadFrom(Wire::Status("demo", {"a"})));
  impl->DispatchPacket(ReadFrom(Wire::Status("demo", {"b"})));
  EXPECT_THAT(recorder->events, IsEmpty());
  EXPECT_THAT(impl->deferredStatus, ElementsAre("b"));
}

TEST_F(Dispatch, TheSendersNameIsCutAtItsFirstZeroByte)
{
  impl->DispatchPacket(ReadFrom(Wire::Message("demo", 0, QByteArray("ben\0x", 5), "hi")));
  EXPECT_THAT(recorder->events, ElementsAre("message ben hi"));
}

// ---- The queue

using Queue = InsideTest;

TEST_F(Queue, HoldsWhatWasSaidReadyToBeWritten)
{
  EXPECT_EQ(impl->Say("ben", "hi"), 1);
  ASSERT_EQ(impl->pending.size(), 1);
  EXPECT_EQ(impl->pending.first().recipient, "ben");
  EXPECT_EQ(impl->pending.first().packet, Wire::Message("demo", 1, "ben", "hi"));
  EXPECT_EQ(impl->lastMessageId, 1);
}

TEST_F(Queue, CancelDropsWhatHasNoRecipientAndKeepsTheOrder)
{
  impl->members = {"a", "c"};
  for (const char* name : {"a", "b", "c", "b", "a"})
    impl->Say(name, "x");
  impl->CancelMessagaesWithoutRecipient();
  ASSERT_EQ(impl->pending.size(), 3);
  EXPECT_EQ(impl->pending.at(0).id, 1);
  EXPECT_EQ(impl->pending.at(1).id, 3);
  EXPECT_EQ(impl->pending.at(2).id, 5);
  EXPECT_THAT(recorder->events, IsEmpty());
}

TEST_F(Queue, FlushedWithoutAConnectionIsNotSent)
{
  impl->Say("a", "x");
  impl->Say("b", "x");
  impl->FlushPending();
  EXPECT_THAT(recorder->events, ElementsAre("result 1 NOT SENT", "result 2 NOT SENT"));
  EXPECT_THAT(impl->pending, IsEmpty());
}

TEST_F(Queue, HeldEntriesStayInTheirOrder)
{
  impl = MakeImpl(HoldUntilMember);
  impl->members = {"b"};
  for (const char* name : {"a", "b", "c"})
    impl->Say(name, "x");
  impl->FlushPending();
  EXPECT_THAT(recorder->events, ElementsAre("result 2 NOT SENT"));
  ASSERT_EQ(impl->pending.size(), 2);
  EXPECT_EQ(impl->pending.at(0).recipient, "a");
  EXPECT_EQ(impl->pending.at(1).recipient, "c");
}

TEST_F(Queue, ThatIsFilledFromAResultDoesNotKeepTheTickGoing)
{
  recorder->onEvent = [&](const std::string&) { impl->Say("a", "again"); };
  impl->Say("a", "x");
  impl->FlushPending();
  EXPECT_THAT(recorder->events, ElementsAre("result 1 NOT SENT"));
  EXPECT_EQ(impl->pending.size(), 1);
}

TEST_F(Queue, AMessageTooLongForAPacketIsNotSent)
{
  impl->pending.append({1, "a", QByteArray()});
  impl->FlushPending();
  EXPECT_THAT(recorder->events, ElementsAre("result 1 NOT SENT"));
}

// ---- Ticks

TEST_F(InsideTest, AfterAReconnectionATickComesTwice)
{
  const auto server = std::make_shared<Context::Impl>(QStringLiteral("demo"), QStringLiteral("server"), 0);
  ASSERT_TRUE(server->Init());
  ASSERT_TRUE(impl->Init());
  ASSERT_TRUE(SpinUntil([&] { return impl->HasMember("server") && impl->isSettled; }));

  // Each flush answers the message that no packet holds, and finds another the next time.
  int flushes = 0;
  recorder->onEvent = [&](const std::string& event)
  {
    flushes += event == "result 1 NOT SENT" ? 1 : 0;
    impl->pending = {{1, "x", QByteArray()}};
  };
  const auto flushesPerTick = [&]
  {
    int ticks = 0;
    const auto probe = QObject::connect(&impl->socketTimer, &QTimer::timeout, [&] { ++ticks; });
    impl->pending = {{1, "x", QByteArray()}};
    flushes = 0;
    const bool isDone = SpinUntil([&] { return ticks == 10; });
    QObject::disconnect(probe);
    impl->pending.clear();
    return isDone ? flushes / 10.0 : 0.0;
  };
  EXPECT_EQ(flushesPerTick(), 1.0);
  impl->pending.clear();
  server->Leave();
  ASSERT_TRUE(
      SpinUntil([&] { return impl->server != nullptr && impl->isSettled && !impl->HasMember("server"); }));
  EXPECT_EQ(flushesPerTick(), 2.0);
  recorder->onEvent = nullptr;
  impl->pending.clear();
  impl->Leave();
}

TEST_F(InsideTest, AReadThatTimedOutBreaksNoConnection)
{
  ASSERT_TRUE(impl->Init());
  while (impl->socket->waitForReadyRead(1))
    continue;
  EXPECT_EQ(impl->socket->error(), QLocalSocket::SocketTimeoutError);
  EXPECT_FALSE(impl->IsReconnecting());
  EXPECT_TRUE(QFile::exists(impl->serverName));
  impl->Leave();
}

TEST_F(InsideTest, ADeferredStatusGoesWithItsConnection)
{
  const auto server = std::make_shared<Context::Impl>(QStringLiteral("demo"), QStringLiteral("server"), 0);
  ASSERT_TRUE(server->Init());
  ASSERT_TRUE(impl->Init());
  impl->deferredStatus = {"phantom"};
  server->Leave();
  ASSERT_TRUE(SpinUntil([&] { return impl->server != nullptr && impl->isSettled; }));
  EXPECT_FALSE(recorder->Has("joined phantom"));
  EXPECT_FALSE(impl->HasMember("phantom"));
  impl->Leave();
}

TEST_F(InsideTest, TheSettleTimeCountsFromTheNewConnectionInTheTickThatReconnects)
{
  const auto server = std::make_shared<Context::Impl>(QStringLiteral("demo"), QStringLiteral("server"), 0);
  ASSERT_TRUE(server->Init());
  ASSERT_TRUE(impl->Init());
  ASSERT_TRUE(SpinUntil([&] { return impl->HasMember("server") && impl->isSettled; }));
  impl->socketTimer.stop();
  server->Leave();
  ASSERT_TRUE(SpinUntil([&] { return impl->reconnectRequested; }));
  impl->Say("anna", "x");
  impl->CheckSocket();
  EXPECT_FALSE(impl->isSettled);
  EXPECT_EQ(impl->pending.size(), 1);
  impl->pending.clear();
  impl->Leave();
}

// ---- The handshake, with a server that speaks by hand

struct Handshake : InsideTest
{
  Handshake()
  {
    QObject::connect(&raw, &QLocalServer::newConnection, &raw,
                     [this]
                     {
                       QLocalSocket* const end = raw.nextPendingConnection();
                       const QByteArray reply = replies.value(connections++);
                       if (isLeaving)
                         raw.close();
                       if (reply.isEmpty())
                         end->abort();
                       else
                         end->write(reply);
                       if (isHangingUp)
                         end->disconnectFromServer();
                     });
    EXPECT_TRUE(raw.listen(impl->serverName));
  }

  ~Handshake() override { impl->Leave(); }

  QLocalServer raw;
  QList<QByteArray> replies;
  int connections = 0;
  bool isHangingUp = false;
  bool isLeaving = false;
};

TEST_F(Handshake, WithAnUnreadableReplyIsLoggedAndTheConnectionKept)
{
  replies = {QByteArray(60, 'g')};
  const LogCapture log;
  EXPECT_TRUE(impl->Init());
  EXPECT_EQ(log.Errors().back(), "Can't read a packet");
  EXPECT_TRUE(IsConnected(impl->socket.get()));
  EXPECT_THAT(recorder->events, IsEmpty());
}

TEST_F(Handshake, WithAReplyThatIsNoStatusIsLoggedAndTheConnectionKept)
{
  replies = {Wire::Message("demo", 0, "x", "y")};
  const LogCapture log;
  EXPECT_TRUE(impl->Init());
  EXPECT_THAT(log.Errors(), ElementsAre("Expected STATUS got MESSAGE"));
  EXPECT_TRUE(IsConnected(impl->socket.get()));
}

TEST_F(Handshake, WithAnEmptyStatusIsLoggedAndTheConnectionKept)
{
  replies = {Wire::Status("demo", {})};
  const LogCapture log;
  EXPECT_TRUE(impl->Init());
  EXPECT_THAT(log.Errors(), ElementsAre("Can't parse a body of the command STATUS"));
  EXPECT_TRUE(IsConnected(impl->socket.get()));
}

TEST_F(Handshake, IsTriedOnceMoreWhenTheServerHangsUpAfterItsReply)
{
  isHangingUp = true;
  replies = {QByteArray(60, 'g'), Wire::Status("demo", {"anna", "second"})};
  EXPECT_TRUE(impl->Init());
  EXPECT_EQ(connections, 2);
  EXPECT_THAT(recorder->events, ElementsAre("joined anna", "joined second"));
}

TEST_F(Handshake, WithAServerThatStopsServingStartsOver)
{
  isLeaving = true;
  replies = {QByteArray()};
  EXPECT_TRUE(impl->Init());
  EXPECT_TRUE(impl->IsReconnecting());
  ASSERT_TRUE(SpinUntil([&] { return impl->HasMember("anna"); }));
  EXPECT_NE(impl->server, nullptr);
}

// ---- Admission

struct Admission : InsideTest
{
  Admission()
  {
    EXPECT_TRUE(impl->Init());
    EXPECT_TRUE(SpinUntil([&] { return impl->clients.contains("anna"); }));
  }

  ~Admission() override { impl->Leave(); }

  // A client in this thread has to have said its piece before the server looks.
  void Introduce(QLocalSocket* end, const QByteArray& bytes)
  {
    end->connectToServer(impl->serverName);
    EXPECT_TRUE(end->waitForConnected());
    end->write(bytes);
    end->flush();
    const int accepted = impl->server->findChildren<QLocalSocket*>().size();
    EXPECT_TRUE(SpinUntil([&] { return impl->server->findChildren<QLocalSocket*>().size() != accepted; }));
  }

  LogCapture log;
};

TEST_F(Admission, OfAStrangeIntroductionWarnsAndGoesOn)
{
  QLocalSocket end;
  Introduce(&end, Wire::Message("demo", 7, "to", "zoe"));
  EXPECT_TRUE(impl->clients.contains("zoe"));
  EXPECT_THAT(log.Warnings(), ElementsAre("Something strange with the initial message (MESSAGE ID: 7; "
                                          "RECIPIENT NAME: \"to\"; MESSAGE: \"zoe\")"));
}

TEST_F(Admission, OfAnythingButAMessageIsRefusedAndTheSocketLeftOpen)
{
  QLocalSocket end;
  Introduce(&end, Wire::Packet("demo", "STATUS", "1234"));
  EXPECT_THAT(log.Errors(), ElementsAre("Got the command STATUS (expected: MESSAGE)"));
  SpinFor(50);
  EXPECT_TRUE(IsConnected(&end));
  EXPECT_EQ(impl->clients.size(), 1);
}

TEST_F(Admission, LetsTheServersOwnParticipantBeRoutedInTheTickThatFollowsItsOwn)
{
  QLocalSocket ben;
  Introduce(&ben, Wire::Introduction("demo", "ben"));
  ASSERT_TRUE(SpinUntil([&] { return impl->isSettled; }));
  impl->socketTimer.stop();
  impl->clientsTimer.stop();
  const QPointer<QLocalSocket> end = impl->clients.value("ben");
  ASSERT_TRUE(SpinUntil([&] { return end->bytesToWrite() == 0; }));
  impl->Say("ben", "hi");
  impl->CheckSocket();
  EXPECT_EQ(end->bytesToWrite(), 0);
  impl->CheckClients();
  EXPECT_GT(end->bytesToWrite(), 0);
}

TEST_F(Admission, OfATakenNameIsRefusedAndTheSocketClosed)
{
  QLocalSocket end;
  Introduce(&end, Wire::Introduction("demo", "anna"));
  EXPECT_THAT(log.Errors(), ElementsAre("The client with the name \"anna\" has alredy connected"));
  EXPECT_TRUE(SpinUntil([&] { return !IsConnected(&end); }));
}

TEST_F(Admission, OfOneThatLeavesBeforeItHasIntroducedItselfIsLogged)
{
  QLocalSocket end;
  end.connectToServer(impl->serverName);
  ASSERT_TRUE(end.waitForConnected());
  end.write(Wire::Introduction("demo", "zoe").left(20));
  end.flush();
  end.abort();
  EXPECT_TRUE(SpinUntil([&] { return !log.Errors().empty(); }));
  EXPECT_EQ(log.Errors().back(), "Can't read a packet");
  EXPECT_EQ(impl->clients.size(), 1);
}

// ---- Routing

struct Routing : InsideTest
{
  Routing()
  {
    QFile::remove(impl->serverName);
    impl->BecomeServer();
    Admit("ben", &ben);
    Admit("cleo", &cleo);
  }

  ~Routing() override
  {
    impl->closing = true;
    impl->StopServing();
  }

  void Admit(const QByteArray& name, QLocalSocket* end)
  {
    impl->server->disconnect();
    QObject::connect(impl->server.get(), &Details::ListeningSocket::Accepted, impl->server.get(),
                     [=](QLocalSocket* client) { impl->Enter(name, client); });
    end->connectToServer(impl->serverName);
    end->waitForConnected();
    EXPECT_TRUE(SpinUntil([&] { return impl->clients.contains(name); }));
  }

  Wire::Received Next(QLocalSocket* end)
  {
    QByteArray& stream = streams[end];
    Wire::Received packet;
    SpinUntil(
        [&]
        {
          stream += end->readAll();
          packet = Wire::Take(&stream);
          return !packet.command.isEmpty();
        },
        5000);
    return packet;
  }

  QLocalSocket ben;
  QLocalSocket cleo;
  QHash<QLocalSocket*, QByteArray> streams;
};

TEST_F(Routing, ForwardsWithIdZeroAndTheSendersNameAndAnswersOk)
{
  impl->SendMessage("ben", "cleo", "data", 17);
  const Wire::Received forwarded = Next(&cleo);
  EXPECT_EQ(forwarded.command, "MESSAGE");
  EXPECT_EQ(forwarded.Id(), 0);
  EXPECT_EQ(forwarded.First(), "ben");
  EXPECT_EQ(forwarded.Second(), "data");
  const Wire::Received result = Next(&ben);
  EXPECT_EQ(result.command, "RESULT");
  EXPECT_EQ(result.Id(), 17);
  EXPECT_EQ(result.First(), "OK");
  EXPECT_EQ(result.Second(), "");
}

TEST_F(Routing, ToAClientThatIsNoLongerConnectedWarnsRemovesItAndAnswersNothing)
{
  impl->clients.value("cleo")->abort();
  const LogCapture log;
  impl->SendMessage("ben", "cleo", "data", 17);
  EXPECT_THAT(log.Warnings(), ElementsAre("Client cleo is not connected"));
  EXPECT_FALSE(impl->clients.contains("cleo"));
  impl->SendMessage("ben", "cleo", "data", 18);
  const Wire::Received first = Next(&ben);
  EXPECT_EQ(first.Id(), 18);
  EXPECT_EQ(first.First(), "NO RECIPIENT");
}

TEST_F(Routing, ToAnEntryWhoseSocketIsGoneIsNoRecipient)
{
  delete impl->clients.value("cleo");
  impl->SendMessage("ben", "cleo", "data", 3);
  EXPECT_EQ(Next(&ben).First(), "NO RECIPIENT");
  EXPECT_TRUE(impl->clients.contains("cleo"));
}

TEST_F(Routing, WhenTheForwardedPacketCannotBeBuiltIsNotWritten)
{
  // Too long only with the sender's name in place of the recipient's.
  const QByteArray huge = QByteArray::fromRawData("x", largestArray - 20);
  impl->SendMessage("ben", "cleo", huge, 4);
  EXPECT_EQ(Next(&ben).First(), "NOT WRITTEN");
}

TEST_F(Routing, StatusListsTheNamesInByteOrderToEverybody)
{
  impl->SendStatus();
  EXPECT_EQ(Next(&ben).Names(), (QVector<QByteArray>{"ben", "cleo"}));
  EXPECT_EQ(Next(&cleo).Names(), (QVector<QByteArray>{"ben", "cleo"}));
}

TEST_F(Routing, RemovingNobodyBroadcastsTheStatusAllTheSame)
{
  impl->RemoveDisconnectedClients();
  EXPECT_EQ(Next(&ben).command, "STATUS");
}

TEST_F(Routing, NothingIsRemovedWhileClosing)
{
  impl->clients.value("cleo")->abort();
  impl->closing = true;
  impl->RemoveDisconnectedClients();
  EXPECT_TRUE(impl->clients.contains("cleo"));
}

TEST_F(Routing, PassesOnWhatADepartedClientHadSentWhole)
{
  cleo.write(Wire::Message("demo", 1, "ben", "first") + Wire::Message("demo", 2, "ben", "second") +
             Wire::Message("demo", 3, "ben", "cut").left(60));
  cleo.flush();
  cleo.disconnectFromServer();
  QPointer<QLocalSocket> end = impl->clients.value("cleo");
  SpinUntil([&] { return end->state() == QLocalSocket::UnconnectedState; });
  impl->RemoveDisconnectedClients();
  EXPECT_EQ(Next(&ben).Second(), "first");
  EXPECT_EQ(Next(&ben).Second(), "second");
  EXPECT_EQ(Next(&ben).Names(), QVector<QByteArray>{"ben"});
}

TEST_F(Routing, TakesOnePacketPerClientAndTick)
{
  impl->clientsTimer.stop();
  QByteArray packets;
  for (int i = 1; i <= 3; ++i)
    packets += Wire::Message("demo", i, "cleo", QByteArray::number(i));
  ben.write(packets);
  ben.flush();
  const QPointer<QLocalSocket> end = impl->clients.value("ben");
  ASSERT_TRUE(SpinUntil([&] { return end->bytesAvailable() == packets.size(); }));
  impl->CheckClients();
  EXPECT_EQ(end->bytesAvailable(), packets.size() / 3 * 2);
  impl->CheckClients();
  EXPECT_EQ(end->bytesAvailable(), packets.size() / 3);
}

TEST_F(Routing, LooksAtNobodyUntilSomebodyHasSpoken)
{
  impl->clientsTimer.stop();
  impl->CheckClients();
  EXPECT_FALSE(impl->haveClientsSpoken);
  ben.write(Wire::Message("demo", 1, "cleo", "1"));
  ben.flush();
  ASSERT_TRUE(SpinUntil([&] { return impl->haveClientsSpoken; }));
  impl->CheckClients();
  EXPECT_TRUE(impl->haveClientsSpoken);
  impl->CheckClients();
  EXPECT_FALSE(impl->haveClientsSpoken);
}

TEST_F(Routing, BothTimersOfAServerAreStartedTogetherOnceInAWhile)
{
  const int minute = 60000;
  const int tick = 20;
  const auto align = [&](int expected)
  {
    impl->socketTimer.start(minute);
    impl->clientsTimer.start(minute);
    impl->AlignTicks();
    EXPECT_EQ(impl->socketTimer.interval(), expected);
    EXPECT_EQ(impl->clientsTimer.interval(), expected);
  };
  align(tick);
  for (int i = 1; i < 256; ++i)
    align(minute);
  align(tick);
}

TEST_F(Routing, NoTimerIsStartedWithinAParticipantsTickNorBeforeItTicks)
{
  const int minute = 60000;
  impl->clientsTimer.start(minute);
  impl->AlignTicks();
  EXPECT_FALSE(impl->socketTimer.isActive());
  impl->socketTimer.start(minute);
  impl->tickDepth = 1;
  impl->AlignTicks();
  EXPECT_EQ(impl->socketTimer.interval(), minute);
  EXPECT_EQ(impl->clientsTimer.interval(), minute);
  impl->tickDepth = 0;
  impl->AlignTicks();
  EXPECT_EQ(impl->socketTimer.interval(), 20);
}

TEST_F(Routing, LogsAnUnexpectedCommandWithTheClientsName)
{
  const LogCapture log;
  impl->RoutePacket("ben", ReadFrom(Wire::Packet("demo", "HELLO", "1234")));
  impl->RoutePacket("ben", Packet());
  EXPECT_THAT(log.Errors(),
              ElementsAre("Unexpected command \"HELLO\" from the client ben", "Can't read a packet"));
}

} // namespace
} // namespace Tavrik::Bazaar
