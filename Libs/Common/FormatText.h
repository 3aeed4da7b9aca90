#pragma once

#include <Common/Export.h>

#include <QString>

/**
 * @file
 * Byte counts and clock frequencies as short texts, and back.
 *
 * Units are decimal: 1 kB is 1000 bytes. Every function is pure and may be called on any thread; none logs.
 * Results that leave the 64-bit range are its nearest end. The texts are translated in the context
 * "FormatText" of QCoreApplication::translate().
 */
namespace Tavrik::Cleaner
{

/**
 * Reads a size as "12 bytes" (in any case) or with the unit "KB", "MB" or "GB" (only so: "kB" is not known).
 *
 * The units have a fixed length: 6 characters, with the blank, for the bytes, 3 for the others. A comma is
 * a decimal point.
 *
 * @return Bytes, fractions cut off; 0 when there is a unit but no number before it; -1 for any other unit.
 */
TAVRIK_COMMON_EXPORT long long ParseSize(QString text);

/** @return Hertz of a text such as "2.4 GHz" or "800 MHz", as ParseSize() reads it; -1 for any other unit. */
TAVRIK_COMMON_EXPORT long long ParseFrequency(QString text);

/**
 * @param bytes     A count whose sign is dropped.
 * @param precision Digits after the point, for all but the unit "bytes"; below 0 means 6, and more than a
 *                  million are a million.
 * @return For example "999 bytes", "1.5 kB", "20.0 MB" or "1000.0 GB".
 */
TAVRIK_COMMON_EXPORT QString FormatSize(long long bytes, int precision);

/** @return For example "2399 MHz": fractions and the sign are dropped. */
TAVRIK_COMMON_EXPORT QString FormatFrequencyMHz(long long hertz);

/**
 * @param hertz     A frequency whose sign is dropped.
 * @param precision Digits after the point, as for FormatSize().
 * @return For example "2.40 GHz".
 */
TAVRIK_COMMON_EXPORT QString FormatFrequencyGHz(long long hertz, int precision);

/** @return @p bytes, which must not be negative, rounded up to a whole multiple of 4096. */
TAVRIK_COMMON_EXPORT long long RoundSize4K(long long bytes);

} // namespace Tavrik::Cleaner
