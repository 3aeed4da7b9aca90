// Preloaded into a program, fails one system call at one of its calls, or counts them. Nothing happens until
// the program arms it, so what the loader, the C library and Qt do before is left alone. The counters are
// shared with children until they run another program.
//
//   TAVRIK_FAULT=CALL:INDEX:ERRNO   the INDEXth call, from 1, returns -1 with that error
//   TAVRIK_FAULT=count              ArmFaults(0) prints "count CALL NUMBER" lines on standard output

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <new>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

constexpr std::array<const char*, 21> names = {"open",      "write",  "rename",  "unlink", "chmod",  "mkdir",
                                               "flock",     "socket", "connect", "bind",   "listen", "accept",
                                               "read",      "recv",   "send",    "fork",   "execve", "stat",
                                               "getgroups", "pipe",   "fsync"};

struct Shared
{
  std::atomic<bool> isArmed;
  std::array<std::atomic<long>, names.size()> counts;
};

Shared* shared = nullptr;
std::size_t failing = names.size();
long failingIndex = 0;
int failingError = 0;

constexpr std::size_t IndexOf(const char* name)
{
  std::size_t index = 0;
  while (__builtin_strcmp(names[index], name) != 0)
    ++index;
  return index;
}

// Whether this call has to fail; errno is set then.
bool Fails(std::size_t call)
{
  if (!shared || !shared->isArmed)
    return false;
  const long index = ++shared->counts[call];
  if (call != failing || index != failingIndex)
    return false;
  errno = failingError;
  return true;
}

