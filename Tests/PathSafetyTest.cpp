#include <Common/PathSafety.cpp>

#include "Support/Child.h"
#include "Support/ToolFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <atomic>
#include <ctime>
#include <random>
#include <thread>

using namespace Tavrik::Cleaner;
using testing::ElementsAre;
using testing::IsEmpty;

void PrintTo(const QString& text, std::ostream* stream)
{
  *stream << (text.isNull() ? "null" : "\"" + text.toStdString() + "\"");
}

namespace
{

struct PathCase
{
  const char* name;
  QString path;
  bool isSafe;
  bool isScannable;
};

void PrintTo(const PathCase& pathCase, std::ostream* stream)
{
  *stream << pathCase.path.toStdString();
}

class PathRules : public testing::TestWithParam<PathCase>
{
};

TEST_P(PathRules, DecideByTheText)
{
  EXPECT_EQ(IsPathSafe(GetParam().path), GetParam().isSafe);
  EXPECT_EQ(IsPathScannable(GetParam().path), GetParam().isScannable);
}

INSTANTIATE_TEST_SUITE_P(
    PathSafety, PathRules,
    testing::Values(
        PathCase{"UsersItself", "/Users", true, true},
        PathCase{"ApplicationsItself", "/Applications", true, true}, PathCase{"TheRoot", "/", false, false},
        PathCase{"LibraryItself", "/Library", false, true},
        PathCase{"AppleSystemLog", "/private/var/log/asl/x", true, true},
        PathCase{"LogWithoutPrivate", "/var/log/x", false, false},
        PathCase{"LocalisationOfTheSystem", "/System/Library/Frameworks/X.framework/Resources/fr.lproj", true,
                 true},
        PathCase{"InsideALocalisationOfTheSystem", "/System/Library/X.framework/fr.lproj/a", false, false},
        PathCase{"ParentBeforeThePrefix", "/Users/../etc", false, false},
        PathCase{"ParentBeforeLocalisation", "/a/../fr.lproj", false, false},
        PathCase{"ParentAtTheEnd", "/Users/a/..", false, false},
        PathCase{"DotsInAName", "/Users/..b", true, true},
        PathCase{"DotsAfterAName", "/Users/b..", true, true},
        PathCase{"ThreeDots", "/Users/.../b", true, true}, PathCase{"OneDot", "/Users/./b", true, true},
        PathCase{"LongerName", "/Usersfoo", false, false}, PathCase{"OtherCase", "/users/a", false, false},
        PathCase{"Empty", "", false, false}, PathCase{"Null", QString(), false, false},
        PathCase{"Relative", "Users/a", false, false},
        PathCase{"RelativeLocalisation", "fr.lproj", false, false},
        PathCase{"Backslashes", "\\Users\\a", false, false},
        PathCase{"DoubledFirstSeparator", "//Users/a", false, false},
        PathCase{"TrailingSeparator", "/Users/", true, true},
        PathCase{"LocalisationWithTrailingSeparator", "/x/fr.lproj/", false, false},
        PathCase{"OnlyTheSuffix", "/.lproj", true, true},
        PathCase{"SuffixInCapitals", "/x/fr.LPROJ", false, false},
        PathCase{"LibraryLogs", "/Library/Logs", true, true},
        PathCase{"SystemLibraryLogs", "/System/Library/Logs/x", true, true},
        PathCase{"LibraryCaches", "/Library/Caches/x", true, true},
        PathCase{"SystemLibraryCaches", "/System/Library/Caches", true, true},
        PathCase{"LaunchAgents", "/Library/LaunchAgents/x", true, true},
        PathCase{"LaunchDaemons", "/Library/LaunchDaemons/x", true, true},
        PathCase{"LaunchDaemonsLonger", "/Library/LaunchDaemons2", false, true},
        PathCase{"VarFolders", "/var/folders/zz/x", true, true},
        PathCase{"Preferences", "/Library/Preferences/x", false, true},
        PathCase{"LibraryLonger", "/Library2", false, false},
        PathCase{"SystemLibrary", "/System/Library/Frameworks", false, false},
        PathCase{"VolumesThatAreNotThere", "/Volumes/No such volume/x", false, false}),
    [](const testing::TestParamInfo<PathCase>& info) { return std::string(info.param.name); });

// The ".." rule refuses to clean it, but the system prefixes are then compared as plain text.
TEST(PathSafety, TheParentOfLibraryIsScannable)
{
  EXPECT_FALSE(IsPathSafe("/Library/.."));
  EXPECT_TRUE(IsPathScannable("/Library/.."));
}

TEST(PathSafety, AnswersFromManyThreadsAtOnce)
{
  std::vector<std::thread> threads;
  std::atomic<int> wrong{0};
  for (int i = 0; i < 8; ++i)
    threads.emplace_back(
        [&wrong]
        {
          for (int j = 0; j < 200; ++j)
            if (!IsPathSafe("/Users/a") || IsPathSafe("/Volumes/No such volume") ||
                !IsPathScannable("/Library"))
              ++wrong;
        });
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(wrong, 0);
}

QOperatingSystemVersion MacOS(int major, int minor, int micro = -1)
{
  return QOperatingSystemVersion(QOperatingSystemVersion::MacOS, major, minor, micro);
}

TEST(SystemLibraryPrefixes, HoldTheSystemsFolderBefore10_11)
{
  for (const QOperatingSystemVersion& version : {MacOS(10, 6), MacOS(10, 10), MacOS(10, 10, 5), MacOS(9, 22)})
    EXPECT_THAT(MakeSystemLibraryPrefixes(version), ElementsAre("/Library", "/System/Library"));
}

TEST(SystemLibraryPrefixes, HoldOnlyLibraryFrom10_11On)
{
  for (const QOperatingSystemVersion& version :
       {MacOS(10, 11), MacOS(10, 11, 6), MacOS(10, 13), MacOS(10, 16), MacOS(11, 0), MacOS(26, 1)})
    EXPECT_THAT(MakeSystemLibraryPrefixes(version), ElementsAre("/Library"));
}

TEST(SystemLibraryPrefixes, HoldOnlyLibraryOnOtherSystems)
{
  EXPECT_THAT(MakeSystemLibraryPrefixes(QOperatingSystemVersion(QOperatingSystemVersion::Unknown, 5, 0)),
              ElementsAre("/Library"));
#ifdef __linux__
  EXPECT_THAT(GetSystemLibraryPrefixes(), ElementsAre("/Library"));
#endif
}

TEST(SystemLibraryPrefixes, AreHandedOutAsACopy)
{
  QStringList copy = GetSystemLibraryPrefixes();
  copy.clear();
  EXPECT_FALSE(GetSystemLibraryPrefixes().isEmpty());
}

void Touch(const QString& path)
{
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
}

TEST(Volumes, AreSafeForWhatExistsOnAWritableOne)
{
  RunWithOwnVolumes(
      []
      {
        ASSERT_TRUE(MountVolume("/Volumes/Data"));
        Touch("/Volumes/Data/x");
        EXPECT_TRUE(IsPathSafe("/Volumes/Data/x"));
        EXPECT_TRUE(IsPathScannable("/Volumes/Data/x"));
        EXPECT_TRUE(IsPathSafe("/Volumes/Data"));
        EXPECT_FALSE(IsPathSafe("/Volumes/Data/missing"));
        EXPECT_FALSE(IsPathSafe("/Volumes/Data/x/../x"));
        EXPECT_FALSE(IsPathSafe("/Volumes/data/x"));
      });
}

TEST(Volumes, AreNotSafeWhenReadOnly)
{
  RunWithOwnVolumes(
      []
      {
        ASSERT_TRUE(MountVolume("/Volumes/Data"));
        Touch("/Volumes/Data/x");
        ASSERT_TRUE(MakeReadOnly("/Volumes/Data"));
        EXPECT_FALSE(IsPathSafe("/Volumes/Data/x"));
        EXPECT_TRUE(IsPathSafe("/Volumes/Data/fr.lproj"));
      });
}

TEST(Volumes, DoNotCoverAFolderThatIsNoMount)
{
  RunWithOwnVolumes(
      []
      {
        ASSERT_TRUE(QDir().mkpath("/Volumes/Plain/x"));
        EXPECT_FALSE(IsPathSafe("/Volumes/Plain/x"));
        EXPECT_FALSE(IsPathSafe("/Volumes"));
      });
}

TEST(Volumes, AMountClaimsALongerNamesPathsToo)
{
  RunWithOwnVolumes(
      []
      {
        ASSERT_TRUE(MountVolume("/Volumes/Da"));
        ASSERT_TRUE(MountVolume("/Volumes/Data"));
        Touch("/Volumes/Data/x");
        ASSERT_TRUE(MakeReadOnly("/Volumes/Data"));
        EXPECT_TRUE(IsPathSafe("/Volumes/Data/x")) << "the writable /Volumes/Da answers for it";
        EXPECT_FALSE(IsPathSafe("/Volumes/Data/missing"));
      });
}

TEST(Volumes, AFolderWhoseNameOnlyBeginsWithVolumesCounts)
{
  RunWithOwnVolumes(
      []
      {
        ASSERT_TRUE(MountVolume("/VolumesToo"));
        Touch("/VolumesToo/x");
        EXPECT_TRUE(IsPathSafe("/VolumesToo/x"));
      });
}

TEST(Volumes, MountedElsewhereDoNotCount)
{
  RunWithOwnVolumes(
      []
      {
        ASSERT_TRUE(MountVolume("/Media"));
        Touch("/Media/x");
        EXPECT_FALSE(IsPathSafe("/Media/x"));
      });
}

// What the answer must be, word by word; quadratic.
QStringList FilterSubDirsLiterally(const QStringList& dirs)
{
  if (dirs.contains("/") || dirs.contains("\\"))
    return {"/"};
  std::vector<bool> isKept;
  QStringList canonical;
  for (const QString& dir : dirs)
  {
    isKept.push_back(QFileInfo::exists(dir));
    canonical += QFileInfo(dir).canonicalFilePath();
  }
  for (int i = 0; i < dirs.size(); ++i)
    for (int j = 0; isKept[i] && j < dirs.size(); ++j)
      if (j != i && (canonical[j].startsWith(canonical[i] + "/") || canonical[j] == canonical[i]))
        isKept[j] = false;
  QStringList result;
  for (int i = 0; i < dirs.size(); ++i)
    if (isKept[i])
      result += dirs[i];
  return result;
}

class FilterSubDirsTest : public testing::Test
{
protected:
  QString At(const QString& name) const { return folder.path() + "/" + name; }

