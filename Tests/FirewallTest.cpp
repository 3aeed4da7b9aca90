#include <Common/Firewall.cpp>
#include <Common/Platform/PrivilegedLauncher.h>

#include "Support/Copies.h"
#include "Support/FakeFirewall.h"
#include "Support/LogCapture.h"
#include "Support/Programs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QMetaProperty>
#include <QProcess>
#include <QResource>
#include <QSignalSpy>

#include <csignal>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <sys/resource.h>
#include <tuple>

using namespace Tavrik;
using Cleaner::applicationId;
using Cleaner::filewallFileName;
using Cleaner::Firewall;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{

const QString toolAtLoadTime = filewallFileName;
const QString transcripts = QStringLiteral(TAVRIK_TRANSCRIPTS "/socketfilterfw/");

using Words = std::vector<std::string>;

Words ToWords(const QStringList& list)
{
  Words words;
  for (const QString& text : list)
    words.push_back(text.toStdString());
  return words;
}

std::vector<bool> Emitted(const QSignalSpy& spy)
{
  std::vector<bool> values;
  for (const QList<QVariant>& arguments : spy)
    values.push_back(arguments.first().toBool());
  return values;
}

class FirewallTest : public testing::Test
{
protected:
  void SetUp() override
  {
    ASSERT_TRUE(QDir().mkpath(Path("Scripts")));
    ASSERT_TRUE(QDir().mkpath(Path("launchers")));
    CopyForOthers({FakeFirewall::program});
    tool = std::make_unique<FakeFirewall>(Path("tool"));
    filewallFileName = tool->Path();
    launchers = QFile::encodeName(Path("launchers"));
    Platform::launcherFolders = launchers.constData();
    WriteProgram(Path("launchers/sudo"), "shift\nexec \"$@\"\n");
    // Tells its arguments and does nothing.
    RegisterScript("#!/bin/sh\nprintf '%s\\0' \"$@\" >'" + Path("arguments.new").toUtf8() + "'\nmv '" +
                   Path("arguments.new").toUtf8() + "' '" + Path("arguments").toUtf8() + "'\n");
  }

  void TearDown() override
  {
    UnregisterScript();
    tool.reset();
    QDir(folder).removeRecursively();
  }

  QString Path(const char* name) const { return folder + QLatin1Char('/') + QLatin1String(name); }
  static QString ScriptPath()
  {
    return QDir::tempPath() + "/" + applicationId + ".fw." + QString::number(getpid());
  }

  void RegisterScript(const QByteArray& text)
  {
    UnregisterScript();
    script = text;
    WriteText(Path("Scripts/Firewall"), text);
    WriteText(Path("Scripts.qrc"),
              "<RCC><qresource prefix=\"/\"><file>Scripts/Firewall</file></qresource></RCC>");
    ASSERT_EQ(0, QProcess::execute(TAVRIK_RCC, {"-binary", Path("Scripts.qrc"), "-o", Path("Scripts.rcc")}));
    ASSERT_TRUE(QResource::registerResource(Path("Scripts.rcc")));
  }
  void UnregisterScript() { QResource::unregisterResource(Path("Scripts.rcc")); }

  // A bundle is a folder.
  QString AddBundle(const char* name)
  {
    EXPECT_TRUE(QDir().mkpath(Path(name)));
    return Path(name);
  }

  void Store(const QList<QPair<QString, bool>>& applications)
  {
    FakeFirewall::State state;
    for (const auto& application : applications)
      state.applications.append({application.first.toUtf8(), application.second});
    tool->Set(state);
  }

  // What the script was told by the last Save().
  Words TakeArguments()
  {
    EXPECT_TRUE(WaitFor([&] { return QFile::exists(Path("arguments")); })) << "the script was not run";
    QList<QByteArray> fields = ReadText(Path("arguments")).split('\0');
    fields.removeLast();
    QFile::remove(Path("arguments"));
    Words words;
    for (const QByteArray& field : fields)
      words.push_back(field.toStdString());
    return words;
  }

  // Another tool, that says what it is given, whatever it is asked.
  void Answer(const char* question, const QByteArray& text) { WriteText(Path("said") + question, text); }
  void UseAnswers()
  {
    WriteProgram(Path("speaker"), "echo \"$*\" >>\"${0%/*}/questions\"\ncat \"${0%/*}/said$1\"\n");
    filewallFileName = Path("speaker");
  }
  Firewall::Impl& ReadList(const QByteArray& output)
  {
    Answer("--listapps", output);
    UseAnswers();
    impl = std::make_unique<Firewall::Impl>();
    impl->UpdateInfo();
    return *impl;
  }

  const QString folder = QDir::tempPath() + QStringLiteral("/firewall");
  QByteArray launchers;
  QByteArray script;
  std::unique_ptr<FakeFirewall> tool;
  std::unique_ptr<Firewall::Impl> impl;
};

Words BlockedOf(const Firewall::Impl& impl)
{
  Words blocked;
  for (auto info = impl.current.infos.begin(); info != impl.current.infos.end(); ++info)
    if (info->isBlocked)
      blocked.push_back(info.key().toStdString());
  return blocked;
}

} // namespace

/// @name Reading
/// @{

TEST_F(FirewallTest, TheToolIsTheSystems)
{
  EXPECT_EQ("/usr/libexec/ApplicationFirewall/socketfilterfw", toolAtLoadTime);
}

TEST_F(FirewallTest, TheMetaObjectHasTheSignalAndTheReadOnlyProperty)
{
  const QMetaObject& meta = Firewall::staticMetaObject;
  EXPECT_STREQ("Tavrik::Cleaner::Firewall", meta.className());
  ASSERT_EQ(1, meta.propertyCount() - meta.propertyOffset());
  const QMetaProperty property = meta.property(meta.propertyOffset());
  EXPECT_STREQ("IsSaved", property.name());
  EXPECT_STREQ("bool", property.typeName());
  EXPECT_FALSE(property.isWritable());
  EXPECT_EQ("IsSavedChanged(bool)", property.notifySignal().methodSignature());
  ASSERT_EQ(1, meta.methodCount() - meta.methodOffset());
  EXPECT_EQ(QMetaMethod::Signal, meta.method(meta.methodOffset()).methodType());

  const Firewall firewall(nullptr);
  EXPECT_TRUE(firewall.property("IsSaved").toBool());
}

TEST_F(FirewallTest, AReadingAsksTheFiveQuestionsInOrder)
{
  UseAnswers();
  const Firewall firewall(nullptr);
  EXPECT_EQ("--listapps\n--getglobalstate\n--getblockall\n--getallowsigned\n--getstealthmode\n",
            ReadText(Path("questions")));
}

TEST_F(FirewallTest, AnEmptyListGivesNoApplicationsAndAnEmptyMap)
{
  Firewall::Impl& model = ReadList("");
  EXPECT_TRUE(model.current.applications.isEmpty());
  EXPECT_TRUE(model.current.infos.isEmpty());
  EXPECT_TRUE(model.IsSaved());
}

