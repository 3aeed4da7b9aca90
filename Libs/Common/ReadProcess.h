#pragma once

#include <Common/Export.h>

#include <QString>
#include <QStringList>

/**
 * @file
 * The standard output of a command-line tool that runs with the caller's own rights.
 *
 * All overloads do the same. The program is looked up in PATH unless its name holds a "/", and is started
 * directly, never through a shell: each argument reaches it as one word, unquoted and unchanged. Its standard
 * input is empty and its standard error is not read.
 *
 * A call blocks its thread until the tool ends, for at most 30 seconds; a tool that runs longer is killed,
 * its own children are not. A tool that hangs in the system costs 1 second more. The process's signal
 * handlers are left alone, and it may ignore SIGCHLD or reap every child itself. A call keeps no state of its
 * own, so it may be called on any thread, before main() and without a QCoreApplication. There is no sign of a
 * failure but the text: a program that cannot be started gives an empty one, one that crashes or ends with an
 * error gives what it wrote. Nothing is logged.
 */
namespace Tavrik::Cleaner
{

/// @name One for each number of arguments
/// @{

/**
 * @return What the tool had written by then, in the locale's encoding, cut before the first NUL byte and
 *         otherwise as it is: neither trimmed nor with other line ends.
 */
TAVRIK_COMMON_EXPORT QString ReadProcess(const QString& program, const QStringList& arguments);
TAVRIK_COMMON_EXPORT QString ReadProcess(const QString& program, const QString& a1);
TAVRIK_COMMON_EXPORT QString ReadProcess(const QString& program, const QString& a1, const QString& a2);
TAVRIK_COMMON_EXPORT QString ReadProcess(const QString& program, const QString& a1, const QString& a2,
                                         const QString& a3);
/// @}

} // namespace Tavrik::Cleaner
