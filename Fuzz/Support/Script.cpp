#include "Support/Script.h"

#include <algorithm>

namespace Script
{

namespace
{

const std::size_t prefix = 4; // kind, argument, length
const int longest = 0xffff;

} // namespace

Steps Read(const std::uint8_t* data, std::size_t size)
{
  Steps steps;
  for (std::size_t offset = 0; size - offset >= prefix;)
  {
    const std::uint8_t* step = data + offset;
    const std::size_t claimed = step[2] | static_cast<std::size_t>(step[3]) << 8;
    const std::size_t length = std::min(claimed, size - offset - prefix);
    steps.append({step[0], step[1],
                  QByteArray(reinterpret_cast<const char*>(step + prefix), static_cast<int>(length))});
    offset += prefix + length;
  }
  return steps;
}

QByteArray Write(const Steps& steps)
{
  QByteArray data;
  for (const Step& step : steps)
  {
    const QByteArray bytes = step.bytes.left(longest);
    data += static_cast<char>(step.kind);
    data += static_cast<char>(step.argument);
    data += static_cast<char>(bytes.size() & 0xff);
    data += static_cast<char>(bytes.size() >> 8);
    data += bytes;
  }
  return data;
}

} // namespace Script
