// The temporary folder, the socket file, the lock beside it, and the process behind them, when something is
// wrong with one of them.

#include "Support/Child.h"
#include "Support/LogCapture.h"
#include "Support/Peer.h"
#include "Support/Processes.h"
#include "Support/Raw.h"
#include "Support/Recorder.h"
#include "Support/Spin.h"
#include "Support/Wire.h"
#include <Common/Bazaar.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalServer>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <poll.h>
#include <set>
#include <string>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>
#ifdef __linux__
#include <sched.h>
#endif

using namespace Tavrik::Bazaar;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

const QString bus = QStringLiteral("demo");

// The library, too, names the socket once, for the user that it was loaded by.
const QByteArray& SocketPath()
{
  static const QByteArray path = QFile::encodeName(Wire::ServerName(bus));
  return path;
}

struct Guest
{
  explicit Guest(const QString& name, int flags = 0)
      : recorder(std::make_shared<Recorder>()), context(std::make_unique<Context>(bus, name, recorder, flags))
  {
  }

  bool Sees(const QStringList& members, int limit = 20000) const
  {
    return SpinUntil([&] { return context->Members() == members; }, limit);
  }

  std::shared_ptr<Recorder> recorder;
  std::unique_ptr<Context> context;
};

int CountTurns(int duration)
{
  int turns = 0;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&] { ++turns; });
  timer.start(10);
  SpinFor(duration);
  return turns;
}

// Lines of participants that could not connect.
int CountFailures(const LogCapture& log)
{
  const std::vector<std::string> errors = log.Errors();
  return static_cast<int>(std::count_if(errors.begin(), errors.end(),
                                        [](const std::string& line)
                                        { return line.find("couldn't connect") != std::string::npos; }));
}

// A participant of this process and the server that it is about to lose.
struct Survivor : testing::Test
{
  Survivor() { EXPECT_TRUE(isReady && anna.Sees({"anna", "server"})); }

  const Meeting meeting{bus};
  Peer server{bus, QStringLiteral("server")};
  const bool isReady = server.IsReady();
  const Guest anna{QStringLiteral("anna")};
};

// ---- The temporary folder

struct TemporaryFolder : Survivor
{
};

TEST_F(TemporaryFolder, ThatIsGoneLeavesTheEventLoopFreeAndIsLoggedOnce)
{
  const QString folder = QDir::tempPath();
  const LogCapture log;
  server.Kill();
  ASSERT_TRUE(QDir().rename(folder, folder + ".away"));
  ASSERT_TRUE(SpinUntil([&] { return CountFailures(log) == 1; }));
  const int duration = 4000;
  EXPECT_GT(CountTurns(duration), duration / 10 / 3) << "of a timer of 10 ms";
  EXPECT_EQ(CountFailures(log), 1);

  ASSERT_TRUE(QDir().rename(folder + ".away", folder));
  EXPECT_TRUE(anna.Sees({"anna"}));
  EXPECT_EQ(CountFailures(log), 1);
}

// ---- The start-up lock

struct StartupLock : Survivor
{
};

// Nothing can be removed, listened on or connected to where a folder stands.
struct Obstacle
{
  Obstacle() { EXPECT_EQ(mkdir(SocketPath().constData(), 0700), 0); }
  ~Obstacle() { rmdir(SocketPath().constData()); }
};

// The share of looks that found the lock of the bus held by a participant.
double MeasureLockHolding(int duration)
{
  std::atomic<bool> isOver{false};
  int looks = 0;
  int held = 0;
  std::thread observer(
      [&]
      {
        const QByteArray path = SocketPath() + ".lock";
        while (!isOver)
        {
          const int file = open(path.constData(), O_RDWR | O_CLOEXEC);
          ++looks;
          held += file >= 0 && flock(file, LOCK_EX | LOCK_NB) != 0 ? 1 : 0;
          close(file);
          usleep(2000);
        }
      });
  SpinFor(duration);
  isOver = true;
  observer.join();
  return static_cast<double>(held) / looks;
}

