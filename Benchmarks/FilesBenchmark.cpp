// What the path rules, the access checks and the process reader cost, beside the nearest thing that has
// nothing to do with this library.

#include <Common/AccessChecks.h>
#include <Common/PathSafety.h>
#include <Common/ReadProcess.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <fcntl.h>
#include <map>
#include <memory>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace Tavrik::Cleaner;

namespace
{

const QString program = QStringLiteral("/bin/echo");
const QString argument = QStringLiteral("hello");

std::string RunBare(const char* path, std::vector<const char*> arguments)
{
  int ends[2];
  if (pipe(ends) != 0)
    return {};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, ends[0]);
  posix_spawn_file_actions_addclose(&actions, ends[1]);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  arguments.insert(arguments.begin(), path);
  arguments.push_back(nullptr);
  pid_t child = 0;
  const int error =
      posix_spawn(&child, path, &actions, nullptr, const_cast<char* const*>(arguments.data()), environ);
  close(ends[1]);
  std::string output;
  char part[4096];
  for (ssize_t size = 0; error == 0 && (size = read(ends[0], part, sizeof(part))) > 0;)
    output.append(part, static_cast<size_t>(size));
  close(ends[0]);
  if (error == 0)
    waitpid(child, nullptr, 0);
  posix_spawn_file_actions_destroy(&actions);
  return output;
}

// Siblings by the hundred, as a list of chosen folders has them.
QStringList MakeDirectories(const QString& root, int count)
{
  QStringList directories;
  for (int i = 0; i < count; ++i)
  {
    const QString parent = root + QStringLiteral("/group-%1").arg(i / 100);
    if (i % 100 == 0)
      QDir().mkdir(parent);
    directories += parent + QStringLiteral("/directory-%1").arg(i);
    QDir().mkdir(directories.last());
  }
  return directories;
}

// 100 folders of 9 folders with 110 files each: 99,900 entries and some.
QString MakeTree(const QString& root)
{
  const QString top = root + QStringLiteral("/tree");
  for (int i = 0; i < 900; ++i)
  {
    const QString folder = top + QStringLiteral("/%1/%2").arg(i / 9).arg(i);
    QDir().mkpath(folder);
    for (int j = 0; j < 110; ++j)
      close(open(qPrintable(folder + QStringLiteral("/file-%1").arg(j)), O_CREAT | O_WRONLY, 0600));
  }
  return top;
}

// What is measured on takes longer to make than to measure, so each is made once.
class Stage
{
public:
  const QStringList& Directories(long count)
  {
    QStringList& directories = made[count];
    if (directories.isEmpty())
    {
      const QString root = folder.filePath(QString::number(count));
      QDir().mkdir(root);
      directories = MakeDirectories(root, static_cast<int>(count));
    }
    return directories;
  }

  const QString& Tree()
  {
    if (tree.isEmpty())
      tree = MakeTree(folder.path());
    return tree;
  }

private:
  const QTemporaryDir folder;
  std::map<long, QStringList> made;
  QString tree;
};

std::unique_ptr<Stage> stage;

void FilterSubDirsOf(benchmark::State& state)
{
  const QStringList& directories = stage->Directories(state.range(0));
  for (auto _ : state)
    if (FilterSubDirs(directories).size() != directories.size())
      state.SkipWithError("wrong answer");
}

// The system calls that are made for each directory in any case.
void CanonicalPathsOf(benchmark::State& state)
{
  const QStringList& directories = stage->Directories(state.range(0));
  for (auto _ : state)
    for (const QString& directory : directories)
      benchmark::DoNotOptimize(QFileInfo(directory).canonicalFilePath());
}

void TreeCanRemoveWholeDirectory(benchmark::State& state)
{
  const QString& top = stage->Tree();
  for (auto _ : state)
    if (!CanRemoveWholeDirectory(top))
      state.SkipWithError("wrong answer");
}

void TreeFindNotWritable(benchmark::State& state)
{
  const std::string path = stage->Tree().toStdString();
  for (auto _ : state)
    if (!RunBare("/usr/bin/find", {path.c_str(), "-not", "-writable"}).empty())
      state.SkipWithError("wrong answer");
}

void IsPathSafeFor(benchmark::State& state, const char* text)
{
  const QString path = QString::fromUtf8(text);
  for (auto _ : state)
    benchmark::DoNotOptimize(IsPathSafe(path));
}

void ReadProcessOfEcho(benchmark::State& state)
{
  for (auto _ : state)
    if (ReadProcess(program, argument) != QStringLiteral("hello\n"))
      state.SkipWithError("wrong answer");
}

void BareSpawnOfEcho(benchmark::State& state)
{
  for (auto _ : state)
    if (RunBare("/bin/echo", {"hello"}) != "hello\n")
      state.SkipWithError("wrong answer");
}

BENCHMARK(FilterSubDirsOf)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(CanonicalPathsOf)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(TreeCanRemoveWholeDirectory)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(TreeFindNotWritable)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(IsPathSafeFor, ByItsPrefix, "/Users/somebody/Library/Caches/com.example.tool/data");
BENCHMARK_CAPTURE(IsPathSafeFor, RefusedByItsText, "/etc/some/where/else/that/is/deep/file");
BENCHMARK_CAPTURE(IsPathSafeFor, BelowVolumes, "/Volumes/Data/file");
BENCHMARK(ReadProcessOfEcho)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BareSpawnOfEcho)->Unit(benchmark::kMicrosecond)->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
  QCoreApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv))
    return 1;
  stage = std::make_unique<Stage>();
  benchmark::RunSpecifiedBenchmarks();
  stage.reset();
  return 0;
}
