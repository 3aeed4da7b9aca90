#pragma once

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

/** @file Seam: pipes that no program started by this process inherits. */
namespace Tavrik::Platform
{

/** Owns an open file descriptor; -1 when it owns none. */
class Descriptor
{
public:
  Descriptor() = default;

  // Never 0, 1 or 2, even when the host has closed those: they are what a child's are made from.
  explicit Descriptor(int number) : number(number)
  {
    if (number < 0 || number > STDERR_FILENO)
      return;
    this->number = fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    close(number);
  }

  Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept
  {
    std::swap(number, other.number);
    return *this;
  }
  ~Descriptor() { Close(); }

  explicit operator bool() const { return number >= 0; }
  int Get() const { return number; }
  int Release() { return std::exchange(number, -1); }

  void Close()
  {
    if (number >= 0)
      close(number);
    number = -1;
  }

private:
  int number = -1;
};

/** @return False, with errno set, when the process has no descriptor left. */
bool MakePipe(Descriptor* readEnd, Descriptor* writeEnd);

/** Repeats @p call for as long as a signal interrupts it. */
template<typename Call>
auto Retry(const Call& call)
{
  auto result = call();
  while (result == -1 && errno == EINTR)
    result = call();
  return result;
}

} // namespace Tavrik::Platform
