#include "SchedulerProgram.h"

#include "Arguments.h"
#include "BackgroundWriter.h"
#include "CommandLine.h"
#include "Completions.h"
#include "ExitCodes.h"
#include "Output.h"
#include "Places.h"
#include "SafeText.h"
#include "Scheduler.h"
#include "Signals.h"
#include "Startup.h"
#include "Texts.h"

#include <CLI/CLI.hpp>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <sys/stat.h>

namespace Ostrel
{
namespace
{

const char* const footer =
    "It looks at what the settings of the application tell it to, and reads them anew each time.\n"
    "\n"
    "Exit codes:\n"
    "  0    done (--once)\n"
    "  1    failed; the reason is on standard error\n"
    "  2    the command line is wrong\n"
    "  21   this user has a scheduler already\n"
    "  129  hang-up, 130 Ctrl-C, 143 terminated\n"
    "  141  whoever read the output has closed it\n";

constexpr SecondsRange intervalRange = {"an interval", 0.01, 24 * 60 * 60};

void AddOptions(CLI::App& app, SchedulerOptions& options)
{
  app.add_flag("--once", options.once, "Look once, tell what is new and end; does not join the bus");
  const auto takeInterval = [&options](std::chrono::milliseconds time) { options.interval = time; };
  AddSeconds(app, "--interval", intervalRange, takeInterval,
             "How often to look, 0.01 to 86400 (default: 60)");
  app.add_flag("--dry-run", options.dryRun, "Print what it would tell, tell nobody and keep nothing");
  app.add_flag("--json,-j", options.json, "Print JSON, one object per line and nothing else");
  AddName(app, "--context,-c", options.contextName, "The bus to join (default: ostrel)");
  AddPath(
      app, "--trash", [&options](const QString& path) { options.trash = path; },
      "The trash (default: the user's)")
      ->expected(1);
  AddPath(
      app, "--disk", [&options](const QString& path) { options.disk = path; },
      "A folder on the disk whose free space counts (default: the user's home)")
      ->expected(1);
  AddPath(
      app, "--applications", [&options](const QString& path) { options.applications.append(path); },
      "A folder of applications; may be given again (default: /Applications where there is one)");
  AddPath(
      app, "--state", [&options](const QString& path) { options.stateFile = path; },
      "Where notices are kept (default: tavrik/ostrel-scheduler.json in the user's data folder)")
      ->expected(1);
}

// A name that was mistyped would otherwise be watched in vain: a missing trash counts as an empty one.
bool Check(const SchedulerOptions& options)
{
  if (QFileInfo(options.stateFile).isDir())
  {
    PrintError(Texts::tr("--state: %1 is a folder; name a file").arg(ShowName(options.stateFile)));
    return false;
  }
  if (!options.trash.isEmpty() && !QFileInfo::exists(options.trash))
    PrintError(Texts::tr("--trash: %1 does not exist; it counts as empty").arg(ShowName(options.trash)));
  return true;
}

// A folder that is given twice would be looked at twice.
void FillIn(SchedulerOptions& options)
{
  if (options.trash.isEmpty())
    options.trash = GetTrashFolder();
  if (options.disk.isEmpty())
    options.disk = QDir::homePath();
  const QString applications = QStringLiteral("/Applications");
  if (options.applications.isEmpty() && QDir(applications).exists())
    options.applications.append(applications);
  for (QString& folder : options.applications)
    folder = QDir::cleanPath(folder);
  options.applications.removeDuplicates();
  if (options.stateFile.isEmpty())
    options.stateFile = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                        QStringLiteral("/tavrik/ostrel-scheduler.json");
}

} // namespace

int RunSchedulerProgram(int argc, char** argv)
{
  BeginProgram("ostrel-scheduler");
  umask(0077);

  SchedulerOptions options;
  int verbosity = 0;
  CLI::App app("Watches trash, disk, memory, applications and the calendar of regular maintenance",
               "ostrel-scheduler");
  app.set_version_flag("--version,-V", "ostrel-scheduler " OSTREL_VERSION);
  app.add_flag("--verbose,-v", verbosity, "Show what is logged; twice for every detail");
  app.footer(footer);
  AddOptions(app, options);
  AddCompletionsOption(app);
  try
  {
    ParseCommandLine(app, argc, argv);
  }
  catch (const CLI::ParseError& error)
  {
    return CloseOutput(EndParsing(app, error));
  }

  QCoreApplication application(argc, argv);
  SetUpProgram(verbosity);
  Signals signalSource;
  if (!Check(options))
    return WrongUsage;
  const BackgroundErrors errors; // others depend on the event loop of a participant that serves
  FillIn(options);
  Scheduler scheduler(options, signalSource);
  return CloseOutput(scheduler.Run());
}

} // namespace Ostrel