TEST_F(StartupLock, IsNotHeldDuringThePausesBetweenAttempts)
{
  const LogCapture log;
  server.Kill();
  ASSERT_TRUE(QFile::remove(Wire::ServerName(bus)));
  auto obstacle = std::make_unique<Obstacle>();
  ASSERT_TRUE(SpinUntil([&] { return CountFailures(log) == 1; }));
  EXPECT_LT(MeasureLockHolding(3000), 0.3);
  obstacle.reset();
  EXPECT_TRUE(anna.Sees({"anna"}));
}

TEST_F(StartupLock, HeldByAnotherProcessDoesNotBlockTheEventLoopOfAReconnection)
{
  const int lock = open((SocketPath() + ".lock").constData(), O_RDWR | O_CLOEXEC);
  ASSERT_GE(lock, 0);
  ASSERT_EQ(flock(lock, LOCK_EX), 0);
  server.Kill();
  const int duration = 2000;
  EXPECT_GT(CountTurns(duration), duration / 10 / 3) << "of a timer of 10 ms";
  EXPECT_TRUE(anna.Sees({"anna"})) << "without the lock after its time limit";
  close(lock);
}

// ---- The socket file

TEST(SocketFile, ThatIsALinkIsReplacedAndNotFollowed)
{
  const Meeting meeting(bus);
  const QString elsewhere = Wire::ServerName(bus) + ".elsewhere";
  QLocalServer silent;
  ASSERT_TRUE(silent.listen(elsewhere));
  ASSERT_EQ(symlink(QFile::encodeName(elsewhere).constData(), SocketPath().constData()), 0);
  const Guest anna(QStringLiteral("anna"));
  EXPECT_TRUE(anna.context->WaitMember(QStringLiteral("anna"), 20000));
  struct stat status = {};
  ASSERT_EQ(lstat(SocketPath().constData(), &status), 0);
  EXPECT_TRUE(S_ISSOCK(status.st_mode));
  EXPECT_FALSE(silent.waitForNewConnection(0));
}

sockaddr_un Address(const QByteArray& path)
{
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, path.constData(), sizeof(address.sun_path) - 1);
  return address;
}

// Listens as the present user without accepting; returns once no more connections are queued.
void ListenWithAFullQueue(const QByteArray& path)
{
  const sockaddr_un address = Address(path);
  const auto* where = reinterpret_cast<const sockaddr*>(&address);
  const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
  if (bind(listener, where, sizeof(address)) != 0 || listen(listener, 0) != 0 ||
      chmod(path.constData(), 0777) != 0)
    _exit(1);
  for (int connected = 0; connected == 0;)
    connected = connect(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0), where, sizeof(address));
}

struct Squatted : testing::Test
{
  Squatted()
  {
    EXPECT_EQ(chmod(QFile::encodeName(QDir::tempPath() + "/..").constData(), 0711), 0);
    EXPECT_EQ(chmod(QFile::encodeName(QDir::tempPath()).constData(), 01777), 0);
    EXPECT_FALSE(SocketPath().isEmpty());
  }

  static constexpr uid_t squatter = 64001;
  static constexpr uid_t victim = 64002;
  const Meeting meeting{bus};
};

TEST_F(Squatted, ByAnotherUserWithAFullQueueFailsTheStartAtOnce)
{
  if (geteuid() != 0)
    GTEST_SKIP() << "Only root can be two other users";
  const Forked other(
      [&]
      {
        if (setresgid(squatter, squatter, squatter) != 0 || setresuid(squatter, squatter, squatter) != 0)
          _exit(1);
        ListenWithAFullQueue(SocketPath());
        pause();
      });
  ASSERT_TRUE(SpinUntil([&] { return CountServers(bus) == 1; }));
  EXPECT_TRUE(RunAs({victim, victim, victim, {}},
                    []
                    {
                      const LogCapture log;
                      QElapsedTimer watch;
                      watch.start();
                      const Guest anna(QStringLiteral("anna"));
                      EXPECT_LT(watch.elapsed(), 2500);
                      EXPECT_EQ(CountFailures(log), 1);
                    }));
}

