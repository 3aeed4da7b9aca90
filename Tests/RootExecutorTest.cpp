// Root is real here: a machine's own, or that of a user namespace. What asks for it, pkexec and sudo, are
// scripts in a folder of the test's.

#include <Common/RootExecutor.cpp>

#include "Support/LogCapture.h"
#include "Support/Programs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <csignal>
#include <cstdio>
#include <dlfcn.h>
#include <fcntl.h>
#include <ostream>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Tavrik;
using Cleaner::Details::RootExecutor;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace
{

bool areStreamsRefused = false;

} // namespace

// The C library's, which finds no memory when a test wants it so.
extern "C" FILE* fopencookie(void* cookie, const char* mode, cookie_io_functions_t functions)
{
  static const auto real =
      reinterpret_cast<FILE* (*)(void*, const char*, cookie_io_functions_t)>(dlsym(RTLD_NEXT, "fopencookie"));
  return areStreamsRefused ? nullptr : real(cookie, mode, functions);
}

namespace
{

int CountDescriptors()
{
  return static_cast<int>(
      QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size());
}

bool HasChildren()
{
  siginfo_t info = {};
  return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

// Where nobody takes in orphans, what has ended stays to be seen.
bool IsRunning(const QByteArray& pid)
{
  const QByteArray state = ReadText("/proc/" + pid + "/stat");
  return !state.isEmpty() && state.mid(state.lastIndexOf(')') + 2, 1) != "Z";
}

// How the tool came to its rights.
enum class Way
{
  Direct,
  Pkexec,
  Sudo
};

const char* NameOf(Way way)
{
  return way == Way::Direct ? "Direct" : way == Way::Pkexec ? "Pkexec" : "Sudo";
}

void PrintTo(Way way, std::ostream* stream)
{
  *stream << NameOf(way);
}

class RootExecutorTest : public testing::Test
{
protected:
  void SetUp() override
  {
    folder = QDir::tempPath() + QStringLiteral("/root-executor");
    ASSERT_TRUE(QDir().mkpath(folder));
    // A tool of somebody else reports into it.
    ASSERT_EQ(0, chmod(QFile::encodeName(folder).constData(), 0777));
    launchers = QFile::encodeName(folder) + "/launchers";
    ASSERT_EQ(0, mkdir(launchers.constData(), 0777));
    Platform::launcherFolders = launchers.constData();

    // Tells its arguments, its environment and what it reads, and speaks its process id first.
    tool = folder + QStringLiteral("/the tool's");
    WriteProgram(tool, "printf '%s\\0' \"$@\" end >\"$0.arguments.new\"\n"
                       "env >\"$0.environment\"\n"
                       "ls -l /proc/self/fd >\"$0.descriptors\"\n"
                       "echo $$ >>\"$0.pids\"\n"
                       "mv \"$0.arguments.new\" \"$0.arguments\"\n"
                       "p=$$\n"
                       "printf \"$(printf '\\\\%03o' $((p & 255)) $((p >> 8 & 255)) $((p >> 16 & 255)) 0)\"\n"
                       "[ \"$1\" = listen ] && read -r line && echo \"$line\" >\"$0.line.new\" && mv "
                       "\"$0.line.new\" \"$0.line\"\n"
                       "exit 0\n");
  }

  void TearDown() override { QDir(folder).removeRecursively(); }

  // What asks tells each question, grants it and starts what it is given, as the real ones do.
  QString Launcher(const char* name) { return QString::fromLatin1(launchers + "/" + name); }
  void GrantBy(const char* name)
  {
    WriteProgram(Launcher(name), "echo asked >>\"$0.asked\"\n"
                                 "printf '%s\\0' \"$@\" >\"$0.arguments\"\n"
                                 "shift\n"
                                 "exec \"$@\"\n");
  }
  int Questions(const char* name) { return ReadText(Launcher(name) + ".asked").count("asked"); }

  void Become(Way way)
  {
    if (way == Way::Direct)
    {
      if (!BecomeRoot())
        GTEST_SKIP() << "This machine lets a plain user make no user namespace, so nobody can be root here";
      return;
    }
    GrantBy(way == Way::Pkexec ? "pkexec" : "sudo");
    BecomeUser();
  }

  QByteArray Report(const char* what) { return ReadText(tool + QLatin1Char('.') + QLatin1String(what)); }

  QList<QByteArray> WaitForArguments()
  {
    EXPECT_TRUE(WaitFor([&] { return QFile::exists(tool + ".arguments"); })) << "the tool never reported";
    const QList<QByteArray> arguments = Report("arguments").split('\0');
    EXPECT_EQ("end", arguments.value(arguments.size() - 2));
    return arguments.mid(0, arguments.size() - 2);
  }

  // No tool may be left when the folder goes, and none of those that were started may still have to begin.
  void WaitForTools(int started = 0)
  {
    EXPECT_TRUE(WaitFor(
        [&]
        {
          const QByteArray pids = Report("pids");
          for (const QByteArray& pid : pids.split('\n'))
            if (!pid.isEmpty() && IsRunning(pid))
              return false;
          return pids.count('\n') >= started;
        }))
        << "a tool never ended";
  }

  QString folder;
  QString tool;
  QByteArray launchers;
};

class EveryWay : public RootExecutorTest, public testing::WithParamInterface<Way>
{
protected:
  void SetUp() override
  {
    RootExecutorTest::SetUp();
    if (!HasFatalFailure())
      Become(GetParam());
  }
};

INSTANTIATE_TEST_SUITE_P(Launch, EveryWay, testing::Values(Way::Direct, Way::Pkexec, Way::Sudo),
                         [](const auto& info) { return NameOf(info.param); });

std::vector<std::string> ToStrings(const QList<QByteArray>& texts)
{
  std::vector<std::string> strings;
  for (const QByteArray& text : texts)
    strings.push_back(text.toStdString());
  return strings;
}

} // namespace

TEST_F(RootExecutorTest, BeforeAnyStartThePidIsMinusOneAndNothingIsAuthorized)
{
  const RootExecutor executor(tool, true);
  EXPECT_EQ(-1, executor.GetPid());
  EXPECT_FALSE(executor.IsAuthorized());
}

TEST_P(EveryWay, TheArgumentsArriveUnchanged)
{
  const QStringList arguments = {"",
                                 " a  b ",
                                 "two\nlines\n",
                                 "-x",
                                 "--",
                                 ";|&><",
                                 "it's \"quoted\"",
                                 "$HOME `id` $(id)",
                                 "\\n\\",
                                 "*?[a]",
                                 "~",
                                 "A=b",
                                 "\tt\r\x01",
                                 u8"\u0434\u0430",
                                 QString()};
  RootExecutor executor(tool, false);
  ASSERT_TRUE(executor.Exec(arguments));
  QList<QByteArray> expected;
  for (const QString& argument : arguments)
    expected.append(argument.toUtf8());
  EXPECT_EQ(ToStrings(expected), ToStrings(WaitForArguments()));
  WaitForTools();
}

TEST_P(EveryWay, TheVariadicFormJoinsByteStringsAndQStringsInOrder)
{
  RootExecutor executor(tool, false);
  ASSERT_TRUE(executor.Exec("a", "b", QString("c"), QString("d")));
  EXPECT_THAT(ToStrings(WaitForArguments()), ElementsAre("a", "b", "c", "d"));
  WaitForTools();
}

TEST_P(EveryWay, TwoStartsAskAtMostOnce)
{
  RootExecutor executor(tool, true);
  ASSERT_TRUE(executor.Exec("first"));
  const qint32 first = executor.GetPid();
  ASSERT_TRUE(executor.Exec("second"));
  EXPECT_TRUE(executor.IsAuthorized());
  EXPECT_NE(first, executor.GetPid());
  EXPECT_EQ(GetParam() == Way::Pkexec ? 1 : 0, Questions("pkexec"));
  EXPECT_EQ(GetParam() == Way::Sudo ? 1 : 0, Questions("sudo"));
}

TEST_P(EveryWay, ReadPidTakesTheToolsFirstFourBytes)
{
  RootExecutor executor(tool, true);
  ASSERT_TRUE(executor.Exec("x"));
  EXPECT_EQ(Report("pids").trimmed().toInt(), executor.GetPid());
  EXPECT_GT(executor.GetPid(), 0);
}

TEST_P(EveryWay, ReadPidWithNothingReadIsMinusOne)
{
  RootExecutor executor(tool, true);
  ASSERT_TRUE(executor.Exec("x"));
  ASSERT_GT(executor.GetPid(), 0);
  WriteProgram(tool, "printf abc\n");
  ASSERT_TRUE(executor.Exec("x"));
  EXPECT_EQ(-1, executor.GetPid());
}

TEST_P(EveryWay, WithReadPidOffAStartLeavesThePid)
{
  RootExecutor executor(tool, false);
  ASSERT_TRUE(executor.Exec("x"));
  EXPECT_EQ(-1, executor.GetPid());
  WaitForArguments();
  WaitForTools();
}

TEST_P(EveryWay, AMissingToolIsAFailedStart)
{
  RootExecutor executor(tool, true);
  ASSERT_TRUE(executor.Exec("x"));
  ASSERT_GT(executor.GetPid(), 0);
  ASSERT_TRUE(QFile::rename(tool, tool + " gone"));
  const LogCapture log;
  EXPECT_FALSE(executor.Exec("x"));
  EXPECT_EQ(-1, executor.GetPid());
  EXPECT_THAT(log.Errors(), ElementsAre("Can't run a process (" + tool.toStdString() + ") as root: -60031"));
  EXPECT_TRUE(executor.IsAuthorized());
  // The right is still there, and the shell still follows.
  ASSERT_TRUE(QFile::rename(tool + " gone", tool));
  EXPECT_TRUE(executor.Exec("x"));
  EXPECT_GT(executor.GetPid(), 0);
}

TEST_P(EveryWay, AToolThatIsNoProgramIsAFailedStart)
{
  ASSERT_EQ(0, chmod(QFile::encodeName(tool).constData(), 0644));
  RootExecutor file(tool, true);
  EXPECT_FALSE(file.Exec("x"));
  EXPECT_EQ(-1, file.GetPid());
  RootExecutor directory(folder, true);
  EXPECT_FALSE(directory.Exec("x"));
}

TEST_P(EveryWay, AnArgumentThatIsTooLongIsAFailedStart)
{
  const int longest = 32 * static_cast<int>(sysconf(_SC_PAGESIZE)) - 1;
  WriteProgram(tool, "printf '%s' ${#1} >\"$0.arguments.new\"; mv \"$0.arguments.new\" \"$0.arguments\"\n");
  RootExecutor executor(tool, false);
  EXPECT_FALSE(executor.Exec(QStringList{QString(longest + 1, 'x')}));
  EXPECT_FALSE(executor.Exec(QVector<QString>(100, QString(longest, 'x')).toList()));
  EXPECT_TRUE(executor.Exec(QStringList{QString(longest, 'x')}));
  EXPECT_TRUE(WaitFor([&] { return Report("arguments").toInt() == longest; }));
}

TEST_P(EveryWay, TheStreamIsTheToolsInputAndOutput)
{
  Platform::PrivilegedSession* session = nullptr;
  const QByteArray path = QFile::encodeName(tool);
  ASSERT_EQ(0, Platform::OpenPrivilegedSession(&session));
  ASSERT_EQ(0, Platform::AskForPrivilege(session, path.constData(), static_cast<std::size_t>(path.size())));
  char listen[] = "listen";
  char* arguments[] = {listen, nullptr};
  std::FILE* stream = nullptr;
  ASSERT_EQ(0, Platform::StartPrivileged(session, path.constData(), nullptr, arguments, &stream));
  qint32 pid = 0;
  ASSERT_EQ(1u, std::fread(&pid, sizeof(pid), 1, stream));
  std::fputs("said to the tool\n", stream);
  std::fflush(stream);
  EXPECT_TRUE(WaitFor([&] { return Report("line") == "said to the tool\n"; }));
  Platform::ClosePrivilegedSession(session);
}

TEST_P(EveryWay, TheToolsEnvironmentIsClean)
{
  for (const char* name : {"LD_PRELOAD", "LD_LIBRARY_PATH", "IFS", "ENV", "BASH_ENV", "HOSTS_OWN"})
    setenv(name, "", 1);
  setenv("PATH", (qgetenv("PATH") + ":/hostile").constData(), 1);
  RootExecutor executor(tool, true);
  ASSERT_TRUE(executor.Exec("x"));
  for (const char* name : {"LD_", "IFS=", "ENV=", "BASH_ENV=", "HOSTS_OWN", "hostile"})
    EXPECT_THAT(Report("environment").toStdString(), Not(HasSubstr(name)));
  EXPECT_THAT(Report("environment").toStdString(), HasSubstr("PATH=/usr/sbin:/usr/bin:/sbin:/bin\n"));
}

TEST_P(EveryWay, TheToolInheritsNoDescriptorOfTheHost)
{
  const int open = ::open("/dev/zero", O_RDONLY);
  RootExecutor executor(tool, true);
  ASSERT_TRUE(executor.Exec("x"));
  EXPECT_THAT(Report("descriptors").toStdString(), Not(HasSubstr("/dev/zero")));
  EXPECT_THAT(Report("descriptors").toStdString(), Not(HasSubstr(" 4 ->")));
  close(open);
}

TEST_P(EveryWay, NoSignalIsIgnoredOrBlockedInTheTool)
{
  for (const int number : {SIGPIPE, SIGTERM, SIGINT, SIGQUIT, SIGHUP, SIGCHLD})
    signal(number, SIG_IGN);
  sigset_t blocked;
  sigfillset(&blocked);
  sigprocmask(SIG_SETMASK, &blocked, nullptr);
  WriteProgram(tool, "grep -E '^Sig(Ign|Blk)' /proc/self/status >\"$0.signals\"; printf abcd\n");
  RootExecutor executor(tool, true);
  ASSERT_TRUE(executor.Exec("x"));
  EXPECT_EQ("SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n", Report("signals"));
}

TEST_P(EveryWay, TheToolsEnvironmentIsPathAndHome)
{
  setenv("HOSTS_OWN", "", 1);
  WriteProgram(tool, "cat /proc/$$/environ >\"$0.environment\"; printf abcd\n");
  RootExecutor executor(tool, true);
  ASSERT_TRUE(executor.Exec("x"));
  EXPECT_EQ("PATH=/usr/sbin:/usr/bin:/sbin:/bin\nHOME=/root\n", Report("environment").replace('\0', '\n'));
}

TEST_P(EveryWay, NoZombieAndNoDescriptorStaysBehind)
{
  const int before = CountDescriptors();
  {
    RootExecutor executor(tool, true);
    for (int i = 0; i < 20; ++i)
      ASSERT_TRUE(executor.Exec("listen"));
    // The tools still listen, so their streams are open; they end when the test lets them.
    EXPECT_TRUE(WaitFor([&] { return Report("pids").count('\n') == 20; }));
    for (const QByteArray& pid : Report("pids").split('\n'))
      if (!pid.isEmpty())
        kill(pid.toInt(), SIGKILL);
    WaitForTools();
    const bool isOwnShellThere = GetParam() != Way::Direct;
    EXPECT_EQ(isOwnShellThere, HasChildren());
  }
  EXPECT_FALSE(HasChildren());
  EXPECT_TRUE(WaitFor(
      [&]
      {
        RootExecutor(tool, false).Authorize(); // tidies up
        return CountDescriptors() == before;
      }))
      << CountDescriptors() << " descriptors, before: " << before;
  WaitForTools();
}

TEST_P(EveryWay, ARunningToolOutlivesItsExecutor)
{
  {
    RootExecutor executor(tool, true);
    ASSERT_TRUE(executor.Exec("listen"));
  }
  const QByteArray pid = Report("pids").trimmed();
  EXPECT_TRUE(QFile::exists("/proc/" + pid)) << "the tool waits for its input";
  kill(pid.toInt(), SIGKILL);
  WaitForTools();
}

TEST_P(EveryWay, AHostWithoutStandardDescriptorsStartsToolsToo)
{
  const int saved = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 10);
  const int savedOut = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 10);
  for (int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    close(descriptor);
  RootExecutor executor(tool, true);
  const bool isStarted = executor.Exec("x");
  dup2(saved, STDERR_FILENO);
  dup2(savedOut, STDOUT_FILENO);
  EXPECT_TRUE(isStarted);
  EXPECT_EQ(Report("pids").trimmed().toInt(), executor.GetPid());
}