TEST_F(FirewallTest, AMissingToolReadsAsEverythingOffAndLogsNothing)
{
  filewallFileName = Path("nowhere");
  const LogCapture log;
  const Firewall firewall(nullptr);
  EXPECT_FALSE(firewall.IsEnabled() || firewall.GetBlockAll() || firewall.GetAllowSigned() ||
               firewall.GetStealthMode());
  EXPECT_TRUE(firewall.GetApplications().isEmpty());
  EXPECT_TRUE(firewall.IsSaved());
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(FirewallTest, ApplicationsAreReadInTheToolsOrderWithTheirBlocking)
{
  Store({{"/b/B b.app", true}, {"/a/A.app", false}, {"/usr/bin/tool", true}});
  const Firewall firewall(nullptr);
  EXPECT_THAT(ToWords(firewall.GetApplications()), ElementsAre("/b/B b.app", "/a/A.app", "/usr/bin/tool"));
  EXPECT_TRUE(firewall.IsApplicationBlocked("/b/B b.app"));
  EXPECT_FALSE(firewall.IsApplicationBlocked("/a/A.app"));
  EXPECT_TRUE(firewall.IsApplicationBlocked("/usr/bin/tool"));
  EXPECT_TRUE(firewall.IsSaved());
}

TEST_F(FirewallTest, BlockAnywhereInAStatusLineMarksTheApplicationBlocked)
{
  const Firewall::Impl& model =
      ReadList("header\n\n1 : /1\n( Block incoming connections )\n\n"
               "2 : /2\nunBlocked\n\n3 : /3\nblock\n\n4 : /4\nBLOCK\n\n5 : /5\nAllow\n");
  EXPECT_THAT(BlockedOf(model), ElementsAre("/1", "/2"));
  EXPECT_THAT(ToWords(model.current.applications), ElementsAre("/1", "/2", "/3", "/4", "/5"));
}

TEST_F(FirewallTest, APathBeginsOneCharacterBeforeItsFirstSlashAndIsTrimmed)
{
  const Firewall::Impl& model = ReadList("\n1 :\t/tab\t \nAllow\n\n2 :/close\nAllow\n\n/first\nAllow\n\n"
                                         " no slash here \nAllow\n\n3 : /two  blanks /x\nAllow\n");
  EXPECT_THAT(ToWords(model.current.applications),
              ElementsAre("/tab", ":/close", "/first", "no slash here", "/two  blanks /x"));
}

TEST_F(FirewallTest, ThePathAfterAStatusComesOnlyBehindABlankLine)
{
  const Firewall::Impl& model =
      ReadList("header /x\nmore\n\n\n\n1 : /1\n\n\nAllow\n2 : /2\nBlock\n\n3 : /3\nAllow\n\n4 : /4\n");
  EXPECT_THAT(ToWords(model.current.applications), ElementsAre("/1", "/3"));
  EXPECT_EQ(2, model.current.infos.size()) << "a path without a status is none";
}

TEST_F(FirewallTest, ALineBreakInAPathOfAClassicListMakesHalfOfItThePathAndTheRestItsStatus)
{
  const Firewall::Impl& model =
      ReadList("ALF: total number of apps = 2 \n\n1 :  /A\nBlock.app \n"
               " \t ( Allow incoming connections ) \n\n2 :  /B \n \t ( Allow ) \n\n");
  EXPECT_THAT(ToWords(model.current.applications), ElementsAre("/A", "/B"));
  EXPECT_THAT(BlockedOf(model), ElementsAre("/A"));
}

TEST_F(FirewallTest, APathThatComesTwiceIsListedTwiceAndKnownOnceByItsLastStatus)
{
  const Firewall::Impl& model = ReadList("\n1 : /1\nBlock\n\n2 : /1\nAllow\n");
  EXPECT_THAT(ToWords(model.current.applications), ElementsAre("/1", "/1"));
  EXPECT_EQ(1, model.current.infos.size());
  EXPECT_THAT(BlockedOf(model), IsEmpty());
}

TEST_F(FirewallTest, OldSystemsListBundlesOnlyAndStillKnowTheRest)
{
  Cleaner::Details::FirewallState state;
  Cleaner::ReadApplications("\n1 : /1.app\nBlock\n\n2 : /2\nBlock\n\n3 : /3.App\nAllow\n",
                            Cleaner::Listed::Bundles, &state);
  EXPECT_THAT(ToWords(state.applications), ElementsAre("/1.app"));
  EXPECT_EQ(3, state.infos.size());
  EXPECT_EQ(Cleaner::Listed::Everything, Cleaner::WhatThisSystemLists());
}

TEST_F(FirewallTest, TheSwitchesAreSubstringsOfTheAnswersInTheirCase)
{
  struct Row
  {
    const char* question;
    const char* text;
    bool (Firewall::*getter)() const;
    bool isOn;
  };
  const Row rows[] = {
      {"--getglobalstate", "x Firewall is enabled. (State = 1)\n", &Firewall::IsEnabled, true},
      {"--getglobalstate", "Firewall is disabled. (State = 0)", &Firewall::IsEnabled, false},
      {"--getglobalstate", "firewall is enabled", &Firewall::IsEnabled, false},
      {"--getblockall", "Firewall is set to block all non-essential", &Firewall::GetBlockAll, true},
      {"--getblockall", "Block all DISABLED! ", &Firewall::GetBlockAll, false},
      {"--getallowsigned", "built-in software ENABLED", &Firewall::GetAllowSigned, true},
      {"--getallowsigned", "one DISABLED, the other ENABLED", &Firewall::GetAllowSigned, true},
      {"--getallowsigned", "enabled", &Firewall::GetAllowSigned, false},
      {"--getstealthmode", "Stealth mode enabled", &Firewall::GetStealthMode, true},
      {"--getstealthmode", "Stealth mode ENABLED", &Firewall::GetStealthMode, false}};
  UseAnswers();
  for (const Row& row : rows)
  {
    Answer(row.question, row.text);
    const Firewall firewall(nullptr);
    EXPECT_EQ(row.isOn, (firewall.*row.getter)()) << row.question << ": " << row.text;
    QFile::remove(Path("said") + row.question);
  }
}

TEST_F(FirewallTest, ANewerToolTellsTheSameInItsOwnWords)
{
  for (int switches = 0; switches < 16; ++switches)
  {
    FakeFirewall::State state;
    state.isEnabled = (switches & 1) != 0;
    state.blockAll = (switches & 2) != 0;
    state.allowSigned = (switches & 4) != 0;
    state.stealthMode = (switches & 8) != 0;
    state.applications = {{"/b/Block b.app", false}, {"/a/A: a.app", true}, {"/usr/bin/tool", true}};
    tool->Set(state);
    QFile::remove(tool->Path() + ".newer");
    Firewall firewall(nullptr);
    const auto read = [&]
    {
      return std::make_tuple(firewall.IsEnabled(), firewall.GetBlockAll(), firewall.GetAllowSigned(),
                             firewall.GetStealthMode(), ToWords(firewall.GetApplications()));
    };
    const auto classic = read();
    EXPECT_EQ(classic, std::make_tuple(state.isEnabled, state.blockAll, state.allowSigned, state.stealthMode,
                                       Words{"/b/Block b.app", "/a/A: a.app", "/usr/bin/tool"}));
    tool->BecomeNewer();
    firewall.Undo();
    EXPECT_EQ(classic, read()) << switches;
    EXPECT_FALSE(firewall.IsApplicationBlocked("/b/Block b.app"));
    EXPECT_TRUE(firewall.IsApplicationBlocked("/a/A: a.app"));
    EXPECT_TRUE(firewall.IsApplicationBlocked("/usr/bin/tool"));
    EXPECT_TRUE(firewall.IsSaved());
  }
}

namespace
{

struct SystemAnswers
{
  const char* generation;
  std::vector<bool> switches; // enabled, block all, allow signed, stealth
  Words applications;
  Words blocked;
};

void PrintTo(const SystemAnswers& system, std::ostream* stream)
{
  *stream << system.generation;
}

const SystemAnswers systems[] = {
    {"10.11",
     {true, false, false, true},
     {"/Applications/Tea Timer.app", "/Applications/Block Party.app", "/usr/local/bin/beacon"},
     {"/usr/local/bin/beacon"}},
    {"10.14",
     {true, true, true, false},
     {"/Library/Tools/1.2/bin/lantern"},
     {"/Library/Tools/1.2/bin/lantern"}},
    {"15",
     {true, false, false, false},
     {"/usr/libexec/beacond", "/Library/Application Support/Acorn.localized/Agent.app/Contents/MacOS/agent",
      "/Applications/Block Party.app", "/Applications/Acme: Talk.app", "/Applications/お茶 (Tea).app"},
     {"/Applications/Acme: Talk.app",
      "/Library/Application Support/Acorn.localized/Agent.app/Contents/MacOS/agent"}},
    {"26",
     {true, true, true, true},
     {"/usr/libexec/beacond", "/usr/local/bin/lantern", "/Applications/Tea Timer.app", "/usr/local/bin/tool4",
      "/usr/local/bin/tool5", "/usr/local/bin/tool6", "/usr/local/bin/tool7", "/usr/local/bin/tool8",
      "/usr/local/bin/tool9", "/Applications/Tenth.app"},
     {"/Applications/Tenth.app", "/usr/local/bin/lantern"}}};

class FirewallGeneration : public FirewallTest, public testing::WithParamInterface<SystemAnswers>
{
};

std::string NameGeneration(const testing::TestParamInfo<SystemAnswers>& row)
{
  return QString(row.param.generation).replace('.', '_').toStdString();
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Systems, FirewallGeneration, testing::ValuesIn(systems), NameGeneration);

TEST_P(FirewallGeneration, IsReadInFull)
{
  WriteProgram(Path("system"), "cat '" TAVRIK_FIXTURES "/Firewall/" + QByteArray(GetParam().generation) +
                                   "'/\"${1#--}.txt\"\n");
  filewallFileName = Path("system");
  Firewall::Impl model;
  model.UpdateInfo();
  EXPECT_EQ(GetParam().switches, (std::vector<bool>{model.current.isEnabled, model.current.blockAll,
                                                    model.current.allowSigned, model.current.stealthMode}));
  EXPECT_EQ(GetParam().applications, ToWords(model.current.applications));
  EXPECT_EQ(GetParam().blocked, BlockedOf(model));
}

TEST_F(FirewallTest, TheRecordedListsOfEachGenerationAreReadInFull)
{
  if (!QDir(transcripts).exists())
    GTEST_SKIP() << "There are no transcripts in " << transcripts.toStdString();
  const auto list = [&](const char* name)
  { return ToWords(ReadList(ReadText(transcripts + name)).current.applications); };
  EXPECT_THAT(list("listapps-10.14-first-entry-only.txt"),
              ElementsAre("/Library/Java/JavaVirtualMachines/amazon-corretto-8.jdk/Contents/Home/bin/java"));
  EXPECT_THAT(BlockedOf(*impl), IsEmpty());
  EXPECT_THAT(
      list("listapps-15-fifteen-apps.txt"),
      ElementsAre("/usr/libexec/dhcp6d",
                  "/Library/Application Support/Logitech.localized/LogiOptionsPlus/logioptionsplus_agent.app/"
                  "Contents/MacOS/logioptionsplus_agent",
                  "/System/Library/CoreServices/UniversalControl.app/Contents/MacOS/UniversalControl",
                  "/System/Library/CoreServices/ControlCenter.app/Contents/MacOS/ControlCenter",
                  "/System/Library/PrivateFrameworks/ReplicatorCore.framework/Support/replicatord",
                  "/Applications/Google Chrome.app", "/Applications/Spotify.app", "/usr/libexec/rapportd",
                  "/usr/libexec/remoted", "/usr/bin/python3", "/usr/bin/ruby", "/usr/sbin/cupsd",
                  "/usr/libexec/sharingd", "/usr/libexec/sshd-keygen-wrapper", "/usr/sbin/smbd"));
  EXPECT_THAT(BlockedOf(*impl), IsEmpty());
  EXPECT_THAT(list("listapps-26-seven-apps.txt"),
              ElementsAre("/usr/libexec/remoted", "/usr/bin/python3", "/usr/bin/ruby", "/usr/sbin/cupsd",
                          "/usr/libexec/sharingd", "/usr/libexec/sshd-keygen-wrapper", "/usr/sbin/smbd"));
  EXPECT_THAT(BlockedOf(*impl), IsEmpty());
  EXPECT_EQ(7, impl->current.infos.size());
}

TEST_F(FirewallTest, TheRecordedSwitchesOfEachGenerationAreReadAsTheyStand)
{
  if (!QDir(transcripts).exists())
    GTEST_SKIP() << "There are no transcripts in " << transcripts.toStdString();
  using State = Cleaner::Details::FirewallState;
  using Switch = bool State::*;
  struct Row
  {
    const char* question;
    const char* file;
    Switch field;
    bool isOn;
  };
  const Row rows[] = {
      {"--getglobalstate", "getglobalstate-15-enabled.txt", &State::isEnabled, true},
      {"--getglobalstate", "getglobalstate-getblockall-14-disabled.txt", &State::isEnabled, false},
      {"--getblockall", "getglobalstate-getblockall-14-disabled.txt", &State::blockAll, false},
      {"--getglobalstate", "getglobalstate-26-block-all.txt", &State::isEnabled, true},
      {"--getblockall", "getglobalstate-26-block-all.txt", &State::blockAll, true},
      {"--getstealthmode", "getstealthmode-26-on.txt", &State::stealthMode, true},
      {"--getstealthmode", "setstealthmode-on.txt", &State::stealthMode, true},
      {"--getglobalstate", "setglobalstate-on.txt", &State::isEnabled, true},
      {"--getallowsigned", "setallowsigned-off.txt", &State::allowSigned, false},
      {"--getallowsigned", "setallowsignedapp-off.txt", &State::allowSigned, false},
      // Answers of settings and refusals, should they ever come to a question.
      {"--getglobalstate", "setglobalstate-refused-managed-mac.txt", &State::isEnabled, false},
      {"--getglobalstate", "set-refused-not-root-26.txt", &State::isEnabled, false},
      {"--getglobalstate", "setloggingmode-on.txt", &State::isEnabled, false},
      {"--getallowsigned", "add-already-listed.txt", &State::allowSigned, false},
      {"--getallowsigned", "unblockapp-permitted.txt", &State::allowSigned, false}};
  UseAnswers();
  std::set<QString> seen = {"listapps-10.14-first-entry-only.txt", "listapps-15-fifteen-apps.txt",
                            "listapps-26-seven-apps.txt"};
  for (const Row& row : rows)
  {
    const QByteArray text = ReadText(transcripts + row.file);
    ASSERT_FALSE(text.isEmpty()) << row.file;
    Answer(row.question, text);
    EXPECT_EQ(row.isOn, Cleaner::ReadState().*row.field) << row.file;
    QFile::remove(Path("said") + row.question);
    seen.insert(row.file);
  }
  for (const QString& file : QDir(transcripts).entryList(QDir::Files))
    EXPECT_EQ(1u, seen.count(file)) << "nobody looks at " << qPrintable(file);
}

/// @}
/// @name Comparing
/// @{

TEST_F(FirewallTest, TheReverseOrderComparesAsSaved)
{
  Firewall::Impl& model = ReadList("\n1 : /1\nAllow\n\n2 : /2\nAllow\n");
  std::reverse(model.current.applications.begin(), model.current.applications.end());
  EXPECT_TRUE(model.IsSaved());
  model.current.applications.append("/1");
  EXPECT_FALSE(model.IsSaved()) << "twice is not once";
}

TEST_F(FirewallTest, EveryFlagAndEverySwitchIsCompared)
{
  using Cleaner::Details::AppInfo;
  using Cleaner::Details::FirewallState;
  Firewall::Impl& model = ReadList("\n1 : /1\nAllow\n");
  using Flag = bool AppInfo::*;
  for (const Flag flag : {&AppInfo::isSaved, &AppInfo::isAdded, &AppInfo::isRemoved, &AppInfo::isBlocked})
  {
    bool& value = model.current.infos["/1"].*flag;
    value = !value;
    EXPECT_FALSE(model.IsSaved());
    value = !value;
    EXPECT_TRUE(model.IsSaved());
  }
  using Switch = bool FirewallState::*;
  for (const Switch flag : {&FirewallState::isEnabled, &FirewallState::blockAll, &FirewallState::allowSigned,
                            &FirewallState::stealthMode})
  {
    EXPECT_TRUE(model.Set(flag, true));
    EXPECT_FALSE(model.Set(flag, true));
    EXPECT_FALSE(model.IsSaved());
    EXPECT_TRUE(model.Set(flag, false));
    EXPECT_TRUE(model.IsSaved());
  }
}

TEST_F(FirewallTest, HasUnsavedAppsTellsOfAnyEntryThatIsNotSaved)
{
  Firewall::Impl& model = ReadList("\n1 : /1\nAllow\n");
  EXPECT_FALSE(model.HasUnsavedApps());
  model.Set(&Cleaner::Details::FirewallState::isEnabled, true);
  EXPECT_FALSE(model.HasUnsavedApps()) << "a switch is no application";
  model.Block("/1", true);
  EXPECT_TRUE(model.HasUnsavedApps());
}

/// @}
/// @name Editing
/// @{

TEST_F(FirewallTest, ASwitchSignalsWhatItMadeOfTheSavedState)
{
  Firewall firewall(nullptr);
  const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
  firewall.SetEnabled(true);
  firewall.SetBlockAll(true);
  firewall.SetAllowSigned(true);
  firewall.SetStealthMode(true);
  EXPECT_TRUE(firewall.IsEnabled() && firewall.GetBlockAll() && firewall.GetAllowSigned() &&
              firewall.GetStealthMode());
  firewall.SetEnabled(false);
  firewall.SetBlockAll(false);
  firewall.SetAllowSigned(false);
  firewall.SetStealthMode(false);
  EXPECT_THAT(Emitted(spy), ElementsAre(false, false, false, false, false, false, false, true));
}

TEST_F(FirewallTest, SettingTheCurrentStealthModeEmitsNothing)
{
  Firewall firewall(nullptr);
  const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
  firewall.SetStealthMode(firewall.GetStealthMode());
  EXPECT_EQ(0, spy.count());
}

TEST_F(FirewallTest, AskingForAnUnknownPathIsFalseAndTurnsTheModelUnsavedWithoutASignal)
{
  Firewall firewall(nullptr);
  const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
  EXPECT_FALSE(firewall.IsApplicationBlocked("/unknown"));
  EXPECT_FALSE(firewall.IsSaved());
  EXPECT_EQ(0, spy.count());
  EXPECT_TRUE(firewall.GetApplications().isEmpty());
  // A path that was merely asked for goes to the unblocked ones.
  ASSERT_TRUE(firewall.Save());
  EXPECT_THAT(TakeArguments(), ElementsAre("off", "off", "off", "off", "", "", "", "/unknown"));
  EXPECT_TRUE(firewall.IsSaved());
}

TEST_F(FirewallTest, UndoRestoresTheSystemsStateAndSignalsOnce)
{
  Store({{"/1.app", true}, {"/2", false}});
  const QString bundle = AddBundle("A.app");
  Firewall firewall(nullptr);
  const std::function<void()> edits[] = {[&] { firewall.SetEnabled(true); },
                                         [&] { EXPECT_TRUE(firewall.AddApplication(bundle, true)); },
                                         [&] { EXPECT_TRUE(firewall.RemoveApplication("/2")); },
                                         [&] { firewall.BlockApplication("/1.app", false); },
                                         [&] { firewall.BlockApplication("/unknown", true); },
                                         [&] { firewall.IsApplicationBlocked("/unknown"); }};
  for (const std::function<void()>& edit : edits)
  {
    edit();
    ASSERT_FALSE(firewall.IsSaved());
    const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
    firewall.Undo();
    EXPECT_THAT(Emitted(spy), ElementsAre(true));
    EXPECT_TRUE(firewall.IsSaved());
    EXPECT_FALSE(firewall.IsEnabled());
    EXPECT_THAT(ToWords(firewall.GetApplications()), ElementsAre("/1.app", "/2"));
    EXPECT_TRUE(firewall.IsApplicationBlocked("/1.app"));
  }
}

TEST_F(FirewallTest, UndoOfASavedModelReadsAnewAndIsSilent)
{
  Firewall firewall(nullptr);
  Store({{"/1.app", true}});
  const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
  firewall.Undo();
  EXPECT_THAT(ToWords(firewall.GetApplications()), ElementsAre("/1.app"));
  EXPECT_EQ(0, spy.count());
}

TEST_F(FirewallTest, AddingWhatIsNoBundleWarnsWithBothFormsOfThePath)
{
  ASSERT_TRUE(QDir().mkpath(Path("plain")));
  ASSERT_TRUE(QDir().mkpath(Path("A.APP")));
  AddBundle("B.app");
  ASSERT_TRUE(QDir::setCurrent(folder));
  Firewall firewall(nullptr);
  const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
  for (const char* path : {"plain", "A.APP", "missing.app", "B.app/"})
  {
    const LogCapture log;
    EXPECT_FALSE(firewall.AddApplication(path, true)) << path;
    EXPECT_THAT(log.Warnings(), ElementsAre("Can't add a path to the firewall: " + std::string(path) + " (" +
                                            folder.toStdString() + "/" + path + ")"));
  }
  const LogCapture log;
  EXPECT_FALSE(firewall.AddApplication(QStringLiteral("/a\nE \x1b.apt"), true));
  EXPECT_THAT(log.Warnings(), ElementsAre("Can't add a path to the firewall: /a\\nE \\x1b.apt "
                                          "(/a\\nE \\x1b.apt)"));
  EXPECT_EQ(0, spy.count());
  EXPECT_TRUE(firewall.IsSaved());
}

TEST_F(FirewallTest, ARelativePathIsAddedInItsAbsoluteForm)
{
  AddBundle("A.app");
  ASSERT_TRUE(QDir::setCurrent(folder));
  Firewall firewall(nullptr);
  EXPECT_TRUE(firewall.AddApplication("./x/../A.app", false));
  EXPECT_THAT(ToWords(firewall.GetApplications()), ElementsAre(Path("A.app").toStdString()));
}

TEST_F(FirewallTest, ANewBundleIsPassedToAddAndToUnblockOrBlock)
{
  const QString bundle = AddBundle("A.app");
  Firewall firewall(nullptr);
  const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
  ASSERT_TRUE(firewall.AddApplication(bundle, true));
  EXPECT_FALSE(firewall.IsApplicationBlocked(bundle)) << "the second argument is ignored";
  ASSERT_TRUE(firewall.Save());
  EXPECT_THAT(TakeArguments(),
              ElementsAre("off", "off", "off", "off", bundle.toStdString(), "", "", bundle.toStdString()));
  EXPECT_THAT(Emitted(spy), ElementsAre(false, true));

  const QString other = AddBundle("B.app");
  ASSERT_TRUE(firewall.AddApplication(other, false));
  firewall.BlockApplication(other, true);
  ASSERT_TRUE(firewall.Save());
  EXPECT_THAT(TakeArguments(),
              ElementsAre("off", "off", "off", "off", other.toStdString(), "", other.toStdString(), ""));
}

TEST_F(FirewallTest, AddingWhatIsListedCancelsAPendingChangeOfItsBlocking)
{
  const QString bundle = AddBundle("A.app");
  Store({{bundle, true}});
  Firewall firewall(nullptr);
  const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
  firewall.BlockApplication(bundle, false);
  EXPECT_TRUE(firewall.AddApplication(bundle, false));
  EXPECT_TRUE(firewall.IsApplicationBlocked(bundle));
  EXPECT_THAT(ToWords(firewall.GetApplications()), ElementsAre(bundle.toStdString()));
  EXPECT_THAT(Emitted(spy), ElementsAre(false, true));
}

TEST_F(FirewallTest, AddingWhatIsListedAndSavedStillSignals)
{
  const QString bundle = AddBundle("A.app");
  Store({{bundle, false}});
  Firewall firewall(nullptr);
  const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
  EXPECT_TRUE(firewall.AddApplication(bundle, false));
  EXPECT_THAT(Emitted(spy), ElementsAre(true));
}

TEST_F(FirewallTest, RemovingAndAddingAStoredBundleEndsSaved)
{
  const QString bundle = AddBundle("A.app");
  Store({{bundle, true}});
  Firewall firewall(nullptr);
  const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
  EXPECT_TRUE(firewall.RemoveApplication(bundle));
  EXPECT_TRUE(firewall.AddApplication(bundle, false));
  EXPECT_THAT(Emitted(spy), ElementsAre(false, true));
}

TEST_F(FirewallTest, RemovingWhatIsNotListedIsRefusedInSilence)
{
  Store({{"/1.app", false}});
  Firewall firewall(nullptr);
  const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
  EXPECT_FALSE(firewall.RemoveApplication("/1.APP"));
  EXPECT_FALSE(firewall.RemoveApplication("/2.app"));
  EXPECT_TRUE(firewall.IsSaved());
  EXPECT_EQ(0, spy.count());
}

TEST_F(FirewallTest, RemovingEveryOccurrenceOfAStoredApplicationPassesItOnce)
{
  Store({{"/1.app", true}, {"/2.app", false}, {"/1.app", true}});
  Firewall firewall(nullptr);
  EXPECT_TRUE(firewall.RemoveApplication("/1.app"));
  EXPECT_THAT(ToWords(firewall.GetApplications()), ElementsAre("/2.app"));
  ASSERT_TRUE(firewall.Save());
  EXPECT_THAT(TakeArguments(), ElementsAre("off", "off", "off", "off", "", "/1.app", "", ""))
      << "a removed one is neither blocked nor unblocked";
}

TEST_F(FirewallTest, RemovingWhatWasAddedInTheSessionPutsItInNoListAndLeavesTheModelUnsaved)
{
  const QString bundle = AddBundle("A.app");
  Firewall firewall(nullptr);
  ASSERT_TRUE(firewall.AddApplication(bundle, false));
  EXPECT_TRUE(firewall.RemoveApplication(bundle));
  EXPECT_FALSE(firewall.IsSaved()) << "its entry, now saved, differs from the looked-up one";
  EXPECT_TRUE(firewall.GetApplications().isEmpty());
  ASSERT_TRUE(firewall.Save());
  EXPECT_THAT(TakeArguments(), ElementsAre("off", "off", "off", "off", "", "", "", ""));
}

TEST_F(FirewallTest, BlockingAndUnblockingAStoredApplicationEndsSavedWithTwoSignals)
{
  Store({{"/1", false}});
  Firewall firewall(nullptr);
  const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
  firewall.BlockApplication("/1", true);
  firewall.BlockApplication("/1", true);
  firewall.BlockApplication("/1", false);
  EXPECT_THAT(Emitted(spy), ElementsAre(false, true));
}

TEST_F(FirewallTest, BlockingAnUnknownPathMakesAnEntryOfIt)
{
  Firewall firewall(nullptr);
  firewall.BlockApplication("/1", true);
  EXPECT_TRUE(firewall.GetApplications().isEmpty());
  ASSERT_TRUE(firewall.Save());
  EXPECT_THAT(TakeArguments(), ElementsAre("off", "off", "off", "off", "", "", "/1", ""));
}

TEST_F(FirewallTest, LeavingAnUnknownPathUnblockedInsertsItWithoutASignal)
{
  Firewall firewall(nullptr);
  const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
  firewall.BlockApplication("/1", false);
  EXPECT_EQ(0, spy.count());
  EXPECT_FALSE(firewall.IsSaved());
}

TEST_F(FirewallTest, AddBlockUnblockInOneSessionLeavesTheApplicationInNoListAndYetSaved)
{
  const QString bundle = AddBundle("A.app");
  Firewall firewall(nullptr);
  const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
  ASSERT_TRUE(firewall.AddApplication(bundle, false));
  firewall.BlockApplication(bundle, true);
  firewall.BlockApplication(bundle, false);
  firewall.SetEnabled(true);
  ASSERT_TRUE(firewall.Save());
  // Its entry counts as saved: the look-up of AddApplication has put an unblocked one among the stored.
  EXPECT_THAT(TakeArguments(), ElementsAre("on", "off", "off", "off", "", "", "", ""));
  EXPECT_TRUE(firewall.IsSaved());
  EXPECT_THAT(ToWords(firewall.GetApplications()), ElementsAre(bundle.toStdString()));
  EXPECT_THAT(Emitted(spy), ElementsAre(false, false, false, false, true));
}

/// @}
/// @name Saving
/// @{

TEST_F(FirewallTest, SavingNothingIsFalseAndRunsNothing)
{
  Firewall firewall(nullptr);
  const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
  WriteProgram(Path("launchers/sudo"), "exit 1\n");
  EXPECT_FALSE(firewall.Save());
  EXPECT_EQ(0, spy.count());
  firewall.SetEnabled(true);
  firewall.SetEnabled(false);
  EXPECT_FALSE(firewall.Save());
  EXPECT_FALSE(QFile::exists(Path("arguments")));
}

TEST_F(FirewallTest, ASaveMakesTheModelSavedAndSaysSo)
{
  Store({{"/1", false}, {"/2", true}, {"/3", false}});
  Firewall firewall(nullptr);
  firewall.SetBlockAll(true);
  firewall.SetStealthMode(true);
  firewall.BlockApplication("/3", true);
  firewall.BlockApplication("/1", true);
  firewall.BlockApplication("/2", false);
  const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
  EXPECT_TRUE(firewall.Save());
  EXPECT_THAT(Emitted(spy), ElementsAre(true));
  EXPECT_TRUE(firewall.IsSaved());
  EXPECT_THAT(TakeArguments(), ElementsAre("off", "on", "off", "on", "", "", "/1;/3", "/2"))
      << "in the keys' order";
  EXPECT_TRUE(firewall.IsApplicationBlocked("/1"));
  EXPECT_FALSE(firewall.Save());
}

TEST_F(FirewallTest, ARefusedSaveKeepsEveryChangeAndCanBeRetried)
{
  BecomeUser();
  Store({{"/1", false}});
  WriteProgram(Path("launchers/sudo"), "exit 1\n");
  Firewall firewall(nullptr);
  firewall.BlockApplication("/1", true);
  const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
  {
    const LogCapture log;
    EXPECT_FALSE(firewall.Save());
    EXPECT_THAT(log.Errors(), ElementsAre("Can't copy rights: -60005"));
  }
  EXPECT_FALSE(firewall.IsSaved());
  EXPECT_EQ(0, spy.count());
  WriteProgram(Path("launchers/sudo"), "shift\nexec \"$@\"\n");
  EXPECT_TRUE(firewall.Save());
  EXPECT_THAT(TakeArguments(), ElementsAre("off", "off", "off", "off", "", "", "/1", ""));
}

TEST_F(FirewallTest, WithoutItsScriptTheModelReadsAndCannotSave)
{
  UnregisterScript();
  Store({{"/1", false}});
  const LogCapture log;
  Firewall firewall(nullptr);
  EXPECT_THAT(ToWords(firewall.GetApplications()), ElementsAre("/1"));
  firewall.SetEnabled(true);
  EXPECT_FALSE(firewall.Save());
  EXPECT_THAT(log.Errors(),
              ElementsAre("Can't open: :Scripts/Firewall", "Can't execute the firewall script"));
  EXPECT_FALSE(firewall.IsSaved());
}

TEST_F(FirewallTest, WhatTheScriptSavedIsWhatTheSystemThenSays)
{
  QByteArray real = ReadText(TAVRIK_FIREWALL_SCRIPT);
  real.replace("@TAVRIK_FIREWALL_TOOL@", tool->Path().toUtf8());
  RegisterScript(real);
  const QString bundle = AddBundle("A b'c.app");
  Store({{"/1", false}, {"/2", true}});
  Firewall firewall(nullptr);
  firewall.SetEnabled(true);
  ASSERT_TRUE(firewall.AddApplication(bundle, false));
  firewall.BlockApplication(bundle, true);
  ASSERT_TRUE(firewall.RemoveApplication("/1"));
  firewall.BlockApplication("/2", false);
  ASSERT_TRUE(firewall.Save());
  FakeFirewall::State expected;
  expected.isEnabled = true;
  expected.applications = {{"/2", false}, {bundle.toUtf8(), true}};
  EXPECT_TRUE(WaitFor([&] { return tool->Get() == expected; }));
  const Words before = ToWords(firewall.GetApplications());
  firewall.Undo();
  EXPECT_EQ(before, ToWords(firewall.GetApplications()));
  EXPECT_TRUE(firewall.IsSaved());
}

TEST_F(FirewallTest, AHandlerMayEditTheModelAndSaveIt)
{
  Store({{"/1", false}});
  Firewall firewall(nullptr);
  int depth = 0;
  QObject::connect(&firewall, &Firewall::IsSavedChanged,
                   [&](bool)
                   {
                     ++depth;
                     EXPECT_TRUE(depth != 1 || firewall.RemoveApplication("/1"));
                     EXPECT_TRUE(depth != 2 || firewall.Save());
                   });
  firewall.SetEnabled(true);
  EXPECT_EQ(3, depth);
  EXPECT_THAT(TakeArguments(), ElementsAre("on", "off", "off", "off", "", "/1", "", ""));
  EXPECT_TRUE(firewall.IsSaved());
}

/// @}
/// @name The script's file
/// @{

TEST_F(FirewallTest, TheScriptsFileIsTheOwnersAloneAndGoesWithTheModel)
{
  umask(0);
  {
    const Firewall firewall(nullptr);
    EXPECT_EQ(script, ReadText(ScriptPath()));
    struct stat information;
    ASSERT_EQ(0, lstat(QFile::encodeName(ScriptPath()).constData(), &information));
    EXPECT_EQ(S_IFREG | 0700u, information.st_mode);
    EXPECT_EQ(geteuid(), information.st_uid);
  }
  EXPECT_FALSE(QFile::exists(ScriptPath()));
}

TEST_F(FirewallTest, TheOneInstanceOutlivesTheApplicationAndStillRemovesItsScript)
{
  Firewall& firewall = Firewall::GetInstance();
  EXPECT_EQ(&firewall, &Firewall::GetInstance());
  EXPECT_EQ(nullptr, firewall.parent());
  // That nothing stays in the temporary folder is looked at when this process has ended.
  EXPECT_TRUE(QFile::exists(ScriptPath()));
}

TEST_F(FirewallTest, ALinkUnderTheScriptsNameIsNotFollowed)
{
  WriteText(Path("precious"), "precious");
  ASSERT_TRUE(QFile::link(Path("precious"), ScriptPath()));
  const Firewall firewall(nullptr);
  EXPECT_EQ("precious", ReadText(Path("precious")));
  EXPECT_FALSE(QFileInfo(ScriptPath()).isSymLink());
  EXPECT_EQ(script, ReadText(ScriptPath()));
}

TEST_F(FirewallTest, AForeignFileUnderTheScriptsNameIsReplaced)
{
  WriteProgram(ScriptPath(), "touch '" + Path("hacked").toUtf8() + "'\n");
  QFile keptOpen(ScriptPath());
  ASSERT_TRUE(keptOpen.open(QIODevice::ReadWrite));
  const Firewall firewall(nullptr);
  keptOpen.write("changed later");
  keptOpen.flush();
  EXPECT_EQ(script, ReadText(ScriptPath()));
}

TEST_F(FirewallTest, WhatCannotBeReplacedMeansThatNothingIsEverRun)
{
  ASSERT_TRUE(QDir().mkpath(ScriptPath() + "/x"));
  const std::string name = ScriptPath().toStdString();
  const LogCapture log;
  {
    Firewall firewall(nullptr);
    firewall.SetEnabled(true);
    EXPECT_FALSE(firewall.Save());
    EXPECT_FALSE(firewall.IsSaved());
  }
  EXPECT_THAT(log.Errors(),
              ElementsAre("Can't open a temporary file: " + name, "Can't execute the firewall script",
                          "Couldn't remove a temporary file: " + name));
  QDir(ScriptPath()).removeRecursively();
}

TEST_F(FirewallTest, WithoutATemporaryFolderThereIsNoScript)
{
  const QByteArray before = qgetenv("TMPDIR");
  qputenv("TMPDIR", "/nowhere/at/all");
  ASSERT_TRUE(QDir::tempPath().isEmpty());
  const LogCapture log;
  {
    Firewall firewall(nullptr);
    firewall.SetEnabled(true);
    EXPECT_FALSE(firewall.Save());
  }
  const std::string name = (applicationId + ".fw.").toStdString() + std::to_string(getpid());
  EXPECT_THAT(log.Errors(),
              ElementsAre("Can't open a temporary file: " + name, "Can't execute the firewall script"));
  EXPECT_FALSE(QFile::exists("/" + QString::fromStdString(name)));
  EXPECT_FALSE(QFile::exists(QString::fromStdString(name)));
  qputenv("TMPDIR", before);
}

TEST_F(FirewallTest, AFullDiskMeansThatThereIsNoScript)
{
  RegisterScript(QByteArray(100000, '#'));
  const rlimit small = {1000, RLIM_INFINITY};
  rlimit before;
  getrlimit(RLIMIT_FSIZE, &before);
  signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &small));
  const LogCapture log;
  const Firewall firewall(nullptr);
  setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_THAT(log.Errors(), ElementsAre("Can't open a temporary file: " + ScriptPath().toStdString()));
  EXPECT_FALSE(QFile::exists(ScriptPath()));
}

