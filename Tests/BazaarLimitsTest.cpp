// The limits of the bus: off, at their boundary, and beyond.

#include "Support/LogCapture.h"
#include "Support/Peer.h"
#include "Support/Raw.h"
#include "Support/Recorder.h"
#include "Support/Spin.h"
#include "Support/Wire.h"

#include <Common/Bazaar.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <limits>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

using namespace Tavrik::Bazaar;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace
{

const long long hugest = std::numeric_limits<long long>::max();
using LimitField = long long Limits::*;

const std::vector<LimitField> allLimits = {
    &Limits::admissionTime, &Limits::replyTime,      &Limits::packetSize, &Limits::queuedMessages,
    &Limits::queuedBytes,   &Limits::unwrittenBytes, &Limits::clients,    &Limits::clientRate};

void Limit(LimitField which, long long value)
{
  Limits limits = GetLimits();
  limits.*which = value;
  SetLimits(limits);
}

// A participant of this process serves "demo", under the limits that a test has set; the tests speak by hand.
class Limited : public testing::Test
{
protected:
  void Serve()
  {
    server = std::make_unique<Context>(meeting.context, QStringLiteral("server"), recorder, 0);
    ASSERT_TRUE(SpinUntil([&] { return server->HasMember(QStringLiteral("server")); }));
  }

  std::unique_ptr<RawClient> Joined(const QByteArray& name)
  {
    auto client = std::make_unique<RawClient>(meeting.context);
    EXPECT_TRUE(client->Join(name));
    return client;
  }

  // That a server is there for others: one comes, is heard, and goes.
  void ExpectService()
  {
    const auto guest = Joined("guest");
    guest->Say(77, "server", "hello");
    EXPECT_EQ(guest->Result(77), "OK");
    EXPECT_TRUE(SpinUntil([&] { return recorder->Has("message guest hello"); }));
    recorder->events.clear();
  }

  Meeting meeting{QStringLiteral("demo")};
  LogCapture log;
  std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
  std::unique_ptr<Context> server;
};

// ---- The set --------------------------------------------------------------------------------------------

using Set = Limited;

TEST_F(Set, IsOffAtFirst)
{
  for (const auto limit : allLimits)
    EXPECT_EQ(GetLimits().*limit, 0);
}

TEST_F(Set, ReadsAsItWasSetAndNegativeOnesAsOff)
{
  Limits limits;
  long long value = 10;
  for (const auto limit : allLimits)
    limits.*limit = ++value;
  limits.clients = hugest;
  SetLimits(limits);
  for (const auto limit : allLimits)
    EXPECT_EQ(GetLimits().*limit, limits.*limit);

  for (const auto limit : allLimits)
    limits.*limit = std::numeric_limits<long long>::min();
  SetLimits(limits);
  for (const auto limit : allLimits)
    EXPECT_EQ(GetLimits().*limit, 0);
}

TEST_F(Set, OfHugeValuesLimitsNothing)
{
  Limits limits;
  for (const auto limit : allLimits)
    limits.*limit = hugest;
  SetLimits(limits);
  Serve();
  Context friendly(meeting.context, QStringLiteral("friendly"), recorder, 0);
  EXPECT_TRUE(friendly.HasMember(QStringLiteral("friendly")));
  EXPECT_EQ(friendly.Say(QStringLiteral("server"), QByteArray(1 << 20, 'x')), 1);
  EXPECT_TRUE(SpinUntil([&] { return recorder->Has("result 1 OK"); }));
  ExpectService();
  EXPECT_THAT(log.Warnings(), IsEmpty());
}

TEST_F(Set, ChangedInTheMiddleHoldsForLaterContextsOnly)
{
  Serve();
  Limit(&Limits::clients, 1);
  Limit(&Limits::queuedMessages, 1);
  for (int id = 1; id <= 5; ++id)
    EXPECT_EQ(server->Say(QStringLiteral("nobody"), QByteArray()), id);
  ExpectService();
  EXPECT_THAT(log.Warnings(), IsEmpty());

  Context later(meeting.context, QStringLiteral("later"), recorder, 0);
  SetLimits({});
  EXPECT_EQ(later.Say(QStringLiteral("nobody"), QByteArray()), 1);
  EXPECT_EQ(later.Say(QStringLiteral("nobody"), QByteArray()), -1);
}

TEST_F(Set, MayBeChangedFromAnyThread)
{
  // No QThread: the thread sanitizer does not see through Qt's.
  std::atomic<bool> isDone{false};
  std::thread other(
      [&isDone]
      {
        for (int i = 1; i <= 1000; ++i)
          Limit(&Limits::clients, i);
        isDone = true;
      });
  long long last = 0;
  while (!isDone)
  {
    const long long seen = GetLimits().clients;
    EXPECT_GE(seen, last);
    last = seen;
  }
  other.join();
  EXPECT_EQ(GetLimits().clients, 1000);
}

// ---- Admission ------------------------------------------------------------------------------------------

using Admission = Limited;

TEST_F(Admission, WithoutALimitIsOneAfterTheOther)
{
  Peer peer(meeting.context, QStringLiteral("server"));
  ASSERT_TRUE(peer.IsReady());
  RawClient silent(meeting.context);
  RawClient honest(meeting.context);
  honest.Write(Wire::Introduction("demo", "honest"));
  SpinFor(600);
  EXPECT_TRUE(honest.bytes.isEmpty());
  EXPECT_TRUE(silent.IsConnected());
  silent.Close();
  EXPECT_TRUE(honest.Sees("honest,server"));
}

TEST_F(Admission, WithALimitIsNotHeldUpByThoseWhoSayNothing)
{
  Limit(&Limits::admissionTime, hugest);
  Serve();
  std::vector<std::unique_ptr<RawClient>> silent;
  for (int i = 0; i < 8; ++i)
    silent.push_back(std::make_unique<RawClient>(meeting.context));
  ExpectService();
  for (const auto& client : silent)
    EXPECT_TRUE(client->IsConnected());
  EXPECT_TRUE(silent.front()->Join("late"));
  EXPECT_THAT(log.Warnings(), IsEmpty());
}

TEST_F(Admission, EndsForThoseWhoSayNothingInTimeWithOneLineForAll)
{
  Limit(&Limits::admissionTime, 200);
  Serve();
  const auto member = Joined("member");
  std::vector<std::unique_ptr<RawClient>> silent;
  for (int i = 0; i < 20; ++i)
    silent.push_back(std::make_unique<RawClient>(meeting.context));
  for (const auto& client : silent)
  {
    EXPECT_TRUE(client->IsClosed());
    EXPECT_TRUE(client->bytes.isEmpty());
  }
  EXPECT_THAT(log.Warnings(), ElementsAre("Refused somebody who did not introduce himself in time"));
  EXPECT_EQ(member->Members(), "member,server");
  EXPECT_TRUE(member->IsConnected());
  ExpectService();
}

TEST_F(Admission, EndsForOneWhoNeverFinishesHisIntroduction)
{
  Limit(&Limits::admissionTime, 200);
  Serve();
  RawClient slow(meeting.context);
  const QByteArray introduction = Wire::Packet("demo", "MESSAGE", QByteArray(100000, 'x'));
  int written = 0;
  EXPECT_TRUE(SpinUntil(
      [&]
      {
        if (slow.IsConnected())
          slow.Write(introduction.mid(written++, 1));
        return !slow.IsConnected();
      }));
  EXPECT_LT(written, introduction.size());
  EXPECT_EQ(log.Warnings().size(), 1u);
  ExpectService();
}

TEST_F(Admission, EndsForOneWhoseFirstPacketIsNoIntroduction)
{
  Limit(&Limits::admissionTime, 300);
  Serve();
  RawClient strange(meeting.context);
  strange.Write(Wire::Status("demo", {"strange"}) + Wire::Introduction("demo", "strange"));
  ASSERT_TRUE(SpinUntil([&] { return !log.Errors().empty(); }));
  EXPECT_TRUE(strange.IsConnected());
  EXPECT_TRUE(strange.IsClosed());
  EXPECT_THAT(log.Errors(), ElementsAre("Got the command STATUS (expected: MESSAGE)"));
  EXPECT_EQ(log.Warnings().size(), 1u);
  EXPECT_THAT(server->Members(), ElementsAre(QStringLiteral("server")));
}

TEST_F(Admission, WithALimitFindsAnIntroductionThatComesShortlyAfterGarbage)
{
  Limit(&Limits::packetSize, 4096);
  Serve();
  RawClient guest(meeting.context);
  guest.Write(QByteArray(200, 'g'));
  SpinFor(100); // the sender's pause
  guest.Write(Wire::Introduction("demo", "guest"));
  EXPECT_TRUE(guest.Sees("guest,server"));
  EXPECT_THAT(log.Errors(), IsEmpty());
  // Thirty bytes are enough to begin with.
  RawClient other(meeting.context);
  other.Write(QByteArray(30, 'g'));
  EXPECT_TRUE(other.IsClosed());
  EXPECT_THAT(log.Errors(), ElementsAre("Could't read 4 bytes. Have read only 0 (TIMEOUT)",
                                        "Can't read a header size: 0", "Can't read a packet"));
}

TEST_F(Admission, AnswersGarbageAndEarlyLeaversAsWithoutALimit)
{
  Limit(&Limits::admissionTime, hugest);
  Serve();
  RawClient garbage(meeting.context);
  garbage.Write(QByteArray(1000, 'g'));
  EXPECT_TRUE(garbage.IsClosed());
  EXPECT_EQ(log.Errors().back(), "Can't read a packet");
  log.Clear();
  {
    RawClient leaver(meeting.context);
    leaver.Write(Wire::Introduction("demo", "leaver").left(60));
  }
  EXPECT_TRUE(SpinUntil([&] { return log.Errors().size() == 3; }));
  EXPECT_THAT(log.Errors(), ElementsAre("Could't read 22 bytes. Have read only 6 (TIMEOUT)",
                                        StartsWith("Invalid body checksum"), "Can't read a packet"));
  const auto guest = Joined("guest");
  RawClient second(meeting.context);
  second.Write(Wire::Introduction("demo", "guest"));
  EXPECT_TRUE(second.IsClosed());
  EXPECT_THAT(log.Warnings(), IsEmpty());
}

// ---- The server's answer --------------------------------------------------------------------------------

using Reply = Limited;

TEST_F(Reply, WithoutALimitIsWaitedFor)
{
  RawServer raw(meeting.context);
  Peer peer(meeting.context, QStringLiteral("guest"), NoServer);
  const auto link = raw.Next();
  ASSERT_TRUE(link);
  EXPECT_FALSE(peer.IsReady(1000));
  link->Write(Wire::Status("demo", {"guest"}));
  EXPECT_TRUE(peer.IsReady());
  EXPECT_FALSE(raw.Next(100));
}

TEST_F(Reply, ThatNeverComesEndsTheConstructorAndTheParticipantBeginsAnew)
{
  Limit(&Limits::replyTime, 400);
  RawServer raw(meeting.context);
  // The participant waits in the event loop of this thread, so it is answered from there.
  std::vector<std::unique_ptr<Link>> links;
  QObject::connect(&raw.server, &QLocalServer::newConnection, &raw.server,
                   [&]
                   {
                     links.push_back(raw.Next());
                     if (links.size() == 3)
                       links.back()->Write(Wire::Status("demo", {"guest", "somebody"}));
                   });
  Context guest(meeting.context, QStringLiteral("guest"), recorder, 0);
  EXPECT_THAT(guest.Members(), IsEmpty());
  EXPECT_THAT(log.Warnings(), ElementsAre("guest has waited too long for the server to answer"));
  ASSERT_EQ(links.size(), 1u);

  // Before the event loop runs, and with it the next attempt.
  EXPECT_EQ(guest.Say(QStringLiteral("somebody"), "unheard"), 1);
  EXPECT_TRUE(links[0]->IsClosed());
  EXPECT_TRUE(SpinUntil([&] { return recorder->Has("result 1 NOT SENT"); }));
  EXPECT_TRUE(SpinUntil([&] { return guest.HasMember(QStringLiteral("somebody")); }));
  ASSERT_EQ(links.size(), 3u);
  EXPECT_TRUE(links[1]->IsClosed());
  EXPECT_EQ(guest.Say(QStringLiteral("somebody"), "heard"), 2);
  EXPECT_TRUE(links[2]->Got("MESSAGE", 2));
  EXPECT_EQ(links[2]->packets.back().Second(), "heard");
  EXPECT_EQ(log.Warnings().size(), 1u);
}

TEST_F(Reply, ThatBeginsAndNeverEndsIsNoAnswer)
{
  Limit(&Limits::replyTime, 300);
  RawServer raw(meeting.context);
  const QByteArray beginning = Wire::Status("demo", {"guest"}).left(50);
  QObject::connect(&raw.server, &QLocalServer::newConnection, &raw.server,
                   [&] { raw.server.nextPendingConnection()->write(beginning); });
  const Context guest(meeting.context, QStringLiteral("guest"), recorder, NoServer);
  EXPECT_THAT(guest.Members(), IsEmpty());
  EXPECT_THAT(log.Warnings(), ElementsAre("guest has waited too long for the server to answer"));
}

TEST_F(Reply, ThatComesInTimeAdmitsAsEver)
{
  Limit(&Limits::replyTime, 20000);
  Serve();
  const Context guest(meeting.context, QStringLiteral("guest"), recorder, 0);
  EXPECT_THAT(guest.Members(), ElementsAre(QStringLiteral("guest"), QStringLiteral("server")));
  EXPECT_THAT(log.Warnings(), IsEmpty());
}

// ---- Packets --------------------------------------------------------------------------------------------

class PacketSize : public Limited
{
protected:
  // Of what "tell" says to "hear" and of what "hear" gets.
  static QByteArray Message(int size) { return Wire::Message("demo", 1, "hear", QByteArray(size, 'x')); }

  // A packet of 64 MiB of which nothing but the beginning is there.
  static QByteArray Claim()
  {
    return Wire::WithPreamble(Wire::Counted("demo") + Wire::Counted("MESSAGE") + Wire::Int(64 << 20) + "ab");
  }
};

TEST_F(PacketSize, AtTheLimitPassesAndOneByteMoreDoesNot)
{
  for (const int size : {100, 4096, 100000})
  {
    SCOPED_TRACE(size);
    log.Clear();
    Limit(&Limits::packetSize, Message(size).size());
    Serve();
    const auto hear = Joined("hear");
    const auto tell = Joined("tell");
    tell->Write(Message(size));
    EXPECT_EQ(tell->Result(1), "OK");
    EXPECT_TRUE(hear->Got("MESSAGE", 1));
    EXPECT_EQ(hear->Of("MESSAGE").back().Second().size(), size);
    EXPECT_THAT(log.Warnings(), IsEmpty());

    tell->Write(Message(size + 1));
    EXPECT_TRUE(tell->IsClosed());
    EXPECT_TRUE(hear->Sees("hear,server"));
    EXPECT_EQ(hear->Of("MESSAGE").size(), 1u);
    EXPECT_THAT(log.Warnings(), ElementsAre("Disconnected a client whose packet is too large: tell"));
    ExpectService();
    server.reset();
  }
}

TEST_F(PacketSize, IsLimitedAndYetAllIsHeardOfOneWhoSaysMuchAndLeaves)
{
  Limit(&Limits::packetSize, 64 << 10);
  Serve();
  for (const auto& [count, size] : std::vector<std::pair<std::size_t, int>>{{20, 60000}, {200, 1000}})
  {
    SCOPED_TRACE(size);
    Peer guest(meeting.context, QStringLiteral("guest"));
    ASSERT_TRUE(guest.IsReady());
    recorder->events.clear();
    for (std::size_t i = 0; i < count; ++i)
      guest.Tell(QStringLiteral("fill server %1").arg(size));
    ASSERT_TRUE(guest.Quit());
    EXPECT_TRUE(SpinUntil([&] { return recorder->Has("left guest"); }));
    EXPECT_EQ(recorder->Of("message guest ").size(), count);
  }
}

TEST_F(PacketSize, IsJudgedByTheHeaderAlone)
{
  Limit(&Limits::packetSize, 1000);
  Serve();
  const QByteArray longHeader = Wire::Signature() + Wire::Int(0x7fffffff) + QByteArray(21, 'x');
  for (const QByteArray& claim : {Claim(), longHeader})
  {
    const auto tell = Joined("tell");
    tell->Write("garbage" + claim);
    EXPECT_TRUE(tell->IsClosed());

    RawClient newcomer(meeting.context);
    newcomer.Write(claim);
    EXPECT_TRUE(newcomer.IsClosed());
  }
  EXPECT_EQ(log.Warnings().size(), 1u);
  EXPECT_THAT(log.Errors(), IsEmpty());
  ExpectService();
}

TEST_F(PacketSize, WithoutALimitLeavesAClaimAlone)
{
  Serve();
  const auto tell = Joined("tell");
  tell->Write(Claim());
  for (int i = 0; i < 3; ++i)
    ExpectService();
  EXPECT_TRUE(tell->IsConnected());
}

TEST_F(PacketSize, BoundsWhatIsReadAhead)
{
  const int flood = 32 << 20;
  QByteArray messages;
  while (messages.size() < flood)
    messages += Message(1000);
  for (const bool isLimited : {false, true})
  {
    SCOPED_TRACE(isLimited);
    Limit(&Limits::packetSize, isLimited ? 65536 : 0);
    Serve();
    const auto tell = Joined("tell");
    tell->Write(messages);
    if (isLimited)
    {
      ASSERT_TRUE(tell->Got("RESULT", 20));
      EXPECT_GT(tell->socket->bytesToWrite(), flood / 2);
    }
    else
    {
      EXPECT_TRUE(SpinUntil([&] { return tell->socket->bytesToWrite() == 0; }));
      EXPECT_LT(tell->Of("RESULT").size(), 10000u);
    }
    tell->Close();
    server.reset();
  }
}

TEST_F(PacketSize, LetsManyPacketsAtTheLimitThroughOneBehindTheOther)
{
  const int count = 50;
  const QByteArray message = Message(65000);
  Limit(&Limits::packetSize, message.size());
  Serve();
  const auto hear = Joined("hear");
  const auto tell = Joined("tell");
  tell->Write(message.repeated(count));
  EXPECT_TRUE(hear->Got("MESSAGE", count));
  EXPECT_TRUE(tell->Got("RESULT", count));
  EXPECT_TRUE(tell->IsConnected());
}

TEST_F(PacketSize, OfAFloodOfGarbageStaysWithinTheLimit)
{
  Limit(&Limits::packetSize, 65536);
  Serve();
  const auto tell = Joined("tell");
  tell->Write(QByteArray(8 << 20, '<') + Message(10));
  EXPECT_EQ(tell->Result(1), "NO RECIPIENT");
  EXPECT_TRUE(tell->IsConnected());
  EXPECT_THAT(log.Warnings(), IsEmpty());
}

TEST_F(PacketSize, OfAMessageThatIsSaidIsNotSentBeyondTheLimit)
{
  const auto sizeOf = [](int size)
  { return Wire::Message("demo", 1, "server", QByteArray(size, 'x')).size(); };
  Limit(&Limits::packetSize, sizeOf(500));
  Serve();
  EXPECT_EQ(server->Say(QStringLiteral("server"), QByteArray(500, 'x')), 1);
  EXPECT_EQ(server->Say(QStringLiteral("server"), QByteArray(501, 'x')), 2);
  EXPECT_TRUE(SpinUntil([&] { return recorder->Of("result").size() == 2; }));
  EXPECT_TRUE(recorder->Has("result 1 OK"));
  EXPECT_TRUE(recorder->Has("result 2 NOT SENT"));
  EXPECT_EQ(log.Warnings().size(), 1u);
}

TEST_F(PacketSize, OfAMessageThatOnlyGrowsOnItsWayIsNotWritten)
{
  Limit(&Limits::packetSize, Message(500).size());
  Serve();
  const auto hear = Joined("hear");
  const auto teller = Joined("teller");
  teller->Write(Message(500));
  EXPECT_EQ(teller->Result(1), "NOT WRITTEN");
  EXPECT_TRUE(teller->IsConnected());
  EXPECT_EQ(log.Warnings().size(), 1u);
}

TEST_F(PacketSize, OfTheListOfMembersRefusesTheNameThatWouldExceedIt)
{
  Limit(&Limits::packetSize, Wire::Status("demo", {"guest", "server", QByteArray(500, 'n')}).size());
  Serve();
  const auto guest = Joined("guest");
  RawClient tooLong(meeting.context);
  tooLong.Write(Wire::Introduction("demo", QByteArray(501, 'n')));
  EXPECT_TRUE(tooLong.IsClosed());
  EXPECT_EQ(log.Warnings().size(), 1u);
  Joined(QByteArray(500, 'n'));
  EXPECT_TRUE(guest->IsConnected());
}

TEST_F(PacketSize, BeyondTheLimitFromTheServerMakesAParticipantComeAnew)
{
  Limit(&Limits::packetSize, 1000);
  RawServer raw(meeting.context);
  std::vector<QLocalSocket*> accepted;
  QObject::connect(&raw.server, &QLocalServer::newConnection, &raw.server,
                   [&]
                   {
                     accepted.push_back(raw.server.nextPendingConnection());
                     accepted.back()->write(accepted.size() == 1 ? Claim() : Wire::Status("demo", {"guest"}));
                   });
  const Context guest(meeting.context, QStringLiteral("guest"), recorder, NoServer);
  EXPECT_THAT(guest.Members(), IsEmpty());
  EXPECT_TRUE(SpinUntil([&] { return guest.HasMember(QStringLiteral("guest")); }));
  ASSERT_EQ(accepted.size(), 2u);
  accepted.back()->write(Claim());
  EXPECT_TRUE(SpinUntil([&] { return accepted.size() == 3; }));
  EXPECT_EQ(log.Warnings().size(), 1u);
}

// ---- The queue ------------------------------------------------------------------------------------------

using Queue = Limited;

TEST_F(Queue, OfMessagesRefusesBeyondTheLimitUntilItHasRoomAgain)
{
  Limit(&Limits::queuedMessages, 3);
  Serve();
  for (int id = 1; id <= 3; ++id)
    EXPECT_EQ(server->Say(QStringLiteral("server"), "x"), id);
  for (int i = 0; i < 1000; ++i)
    EXPECT_EQ(server->Say(QStringLiteral("server"), "x"), -1);
  EXPECT_THAT(log.Warnings(), ElementsAre("The queue is full of messages and refuses another"));

  EXPECT_TRUE(SpinUntil([&] { return recorder->Has("result 3 OK"); }));
  EXPECT_EQ(server->Say(QStringLiteral("server"), "x"), 4);
  EXPECT_TRUE(SpinUntil([&] { return recorder->Has("result 4 OK"); }));
  EXPECT_EQ(recorder->Of("result").size(), 4u);
}

TEST_F(Queue, OfBytesIsFilledToTheLastByte)
{
  const int size = Wire::Message("demo", 1, "server", QByteArray(100, 'x')).size();
  Limit(&Limits::queuedBytes, 2LL * size);
  Serve();
  EXPECT_EQ(server->Say(QStringLiteral("server"), QByteArray(2 * size, 'x')), -1);
  EXPECT_EQ(server->Say(QStringLiteral("server"), QByteArray(100, 'x')), 1);
  EXPECT_EQ(server->Say(QStringLiteral("server"), QByteArray(101, 'x')), -1);
  EXPECT_EQ(server->Say(QStringLiteral("server"), QByteArray(100, 'x')), 2);
  EXPECT_EQ(server->Say(QStringLiteral("server"), QByteArray()), -1);
  EXPECT_THAT(log.Warnings(), ElementsAre("The queue has no room for the bytes of a message and refuses it"));
  EXPECT_TRUE(SpinUntil([&] { return recorder->Has("result 2 OK"); }));
  EXPECT_EQ(server->Say(QStringLiteral("server"), QByteArray(100, 'x')), 3);
}

TEST_F(Queue, CountsWhatTheConnectionHasNotTaken)
{
  Limit(&Limits::queuedBytes, 1 << 20);
  RawServer raw(meeting.context);
  std::unique_ptr<Link> link;
  QObject::connect(&raw.server, &QLocalServer::newConnection, &raw.server,
                   [&]
                   {
                     link = raw.Next();
                     link->Write(Wire::Status("demo", {"guest"}));
                   });
  Context guest(meeting.context, QStringLiteral("guest"), recorder, 0);
  link->StopReading();
  long long last = 0;
  const auto sayOne = [&]
  { last = std::max(last, guest.Say(QStringLiteral("somebody"), QByteArray(65536, 'x'))); };
  // Ticks hand what waits to the connection and make no room by that.
  EXPECT_FALSE(SpinUntil(
      [&]
      {
        sayOne();
        return last > 64;
      },
      1500));
  EXPECT_GE(last, 15);
  EXPECT_EQ(log.Warnings().size(), 1u);
  link->ResumeReading();
  EXPECT_TRUE(SpinUntil([&] { return guest.Say(QStringLiteral("somebody"), "x") > last; }));
}

TEST_F(Queue, WithoutALimitTakesAll)
{
  Serve();
  for (int id = 1; id <= 5000; ++id)
    ASSERT_EQ(server->Say(QStringLiteral("nobody"), QByteArray(1000, 'x')), id);
  EXPECT_THAT(log.Warnings(), IsEmpty());
}

// ---- Slow readers ---------------------------------------------------------------------------------------

class Unwritten : public Limited
{
protected:
  // Says until a message does not reach "slow", and gives how many did.
  int Fill(RawClient* tell, int atMost)
  {
    for (int id = 1; id <= atMost; ++id)
    {
      tell->Say(id, "slow", QByteArray(65536, 'x'));
      const QByteArray word = tell->Result(id);
      if (word != "OK")
      {
        EXPECT_EQ(word, "NOT WRITTEN");
        return id - 1;
      }
    }
    return atMost;
  }
};

TEST_F(Unwritten, BeyondTheLimitIsNotWrittenUntilTheClientHasRead)
{
  Limit(&Limits::unwrittenBytes, 512 << 10);
  Serve();
  const auto slow = Joined("slow");
  const auto tell = Joined("tell");
  slow->StopReading();
  const int written = Fill(tell.get(), 100);
  EXPECT_GE(written, 7);
  EXPECT_LT(written, 40);
  EXPECT_TRUE(slow->IsConnected());
  EXPECT_THAT(log.Warnings(), ElementsAre("A message finds too much unread before it and is not forwarded"));
  ExpectService();

  slow->ResumeReading();
  EXPECT_TRUE(slow->Got("MESSAGE", written));
  tell->Say(1000, "slow", "again");
  EXPECT_EQ(tell->Result(1000), "OK");
}

TEST_F(Unwritten, IsFilledToTheLastByte)
{
  const QByteArray forwarded = Wire::Message("demo", 0, "tell", QByteArray(100, 'x'));
  Limit(&Limits::unwrittenBytes, forwarded.size());
  Serve();
  const auto hear = Joined("hear");
  const auto tell = Joined("tell");
  tell->Say(1, "hear", QByteArray(101, 'x'));
  EXPECT_EQ(tell->Result(1), "NOT WRITTEN");
  tell->Say(2, "hear", QByteArray(100, 'x'));
  EXPECT_EQ(tell->Result(2), "OK");
  EXPECT_TRUE(hear->Got("MESSAGE", 1));
}

TEST_F(Unwritten, WithoutALimitTakesAll)
{
  Serve();
  const auto slow = Joined("slow");
  const auto tell = Joined("tell");
  slow->StopReading();
  EXPECT_EQ(Fill(tell.get(), 60), 60);
}

TEST_F(Unwritten, OfListsDisconnectsAtTwiceTheLimitAndHoldsNobodyUp)
{
  Limit(&Limits::unwrittenBytes, 256 << 10);
  Serve();
  Peer stopped(meeting.context, QStringLiteral("stopped"));
  ASSERT_TRUE(stopped.IsReady());
  const auto member = Joined("member");
  stopped.Stop();
  // Three lists for each who comes and goes.
  const QByteArray longName(100000, 'n');
  for (int i = 0; i < 20 && log.Warnings().empty(); ++i)
  {
    const auto guest = Joined(longName);
    EXPECT_TRUE(member->Sees("member," + longName + ",server,stopped", 1) ||
                member->Sees("member," + longName + ",server"));
  }
  EXPECT_THAT(log.Warnings(), ElementsAre("Disconnected a client that does not read: stopped"));
  EXPECT_TRUE(member->Sees("member,server"));
  ExpectService();

  stopped.Continue();
  EXPECT_TRUE(member->Sees("member,server,stopped"));
}

TEST_F(Unwritten, IsLimitedAndYetNothingIsLostOfOneWhoLeavesWhileAnotherIsAdmitted)
{
  Limit(&Limits::unwrittenBytes, 256 << 10);
  Serve();
  auto guest = Joined("guest");
  RawClient other(meeting.context);
  for (int id = 1; id <= 50; ++id)
    guest->Say(id, "server", "goodbye");
  guest.reset();
  other.Write(Wire::Introduction("demo", "other"));
  EXPECT_TRUE(other.Sees("other,server"));
  EXPECT_TRUE(SpinUntil([&] { return recorder->Count("message guest goodbye") == 50; }));
}

// ---- Clients --------------------------------------------------------------------------------------------

using Clients = Limited;

TEST_F(Clients, BeyondTheLimitAreRefusedUntilOneLeaves)
{
  Limit(&Limits::clients, 3);
  Serve();
  auto first = Joined("first");
  const auto second = Joined("second");
  for (int i = 0; i < 10; ++i)
  {
    RawClient third(meeting.context);
    third.Write(Wire::Introduction("demo", "third"));
    EXPECT_TRUE(third.IsClosed());
    EXPECT_TRUE(third.bytes.isEmpty());
  }
  EXPECT_THAT(log.Warnings(), ElementsAre("Too many clients: refused another"));
  second->Say(1, "first", "still");
  EXPECT_EQ(second->Result(1), "OK");

  first.reset();
  ASSERT_TRUE(second->Sees("second,server"));
  Joined("third");
}

TEST_F(Clients, CountThoseWhoAreNotAdmitted)
{
  Limit(&Limits::clients, 2);
  Limit(&Limits::admissionTime, hugest);
  Serve();
  RawClient silent(meeting.context);
  RawClient refused(meeting.context);
  EXPECT_TRUE(refused.IsClosed());
  EXPECT_TRUE(silent.IsConnected());
  EXPECT_TRUE(silent.Join("guest"));
}

TEST_F(Clients, WithoutALimitAllCome)
{
  Serve();
  std::vector<std::unique_ptr<RawClient>> many;
  for (int i = 0; i < 40; ++i)
    many.push_back(Joined(QByteArray::number(i)));
  for (const auto& client : many)
    EXPECT_TRUE(client->IsConnected());
  EXPECT_THAT(log.Warnings(), IsEmpty());
}

// ---- Rate -----------------------------------------------------------------------------------------------

using Rate = Limited;

TEST_F(Rate, OfAClientIsHeldWhileOthersAreHeardAtOnce)
{
  Limit(&Limits::clientRate, 1000);
  Serve();
  const auto loud = Joined("loud");
  const auto quiet = Joined("quiet");
  loud->Say(1, "server", QByteArray(1000000, 'x')); // for which it pays a quarter of an hour
  ASSERT_EQ(loud->Result(1), "OK");
  loud->Say(2, "server", "more");
  for (int id = 1; id <= 10; ++id)
  {
    quiet->Say(id, "server", "little");
    EXPECT_EQ(quiet->Result(id), "OK");
  }
  EXPECT_FALSE(recorder->Has("message loud more"));

  // What had been said before one left is passed on all the same.
  loud->Close();
  EXPECT_TRUE(SpinUntil([&] { return recorder->Has("message loud more"); }));
}

TEST_F(Rate, LetsAClientGoOnWhenItHasPaid)
{
  Limit(&Limits::clientRate, 1 << 20);
  Serve();
  const auto client = Joined("client");
  QElapsedTimer time;
  time.start();
  for (int id = 1; id <= 3; ++id)
    client->Say(id, "server", QByteArray(1 << 18, 'x'));
  for (int id = 1; id <= 3; ++id)
    EXPECT_EQ(client->Result(id), "OK");
  EXPECT_GE(time.elapsed(), 450); // two quarters of a second, less what a clock may be off
}

TEST_F(Rate, CountsGarbageToo)
{
  Limit(&Limits::clientRate, 1000);
  Serve();
  const auto client = Joined("client");
  client->Write(QByteArray(1000000, 'g'));
  ASSERT_TRUE(SpinUntil([&] { return !log.Errors().empty(); }));
  client->Say(1, "server", "after garbage");
  const auto quiet = Joined("quiet");
  for (int id = 1; id <= 20; ++id)
  {
    quiet->Say(id, "server", "little");
    EXPECT_EQ(quiet->Result(id), "OK");
  }
  EXPECT_FALSE(recorder->Has("message client after garbage"));
}

TEST_F(Rate, DoesNotHoldTheServersOwnParticipant)
{
  Limit(&Limits::clientRate, 1);
  Serve();
  for (int id = 1; id <= 3; ++id)
    server->Say(QStringLiteral("server"), QByteArray(100000, 'x'));
  EXPECT_TRUE(SpinUntil([&] { return recorder->Has("result 3 OK"); }));
}

} // namespace