  void Make(const QStringList& names) const
  {
    for (const QString& name : names)
      ASSERT_TRUE(QDir().mkpath(At(name)));
  }

  QTemporaryDir folder;
};

TEST_F(FilterSubDirsTest, KeepsTheOutermostOfTheExisting)
{
  Make({"Library/Caches"});
  EXPECT_THAT(FilterSubDirs({At("Library"), At("Library/Caches"), At("Missing"), At("Library")}),
              ElementsAre(At("Library")));
}

TEST_F(FilterSubDirsTest, AnswersTheRootForTheRootAndForABackslash)
{
  Make({"a"});
  EXPECT_THAT(FilterSubDirs({At("a"), "\\"}), ElementsAre("/"));
  EXPECT_THAT(FilterSubDirs({At("a"), "/", At("a")}), ElementsAre("/"));
  EXPECT_THAT(FilterSubDirs({"\\\\", "\\a"}), IsEmpty());
}

TEST_F(FilterSubDirsTest, DropsWhatIsMissing)
{
  EXPECT_THAT(FilterSubDirs({}), IsEmpty());
  EXPECT_THAT(FilterSubDirs({"", QString(), At("missing")}), IsEmpty());
}

TEST_F(FilterSubDirsTest, KeepsTheInputsTextAndOrder)
{
  Make({"a", "b", "c"});
  EXPECT_THAT(FilterSubDirs({At("c/"), At("./a"), At("b//"), At("a")}),
              ElementsAre(At("c/"), At("./a"), At("b//")));
}

TEST_F(FilterSubDirsTest, KeepsTheFirstOfTheSameDirectory)
{
  Make({"a/b"});
  ASSERT_TRUE(QFile::link(At("a"), At("link")));
  EXPECT_THAT(FilterSubDirs({At("link"), At("a")}), ElementsAre(At("link")));
  EXPECT_THAT(FilterSubDirs({At("a"), At("link")}), ElementsAre(At("a")));
  EXPECT_THAT(FilterSubDirs({At("link/b"), At("a")}), ElementsAre(At("a")));
}

TEST_F(FilterSubDirsTest, DoesNotTakeALongerNameForASubdirectory)
{
  Make({"a", "a-1", "a.b/c", "a0", "a/b"});
  EXPECT_THAT(FilterSubDirs({At("a"), At("a-1"), At("a.b/c"), At("a0"), At("a/b")}),
              ElementsAre(At("a"), At("a-1"), At("a.b/c"), At("a0")));
}

TEST_F(FilterSubDirsTest, AnEntryThatResolvesToTheRootCoversOnlyItsEquals)
{
  Make({"a"});
  ASSERT_TRUE(QFile::link("/", At("root")));
  EXPECT_THAT(FilterSubDirs({At("a"), At("root"), "//", At("root")}), ElementsAre(At("a"), At("root")));
}

TEST_F(FilterSubDirsTest, TakesFilesLikeDirectories)
{
  Make({"a"});
  Touch(At("a/file"));
  EXPECT_THAT(FilterSubDirs({At("a/file"), At("a/file")}), ElementsAre(At("a/file")));
  EXPECT_THAT(FilterSubDirs({At("a/file"), At("a")}), ElementsAre(At("a")));
}

TEST_F(FilterSubDirsTest, AnswersInADeletedFolderAsTheLiteralRulesDo)
{
  Make({"gone", "a"});
  const QStringList dirs{At("a"), ".", "..", At("a"), "./"};
  EXPECT_TRUE(RunInChild(
      [&]
      {
        ASSERT_TRUE(QDir::setCurrent(At("gone")));
        ASSERT_TRUE(QDir().rmdir(At("gone")));
        EXPECT_EQ(FilterSubDirs(dirs), FilterSubDirsLiterally(dirs));
        EXPECT_TRUE(QDir::setCurrent("/"));
      }));
}

// A tree of directories whose names sort around the separator, with links among them.
class RandomTree
{
public:
  RandomTree(const QString& root, unsigned seed) : random(seed)
  {
    directories += root;
    const QStringList names{"a", "a-", "a.b", "a0", "b", "B", "\u00e4", " "};
    for (int i = 0; i < 25; ++i)
    {
      const QString path = Any(directories) + "/" + Any(names);
      if (QDir().mkdir(path))
        directories += path;
    }
    spellings = directories;
    for (int i = 0; i < 8; ++i)
    {
      const QString path = Any(directories) + "/link" + QString::number(i);
      const QString target = i == 0 ? "/" : i == 1 ? root + "/missing" : Any(directories);
      if (QFile::link(target, path))
        spellings += {path, path + "/a"};
    }
    spellings += {"//", "", "missing", root + "/missing", root + "/../" + QDir(root).dirName(), "."};
  }