TEST_P(EveryWay, ARelativeToolIsTakenFromTheCurrentFolder)
{
  ASSERT_TRUE(QDir::setCurrent(folder));
  RootExecutor executor("./the tool's", true);
  EXPECT_TRUE(executor.Exec("x"));
  EXPECT_GT(executor.GetPid(), 0);
}

TEST_F(RootExecutorTest, ANonConstListIsAList)
{
  Become(Way::Direct);
  if (IsSkipped())
    return;
  QStringList arguments = {"one", "two"};
  RootExecutor executor(tool, false);
  ASSERT_TRUE(executor.Exec(arguments));
  EXPECT_THAT(ToStrings(WaitForArguments()), ElementsAre("one", "two"));
  WaitForTools();
}

TEST(JoinArguments, KeepsTheOrderAndTakesByteStringsAsUtf8)
{
  QStringList list = {"there"};
  char array[] = "array";
  const char* nothing = nullptr;
  QStringList& same = RootExecutor::JoinArguments(list, u8"\u0434", QString("q"), array, nothing, QString());
  EXPECT_EQ(&list, &same);
  EXPECT_EQ((QStringList{"there", QString(QChar(0x434)), "q", "array", QString(), QString()}), list);
  EXPECT_TRUE(list.at(4).isNull());
  EXPECT_EQ((QStringList{"one"}),
            []
            {
              QStringList l;
              return RootExecutor::JoinArguments(l, "one");
            }());
}

