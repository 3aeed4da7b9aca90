// Drives the real executable above firewall tools with a state of their own. Root is real here, the machine's
// own or that of a user namespace; the folders of the tools and of their state are the test's, in a mount
// namespace.

#include "ExitCodes.h"
#include "StandIns.h"
#include "Support/Child.h"
#include "Support/Copies.h"
#include "Support/FakeFirewall.h"
#include "Support/HostProcess.h"
#include "Support/Programs.h"
#include "Support/PseudoTerminal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <functional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

using namespace Ostrel;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace
{

const QString standIns = QStringLiteral(TAVRIK_STAND_INS);
const char* const systemTool = "/usr/libexec/ApplicationFirewall/socketfilterfw";
const char* const keptState = "/var/lib/tavrik/firewall";

Outcome RunVerb(const QStringList& arguments)
{
  return RunHost(QStringLiteral(OSTREL), QStringList{"firewall"} + arguments);
}

std::string Json(const Outcome& outcome)
{
  return QJsonDocument::fromJson(outcome.out).toJson(QJsonDocument::Compact).toStdString();
}

class OstrelFirewallTest : public testing::Test
{
protected:
  void SetUp() override
  {
    qputenv("LC_ALL", "C.UTF-8");
    qunsetenv("TAVRIK_FIREWALL_STATE");
    ASSERT_TRUE(QDir().mkpath(home));
  }

  void TearDown() override { QDir(home).removeRecursively(); }

  QString MakeBundle(const QString& name) const
  {
    EXPECT_TRUE(QDir().mkpath(home + '/' + name));
    return home + '/' + name;
  }

  // Where the machine's state is empty and nobody has a tool but for the stand-in.
  static void RunApart(const std::function<void()>& body)
  {
    RunWithOwnVolumes(
        [&]
        {
          ASSERT_TRUE(MountVolume("/var/lib"));
          ASSERT_TRUE(MountVolume("/usr/libexec"));
          body();
        });
  }

  static void RunAsRoot(const std::function<void()>& body)
  {
    if (!BecomeRoot())
      GTEST_SKIP() << "This machine lets a plain user make no user namespace, so nobody can be root here";
    RunApart(body);
  }

  // The same with a tool of the system.
  static void RunWithSystemTool(const std::function<void(FakeFirewall&)>& body)
  {
    RunAsRoot(
        [&]
        {
          ASSERT_EQ(0, mkdir("/usr/libexec/ApplicationFirewall", 0755));
          FakeFirewall tool{QLatin1String(systemTool)};
          body(tool);
        });
  }

  const QString home = QDir::tempPath() + "/ostrel firewall";
};

} // namespace

TEST_F(OstrelFirewallTest, StatusAndListTellWhatTheToolTells)
{
  RunWithSystemTool(
      [](FakeFirewall& tool)
      {
        FakeFirewall::State state;
        state.isEnabled = state.stealthMode = true;
        state.applications = {{"/Applications/B b.app", true}, {"/usr/sbin/smbd", false}};
        tool.Set(state);
        EXPECT_EQ("Firewall: on\nBlock all connections: off\nAllow signed software: off\nStealth mode: on\n"
                  "Applications: 2\n",
                  RunVerb({"status"}).out);
        EXPECT_EQ("blocked \"/Applications/B b.app\"\nallowed /usr/sbin/smbd\n", RunVerb({"list"}).out);
        EXPECT_EQ("{\"allowSigned\":false,\"applications\":2,\"blockAll\":false,\"enabled\":true,"
                  "\"stealth\":true,\"tool\":\"/usr/libexec/ApplicationFirewall/socketfilterfw\"}\n",
                  RunVerb({"status", "--json"}).out);
        EXPECT_EQ("{\"applications\":[{\"blocked\":true,\"path\":\"/Applications/B b.app\"},"
                  "{\"blocked\":false,\"path\":\"/usr/sbin/smbd\"}]}\n",
                  RunVerb({"list", "--json"}).out);
      });
}

