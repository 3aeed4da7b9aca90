#pragma once

#include <cstdio>
#include <cstdlib>

/** Ends the process when @p isTrue is false; the fuzzer then keeps the input. @p fact says what had to be. */
inline void Require(bool isTrue, const char* fact)
{
  if (isTrue)
    return;
  std::fprintf(stderr, "Not so: %s\n", fact);
  std::abort();
}
