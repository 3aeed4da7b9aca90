// Drives the real executable as processes on a bus of their own, in the temporary directory of the test.

#include "ExitCodes.h"
#include "Support/HostProcess.h"
#include "Support/Programs.h"

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <csignal>
#include <memory>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Ostrel;

namespace
{

class Ostrel : public HostProcess
{
public:
  explicit Ostrel(const QStringList& arguments) : HostProcess(QStringLiteral(OSTREL), arguments) {}
};

using Process = std::unique_ptr<Ostrel>;

Process Begin(const QStringList& arguments)
{
  auto process = std::make_unique<Ostrel>(QStringList{"bus"} + arguments);
  process->Begin();
  return process;
}

/** A listener that is on the bus. */
Process Listen(const QString& name, const QStringList& more = {})
{
  Process listener = Begin(QStringList{"listen", "--json", "--name", name} + more);
  EXPECT_FALSE(listener->WaitForEvent({{"event", "ready"}, {"name", name}}).isEmpty());
  return listener;
}

Outcome RunBus(const QStringList& arguments, const QByteArray& input = {})
{
  return RunHost(QStringLiteral(OSTREL), QStringList{"bus"} + arguments, input);
}

QString GetSocketPath(const QString& contextName = QStringLiteral("ostrel"))
{
  const QString seed =
      QStringLiteral("tavrik:bazaar:ipc:1.0:") + QString::number(getuid()) + QLatin1Char(':') + contextName;
  return QDir::tempPath() + QLatin1Char('/') +
         QString::fromLatin1(QCryptographicHash::hash(seed.toUtf8(), QCryptographicHash::Sha1).toHex());
}

QByteArray MakeEveryByte()
{
  QByteArray bytes;
  for (int value = 0; value < 256; ++value)
    bytes.append(static_cast<char>(value));
  return bytes + '\n';
}

QJsonObject ToMessage(const QString& sender, const QByteArray& payload)
{
  return {{"event", "message"}, {"sender", sender}, {"base64", QString::fromLatin1(payload.toBase64())}};
}

// members -------------------------------------------------------------------------------------------------

TEST(Members, WithoutABusEndWithNoBusAndMakeNone)
{
  const Outcome outcome = RunBus({"members"});
  EXPECT_EQ(outcome.code, NoBus);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "ostrel: nobody serves the bus ostrel\n");
  EXPECT_FALSE(QFile::exists(GetSocketPath()));
}

TEST(Members, ArePrintedInByteOrderWithoutTheOneWhoLooks)
{
  const Process bob = Listen("bob");
  const Process alice = Listen("alice");
  const Process upper = Listen("Zoe");
  const Outcome outcome = RunBus({"members"});
  EXPECT_EQ(outcome.code, Done);
  EXPECT_EQ(outcome.out, "Zoe\nalice\nbob\n");
  EXPECT_EQ(outcome.err, "");
}

TEST(Members, InJsonAreOneObject)
{
  const Process bob = Listen("bob", {"--context", "other"});
  const Outcome outcome = RunBus({"members", "--json", "--context", "other", "--name", "me"});
  EXPECT_EQ(outcome.code, Done);
  EXPECT_EQ(outcome.out, "{\"context\":\"other\",\"members\":[\"bob\"]}\n");
}

TEST(Members, WithControlsInTheirNamesAreSafeToShow)
{
  const Process strange = Listen("a\x1B[31m\nb");
  EXPECT_EQ(RunBus({"members"}).out, "a\\u001b[31m\\nb\n");
}

TEST(Members, OfAnotherContextAreNotSeen)
{
  const Process bob = Listen("bob", {"--context", "other"});
  EXPECT_EQ(RunBus({"members"}).code, NoBus);
}

// send ----------------------------------------------------------------------------------------------------

TEST(Send, PrintsTheWordAndTheMessageArrives)
{
  const Process bob = Listen("bob");
  const Outcome outcome = RunBus({"send", "bob", "good morning", "--name", "alice"});
  EXPECT_EQ(outcome.code, Done);
  EXPECT_EQ(outcome.out, "OK\n");
  EXPECT_EQ(outcome.err, "");
  const QJsonObject message = bob->WaitForEvent({{"event", "message"}});
  EXPECT_EQ(message.value("sender").toString(), "alice");
  EXPECT_EQ(message.value("text").toString(), "good morning");
  EXPECT_EQ(message.value("base64").toString(), "Z29vZCBtb3JuaW5n");
  EXPECT_EQ(message.value("size").toInt(), 12);
}

