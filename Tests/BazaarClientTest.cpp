// A participant against a server that speaks by hand, well and badly.

#include "Support/Peer.h"
#include "Support/Processes.h"
#include "Support/Raw.h"
#include "Support/Spin.h"
#include "Support/Wire.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>

#include <cstring>
#include <memory>
#include <ostream>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace
{

// When the participant says that it connected, in milliseconds since the epoch; 0 when it does not.
qint64 ConnectionTime(Peer& peer)
{
  const QByteArray words(" has connected to a server (0x");
  if (!SpinUntil([&] { return peer.log.contains(words); }))
    return 0;
  const int end = peer.log.indexOf(words);
  const QByteArray line = peer.log.mid(peer.log.lastIndexOf('\n', end) + 1, 25); // IYYYYMMDD hh:mm:ss.uuuuuu
  return QDateTime::fromString(QString::fromLatin1(line.mid(1, 21)), QStringLiteral("yyyyMMdd hh:mm:ss.zzz"))
      .toMSecsSinceEpoch();
}

qint64 Now()
{
  return QDateTime::currentMSecsSinceEpoch();
}

// The test listens where a server would, and starts a participant that comes to it.
class Client : public testing::Test
{
protected:
  void Start()
  {
    // One that is still there would come back.
    peer.reset();
    link.reset();
    while (raw.Next(0))
      continue;
    peer = std::make_unique<Peer>(meeting.context, QStringLiteral("peer"));
    link = raw.Next();
    ASSERT_TRUE(link);
    const QByteArray introduction = Wire::Introduction("demo", "peer");
    ASSERT_TRUE(SpinUntil([&] { return link->bytes.size() >= introduction.size(); }));
  }

  void Admit()
  {
    link->Write(Wire::Status("demo", {"peer"}));
    ASSERT_TRUE(peer->IsReady());
  }

  void StartAdmittedAndSettled()
  {
    Start();
    Admit();
    // A message to nobody in particular comes only once the connection has settled.
    peer->Say(QStringLiteral("anybody"), "settled");
    ASSERT_TRUE(link->Got("MESSAGE", 2));
  }

  bool Logs(const QByteArray& text, int limit = 20000)
  {
    return SpinUntil([&] { return peer->log.contains(text); }, limit);
  }

  bool SeesMembers(const QString& names, int limit = 20000)
  {
    return SpinUntil(
        [&]
        {
          peer->Tell(QStringLiteral("members"));
          SpinFor(10);
          const QStringList told = peer->Of(QStringLiteral("members "));
          return !told.isEmpty() && told.last() == QStringLiteral("members ") + names;
        },
        limit);
  }

  Meeting meeting{QStringLiteral("demo")};
  RawServer raw{meeting.context};
  std::unique_ptr<Link> link;
  std::unique_ptr<Peer> peer;
};

// ---- Handshake ------------------------------------------------------------------------------------------

TEST_F(Client, IntroducesItselfByteForByteAndReportsTheFirstListAtOnce)
{
  Start();
  EXPECT_EQ(link->bytes, Wire::Introduction("demo", "peer"));
  link->Write(Wire::Status("demo", {"a", "peer", "z"}));
  ASSERT_TRUE(peer->IsReady());
  EXPECT_EQ(peer->lines, (QStringList{"joined a", "joined peer", "joined z", "ready"}));
}

TEST_F(Client, SaysTheFirstMessageByteForByte)
{
  Start();
  Admit();
  peer->Say(QStringLiteral("agent"), "hi");
  ASSERT_TRUE(link->Got("MESSAGE", 2));
  const QByteArray said = link->bytes.mid(Wire::Introduction("demo", "peer").size());
  EXPECT_EQ(said, QByteArray::fromHex("3c54415652494b3a42415a4141523a4950433a312e303e"
                                      "190000004d7e"
                                      "0400000064656d6f070000004d45535341474517000000939c"
                                      "0100000000000000050000006167656e74020000006869"));
}

struct Reply
{
  const char* name;
  QByteArray bytes;
  std::vector<const char*> lines;
};

void PrintTo(const Reply& reply, std::ostream* stream)
{
  *stream << reply.name;
}

class BadReply : public Client, public testing::WithParamInterface<Reply>
{
};

QByteArray Spoilt(QByteArray packet, int position)
{
  packet[position] = static_cast<char>(packet[position] ^ 1);
  return packet;
}

std::vector<Reply> BadReplies()
{
  const QByteArray good = Wire::Status("demo", {"peer"});
  const QByteArray tail = Wire::Int(4) + Wire::Little(Wire::Crc("1234"), 2);
  const QByteArray fill(20, 'x');
  return {
      {"HeaderChecksum", Spoilt(good, 27), {"Invalid header checksum ", "Can't read a packet\n"}},
      {"Header", Spoilt(good, 33), {"Invalid header checksum ", "Can't read a packet\n"}},
      {"BodyChecksum", Spoilt(good, good.size() - 1), {"Invalid body checksum ", "Can't read a packet\n"}},
      {"HeaderLengthOf13", Wire::Signature() + Wire::Int(13) + fill, {"Can't read a packet\n"}},
      {"NegativeHeaderLength", Wire::Signature() + Wire::Int(-1) + fill, {"Can't read a packet\n"}},
      {"ContextName",
       Wire::WithPreamble(Wire::Int(99) + fill) + "1234",
       {"Can't parse a context name\n", "Can't read a packet\n"}},
      {"Command",
       Wire::WithPreamble(Wire::Counted("demo") + Wire::Int(99) + tail) + "1234",
       {"Can't parse a command\n", "Can't read a packet\n"}},
      {"EmptyCommand", Wire::Packet("demo", "", "1234"), {"Can't read a packet\n"}},
      {"BodyOfThreeBytes", Wire::Packet("demo", "STATUS", "123"), {"Can't read a packet\n"}},
      {"AnotherCommand", Wire::Message("demo", 0, "a", "b"), {"Expected STATUS got MESSAGE\n"}},
      {"UnknownCommand", Wire::Packet("demo", "status", Wire::Int(0)), {"Expected STATUS got status\n"}},
      {"NobodyInTheList", Wire::Status("demo", {}), {"Can't parse a body of the command STATUS\n"}},
      {"ThreeOfWhichTwoAreThere",
       Wire::Packet("demo", "STATUS", Wire::Int(3) + Wire::Counted("a") + Wire::Counted("b")),
       {"Can't parse a body of the command STATUS\n"}},
      {"NegativeCount",
       Wire::Packet("demo", "STATUS", Wire::Int(-1)),
       {"Can't parse a body of the command STATUS\n"}},
      {"GarbageOnly", fill, {"Can't read a header size: 0\n", "Can't read a packet\n"}},
      {"NoHeaderChecksum",
       Wire::Signature() + Wire::Int(14),
       {"Can't read a header checksum: 0\n", "Can't read a packet\n"}},
  };
}

TEST_P(BadReply, IsLoggedAndTheConnectionIsKept)
{
  Start();
  link->Write(GetParam().bytes);
  // A reply that stops short is waited for.
  ASSERT_TRUE(peer->IsReady(60000));
  int from = 0;
  for (const char* line : GetParam().lines)
  {
    EXPECT_TRUE(SpinUntil([&] { return peer->log.indexOf(line, from) >= 0; }))
        << line << peer->log.toStdString();
    from = peer->log.indexOf(line, from);
  }
  EXPECT_EQ(peer->lines, QStringList{"ready"}) << "no list is dispatched";
  EXPECT_TRUE(link->IsConnected());

  // The rest of a broken reply may swallow the first of these.
  link->Write(QByteArray(48, ' ') + Wire::Status("demo", {"peer", "x"}));
  EXPECT_TRUE(peer->Told(QStringLiteral("joined x")));
  EXPECT_TRUE(link->IsConnected());
  EXPECT_EQ(peer->log.count("has connected"), 1);
}

INSTANTIATE_TEST_SUITE_P(Reply, BadReply, testing::ValuesIn(BadReplies()),
                         [](const testing::TestParamInfo<Reply>& info)
                         { return std::string(info.param.name); });

TEST_F(Client, TakesAReplyBehindGarbage)
{
  Start();
  link->Write("garbage <<TAVRIK:BAZAAR" + Wire::Status("demo", {"peer"}));
  EXPECT_TRUE(peer->Told(QStringLiteral("joined peer")));
}

TEST_F(Client, TakesAReplyThatComesInTwoPieces)
{
  const QByteArray reply = Wire::Status("demo", {"peer"});
  for (const int cut : {1, 22, 23, 25, 27, 28, 29, 31, 45, reply.size() - 1})
  {
    SCOPED_TRACE(cut);
    Start();
    link->Write(reply.left(cut));
    SpinFor(60); // the sender's pause
    link->Write(reply.mid(cut));
    ASSERT_TRUE(peer->IsReady());
    ASSERT_TRUE(peer->Told(QStringLiteral("joined peer")));
    ASSERT_FALSE(peer->log.contains("\nE")) << peer->log.toStdString();
  }
}

TEST_F(Client, WhoseNameIsRefusedWaitsWithoutBurningACore)
{
  Start();
  link->Close();
  // It cannot know whether a server that lives and listens will answer after all.
  const long long before = ProcessorTimeOf(peer->Pid());
  SpinFor(1500);
  EXPECT_LT(ProcessorTimeOf(peer->Pid()) - before, 300);
  EXPECT_TRUE(peer->IsRunning());
  EXPECT_FALSE(peer->lines.contains(QStringLiteral("ready")));
  EXPECT_FALSE(raw.server.hasPendingConnections());
}

TEST_F(Client, WhoseNameIsRefusedLeavesWhenItsServerProcessDies)
{
  raw.server.close();
  auto first = std::make_unique<Peer>(meeting.context, QStringLiteral("twin"));
  ASSERT_TRUE(first->IsReady());
  Peer second(meeting.context, QStringLiteral("twin"));
  ASSERT_TRUE(SpinUntil([&] { return first->log.contains("alredy connected"); }));
  EXPECT_FALSE(second.IsReady(500));
  first->Kill();
  EXPECT_TRUE(second.IsReady());
  EXPECT_TRUE(SpinUntil([&] { return second.Members() == "twin"; }));
}

// Accepts, reads and never answers.
void ServeInSilence(const char* path)
{
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, path, sizeof(address.sun_path) - 1);
  const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
  if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
      listen(listener, 8) != 0)
    return;
  for (;;)
    if (accept(listener, nullptr, nullptr) < 0)
      return;
}

