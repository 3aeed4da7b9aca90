#include <Common/AccessChecks.cpp>

#include "Support/Child.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <grp.h>
#include <pthread.h>
#include <random>
#include <string>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>

using namespace Tavrik::Cleaner;

namespace
{

// Ids that no machine gives out, so that no file of it is theirs.
const uid_t user = 54001;
const uid_t stranger = 54002;
const gid_t group = 54101;
const gid_t supplementary = 54102;
const gid_t foreignGroup = 54103;
const Identity someone{user, user, group, {supplementary, 54104}};

QString Text(const std::string& path)
{
  return QString::fromLocal8Bit(path.c_str());
}

class AccessChecksTest : public testing::Test
{
protected:
  void SetUp() override
  {
    // Other users must get through to the files.
    ASSERT_EQ(chmod(std::getenv("HOME"), 0711), 0);
    ASSERT_EQ(chmod(std::getenv("TMPDIR"), 0711), 0);
    ASSERT_EQ(chmod(qPrintable(folder.path()), 0755), 0);
  }

  std::string At(const std::string& name) const { return folder.path().toStdString() + "/" + name; }
  QString Path(const std::string& name) const { return Text(At(name)); }

  void Own(const std::string& name, uid_t owner, gid_t ownerGroup, mode_t mode) const
  {
    ASSERT_TRUE(geteuid() != 0 || chown(At(name).c_str(), owner, ownerGroup) == 0);
    ASSERT_EQ(chmod(At(name).c_str(), mode), 0);
  }

  void MakeFile(const std::string& name, uid_t owner, gid_t ownerGroup, mode_t mode) const
  {
    const int file = open(At(name).c_str(), O_CREAT | O_EXCL | O_WRONLY, 0600);
    ASSERT_GE(file, 0);
    close(file);
    Own(name, owner, ownerGroup, mode);
  }

  void MakeFolder(const std::string& name, uid_t owner, gid_t ownerGroup, mode_t mode) const
  {
    ASSERT_EQ(mkdir(At(name).c_str(), 0700), 0);
    Own(name, owner, ownerGroup, mode);
  }

  // As a user without special rights: root becomes one, everybody else is one.
  testing::AssertionResult AsSomeone(const std::function<void()>& body) const
  {
    return geteuid() == 0 ? RunAs(someone, body) : RunInChild(body);
  }

