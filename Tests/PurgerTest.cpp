#include "Support/Processes.h"
#include <Common/RAMCleaner.h>

#include "Linux/Parse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using testing::IsEmpty;
using testing::SizeIs;

namespace
{

const long long mebibyte = 1 << 20;

QString PurgerPath()
{
  return QStringLiteral(TAVRIK_PURGER);
}

struct Line
{
  QByteArray text;
  qint64 time; // ms after the start
};

struct Outcome
{
  std::vector<Line> lines;
  bool hasExited = false;
  int code = -1;
  QByteArray errors;
};

// Starts a program that becomes the purger, and notes when its lines come.
Outcome RunTool(const QString& program, const QStringList& arguments)
{
  Outcome outcome;
  QProcess process;
  QElapsedTimer timer;
  timer.start();
  process.start(program, arguments);
  do
  {
    process.waitForReadyRead(60000);
    while (process.canReadLine())
      outcome.lines.push_back({process.readLine(), timer.elapsed()});
  } while (process.state() != QProcess::NotRunning);
  while (process.canReadLine())
    outcome.lines.push_back({process.readLine(), timer.elapsed()});
  outcome.hasExited = process.exitStatus() == QProcess::NormalExit;
  outcome.code = process.exitCode();
  outcome.errors = process.readAllStandardError();
  return outcome;
}

Outcome Purge(long long limit)
{
  return RunTool(PurgerPath(), {QStringLiteral("--limit"), QString::number(limit)});
}

int Percentage(const QByteArray& line)
{
  const QByteArray prefix = "PROGRESS: ";
  const QByteArray suffix = "%\n";
  bool isNumber = false;
  const int number = line.mid(prefix.size(), line.size() - prefix.size() - suffix.size()).toInt(&isNumber);
  return isNumber && line == prefix + QByteArray::number(number) + suffix ? number : -1;
}

void ExpectGoodProgress(const Outcome& outcome)
{
  EXPECT_TRUE(outcome.hasExited);
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.errors, "");
  ASSERT_GE(outcome.lines.size(), 2u);
  int last = -1;
  for (const Line& line : outcome.lines)
  {
    EXPECT_GT(Percentage(line.text), last) << line.text.constData();
    last = Percentage(line.text);
  }
  EXPECT_EQ(Percentage(outcome.lines.front().text), 0);
  EXPECT_EQ(last, 100);
}

TEST(Purger, TellsItsProgressInRisingLinesWithHundredAsTheLast)
{
  ExpectGoodProgress(Purge(300 * mebibyte));
}

TEST(Purger, TakesTheLimitOfItsEnvironmentUnlessAnOptionIsGiven)
{
  const auto fill = [](const char* variable, const QStringList& arguments)
  {
    qputenv("TAVRIK_PURGER_LIMIT", variable);
    const Outcome outcome = RunTool(PurgerPath(), arguments);
    qunsetenv("TAVRIK_PURGER_LIMIT");
    return outcome;
  };
  const Outcome limited = fill("0", {});
  ExpectGoodProgress(limited);
  EXPECT_THAT(limited.lines, SizeIs(2));
  EXPECT_EQ(fill("64 MB", {}).code, 2);
  EXPECT_EQ(fill("", {}).code, 2);
  ExpectGoodProgress(fill("64 MB", {"--limit", "0"}));
}

TEST(Purger, WithoutRoomToFillIsDoneAtOnce)
{
  const Outcome outcome = Purge(0);
  ExpectGoodProgress(outcome);
  EXPECT_THAT(outcome.lines, SizeIs(2));
}

TEST(Purger, PacesItsLinesForAReaderOfOneLineEveryFiftyMilliseconds)
{
  const Outcome outcome = Purge(400 * mebibyte);
  ExpectGoodProgress(outcome);
  // A line may be noted late, but never early: so many lines take at least so long.
  const qint64 took = outcome.lines.back().time;
  EXPECT_GE(took, static_cast<qint64>(outcome.lines.size() - 1) * 70 - 70);
}

TEST(Purger, StaysForAWhileAfterHundredSoThatItIsRead)
{
  QElapsedTimer timer;
  timer.start();
  const Outcome outcome = Purge(0);
  EXPECT_GE(timer.elapsed() - outcome.lines.back().time, 200);
}