TEST_F(Client, WhoseServerDiesInTheHandshakeStartsOverAndElectsItself)
{
  raw.server.close();
  const QByteArray path = QFile::encodeName(Wire::ServerName(meeting.context));
  Forked silent([&] { ServeInSilence(path.constData()); });
  ASSERT_TRUE(SpinUntil([&] { return CountServers(meeting.context) == 1; }));
  peer = std::make_unique<Peer>(meeting.context, QStringLiteral("peer"));
  ASSERT_TRUE(Logs("has connected to a server"));
  EXPECT_FALSE(peer->IsReady(300));

  silent.Kill();
  EXPECT_TRUE(peer->IsReady());
  EXPECT_TRUE(SeesMembers(QStringLiteral("peer")));
  EXPECT_EQ(CountServers(meeting.context), 1);
}

TEST_F(Client, WhoseServerHangsUpAfterTheHandshakeElectsAnother)
{
  StartAdmittedAndSettled();
  raw.server.close();
  link->Close();
  EXPECT_TRUE(SpinUntil([&] { return CountServers(meeting.context) == 1; }));
  peer->Say(QStringLiteral("peer"), "alone");
  EXPECT_TRUE(peer->Told(QStringLiteral("message peer ") + QByteArray("alone").toBase64()));
}

// ---- The first 300 ms -----------------------------------------------------------------------------------

