#pragma once

#include <Common/Export.h>

#include <QString>
#include <QStringList>

/**
 * @file
 * What may be cleaned and what may be looked at, judged by where a path lies.
 *
 * Nothing here throws, logs or takes a lock, and every function may be called from any thread. All
 * comparisons are case-sensitive, also on volumes that ignore case, and paths are judged as they are written:
 * links in them are not resolved, doubled or trailing separators are not cleaned away.
 */
namespace Tavrik::Cleaner
{

/**
 * Whether the file or folder at @p path may be removed.
 *
 * A safe path is absolute, has no ".." component, and either ends in ".lproj", or is or lies in one of the
 * folders meant for users, applications, caches and logs, or exists on a writable volume under /Volumes.
 *
 * Looks at the mounted volumes only for a path under /Volumes that the text alone has not decided; that call
 * blocks for as long as the system takes to answer for each of them.
 */
TAVRIK_COMMON_EXPORT bool IsPathSafe(const QString& path);

/**
 * Whether @p path may be read in a search: it is safe (see IsPathSafe()) or is or lies in one of
 * GetSystemLibraryPrefixes(). "/Library/.." is thus scannable though not safe.
 */
TAVRIK_COMMON_EXPORT bool IsPathScannable(const QString& path);

/**
 * Reduces @p dirs to the outermost directories that exist, so that nothing is visited twice.
 *
 * @return The kept entries, as they were written and in their order. Of entries that name the same
 *         directory, through links or not, the first is kept. An entry "/" or "\" makes the result ["/"]; one
 *         that only resolves to "/" stands beside the others.
 *
 * Takes a few system calls per entry and component; 100,000 directories are a matter of seconds.
 */
TAVRIK_COMMON_EXPORT QStringList FilterSubDirs(const QStringList& dirs);

/**
 * The system's library folders: "/Library", and "/System/Library" on a macOS older than 10.11. Fixed when the
 * library is loaded.
 */
TAVRIK_COMMON_EXPORT QStringList GetSystemLibraryPrefixes();

/**
 * The absolute path of the user's own cache folder, as the tool getconf names it; null where there is none.
 *
 * The tool runs once, while the library is loaded, which it holds up for at most the 30 seconds that
 * ReadProcess() waits.
 */
TAVRIK_COMMON_EXPORT QString GetDarwinUserCachePath();

} // namespace Tavrik::Cleaner