TEST_F(RootExecutorTest, PkexecIsAskedForAnAgentsDialogAndSudoIsNotTouched)
{
  GrantBy("sudo");
  Become(Way::Pkexec);
  RootExecutor executor(tool, false);
  ASSERT_TRUE(executor.Authorize());
  EXPECT_TRUE(ReadText(Launcher("pkexec") + ".arguments").startsWith("--disable-internal-agent"));
  EXPECT_EQ(0, Questions("sudo"));
  EXPECT_FALSE(QFile::exists(tool + ".pids")) << "asking starts nothing";
}

TEST_F(RootExecutorTest, WithoutAnAgentSudoIsAsked)
{
  WriteProgram(Launcher("pkexec"),
               "echo 'Error executing command as another user: No authentication agent found.' >&2\n"
               "exit 127\n");
  Become(Way::Sudo);
  RootExecutor executor(tool, false);
  EXPECT_TRUE(executor.Authorize());
  EXPECT_EQ(1, Questions("sudo"));
}

TEST_F(RootExecutorTest, WhatPkexecSaysMayBeLong)
{
  WriteProgram(
      Launcher("pkexec"),
      "i=0; while [ $i -lt 3000 ]; do echo 'A long complaint of no interest whatever' >&2; i=$((i+1)); done\n"
      "exit 127\n");
  Become(Way::Sudo);
  RootExecutor executor(tool, false);
  EXPECT_TRUE(executor.Authorize());
}

