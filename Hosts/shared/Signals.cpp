#include "Signals.h"

#include "ExitCodes.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace Ostrel
{
namespace
{

const int caughtSignals[] = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t caught = 0;
volatile std::sig_atomic_t endsAtOnce = 0;
int pipeEnds[2] = {-1, -1};

extern "C" void HandleSignal(int number)
{
  if (caught != 0 || endsAtOnce != 0)
    _exit(EndedBySignal + number);
  caught = number;
  const int savedError = errno;
  const char byte = 0;
  const ssize_t written = write(pipeEnds[1], &byte, 1);
  (void)written;
  errno = savedError;
}

// Without SA_RESTART: a signal must also end a read from standard input or a write to a full pipe.
void Catch(int number)
{
  struct sigaction action = {};
  if (sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN)
    return;
  action = {};
  action.sa_handler = HandleSignal;
  sigemptyset(&action.sa_mask);
  sigaction(number, &action, nullptr);
}

bool OpenPipe()
{
  if (pipe(pipeEnds) != 0)
    return false;
  for (const int end : pipeEnds)
  {
    fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(end, F_SETFL, O_NONBLOCK);
  }
  return true;
}

} // namespace

Signals::Signals()
{
  std::signal(SIGPIPE, SIG_IGN);
  if (!OpenPipe())
    return;
  notifier = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
  QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), [this] { Notify(); });
  for (const int number : caughtSignals)
    Catch(number);
}

// The handlers and the pipe stay: a signal during the last steps of the process must still find them.
Signals::~Signals() = default;

int Signals::Caught()
{
  return caught;
}

void Signals::EndAtOnce()
{
  endsAtOnce = 1;
  if (caught != 0)
    _exit(EndedBySignal + caught);
}

void Signals::OnSignal(std::function<void(int)> newHandler)
{
  handler = std::move(newHandler);
  if (caught != 0 && handler)
    handler(caught);
}

void Signals::Notify()
{
  notifier->setEnabled(false);
  if (handler)
    handler(caught);
}

} // namespace Ostrel
