// What outlives a scheduler, and what becomes of a state that is not its own.

#include "SchedulerFixture.h"
#include "State.h"
#include "Support/Copies.h"
#include "Support/Processes.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace
{

class Keeping : public SchedulerFixture
{
protected:
  Keeping() { QDir().mkpath(home + "/state"); }

  QJsonObject ReadState() const { return QJsonDocument::fromJson(ReadText(stateFile)).object(); }

  QList<QJsonObject> LookOnce()
  {
    SchedulerProcess scheduler(Arguments({"--once"}));
    EXPECT_EQ(scheduler.Begin().Finish(), Done);
    error = scheduler.Err();
    return scheduler.Notices();
  }

  QByteArray error;
};

TEST_F(Keeping, NoticeOutlivesAKilledSchedulerAndIsNotRepeated)
{
  WantAllMemory();
  {
    const Process scheduler = Begin();
    ASSERT_TRUE(scheduler->WaitForNotices(1));
    scheduler->Signal(SIGKILL);
    ASSERT_EQ(scheduler->Finish(), -1);
  }
  const Process next = BeginOnBus();
  ASSERT_TRUE(next->WaitForLooks());
  EXPECT_EQ(next->Kinds(), QStringList());
  HostProcess asking(QStringLiteral(OSTREL), {"notices", "--json"});
  EXPECT_EQ(asking.Begin().Finish(), Done);
  ASSERT_EQ(asking.Events().size(), 1);
  EXPECT_EQ(asking.Events().first().value("kind").toString(), "free-memory");
  EXPECT_EQ(asking.Events().first().value("id").toInt(), 1);
}

int HoldLock(int file)
{
  struct flock whole = {};
  whole.l_type = F_WRLCK;
  whole.l_whence = SEEK_SET;
  return fcntl(file, F_SETLK, &whole);
}

TEST_F(Keeping, LockThatIsGivenBackSoonIsWaitedFor)
{
  ASSERT_TRUE(QDir().mkpath(home + "/state"));
  const int lock =
      open(QFile::encodeName(stateFile + ".lock").constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  ASSERT_GE(lock, 0);
  ASSERT_EQ(0, HoldLock(lock));
  SchedulerProcess scheduler(Arguments({"--once"}));
  scheduler.Begin();
  EXPECT_FALSE(scheduler.waitForFinished(200)) << scheduler.Err().toStdString();
  close(lock);
  EXPECT_EQ(scheduler.Finish(), Done);
}

TEST_F(Keeping, LockEndsWithItsProcessThoughAForkedChildLives)
{
  int ready[2];
  int end[2];
  ASSERT_EQ(0, pipe(ready));
  ASSERT_EQ(0, pipe(end));
  char byte = 0;
  Forked scheduler(
      [&]
      {
        State state(stateFile);
        const bool isChild = state.Lock() == Done && fork() == 0;
        close(end[1]);
        (void)!write(ready[1], "y", isChild ? 1 : 0);
        (void)!read(end[0], &byte, 1);
      });
  ASSERT_EQ(1, read(ready[0], &byte, 1));
  scheduler.Kill();
  EXPECT_EQ(State(stateFile).Lock(), Done);
  for (const int file : {ready[0], ready[1], end[0], end[1]})
    close(file);
}

TEST_F(Keeping, StateIsTheUsersAlone)
{
  WantAllMemory();
  EXPECT_EQ(LookOnce().size(), 1);
  struct stat status = {};
  ASSERT_EQ(0, stat(QFile::encodeName(stateFile).constData(), &status));
  EXPECT_EQ(status.st_mode & 07777, 0600u);
  EXPECT_EQ(ReadState().value("notices").toArray().size(), 1);
  EXPECT_EQ(QDir(home + "/state").entryList(QDir::Files), QStringList({"state.json", "state.json.lock"}));
}

TEST_F(Keeping, DamagedStateIsSetAsideAndTheSchedulerGoesOn)
{
  WantAllMemory();
  const QList<QByteArray> damaged = {"",
                                     "nonsense",
                                     "{\"version\":1",
                                     "[]",
                                     "{\"version\":2,\"lastId\":1}",
                                     "{\"version\":1,\"lastId\":-1}",
                                     QByteArray(100000, '['),
                                     QByteArray("\xFF\xFE\0\x01", 4)};
  for (const QByteArray& text : damaged)
  {
    WriteText(stateFile, text);
    EXPECT_EQ(LookOnce().size(), 1) << text.left(50).constData();
    EXPECT_EQ(error, "ostrel-scheduler: the state in " + stateFile.toUtf8() + " is damaged; it is kept as " +
                         stateFile.toUtf8() + ".damaged\n");
    EXPECT_EQ(ReadText(stateFile + ".damaged"), text);
    EXPECT_EQ(ReadState().value("notices").toArray().size(), 1);
  }
}

TEST_F(Keeping, WhatIsNoNoticeInTheStateIsLeftOut)
{
  const QByteArray sound =
      R"({"id":7,"kind":"free-memory","time":"2026-01-02T03:04:05.678Z","size":1,"limit":2})";
  WriteText(stateFile,
            R"({"version":1,"lastId":3,"told":[1,"x"],"applications":{"a":5},"notices":[5,null,{},)"
            R"({"id":1.5,"kind":"free-memory","time":"2026-01-02T03:04:05Z","size":1,"limit":2},)"
            R"({"id":2,"kind":"free-memory","time":"never","size":1,"limit":2},)"
            R"({"id":2,"kind":"free-memory","time":"2026-01-02T03:04:05Z","size":-1,"limit":2},)"
            R"({"id":2,"kind":"free-lunch","time":"2026-01-02T03:04:05Z","size":1,"limit":2},)" +
                sound + "," + sound + "]}");
  WantAllMemory();
  const QList<QJsonObject> notices = LookOnce();
  ASSERT_EQ(notices.size(), 1);
  EXPECT_EQ(notices.first().value("id").toInt(), 8);
  const QJsonArray kept = ReadState().value("notices").toArray();
  ASSERT_EQ(kept.size(), 2);
  EXPECT_EQ(kept.first().toObject(), QJsonDocument::fromJson(sound).object());
}

TEST_F(Keeping, DamagedStateThatCannotBeRenamedIsLeftAlone)
{
  WantAllMemory();
  WriteText(stateFile, "nonsense");
  ASSERT_TRUE(QDir().mkpath(stateFile + ".damaged/folder"));
  EXPECT_EQ(LookOnce().size(), 1);
  EXPECT_TRUE(error.contains("is damaged and cannot be renamed: ")) << error.constData();
  EXPECT_FALSE(error.contains("kept as")) << error.constData();
  EXPECT_EQ(ReadText(stateFile), "nonsense");
}

TEST_F(Keeping, IdsGoOnAfterADamagedState)
{
  WantAllMemory();
  WriteText(stateFile, R"({"version":1,"lastId": 41,"notices":[{"id":7,"kind")");
  const QList<QJsonObject> notices = LookOnce();
  ASSERT_EQ(notices.size(), 1);
  EXPECT_EQ(notices.first().value("id").toInt(), 42);
}

TEST_F(Keeping, AcknowledgementThatFindsTheDiskFullIsAnErrorAndLosesNothing)
{
  if (!MountSmallDisk(home + "/state"))
    GTEST_SKIP() << "The machine forbids to mount a disk";
  WantAllMemory();
  const Process scheduler = BeginOnBus();
  ASSERT_TRUE(scheduler->WaitForNotices(1));
  const QByteArray before = ReadText(stateFile);
  FillDisk(home + "/state", 0);
  HostProcess acknowledging(QStringLiteral(OSTREL), {"notices", "--ack", "1"});
  EXPECT_EQ(acknowledging.Begin().Finish(), Failed);
  EXPECT_EQ(acknowledging.Out(), "");
  EXPECT_TRUE(acknowledging.Err().contains("not-kept")) << acknowledging.Err().toStdString();
  EXPECT_TRUE(scheduler->WaitForError("cannot write " + stateFile.toUtf8()));
  EXPECT_EQ(ReadText(stateFile), before);

  QFile::remove(home + "/state/filler");
  HostProcess again(QStringLiteral(OSTREL), {"notices", "--ack", "1"});
  EXPECT_EQ(again.Begin().Finish(), Done);
  EXPECT_EQ(ReadState().value("notices").toArray().size(), 0);
}

TEST_F(Keeping, LockThatIsNoFileEndsWithAPlainMessage)
{
  WriteText(home + "/elsewhere", "");
  const QByteArray lock = QFile::encodeName(stateFile + ".lock");
  const auto expectRefusal = [&]
  {
    SchedulerProcess scheduler(Arguments({"--once"}));
    EXPECT_EQ(scheduler.Begin().Finish(), Failed);
    EXPECT_EQ(scheduler.Err(), "ostrel-scheduler: " + lock +
                                   " must be a regular file, for it is the scheduler's lock; remove it\n");
  };
  ASSERT_EQ(0, symlink(qPrintable(home + "/elsewhere"), lock.constData()));
  expectRefusal();
  ASSERT_EQ(0, unlink(lock.constData()));
  ASSERT_EQ(0, symlink("nowhere", lock.constData()));
  expectRefusal();
  ASSERT_EQ(0, unlink(lock.constData()));
  ASSERT_EQ(0, mkdir(lock.constData(), 0700));
  expectRefusal();
  ASSERT_EQ(0, rmdir(lock.constData()));
  ASSERT_EQ(0, mkfifo(lock.constData(), 0600));
  expectRefusal();
  ASSERT_EQ(0, unlink(lock.constData()));
  LookOnce();
}

TEST_F(Keeping, LockThatMayNotBeOpenedEndsWithAPlainMessage)
{
  CopyForOthers({OSTREL_SCHEDULER, commonLibrary});
  BecomeUser();
  const QByteArray lock = QFile::encodeName(stateFile + ".lock");
  WriteText(stateFile + ".lock", "");
  ASSERT_EQ(0, chmod(lock.constData(), 0));
  SchedulerProcess scheduler(Arguments({"--once"}));
  EXPECT_EQ(scheduler.Begin().Finish(), Failed);
  EXPECT_TRUE(scheduler.Err().startsWith("ostrel-scheduler: cannot lock " + lock + ": "))
      << scheduler.Err().toStdString();
}

TEST_F(Keeping, StateThatIsNoFileIsLeftAlone)
{
  WantAllMemory();
  ASSERT_EQ(0, mkfifo(QFile::encodeName(stateFile).constData(), 0600));
  EXPECT_EQ(LookOnce().size(), 1);
  EXPECT_TRUE(error.startsWith("ostrel-scheduler: cannot read " + stateFile.toUtf8())) << error.constData();
  struct stat status = {};
  ASSERT_EQ(0, stat(QFile::encodeName(stateFile).constData(), &status));
  EXPECT_TRUE(S_ISFIFO(status.st_mode));
}

TEST_F(Keeping, AsAPlainUserWithoutAPlaceToWriteItTellsAllTheSame)
{
  CopyForOthers({OSTREL_SCHEDULER, commonLibrary});
  BecomeUser();
  WantAllMemory();
  const QByteArray folder = QFile::encodeName(home + "/state");
  ASSERT_EQ(0, chmod(folder.constData(), 0500));
  const Process scheduler = Begin();
  ASSERT_TRUE(scheduler->WaitForNotices(1));
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_EQ(scheduler->Notices().size(), 1);
  EXPECT_EQ(scheduler->Err().count("cannot write " + stateFile.toUtf8()), 1);
  ASSERT_EQ(0, chmod(folder.constData(), 0700));
  EXPECT_TRUE(WaitFor([this] { return ReadState().value("notices").toArray().size() == 1; }));
}

TEST_F(Keeping, StateThatSomebodyElseHoldsEndsWithNameTaken)
{
  const QByteArray name = QFile::encodeName(stateFile) + ".lock";
  const int file = open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  ASSERT_GE(file, 0);
  ASSERT_EQ(0, HoldLock(file));
  SchedulerProcess scheduler(Arguments());
  EXPECT_EQ(scheduler.Begin().Finish(), NameTaken);
  EXPECT_EQ(scheduler.Err(), "ostrel-scheduler: another scheduler of this user keeps its notices in " +
                                 stateFile.toUtf8() + "\n");
  close(file);
  EXPECT_EQ(LookOnce().size(), 0);
}

TEST_F(Keeping, AcknowledgedNoticeOfAnEventThatGoesOnIsNotToldAgain)
{
  WantAllMemory();
  {
    const Process scheduler = BeginOnBus();
    ASSERT_TRUE(scheduler->WaitForNotices(1));
    HostProcess acknowledging(QStringLiteral(OSTREL), {"notices", "--ack", "1"});
    EXPECT_EQ(acknowledging.Begin().Finish(), Done);
    ASSERT_TRUE(scheduler->WaitForLooks());
    EXPECT_EQ(scheduler->Notices().size(), 1);
    scheduler->Signal(SIGKILL);
    scheduler->Finish();
  }
  const Process next = BeginOnBus();
  ASSERT_TRUE(next->WaitForLooks());
  EXPECT_EQ(next->Kinds(), QStringList());
  EXPECT_EQ(ReadState().value("notices").toArray().size(), 0);
}

} // namespace
