#pragma once

#include <Common/Export.h>

#include <QtGlobal>

#ifdef __APPLE__
#include <mach/vm_statistics.h>
#else
/** What stands for the system's record of the same name where there is none. */
struct vm_statistics64
{
  quint32 free_count; ///< Free memory in units of 4096 bytes, whatever the system's page size.
};
#endif

/**
 * @file
 * Queries of the machine's memory. They keep no state, log nothing and do not throw.
 */
namespace Tavrik::Cleaner::RAMInfo
{

/**
 * @param size Becomes the physical memory in bytes; undefined after a failure.
 * @return Whether the system told.
 */
TAVRIK_COMMON_EXPORT bool GetTotalSize(qint64* size);

/**
 * @param stats Its 32-bit counters at the front, free_count the first of them, become the present ones. The
 *              rest of the record is not filled; after a failure it is as the system left it.
 * @return Whether the system told.
 */
TAVRIK_COMMON_EXPORT bool GetStatistics(vm_statistics64* stats);

} // namespace Tavrik::Cleaner::RAMInfo