TEST_F(RootExecutorTest, APkexecThatClosesItsErrorsIsStillWaitedFor)
{
  WriteProgram(Launcher("pkexec"), "exec 2>&-\nshift\nexec \"$@\"\n");
  BecomeUser();
  RootExecutor executor(tool, true);
  EXPECT_TRUE(executor.Exec("x"));
  EXPECT_GT(executor.GetPid(), 0);
}

TEST_F(RootExecutorTest, ADismissedDialogIsNoErrorAndIsAskedAgain)
{
  WriteProgram(Launcher("pkexec"), "echo asked >>\"$0.asked\"; exit 126\n");
  GrantBy("sudo");
  BecomeUser();
  RootExecutor executor(tool, false);
  const LogCapture log;
  EXPECT_FALSE(executor.Exec("x"));
  EXPECT_FALSE(executor.Exec("x"));
  EXPECT_THAT(log.Infos(), ElementsAre("Authorization canceled", "Authorization canceled"));
  EXPECT_THAT(log.Errors(), IsEmpty());
  EXPECT_EQ(2, Questions("pkexec"));
  EXPECT_EQ(0, Questions("sudo"));
  EXPECT_EQ(-1, executor.GetPid());
  EXPECT_FALSE(executor.IsAuthorized());
  GrantBy("pkexec");
  EXPECT_TRUE(executor.Exec("x"));
  WaitForArguments();
}

TEST_F(RootExecutorTest, ASudoThatGotNoPasswordIsADismissedPromptUnlessItHadNoTerminal)
{
  BecomeUser();
  RootExecutor executor(tool, false);
  const auto ask = [&](const QByteArray& said)
  {
    const LogCapture log;
    WriteProgram(Launcher("sudo"), "[ \"$LC_ALL\" = C ] && printf '" + said + "' >&2\nexit 1\n");
    EXPECT_FALSE(executor.Authorize());
    return log.Infos().empty() ? log.Errors() : log.Infos();
  };
  EXPECT_THAT(ask("sudo: a password is required\n"), ElementsAre("Authorization canceled"));
  EXPECT_THAT(ask("sudo: no password was provided\nsudo: a password is required\n"),
              ElementsAre("Authorization canceled"));
  for (const char* complaint :
       {"sudo: a terminal is required to read the password\nsudo: a password is required\n",
        "sudo: no tty present and no askpass program specified\n",
        "sudo: sorry, you must have a tty to run sudo\n"})
    EXPECT_THAT(ask(complaint), ElementsAre("Can't copy rights: -60008")) << complaint;
  EXPECT_THAT(ask("Sorry, try again.\nsudo: 3 incorrect password attempts\n"),
              ElementsAre("Can't copy rights: -60005"));
}

