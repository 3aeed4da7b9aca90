// Drives "ostrel settings" over a store of the test's own.

#include "ExitCodes.h"
#include "Support/Copies.h"
#include "Support/HostProcess.h"
#include "Support/Programs.h"
#include "Support/PseudoTerminal.h"

#include <Common/DaemonSettings.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

#include <sys/stat.h>

using namespace Ostrel;
using namespace Tavrik::Cleaner;

namespace
{

Outcome RunSettings(const QStringList& arguments)
{
  return RunHost(QStringLiteral(OSTREL), QStringList{"settings"} + arguments);
}

QByteArray Get(const QString& name)
{
  return RunSettings({"get", name}).out.trimmed();
}

QJsonObject List()
{
  return QJsonDocument::fromJson(RunSettings({"list", "--json"}).out).object();
}

QString GetStorePath()
{
  return QSettings("tavrik", "ostrel2.scheduler").fileName();
}

struct Row
{
  const char* name;
  const QString* key;
  const char* fallback;
  QList<QPair<const char*, const char*>> values; // what is set, what is then read
  QStringList wrong;
};

const QList<Row>& GetRows()
{
  static const QStringList noFlags{"", "maybe", "2", "on "};
  static const QStringList noSizes{"",
                                   "-1",
                                   "1.5",
                                   "2GB",
                                   "2 PB",
                                   "2 GB\n",
                                   "x GB",
                                   " GB",
                                   "9223372036854775808",
                                   "99999999999 GB",
                                   "99999999999999999999 bytes"};
  static const QStringList noDates{"", "2026-02-30", "2026-1-1", "tomorrow", "2026-01-01T10:00"};
  static const QList<QPair<const char*, const char*>> flags{{"off", "off"},  {"TRUE", "on"}, {"no", "off"},
                                                            {"yes", "on"},   {"0", "off"},   {"1", "on"},
                                                            {"false", "off"}};
  static const QList<QPair<const char*, const char*>> sizes{{"0", "0"},
                                                            {"2 GB", "2000000000"},
                                                            {"1,5 MB", "1500000"},
                                                            {"12 bytes", "12"},
                                                            {"2 TB", "2000000000000"},
                                                            {"1.5 kB", "1500"},
                                                            {"9223372036854775807", "9223372036854775807"}};
  static const QList<Row> rows{
      {"watch-trash", &KeyNeedToWatchTrash, "on", flags, noFlags},
      {"watch-disk-space", &KeyNeedToWatchDiskSpace, "on", flags, noFlags},
      {"watch-ram", &KeyNeedToWatchRAM, "on", flags, noFlags},
      {"watch-application-remove", &KeyNeedToWatchApplicationRempve, "on", flags, noFlags},
      {"remind", &KeyNeedToRemindAboutRegularMaintenance, "on", flags, noFlags},
      {"trash-size-limit", &KeyTrashSizeLimit, "1000000000", sizes, noSizes},
      {"free-disk-space-limit", &KeyFreeDiskSpaceLimit, "5000000000", sizes, noSizes},
      {"free-ram-limit",
       &KeyFreeRAMLimit,
       "0.05",
       {{"0.1", "0.1"}, {"10%", "0.1"}, {"2,5 %", "0.025"}, {"0", "0"}, {"1", "1"}},
       {"", "1.1", "101%", "-0.1", "nan", "inf", "1e-2", "%"}},
      {"next-event", &KeyNextRegularMaintenanceEvent, "none", {{"2026-12-31", "2026-12-31"}}, noDates},
      {"previous-event",
       &KeyPreviousRegularMaintenanceEvent,
       "none",
       {{"2026-02-28", "2026-02-28"}},
       noDates},
      {"remind-period",
       &KeyregularMaintenanceRemindPeriod,
       "monthly",
       {{"weekly", "weekly"}, {"1", "every-two-weeks"}, {"Annually", "annually"}},
       {"", "6", "-1", "daily"}},
      {"cleaner-path",
       &KeyCleanerPath,
       "",
       {{"/Applications/Ä b.app", "/Applications/Ä b.app"}},
       {"", "relative"}},
      {"help-url",
       &KeyHelpUrl,
       "",
       {{"https://example.org/a?b=c", "https://example.org/a?b=c"}},
       {"", "nowhere", "http://[x"}},
  };
  return rows;
}

TEST(Settings, AreAllListedWithTheirDefaultsAndTheNextReminder)
{
  const Outcome outcome = RunSettings({"list"});
  EXPECT_EQ(outcome.code, Done);
  EXPECT_EQ(outcome.out.count('\n'), 1 + GetRows().size() + 1);
  const QJsonObject list = List();
  EXPECT_EQ(list.keys(), (QStringList{"countedFrom", "nextReminder", "settings"}));
  const QJsonArray settings = list["settings"].toArray();
  ASSERT_EQ(settings.size(), GetRows().size());
  QStringList keys;
  for (const QJsonValue& setting : settings)
  {
    EXPECT_EQ(setting.toObject().keys(), (QStringList{"default", "key", "name", "value"}));
    EXPECT_EQ(setting["value"], setting["default"]);
    keys.append(setting["key"].toString());
  }
  for (const Row& row : GetRows())
    EXPECT_TRUE(keys.contains(*row.key)) << row.name;
}

TEST(Settings, AreSetReadAndUnsetByNameAndByKey)
{
  for (const Row& row : GetRows())
  {
    SCOPED_TRACE(row.name);
    if (*row.key == KeyNextRegularMaintenanceEvent)
      RunSettings({"unset", row.name});
    EXPECT_EQ(Get(row.name), row.fallback);
    for (const auto& value : row.values)
    {
      const Outcome outcome = RunSettings({"set", row.name, QString::fromUtf8(value.first)});
      EXPECT_EQ(outcome.code, Done) << outcome.err.toStdString();
      EXPECT_EQ(outcome.out + outcome.err, "");
      EXPECT_EQ(Get(*row.key), value.second);
    }
    EXPECT_EQ(RunSettings({"unset", *row.key}).code, Done);
    EXPECT_EQ(Get(row.name), row.fallback);
    // Without a next event no previous one is read.
    RunSettings({"set", "next-event", "2026-12-31"});
  }
}

TEST(Settings, AcceptWhatIsListedInTheUsersLanguage)
{
  const QByteArray before = qgetenv("LC_ALL");
  qputenv("LC_ALL", "de_DE.UTF-8");
  qunsetenv("LANGUAGE");
  const QList<QPair<const char*, QPair<const char*, const char*>>> values{
      {"remind", {"aus", "off"}},          {"remind", {"an", "on"}},
      {"free-ram-limit", {"7 %", "0.07"}}, {"trash-size-limit", {"12 Byte", "12"}},
      {"next-event", {"keine", "none"}},   {"remind-period", {"J\xC3\xA4hrlich", "annually"}},
      {"help-url", {"none", ""}}};
  for (const auto& value : values)
  {
    const Outcome outcome = RunSettings({"set", value.first, QString::fromUtf8(value.second.first)});
    EXPECT_EQ(outcome.code, Done) << outcome.err.toStdString();
    EXPECT_EQ(Get(value.first), value.second.second) << value.first;
  }
  qputenv("LC_ALL", before);
}

TEST(Settings, RefuseWrongValuesAndKeepTheOldOnes)
{
  for (const Row& row : GetRows())
    for (const QString& wrong : row.wrong)
    {
      const Outcome outcome = RunSettings({"set", row.name, "--", wrong});
      EXPECT_EQ(outcome.code, WrongUsage) << row.name << ": " << wrong.toStdString();
      EXPECT_FALSE(outcome.err.isEmpty());
      EXPECT_EQ(outcome.out, "");
    }
  EXPECT_FALSE(QFileInfo::exists(GetStorePath()));
  EXPECT_EQ(RunSettings({"set", "nonsense", "1"}).code, WrongUsage);
  EXPECT_EQ(RunSettings({"get", "x\n"}).err,
            "ostrel: there is no setting \"x\\n\"; \"settings list\" names them\n");
  EXPECT_EQ(RunSettings({"unset"}).code, WrongUsage);
  EXPECT_EQ(RunSettings({"unset", "remind", "--all"}).code, WrongUsage);
}

TEST(Settings, AreWhatTheLibraryReads)
{
  RunSettings({"set", "trash-size-limit", "3 GB"});
  RunSettings({"set", "free-ram-limit", "25%"});
  RunSettings({"set", "remind-period", "every-six-months"});
  const DaemonSettings settings;
  EXPECT_EQ(settings.GetTrashSizeLimit(), 3000000000);
  EXPECT_EQ(settings.GetFreeRAMLimit(), 0.25F);
  EXPECT_EQ(settings.GetRegularMaintenanceRemindPeriod(), DaemonSettings::EverySixMonths);
}

TEST(Settings, GarbageInTheStoreIsShownAsTheLibraryReadsIt)
{
  DaemonSettings settings;
  settings.WriteSettings(KeyTrashSizeLimit, "a lot");
  settings.WriteSettings(KeyFreeDiskSpaceLimit, "-7");
  settings.WriteSettings(KeyFreeRAMLimit, "nan");
  settings.WriteSettings(KeyregularMaintenanceRemindPeriod, 77);
  settings.WriteSettings(KeyNextRegularMaintenanceEvent, "soon");
  settings.WriteSettings(KeyHelpUrl, "\x1B[31m\n");
  EXPECT_EQ(Get("trash-size-limit"), "0");
  EXPECT_EQ(Get("free-disk-space-limit"), "-7");
  EXPECT_EQ(Get("remind-period"), "77");
  EXPECT_EQ(Get("next-event"), "none");
  EXPECT_EQ(Get("help-url"), "\\u001b[31m\\n");
  const QJsonObject list = List();
  EXPECT_EQ(list["settings"].toArray().size(), GetRows().size());
  EXPECT_TRUE(list["nextReminder"].isNull());
  const QByteArray human = RunSettings({"list"}).out;
  EXPECT_TRUE(human.contains("77 (no period)"));
  EXPECT_TRUE(human.endsWith("\nNo reminder.\n"));
}

TEST(Settings, TextThatIsNoValueIsReportedWithWhatIsStored)
{
  DaemonSettings settings;
  settings.WriteSettings(KeyTrashSizeLimit, "garbage");
  settings.WriteSettings(KeyNeedToWatchRAM, "off\x1B");
  const QByteArray human = RunSettings({"list"}).out;
  EXPECT_TRUE(human.contains("(stored: garbage)")) << human.toStdString();
  EXPECT_TRUE(human.contains("(stored: \"off\\u001b\")")) << human.toStdString();
  EXPECT_EQ(human.count("(stored: "), 2);
  QStringList stored;
  for (const QJsonValue& setting : List()["settings"].toArray())
    if (setting.toObject().contains("stored"))
      stored.append(setting["name"].toString() + '=' + setting["stored"].toString());
  EXPECT_EQ(stored, QStringList({"watch-ram=off\x1B", "trash-size-limit=garbage"}));
  const Outcome get = RunSettings({"get", "trash-size-limit"});
  EXPECT_EQ(get.out, "0\n");
  EXPECT_EQ(get.err, "ostrel: TRASH_SIZE_LIMIT is stored as garbage, which is not a value for it\n");
  EXPECT_EQ(RunSettings({"get", "free-disk-space-limit"}).err, "");
}

TEST(Settings, DamagedFileIsReportedAndKept)
{
  const QByteArray name = GetStorePath().toUtf8();
  QDir().mkpath(QFileInfo(GetStorePath()).path());
  WriteText(GetStorePath(), "garbage");
  EXPECT_EQ(RunSettings({"list"}).err,
            "ostrel: " + name +
                " is damaged; the next change keeps it with \".damaged\" after its "
                "name\n");
  EXPECT_EQ(RunSettings({"set", "remind", "perhaps"}).code, WrongUsage);
  EXPECT_EQ(ReadText(GetStorePath()), "garbage");
  const Outcome set = RunSettings({"set", "remind", "off"});
  EXPECT_EQ(set.code, Done);
  EXPECT_EQ(set.err, "ostrel: " + name + " was damaged; it is kept with \".damaged\" after its name\n");
  EXPECT_EQ(ReadText(GetStorePath() + ".damaged"), "garbage");
  EXPECT_EQ(RunSettings({"list"}).err,
            "ostrel: the settings were damaged; what they were is in " + name + ".damaged\n");
  EXPECT_EQ(RunSettings({"set", "remind", "on"}).err, "");
}

TEST(Settings, ChangeThatFindsTheDiskFullEndsWithNotPermitted)
{
  const QString folder = QFileInfo(GetStorePath()).path();
  if (!MountSmallDisk(folder))
    GTEST_SKIP() << "The machine forbids to mount a disk";
  EXPECT_EQ(RunSettings({"set", "trash-size-limit", "7"}).code, Done);
  int refused = 0;
  for (int freePages = 0; freePages < 6; ++freePages)
  {
    FillDisk(folder, freePages * 4096);
    const QByteArray before = ReadText(GetStorePath());
    const Outcome outcome = RunSettings({"set", "trash-size-limit", QString::number(10 + freePages)});
    const bool isStored = Get("trash-size-limit") == QByteArray::number(10 + freePages);
    EXPECT_EQ(outcome.code, isStored ? Done : NotPermitted) << freePages;
    EXPECT_EQ(outcome.err.contains("the settings cannot be written"), !isStored) << outcome.err.toStdString();
    if (!isStored)
    {
      ++refused;
      EXPECT_EQ(ReadText(GetStorePath()), before) << freePages;
    }
  }
  EXPECT_GT(refused, 0);
  QFile::remove(folder + "/filler");
  EXPECT_EQ(RunSettings({"unset", "trash-size-limit"}).code, Done);
}

TEST(Settings, NextReminderIsCountedFromThePreviousOne)
{
  RunSettings({"set", "next-event", "2017-02-20"});
  RunSettings({"set", "previous-event", "2017-01-31"});
  EXPECT_EQ(List()["nextReminder"].toString(), "2017-02-28");
  EXPECT_TRUE(RunSettings({"list"}).out.endsWith("Next reminder: 2017-02-28, counted from 2017-01-31.\n"));
  RunSettings({"set", "remind", "off"});
  EXPECT_TRUE(List()["nextReminder"].isNull());
}

TEST(Settings, AllAreUnsetOnlyWhenSomebodySaysYes)
{
  const auto change = [] { EXPECT_EQ(RunSettings({"set", "remind", "off"}).code, Done); };
  change();
  EXPECT_EQ(RunSettings({"unset", "--all"}).code, NothingToDo);
  EXPECT_EQ(Get("remind"), "off");
  for (const auto& [answer, code] : {std::make_pair("no\n", NothingToDo), std::make_pair("Yes\n", Done)})
  {
    PseudoTerminal terminal(80, QStringLiteral(OSTREL), {"settings", "unset", "--all"});
    ASSERT_TRUE(terminal.WaitForText("[yes/no]"));
    terminal.Type(answer);
    EXPECT_EQ(terminal.Finish(), code);
    EXPECT_EQ(Get("remind"), code == Done ? "on" : "off");
  }
  change();
  EXPECT_EQ(RunSettings({"unset", "--all", "--yes"}).code, Done);
  EXPECT_EQ(Get("remind"), "on");
}

TEST(Settings, StoreThatCannotBeWrittenLosesNothing)
{
  EXPECT_EQ(RunSettings({"set", "trash-size-limit", "7"}).code, Done);
  const QByteArray before = ReadText(GetStorePath());
  const QByteArray folder = QFile::encodeName(QFileInfo(GetStorePath()).path());
  CopyForOthers({OSTREL, commonLibrary});
  BecomeUser();
  ASSERT_EQ(chmod(QFile::encodeName(GetStorePath()).constData(), 0400), 0);
  ASSERT_EQ(chmod(folder.constData(), 0500), 0);
  for (const QStringList& verb :
       {QStringList{"set", "trash-size-limit", "8"}, QStringList{"unset", "trash-size-limit"}})
  {
    const Outcome outcome = RunSettings(verb);
    EXPECT_EQ(outcome.code, NotPermitted);
    EXPECT_TRUE(outcome.err.contains("the settings cannot be written")) << outcome.err.toStdString();
  }
  EXPECT_EQ(Get("trash-size-limit"), "7");
  EXPECT_EQ(ReadText(GetStorePath()), before);
  chmod(folder.constData(), 0700);
}

} // namespace