TEST_F(FirewallTest, BeforeARunTheScriptIsWrittenAnewUnlessItIsWhatWasWritten)
{
  Firewall firewall(nullptr);
  const QByteArray foreign = "#!/bin/sh\ntouch '" + Path("hacked").toUtf8() + "'\n";
  QByteArray equallyLong = script;
  equallyLong[equallyLong.size() - 2] = 'x';
  const QByteArray path = QFile::encodeName(ScriptPath());
  const std::function<void()> meddlers[] = {
      [&] { WriteText(ScriptPath(), foreign); },
      [&] { WriteText(ScriptPath(), equallyLong); },
      [&] { EXPECT_TRUE(QFile::remove(ScriptPath())); },
      [&] { EXPECT_EQ(0, chmod(path.constData(), 0777)); },
      [&] { EXPECT_EQ(0, chmod(path.constData(), 0600)); },
      [&]
      {
        WriteProgram(Path("foreign"), foreign.mid(10));
        EXPECT_TRUE(QFile::remove(ScriptPath()) && QFile::link(Path("foreign"), ScriptPath()));
      },
      [&] { EXPECT_TRUE(QFile::remove(ScriptPath()) && mkfifo(path.constData(), 0700) == 0); },
      [&]
      {
        // Only root can give a file away.
        EXPECT_EQ(geteuid() == 0, chown(path.constData(), 65534, 65534) == 0);
      }};
  bool isOn = false;
  for (const std::function<void()>& meddle : meddlers)
  {
    meddle();
    isOn = !isOn;
    firewall.SetEnabled(isOn);
    ASSERT_TRUE(firewall.Save());
    EXPECT_EQ(isOn ? "on" : "off", TakeArguments().front());
    EXPECT_TRUE(Cleaner::IsOurScript(path, script));
  }
  EXPECT_FALSE(QFile::exists(Path("hacked")));
}

