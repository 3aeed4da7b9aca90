// unkillable-purger FILE
//
// A purger whose end its parent does not see when it is killed, as that of a process that hangs in the
// system: it is traced, and the end of a traced process is its tracer's to collect. FILE receives the
// tracer's id; the purger is gone once the tracer has ended.

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <unistd.h>

int main(int argc, char** argv)
{
  const unsigned longestLife = 120; // s, should a test not end the tracer
  int ready[2];
  if (argc != 2 || pipe(ready) != 0)
    return EXIT_FAILURE;
  prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY, 0, 0, 0);
  const pid_t purger = getpid();
  if (fork() == 0)
  {
    alarm(longestLife);
    // The purger's output ends with the purger.
    close(STDOUT_FILENO);
    const bool isTracing = ptrace(PTRACE_SEIZE, purger, nullptr, nullptr) == 0;
    const int file = open(argv[1], O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    const std::string line = std::to_string(getpid()) + '\n';
    if (!isTracing || write(file, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
      _exit(EXIT_FAILURE);
    close(file);
    close(ready[0]);
    close(ready[1]);
    for (;;)
      pause();
  }
  close(ready[1]);
  char byte = 0;
  (void)!read(ready[0], &byte, 1); // until the tracer has closed its end
  std::puts("PROGRESS: 100%");
  std::fflush(stdout);
  for (;;)
    pause();
}
