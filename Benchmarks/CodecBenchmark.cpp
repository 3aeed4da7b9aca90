// Packets, made and read back, beside a bare checksum of the same bytes. A packet's body is summed once when
// it is made and once when it is read, so both of it stand beside two checksums.

#include <Common/Bazaar/PacketReader.h>

#include <benchmark/benchmark.h>

#include <QBuffer>

namespace Tavrik::Bazaar::Details
{
namespace
{

QByteArray MakeBody(const benchmark::State& state)
{
  QByteArray body(static_cast<int>(state.range(0)), '\0');
  for (int i = 0; i < body.size(); ++i)
    body[i] = static_cast<char>(i * 31 + i / 7);
  return body;
}

void TwoChecksums(benchmark::State& state)
{
  const QByteArray body = MakeBody(state);
  for (auto _ : state)
  {
    benchmark::DoNotOptimize(qChecksum(body.constData(), static_cast<uint>(body.size())));
    benchmark::DoNotOptimize(qChecksum(body.constData(), static_cast<uint>(body.size())));
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * body.size());
}

// The least that memory of one's own for a packet and for what is read of it takes.
void TwoChecksumsOfCopies(benchmark::State& state)
{
  const QByteArray body = MakeBody(state);
  for (auto _ : state)
  {
    const QByteArray packet(body.constData(), body.size());
    benchmark::DoNotOptimize(qChecksum(packet.constData(), static_cast<uint>(packet.size())));
    const QByteArray read(packet.constData(), packet.size());
    benchmark::DoNotOptimize(qChecksum(read.constData(), static_cast<uint>(read.size())));
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * body.size());
}

void MakeAndReadBack(benchmark::State& state)
{
  const QByteArray body = MakeBody(state);
  for (auto _ : state)
  {
    QByteArray packet = CreatePacket("bench", commandMessage, body);
    QBuffer device(&packet);
    device.open(QIODevice::ReadOnly);
    if (ReadPacket(&device).body.size() != body.size())
      state.SkipWithError("wrong answer");
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * body.size());
}

BENCHMARK(TwoChecksums)->Arg(64)->Arg(4096)->Arg(1 << 20);
BENCHMARK(TwoChecksumsOfCopies)->Arg(64)->Arg(4096)->Arg(1 << 20);
BENCHMARK(MakeAndReadBack)->Arg(64)->Arg(4096)->Arg(1 << 20);

} // namespace
} // namespace Tavrik::Bazaar::Details

BENCHMARK_MAIN();
