// The tools that stand in for those of macOS, as processes, and the library on top of them.

#include "Support/Child.h"
#include "Support/Copies.h"
#include "Support/HostProcess.h"
#include "Support/Programs.h"

#include <Common/DiskList.h>
#include <Common/Firewall.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <memory>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>
#include <vector>

using namespace Tavrik::Cleaner;
using namespace std::string_literals;
using testing::HasSubstr;
using testing::Not;

namespace
{

const QString folder = QStringLiteral(TAVRIK_STAND_INS);
const int refused = 255;
const Identity nobody = {65534, 65534, 65534, {}};

std::string Out(const Outcome& outcome)
{
  return outcome.out.toStdString();
}

Outcome RunSocketFilter(const QStringList& arguments)
{
  return RunHost(folder + "/socketfilterfw", arguments);
}

Outcome RunDiskTool(const QStringList& arguments)
{
  return RunHost(folder + "/diskutil", arguments);
}

class SocketFilterTest : public testing::Test
{
protected:
  void SetUp() override
  {
    ASSERT_TRUE(QDir().mkpath(home));
    qputenv("TAVRIK_FIREWALL_STATE", state.toUtf8());
    qputenv("XDG_STATE_HOME", (home + "/own").toUtf8());
  }

  void TearDown() override
  {
    qunsetenv("TAVRIK_FIREWALL_STATE");
    QDir(home).removeRecursively();
  }

  QString MakeApplication(const QString& name) const
  {
    EXPECT_TRUE(QDir().mkpath(home + '/' + name));
    return home + '/' + name;
  }

  const QString home = QDir::tempPath() + "/stand-ins";
  const QString state = home + "/kept/state";
};

mode_t ModeOf(const QString& path)
{
  struct stat information = {};
  EXPECT_EQ(0, stat(QFile::encodeName(path).constData(), &information)) << qPrintable(path);
  return information.st_mode & 07777u;
}

// As root in a mount namespace with an empty folder for the machine's state.
void RunAsRootWithOwnState(const std::function<void()>& body)
{
  if (!BecomeRoot())
    GTEST_SKIP() << "This machine lets a plain user make no user namespace, so nobody can be root here";
  RunWithOwnVolumes(
      [&]
      {
        ASSERT_TRUE(MountVolume("/var/lib"));
        qunsetenv("TAVRIK_FIREWALL_STATE");
        body();
      });
}

} // namespace

TEST_F(SocketFilterTest, EverySwitchIsTurnedOnAndOffAndTold)
{
  struct Switch
  {
    const char* name;
    const char* on;
    const char* off;
  };
  const Switch switches[] = {
      {"globalstate", "Firewall is enabled. (State = 1) \n", "Firewall is disabled. (State = 0) \n"},
      {"blockall", "Firewall is set to block all non-essential incoming connections \n",
       "Block all DISABLED! \n"},
      {"allowsigned",
       "Automatically allow signed built-in software ENABLED \n"
       "Automatically allow downloaded signed software DISABLED \n",
       "Automatically allow signed built-in software DISABLED \n"
       "Automatically allow downloaded signed software DISABLED \n"},
      {"stealthmode", "Stealth mode enabled \n", "Stealth mode disabled \n"}};
  for (const Switch& one : switches)
  {
    const QString ask = QString("--get") + one.name;
    const QString set = QString("--set") + one.name;
    EXPECT_EQ(one.off, Out(RunSocketFilter({ask})));
    EXPECT_EQ(0, RunSocketFilter({set, "on"}).code);
    EXPECT_EQ(one.on, Out(RunSocketFilter({ask})));
    EXPECT_EQ(0, RunSocketFilter({set, "off"}).code);
    EXPECT_EQ(one.off, Out(RunSocketFilter({ask})));
  }
}

TEST_F(SocketFilterTest, SignedSoftwareOfTheSystemAndDownloadedSoftwareHaveASwitchEach)
{
  EXPECT_EQ("Enabled allow signed downloaded applications automatically \n",
            Out(RunSocketFilter({"--setallowsignedapp", "on"})));
  EXPECT_EQ("Automatically allow signed built-in software DISABLED \n"
            "Automatically allow downloaded signed software ENABLED \n",
            Out(RunSocketFilter({"--getallowsigned"})));
  EXPECT_EQ("Enabled allow signed built-in applications automatically \n"
            "Disabled allow signed downloaded applications automatically \n",
            Out(RunSocketFilter({"--setallowsigned", "on", "--setallowsignedapp", "off"})));
  EXPECT_EQ("Automatically allow signed built-in software ENABLED \n"
            "Automatically allow downloaded signed software DISABLED \n",
            Out(RunSocketFilter({"--getallowsigned"})));
}

