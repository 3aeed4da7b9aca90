// The script that runs as root, under every shell of this machine, against a firewall tool with a state.

#include "Support/FirewallScript.h"
#include "Support/Copies.h"
#include "Support/FakeFirewall.h"
#include "Support/Programs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include <cstdlib>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{

const uid_t someUser = 65534;

// Root as the effective user id only.
class ProcessApart : public QProcess
{
protected:
  void setupChildProcess() override
  {
    if (setreuid(someUser, 0) != 0)
      _exit(EXIT_FAILURE);
  }
};

// The script as the privileged start of macOS runs it: as a file, by the interpreter of its first line.
class FirewallScriptFile : public testing::Test
{
protected:
  void SetUp() override
  {
    ASSERT_TRUE(QDir().mkpath(folder));
    CopyForOthers({FakeFirewall::program});
    tool = std::make_unique<FakeFirewall>(folder + "/the tool");
    ConfigureScript(QStringLiteral(TAVRIK_FIREWALL_SCRIPT), tool->Path(), script);
    ASSERT_EQ(0, chmod(QFile::encodeName(script).constData(), 0700));
  }

  void TearDown() override
  {
    tool.reset();
    QDir(folder).removeRecursively();
  }

  ScriptOutcome Run(const QString& program, const QStringList& arguments, QProcess&& process = QProcess())
  {
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(QProcess::NormalExit, process.exitStatus());
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
  }

  // Why a process of this test cannot have root as its effective user id only; empty if it can. The real user
  // must reach script and tool, as on macOS: some shells ask access() about them.
  std::string WhyNotApart() const
  {
    for (const QString& path : {QDir::homePath(), QDir::tempPath(), folder, script})
      chmod(QFile::encodeName(path).constData(), 0755);
    if (geteuid() != 0 || setreuid(someUser, 0) != 0)
      return "Only root of a machine can set its user ids apart";
    EXPECT_EQ(0, access(QFile::encodeName(tool->Path()).constData(), X_OK));
    EXPECT_EQ(0, setreuid(0, 0));
    return {};
  }

  const QString folder = QDir::tempPath() + QStringLiteral("/firewall-script");
  const QString script = folder + QStringLiteral("/Firewall");
  const QStringList everythingOn = {"on", "on", "on", "on", "/a", "", "/a", ""};
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  std::unique_ptr<FakeFirewall> tool;
};

// The same under each shell.
class FirewallScriptTest : public FirewallScriptFile, public testing::WithParamInterface<Shell>
{
protected:
  void SetUp() override
  {
    FirewallScriptFile::SetUp();
    shell = ::FindShell(GetParam());
    if (shell.isEmpty())
      GTEST_SKIP() << "There is no " << GetParam().words.front() << " on this machine";
  }

  QStringList ShellOptions() const
  {
    QStringList words;
    for (std::size_t i = 1; i < GetParam().words.size(); ++i)
      words.append(QString::fromLatin1(GetParam().words[i]));
    return words;
  }

  ScriptOutcome Run(const QStringList& arguments)
  {
    return FirewallScriptFile::Run(shell, ShellOptions() + QStringList{script} + arguments);
  }

  // With the option of the script's first line.
  ScriptOutcome RunApart(const QStringList& arguments)
  {
    return FirewallScriptFile::Run(shell, ShellOptions() + QStringList{"-p", script} + arguments,
                                   ProcessApart());
  }

  QString shell;
};

INSTANTIATE_TEST_SUITE_P(Under, FirewallScriptTest, testing::ValuesIn(shells),
                         [](const auto& info) { return info.param.name; });

using Call = FakeFirewall::Call;

} // namespace

TEST_P(FirewallScriptTest, SetsSwitchesThenAddsRemovesBlocksAndUnblocks)
{
  FakeFirewall::State state;
  state.applications = {{"/old", true}, {"/kept", true}};
  tool->Set(state);
  const ScriptOutcome outcome = Run({"on", "off", "on", "off", "/new;/other", "/old", "/new", "/kept"});
  EXPECT_EQ(0, outcome.status);
  EXPECT_STREQ("", outcome.output.constData());
  EXPECT_STREQ("", outcome.errors.constData());
  EXPECT_THAT(tool->Calls(),
              ElementsAre(Call{"--setglobalstate", "on"}, Call{"--setblockall", "off"},
                          Call{"--setallowsigned", "on"}, Call{"--setstealthmode", "off"},
                          Call{"--add", "/new"}, Call{"--add", "/other"}, Call{"--remove", "/old"},
                          Call{"--blockapp", "/new"}, Call{"--unblockapp", "/kept"}));
  state = {};
  state.isEnabled = state.allowSigned = true;
  state.applications = {{"/kept", false}, {"/new", true}, {"/other", false}};
  EXPECT_TRUE(tool->Get() == state);
}

