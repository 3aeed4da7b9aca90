#include <Common/RAMCleaner.cpp>

#include <Common/Platform/MemoryStatistics.h>

#include "Support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QMetaMethod>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <csignal>
#include <functional>
#include <limits>
#include <string>
#include <vector>

using namespace Tavrik::Cleaner;
using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::SizeIs;

namespace
{

// What the machine's memory looks like, and where the purger is.
struct Machine
{
  bool tellsTotal = true;
  bool tellsFree = true;
  qint64 total = 16LL << 30;
  quint32 freePages = 1000;
  int totalReads = 0;
  QString purger;
};

Machine machine;

} // namespace

namespace Tavrik::Platform
{

bool GetPhysicalMemorySize(qint64* size)
{
  ++machine.totalReads;
  if (machine.tellsTotal)
    *size = machine.total;
  return machine.tellsTotal;
}

bool GetMemoryStatistics(vm_statistics64* statistics)
{
  if (machine.tellsFree)
    statistics->free_count = machine.freePages;
  return machine.tellsFree;
}

Path FindHelper(const Path& fileName)
{
  EXPECT_EQ(fileName.Text(), "Tavrik Ostrel Purger");
  return Path(machine.purger);
}

} // namespace Tavrik::Platform

namespace
{

bool WaitFor(const std::function<bool()>& fact)
{
  return QTest::qWaitFor(fact, 30000);
}

bool IsProcess(qint64 pid)
{
  return kill(static_cast<pid_t>(pid), 0) == 0;
}

class RAMCleanerTest : public testing::Test
{
protected:
  RAMCleanerTest() { Observe(); }

  // A purger in sh. "await X" waits for Let("X"); each start leaves its number of arguments and its process
  // id in a file.
  void Purger(const QString& body)
  {
    machine.purger = folder.filePath(QStringLiteral("Tavrik Ostrel Purg\u00e9r"));
    QFile file(machine.purger);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\n"
               "await() { until [ -e \"$0.$1\" ]; do sleep 0.01; done; }\n"
               "echo \"$# $$\" >> \"$0.starts\"\n");
    file.write(body.toUtf8() + '\n');
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  }

  void Let(const char* what) { QFile(machine.purger + '.' + what).open(QIODevice::WriteOnly); }

  QList<QByteArray> Starts() const
  {
    QFile file(machine.purger + ".starts");
    QList<QByteArray> lines;
    if (file.open(QIODevice::ReadOnly))
      lines = file.readAll().split('\n');
    if (!lines.isEmpty())
      lines.removeLast(); // what follows the last line's end
    return lines;
  }

  qint64 PidOfStart(int number)
  {
    EXPECT_TRUE(WaitFor([&] { return Starts().size() > number; }));
    return Starts().value(number).split(' ').value(1).toLongLong();
  }

  void Observe()
  {
    QObject::connect(cleaner.get(), &RAMCleaner::CleaningStarted, cleaner.get(), [this] { Tell("started"); });
    QObject::connect(cleaner.get(), &RAMCleaner::ProgressChanged, cleaner.get(),
                     [this](float progress) { Tell("progress " + QString::number(progress).toStdString()); });
    QObject::connect(cleaner.get(), &RAMCleaner::CleaningFinished, cleaner.get(),
                     [this](qint64 bytes) { Tell("finished " + std::to_string(bytes)); });
  }

  void Tell(const std::string& event)
  {
    events.push_back(event);
    if (onEvent)
      onEvent(event);
  }

  bool WaitForEvents(size_t count)
  {
    return WaitFor([&] { return events.size() >= count; });
  }

  bool WaitForEnd()
  {
    return WaitFor([&] { return !cleaner || !cleaner->IsCleaning(); });
  }

  // Long enough for anything that is still to come.
  void LetTicksPass(int ticks = 3) { QTest::qWait(ticks * 50 + 20); }

  QTemporaryDir folder;
  std::unique_ptr<RAMCleaner> cleaner = std::make_unique<RAMCleaner>(nullptr);
  std::vector<std::string> events;
  std::function<void(const std::string&)> onEvent;
};

