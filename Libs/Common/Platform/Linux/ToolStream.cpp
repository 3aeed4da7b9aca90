#include <Common/Platform/Linux/ToolStream.h>

#include <algorithm>
#include <poll.h>

namespace Tavrik::Platform
{

namespace
{

ssize_t ReadEnds(void* ends, char* bytes, std::size_t size)
{
  return read(static_cast<PipeEnds*>(ends)->input.Get(), bytes, size);
}

ssize_t WriteEnds(void* ends, const char* bytes, std::size_t size)
{
  return std::max<ssize_t>(write(static_cast<PipeEnds*>(ends)->output.Get(), bytes, size), 0);
}

bool IsOver(const ToolStream& stream)
{
  pollfd look = {stream.ends->input.Get(), 0, 0};
  return poll(&look, 1, 0) == 1 && (look.revents & POLLHUP) != 0;
}

} // namespace

ToolStream OpenToolStream(const std::shared_ptr<PipeEnds>& ends)
{
  return {fopencookie(ends.get(), "r+", {ReadEnds, WriteEnds, nullptr, nullptr}), ends};
}

void CloseFinished(std::vector<ToolStream>* streams)
{
  const auto finished = std::partition(streams->begin(), streams->end(),
                                       [](const ToolStream& stream) { return !IsOver(stream); });
  std::for_each(finished, streams->end(), [](const ToolStream& stream) { std::fclose(stream.file); });
  streams->erase(finished, streams->end());
}

} // namespace Tavrik::Platform
