#include "Program.h"

#include "BusCommand.h"
#include "ExitCodes.h"
#include "FirewallCommand.h"
#include "Signals.h"
#include "Startup.h"

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
    "  27 to 34  what \"bus doctor\" found; see there\n"
    "  129  hang-up, 130 Ctrl-C, 143 terminated\n"
    "  141  whoever read the output has closed it\n";

} // namespace

int RunProgram(int argc, char** argv)
{
  BeginProgram("ostrel");

  Command command;
  int verbosity = 0;
  CLI::App app("The disk-and-memory maintenance utility on the command line", "ostrel");
  app.set_version_flag("--version,-V", "ostrel " OSTREL_VERSION);
  app.add_flag("--verbose,-v", verbosity, "Show what the library logs; twice for every detail");
  app.footer(exitCodes);
  app.fallthrough();
  app.require_subcommand(1);
  AddBusCommand(app, command);
  AddFirewallCommand(app, command);
  try
  {
    // Before the application object, which sets the user's locale: numbers are read the same way everywhere.
    app.parse(argc, argv);
  }
  catch (const CLI::ParseError& error)
  {
    return app.exit(error) == 0 ? Done : WrongUsage;
  }

  QCoreApplication application(argc, argv);
  SetUpProgram(verbosity);
  Signals signalSource;
  return command ? command(signalSource) : static_cast<int>(WrongUsage);
}

} // namespace Ostrel