template<typename Function>
Function Real(const char* name)
{
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C"
{

  __attribute__((visibility("default"))) void ArmFaults(int isArmed)
  {
    if (!shared)
    {
      void* const memory =
          mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
      shared = memory == MAP_FAILED ? nullptr : new (memory) Shared();
      const char* const fault = std::getenv("TAVRIK_FAULT");
      char name[16] = {};
      if (fault && std::sscanf(fault, "%15[a-z]:%ld:%d", name, &failingIndex, &failingError) == 3)
        for (std::size_t i = 0; i < names.size(); ++i)
          if (std::strcmp(names[i], name) == 0)
            failing = i;
    }
    if (!shared)
      return;
    shared->isArmed = isArmed != 0;
    const char* const fault = std::getenv("TAVRIK_FAULT");
    if (isArmed == 0 && fault && std::strcmp(fault, "count") == 0)
      for (std::size_t i = 0; i < names.size(); ++i)
        std::printf("count %s %ld\n", names[i], shared->counts[i].load());
    if (isArmed == 0 && failing < names.size())
      std::printf("%s\n", shared->counts[failing] >= failingIndex ? "failed once" : "not reached");
  }

#define INTERPOSE(result, function, call, parameters, arguments)                                             \
  __attribute__((visibility("default"))) result function parameters                                          \
  {                                                                                                          \
    static const auto real = Real<result(*) parameters>(#function);                                          \
    return Fails(IndexOf(call)) ? static_cast<result>(-1) : real arguments;                                  \
  }

#define INTERPOSE_OPEN(function)                                                                             \
  __attribute__((visibility("default"))) int function(const char* path, int flags, ...)                      \
  {                                                                                                          \
    static const auto real = Real<int (*)(const char*, int, ...)>(#function);                                \
    mode_t mode = 0;                                                                                         \
    if ((flags & (O_CREAT | O_TMPFILE)) != 0)                                                                \
    {                                                                                                        \
      va_list rest;                                                                                          \
      va_start(rest, flags);                                                                                 \
      mode = va_arg(rest, mode_t);                                                                           \
      va_end(rest);                                                                                          \
    }                                                                                                        \
    return Fails(IndexOf("open")) ? -1 : real(path, flags, mode);                                            \
  }

  INTERPOSE_OPEN(open)
  INTERPOSE_OPEN(open64)

  __attribute__((visibility("default"))) DIR* opendir(const char* path)
  {
    static const auto real = Real<DIR* (*)(const char*)>("opendir");
    return Fails(IndexOf("open")) ? nullptr : real(path);
  }

  INTERPOSE(ssize_t, write, "write", (int file, const void* bytes, std::size_t size), (file, bytes, size))
  INTERPOSE(int, rename, "rename", (const char* from, const char* to), (from, to))
  INTERPOSE(int, renameat2, "rename",
            (int fromFolder, const char* from, int toFolder, const char* to, unsigned flags),
            (fromFolder, from, toFolder, to, flags))
  INTERPOSE(int, link, "rename", (const char* from, const char* to), (from, to))
  INTERPOSE(int, unlink, "unlink", (const char* path), (path))
  INTERPOSE(int, chmod, "chmod", (const char* path, mode_t mode), (path, mode))
  INTERPOSE(int, fchmod, "chmod", (int file, mode_t mode), (file, mode))
  INTERPOSE(int, mkdir, "mkdir", (const char* path, mode_t mode), (path, mode))
  INTERPOSE(int, fsync, "fsync", (int file), (file))
  INTERPOSE(int, fdatasync, "fsync", (int file), (file))
  INTERPOSE(int, flock, "flock", (int file, int operation), (file, operation))
  INTERPOSE(int, socket, "socket", (int domain, int type, int protocol), (domain, type, protocol))
  INTERPOSE(int, socketpair, "socket", (int domain, int type, int protocol, int* ends),
            (domain, type, protocol, ends))
  INTERPOSE(int, connect, "connect", (int socket, const sockaddr* address, socklen_t size),
            (socket, address, size))
  INTERPOSE(int, bind, "bind", (int socket, const sockaddr* address, socklen_t size), (socket, address, size))
  INTERPOSE(int, listen, "listen", (int socket, int backlog), (socket, backlog))
  INTERPOSE(int, accept, "accept", (int socket, sockaddr* address, socklen_t* size), (socket, address, size))
  INTERPOSE(int, accept4, "accept", (int socket, sockaddr* address, socklen_t* size, int flags),
            (socket, address, size, flags))
  INTERPOSE(ssize_t, read, "read", (int file, void* bytes, std::size_t size), (file, bytes, size))
  INTERPOSE(ssize_t, recv, "recv", (int socket, void* bytes, std::size_t size, int flags),
            (socket, bytes, size, flags))
  INTERPOSE(ssize_t, recvmsg, "recv", (int socket, msghdr* message, int flags), (socket, message, flags))
  INTERPOSE(ssize_t, send, "send", (int socket, const void* bytes, std::size_t size, int flags),
            (socket, bytes, size, flags))
  INTERPOSE(ssize_t, sendmsg, "send", (int socket, const msghdr* message, int flags),
            (socket, message, flags))
  INTERPOSE(pid_t, fork, "fork", (), ())
  INTERPOSE(int, execve, "execve", (const char* path, char* const* arguments, char* const* environment),
            (path, arguments, environment))
  INTERPOSE(int, execv, "execve", (const char* path, char* const* arguments), (path, arguments))
  INTERPOSE(int, stat, "stat", (const char* path, struct stat* status), (path, status))
  INTERPOSE(int, stat64, "stat", (const char* path, struct stat64* status), (path, status))
  INTERPOSE(int, lstat, "stat", (const char* path, struct stat* status), (path, status))
  INTERPOSE(int, lstat64, "stat", (const char* path, struct stat64* status), (path, status))
  INTERPOSE(int, fstat, "stat", (int file, struct stat* status), (file, status))
  INTERPOSE(int, fstat64, "stat", (int file, struct stat64* status), (file, status))
  INTERPOSE(int, statx, "stat",
            (int folder, const char* path, int flags, unsigned mask, struct statx* status),
            (folder, path, flags, mask, status))
  INTERPOSE(int, getgroups, "getgroups", (int size, gid_t* groups), (size, groups))
  INTERPOSE(int, pipe2, "pipe", (int* ends, int flags), (ends, flags))

  // A process id that is none means everybody, whether armed or not.
  __attribute__((visibility("default"))) int kill(pid_t pid, int signal)
  {
    static const auto real = Real<int (*)(pid_t, int)>("kill");
    if (pid > 0)
      return real(pid, signal);
    std::printf("promise only single processes are signalled: kill(%d, %d)\n", static_cast<int>(pid), signal);
    std::fflush(stdout);
    std::abort();
  }

  // Qt's processes are made by a clone without a stack of its own, which is a fork.
  __attribute__((visibility("default"))) long syscall(long number, ...)
  {
    static const auto real = Real<long (*)(long, ...)>("syscall");
    va_list rest;
    va_start(rest, number);
    std::array<long, 6> arguments = {};
    for (long& argument : arguments)
      argument = va_arg(rest, long);
    va_end(rest);
    if (number == SYS_clone && Fails(IndexOf("fork")))
      return -1;
    return real(number, arguments[0], arguments[1], arguments[2], arguments[3], arguments[4], arguments[5]);
  }

} // extern "C"