TEST_F(OstrelFirewallTest, ListOnATerminalFitsItAndShortensPathsInTheMiddle)
{
  RunWithSystemTool(
      [](FakeFirewall& tool)
      {
        FakeFirewall::State state;
        state.applications = {{"/Applications/" + QByteArray(100, 'x') + "/End.app", true}};
        tool.Set(state);
        PseudoTerminal narrow(80, QStringLiteral(OSTREL), {"firewall", "list"});
        EXPECT_EQ(narrow.Finish(), Done);
        const QString line = QString::fromUtf8(narrow.Screen()).trimmed();
        EXPECT_EQ(line.size(), 80) << line.toStdString();
        EXPECT_TRUE(line.startsWith("blocked /Applications/x")) << line.toStdString();
        EXPECT_TRUE(line.contains(QChar(0x2026)) && line.endsWith("x/End.app")) << line.toStdString();
        PseudoTerminal wide(200, QStringLiteral(OSTREL), {"firewall", "list"});
        EXPECT_EQ(wide.Finish(), Done);
        EXPECT_EQ(wide.Screen(), RunVerb({"list"}).out);
      });
}

TEST_F(OstrelFirewallTest, SeveralOrdersAreOneRunThatIsReadBack)
{
  RunWithSystemTool(
      [this](FakeFirewall& tool)
      {
        const QString added = MakeBundle("A a.app");
        FakeFirewall::State state;
        state.applications = {{"/old", false}, {"/kept", true}};
        tool.Set(state);
        const Outcome outcome = RunVerb({"edit", "--add", added + '/', "--block", added, "--remove", "/old",
                                         "--unblock", "/kept", "--set", "stealth=on", "enabled=on"});
        EXPECT_EQ(Done, outcome.code) << outcome.err.toStdString();
        EXPECT_EQ("set enabled=on\nset stealth=on\nadd \"" + added +
                      "\"\nremove /old\nunblock /kept\nblock \"" + added + "\"\nsaved\n",
                  QString::fromUtf8(outcome.out));
        const std::string path = added.toStdString();
        using Call = FakeFirewall::Call;
        EXPECT_THAT(tool.Calls(), ElementsAre(Call{"--setglobalstate", "on"}, Call{"--setblockall", "off"},
                                              Call{"--setallowsigned", "off"}, Call{"--setstealthmode", "on"},
                                              Call{"--add", path}, Call{"--remove", "/old"},
                                              Call{"--blockapp", path}, Call{"--unblockapp", "/kept"}));
      });
}

TEST_F(OstrelFirewallTest, TheJsonOfAnEditHasItsKeys)
{
  RunWithSystemTool(
      [](FakeFirewall& tool)
      {
        FakeFirewall::State state;
        state.applications = {{"/a", false}};
        tool.Set(state);
        const QStringList edit = {"edit", "-b", "/a", "-s", "allow-signed=on", "--json"};
        const std::string plan = "\"plan\":[{\"action\":\"set\",\"on\":true,\"switch\":\"allowSigned\"},"
                                 "{\"action\":\"block\",\"path\":\"/a\"}]}";
        EXPECT_EQ("{\"differences\":[],\"outcome\":\"planned\"," + plan + '\n',
                  RunVerb(edit + QStringList{"--dry-run"}).out.toStdString());
        EXPECT_TRUE(tool.Calls().empty());
        EXPECT_EQ("{\"differences\":[],\"outcome\":\"saved\"," + plan + '\n',
                  RunVerb(edit).out.toStdString());
        const Outcome again = RunVerb(edit);
        EXPECT_EQ(NothingToDo, again.code);
        EXPECT_EQ("{\"differences\":[],\"outcome\":\"nothing-to-do\",\"plan\":[]}\n", again.out);
      });
}

TEST_F(OstrelFirewallTest, SwitchesTakeTheWordsThatTheStatusPrints)
{
  RunWithSystemTool(
      [](FakeFirewall& tool)
      {
        tool.Set({});
        qputenv("LC_ALL", "de_DE.UTF-8");
        qunsetenv("LANGUAGE");
        EXPECT_THAT(RunVerb({"status"}).out.toStdString(), HasSubstr(": aus\n"));
        EXPECT_EQ("set stealth=on\n", RunVerb({"set", "stealth=an", "--dry-run"}).out);
        EXPECT_EQ(NothingToDo, RunVerb({"edit", "--set", "stealth=aus"}).code);
        EXPECT_EQ(WrongUsage, RunVerb({"set", "stealth=an", "stealth=off"}).code);
      });
}

