// Stages one broken set-up after the other and asks "ostrel bus doctor" what is wrong. Every case has a bus
// of a name of its own, because the doctor finds buses of the same name in other temporary folders, too.

#include "ExitCodes.h"
#include "Support/HostProcess.h"
#include "Support/Processes.h"

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace Ostrel;

namespace
{

#ifdef TAVRIK_SANITIZED
constexpr int promised = 10000; // ms
#else
constexpr int promised = 2000; // ms
#endif

QString GetContextName()
{
  return QStringLiteral("doctor-%1").arg(getpid());
}

QString GetSocketPath(const QString& folder = QDir::tempPath())
{
  const QString seed =
      QStringLiteral("tavrik:bazaar:ipc:1.0:%1:%2").arg(QString::number(getuid()), GetContextName());
  return folder + QLatin1Char('/') +
         QString::fromLatin1(QCryptographicHash::hash(seed.toUtf8(), QCryptographicHash::Sha1).toHex());
}

class Process : public HostProcess
{
public:
  Process(const QStringList& arguments, const QString& folder)
      : HostProcess(QStringLiteral(OSTREL), arguments)
  {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", folder);
    setProcessEnvironment(environment);
    start();
  }
};

/** A listener that is on the bus; the first one serves. */
std::unique_ptr<Process> Listen(const QString& name, const QString& folder = QDir::tempPath())
{
  auto listener = std::make_unique<Process>(
      QStringList{"bus", "listen", "--json", "--context", GetContextName(), "--name", name}, folder);
  EXPECT_TRUE(listener->WaitForOutput([&] { return listener->Out().contains("\"ready\""); }, "ready"));
  return listener;
}

struct Answer
{
  int code = -1;
  QByteArray text;
  QJsonObject json;
};

QByteArray RunOnce(const QStringList& arguments, const QString& folder, int& code)
{
  QElapsedTimer time;
  time.start();
  Process doctor(QStringList{"bus", "doctor", "--context", GetContextName()} + arguments, folder);
  EXPECT_TRUE(doctor.waitForFinished(longWait));
  EXPECT_LT(time.elapsed(), promised);
  EXPECT_EQ(doctor.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(doctor.readAllStandardError(), "");
  code = doctor.exitCode();
  return doctor.readAllStandardOutput();
}

/** Asks once for people and once for programs; both say the same. */
Answer Ask(const QStringList& arguments = {}, const QString& folder = QDir::tempPath())
{
  Answer answer;
  int code = -1;
  answer.text = RunOnce(arguments, folder, answer.code);
  const QByteArray json = RunOnce(arguments + QStringList{"--json"}, folder, code);
  answer.json = QJsonDocument::fromJson(json).object();
  EXPECT_EQ(code, answer.code);
  EXPECT_EQ(json.count('\n'), 1);
  EXPECT_EQ(answer.json.value("exitCode").toInt(), code);
  EXPECT_TRUE(answer.text.startsWith(answer.json.value("text").toString().toUtf8() + '\n'));
  std::printf("%2d  %-17s  %s", code, qPrintable(answer.json.value("finding").toString()),
              answer.text.constData());
  return answer;
}

QString GetFinding(const Answer& answer)
{
  return answer.json.value("finding").toString();
}

/** A socket of the test's own at the place of the bus's. */
class OwnSocket
{
public:
  explicit OwnSocket(int type = SOCK_STREAM) : descriptor(socket(AF_UNIX, type | SOCK_CLOEXEC, 0))
  {
    const QByteArray path = QFile::encodeName(GetSocketPath());
    address.sun_family = AF_UNIX;
    EXPECT_LT(static_cast<std::size_t>(path.size()), sizeof address.sun_path);
    std::copy(path.begin(), path.end(), address.sun_path);
    EXPECT_EQ(bind(descriptor, Target(), sizeof address), 0);
  }

  ~OwnSocket()
  {
    close(descriptor);
    QFile::remove(GetSocketPath());
  }

  OwnSocket(const OwnSocket&) = delete;
  OwnSocket& operator=(const OwnSocket&) = delete;

  int Get() const { return descriptor; }
  const sockaddr* Target() const { return reinterpret_cast<const sockaddr*>(&address); }

private:
  int descriptor;
  sockaddr_un address = {};
};

// A set-up each -------------------------------------------------------------------------------------------

TEST(Doctor, WithoutASocketSaysThatNobodyServesAndMakesNothing)
{
  const Answer answer = Ask();
  EXPECT_EQ(answer.code, NoBus);
  EXPECT_EQ(GetFinding(answer), "no-socket");
  EXPECT_EQ(answer.json.value("socket").toString(), GetSocketPath());
  EXPECT_EQ(answer.text, "Nobody serves the bus " + GetContextName().toUtf8() + ": there is no socket " +
                             GetSocketPath().toUtf8() + ".\n");
  EXPECT_TRUE(QDir(QDir::tempPath()).entryList(QDir::Files | QDir::System | QDir::Hidden).isEmpty());
}

TEST(Doctor, OfAServedBusNamesItsServerAndMembers)
{
  const auto bob = Listen("bob");
  const auto alice = Listen("al\x1B[31mice");
  const Answer answer = Ask({"--name", "carol"});
  EXPECT_EQ(answer.code, Done);
  EXPECT_EQ(GetFinding(answer), "live");
  const QJsonObject server = answer.json.value("server").toObject();
  EXPECT_EQ(server.value("pid").toInt(), bob->processId());
  EXPECT_TRUE(server.value("program").toString().endsWith("ostrel"));
  EXPECT_EQ(answer.json.value("members").toArray(), (QJsonArray{"al\x1B[31mice", "bob"}));
  EXPECT_EQ(answer.text, "The bus " + GetContextName().toUtf8() + " is served by ostrel (process " +
                             QByteArray::number(bob->processId()) +
                             "). Its members: \"al\\u001b[31mice\", bob.\n");
}

TEST(Doctor, FindsThatANameIsTaken)
{
  const auto server = Listen("server");
  const auto bob = Listen("bob");
  const Answer answer = Ask({"--name", "bob"});
  EXPECT_EQ(answer.code, NameTaken);
  EXPECT_EQ(GetFinding(answer), "name-taken");
  EXPECT_EQ(answer.json.value("server").toObject().value("pid").toInt(), server->processId());
}

TEST(Doctor, FindsASocketThatAKilledServerLeftAndLeavesItThere)
{
  auto server = Listen("server");
  server->Signal(SIGKILL);
  ASSERT_TRUE(server->waitForFinished(longWait));
  const Answer answer = Ask();
  EXPECT_EQ(answer.code, StaleSocket);
  EXPECT_EQ(GetFinding(answer), "stale-socket");
  EXPECT_TRUE(QFile::remove(GetSocketPath()));
}

TEST(Doctor, FindsAServerThatDoesNotAnswerAndDoesNotHoldItUp)
{
  const auto server = Listen("server");
  server->Signal(SIGSTOP);
  const Answer answer = Ask();
  EXPECT_EQ(answer.code, NotJoined);
  EXPECT_EQ(GetFinding(answer), "no-answer");
  EXPECT_EQ(answer.json.value("server").toObject().value("pid").toInt(), server->processId());

  server->Signal(SIGCONT);
  QElapsedTimer time;
  time.start();
  const auto bob = Listen("bob");
  EXPECT_LT(time.elapsed(), 5000);
  EXPECT_EQ(Ask().json.value("members").toArray(), (QJsonArray{"bob", "server"}));
}

TEST(Doctor, FindsAServerThatHasNoRoomForAnotherConnection)
{
  const OwnSocket listening;
  ASSERT_EQ(listen(listening.Get(), 0), 0);
  const int occupying = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(connect(occupying, listening.Target(), sizeof(sockaddr_un)), 0);
  const Answer answer = Ask();
  close(occupying);
#ifdef __linux__
  EXPECT_EQ(answer.code, NotJoined);
  EXPECT_EQ(GetFinding(answer), "no-answer");
  EXPECT_EQ(answer.json.value("server").toObject().value("pid").toInt(), getpid());
#endif
}

TEST(Doctor, FindsAProcessThatNeverEndsItsStart)
{
  const auto server = Listen("server");
  const int lock =
      open(QFile::encodeName(GetSocketPath() + ".lock").constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  ASSERT_EQ(flock(lock, LOCK_EX | LOCK_NB), 0);
  const Answer answer = Ask();
  close(lock);
  EXPECT_EQ(answer.code, NotJoined);
  EXPECT_EQ(GetFinding(answer), "starting");
}

TEST(Doctor, FindsAListenerThatIsNoBus)
{
  const OwnSocket listening;
  ASSERT_EQ(listen(listening.Get(), 5), 0);
  std::thread stranger(
      [&]
      {
        for (int i = 0; i < 2; ++i)
        {
          const int client = accept(listening.Get(), nullptr, nullptr);
          const QByteArray greeting = "220 ready\r\n";
          EXPECT_EQ(write(client, greeting.constData(), greeting.size()), greeting.size());
          char buffer[1024];
          EXPECT_GT(read(client, buffer, sizeof buffer), 0);
          close(client);
        }
      });
  const Answer answer = Ask();
  stranger.join();
  EXPECT_EQ(answer.code, NotABus);
  EXPECT_EQ(GetFinding(answer), "not-a-bus");
}

TEST(Doctor, FindsAFileInTheWayAndLeavesItThere)
{
  QFile file(GetSocketPath());
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.close();
  const Answer answer = Ask();
  EXPECT_EQ(answer.code, SocketBlocked);
  EXPECT_EQ(GetFinding(answer), "file-in-the-way");
  EXPECT_TRUE(file.remove());
}

TEST(Doctor, FindsAFolderInTheWay)
{
  ASSERT_TRUE(QDir().mkdir(GetSocketPath()));
  const Answer answer = Ask();
  EXPECT_EQ(answer.code, SocketBlocked);
  EXPECT_EQ(GetFinding(answer), "folder-in-the-way");
  EXPECT_TRUE(QDir().rmdir(GetSocketPath()));
}

TEST(Doctor, FindsALinkInTheWayAndDoesNotFollowIt)
{
  ASSERT_TRUE(QFile::link("/dev/null", GetSocketPath()));
  const Answer answer = Ask();
  EXPECT_EQ(answer.code, SocketBlocked);
  EXPECT_EQ(GetFinding(answer), "link-in-the-way");
  EXPECT_TRUE(answer.text.contains("A link to /dev/null is where"));
  EXPECT_TRUE(QFile::remove(GetSocketPath()));
}

TEST(Doctor, FindsTheSocketFileOfAnotherUser)
{
  if (geteuid() != 0)
    GTEST_SKIP() << "only root can give a socket away";
  const OwnSocket listening;
  ASSERT_EQ(chown(QFile::encodeName(GetSocketPath()).constData(), 4321, static_cast<gid_t>(-1)), 0);
  const Answer answer = Ask();
  EXPECT_EQ(answer.code, ForeignSocket);
  EXPECT_EQ(GetFinding(answer), "foreign-socket");
  EXPECT_TRUE(answer.text.contains("the user with the number 4321"));
}

TEST(Doctor, FindsAServerOfAnotherUserAndTellsHimNothing)
{
  if (geteuid() != 0)
    GTEST_SKIP() << "only root can become another user";
  const OwnSocket listening;
  int told[2];
  ASSERT_EQ(pipe(told), 0);
  const pid_t stranger = fork();
  if (stranger == 0)
  {
    char byte = 0;
    if (setuid(4321) != 0 || listen(listening.Get(), 5) != 0 || write(told[1], &byte, 1) != 1)
      _exit(2);
    const int client = accept(listening.Get(), nullptr, nullptr);
    _exit(read(client, &byte, 1) == 0 ? 0 : 1);
  }
  char byte = 0;
  ASSERT_EQ(read(told[0], &byte, 1), 1);
  const Answer answer = Ask();
  EXPECT_EQ(answer.code, ForeignSocket);
  EXPECT_TRUE(answer.text.contains("the user with the number 4321"));
  EXPECT_EQ(WaitForEnd(stranger), 0) << "something was said to the stranger";
  close(told[0]);
  close(told[1]);
}

TEST(Doctor, FindsASocketNameThatIsTooLong)
{
  const QString folder = QDir::tempPath() + '/' + QString(100, 'x');
  ASSERT_TRUE(QDir().mkdir(folder));
  const Answer answer = Ask({}, folder);
  EXPECT_EQ(answer.code, SocketNameTooLong);
  EXPECT_EQ(GetFinding(answer), "name-too-long");
  EXPECT_TRUE(QDir().rmdir(folder));
}

// The longest name for which the system has room is still one.
TEST(Doctor, AllowsTheLongestSocketNameThatABusCanHave)
{
  const int room = static_cast<int>(sizeof(sockaddr_un::sun_path)) - 1;
  const QString folder =
      QDir::tempPath() + '/' + QString(room - GetSocketPath(QDir::tempPath() + '/').size(), 'x');
  ASSERT_TRUE(QDir().mkdir(folder));
  ASSERT_EQ(GetSocketPath(folder).size(), room);
  {
    const auto server = Listen("server", folder);
    EXPECT_EQ(Ask({}, folder).code, Done);
  }
  ASSERT_TRUE(QDir().rename(folder, folder + 'x'));
  EXPECT_EQ(Ask({}, folder + 'x').code, SocketNameTooLong);
  EXPECT_TRUE(QDir(folder + 'x').removeRecursively());
}

TEST(Doctor, FindsTheBusInAnotherTemporaryFolder)
{
  const QString folder = QDir::tempPath() + "/other";
  ASSERT_TRUE(QDir().mkdir(folder));
  {
    const auto server = Listen("server", folder);
    const Answer answer = Ask();
#ifdef __linux__
    EXPECT_EQ(answer.code, OtherFolder);
    EXPECT_EQ(GetFinding(answer), "other-folder");
    const QJsonObject other = answer.json.value("elsewhere").toArray().at(0).toObject();
    EXPECT_EQ(other.value("pid").toInt(), server->processId());
    EXPECT_EQ(other.value("socket").toString(), GetSocketPath(folder));
    EXPECT_TRUE(answer.text.contains(folder.toUtf8()));

    // Two buses of one name: each answers, and the doctor knows of the other.
    const auto here = Listen("here");
    const Answer both = Ask();
    EXPECT_EQ(both.code, Done);
    EXPECT_TRUE(both.text.contains("Another bus of this name is served in the temporary folder " +
                                   folder.toUtf8() + " by ostrel (process "));
#endif
  }
  EXPECT_TRUE(QDir(folder).removeRecursively());
}

TEST(Doctor, TakesAFolderThroughALinkForTheSameFolder)
{
  const QString link = QDir::tempPath() + "/link";
  ASSERT_TRUE(QFile::link(QDir::tempPath(), link));
  const auto server = Listen("server");
  const Answer answer = Ask({}, link);
  EXPECT_EQ(answer.code, Done);
  EXPECT_TRUE(answer.json.value("elsewhere").toArray().isEmpty());
  EXPECT_TRUE(QFile::remove(link));
}

#ifdef __linux__
TEST(Doctor, FindsAServerWhoseSocketWasRemoved)
{
  const auto server = Listen("server");
  ASSERT_TRUE(QFile::remove(GetSocketPath()));
  const Answer answer = Ask();
  EXPECT_EQ(answer.code, SocketRemoved);
  EXPECT_EQ(GetFinding(answer), "socket-removed");
  EXPECT_EQ(answer.json.value("server").toObject().value("pid").toInt(), server->processId());
}
#endif

TEST(Doctor, FindsThatTheTemporaryFolderIsMissing)
{
  const Answer answer = Ask({}, QDir::tempPath() + "/missing");
  EXPECT_EQ(answer.code, FolderUnusable);
  EXPECT_EQ(GetFinding(answer), "no-folder");
  EXPECT_TRUE(answer.text.contains(QDir::tempPath().toUtf8() + "/missing cannot be used"));
}

TEST(Doctor, TellsWhyTheSystemRefusesTheConnection)
{
  const OwnSocket datagrams(SOCK_DGRAM);
  const Answer answer = Ask();
  EXPECT_EQ(answer.code, Failed);
  EXPECT_EQ(GetFinding(answer), "unreachable");
}

// What it does not do -------------------------------------------------------------------------------------

TEST(Doctor, LeavesNobodyOnTheBus)
{
  const auto server = Listen("server");
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(Ask().code, Done);
  Process members({"bus", "members", "--context", GetContextName()}, QDir::tempPath());
  ASSERT_TRUE(members.waitForFinished(longWait));
  EXPECT_EQ(members.readAllStandardOutput(), "server\n");
}

TEST(Doctor, NeedsNoMoreThanAContextAndAName)
{
  Process surplus({"bus", "doctor", "surplus"}, QDir::tempPath());
  ASSERT_TRUE(surplus.waitForFinished(longWait));
  EXPECT_EQ(surplus.exitCode(), WrongUsage);
  Process server({"bus", "doctor", "--no-server"}, QDir::tempPath());
  ASSERT_TRUE(server.waitForFinished(longWait));
  EXPECT_EQ(server.exitCode(), WrongUsage);
}

} // namespace