TEST_F(Squatted, ByAnotherUserInAnElectionLeavesTheEventLoopFreeAndHealsAfterwards)
{
  if (geteuid() != 0)
    GTEST_SKIP() << "Only root can be two other users";
  int elected[2] = {-1, -1};
  ASSERT_EQ(pipe(elected), 0);
  const Forked other(
      [&]
      {
        close(elected[1]);
        char byte = 0;
        if (read(elected[0], &byte, 1) != 1 || setresgid(squatter, squatter, squatter) != 0 ||
            setresuid(squatter, squatter, squatter) != 0)
          _exit(1);
        while (access(SocketPath().constData(), F_OK) == 0)
          usleep(100);
        ListenWithAFullQueue(SocketPath());
        usleep(3000000);
        unlink(SocketPath().constData());
        pause();
      });
  EXPECT_TRUE(RunAs({victim, victim, victim, {}},
                    [&]
                    {
                      Guest anna(QStringLiteral("anna"));
                      const Guest ben(QStringLiteral("ben"));
                      ASSERT_TRUE(ben.Sees({"anna", "ben"}));
                      const LogCapture log;
                      ASSERT_EQ(write(elected[1], "x", 1), 1);
                      anna.context.reset();
                      ASSERT_TRUE(SpinUntil([&] { return CountFailures(log) == 1; }));
                      const int duration = 2000;
                      EXPECT_GT(CountTurns(duration), duration / 10 / 3) << "of a timer of 10 ms";
                      EXPECT_TRUE(ben.Sees({"ben"}));
                      EXPECT_EQ(CountFailures(log), 1);
                    }));
  close(elected[0]);
  close(elected[1]);
}

TEST(SocketFile, IsItsUsersAloneWheneverItIsSeen)
{
  std::atomic<bool> isOver{false};
  std::set<mode_t> seen;
  std::thread observer(
      [&]
      {
        const QByteArray path = SocketPath();
        struct stat status = {};
        while (!isOver)
          if (lstat(path.constData(), &status) == 0)
            seen.insert(status.st_mode);
      });
  for (int i = 0; i < 300; ++i)
    const Guest anna(QStringLiteral("anna"));
  isOver = true;
  observer.join();
  EXPECT_THAT(seen, ElementsAre(static_cast<mode_t>(S_IFSOCK | 0600)));
}

TEST(Umask, IsNeverChangedByContextsOfSeveralThreads)
{
  const mode_t before = umask(0022);
  std::atomic<int> working{2};
  std::vector<std::unique_ptr<QThread>> threads;
  for (const char* name : {"anna", "ben"})
    threads.emplace_back(QThread::create(
        [name, &working]
        {
          for (int i = 0; i < 300; ++i)
            const Context context(QStringLiteral("%1%2").arg(name).arg(i), name, nullptr, 0);
          --working;
        }));
  for (const auto& thread : threads)
    thread->start();

  const QByteArray file = QFile::encodeName(QDir::tempPath() + "/file.lock");
  std::set<mode_t> modes;
  while (working > 0)
  {
    close(open(file.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0666));
    struct stat status = {};
    EXPECT_EQ(stat(file.constData(), &status), 0);
    modes.insert(status.st_mode & 0777);
    unlink(file.constData());
  }
  for (const auto& thread : threads)
    thread->wait();
  EXPECT_THAT(modes, ElementsAre(mode_t(0644)));
  EXPECT_EQ(umask(before), mode_t(0022));
}

// ---- The serving process

struct Serving : testing::Test
{
  Peer& Start(const char* name)
  {
    peers.push_back(std::make_unique<Peer>(bus, QString::fromLatin1(name)));
    return *peers.back();
  }