TEST(Send, InJsonPrintsTheResultAndNothingElse)
{
  const Process bob = Listen("bob");
  const Outcome outcome = RunBus({"send", "bob", "x", "--json"});
  const QJsonObject result = QJsonDocument::fromJson(outcome.out).object();
  EXPECT_EQ(outcome.code, Done);
  EXPECT_EQ(outcome.out.count('\n'), 1);
  EXPECT_EQ(result.value("event").toString(), "result");
  EXPECT_EQ(result.value("id").toInt(), 1);
  EXPECT_EQ(result.value("recipient").toString(), "bob");
  EXPECT_EQ(result.value("result").toString(), "OK");
  EXPECT_EQ(result.value("note").toString(), "");
}

TEST(Send, TakesStandardInputUnchanged)
{
  const Process bob = Listen("bob");
  EXPECT_EQ(RunBus({"send", "bob", "--name", "a"}, MakeEveryByte()).code, Done);
  const QJsonObject message = bob->WaitForEvent(ToMessage("a", MakeEveryByte()));
  EXPECT_FALSE(message.contains("text"));
}

TEST(Send, TakesAFileUnchanged)
{
  const QString path = QDir::tempPath() + "/payload";
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  const QByteArray payload = MakeEveryByte().repeated(1000);
  file.write(payload);
  file.close();
  const Process bob = Listen("bob");
  EXPECT_EQ(RunBus({"send", "bob", "--file", path, "--name", "a"}).code, Done);
  EXPECT_FALSE(bob->WaitForEvent(ToMessage("a", payload)).isEmpty());
  QFile::remove(path);
}

TEST(Send, TakesArgumentsUnchanged)
{
  const Process bob = Listen("bob");
  for (const char* text : {"", "[1,2]", "\"quoted\"", "a=b", "\xC3\xBC", " x ", "{}"})
  {
    EXPECT_EQ(RunBus({"send", "bob", QString::fromUtf8(text), "--name", "a"}).code, Done) << text;
    EXPECT_FALSE(bob->WaitForEvent(ToMessage("a", text)).isEmpty());
  }
  EXPECT_EQ(RunBus({"send", "--name", "a", "bob", "--", "-x"}).code, Done);
  EXPECT_FALSE(bob->WaitForEvent(ToMessage("a", "-x")).isEmpty());
}

TEST(Send, ToNobodyEndsWithNoRecipient)
{
  const Process bob = Listen("bob");
  const Outcome outcome = RunBus({"send", "carol", "x"});
  EXPECT_EQ(outcome.code, NoRecipient);
  EXPECT_EQ(outcome.out, "NO RECIPIENT\n");
}

TEST(Send, WithoutABusServesItselfAndFindsNobody)
{
  EXPECT_EQ(RunBus({"send", "carol", "x"}).code, NoRecipient);
  EXPECT_FALSE(QFile::exists(GetSocketPath()));
}

TEST(Send, WithoutABusThatMustNotServeEndsWithNoBus)
{
  EXPECT_EQ(RunBus({"send", "--no-server", "carol", "x"}).code, NoBus);
  EXPECT_EQ(RunBus({"send", "--no-server", "--name", "alice", "carol", "x"}).code, NoBus);
}

TEST(Send, HeldMessageReachesAMemberWhoComesLater)
{
  const Process server = Listen("server");
  const Process sender = Begin({"send", "--hold-until-member", "--name", "alice", "bob", "waited"});
  EXPECT_FALSE(server->WaitForEvent({{"event", "joined"}, {"name", "alice"}}).isEmpty());
  const Process bob = Listen("bob");
  EXPECT_FALSE(bob->WaitForEvent(ToMessage("alice", "waited")).isEmpty());
  EXPECT_EQ(sender->Finish(), Done);
  EXPECT_EQ(sender->Out(), "OK\n");
}

