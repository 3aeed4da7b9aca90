// A serving participant, two honest clients and four hostile ones, over real local sockets. The script is
// what happens: a step's kind is what is done, its argument which hostile peer does it.

#include <Common/Bazaar.cpp>

#include "Support/Bus.h"
#include "Support/FakeTime.h"
#include "Support/Recorder.h"
#include "Support/Require.h"
#include "Support/Script.h"
#include "Support/Wire.h"

#include <array>
#include <optional>

namespace Tavrik::Bazaar
{
namespace
{

const int mostSteps = 64;

enum Kind
{
  Send,
  Close,
  Serve, // one tick of the server, and what the event loop has
  HonestlySay,
  OwnSay,
  Idle,
  Receive,
  EndSending
};

// Keeps to the protocol, and so may rely on it.
class Honest
{
public:
  Honest(const QString& context, const QByteArray& name)
      : peer(Bus::Peer::Connect(Wire::ServerName(context))), context(context.toUtf8()), name(name)
  {
    peer->Send(Wire::Introduction(this->context, name));
  }

  void Say(const QByteArray& recipient, const QByteArray& data)
  {
    said.append({recipient, data});
    peer->Send(Wire::Message(context, said.size(), recipient, data));
  }

  void Receive()
  {
    stream += peer->Receive();
    for (Wire::Received packet = Wire::Take(&stream); !packet.command.isEmpty(); packet = Wire::Take(&stream))
    {
      Require(packet.context == context, "the server writes its own context's name");
      if (packet.command == "STATUS")
        TakeList(packet.Names());
      else if (packet.command == "RESULT")
        TakeResult(packet);
      else
        TakeMessage(packet);
    }
  }

  bool HasAllResults() const { return results == said.size(); }
  QList<QByteArray> From(const QByteArray& sender) const
  {
    QList<QByteArray> texts;
    for (const auto& message : heard)
      if (message.first == sender)
        texts.append(message.second);
    return texts;
  }
  QList<QByteArray> To(const QByteArray& recipient) const
  {
    QList<QByteArray> texts;
    for (const auto& message : said)
      if (message.first == recipient)
        texts.append(message.second);
    return texts;
  }
  bool HasRest() const { return !stream.isEmpty(); }

private:
  void TakeList(const QVector<QByteArray>& names)
  {
    Require(std::is_sorted(names.begin(), names.end()), "a list of members is sorted");
    Require(std::adjacent_find(names.begin(), names.end()) == names.end(), "a list names nobody twice");
    Require(names.contains(name), "a list that one gets names oneself");
    Require(names.contains("own"), "the server is a member itself");
  }
  void TakeResult(const Wire::Received& packet)
  {
    Require(packet.Id() == ++results, "the results come in the order of the messages");
    Require(packet.First() == "OK" && packet.Second().isEmpty(), "what is said to a member is delivered");
  }
  void TakeMessage(const Wire::Received& packet)
  {
    Require(packet.command == "MESSAGE", "the server writes three commands");
    Require(packet.Id() == 0, "what is passed on has no id");
    Require(packet.body == Wire::MessageBody(0, packet.First(), packet.Second()), "a message is whole");
    heard.append({packet.First(), packet.Second()});
  }

  std::unique_ptr<Bus::Peer> peer;
  const QByteArray context;
  const QByteArray name;
  QByteArray stream;
  QList<QPair<QByteArray, QByteArray>> said;
  QList<QPair<QByteArray, QByteArray>> heard;
  qint64 results = 0;
};

class Participant
{
public:
  Participant(const QString& context, const std::shared_ptr<Listener>& listener)
      : impl(std::make_shared<Context::Impl>(context, QStringLiteral("own"), 0))
  {
    impl->listeners.append(listener);
    impl->Init();
  }
  ~Participant() { impl->Leave(); }

  Participant(const Participant&) = delete;
  Participant& operator=(const Participant&) = delete;

  Context::Impl* operator->() const { return impl.get(); }

private:
  const std::shared_ptr<Context::Impl> impl;
};

class Play
{
public:
  explicit Play(const Script::Steps& script) : time([this] { return ActWhileTheServerWaits(); })
  {
    Require(own->server != nullptr, "who finds nobody serves");
    anna.emplace(context, "A");
    ben.emplace(context, "B");
    for (int ticks = 0; ticks < 10 && own->clients.size() < 3; ++ticks)
      RunServer();
    Require(own->clients.size() == 3, "who keeps to the protocol is admitted");
    steps = script;
  }

