// The macOS launcher, call by call, against recording doubles of Authorization Services.

#include <Common/RootExecutor.h>

#include "Darwin/RecordingAuthorization.h"
#include "Support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

using Tavrik::Cleaner::Details::RootExecutor;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

const QString tool = QString::fromUtf8("/tmp/\xd0\xb4\xd0\xb0 tool");
const std::string toolBytes = "/tmp/\xd0\xb4\xd0\xb0 tool";

class DarwinRootExecutorTest : public testing::Test
{
protected:
  ~DarwinRootExecutorTest() override { CloseToolStream(); }

  void CloseToolStream()
  {
    if (system.toolStream)
      std::fclose(system.toolStream);
    system.toolStream = nullptr;
  }

  const AuthorizationCall& Call(std::size_t index) { return system.calls.at(index); }

  AuthorizationRef Reference(std::uintptr_t number) { return reinterpret_cast<AuthorizationRef>(number); }

  RecordingAuthorization& system = RecordingAuthorization::Get();
};

} // namespace

TEST_F(DarwinRootExecutorTest, ConstructingAndDestroyingTalksToNobody)
{
  {
    const RootExecutor executor(tool, true);
    EXPECT_EQ(-1, executor.GetPid());
  }
  EXPECT_THAT(system.calls, IsEmpty());
}

TEST_F(DarwinRootExecutorTest, AuthorizeCreatesASessionOfNoRightsAndAsksForTheAdministrators)
{
  RootExecutor executor(tool, false);
  EXPECT_TRUE(executor.Authorize());
  EXPECT_TRUE(executor.IsAuthorized());
  ASSERT_THAT(system.Names(), ElementsAre("Create", "CopyRights"));
  EXPECT_FALSE(Call(0).hasRights);
  EXPECT_FALSE(Call(0).hasEnvironment);
  EXPECT_EQ(0u, Call(0).flags);

  EXPECT_EQ(Reference(1), Call(1).authorization);
  EXPECT_EQ(19u, Call(1).flags);
  EXPECT_FALSE(Call(1).hasEnvironment);
  EXPECT_FALSE(Call(1).wantsGrantedRights);
  ASSERT_EQ(1u, Call(1).items.size());
  EXPECT_EQ("system.privilege.admin", Call(1).itemName);
  EXPECT_EQ(toolBytes.size(), Call(1).items.front().valueLength);
  EXPECT_EQ(toolBytes, Call(1).itemValue);
  EXPECT_EQ('\0', Call(1).afterValue);
  EXPECT_EQ(0u, Call(1).items.front().flags);
}

TEST_F(DarwinRootExecutorTest, TwoStartsAskOnceAndPassTheirArguments)
{
  RootExecutor executor(tool, false);
  ASSERT_TRUE(executor.Exec("a", "", QString("c d"), QString::fromUtf8("\xd0\xb4")));
  CloseToolStream();
  ASSERT_TRUE(executor.Exec(QStringList()));
  ASSERT_THAT(system.Names(),
              ElementsAre("Create", "CopyRights", "ExecuteWithPrivileges", "ExecuteWithPrivileges"));
  EXPECT_EQ(Reference(1), Call(2).authorization);
  EXPECT_EQ(toolBytes, Call(2).toolPath);
  EXPECT_EQ(0u, Call(2).flags);
  EXPECT_THAT(Call(2).arguments, ElementsAre("a", "", "c d", "\xd0\xb4"));
  EXPECT_THAT(Call(3).arguments, IsEmpty());
}

TEST_F(DarwinRootExecutorTest, TheReferenceIsFreedWithTheObjectAndItsRightsAreNotDestroyed)
{
  {
    RootExecutor executor(tool, false);
    ASSERT_TRUE(executor.Authorize());
  }
  ASSERT_THAT(system.Names(), ElementsAre("Create", "CopyRights", "Free"));
  EXPECT_EQ(Reference(1), Call(2).authorization);
  EXPECT_EQ(0u, Call(2).flags);
}

TEST_F(DarwinRootExecutorTest, WithoutASessionNothingIsAskedStartedOrFreed)
{
  system.createStatus = -60008;
  {
    const LogCapture log;
    RootExecutor executor(tool, true);
    EXPECT_FALSE(executor.Exec("x"));
    EXPECT_THAT(log.Errors(), ElementsAre("Can't create authorization object: -60008"));
    EXPECT_FALSE(executor.IsAuthorized());
  }
  EXPECT_THAT(system.Names(), ElementsAre("Create"));
}

