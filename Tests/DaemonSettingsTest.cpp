#include "Support/Processes.h"
#include "Support/Programs.h"
#include <Common/DaemonSettings.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTranslator>

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <limits>
#include <memory>
#include <sys/file.h>
#include <sys/wait.h>
#include <type_traits>
#include <unistd.h>
#include <vector>

using namespace Tavrik::Cleaner;
using testing::Contains;
using testing::IsEmpty;

namespace
{
bool stopsBeforeTheStoreIsReplaced = false; // the next time
}

// Takes the place of the C library's, for Qt and the library as well.
extern "C" __attribute__((visibility("default"))) int rename(const char* from, const char* to) noexcept
{
  const std::size_t length = std::strlen(to);
  if (stopsBeforeTheStoreIsReplaced && length > 5 && std::strcmp(to + length - 5, ".conf") == 0)
  {
    stopsBeforeTheStoreIsReplaced = false;
    raise(SIGSTOP);
  }
  return renameat(AT_FDCWD, from, AT_FDCWD, to);
}

namespace
{

using Dates = QPair<QDate, QDate>;

// The same store as another program would open it.
std::unique_ptr<QSettings> OpenStore()
{
  return std::make_unique<QSettings>(QStringLiteral("tavrik"), QStringLiteral("ostrel2.scheduler"));
}

QVariant Stored(const QString& key)
{
  return OpenStore()->value(key);
}

QList<QByteArray> StoreLines()
{
  QFile file(OpenStore()->fileName());
  return file.open(QIODevice::ReadOnly) ? file.readAll().split('\n') : QList<QByteArray>();
}

void Store(const QString& key, const QVariant& value)
{
  const auto store = OpenStore();
  store->setValue(key, value);
  store->sync();
}

// Runs the body in a process of its own; it succeeds when the body says so.
pid_t StartProcess(const std::function<bool()>& body)
{
  const pid_t child = fork();
  if (child == 0)
  {
    alarm(100);
    _exit(body() ? 0 : 1);
  }
  return child;
}

bool Succeeds(pid_t process)
{
  return WaitForEnd(process) == 0;
}

class Pipe
{
public:
  Pipe() { isOpen = pipe(ends) == 0; }
  ~Pipe()
  {
    close(ends[0]);
    close(ends[1]);
  }
  bool Put() { return isOpen && write(ends[1], "x", 1) == 1; }
  bool Take()
  {
    char byte = 0;
    return isOpen && read(ends[0], &byte, 1) == 1;
  }
  void CloseWriter()
  {
    close(ends[1]);
    ends[1] = -1;
  }

private:
  int ends[2] = {-1, -1};
  bool isOpen = false;
};

TEST(DaemonSettings, OfAFreshStoreAreTheDefaults)
{
  const DaemonSettings settings;
  EXPECT_TRUE(settings.GetNeedToWatchTrashFlag());
  EXPECT_TRUE(settings.GetNeedToWatchDiskSpaceFlag());
  EXPECT_TRUE(settings.GetNeedToWatchRAMFlag());
  EXPECT_TRUE(settings.GetNeedToRemindAboutRegularMaintenanceFlag());
  EXPECT_TRUE(settings.GetNeedToWatchApplicationRemoveFlag());
  EXPECT_EQ(settings.GetTrashSizeLimit(), 1000000000);
  EXPECT_EQ(settings.GetFreeDiskSpaceLimit(), 5000000000);
  EXPECT_EQ(settings.GetFreeRAMLimit(), 0.05f);
  EXPECT_EQ(settings.GetRegularMaintenanceRemindPeriod(), DaemonSettings::Monthly);
  EXPECT_EQ(settings.PrevNextEventDates(), Dates());
  EXPECT_THAT(OpenStore()->allKeys().filter(QStringLiteral("_")), IsEmpty());
}

TEST(DaemonSettings, ArePlainAndNotCopied)
{
  static_assert(!std::is_polymorphic<DaemonSettings>::value, "");
  static_assert(!std::is_copy_constructible<DaemonSettings>::value, "");
  static_assert(sizeof(DaemonSettings) == sizeof(QSettings), "");
}

TEST(DaemonSettings, KeysAreSpelledAsTheStoreHasThem)
{
  EXPECT_EQ(KeyNeedToWatchTrash, "NEED_TO_WATCH_TRASH");
  EXPECT_EQ(KeyNeedToWatchDiskSpace, "NEED_TO_WATCH_DISK_SPACE");
  EXPECT_EQ(KeyNeedToWatchRAM, "NEED_TO_WATCH_RAM");
  EXPECT_EQ(KeyNeedToRemindAboutRegularMaintenance, "NEED_TO_REMIND_ABOUT_REGULAR_MAINTENANCE");
  EXPECT_EQ(KeyTrashSizeLimit, "TRASH_SIZE_LIMIT");
  EXPECT_EQ(KeyFreeDiskSpaceLimit, "FREE_DISK_SPACE_LIMIT");
  EXPECT_EQ(KeyFreeRAMLimit, "FREE_RAM_LIMIT");
  EXPECT_EQ(KeyPreviousRegularMaintenanceEvent, "PREVIOUS_REGULAR_MAINTENANCE_EVENT");
  EXPECT_EQ(KeyNextRegularMaintenanceEvent, "NEXT_REGULAR_MAINTENANCE_EVENT");
  EXPECT_EQ(KeyregularMaintenanceRemindPeriod, "REGULAR_MAINTENANCE_REMIND_PERIOD");
  EXPECT_EQ(KeyCleanerPath, "CLEANER_PATH");
  EXPECT_EQ(KeyNeedToWatchApplicationRempve, "NEED_TO_WATCH_APPLICATION_REMOVE");
  EXPECT_EQ(KeyHelpUrl, "HELP_URL");
}

TEST(ApplicationId, IsAReverseDnsName)
{
  EXPECT_TRUE(QRegExp(QStringLiteral("[a-z]+(\\.[a-z]+){2,}")).exactMatch(applicationId));
}

TEST(DaemonSettings, SettersWriteEachFlagUnderItsKey)
{
  struct Row
  {
    QString key;
    void (DaemonSettings::*set)(bool);
    bool (DaemonSettings::*get)() const;
  };
  const std::vector<Row> rows = {
      {KeyNeedToWatchTrash, &DaemonSettings::SetNeedToWatchTrashFlag,
       &DaemonSettings::GetNeedToWatchTrashFlag},
      {KeyNeedToWatchDiskSpace, &DaemonSettings::SetNeedToWatchDiskSpaceFlag,
       &DaemonSettings::GetNeedToWatchDiskSpaceFlag},
      {KeyNeedToWatchRAM, &DaemonSettings::SetNeedToWatchRAMFlag, &DaemonSettings::GetNeedToWatchRAMFlag},
      {KeyNeedToRemindAboutRegularMaintenance, &DaemonSettings::SetNeedToRemindAboutRegularMaintenanceFlag,
       &DaemonSettings::GetNeedToRemindAboutRegularMaintenanceFlag},
      {KeyNeedToWatchApplicationRempve, &DaemonSettings::SetNeedToWatchApplicationRemoveFlag,
       &DaemonSettings::GetNeedToWatchApplicationRemoveFlag}};
  DaemonSettings settings;
  for (const Row& row : rows)
  {
    (settings.*row.set)(false);
    EXPECT_FALSE((settings.*row.get)()) << qPrintable(row.key);
    EXPECT_EQ(Stored(row.key), QVariant(false)) << qPrintable(row.key);
    (settings.*row.set)(true);
    EXPECT_TRUE((settings.*row.get)()) << qPrintable(row.key);
  }
}

TEST(DaemonSettings, TrashSizeLimitIsStoredAsText)
{
  DaemonSettings settings;
  settings.SetTrashSizeLimit(123);
  EXPECT_EQ(Stored(KeyTrashSizeLimit).type(), QVariant::String);
  EXPECT_EQ(Stored(KeyTrashSizeLimit), QVariant(QStringLiteral("123")));
  EXPECT_EQ(settings.GetTrashSizeLimit(), 123);
}

TEST(DaemonSettings, ByteLimitsHoldEvery64BitNumber)
{
  DaemonSettings settings;
  for (const long long bytes :
       {std::numeric_limits<long long>::min(), -1LL, 0LL, std::numeric_limits<long long>::max()})
  {
    settings.SetTrashSizeLimit(bytes);
    settings.SetFreeDiskSpaceLimit(bytes);
    EXPECT_EQ(settings.GetTrashSizeLimit(), bytes);
    EXPECT_EQ(settings.GetFreeDiskSpaceLimit(), bytes);
    EXPECT_EQ(Stored(KeyFreeDiskSpaceLimit), QVariant(QString::number(bytes)));
  }
}

TEST(DaemonSettings, LimitsThatAreNoNumbersReadAsZero)
{
  const DaemonSettings settings;
  for (const char* const text : {"much", "", "12 apples", "99999999999999999999"})
  {
    Store(KeyTrashSizeLimit, QString::fromLatin1(text));
    Store(KeyFreeDiskSpaceLimit, QString::fromLatin1(text));
    EXPECT_EQ(settings.GetTrashSizeLimit(), 0) << text;
    EXPECT_EQ(settings.GetFreeDiskSpaceLimit(), 0) << text;
  }
  Store(KeyFreeRAMLimit, QStringLiteral("much"));
  EXPECT_EQ(settings.GetFreeRAMLimit(), 0.0f);
}

TEST(DaemonSettings, RamLimitIsStoredAsTheTextOfItsFloat)
{
  DaemonSettings settings;
  settings.SetFreeRAMLimit(0.05f);
  EXPECT_EQ(Stored(KeyFreeRAMLimit).type(), QVariant::String);
  EXPECT_EQ(Stored(KeyFreeRAMLimit).toString(), QVariant(0.05f).toString());
  EXPECT_EQ(Stored(KeyFreeRAMLimit).toString(), "0.05000000074505806");
  EXPECT_EQ(settings.GetFreeRAMLimit(), 0.05f);
}

TEST(DaemonSettings, RamLimitIsNeitherClampedNorRounded)
{
  DaemonSettings settings;
  for (const float fraction : {-1.5f, 0.0f, 0.1f, 1e-30f, 3.4e38f})
  {
    settings.SetFreeRAMLimit(fraction);
    EXPECT_EQ(settings.GetFreeRAMLimit(), fraction);
  }
}

TEST(DaemonSettings, PeriodIsStoredAsItsNumber)
{
  DaemonSettings settings;
  settings.SetRegularMaintenanceRemindPeriod(DaemonSettings::Annually);
  EXPECT_EQ(Stored(KeyregularMaintenanceRemindPeriod).toString(), "5");
  EXPECT_EQ(settings.GetRegularMaintenanceRemindPeriod(), DaemonSettings::Annually);
}

TEST(DaemonSettings, StoredPeriodOutsideTheEnumerationIsReturnedAndIndexesNothing)
{
  const DaemonSettings settings;
  const QDate date(2017, 1, 31);
  for (const int number : {-1, 6, 7, 1000, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
  {
    Store(KeyregularMaintenanceRemindPeriod, number);
    const DaemonSettings::RemindPeriod period = settings.GetRegularMaintenanceRemindPeriod();
    EXPECT_EQ(static_cast<int>(period), number);
    EXPECT_TRUE(settings.RemindPeriodToString(period).isNull());
    EXPECT_EQ(settings.CalculateNextEventFromGiven(date, period), date);
  }
  Store(KeyregularMaintenanceRemindPeriod, QStringLiteral("often"));
  EXPECT_EQ(settings.GetRegularMaintenanceRemindPeriod(), DaemonSettings::Weekly);
}

TEST(DaemonSettings, PeriodTextsAreTheTableOfTheCalendar)
{
  const DaemonSettings settings;
  EXPECT_EQ(settings.RemindPeriodToString(DaemonSettings::Weekly), "Weekly");
  EXPECT_EQ(settings.RemindPeriodToString(DaemonSettings::EveryTwoWeeks), "Once in two weeks");
  EXPECT_EQ(settings.RemindPeriodToString(DaemonSettings::Monthly), "Monthly");
  EXPECT_EQ(settings.RemindPeriodToString(DaemonSettings::EveryThreeMonths), "Once in three months");
  EXPECT_EQ(settings.RemindPeriodToString(DaemonSettings::EverySixMonths), "Once in six months");
  EXPECT_EQ(settings.RemindPeriodToString(DaemonSettings::Annually), "Annualy");
  EXPECT_TRUE(settings.RemindPeriodToString(static_cast<DaemonSettings::RemindPeriod>(6)).isNull());
}

class AskedTranslator : public QTranslator
{
public:
  bool isEmpty() const override { return false; }
  QString translate(const char* context, const char* text, const char* note, int count) const override
  {
    return QStringLiteral("%1|%2|%3|%4").arg(context, text, note ? note : "none").arg(count);
  }
};

TEST(DaemonSettings, PeriodTextsAreTranslatedInTheirContext)
{
  AskedTranslator translator;
  QCoreApplication::installTranslator(&translator);
  const DaemonSettings settings;
  EXPECT_EQ(settings.RemindPeriodToString(DaemonSettings::Annually),
            "Tavrik::Ostrel::DaemonSettings|Annualy|none|-1");
}

TEST(DaemonSettings, NextEventIsThePeriodAwayInTheCalendar)
{
  const DaemonSettings settings;
  const auto next = [&](int year, int month, int day, DaemonSettings::RemindPeriod period)
  { return settings.CalculateNextEventFromGiven(QDate(year, month, day), period); };
  EXPECT_EQ(next(2017, 1, 31, DaemonSettings::Weekly), QDate(2017, 2, 7));
  EXPECT_EQ(next(2017, 12, 25, DaemonSettings::EveryTwoWeeks), QDate(2018, 1, 8));
  EXPECT_EQ(next(2017, 1, 31, DaemonSettings::Monthly), QDate(2017, 2, 28));
  EXPECT_EQ(next(2016, 11, 30, DaemonSettings::EveryThreeMonths), QDate(2017, 2, 28));
  EXPECT_EQ(next(2017, 8, 31, DaemonSettings::EverySixMonths), QDate(2018, 2, 28));
  EXPECT_EQ(next(2016, 2, 29, DaemonSettings::Annually), QDate(2017, 2, 28));
  EXPECT_EQ(next(2017, 1, 31, static_cast<DaemonSettings::RemindPeriod>(6)), QDate(2017, 1, 31));
}

TEST(DaemonSettings, NextEventOfNoDateIsNoDate)
{
  const DaemonSettings settings;
  for (int period = -1; period < 7; ++period)
    EXPECT_FALSE(
        settings.CalculateNextEventFromGiven(QDate(), static_cast<DaemonSettings::RemindPeriod>(period))
            .isValid());
}

TEST(DaemonSettings, DatesPastTheYear9999CountOnButStoreAsAnEmptyText)
{
  DaemonSettings settings;
  const QDate date = settings.CalculateNextEventFromGiven(QDate(9999, 12, 31), DaemonSettings::Weekly);
  EXPECT_EQ(date, QDate(10000, 1, 7));
  settings.SetPrevEventDate(QDate(9999, 12, 31));
  settings.SetNextEventDate(date);
  EXPECT_EQ(Stored(KeyPreviousRegularMaintenanceEvent).toString(), "9999-12-31");
  EXPECT_EQ(Stored(KeyNextRegularMaintenanceEvent).toString(), "");
  EXPECT_EQ(settings.PrevNextEventDates(), Dates());
}

TEST(DaemonSettings, EventAfterTheLastDateOfAllIsNeverBeforeIt)
{
  const DaemonSettings settings;
  const QDate last = QDate::fromJulianDay(784354017364);
  ASSERT_TRUE(last.isValid());
  for (int period = 0; period < 6; ++period)
  {
    const QDate next =
        settings.CalculateNextEventFromGiven(last, static_cast<DaemonSettings::RemindPeriod>(period));
    EXPECT_TRUE(!next.isValid() || next >= last) << period;
  }
}

TEST(DaemonSettings, DatesAreStoredAsIsoText)
{
  DaemonSettings settings;
  settings.SetPrevEventDate(QDate(2017, 1, 31));
  settings.SetNextEventDate(QDate(2017, 2, 28));
  EXPECT_EQ(Stored(KeyPreviousRegularMaintenanceEvent).toString(), "2017-01-31");
  EXPECT_EQ(Stored(KeyNextRegularMaintenanceEvent).toString(), "2017-02-28");
  EXPECT_EQ(settings.PrevNextEventDates(), Dates(QDate(2017, 1, 31), QDate(2017, 2, 28)));
}

TEST(DaemonSettings, NoNextDateIsStoredAsEmptyTextAndHidesThePreviousDate)
{
  DaemonSettings settings;
  settings.SetPrevEventDate(QDate(2017, 1, 31));
  settings.SetNextEventDate(QDate(2017, 2, 28));
  settings.SetNextEventDate(QDate());
  EXPECT_TRUE(OpenStore()->contains(KeyNextRegularMaintenanceEvent));
  EXPECT_EQ(Stored(KeyNextRegularMaintenanceEvent).toString(), "");
  EXPECT_EQ(settings.PrevNextEventDates(), Dates());
}

TEST(DaemonSettings, TextsOfDatesAreStoredAsGivenAndReadAsFarAsTheyAreDates)
{
  DaemonSettings settings;
  settings.SetPrevEventDate(QStringLiteral("yesterday"));
  settings.SetNextEventDate(QStringLiteral("2017-02-28"));
  EXPECT_EQ(Stored(KeyPreviousRegularMaintenanceEvent).toString(), "yesterday");
  EXPECT_EQ(settings.PrevNextEventDates(), Dates(QDate(), QDate(2017, 2, 28)));

  settings.SetPrevEventDate(QStringLiteral("2017-01-31"));
  settings.SetNextEventDate(QStringLiteral("2017-02-30"));
  EXPECT_EQ(settings.PrevNextEventDates(), Dates(QDate(2017, 1, 31), QDate()));

  settings.SetNextEventDate(QDate(2017, 2, 28));
  settings.SetPrevEventDate(QDate());
  EXPECT_EQ(settings.PrevNextEventDates(), Dates(QDate(), QDate(2017, 2, 28)));
}

TEST(DaemonSettings, WriteSettingsWritesAnyKey)
{
  DaemonSettings settings;
  settings.WriteSettings(KeyCleanerPath, QStringLiteral("/Applications/Ostrel.app"));
  const QString url = QStringLiteral("https://example.org/?a=1&b=%20;,\"x\"\n\u017e");
  settings.WriteSettings(KeyHelpUrl, url);
  EXPECT_EQ(Stored(KeyCleanerPath).toString(), "/Applications/Ostrel.app");
  const pid_t reader = StartProcess([&] { return Stored(KeyHelpUrl).toString() == url; });
  EXPECT_TRUE(Succeeds(reader));
}

TEST(DaemonSettings, OutsideTheUsersFolderNothingIsWritten)
{
  const QString file = QFileInfo(OpenStore()->fileName()).absoluteFilePath();
  EXPECT_TRUE(file.startsWith(QString::fromLocal8Bit(qgetenv("HOME")))) << qPrintable(file);
  DaemonSettings settings;
  settings.SetTrashSizeLimit(1);
  EXPECT_EQ(QDir(QFileInfo(file).path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
            QStringList(QFileInfo(file).fileName()));
}

QString StoreFolder()
{
  return QFileInfo(OpenStore()->fileName()).path();
}

QStringList StoreFiles()
{
  return QDir(StoreFolder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

void WriteStoreFile(const QByteArray& text)
{
  QDir().mkpath(StoreFolder());
  WriteText(OpenStore()->fileName(), text);
}

void CallAllGetters(const DaemonSettings& settings)
{
  settings.GetNeedToWatchTrashFlag();
  settings.GetNeedToWatchDiskSpaceFlag();
  settings.GetNeedToWatchRAMFlag();
  settings.GetNeedToRemindAboutRegularMaintenanceFlag();
  settings.GetNeedToWatchApplicationRemoveFlag();
  settings.GetTrashSizeLimit();
  settings.GetFreeDiskSpaceLimit();
  settings.GetFreeRAMLimit();
  settings.GetRegularMaintenanceRemindPeriod();
  settings.PrevNextEventDates();
  settings.RemindPeriodToString(DaemonSettings::Weekly);
  settings.CalculateNextEventFromGiven(QDate(2017, 1, 31), DaemonSettings::Weekly);
}

// Each number of free pages lets a write get further.
class FullDisk : public testing::TestWithParam<int>
{
};

TEST_P(FullDisk, KeepsWhatIsStoredWhateverIsReadAndAChangeUntilItCanBeWritten)
{
  if (!MountSmallDisk(StoreFolder()))
    GTEST_SKIP() << "The machine forbids to mount a disk";
  const qint64 page = 4096;
  {
    DaemonSettings settings;
    settings.SetTrashSizeLimit(7);
    settings.SetFreeDiskSpaceLimit(8);
  }
  const QByteArray stored = ReadText(OpenStore()->fileName());
  {
    DaemonSettings lost;
    FillDisk(StoreFolder(), 0);
    lost.SetTrashSizeLimit(99998);
  }
  DaemonSettings settings;
  FillDisk(StoreFolder(), GetParam() * page);
  settings.SetTrashSizeLimit(99999);
  EXPECT_EQ(settings.GetTrashSizeLimit(), 99999);
  const bool isStored = ReadText(OpenStore()->fileName()) != stored;
  for (int freePages = 0; freePages < 5 && !isStored; ++freePages)
  {
    FillDisk(StoreFolder(), freePages * page);
    CallAllGetters(settings);
    CallAllGetters(DaemonSettings());
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(ReadText(OpenStore()->fileName()), stored) << freePages;
    EXPECT_EQ(settings.GetTrashSizeLimit(), 99999) << freePages;
    EXPECT_EQ(DaemonSettings().GetTrashSizeLimit(), 7) << freePages;
  }
  QFile::remove(StoreFolder() + "/filler");
  settings.SetNeedToWatchRAMFlag(false);
  EXPECT_EQ(DaemonSettings().GetTrashSizeLimit(), 99999);
  EXPECT_EQ(DaemonSettings().GetFreeDiskSpaceLimit(), 8);
  EXPECT_FALSE(DaemonSettings().GetNeedToWatchRAMFlag());
  EXPECT_EQ(StoreFiles(), QStringList(QFileInfo(OpenStore()->fileName()).fileName()));
}

INSTANTIATE_TEST_SUITE_P(Pages, FullDisk, testing::Range(0, 6));

TEST(DaemonSettings, SaveReturnsWhetherAllIsStored)
{
  const QString file = OpenStore()->fileName();
  QDir().mkpath(file); // a folder in the file's place
  DaemonSettings settings;
  EXPECT_TRUE(settings.Save());
  settings.SetTrashSizeLimit(7);
  settings.SetFreeDiskSpaceLimit(8);
  EXPECT_FALSE(settings.Save());
  ASSERT_TRUE(QDir().rmdir(file));
  EXPECT_TRUE(settings.Save());
  EXPECT_THAT(StoreLines(), Contains("TRASH_SIZE_LIMIT=7"));
  EXPECT_THAT(StoreLines(), Contains("FREE_DISK_SPACE_LIMIT=8"));
}

TEST(DaemonSettings, StoppedWriterNeitherBlocksOthersNorUndoesTheirChanges)
{
  DaemonSettings().SetNeedToWatchRAMFlag(false);
  const pid_t stopped = StartProcess(
      []
      {
        stopsBeforeTheStoreIsReplaced = true;
        DaemonSettings settings;
        settings.SetTrashSizeLimit(5);
        return settings.GetTrashSizeLimit() == 5;
      });
  int status = 0;
  ASSERT_EQ(waitpid(stopped, &status, WUNTRACED), stopped);
  ASSERT_TRUE(WIFSTOPPED(status));
  const pid_t other = StartProcess(
      []
      {
        QElapsedTimer timer;
        timer.start();
        DaemonSettings().SetFreeDiskSpaceLimit(6);
        return timer.elapsed() < 30000 && DaemonSettings().GetFreeDiskSpaceLimit() == 6;
      });
  EXPECT_TRUE(WaitFor([other] { return waitpid(other, nullptr, WNOHANG | WNOWAIT) != 0; }));
  EXPECT_TRUE(Succeeds(other));
  kill(stopped, SIGCONT);
  EXPECT_TRUE(Succeeds(stopped));
  EXPECT_EQ(DaemonSettings().GetTrashSizeLimit(), 5);
  EXPECT_EQ(DaemonSettings().GetFreeDiskSpaceLimit(), 6);
  EXPECT_FALSE(DaemonSettings().GetNeedToWatchRAMFlag());
  EXPECT_EQ(StoreFiles().size(), 1) << StoreFiles().join(' ').toStdString();
}

TEST(DaemonSettings, KilledWriterLosesNothingAndLeavesNothingAfterTheNextWrite)
{
  DaemonSettings().SetFreeDiskSpaceLimit(6);
  const pid_t stopped = StartProcess(
      []
      {
        stopsBeforeTheStoreIsReplaced = true;
        DaemonSettings().SetTrashSizeLimit(5);
        return true;
      });
  int status = 0;
  ASSERT_EQ(waitpid(stopped, &status, WUNTRACED), stopped);
  kill(stopped, SIGKILL);
  EXPECT_FALSE(Succeeds(stopped));
  EXPECT_EQ(DaemonSettings().GetFreeDiskSpaceLimit(), 6);
  DaemonSettings().SetNeedToWatchRAMFlag(false);
  EXPECT_EQ(DaemonSettings().GetFreeDiskSpaceLimit(), 6);
  EXPECT_FALSE(DaemonSettings().GetNeedToWatchRAMFlag());
  EXPECT_EQ(StoreFiles().size(), 1) << StoreFiles().join(' ').toStdString();
}

TEST(DaemonSettings, NextWriteRestoresAFormerFileBesideACutOffOne)
{
  const QByteArray former = "[General]\nTRASH_SIZE_LIMIT=7\nFREE_DISK_SPACE_LIMIT=8\n";
  for (const char* const cutOff : {"", "[Gen", "[General]\nTRASH_SIZE_LI"})
    for (const QByteArray& whole : {former, former.trimmed()}) // the latter as by an editor
    {
      WriteStoreFile(cutOff);
      WriteText(OpenStore()->fileName() + ".former", whole);
      DaemonSettings().SetTrashSizeLimit(9);
      EXPECT_EQ(DaemonSettings().GetTrashSizeLimit(), 9) << cutOff;
      EXPECT_EQ(DaemonSettings().GetFreeDiskSpaceLimit(), 8) << cutOff;
      EXPECT_FALSE(QFile::exists(OpenStore()->fileName() + ".former")) << cutOff;
    }
}

TEST(DaemonSettings, NextWriteRemovesAFormerFileBesideAWholeOne)
{
  WriteStoreFile("[General]\nTRASH_SIZE_LIMIT=5\n");
  WriteText(OpenStore()->fileName() + ".former", "[General]\nTRASH_SIZE_LIMIT=7\nFREE_DISK_SPACE_LIMIT=8\n");
  DaemonSettings().SetNeedToWatchRAMFlag(false);
  EXPECT_EQ(DaemonSettings().GetTrashSizeLimit(), 5);
  EXPECT_EQ(DaemonSettings().GetFreeDiskSpaceLimit(), 5000000000);
  EXPECT_EQ(StoreFiles().size(), 1) << StoreFiles().join(' ').toStdString();
}

const QList<QByteArray> damagedStores = {"nonsense",
                                         "nonsense\n",
                                         "[General\nTRASH_SIZE_LIMIT=5\n",
                                         "[General]\nTRASH_SIZE_LIMIT=5\nFREE_DISK\n",
                                         QByteArray(100, '\0'),
                                         QByteArray("\0\xff[[[=\n]%x=\\x\n\"", 15).repeated(100)};

TEST(DaemonSettings, FirstWriteKeepsADamagedFile)
{
  const QString file = OpenStore()->fileName();
  int number = 0;
  for (const QByteArray& damaged : damagedStores)
  {
    WriteStoreFile(damaged);
    DaemonSettings().SetFreeRAMLimit(0.5F);
    DaemonSettings().SetNeedToWatchRAMFlag(false);
    ++number;
    const QString kept =
        file + (number == 1 ? QStringLiteral(".damaged") : QStringLiteral(".damaged.%1").arg(number));
    EXPECT_EQ(ReadText(kept), damaged);
    EXPECT_EQ(DaemonSettings().GetFreeRAMLimit(), 0.5F);
    EXPECT_EQ(StoreFiles().size(), 1 + number);
  }
}

TEST(DaemonSettings, IsDamagedReportsWhatIsNotASetting)
{
  EXPECT_FALSE(DaemonSettings().IsDamaged());
  for (const char* const sound :
       {"", "[General]\nTRASH_SIZE_LIMIT=5\n", "TRASH_SIZE_LIMIT=5", "; a remark\r\n\r\n[a]\r\nb = c\r\n",
        "HELP_URL=a\\\nb\n", "HELP_URL=\xc3\xa4\n", "CLEANER_PATH=\n"})
  {
    WriteStoreFile(sound);
    EXPECT_FALSE(DaemonSettings().IsDamaged()) << sound;
  }
  for (const QByteArray& damaged : damagedStores)
  {
    WriteStoreFile(damaged);
    EXPECT_TRUE(DaemonSettings().IsDamaged()) << damaged.constData();
  }
  DaemonSettings settings;
  settings.WriteSettings(KeyHelpUrl, QStringLiteral("a\nb\\\x01=[;\u017e\""));
  EXPECT_FALSE(settings.IsDamaged());
}

TEST(DaemonSettings, InvalidValuesReturnsTheStoredTexts)
{
  DaemonSettings settings;
  EXPECT_THAT(settings.InvalidValues(), IsEmpty());
  settings.SetNeedToWatchTrashFlag(false);
  settings.SetTrashSizeLimit(-5);
  settings.SetFreeRAMLimit(2);
  settings.SetNextEventDate(QDate());
  settings.SetPrevEventDate(QDate(2017, 1, 31));
  settings.SetRegularMaintenanceRemindPeriod(DaemonSettings::Annually);
  EXPECT_THAT(settings.InvalidValues(), IsEmpty());
  WriteStoreFile("[General]\nNEED_TO_WATCH_RAM=off\nTRASH_SIZE_LIMIT=garbage\nFREE_DISK_SPACE_LIMIT=\"1,5\"\n"
                 "FREE_RAM_LIMIT=nan\nNEXT_REGULAR_MAINTENANCE_EVENT=soon\n"
                 "REGULAR_MAINTENANCE_REMIND_PERIOD=6\nHELP_URL=7\n");
  const QMap<QString, QString> invalid{{KeyNeedToWatchRAM, "off"},
                                       {KeyTrashSizeLimit, "garbage"},
                                       {KeyFreeDiskSpaceLimit, "1,5"},
                                       {KeyFreeRAMLimit, "nan"},
                                       {KeyNextRegularMaintenanceEvent, "soon"},
                                       {KeyregularMaintenanceRemindPeriod, "6"}};
  EXPECT_EQ(settings.InvalidValues(), invalid);
  EXPECT_EQ(settings.GetTrashSizeLimit(), 0);
}

TEST(DaemonSettings, LinkToTheFileStaysALink)
{
  const QString target = QDir::homePath() + "/elsewhere.conf";
  WriteText(target, "[General]\nTRASH_SIZE_LIMIT=5\n");
  QDir().mkpath(StoreFolder());
  ASSERT_TRUE(QFile::link(target, OpenStore()->fileName()));
  ASSERT_TRUE(QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner));
  DaemonSettings().SetFreeDiskSpaceLimit(8);
  EXPECT_TRUE(QFileInfo(OpenStore()->fileName()).isSymLink());
  EXPECT_EQ(ReadText(target), "[General]\nFREE_DISK_SPACE_LIMIT=8\nTRASH_SIZE_LIMIT=5\n");
  EXPECT_EQ(QFile::permissions(target) & QFile::ReadOther, 0);
}

TEST(DaemonSettings, LinkToAFileThatIsNotThereYetStaysALink)
{
  const QString target = QDir::homePath() + "/elsewhere.conf";
  QDir().mkpath(StoreFolder());
  ASSERT_TRUE(QFile::link(target, OpenStore()->fileName()));
  DaemonSettings().SetFreeDiskSpaceLimit(8);
  EXPECT_TRUE(QFileInfo(OpenStore()->fileName()).isSymLink());
  EXPECT_EQ(ReadText(target), "[General]\nFREE_DISK_SPACE_LIMIT=8\n");
}

TEST(DaemonSettings, WriteLeavesAFolderWithASimilarNameAlone)
{
  const QString folder = OpenStore()->fileName() + ".new.mine";
  ASSERT_TRUE(QDir().mkpath(folder));
  DaemonSettings().SetTrashSizeLimit(6);
  EXPECT_TRUE(QFileInfo(folder).isDir());
}

TEST(DaemonSettings, ThatCannotBeWrittenAreKeptAndWrittenWhenTheyCan)
{
  const QString file = OpenStore()->fileName();
  QDir().mkpath(file); // a folder in the file's place
  DaemonSettings settings;
  settings.SetTrashSizeLimit(7);
  EXPECT_TRUE(QFileInfo(file).isDir());
  EXPECT_TRUE(settings.GetNeedToWatchRAMFlag());
  EXPECT_EQ(settings.GetTrashSizeLimit(), 7);

  ASSERT_TRUE(QDir().rmdir(file));
  settings.SetFreeDiskSpaceLimit(8);
  EXPECT_THAT(StoreLines(), Contains("TRASH_SIZE_LIMIT=7"));
}

TEST(DaemonSettings, AreWrittenIntoAStoreWhoseOtherLinesNobodyKeeps)
{
  const QString name = OpenStore()->fileName();
  QDir().mkpath(QFileInfo(name).path());
  QFile file(name);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("[General]\n; a remark\n\n\n; another\nTRASH_SIZE_LIMIT=5\n; and one more\n");
  file.close();
  DaemonSettings().SetTrashSizeLimit(7);
  EXPECT_EQ(DaemonSettings().GetTrashSizeLimit(), 7);
  EXPECT_THAT(StoreLines(), Contains("TRASH_SIZE_LIMIT=7"));
}

TEST(DaemonSettings, OfAGarbledStoreAreTheDefaults)
{
  const QString name = OpenStore()->fileName();
  QDir().mkpath(QFileInfo(name).path());
  QFile file(name);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(QByteArray("\0\xff[[[=\n]%x=\\x\n\"", 15).repeated(100));
  file.close();
  const DaemonSettings settings;
  EXPECT_TRUE(settings.GetNeedToWatchRAMFlag());
  EXPECT_EQ(settings.GetFreeDiskSpaceLimit(), 5000000000);
}

// The changes are of one length, and follow each other faster than a file's time of modification moves.
TEST(DaemonSettings, OfAnotherProcessAreSeenByTheNextReadAndKeptByTheNextWrite)
{
  Pipe asked;
  Pipe answered;
  const int rounds = 300;
  const pid_t other = StartProcess(
      [&]
      {
        DaemonSettings settings;
        for (int round = 0; round < rounds && asked.Take(); ++round)
        {
          settings.SetTrashSizeLimit(1000 + round);
          answered.Put();
        }
        return true;
      });
  answered.CloseWriter();

  DaemonSettings settings;
  EXPECT_EQ(settings.GetTrashSizeLimit(), 1000000000);
  int unseen = 0;
  int lost = 0;
  for (int round = 0; round < rounds; ++round)
  {
    asked.Put();
    ASSERT_TRUE(answered.Take());
    const bool isRead = round % 2 == 0;
    unseen += isRead && settings.GetTrashSizeLimit() != 1000 + round ? 1 : 0;
    settings.SetFreeDiskSpaceLimit(1000 + round);
    lost += StoreLines().contains("TRASH_SIZE_LIMIT=" + QByteArray::number(1000 + round)) ? 0 : 1;
  }
  EXPECT_EQ(unseen, 0);
  EXPECT_EQ(lost, 0);
  EXPECT_TRUE(Succeeds(other));
}

// By its time and size a reader tells whether a file has changed.
TEST(DaemonSettings, EachWriteLeavesATimeThatNoEarlierStateOfTheStoreHad)
{
  DaemonSettings settings;
  settings.SetTrashSizeLimit(1001);
  const QDateTime ahead = QDateTime::fromMSecsSinceEpoch(QDateTime::currentMSecsSinceEpoch() + 3600000);
  QFile file(OpenStore()->fileName());
  ASSERT_TRUE(file.open(QIODevice::ReadWrite));
  ASSERT_TRUE(file.setFileTime(ahead, QFileDevice::FileModificationTime));
  file.close();

  settings.SetTrashSizeLimit(1002);
  EXPECT_EQ(QFileInfo(file).lastModified(), ahead.addMSecs(1));
  settings.SetTrashSizeLimit(1003);
  EXPECT_EQ(QFileInfo(file).lastModified(), ahead.addMSecs(2));
}

// Every process looks into the file itself, past what QSettings remembers, for what it wrote before.
TEST(DaemonSettings, OfConcurrentWritersOfDifferentKeysNoneIsLost)
{
  const int writers = 6;
  const int rounds = 150;
  const auto line = [](int writer, int round)
  { return QStringLiteral("WRITER_%1=%2").arg(writer).arg(1000 + round).toLatin1(); };
  std::vector<pid_t> processes;
  for (int writer = 0; writer < writers; ++writer)
    processes.push_back(StartProcess(
        [=]
        {
          DaemonSettings settings;
          int lost = 0;
          for (int round = 0; round < rounds; ++round)
          {
            lost += round > 0 && !StoreLines().contains(line(writer, round - 1)) ? 1 : 0;
            settings.WriteSettings(QStringLiteral("WRITER_%1").arg(writer), 1000 + round);
          }
          return lost == 0;
        }));
  for (const pid_t process : processes)
    EXPECT_TRUE(Succeeds(process));
  for (int writer = 0; writer < writers; ++writer)
    EXPECT_THAT(StoreLines(), Contains(line(writer, rounds - 1)));
}

TEST(DaemonSettings, AreWrittenAlthoughAStoppedProcessHoldsTheLock)
{
  const QString folder = QFileInfo(OpenStore()->fileName()).path();
  QDir().mkpath(folder);
  const int holder = open(QFile::encodeName(folder).constData(), O_RDONLY);
  ASSERT_EQ(flock(holder, LOCK_EX), 0);
  QElapsedTimer timer;
  timer.start();
  DaemonSettings settings;
  settings.SetTrashSizeLimit(5);
  EXPECT_GE(timer.elapsed(), 5000);
  EXPECT_LT(timer.elapsed(), 30000);
  EXPECT_EQ(settings.GetTrashSizeLimit(), 5);
  close(holder);
}

} // namespace
