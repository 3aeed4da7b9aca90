// Every test runs in a home and a temporary directory of its own. The library looks at the temporary
// directory when it is loaded, so the test proper is a second process that is started with the right
// environment; the first waits for it, and sees to it that nothing stays behind.

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <glog/logging.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif
#include <csignal>

namespace
{

const char* const marker = "TAVRIK_TEST_HOME";

int RunTests(int argc, char** argv)
{
  google::InitGoogleLogging(argv[0]);
  FLAGS_logtostderr = true;
  QCoreApplication application(argc, argv);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}

// Lock files of the bus are never removed; everything else that a test leaves behind is a defect.
bool ReportLeftovers(const QString& folder)
{
  bool isClean = true;
  QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
  while (entries.hasNext())
  {
    const QString path = entries.next();
    if (path.endsWith(QStringLiteral(".lock")))
      continue;
    std::fprintf(stderr, "The test left %s behind\n", qPrintable(path));
    isClean = false;
  }
  return isClean;
}

int RunApart(char** argv)
{
  std::string home = "/tmp/tavrik-test.XXXXXX";
  if (!mkdtemp(home.data()))
  {
    std::perror("mkdtemp");
    return EXIT_FAILURE;
  }
  const std::string temporary = home + "/t";
  mkdir(temporary.c_str(), 0700);

  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child == 0)
  {
#ifdef __linux__
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent)
      _exit(EXIT_FAILURE);
#else
    (void)parent;
#endif
    setenv("HOME", home.c_str(), 1);
    setenv("XDG_CONFIG_HOME", (home + "/config").c_str(), 1);
    setenv("XDG_CACHE_HOME", (home + "/cache").c_str(), 1);
    setenv("TMPDIR", temporary.c_str(), 1);
    setenv(marker, home.c_str(), 1);
    execv("/proc/self/exe", argv);
    execvp(argv[0], argv);
    std::perror("exec");
    _exit(EXIT_FAILURE);
  }

  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child)
  {
    std::perror("fork");
    return EXIT_FAILURE;
  }
  const bool isClean = ReportLeftovers(QString::fromStdString(temporary));
  QDir(QString::fromStdString(home)).removeRecursively();
  if (WIFSIGNALED(status))
  {
    std::fprintf(stderr, "The test was ended by signal %d\n", WTERMSIG(status));
    return EXIT_FAILURE;
  }
  return isClean ? WEXITSTATUS(status) : EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv)
{
  return std::getenv(marker) ? RunTests(argc, argv) : RunApart(argv);
}