TEST(Purger, TakesAsMuchAsItsLimitAndNotMore)
{
  const long long limit = 96 * mebibyte;
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0)
  {
    if (!freopen("/dev/null", "w", stdout))
      _exit(127);
    execl(TAVRIK_PURGER, "purger", "--limit", std::to_string(limit).c_str(), nullptr);
    _exit(127);
  }
  int status = -1;
  rusage usage = {};
  ASSERT_EQ(wait4(child, &status, 0, &usage), child);
  EXPECT_EQ(status, 0);
  EXPECT_GE(usage.ru_maxrss * 1024LL, limit - 8 * mebibyte);
#ifndef TAVRIK_SANITIZED // a sanitizer keeps as much again for itself
  EXPECT_LE(usage.ru_maxrss * 1024LL, limit + 32 * mebibyte);
#endif
}

TEST(Purger, RefusesOtherArguments)
{
  const QString limit = QStringLiteral("--limit");
  const std::vector<QStringList> rows = {{limit},
                                         {limit, QString()},
                                         {limit, QStringLiteral("-1")},
                                         {limit, QStringLiteral("+1")},
                                         {limit, QStringLiteral(" 1")},
                                         {limit, QStringLiteral("1M")},
                                         {limit, QStringLiteral("99999999999999999999")},
                                         {limit, QStringLiteral("1"), QStringLiteral("2")},
                                         {QStringLiteral("--help")},
                                         {QStringLiteral("1")}};
  for (const QStringList& row : rows)
  {
    const Outcome outcome = RunTool(PurgerPath(), row);
    EXPECT_EQ(outcome.code, 2) << qPrintable(row.join(' '));
    EXPECT_THAT(outcome.lines, IsEmpty());
    EXPECT_TRUE(outcome.errors.startsWith("usage: "));
  }
}

TEST(Purger, EndsAtOnceWhenItIsKilled)
{
  for (const int signal : {SIGTERM, SIGINT, SIGKILL})
  {
    QProcess process;
    process.start(PurgerPath(), {QStringLiteral("--limit"), QString::number(400 * mebibyte)});
    ASSERT_TRUE(process.waitForReadyRead());
    QElapsedTimer timer;
    timer.start();
    kill(static_cast<pid_t>(process.processId()), signal);
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_LT(timer.elapsed(), 5000);
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_FALSE(process.readAll().contains("100%"));
  }
}

TEST(Purger, EndsWhenNobodyListens)
{
  int ends[2] = {-1, -1};
  ASSERT_EQ(pipe(ends), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0)
  {
    dup2(ends[1], STDOUT_FILENO);
    close(ends[0]);
    close(ends[1]);
    signal(SIGPIPE, SIG_DFL); // Qt ignores it in this process
    execl(TAVRIK_PURGER, "purger", "--limit", "400000000", nullptr);
    _exit(127);
  }
  close(ends[1]);
  char first = 0;
  EXPECT_EQ(read(ends[0], &first, 1), 1);
  close(ends[0]);
  const int status = WaitForEnd(child);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGPIPE) << status;
}

#ifdef __linux__
TEST(Purger, FailsWhenItsOutputIsFull)
{
  QProcess process;
  process.setStandardOutputFile(QStringLiteral("/dev/full"));
  process.start(PurgerPath(), {QStringLiteral("--limit"), QStringLiteral("0")});
  ASSERT_TRUE(process.waitForFinished());
  EXPECT_EQ(process.exitCode(), EXIT_FAILURE);
  EXPECT_EQ(process.readAllStandardError(),
            "purger: cannot write to the standard output: No space left on device\n");
}
#endif

TEST(Purger, IsDoneWhereAProcessMayNotHaveTheMemory)
{
#ifdef TAVRIK_SANITIZED
  GTEST_SKIP() << "A sanitizer needs the address space for itself";
#endif
  ExpectGoodProgress(
      RunTool(QStringLiteral("/bin/sh"),
              {QStringLiteral("-c"), QStringLiteral("ulimit -v 65536; exec \"$0\" --limit 1000000000"),
               PurgerPath()}));
}

TEST(Purger, AsRootHasTheKernelDropItsCaches)
{
  if (access("/proc/sys/vm/drop_caches", W_OK) != 0)
    GTEST_SKIP() << "The kernel's switch is not ours to use here";
  QElapsedTimer timer;
  timer.start();
  ExpectGoodProgress(RunTool(PurgerPath(), {}));
  EXPECT_LT(timer.elapsed(), 30000);
}

