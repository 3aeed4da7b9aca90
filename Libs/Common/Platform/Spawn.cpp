#include <Common/Platform/Spawn.h>

#include <Common/Platform/Pipe.h>

#include <QDeadlineTimer>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <mutex>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Tavrik::Platform
{

namespace
{

const int longestExec = 1000; // ms

// Never destroyed: programs are started, and left, by the constructors and destructors of static objects too.
struct Abandoned
{
  std::mutex mutex;
  std::vector<pid_t> children;
};

Abandoned& GetAbandoned()
{
  static Abandoned& abandoned = *new Abandoned;
  return abandoned;
}

// A handler of the host must not run in the child. What the host ignores stays ignored, as for every child,
// except for the signals by which programs learn of their own pipes and children.
void RemoveHandlers()
{
  for (int number = 1; number < NSIG; ++number)
  {
    struct sigaction action;
    const bool isIgnored = sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
    if (!isIgnored || number == SIGPIPE || number == SIGCHLD)
      signal(number, SIG_DFL);
  }
}

// From here to exec only what a child of a process with threads may call.
[[noreturn]] void BecomeProgram(const Program& program, const sigset_t& mask, int report)
{
  RemoveHandlers();
  sigprocmask(SIG_SETMASK, &mask, nullptr);
  dup2(program.input, STDIN_FILENO);
  dup2(program.output, STDOUT_FILENO);
  if (program.error >= 0)
    dup2(program.error, STDERR_FILENO);
  if (program.prepare)
    program.prepare();

  int reason = 0;
  (void)!write(report, &reason, sizeof(reason));
  char* const* const arguments = const_cast<char* const*>(program.arguments.data());
  if (program.environment)
    execve(arguments[0], arguments, const_cast<char* const*>(program.environment));
  else
    execv(arguments[0], arguments);
  reason = errno;
  (void)!write(report, &reason, sizeof(reason));
  _exit(EXIT_FAILURE);
}

[[noreturn]] void BecomeProgramOfInit(const Program& program, const sigset_t& mask, int report)
{
  const pid_t pid = fork();
  if (pid == 0)
    BecomeProgram(program, mask, report);
  const int reason = errno;
  if (pid < 0)
    (void)!write(report, &reason, sizeof(reason));
  _exit(EXIT_SUCCESS);
}

// Reads a number; 0 at the end of the pipe. False at the deadline.
bool Receive(int reported, const QDeadlineTimer& deadline, int* number)
{
  pollfd look = {reported, POLLIN, 0};
  int ready = 0;
  do
    ready = poll(&look, 1, static_cast<int>(deadline.remainingTime()));
  while (ready < 0 && errno == EINTR);
  *number = 0;
  Retry([&] { return ready == 0 ? 0 : read(reported, number, sizeof(*number)); });
  return ready != 0;
}

} // namespace

int Spawn(const Program& program, Parent parent, int timeout, pid_t* pid)
{
  ReapAbandoned();
  Descriptor reported;
  Descriptor report;
  if (!MakePipe(&reported, &report))
    return errno;

  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  *pid = fork();
  if (*pid == 0)
  {
    if (parent == Parent::Init)
      BecomeProgramOfInit(program, before, report.Get());
    BecomeProgram(program, before, report.Get());
  }
  int reason = *pid < 0 ? errno : 0;
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  report.Close();
  if (reason != 0)
    return reason;

  // The child reports 0 before it executes the program, and an error number when that fails. The end of the
  // pipe is no certain sign: a process that another thread has forked meanwhile may hold it open.
  if (!Receive(reported.Get(), QDeadlineTimer(timeout), &reason))
  {
    kill(*pid, SIGKILL);
    Abandon(*pid);
    return ETIMEDOUT;
  }
  if (reason == 0)
    Receive(reported.Get(), QDeadlineTimer(longestExec), &reason);
  if (parent == Parent::Init || reason != 0)
    Retry([&] { return waitpid(*pid, nullptr, 0); });
  return reason;
}

bool HasEnded(pid_t child)
{
  return waitpid(child, nullptr, WNOHANG) != 0;
}

void Abandon(pid_t child)
{
  Abandoned& abandoned = GetAbandoned();
  const std::lock_guard<std::mutex> lock(abandoned.mutex);
  abandoned.children.push_back(child);
}

void ReapAbandoned()
{
  Abandoned& abandoned = GetAbandoned();
  const std::lock_guard<std::mutex> lock(abandoned.mutex);
  std::vector<pid_t>& children = abandoned.children;
  children.erase(std::remove_if(children.begin(), children.end(), HasEnded), children.end());
}

} // namespace Tavrik::Platform