TEST_F(RootExecutorTest, WhatSudoSaysIsShownToTheUser)
{
  BecomeUser();
  setenv("LC_ALL", "de_DE.UTF-8", 1);
  WriteProgram(Launcher("sudo"), "echo 'Sorry, try again.' >&2\necho 'Granted.' >&2\nexit 1\n");
  const int saved = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 10);
  const int file =
      open(QFile::encodeName(folder + "/shown").constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  dup2(file, STDERR_FILENO);
  RootExecutor(tool, false).Authorize();
  dup2(saved, STDERR_FILENO);
  EXPECT_THAT(ReadText(folder + "/shown").toStdString(), HasSubstr("Sorry, try again.\nGranted.\n"));
}

TEST_F(RootExecutorTest, ARefusalIsAnErrorAndStartsNothing)
{
  WriteProgram(Launcher("pkexec"),
               "echo 'Error executing command as another user: Not authorized' >&2; exit 127\n");
  GrantBy("sudo");
  BecomeUser();
  RootExecutor executor(tool, false);
  const LogCapture log;
  EXPECT_FALSE(executor.Exec("x"));
  EXPECT_THAT(log.Errors(), ElementsAre("Can't copy rights: -60005"));
  EXPECT_EQ(0, Questions("sudo")) << "a refused user is not asked again";
  ASSERT_TRUE(QFile::remove(Launcher("pkexec")));
  WriteProgram(Launcher("sudo"), "exit 1\n");
  EXPECT_FALSE(executor.Exec("x"));
  EXPECT_THAT(log.Errors(), ElementsAre("Can't copy rights: -60005", "Can't copy rights: -60005"));
  EXPECT_FALSE(QFile::exists(tool + ".pids"));
}

TEST_F(RootExecutorTest, WithoutALauncherTheLogSaysWhatToInstall)
{
  BecomeUser();
  RootExecutor executor(tool, false);
  const LogCapture log;
  EXPECT_FALSE(executor.Exec("x"));
  EXPECT_THAT(
      log.Errors(),
      ElementsAre(
          "Nothing can ask for an administrator's password: install pkexec with a polkit agent, or sudo",
          "Can't copy rights: -60008"));
}

TEST_F(RootExecutorTest, ALauncherThatCannotRunIsAnError)
{
  WriteText(Launcher("sudo"), "#!/nowhere\n");
  ASSERT_EQ(0, chmod(QFile::encodeName(Launcher("sudo")).constData(), 0755));
  BecomeUser();
  RootExecutor executor(tool, false);
  const LogCapture log;
  EXPECT_FALSE(executor.Exec("x"));
  EXPECT_THAT(log.Errors(), Contains("Can't copy rights: -60005"));
  EXPECT_THAT(log.Errors(), Contains(HasSubstr("No such file or directory")));
}

TEST_F(RootExecutorTest, ARootShellThatHasGoneIsAskedForAnew)
{
  WriteProgram(Launcher("sudo"), "echo asked >>\"$0.asked\"\necho $$ >\"$0.pid\"\nshift\nexec \"$@\"\n");
  BecomeUser();
  const auto isShellGone = [&]
  {
    const QByteArray pid = ReadText(Launcher("sudo") + ".pid").trimmed();
    return ReadText("/proc/" + pid + "/stat").contains(") Z ");
  };
  RootExecutor executor(tool, true);
  ASSERT_TRUE(executor.Exec("x"));
  kill(ReadText(Launcher("sudo") + ".pid").toInt(), SIGKILL);
  ASSERT_TRUE(WaitFor(isShellGone));
  EXPECT_TRUE(executor.Exec("x"));
  EXPECT_GT(executor.GetPid(), 0);
  EXPECT_EQ(2, Questions("sudo"));

  WriteProgram(Launcher("sudo"), "exit 1\n");
  kill(ReadText(Launcher("sudo") + ".pid").toInt(), SIGKILL);
  ASSERT_TRUE(WaitFor(isShellGone));
  EXPECT_FALSE(executor.Exec("x"));
  EXPECT_EQ(-1, executor.GetPid());
}

TEST_F(RootExecutorTest, AShellThatEndsInsteadOfAnsweringIsAFailedStart)
{
  WriteProgram(Launcher("sudo"), "printf y; read -r request\n");
  BecomeUser();
  RootExecutor executor(tool, false);
  ASSERT_TRUE(executor.Authorize());
  EXPECT_FALSE(executor.Exec("x"));
  EXPECT_FALSE(HasChildren());
}

TEST_F(RootExecutorTest, ALauncherThatLingersIsReapedLater)
{
  WriteProgram(Launcher("sudo"), "echo $$ >\"$0.pid\"; printf y; exec sleep 100\n");
  BecomeUser();
  {
    RootExecutor executor(tool, false);
    ASSERT_TRUE(executor.Authorize());
  }
  const int pid = ReadText(Launcher("sudo") + ".pid").toInt();
  ASSERT_GT(pid, 0);
  EXPECT_TRUE(HasChildren());
  kill(pid, SIGKILL);
  GrantBy("sudo");
  EXPECT_TRUE(WaitFor(
      [&]
      {
        {
          RootExecutor(tool, false).Authorize();
        }
        return !HasChildren();
      }));
}

