#pragma once

/** @file What the purger asks of the system it runs on. */
namespace Purger
{

/**
 * @return Whether the system has dropped its caches at our word, which needs its permission; then nothing is
 *         left to do.
 */
bool DropCaches();

/** Offers this process as the first to go, should memory run out in spite of everything. */
void GoFirst();

/**
 * How much more this process may take now: what is free or can be had back from caches, on the machine and in
 * each control group around this process, less a margin for everybody else.
 *
 * @return Bytes; 0 or less when there is no room, or when the system does not tell.
 */
long long GetRoom();

/** @return How much the machine has written to swap so far, in units of its own. */
long long GetSwappedOut();

} // namespace Purger