  const QTemporaryDir folder;
};

class AccessChecksAsOthersTest : public AccessChecksTest
{
protected:
  void SetUp() override
  {
    if (geteuid() != 0)
      GTEST_SKIP() << "Only root can become another user";
    AccessChecksTest::SetUp();
  }
};

TEST_F(AccessChecksAsOthersTest, AnothersFileThatAllMayReadCanBeReadAndNotWritten)
{
  MakeFile("file", stranger, foreignGroup, 0644);
  EXPECT_TRUE(RunAs(someone,
                    [this]
                    {
                      EXPECT_TRUE(CanRead(Path("file")));
                      EXPECT_FALSE(CanWrite(Path("file")));
                    }));
}

TEST_F(AccessChecksAsOthersTest, AFileOfASupplementaryGroupCanBeRead)
{
  MakeFile("file", stranger, supplementary, 0640);
  EXPECT_TRUE(RunAs(someone,
                    [this]
                    {
                      EXPECT_TRUE(CanRead(Path("file")));
                      EXPECT_FALSE(CanWrite(Path("file")));
                    }));
}

TEST_F(AccessChecksAsOthersTest, RootsSupplementaryGroupsCountToo)
{
  MakeFile("file", stranger, supplementary, 0640);
  EXPECT_FALSE(CanRead(Path("file")));
  EXPECT_TRUE(RunInChild(
      [this]
      {
        ASSERT_EQ(setgroups(1, &supplementary), 0);
        EXPECT_TRUE(CanRead(Path("file")));
      }));
}

TEST_F(AccessChecksAsOthersTest, AFileOfTheEffectiveGroupCanBeWritten)
{
  MakeFile("file", stranger, group, 0020);
  const auto check = [this]
  {
    EXPECT_FALSE(CanRead(Path("file")));
    EXPECT_TRUE(CanWrite(Path("file")));
  };
  EXPECT_TRUE(RunAs(someone, check));
  EXPECT_TRUE(RunAs({user, user, group, {}}, check)) << "without supplementary groups";
}

TEST_F(AccessChecksAsOthersTest, AFileOfAForeignGroupIsRefused)
{
  MakeFile("file", stranger, foreignGroup, 0660);
  const auto check = [this]
  {
    EXPECT_FALSE(CanRead(Path("file")));
    EXPECT_FALSE(CanWrite(Path("file")));
  };
  EXPECT_TRUE(RunAs(someone, check));
  EXPECT_TRUE(RunAs({user, user, group, {}}, check));
}

TEST_F(AccessChecksAsOthersTest, TheGroupsAreTheSupplementaryOnesAndTheEffectiveOne)
{
  EXPECT_TRUE(RunAs(someone,
                    []
                    {
                      EXPECT_TRUE(CheckGroups(group));
                      EXPECT_TRUE(CheckGroups(supplementary));
                      EXPECT_TRUE(CheckGroups(54104));
                      EXPECT_FALSE(CheckGroups(foreignGroup));
                      EXPECT_FALSE(CheckGroups(0));
                    }));
  EXPECT_TRUE(RunAs({user, user, group, {}},
                    []
                    {
                      EXPECT_TRUE(CheckGroups(group));
                      EXPECT_FALSE(CheckGroups(supplementary));
                    }));
}

TEST_F(AccessChecksAsOthersTest, AnEntryInAnothersStickyFolderCannotBeRemovedByItsOwner)
{
  MakeFolder("shared", 0, 0, 01777);
  MakeFile("shared/file", user, group, 0644);
  EXPECT_TRUE(RunAs(someone,
                    [this]
                    {
                      EXPECT_FALSE(CanRemove(Path("shared/file")));
                      EXPECT_EQ(unlink(At("shared/file").c_str()), 0) << "the system is less strict";
                    }));
}

TEST_F(AccessChecksAsOthersTest, EverythingInOnesOwnStickyFolderCanBeRemoved)
{
  MakeFolder("shared", user, group, 01777);
  MakeFile("shared/file", stranger, foreignGroup, 0);
  EXPECT_TRUE(RunAs(someone, [this] { EXPECT_TRUE(CanRemove(Path("shared/file"))); }));
}

TEST_F(AccessChecksAsOthersTest, TheOwnerMayWhatEverybodyMay)
{
  MakeFile("file", user, group, 0006);
  EXPECT_TRUE(RunAs(someone,
                    [this]
                    {
                      EXPECT_TRUE(CanRead(Path("file")));
                      EXPECT_TRUE(CanWrite(Path("file")));
                      EXPECT_EQ(open(At("file").c_str(), O_RDONLY), -1)
                          << "the system goes by the owner's bits alone";
                    }));
}

TEST_F(AccessChecksAsOthersTest, TheUserFlagsAreThoseOfTheRealUser)
{
  MakeFile("file", user, foreignGroup, 0600);
  EXPECT_TRUE(RunAs({stranger, user, group, {}},
                    [this]
                    {
                      EXPECT_FALSE(CanRead(Path("file")));
                      EXPECT_FALSE(CanWrite(Path("file")));
                      EXPECT_GE(open(At("file").c_str(), O_RDWR), 0)
                          << "the system asks for the effective user";
                    }));
}

TEST_F(AccessChecksAsOthersTest, RootGetsNoBonus)
{
  MakeFile("file", user, group, 0600);
  MakeFolder("folder", user, group, 0755);
  EXPECT_FALSE(CanRead(Path("file")));
  EXPECT_FALSE(CanWrite(Path("file")));
  EXPECT_FALSE(CanRemove(Path("folder/entry")));
  EXPECT_TRUE(CanRead(Path("folder")));
}

TEST_F(AccessChecksAsOthersTest, RootCanReadItsOwnFileWhateverTheBits)
{
  MakeFile("file", 0, 0, 0);
  EXPECT_TRUE(CanRead(Path("file"))) << "Qt's user flags say what the real user may, and root may all";
}

TEST_F(AccessChecksTest, ThisProcessIsInItsOwnGroupAndNotInEvery)
{
  EXPECT_TRUE(CheckGroups(getegid()));
  EXPECT_FALSE(CheckGroups(foreignGroup));
}

TEST_F(AccessChecksTest, AMissingFileCanBeNeitherReadNorWritten)
{
  EXPECT_FALSE(CanRead(Path("missing")));
  EXPECT_FALSE(CanWrite(Path("missing")));
  EXPECT_FALSE(CanRead(""));
  EXPECT_FALSE(CanWrite(QString()));
}

TEST_F(AccessChecksTest, TheOwnersOwnBitsCount)
{
  MakeFile("read", user, group, 0400);
  MakeFile("write", user, group, 0200);
  EXPECT_TRUE(AsSomeone(
      [this]
      {
        EXPECT_TRUE(CanRead(Path("read")));
        EXPECT_FALSE(CanWrite(Path("read")));
        EXPECT_FALSE(CanRead(Path("write")));
        EXPECT_TRUE(CanWrite(Path("write")));
      }));
}

TEST_F(AccessChecksTest, ALinkStandsForItsTarget)
{
  MakeFile("file", user, group, 0400);
  ASSERT_EQ(symlink("file", At("link").c_str()), 0);
  ASSERT_EQ(symlink("missing", At("broken").c_str()), 0);
  EXPECT_TRUE(AsSomeone(
      [this]
      {
        EXPECT_TRUE(CanRead(Path("link")));
        EXPECT_FALSE(CanWrite(Path("link")));
        EXPECT_FALSE(CanRead(Path("broken")));
      }));
}

TEST_F(AccessChecksTest, ANameThatQtCannotPassOnIsRefused)
{
  const QString name = Path("file") + QChar(0) + "x";
  MakeFile("file", user, group, 0666);
  EXPECT_FALSE(CanRead(name));
  EXPECT_FALSE(CanRemove(name + "/x"));
}

TEST_F(AccessChecksTest, AMissingEntryCanBeRemovedWhereItsFolderIsWritable)
{
  MakeFolder("open", user, group, 0700);
  MakeFolder("closed", user, group, 0500);
  EXPECT_TRUE(AsSomeone(
      [this]
      {
        EXPECT_TRUE(CanRemove(Path("open/missing")));
        EXPECT_TRUE(CanRemoveWholeDirectory(Path("open/missing")));
        EXPECT_FALSE(CanRemove(Path("closed/missing")));
        EXPECT_FALSE(CanRemove(Path("missing/entry")));
      }));
}

TEST_F(AccessChecksTest, AFolderIsNotRefusedForLackingTheRightToSearchIt)
{
  MakeFolder("folder", user, group, 0600);
  EXPECT_TRUE(AsSomeone([this] { EXPECT_TRUE(CanRemove(Path("folder/file"))); }));
}

TEST_F(AccessChecksTest, WhatHasNoFolderInItsPathCannotBeRemoved)
{
  EXPECT_FALSE(CanRemove("file"));
  EXPECT_FALSE(CanRemove(""));
  EXPECT_FALSE(CanRemove("/"));
  EXPECT_FALSE(CanRemoveWholeDirectory("."));
}

// The folder of "a/" is "a" itself.
TEST_F(AccessChecksTest, ATrailingSeparatorMakesTheFolderItsOwnParent)
{
  MakeFolder("closed", user, group, 0700);
  MakeFolder("closed/open", user, group, 0700);
  Own("closed", user, group, 0500);
  EXPECT_TRUE(AsSomeone(
      [this]
      {
        EXPECT_FALSE(CanRemove(Path("closed/open")));
        EXPECT_TRUE(CanRemove(Path("closed/open/")));
      }));
  Own("closed", user, group, 0700);
}

TEST_F(AccessChecksTest, AFolderThatIsGoneBeforeTheSecondLookIsNotSticky)
{
  EXPECT_FALSE(IsStickyOfAnother(Path("missing")));
  EXPECT_EQ(IsStickyOfAnother("/tmp"), geteuid() != 0 && (QFileInfo("/tmp").ownerId() != geteuid()));
}

TEST_F(AccessChecksTest, AReadOnlyVolumeIsJudgedByItsBits)
{
  RunWithOwnVolumes(
      []
      {
        ASSERT_TRUE(MountVolume("/Volumes/Data"));
        for (const mode_t mode : {0600, 0666})
        {
          const std::string path = "/Volumes/Data/" + std::to_string(mode);
          const int file = open(path.c_str(), O_CREAT | O_WRONLY, 0600);
          ASSERT_GE(file, 0);
          ASSERT_EQ(fchmod(file, mode), 0);
          close(file);
        }
        const QString own = QString("/Volumes/Data/%1").arg(0600);
        const QString everybodys = QString("/Volumes/Data/%1").arg(0666);
        EXPECT_TRUE(CanWrite(own));
        ASSERT_TRUE(MakeReadOnly("/Volumes/Data"));
        EXPECT_FALSE(CanWrite(own)) << "Qt's user flags know of the volume";
        EXPECT_TRUE(CanWrite(everybodys));
        EXPECT_TRUE(CanRead(own));
      });
}

class WholeDirectoryTest : public AccessChecksTest
{
protected:
  void SetUp() override
  {
    AccessChecksTest::SetUp();
    MakeFolder("top", user, group, 0700);
    MakeFolder("top/tree", user, group, 0700);
  }

