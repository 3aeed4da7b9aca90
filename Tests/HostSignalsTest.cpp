// What the library does to the signals of the program that loads it: nothing.

#include <Common/RAMCleaner.h>
#include <Common/ReadProcess.h>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using Tavrik::Cleaner::ReadProcess;

namespace
{

volatile std::sig_atomic_t handled = 0;

void Count(int)
{
  ++handled;
}

void Reap(int)
{
  const int error = errno;
  while (waitpid(-1, nullptr, WNOHANG) > 0)
    ++handled;
  errno = error;
}

struct sigaction OwnAction(void (*handler)(int))
{
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART | SA_NODEFER;
  sigaddset(&action.sa_mask, SIGUSR1);
  return action;
}

std::array<struct sigaction, NSIG> before;

void Remember()
{
  for (int number = 1; number < NSIG; ++number)
    sigaction(number, nullptr, &before[static_cast<std::size_t>(number)]);
}

void ExpectAllAsBefore()
{
  for (int number = 1; number < NSIG; ++number)
  {
#ifdef TAVRIK_SANITIZED
    if (number != SIGCHLD) // the sanitizer handles others itself
      continue;
#endif
    struct sigaction now = {};
    sigaction(number, nullptr, &now);
    const struct sigaction& then = before[static_cast<std::size_t>(number)];
    EXPECT_EQ(then.sa_handler, now.sa_handler) << strsignal(number);
    EXPECT_EQ(then.sa_flags, now.sa_flags) << strsignal(number);
    for (int masked = 1; masked < NSIG; ++masked)
      EXPECT_EQ(sigismember(&then.sa_mask, masked), sigismember(&now.sa_mask, masked)) << strsignal(number);
  }
}

// Runs before any library is initialised.
void BeforeLoading()
{
  const struct sigaction own = OwnAction(Count);
  sigaction(SIGCHLD, &own, nullptr);
  Remember();
}

__attribute__((section(".preinit_array"), used)) void (*const beforeLoading)() = BeforeLoading;

// Ends after the given time.
pid_t StartChild(int milliseconds, int output = -1)
{
  const pid_t pid = fork();
  if (pid != 0)
    return pid;
  poll(nullptr, 0, milliseconds);
  _exit(output < 0 || write(output, "x", 1) == 1 ? EXIT_SUCCESS : EXIT_FAILURE);
}

pid_t foreign = -1;

// Runs between the opening of a tool's pipes and the fork, as another thread of the host may.
void ForkOnce()
{
  if (foreign > 0)
    return;
  foreign = static_cast<pid_t>(syscall(SYS_clone, SIGCHLD, 0, 0, 0, 0)); // fork() would come back here
  if (foreign != 0)
    return;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  for (;;)
    pause();
}

} // namespace

TEST(HostSignals, AreAsBeforeOnceTheLibraryIsLoaded)
{
  ExpectAllAsBefore();
}

TEST(HostSignals, AreAsBeforeAfterToolsHaveRun)
{
  EXPECT_EQ("word\n", ReadProcess("echo", "word"));
  EXPECT_EQ("", ReadProcess("/there/is/no/such/tool", "word"));
  Tavrik::Cleaner::RAMCleaner cleaner(nullptr);
  cleaner.Clean();
  cleaner.Stop();
  ExpectAllAsBefore();
}

TEST(HostSignals, AHandlerOfTheHostIsCalledForItsOwnChildren)
{
  ReadProcess("echo", "word");
  handled = 0;
  const pid_t child = StartChild(0);
  EXPECT_EQ(child, waitpid(child, nullptr, 0));
  EXPECT_EQ(1, handled);
}

TEST(HostSignals, ABlockingReadGoesOnWhenAChildEnds)
{
  ReadProcess("echo", "word");
  int ends[2];
  ASSERT_EQ(0, pipe(ends));
  const pid_t first = StartChild(50);
  const pid_t second = StartChild(500, ends[1]);
  char byte = 0;
  EXPECT_EQ(1, read(ends[0], &byte, 1)) << std::strerror(errno);
  EXPECT_EQ(first, waitpid(first, nullptr, 0));
  EXPECT_EQ(second, waitpid(second, nullptr, 0));
  close(ends[0]);
  close(ends[1]);
}

TEST(HostSignals, ToolsRunInAHostThatIgnoresTheEndOfChildren)
{
  signal(SIGCHLD, SIG_IGN);
  EXPECT_EQ("word\n", ReadProcess("echo", "word"));
  EXPECT_EQ("inner\n", ReadProcess("sh", "-c", "x=$(echo inner); echo $x"));
  struct sigaction now = {};
  sigaction(SIGCHLD, nullptr, &now);
  EXPECT_EQ(SIG_IGN, now.sa_handler);
}

TEST(HostSignals, ToolsRunInAHostThatReapsEveryChildItself)
{
  const struct sigaction own = OwnAction(Reap);
  sigaction(SIGCHLD, &own, nullptr);
  for (int run = 0; run < 20; ++run)
    EXPECT_EQ("word\n", ReadProcess("echo", "word"));
}

TEST(ForkedProcess, ThatHoldsThePipesOfAStartDoesNotHoldItUp)
{
  ASSERT_EQ(0, pthread_atfork(ForkOnce, nullptr, nullptr));
  EXPECT_EQ("x\n", ReadProcess("echo", "x"));
  ASSERT_GT(foreign, 0);
  kill(foreign, SIGKILL);
  waitpid(foreign, nullptr, 0);
}
