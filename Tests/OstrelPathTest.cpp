// Drives "ostrel path", and compares its reasons with the library's answers.

#include "ExitCodes.h"
#include "PathRules.h"
#include "Support/HostProcess.h"
#include "Support/Programs.h"
#include "Support/PseudoTerminal.h"

#include <Common/PathSafety.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <random>
#include <unistd.h>

using namespace Ostrel;
using namespace Tavrik::Cleaner;

namespace
{

Outcome RunExplain(const QStringList& arguments)
{
  return RunHost(QStringLiteral(OSTREL), QStringList{"path", "explain"} + arguments);
}

QJsonObject Explain(const QString& path)
{
  const Outcome outcome = RunExplain({"--json", "--", path});
  EXPECT_EQ(outcome.code, Done) << outcome.err.toStdString();
  EXPECT_EQ(outcome.out.count('\n'), 1);
  const QJsonObject object = QJsonDocument::fromJson(outcome.out).object();
  EXPECT_EQ(object["path"].toString(), path);
  return object;
}

bool IsSafe(SafetyRule rule)
{
  return rule == SafetyRule::LanguageFolder || rule == SafetyRule::InsideFolder ||
         rule == SafetyRule::OnVolume;
}

QString MakePath(std::mt19937& random)
{
  static const QStringList pieces{
      "Users",         "Library",  "Logs", "Caches", "System", "Applications", "LaunchAgents",
      "LaunchDaemons", "private",  "var",  "log",    "asl",    "folders",      "Volumes",
      "Volumes2",      "a",        "..",   ".",      "",       "de.lproj",     ".lproj",
      "Foo.app",       "Usersfoo", "a..b", "etc",    "tmp",    "dev",          "x.lproj2",
      "library",       "\n"};
  QString path;
  const unsigned int count = random() % 6;
  for (unsigned int i = 0; i < count; ++i)
    path += (i == 0 && random() % 8 == 0 ? QString() : QString("/")) + pieces.at(random() % pieces.size());
  return random() % 10 == 0 ? path + "/" : path;
}

TEST(PathRules, AlwaysAgreeWithTheLibrary)
{
  std::mt19937 random(7);
  int safe = 0;
  int inside = 0;
  for (int i = 0; i < 20000; ++i)
  {
    const QString path = MakePath(random);
    const SafetyDecision safety = ExplainSafety(path);
    const SearchDecision search = ExplainSearch(path);
    SCOPED_TRACE(path.toStdString());
    ASSERT_EQ(safety.isSafe, IsPathSafe(path));
    ASSERT_EQ(IsSafe(safety.rule), IsPathSafe(path));
    ASSERT_EQ(search.isScannable, IsPathScannable(path));
    ASSERT_EQ(search.rule != SearchRule::Elsewhere, IsPathScannable(path));
    ASSERT_EQ(search.rule == SearchRule::Safe, IsPathSafe(path));
    ASSERT_EQ(safety.rule == SafetyRule::Relative, !path.startsWith('/'));
    safe += safety.isSafe;
    if (safety.rule != SafetyRule::InsideFolder)
      continue;
    ++inside;
    ASSERT_TRUE(path == safety.folder || path.startsWith(safety.folder + "/"));
    ASSERT_TRUE(IsPathSafe(safety.folder));
    ASSERT_TRUE(IsPathSafe(safety.folder + "/anything"));
    ASSERT_FALSE(IsPathSafe(safety.folder + "anything"));
    ASSERT_FALSE(IsPathSafe(QFileInfo(safety.folder).path() + "/anything"));
  }
  EXPECT_GT(safe, 1000);
  EXPECT_GT(inside, 500);
  EXPECT_GT(20000 - safe, 1000);
}

TEST(PathRules, NameTheRuleThatDecides)
{
  EXPECT_EQ(ExplainSafety("relative").rule, SafetyRule::Relative);
  EXPECT_EQ(ExplainSafety("").rule, SafetyRule::Relative);
  EXPECT_EQ(ExplainSafety("/Users/../etc").rule, SafetyRule::ParentComponent);
  EXPECT_EQ(ExplainSafety("/System/x/fr.lproj").rule, SafetyRule::LanguageFolder);
  EXPECT_EQ(ExplainSafety("/Users/de.lproj").rule, SafetyRule::LanguageFolder);
  EXPECT_EQ(ExplainSafety("/Users").folder, "/Users");
  EXPECT_EQ(ExplainSafety("/Users/a/b").folder, "/Users");
  EXPECT_EQ(ExplainSafety("/System/Library/Caches/x").folder, "/System/Library/Caches");
  EXPECT_EQ(ExplainSafety("/private/var/log/asl/").folder, "/private/var/log/asl");
  EXPECT_EQ(ExplainSafety("/Volumes/nonexistent/x").rule, SafetyRule::MissingOnVolume);
  EXPECT_EQ(ExplainSafety("/").rule, SafetyRule::Elsewhere);
  EXPECT_EQ(ExplainSearch("/Library/Preferences/x").folder, "/Library");
  EXPECT_EQ(ExplainSearch("/Library/..").rule, SearchRule::SystemLibrary);
  EXPECT_EQ(ExplainSearch("/etc").rule, SearchRule::Elsewhere);
}

TEST(PathRules, TakeNoTimeOverAPathOfManyComponents)
{
  const QString path = "/Users" + QString("/a").repeated(60000);
  EXPECT_EQ(ExplainSafety(path).folder, "/Users");
  EXPECT_EQ(ExplainSafety("/etc" + path).rule, SafetyRule::Elsewhere);
}

TEST(PathExplain, InJsonHasTheseKeys)
{
  const QJsonObject explained = Explain("/Users/u/Foo.app/Contents/Resources/zh-Hans.lproj/com.example.tool");
  EXPECT_EQ(explained.keys(),
            (QStringList{"bundle", "bundleIdentifier", "disk", "kind", "language", "languageFolder", "path",
                         "readable", "removable", "removableWhole", "safe", "safeFolder", "safeRule",
                         "scannable", "scannableFolder", "scannableRule", "writable"}));
  EXPECT_EQ(explained["bundle"].toString(), "/Users/u/Foo.app");
  EXPECT_EQ(explained["bundleIdentifier"].toString(), "com.example.tool");
  EXPECT_EQ(explained["language"].toString(), "zh");
  EXPECT_EQ(explained["languageFolder"].toString(), "/Users/u/Foo.app/Contents/Resources/zh-Hans.lproj");
  EXPECT_EQ(explained["safe"].toBool(), true);
  EXPECT_EQ(explained["safeRule"].toString(), "inside-folder");
  EXPECT_EQ(explained["safeFolder"].toString(), "/Users");
  EXPECT_EQ(explained["scannableRule"].toString(), "safe");
  EXPECT_EQ(explained["kind"].toString(), "missing");
}

TEST(PathExplain, TellsWhatIsThere)
{
  const QString file = QDir::tempPath() + "/file";
  const QString link = QDir::tempPath() + "/link";
  WriteText(file, "x");
  ASSERT_TRUE(QFile::link("file", link));
  EXPECT_EQ(Explain(file)["kind"].toString(), "file");
  EXPECT_TRUE(Explain(file)["readable"].toBool());
  EXPECT_TRUE(Explain(file)["removableWhole"].toBool());
  EXPECT_EQ(Explain(link)["kind"].toString(), "link");
  EXPECT_EQ(Explain(QDir::tempPath() + "/")["kind"].toString(), "folder");
  EXPECT_EQ(Explain("/dev/null")["kind"].toString(), "other");
  QFile::remove(file);
  EXPECT_EQ(Explain(link)["kind"].toString(), "dangling-link");
  QFile::remove(link);
}

TEST(PathExplain, TakesHostilePaths)
{
  for (const QString& path :
       {QString("/a\nb\x1B[31m"), QString("-x"), QString(""), QString("/"), QString("//"),
        QString("/Users//"), "/" + QString("x").repeated(100000), QString::fromUtf8("/日本/\xE2\x80\xAE")})
    Explain(path);
  const Outcome human = RunExplain({QString("/a\nb\x1B[31m")});
  EXPECT_TRUE(human.out.startsWith("\"/a\\nb\\u001b[31m\"\n")) << human.out.toStdString();
  EXPECT_FALSE(human.out.contains('\x1B'));
}

TEST(PathExplain, PathThatIsNoTextIsRefused)
{
  qputenv("LC_ALL", "C.UTF-8");
  const Outcome outcome =
      RunHost("sh", {"-c", "exec \"$0\" path explain \"$(printf '/Users/a\\377')\"", OSTREL});
  EXPECT_EQ(outcome.code, WrongUsage);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "ostrel: the path is no text in this locale: /Users/a\\xff\n");
}