  std::vector<Peer*> All() const
  {
    std::vector<Peer*> all;
    for (const std::unique_ptr<Peer>& peer : peers)
      all.push_back(peer.get());
    return all;
  }

  const Meeting meeting{bus};
  std::vector<std::unique_ptr<Peer>> peers;
};

TEST_F(Serving, WithoutADescriptorForANewcomerKeepsItWaitingAndItsMembersTogether)
{
  Peer& server = Start("a");
  ASSERT_TRUE(server.IsReady());
  Peer& member = Start("b");
  ASSERT_TRUE(AllSee({&server, &member}, QStringLiteral("a,b")));

  server.Tell(QStringLiteral("exhaust"));
  ASSERT_TRUE(server.Told(QStringLiteral("limited")));
  Peer& newcomer = Start("c");
  const long long processorTime = ProcessorTimeOf(server.Pid());
  SpinFor(3000);
  EXPECT_LT(ProcessorTimeOf(server.Pid()) - processorTime, 1500);
  EXPECT_FALSE(newcomer.lines.contains(QStringLiteral("ready")));
  EXPECT_TRUE(QFile::exists(Wire::ServerName(bus)));
  server.Say(QStringLiteral("b"), "meanwhile");
  EXPECT_TRUE(server.Told(QStringLiteral("result 1 OK")));

  server.Tell(QStringLiteral("relieve"));
  EXPECT_TRUE(AllSee(All(), QStringLiteral("a,b,c")));
  EXPECT_EQ(CountServers(bus), 1);
  EXPECT_EQ(FindServer(All(), bus), &server);
  for (Peer* peer : All())
    EXPECT_THAT(peer->Of(QStringLiteral("left")), IsEmpty());
}

TEST_F(Serving, KilledWithItsSocketsHeldByAForkedProcessIsReplaced)
{
  Peer& server = Start("a");
  ASSERT_TRUE(server.IsReady());
  Peer& b = Start("b");
  Peer& c = Start("c");
  ASSERT_TRUE(AllSee(All(), QStringLiteral("a,b,c")));
  server.Tell(QStringLiteral("fork"));
  ASSERT_TRUE(SpinUntil([&] { return !server.Of(QStringLiteral("forked ")).isEmpty(); }));
  const pid_t holder = server.Of(QStringLiteral("forked ")).first().mid(7).toInt();
  ASSERT_EQ(kill(static_cast<pid_t>(server.Pid()), SIGKILL), 0);
  EXPECT_TRUE(AllSee({&b, &c}, QStringLiteral("b,c")));
  EXPECT_EQ(kill(holder, 0), 0) << "it still holds the sockets";
  Peer& d = Start("d");
  EXPECT_TRUE(AllSee({&b, &c, &d}, QStringLiteral("b,c,d")));
  kill(holder, SIGKILL);
}

TEST_F(Serving, IsNotDisturbedByAForkedProcessThatDestroysItsCopy)
{
  Peer& server = Start("a");
  ASSERT_TRUE(server.IsReady());
  Peer& member = Start("b");
  ASSERT_TRUE(AllSee(All(), QStringLiteral("a,b")));

  // Bytes that the server cannot write yet must not be written twice, and what it was about to say is its
  // own.
  member.Stop();
  server.Tell(QStringLiteral("fill b 8000000"));
  server.Say(QStringLiteral("b"), "the rest");
  server.Tell(QStringLiteral("forget"));
  ASSERT_TRUE(server.Told(QStringLiteral("forgotten")));
  member.Tell(QStringLiteral("forget"));
  member.Continue();

  EXPECT_TRUE(QFile::exists(Wire::ServerName(bus)));
  EXPECT_TRUE(server.Told(QStringLiteral("result 2 OK")));
  EXPECT_TRUE(SpinUntil([&] { return member.Of(QStringLiteral("message a ")).size() == 2; }));
  ASSERT_TRUE(member.Told(QStringLiteral("forgotten")));
  Start("c");
  EXPECT_TRUE(AllSee(All(), QStringLiteral("a,b,c")));
  EXPECT_EQ(FindServer(All(), bus), &server);
  for (Peer* peer : All())
  {
    EXPECT_THAT(peer->Of(QStringLiteral("left")), IsEmpty());
    EXPECT_FALSE(peer->log.contains("\nE")) << peer->log.toStdString();
  }
}