// A control group with little memory, taken down with the test.
class SmallGroup
{
public:
  explicit SmallGroup(long long limit)
  {
    const QString name = QStringLiteral("/tavrik-test-%1").arg(getpid());
    for (const bool unified : {false, true})
    {
      const auto text = [](const char* path)
      {
        QFile file(QString::fromLatin1(path));
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
      };
      const auto mount = Purger::ParseMount(text("/proc/self/mountinfo"), unified);
      const auto group = Purger::ParseGroup(text("/proc/self/cgroup"), unified);
      if (!mount || !group)
        continue;
      isUnified = unified;
      folder = QString::fromStdString(Purger::GroupFolder(*mount, *group)) + name;
      if (!QDir().mkdir(folder))
        continue;
      if (Write(unified ? "memory.max" : "memory.limit_in_bytes", limit))
      {
        isReady = true;
        return;
      }
      QDir().rmdir(folder);
    }
  }

  ~SmallGroup()
  {
    EXPECT_TRUE(!isReady || QTest::qWaitFor([this] { return QDir().rmdir(folder); }, 10000));
  }

  SmallGroup(const SmallGroup&) = delete;
  SmallGroup& operator=(const SmallGroup&) = delete;

  bool Write(const char* name, long long number)
  {
    QFile file(folder + '/' + name);
    const QByteArray text = QByteArray::number(number);
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write(text) == text.size();
  }