TEST_F(Client, WritesNothingInTheFirst300Milliseconds)
{
  Start();
  Admit();
  peer->Say(QStringLiteral("agent"), "hi");
  const qint64 connected = ConnectionTime(*peer);
  ASSERT_GT(connected, 0);
  ASSERT_TRUE(link->Got("MESSAGE", 2));
  EXPECT_GE(Now() - connected, 299);
}

TEST_F(Client, DispatchesOnlyTheLastListOfTheFirst300Milliseconds)
{
  // On a machine so busy that a list was sent too late to be held back, nothing is learnt: another try.
  bool isInTime = false;
  for (int attempt = 0; attempt < 10 && !isInTime; ++attempt)
  {
    Start();
    Admit();
    const qint64 connected = ConnectionTime(*peer);
    ASSERT_GT(connected, 0);
    SpinUntil([&] { return Now() - connected >= 100; });
    link->Write(Wire::Status("demo", {"first", "peer"}));
    SpinUntil([&] { return Now() - connected >= 200; });
    link->Write(Wire::Status("demo", {"peer", "second"}));
    isInTime = Now() - connected < 270;
    ASSERT_TRUE(peer->Told(QStringLiteral("joined second")));
    EXPECT_GE(Now() - connected, 299);
    if (isInTime)
    {
      EXPECT_EQ(peer->lines, (QStringList{"joined peer", "ready", "joined second"}));
    }
  }
  EXPECT_TRUE(isInTime);
}