TEST_F(SocketFilterTest, BlockingAllIsTheThirdStateOfAFirewallThatIsOn)
{
  RunSocketFilter({"--setblockall", "on"});
  EXPECT_EQ("Firewall is disabled. (State = 0) \n", Out(RunSocketFilter({"--getglobalstate"})));
  EXPECT_EQ("Firewall is enabled. (State = 2) \n", Out(RunSocketFilter({"--setglobalstate", "on"})));
}

TEST_F(SocketFilterTest, AnApplicationIsAddedBlockedUnblockedAndRemoved)
{
  const QString path = MakeApplication("An App.app");
  EXPECT_EQ("Application has been added to the firewall \n", Out(RunSocketFilter({"--add", path})));
  EXPECT_EQ("The application is already a part of the firewall \n", Out(RunSocketFilter({"--add", path})));
  EXPECT_EQ("Incoming connection to the application is permitted \n",
            Out(RunSocketFilter({"--getappblocked", path})));
  EXPECT_EQ("Incoming connection to the application is blocked \n",
            Out(RunSocketFilter({"--blockapp", path})));
  EXPECT_EQ("ALF: total number of apps = 1 \n\n1 :  " + path.toStdString() +
                " \n \t ( Block incoming connections ) \n\n",
            Out(RunSocketFilter({"--listapps"})));
  EXPECT_EQ("Incoming connection to the application is permitted \n",
            Out(RunSocketFilter({"--unblockapp", path})));
  EXPECT_EQ("Application has been removed from the firewall \n", Out(RunSocketFilter({"--remove", path})));
  EXPECT_EQ("ALF: total number of apps = 0 \n\n", Out(RunSocketFilter({"--listapps"})));
}

TEST_F(SocketFilterTest, WhatIsNotListedOrNotThereIsRefused)
{
  for (const char* option : {"--remove", "--blockapp", "--unblockapp", "--getappblocked"})
    EXPECT_EQ(refused, RunSocketFilter({option, home}).code) << option;
  for (const QString& path : {home + "/missing", home + "/two\nlines", QString()})
    EXPECT_EQ(refused, RunSocketFilter({"--add", path}).code) << qPrintable(path);
  EXPECT_FALSE(QFile::exists(state));
}

TEST_F(SocketFilterTest, ARelativePathIsListedInItsAbsoluteForm)
{
  const QString path = MakeApplication("A.app");
  const QString before = QDir::currentPath();
  ASSERT_TRUE(QDir::setCurrent(home));
  EXPECT_EQ(0, RunSocketFilter({"--add", "A.app"}).code);
  ASSERT_TRUE(QDir::setCurrent(before));
  EXPECT_THAT(Out(RunSocketFilter({"--listapps"})), HasSubstr(" " + path.toStdString() + " \n"));
}

TEST_F(SocketFilterTest, SeveralOptionsAreObeyedUpToTheFirstThatFails)
{
  const Outcome outcome = RunSocketFilter(
      {"--setstealthmode", "on", "--getglobalstate", "--remove", "/missing", "--setglobalstate", "on"});
  EXPECT_EQ(refused, outcome.code);
  EXPECT_EQ("Stealth mode enabled \nFirewall is disabled. (State = 0) \n", Out(outcome));
  EXPECT_EQ("Firewall is disabled. (State = 0) \nStealth mode enabled \n",
            Out(RunSocketFilter({"--getglobalstate", "--getstealthmode"})));
}

TEST_F(SocketFilterTest, WrongCommandLinesAreToldTheUsageAndChangeNothing)
{
  for (const QStringList& line :
       {QStringList{}, QStringList{"--nonsense"}, QStringList{"--setglobalstate"},
        QStringList{"--setglobalstate", "maybe"}, QStringList{"--add"}, QStringList{"--nonsense", "on"}})
  {
    const Outcome outcome = RunSocketFilter(line);
    EXPECT_EQ(1, outcome.code);
    EXPECT_EQ("", Out(outcome));
    EXPECT_TRUE(outcome.err.startsWith("usage: "));
  }
  EXPECT_FALSE(QFile::exists(state));
  EXPECT_EQ(0, RunSocketFilter({"-h"}).code);
}

