#pragma once

#include <QString>
#include <QStringList>

#include <chrono>

namespace Ostrel
{

/** What the command line asks of the scheduler. */
struct SchedulerOptions
{
  bool once = false;
  bool dryRun = false; ///< Tells nobody, keeps nothing and changes no setting.
  bool json = false;
  std::chrono::milliseconds interval = std::chrono::seconds(60);
  QString contextName = QStringLiteral("ostrel");
  QString trash;
  QString disk; ///< Any folder on it.
  QStringList applications;
  QString stateFile;
};

} // namespace Ostrel
