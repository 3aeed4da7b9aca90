#include "Program.h"

#include "BusCommand.h"
#include "CommandLine.h"
#include "Completions.h"
#include "DiskCommand.h"
#include "ExitCodes.h"
#include "FirewallCommand.h"
#include "NoticesCommand.h"
#include "Output.h"
#include "PathCommand.h"
#include "RAMCommand.h"
#include "SettingsCommand.h"
#include "Signals.h"
#include "SizeCommand.h"
#include "Startup.h"
#include "Versions.h"

#include <CLI/CLI.hpp>

#include <QCoreApplication>

namespace Ostrel
{
namespace
{

const char* const exitCodes =
    "Exit codes:\n"
    "  0    done\n"
    "  1    failed; the reason is on standard error\n"
    "  2    the command line is wrong\n"
    "  3    the time given with --timeout ran out\n"
    "  10   nothing to do\n"
    "  11   a safety rule forbids it\n"
    "  12   the system forbids it to this user\n"
    "  13   the administrator's authorisation was not given\n"
    "  14   a tool of the system is missing\n"
    "  20   no bus: nobody serves it\n"
    "  21   the name is taken\n"
    "  22   could not join in time: the name is taken or the server does not answer\n"
    "  23   NO RECIPIENT\n"
    "  24   NOT SENT\n"
    "  25   NOT WRITTEN\n"
    "  26   UNKNOWN\n"
    "  27 to 34  what is wrong with the socket; see \"bus doctor --help\"\n"
    "  129  hang-up, 130 Ctrl-C, 143 terminated\n"
    "  141  whoever read the output has closed it\n";

} // namespace

int RunProgram(int argc, char** argv)
{
  BeginProgram("ostrel");

  Command command;
  int verbosity = 0;
  CLI::App app("The disk-and-memory maintenance utility on the command line", "ostrel");
  app.add_flag("--verbose,-v", verbosity, "Show what the library logs; twice for every detail");
  app.set_version_flag("--version,-V", "ostrel " OSTREL_VERSION,
                       "Print the version; with --verbose also what it stands on and where its tools are");
  app.footer(exitCodes);
  app.fallthrough();
  app.require_subcommand(1);
  AddBusCommand(app, command);
  AddDiskCommand(app, command);
  AddPathCommand(app, command);
  AddRAMCommand(app, command);
  AddSettingsCommand(app, command);
  AddSizeCommand(app, command);
  AddFirewallCommand(app, command);
  AddNoticesCommand(app, command);
  AddCompletionsOption(app);
  try
  {
    // Before the application object, which sets the user's locale: numbers are read the same way everywhere.
    ParseCommandLine(app, argc, argv);
  }
  catch (const CLI::CallForVersion& call)
  {
    if (verbosity == 0)
      return CloseOutput(EndParsing(app, call));
    const QCoreApplication application(argc, argv);
    SetUpProgram(0);
    return CloseOutput(PrintVersions());
  }
  catch (const CLI::ParseError& error)
  {
    return CloseOutput(EndParsing(app, error));
  }

  QCoreApplication application(argc, argv);
  SetUpProgram(verbosity);
  Signals signalSource;
  return CloseOutput(command ? command(signalSource) : static_cast<int>(WrongUsage));
}

} // namespace Ostrel
