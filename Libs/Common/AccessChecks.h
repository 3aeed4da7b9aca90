#pragma once

#include <Common/Export.h>

#include <QString>

/**
 * @file
 * What the calling process may do with a file, told from permission bits and ids without trying.
 *
 * Nothing is opened or changed, but for listing directories, and nothing throws or logs. The functions keep
 * no state and may be called from any thread; an answer describes the moment of the call. They judge by the
 * effective user and group and the supplementary groups, one class after the other: what everybody may, the
 * owner may too, whatever the owner's own bits say. Access control lists, flags, read-only volumes and the
 * special rights of root are not considered, so an answer can differ from what an attempt would meet.
 */
namespace Tavrik::Cleaner
{

/** Whether the bits let this process read @p path; links are followed. A missing file cannot be read. */
TAVRIK_COMMON_EXPORT bool CanRead(const QString& path);

/** Whether the bits let this process write @p path; links are followed. A missing file cannot be written. */
TAVRIK_COMMON_EXPORT bool CanWrite(const QString& path);

/**
 * Whether the entry @p path could be taken out of the directory that holds it.
 *
 * Only that directory is looked at: it must be writable, and if it has the sticky bit it must belong to the
 * effective user. The entry may be missing. A path without a directory part, and "/", cannot be removed; the
 * directory of "/a/b/" is "/a/b".
 */
TAVRIK_COMMON_EXPORT bool CanRemove(const QString& path);

/**
 * Whether @p path and everything under it could be removed.
 *
 * Every directory of the tree is listed until the first refusal, so the call takes as long as the tree is
 * large. Links in the tree are not followed, though @p path itself may be a link to a directory. Hidden
 * entries are not checked, nor are broken links and special files. Takes no more memory or stack for a deep
 * or crowded tree than the paths of the subdirectories that wait for their turn.
 */
TAVRIK_COMMON_EXPORT bool CanRemoveWholeDirectory(const QString& path);

} // namespace Tavrik::Cleaner