TEST(Send, HeldMessageThatNobodyTakesEndsWithTimedOut)
{
  const Process server = Listen("server");
  const Outcome outcome = RunBus({"send", "--hold-until-member", "--timeout", "0.6", "bob", "x"});
  EXPECT_EQ(outcome.code, TimedOut);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "ostrel: no result came for the message to bob\n");
}

TEST(Send, UnreadableFileIsToldPlainly)
{
  const Outcome outcome = RunBus({"send", "bob", "--file", "/nonexistent\n"});
  EXPECT_EQ(outcome.code, Failed);
  EXPECT_EQ(outcome.err, "ostrel: cannot read /nonexistent\\n: No such file or directory\n");
  EXPECT_EQ(RunBus({"send", "bob", "--file", "/"}).err, "ostrel: cannot read /: Is a directory\n");
}

TEST(Send, EndlessFileIsRefused)
{
  const Outcome outcome = RunBus({"send", "bob", "--file", "/dev/zero"});
  EXPECT_EQ(outcome.code, Failed);
  EXPECT_EQ(outcome.err, "ostrel: the message is longer than 67108864 bytes\n");
}

// listen --------------------------------------------------------------------------------------------------

TEST(Listen, PrintsArrivalsMessagesResultsAndDeparturesForPeople)
{
  const Process bob = Begin({"listen", "--name", "bob", "--say"});
  ASSERT_TRUE(bob->WaitForError("ostrel: listening as bob on the bus ostrel\n"));
  const Process alice = Listen("alice");
  EXPECT_TRUE(bob->WaitForLine("joined alice"));
  bob->Type("alice good morning\nnobody hello\n");
  EXPECT_TRUE(bob->WaitForLine("said 1 to alice"));
  EXPECT_TRUE(bob->WaitForLine("said 2 to nobody"));
  EXPECT_TRUE(bob->WaitForLine("result 1 to alice: OK"));
  EXPECT_TRUE(bob->WaitForLine("result 2 to nobody: NO RECIPIENT"));
  EXPECT_EQ(RunBus({"send", "bob", "--name", "carol"}, "\x1B[2J\xFF\n").code, Done);
  EXPECT_TRUE(bob->WaitForLine("message from carol: \\u001b[2J\\xff\\n"));
  alice->Signal(SIGTERM);
  EXPECT_TRUE(bob->WaitForLine("left alice"));
}

TEST(Listen, PrintsTheSameAsJsonLines)
{
  const Process bob = Listen("bob", {"--say"});
  const Process alice = Listen("alice");
  EXPECT_FALSE(alice->WaitForEvent({{"event", "joined"}, {"name", "bob"}}).isEmpty());
  bob->Type("alice good morning\n");
  EXPECT_FALSE(bob->WaitForEvent({{"event", "said"}, {"id", 1}, {"recipient", "alice"}}).isEmpty());
  EXPECT_FALSE(alice->WaitForEvent(ToMessage("bob", "good morning")).isEmpty());
  EXPECT_FALSE(bob->WaitForEvent({{"event", "result"}, {"id", 1}, {"recipient", "alice"}, {"result", "OK"}})
                   .isEmpty());
  alice->Signal(SIGTERM);
  EXPECT_FALSE(bob->WaitForEvent({{"event", "left"}, {"name", "alice"}}).isEmpty());
  EXPECT_EQ(bob->Err(), "");
}

TEST(Listen, SaysAllThatAPipeHolds)
{
  constexpr int count = 230; // more than it says before it waits for results
  const Process bob = Listen("bob");
  QByteArray lines;
  for (int i = 1; i <= count; ++i)
    lines += "bob " + QByteArray::number(i) + (i < count ? "\n" : "");
  const Process alice = Listen("alice", {"--say"});
  alice->Type(lines);
  alice->closeWriteChannel();
  bob->WaitForEvent(ToMessage("alice", QByteArray::number(count)));
  QStringList texts;
  for (const QJsonObject& event : bob->Events())
    if (event.value("event") == "message")
      texts.append(event.value("text").toString());
  ASSERT_EQ(texts.size(), count);
  for (int i = 0; i < count; ++i)
    ASSERT_EQ(texts.at(i).toInt(), i + 1);
  EXPECT_FALSE(alice->WaitForEvent({{"event", "result"}, {"id", count}, {"result", "OK"}}).isEmpty());
}