  void MakeOwnFolder(const std::string& name, mode_t mode = 0700) const
  {
    MakeFolder(name, user, group, mode);
  }
  void MakeOwnFile(const std::string& name) const { MakeFile(name, user, group, 0600); }

  testing::AssertionResult IsRemovable(const std::string& name, bool expected) const
  {
    return AsSomeone([&] { EXPECT_EQ(CanRemoveWholeDirectory(Path(name)), expected) << name; });
  }
};

TEST_F(WholeDirectoryTest, AWritableTreeCanBeRemoved)
{
  MakeOwnFolder("top/tree/a");
  MakeOwnFolder("top/tree/a/b");
  MakeOwnFile("top/tree/a/b/file");
  MakeOwnFile("top/tree/file");
  EXPECT_TRUE(IsRemovable("top/tree", true));
  EXPECT_TRUE(IsRemovable("top/tree/file", true));
}

TEST_F(WholeDirectoryTest, ATreeOfThisProcessCanBeRemoved)
{
  std::string path = "own";
  for (int depth = 0; depth < 20; ++depth, path += "/d")
  {
    MakeFolder(path, geteuid(), getegid(), 0700);
    MakeFile(path + "/file", geteuid(), getegid(), 0600);
    MakeFolder(path + "/e", geteuid(), getegid(), 0700);
  }
  EXPECT_TRUE(CanRemoveWholeDirectory(Path("own/d")));
  EXPECT_TRUE(CanRemoveWholeDirectory(Path("own/d/file")));
  Own("own/d/d/d/d/d/d/d/d/d/d/d/d", stranger, foreignGroup, 0500);
  EXPECT_FALSE(CanRemoveWholeDirectory(Path("own/d")));
  Own("own/d/d/d/d/d/d/d/d/d/d/d/d", geteuid(), getegid(), 0700);
}

TEST_F(WholeDirectoryTest, AFolderWhoseOwnParentIsClosedCannotBeRemoved)
{
  Own("top", user, group, 0500);
  EXPECT_TRUE(IsRemovable("top/tree", false));
  Own("top", user, group, 0700);
}

TEST_F(WholeDirectoryTest, OneClosedFolderDeepInsideRefusesTheTree)
{
  std::string path = "top/tree";
  for (int depth = 0; depth < 20; ++depth)
  {
    path += "/d";
    MakeOwnFolder(path);
    MakeOwnFolder(path + "/e");
  }
  EXPECT_TRUE(IsRemovable("top/tree", true));
  MakeOwnFile(path + "/file");
  Own(path, user, group, 0500);
  EXPECT_TRUE(IsRemovable("top/tree", false));
  Own(path, user, group, 0700);
}

TEST_F(WholeDirectoryTest, AnEmptyFolderNeedNotBeWritable)
{
  MakeOwnFolder("top/tree/a", 0500);
  EXPECT_TRUE(IsRemovable("top/tree", true));
}

TEST_F(WholeDirectoryTest, AFolderThatCannotBeReadRefuses)
{
  MakeOwnFolder("top/tree/a", 0300);
  EXPECT_TRUE(IsRemovable("top/tree", false));
}

TEST_F(WholeDirectoryTest, HiddenEntriesAreNotChecked)
{
  MakeOwnFolder("top/tree/a");
  MakeOwnFile("top/tree/a/.hidden");
  Own("top/tree/a", user, group, 0500);
  EXPECT_TRUE(IsRemovable("top/tree", true));
  Own("top/tree/a", user, group, 0700);
  MakeOwnFolder("top/tree/.folder");
  MakeOwnFile("top/tree/.folder/file");
  Own("top/tree/.folder", user, group, 0500);
  EXPECT_TRUE(IsRemovable("top/tree", true));
  Own("top/tree/.folder", user, group, 0700);
}

TEST_F(WholeDirectoryTest, BrokenLinksAndSpecialFilesAreNotChecked)
{
  MakeOwnFolder("top/tree/a");
  ASSERT_EQ(symlink("missing", At("top/tree/a/broken").c_str()), 0);
  ASSERT_EQ(mkfifo(At("top/tree/a/pipe").c_str(), 0600), 0);
  Own("top/tree/a", user, group, 0500);
  EXPECT_TRUE(IsRemovable("top/tree", true));
  Own("top/tree/a", user, group, 0700);
  ASSERT_EQ(symlink("..", At("top/tree/a/link").c_str()), 0);
  Own("top/tree/a", user, group, 0500);
  EXPECT_TRUE(IsRemovable("top/tree", false)) << "a link that leads somewhere is checked";
  Own("top/tree/a", user, group, 0700);
}

TEST_F(WholeDirectoryTest, ALinkInTheTreeIsJudgedByItself)
{
  MakeOwnFolder("top/closed");
  MakeOwnFile("top/closed/file");
  Own("top/closed", user, group, 0500);
  ASSERT_EQ(symlink("../closed", At("top/tree/link").c_str()), 0);
  ASSERT_EQ(symlink(".", At("top/tree/loop").c_str()), 0);
  EXPECT_TRUE(IsRemovable("top/tree", true));
  Own("top/closed", user, group, 0700);
}

TEST_F(WholeDirectoryTest, AGivenLinkIsEntered)
{
  MakeOwnFolder("top/closed");
  MakeOwnFile("top/closed/file");
  Own("top/closed", user, group, 0500);
  ASSERT_EQ(symlink("../closed", At("top/tree/link").c_str()), 0);
  EXPECT_TRUE(IsRemovable("top/tree/link", false));
  Own("top/closed", user, group, 0700);
  EXPECT_TRUE(IsRemovable("top/tree/link", true));
}

TEST_F(WholeDirectoryTest, ARelativePathWithAFolderIsWalked)
{
  MakeOwnFolder("top/tree/a");
  MakeOwnFile("top/tree/a/file");
  EXPECT_TRUE(AsSomeone(
      [this]
      {
        ASSERT_EQ(chdir(At("top").c_str()), 0);
        EXPECT_TRUE(CanRemoveWholeDirectory("tree/a"));
        ASSERT_EQ(chmod("tree/a", 0500), 0);
        EXPECT_FALSE(CanRemoveWholeDirectory("tree/a"));
        ASSERT_EQ(chmod("tree/a", 0700), 0);
      }));
}

const int crowdedLevels = 300;
const char* const siblings[] = {"a", "b", "c", "e", "f"};

// In a child, so that this process stays where it is. The siblings see to it that a walk which goes down at
// once has not yet read the level above to its end.
void MakeChain(const std::string& base, int depth)
{
  ASSERT_EQ(chdir(base.c_str()), 0);
  for (int i = 0; i < depth; ++i)
  {
    ASSERT_EQ(mkdir("d", 0700), 0);
    for (const char* const sibling : siblings)
      ASSERT_TRUE(i >= crowdedLevels || symlink(".", sibling) == 0);
    ASSERT_EQ(chdir("d"), 0);
  }
}

void RemoveChain(const std::string& base, int depth)
{
  ASSERT_EQ(chdir(base.c_str()), 0);
  for (int i = 0; i < depth; ++i)
    ASSERT_EQ(chdir("d"), 0);
  for (int i = depth; i-- > 0;)
  {
    ASSERT_EQ(chdir(".."), 0);
    ASSERT_EQ(rmdir("d"), 0);
    for (const char* const sibling : siblings)
      ASSERT_TRUE(i >= crowdedLevels || unlink(sibling) == 0);
  }
}

struct SmallStackCall
{
  QString path;
  bool answer;
};

bool AskOnSmallStack(const QString& path)
{
  SmallStackCall call{path, false};
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, 256 * 1024);
  pthread_t thread;
  EXPECT_EQ(pthread_create(
                &thread, &attributes,
                [](void* argument) -> void*
                {
                  SmallStackCall& call = *static_cast<SmallStackCall*>(argument);
                  call.answer = CanRemoveWholeDirectory(call.path);
                  return nullptr;
                },
                &call),
            0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  return call.answer;
}

TEST_F(WholeDirectoryTest, ADeepTreeTakesLittleStackAndFewDescriptors)
{
  const int depth = 5000;
  EXPECT_TRUE(AsSomeone([&] { MakeChain(At("top/tree"), depth); }));
  EXPECT_TRUE(AsSomeone(
      [this]
      {
        const rlimit few{64, 64};
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
        EXPECT_TRUE(AskOnSmallStack(Path("top/tree"))) << "what no path can name is not there";

        std::string path = At("top/tree");
        for (int i = 0; i < 1800; ++i)
          path += "/d";
        ASSERT_EQ(chmod(path.c_str(), 0500), 0);
        EXPECT_FALSE(AskOnSmallStack(Path("top/tree")));
        ASSERT_EQ(chmod(path.c_str(), 0700), 0);
      }));
  EXPECT_TRUE(AsSomeone([&] { RemoveChain(At("top/tree"), depth); }));
}

TEST_F(WholeDirectoryTest, AFolderThatCannotBeOpenedCountsAsEmpty)
{
  MakeOwnFolder("top/tree/a");
  MakeOwnFile("top/tree/a/file");
  Own("top/tree/a", user, group, 0500);
  EXPECT_TRUE(AsSomeone(
      [this]
      {
        EXPECT_FALSE(CanRemoveWholeDirectory(Path("top/tree")));
        rlimit before{};
        ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
        const rlimit none{0, before.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
        const bool isRemovable = CanRemoveWholeDirectory(Path("top/tree"));
        // A sanitizer needs a descriptor to look at types.
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
        EXPECT_TRUE(isRemovable);
      }));
  Own("top/tree/a", user, group, 0700);
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
const bool isMemoryCounted = false;
#else
const bool isMemoryCounted = true;
#endif

TEST_F(WholeDirectoryTest, ACrowdedFolderIsNotHeldInMemory)
{
  if (!isMemoryCounted)
    GTEST_SKIP() << "The sanitizer keeps freed memory";
  const int count = 100000;
  const std::string base = At("top/tree/");
  MakeOwnFile("top/tree/file");
  int links = 0;
  for (int i = 0; i < count; ++i)
    links += symlink("file", (base + std::to_string(i)).c_str()) == 0;
  ASSERT_EQ(links, count);
  EXPECT_TRUE(AsSomeone(
      [this]
      {
        rusage before = {};
        rusage after = {};
        EXPECT_TRUE(CanRemoveWholeDirectory(Path("top/tree/file")));
        ASSERT_EQ(getrusage(RUSAGE_SELF, &before), 0);
        EXPECT_TRUE(CanRemoveWholeDirectory(Path("top/tree")));
        ASSERT_EQ(getrusage(RUSAGE_SELF, &after), 0);
        EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 8 * 1024);
      }));
}

// The rules word by word, with one list per folder and one call per entry.
bool AskLiterally(const QString& path)
{
  if (!CanRemove(path))
    return false;
  const QDir directory(path);
  if (!directory.exists())
    return true;
  if (!directory.isReadable())
    return false;
  for (const QFileInfo& entry :
       directory.entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Unsorted))
  {
    const QString entryPath = entry.absoluteFilePath();
    if (!(entry.isDir() && !entry.isSymLink() ? AskLiterally(entryPath) : CanRemove(entryPath)))
      return false;
  }
  return true;
}

class RandomTree
{
public:
  RandomTree(std::string root, unsigned seed) : random(seed), folders{std::move(root)}
  {
    const int count = static_cast<int>(random() % 40);
    for (int i = 0; i < count; ++i)
      Add((random() % 5 == 0 ? "/." : "/") + std::to_string(i));
    paths.insert(paths.end(), folders.begin(), folders.end());
    for (const std::string& folder : folders)
    {
      // Mostly open, or the walk would rarely get anywhere.
      static const mode_t modes[] = {0700, 0700, 0700, 0700,  0700, 0700, 0777,
                                     0750, 0500, 0300, 01777, 0600, 0707};
      const bool isStrangers = random() % 10 == 0;
      EXPECT_TRUE(geteuid() != 0 || chown(folder.c_str(), isStrangers ? stranger : user, group) == 0);
      finalModes.push_back(modes[random() % (sizeof(modes) / sizeof(modes[0]))]);
    }
  }

