// How long a program that does nothing takes with the library and without it, and with a getconf that is
// slow: the library asks getconf while it is loaded.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

void Run(benchmark::State& state, const char* program)
{
  for (auto _ : state)
  {
    char* const arguments[] = {const_cast<char*>(program), nullptr};
    pid_t child = 0;
    int status = 1;
    if (posix_spawn(&child, program, nullptr, nullptr, arguments, environ) != 0 ||
        waitpid(child, &status, 0) != child || status != 0)
      state.SkipWithError("the program failed");
  }
}

void WithoutTheLibrary(benchmark::State& state)
{
  Run(state, TAVRIK_BARE);
}

void WithTheLibrary(benchmark::State& state)
{
  Run(state, TAVRIK_LOADED);
}

// A getconf that takes 100 ms comes first in PATH.
void WithTheLibraryAndASlowGetconf(benchmark::State& state)
{
  char folder[] = "/tmp/bench.XXXXXX";
  if (mkdtemp(folder) == nullptr)
    return state.SkipWithError("no folder");
  const std::string tool = std::string(folder) + "/getconf";
  std::ofstream(tool) << "#!/bin/sh\nsleep 0.1\necho /tmp/cache/\n";
  std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
  const std::string path = std::getenv("PATH");
  setenv("PATH", (std::string(folder) + ':' + path).c_str(), 1);
  Run(state, TAVRIK_LOADED);
  setenv("PATH", path.c_str(), 1);
  std::filesystem::remove_all(folder);
}

BENCHMARK(WithoutTheLibrary)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(WithTheLibrary)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(WithTheLibraryAndASlowGetconf)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
