// A text file of lines "NAME VALUE". It is replaced whole, so readers take no lock. A state in which
// everything is off and empty is not kept: then there is neither the file nor its lock.

#include "FirewallState.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sstream>
#include <sys/auxv.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace StandIns
{
namespace
{

const char* const systemFile = "/var/lib/tavrik/firewall";
const char* const firstLine = "tavrik-firewall 1";
const char* const switchNames[SwitchCount] = {"enabled", "block-all", "allow-signed", "stealth",
                                              "allow-signed-app"};
const std::size_t longestFile = 16UL * 1024 * 1024; // bytes that are read
const int longestWait = 10000;                      // ms for other writers
const int waitStep = 10;                            // ms

class File
{
public:
  File(const std::string& path, int flags, mode_t mode = 0)
      : descriptor(open(path.c_str(), flags | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, mode))
  {
  }
  ~File()
  {
    if (descriptor >= 0)
      close(descriptor);
  }

  File(const File&) = delete;
  File& operator=(const File&) = delete;

  explicit operator bool() const { return descriptor >= 0; }
  int Get() const { return descriptor; }

private:
  const int descriptor;
};

bool IsRoot()
{
  return geteuid() == 0;
}

std::string Variable(const char* name)
{
  const char* const value = std::getenv(name);
  return value ? value : "";
}

// Root's own, and nobody else can write it.
bool IsTrusted(const struct stat& information)
{
  return information.st_uid == 0 && (information.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

bool HasSystemFile()
{
  struct stat information;
  return lstat(systemFile, &information) == 0 && S_ISREG(information.st_mode) && IsTrusted(information);
}

std::string OwnFile()
{
  std::string folder = Variable("XDG_STATE_HOME");
  if (folder.empty() || folder[0] != '/')
  {
    const std::string home = Variable("HOME");
    if (home.empty() || home[0] != '/')
      return {};
    folder = home + "/.local/state";
  }
  return folder + "/tavrik/firewall";
}

std::string ReadFile(const std::string& path)
{
  const File file(path, O_RDONLY);
  struct stat information;
  if (!file || fstat(file.Get(), &information) != 0 || !S_ISREG(information.st_mode))
    return {};
  std::string text;
  char bytes[65536];
  while (text.size() < longestFile)
  {
    const ssize_t size = read(file.Get(), bytes, sizeof(bytes));
    if (size < 0 && errno == EINTR)
      continue;
    if (size <= 0)
      break;
    text.append(bytes, static_cast<std::size_t>(size));
  }
  return text;
}

bool IsOneLine(const std::string& text)
{
  return text.find_first_of(std::string("\n\0", 2)) == std::string::npos;
}

void TakeApplication(const std::string& value, FirewallState* state)
{
  const bool isBlocked = value.compare(0, 6, "block ") == 0;
  if (!isBlocked && value.compare(0, 6, "allow ") != 0)
    return;
  const std::string path = value.substr(6);
  if (path.empty() || path[0] != '/' || !IsOneLine(path))
    return;
  if (Application* const known = state->Find(path))
    known->isBlocked = isBlocked;
  else
    state->applications.push_back({path, isBlocked});
}

void TakeLine(const std::string& line, FirewallState* state)
{
  const std::size_t blank = line.find(' ');
  if (blank == std::string::npos)
    return;
  const std::string name = line.substr(0, blank);
  const std::string value = line.substr(blank + 1);
  for (int i = 0; i < SwitchCount; ++i)
    if (name == switchNames[i])
      state->switches[i] = value == "on";
  if (name == "application")
    TakeApplication(value, state);
}

FirewallState Parse(const std::string& text)
{
  FirewallState state;
  std::istringstream lines(text);
  std::string line;
  if (!std::getline(lines, line) || line != firstLine)
    return state;
  while (std::getline(lines, line))
    TakeLine(line, &state);
  return state;
}

std::string Format(const FirewallState& state)
{
  std::string text = std::string(firstLine) + '\n';
  for (int i = 0; i < SwitchCount; ++i)
    text += std::string(switchNames[i]) + (state.switches[i] ? " on\n" : " off\n");
  for (const Application& application : state.applications)
    text +=
        "application " + std::string(application.isBlocked ? "block " : "allow ") + application.path + '\n';
  return text;
}

std::string Reason(const std::string& path)
{
  return path + ": " + std::strerror(errno);
}

// Of the folders that are missing; those that are there keep what they have.
std::string MakeFolders(const std::string& folder, mode_t mode)
{
  for (std::size_t end = folder.find('/', 1);; end = folder.find('/', end + 1))
  {
    const std::string part = folder.substr(0, end);
    if (mkdir(part.c_str(), mode) == 0)
      chmod(part.c_str(), mode);
    else if (errno != EEXIST)
      return Reason(part);
    if (end == std::string::npos)
      return {};
  }
}

bool LockWithin(int descriptor, int milliseconds)
{
  for (int waited = 0; flock(descriptor, LOCK_EX | LOCK_NB) != 0; waited += waitStep)
  {
    if (waited >= milliseconds || (errno != EWOULDBLOCK && errno != EINTR))
      return false;
    usleep(waitStep * 1000);
  }
  return true;
}

bool WriteWhole(int descriptor, const std::string& text)
{
  for (std::size_t written = 0; written < text.size();)
  {
    const ssize_t size = write(descriptor, text.data() + written, text.size() - written);
    if (size < 0 && errno == EINTR)
      continue;
    if (size <= 0)
      return false;
    written += static_cast<std::size_t>(size);
  }
  return true;
}

bool IsEmpty(const FirewallState& state)
{
  return state.applications.empty() &&
         std::none_of(state.switches.begin(), state.switches.end(), [](bool isOn) { return isOn; });
}

std::string Store(const FirewallState& state, const std::string& path, mode_t mode)
{
  if (IsEmpty(state))
    return unlink(path.c_str()) == 0 || errno == ENOENT ? std::string() : Reason(path);
  const std::string fresh = path + ".new";
  unlink(fresh.c_str());
  const File file(fresh, O_WRONLY | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
  if (!file)
    return Reason(fresh);
  if (WriteWhole(file.Get(), Format(state)) && fchmod(file.Get(), mode) == 0 && fsync(file.Get()) == 0 &&
      rename(fresh.c_str(), path.c_str()) == 0)
    return {};
  std::string reason = Reason(path);
  unlink(fresh.c_str());
  return reason;
}

std::string FolderOf(const StatePlace& place)
{
  return place.writeFile.substr(0, place.writeFile.find_last_of('/'));
}

std::string PrepareFolder(const StatePlace& place)
{
  const std::string folder = FolderOf(place);
  std::string reason = MakeFolders(folder, place.isSystemWide ? 0755 : 0700);
  struct stat information;
  // Another writer may have removed the folder by now; then the lock cannot be opened.
  if (reason.empty() && place.isSystemWide && lstat(folder.c_str(), &information) == 0 &&
      (!S_ISDIR(information.st_mode) || !IsTrusted(information)))
    reason = folder + ": others can write there";
  return reason;
}

bool IsFileAt(const std::string& path, const File& file)
{
  struct stat there;
  struct stat here;
  return lstat(path.c_str(), &there) == 0 && fstat(file.Get(), &here) == 0 && there.st_dev == here.st_dev &&
         there.st_ino == here.st_ino;
}

// Only while the lock is held: a process that waits for it notices that it has been removed.
void RemoveUnused(const StatePlace& place)
{
  struct stat information;
  if (lstat(place.writeFile.c_str(), &information) == 0 || errno != ENOENT)
    return;
  unlink((place.writeFile + ".lock").c_str());
  if (place.isSystemWide)
    rmdir(FolderOf(place).c_str());
}

} // namespace

Application* FirewallState::Find(const std::string& path)
{
  const auto found = std::find_if(applications.begin(), applications.end(),
                                  [&](const Application& application) { return application.path == path; });
  return found == applications.end() ? nullptr : &*found;
}

StatePlace FindPlace()
{
  const std::string chosen = getauxval(AT_SECURE) == 0 ? Variable("TAVRIK_FIREWALL_STATE") : std::string();
  if (!chosen.empty())
    return {chosen, chosen, false};
  if (IsRoot())
    return {systemFile, systemFile, true};
  if (HasSystemFile())
    return {systemFile, {}, true};
  const std::string own = OwnFile();
  return {own, own, false};
}

FirewallState Load(const StatePlace& place)
{
  return Parse(ReadFile(place.readFile));
}

std::string Edit(const StatePlace& place, const std::function<bool(FirewallState&)>& edit)
{
  const std::string& path = place.writeFile;
  const std::string lockPath = path + ".lock";
  for (;;)
  {
    std::string reason = PrepareFolder(place);
    if (!reason.empty())
      return reason;
    const File lock(lockPath, O_RDWR | O_CREAT, S_IRUSR | S_IWUSR);
    if (!lock && errno == ENOENT)
      continue; // the last writer has just removed the folder
    if (!lock)
      return Reason(lockPath);
    if (!LockWithin(lock.Get(), longestWait))
      return lockPath + ": another process holds it";
    if (!IsFileAt(lockPath, lock))
      continue; // the last writer has removed it
    FirewallState state = Load(place);
    if (edit(state))
      reason = Store(state, path, place.isSystemWide ? 0644 : 0600);
    RemoveUnused(place);
    return reason;
  }
}

} // namespace StandIns
