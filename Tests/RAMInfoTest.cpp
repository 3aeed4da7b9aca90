#include <Common/Platform/Linux/MemoryStatistics.cpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <unistd.h>
#include <vector>

using namespace Tavrik;
using Platform::ParseBytes;

namespace
{

const QByteArray memInfo = "MemTotal:       24684092 kB\n"
                           "MemFree:        23319096 kB\n"
                           "MemAvailable:   24206952 kB\n"
                           "HugePages_Total:       0\n";

TEST(RAMInfo, TotalSizeIsThePhysicalMemoryInBytes)
{
  qint64 size = 0;
  ASSERT_TRUE(Cleaner::RAMInfo::GetTotalSize(&size));
  EXPECT_EQ(size, static_cast<qint64>(sysconf(_SC_PHYS_PAGES)) * sysconf(_SC_PAGESIZE));
}

// Other processes take and give memory meanwhile, so the answer is held between two of the kernel's.
TEST(RAMInfo, FreeCountIsTheFreeMemoryInUnitsOf4096Bytes)
{
  const auto freeNow = [] { return static_cast<qint64>(sysconf(_SC_AVPHYS_PAGES)) * sysconf(_SC_PAGESIZE); };
  const qint64 tolerance = 64 << 20;
  bool isClose = false;
  for (int attempt = 0; attempt < 1000 && !isClose; ++attempt)
  {
    const qint64 before = freeNow();
    vm_statistics64 statistics = {};
    ASSERT_TRUE(Cleaner::RAMInfo::GetStatistics(&statistics));
    isClose = std::llabs(statistics.free_count * 4096LL - before) < tolerance &&
              std::llabs(freeNow() - before) < tolerance;
  }
  EXPECT_TRUE(isClose);
}

TEST(RAMInfo, FreeCountIsTheFirstFieldAnd32BitsWide)
{
  static_assert(offsetof(vm_statistics64, free_count) == 0, "");
  static_assert(sizeof(vm_statistics64::free_count) == 4, "");
}

TEST(MemInfo, LineIsFoundByItsWholeName)
{
  qint64 bytes = 0;
  EXPECT_TRUE(ParseBytes(memInfo, "MemTotal", &bytes));
  EXPECT_EQ(bytes, 24684092 * 1024LL);
  EXPECT_TRUE(ParseBytes(memInfo, "MemFree", &bytes));
  EXPECT_EQ(bytes, 23319096 * 1024LL);
  EXPECT_TRUE(ParseBytes("XMemFree: 1 kB\nMemFreeX: 2 kB\nMemFree:\t3 kB", "MemFree", &bytes));
  EXPECT_EQ(bytes, 3 * 1024);
  EXPECT_TRUE(ParseBytes("MemFree: 0 kB\nMemFree: 9 kB\n", "MemFree", &bytes));
  EXPECT_EQ(bytes, 0);
}

TEST(MemInfo, WithoutAReadableLineSaysNoAndLeavesTheResultAlone)
{
  const std::vector<QByteArray> texts = {"",
                                         "\n\n",
                                         "MemTotal: 1 kB\n",
                                         "MemFree\n",
                                         "MemFree:\n",
                                         "MemFree: kB\n",
                                         "MemFree: 12\n",
                                         "MemFree: 12 MB\n",
                                         "MemFree: 12 kB more\n",
                                         "MemFree: 12kB\n",
                                         "MemFree: -12 kB\n",
                                         "MemFree: 1.5 kB\n",
                                         "MemFree: 0x10 kB\n",
                                         "MemFree: lots kB\n",
                                         "MemFree: 9007199254740992 kB\n",
                                         "MemFree: 9223372036854775807 kB\n",
                                         "MemFree: 99999999999999999999999 kB\n",
                                         "MemFree : 12 kB\n",
                                         "memfree: 12 kB\n",
                                         QByteArray("MemFree: \0 12 kB\n", 17),
                                         QByteArray("\xff\xfe\0\0:::\n\0", 9).repeated(1000),
                                         QByteArray(1000000, 'M')};
  for (const QByteArray& text : texts)
  {
    qint64 bytes = 77;
    EXPECT_FALSE(ParseBytes(text, "MemFree", &bytes)) << text.left(40).constData();
    EXPECT_EQ(bytes, 77) << text.left(40).constData();
  }
}

TEST(MemInfo, LargestNumberThatFitsIsRead)
{
  qint64 bytes = 0;
  EXPECT_TRUE(ParseBytes("MemFree: 9007199254740991 kB\n", "MemFree", &bytes));
  EXPECT_EQ(bytes, 9223372036854774784);
}

TEST(MemInfo, PagesBeyondTheCounterSaturate)
{
  using Platform::ToPages;
  EXPECT_EQ(ToPages(4095), 0u);
  EXPECT_EQ(ToPages(4096), 1u);
  EXPECT_EQ(ToPages(4096LL * 4294967295LL), 4294967295u);
  EXPECT_EQ(ToPages(4096LL * 4294967296LL), 4294967295u);
  EXPECT_EQ(ToPages(9223372036854774784), 4294967295u);
}

} // namespace
