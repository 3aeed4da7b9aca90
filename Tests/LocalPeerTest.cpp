#include "Support/Child.h"
#include <Common/Platform/LocalPeer.h>

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Tavrik::Platform;

namespace
{

// Who holds the other end of a socket pair: this process.
LocalPeer GetOwnPeer()
{
  int ends[2] = {-1, -1};
  EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
  const LocalPeer peer = GetLocalPeer(ends[0]);
  close(ends[0]);
  close(ends[1]);
  return peer;
}

// The 22nd field; the name in the second holds no blank here.
long long ReadStartTime(pid_t process)
{
  std::ifstream file("/proc/" + std::to_string(process) + "/stat");
  std::string field;
  for (int i = 0; i < 22; ++i)
    file >> field;
  return std::stoll(field);
}

} // namespace

TEST(LocalPeer, IsTheProcessAtTheOtherEndAndItsUser)
{
  const LocalPeer peer = GetOwnPeer();
  EXPECT_TRUE(peer.isKnown);
  EXPECT_EQ(peer.userId, geteuid());
  EXPECT_EQ(peer.process.pid, getpid());
  EXPECT_GT(peer.process.startTime, 0);
  EXPECT_TRUE(IsAlive(peer.process));
}

TEST(LocalPeer, OfWhatIsNoSocketIsUnknown)
{
  int ends[2] = {-1, -1};
  ASSERT_EQ(pipe(ends), 0);
  for (const int file : {ends[0], -1})
  {
    const LocalPeer peer = GetLocalPeer(file);
    EXPECT_FALSE(peer.isKnown);
    EXPECT_EQ(peer.process.pid, 0);
    EXPECT_FALSE(IsAlive(peer.process));
  }
  close(ends[0]);
  close(ends[1]);
}

TEST(LocalPeer, WhoseStartIsUnknownIsAliveWhileAProcessHasItsId)
{
  EXPECT_TRUE(IsAlive({getpid(), 0}));
}

TEST(LocalPeer, IsAliveAlsoForAProcessThatHasNoDescriptorLeft)
{
  const ProcessIdentity process = GetOwnPeer().process;
  int ends[2] = {-1, -1};
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
  EXPECT_TRUE(RunInChild(
      [&]
      {
        rlimit former = {};
        ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &former), 0);
        const rlimit none = {0, former.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
        EXPECT_TRUE(IsAlive(process));
        const LocalPeer peer = GetLocalPeer(ends[0]);
        EXPECT_EQ(peer.process.pid, process.pid);
        EXPECT_EQ(peer.process.startTime, 0);
        EXPECT_TRUE(IsAlive(peer.process));
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &former), 0); // a leak checker needs some in the end
      }));
  close(ends[0]);
  close(ends[1]);
}

TEST(LocalPeer, ThatStartedAtAnotherTimeIsAnother)
{
  ProcessIdentity process = GetOwnPeer().process;
  ++process.startTime;
  EXPECT_FALSE(IsAlive(process));
}

TEST(LocalPeer, ThatHasEndedIsNotAliveThoughItsParentHasNotLooked)
{
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0)
  {
    pause();
    _exit(0);
  }
  const ProcessIdentity process = {child, ReadStartTime(child)};
  EXPECT_TRUE(IsAlive(process));
  kill(child, SIGKILL);
  siginfo_t ended = {};
  ASSERT_EQ(waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT), 0);
  EXPECT_FALSE(IsAlive(process));
  waitpid(child, nullptr, 0);
  EXPECT_FALSE(IsAlive(process));
  EXPECT_FALSE(IsAlive({child, 0}));
}

TEST(LocalPeer, WhereTheSystemTellsNoStartIsAliveWhileTheProcessIs)
{
  const ProcessIdentity told = GetOwnPeer().process;
  RunWithOwnVolumes(
      [&]
      {
        ASSERT_TRUE(MountVolume("/proc"));
        const LocalPeer peer = GetOwnPeer();
        EXPECT_TRUE(peer.isKnown);
        EXPECT_EQ(peer.process.pid, getpid());
        EXPECT_EQ(peer.process.startTime, 0);
        EXPECT_TRUE(IsAlive(peer.process));
        EXPECT_FALSE(IsAlive(told));
        EXPECT_EQ(umount2("/proc", MNT_DETACH), 0); // a leak checker looks there in the end
      });
}
