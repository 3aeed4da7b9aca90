#pragma once

#include <Common/DiskList.h>

#include <optional>

/** @file The disks, where the disk tool does not say enough. */
namespace Ostrel
{

/** @return Whether there is the tool from which the library learns the disks. */
bool HasDiskTool();

/**
 * Finds the file system that holds an existing path, with links followed.
 *
 * @return Its entry in @p disks. Of a file system that the disk tool does not list, such as one in memory,
 * what the operating system says. A default record when there is neither.
 */
Tavrik::Cleaner::StorageInfo FindHoldingDisk(const QList<Tavrik::Cleaner::StorageInfo>& disks,
                                             const QString& path);

/**
 * Returns the used part, 0 to 1, of what this user can use, as df(1) computes it: neither used nor usable are
 * blocks that are reserved for root. No value where the sizes are unknown or make no sense.
 */
std::optional<double> GetUsedPart(const Tavrik::Cleaner::StorageInfo& disk);

} // namespace Ostrel