TEST_F(RAMCleanerTest, MetaObjectListsSignalsFirstAndThenInvokables)
{
  struct Row
  {
    QMetaMethod::MethodType type;
    QByteArray signature;
    QByteArray result;
    QList<QByteArray> parameterNames;
  };
  // A qint64 is called qlonglong by Qt's meta types.
  const std::vector<Row> rows = {
      {QMetaMethod::Signal, "CleaningStarted()", "void", {}},
      {QMetaMethod::Signal, "CleaningFinished(qlonglong)", "void", {"cleanedBytes"}},
      {QMetaMethod::Signal, "ProgressChanged(float)", "void", {"progress"}},
      {QMetaMethod::Method, "GetTotalRAMSize()", "qlonglong", {}},
      {QMetaMethod::Method, "GetFreeRAMSize()", "qlonglong", {}},
      {QMetaMethod::Method, "GetLastCleanedRAMSize()", "qlonglong", {}},
      {QMetaMethod::Method, "Clean()", "bool", {}},
      {QMetaMethod::Method, "Stop()", "void", {}},
      {QMetaMethod::Method, "IsCleaning()", "bool", {}},
      {QMetaMethod::Method, "GetProgress()", "float", {}},
  };
  const QMetaObject& meta = RAMCleaner::staticMetaObject;
  EXPECT_STREQ(meta.className(), "Tavrik::Cleaner::RAMCleaner");
  ASSERT_EQ(meta.methodCount() - meta.methodOffset(), static_cast<int>(rows.size()));
  for (int index = 0; index < static_cast<int>(rows.size()); ++index)
  {
    const Row& row = rows[static_cast<size_t>(index)];
    const QMetaMethod method = meta.method(meta.methodOffset() + index);
    EXPECT_EQ(method.methodType(), row.type) << index;
    EXPECT_EQ(method.methodSignature(), row.signature) << index;
    EXPECT_STREQ(method.typeName(), row.result.constData()) << index;
    EXPECT_EQ(method.parameterNames(), row.parameterNames) << index;
    EXPECT_EQ(method.access(), QMetaMethod::Public) << index;
  }
}

TEST_F(RAMCleanerTest, ModuleConstantsAreTheirTexts)
{
  EXPECT_EQ(purgerName.ToUtf8(), "Tavrik Ostrel Purger");
  EXPECT_EQ(vmStatCommand, "vm_stat");
}

TEST_F(RAMCleanerTest, IsIdleAtFirst)
{
  EXPECT_FALSE(cleaner->IsCleaning());
  EXPECT_EQ(cleaner->GetProgress(), 0.0f);
  EXPECT_EQ(cleaner->GetLastCleanedRAMSize(), 0);
  EXPECT_EQ(cleaner->GetTotalRAMSize(), machine.total);
}

TEST_F(RAMCleanerTest, CleanTwiceInARowStartsOnlyOnePurger)
{
  Purger("exec sleep 60");
  EXPECT_TRUE(cleaner->Clean());
  EXPECT_TRUE(cleaner->IsCleaning());
  const LogCapture log;
  EXPECT_FALSE(cleaner->Clean());
  LetTicksPass();
  EXPECT_THAT(log.Lines(), IsEmpty());
  EXPECT_THAT(Starts(), SizeIs(1));
  EXPECT_THAT(events, ElementsAre("started"));
}

TEST_F(RAMCleanerTest, PurgerIsStartedWithoutArgumentsAsAnOrdinaryChild)
{
  Purger("ps -o ppid= -o uid= -p $$ > \"$0.parent\"; exec sleep 60");
  ASSERT_TRUE(cleaner->Clean());
  QFile parent(machine.purger + ".parent");
  ASSERT_TRUE(WaitFor([&] { return parent.size() > 0; }));
  EXPECT_EQ(Starts().value(0).split(' ').value(0), "0");
  ASSERT_TRUE(parent.open(QIODevice::ReadOnly));
  const QList<QByteArray> words = parent.readAll().simplified().split(' ');
  EXPECT_EQ(words.value(0), QByteArray::number(getpid()));
  EXPECT_EQ(words.value(1), QByteArray::number(getuid()));
}

