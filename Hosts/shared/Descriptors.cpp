#include "Descriptors.h"

#include "Signals.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace Ostrel
{
namespace
{

// A terminal that another program has made non-blocking refuses a write that it could take a moment later.
bool WaitWritable(int file)
{
  pollfd watched = {file, POLLOUT, 0};
  return poll(&watched, 1, -1) >= 0;
}

} // namespace

int WriteAll(int file, const QByteArray& bytes)
{
  int position = 0;
  while (position < bytes.size())
  {
    const ssize_t written = write(file, bytes.constData() + position, bytes.size() - position);
    if (written >= 0)
      position += static_cast<int>(written);
    else if (errno == EAGAIN && WaitWritable(file))
      continue;
    else if (errno != EINTR || Signals::Caught() != 0)
      return errno;
  }
  return 0;
}

} // namespace Ostrel
