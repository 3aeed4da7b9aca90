#include "Support/Child.h"

#include "Support/Processes.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sched.h>
#include <sys/mount.h>
#endif

namespace
{

const int failed = 1;
const int couldNotBecome = 2;
const int isForbidden = 3;

bool IsForbidden(int status)
{
  return WIFEXITED(status) && WEXITSTATUS(status) == isForbidden;
}

testing::AssertionResult Judge(int status)
{
  if (WIFSIGNALED(status))
    return testing::AssertionFailure() << "the child was ended by signal " << WTERMSIG(status);
  if (WEXITSTATUS(status) == couldNotBecome)
    return testing::AssertionFailure() << "the child could not become the other user";
  if (WEXITSTATUS(status) != EXIT_SUCCESS)
    return testing::AssertionFailure() << "the child has failed, see above";
  return testing::AssertionSuccess();
}

int Outcome()
{
  return testing::Test::HasFailure() ? failed : EXIT_SUCCESS;
}

// Returns the child's wait status. The body must end the child.
int Fork(const std::function<void()>& body)
{
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0)
  {
    body();
    _exit(failed);
  }
  const int status = child < 0 ? -1 : WaitForEnd(child);
  if (status < 0)
    std::perror("fork");
  return status < 0 ? failed << 8 : status;
}

bool Become(const Identity& identity)
{
  return setgroups(identity.groups.size(), identity.groups.data()) == 0 && setgid(identity.group) == 0 &&
#ifdef __linux__
         setresuid(identity.realUser, identity.user, identity.user) == 0;
#else
         setreuid(identity.realUser, identity.user) == 0;
#endif
}

#ifdef __linux__

std::string Reason(const std::string& step)
{
  return step + ": " + std::strerror(errno);
}

bool Write(const char* path, const std::string& text)
{
  const int file = open(path, O_WRONLY);
  if (file < 0)
    return false;
  const bool isWritten = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  close(file);
  return isWritten;
}

std::string LeaveNamespace()
{
  const uid_t user = geteuid();
  const gid_t group = getegid();
  if (unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) != 0)
    return Reason("unshare");
  if (user != 0)
  {
    const std::string self = std::to_string(user);
    const std::string selfGroup = std::to_string(group);
    if (!Write("/proc/self/setgroups", "deny") || !Write("/proc/self/uid_map", self + " " + self + " 1") ||
        !Write("/proc/self/gid_map", selfGroup + " " + selfGroup + " 1"))
      return Reason("id maps");
  }
  if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
    return Reason("private mounts");
  return {};
}

// Shows one entry of the machine's root under the new one.
std::string Mirror(const std::string& base, const std::string& name)
{
  const std::string source = "/" + name;
  const std::string target = base + source;
  struct stat record = {};
  if (lstat(source.c_str(), &record) != 0)
    return Reason("lstat " + source);
  if (S_ISLNK(record.st_mode))
  {
    char text[4096] = {};
    if (readlink(source.c_str(), text, sizeof(text) - 1) < 0 || symlink(text, target.c_str()) != 0)
      return Reason("symlink " + target);
  }
  else if (S_ISDIR(record.st_mode))
  {
    if (mkdir(target.c_str(), 0755) != 0)
      return Reason("mkdir " + target);
    if (mount(source.c_str(), target.c_str(), nullptr, MS_BIND | MS_REC, nullptr) != 0)
      return Reason("bind " + target);
  }
  return {};
}

std::string MirrorAll(const std::string& base)
{
  DIR* const root = opendir("/");
  if (!root)
    return Reason("opendir /");
  std::string reason;
  while (const dirent* const entry = readdir(root))
  {
    const std::string name = entry->d_name;
    if (name != "." && name != ".." && name != "Volumes" && reason.empty())
      reason = Mirror(base, name);
  }
  closedir(root);
  return reason;
}

std::string EnterRoot(const std::string& folder)
{
  return chroot(folder.c_str()) == 0 && chdir("/") == 0 ? std::string() : Reason("chroot " + folder);
}

std::string EnterOwnVolumes(const std::string& base)
{
  std::string reason = LeaveNamespace();
  if (!reason.empty())
    return reason;
  if (mount("tmpfs", base.c_str(), "tmpfs", 0, "mode=0755") != 0)
    return Reason("mount " + base);
  // Or it would appear within itself.
  if (mount("none", base.c_str(), nullptr, MS_UNBINDABLE, nullptr) != 0)
    return Reason("unbindable " + base);
  reason = MirrorAll(base);
  if (!reason.empty())
    return reason;
  if (mkdir((base + "/Volumes").c_str(), 0755) != 0)
    return Reason("mkdir /Volumes");
  return EnterRoot(base);
}

#else

std::string EnterOwnVolumes(const std::string&)
{
  return "this system has no mount namespaces";
}

#endif

} // namespace

testing::AssertionResult RunInChild(const std::function<void()>& body)
{
  return Judge(Fork(
      [&body]
      {
        body();
        std::exit(Outcome());
      }));
}

testing::AssertionResult RunAs(const Identity& identity, const std::function<void()>& body)
{
  return Judge(Fork(
      [&]
      {
        if (!Become(identity))
          _exit(couldNotBecome);
        body();
        std::fflush(nullptr);
        // What runs at an exit may need what only the former user could do.
        _exit(Outcome());
      }));
}

void RunWithOwnVolumes(const std::function<void()>& body)
{
  const std::string base = std::string(std::getenv("HOME")) + "/root";
  ASSERT_EQ(mkdir(base.c_str(), 0755), 0);
  const int status = Fork(
      [&]
      {
        const std::string reason = EnterOwnVolumes(base);
        if (!reason.empty())
        {
          std::printf("No mount namespace: %s\n", reason.c_str());
          std::fflush(nullptr);
          _exit(isForbidden);
        }
        body();
        std::exit(Outcome());
      });
  EXPECT_EQ(rmdir(base.c_str()), 0);
  if (IsForbidden(status))
    GTEST_SKIP() << "The machine forbids what this test needs, see above";
  EXPECT_TRUE(Judge(status));
}

#ifdef __linux__

testing::AssertionResult MountVolume(const std::string& folder)
{
  mkdir(folder.c_str(), 0755);
  if (mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=1m,mode=0777") != 0)
    return testing::AssertionFailure() << "mount " << folder << ": " << std::strerror(errno);
  return testing::AssertionSuccess();
}

testing::AssertionResult EnterPlainRoot(const std::string& folder)
{
  std::string reason = MirrorAll(folder);
  if (reason.empty())
    reason = EnterRoot(folder);
  return reason.empty() ? testing::AssertionSuccess() : testing::AssertionFailure() << reason;
}

testing::AssertionResult MakeReadOnly(const std::string& folder)
{
  if (mount("none", folder.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) != 0)
    return testing::AssertionFailure() << "remount " << folder << ": " << std::strerror(errno);
  return testing::AssertionSuccess();
}

#else

testing::AssertionResult MountVolume(const std::string&)
{
  return testing::AssertionFailure() << "this system has no mount namespaces";
}

testing::AssertionResult EnterPlainRoot(const std::string&)
{
  return testing::AssertionFailure() << "this system has no mount namespaces";
}

testing::AssertionResult MakeReadOnly(const std::string&)
{
  return testing::AssertionFailure() << "this system has no mount namespaces";
}

#endif
