#include "Memory.h"

#include <algorithm>
#include <mach/mach.h>
#include <sys/sysctl.h>

namespace Purger
{

namespace
{

const long long leastMargin = 256LL << 20;

bool ReadStatistics(vm_statistics64* statistics)
{
  mach_msg_type_number_t count = HOST_VM_INFO64_COUNT;
  return host_statistics64(mach_host_self(), HOST_VM_INFO64, reinterpret_cast<host_info64_t>(statistics),
                           &count) == KERN_SUCCESS;
}

} // namespace

bool DropCaches()
{
  return false;
}

void GoFirst() {}

long long GetRoom()
{
  vm_statistics64 statistics = {};
  long long total = 0;
  size_t size = sizeof(total);
  int name[] = {CTL_HW, HW_MEMSIZE};
  if (!ReadStatistics(&statistics) || sysctl(name, 2, &total, &size, nullptr, 0) != 0)
    return 0;
  const long long pages = static_cast<long long>(statistics.free_count) + statistics.external_page_count +
                          statistics.purgeable_count;
  return pages * static_cast<long long>(vm_page_size) - std::max(total / 20, leastMargin);
}

long long GetSwappedOut()
{
  vm_statistics64 statistics = {};
  return ReadStatistics(&statistics) ? static_cast<long long>(statistics.swapouts) : 0;
}

} // namespace Purger