TEST_F(RAMCleanerTest, PurgerThatPrintsOnlyHundredTellsOneProgressAndFinishes)
{
  Purger("echo 'PROGRESS: 100%'; exec sleep 60");
  ASSERT_TRUE(cleaner->Clean());
  ASSERT_TRUE(WaitForEnd());
  LetTicksPass();
  EXPECT_THAT(events, ElementsAre("started", "progress 1", "finished 0"));
}

TEST_F(RAMCleanerTest, RepeatedProgressIsToldOnce)
{
  Purger("for n in 0 42 42 42 43 43; do echo \"PROGRESS: $n%\"; done; echo 'PROGRESS: 100%'; exec sleep 60");
  ASSERT_TRUE(cleaner->Clean());
  ASSERT_TRUE(WaitForEnd());
  EXPECT_THAT(events, ElementsAre("started", "progress 0.42", "progress 0.43", "progress 1", "finished 0"));
}

TEST_F(RAMCleanerTest, PurgerThatExitsAfterThirtyFinishesWithoutTellingHundred)
{
  Purger("echo 'PROGRESS: 30%'; await end");
  ASSERT_TRUE(cleaner->Clean());
  ASSERT_TRUE(WaitForEvents(2));
  EXPECT_EQ(cleaner->GetProgress(), 0.3f);
  Let("end");
  ASSERT_TRUE(WaitForEnd());
  LetTicksPass();
  EXPECT_THAT(events, ElementsAre("started", "progress 0.3", "finished 0"));
  EXPECT_EQ(cleaner->GetProgress(), 1.0f);
}

