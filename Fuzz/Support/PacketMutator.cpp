// Linked into the targets whose inputs are scripts of packets. A change of one byte would nearly always end
// at a checksum; this changes fields, and puts lengths and checksums right again, mostly.

#include "Support/Script.h"
#include "Support/Wire.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <random>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace
{

using Random = std::minstd_rand;

int Below(Random& random, int limit)
{
  return limit <= 1 ? 0 : static_cast<int>(random() % static_cast<unsigned>(limit));
}

const int largestField = 4096;

QByteArray Mutated(const QByteArray& bytes)
{
  QByteArray changed = bytes.left(largestField);
  const int size = changed.size();
  changed.resize(size + 64);
  changed.resize(static_cast<int>(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(changed.data()),
                                                   static_cast<std::size_t>(size),
                                                   static_cast<std::size_t>(changed.size()))));
  return changed;
}

const QByteArray& KnownCommand(Random& random)
{
  static const std::array<QByteArray, 4> commands = {"MESSAGE", "RESULT", "STATUS", "message"};
  return commands[random() % commands.size()];
}

const QByteArray& KnownName(Random& random)
{
  static const std::array<QByteArray, 10> names = {"A", "B",  "own",          "fuzz",     "hostile",
                                                   "",  "OK", "NO RECIPIENT", "NOT SENT", "NOT WRITTEN"};
  return names[random() % names.size()];
}

qint64 Number(const QByteArray& bytes, int offset)
{
  quint32 number = 0;
  for (int i = 3; i >= 0; --i)
    number = number << 8 | (offset + i < bytes.size() ? static_cast<quint8>(bytes.at(offset + i)) : 0u);
  return static_cast<qint32>(number);
}

// A length and its bytes; what is not there is left out.
QByteArray TakeCounted(const QByteArray& bytes, int* offset)
{
  const qint64 length =
      std::clamp<qint64>(Number(bytes, *offset), 0, std::max(bytes.size() - *offset - 4, 0));
  const QByteArray taken = bytes.mid(*offset + 4, static_cast<int>(length));
  *offset += 4 + taken.size();
  return taken;
}

struct Fields
{
  QByteArray context;
  QByteArray command;
  QByteArray body;
};

// The packet at the head of `stream`, as much as there is of it.
Fields TakeFields(QByteArray* stream)
{
  Fields fields;
  const int preamble = 29;
  const qint64 available = std::max(stream->size() - preamble, 0);
  const QByteArray header =
      stream->mid(preamble, static_cast<int>(std::clamp<qint64>(Number(*stream, 23), 0, available)));
  int offset = 0;
  fields.context = TakeCounted(header, &offset);
  fields.command = TakeCounted(header, &offset);
  const int rest = std::max(stream->size() - preamble - header.size(), 0);
  fields.body = stream->mid(preamble + header.size(),
                            static_cast<int>(std::clamp<qint64>(Number(header, offset), 0, rest)));
  stream->remove(0, preamble + header.size() + fields.body.size());
  return fields;
}

QByteArray MutatedConversation(const QByteArray& body, Random& random)
{
  int offset = 8;
  QByteArray id = body.left(8);
  QByteArray first = TakeCounted(body, &offset);
  QByteArray second = TakeCounted(body, &offset);
  switch (Below(random, 6))
  {
  case 0:
    id = Mutated(id).leftJustified(8, '\0', true);
    break;
  case 1:
    first = KnownName(random);
    break;
  case 2:
    second = KnownName(random);
    break;
  case 3:
    first = Mutated(first);
    break;
  default:
    second = Mutated(second);
  }
  return id + Wire::Counted(first) + Wire::Counted(second);
}

QByteArray MutatedList(const QByteArray& body, Random& random)
{
  QVector<QByteArray> names;
  for (int offset = 4; offset + 4 <= body.size() && names.size() < 64;)
    names.append(TakeCounted(body, &offset));
  const int at = Below(random, names.size());
  switch (Below(random, 4))
  {
  case 0:
    names.insert(at, KnownName(random));
    break;
  case 1:
    if (!names.isEmpty())
      names.removeAt(at);
    break;
  case 2:
    if (!names.isEmpty())
      names[at] = Mutated(names.at(at));
    break;
  default:
    std::shuffle(names.begin(), names.end(), random);
  }
  QByteArray list = Wire::Int(names.size() + (Below(random, 8) == 0 ? 1 : 0));
  for (const QByteArray& name : qAsConst(names))
    list += Wire::Counted(name);
  return list;
}