TEST(Listen, SkipsLinesThatBeginWithoutAName)
{
  const Process bob = Listen("bob", {"--say"});
  bob->Type(" no name\n\n\xFF bad name\nbob\n");
  EXPECT_TRUE(bob->WaitForError("ostrel: cannot say a line that does not begin with a name:  no name\n"));
  EXPECT_TRUE(
      bob->WaitForError("ostrel: cannot say a line that does not begin with a name: \\xff bad name\n"));
  EXPECT_FALSE(bob->WaitForEvent(ToMessage("bob", "")).isEmpty());
}

TEST(Listen, LeavesWhenItsTimeIsOver)
{
  const Outcome outcome = RunBus({"listen", "--timeout", "0.3"});
  EXPECT_EQ(outcome.code, Done);
  EXPECT_FALSE(QFile::exists(GetSocketPath()));
}

TEST(Listen, SaysNothingOfThoseWhoOnlyLook)
{
  const Process bob = Listen("bob");
  const Process carol = Listen("carol");
  // From here on bob is told of every list of members, not of the last one of its first 300 ms.
  bob->WaitForEvent({{"event", "joined"}, {"name", "carol"}});
  EXPECT_EQ(RunBus({"listen", "--name", "bob"}).code, NameTaken);
  const Process alice = Listen("alice");
  bob->WaitForEvent({{"event", "joined"}, {"name", "alice"}});
  for (const QJsonObject& event : bob->Events())
    EXPECT_FALSE(event.value("name").toString().contains("scout"));
}

TEST(Listen, EndsWhenItsReaderHasGone)
{
  QProcess reader;
  Ostrel listener({"bus", "listen", "--json"});
  listener.setStandardOutputProcess(&reader);
  listener.Begin();
  reader.start("head", {"-n", "1"});
  ASSERT_TRUE(reader.waitForFinished(longWait));
  const Process alice = Begin({"listen"}); // the arrival is the line that nobody reads
  EXPECT_EQ(listener.Finish(), OutputClosed);
  EXPECT_EQ(listener.Err(), "");
}

#ifdef __linux__
TEST(Listen, TellsThatItsOutputIsFull)
{
  Ostrel listener({"bus", "listen", "--json"});
  listener.setStandardOutputFile("/dev/full");
  listener.Begin();
  EXPECT_EQ(listener.Finish(), Failed);
  EXPECT_EQ(listener.Err(), "ostrel: cannot write to the standard output: No space left on device\n");
}
#endif

// wait ----------------------------------------------------------------------------------------------------

TEST(Wait, EndsWhenTheMemberComes)
{
  const Process waiting = Begin({"wait", "bob"});
  const Process bob = Listen("bob");
  EXPECT_EQ(waiting->Finish(), Done);
  EXPECT_EQ(waiting->Out(), "joined bob\n");
}

TEST(Wait, EndsAtOnceForAMemberWhoIsThere)
{
  const Process bob = Listen("bob");
  const Outcome outcome = RunBus({"wait", "bob", "--json", "--no-server"});
  EXPECT_EQ(outcome.code, Done);
  EXPECT_EQ(QJsonDocument::fromJson(outcome.out).object().value("name").toString(), "bob");
}

TEST(Wait, EndsWithTimedOutWhenNobodyComes)
{
  QElapsedTimer time;
  time.start();
  const Outcome outcome = RunBus({"wait", "bob", "--timeout", "0.5"});
  EXPECT_GE(time.elapsed(), 490);
  EXPECT_EQ(outcome.code, TimedOut);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "ostrel: bob has not come\n");
}

// Names and servers ---------------------------------------------------------------------------------------

TEST(Name, ThatIsTakenIsToldAtOnce)
{
  const Process bob = Listen("bob");
  QElapsedTimer time;
  time.start();
  const Outcome outcome = RunBus({"send", "bob", "x", "--name", "bob"});
  EXPECT_LT(time.elapsed(), 5000);
  EXPECT_EQ(outcome.code, NameTaken);
  EXPECT_EQ(outcome.err, "ostrel: the name bob is taken on the bus ostrel\n");
  EXPECT_EQ(RunBus({"send", "bob", "still there"}).code, Done);
}