TEST_P(FirewallScriptTest, AFailingStepIsReportedAndStopsNothing)
{
  tool->Fail({"--setglobalstate", "--add"});
  const ScriptOutcome outcome = Run({"on", "on", "maybe", "on", "/a;/b", "", "/c", "-x"});
  EXPECT_EQ(1, outcome.status);
  EXPECT_EQ("Firewall: --setglobalstate on: refused\n"
            "Firewall: --setallowsigned: neither on nor off: maybe\n"
            "Firewall: --add /a: refused\n"
            "Firewall: --add /b: refused\n"
            "Firewall: --blockapp /c: usage\n"
            "Firewall: --unblockapp: not an absolute path: -x\n",
            outcome.errors);
  EXPECT_STREQ("", outcome.output.constData());
  EXPECT_TRUE(tool->Get().blockAll);
  EXPECT_TRUE(tool->Get().stealthMode);
}

TEST_P(FirewallScriptTest, SetsBothSwitchesForSignedSoftwareOfANewerTool)
{
  tool->BecomeNewer();
  FakeFirewall::State state;
  for (const bool isOn : {false, true})
  {
    state.allowSigned = !isOn;
    state.allowSignedApp = true;
    tool->Set(state);
    const ScriptOutcome outcome = Run({"on", "on", isOn ? "on" : "off", "on", "", "", "", ""});
    EXPECT_EQ(0, outcome.status);
    EXPECT_STREQ("", outcome.errors.constData());
    EXPECT_EQ(isOn, tool->Get().allowSigned);
    EXPECT_EQ(isOn, tool->Get().allowSignedApp);
  }
  EXPECT_THAT(tool->Calls(), Contains(Call{"--setallowsignedapp", "off"}));
}

TEST_P(FirewallScriptTest, ReportsWhatAToolRefusesInWordsOnly)
{
  const QByteArray words =
      "Firewall settings cannot be modified from command line on managed Mac computers\n";
  FakeFirewall::State state;
  state.applications = {{"/old", false}, {"/kept one", true}};
  state.stealthMode = true;
  tool->Set(state);
  tool->Refuse({"--setglobalstate", "--setblockall", "--setallowsigned", "--setallowsignedapp",
                "--setstealthmode", "--add", "--remove", "--blockapp", "--unblockapp"});
  const QStringList arguments = {"on", "on", "on", "off", "/new", "/old", "/old", "/kept one"};
  const auto expect = [&](const std::vector<QByteArray>& steps)
  {
    QByteArray errors;
    for (const QByteArray& step : steps)
      errors += "Firewall: " + step + ": no effect: " + words;
    const ScriptOutcome outcome = Run(arguments);
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ(errors, outcome.errors);
    EXPECT_TRUE(state == tool->Get());
  };
  expect({"--setglobalstate on", "--setblockall on", "--setallowsigned on", "--setstealthmode off",
          "--add /new", "--remove /old", "--blockapp /old", "--unblockapp /kept one"});
  tool->BecomeNewer();
  expect({"--setglobalstate on", "--setblockall on", "--setallowsigned on", "--setallowsignedapp on",
          "--setstealthmode off", "--add /new", "--remove /old", "--blockapp /old",
          "--unblockapp /kept one"});
}

TEST_P(FirewallScriptTest, KeepsRootThatIsTheEffectiveIdOnly)
{
  const std::string reason = WhyNotApart();
  if (!reason.empty())
    GTEST_SKIP() << reason;
  if (GetParam().name == std::string("Busybox"))
    GTEST_SKIP() << "This shell has no option against dropping the effective id";
  for (const char* userId : {"effective", "real"})
  {
    if (userId == std::string("real") && QStandardPaths::findExecutable("zsh").isEmpty())
      GTEST_SKIP() << "There is no zsh on this machine to set the real id";
    tool->DemandRoot(userId);
    tool->Set({});
    const ScriptOutcome outcome = RunApart(everythingOn);
    EXPECT_EQ(0, outcome.status);
    EXPECT_STREQ("", outcome.errors.constData());
    EXPECT_TRUE(tool->Get().stealthMode);
  }
}

TEST_P(FirewallScriptTest, AnythingButEightArgumentsIsRefusedWhole)
{
  for (const int count : {0, 1, 7, 9})
  {
    QStringList arguments;
    for (int i = 0; i < count; ++i)
      arguments.append("on");
    const ScriptOutcome outcome = Run(arguments);
    EXPECT_EQ(64, outcome.status);
    EXPECT_EQ("Firewall: eight arguments are wanted, not " + QByteArray::number(count) + "\n",
              outcome.errors);
  }
  EXPECT_THAT(tool->Calls(), IsEmpty());
}

