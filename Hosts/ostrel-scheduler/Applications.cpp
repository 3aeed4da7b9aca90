#include "Applications.h"

#include "SafeText.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

namespace Ostrel
{
namespace
{

constexpr int mostApplications = 10000;

bool IsBundle(DIR* folder, const QByteArray& name)
{
  struct stat status = {};
  return name.endsWith(".app") && name.size() > 4 && IsUtf8(name) &&
         fstatat(dirfd(folder), name.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         S_ISDIR(status.st_mode);
}

} // namespace

std::optional<QStringList> ListApplications(const QString& path)
{
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path.toUtf8().constData()), closedir);
  if (!folder)
    return std::nullopt;
  QStringList names;
  for (errno = 0; const dirent* const entry = readdir(folder.get()); errno = 0)
    if (IsBundle(folder.get(), entry->d_name))
      names.append(DecodeUtf8(entry->d_name));
  if (errno != 0 || names.size() > mostApplications)
    return std::nullopt;
  names.sort();
  return names;
}

} // namespace Ostrel