// Forks, and goes on in the child while the parent ends. The child ends with the test.
void Daemonise(int testIsOver)
{
  QCoreApplication::instance()->processEvents();
  const pid_t child = fork();
  if (child != 0)
    _exit(child < 0 ? 1 : 0);
  std::thread(
      [testIsOver]
      {
        pollfd end = {testIsOver, 0, 0};
        poll(&end, 1, -1);
        _exit(0);
      })
      .detach();
}

TEST_F(Serving, InAProcessThatHasBecomeADaemonStaysOnTheBus)
{
  int over[2] = {-1, -1};
  ASSERT_EQ(pipe2(over, O_CLOEXEC), 0);
  const Forked daemon(
      [&]
      {
        close(over[1]);
        const Guest server(QStringLiteral("daemon"));
        if (server.Sees({"b", "c", "daemon"}))
          Daemonise(over[0]);
        SpinUntil([] { return false; }, 120000);
      });
  close(over[0]);
  ASSERT_TRUE(SpinUntil([&] { return CountServers(bus) == 1; }));
  Peer& b = Start("b");
  Peer& c = Start("c");
  ASSERT_TRUE(SpinUntil([&] { return b.lines.contains("joined c") && c.lines.contains("ready"); }));
  ASSERT_EQ(WaitForEnd(daemon.pid), 0);

  EXPECT_TRUE(
      SpinUntil([&] { return b.log.count("has connected") > 1 && c.log.count("has connected") > 1; }));
  Peer& d = Start("d");
  EXPECT_TRUE(AllSee({&b, &c, &d}, QStringLiteral("b,c,d,daemon")));
  EXPECT_LE(b.log.count("has connected"), 4);
  EXPECT_LE(c.log.count("has connected"), 4);
  close(over[1]);
}

#ifdef __linux__

// Runs the work as the first process of a process namespace of its own; false where the machine forbids that.
bool RunAmongOwnProcesses(const std::function<void()>& work)
{
  if (unshare(geteuid() == 0 ? CLONE_NEWPID : CLONE_NEWPID | CLONE_NEWUSER) != 0)
    return false;
  const pid_t child = fork();
  if (child == 0)
  {
    work();
    _exit(EXIT_SUCCESS);
  }
  return child > 0 && WaitForEnd(child) == 0;
}

TEST_F(Serving, UnseenFromAnotherProcessNamespaceAndRefusingANameIsRetriedSeldom)
{
  Peer& server = Start("a");
  ASSERT_TRUE(server.IsReady());
  int outcome[2] = {-1, -1};
  ASSERT_EQ(pipe2(outcome, O_CLOEXEC), 0);
  const int duration = 5000;
  const Forked twin(
      [&]
      {
        const bool isAllowed = RunAmongOwnProcesses(
            []
            {
              const Guest second(QStringLiteral("a"));
              SpinFor(duration);
              _exit(EXIT_SUCCESS);
            });
        if (write(outcome[1], isAllowed ? "y" : "n", 1) == 1)
          pause();
      });
  char isAllowed = 0;
  pollfd end = {outcome[0], POLLIN, 0};
  ASSERT_TRUE(SpinUntil([&] { return poll(&end, 1, 0) == 1; }, 60000));
  ASSERT_EQ(read(outcome[0], &isAllowed, 1), 1);
  close(outcome[0]);
  close(outcome[1]);
  if (isAllowed == 'n')
    GTEST_SKIP() << "The machine allows no process namespace";
  EXPECT_GE(server.log.count("alredy connected"), 2);
  EXPECT_LE(server.log.count("alredy connected"), 3 + duration / 1000);
}

#endif

} // namespace