  QStringList MakeList()
  {
    QStringList list;
    const int size = static_cast<int>(random() % 20);
    for (int i = 0; i < size; ++i)
      list += Any(spellings) + (random() % 6 == 0 ? "/" : "");
    list.removeAll("/");
    if (random() % 40 == 0)
      list += random() % 2 ? "/" : "\\";
    return list;
  }

private:
  QString Any(const QStringList& texts) { return texts.at(static_cast<int>(random() % texts.size())); }

  std::mt19937 random;
  QStringList directories;
  QStringList spellings;
};

TEST(FilterSubDirs, AnswersAsTheLiteralRulesDoOnRandomTrees)
{
  int reduced = 0;
  for (unsigned seed = 0; seed < 40; ++seed)
  {
    const QTemporaryDir folder;
    RandomTree tree(folder.path(), seed);
    for (int i = 0; i < 50; ++i)
    {
      const QStringList dirs = tree.MakeList();
      const QStringList expected = FilterSubDirsLiterally(dirs);
      ASSERT_EQ(FilterSubDirs(dirs), expected) << "seed " << seed << ": " << dirs.join(", ").toStdString();
      reduced += expected.size() > 1 && expected.size() < dirs.size();
    }
  }
  EXPECT_GT(reduced, 500) << "the trees do not ask much";
}

TEST(FilterSubDirs, IsDoneWithManyDirectoriesInSeconds)
{
  const int count = 10000;
  const QTemporaryDir folder;
  QStringList dirs;
  for (int i = 0; i < count; ++i)
  {
    dirs += folder.path() + "/" + QString::number(i);
    ASSERT_TRUE(QDir().mkdir(dirs.last()));
  }
  // The processor's time, as the machine may be busy with other things.
  const std::clock_t start = std::clock();
  EXPECT_EQ(FilterSubDirs(dirs), dirs);
  EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 5) << "each was compared with each";
}

