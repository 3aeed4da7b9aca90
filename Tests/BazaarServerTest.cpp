// The serving process against clients that speak by hand, well and badly.

#include "Support/Peer.h"
#include "Support/Processes.h"
#include "Support/Raw.h"
#include "Support/Spin.h"
#include "Support/Wire.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>

#include <cstdio>
#include <limits>
#include <map>
#include <memory>
#include <vector>

namespace
{

const int least = std::numeric_limits<int>::min();
const int most = std::numeric_limits<int>::max();

// The lengths in a packet, in their order on the wire.
enum Field
{
  HeaderSize,
  ContextSize,
  CommandSize,
  BodySize,
  FirstSize,
  SecondSize
};

// Message 7 to "hear", with lengths that lie and checksums that do not.
QByteArray Lying(const std::map<Field, qint64>& lies)
{
  const auto length = [&](Field field, qint64 truth)
  {
    const auto lie = lies.find(field);
    return Wire::Int(lie == lies.end() ? truth : lie->second);
  };
  const QByteArray body = Wire::Little(7, 8) + length(FirstSize, 4) + "hear" + length(SecondSize, 3) + "hey";
  const QByteArray header = length(ContextSize, 4) + "demo" + length(CommandSize, 7) + "MESSAGE" +
                            length(BodySize, body.size()) + Wire::Little(Wire::Crc(body), 2);
  return Wire::Signature() + length(HeaderSize, header.size()) + Wire::Little(Wire::Crc(header), 2) + header +
         body;
}

// A library's participant serves; "hear" listens, and what the tests write by hand goes to it.
class Server : public testing::Test
{
protected:
  void SetUp() override
  {
    ASSERT_TRUE(peer.IsReady());
    hear = std::make_unique<RawClient>(meeting.context);
    ASSERT_TRUE(hear->Join("hear"));
  }

  // The server has looked at every client since this was called.
  void WaitForTick()
  {
    ++lastId;
    hear->Say(lastId, "nobody", QByteArray());
    ASSERT_EQ(hear->Result(lastId), "NO RECIPIENT");
  }

  bool Hears(const QByteArray& sender, const QByteArray& data, int limit = 20000)
  {
    return SpinUntil([&] { return CountHeard(sender, data) > 0; }, limit);
  }

  int CountHeard(const QByteArray& sender, const QByteArray& data) const
  {
    int count = 0;
    for (const Wire::Received& packet : hear->Of("MESSAGE"))
      count += packet.First() == sender && packet.Second() == data ? 1 : 0;
    return count;
  }

  bool Logs(const QByteArray& text, int limit = 20000)
  {
    return SpinUntil([&] { return peer.log.contains(text); }, limit);
  }

  std::unique_ptr<RawClient> Joined(const QByteArray& name)
  {
    auto client = std::make_unique<RawClient>(meeting.context);
    EXPECT_TRUE(client->Join(name));
    return client;
  }

  QByteArray ToHear(const QByteArray& data, qint64 id = 1) const
  {
    return Wire::Message("demo", id, "hear", data);
  }