TEST(Name, ThatIsTakenBetweenLookAndJoinEndsWithNotJoined)
{
  // Nobody looks for a name that is made of the process id, so it stands for one that was free a moment ago.
  Process bob = Begin({"listen", "--json"});
  const qint64 pid = bob->WaitForEvent({{"event", "ready"}}).value("pid").toVariant().toLongLong();
  EXPECT_EQ(pid, bob->processId());

  // The shell takes the name of its own process id, and then becomes the program that wants it.
  const QString script = QStringLiteral("\"$0\" bus listen --name ostrel-$$ >taker.out 2>&1 & taker=$!\n"
                                        "\"$0\" bus wait ostrel-$$ --timeout 20 || exit 99\n"
                                        "echo $taker >taker.pid\n"
                                        "exec \"$0\" bus send nobody x --timeout 0.5\n");
  QProcess shell;
  shell.setWorkingDirectory(QDir::tempPath());
  shell.start("sh", {"-c", script, QStringLiteral(OSTREL)});
  EXPECT_TRUE(shell.waitForFinished(longWait));
  EXPECT_EQ(shell.exitCode(), NotJoined);
  const QByteArray error = shell.readAllStandardError();
  EXPECT_TRUE(
      error.endsWith(" could not join the bus ostrel within 0.5 s: the name is taken or the server does "
                     "not answer\n"))
      << error.toStdString();

  QFile file(QDir::tempPath() + "/taker.pid");
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const pid_t taker = file.readAll().trimmed().toInt();
  ASSERT_GT(taker, 0);
  ::kill(taker, SIGTERM);
  EXPECT_TRUE(WaitFor([] { return RunBus({"members"}).out.count('\n') == 1; }));
  file.remove();
  QFile::remove(QDir::tempPath() + "/taker.out");
}

TEST(Server, ThatDoesNotAnswerIsNotWaitedForLonger)
{
  const Process bob = Listen("bob");
  bob->Signal(SIGSTOP);
  const Outcome outcome = RunBus({"send", "bob", "x", "--name", "alice", "--timeout", "0.5"});
  EXPECT_EQ(outcome.code, NotJoined);
  EXPECT_EQ(outcome.err, "ostrel: alice could not join the bus ostrel within 0.5 s: the name is taken or the "
                         "server does not answer\n");
  EXPECT_EQ(RunBus({"members", "--timeout", "0.5"}).code, NotJoined);
}

TEST(Server, ThatWasKilledIsReplacedByASurvivor)
{
  Process first = Listen("first");
  const Process second = Listen("second", {"--say"});
  const Process third = Listen("third");
  first->Signal(SIGKILL);
  EXPECT_FALSE(second->WaitForEvent({{"event", "left"}, {"name", "first"}}).isEmpty());
  EXPECT_FALSE(third->WaitForEvent({{"event", "left"}, {"name", "first"}}).isEmpty());
  second->Type("third are you there\n");
  EXPECT_FALSE(second->WaitForEvent({{"event", "result"}, {"id", 1}}).isEmpty());
  EXPECT_FALSE(third->WaitForEvent(ToMessage("second", "are you there")).isEmpty());
}

TEST(Server, ThatWasKilledEndsAListenerWhoNeverServes)
{
  Process server = Listen("server");
  const Process bob = Listen("bob", {"--no-server"});
  const Process carol = Listen("carol", {"--no-server"});
  // An arrival is told when the connection is settled; a server that goes before that goes unnoticed.
  EXPECT_FALSE(bob->WaitForEvent({{"event", "joined"}, {"name", "carol"}}).isEmpty());
  server->Signal(SIGKILL);
  EXPECT_EQ(bob->Finish(), NoBus);
  EXPECT_EQ(bob->Err(), "ostrel: the server of the bus ostrel has gone\n");
  server.reset();
  EXPECT_TRUE(QFile::remove(GetSocketPath()));
}

// Signals -------------------------------------------------------------------------------------------------

class LeavingBySignal : public testing::TestWithParam<int>
{
};

