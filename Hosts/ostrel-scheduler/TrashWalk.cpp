#include "TrashWalk.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Ostrel
{
namespace
{

constexpr std::size_t deepest = 100; // each open folder holds a descriptor
constexpr qint64 blockSize = 512;    // of st_blocks, whatever the file system's

int OpenFolder(int parent, const char* name)
{
  return openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
}

} // namespace

TrashWalk::TrashWalk(const QByteArray& folder)
{
  struct stat status = {};
  if (!Enter(AT_FDCWD, folder.constData()))
    error = errno == ENOENT ? 0 : errno;
  else if (fstat(dirfd(path.back().get()), &status) != 0)
    error = errno;
  else
    device = status.st_dev;
}

bool TrashWalk::Advance(QDeadlineTimer limit)
{
  do
  {
    if (path.empty())
      return true;
    TakeNext();
  } while (!limit.hasExpired());
  return path.empty();
}

bool TrashWalk::Enter(int parent, const char* name)
{
  const int file = OpenFolder(parent, name);
  if (file < 0)
    return false;
  Folder folder(fdopendir(file));
  if (!folder)
  {
    const int reason = errno;
    close(file);
    errno = reason;
    return false;
  }
  path.push_back(std::move(folder));
  return true;
}

void TrashWalk::TakeNext()
{
  const dirent* const entry = readdir(path.back().get());
  if (!entry)
    path.pop_back();
  else if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
    TakeEntry(entry->d_name);
}

void TrashWalk::TakeEntry(const char* name)
{
  const int parent = dirfd(path.back().get());
  struct stat status = {};
  if (fstatat(parent, name, &status, AT_SYMLINK_NOFOLLOW) != 0 || status.st_dev != device)
    return;
  const bool isFolder = S_ISDIR(status.st_mode);
  if (!isFolder && status.st_nlink > 1)
  {
    if (seen.contains(status.st_ino))
      return;
    seen.insert(status.st_ino);
  }
  size += static_cast<qint64>(status.st_blocks) * blockSize;
  if (isFolder && (path.size() >= deepest || !Enter(parent, name)))
    ++skippedFolders;
}

} // namespace Ostrel
