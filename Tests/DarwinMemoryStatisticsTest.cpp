// The source of the other system, over doubles of the calls it makes.

#include <Common/Platform/Darwin/MemoryStatistics.cpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

using namespace Tavrik;
using testing::ElementsAre;

namespace
{

struct SysctlCall
{
  std::vector<int> name;
  void* value = nullptr;
  size_t length = 0;
  void* newValue = nullptr;
  size_t newLength = 0;
};

struct StatisticsCall
{
  host_t host = 0;
  host_flavor_t flavor = 0;
  void* info = nullptr;
  mach_msg_type_number_t count = 0;
};

const mach_port_t hostPort = 4711;
int sysctlResult = 0;
kern_return_t statisticsResult = KERN_SUCCESS;
std::vector<SysctlCall> sysctlCalls;
std::vector<StatisticsCall> statisticsCalls;
int hostPortsTaken = 0;
int portsReleased = 0;

} // namespace

extern "C" int sysctl(int* name, unsigned int nameLength, void* oldValue, size_t* oldLength, void* newValue,
                      size_t newLength)
{
  sysctlCalls.push_back(
      {std::vector<int>(name, name + nameLength), oldValue, *oldLength, newValue, newLength});
  *static_cast<qint64*>(oldValue) = 68719476736;
  return sysctlResult;
}

extern "C" mach_port_t mach_host_self()
{
  ++hostPortsTaken;
  return hostPort;
}

extern "C" mach_port_t mach_task_self()
{
  return 1;
}

extern "C" kern_return_t mach_port_deallocate(mach_port_t, mach_port_t)
{
  ++portsReleased;
  return KERN_SUCCESS;
}

extern "C" kern_return_t host_statistics64(host_t host, host_flavor_t flavor, host_info64_t info,
                                           mach_msg_type_number_t* count)
{
  statisticsCalls.push_back({host, flavor, info, *count});
  info[0] = -2;
  return statisticsResult;
}

namespace
{

TEST(DarwinMemoryStatistics, TotalSizeIsAskedWithTheTwoNumbersOfMemsizeAndEightBytes)
{
  qint64 size = 0;
  EXPECT_TRUE(Platform::GetPhysicalMemorySize(&size));
  EXPECT_EQ(size, 68719476736);
  ASSERT_EQ(sysctlCalls.size(), 1u);
  const SysctlCall& call = sysctlCalls.front();
  EXPECT_THAT(call.name, ElementsAre(6, 24));
  EXPECT_EQ(call.value, &size);
  EXPECT_EQ(call.length, 8u);
  EXPECT_EQ(call.newValue, nullptr);
  EXPECT_EQ(call.newLength, 0u);
}

TEST(DarwinMemoryStatistics, OnlyMinusOneIsAFailureOfTheTotalSize)
{
  qint64 size = 0;
  sysctlResult = -1;
  EXPECT_FALSE(Platform::GetPhysicalMemorySize(&size));
  sysctlResult = 1;
  EXPECT_TRUE(Platform::GetPhysicalMemorySize(&size));
}

TEST(DarwinMemoryStatistics, StatisticsAreAskedInThe32BitFlavourWithItsCount)
{
  vm_statistics64 statistics = {};
  EXPECT_TRUE(Platform::GetMemoryStatistics(&statistics));
  EXPECT_EQ(statistics.free_count, 0xfffffffeu);
  ASSERT_EQ(statisticsCalls.size(), 1u);
  const StatisticsCall& call = statisticsCalls.front();
  EXPECT_EQ(call.host, hostPort);
  EXPECT_EQ(call.flavor, 2);
  EXPECT_EQ(call.count, 15u);
  EXPECT_EQ(call.info, &statistics);
}

TEST(DarwinMemoryStatistics, HostPortIsNotReleased)
{
  vm_statistics64 statistics = {};
  EXPECT_TRUE(Platform::GetMemoryStatistics(&statistics));
  EXPECT_EQ(hostPortsTaken, 1);
  EXPECT_EQ(portsReleased, 0);
}

TEST(DarwinMemoryStatistics, AnythingButSuccessIsAFailure)
{
  vm_statistics64 statistics = {};
  for (const kern_return_t result : {1, 4, 5, -1})
  {
    statisticsResult = result;
    EXPECT_FALSE(Platform::GetMemoryStatistics(&statistics));
  }
}

} // namespace