  void Run()
  {
    for (int count = 0; !steps.isEmpty() && count < mostSteps; ++count)
    {
      const Script::Step step = steps.takeFirst();
      if (!Act(step))
        ActForTheServer(step);
      ReceiveHonestly();
    }
    steps.clear();
    End();
  }

private:
  void RunServer()
  {
    QCoreApplication::processEvents();
    own->CheckClients();
    ReceiveHonestly();
  }

  void ReceiveHonestly()
  {
    anna->Receive();
    ben->Receive();
  }

  FakeTime::Turn ActWhileTheServerWaits()
  {
    if (!steps.isEmpty())
      return Act(steps.takeFirst()) ? FakeTime::Acted : FakeTime::Passed;
    return HangUp() ? FakeTime::Acted : FakeTime::Passed;
  }

  // Whether there was anybody left.
  bool HangUp()
  {
    bool isAnybodyThere = false;
    for (std::unique_ptr<Bus::Peer>& peer : hostile)
    {
      isAnybodyThere = isAnybodyThere || peer;
      peer.reset();
    }
    return isAnybodyThere;
  }

  // What needs nobody else. False for the rest.
  bool Act(const Script::Step& step)
  {
    std::unique_ptr<Bus::Peer>& peer = hostile[step.argument % hostile.size()];
    switch (step.kind % 8)
    {
    case Send:
      if (!peer)
        peer = Bus::Peer::Connect(Wire::ServerName(context));
      peer->Send(step.bytes);
      return true;
    case Close:
      peer.reset();
      return true;
    case HonestlySay:
      anna->Say(step.argument % 2 == 0 ? "B" : "own", step.bytes);
      return true;
    case Receive:
      if (peer)
        peer->Receive();
      return true;
    case EndSending:
      if (peer)
        peer->EndSending();
      return true;
    default:
      return false;
    }
  }

  void ActForTheServer(const Script::Step& step)
  {
    if (step.kind % 8 == Idle)
      FakeTime::Pass(step.argument * 100);
    if (step.kind % 8 == OwnSay)
    {
      own->Say("B", step.bytes);
      ownWords.append(step.bytes);
    }
    RunServer();
  }

  bool HasEverybodyEverything() const
  {
    return anna->HasAllResults() && ben->From("A") == anna->To("B") && ben->From("own") == ownWords &&
           CountHeard("message A ") == anna->To("own").size() && CountHeard("result ") == ownWords.size() &&
           own->clients.size() == 3;
  }

  int CountHeard(const char* beginning) const { return static_cast<int>(recorder->Of(beginning).size()); }

  void End()
  {
    HangUp();
    for (int ticks = 0; ticks < 1000 && !HasEverybodyEverything(); ++ticks)
    {
      FakeTime::Pass(20);
      RunServer();
    }
    Require(own->server != nullptr, "the server serves on");
    Require(own->clients.keys() == QList<QByteArray>({"A", "B", "own"}), "the honest stay, and they alone");
    Require(own->intakes.size() <= 3, "nothing is kept of those who have gone");
    Require(anna->HasAllResults(), "every honest message has its result");
    Require(ben->From("A") == anna->To("B"),
            "what one honest client says the other hears, once and in order");
    Require(ben->From("own") == ownWords, "what the server's participant says is heard");
    Require(CountHeard("message A ") == anna->To("own").size(),
            "the server's participant hears what is said to it");
    for (const std::string& result : recorder->Of("result "))
      Require(result.find("OK") != std::string::npos, "what the server's participant says is delivered");
    Require(!anna->HasRest() && !ben->HasRest(), "the server writes whole packets");
  }

  const QString context = Bus::ContextName();
  Script::Steps steps;
  std::array<std::unique_ptr<Bus::Peer>, 4> hostile;
  FakeTime time;
  const std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
  QList<QByteArray> ownWords;
  const Participant own{context, recorder};
  std::optional<Honest> anna;
  std::optional<Honest> ben;
};

} // namespace
} // namespace Tavrik::Bazaar

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  Bus::SetUp();
  // The first server of a process is special; that is not the input's doing.
  static const bool isFirstOver = (Tavrik::Bazaar::Play({}).Run(), true);
  Tavrik::Bazaar::Play(isFirstOver ? Script::Read(data, size) : Script::Steps()).Run();
  return 0;
}
