#include <Common/DiskList.h>

#include <Common/FormatText.h>
#include <Common/PathHelpers.h>
#include <Common/Platform/ToolOutput.h>
#include <Common/ReadProcess.h>

#include <QFileInfo>
#include <QMap>
#include <QStringList>

namespace Tavrik::Cleaner
{

namespace
{

using VolumeInfo = QMap<QString, QString>;

QStringList ReadDiskTool(const QStringList& arguments)
{
  const QString answer = ReadProcess(QStringLiteral("diskutil"), arguments);
  return Platform::ToClassicDiskAnswer(arguments.first(), answer).split(QLatin1Char('\n'));
}

VolumeInfo LoadVolumeInfo(const QString& device)
{
  VolumeInfo info;
  for (const QString& line : ReadDiskTool({QStringLiteral("info"), device}))
  {
    const QStringList parts = line.split(QLatin1Char(':'));
    if (parts.size() >= 2)
      info.insert(parts.at(0).trimmed(), parts.at(1).trimmed());
  }
  return info;
}

QString ChooseName(const QString& volumeName, const QString& mountPoint)
{
  if (!volumeName.isEmpty())
    return volumeName;
  if (mountPoint.split(dirSep, Qt::SkipEmptyParts).isEmpty())
    return dirSep;
  return mountPoint.split(dirSep).last();
}

// The tool prints "500.1 GB (500107862016 Bytes)".
long long ReadExactSize(const QString& text)
{
  return ParseSize(CutFromFirstParentheses(text));
}

StorageInfo MakeStorageInfo(const VolumeInfo& info)
{
  StorageInfo storage;
  storage.mountPoint = info.value(QStringLiteral("Mount Point"));
  storage.name = ChooseName(info.value(QStringLiteral("Volume Name")), storage.mountPoint);
  storage.totalSize = ReadExactSize(info.value(QStringLiteral("Total Size")));
  storage.freeSize = ReadExactSize(info.value(QStringLiteral("Volume Free Space")));
  return storage;
}

} // namespace

QList<StorageInfo> LoadDiskList()
{
  QList<StorageInfo> list;
  for (const QString& line : ReadDiskTool({QStringLiteral("list")}))
  {
    if (line.isEmpty() || !line.at(0).isSpace())
      continue;
    const VolumeInfo info = LoadVolumeInfo(line.split(QLatin1Char(' ')).last());
    if (info.value(QStringLiteral("Mounted")) == QLatin1String("Yes"))
      list.append(MakeStorageInfo(info));
  }
  return list;
}

StorageInfo FindDisk(const QList<StorageInfo>& list, const QString& path)
{
  const QString canonicalPath = QFileInfo(path).canonicalFilePath();
  StorageInfo best;
  for (const StorageInfo& storage : list)
    if (canonicalPath.startsWith(storage.mountPoint) && storage.mountPoint.size() > best.mountPoint.size())
      best = storage;
  return best;
}

} // namespace Tavrik::Cleaner
