#include <Common/Platform/MemoryStatistics.h>

#include <mach/mach.h>
#include <sys/sysctl.h>
#include <sys/types.h>

namespace Tavrik::Platform
{

bool GetPhysicalMemorySize(qint64* size)
{
  int name[] = {CTL_HW, HW_MEMSIZE};
  size_t length = sizeof(*size);
  return sysctl(name, 2, size, &length, nullptr, 0) != -1;
}

// The 32-bit flavour fills the front of the record, where both layouts have free_count first. The port of the
// host belongs to the process and is not given back.
bool GetMemoryStatistics(vm_statistics64* statistics)
{
  mach_msg_type_number_t count = HOST_VM_INFO_COUNT;
  return host_statistics64(mach_host_self(), HOST_VM_INFO, reinterpret_cast<host_info64_t>(statistics),
                           &count) == KERN_SUCCESS;
}

} // namespace Tavrik::Platform