TEST_F(Client, DispatchesMessagesInTheFirst300Milliseconds)
{
  Start();
  link->Write(Wire::Status("demo", {"peer"}) + Wire::Message("demo", 0, "early", "bird"));
  EXPECT_TRUE(peer->Told(QStringLiteral("message early ") + QByteArray("bird").toBase64()));
}

// ---- Lists, results and messages ------------------------------------------------------------------------

TEST_F(Client, ReportsDeparturesBeforeArrivalsAndNothingForTheSameListAgain)
{
  StartAdmittedAndSettled();
  link->Write(Wire::Status("demo", {"a", "b", "peer"}));
  link->Write(Wire::Status("demo", {"a", "b", "peer"}));
  link->Write(Wire::Status("demo", {"b", "c", "peer"}));
  ASSERT_TRUE(peer->Told(QStringLiteral("joined c")));
  EXPECT_EQ(peer->lines, (QStringList{"joined peer", "ready", "joined a", "joined b", "left a", "joined c"}));
}

TEST_F(Client, IgnoresAListThatIsEmptyOrBroken)
{
  StartAdmittedAndSettled();
  const QByteArray line("Can't parse a body of the command STATUS\n");
  const std::vector<QByteArray> bodies = {Wire::Int(0),
                                          Wire::Int(-1),
                                          Wire::Int(0x7fffffff),
                                          Wire::Int(2) + Wire::Counted("a"),
                                          Wire::Int(3) + Wire::Counted("first") + Wire::Counted("second"),
                                          Wire::Int(1) + Wire::Int(-1),
                                          Wire::Int(1) + Wire::Int(0x7fffffff)};
  for (std::size_t i = 0; i < bodies.size(); ++i)
  {
    link->Write(Wire::Packet("demo", "STATUS", bodies[i]));
    ASSERT_TRUE(SpinUntil([&] { return peer->log.count(line) == static_cast<int>(i) + 1; })) << i;
  }
  EXPECT_TRUE(SeesMembers(QStringLiteral("peer")));
  EXPECT_TRUE(peer->Of(QStringLiteral("left")).isEmpty());
}

