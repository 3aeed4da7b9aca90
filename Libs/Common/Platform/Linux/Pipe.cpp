#include <Common/Platform/Pipe.h>

namespace Tavrik::Platform
{

bool MakePipe(Descriptor* readEnd, Descriptor* writeEnd)
{
  int ends[2] = {-1, -1};
  if (pipe2(ends, O_CLOEXEC) != 0)
    return false;
  *readEnd = Descriptor(ends[0]);
  *writeEnd = Descriptor(ends[1]);
  return *readEnd && *writeEnd;
}

} // namespace Tavrik::Platform