// Programs that load the library where getconf is what a test wants it to be, or is missing.
class CachePath : public testing::Test
{
protected:
  void SetUp() override { ASSERT_TRUE(QDir().mkpath(Cache())); }

  QString Cache() const { return tools.FilePath("cache"); }

  void MakeGetconf(const QByteArray& script) { tools.AddTool("getconf", "PATH=/usr/bin:/bin\n" + script); }

  // What the library found as it was loaded into a new process: "null", or the path in brackets.
  static QString Load(const QString& searchPath)
  {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("PATH", searchPath);
    QProcess program;
    program.setProcessEnvironment(environment);
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    program.start(PATH_SAFETY_PROGRAM, QStringList());
    EXPECT_TRUE(program.waitForFinished(90000));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0);
    return QString::fromLocal8Bit(program.readAllStandardOutput());
  }

  QString Load() const { return Load(tools.FilePath("")); }
  QString Found() const { return "[" + Cache() + "]"; }

  ToolFolder tools;
};

TEST_F(CachePath, IsTheFolderThatGetconfNames)
{
  MakeGetconf("[ $# = 1 ] && [ \"$1\" = DARWIN_USER_CACHE_DIR ] && echo \"$here/cache\"");
  EXPECT_EQ(Load(), Found());
}

TEST_F(CachePath, IsFoundOutOnceAsTheLibraryIsLoaded)
{
  const QString former = GetDarwinUserCachePath();
  MakeGetconf("echo \"$here/cache\"");
  EXPECT_EQ(FindDarwinUserCachePath(), Cache());
  EXPECT_EQ(GetDarwinUserCachePath(), former);
}

