#include "Startup.h"

#include "StandIns.h"
#include "Texts.h"

#include <QCoreApplication>
#include <QRandomGenerator>

#include <glog/logging.h>

#include <fcntl.h>
#include <unistd.h>

namespace Ostrel
{
namespace
{

const char* programName = "";

// The number of a missing descriptor would go to the next socket, and what is printed with it. What takes its
// place is open for the wrong direction, so that a result that cannot be printed is an error.
void FillStandardDescriptors()
{
  for (int file = STDIN_FILENO; file <= STDERR_FILENO; ++file)
    if (fcntl(file, F_GETFD) < 0)
      open("/dev/null", file == STDIN_FILENO ? O_WRONLY : O_RDONLY);
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

void SetUpLog(int verbosity)
{
  FLAGS_logtostderr = true;
  FLAGS_minloglevel = verbosity > 0 ? google::GLOG_INFO : google::GLOG_ERROR;
  FLAGS_v = verbosity > 1 ? 30 : 0;
  google::InitGoogleLogging(programName);
}

} // namespace

void BeginProgram(const char* name)
{
  FillStandardDescriptors();
  programName = name;
  QCoreApplication::setApplicationName(QString::fromLatin1(name));
}

void SetUpProgram(int verbosity)
{
  InstallTranslations();
  OfferStandIns();
  SetUpLog(verbosity);
  SeedRandomPauses();
}

} // namespace Ostrel
