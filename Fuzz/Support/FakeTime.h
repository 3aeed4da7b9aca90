#pragma once

#include <functional>

/**
 * Takes the waiting out of a target. While a FakeTime lives, on its thread the steady clock stands still but
 * for waits and Pass(): sleeps end at once, and who waits for descriptors lets others act instead. The
 * library is the same as everywhere; what the system answers it is not.
 */
class FakeTime
{
public:
  enum Turn
  {
    Acted, ///< Something may have come of it.
    Passed ///< Nobody will do anything: the wait runs out.
  };

  /** @p act gives somebody else a turn, whenever somebody would wait for descriptors. */
  explicit FakeTime(std::function<Turn()> act);
  ~FakeTime();

  FakeTime(const FakeTime&) = delete;
  FakeTime& operator=(const FakeTime&) = delete;

  static void Pass(long long milliseconds);

private:
  std::function<Turn()> act;
};
