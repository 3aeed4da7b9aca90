#include <Common/RAMInfo.h>

#include <Common/Platform/MemoryStatistics.h>

namespace Tavrik::Cleaner::RAMInfo
{

bool GetTotalSize(qint64* size)
{
  return Platform::GetPhysicalMemorySize(size);
}

bool GetStatistics(vm_statistics64* stats)
{
  return Platform::GetMemoryStatistics(stats);
}

} // namespace Tavrik::Cleaner::RAMInfo
