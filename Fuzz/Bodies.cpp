// The three bodies: whatever the bytes, they are taken apart as a second parser does, and what is put
// together from the input's fields comes back.

#include <Common/Bazaar.cpp>

#include "Support/Require.h"
#include "Support/Wire.h"

#include <QBuffer>

#include <fuzzer/FuzzedDataProvider.h>

#include <optional>

namespace Tavrik::Bazaar
{
namespace
{

// Takes from the front; once something was not there whole, nothing more comes.
class Front
{
public:
  explicit Front(const QByteArray& bytes) : rest(bytes.begin(), bytes.end()) {}

  std::optional<std::string> Take(std::int64_t size)
  {
    if (isBroken || size < 0 || size > static_cast<std::int64_t>(rest.size()))
    {
      isBroken = true;
      return std::nullopt;
    }
    const std::string taken = rest.substr(0, static_cast<std::size_t>(size));
    rest.erase(0, taken.size());
    return taken;
  }
  std::optional<std::int32_t> TakeInt()
  {
    const std::optional<std::string> bytes = Take(4);
    if (!bytes)
      return std::nullopt;
    std::uint32_t number = 0;
    for (std::size_t i = 4; i-- > 0;)
      number = number * 256 + static_cast<std::uint8_t>((*bytes)[i]);
    return static_cast<std::int32_t>(number);
  }
  std::optional<std::string> TakeCounted()
  {
    const std::optional<std::int32_t> length = TakeInt();
    return length ? Take(*length) : std::nullopt;
  }

private:
  std::string rest;
  bool isBroken = false;
};

void TakeConversationApart(const QByteArray& body)
{
  const BodyMessage message = ParseBodyMessage(body);
  std::uint64_t id = 0;
  for (int i = 7; i >= 0; --i)
    id = id * 256 + (i < body.size() ? static_cast<std::uint8_t>(body.at(i)) : 0);
  Require(message.id == static_cast<std::int64_t>(id), "the ids are equal");

  Front front(body);
  front.Take(8);
  const std::string first = front.TakeCounted().value_or("");
  const std::string second = front.TakeCounted().value_or("");
  Require(message.first.toStdString() == first, "the first fields are equal");
  Require(message.second.toStdString() == second, "the second fields are equal");
}

void TakeListApart(const QByteArray& body)
{
  const QVector<QByteArray> members = ParseBodyStatus(body).members;
  Front front(body);
  const std::int32_t count = front.TakeInt().value_or(0);
  std::vector<std::string> expected;
  for (std::int32_t i = 0; i < count; ++i)
  {
    const std::optional<std::string> name = front.TakeCounted();
    if (!name)
    {
      expected.clear();
      break;
    }
    expected.push_back(*name);
  }
  Require(static_cast<std::size_t>(members.size()) == expected.size(), "the lists are equally long");
  for (int i = 0; i < members.size(); ++i)
    Require(members.at(i).toStdString() == expected[static_cast<std::size_t>(i)], "the names are equal");
}

QByteArray TakeBytes(FuzzedDataProvider* provider)
{
  return QByteArray::fromStdString(provider->ConsumeRandomLengthString(512));
}

void PutTogether(FuzzedDataProvider* provider)
{
  const QByteArray context = TakeBytes(provider);
  const long long id = provider->ConsumeIntegral<long long>();
  const QByteArray first = TakeBytes(provider);
  const QByteArray second = TakeBytes(provider);
  QList<QByteArray> names;
  while (provider->remaining_bytes() > 0 && names.size() < 32)
    names.append(TakeBytes(provider));

  const QByteArray body = CreateBodyMessage(id, first, second);
  Require(body == Wire::MessageBody(id, first, second), "both encoders make the same message");
  const BodyMessage message = ParseBodyMessage(body);
  Require(message.id == id && message.first == first && message.second == second, "a message comes back");
  const QByteArray packet = CreateMessagePacket(context, id, first, second);
  Require(packet == Wire::Message(context, id, first, second), "both encoders make the same packet");

  const QByteArray list = CreateBodyStatus(names);
  Require(ParseBodyStatus(list).members == QVector<QByteArray>::fromList(names), "a list comes back");
  Require(CreatePacket(context, commandStatus, list) ==
              Wire::Status(context, QVector<QByteArray>::fromList(names)),
          "both encoders make the same list");

  QByteArray bytes = CreatePacket(context, first, second) + names.join();
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::ReadOnly);
  const Packet read = ReadPacket(&buffer);
  Require(read.contextName == context && read.command == first, "a header comes back");
  Require(read.body == (first.isEmpty() || second.size() < 4 ? QByteArray() : second), "a body comes back");
}

void LookUpWord(const QByteArray& word)
{
  const Context::Impl impl(QString(), QString(), 0);
  const std::string text(word.constData()); // to the first zero byte
  const Error error = text == "OK"             ? NoError
                      : text == "NOT SENT"     ? ErrorNotSent
                      : text == "NOT WRITTEN"  ? ErrorNotWritten
                      : text == "NO RECIPIENT" ? ErrorNoRecipient
                                               : ErrorUnknown;
  Require(impl.ConvertErrorCode(word) == error, "a word is the one of the table, or unknown");
  Require(impl.ConvertErrorCode(GetErrorString(error).toLatin1()) == error, "a result comes back");
  if (error != ErrorUnknown)
    Require(GetErrorString(error).toStdString() == text, "a word comes back");
}

} // namespace
} // namespace Tavrik::Bazaar

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
  Tavrik::Bazaar::TakeConversationApart(bytes);
  Tavrik::Bazaar::TakeListApart(bytes);
  Tavrik::Bazaar::LookUpWord(bytes);
  Tavrik::Bazaar::LookUpWord(Tavrik::Bazaar::ParseBodyMessage(bytes).first);
  FuzzedDataProvider provider(data, size);
  Tavrik::Bazaar::PutTogether(&provider);
  return 0;
}