TEST_F(OstrelFirewallTest, AToolThatFailsInTheMiddleIsADifference)
{
  RunWithSystemTool(
      [this](FakeFirewall& tool)
      {
        const QString added = MakeBundle("A.app");
        tool.Fail({"--add"});
        const Outcome outcome =
            RunVerb({"edit", "--add", added, "--set", "enabled=on", "--json", "--timeout", "10"});
        EXPECT_EQ(Failed, outcome.code);
        EXPECT_EQ("{\"differences\":[{\"action\":\"add\",\"path\":\"" + added.toStdString() +
                      "\"}],\"outcome\":\"different\",\"plan\":[{\"action\":\"set\",\"on\":true,\"switch\":"
                      "\"enabled\"},{\"action\":\"add\",\"path\":\"" +
                      added.toStdString() + "\"}]}",
                  Json(outcome));
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("ostrel: add \"" + added.toStdString() + "\"\n"));
        EXPECT_TRUE(tool.Get().isEnabled);
      });
}

TEST_F(OstrelFirewallTest, TheStandInServesWhereTheSystemHasNoTool)
{
  RunAsRoot(
      [this]
      {
        const QString added = MakeBundle("B b.app");
        EXPECT_EQ(Done, RunVerb({"add", added}).code);
        EXPECT_EQ(Done, RunVerb({"block", added}).code);
        EXPECT_EQ(Done, RunVerb({"set", "block-all=on", "enabled=on"}).code);
        EXPECT_EQ("tavrik-firewall 1\nenabled on\nblock-all on\nallow-signed off\nstealth off\n"
                  "allow-signed-app off\napplication block " +
                      added + "\n",
                  QString::fromUtf8(ReadText(keptState)));
        EXPECT_THAT(RunVerb({"status", "--json"}).out.toStdString(),
                    HasSubstr("\"tool\":\"" + standIns.toStdString() + "/socketfilterfw\""));
        EXPECT_EQ(Done, RunVerb({"unblock", added}).code);
        EXPECT_EQ(Done, RunVerb({"remove", added}).code);
        EXPECT_EQ("{\"applications\":[]}\n", RunVerb({"list", "--json"}).out);
      });
}

TEST_F(OstrelFirewallTest, AllowSignedIsSwitchedOffWhereItHasTwoSwitches)
{
  RunAsRoot(
      []
      {
        const QString tool = standIns + "/socketfilterfw";
        EXPECT_EQ(Done, RunHost(tool, {"--setallowsigned", "on", "--setallowsignedapp", "on"}).code);
        EXPECT_EQ(Done, RunVerb({"set", "allow-signed=off"}).code);
        EXPECT_EQ("Automatically allow signed built-in software DISABLED \n"
                  "Automatically allow downloaded signed software DISABLED \n",
                  RunHost(tool, {"--getallowsigned"}).out);
      });
}

TEST_F(OstrelFirewallTest, WithoutAnyToolItSaysSo)
{
  RunAsRoot(
      []
      {
        ASSERT_TRUE(MountVolume(standIns.toStdString()));
        for (const QStringList& verb :
             {QStringList{"status"}, QStringList{"list"}, QStringList{"add", "/a.app"}})
        {
          const Outcome outcome = RunVerb(verb + QStringList{"--json"});
          EXPECT_EQ(ToolMissing, outcome.code);
          EXPECT_EQ("", outcome.out);
          EXPECT_EQ("ostrel: there is no firewall tool on this machine\n", outcome.err);
        }
      });
}

TEST_F(OstrelFirewallTest, WithoutAuthorisationNothingIsChanged)
{
  RunApart(
      []
      {
        ASSERT_TRUE(MountVolume("/run"));
        ASSERT_TRUE(QDir().mkpath("/run/wrappers/bin"));
        ASSERT_TRUE(QDir().mkpath("/run/t"));
        ASSERT_EQ(0, chmod("/run/t", 01777));
        CopyForOthers({OSTREL, commonLibrary, FakeFirewall::program});
        qputenv("TMPDIR", "/run/t");
        qputenv("HOME", "/run/t");
        ASSERT_EQ(0, mkdir("/usr/libexec/ApplicationFirewall", 0755));
        FakeFirewall tool{QLatin1String(systemTool)};
        const auto tryIt = [&]
        {
          const Outcome human = RunVerb({"set", "stealth=on"});
          EXPECT_EQ(NotAuthorised, human.code) << human.err.toStdString();
          EXPECT_THAT(human.err.toStdString(), HasSubstr("authorisation was not given"));
          const Outcome outcome = RunVerb({"set", "stealth=on", "--json"});
          EXPECT_EQ(NotAuthorised, outcome.code);
          EXPECT_EQ("{\"differences\":[],\"outcome\":\"not-authorised\",\"plan\":[{\"action\":\"set\",\"on\":"
                    "true,\"switch\":\"stealth\"}]}\n",
                    outcome.out);
          EXPECT_TRUE(tool.Calls().empty());
        };
        // A dialog that is dismissed, and one where the password was wrong.
        for (const char* script : {"exit 126\n", "echo 'Not authorized' >&2\nexit 127\n"})
        {
          WriteProgram("/run/wrappers/bin/pkexec", script);
          if (geteuid() != 0)
            tryIt();
          else
            EXPECT_TRUE(RunAs({65534, 65534, 65534, {}}, tryIt));
        }
      });
}