TEST_F(SocketFilterTest, GarbageCountsAsEverythingOffAndIsReplaced)
{
  ASSERT_TRUE(QDir().mkpath(home + "/kept"));
  QByteArray noise;
  for (int i = 0; i < 100000; ++i)
    noise += static_cast<char>(i * 7919 >> 3);
  for (const QByteArray& text : {noise, QByteArray(), QByteArray("tavrik-firewall 2\nenabled on\n")})
  {
    WriteText(state, text);
    EXPECT_EQ("Firewall is disabled. (State = 0) \nALF: total number of apps = 0 \n\n",
              Out(RunSocketFilter({"--getglobalstate", "--listapps"})));
  }
  EXPECT_EQ(0, RunSocketFilter({"--setstealthmode", "on"}).code);
  EXPECT_EQ("Stealth mode enabled \n", Out(RunSocketFilter({"--getstealthmode"})));
}

TEST_F(SocketFilterTest, BadLinesAreLeftOut)
{
  ASSERT_TRUE(QDir().mkpath(home + "/kept"));
  WriteText(state, QByteArray::fromStdString("tavrik-firewall 1\nenabled\n\nenabled on\nstealth maybe\n"
                                             "application\napplication allow\napplication allow relative\n"
                                             "application keep /k\napplication allow /a\n"
                                             "application block /a\napplication block /z\0z\n"
                                             "application block /b"s));
  EXPECT_EQ("Firewall is enabled. (State = 1) \nStealth mode disabled \nALF: total number of apps = 2 \n\n"
            "1 :  /a \n \t ( Block incoming connections ) \n\n"
            "2 :  /b \n \t ( Block incoming connections ) \n\n",
            Out(RunSocketFilter({"--getglobalstate", "--getstealthmode", "--listapps"})));
}

TEST_F(SocketFilterTest, WhatIsNoFileIsNotWaitedFor)
{
  ASSERT_TRUE(QDir().mkpath(home + "/kept"));
  ASSERT_EQ(0, mkfifo(QFile::encodeName(state).constData(), 0600));
  EXPECT_EQ("Stealth mode disabled \n", Out(RunSocketFilter({"--getstealthmode"})));
  ASSERT_TRUE(QFile::remove(state));
  ASSERT_TRUE(QDir().mkpath(state));
  EXPECT_EQ("Stealth mode disabled \n", Out(RunSocketFilter({"--getstealthmode"})));
  const Outcome outcome = RunSocketFilter({"--setstealthmode", "on"});
  EXPECT_EQ(refused, outcome.code);
  EXPECT_TRUE(outcome.err.contains(state.toUtf8()));
}

TEST_F(SocketFilterTest, WritersAtTheSameTimeLoseNothing)
{
  const int count = 12;
  std::vector<std::unique_ptr<HostProcess>> writers;
  for (int i = 0; i < count; ++i)
  {
    const QString path = MakeApplication(QString::number(i) + ".app");
    writers.push_back(std::make_unique<HostProcess>(folder + "/socketfilterfw",
                                                    QStringList{"--add", path, "--blockapp", path}));
    writers.back()->Begin();
  }
  for (const auto& writer : writers)
    EXPECT_EQ(0, writer->Finish());
  const QByteArray list = RunSocketFilter({"--listapps"}).out;
  EXPECT_TRUE(list.startsWith("ALF: total number of apps = 12 \n"));
  EXPECT_EQ(count, list.count("( Block incoming connections )"));
}

TEST_F(SocketFilterTest, AUsersStateIsTheirsAlone)
{
  if (QFile::exists("/var/lib/tavrik/firewall"))
    GTEST_SKIP() << "The state of this machine, which root has made, is what a user would read";
  EXPECT_TRUE(RunInChild(
      [this]
      {
        CopyForOthers({folder + "/socketfilterfw"});
        BecomeUser();
        qunsetenv("TAVRIK_FIREWALL_STATE");
        EXPECT_EQ(0, RunSocketFilter({"--setglobalstate", "on"}).code);
        EXPECT_EQ(0600u, ModeOf(home + "/own/tavrik/firewall"));
        EXPECT_EQ(0700u, ModeOf(home + "/own/tavrik"));
        EXPECT_EQ("Firewall is enabled. (State = 1) \n", Out(RunSocketFilter({"--getglobalstate"})));
      }));
}