TEST_P(EveryWay, WithoutDescriptorsNothingStartsAndNothingBreaks)
{
#ifdef TAVRIK_SANITIZED
  GTEST_SKIP() << "The sanitizer needs a descriptor of its own to look at an object's type";
#endif
  RootExecutor executor(tool, false);
  ASSERT_TRUE(executor.Authorize());
  int started = 2;
  rlimit before;
  getrlimit(RLIMIT_NOFILE, &before);
  {
    const LogCapture log;
    const rlim_t last = 12 + static_cast<rlim_t>(CountDescriptors());
    for (rlim_t limit = 3; limit < last; ++limit)
    {
      const rlimit few = {limit, before.rlim_max};
      setrlimit(RLIMIT_NOFILE, &few);
      started += executor.Exec("x") ? 1 : 0;
      RootExecutor(tool, false).Authorize();
    }
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_THAT(log.Errors(), Contains(HasSubstr(") as root: -60031")));
  }
  EXPECT_TRUE(executor.Exec("x"));
  RootExecutor another(tool, true);
  EXPECT_TRUE(another.Exec("x"));
  EXPECT_GT(another.GetPid(), 0);
  WaitForTools(started);
}

TEST_P(EveryWay, AScriptIsRunAsItWasGivenUnderTheToolsName)
{
  const QByteArray given = ReadText(tool);
  WriteProgram(tool, "touch \"$0.hacked\"\n");
  for (const QByteArray& script :
       {given, given.mid(given.indexOf('\n') + 1), QByteArray("#!  /bin/sh  -u \n") + given})
  {
    RootExecutor executor(tool, true);
    executor.SetScript(script);
    ASSERT_TRUE(executor.Exec("it's", "", "-c"));
    EXPECT_GT(executor.GetPid(), 0);
    EXPECT_THAT(ToStrings(WaitForArguments()), ElementsAre("it's", "", "-c"));
    ASSERT_TRUE(QFile::remove(tool + ".arguments"));
  }
  EXPECT_FALSE(QFile::exists(tool + ".hacked"));
  WaitForTools();
}

TEST_P(EveryWay, AScriptForAShellThatIsNotThereIsAFailedStart)
{
  RootExecutor executor(tool, false);
  executor.SetScript("#!/nowhere/sh\n");
  EXPECT_FALSE(executor.Exec("x"));
}

TEST_P(EveryWay, AToolHasAStandardErrorThoughTheHostHasNone)
{
  const int saved = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 10);
  close(STDERR_FILENO);
  RootExecutor executor(tool, true);
  const bool isStarted = executor.Exec("x");
  dup2(saved, STDERR_FILENO);
  EXPECT_TRUE(isStarted);
  EXPECT_THAT(Report("descriptors").toStdString(), HasSubstr(" 2 -> /dev/null"));
}

TEST_P(EveryWay, AFileThatTheHostMayOnlyReadIsNotWrittenToAsItsStandardError)
{
  const QByteArray precious = QFile::encodeName(folder + "/precious");
  WriteText(folder + "/precious", "precious");
  WriteProgram(tool, "echo 'root::0:0' >&2\nprintf abcd\n");
  const int saved = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 10);
  const int opened = open(precious.constData(), O_RDONLY | O_CLOEXEC);
  dup2(opened, STDERR_FILENO);
  RootExecutor executor(tool, true);
  const bool isStarted = executor.Exec("x");
  dup2(saved, STDERR_FILENO);
  EXPECT_TRUE(isStarted);
  EXPECT_EQ("precious", ReadText(folder + "/precious"));
}

TEST_F(RootExecutorTest, TheWholeRequestReachesTheRootShellThroughItsSocket)
{
  WriteProgram(Launcher("sudo"), "printf y\n"
                                 "ls -l \"/proc/$PPID/fd\" >\"$0.descriptors\"\n"
                                 "read -r size\n"
                                 "head -c \"$size\" >\"$0.read\"\n"
                                 "ls -l \"/proc/$PPID/fd\" >>\"$0.descriptors\"\n"
                                 "printf n\n");
  BecomeUser();
  RootExecutor executor(tool, false);
  executor.SetScript("#!/bin/sh\nthe script\n");
  EXPECT_FALSE(executor.Exec("the argument"));
  const std::string read = ReadText(Launcher("sudo") + ".read").toStdString();
  EXPECT_THAT(read, HasSubstr("the script"));
  EXPECT_THAT(read, HasSubstr("the argument"));
  EXPECT_THAT(ReadText(Launcher("sudo") + ".descriptors").toStdString(), Not(HasSubstr("memfd")));
}

TEST_F(RootExecutorTest, WhatALostRootShellMayStillOpenStaysWhatItWas)
{
  WriteProgram(
      Launcher("sudo"),
      "printf y\nread -r size\nread -r start input output rest\necho \"$input $output\" >\"$0.request\"\n");
  BecomeUser();
  RootExecutor executor(tool, false);
  EXPECT_FALSE(executor.Exec("x"));
  const QList<QByteArray> numbers = ReadText(Launcher("sudo") + ".request").trimmed().split(' ');
  ASSERT_EQ(2, numbers.size());
  for (const QByteArray& number : numbers)
  {
    char target[64] = {};
    ASSERT_GT(readlink(("/proc/self/fd/" + number).constData(), target, sizeof(target) - 1), 0)
        << number.constData();
    EXPECT_THAT(target, HasSubstr("pipe:"));
  }
}