TEST_F(CachePath, LosesItsTrailingSeparator)
{
  MakeGetconf("echo \"$here/cache/\"");
  EXPECT_EQ(Load(), Found());
}

TEST_F(CachePath, IsTakenFromTheFirstLineAlone)
{
  MakeGetconf("printf '%s\\nmore\\n' \"$here/cache\"");
  EXPECT_EQ(Load(), Found());
  MakeGetconf("printf '%s' \"$here/cache\"");
  EXPECT_EQ(Load(), Found()) << "without a line's end";
  MakeGetconf("printf '\\n%s\\n' \"$here/cache\"");
  EXPECT_EQ(Load(), "null");
}

TEST_F(CachePath, IsNullWhereNoSuchFolderExists)
{
  MakeGetconf("echo \"$here/missing\"");
  EXPECT_EQ(Load(), "null");
  MakeGetconf("echo \"$here/getconf\"");
  EXPECT_EQ(Load(), "null") << "a file is no folder";
  MakeGetconf("echo \" $here/cache\"");
  EXPECT_EQ(Load(), "null") << "nothing is trimmed";
}

TEST_F(CachePath, IsNullWithoutGetconf)
{
  EXPECT_EQ(Load(), "null");
  EXPECT_EQ(Load(""), "null") << "an empty search path";
  tools.AddFile("getconf", "#!/bin/sh\necho /\n");
  EXPECT_EQ(Load(), "null") << "a file that cannot be run";
}

TEST_F(CachePath, IsNullWhenGetconfIsBroken)
{
  for (const char* const script : {"echo 'getconf: Unrecognized variable' >&2; exit 2", "kill -SEGV $$",
                                   "head -c 300000 /dev/urandom", ":"})
  {
    MakeGetconf(script);
    EXPECT_EQ(Load(), "null") << script;
  }
}

TEST_F(CachePath, IsWaitedForWhenGetconfIsSlow)
{
  MakeGetconf("sleep 2; echo \"$here/cache\"");
  EXPECT_EQ(Load(), Found());
}

TEST_F(CachePath, IsGivenUpWhenGetconfNeverEnds)
{
  MakeGetconf("exec sleep 600");
  QElapsedTimer timer;
  timer.start();
  EXPECT_EQ(Load(), "null");
  EXPECT_LT(timer.elapsed(), 60000);
}

} // namespace
