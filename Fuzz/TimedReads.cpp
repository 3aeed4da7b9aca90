// The two timed reads over a device that brings its bytes as the input says. Nobody sleeps: usleep() is this
// file's own.

#include <Common/IOUtils.h>

#include "Support/LogCapture.h"
#include "Support/Require.h"

#include <QIODevice>
#include <QList>

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <vector>

namespace
{

std::vector<unsigned int> sleeps;

const int longestPiece = 4096;

// Brings a piece per wait. An empty piece is a wait that runs out; a polled wait may also be followed by a
// read that brings nothing.
class Device : public QIODevice
{
public:
  Device(const QList<QByteArray>& pieces, bool isPolled) : later(pieces), isPolled(isPolled)
  {
    open(ReadOnly | Unbuffered);
  }

  bool isSequential() const override { return true; }
  qint64 bytesAvailable() const override { return here.size() + claimed; }
  bool waitForReadyRead(int timeout) override
  {
    waits.push_back(timeout);
    isOver = later.isEmpty() || later.first().isEmpty();
    if (!later.isEmpty())
      here += later.takeFirst();
    return !isOver;
  }

  QList<QByteArray> later;
  QByteArray taken;
  std::vector<int> waits;
  std::vector<int> reads; // what each brought
  qint64 claimed = 0;     // bytes that it says it has, beyond those that it has
  bool isOver = false;

protected:
  qint64 readData(char* data, qint64 size) override
  {
    if (size == 0)
      return 0;
    if (isPolled && here.isEmpty() && !later.isEmpty())
      here = later.takeFirst();
    const int count = static_cast<int>(std::min<qint64>(size, here.size()));
    std::copy_n(here.constData(), count, data);
    taken += here.left(count);
    here.remove(0, count);
    claimed = 0;
    reads.push_back(count);
    return count;
  }
  qint64 writeData(const char*, qint64) override { return -1; }

private:
  const bool isPolled;
  QByteArray here;
};

long long TakeSize(FuzzedDataProvider* provider)
{
  const std::array<long long, 8> odd = {0,
                                        -1,
                                        65536,
                                        65537,
                                        std::numeric_limits<int>::max(),
                                        std::numeric_limits<int>::max() + 1LL,
                                        std::numeric_limits<long long>::max(),
                                        std::numeric_limits<long long>::min()};
  if (provider->ConsumeBool())
    return provider->PickValueInArray(odd);
  return provider->ConsumeIntegralInRange<long long>(0, 9000);
}

QList<QByteArray> TakePieces(FuzzedDataProvider* provider)
{
  static const QByteArray text = QByteArray("0123456789abcdefghijklmnopqrstuvwxyz-").repeated(256);
  QList<QByteArray> pieces;
  while (provider->remaining_bytes() > 0 && pieces.size() < 64)
  {
    const int size = provider->ConsumeIntegralInRange<int>(0, longestPiece);
    pieces.append(provider->ConsumeBool() ? text.mid(pieces.size(), size) : QByteArray());
  }
  return pieces;
}

void RequireResult(const Device& device, const QByteArray& result, long long size, const LogCapture& log,
                   const char* suffix)
{
  Require(result == device.taken, "the result is what was taken from the device");
  Require(result.size() <= std::max(size, 0LL), "no more is read than was asked for");
  std::vector<std::string> expected;
  if (result.size() != size)
    expected.push_back("Could't read " + std::to_string(size) + " bytes. Have read only " +
                       std::to_string(result.size()) + suffix);
  Require(log.Errors() == expected, "a shortfall, and only that, is one line");
}

void ReadWaiting(FuzzedDataProvider* provider)
{
  const long long size = TakeSize(provider);
  const int timeout = provider->ConsumeIntegral<int>();
  const qint64 claimed = provider->ConsumeBool() ? provider->ConsumeIntegralInRange<qint64>(1, 1000) : 0;
  Device device(TakePieces(provider), false);
  device.claimed = claimed;
  const bool isSilent = device.later.isEmpty() || device.later.first().isEmpty();
  const LogCapture log;
  const QByteArray result = Tavrik::ReadDataWithTimeout(&device, size, timeout);

  RequireResult(device, result, size, log, " (TIMEOUT)");
  for (const int wait : device.waits)
    Require(wait == timeout, "every wait has the time that was given");
  if (result.size() < size)
    Require(device.isOver, "it gives up only when a wait has run out");
  if (claimed == 0)
    Require(!device.waits.empty(), "it waits when nothing is there");
  if (isSilent && claimed == 0)
    Require(device.waits.size() == 1 && result.isEmpty(), "a silent device is waited for once");
}

void ReadPolling(FuzzedDataProvider* provider)
{
  const long long size = TakeSize(provider);
  const unsigned int delay = provider->ConsumeIntegral<unsigned int>();
  const int attempts = provider->ConsumeIntegralInRange<int>(-1, 6);
  Device device(TakePieces(provider), true);
  sleeps.clear();
  const LogCapture log;
  const QByteArray result = Tavrik::ReadData(&device, size, delay, attempts);

  RequireResult(device, result, size, log, "");
  for (const int wait : device.waits)
    Require(wait == 0, "polling looks without waiting");
  Require(device.waits.size() <= device.reads.size(), "polling looks once before a read");
  for (const unsigned int sleep : sleeps)
    Require(sleep == delay, "every sleep is as long as was asked for");
  if (size <= 0 || attempts < 1)
  {
    Require(device.reads.empty() && sleeps.empty(), "nothing to do takes no time");
    return;
  }
  int idle = 0;
  for (std::size_t i = 0; i < device.reads.size(); ++i)
  {
    Require(idle < attempts, "it stops once that many reads have brought nothing");
    idle = device.reads[i] == 0 ? idle + 1 : 0;
  }
  const bool isWhole = result.size() == size;
  Require(isWhole != (idle == attempts), "it goes on until it has all or has given up");
  Require(sleeps.size() == device.reads.size() - (isWhole ? 1 : 0), "it sleeps after every incomplete read");
}

} // namespace

extern "C" int usleep(unsigned int microseconds)
{
  sleeps.push_back(microseconds);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  FuzzedDataProvider provider(data, size);
  if (provider.ConsumeBool())
    ReadPolling(&provider);
  else
    ReadWaiting(&provider);
  return 0;
}
