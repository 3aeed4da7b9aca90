#pragma once

// The few Mach names that the Darwin sources use, for building them where the system has none.

#include <cstdint>

using integer_t = int;
using natural_t = unsigned int;
using kern_return_t = int;
using mach_port_t = natural_t;
using host_t = mach_port_t;
using host_flavor_t = integer_t;
using host_info64_t = integer_t*;
using mach_msg_type_number_t = natural_t;

struct vm_statistics64
{
  natural_t free_count;
  natural_t active_count;
  natural_t inactive_count;
  natural_t wire_count;
  std::uint64_t rest[16];
};

#define KERN_SUCCESS 0
#define HOST_VM_INFO 2
#define HOST_VM_INFO_COUNT 15u
#define HOST_VM_INFO64 4

extern "C" mach_port_t mach_host_self();
extern "C" mach_port_t mach_task_self();
extern "C" kern_return_t mach_port_deallocate(mach_port_t task, mach_port_t name);
extern "C" kern_return_t host_statistics64(host_t host, host_flavor_t flavor, host_info64_t info,
                                           mach_msg_type_number_t* count);
