// Participants in processes of their own: they meet, talk, lose each other and their server.

#include "Support/Peer.h"
#include "Support/Processes.h"
#include "Support/Raw.h"
#include "Support/Spin.h"
#include "Support/Wire.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace
{

QString Message(const QString& sender, const QByteArray& data)
{
  return QStringLiteral("message %1 %2").arg(sender, QString::fromLatin1(data.toBase64()));
}

class Processes : public testing::Test
{
protected:
  Peer& Start(const QString& name, int flags = 0)
  {
    peers.push_back(std::make_unique<Peer>(meeting.context, name, flags));
    return *peers.back();
  }

  Peer& StartReady(const QString& name, int flags = 0)
  {
    Peer& peer = Start(name, flags);
    EXPECT_TRUE(peer.IsReady());
    return peer;
  }

  void Release(const Peer& gone)
  {
    for (auto peer = peers.begin(); peer != peers.end(); ++peer)
      if (peer->get() == &gone)
      {
        peers.erase(peer);
        return;
      }
  }

  // One server, and everybody sees everybody.
  bool AreTogether(const QString& names, int limit = 20000)
  {
    std::vector<Peer*> all;
    for (const std::unique_ptr<Peer>& peer : peers)
      all.push_back(peer.get());
    return AllSee(all, names, limit) && CountServers(meeting.context) == 1 &&
           FindServer(all, meeting.context) != nullptr;
  }

  // Everybody hears everybody, himself included, and each gets his results.
  void TalkAcross(const QByteArray& words)
  {
    for (const std::unique_ptr<Peer>& from : peers)
    {
      const int before = from->Of(QStringLiteral("result ")).filter(QStringLiteral(" OK")).size();
      for (const std::unique_ptr<Peer>& to : peers)
      {
        from->Say(to->name, words + to->name.toUtf8());
        EXPECT_TRUE(to->Told(Message(from->name, words + to->name.toUtf8())))
            << from->name.toStdString() << " to " << to->name.toStdString();
      }
      EXPECT_TRUE(SpinUntil(
          [&]
          {
            return from->Of(QStringLiteral("result ")).filter(QStringLiteral(" OK")).size() ==
                   before + static_cast<int>(peers.size());
          }));
    }
  }

  const Meeting meeting{QStringLiteral("demo")};
  std::vector<std::unique_ptr<Peer>> peers;
};

TEST_F(Processes, MeetAndExchangeMessagesAndResults)
{
  Peer& a = StartReady(QStringLiteral("a"));
  StartReady(QStringLiteral("b"));
  StartReady(QStringLiteral("c"));
  ASSERT_TRUE(AreTogether(QStringLiteral("a,b,c")));
  EXPECT_TRUE(a.lines.contains(QStringLiteral("joined b")));
  EXPECT_TRUE(a.lines.contains(QStringLiteral("joined c")));
  TalkAcross("hello ");

  for (const std::unique_ptr<Peer>& peer : peers)
  {
    peer->Say(QStringLiteral("nobody"), "hello?");
    EXPECT_TRUE(peer->Told(QStringLiteral("result 4 NO RECIPIENT")));
  }
}

TEST_F(Processes, MeetWhicheverStartsFirst)
{
  for (const char* first : {"a", "b"})
  {
    SCOPED_TRACE(first);
    const QString other =
        QString::fromLatin1(first) == QLatin1String("a") ? QStringLiteral("b") : QStringLiteral("a");
    const Peer& server = StartReady(QString::fromLatin1(first));
    StartReady(other);
    ASSERT_TRUE(AreTogether(QStringLiteral("a,b")));
    EXPECT_EQ(FindServer({peers[0].get(), peers[1].get()}, meeting.context), &server);
    TalkAcross("hello ");
    for (const std::unique_ptr<Peer>& peer : peers)
      EXPECT_TRUE(peer->Quit());
    peers.clear();
    EXPECT_FALSE(QFile::exists(Wire::ServerName(meeting.context)));
  }
}

TEST_F(Processes, ElectExactlyOneWhenTheirServerIsKilled)
{
  Peer& server = StartReady(QStringLiteral("a"));
  for (const char* name : {"b", "c", "d"})
    StartReady(QString::fromLatin1(name));
  ASSERT_TRUE(AreTogether(QStringLiteral("a,b,c,d")));
  server.Kill();
  Release(server);
  ASSERT_TRUE(AreTogether(QStringLiteral("b,c,d"), 5000));
  for (const std::unique_ptr<Peer>& peer : peers)
    EXPECT_EQ(peer->lines.count(QStringLiteral("left a")), 1);
  TalkAcross("still here ");
}

TEST_F(Processes, ElectAnotherWhenTheirServerLeaves)
{
  Peer& server = StartReady(QStringLiteral("a"));
  for (const char* name : {"b", "c"})
    StartReady(QString::fromLatin1(name));
  ASSERT_TRUE(AreTogether(QStringLiteral("a,b,c")));
  EXPECT_TRUE(server.Quit());
  EXPECT_TRUE(server.lines.contains(QStringLiteral("gone")));
  Release(server);
  ASSERT_TRUE(AreTogether(QStringLiteral("b,c"), 5000));
  TalkAcross("still here ");
}

TEST_F(Processes, SendWhatWasSaidWhileThereWasNoServerOnceThereIsOne)
{
  Peer& server = StartReady(QStringLiteral("a"));
  Peer& b = StartReady(QStringLiteral("b"));
  Peer& c = StartReady(QStringLiteral("c"));
  ASSERT_TRUE(AreTogether(QStringLiteral("a,b,c")));
  b.Stop();
  server.Kill();
  Release(server);
  ASSERT_TRUE(SpinUntil([&] { return CountServers(meeting.context) == 1; }));
  b.Continue();
  ASSERT_TRUE(AreTogether(QStringLiteral("b,c")));
  b.Say(QStringLiteral("c"), "after all");
  EXPECT_TRUE(c.Told(Message(QStringLiteral("b"), "after all")));
}

TEST_F(Processes, HoldAMessageForAMemberThatComesUnderAnotherServer)
{
  const int holdUntilMember = 2;
  Peer& server = StartReady(QStringLiteral("a"));
  Peer& holder = StartReady(QStringLiteral("b"), holdUntilMember);
  ASSERT_TRUE(AreTogether(QStringLiteral("a,b")));
  holder.Say(QStringLiteral("late"), "kept for you");
  holder.Say(QStringLiteral("a"), "not held");
  ASSERT_TRUE(server.Told(Message(QStringLiteral("b"), "not held")));
  server.Kill();
  Release(server);
  ASSERT_TRUE(AreTogether(QStringLiteral("b")));
  EXPECT_FALSE(holder.lines.contains(QStringLiteral("result 1 NO RECIPIENT")));

  Peer& late = StartReady(QStringLiteral("late"));
  EXPECT_TRUE(late.Told(Message(QStringLiteral("b"), "kept for you")));
  EXPECT_TRUE(holder.Told(QStringLiteral("result 1 OK")));
}

TEST_F(Processes, ThatNeverServeStayAwayForGoodOnceTheirServerIsGone)
{
  const int noServer = 1;
  Peer& server = StartReady(QStringLiteral("a"));
  Peer& guest = StartReady(QStringLiteral("guest"), noServer);
  ASSERT_TRUE(AreTogether(QStringLiteral("a,guest")));
  server.Kill();
  Release(server);
  ASSERT_TRUE(SpinUntil(
      [&]
      {
        return guest.log.contains("Can't connect to a server and the NO SERVER flag is set "
                                  "(guest): 1\n");
      }));
  Peer& another = StartReady(QStringLiteral("b"));
  guest.Say(QStringLiteral("b"), "hello?");
  EXPECT_TRUE(guest.Told(QStringLiteral("result 1 NOT SENT")));
  another.Say(QStringLiteral("b"), "to myself");
  EXPECT_TRUE(another.Told(Message(QStringLiteral("b"), "to myself")));
  EXPECT_TRUE(AllSee({&another}, QStringLiteral("b")));
  EXPECT_TRUE(guest.Of(QStringLiteral("left")).isEmpty()) << "its list is cleared in silence";
  guest.Tell(QStringLiteral("members"));
  EXPECT_TRUE(guest.Told(QStringLiteral("members ")));
  EXPECT_EQ(guest.log.count("has connected"), 1);
}

TEST_F(Processes, GoOnWhileOneOfThemIsStopped)
{
  StartReady(QStringLiteral("a"));
  Peer& b = StartReady(QStringLiteral("b"));
  Peer& stopped = StartReady(QStringLiteral("c"));
  ASSERT_TRUE(AreTogether(QStringLiteral("a,b,c")));
  stopped.Stop();
  for (int i = 0; i < 20; ++i)
  {
    b.Say(QStringLiteral("c"), "sleep well " + QByteArray::number(i));
    b.Say(QStringLiteral("a"), "tick " + QByteArray::number(i));
    ASSERT_TRUE(peers[0]->Told(Message(QStringLiteral("b"), "tick " + QByteArray::number(i)), 5000));
  }
  Peer& d = StartReady(QStringLiteral("d"));
  EXPECT_TRUE(d.Quit());
  Release(d);
  stopped.Continue();
  EXPECT_TRUE(stopped.Told(Message(QStringLiteral("b"), "sleep well 19")));
  EXPECT_TRUE(AreTogether(QStringLiteral("a,b,c")));
  EXPECT_TRUE(stopped.Of(QStringLiteral("left a")).isEmpty());
}

TEST_F(Processes, SeeAKilledClientLeave)
{
  StartReady(QStringLiteral("a"));
  Peer& b = StartReady(QStringLiteral("b"));
  Peer& victim = StartReady(QStringLiteral("c"));
  ASSERT_TRUE(AreTogether(QStringLiteral("a,b,c")));
  victim.Kill();
  Release(victim);
  ASSERT_TRUE(AreTogether(QStringLiteral("a,b"), 5000));
  EXPECT_EQ(peers[0]->lines.count(QStringLiteral("left c")), 1);
  EXPECT_EQ(b.lines.count(QStringLiteral("left c")), 1);
  b.Say(QStringLiteral("c"), "gone?");
  EXPECT_TRUE(b.Told(QStringLiteral("result 1 NO RECIPIENT")));
}

TEST_F(Processes, LeaveAndComeBackAtOnceWithoutBeingRefused)
{
  Peer& server = StartReady(QStringLiteral("a"));
  Peer& blinking = StartReady(QStringLiteral("b"));
  for (int i = 2; i <= 31; ++i)
  {
    blinking.Tell(QStringLiteral("blink"));
    ASSERT_TRUE(SpinUntil([&] { return blinking.lines.count(QStringLiteral("ready")) == i; })) << i;
  }
  EXPECT_TRUE(AreTogether(QStringLiteral("a,b")));
  EXPECT_FALSE(server.log.contains("alredy"));
  TalkAcross("back ");
}

TEST_F(Processes, LeaveAndComeBackAtOnceWhileServing)
{
  Peer& blinking = StartReady(QStringLiteral("a"));
  StartReady(QStringLiteral("b"));
  StartReady(QStringLiteral("c"));
  for (int i = 2; i <= 11; ++i)
  {
    Peer* server = FindServer({peers[0].get(), peers[1].get(), peers[2].get()}, meeting.context);
    ASSERT_TRUE(server);
    const int ready = server->lines.count(QStringLiteral("ready"));
    server->Tell(QStringLiteral("blink"));
    ASSERT_TRUE(SpinUntil([&] { return server->lines.count(QStringLiteral("ready")) == ready + 1; })) << i;
    ASSERT_TRUE(AreTogether(QStringLiteral("a,b,c"), 10000)) << i;
  }
  EXPECT_TRUE(blinking.IsRunning());
  TalkAcross("back ");
}

TEST_F(Processes, CarrySixteenMebibytesBetweenAnyTwoWhileOthersGoOnTalking)
{
  const int size = 16 * 1024 * 1024;
  for (const char* name : {"a", "b", "c"})
    StartReady(QString::fromLatin1(name));
  Peer& chatting = StartReady(QStringLiteral("x"));
  Peer& listening = StartReady(QStringLiteral("y"));
  ASSERT_TRUE(AreTogether(QStringLiteral("a,b,c,x,y")));
  const QString heard = QStringLiteral("message %1 size %2 crc %3");
  const QByteArray data(size, 'x');
  const int crc = qChecksum(data.constData(), static_cast<uint>(size));

  int words = 0;
  qint64 longest = 0;
  for (int from = 0; from < 3; ++from)
    for (int to = 0; to < 3; ++to)
    {
      Peer& sender = *peers[static_cast<std::size_t>(from)];
      Peer& recipient = *peers[static_cast<std::size_t>(to)];
      SCOPED_TRACE(sender.name.toStdString() + " to " + recipient.name.toStdString());
      const QString line = heard.arg(sender.name).arg(size).arg(crc);
      sender.Tell(QStringLiteral("fill %1 %2").arg(recipient.name).arg(size));
      bool isThere = false;
      while (!isThere)
      {
        QElapsedTimer watch;
        watch.start();
        const QByteArray word = "word " + QByteArray::number(++words);
        chatting.Say(listening.name, word);
        ASSERT_TRUE(listening.Told(Message(chatting.name, word), 10000));
        longest = std::max(longest, watch.elapsed());
        isThere = recipient.lines.contains(line);
        ASSERT_LT(words, 10000);
      }
      EXPECT_TRUE(sender.Told(QStringLiteral("result %1 OK").arg(to + 1)));
    }
  RecordProperty("words", words);
  std::printf("%d small messages meanwhile, the slowest took %lld ms\n", words,
              static_cast<long long>(longest));
  for (const std::unique_ptr<Peer>& peer : peers)
    EXPECT_FALSE(peer->log.contains("\nE")) << peer->log.toStdString();
}

TEST_F(Processes, OfOneUserDoNotMeetUnderAnotherContextName)
{
  StartReady(QStringLiteral("a"));
  const Meeting elsewhere(QStringLiteral("elsewhere"));
  Peer stranger(elsewhere.context, QStringLiteral("b"));
  ASSERT_TRUE(stranger.IsReady());
  EXPECT_TRUE(AllSee({&stranger}, QStringLiteral("b")));
  EXPECT_TRUE(AllSee({peers[0].get()}, QStringLiteral("a")));
  stranger.Say(QStringLiteral("a"), "hello?");
  EXPECT_TRUE(stranger.Told(QStringLiteral("result 1 NO RECIPIENT")));
}

// Listens as another user, and tells through a pipe of the first byte that anybody sends.
void Squat(const char* path, int report)
{
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, path, sizeof(address.sun_path) - 1);
  const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
  const uid_t nobody = 65534;
  // The credentials that a client sees are those of the moment of listening.
  if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
      setuid(nobody) != 0 || listen(listener, 8) != 0)
    return;
  for (;;)
  {
    const int client = accept(listener, nullptr, nullptr);
    char byte = 0;
    if (client < 0)
      return;
    const char said = recv(client, &byte, 1, 0) > 0 ? 'b' : 'n';
    if (write(report, &said, 1) != 1)
      return;
    close(client);
  }
}

TEST_F(Processes, DoNotTalkToAnotherUsersServer)
{
  if (geteuid() != 0)
    GTEST_SKIP() << "Only root can listen as somebody else";
  int report[2] = {-1, -1};
  ASSERT_EQ(pipe(report), 0);
  const QByteArray path = QFile::encodeName(Wire::ServerName(meeting.context));
  const Forked squatter([&] { Squat(path.constData(), report[1]); });
  close(report[1]);
  ASSERT_TRUE(SpinUntil([&] { return CountServers(meeting.context) == 1; }));

  Peer& peer = StartReady(QStringLiteral("a"));
  EXPECT_TRUE(AllSee({&peer}, QStringLiteral("a")));
  char said = 0;
  ASSERT_EQ(read(report[0], &said, 1), 1) << "it came, and looked";
  EXPECT_EQ(said, 'n') << "but said nothing";
  close(report[0]);
  StartReady(QStringLiteral("b"));
  EXPECT_TRUE(AllSee({peers[0].get(), peers[1].get()}, QStringLiteral("a,b")));
}

} // namespace