TEST_F(FirewallTest, WhatTakesTheScriptsPlaceWhileTheUserIsAskedIsNotRun)
{
  BecomeUser();
  WriteProgram(Path("launchers/sudo"), "echo 'touch \"" + Path("hacked").toUtf8() + "\"' >'" +
                                           ScriptPath().toUtf8() + "'\nshift\nexec \"$@\"\n");
  Firewall firewall(nullptr);
  firewall.SetEnabled(true);
  ASSERT_TRUE(firewall.Save());
  EXPECT_EQ("on", TakeArguments().front());
  EXPECT_EQ(script, ReadText(ScriptPath()));
  EXPECT_FALSE(QFile::exists(Path("hacked")));
}

TEST_F(FirewallTest, WhatTakesTheScriptsPlaceAfterTheLastLookIsNotRun)
{
  BecomeUser();
  // The file is replaced between the look and the start: when a request comes, and before the root shell has
  // it.
  WriteProgram(Path("launchers/sudo"),
               "shift\nprintf y\nread -r size\necho 'touch \"" + Path("hacked").toUtf8() + "\"' >'" +
                   ScriptPath().toUtf8() +
                   "'\n{ echo \"$size\"; cat; } | \"$@\" | { dd bs=1 count=1 of=/dev/null "
                   "2>/dev/null; exec cat; }\n");
  Firewall firewall(nullptr);
  firewall.SetEnabled(true);
  ASSERT_TRUE(firewall.Save());
  EXPECT_EQ("on", TakeArguments().front());
  EXPECT_NE(script, ReadText(ScriptPath()));
  EXPECT_FALSE(QFile::exists(Path("hacked")));
}

