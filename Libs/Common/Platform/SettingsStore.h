#pragma once

#include <QString>

#include <functional>

/** @file Seam: what it takes beside QSettings that processes which write one store lose nothing. */
namespace Tavrik::Platform
{

/**
 * Runs a change of a store, its QSettings::sync() included, while no other process's change is under way, and
 * sees to it that every other process takes what was written for new.
 *
 * @param fileName The store's QSettings::fileName.
 * @param change   Called exactly once, after at most 5 s.
 */
void ChangeStore(const QString& fileName, const std::function<void()>& change);

} // namespace Tavrik::Platform
