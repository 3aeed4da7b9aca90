#include "Memory.h"
#include "Parse.h"

#include <algorithm>
#include <fcntl.h>
#include <fstream>
#include <unistd.h>

namespace Purger
{

namespace
{

const long long mebibyte = 1 << 20;
const long long leastMargin = 256 * mebibyte;     // of the machine
const long long leastGroupMargin = 16 * mebibyte; // of a control group
const long long none = std::numeric_limits<long long>::max();

std::string ReadText(const std::string& path)
{
  std::ifstream file(path);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

bool WriteText(const char* path, const std::string& text)
{
  const int file = open(path, O_WRONLY | O_CLOEXEC);
  if (file < 0)
    return false;
  const bool isWritten = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  close(file);
  return isWritten;
}

long long GetMachineRoom()
{
  const std::string memInfo = ReadText("/proc/meminfo");
  const long long kilobyte = 1024;
  const long long total = ParseField(memInfo, "MemTotal:").value_or(0) * kilobyte;
  const long long available = ParseField(memInfo, "MemAvailable:").value_or(0) * kilobyte;
  return available - std::max(total / 20, leastMargin);
}

// A group's caches can be had back within its limit.
long long GetGroupRoom(const std::string& folder, bool isUnified)
{
  const auto number = [&](const char* file) { return ParseNumber(ReadText(folder + file)); };
  long long limit = none;
  for (const char* const file : {isUnified ? "/memory.max" : "/memory.limit_in_bytes",
                                 isUnified ? "/memory.high" : "/memory.soft_limit_in_bytes"})
    limit = std::min(limit, number(file).value_or(none));
  const auto used = number(isUnified ? "/memory.current" : "/memory.usage_in_bytes");
  if (limit == none || !used)
    return none;
  const std::string statistics = ReadText(folder + "/memory.stat");
  const long long cached =
      ParseField(statistics, isUnified ? "inactive_file" : "total_inactive_file").value_or(0);
  return limit - *used + std::min(cached, *used) - std::max(limit / 10, leastGroupMargin);
}

long long GetGroupsRoom(bool isUnified)
{
  const auto mount = ParseMount(ReadText("/proc/self/mountinfo"), isUnified);
  const auto group = ParseGroup(ReadText("/proc/self/cgroup"), isUnified);
  if (!mount || !group)
    return none;
  long long room = none;
  for (std::string folder = GroupFolder(*mount, *group); folder.size() >= mount->folder.size();
       folder.erase(std::min(folder.rfind('/'), folder.size())))
    room = std::min(room, GetGroupRoom(folder, isUnified));
  return room;
}

} // namespace

bool DropCaches()
{
  return geteuid() == 0 && WriteText("/proc/sys/vm/drop_caches", "3\n");
}

void GoFirst()
{
  WriteText("/proc/self/oom_score_adj", "1000\n");
}

long long GetRoom()
{
  return std::min({GetMachineRoom(), GetGroupsRoom(false), GetGroupsRoom(true)});
}

long long GetSwappedOut()
{
  return ParseField(ReadText("/proc/vmstat"), "pswpout").value_or(0);
}

} // namespace Purger
