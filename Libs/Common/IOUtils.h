#pragma once

#include <Common/Export.h>

#include <QByteArray>

class QIODevice;

/**
 * @file
 * Exact reads from a device that delivers its data piecemeal, and the number format of the wire.
 *
 * Nothing here throws. A read that falls short logs one ERROR line and returns what it got; the caller
 * compares lengths. Both reads block the calling thread, which must be the one that owns the device, and
 * leave the device open.
 */
namespace Tavrik
{

/**
 * @return The bytes of @p number, least significant first, exactly as many as the type has.
 *
 * Instantiated for int, long long and unsigned short.
 */
template<typename Number>
TAVRIK_COMMON_EXPORT QByteArray PackNumber(const Number& number);

extern template TAVRIK_COMMON_EXPORT QByteArray PackNumber<int>(const int&);
extern template TAVRIK_COMMON_EXPORT QByteArray PackNumber<long long>(const long long&);
extern template TAVRIK_COMMON_EXPORT QByteArray PackNumber<unsigned short>(const unsigned short&);

/** @return The two bytes, least significant first, of the CRC-16 (ISO 3309) over all of @p data. */
TAVRIK_COMMON_EXPORT QByteArray CalcCRC(const QByteArray& data);

/**
 * Reads @p size bytes, waiting on the device's own readiness.
 *
 * @param device  An open device; not owned.
 * @param size    The number of bytes wanted. The memory taken is that of the bytes that came, never @p size.
 * @param timeout Milliseconds for each single wait. There is no overall deadline: a peer that sends a byte
 *                just before every timeout keeps the call alive.
 * @return At most @p size bytes; fewer mean that a wait ran out or that the device has ended.
 *
 * A request for 0 bytes waits once when nothing is pending, and returns an empty array without a log line.
 */
TAVRIK_COMMON_EXPORT QByteArray ReadDataWithTimeout(QIODevice* device, long long size, int timeout);

/**
 * Reads @p size bytes by polling: after every read that leaves the result incomplete it sleeps. Before every
 * read it looks, with a wait of 0 ms, for bytes that have come.
 *
 * @param device   An open device; not owned.
 * @param size     The number of bytes wanted.
 * @param delay    Microseconds to sleep after an incomplete read.
 * @param attempts How many reads in a row may bring nothing before it gives up; below 1 nothing is read.
 * @return At most @p size bytes; fewer mean that it gave up.
 */
TAVRIK_COMMON_EXPORT QByteArray ReadData(QIODevice* device, long long size, unsigned int delay, int attempts);

} // namespace Tavrik
