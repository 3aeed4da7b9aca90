// The disk tool's answers: the first part of the input is its list, the others are what it tells of one
// device after the other.

#include <Common/DiskList.h>
#include <Common/FormatText.h>
#include <Common/PathHelpers.h>
#include <Common/Platform/ToolOutput.h>

#include "Support/Outputs.h"
#include "Support/Require.h"

#include <QDir>

#include <map>

namespace
{

using Tavrik::Cleaner::StorageInfo;

struct Volume
{
  QString name;
  QString mountPoint;
  QString total;
  QString free;
};

std::map<QString, QString> SecondParse(const QString& output)
{
  std::map<QString, QString> info;
  for (int begin = 0; begin <= output.size();)
  {
    const int found = output.indexOf('\n', begin);
    const int end = found < 0 ? output.size() : found;
    const QString line = output.mid(begin, end - begin);
    const int colon = line.indexOf(':');
    const int next = line.indexOf(':', colon + 1);
    if (colon >= 0)
      info[line.left(colon).trimmed()] =
          line.mid(colon + 1, (next < 0 ? line.size() : next) - colon - 1).trimmed();
    begin = end + 1;
  }
  return info;
}

QString Inside(const QString& text)
{
  const int open = text.indexOf('(');
  const int close = text.indexOf(')');
  const int start = open + 1; // 0 without one
  return close < start ? text.mid(start) : text.mid(start, close - start);
}

void RequireVolume(const StorageInfo& volume, const QString& output)
{
  std::map<QString, QString> info = SecondParse(output);
  Require(volume.mountPoint == info["Mount Point"], "the mount point is what the tool tells");
  Require(volume.totalSize == Tavrik::Cleaner::ParseSize(Inside(info["Total Size"])),
          "the size is the one in parentheses");
  Require(volume.freeSize == Tavrik::Cleaner::ParseSize(Inside(info["Volume Free Space"])),
          "the free size is the one in parentheses");
  if (!info["Volume Name"].isEmpty())
    Require(volume.name == info["Volume Name"], "the name is the volume's own");
  else if (volume.mountPoint.count('/') == volume.mountPoint.size())
    Require(volume.name == "/", "the name of the root is its path");
  else
    Require(volume.name == volume.mountPoint.mid(volume.mountPoint.lastIndexOf('/') + 1),
            "the name is the mount point's last part");
}

void RequireFound(const QList<StorageInfo>& list, const QString& path)
{
  const QString canonical = QDir(path).canonicalPath();
  const StorageInfo found = Tavrik::Cleaner::FindDisk(list, path);
  bool isListed = found.mountPoint.isEmpty();
  for (const StorageInfo& volume : list)
  {
    isListed = isListed || (volume.mountPoint == found.mountPoint && volume.name == found.name);
    if (canonical.startsWith(volume.mountPoint))
      Require(volume.mountPoint.size() <= found.mountPoint.size(), "the longest mount point wins");
  }
  Require(isListed && canonical.startsWith(found.mountPoint), "what is found is listed and holds the path");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  const QList<QByteArray> parts = Outputs::Split(data, size);
  QStringList devices;
  QStringList told; // of what is mounted
  Outputs::Set(
      [&](const QStringList& arguments)
      {
        if (arguments.size() == 1)
          return parts.first();
        devices.append(arguments.at(1));
        const QByteArray output = parts.value(devices.size());
        // What newer systems print is rewritten first, which has tests of its own.
        const QString classic =
            Tavrik::Platform::ToClassicDiskAnswer(QStringLiteral("info"), Outputs::Text(output));
        if (SecondParse(classic)["Mounted"] == "Yes")
          told.append(classic);
        return output;
      });
  const QList<StorageInfo> list = Tavrik::Cleaner::LoadDiskList();

  QStringList expected;
  for (const QString& line : Outputs::Text(parts.first()).split('\n'))
    if (!line.isEmpty() && line.at(0).isSpace())
      expected.append(line.mid(line.lastIndexOf(' ') + 1));
  Require(devices == expected, "the tool is asked once for every indented line, by the line's end");
  Require(list.size() == told.size(), "what is mounted, and only that, is listed");
  for (int i = 0; i < list.size(); ++i)
    RequireVolume(list.at(i), told.at(i));
  RequireFound(list, QStringLiteral("/"));
  RequireFound(list, QStringLiteral("/usr"));
  RequireFound(list, QStringLiteral("/nowhere"));
  return 0;
}