TEST_F(FirewallTest, WhenTheScriptCannotBeWrittenAnewNothingIsRun)
{
  Firewall firewall(nullptr);
  firewall.SetEnabled(true);
  ASSERT_TRUE(QFile::remove(ScriptPath()));
  ASSERT_TRUE(QDir().mkpath(ScriptPath()));
  {
    const LogCapture log;
    EXPECT_FALSE(firewall.Save());
    EXPECT_THAT(log.Errors(), ElementsAre("Can't open a temporary file: " + ScriptPath().toStdString()));
  }
  EXPECT_FALSE(firewall.IsSaved());
  ASSERT_TRUE(QDir().rmdir(ScriptPath()));
  EXPECT_TRUE(firewall.Save());
  EXPECT_EQ("on", TakeArguments().front());
}

/// @}
/// @name Against a simple model
/// @{

namespace
{

// The rules once more, the shortest way.
class SimpleModel
{
public:
  struct Entry
  {
    bool saved, added, removed, blocked;
    bool operator==(const Entry& o) const
    {
      return std::tie(saved, added, removed, blocked) == std::tie(o.saved, o.added, o.removed, o.blocked);
    }
  };
  struct State
  {
    std::vector<bool> switches = std::vector<bool>(4);
    std::vector<std::string> list;
    std::map<std::string, Entry> entries;
  };