TEST_F(Client, ReportsEveryResultWordWithItsId)
{
  StartAdmittedAndSettled();
  const std::vector<std::pair<QByteArray, QString>> words = {
      {"OK", "OK"},
      {"NOT SENT", "NOT SENT"},
      {"NOT WRITTEN", "NOT WRITTEN"},
      {"NO RECIPIENT", "NO RECIPIENT"},
      {"UNKNOWN", "UNKNOWN"},
      {"ok", "UNKNOWN"},
      {"", "UNKNOWN"},
      {QByteArray("OK\0and more", 11), "OK"},
  };
  qint64 id = 1LL << 40;
  for (const auto& word : words)
  {
    ++id;
    link->Write(Wire::Packet("demo", "RESULT", Wire::MessageBody(id, word.first, "")));
    EXPECT_TRUE(peer->Told(QStringLiteral("result %1 %2").arg(id).arg(word.second)))
        << word.first.toStdString();
  }
  EXPECT_FALSE(peer->log.contains("\nE"));
}

TEST_F(Client, ReportsAResultOfWhichOnlyTheIdIsThereWithAnEmptyCode)
{
  StartAdmittedAndSettled();
  link->Write(Wire::Packet("demo", "RESULT", Wire::Little(7, 8)));
  EXPECT_TRUE(peer->Told(QStringLiteral("result 7 UNKNOWN")));
  EXPECT_TRUE(Logs("Can't parse an error code\n"));
  link->Write(Wire::Packet("demo", "RESULT", Wire::Int(8)));
  EXPECT_TRUE(peer->Told(QStringLiteral("result 8 UNKNOWN")));
  link->Write(Wire::Packet("demo", "RESULT", Wire::Little(9, 8) + Wire::Int(-1) + "OK"));
  EXPECT_TRUE(peer->Told(QStringLiteral("result 9 UNKNOWN")));
  EXPECT_TRUE(SpinUntil([&] { return peer->log.count("Can't parse an error code\n") == 3; }));
  EXPECT_FALSE(peer->log.contains("description"));
}

TEST_F(Client, ReportsAResultWithABrokenDescriptionByItsCode)
{
  StartAdmittedAndSettled();
  const QByteArray beginning = Wire::Little(7, 8) + Wire::Counted("OK");
  int count = 0;
  for (const QByteArray& rest : {QByteArray(), Wire::Int(5) + "four", Wire::Int(-1), Wire::Int(0x7fffffff)})
  {
    link->Write(Wire::Packet("demo", "RESULT", beginning + rest));
    ++count;
    ASSERT_TRUE(SpinUntil([&] { return peer->log.count("Can't parse an error description\n") == count; }));
  }
  EXPECT_TRUE(SpinUntil([&] { return peer->lines.count(QStringLiteral("result 7 OK")) == count; }));
}

TEST_F(Client, LogsAnUnknownCommandWithoutTheClosingQuoteAndGoesOn)
{
  StartAdmittedAndSettled();
  link->Write(Wire::Packet("demo", "HELLO", "1234567890") + Wire::Message("demo", 0, "a", "after"));
  EXPECT_TRUE(peer->Told(QStringLiteral("message a ") + QByteArray("after").toBase64()));
  EXPECT_TRUE(Logs("Unexpected command \"HELLO\n"));
}

TEST_F(Client, ShowsControlCharactersOfACommandEscapedInItsLog)
{
  StartAdmittedAndSettled();
  link->Write(Wire::Packet("demo", "HELLO\x1b]0;\n", "1234"));
  EXPECT_TRUE(Logs("Unexpected command \"HELLO\\x1b]0;\\n\n"));
}

