#include <Common/PathSafety.h>

#include <Common/PathHelpers.h>
#include <Common/ReadProcess.h>

#include <QDir>
#include <QFileInfo>
#include <QOperatingSystemVersion>
#include <QStorageInfo>
#include <QVersionNumber>

#include <algorithm>
#include <vector>

namespace Tavrik::Cleaner
{

namespace
{

const QLatin1Char separator('/');
const QLatin1String volumesFolder("/Volumes");

// From 10.11 on the system protects its own folder, and nothing in it is worth a search.
bool IsSystemLibraryOpen(const QOperatingSystemVersion& version)
{
  return version.type() == QOperatingSystemVersion::MacOS &&
         QVersionNumber(version.majorVersion(), version.minorVersion()) < QVersionNumber(10, 11);
}

QStringList MakeSystemLibraryPrefixes(const QOperatingSystemVersion& version)
{
  QStringList prefixes{QStringLiteral("/Library")};
  if (IsSystemLibraryOpen(version))
    prefixes += QStringLiteral("/System/Library");
  return prefixes;
}

QString FindDarwinUserCachePath()
{
  const QString output = ReadProcess(QStringLiteral("getconf"), QStringLiteral("DARWIN_USER_CACHE_DIR"));
  const QString folder = output.section(QLatin1Char('\n'), 0, 0);
  if (folder.isEmpty() || !QDir(folder).exists())
    return {};
  return QDir(folder).absolutePath();
}

// Both are made before main() and in no order with the constants of other sources, so they use none of those.
const QStringList systemLibraryPrefixes = MakeSystemLibraryPrefixes(QOperatingSystemVersion::current());
const QString darwinUserCachePath = FindDarwinUserCachePath();

bool CheckPathPrefix(const QString& path, const QStringList& prefixes)
{
  const auto contains = [&path](const QString& prefix)
  {
    const bool isWhole = path.size() == prefix.size();
    return path.startsWith(prefix) && (isWhole || path.at(prefix.size()) == separator);
  };
  return std::any_of(prefixes.begin(), prefixes.end(), contains);
}

bool HasParentComponent(const QString& path)
{
  const QVector<QStringRef> components = path.splitRef(separator);
  return std::find(components.begin(), components.end(), QLatin1String("..")) != components.end();
}

bool ExistsOnWritableVolume(const QString& path)
{
  // No root that counts could be a prefix of it; a dead network volume is then not even asked.
  if (!path.startsWith(volumesFolder))
    return false;
  for (const QStorageInfo& volume : QStorageInfo::mountedVolumes())
  {
    const QString root = volume.rootPath();
    if (root.startsWith(volumesFolder) && !volume.isReadOnly() && path.startsWith(root))
      return QFileInfo::exists(path);
  }
  return false;
}

struct Directory
{
  QString canonicalPath;
  int index; ///< In the list that was given.
};

// Orders by components: what lies in a directory comes right after it, before any "directory-2".
bool ComesBefore(const Directory& left, const Directory& right)
{
  const auto order = [](QChar a, QChar b)
  { return (a == separator ? 0 : a.unicode()) < (b == separator ? 0 : b.unicode()); };
  const QString& a = left.canonicalPath;
  const QString& b = right.canonicalPath;
  if (a == b)
    return left.index < right.index;
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), order);
}

bool Covers(const QString& outer, const QString& inner)
{
  return inner.startsWith(outer) && (inner.size() == outer.size() || inner.at(outer.size()) == separator);
}

std::vector<Directory> FindExisting(const QStringList& dirs)
{
  std::vector<Directory> existing;
  for (int i = 0; i < dirs.size(); ++i)
  {
    const QFileInfo entry(dirs.at(i));
    if (entry.exists())
      existing.push_back({entry.canonicalFilePath(), i});
  }
  return existing;
}

} // namespace

bool IsPathSafe(const QString& path)
{
  static const QStringList validPrefixes{
      QStringLiteral("/Users"),
      QStringLiteral("/Library/Logs"),
      QStringLiteral("/System/Library/Logs"),
      QStringLiteral("/Library/Caches"),
      QStringLiteral("/System/Library/Caches"),
      QStringLiteral("/Library/LaunchAgents"),
      QStringLiteral("/Library/LaunchDaemons"),
      QStringLiteral("/Applications"),
      QStringLiteral("/private/var/log/asl"),
      QStringLiteral("/var/folders"),
  };

  if (!path.startsWith(separator) || HasParentComponent(path))
    return false;
  return path.endsWith(lProjExt) || CheckPathPrefix(path, validPrefixes) || ExistsOnWritableVolume(path);
}

bool IsPathScannable(const QString& path)
{
  return IsPathSafe(path) || CheckPathPrefix(path, systemLibraryPrefixes);
}

QStringList FilterSubDirs(const QStringList& dirs)
{
  if (dirs.contains(QStringLiteral("/")) || dirs.contains(QStringLiteral("\\")))
    return {QStringLiteral("/")};

  std::vector<Directory> existing = FindExisting(dirs);
  std::sort(existing.begin(), existing.end(), ComesBefore);

  std::vector<int> kept;
  const QString* outermost = nullptr;
  for (const Directory& directory : existing)
  {
    if (outermost && Covers(*outermost, directory.canonicalPath))
      continue;
    outermost = &directory.canonicalPath;
    kept.push_back(directory.index);
  }

  std::sort(kept.begin(), kept.end());
  QStringList result;
  for (const int index : kept)
    result += dirs.at(index);
  return result;
}

QStringList GetSystemLibraryPrefixes()
{
  return systemLibraryPrefixes;
}

QString GetDarwinUserCachePath()
{
  return darwinUserCachePath;
}

} // namespace Tavrik::Cleaner
