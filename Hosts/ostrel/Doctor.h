#pragma once

#include <QString>

namespace Ostrel
{

/** What "bus doctor" takes from the command line. */
struct DoctorOptions
{
  QString contextName = QStringLiteral("ostrel");
  QString clientName; ///< A name to look for; empty for none.
  bool json = false;
};

/**
 * Finds out what is wrong with a bus and prints it in plain words. Blocks for less than two seconds, and
 * changes nothing: it never serves, and to a server it is a participant that comes and goes.
 *
 * @return The exit code of the finding, or EndedBySignal + number.
 */
int RunDoctor(const DoctorOptions& options);

} // namespace Ostrel