TEST_P(FirewallScriptTest, AMissingToolIsToldOnce)
{
  ASSERT_TRUE(QFile::remove(tool->Path()));
  const ScriptOutcome outcome = Run({"on", "on", "on", "on", "/a", "", "", ""});
  EXPECT_EQ(1, outcome.status);
  EXPECT_EQ("Firewall: there is no " + tool->Path().toUtf8() + "\n", outcome.errors);
}

TEST_P(FirewallScriptTest, NothingOfTheCallersEnvironmentOrFolderCounts)
{
  for (const char* name : {"socketfilterfw", "printf", "ls", "the tool.d"})
    WriteProgram(folder + '/' + name, "touch \"${0%/*}/hacked\"\n");
  WriteText(folder + "/environment", "touch hacked\nset -x\n");
  environment.insert("PATH", folder + ":" + environment.value("PATH"));
  environment.insert("IFS", "/;o");
  environment.insert("ENV", folder + "/environment");
  environment.insert("CDPATH", folder);
  environment.insert("tool", "/bin/false");
  environment.insert("failures", "7");
  environment.insert("LC_ALL", "C.UTF-8");
  const ScriptOutcome outcome = Run({"on", "off", "off", "off", "/a b;/o/o", "", "", "/o/o"});
  EXPECT_EQ(0, outcome.status);
  EXPECT_STREQ("", outcome.errors.constData());
  const std::vector<Call> calls = tool->Calls();
  ASSERT_EQ(7u, calls.size());
  EXPECT_THAT(std::vector<Call>(calls.begin() + 4, calls.end()),
              ElementsAre(Call{"--add", "/a b"}, Call{"--add", "/o/o"}, Call{"--unblockapp", "/o/o"}));
  EXPECT_FALSE(QFile::exists(folder + "/hacked"));
}

TEST_P(FirewallScriptTest, AnybodyWhoStoppedListeningStopsNothing)
{
  tool->Fail({"--setglobalstate"});
  // Both outputs go to a pipe whose reader has gone.
  QString words;
  for (const char* word : GetParam().words)
    words += QLatin1String(word) + QLatin1Char(' ');
  const QString line = "{ exec " + words + "\"$0\" on on on on '' '' '' '' 2>&1; } | exec true";
  QProcess process;
  process.start("/bin/sh", {"-c", line, script});
  ASSERT_TRUE(process.waitForFinished(60000));
  EXPECT_TRUE(WaitFor([&] { return tool->Calls().size() == 4; }));
  EXPECT_TRUE(WaitFor([&] { return tool->Get().stealthMode; }));
}

TEST_F(FirewallScriptFile, KeepsRootThatIsTheEffectiveIdOnly)
{
  const std::string reason = WhyNotApart();
  if (!reason.empty())
    GTEST_SKIP() << reason;
  tool->DemandRoot("effective");
  const ScriptOutcome outcome = Run(script, everythingOn, ProcessApart());
  EXPECT_EQ(0, outcome.status);
  EXPECT_STREQ("", outcome.errors.constData());
  EXPECT_TRUE(tool->Get().stealthMode);
}

TEST_F(FirewallScriptFile, TakesNoFunctionFromTheEnvironment)
{
  environment.insert("BASH_FUNC_printf%%", "() { /usr/bin/touch hacked; }");
  const ScriptOutcome outcome = Run(script, everythingOn);
  EXPECT_EQ(0, outcome.status);
  EXPECT_STREQ("", outcome.errors.constData());
  EXPECT_FALSE(QFile::exists(folder + "/hacked"));
}

TEST(ConfiguredFirewallScript, NamesTheSystemsToolAndLeavesNoGap)
{
  const QByteArray text =
      ReadText(QFileInfo(QStringLiteral(TAVRIK_CONFIGURED_SCRIPTS)).path() + "/Scripts/Firewall");
  EXPECT_THAT(text.toStdString(), HasSubstr("\ntool='/usr/libexec/ApplicationFirewall/socketfilterfw'\n"));
  EXPECT_FALSE(text.contains('@' + QByteArray("TAVRIK")));
  EXPECT_TRUE(ReadText(TAVRIK_CONFIGURED_SCRIPTS).contains("<file>Scripts/Firewall</file>"));
}

TEST(ConfiguredFirewallScript, ShellcheckFindsNothing)
{
  const QString shellcheck = QStandardPaths::findExecutable("shellcheck");
  if (shellcheck.isEmpty())
    GTEST_SKIP() << "There is no shellcheck on this machine";
  QProcess process;
  process.start(shellcheck, {"--shell=sh", TAVRIK_FIREWALL_SCRIPT});
  ASSERT_TRUE(process.waitForFinished(60000));
  EXPECT_EQ(0, process.exitCode()) << process.readAllStandardOutput().constData();
}