TEST_F(OstrelFirewallTest, OrdersThatCannotBeMeantAreRefusedBeforeAnythingIsLookedAt)
{
  const QList<QStringList> lines = {{"add", "/x;/y.app"},
                                    {"add", "/two\nlines.app"},
                                    {"block", ""},
                                    {"add"},
                                    {"set", "stealth"},
                                    {"set", "stealth=maybe"},
                                    {"set", "volume=on"},
                                    {"set", "stealth=on", "stealth=off"},
                                    {"edit"},
                                    {"edit", "--dry-run"},
                                    {"edit", "--add", "/a.app", "--remove", "/b/../a.app"},
                                    {"edit", "--block", "/a", "--unblock", "/a/"},
                                    {"edit", "--remove", "/a", "--block", "/a"},
                                    {"set", "stealth=on", "--timeout", "-1"},
                                    {"set", "stealth=on", "--timeout", "nan"},
                                    {"melt"},
                                    {}};
  for (const QStringList& line : lines)
  {
    const Outcome outcome = RunVerb(line);
    EXPECT_EQ(WrongUsage, outcome.code) << line.join(' ').toStdString();
    EXPECT_EQ("", outcome.out);
    EXPECT_FALSE(outcome.err.isEmpty());
  }
  const Outcome outcome =
      RunHost("/bin/sh", {"-c", "exec \"$0\" firewall add \"$(printf '/\\377.app')\"", OSTREL});
  EXPECT_EQ(WrongUsage, outcome.code);
}

TEST_F(OstrelFirewallTest, OrdersThatCannotBeFollowedChangeNothing)
{
  RunWithSystemTool(
      [this](FakeFirewall& tool)
      {
        WriteText(home + "/file.app", "x");
        MakeBundle("folder");
        for (const QStringList& line :
             {QStringList{"add", home + "/missing.app"}, QStringList{"add", home + "/file.app"},
              QStringList{"add", home + "/folder"}, QStringList{"remove", "/unlisted"},
              QStringList{"edit", "-s", "stealth=on", "-b", "/unlisted"}})
        {
          const Outcome outcome = RunVerb(line);
          EXPECT_EQ(Failed, outcome.code);
          EXPECT_EQ("", outcome.out);
          EXPECT_THAT(outcome.err.toStdString(), HasSubstr(line.last().section('/', -1).toStdString()));
        }
        EXPECT_TRUE(tool.Calls().empty());
      });
}

TEST(InstalledProgram, KnowsNothingOfTheBuildTree)
{
  const std::string here = ReadText(QStringLiteral(OSTREL)).toStdString();
  const std::string installed = ReadText(QStringLiteral(OSTREL_INSTALLED)).toStdString();
  const std::string tool =
      "tool='" + QString(standIns).replace("'", "'\\''").toStdString() + "/socketfilterfw'";
  EXPECT_THAT(here.find(tool), Not(std::string::npos));
  EXPECT_EQ(std::string::npos, installed.find(standIns.toStdString()));
  EXPECT_THAT(installed.find("tool='" TAVRIK_LIBEXEC "/standins/socketfilterfw'"), Not(std::string::npos));
  EXPECT_THAT(installed.find(std::string("tool='") + systemTool), Not(std::string::npos));
}

TEST(Tools, AreMissingToAProgramThatBringsNone)
{
  qputenv("PATH", "/nonexistent");
  for (const ToolPlace& tool : FindTools())
    EXPECT_EQ(QString(), tool.path);
}