  std::string Read(const char* name) const
  {
    QFile file(folder + '/' + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
  }

  long long Killed() const
  {
    return Purger::ParseField(Read(isUnified ? "memory.events" : "memory.oom_control"), "oom_kill")
        .value_or(-1);
  }

  long long CachedBytes() const
  {
    const std::string statistics = Read("memory.stat");
    return Purger::ParseField(statistics, "inactive_file").value_or(-1) +
           Purger::ParseField(statistics, "active_file").value_or(-1);
  }

  QString folder;
  bool isUnified = false;
  bool isReady = false;
};

TEST(Purger, InASmallControlGroupIsNotKilledAndTakesItsCaches)
{
  SmallGroup group(256 * mebibyte);
  if (!group.isReady)
    GTEST_SKIP() << "This user may not make a control group with a memory limit";
  QTemporaryDir files;
  const Outcome outcome = RunTool(
      QStringLiteral("/bin/sh"),
      {QStringLiteral("-c"),
       QStringLiteral(
           "echo $$ > \"$1/cgroup.procs\" && dd if=/dev/zero of=\"$2/file\" bs=1M count=160 conv=fsync "
           "2>/dev/null && cat \"$1/memory.stat\" > \"$2/before\" && exec \"$0\" --limit 20000000000"),
       PurgerPath(), group.folder, files.path()});
  ExpectGoodProgress(outcome);
  EXPECT_EQ(group.Killed(), 0);
  QFile before(files.filePath(QStringLiteral("before")));
  ASSERT_TRUE(before.open(QIODevice::ReadOnly));
  const std::string statistics = before.readAll().toStdString();
  const long long cachedBefore = Purger::ParseField(statistics, "inactive_file").value_or(0) +
                                 Purger::ParseField(statistics, "active_file").value_or(0);
  if (cachedBefore < 100 * mebibyte)
    GTEST_SKIP() << "Files in " << qPrintable(files.path()) << " are not cached here";
  EXPECT_LT(group.CachedBytes(), cachedBefore - 50 * mebibyte) << "of " << cachedBefore;
}

// The whole way: a cleaner, started in a copy of this program that has a helper beside it.
TEST(HostOfAPurger, IsIdleUntilAskedToClean)
{
  Tavrik::Cleaner::RAMCleaner cleaner(nullptr);
  EXPECT_FALSE(cleaner.IsCleaning());
  if (qEnvironmentVariableIsEmpty("TAVRIK_TEST_CLEAN"))
    return;
  QObject::connect(&cleaner, &Tavrik::Cleaner::RAMCleaner::ProgressChanged,
                   [](float progress) { std::printf("\nTOLD %d\n", qRound(progress * 100)); });
  QObject::connect(&cleaner, &Tavrik::Cleaner::RAMCleaner::CleaningFinished,
                   [](qint64 bytes) { std::printf("\nTOLD %s\n", bytes >= 0 ? "finished" : "nonsense"); });
  ASSERT_TRUE(cleaner.Clean());
  ASSERT_TRUE(QTest::qWaitFor([&] { return !cleaner.IsCleaning(); }, 60000));
}

TEST(Purger, IsDrivenByACleanerThatFindsItBesideItsProgram)
{
  QTemporaryDir folder;
  const QString program = folder.filePath(QStringLiteral("host"));
  ASSERT_TRUE(QFile::copy(QCoreApplication::applicationFilePath(), program));
  QFile helper(folder.filePath(QStringLiteral("Tavrik Ostrel Purger")));
  ASSERT_TRUE(helper.open(QIODevice::WriteOnly));
  helper.write("#!/bin/sh\nexec '" + PurgerPath().toUtf8() + "' --limit 500000000\n");
  helper.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  helper.close();

  qputenv("TAVRIK_TEST_CLEAN", "1");
  const Outcome outcome =
      RunTool(program, {QStringLiteral("--gtest_filter=HostOfAPurger.IsIdleUntilAskedToClean")});
  qunsetenv("TAVRIK_TEST_CLEAN");
  EXPECT_EQ(outcome.code, 0);
  std::vector<QByteArray> told;
  for (const Line& line : outcome.lines)
    if (line.text.startsWith("TOLD "))
      told.push_back(line.text.mid(5).trimmed());
  ASSERT_GE(told.size(), 3u);
  EXPECT_EQ(told.back(), "finished");
  EXPECT_EQ(told[told.size() - 2], "100"); // none is lost: the purger waits until its last line is read
  for (size_t index = 1; index + 1 < told.size(); ++index)
    EXPECT_GT(told[index].toInt(), told[index - 1].toInt());
}

TEST(SystemTexts, NumbersAreDigitsAloneAndSaturate)
{
  EXPECT_EQ(Purger::ParseNumber("42\n"), 42);
  EXPECT_EQ(Purger::ParseNumber("9223372036854771712\n"), 9223372036854771712);
  EXPECT_EQ(Purger::ParseNumber("99999999999999999999999999"), std::numeric_limits<long long>::max());
  for (const char* const text : {"", "\n", "max\n", "-1", "1 2", "0x10", "1.5", "12k"})
    EXPECT_EQ(Purger::ParseNumber(text), std::nullopt) << text;
}

TEST(SystemTexts, FieldIsFoundByItsWholeName)
{
  const std::string text =
      "MemFree: 1 kB\nMemAvailable:   2 kB\ninactive_file 3\ntotal_inactive_file 4\nlast\n";
  EXPECT_EQ(Purger::ParseField(text, "MemAvailable:"), 2);
  EXPECT_EQ(Purger::ParseField(text, "inactive_file"), 3);
  EXPECT_EQ(Purger::ParseField(text, "total_inactive_file"), 4);
  EXPECT_EQ(Purger::ParseField(text, "last"), std::nullopt);
  EXPECT_EQ(Purger::ParseField(text, "file"), std::nullopt);
  EXPECT_EQ(Purger::ParseField("", "file"), std::nullopt);
}

TEST(SystemTexts, GroupsOfBothGenerationsAreFound)
{
  const std::string mounts =
      "22 1 0:20 / /proc rw - proc proc rw\n"
      "30 25 0:26 / /sys/fs/cgroup/unified rw shared:5 - cgroup2 cgroup2 rw\n"
      "31 25 0:27 / /sys/fs/cgroup/cpu rw - cgroup cgroup rw,cpu\n"
      "32 25 0:28 /docker/ab /sys/fs/cgroup/memory rw master:9 - cgroup cgroup rw,memory\n"
      "broken\n";
  const std::string groups = "9:cpu,cpuacct:/c\n4:memory:/docker/ab/x\n0::/u/v\nbroken\n";
  ASSERT_TRUE(Purger::ParseMount(mounts, true) && Purger::ParseMount(mounts, false));
  EXPECT_EQ(Purger::GroupFolder(*Purger::ParseMount(mounts, true), *Purger::ParseGroup(groups, true)),
            "/sys/fs/cgroup/unified/u/v");
  EXPECT_EQ(Purger::GroupFolder(*Purger::ParseMount(mounts, false), *Purger::ParseGroup(groups, false)),
            "/sys/fs/cgroup/memory/x");
  EXPECT_EQ(Purger::GroupFolder({"/m", "/docker/ab", false}, "/elsewhere"), "/m");
  EXPECT_EQ(Purger::GroupFolder({"/m", "/", true}, "/../outside"), "/m");
  EXPECT_FALSE(Purger::ParseMount("broken - cgroup2\n\n", true));
  EXPECT_FALSE(Purger::ParseGroup("::\nbroken", false));
}

} // namespace
