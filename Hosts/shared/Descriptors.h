#pragma once

#include <QByteArray>

namespace Ostrel
{

/**
 * Writes all of @p bytes to a file descriptor; blocks while its reader is slow.
 *
 * @return 0, or the errno that ended it: EINTR after one of the signals that end the program.
 */
int WriteAll(int file, const QByteArray& bytes);

} // namespace Ostrel
