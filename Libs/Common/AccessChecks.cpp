#include <Common/AccessChecks.h>

#include <Common/PathHelpers.h>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include <deque>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace Tavrik::Cleaner
{

namespace
{

bool CheckGroups(unsigned int groupId)
{
  const int count = getgroups(0, nullptr);
  if (count > 0)
  {
    std::vector<gid_t> groups(static_cast<size_t>(count));
    const int received = getgroups(count, groups.data());
    for (int i = 0; i < received; ++i)
      if (groups[static_cast<size_t>(i)] == groupId)
        return true;
  }
  return getegid() == groupId;
}

// Qt's user flags tell what the real user may do, hence the second look at the owner.
bool IsAllowed(const QString& path, QFileDevice::Permission other, QFileDevice::Permission group,
               QFileDevice::Permission user)
{
  const QFileInfo file(path);
  const QFileDevice::Permissions permissions = file.permissions();
  return permissions.testFlag(other) || (permissions.testFlag(group) && CheckGroups(file.groupId())) ||
         (permissions.testFlag(user) && file.ownerId() == geteuid());
}

// Stricter than the system on purpose: it would let the owner of an entry remove it as well.
bool IsStickyOfAnother(const QString& directory)
{
  struct stat record = {};
  stat(directory.toLocal8Bit().constData(), &record);
  return (record.st_mode & S_ISVTX) != 0 && record.st_uid != geteuid();
}

// All entries of a directory share its answer, so each directory is asked once, at its first entry.
class TreeCheck
{
public:
  bool Run(const QString& path);

private:
  struct Level
  {
    explicit Level(const QString& path) : entries(path, QDir::AllEntries | QDir::NoDotAndDotDot) {}

    QDirIterator entries;
    bool isRemovableFrom = false;
  };

  bool Enter(const QString& path);
  bool CheckNextEntry();

  // Every open level holds a descriptor; what lies deeper waits as a path.
  static constexpr size_t mostOpen = 8;

  std::deque<Level> open;
  std::vector<QString> waiting;
};

bool TreeCheck::Run(const QString& path)
{
  if (!Enter(path))
    return false;
  while (!open.empty() || !waiting.empty())
  {
    if (open.empty())
    {
      const QString next = waiting.back();
      waiting.pop_back();
      if (!Enter(next))
        return false;
    }
    else if (!open.back().entries.hasNext())
      open.pop_back();
    else if (!CheckNextEntry())
      return false;
  }
  return true;
}

bool TreeCheck::Enter(const QString& path)
{
  const QDir directory(path);
  if (!directory.exists())
    return true;
  if (!directory.isReadable())
    return false;
  open.emplace_back(directory.path());
  return true;
}

bool TreeCheck::CheckNextEntry()
{
  Level& level = open.back();
  level.entries.next();
  const QFileInfo entry = level.entries.fileInfo();
  const QString path = entry.absoluteFilePath();
  if (!level.isRemovableFrom && !CanRemove(path))
    return false;
  level.isRemovableFrom = true;

  if (!entry.isDir() || entry.isSymLink())
    return true;
  if (open.size() < mostOpen)
    return Enter(path);
  waiting.push_back(path);
  return true;
}

} // namespace

bool CanRead(const QString& path)
{
  return IsAllowed(path, QFileDevice::ReadOther, QFileDevice::ReadGroup, QFileDevice::ReadUser);
}

bool CanWrite(const QString& path)
{
  return IsAllowed(path, QFileDevice::WriteOther, QFileDevice::WriteGroup, QFileDevice::WriteUser);
}

bool CanRemove(const QString& path)
{
  const QString parent = ExtractParentPath(path);
  return CanWrite(parent) && !IsStickyOfAnother(parent);
}

bool CanRemoveWholeDirectory(const QString& path)
{
  return CanRemove(path) && TreeCheck().Run(path);
}

} // namespace Tavrik::Cleaner