TEST_P(LeavingBySignal, EndsCleanlyWithItsOwnCode)
{
  const Process server = Listen("server");
  const Process bob = Listen("bob");
  EXPECT_FALSE(server->WaitForEvent({{"event", "joined"}, {"name", "bob"}}).isEmpty());
  bob->Signal(GetParam());
  EXPECT_EQ(bob->Finish(), EndedBySignal + GetParam());
  EXPECT_FALSE(server->WaitForEvent({{"event", "left"}, {"name", "bob"}}).isEmpty());
  server->Signal(GetParam());
  EXPECT_EQ(server->Finish(), EndedBySignal + GetParam());
  EXPECT_FALSE(QFile::exists(GetSocketPath()));
}

INSTANTIATE_TEST_SUITE_P(Signals, LeavingBySignal, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST(Signal, EndsOneWhoWaitsForStandardInput)
{
  const Process sender = Begin({"send", "bob"});
  // It is there once it reads; whatever is signalled before that ends it by the default action.
  const QString status = QStringLiteral("/proc/%1/status").arg(sender->processId());
  if (!QFile::exists(status))
    GTEST_SKIP() << "needs /proc to see that the program catches signals";
  ASSERT_TRUE(WaitFor(
      [&]
      {
        QFile file(status);
        if (!file.open(QIODevice::ReadOnly))
          return false;
        for (const QByteArray& line : file.readAll().split('\n'))
          if (line.startsWith("SigCgt:"))
            return (line.mid(7).trimmed().toULongLong(nullptr, 16) & (1ull << (SIGHUP - 1))) != 0;
        return false;
      }));
  sender->Signal(SIGINT);
  ASSERT_TRUE(sender->waitForFinished(longWait));
  EXPECT_EQ(sender->exitCode(), EndedBySignal + SIGINT);
}

TEST(Signal, EndsOneWhoIsStillJoining)
{
  const Process bob = Listen("bob");
  bob->Signal(SIGSTOP);
  const Process alice = Begin({"-v", "listen", "--name", "alice"});
  ASSERT_TRUE(alice->WaitForError("has connected to a server"));
  alice->Signal(SIGINT);
  EXPECT_EQ(alice->Finish(), EndedBySignal + SIGINT);
}

TEST(Signal, EndsOneWhoseNameWasTakenWhileItLookedForAServer)
{
  Process server = Listen("server");
  const Process bob = Listen("bob", {"--verbose"});
  bob->Signal(SIGSTOP);
  server->Signal(SIGKILL);
  ASSERT_TRUE(server->waitForFinished(longWait));
  const Process next = Listen("next");
  const Process taker = Listen("bob");
  bob->Signal(SIGCONT);
  EXPECT_TRUE(WaitFor(
      [&]
      {
        bob->waitForReadyRead(1);
        return bob->Err().count("bob has connected to a server") == 2;
      }));
  EXPECT_TRUE(next->WaitForError("The client with the name \"bob\" has alredy connected"));
  bob->Signal(SIGTERM);
  EXPECT_EQ(bob->Finish(), EndedBySignal + SIGTERM);
  EXPECT_EQ(RunBus({"members"}).out, "bob\nnext\n");
}

TEST(Signal, SecondOneEndsAtOnce)
{
  // Connecting to a socket that listens but has no room left blocks for seconds without the event loop.
  const QByteArray path = QFile::encodeName(GetSocketPath());
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  ASSERT_LT(static_cast<std::size_t>(path.size()), sizeof address.sun_path);
  std::copy(path.begin(), path.end(), address.sun_path);
  const auto* target = reinterpret_cast<const sockaddr*>(&address);
  const int listening = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(bind(listening, target, sizeof address), 0);
  ASSERT_EQ(listen(listening, 0), 0);
  const int occupying = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(connect(occupying, target, sizeof address), 0);

  const Process alice = Begin({"-v", "members"});
  QElapsedTimer time;
  EXPECT_FALSE(alice->waitForFinished(500));
  alice->Signal(SIGINT);
  EXPECT_FALSE(alice->waitForFinished(200));
  time.start();
  alice->Signal(SIGTERM);
  EXPECT_EQ(alice->Finish(), EndedBySignal + SIGTERM);
  EXPECT_LT(time.elapsed(), 1000);
  close(occupying);
  close(listening);
  QFile::remove(GetSocketPath());
}

TEST(Signal, ThatWasIgnoredAtTheStartStaysIgnored)
{
  QProcess shell;
  shell.start("sh", {"-c", "trap '' INT; exec \"$0\" bus listen --json --name bob", QStringLiteral(OSTREL)});
  ASSERT_TRUE(WaitFor(
      [&]
      {
        shell.waitForReadyRead(10);
        return shell.peek(100000).contains("ready");
      }));
  ::kill(static_cast<pid_t>(shell.processId()), SIGINT);
  EXPECT_EQ(RunBus({"send", "bob", "x"}).code, Done);
  shell.terminate();
  ASSERT_TRUE(shell.waitForFinished(longWait));
  EXPECT_EQ(shell.exitCode(), EndedBySignal + SIGTERM);
}

// The command line ----------------------------------------------------------------------------------------

TEST(CommandLine, ThatIsWrongEndsWithWrongUsageAndNothingOnStandardOutput)
{
  const QList<QStringList> wrong = {{},
                                    {"nonsense"},
                                    {"members", "surplus"},
                                    {"send"},
                                    {"send", ""},
                                    {"send", "bob", "x", "--file", "/dev/null"},
                                    {"send", "bob", "x", "--name", ""},
                                    {"send", "bob", "x", "--context", ""},
                                    {"wait"},
                                    {"wait", "bob", "--timeout"},
                                    {"wait", "bob", "--timeout", "0"},
                                    {"wait", "bob", "--timeout", "-1"},
                                    {"wait", "bob", "--timeout", "nan"},
                                    {"wait", "bob", "--timeout", "1e99"},
                                    {"wait", "bob", "--timeout", "soon"},
                                    {"listen", "--unknown"}};
  for (const QStringList& arguments : wrong)
  {
    const Outcome outcome = RunBus(arguments);
    EXPECT_EQ(outcome.code, WrongUsage) << arguments.join(' ').toStdString();
    EXPECT_EQ(outcome.out, "") << arguments.join(' ').toStdString();
    EXPECT_FALSE(outcome.err.isEmpty()) << arguments.join(' ').toStdString();
  }
}

TEST(CommandLine, NameThatIsNotUtf8IsRefused)
{
  QProcess shell;
  shell.start("sh", {"-c", "exec \"$0\" bus wait \"$(printf 'a\\377')\"", QStringLiteral(OSTREL)});
  ASSERT_TRUE(shell.waitForFinished(longWait));
  EXPECT_EQ(shell.exitCode(), WrongUsage);
  EXPECT_TRUE(shell.readAllStandardError().contains("a name must be UTF-8"));
}

TEST(CommandLine, NamesAreUtf8WhateverTheLocale)
{
  qputenv("LC_ALL", "C");
  const Process bob = Listen(QString::fromUtf8("gr\xC3\xBC\xC3\x9F"));
  EXPECT_EQ(RunBus({"members"}).out, "gr\xC3\xBC\xC3\x9F\n");
}

TEST(CommandLine, HelpAndVersionGoToStandardOutput)
{
  for (const QStringList& arguments : {QStringList{"--help"}, QStringList{"send", "--help"},
                                       QStringList{"listen", "--help"}, QStringList{"wait", "-h"}})
  {
    const Outcome outcome = RunBus(arguments);
    EXPECT_EQ(outcome.code, Done);
    EXPECT_TRUE(outcome.out.contains("Usage: ostrel bus"));
    EXPECT_EQ(outcome.err, "");
  }
  Ostrel version({"--version"});
  version.Begin();
  EXPECT_EQ(version.Finish(), Done);
  EXPECT_TRUE(version.Out().startsWith("ostrel "));
}

TEST(CommandLine, MissingStandardStreamsAreNotMistakenForTheBus)
{
  const Process bob = Listen("bob");
  QProcess shell;
  shell.start("sh", {"-c", "\"$0\" bus send bob whole --name a <&- >&- 2>&-", QStringLiteral(OSTREL)});
  ASSERT_TRUE(shell.waitForFinished(longWait));
  EXPECT_EQ(shell.exitCode(), Failed) << "the result could not be printed";
  EXPECT_FALSE(bob->WaitForEvent(ToMessage("a", "whole")).isEmpty());
}

} // namespace
