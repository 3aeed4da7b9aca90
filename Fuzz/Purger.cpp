// What the purger prints, line by line as its process hands it out, and the arithmetic of the pages.

#include <Common/RAMCleaner.cpp>

#include "Support/Require.h"

#include <QBuffer>

#include <fuzzer/FuzzedDataProvider.h>

#include <limits>
#include <optional>
#include <string>

namespace Tavrik::Cleaner
{
namespace
{

// Nothing where the line is none of progress.
std::optional<int> SecondParse(std::string line)
{
  line = line.substr(0, line.find('\0'));
  const std::string prefix = "PROGRESS: ";
  const std::string suffix = "%\n";
  if (line.compare(0, prefix.size(), prefix) != 0 || line.size() < suffix.size() ||
      line.compare(line.size() - suffix.size(), suffix.size(), suffix) != 0)
    return std::nullopt;
  if (line.size() < prefix.size() + suffix.size())
    return 0;
  std::string digits = line.substr(prefix.size(), line.size() - prefix.size() - suffix.size());
  bool isNegative = false;
  if (!digits.empty() && (digits.front() == '-' || digits.front() == '+'))
  {
    isNegative = digits.front() == '-';
    digits.erase(0, 1);
  }
  if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos)
    return 0;
  long long number = 0;
  for (const char digit : digits)
  {
    number = number * 10 + (digit - '0');
    if (number > std::numeric_limits<int>::max() + 1LL)
      return 0;
  }
  number = isNegative ? -number : number;
  return number > std::numeric_limits<int>::max() ? 0 : static_cast<int>(number);
}

void ReadLine(const QByteArray& line)
{
  const int untouched = 4711;
  int percentage = untouched;
  const bool isProgress = ParseProgress(line, &percentage);
  const std::optional<int> expected = SecondParse(line.toStdString());
  Require(isProgress == expected.has_value(), "a line is one of progress for both parsers");
  Require(percentage == expected.value_or(untouched), "the numbers are equal, and only progress has one");
}

} // namespace
} // namespace Tavrik::Cleaner

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  QByteArray output(reinterpret_cast<const char*>(data), static_cast<int>(size));
  QBuffer purger(&output);
  purger.open(QIODevice::ReadOnly);
  while (purger.canReadLine())
    Tavrik::Cleaner::ReadLine(purger.readLine());
  Tavrik::Cleaner::ReadLine(output);

  FuzzedDataProvider provider(data, size);
  const auto before = provider.ConsumeIntegral<quint32>();
  const auto after = provider.ConsumeIntegral<quint32>();
  const qint64 freed = Tavrik::Cleaner::FreedBytes(before, after);
  Require(freed == (after > before ? 4096LL * (static_cast<qint64>(after) - before) : 0),
          "what is freed is the pages that came, or nothing");
  return 0;
}