TEST(PathExplain, ChecksWhetherAllMayBeRemoved)
{
  EXPECT_EQ(RunExplain({"/etc", "/Users/a"}).code, Done);
  EXPECT_EQ(RunExplain({"--check", "/Users/a", "/etc"}).code, Refused);
  EXPECT_EQ(RunExplain({"--check", "/etc", "/Users/nonexistent/a"}).code, Refused);
  EXPECT_EQ(RunExplain({"--check", "/Users/nonexistent/a"}).code, NotPermitted);
  EXPECT_EQ(RunExplain({"--check", QDir::tempPath() + "/de.lproj"}).code, Done);
  EXPECT_EQ(RunExplain({}).code, WrongUsage);
}

TEST(PathExplain, OnATerminalFitsItAndIsColoured)
{
  for (const char* name : {"COLUMNS", "NO_COLOR", "LC_ALL", "LANG", "LANGUAGE"})
    qunsetenv(name);
  qputenv("TERM", "xterm");
  PseudoTerminal terminal(80, OSTREL, {"path", "explain", "/etc/" + QString("x").repeated(300) + ".app/a"});
  EXPECT_EQ(terminal.Finish(), Done);
  const QString screen = QString::fromUtf8(terminal.Screen());
  EXPECT_TRUE(screen.contains("\x1B[31mno")) << screen.toStdString();
  for (QString line : screen.split('\n'))
  {
    for (const char* code : {"\x1B[0m", "\x1B[1m", "\x1B[31m", "\x1B[32m"})
      line.remove(code);
    EXPECT_LE(line.size(), 80) << line.toStdString();
  }
}

} // namespace
