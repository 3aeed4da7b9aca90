#include "Support/FakeTime.h"

#include "Support/Require.h"

#include <cstdint>
#include <dlfcn.h>
#include <poll.h>
#include <sys/time.h>
#include <time.h>
#include <utility>

namespace
{

const std::int64_t second = 1000000000; // ns

thread_local std::function<FakeTime::Turn()>* others = nullptr; // there while the time is ours
std::int64_t now = 1000 * second;

template<typename Function>
Function* FindReal(const char* name)
{
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::int64_t Nanoseconds(const timespec& time)
{
  return time.tv_sec * second + time.tv_nsec;
}

int RealPoll(pollfd* descriptors, nfds_t count, const timespec* timeout, const sigset_t* mask)
{
  static const auto real = FindReal<decltype(ppoll)>("ppoll");
  return real(descriptors, count, timeout, mask);
}

// A wait below 0 has no end.
int Wait(pollfd* descriptors, nfds_t count, std::int64_t wait)
{
  const timespec atOnce = {0, 0};
  int ready = RealPoll(descriptors, count, &atOnce, nullptr);
  while (ready == 0 && wait != 0)
  {
    if ((*others)() == FakeTime::Acted)
    {
      ready = RealPoll(descriptors, count, &atOnce, nullptr);
      continue;
    }
    Require(wait > 0, "nobody waits for ever for what nobody will do");
    now += wait;
    wait = 0;
  }
  return ready;
}

} // namespace

FakeTime::FakeTime(std::function<Turn()> act) : act(std::move(act))
{
  others = &this->act;
}

FakeTime::~FakeTime()
{
  others = nullptr;
}

void FakeTime::Pass(long long milliseconds)
{
  now += milliseconds * 1000000;
}

// Qt and Boost, which are libraries of their own, find these, too.
#pragma GCC visibility push(default)
extern "C" int clock_gettime(clockid_t clock, timespec* time)
{
  static const auto real = FindReal<int(clockid_t, timespec*)>("clock_gettime");
  if (!others ||
      (clock != CLOCK_MONOTONIC && clock != CLOCK_MONOTONIC_COARSE && clock != CLOCK_MONOTONIC_RAW))
    return real(clock, time);
  now += 1000; // so that whoever looks at the clock until a time has come sees it come
  time->tv_sec = now / second;
  time->tv_nsec = now % second;
  return 0;
}

extern "C" int nanosleep(const timespec* time, timespec* rest)
{
  static const auto real = FindReal<int(const timespec*, timespec*)>("nanosleep");
  if (!others)
    return real(time, rest);
  now += Nanoseconds(*time);
  return 0;
}

// A sleep until a time of this clock is over before it has begun. The fuzzer's own times are not of it.
extern "C" int gettimeofday(timeval* __restrict time, void* __restrict zone) noexcept
{
  static const auto real = FindReal<int(timeval*, void*)>("gettimeofday");
  const int result = real(time, zone);
  if (others)
    time->tv_sec -= 3600;
  return result;
}

extern "C" int ppoll(pollfd* descriptors, nfds_t count, const timespec* timeout, const sigset_t* mask)
{
  if (!others)
    return RealPoll(descriptors, count, timeout, mask);
  return Wait(descriptors, count, timeout ? Nanoseconds(*timeout) : -1);
}

extern "C" int poll(pollfd* descriptors, nfds_t count, int timeout)
{
  static const auto real = FindReal<int(pollfd*, nfds_t, int)>("poll");
  if (!others)
    return real(descriptors, count, timeout);
  return Wait(descriptors, count, timeout * 1000000LL);
}
#pragma GCC visibility pop