TEST_F(SocketFilterTest, WhatRootHasSavedEverybodyReadsAndNobodyElseChanges)
{
  if (geteuid() != 0)
    GTEST_SKIP() << "Only root can become somebody else";
  RunAsRootWithOwnState(
      []
      {
        EXPECT_EQ(0, RunSocketFilter({"--setglobalstate", "on"}).code);
        EXPECT_EQ(0644u, ModeOf("/var/lib/tavrik/firewall"));
        EXPECT_EQ(0600u, ModeOf("/var/lib/tavrik/firewall.lock"));
        CopyForOthers({folder + "/socketfilterfw"});
        EXPECT_TRUE(RunAs(nobody,
                          []
                          {
                            EXPECT_EQ("Firewall is enabled. (State = 1) \n",
                                      Out(RunSocketFilter({"--getglobalstate"})));
                            const Outcome outcome = RunSocketFilter({"--setglobalstate", "off"});
                            EXPECT_EQ(refused, outcome.code);
                            EXPECT_EQ("Must be root to change settings.\n", outcome.err);
                          }));
      });
}

TEST_F(SocketFilterTest, RootKeepsOutOfAFolderThatOthersCanWrite)
{
  RunAsRootWithOwnState(
      []
      {
        ASSERT_EQ(0, mkdir("/var/lib/tavrik", 0755));
        ASSERT_EQ(0, chmod("/var/lib/tavrik", 0777));
        EXPECT_EQ(refused, RunSocketFilter({"--setglobalstate", "on"}).code);
        EXPECT_TRUE(QDir("/var/lib/tavrik").isEmpty());
      });
}

TEST_F(SocketFilterTest, KeepsNoFileOfAStateInWhichEverythingIsOffAndEmpty)
{
  RunAsRootWithOwnState(
      [this]
      {
        const QString path = MakeApplication("A.app");
        EXPECT_EQ(0,
                  RunSocketFilter({"--setglobalstate", "on", "--add", path, "--setglobalstate", "off"}).code);
        EXPECT_TRUE(QFile::exists("/var/lib/tavrik/firewall"));
        EXPECT_EQ(0, RunSocketFilter({"--remove", path}).code);
        EXPECT_FALSE(QFile::exists("/var/lib/tavrik"));
        EXPECT_EQ(refused, RunSocketFilter({"--remove", path}).code);
        EXPECT_FALSE(QFile::exists("/var/lib/tavrik"));
      });
}

TEST_F(SocketFilterTest, WritersThatEmptyTheStateAtTheSameTimeLoseNothing)
{
  RunAsRootWithOwnState(
      [this]
      {
        const int count = 8;
        std::vector<std::unique_ptr<HostProcess>> writers;
        for (int i = 0; i < count; ++i)
        {
          const QString path = MakeApplication(QString::number(i) + ".app");
          QStringList options;
          for (int turn = 0; turn < 200; ++turn)
            options += QStringList{"--add", path, "--remove", path};
          options += QStringList{"--add", path};
          writers.push_back(std::make_unique<HostProcess>(folder + "/socketfilterfw", options));
          writers.back()->Begin();
        }
        for (const auto& writer : writers)
        {
          EXPECT_EQ(0, writer->Finish());
          EXPECT_EQ("", writer->Err());
        }
        EXPECT_TRUE(RunSocketFilter({"--listapps"}).out.startsWith("ALF: total number of apps = 8 \n"));
      });
}

TEST_F(SocketFilterTest, TheLibraryReadsItInFull)
{
  const QString path = MakeApplication("B b.app");
  const QString other = MakeApplication("C.app");
  RunSocketFilter({"--setglobalstate", "on", "--setallowsigned", "on", "--add", path, "--add", other,
                   "--blockapp", path});
  filewallFileName = folder + "/socketfilterfw";
  Firewall firewall(nullptr);
  EXPECT_TRUE(firewall.IsEnabled());
  EXPECT_FALSE(firewall.GetBlockAll());
  EXPECT_TRUE(firewall.GetAllowSigned());
  EXPECT_FALSE(firewall.GetStealthMode());
  EXPECT_EQ((QStringList{path, other}), firewall.GetApplications());
  EXPECT_TRUE(firewall.IsApplicationBlocked(path));
  EXPECT_FALSE(firewall.IsApplicationBlocked(other));
  RunSocketFilter({"--setallowsigned", "off", "--setblockall", "on", "--setstealthmode", "on"});
  firewall.Undo();
  EXPECT_TRUE(firewall.GetBlockAll());
  EXPECT_FALSE(firewall.GetAllowSigned());
  EXPECT_TRUE(firewall.GetStealthMode());
}