TEST_F(RootExecutorTest, AQuestionThatIsDismissedAfterTheRootShellIsLostIsNoError)
{
  WriteProgram(Launcher("pkexec"), "echo $$ >\"$0.pid\"\nshift\nexec \"$@\"\n");
  BecomeUser();
  RootExecutor executor(tool, true);
  ASSERT_TRUE(executor.Exec("x"));
  const QByteArray shell = ReadText(Launcher("pkexec") + ".pid").trimmed();
  WriteProgram(Launcher("pkexec"), "exit 126\n");
  kill(shell.toInt(), SIGKILL);
  ASSERT_TRUE(WaitFor([&] { return !IsRunning(shell); }));
  const LogCapture log;
  EXPECT_FALSE(executor.Exec("x"));
  EXPECT_THAT(log.Infos(), ElementsAre("Authorization canceled"));
  EXPECT_THAT(log.Errors(), IsEmpty());
  EXPECT_FALSE(executor.IsAuthorized());
  GrantBy("pkexec");
  EXPECT_TRUE(executor.Exec("x"));
  EXPECT_TRUE(executor.IsAuthorized());
  WaitForTools(2);
}

TEST_F(RootExecutorTest, ADismissedDialogIsNoErrorForAHostThatIgnoresTheEndOfChildren)
{
  WriteProgram(Launcher("pkexec"),
               "echo 'Error executing command as another user: Request dismissed' >&2; exit 126\n");
  BecomeUser();
  signal(SIGCHLD, SIG_IGN);
  const LogCapture log;
  EXPECT_FALSE(RootExecutor(tool, false).Authorize());
  EXPECT_THAT(log.Infos(), ElementsAre("Authorization canceled"));
}

TEST_F(RootExecutorTest, AForkedProcessAsksItself)
{
  Become(Way::Sudo);
  RootExecutor executor(tool, true);
  ASSERT_TRUE(executor.Exec("x"));
  const pid_t child = fork();
  if (child == 0)
    _exit(executor.Exec("x") && Questions("sudo") == 2 ? EXIT_SUCCESS : EXIT_FAILURE);
  int status = -1;
  EXPECT_EQ(child, waitpid(child, &status, 0));
  EXPECT_EQ(0, status);
  EXPECT_TRUE(executor.Exec("x"));
  EXPECT_EQ(2, Questions("sudo")) << "the first process keeps its right";
  WaitForTools(3);
}

namespace
{

// In a namespace of process ids, makes the next process get that id.
bool TakeNextPid(pid_t pid)
{
  const QByteArray last = QByteArray::number(pid - 1);
  const int file = open("/proc/sys/kernel/ns_last_pid", O_WRONLY | O_CLOEXEC);
  const bool isTaken =
      file >= 0 && write(file, last.constData(), static_cast<std::size_t>(last.size())) == last.size();
  close(file);
  return isTaken;
}

bool HasSucceeded(pid_t child)
{
  int status = -1;
  return waitpid(child, &status, 0) == child && status == 0;
}

} // namespace

