// The script that runs as root, under every shell of this machine, against a firewall tool with a state.

#include "Support/FirewallScript.h"
#include "Support/FakeFirewall.h"
#include "Support/Programs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include <memory>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{

class FirewallScriptTest : public testing::TestWithParam<Shell>
{
protected:
  void SetUp() override
  {
    ASSERT_TRUE(QDir().mkpath(folder));
    tool = std::make_unique<FakeFirewall>(folder + "/the tool");
    ConfigureScript(QStringLiteral(TAVRIK_FIREWALL_SCRIPT), tool->Path(), script);
  }

  void TearDown() override
  {
    tool.reset();
    QDir(folder).removeRecursively();
  }

  // Skips the test where the shell is not there.
  void FindShell()
  {
    shell = ::FindShell(GetParam());
    if (shell.isEmpty())
      GTEST_SKIP() << "There is no " << GetParam().words.front() << " on this machine";
  }

  ScriptOutcome Run(const QStringList& arguments)
  {
    QStringList words;
    for (std::size_t i = 1; i < GetParam().words.size(); ++i)
      words.append(QString::fromLatin1(GetParam().words[i]));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder);
    process.start(shell, words + QStringList{script} + arguments);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(QProcess::NormalExit, process.exitStatus());
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
  }

  const QString folder = QDir::tempPath() + QStringLiteral("/firewall-script");
  const QString script = folder + QStringLiteral("/Firewall");
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  QString shell;
  std::unique_ptr<FakeFirewall> tool;
};

INSTANTIATE_TEST_SUITE_P(Under, FirewallScriptTest, testing::ValuesIn(shells),
                         [](const auto& info) { return info.param.name; });

using Call = FakeFirewall::Call;

} // namespace

TEST_P(FirewallScriptTest, SetsSwitchesThenAddsRemovesBlocksAndUnblocks)
{
  FindShell();
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
  FindShell();
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

TEST_P(FirewallScriptTest, AnythingButEightArgumentsIsRefusedWhole)
{
  FindShell();
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
  FindShell();
  ASSERT_TRUE(QFile::remove(tool->Path()));
  const ScriptOutcome outcome = Run({"on", "on", "on", "on", "/a", "", "", ""});
  EXPECT_EQ(1, outcome.status);
  EXPECT_EQ("Firewall: there is no " + tool->Path().toUtf8() + "\n", outcome.errors);
}

TEST_P(FirewallScriptTest, NothingOfTheCallersEnvironmentOrFolderCounts)
{
  FindShell();
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
  FindShell();
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
