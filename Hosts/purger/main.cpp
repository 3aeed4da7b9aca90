// Frees memory: has the system drop its caches where it may, and otherwise takes memory in steps, so that the
// system gives up its caches for it, and lets go of all of it. Tells its progress on the standard output in
// lines "PROGRESS: N%", of which 100 is the last and comes when the memory is free.

#include "Memory.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <sys/mman.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace
{

using Clock = std::chrono::steady_clock;

// Far from the end of the room great steps are safe, and asking after the room costs less.
const long long leastStep = 8 << 20;
const long long largestStep = 128 << 20;
const long long stepsToTheEnd = 64;
const auto longestFilling = std::chrono::seconds(60);
// The reader takes one line every 50 ms, give or take, and none any more once we are gone.
const auto betweenLines = std::chrono::milliseconds(70);
const auto farewell = std::chrono::milliseconds(300);

const int usageError = 2;

class Progress
{
public:
  // Lines that come too early are left out; the last one waits.
  void Tell(int percentage)
  {
    if (percentage <= told)
      return;
    if (percentage == 100)
      std::this_thread::sleep_until(next);
    else if (Clock::now() < next)
      return;
    told = percentage;
    next = Clock::now() + betweenLines;
    // Without a reader of the progress there is no host that waits for the memory.
    if (std::printf("PROGRESS: %d%%\n", percentage) >= 0 && std::fflush(stdout) == 0)
      return;
    std::perror("purger: cannot write to the standard output");
    std::exit(EXIT_FAILURE);
  }

private:
  int told = -1;
  Clock::time_point next = Clock::now();
};

class Filling
{
public:
  Filling() = default;
  ~Filling()
  {
    for (const auto& [block, size] : blocks)
      munmap(block, size);
  }

  Filling(const Filling&) = delete;
  Filling& operator=(const Filling&) = delete;

  long long Size() const { return total; }

  bool Grow(size_t size)
  {
    void* const block = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANON, -1, 0);
    if (block == MAP_FAILED)
      return false;
    blocks.emplace_back(block, size);
    total += static_cast<long long>(size);
    return BackWithPages(static_cast<char*>(block), size);
  }

private:
  static bool BackWithPages(char* block, size_t size)
  {
#ifdef MADV_POPULATE_WRITE
    // One call is far cheaper than a fault a page, most of all on a virtual machine; old kernels do not know
    // it.
    if (madvise(block, size, MADV_POPULATE_WRITE) == 0)
      return true;
    if (errno != EINVAL)
      return false;
#endif
    // A page has to be written to be there, and differently from others to stay there on its own.
    const size_t page = 4096;
    for (size_t offset = 0; offset < size; offset += page)
    {
      const char* const mark = block + offset;
      std::memcpy(block + offset, static_cast<const void*>(&mark), sizeof(mark));
    }
    return true;
  }

  std::vector<std::pair<void*, size_t>> blocks;
  long long total = 0;
};

void FillAndLetGo(long long limit, Progress* progress)
{
  Purger::GoFirst();
  setpriority(PRIO_PROCESS, 0, 10);
  const long long swappedBefore = Purger::GetSwappedOut();
  const auto end = Clock::now() + longestFilling;
  Filling filling;
  for (;;)
  {
    const long long room = std::min(Purger::GetRoom(), limit - filling.Size());
    if (room < leastStep || Purger::GetSwappedOut() != swappedBefore || Clock::now() > end)
      return;
    progress->Tell(static_cast<int>(filling.Size() * 99 / (filling.Size() + room)));
    if (!filling.Grow(static_cast<size_t>(std::clamp(room / stepsToTheEnd, leastStep, largestStep))))
      return;
  }
}

bool ParseLimit(const char* text, long long* limit)
{
  char* end = nullptr;
  errno = 0;
  *limit = std::strtoll(text, &end, 10);
  return *text >= '0' && *text <= '9' && *end == '\0' && errno == 0;
}

} // namespace

int main(int argc, char** argv)
{
  long long limit = std::numeric_limits<long long>::max();
  const bool hasOption = argc == 3 && std::strcmp(argv[1], "--limit") == 0;
  const char* const limitText = hasOption ? argv[2] : std::getenv("TAVRIK_PURGER_LIMIT");
  const bool isLimited = limitText && ParseLimit(limitText, &limit);
  if ((argc != 1 && !hasOption) || (limitText && !isLimited))
  {
    std::fprintf(stderr, "usage: %s [--limit BYTES]; TAVRIK_PURGER_LIMIT is the same without the option\n",
                 argv[0]);
    return usageError;
  }

  Progress progress;
  progress.Tell(0);
  if (isLimited || !Purger::DropCaches())
    FillAndLetGo(limit, &progress);
  progress.Tell(100);
  std::this_thread::sleep_for(farewell);
  return EXIT_SUCCESS;
}
