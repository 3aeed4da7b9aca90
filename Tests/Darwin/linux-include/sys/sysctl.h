#pragma once

// The few declarations of macOS's system library that the library uses and Linux lacks. A test defines the
// functions; those that Linux has as well go by another name, so that only the tested source meets them.

#include <csignal>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/types.h>

#define CTL_KERN 1
#define KERN_PROC 14
#define KERN_PROC_PID 1

#define SOL_LOCAL 0
#define LOCAL_PEERPID 0x002

#define SZOMB 5

struct extern_proc
{
  timeval p_starttime;
  char p_stat;
};

struct kinfo_proc
{
  extern_proc kp_proc;
};

extern "C"
{
  int sysctl(int* name, u_int nameLength, void* old, size_t* oldLength, void* fresh, size_t freshLength);
  int getpeereid(int socket, uid_t* user, gid_t* group);

  int DarwinKill(pid_t pid, int signal);
  int DarwinGetSocketOption(int socket, int level, int name, void* value, socklen_t* size);
}

#define kill DarwinKill
#define getsockopt DarwinGetSocketOption