TEST_F(Client, HearsMessagesUnchangedAndCutsTheSendersNameAtAZeroByte)
{
  StartAdmittedAndSettled();
  const QByteArray data("\0\xff<TAVRIK:BAZAAR:IPC:1.0>\n", 26);
  link->Write(Wire::Message("demo", 12, QByteArray("bo\0b", 4), data));
  EXPECT_TRUE(peer->Told(QStringLiteral("message bo %1").arg(QString::fromLatin1(data.toBase64()))));
  link->Write(Wire::Message("another context", 0, "\xc3\xa9", ""));
  EXPECT_TRUE(peer->Told(QString::fromUtf8("message \xc3\xa9 ")));
}

// ---- Streams in pieces and in disorder ------------------------------------------------------------------

TEST_F(Client, HearsAMessageThatIsCutAtAnyByte)
{
  StartAdmittedAndSettled();
  const QByteArray whole = Wire::Message("demo", 0, "a", "hi there");
  const QString heard = QStringLiteral("message a ") + QByteArray("hi there").toBase64();
  for (int cut = 1; cut < whole.size(); ++cut)
  {
    SCOPED_TRACE(cut);
    link->Write(whole.left(cut));
    // It answers, so it is not waiting for the rest.
    ASSERT_TRUE(SeesMembers(QStringLiteral("peer")));
    ASSERT_EQ(peer->lines.count(heard), cut - 1);
    link->Write(whole.mid(cut));
    ASSERT_TRUE(SpinUntil([&] { return peer->lines.count(heard) == cut; }));
  }
  EXPECT_FALSE(peer->log.contains("\nE"));
}

TEST_F(Client, GoesOnBehindGarbageAndBrokenPackets)
{
  StartAdmittedAndSettled();
  const QByteArray good = Wire::Message("demo", 0, "a", "good");
  const QString heard = QStringLiteral("message a ") + QByteArray("good").toBase64();
  int count = 0;
  for (const QByteArray& bad :
       {QByteArray(100, 'x'), Spoilt(good, 27), Spoilt(good, 28), Spoilt(good, good.size() - 1),
        Wire::Signature() + Wire::Int(13) + QByteArray(40, 'x'), Wire::Packet("demo", "", "1234567890")})
  {
    link->Write(bad + good);
    ++count;
    ASSERT_TRUE(SpinUntil([&] { return peer->lines.count(heard) == count; })) << count;
  }
  // Garbage ahead of a packet is skipped without a word.
  EXPECT_TRUE(SpinUntil([&] { return peer->log.count("Can't read a packet\n") == count - 1; }));
  EXPECT_TRUE(link->IsConnected());
}

TEST_F(Client, ReportsAPacketThatIsCutOffBehindGarbageAndHearsTheNext)
{
  StartAdmittedAndSettled();
  const QByteArray good = Wire::Message("demo", 0, "a", "good");
  const QString heard = QStringLiteral("message a ") + QByteArray("good").toBase64();
  link->Write(QByteArray(30, 'x') + good.left(25));
  EXPECT_TRUE(Logs("Can't read a header size: 0\n"));
  EXPECT_TRUE(Logs("Can't read a packet\n"));
  link->Write(QByteArray(100, 'x'));
  SpinFor(100); // the sender's pause
  link->Write(good);
  EXPECT_TRUE(peer->Told(heard));
  EXPECT_EQ(peer->log.count("Can't read a packet\n"), 1);
}

TEST_F(Client, TakesNoMemoryForAClaimOfTwoGibibytesAndStaysAwake)
{
  StartAdmittedAndSettled();
  const long long peak = MemoryOf(peer->Pid(), "VmPeak");
  link->Write(Wire::Signature() + Wire::Int(0x7fffffff) + QByteArray(1000, 'x'));
  for (int i = 0; i < 20; ++i)
    ASSERT_TRUE(SeesMembers(QStringLiteral("peer"), 2000));
  EXPECT_LT(MemoryOf(peer->Pid(), "VmPeak") - peak, 256 * 1024 * 1024);
  peer->Say(QStringLiteral("agent"), "hi");
  EXPECT_TRUE(link->Got("MESSAGE", 3));
}

