// What the scheduler sees, in real folders, and when it says so.

#include "SchedulerFixture.h"
#include "Support/Copies.h"
#include "TrashWalk.h"

#include <QDate>

#include <sys/stat.h>

namespace
{

constexpr int megabyte = 1000000;

using Watching = SchedulerFixture;

void Fill(const QString& path, int size)
{
  WriteText(path, QByteArray(size, 'x'));
}

void MakeLink(const QString& target, const QString& path)
{
  ASSERT_EQ(0, symlink(QFile::encodeName(target).constData(), QFile::encodeName(path).constData()));
}

// Memory and disk ------------------------------------------------------------------------------------------

TEST_F(Watching, TellsOfTooLittleMemoryOnceAndAgainAfterItHasRecovered)
{
  WantAllMemory();
  const Process scheduler = Begin();
  ASSERT_TRUE(scheduler->WaitForNotices(1));
  ASSERT_TRUE(scheduler->WaitForLooks());
  ASSERT_EQ(scheduler->Kinds(), QStringList({"free-memory"}));
  const QJsonObject notice = scheduler->Notices().first();
  EXPECT_EQ(notice.value("id").toInt(), 1);
  EXPECT_GE(notice.value("size").toDouble(-1), 0);
  EXPECT_GT(notice.value("limit").toDouble(), notice.value("size").toDouble());

  WantNoMemory();
  ASSERT_TRUE(scheduler->WaitForLooks());
  WantAllMemory();
  ASSERT_TRUE(scheduler->WaitForNotices(2));
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_EQ(scheduler->Kinds(), QStringList({"free-memory", "free-memory"}));
}

TEST_F(Watching, TellsOfTooLittleDiskSpaceOnceAndAgainAfterItHasRecovered)
{
  settings.SetFreeDiskSpaceLimit(1000000000000000000);
  settings.SetNeedToWatchDiskSpaceFlag(true);
  const Process scheduler = Begin();
  ASSERT_TRUE(scheduler->WaitForNotices(1));
  ASSERT_TRUE(scheduler->WaitForLooks());
  ASSERT_EQ(scheduler->Kinds(), QStringList({"free-disk-space"}));
  EXPECT_EQ(scheduler->Notices().first().value("path").toString(), home);

  settings.SetFreeDiskSpaceLimit(1);
  ASSERT_TRUE(scheduler->WaitForLooks());
  settings.SetFreeDiskSpaceLimit(1000000000000000000);
  ASSERT_TRUE(scheduler->WaitForNotices(2));
}

TEST_F(Watching, SaysNothingOfWhatTheSettingsHaveSwitchedOff)
{
  settings.SetFreeRAMLimit(2);
  settings.SetFreeDiskSpaceLimit(1000000000000000000);
  settings.SetTrashSizeLimit(1);
  settings.SetNextEventDate(QDate(2001, 1, 1));
  Fill(trash + "/file", megabyte);
  QDir().mkpath(applications + "/Foo.app");
  const Process scheduler = Begin();
  ASSERT_TRUE(scheduler->WaitForLooks());
  QDir(applications + "/Foo.app").removeRecursively();
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_EQ(scheduler->Kinds(), QStringList());
  EXPECT_EQ(scheduler->Events().last(), QJsonObject({{"event", "looked"}}));
  EXPECT_EQ(settings.PrevNextEventDates().second, QDate(2001, 1, 1));
}

TEST_F(Watching, ObeysASettingThatAnotherProcessChangesAndAfterItIsOnAgainTellsAgain)
{
  settings.SetFreeRAMLimit(2);
  const Process scheduler = Begin();
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_EQ(scheduler->Kinds(), QStringList());
  for (int round = 1; round <= 2; ++round)
  {
    settings.SetNeedToWatchRAMFlag(true);
    ASSERT_TRUE(scheduler->WaitForLooks());
    EXPECT_EQ(scheduler->Notices().size(), round);
    settings.SetNeedToWatchRAMFlag(false);
    ASSERT_TRUE(scheduler->WaitForLooks());
    EXPECT_FALSE(scheduler->Events().last().contains("freeMemory"));
  }
}

TEST_F(Watching, TakesALimitThatIsNoLimitForNone)
{
  settings.SetNeedToWatchRAMFlag(true);
  settings.SetNeedToWatchDiskSpaceFlag(true);
  settings.SetNeedToWatchTrashFlag(true);
  Fill(trash + "/file", megabyte);
  for (const char* text : {"soon", "-5", "nan", "0", ""})
  {
    settings.WriteSettings(Tavrik::Cleaner::KeyFreeRAMLimit, text);
    settings.WriteSettings(Tavrik::Cleaner::KeyFreeDiskSpaceLimit, text);
    settings.WriteSettings(Tavrik::Cleaner::KeyTrashSizeLimit, text);
    SchedulerProcess scheduler(Arguments({"--once"}));
    EXPECT_EQ(scheduler.Begin().Finish(), Done);
    EXPECT_EQ(scheduler.Notices(), QList<QJsonObject>()) << text;
    EXPECT_EQ(scheduler.CountEvents("looked"), 1);
  }
}

// Trash ----------------------------------------------------------------------------------------------------

TEST_F(Watching, TellsOfAFullTrashOnceAndAgainAfterItWasEmptied)
{
  settings.SetTrashSizeLimit(2 * megabyte);
  settings.SetNeedToWatchTrashFlag(true);
  QDir().mkpath(trash + "/files/a/b");
  Fill(trash + "/files/one", megabyte);
  const Process scheduler = Begin();
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_EQ(scheduler->Kinds(), QStringList());
  const QString deep = trash + "/files/a/b/two\n\x1B[31m";
  for (int round = 1; round <= 2; ++round)
  {
    Fill(deep, 3 * megabyte);
    ASSERT_TRUE(scheduler->WaitForNotices(round));
    ASSERT_TRUE(scheduler->WaitForLooks());
    EXPECT_EQ(scheduler->Notices().size(), round);
    QFile::remove(deep);
    ASSERT_TRUE(scheduler->WaitForLooks());
  }
  const QJsonObject notice = scheduler->Notices().first();
  EXPECT_EQ(notice.value("kind").toString(), "trash-size");
  EXPECT_EQ(notice.value("path").toString(), trash);
  EXPECT_EQ(notice.value("limit").toInt(), 2 * megabyte);
  EXPECT_GT(notice.value("size").toInt(), 2 * megabyte);
}

TEST_F(Watching, TakesATrashThatWaversAboutItsLimitForOneEvent)
{
  settings.SetTrashSizeLimit(4 * megabyte);
  settings.SetNeedToWatchTrashFlag(true);
  Fill(trash + "/stays", 3900000);
  Fill(trash + "/wavers", megabyte);
  const Process scheduler = Begin();
  ASSERT_TRUE(scheduler->WaitForNotices(1));
  QFile::remove(trash + "/wavers");
  ASSERT_TRUE(scheduler->WaitForLooks());
  Fill(trash + "/wavers", megabyte);
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_EQ(scheduler->Notices().size(), 1);
}

TEST_F(Watching, FollowsNoLinkOutOfTheTrashOrRoundInIt)
{
  settings.SetNeedToWatchTrashFlag(true);
  const QString outside = home + "/outside";
  QDir().mkpath(outside);
  Fill(outside + "/file", 20 * megabyte);
  MakeLink(outside, trash + "/folder");
  MakeLink(outside + "/file", trash + "/file");
  MakeLink(trash, trash + "/round");
  MakeLink("nowhere", trash + "/dangling");
  SchedulerProcess scheduler(Arguments({"--once"}));
  EXPECT_EQ(scheduler.Begin().Finish(), Done);
  EXPECT_LT(scheduler.Events().last().value("trashSize").toInt(-1), megabyte);
}

TEST_F(Watching, CountsAFileOfSeveralNamesOnce)
{
  settings.SetNeedToWatchTrashFlag(true);
  const QByteArray name = QFile::encodeName(trash + "/file");
  Fill(trash + "/file", 4 * megabyte);
  ASSERT_EQ(0, link(name.constData(), (name + "-2").constData()));
  ASSERT_EQ(0, link(name.constData(), (name + "-\xFF\n").constData()));
  SchedulerProcess scheduler(Arguments({"--once"}));
  EXPECT_EQ(scheduler.Begin().Finish(), Done);
  const int size = scheduler.Events().last().value("trashSize").toInt();
  EXPECT_GT(size, 3 * megabyte);
  EXPECT_LT(size, 5 * megabyte);
}

TEST_F(Watching, TakesAMissingTrashForAnEmptyOne)
{
  settings.SetNeedToWatchTrashFlag(true);
  QDir(trash).removeRecursively();
  SchedulerProcess scheduler(Arguments({"--once"}));
  EXPECT_EQ(scheduler.Begin().Finish(), Done);
  EXPECT_EQ(scheduler.Events().last().value("trashSize").toInt(-1), 0);
  EXPECT_EQ(scheduler.Err(),
            "ostrel-scheduler: --trash: " + trash.toUtf8() + " does not exist; it counts as empty\n");
}

TEST_F(Watching, SaysOnceThatAFolderCannotBeLookedAt)
{
  settings.SetNeedToWatchDiskSpaceFlag(true);
  settings.SetNeedToWatchApplicationRemoveFlag(true);
  const QString missing = home + "/nonexist";
  const Process scheduler = Begin({"--applications", missing});
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_EQ(scheduler->Err(), "ostrel-scheduler: cannot look for applications in " + missing.toUtf8() + "\n");
  QDir().mkpath(missing);
  ASSERT_TRUE(scheduler->WaitForLooks());
  QDir().rmdir(missing);
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_EQ(scheduler->Err().count("cannot look for applications in "), 2);

  SchedulerProcess other({"--once", "--json", "--state", stateFile + "2", "--disk", missing});
  EXPECT_EQ(other.Begin().Finish(), Done);
  EXPECT_TRUE(other.Err().contains("ostrel-scheduler: cannot look at the disk of " + missing.toUtf8() + ": "))
      << other.Err().toStdString();
}

TEST_F(Watching, SaysOnceWhatIsWrongWithTheSettings)
{
  const QString store = QSettings("tavrik", "ostrel2.scheduler").fileName();
  WriteText(store, ReadText(store) + "garbage\nTRASH_SIZE_LIMIT=garbage\n");
  const Process scheduler = Begin();
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_EQ(scheduler->Err(),
            "ostrel-scheduler: " + store.toUtf8() +
                " is damaged; the next change keeps it with \".damaged\" after its name\n"
                "ostrel-scheduler: TRASH_SIZE_LIMIT is stored as garbage, which is not a value for it\n");
  settings.WriteSettings(Tavrik::Cleaner::KeyTrashSizeLimit, "nonsense");
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_TRUE(
      scheduler->Err().endsWith("TRASH_SIZE_LIMIT is stored as nonsense, which is not a value for it\n"));
}

TEST_F(Watching, SaysOnceThatItCannotLookIntoTheTrash)
{
  settings.SetNeedToWatchTrashFlag(true);
  const QString elsewhere = home + "/elsewhere";
  ASSERT_TRUE(QDir().rename(trash, elsewhere));
  MakeLink(elsewhere, trash);
  const Process scheduler = Begin();
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_EQ(scheduler->Err().count("cannot look into the trash " + trash.toUtf8()), 1);
  EXPECT_FALSE(scheduler->Events().last().contains("trashSize"));
  ASSERT_TRUE(QFile::remove(trash));
  ASSERT_TRUE(QDir().rename(elsewhere, trash));
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_TRUE(scheduler->Events().last().contains("trashSize"));
}

TEST_F(Watching, AsAPlainUserCountsWhatItCanRead)
{
  CopyForOthers({OSTREL_SCHEDULER, commonLibrary});
  BecomeUser();
  settings.SetNeedToWatchTrashFlag(true);
  QDir().mkpath(trash + "/closed");
  Fill(trash + "/closed/hidden", 4 * megabyte);
  Fill(trash + "/open", 2 * megabyte);
  ASSERT_EQ(0, chmod(QFile::encodeName(trash + "/closed").constData(), 0));
  SchedulerProcess scheduler(Arguments({"--once"}));
  EXPECT_EQ(scheduler.Begin().Finish(), Done);
  const int size = scheduler.Events().last().value("trashSize").toInt();
  EXPECT_GT(size, megabyte);
  EXPECT_LT(size, 4 * megabyte);
  ASSERT_EQ(0, chmod(QFile::encodeName(trash + "/closed").constData(), 0700));
}

TEST_F(Watching, AddsUpTheTrashInSlicesThatEndInTime)
{
  constexpr int count = 300;
  for (int i = 0; i < count; ++i)
    Fill(trash + QStringLiteral("/%1").arg(i), 5000);
  TrashWalk walk(trash.toUtf8());
  int slices = 1;
  while (!walk.Advance(QDeadlineTimer(0)))
    ++slices;
  EXPECT_GT(slices, count);
  EXPECT_GE(walk.Size(), count * 5000);
}

TEST_F(Watching, LeavesOutWhatLiesTooDeepInTheTrash)
{
  QString folder = trash;
  for (int depth = 1; depth <= 120; ++depth)
    folder += "/d";
  ASSERT_TRUE(QDir().mkpath(folder));
  Fill(folder + "/file", 4 * megabyte);
  TrashWalk walk(trash.toUtf8());
  EXPECT_TRUE(walk.Advance(QDeadlineTimer::Forever));
  EXPECT_EQ(walk.SkippedFolders(), 1);
  EXPECT_LT(walk.Size(), 2 * megabyte);
}

// Applications ---------------------------------------------------------------------------------------------

TEST_F(Watching, TellsOfAnApplicationThatHasGoneAndOfNoneAtTheFirstLook)
{
  settings.SetNeedToWatchApplicationRemoveFlag(true);
  QDir().mkpath(applications + "/Foo Bar.app/Contents");
  QDir().mkpath(applications + "/Stays.app");
  QDir().mkpath(applications + "/Folder");
  MakeLink(applications + "/Stays.app", applications + "/Link.app");
  const Process scheduler = Begin();
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_EQ(scheduler->Kinds(), QStringList());
  EXPECT_EQ(scheduler->Events().last().value("applications").toInt(), 2);

  for (int round = 1; round <= 2; ++round)
  {
    QDir(applications + "/Foo Bar.app").removeRecursively();
    QDir(applications + "/Folder").removeRecursively();
    QFile::remove(applications + "/Link.app");
    ASSERT_TRUE(scheduler->WaitForNotices(round));
    ASSERT_TRUE(scheduler->WaitForLooks());
    EXPECT_EQ(scheduler->Notices().size(), round);
    QDir().mkpath(applications + "/Foo Bar.app");
    ASSERT_TRUE(scheduler->WaitForLooks());
  }
  const QJsonObject notice = scheduler->Notices().first();
  EXPECT_EQ(notice.value("kind").toString(), "application-removed");
  EXPECT_EQ(notice.value("name").toString(), "Foo Bar");
  EXPECT_EQ(notice.value("path").toString(), applications + "/Foo Bar.app");
}

TEST_F(Watching, TellsOfAnApplicationThatWentWhileNobodyLooked)
{
  settings.SetNeedToWatchApplicationRemoveFlag(true);
  QDir().mkpath(applications + "/Foo.app");
  SchedulerProcess first(Arguments({"--once"}));
  EXPECT_EQ(first.Begin().Finish(), Done);
  QDir(applications + "/Foo.app").removeRecursively();
  SchedulerProcess second(Arguments({"--once"}));
  EXPECT_EQ(second.Begin().Finish(), Done);
  EXPECT_EQ(second.Kinds(), QStringList({"application-removed"}));
}

TEST_F(Watching, DoesNotTakeAFolderThatIsNotThereForOneWithoutApplications)
{
  settings.SetNeedToWatchApplicationRemoveFlag(true);
  QDir().mkpath(applications + "/Foo.app");
  QDir().mkpath(applications + "/Bar.app");
  const Process scheduler = Begin();
  ASSERT_TRUE(scheduler->WaitForLooks());
  ASSERT_TRUE(QDir().rename(applications, home + "/away"));
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_EQ(scheduler->Kinds(), QStringList());
  QDir(home + "/away/Bar.app").removeRecursively();
  ASSERT_TRUE(QDir().rename(home + "/away", applications));
  ASSERT_TRUE(scheduler->WaitForNotices(1));
  EXPECT_EQ(scheduler->Notices().first().value("name").toString(), "Bar");
}

TEST_F(Watching, SaysNothingOfApplicationsThatWentWhileThatWasSwitchedOff)
{
  settings.SetNeedToWatchApplicationRemoveFlag(true);
  QDir().mkpath(applications + "/Foo.app");
  const Process scheduler = Begin();
  ASSERT_TRUE(scheduler->WaitForLooks());
  settings.SetNeedToWatchApplicationRemoveFlag(false);
  ASSERT_TRUE(scheduler->WaitForLooks());
  QDir(applications + "/Foo.app").removeRecursively();
  settings.SetNeedToWatchApplicationRemoveFlag(true);
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_EQ(scheduler->Kinds(), QStringList());
}

// Calendar -------------------------------------------------------------------------------------------------

TEST_F(Watching, RemindsOfAMaintenanceThatIsDueOnceAndMovesTheCalendarOn)
{
  const QDate due = QDate::currentDate().addDays(-20);
  settings.SetNextEventDate(due);
  settings.SetRegularMaintenanceRemindPeriod(DaemonSettings::Weekly);
  settings.SetNeedToRemindAboutRegularMaintenanceFlag(true);
  const Process scheduler = Begin();
  ASSERT_TRUE(scheduler->WaitForNotices(1));
  ASSERT_TRUE(scheduler->WaitForLooks());
  ASSERT_EQ(scheduler->Kinds(), QStringList({"regular-maintenance"}));
  EXPECT_EQ(scheduler->Notices().first().value("date").toString(), due.toString(Qt::ISODate));
  EXPECT_EQ(settings.PrevNextEventDates(), qMakePair(due, due.addDays(21)));
}

TEST_F(Watching, DoesNotRemindOfAMaintenanceToCome)
{
  const QDate next = QDate::currentDate().addDays(3);
  settings.SetNextEventDate(next);
  settings.SetNeedToRemindAboutRegularMaintenanceFlag(true);
  SchedulerProcess scheduler(Arguments({"--once"}));
  EXPECT_EQ(scheduler.Begin().Finish(), Done);
  EXPECT_EQ(scheduler.Kinds(), QStringList());
  EXPECT_EQ(settings.PrevNextEventDates(), qMakePair(QDate(), next));
}

TEST_F(Watching, StartsTheCalendarWhereThereIsNone)
{
  settings.SetRegularMaintenanceRemindPeriod(DaemonSettings::Monthly);
  settings.SetNeedToRemindAboutRegularMaintenanceFlag(true);
  const QDate before = QDate::currentDate();
  SchedulerProcess scheduler(Arguments({"--once"}));
  EXPECT_EQ(scheduler.Begin().Finish(), Done);
  EXPECT_EQ(scheduler.Kinds(), QStringList());
  const auto dates = settings.PrevNextEventDates();
  EXPECT_FALSE(dates.first.isValid());
  EXPECT_GE(dates.second, before.addMonths(1));
  EXPECT_LE(dates.second, QDate::currentDate().addMonths(1));
}

TEST_F(Watching, RemindsOnceWhenThePeriodIsNone)
{
  settings.SetNextEventDate(QDate(2020, 2, 2));
  settings.SetRegularMaintenanceRemindPeriod(static_cast<DaemonSettings::RemindPeriod>(77));
  settings.SetNeedToRemindAboutRegularMaintenanceFlag(true);
  const Process scheduler = Begin();
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_EQ(scheduler->Kinds(), QStringList({"regular-maintenance"}));
  EXPECT_EQ(settings.PrevNextEventDates().second, QDate(2020, 2, 2));
}

} // namespace