TEST_F(RootExecutorTest, NothingIsReadFromAProcessThatHasTakenOverTheHostsId)
{
  if (geteuid() != 0)
    GTEST_SKIP() << "Only root can have processes of another user among ids of its own";
  GrantBy("sudo");
  const QByteArray hacked = QFile::encodeName(folder) + "/hacked";
  WriteText(folder + "/hostile", ": >'" + hacked + "'\n");
  int go[2];
  ASSERT_EQ(0, pipe(go));
  // In a process of its own: one whose namespace has ended can start nothing more.
  const int refused = 77;
  const pid_t outside = fork();
  if (outside == 0 && unshare(CLONE_NEWPID | CLONE_NEWNS) != 0)
    _exit(refused);
  const pid_t init = outside == 0 ? fork() : -1;
  if (init == 0)
  {
    if (mount("", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("proc", "/proc", "proc", 0, nullptr) != 0)
      _exit(EXIT_FAILURE);
    const pid_t host = fork();
    if (host == 0)
    {
      BecomeUser();
      RootExecutor executor(tool, false);
      const bool isGranted = executor.Authorize();
      if (isGranted && fork() == 0)
      {
        // Goes on with what it has inherited once the host's id is another's.
        char byte = 0;
        _exit(read(go[0], &byte, 1) == 1 && executor.Exec("x") && Questions("sudo") == 2 &&
                      WaitFor([&] { return QFile::exists(tool + ".arguments"); })
                  ? EXIT_SUCCESS
                  : EXIT_FAILURE);
      }
      _exit(isGranted ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    if (!HasSucceeded(host) || !TakeNextPid(host))
      _exit(EXIT_FAILURE);
    int ready[2];
    if (pipe(ready) != 0)
      _exit(EXIT_FAILURE);
    const pid_t other = fork();
    if (other == 0)
    {
      BecomeUser();
      const int hostile = open((QFile::encodeName(folder) + "/hostile").constData(), O_RDONLY);
      for (int number = 3; number < 250; ++number)
        if (number != ready[1] && number != hostile)
          dup2(hostile, number);
      (void)!write(ready[1], "r", 1);
      for (;;)
        pause();
    }
    char byte = 0;
    if (other != host || read(ready[0], &byte, 1) != 1 || write(go[1], "g", 1) != 1)
      _exit(EXIT_FAILURE);
    // The host's child, which this process has inherited.
    int status = -1;
    pid_t ended = -1;
    do
      ended = wait(&status);
    while (ended > 0 && ended == other);
    // Root shells end, too, and with success.
    while (ended > 0 && status == 0 && !QFile::exists(tool + ".arguments") && !QFile::exists(hacked))
      ended = wait(&status);
    _exit(status == 0 ? EXIT_SUCCESS : EXIT_FAILURE);
  }
  if (outside == 0)
    _exit(HasSucceeded(init) ? EXIT_SUCCESS : EXIT_FAILURE);
  int ended = -1;
  ASSERT_EQ(outside, waitpid(outside, &ended, 0));
  if (WIFEXITED(ended) && WEXITSTATUS(ended) == refused)
    GTEST_SKIP() << "This machine allows no namespace of process ids";
  EXPECT_EQ(0, ended);
  EXPECT_FALSE(QFile::exists(hacked));
  EXPECT_TRUE(QFile::exists(tool + ".arguments"));
}

TEST_P(EveryWay, AToolThatWritesMuchIsNotHeldUpNorCutOffWhenTheHostEnds)
{
  WriteProgram(tool, "printf abcd\n"
                     "head -c 1000000 /dev/zero || exit\n"
                     ": >\"$0.first\"\n"
                     "until [ -e \"$0.go\" ]; do sleep 0.01; done\n"
                     "head -c 1000000 /dev/zero || exit\n"
                     "printf done || exit\n"
                     ": >\"$0.second\"\n");
  const pid_t host = fork();
  if (host == 0)
  {
    RootExecutor executor(tool, true);
    const bool isStarted = executor.Exec("x") && executor.GetPid() == 0x64636261;
    _exit(isStarted && WaitFor([&] { return QFile::exists(tool + ".first"); }) ? EXIT_SUCCESS : EXIT_FAILURE);
  }
  int status = -1;
  EXPECT_EQ(host, waitpid(host, &status, 0));
  EXPECT_EQ(0, status);
  WriteText(tool + ".go", "");
  EXPECT_TRUE(WaitFor([&] { return QFile::exists(tool + ".second"); }));
}

TEST_P(EveryWay, WithoutMemoryForAStreamNothingIsStarted)
{
  RootExecutor executor(tool, true);
  ASSERT_TRUE(executor.Authorize());
  areStreamsRefused = true;
  const LogCapture log;
  EXPECT_FALSE(executor.Exec("x"));
  areStreamsRefused = false;
  EXPECT_THAT(log.Errors(), ElementsAre("Can't run a process (" + tool.toStdString() + ") as root: -60031"));
  EXPECT_TRUE(executor.Exec("x"));
  WaitForTools(1);
  EXPECT_EQ(1, Report("pids").count('\n'));
}

TEST_P(EveryWay, AToolWhosePathHoldsAnEqualsSignIsStarted)
{
  const QString other = folder + QStringLiteral("/a=b");
  ASSERT_TRUE(QFile::copy(tool, other));
  RootExecutor executor(other, true);
  ASSERT_TRUE(executor.Exec("x"));
  EXPECT_EQ(ReadText(other + ".pids").trimmed().toInt(), executor.GetPid());
}

TEST_P(EveryWay, WhatAsksGetsOfTheEnvironmentOnlyWhatFindsTheUser)
{
  if (GetParam() == Way::Direct)
    GTEST_SKIP() << "Nobody is asked";
  const char* const name = GetParam() == Way::Pkexec ? "pkexec" : "sudo";
  WriteProgram(Launcher(name), "env >\"$0.environment\"\nshift\nexec \"$@\"\n");
  for (const char* variable : {"LD_PRELOAD", "LD_AUDIT", "ENV", "BASH_ENV", "IFS", "DISPLAYS", "HOSTS_OWN"})
    setenv(variable, "", 1);
  setenv("DISPLAY", ":7", 1);
  setenv("PATH", "/hostile", 1);
  EXPECT_TRUE(RootExecutor(tool, false).Authorize());
  const std::string environment = ReadText(Launcher(name) + ".environment").toStdString();
  EXPECT_THAT(environment, HasSubstr("DISPLAY=:7\n"));
  EXPECT_THAT(environment, HasSubstr("LC_ALL=C\n"));
  EXPECT_THAT(environment, HasSubstr("PATH=/usr/sbin:/usr/bin:/sbin:/bin\n"));
  for (const char* variable : {"LD_", "ENV=", "IFS=", "DISPLAYS", "HOSTS_OWN", "hostile"})
    EXPECT_THAT(environment, Not(HasSubstr(variable)));
}

TEST_P(EveryWay, ALimitThatTheHostHasSetItselfIsNotTheTools)
{
  WriteProgram(tool, "for l in f n t d v; do ulimit -S -$l; ulimit -H -$l; done >\"$0.limits\"; umask "
                     ">\"$0.umask\"; printf abcd\n");
  umask(0077);
  for (const auto resource : {RLIMIT_FSIZE, RLIMIT_NOFILE, RLIMIT_CPU, RLIMIT_DATA, RLIMIT_AS})
  {
#ifdef TAVRIK_SANITIZED
    if (resource == RLIMIT_AS || resource == RLIMIT_DATA) // the sanitizer needs more
      continue;
#endif
    rlimit limit;
    ASSERT_EQ(0, getrlimit(resource, &limit));
    limit.rlim_cur = resource == RLIMIT_NOFILE  ? 50
                     : resource == RLIMIT_CPU   ? 1000
                     : resource == RLIMIT_FSIZE ? 1 << 20
                                                : 1LL << 40;
    ASSERT_LT(limit.rlim_cur, limit.rlim_max);
    ASSERT_EQ(0, setrlimit(resource, &limit));
  }
  RootExecutor executor(tool, true);
  ASSERT_TRUE(executor.Exec("x"));
  const QList<QByteArray> limits = Report("limits").trimmed().split('\n');
  ASSERT_EQ(10, limits.size());
  for (int number = 0; number < limits.size(); number += 2)
    EXPECT_EQ(limits.at(number + 1), limits.at(number)) << number;
  EXPECT_EQ("0022\n", Report("umask"));
}
