#include "Disks.h"

#include <QFileInfo>
#include <QStandardPaths>
#include <QStorageInfo>

#include <algorithm>
#include <iterator>

namespace Ostrel
{

using Tavrik::Cleaner::StorageInfo;

namespace
{

// The library compares texts, and takes /mnt/a for the place of /mnt/ab, too.
bool IsBelow(const QString& path, const QString& folder)
{
  return path == folder ||
         path.startsWith(folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/'));
}

StorageInfo Describe(const QStorageInfo& volume)
{
  const QString name = QFileInfo(volume.rootPath()).fileName();
  StorageInfo disk;
  disk.name = name.isEmpty() ? volume.rootPath() : name;
  disk.mountPoint = volume.rootPath();
  disk.totalSize = volume.bytesTotal();
  disk.freeSize = volume.bytesAvailable();
  return disk;
}

// The disk tool does not know which blocks are reserved for root.
long long GetUsedSize(const StorageInfo& disk)
{
  const QStorageInfo volume(disk.mountPoint);
  const bool isSame =
      volume.isValid() && volume.rootPath() == disk.mountPoint && volume.bytesTotal() == disk.totalSize;
  return disk.totalSize - (isSame ? volume.bytesFree() : disk.freeSize);
}

} // namespace

bool HasDiskTool()
{
  return !QStandardPaths::findExecutable(QStringLiteral("diskutil")).isEmpty();
}

StorageInfo FindHoldingDisk(const QList<StorageInfo>& disks, const QString& path)
{
  const QString place = QFileInfo(path).canonicalFilePath();
  if (place.isEmpty())
    return {};
  QList<StorageInfo> candidates;
  std::copy_if(disks.begin(), disks.end(), std::back_inserter(candidates),
               [&place](const StorageInfo& disk) { return IsBelow(place, disk.mountPoint); });
  StorageInfo listed = Tavrik::Cleaner::FindDisk(candidates, place);
  const QStorageInfo volume(place);
  if (!volume.isValid() || volume.rootPath().size() <= listed.mountPoint.size())
    return listed;
  // A mount point need not be the beginning of the path: macOS shows the folders of one volume below another.
  const auto same =
      std::find_if(disks.begin(), disks.end(),
                   [&volume](const StorageInfo& disk) { return disk.mountPoint == volume.rootPath(); });
  return same == disks.end() ? Describe(volume) : *same;
}

std::optional<double> GetUsedPart(const StorageInfo& disk)
{
  if (disk.totalSize <= 0 || disk.freeSize < 0 || disk.freeSize > disk.totalSize)
    return {};
  const auto used = static_cast<double>(GetUsedSize(disk));
  const double usable = used + static_cast<double>(disk.freeSize);
  return usable > 0 ? std::optional<double>(std::clamp(used / usable, 0.0, 1.0)) : std::nullopt;
}

} // namespace Ostrel