  void Close() const
  {
    for (size_t i = folders.size(); i-- > 0;)
      ASSERT_EQ(chmod(folders[i].c_str(), finalModes[i]), 0);
  }

  void Open() const
  {
    for (const std::string& folder : folders)
      ASSERT_EQ(chmod(folder.c_str(), 0700), 0);
  }

  std::vector<std::string> paths;

private:
  void Add(const std::string& name)
  {
    const std::string path = folders[random() % folders.size()] + name;
    switch (random() % 8)
    {
    case 0:
    case 1:
    case 2:
      ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
      folders.push_back(path);
      return;
    case 3:
      ASSERT_EQ(symlink(folders[random() % folders.size()].c_str(), path.c_str()), 0);
      break;
    case 4:
      ASSERT_EQ(symlink("missing", path.c_str()), 0);
      break;
    case 5:
      ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
      break;
    default:
      close(open(path.c_str(), O_CREAT | O_WRONLY, 0600));
    }
    paths.push_back(path);
  }

  std::mt19937 random;
  std::vector<std::string> folders;
  std::vector<mode_t> finalModes;
};

TEST_F(AccessChecksTest, WholeDirectoriesAreJudgedAsTheLiteralRulesDoOnRandomTrees)
{
  for (unsigned seed = 0; seed < 300; ++seed)
  {
    const std::string root = At(std::to_string(seed));
    MakeFolder(std::to_string(seed), user, group, 0700);
    const RandomTree tree(root, seed);
    tree.Close();
    EXPECT_TRUE(AsSomeone(
        [&]
        {
          for (const std::string& path : tree.paths)
            EXPECT_EQ(CanRemoveWholeDirectory(Text(path)), AskLiterally(Text(path))) << path;
        }))
        << "seed " << seed;
    tree.Open();
    ASSERT_TRUE(QDir(Text(root)).removeRecursively());
  }
}

} // namespace
