#pragma once

// The few sysctl names that the Darwin sources use, for building them where the system has none.

#include <cstddef>
#include <sys/time.h>

#define CTL_KERN 1
#define KERN_PROC 14
#define KERN_PROC_PID 1

#define CTL_HW 6
#define HW_MEMSIZE 24

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

extern "C" int sysctl(int* name, unsigned int nameLength, void* oldValue, std::size_t* oldLength,
                      void* newValue, std::size_t newLength);
