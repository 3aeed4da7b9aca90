// Every test runs in a home and a temporary directory of its own. The library looks at the temporary
// directory when it is loaded, so the test proper is a second process that is started with the right
// environment; the first waits for it, and sees to it that nothing stays behind.
//
// TAVRIK_TEST_ROOT is where the homes are made, /tmp when it is not set. TAVRIK_TEST_WRAPPER is a command
// line, words between blanks, that runs the test proper: "valgrind -q".

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>

#include <glog/logging.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <vector>
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

// Qt does not remove a file whose name is not text in the locale.
bool RemoveHome(const std::string& home)
{
  std::error_code error;
  std::filesystem::remove_all(home, error);
  if (error)
    std::fprintf(stderr, "The test left %s behind: %s\n", home.c_str(), error.message().c_str());
  return !error;
}

std::string Setting(const char* name, const char* otherwise)
{
  const char* const value = std::getenv(name);
  return value && *value ? value : otherwise;
}

// Returns only when it could not.
void Become(char** argv)
{
  std::istringstream words(Setting("TAVRIK_TEST_WRAPPER", ""));
  std::vector<std::string> wrapper{std::istream_iterator<std::string>(words), {}};
  if (wrapper.empty())
  {
    execv("/proc/self/exe", argv);
    execvp(argv[0], argv);
    return;
  }
  std::vector<char*> line;
  for (std::string& word : wrapper)
    line.push_back(word.data());
  for (; *argv; ++argv)
    line.push_back(*argv);
  line.push_back(nullptr);
  execvp(line[0], line.data());
}

int RunApart(char** argv)
{
  // Tests/Leftovers knows by the process id which homes are in use.
  std::string home =
      Setting("TAVRIK_TEST_ROOT", "/tmp") + "/tavrik-test." + std::to_string(getpid()) + ".XXXXXX";
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
    Become(argv);
    std::perror("exec");
    _exit(EXIT_FAILURE);
  }

  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child)
  {
    std::perror("fork");
    return EXIT_FAILURE;
  }
  bool isClean = ReportLeftovers(QString::fromStdString(temporary));
  isClean = RemoveHome(home) && isClean;
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
