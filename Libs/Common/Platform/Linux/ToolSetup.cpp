#include <Common/Platform/Linux/ToolSetup.h>

#include <csignal>
#include <fcntl.h>
#include <initializer_list>
#include <sys/resource.h>
#include <sys/select.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Tavrik::Platform
{

void PrepareLauncher()
{
  for (int number = 1; number < NSIG; ++number)
    signal(number, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);

  if (close_range(STDERR_FILENO + 1, ~0u, CLOSE_RANGE_CLOEXEC) != 0)
    for (int number = STDERR_FILENO + 1; number < FD_SETSIZE; ++number)
      fcntl(number, F_SETFD, FD_CLOEXEC);
  // A program without a standard error would write it into the first file that it opens.
  if (fcntl(STDERR_FILENO, F_GETFD) < 0)
    open("/dev/null", O_RDWR);
}

void PrepareTool()
{
  PrepareLauncher();
  umask(022);
  for (const auto resource : {RLIMIT_CPU, RLIMIT_FSIZE, RLIMIT_DATA, RLIMIT_AS, RLIMIT_NOFILE})
  {
    const rlimit none = {RLIM_INFINITY, RLIM_INFINITY};
    rlimit limit;
    if (setrlimit(resource, &none) == 0 || getrlimit(resource, &limit) != 0)
      continue;
    limit.rlim_cur = limit.rlim_max;
    setrlimit(resource, &limit);
  }
}

} // namespace Tavrik::Platform