namespace
{

class DiskToolTest : public testing::Test
{
protected:
  DiskToolTest() { qputenv("PATH", qgetenv("PATH") + ':' + folder.toUtf8()); }

  static StorageInfo FindMounted(const QString& mountPoint)
  {
    for (const StorageInfo& storage : LoadDiskList())
      if (storage.mountPoint == mountPoint)
        return storage;
    return {};
  }
};

} // namespace

TEST_F(DiskToolTest, TheLibraryFindsTheRootWithItsSizes)
{
  struct statvfs sizes = {};
  ASSERT_EQ(0, statvfs("/", &sizes));
  const StorageInfo root = FindMounted("/");
  EXPECT_EQ("/", root.mountPoint);
  EXPECT_FALSE(root.name.isEmpty());
  EXPECT_EQ(static_cast<long long>(sizes.f_blocks * sizes.f_frsize), root.totalSize);
  EXPECT_GE(root.freeSize, 0);
  EXPECT_LE(root.freeSize, root.totalSize);
}

TEST_F(DiskToolTest, FailsWhenItsOutputIsFull)
{
  HostProcess tool(folder + "/diskutil", {"list"});
  tool.setStandardOutputFile("/dev/full");
  tool.Begin();
  EXPECT_EQ(1, tool.Finish());
  EXPECT_EQ("diskutil: cannot write to the standard output: No space left on device\n", tool.Err());
}

TEST_F(DiskToolTest, EveryVolumeIsListedOnceAndKnownByItsIdentifierAndItsMountPoint)
{
  QStringList identifiers;
  for (const QByteArray& line : RunDiskTool({"list"}).out.split('\n'))
    if (line.startsWith(' ') && !line.endsWith("IDENTIFIER"))
      identifiers.append(QString::fromUtf8(line.mid(line.lastIndexOf(' ') + 1)));
  EXPECT_EQ(0, identifiers.removeDuplicates());
  int mounted = 0;
  for (const QString& identifier : identifiers)
  {
    const Outcome outcome = RunDiskTool({"info", identifier});
    EXPECT_EQ(0, outcome.code);
    EXPECT_THAT(Out(outcome), HasSubstr("   Device Identifier:        " + identifier.toStdString() + "\n"));
    mounted += outcome.out.contains("\n   Mounted:                  Yes\n");
    EXPECT_EQ(outcome.out.left(outcome.out.indexOf("Total Size")),
              RunDiskTool({"info", "/dev/" + identifier}).out.left(outcome.out.indexOf("Total Size")));
  }
  EXPECT_EQ(LoadDiskList().size(), mounted);
  EXPECT_THAT(Out(RunDiskTool({"info", "/"})), HasSubstr("\n   Mount Point:              /\n"));
}

TEST_F(DiskToolTest, WhatIsNoDiskIsNotThere)
{
  for (const char* disk : {"/proc", "/sys", "disk", "disk999999s1", "", "IDENTIFIER"})
  {
    const Outcome outcome = RunDiskTool({"info", disk});
    EXPECT_EQ(1, outcome.code) << disk;
    EXPECT_EQ("", Out(outcome));
    EXPECT_EQ(QByteArray("Could not find disk: ") + disk + "\n", outcome.err);
  }
  EXPECT_EQ(1, RunDiskTool({"list", "disk999999"}).code);
  EXPECT_EQ(1, RunDiskTool({}).code);
  EXPECT_EQ(1, RunDiskTool({"info"}).code);
  EXPECT_EQ(1, RunDiskTool({"erase", "disk0"}).code);
}

