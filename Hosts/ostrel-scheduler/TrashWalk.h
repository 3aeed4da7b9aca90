#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QSet>

#include <dirent.h>
#include <memory>
#include <sys/types.h>
#include <vector>

namespace Ostrel
{

/**
 * Adds up what the files below a folder occupy on the disk, a slice at a time.
 *
 * No link is followed, neither below the folder nor the folder itself, and no other file system is entered. A
 * file with several names counts once. What cannot be read, and what lies deeper than 100 folders, does not
 * count. Entries that come and go meanwhile do no harm.
 */
class TrashWalk
{
public:
  explicit TrashWalk(const QByteArray& folder);

  TrashWalk(const TrashWalk&) = delete;
  TrashWalk& operator=(const TrashWalk&) = delete;

  /** Goes on until @p limit, one entry at least. @return Whether it is at the end. */
  bool Advance(QDeadlineTimer limit);

  /** @return The bytes found so far. */
  qint64 Size() const { return size; }

  /** @return The errno for which the folder itself could not be read; 0 when it could. None is an empty
   * trash. */
  int Error() const { return error; }

  /** @return How many folders were left out. */
  qint64 SkippedFolders() const { return skippedFolders; }

private:
  struct Closer
  {
    void operator()(DIR* folder) const { closedir(folder); }
  };
  using Folder = std::unique_ptr<DIR, Closer>;

  bool Enter(int parent, const char* name);
  void TakeNext();
  void TakeEntry(const char* name);

  std::vector<Folder> path; // from the folder itself down to where the walk is
  QSet<quint64> seen;       // files of more than one name
  dev_t device = 0;
  qint64 size = 0;
  qint64 skippedFolders = 0;
  int error = 0;
};

} // namespace Ostrel