TEST_F(DarwinRootExecutorTest, ACancelledDialogKeepsTheReferenceAndIsAskedAgainInTheSameSession)
{
  system.copyRightsStatus = errAuthorizationCanceled;
  const LogCapture log;
  RootExecutor executor(tool, true);
  EXPECT_FALSE(executor.Exec("x"));
  EXPECT_FALSE(executor.Exec("x"));
  EXPECT_THAT(log.Infos(), ElementsAre("Authorization canceled", "Authorization canceled"));
  EXPECT_THAT(log.Errors(), IsEmpty());
  system.copyRightsStatus = errAuthorizationSuccess;
  EXPECT_TRUE(executor.Exec("x"));
  ASSERT_THAT(system.Names(),
              ElementsAre("Create", "CopyRights", "CopyRights", "CopyRights", "ExecuteWithPrivileges"));
  EXPECT_EQ(Reference(1), Call(3).authorization);
}

TEST_F(DarwinRootExecutorTest, ARefusalFreesTheReferenceAndTheNextTimeBeginsAnew)
{
  system.copyRightsStatus = errAuthorizationDenied;
  const LogCapture log;
  RootExecutor executor(tool, true);
  EXPECT_FALSE(executor.Exec("x"));
  EXPECT_THAT(log.Errors(), ElementsAre("Can't copy rights: -60005"));
  EXPECT_FALSE(executor.Authorize());
  ASSERT_THAT(system.Names(), ElementsAre("Create", "CopyRights", "Free", "Create", "CopyRights", "Free"));
  EXPECT_EQ(Reference(1), Call(2).authorization);
  EXPECT_EQ(0u, Call(2).flags);
  EXPECT_EQ(Reference(2), Call(4).authorization);
  EXPECT_EQ(-1, executor.GetPid());
}

TEST_F(DarwinRootExecutorTest, ReadPidReadsFourBytesOfTheHostsOrderAndLeavesThePipeOpen)
{
  const std::int32_t pid = 70000;
  system.toolOutput.assign(reinterpret_cast<const char*>(&pid), sizeof(pid));
  system.toolOutput += "rest";
  RootExecutor executor(tool, true);
  ASSERT_TRUE(executor.Exec("x"));
  EXPECT_EQ(70000, executor.GetPid());
  char rest[8] = {};
  EXPECT_EQ(4u, std::fread(rest, 1, sizeof(rest), system.toolStream));
  EXPECT_STREQ("rest", rest);
}

TEST_F(DarwinRootExecutorTest, WithReadPidOffNothingIsRead)
{
  system.toolOutput = "1234rest";
  RootExecutor executor(tool, false);
  ASSERT_TRUE(executor.Exec("x"));
  EXPECT_EQ(-1, executor.GetPid());
  EXPECT_EQ(0, std::ftell(system.toolStream));
}

TEST_F(DarwinRootExecutorTest, AToolThatSaysTooLittleHasNoPid)
{
  system.toolOutput = "abcd";
  RootExecutor executor(tool, true);
  ASSERT_TRUE(executor.Exec("x"));
  ASSERT_NE(-1, executor.GetPid());
  CloseToolStream();
  system.toolOutput = "abc";
  ASSERT_TRUE(executor.Exec("x"));
  EXPECT_EQ(-1, executor.GetPid());
}

TEST_F(DarwinRootExecutorTest, AFailedStartHasNoPidAndKeepsTheRight)
{
  system.toolOutput = "abcd";
  RootExecutor executor(tool, true);
  ASSERT_TRUE(executor.Exec("x"));
  CloseToolStream();
  system.executeStatus = errAuthorizationToolExecuteFailure;
  const LogCapture log;
  EXPECT_FALSE(executor.Exec("x"));
  EXPECT_EQ(-1, executor.GetPid());
  EXPECT_TRUE(executor.IsAuthorized());
  EXPECT_THAT(log.Errors(), ElementsAre("Can't run a process (" + toolBytes + ") as root: -60031"));
  EXPECT_EQ("ExecuteWithPrivileges", system.calls.back().name) << "a failed start frees nothing";
}