TEST_F(DiskToolTest, AVolumeWithBlanksAndBackslashesIsFoundByWhatLiesOnIt)
{
  RunWithOwnVolumes(
      []
      {
        ASSERT_TRUE(MountVolume("/Volumes/My \\040 Disk"));
        ASSERT_TRUE(MountVolume("/Volumes/two\nlines"));
        ASSERT_TRUE(QDir().mkpath("/Volumes/My \\040 Disk/folder"));
        const StorageInfo storage = FindDisk(LoadDiskList(), "/Volumes/My \\040 Disk/folder");
        EXPECT_EQ("/Volumes/My \\040 Disk", storage.mountPoint);
        EXPECT_EQ("My \\040 Disk", storage.name);
        EXPECT_EQ(1024 * 1024, storage.totalSize);
        EXPECT_THAT(Out(RunDiskTool({"list"})), Not(HasSubstr("lines")));
        EXPECT_EQ("", FindMounted("/Volumes/two").mountPoint);
      });
}

TEST_F(DiskToolTest, FindsTheRootThatIsNotAMountPointThoughItsFileSystemIsMountedBelow)
{
  RunWithOwnVolumes(
      []
      {
        ASSERT_TRUE(MountVolume("/Volumes/Disk"));
        ASSERT_TRUE(QDir().mkpath("/Volumes/Disk/root/data"));
        ASSERT_TRUE(QDir().mkpath("/Volumes/Disk/root/Volumes/Data"));
        ASSERT_EQ(0, mount("/Volumes/Disk/root/data", "/Volumes/Disk/root/Volumes/Data", nullptr, MS_BIND,
                           nullptr));
        ASSERT_TRUE(EnterPlainRoot("/Volumes/Disk/root"));
        for (const char* path : {"/", "/data", "/Volumes/Data"})
        {
          const StorageInfo storage = FindDisk(LoadDiskList(), path);
          EXPECT_EQ("/", storage.mountPoint) << path;
          EXPECT_EQ(1024 * 1024, storage.totalSize) << path;
        }
      });
}

TEST_F(DiskToolTest, AVolumeThatDoesNotAnswerHoldsNobodyUpForLong)
{
  RunWithOwnVolumes(
      []
      {
        ASSERT_EQ(0, mkdir("/Volumes/Hung", 0755));
        const int device = open("/dev/fuse", O_RDWR | O_CLOEXEC);
        const std::string options = "fd=" + std::to_string(device) +
                                    ",rootmode=40000,user_id=" + std::to_string(geteuid()) +
                                    ",group_id=" + std::to_string(getegid()) + ",allow_other";
        if (device < 0 || mount("hung", "/Volumes/Hung", "fuse.hung", 0, options.c_str()) != 0)
        {
          std::printf("This machine has no file systems of users: nothing was tested\n");
          return;
        }
        ASSERT_TRUE(MountVolume("/Volumes/Fast"));
        QElapsedTimer timer;
        timer.start();
        const Outcome hung = RunDiskTool({"info", "/Volumes/Hung"});
        EXPECT_LT(timer.elapsed(), 15000);
        EXPECT_THAT(Out(hung), HasSubstr("Mounted:                  Yes\n"));
        EXPECT_THAT(Out(hung), HasSubstr("Total Size:               Not available"));
        EXPECT_THAT(Out(RunDiskTool({"info", "/Volumes/Fast"})), HasSubstr("(1048576 Bytes)"));
        EXPECT_EQ(-1, FindMounted("/Volumes/Hung").totalSize);
        close(device);
      });
}

TEST(ConfigurationTool, KnowsTheUsersCacheFolderAndMakesIt)
{
  const QString cache = QDir::tempPath() + "/a cache";
  qputenv("XDG_CACHE_HOME", cache.toUtf8());
  const Outcome outcome = RunHost(folder + "/getconf", {"DARWIN_USER_CACHE_DIR"});
  EXPECT_EQ(0, outcome.code);
  EXPECT_EQ(cache.toUtf8() + "/\n", outcome.out);
  EXPECT_EQ(0700u, ModeOf(cache));
  QDir(cache).removeRecursively();
}

TEST(ConfigurationTool, PassesEverythingElseOnToTheSystems)
{
  qputenv("PATH", folder.toUtf8() + ':' + qgetenv("PATH"));
  EXPECT_EQ(QByteArray::number(static_cast<qlonglong>(sysconf(_SC_PAGESIZE))) + "\n",
            RunHost("getconf", {"PAGESIZE"}).out);
  const Outcome outcome = RunHost("getconf", {"NO_SUCH_VARIABLE"});
  EXPECT_NE(0, outcome.code);
  EXPECT_FALSE(outcome.err.isEmpty());
}