TEST_F(RAMCleanerTest, PurgerThatCrashesFinishesTheRunWithoutALogLine)
{
  Purger("kill -SEGV $$");
  const LogCapture log;
  ASSERT_TRUE(cleaner->Clean());
  machine.freePages = 1002;
  ASSERT_TRUE(WaitForEnd());
  EXPECT_THAT(events, ElementsAre("started", "finished 8192"));
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(RAMCleanerTest, LinesOfAPurgerThatHasExitedAreDropped)
{
  Purger("n=1; while [ $n -le 100 ]; do echo \"PROGRESS: $n%\"; n=$((n + 1)); done");
  ASSERT_TRUE(cleaner->Clean());
  ASSERT_TRUE(WaitForEnd());
  EXPECT_EQ(events.back(), "finished 0");
  EXPECT_LT(events.size(), 50u);
  EXPECT_EQ(std::count(events.begin(), events.end(), "progress 1"), 0);
}

TEST_F(RAMCleanerTest, OutputOfTheLastRunIsNotReadInTheNext)
{
  Purger("echo 'PROGRESS: 10%'; echo 'PROGRESS: 20%'; echo 'PROGRESS: 30%'; echo 'PROGRESS: 40%'");
  ASSERT_TRUE(cleaner->Clean());
  ASSERT_TRUE(WaitForEnd());
  events.clear();
  Purger("echo 'PROGRESS: 77%'; exec sleep 60");
  ASSERT_TRUE(cleaner->Clean());
  ASSERT_TRUE(WaitForEvents(2));
  EXPECT_THAT(events, ElementsAre("started", "progress 0.77"));
}

TEST_F(RAMCleanerTest, OneLineIsTakenPerTickOfACoarseTimerOfFiftyMilliseconds)
{
  Purger("printf 'PROGRESS: %s%%\\n' 1 2 3 4 5 6; exec sleep 60");
  ASSERT_TRUE(cleaner->Clean());
  const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(cleaner.get());
  ASSERT_EQ(timers.size(), 1);
  EXPECT_EQ(timers.first().interval, 50);
  EXPECT_EQ(timers.first().timerType, Qt::CoarseTimer);
  ASSERT_TRUE(WaitForEvents(2));
  QElapsedTimer timer;
  timer.start();
  ASSERT_TRUE(WaitForEvents(7));
  EXPECT_GE(timer.elapsed(), 200); // five ticks, each up to 5 % early, the first perhaps late
}

TEST_F(RAMCleanerTest, AfterTheEndNoTimerIsLeft)
{
  Purger("echo 'PROGRESS: 100%'; exec sleep 60");
  ASSERT_TRUE(cleaner->Clean());
  ASSERT_TRUE(WaitForEnd());
  EXPECT_THAT(QAbstractEventDispatcher::instance()->registeredTimers(cleaner.get()), IsEmpty());
}

TEST_F(RAMCleanerTest, TimersOfOthersAreIgnored)
{
  Purger("echo 'PROGRESS: 42%'; exec sleep 60");
  ASSERT_TRUE(cleaner->Clean());
  PidOfStart(0);
  const int other = cleaner->startTimer(100000);
  QTimerEvent event(other);
  for (int n = 0; n < 100; ++n)
    QCoreApplication::sendEvent(cleaner.get(), &event);
  EXPECT_THAT(events, ElementsAre("started"));
  ASSERT_TRUE(WaitForEvents(2));
}

TEST_F(RAMCleanerTest, AnIncompleteLineIsWaitedFor)
{
  Purger("printf 'PROGRESS: 4'; await rest; echo '2%'; exec sleep 60");
  ASSERT_TRUE(cleaner->Clean());
  LetTicksPass();
  EXPECT_THAT(events, ElementsAre("started"));
  Let("rest");
  ASSERT_TRUE(WaitForEvents(2));
  EXPECT_THAT(events, ElementsAre("started", "progress 0.42"));
}

TEST_F(RAMCleanerTest, OnlyExactLinesCountAndANumberThatIsNoneIsZero)
{
  struct Row
  {
    QByteArray line;
    int percentage; // -1000: the line does not count
  };
  const std::vector<Row> rows = {
      {"PROGRESS: 42%\n", 42},
      {"PROGRESS: 0%\n", 0},
      {"PROGRESS: 100%\n", 100},
      {"PROGRESS: 150%\n", 150},
      {"PROGRESS: -5%\n", -5},
      {"PROGRESS: +5%\n", 5},
      {"PROGRESS: 007%\n", 7},
      {"PROGRESS: 50 %\n", 0},
      {"PROGRESS:  50%\n", 0},
      {"PROGRESS: \t50%\n", 0},
      {"PROGRESS: 5 0%\n", 0},
      {"PROGRESS: 50%%\n", 0},
      {"PROGRESS: 5.5%\n", 0},
      {"PROGRESS: 0x10%\n", 0},
      {"PROGRESS: 1e2%\n", 0},
      {"PROGRESS: 1,000%\n", 0},
      {"PROGRESS: %\n", 0},
      {"PROGRESS: half%\n", 0},
      {"PROGRESS: 2147483647%\n", 2147483647},
      {"PROGRESS: 2147483648%\n", 0},
      {"PROGRESS: 99999999999999999999999%\n", 0},
      {"Progress: 50%\n", -1000},
      {"PROGRESS:50%\n", -1000},
      {" PROGRESS: 50%\n", -1000},
      {"PROGRESS: 50\n", -1000},
      {"PROGRESS: 50% \n", -1000},
      {"PROGRESS: 50%\r\n", -1000},
      {"PROGRESS: 50%", -1000},
      {"PROGRESS: ", -1000},
      {"%\n", -1000},
      {"\n", -1000},
      {"", -1000},
      {QByteArray("PROGRESS: 50\0%\n", 15), -1000},
      {QByteArray("PROGRESS: 50%\n\0junk\n", 20), 50},
      {QByteArray("\0PROGRESS: 50%\n", 15), -1000},
      {QByteArray("PROGRESS: \xff\xfe%\n"), 0},
      {"PROGRESS: " + QByteArray(100000, '1') + "%\n", 0},
  };
  for (const Row& row : rows)
  {
    int percentage = -1000;
    EXPECT_EQ(ParseProgress(row.line, &percentage), row.percentage != -1000) << row.line.left(40).constData();
    EXPECT_EQ(percentage, row.percentage) << row.line.left(40).constData();
  }
}

TEST_F(RAMCleanerTest, SkippedLinesTakeATickAndNumbersThatAreNoneTellZero)
{
  Purger("printf 'Progress: 50%%\\nPROGRESS: 42%%\\nhello\\nPROGRESS: 50 %%\\nPROGRESS: 150%%\\nPROGRESS: "
         "100%%\\n'\n"
         "exec sleep 60");
  ASSERT_TRUE(cleaner->Clean());
  ASSERT_TRUE(WaitForEnd());
  EXPECT_THAT(events, ElementsAre("started", "progress 0.42", "progress 0", "progress 1.5", "progress 1",
                                  "finished 0"));
}

TEST_F(RAMCleanerTest, StopWhileIdleTellsTheEndWithAllFreeMemory)
{
  cleaner->Stop();
  EXPECT_THAT(events, ElementsAre("finished 4096000"));
  EXPECT_EQ(cleaner->GetLastCleanedRAMSize(), 4096000);
  EXPECT_EQ(cleaner->GetProgress(), 1.0f);
  cleaner->Stop();
  EXPECT_THAT(events, ElementsAre("finished 4096000", "finished 4096000"));
}

TEST_F(RAMCleanerTest, StopKillsThePurgerAndFinishesAtOnce)
{
  Purger("trap '' TERM INT HUP; while :; do sleep 0.05; done");
  ASSERT_TRUE(cleaner->Clean());
  const qint64 pid = PidOfStart(0);
  machine.freePages = 1001;
  cleaner->Stop();
  EXPECT_THAT(events, ElementsAre("started", "finished 4096"));
  EXPECT_FALSE(cleaner->IsCleaning());
  EXPECT_TRUE(WaitFor([&] { return !IsProcess(pid); }));
  EXPECT_THAT(events, SizeIs(2));
}

TEST_F(RAMCleanerTest, FreedBytesAreThePagesGainedTimes4096AndNeverNegative)
{
  struct Row
  {
    quint32 before;
    quint32 after;
    qint64 bytes;
  };
  const quint32 most = std::numeric_limits<quint32>::max();
  const std::vector<Row> rows = {{1000, 999, 0}, {1000, 1000, 0},           {1000, 1001, 4096},
                                 {most, 0, 0},   {0, most, 17592186040320}, {1, 0x80000001u, 8796093022208}};
  Purger("exec sleep 60");
  for (const Row& row : rows)
  {
    machine.freePages = row.before;
    ASSERT_TRUE(cleaner->Clean());
    machine.freePages = row.after;
    cleaner->Stop();
    EXPECT_EQ(events.back(), "finished " + std::to_string(row.bytes));
    EXPECT_EQ(cleaner->GetLastCleanedRAMSize(), row.bytes);
    machine.freePages = 5;
    EXPECT_EQ(cleaner->GetLastCleanedRAMSize(), row.bytes); // asks nobody
  }
}

TEST_F(RAMCleanerTest, FreeSizeIsReadAnewInUnitsOf4096Bytes)
{
  EXPECT_EQ(cleaner->GetFreeRAMSize(), 4096000);
  machine.freePages = std::numeric_limits<quint32>::max();
  EXPECT_EQ(cleaner->GetFreeRAMSize(), 17592186040320);
}

TEST_F(RAMCleanerTest, UnreadableStatisticsAreLoggedAndTheLastOnesUsed)
{
  Purger("exec sleep 60");
  const LogCapture log;
  machine.tellsFree = false;
  machine.freePages = 5000;
  EXPECT_EQ(cleaner->GetFreeRAMSize(), 4096000);
  ASSERT_TRUE(cleaner->Clean());
  machine.tellsFree = true;
  EXPECT_EQ(cleaner->GetFreeRAMSize(), 5000 * 4096);
  machine.tellsFree = false;
  machine.freePages = 1;
  cleaner->Stop();
  EXPECT_EQ(events.back(), "finished " + std::to_string(4000 * 4096));
  const char* const text = "Can't get memory statistics";
  EXPECT_THAT(log.Errors(), ElementsAre(text, text, text));
  EXPECT_EQ(log.Lines().front().file, "RAMCleaner.cpp");
}

TEST_F(RAMCleanerTest, TotalSizeIsReadOnceAlsoWhenThatFails)
{
  machine.tellsTotal = false;
  machine.tellsFree = false;
  machine.totalReads = 0;
  const LogCapture log;
  const RAMCleaner blind(nullptr);
  EXPECT_THAT(log.Errors(),
              ElementsAre("Can't get the machine physical memory size", "Can't get memory statistics"));
  machine.tellsTotal = true;
  EXPECT_EQ(blind.GetTotalRAMSize(), 0);
  EXPECT_EQ(blind.GetFreeRAMSize(), 0);
  machine.total = 1;
  EXPECT_EQ(cleaner->GetTotalRAMSize(), 16LL << 30);
  EXPECT_EQ(machine.totalReads, 1);
}

TEST_F(RAMCleanerTest, PurgerThatCannotBeStartedLeavesTheCleanerIdleWithALogLine)
{
  Purger("exec sleep 60");
  ASSERT_TRUE(cleaner->Clean());
  cleaner->Stop();
  events.clear();
  const QString good = machine.purger;
  machine.freePages = 3000;
  QFile(folder.filePath(QStringLiteral("plain"))).open(QIODevice::WriteOnly);
  for (const QString& name : {QStringLiteral("no such \u00e9"), QStringLiteral("plain"), QString()})
  {
    machine.purger = folder.filePath(name);
    const LogCapture log;
    EXPECT_FALSE(cleaner->Clean());
    EXPECT_THAT(log.Errors(), ElementsAre("Can't start " + machine.purger.toLocal8Bit().toStdString()));
    EXPECT_FALSE(cleaner->IsCleaning());
    EXPECT_EQ(cleaner->GetProgress(), 0.0f);
    EXPECT_EQ(cleaner->GetLastCleanedRAMSize(), 0); // now measured from the failed start
  }
  LetTicksPass();
  EXPECT_THAT(events, IsEmpty());
  machine.purger = good;
  EXPECT_TRUE(cleaner->Clean());
}

TEST_F(RAMCleanerTest, StopInsideTheLastProgressFinishesOnce)
{
  Purger("echo 'PROGRESS: 100%'; exec sleep 60");
  onEvent = [this](const std::string& event)
  {
    if (event == "progress 1")
      cleaner->Stop();
  };
  ASSERT_TRUE(cleaner->Clean());
  ASSERT_TRUE(WaitForEnd());
  LetTicksPass();
  EXPECT_THAT(events, ElementsAre("started", "progress 1", "finished 0"));
}

TEST_F(RAMCleanerTest, StopInsideTheStartFinishesOnceAndCleanSaysTrue)
{
  Purger("exec sleep 60");
  onEvent = [this](const std::string& event)
  {
    if (event == "started")
      cleaner->Stop();
  };
  EXPECT_TRUE(cleaner->Clean());
  LetTicksPass();
  EXPECT_FALSE(cleaner->IsCleaning());
  EXPECT_THAT(events, ElementsAre("started", "finished 0"));
}

TEST_F(RAMCleanerTest, StopInsideTheEndDoesNothing)
{
  onEvent = [this](const std::string& event)
  {
    if (event.find("finished") == 0)
      cleaner->Stop();
  };
  cleaner->Stop();
  EXPECT_THAT(events, SizeIs(1));
  cleaner->Stop();
  EXPECT_THAT(events, SizeIs(2));
}

TEST_F(RAMCleanerTest, CleanInsideASignalOfARunSaysFalse)
{
  Purger("echo 'PROGRESS: 42%'; exec sleep 60");
  std::vector<bool> answers;
  onEvent = [&](const std::string&) { answers.push_back(cleaner->Clean()); };
  ASSERT_TRUE(cleaner->Clean());
  ASSERT_TRUE(WaitForEvents(2));
  EXPECT_THAT(answers, ElementsAre(false, false));
  onEvent = nullptr;
}

TEST_F(RAMCleanerTest, CleanInsideTheEndStartsANewRunThatCanBeStopped)
{
  Purger("exec sleep 60");
  int restarts = 0;
  onEvent = [&](const std::string& event)
  {
    if (event.find("finished") == 0 && restarts++ == 0)
    {
      EXPECT_TRUE(cleaner->Clean());
      cleaner->Stop();
      cleaner->Stop();
    }
  };
  ASSERT_TRUE(cleaner->Clean());
  cleaner->Stop();
  EXPECT_THAT(events, ElementsAre("started", "finished 0", "started", "finished 0"));
  EXPECT_FALSE(cleaner->IsCleaning());
}

TEST_F(RAMCleanerTest, StopAndCleanInsideTheLastProgressLeaveTheNewRunAlone)
{
  Purger("[ -e \"$0.again\" ] && exec sleep 60; : > \"$0.again\"; echo 'PROGRESS: 100%'; exec sleep 60");
  onEvent = [this](const std::string& event)
  {
    if (event == "progress 1")
    {
      cleaner->Stop();
      EXPECT_TRUE(cleaner->Clean());
    }
  };
  ASSERT_TRUE(cleaner->Clean());
  ASSERT_TRUE(WaitForEvents(4));
  LetTicksPass();
  EXPECT_TRUE(cleaner->IsCleaning());
  EXPECT_THAT(events, ElementsAre("started", "progress 1", "finished 0", "started"));
  EXPECT_EQ(cleaner->GetProgress(), 0.0f);
}

TEST_F(RAMCleanerTest, EventLoopInsideAProgressHoldsTheRunUntilTheSlotReturns)
{
  Purger("printf 'PROGRESS: 42%%\\nPROGRESS: 100%%\\n'; exec sleep 60");
  size_t eventsInside = 0;
  onEvent = [&](const std::string& event)
  {
    if (event == "progress 0.42")
    {
      LetTicksPass();
      eventsInside = events.size();
    }
  };
  ASSERT_TRUE(cleaner->Clean());
  ASSERT_TRUE(WaitForEnd());
  EXPECT_EQ(eventsInside, 2u);
  EXPECT_THAT(events, ElementsAre("started", "progress 0.42", "progress 1", "finished 0"));
}

TEST_F(RAMCleanerTest, StopFromAnEventLoopInsideTheLastProgressFinishesOnce)
{
  Purger("echo 'PROGRESS: 100%'; exec sleep 60");
  onEvent = [&](const std::string& event)
  {
    if (event == "progress 1")
    {
      QTimer::singleShot(0, cleaner.get(), [this] { cleaner->Stop(); });
      EXPECT_TRUE(WaitForEnd());
    }
  };
  ASSERT_TRUE(cleaner->Clean());
  ASSERT_TRUE(WaitForEnd());
  LetTicksPass();
  EXPECT_THAT(events, ElementsAre("started", "progress 1", "finished 0"));
}

TEST_F(RAMCleanerTest, MayBeDestroyedInsideEachOfItsSignals)
{
  for (const char* const at : {"started", "progress 0.42", "progress 1", "finished 0"})
  {
    Purger("printf 'PROGRESS: 42%%\\nPROGRESS: 100%%\\n'; exec sleep 60");
    cleaner = std::make_unique<RAMCleaner>(nullptr);
    Observe();
    events.clear();
    onEvent = [&](const std::string& event)
    {
      if (event == at)
        cleaner.reset();
    };
    EXPECT_TRUE(cleaner->Clean());
    EXPECT_TRUE(WaitFor([&] { return !cleaner; }));
    LetTicksPass(1);
    EXPECT_EQ(events.back(), at);
  }
}

TEST_F(RAMCleanerTest, DestroyingEndsThePurgerWithoutASignal)
{
  Purger("exec sleep 60");
  ASSERT_TRUE(cleaner->Clean());
  const qint64 pid = PidOfStart(0);
  cleaner.reset();
  EXPECT_FALSE(IsProcess(pid));
  EXPECT_THAT(events, ElementsAre("started"));
}

TEST_F(RAMCleanerTest, AfterHundredAPurgerThatIsStillEndingIsLeftAndTheNextRunHasItsOwn)
{
  Purger("if [ ! -e \"$0.again\" ]; then : > \"$0.again\"; echo 'PROGRESS: 100%'; await end; echo 'PROGRESS: "
         "7%'\n"
         "else echo 'PROGRESS: 42%'; exec sleep 60; fi");
  ASSERT_TRUE(cleaner->Clean());
  ASSERT_TRUE(WaitForEnd());
  const qint64 first = PidOfStart(0);
  EXPECT_TRUE(IsProcess(first));

  ASSERT_TRUE(cleaner->Clean());
  const qint64 second = PidOfStart(1);
  EXPECT_NE(first, second);
  EXPECT_TRUE(IsProcess(first));
  ASSERT_TRUE(WaitForEvents(5));
  Let("end");
  EXPECT_TRUE(WaitFor([&] { return !IsProcess(first); }));
  LetTicksPass();
  EXPECT_TRUE(cleaner->IsCleaning());
  EXPECT_TRUE(IsProcess(second));
  EXPECT_THAT(cleaner->children(), IsEmpty());
  EXPECT_THAT(events, ElementsAre("started", "progress 1", "finished 0", "started", "progress 0.42"));
}

TEST_F(RAMCleanerTest, RightAfterStopTheNextRunHasAPurgerOfItsOwn)
{
  Purger("echo 'PROGRESS: 42%'; exec sleep 60");
  for (int run = 0; run < 5; ++run)
  {
    events.clear();
    ASSERT_TRUE(cleaner->Clean());
    EXPECT_TRUE(IsProcess(PidOfStart(run)));
    EXPECT_TRUE(WaitForEvents(2));
    EXPECT_THAT(events, ElementsAre("started", "progress 0.42"));
    cleaner->Stop();
  }
  EXPECT_THAT(Starts(), SizeIs(5));
}

TEST_F(RAMCleanerTest, DestroyingEndsAlsoThePurgersOfEarlierRuns)
{
  Purger("echo 'PROGRESS: 100%'; exec sleep 60");
  for (int run = 0; run < 3; ++run)
  {
    ASSERT_TRUE(cleaner->Clean());
    ASSERT_TRUE(WaitForEnd());
  }
  std::vector<qint64> pids = {PidOfStart(0), PidOfStart(1), PidOfStart(2)};
  for (const qint64 pid : pids)
    EXPECT_TRUE(IsProcess(pid));
  cleaner.reset();
  for (const qint64 pid : pids)
    EXPECT_FALSE(IsProcess(pid));
}

#ifdef TAVRIK_UNKILLABLE_PURGER
TEST_F(RAMCleanerTest, DestroyingWaitsOnlyShortlyForPurgersThatCannotBeKilled)
{
  static std::vector<std::string> complaints;
  const auto former = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text)
                                             { complaints.push_back(text.toStdString()); });
  Purger(QStringLiteral("exec '" TAVRIK_UNKILLABLE_PURGER "' \"$0.tracers\""));
  QFile tracers(machine.purger + ".tracers");
  const int runs = 4;
  for (int run = 0; run < runs; ++run)
  {
    ASSERT_TRUE(cleaner->Clean());
    ASSERT_TRUE(WaitForEnd());
  }
  std::vector<qint64> pids;
  for (int run = 0; run < runs; ++run)
    pids.push_back(PidOfStart(run));
  ASSERT_TRUE(tracers.open(QIODevice::ReadOnly));
  const QList<QByteArray> tracerPids = tracers.readAll().trimmed().split('\n');
  ASSERT_EQ(tracerPids.size(), runs) << "this machine does not let a process be traced";

  QElapsedTimer timer;
  timer.start();
  cleaner.reset();
  EXPECT_LT(timer.elapsed(), 20000);
  for (const qint64 pid : pids)
    EXPECT_TRUE(IsProcess(pid));

  // Once they can end, they leave nothing behind.
  for (const QByteArray& pid : tracerPids)
    kill(pid.toInt(), SIGKILL);
  Purger("exit 0");
  cleaner = std::make_unique<RAMCleaner>(nullptr);
  EXPECT_TRUE(WaitFor(
      [&]
      {
        EXPECT_TRUE(cleaner->Clean());
        EXPECT_TRUE(WaitForEnd());
        return std::none_of(pids.begin(), pids.end(), IsProcess);
      }));
  qInstallMessageHandler(former);
  EXPECT_THAT(complaints, IsEmpty());
}

TEST_F(RAMCleanerTest, APurgerMayWriteOnAfterHundredThoughItsRunIsOver)
{
  Purger("echo 'PROGRESS: 100%'; head -c 1000000 /dev/zero; : >\"$0.written\"");
  ASSERT_TRUE(cleaner->Clean());
  ASSERT_TRUE(WaitForEnd());
  const qint64 pid = PidOfStart(0);
  EXPECT_TRUE(WaitFor([&] { return QFile::exists(machine.purger + ".written") && !IsProcess(pid); }));
}
#endif

} // namespace
