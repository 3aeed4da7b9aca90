#pragma once

#include <QSettings>
#include <QVariant>

/** @file Seam: writing a store that several processes read and write. */
namespace Tavrik::Platform
{

/**
 * Stores @p changes, all or none of them, so that every other process takes what was written for new. Blocks
 * for about 5 s while a writer is stopped, for up to 25 s if several others write at the same time meanwhile.
 *
 * @return Whether they are stored. If not, the store holds what it held.
 */
bool WriteStore(const QSettings& store, const QVariantMap& changes);

/** @return Whether the store's file holds anything that is not a setting. Writes nothing. */
bool IsStoreDamaged(const QSettings& store);

} // namespace Tavrik::Platform