  std::vector<bool> emitted;
  State now;

  void Load(const State& state) { now = before = state; }

  bool Saved() const
  {
    return now.switches == before.switches && now.entries == before.entries &&
           std::multiset<std::string>(now.list.begin(), now.list.end()) ==
               std::multiset<std::string>(before.list.begin(), before.list.end());
  }

  void Undo()
  {
    const bool was = Saved();
    // The system is left as the script's stand-in leaves it: unchanged.
    now = before = system;
    if (!was)
      emitted.push_back(true);
  }

  void Switch(int which, bool on)
  {
    if (now.switches[static_cast<std::size_t>(which)] == on)
      return;
    now.switches[static_cast<std::size_t>(which)] = on;
    Emit();
  }

  bool Blocked(const std::string& path) { return now.entries[path].blocked; }

  void Add(const std::string& path)
  {
    Entry& entry = now.entries[path];
    if (!In(now.list, path))
    {
      now.list.push_back(path);
      entry.added = !In(before.list, path);
    }
    entry = {!entry.added, entry.added, false, before.entries[path].blocked};
    Emit();
  }

  bool Remove(const std::string& path)
  {
    if (!In(now.list, path))
      return false;
    const bool known = In(before.list, path);
    now.entries[path] = {!known, false, known, now.entries[path].blocked};
    now.list.erase(std::remove(now.list.begin(), now.list.end(), path), now.list.end());
    Emit();
    return true;
  }

