#include "Program.h"

#include "BusCommand.h"
#include "ExitCodes.h"
#include "Signals.h"
#include "Texts.h"

#include <CLI/CLI.hpp>

#include <QCoreApplication>
#include <QRandomGenerator>

#include <glog/logging.h>

#include <fcntl.h>
#include <unistd.h>

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

// A descriptor below 3 that is missing would go to the next socket, and what is printed with it.
void FillStandardDescriptors()
{
  for (int file = STDIN_FILENO; file <= STDERR_FILENO; ++file)
    if (fcntl(file, F_GETFD) < 0)
      open("/dev/null", O_RDWR);
}

// The pauses of an election are drawn from qrand(), which the bus never seeds: unseeded processes all pause
// for the same time.
void SeedRandomPauses()
{
  QT_WARNING_PUSH
  QT_WARNING_DISABLE_DEPRECATED
  qsrand(QRandomGenerator::system()->generate());
  QT_WARNING_POP
}

// The library's log goes to standard error; without --verbose only what went wrong.
void SetUpLog(const char* program, int verbosity)
{
  FLAGS_logtostderr = true;
  FLAGS_minloglevel = verbosity > 0 ? google::GLOG_INFO : google::GLOG_ERROR;
  FLAGS_v = verbosity > 1 ? 30 : 0;
  google::InitGoogleLogging(program);
}

} // namespace

int RunProgram(int argc, char** argv)
{
  FillStandardDescriptors();

  Command command;
  int verbosity = 0;
  CLI::App app("The disk-and-memory maintenance utility on the command line", "ostrel");
  app.set_version_flag("--version,-V", "ostrel " OSTREL_VERSION);
  app.add_flag("--verbose,-v", verbosity, "Show what the library logs; twice for every detail");
  app.footer(exitCodes);
  app.fallthrough();
  app.require_subcommand(1);
  AddBusCommand(app, command);
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
  InstallTranslations();
  SetUpLog(argv[0], verbosity);
  SeedRandomPauses();
  Signals signalSource;
  return command ? command(signalSource) : static_cast<int>(WrongUsage);
}

} // namespace Ostrel
