#pragma once

#include <Common/Export.h>

#include <QList>
#include <QString>

/**
 * @file
 * The mounted volumes as the system's disk tool tells them. Nothing here logs.
 */
namespace Tavrik::Cleaner
{

/** One mounted volume. The volumes of an APFS container share its sizes. */
struct StorageInfo
{
  QString name;            ///< The volume's own name, else the last part of its mount point, else "/".
  QString mountPoint;      ///< Absolute path.
  long long totalSize = 0; ///< Bytes; -1 when the disk tool told none that can be read.
  long long freeSize = 0;  ///< Bytes; -1 when the disk tool told none that can be read.
};

/**
 * Runs "diskutil list", and "diskutil info" for every indented line of its answer.
 *
 * Slow: each run blocks the calling thread, for up to 30 seconds if the tool hangs. Call it rarely and keep
 * the list.
 *
 * @return The mounted volumes in the disk tool's order, one for each line that leads to them; empty without a
 *         disk tool.
 */
TAVRIK_COMMON_EXPORT QList<StorageInfo> LoadDiskList();

/**
 * @param list What LoadDiskList() gave.
 * @param path Its symbolic links are resolved first.
 * @return The volume whose mount point is the longest beginning of the path, the first of equals; a default
 *         record when there is none or the path does not exist. The comparison is one of texts: a volume at
 *         /Vol claims /Volumes/x too.
 */
TAVRIK_COMMON_EXPORT StorageInfo FindDisk(const QList<StorageInfo>& list, const QString& path);

} // namespace Tavrik::Cleaner