  void Block(const std::string& path, bool block)
  {
    Entry& entry = now.entries[path];
    if (entry.blocked == block)
      return;
    entry.blocked = block;
    entry.saved = before.entries.count(path) == 1 && before.entries[path].blocked == block;
    Emit();
  }

  // The eight arguments, or none when there is nothing to save.
  Words Save()
  {
    if (Saved())
      return {};
    Words arguments;
    for (const bool on : now.switches)
      arguments.push_back(on ? "on" : "off");
    arguments.resize(8);
    const auto put = [&](std::size_t list, const std::string& path)
    { arguments[list] += (arguments[list].empty() ? "" : ";") + path; };
    for (auto& [path, entry] : now.entries)
    {
      if (!entry.saved && entry.added)
        put(4, path);
      if (!entry.saved)
        put(entry.removed ? 5 : entry.blocked ? 6 : 7, path);
      entry = {true, false, false, entry.blocked};
    }
    before = now;
    Emit();
    return arguments;
  }

  State system;

private:
  static bool In(const std::vector<std::string>& list, const std::string& path)
  {
    return std::find(list.begin(), list.end(), path) != list.end();
  }
  void Emit() { emitted.push_back(Saved()); }

  State before;
};

class RandomEdits : public FirewallTest, public testing::WithParamInterface<unsigned>
{
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEdits, testing::Values(0u, 125u, 250u, 375u, 500u, 625u, 750u, 875u),
                         testing::PrintToStringParamName());

TEST_P(RandomEdits, AgreeWithTheSimpleModel)
{
  QStringList bundles;
  for (const char* name : {"A.app", "B.app", "C.app", "D.app"})
    bundles.append(AddBundle(name));
  const QStringList paths = bundles + QStringList{"/usr/bin/one", "/usr/bin/two"};

  Firewall firewall(nullptr);
  int saves = 0;
  for (unsigned seed = GetParam(); seed < GetParam() + 125; ++seed)
  {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto roll = [&](int sides) { return static_cast<int>(random() % static_cast<unsigned>(sides)); };

    FakeFirewall::State state;
    SimpleModel simple;
    state.isEnabled = simple.system.switches[0] = roll(2) == 0;
    state.blockAll = simple.system.switches[1] = roll(2) == 0;
    state.allowSigned = simple.system.switches[2] = roll(2) == 0;
    state.stealthMode = simple.system.switches[3] = roll(2) == 0;
    for (const QString& path : paths)
    {
      const bool blocked = roll(2) == 0;
      if (roll(2) == 0)
        continue;
      state.applications.append({path.toUtf8(), blocked});
      simple.system.list.push_back(path.toStdString());
      simple.system.entries[path.toStdString()] = {true, false, false, blocked};
    }
    tool->Set(state);
    firewall.Undo();
    simple.Load(simple.system);

    const QSignalSpy spy(&firewall, &Firewall::IsSavedChanged);
    for (int step = 0; step < 25; ++step)
    {
      const QString path = paths.at(roll(paths.size()));
      const bool on = roll(2) == 0;
      const int which = roll(40);
      if (which < 8)
      {
        const std::vector<void (Firewall::*)(bool)> setters = {&Firewall::SetEnabled, &Firewall::SetBlockAll,
                                                               &Firewall::SetAllowSigned,
                                                               &Firewall::SetStealthMode};
        (firewall.*setters[static_cast<std::size_t>(which % 4)])(on);
        simple.Switch(which % 4, on);
      }
      else if (which < 18)
      {
        const bool isBundle = bundles.contains(path);
        ASSERT_EQ(isBundle, firewall.AddApplication(path, on));
        if (isBundle)
          simple.Add(path.toStdString());
      }
      else if (which < 26)
      {
        ASSERT_EQ(simple.Remove(path.toStdString()), firewall.RemoveApplication(path));
      }
      else if (which < 36)
      {
        firewall.BlockApplication(path, on);
        simple.Block(path.toStdString(), on);
      }
      else if (which < 38)
      {
        ASSERT_EQ(simple.Blocked(path.toStdString()), firewall.IsApplicationBlocked(path));
      }
      else if (which == 38)
      {
        const Words arguments = simple.Save();
        ASSERT_EQ(!arguments.empty(), firewall.Save());
        if (!arguments.empty())
        {
          ASSERT_EQ(arguments, TakeArguments());
          ++saves;
        }
      }
      else if (step % 4 == 0)
      {
        firewall.Undo();
        simple.Undo();
      }
      ASSERT_EQ(simple.Saved(), firewall.IsSaved()) << "step " << step;
      ASSERT_EQ(simple.now.list, ToWords(firewall.GetApplications())) << "step " << step;
      ASSERT_EQ(simple.emitted, Emitted(spy)) << "step " << step;
    }
    ASSERT_EQ(simple.now.switches, (std::vector<bool>{firewall.IsEnabled(), firewall.GetBlockAll(),
                                                      firewall.GetAllowSigned(), firewall.GetStealthMode()}));
  }
  EXPECT_GT(saves, 20);
}

/// @}
