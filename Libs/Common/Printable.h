#pragma once

#include <QByteArray>
#include <QString>

namespace Tavrik
{

/**
 * Returns @p value as a line of the log may show it: what is not printable UTF-8 text, control characters and
 * line separators among it, is escaped ("\n", "\x1b"), and everything else is unchanged.
 *
 * Values that come from callers, peers, tools and the system could otherwise forge lines of the log, or
 * control the terminal that shows it. Only as much of @p value is shown as one line of the log holds.
 */
QByteArray Printable(const QByteArray& value);

/** As above, in the encoding of the locale. */
QByteArray Printable(const QString& value);

} // namespace Tavrik
