#include <Common/Platform/LocalPeer.h>

#include <sys/sysctl.h>
#include <sys/ucred.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

using Tavrik::Platform::GetLocalPeer;
using Tavrik::Platform::IsAlive;
using Tavrik::Platform::LocalPeer;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

// What the system answers, and every call with what it was given.
struct System
{
  bool hasCredentials = true;
  bool hasPeer = true;
  bool mayLook = true;
  size_t informationSize = sizeof(kinfo_proc);
  kinfo_proc process = {{{1700000000, 250000}, 2}};
  int killError = 0;
  std::vector<std::string> calls;
};

System* asked = nullptr;

const pid_t pid = 4711;
const long long startTime = 1700000000250000;

template<typename... Arguments>
void Record(const char* function, Arguments... arguments)
{
  std::ostringstream call;
  call << function;
  ((call << ' ' << arguments), ...);
  asked->calls.push_back(call.str());
}

int Fail(int error)
{
  errno = error;
  return -1;
}

} // namespace

int getpeereid(int socket, uid_t* user, gid_t* group)
{
  Record("getpeereid", socket);
  if (!asked->hasCredentials)
    return Fail(ENOTCONN);
  *user = 501;
  *group = 20;
  return 0;
}

int DarwinGetSocketOption(int socket, int level, int name, void* value, socklen_t* size)
{
  Record("getsockopt", socket, level, name, *size);
  if (!asked->hasPeer)
    return Fail(ENOPROTOOPT);
  std::memcpy(value, &pid, sizeof(pid));
  return 0;
}

int sysctl(int* name, unsigned int nameLength, void* old, size_t* oldLength, void* fresh, size_t freshLength)
{
  std::ostringstream names;
  for (unsigned int index = 0; index < nameLength; ++index)
    names << (index == 0 ? "" : ".") << name[index];
  Record("sysctl", names.str(), *oldLength == sizeof(kinfo_proc), fresh == nullptr, freshLength);
  if (!asked->mayLook)
    return Fail(EPERM);
  std::memcpy(old, &asked->process, std::min(asked->informationSize, sizeof(kinfo_proc)));
  *oldLength = asked->informationSize;
  return 0;
}

int DarwinKill(pid_t process, int signal)
{
  Record("kill", process, signal);
  return asked->killError == 0 ? 0 : Fail(asked->killError);
}

namespace
{

class PeerOnMacOS : public testing::Test
{
protected:
  PeerOnMacOS() { asked = &system; }
  ~PeerOnMacOS() override { asked = nullptr; }

  System system;
};

TEST_F(PeerOnMacOS, APeerIsItsUserItsProcessAndWhenThatStarted)
{
  const LocalPeer peer = GetLocalPeer(7);

  EXPECT_TRUE(peer.isKnown);
  EXPECT_EQ(peer.userId, 501U);
  EXPECT_EQ(peer.process.pid, pid);
  EXPECT_EQ(peer.process.startTime, startTime);
  EXPECT_THAT(system.calls, ElementsAre("getpeereid 7", "getsockopt 7 0 2 4", "sysctl 1.14.1.4711 1 1 0"));
}

TEST_F(PeerOnMacOS, WithoutCredentialsNothingIsKnownAndNothingMoreIsAsked)
{
  system.hasCredentials = false;
  const LocalPeer peer = GetLocalPeer(7);

  EXPECT_FALSE(peer.isKnown);
  EXPECT_EQ(peer.process.pid, 0);
  EXPECT_EQ(peer.process.startTime, 0);
  EXPECT_THAT(system.calls, ElementsAre("getpeereid 7"));
}

TEST_F(PeerOnMacOS, WithoutAProcessOnlyTheUserIsKnown)
{
  system.hasPeer = false;
  const LocalPeer peer = GetLocalPeer(7);

  EXPECT_TRUE(peer.isKnown);
  EXPECT_EQ(peer.userId, 501U);
  EXPECT_EQ(peer.process.pid, 0);
  EXPECT_EQ(peer.process.startTime, 0);
  EXPECT_THAT(system.calls, ElementsAre("getpeereid 7", "getsockopt 7 0 2 4"));
}

TEST_F(PeerOnMacOS, APeerThatHasEndedOrIsHiddenHasNoStartTime)
{
  system.informationSize = 0;
  EXPECT_EQ(GetLocalPeer(7).process.startTime, 0);

  system.informationSize = sizeof(kinfo_proc);
  system.mayLook = false;
  EXPECT_EQ(GetLocalPeer(7).process.startTime, 0);
}

TEST_F(PeerOnMacOS, AProcessLivesWhileItsStartTimeIsTheSame)
{
  EXPECT_TRUE(IsAlive({pid, startTime}));
  EXPECT_FALSE(IsAlive({pid, startTime + 1}));
  EXPECT_THAT(system.calls, ElementsAre("sysctl 1.14.1.4711 1 1 0", "sysctl 1.14.1.4711 1 1 0"));
}

TEST_F(PeerOnMacOS, AProcessWhoseStartTimeIsUnknownLivesWhileAProcessHasItsId)
{
  EXPECT_TRUE(IsAlive({pid, 0}));
}

TEST_F(PeerOnMacOS, AProcessThatHasEndedAndWaitsForItsParentDoesNotLive)
{
  system.process.kp_proc.p_stat = SZOMB;
  EXPECT_FALSE(IsAlive({pid, startTime}));
}

TEST_F(PeerOnMacOS, AnEmptyOrShortAnswerMeansThatThereIsNoSuchProcess)
{
  system.informationSize = 0;
  EXPECT_FALSE(IsAlive({pid, 0}));
  system.informationSize = sizeof(kinfo_proc) - 1;
  EXPECT_FALSE(IsAlive({pid, startTime}));
}

TEST_F(PeerOnMacOS, NoProcessIsAskedForAnIdThatNoneHas)
{
  EXPECT_FALSE(IsAlive({0, startTime}));
  EXPECT_FALSE(IsAlive({-1, startTime}));
  EXPECT_THAT(system.calls, IsEmpty());
}

TEST_F(PeerOnMacOS, AProcessThatMayNotBeLookedAtLivesUntilASignalFindsNone)
{
  system.mayLook = false;
  EXPECT_TRUE(IsAlive({pid, 0}));
  EXPECT_TRUE(IsAlive({pid, startTime}));
  system.killError = EPERM;
  EXPECT_TRUE(IsAlive({pid, 0}));
  system.killError = ESRCH;
  EXPECT_FALSE(IsAlive({pid, 0}));
  EXPECT_THAT(system.calls.back(), "kill 4711 0");
}

} // namespace
