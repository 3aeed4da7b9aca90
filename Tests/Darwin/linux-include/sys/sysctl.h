#pragma once

// The few sysctl names that the Darwin sources use, for building them where the system has none.

#include <cstddef>

#define CTL_HW 6
#define HW_MEMSIZE 24

extern "C" int sysctl(int* name, unsigned int nameLength, void* oldValue, std::size_t* oldLength,
                      void* newValue, std::size_t newLength);