TEST_F(Client, StaysAwakeWhenTheServerStopsReading)
{
  StartAdmittedAndSettled();
  link->StopReading();
  peer->Tell(QStringLiteral("fill agent 4194304"));
  for (int i = 0; i < 20; ++i)
    ASSERT_TRUE(SeesMembers(QStringLiteral("peer"), 2000));
  link->Write(Wire::Message("demo", 0, "a", "hi"));
  EXPECT_TRUE(peer->Told(QStringLiteral("message a aGk=")));
  EXPECT_EQ(link->Of("MESSAGE").size(), 2u);
  link->ResumeReading();
  ASSERT_TRUE(link->Got("MESSAGE", 3));
  EXPECT_EQ(link->Of("MESSAGE").back().Second().size(), 4194304);
}

TEST_F(Client, LeavesOnlyWhenItsServerHasTakenAllHoweverSlowlyThatReads)
{
  StartAdmittedAndSettled();
  link->StopReading();
  peer->Tell(QStringLiteral("fill peer 4194304"));
  peer->Tell(QStringLiteral("quit"));
  // For longer than it waits for a server that reads nothing, once when it is told to quit and once when it
  // goes.
  for (int i = 1; i <= 14; ++i)
  {
    link->socket->setReadBufferSize(i * 200000);
    SpinFor(500);
  }
  link->ResumeReading();
  ASSERT_TRUE(link->Got("MESSAGE", 3));
  EXPECT_EQ(link->Of("MESSAGE").back().Second().size(), 4194304);
  EXPECT_TRUE(peer->Told(QStringLiteral("gone")));
}

TEST_F(Client, HearsWhatTheServerHadSaidWhenItHungUp)
{
  for (const bool hasMoreToSay : {false, true})
  {
    SCOPED_TRACE(hasMoreToSay);
    StartAdmittedAndSettled();
    if (hasMoreToSay)
    {
      link->StopReading();
      peer->Tell(QStringLiteral("fill agent 4194304"));
      ASSERT_TRUE(SpinUntil([&] { return link->socket->bytesAvailable() > 0; }));
    }
    peer->Stop();
    for (int i = 1; i <= 50; ++i)
      link->Write(Wire::Message("demo", 0, "a", QByteArray::number(i)));
    link->Close();
    peer->Continue();
    EXPECT_TRUE(peer->Told(QStringLiteral("message a ") + QByteArray("50").toBase64()));
    EXPECT_EQ(peer->Of(QStringLiteral("message a ")).size(), 50);
  }
}

TEST_F(Client, StaysAwakeAndSaysWhatItHasToSayInAFlood)
{
  StartAdmittedAndSettled();
  QByteArray drop;
  for (int i = 0; i < 200; ++i)
    drop += Wire::Message("demo", 0, "a", "drop");
  QTimer flood;
  QObject::connect(&flood, &QTimer::timeout,
                   [&]
                   {
                     while (link->socket->bytesToWrite() < 4 * 1024 * 1024)
                       link->socket->write(drop);
                   });
  flood.start(1);
  ASSERT_TRUE(peer->Told(QStringLiteral("message a ") + QByteArray("drop").toBase64()));
  peer->Say(QStringLiteral("agent"), "hi");
  EXPECT_TRUE(link->Got("MESSAGE", 3, 5000));
  const int before = peer->Of(QStringLiteral("members ")).size();
  QElapsedTimer watch;
  watch.start();
  for (int i = 1; i <= 5; ++i)
  {
    peer->Tell(QStringLiteral("members"));
    ASSERT_TRUE(SpinUntil(
        [&]
        {
          return peer->lines.contains(QStringLiteral("members peer")) &&
                 peer->lines.count(QStringLiteral("members peer")) == before + i;
        },
        5000));
  }
  EXPECT_LT(watch.elapsed(), 5000);
  EXPECT_GT(link->socket->bytesToWrite(), 0) << "the flood went on all the while";
}

} // namespace
