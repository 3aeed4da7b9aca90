#include <Common/Platform/Pipe.h>

namespace Tavrik::Platform
{

// macOS has no pipe2(): a program that another thread starts in between inherits both ends.
bool MakePipe(Descriptor* readEnd, Descriptor* writeEnd)
{
  int ends[2] = {-1, -1};
  if (pipe(ends) != 0)
    return false;
  for (const int end : ends)
    fcntl(end, F_SETFD, FD_CLOEXEC);
  *readEnd = Descriptor(ends[0]);
  *writeEnd = Descriptor(ends[1]);
  return *readEnd && *writeEnd;
}

} // namespace Tavrik::Platform
