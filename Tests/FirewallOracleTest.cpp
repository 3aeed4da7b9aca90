// Random arguments for the script that runs as root, compared with a few lines that say what it has to do.
// TAVRIK_SCRIPT_SETS and TAVRIK_SCRIPT_SEED set how many there are and where they begin.

#include "Support/FakeFirewall.h"
#include "Support/FirewallScript.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <algorithm>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace
{

using Call = FakeFirewall::Call;
using State = FakeFirewall::State;
using Words = std::vector<std::string>;

const char* const options[] = {"--setglobalstate", "--setblockall", "--setallowsigned",
                               "--setstealthmode", "--add",         "--remove",
                               "--blockapp",       "--unblockapp"};
const std::size_t wantedCount = 8;
const std::size_t switchCount = 4;

struct Set
{
  Words arguments;
  State state;
  bool isNewer = false;
  QStringList failing;
  QStringList refusing; // in words, with success
};

/// @name What has to happen
/// @{

struct Expected
{
  int status = 0;
  std::string errors;
  std::vector<Call> calls;
  State state;
};

Words Split(const std::string& list)
{
  Words words(1);
  for (const char character : list)
    if (character == ';')
      words.emplace_back();
    else
      words.back() += character;
  return words;
}

class Oracle
{
public:
  explicit Oracle(const Set& set) : set(set) { expected.state = set.state; }

  Expected Run()
  {
    const Words& arguments = set.arguments;
    if (arguments.size() != wantedCount)
    {
      Fail("eight arguments are wanted, not " + std::to_string(arguments.size()), 64);
      return expected;
    }
    const Field fields[] = {&State::isEnabled, &State::blockAll, &State::allowSigned, &State::stealthMode};
    for (std::size_t i = 0; i < switchCount; ++i)
    {
      Switch(options[i], arguments[i], fields[i]);
      if (set.isNewer && fields[i] == &State::allowSigned)
        Switch("--setallowsignedapp", arguments[i], &State::allowSignedApp);
    }
    for (std::size_t i = switchCount; i < wantedCount; ++i)
      for (const std::string& path : Split(arguments[i]))
        Edit(options[i], path);
    return expected;
  }

private:
  using Field = bool State::*;

  void Fail(const std::string& reason, int status = 1)
  {
    expected.status = status;
    expected.errors += "Firewall: " + reason + '\n';
  }

  // Whether the tool obeys; @p isAsWanted: the state needs no change.
  bool Tell(const std::string& option, const std::string& value, bool isAsWanted)
  {
    expected.calls.push_back({option, value});
    const QString name = QString::fromStdString(option);
    if (set.failing.contains(name))
      Fail(option + ' ' + value + ": refused");
    else if (!set.refusing.contains(name))
      return true;
    else if (!isAsWanted)
      Fail(option + ' ' + value +
           ": no effect: Firewall settings cannot be modified from command line on managed Mac computers");
    return false;
  }

  void Switch(const std::string& option, const std::string& value, Field field)
  {
    if (value != "on" && value != "off")
      Fail(option + ": neither on nor off: " + value);
    else if (Tell(option, value, expected.state.*field == (value == "on")))
      expected.state.*field = value == "on";
  }

  void Edit(const std::string& option, const std::string& path)
  {
    if (path.empty())
      return;
    if (path[0] != '/')
      Fail(option + ": not an absolute path: " + path);
    else
      Apply(option, path);
  }

  void Apply(const std::string& option, const std::string& path)
  {
    auto& applications = expected.state.applications;
    const QByteArray name = QByteArray::fromStdString(path);
    const auto listed = std::find_if(applications.begin(), applications.end(),
                                     [&](const auto& application) { return application.first == name; });
    const bool isListed = listed != applications.end();
    const bool isUnknowable = name.contains('\n'); // the tool's list has a line for a path
    const bool isAsWanted = option == "--add"      ? isListed
                            : option == "--remove" ? !isListed
                                                   : isListed && listed->second == (option == "--blockapp");
    if (!Tell(option, path, isUnknowable || isAsWanted))
      return;
    if (option == "--add")
    {
      if (!isListed)
        applications.append({name, false});
    }
    else if (!isListed)
      Fail(option + ' ' + path + ": usage");
    else if (option == "--remove")
      applications.erase(listed);
    else
      listed->second = option == "--blockapp";
  }

  const Set& set;
  Expected expected;
};

/// @}
/// @name Random arguments
/// @{

const Words hostilePaths = {"/Applications/A.app",
                            "/Applications/B b.app",
                            "/a'b\"c",
                            "/$HOME/`touch hacked`/$(touch hacked)",
                            "/${x:-$(touch hacked)}",
                            "/*/?[a-z]*",
                            "/back\\slash\\n\\",
                            "/two\nlines\n",
                            "/ends in a line\n\n",
                            "/-n",
                            "/ ",
                            "/tab\there ",
                            "/& | > < ( ) { } ! # ~",
                            "/%s%n%d",
                            "/\xd0\xb4\xd0\xb0.app",
                            "/\xff\xfe\x80\x81\x82\x88",
                            "/\xc0\xaf..\xed\xa0\x80",
                            "/\x01\x02\x1b[31m\x7f",
                            "--setglobalstate",
                            "-x",
                            "-",
                            "relative/path",
                            "*",
                            " /blank",
                            "~",
                            "\n",
                            "\x80",
                            ""};
const Words wrongSwitches = {"", "ON", "on ", " off", "-n", "1", "*", "on\n", "on;off", "$(true)", "o\xff"};

class Dice
{
public:
  explicit Dice(unsigned seed) : random(seed) {}

  Set Roll()
  {
    Set set;
    const int count = OneIn(20) ? Below(13) : static_cast<int>(wantedCount);
    for (int i = 0; i < count; ++i)
      set.arguments.push_back(i < static_cast<int>(switchCount) ? RollSwitch() : RollList());
    for (int listed = Below(4); listed > 0; --listed)
      AddApplication(set.state);
    set.state.isEnabled = OneIn(2);
    set.state.stealthMode = OneIn(2);
    set.isNewer = OneIn(2);
    set.state.allowSignedApp = set.isNewer && OneIn(2);
    set.failing = RollOptions();
    set.refusing = RollOptions();
    return set;
  }

private:
  int Below(int sides) { return static_cast<int>(random() % static_cast<unsigned>(sides)); }
  bool OneIn(int sides) { return Below(sides) == 0; }
  const std::string& OneOf(const Words& words) { return words[Below(static_cast<int>(words.size()))]; }

  QStringList RollOptions()
  {
    QStringList rolled;
    if (OneIn(3))
      for (int count = 1 + Below(2); count > 0; --count)
        rolled.append(QLatin1String(options[Below(static_cast<int>(wantedCount))]));
    return rolled;
  }

  std::string RollSwitch()
  {
    if (OneIn(8))
      return OneOf(wrongSwitches);
    return OneIn(2) ? "on" : "off";
  }

  // Any byte but the one that ends an argument.
  std::string RollBytes()
  {
    static const std::string special = "/ '\"`$(){}[]*?\\-;\n\t~!#&|<>%=";
    std::string bytes = OneIn(8) ? "" : "/";
    for (int size = Below(16); size > 0; --size)
      bytes +=
          OneIn(2) ? special[Below(static_cast<int>(special.size()))] : static_cast<char>(1 + Below(255));
    return bytes;
  }

  std::string RollPath() { return OneIn(4) ? RollBytes() : OneOf(hostilePaths); }

  std::string RollList()
  {
    std::string list;
    for (int count = OneIn(200) ? 20 + Below(60) : Below(4); count > 0; --count)
      list += RollPath() + (count > 1 || OneIn(4) ? ";" : "") + (OneIn(6) ? ";;" : "");
    return list;
  }

  void AddApplication(State& state)
  {
    const QByteArray path = QByteArray::fromStdString(OneOf(hostilePaths));
    for (const auto& application : state.applications)
      if (application.first == path)
        return;
    if (path.startsWith('/'))
      state.applications.append({path, OneIn(2)});
  }

  std::mt19937 random;
};

/// @}

unsigned Setting(const char* name, unsigned otherwise)
{
  bool isNumber = false;
  const unsigned value = qgetenv(name).toUInt(&isNumber);
  return isNumber ? value : otherwise;
}

class FirewallOracleTest : public testing::TestWithParam<Shell>
{
protected:
  void SetUp() override
  {
    if (FindShell(GetParam()).isEmpty())
      GTEST_SKIP() << "There is no " << GetParam().words.front() << " on this machine";
    ASSERT_TRUE(QDir().mkpath(folder));
    ConfigureScript(QStringLiteral(TAVRIK_FIREWALL_SCRIPT), toolPath, script);
  }

  void TearDown() override { QDir(folder).removeRecursively(); }

  // Returns how often the tool was run.
  std::size_t Compare(const Set& set)
  {
    FakeFirewall tool(toolPath);
    tool.Set(set.state);
    tool.Fail(set.failing);
    tool.Refuse(set.refusing);
    if (set.isNewer)
      tool.BecomeNewer();
    const Expected expected = Oracle(set).Run();
    const ScriptOutcome outcome = RunScript(GetParam(), script, set.arguments, folder);
    EXPECT_EQ(expected.status, outcome.status);
    EXPECT_EQ(expected.errors, outcome.errors.toStdString());
    EXPECT_STREQ("", outcome.output.constData());
    EXPECT_EQ(expected.calls, tool.Calls());
    EXPECT_TRUE(expected.state == tool.Get());
    EXPECT_FALSE(QFile::exists(folder + "/hacked"));
    return expected.calls.size();
  }

  const QString folder = QDir::tempPath() + QStringLiteral("/firewall-oracle");
  const QString script = folder + QStringLiteral("/Firewall");
  const QString toolPath = folder + QStringLiteral("/the tool");
};

INSTANTIATE_TEST_SUITE_P(Under, FirewallOracleTest, testing::ValuesIn(shells),
                         [](const auto& info) { return info.param.name; });

} // namespace

TEST_P(FirewallOracleTest, RandomArgumentsDoWhatTheOracleSays)
{
  const unsigned sets = Setting("TAVRIK_SCRIPT_SETS", 100);
  const unsigned first = Setting("TAVRIK_SCRIPT_SEED", 0);
  const int mostDifferences = 10;
  std::size_t runs = 0;
  int differences = 0;
  unsigned done = 0;
  QElapsedTimer timer;
  for (timer.start(); done < sets && differences < mostDifferences; ++done)
  {
    SCOPED_TRACE("seed " + std::to_string(first + done));
    const int before = testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
    runs += Compare(Dice(first + done).Roll());
    if (testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count() > before)
      ++differences;
  }
  std::printf("%s: %u sets, %zu runs of the tool, %d sets that differ, %.1f s\n", GetParam().name, done, runs,
              differences, static_cast<double>(timer.elapsed()) / 1000);
}