QByteArray Assembled(const Fields& fields, Random& random)
{
  const std::array<qint64, 6> sizes = {
      0, 3, -1, std::numeric_limits<qint32>::max(), fields.body.size() + 1, fields.body.size() - 1};
  const bool isHonest = Below(random, 8) != 0;
  const qint64 bodySize = isHonest ? fields.body.size() : sizes[random() % sizes.size()];
  const QByteArray header = Wire::Counted(fields.context) + Wire::Counted(fields.command) +
                            Wire::Int(bodySize) + Wire::Little(Wire::Crc(fields.body), 2);
  QByteArray packet = Wire::WithPreamble(Below(random, 32) == 0 ? Mutated(header) : header) + fields.body;
  if (Below(random, 32) == 0)
    packet.chop(Below(random, packet.size()));
  return packet;
}

QByteArray MutatedPacket(QByteArray* stream, Random& random)
{
  Fields fields = TakeFields(stream);
  switch (Below(random, 8))
  {
  case 0:
    fields.context = Mutated(fields.context);
    break;
  case 1:
    fields.command = KnownCommand(random);
    break;
  case 2:
    fields.command = Mutated(fields.command);
    break;
  case 3:
    fields.body = Mutated(fields.body);
    break;
  default:
    fields.body = fields.command == "STATUS" ? MutatedList(fields.body, random)
                                             : MutatedConversation(fields.body, random);
  }
  return Assembled(fields, random);
}

// Changes one of the packets in `bytes`; where there is none, one appears.
QByteArray MutatedPackets(const QByteArray& bytes, Random& random)
{
  QVector<int> beginnings;
  for (int at = bytes.indexOf(Wire::Signature()); at >= 0; at = bytes.indexOf(Wire::Signature(), at + 1))
    beginnings.append(at);
  if (beginnings.isEmpty())
    return bytes + Wire::Message("fuzz", Below(random, 3), KnownName(random), KnownName(random));
  const int beginning = beginnings.at(Below(random, beginnings.size()));
  QByteArray stream = bytes.mid(beginning);
  const QByteArray packet = MutatedPacket(&stream, random);
  return bytes.left(beginning) + packet + stream;
}

void MutateStep(Script::Steps* steps, int at, Random& random)
{
  Script::Step& step = (*steps)[at];
  switch (Below(random, 12))
  {
  case 0:
    step.kind = static_cast<quint8>(Below(random, 8));
    break;
  case 1:
    step.argument = static_cast<quint8>(Below(random, 5));
    break;
  case 2:
    step.bytes = Mutated(step.bytes);
    break;
  case 3: // it comes in two pieces
  {
    Script::Step rest = step;
    const int cut = Below(random, step.bytes.size());
    rest.bytes.remove(0, cut);
    step.bytes.truncate(cut);
    steps->insert(at + 1, rest);
    break;
  }
  case 4: // it comes with the next
    if (at + 1 < steps->size())
    {
      step.bytes += steps->at(at + 1).bytes;
      steps->removeAt(at + 1);
    }
    break;
  default:
    step.bytes = MutatedPackets(step.bytes, random);
  }
}

void MutateScript(Script::Steps* steps, Random& random)
{
  const int at = Below(random, steps->size());
  const int kind = Below(random, 16);
  if (steps->isEmpty() || kind == 0)
    steps->insert(at, {static_cast<quint8>(Below(random, 8)), static_cast<quint8>(Below(random, 5)), {}});
  else if (kind == 1)
    steps->insert(at, steps->at(Below(random, steps->size())));
  else if (kind == 2)
    steps->removeAt(at);
  else if (kind == 3)
    std::swap((*steps)[at], (*steps)[Below(random, steps->size())]);
  else
    MutateStep(steps, at, random);
}

std::size_t Store(const Script::Steps& steps, std::uint8_t* data, std::size_t maxSize)
{
  const QByteArray script = Script::Write(steps);
  const std::size_t size = std::min(static_cast<std::size_t>(script.size()), maxSize);
  if (size > 0)
    std::memcpy(data, script.constData(), size);
  return size;
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed)
{
  Random random(seed);
  if (Below(random, 16) == 0)
    return LLVMFuzzerMutate(data, size, maxSize);
  Script::Steps steps = Script::Read(data, size);
  for (int changes = 1 + Below(random, 3); changes > 0; --changes)
    MutateScript(&steps, random);
  return Store(steps, data, maxSize);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* data1, std::size_t size1,
                                                 const std::uint8_t* data2, std::size_t size2,
                                                 std::uint8_t* out, std::size_t maxOutSize, unsigned int seed)
{
  Random random(seed);
  const Script::Steps one = Script::Read(data1, size1);
  const Script::Steps other = Script::Read(data2, size2);
  const Script::Steps mixed =
      one.mid(0, Below(random, one.size() + 1)) + other.mid(Below(random, other.size() + 1));
  return Store(mixed, out, maxOutSize);
}