  Meeting meeting{QStringLiteral("demo")};
  Peer peer{meeting.context, QStringLiteral("server")};
  std::unique_ptr<RawClient> hear;
  qint64 lastId = 1000;
};

// ---- Admission ------------------------------------------------------------------------------------------

TEST_F(Server, ListsItsOwnNameAndEverybodyElsesInByteOrder)
{
  const auto big = Joined("Z");
  const auto small = Joined("a");
  const auto foreign = Joined("\xc3\xa9");
  for (Link* link : {static_cast<Link*>(hear.get()), static_cast<Link*>(big.get()),
                     static_cast<Link*>(small.get()), static_cast<Link*>(foreign.get())})
    EXPECT_TRUE(link->Sees("Z,a,hear,server,\xc3\xa9"));
}

TEST_F(Server, WritesStatusByteForByte)
{
  EXPECT_EQ(hear->bytes, Wire::Status("demo", {"hear", "server"}));
}

TEST_F(Server, TellsTheMembersTwiceForEveryAdmissionAndOnceForEveryDeparture)
{
  WaitForTick();
  ASSERT_EQ(hear->Of("STATUS").size(), 1u);

  auto guest = Joined("guest");
  WaitForTick();
  std::vector<Wire::Received> lists = hear->Of("STATUS");
  ASSERT_EQ(lists.size(), 3u);
  EXPECT_EQ(lists[1].Names(), (QVector<QByteArray>{"hear", "server"}));
  EXPECT_EQ(lists[2].Names(), (QVector<QByteArray>{"guest", "hear", "server"}));
  EXPECT_EQ(guest->Of("STATUS").size(), 1u);

  guest.reset();
  ASSERT_TRUE(hear->Got("STATUS", 4));
  WaitForTick();
  lists = hear->Of("STATUS");
  ASSERT_EQ(lists.size(), 4u);
  EXPECT_EQ(lists[3].Names(), (QVector<QByteArray>{"hear", "server"}));
}

TEST_F(Server, AdmitsAStrangeIntroductionWithAWarning)
{
  RawClient guest(meeting.context);
  guest.Write(Wire::Message("demo", 5, "somebody", "guest"));
  EXPECT_TRUE(guest.Sees("guest,hear,server"));
  EXPECT_TRUE(Logs("Something strange with the initial message (MESSAGE ID: 5; RECIPIENT NAME: \"somebody\"; "
                   "MESSAGE: \"guest\")\n"));
  EXPECT_TRUE(peer.log.contains("\nW"));
}

TEST_F(Server, LeavesASocketOpenWhoseFirstPacketIsNoMessageAndNeverReadsItAgain)
{
  [[maybe_unused]] const long long before = MemoryOf(peer.Pid(), "VmRSS");
  RawClient guest(meeting.context);
  guest.Write(Wire::Status("demo", {"guest"}));
  ASSERT_TRUE(Logs("Got the command STATUS (expected: MESSAGE)\n"));

  const int flood = 32 * 1024 * 1024;
  guest.Write(Wire::Introduction("demo", "guest"));
  guest.Write(QByteArray(flood, 'x'));
  for (int i = 0; i < 10; ++i)
    WaitForTick();
  EXPECT_TRUE(guest.IsConnected());
  EXPECT_TRUE(SpinUntil([&] { return guest.socket->bytesToWrite() == 0; }));
  WaitForTick();
  EXPECT_TRUE(guest.IsConnected());
  EXPECT_TRUE(guest.bytes.isEmpty());
  EXPECT_EQ(hear->Members(), "hear,server");
#ifndef TAVRIK_SANITIZED // a sanitizer keeps freed memory for a while
  EXPECT_LT(MemoryOf(peer.Pid(), "VmRSS") - before, flood / 2);
#endif
}

TEST_F(Server, KeepsNoDescriptorOfThoseWhoseFirstPacketIsNoMessageOnceTheyHaveHungUp)
{
  const auto descriptors = [&]
  {
    return QDir(QStringLiteral("/proc/%1/fd").arg(peer.Pid()))
        .entryList(QDir::AllEntries | QDir::System)
        .size();
  };
  WaitForTick();
  const int before = descriptors();
  const int count = 200;
  for (int i = 0; i < count; ++i)
  {
    RawClient guest(meeting.context);
    guest.Write(Wire::Status("demo", {"guest"}) + QByteArray(i % 3, 'x'));
    guest.Write(QByteArray(i % 2 * 100000, 'x'));
    ASSERT_TRUE(SpinUntil([&] { return peer.log.count("Got the command STATUS") == i + 1; }));
  }
  EXPECT_TRUE(SpinUntil([&] { return descriptors() <= before; })) << descriptors() - before;
}

TEST_F(Server, ShowsControlCharactersOfCommandsAndNamesEscapedInItsLog)
{
  const QByteArray hostile = "bad" + QByteArray("\0", 1) + "\x1b[2J\nE20260101 forged";
  const QByteArray shown = "bad\\x00\\x1b[2J\\nE20260101 forged";
  RawClient first(meeting.context);
  first.Write(Wire::Packet("demo", hostile, "1234567890"));
  EXPECT_TRUE(Logs("Got the command " + shown + " (expected: MESSAGE)\n"));
  const auto guest = Joined(hostile);
  guest->Write(Wire::Packet("demo", hostile, "1234567890"));
  EXPECT_TRUE(Logs("Unexpected command \"" + shown + "\" from the client " + shown + "\n"));
  RawClient second(meeting.context);
  second.Write(Wire::Introduction("demo", hostile));
  EXPECT_TRUE(Logs("The client with the name \"" + shown + "\" has alredy connected\n"));
  RawClient strange(meeting.context);
  strange.Write(Wire::Message("demo", 5, hostile, "caf\xc3\xa9\r"));
  EXPECT_TRUE(Logs("RECIPIENT NAME: \"" + shown + "\"; MESSAGE: \"caf\xc3\xa9\\r\")\n"));
  EXPECT_FALSE(peer.log.contains('\x1b'));
  EXPECT_FALSE(peer.log.contains("\nE20260101"));
}

TEST_F(Server, RefusesANameThatIsTakenAndLetsTheFirstKeepIt)
{
  const auto first = Joined("guest");
  RawClient second(meeting.context);
  second.Write(Wire::Introduction("demo", "guest"));
  EXPECT_TRUE(second.IsClosed());
  EXPECT_TRUE(second.bytes.isEmpty());
  EXPECT_TRUE(Logs("The client with the name \"guest\" has alredy connected\n"));

  hear->Say(1, "guest", "who");
  EXPECT_EQ(hear->Result(1), "OK");
  EXPECT_TRUE(first->Got("MESSAGE", 1));
}

TEST_F(Server, RefusesItsOwnName)
{
  RawClient second(meeting.context);
  second.Write(Wire::Introduction("demo", "server"));
  EXPECT_TRUE(second.IsClosed());
  EXPECT_TRUE(Logs("The client with the name \"server\" has alredy connected\n"));
}

TEST_F(Server, FreesANameAtOnceWhenItsHolderLeaves)
{
  for (int i = 0; i < 20; ++i)
  {
    RawClient guest(meeting.context);
    ASSERT_TRUE(guest.Join("guest")) << i;
  }
  EXPECT_FALSE(peer.log.contains("alredy"));
}

TEST_F(Server, AdmitsAnIntroductionThatComesInTwoPieces)
{
  const QByteArray introduction = Wire::Introduction("demo", "guest");
  for (const int cut : {1, 10, 22, 24, 28, 29, 30, 31, 48, introduction.size() - 1})
  {
    SCOPED_TRACE(cut);
    RawClient guest(meeting.context);
    guest.Write(introduction.left(cut));
    SpinFor(120); // the sender's pause: more than two looks of the server
    guest.Write(introduction.mid(cut));
    ASSERT_TRUE(guest.Sees("guest,hear,server"));
    guest.Close();
    ASSERT_TRUE(hear->Sees("hear,server"));
  }
}

TEST_F(Server, GoesOnWhenAPeerLeavesInTheMiddleOfItsIntroduction)
{
  const QByteArray introduction = Wire::Introduction("demo", "guest");
  for (int cut = 0; cut < introduction.size(); cut += cut < 32 ? 4 : 7)
  {
    SCOPED_TRACE(cut);
    const int before = peer.log.count("Can't read a packet\n");
    {
      RawClient guest(meeting.context);
      guest.Write(introduction.left(cut));
    }
    ASSERT_TRUE(SpinUntil([&] { return peer.log.count("Can't read a packet\n") > before; }));
    WaitForTick();
  }
  EXPECT_EQ(hear->Members(), "hear,server");
}

TEST_F(Server, FindsAnIntroductionBehindGarbage)
{
  RawClient guest(meeting.context);
  guest.Write("garbage <<TAVRIK:BAZAAR:IPC:1.0 <" + Wire::Introduction("demo", "guest"));
  EXPECT_TRUE(guest.Sees("guest,hear,server"));
}

TEST_F(Server, ClosesAPeerWhoseIntroductionCannotBeRead)
{
  const QByteArray good = Wire::Introduction("demo", "guest");
  QByteArray wrongHeader = good;
  wrongHeader[27] = static_cast<char>(wrongHeader[27] ^ 1);
  QByteArray wrongBody = good;
  wrongBody[good.size() - 1] = static_cast<char>(wrongBody[good.size() - 1] ^ 1);
  QByteArray shortHeader = good;
  shortHeader.replace(23, 4, Wire::Int(13));
  for (const QByteArray& bad : {wrongHeader, wrongBody, shortHeader, Wire::Packet("demo", "", "1234567890"),
                                Wire::Packet("demo", "MESSAGE", "123")})
  {
    const int before = peer.log.count("Can't read a packet\n");
    RawClient guest(meeting.context);
    guest.Write(bad);
    EXPECT_TRUE(guest.IsClosed());
    EXPECT_TRUE(SpinUntil([&] { return peer.log.count("Can't read a packet\n") == before + 1; }));
  }
  EXPECT_EQ(hear->Members(), "hear,server");
}

TEST_F(Server, AdmitsANameThatIsEmptyOrHoldsAnyBytes)
{
  const auto nameless = Joined("");
  const auto odd = Joined(QByteArray("\0\xff;", 3));
  WaitForTick();
  EXPECT_EQ(hear->Of("STATUS").back().Names(),
            (QVector<QByteArray>{QByteArray(), QByteArray("\0\xff;", 3), "hear", "server"}));
  hear->Say(1, QByteArray("\0\xff;", 3), "hi");
  EXPECT_EQ(hear->Result(1), "OK");
  EXPECT_TRUE(odd->Got("MESSAGE", 1));
}

// ---- Routing --------------------------------------------------------------------------------------------

TEST_F(Server, ForwardsAMessageWithIdZeroAndTheSendersNameAndAnswersWithItsId)
{
  const auto guest = Joined("guest");
  WaitForTick();
  const int heard = hear->bytes.size();
  const int answered = guest->bytes.size();
  // A packet's own context name does not matter; the server puts its own.
  guest->Write(Wire::Message("another", 0x1122334455667788, "hear", QByteArray("a\0b", 3)));
  ASSERT_TRUE(hear->Got("MESSAGE", 1));
  ASSERT_TRUE(guest->Got("RESULT", 1));
  EXPECT_EQ(hear->bytes.mid(heard), Wire::Message("demo", 0, "guest", QByteArray("a\0b", 3)));
  EXPECT_EQ(guest->bytes.mid(answered),
            Wire::Packet("demo", "RESULT", Wire::MessageBody(0x1122334455667788, "OK", "")));
}

TEST_F(Server, AnswersAMessageToNobodyWithNoRecipientAndItsId)
{
  const auto guest = Joined("guest");
  const int answered = guest->bytes.size();
  guest->Say(-3, "nobody", "hi");
  ASSERT_TRUE(guest->Got("RESULT", 1));
  EXPECT_EQ(guest->bytes.mid(answered),
            Wire::Packet("demo", "RESULT", Wire::MessageBody(-3, "NO RECIPIENT", "")));
}

TEST_F(Server, PassesMessagesBetweenItsOwnParticipantAndClients)
{
  peer.Say(QStringLiteral("hear"), "from inside");
  EXPECT_TRUE(Hears("server", "from inside"));
  EXPECT_TRUE(peer.Told(QStringLiteral("result 1 OK")));
  hear->Say(1, "server", "from outside");
  EXPECT_EQ(hear->Result(1), "OK");
  EXPECT_TRUE(peer.Told(QStringLiteral("message hear ") + QByteArray("from outside").toBase64()));
}

TEST_F(Server, RoutesAMessageToItsOwnSender)
{
  hear->Say(5, "hear", "to me");
  EXPECT_EQ(hear->Result(5), "OK");
  EXPECT_TRUE(Hears("hear", "to me"));
  EXPECT_EQ(hear->packets.back().command, "RESULT") << "the answer follows the message";
}

TEST_F(Server, DropsARecipientThatItFindsDisconnectedAndTellsTheSenderNothing)
{
  // It leaves with more to say to itself than ticks can take before its departure is seen.
  auto guest = Joined("guest");
  QByteArray words;
  for (int i = 1; i <= 100; ++i)
    words += Wire::Message("demo", i, "guest", "to me");
  guest->Write(words);
  guest.reset();
  EXPECT_TRUE(Logs("Client guest is not connected\n"));
  EXPECT_TRUE(peer.log.contains("\nW"));
  WaitForTick();
  EXPECT_EQ(peer.log.count("Client guest is not connected\n"), 1);
  EXPECT_TRUE(hear->Sees("hear,server"));
}

TEST_F(Server, LogsACommandThatIsNoMessageAndGoesOn)
{
  const auto guest = Joined("guest");
  guest->Write(Wire::Status("demo", {"a name long enough"}));
  guest->Write(Wire::Packet("demo", "HELLO", "1234567890"));
  guest->Write(ToHear("after"));
  EXPECT_TRUE(Hears("guest", "after"));
  EXPECT_TRUE(Logs("Unexpected command \"STATUS\" from the client guest\n"));
  EXPECT_TRUE(Logs("Unexpected command \"HELLO\" from the client guest\n"));
}

TEST_F(Server, KeepsTheOrderOfOneClientsMessages)
{
  const auto guest = Joined("guest");
  QByteArray words;
  for (int i = 0; i < 40; ++i)
    words += ToHear(QByteArray::number(i), i);
  guest->Write(words);
  ASSERT_TRUE(hear->Got("MESSAGE", 40));
  const std::vector<Wire::Received> messages = hear->Of("MESSAGE");
  for (int i = 0; i < 40; ++i)
    EXPECT_EQ(messages[static_cast<std::size_t>(i)].Second(), QByteArray::number(i));
}

TEST_F(Server, TakesAtMostOnePacketOfAClientPerTickAndServesOthersMeanwhile)
{
  const auto guest = Joined("guest");
  const auto other = Joined("other");
  QByteArray words;
  for (int i = 1; i <= 100; ++i)
    words += ToHear("one of many", i);
  guest->Write(words);
  ASSERT_TRUE(hear->Got("MESSAGE", 1));
  QElapsedTimer watch;
  watch.start();
  other->Write(ToHear("in between"));
  ASSERT_TRUE(Hears("other", "in between"));
  EXPECT_LT(CountHeard("guest", "one of many"), 100);
  ASSERT_TRUE(hear->Got("MESSAGE", 101));
  EXPECT_GE(watch.elapsed(), 1700) << "99 more ticks of 20 ms, less what came with the first look";
}

TEST_F(Server, RoutesWhatAClientHadSaidWhenItLeft)
{
  auto guest = Joined("guest");
  QByteArray words;
  for (int i = 1; i <= 50; ++i)
    words += ToHear(QByteArray::number(i), i);
  guest->Write(words);
  guest.reset();
  EXPECT_TRUE(hear->Got("MESSAGE", 50));
  EXPECT_TRUE(hear->Sees("hear,server"));
  WaitForTick();
  EXPECT_EQ(hear->Of("MESSAGE").size(), 50u);
}

TEST_F(Server, RoutesWhatAClientHadSaidBehindAWordToItself)
{
  auto guest = Joined("guest");
  QByteArray words;
  for (int i = 1; i <= 50; ++i)
    words += Wire::Message("demo", i, "guest", "to me") + ToHear(QByteArray::number(i), i);
  guest->Write(words);
  guest.reset();
  EXPECT_TRUE(hear->Sees("hear,server"));
  EXPECT_TRUE(hear->Got("MESSAGE", 50)) << hear->Of("MESSAGE").size();
}

TEST_F(Server, RoutesWhatAClientHadSaidWhenAnotherIsAdmittedBeforeItsDepartureIsSeen)
{
  auto guest = Joined("guest");
  peer.Stop();
  for (int i = 1; i <= 50; ++i)
    guest->Write(ToHear(QByteArray::number(i), i));
  guest.reset();
  RawClient other(meeting.context);
  other.Write(Wire::Introduction("demo", "other"));
  peer.Continue();
  EXPECT_TRUE(hear->Sees("hear,other,server"));
  EXPECT_TRUE(hear->Got("MESSAGE", 50)) << hear->Of("MESSAGE").size();
}

TEST_F(Server, RoutesWhatAClientHadSaidThatLeftBeforeItWasAdmitted)
{
  peer.Stop();
  {
    RawClient guest(meeting.context);
    guest.Write(Wire::Introduction("demo", "guest"));
    for (int i = 1; i <= 50; ++i)
      guest.Write(ToHear(QByteArray::number(i), i));
  }
  peer.Continue();
  EXPECT_TRUE(hear->Got("MESSAGE", 50)) << hear->Of("MESSAGE").size();
  EXPECT_TRUE(hear->Sees("hear,server"));
}

TEST_F(Server, RoutesWhatAClientHadSaidWhenItLeftWithMoreToRead)
{
  auto guest = Joined("guest");
  guest->StopReading();
  hear->Say(1, "guest", QByteArray(4 * 1024 * 1024, 'x'));
  ASSERT_EQ(hear->Result(1), "OK");
  peer.Stop();
  for (int i = 1; i <= 50; ++i)
    guest->Write(ToHear(QByteArray::number(i), i));
  guest.reset();
  peer.Continue();
  EXPECT_TRUE(hear->Sees("hear,server"));
  EXPECT_TRUE(hear->Got("MESSAGE", 50)) << hear->Of("MESSAGE").size();
}

TEST_F(Server, ListsNobodyWhoLeftTogetherWithAnother)
{
  std::vector<std::unique_ptr<RawClient>> guests;
  for (const char* name : {"a", "b", "c", "x", "y", "z"})
    guests.push_back(Joined(name));
  peer.Stop();
  guests.clear();
  peer.Continue();
  EXPECT_TRUE(hear->Sees("hear,server"));
  WaitForTick();
  EXPECT_EQ(hear->Members(), "hear,server");
}

TEST_F(Server, NeverListsAClientThatHadGoneWhenItWasAdmitted)
{
  {
    RawClient guest(meeting.context);
    guest.Write(Lying({{BodySize, most}}));
  }
  ASSERT_TRUE(Logs("Something strange"));
  WaitForTick();
  EXPECT_TRUE(hear->Sees("hear,server", 3000)) << hear->Members().toStdString();
}

TEST_F(Server, IsNotHeldUpForLongByAClientThatStopsReadingWhenOthersComeAndGo)
{
  RawClient deaf(meeting.context);
  ASSERT_TRUE(deaf.Join("deaf"));
  deaf.StopReading();
  hear->Say(1, "deaf", QByteArray(4 * 1024 * 1024, 'x'));
  ASSERT_EQ(hear->Result(1), "OK");
  QElapsedTimer watch;
  watch.start();
  const auto guest = Joined("guest");
  WaitForTick();
  EXPECT_LT(watch.elapsed(), 5000);
}

TEST_F(Server, ForgetsAPacketWhoseSenderLeftInTheMiddle)
{
  for (int cut = 1; cut < ToHear("hi").size(); cut += 9)
  {
    auto guest = Joined("guest");
    guest->Write(ToHear("hi").left(cut));
    guest.reset();
    ASSERT_TRUE(hear->Sees("hear,server"));
  }
  WaitForTick();
  EXPECT_TRUE(hear->Of("MESSAGE").empty());
}

TEST_F(Server, ServesOthersWhileARecipientDoesNotRead)
{
  RawClient deaf(meeting.context);
  ASSERT_TRUE(deaf.Join("deaf"));
  deaf.StopReading();
  const auto guest = Joined("guest");
  guest->Say(1, "deaf", QByteArray(4 * 1024 * 1024, 'x'));
  EXPECT_EQ(guest->Result(1), "OK");
  for (int i = 0; i < 10; ++i)
    WaitForTick();
  guest->Write(ToHear("still here"));
  EXPECT_TRUE(Hears("guest", "still here", 2000));
}

// ---- Streams in pieces and in disorder ------------------------------------------------------------------

TEST_F(Server, DeliversAPacketThatIsCutAtAnyByteAndServesOthersMeanwhile)
{
  const auto guest = Joined("guest");
  const QByteArray whole = ToHear("hey");
  for (int cut = 1; cut < whole.size(); ++cut)
  {
    SCOPED_TRACE(cut);
    guest->Write(whole.left(cut));
    WaitForTick();
    ASSERT_EQ(CountHeard("guest", "hey"), cut - 1);
    guest->Write(whole.mid(cut));
    ASSERT_TRUE(SpinUntil([&] { return CountHeard("guest", "hey") == cut; }));
  }
  EXPECT_FALSE(peer.log.contains("\nE")) << peer.log.toStdString();
}

TEST_F(Server, DeliversALongPacketInPiecesAndServesOthersMeanwhile)
{
  const auto guest = Joined("guest");
  const QByteArray data(1024 * 1024, 'x');
  const QByteArray whole = ToHear(data);
  const int step = whole.size() / 8 + 1;
  for (int offset = 0; offset < whole.size(); offset += step)
  {
    ASSERT_EQ(CountHeard("guest", data), 0);
    guest->Write(whole.mid(offset, step));
    WaitForTick();
    WaitForTick();
  }
  EXPECT_TRUE(Hears("guest", data));
  EXPECT_FALSE(peer.log.contains("\nE")) << peer.log.toStdString();
}

TEST_F(Server, FindsAPacketBehindGarbage)
{
  const auto guest = Joined("guest");
  const QByteArray almost = Wire::Signature().chopped(1);
  int heard = 0;
  for (const QByteArray& garbage :
       {QByteArray("x"), QByteArray("<"), QByteArray("<<"), almost, almost + '<', QByteArray(47, 'x'),
        QByteArray(48, 'x'), QByteArray(100000, '<'), QByteArray(70, '\0')})
  {
    SCOPED_TRACE(garbage.left(60).toStdString());
    guest->Write(garbage + ToHear("behind"));
    ++heard;
    ASSERT_TRUE(SpinUntil([&] { return CountHeard("guest", "behind") == heard; }));
  }
}

TEST_F(Server, ThrowsGarbageAwayAndSaysSo)
{
  const auto guest = Joined("guest");
  guest->Write(QByteArray(200, 'x'));
  EXPECT_TRUE(Logs("Can't read a packet\n", 5000));
  guest->Write(ToHear("behind"));
  EXPECT_TRUE(Hears("guest", "behind", 5000));
}

TEST_F(Server, KeepsABegunSignatureAtTheEndOfGarbageForASecond)
{
  const auto guest = Joined("guest");
  const QByteArray whole = ToHear("begun");
  guest->Write(QByteArray(100, 'x') + whole.left(10));
  WaitForTick();
  guest->Write(whole.mid(10));
  EXPECT_TRUE(Hears("guest", "begun"));
  EXPECT_FALSE(peer.log.contains("\nE")) << peer.log.toStdString();
}

TEST_F(Server, HearsInSilenceAPacketThatComesShortlyAfterGarbage)
{
  const auto guest = Joined("guest");
  guest->Write(QByteArray(200, 'x'));
  SpinFor(100); // the sender's pause
  guest->Write(ToHear("behind"));
  EXPECT_TRUE(Hears("guest", "behind"));
  EXPECT_FALSE(peer.log.contains("\nE")) << peer.log.toStdString();
}

TEST_F(Server, ReportsAPacketThatIsCutOffBehindGarbageAndHearsTheNext)
{
  const auto guest = Joined("guest");
  guest->Write(QByteArray(30, 'x') + ToHear("cut").left(27));
  const auto other = Joined("other");
  other->Write(QByteArray(30, 'x') + ToHear("cut").left(25));
  EXPECT_TRUE(Logs("Could't read 4 bytes. Have read only 2 (TIMEOUT)\n"));
  EXPECT_TRUE(Logs("Can't read a header size: 0\n"));
  EXPECT_TRUE(Logs("Can't read a packet\n"));
  other->Write(ToHear("next"));
  EXPECT_TRUE(Hears("other", "next"));
  EXPECT_TRUE(Logs("Can't read a header checksum: 0\n"));
  EXPECT_TRUE(Logs("Can't parse a context name\n", 90000));
  EXPECT_TRUE(SpinUntil([&] { return peer.log.count("Can't read a packet\n") == 2; }));
  guest->Write(ToHear("next"));
  EXPECT_TRUE(Hears("guest", "next"));
}

TEST_F(Server, LeavesFewerThan48BytesAlone)
{
  const auto guest = Joined("guest");
  const QByteArray small = Wire::Packet("", "X", "123"); // 47 bytes
  ASSERT_EQ(small.size(), 47);
  guest->Write(small);
  WaitForTick();
  WaitForTick();
  EXPECT_FALSE(peer.log.contains("Can't read a packet"));
  guest->Write(ToHear("after"));
  EXPECT_TRUE(Hears("guest", "after"));
  EXPECT_TRUE(Logs("Can't read a packet\n"));
}

TEST_F(Server, TakesAPacketOf48Bytes)
{
  const auto guest = Joined("guest");
  const QByteArray smallest = Wire::Packet("", "X", "1234");
  ASSERT_EQ(smallest.size(), 48);
  guest->Write(smallest);
  EXPECT_TRUE(Logs("Unexpected command \"X\" from the client guest\n"));
}

TEST_F(Server, GoesOnBehindAPacketWithAnyByteOfItsChecksumsWrong)
{
  const auto guest = Joined("guest");
  const QByteArray good = ToHear("good");
  const int inHeader = good.size() - 16 - 8 - 2; // of the body's checksum
  int heard = 0;
  for (const int position : {27, 28, inHeader, inHeader + 1, good.size() - 1, 30})
    for (const int flip : {0x01, 0x80, 0xff})
    {
      SCOPED_TRACE(position);
      QByteArray bad = good;
      bad[position] = static_cast<char>(bad[position] ^ flip);
      guest->Write(bad + good);
      ++heard;
      ASSERT_TRUE(SpinUntil([&] { return CountHeard("guest", "good") == heard; }));
    }
  EXPECT_EQ(peer.log.count("Can't read a packet\n"), heard);
  WaitForTick();
  EXPECT_EQ(CountHeard("guest", "good"), heard);
}

TEST_F(Server, NamesTheWrongAndTheExpectedChecksum)
{
  const auto guest = Joined("guest");
  const QByteArray body = Wire::MessageBody(1, "hear", "good");
  const QByteArray header =
      Wire::Counted("demo") + Wire::Counted("MESSAGE") + Wire::Int(body.size()) + Wire::Int(1).left(2);
  guest->Write(Wire::Signature() + Wire::Int(header.size()) + Wire::Int(2).left(2) + header + body);
  EXPECT_TRUE(Logs("Invalid header checksum " + QByteArray::number(Wire::Crc(header)) + " (expected: 2)\n"));
  guest->Write(Wire::WithPreamble(header) + body);
  EXPECT_TRUE(Logs("Invalid body checksum " + QByteArray::number(Wire::Crc(body)) + " (expected: 1)\n"));
}

TEST_F(Server, SurvivesEveryWrongLengthAndGoesOnAtTheNextSignature)
{
  struct Lie
  {
    Field field;
    qint64 length;
    const char* line;
  };
  const char* const unreadable = "Can't read a packet\n";
  const char* const context = "Can't parse a context name\n";
  const char* const command = "Can't parse a command\n";
  const char* const name = "Can't parse a client name\n";
  const char* const message = "Can't parse a message\n";
  const std::vector<Lie> lies = {
      {HeaderSize, -1, unreadable},
      {HeaderSize, least, unreadable},
      {HeaderSize, 0, unreadable},
      {HeaderSize, 13, unreadable},
      {HeaderSize, 24, "Invalid header checksum"},
      {HeaderSize, 26, "Invalid header checksum"},
      {ContextSize, -1, context},
      {ContextSize, least, context},
      {ContextSize, most, context},
      {ContextSize, 3, command},
      {ContextSize, 5, command},
      {CommandSize, -1, command},
      {CommandSize, least, command},
      {CommandSize, most, command},
      {CommandSize, 0, unreadable},
      {BodySize, -1, unreadable},
      {BodySize, least, unreadable},
      {BodySize, 3, unreadable},
      {BodySize, 22, "Invalid body checksum"},
      {BodySize, 24, "Invalid body checksum"},
      {FirstSize, -1, name},
      {FirstSize, least, name},
      {FirstSize, most, name},
      {FirstSize, most - 12, name},
      {FirstSize, 3, message},
      {FirstSize, 5, message},
      {SecondSize, -1, message},
      {SecondSize, least, message},
      {SecondSize, most, message},
      {SecondSize, most - 15, message},
      {SecondSize, 4, message},
  };
  const long long before = MemoryOf(peer.Pid(), "VmPeak");
  for (const Lie& lie : lies)
  {
    SCOPED_TRACE(testing::Message() << "field " << lie.field << " says " << lie.length);
    const auto guest = Joined("guest");
    const int logged = peer.log.count(lie.line);
    const int heard = CountHeard("guest", "next");
    // A body that claims one byte too many takes the first of the packet behind it.
    guest->Write(Lying({{lie.field, lie.length}}) + ToHear("lost at worst", 8) + ToHear("next", 9));
    ASSERT_EQ(guest->Result(9), "OK");
    EXPECT_TRUE(SpinUntil([&] { return CountHeard("guest", "next") == heard + 1; }));
    EXPECT_TRUE(SpinUntil([&] { return peer.log.count(lie.line) > logged; }));
    guest->Close();
    ASSERT_TRUE(hear->Sees("hear,server"));
  }
  EXPECT_LT(MemoryOf(peer.Pid(), "VmPeak") - before, 256 * 1024 * 1024);
}

TEST_F(Server, DeliversAnEmptyMessageForABrokenSecondField)
{
  const auto guest = Joined("guest");
  guest->Write(Lying({{SecondSize, most}}));
  EXPECT_EQ(guest->Result(7), "OK");
  EXPECT_TRUE(Hears("guest", ""));
  guest->Write(Lying({{FirstSize, -1}}));
  EXPECT_EQ(guest->Result(7), "OK") << "the first answer";
  ASSERT_TRUE(guest->Got("RESULT", 2));
  EXPECT_EQ(guest->Of("RESULT").back().First(), "NO RECIPIENT");
}

TEST_F(Server, TakesABodyOfFourBytesForAnIdWithZerosBehind)
{
  const auto guest = Joined("guest");
  guest->Write(Wire::Packet("demo", "MESSAGE", Wire::Int(9)));
  EXPECT_EQ(guest->Result(9), "NO RECIPIENT");
  EXPECT_TRUE(Logs("Can't parse a client name\n"));
}

TEST_F(Server, GivesAStalledPacketUpAfterThirtySecondsWithoutFreezingOrTakingMemory)
{
  // What claims more than comes is waited for; the length claimed is never allocated.
  const std::vector<QByteArray> stalls = {Lying({{HeaderSize, most}}), Lying({{BodySize, most}}),
                                          Lying({{BodySize, 200}}), Lying({{CommandSize, 6}}),
                                          ToHear("half").chopped(2)};
  const long long peak = MemoryOf(peer.Pid(), "VmPeak");
  const long long resident = MemoryOf(peer.Pid(), "VmRSS");
  std::vector<std::unique_ptr<RawClient>> guests;
  for (std::size_t i = 0; i < stalls.size(); ++i)
    guests.push_back(Joined("guest" + QByteArray::number(static_cast<int>(i))));
  QElapsedTimer watch;
  watch.start();
  for (std::size_t i = 0; i < stalls.size(); ++i)
    guests[i]->Write(stalls[i]);

  while (!peer.log.contains("Can't read a packet\n") && watch.elapsed() < 60000)
  {
    QElapsedTimer service;
    service.start();
    WaitForTick();
    EXPECT_LT(service.elapsed(), 5000);
  }
  EXPECT_GE(watch.elapsed(), 29900);
  EXPECT_TRUE(SpinUntil([&] { return peer.log.count("Can't read a packet\n") == 3; }));
  EXPECT_TRUE(peer.log.contains("Could't read 2147483647 bytes. Have read only"));
  // A body that is shorter than claimed and fits its checksum is a body.
  EXPECT_EQ(guests[1]->Result(7), "OK");
  EXPECT_EQ(guests[2]->Result(7), "OK");
  EXPECT_TRUE(Hears("guest1", "hey"));

  for (const std::unique_ptr<RawClient>& guest : guests)
  {
    guest->Write(ToHear("back", 77));
    EXPECT_EQ(guest->Result(77), "OK");
  }
  const long long growth = MemoryOf(peer.Pid(), "VmRSS") - resident;
  std::printf("The server's memory has grown by %lld KiB\n", growth / 1024);
  EXPECT_LT(growth, 128 * 1024 * 1024) << "sanitizers keep what was freed";
  EXPECT_LT(MemoryOf(peer.Pid(), "VmPeak") - peak, 256 * 1024 * 1024);
}

TEST_F(Server, TakesNoMemoryForAnIntroductionThatClaimsTwoGibibytes)
{
  const long long peak = MemoryOf(peer.Pid(), "VmPeak");
  int count = 0;
  for (const Field field : {HeaderSize, BodySize})
  {
    {
      RawClient guest(meeting.context);
      guest.Write(Lying({{field, most}}));
    }
    ++count;
    ASSERT_TRUE(SpinUntil([&] { return peer.log.count("Could't read 2147483647 bytes") == count; }));
  }
  WaitForTick();
  EXPECT_LT(MemoryOf(peer.Pid(), "VmPeak") - peak, 256 * 1024 * 1024);
}

} // namespace
