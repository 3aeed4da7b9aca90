// A participant whose server is hostile, over real local sockets. The script is what happens: a step's kind
// is what is done.

#include <Common/Bazaar.cpp>

#include "Support/Bus.h"
#include "Support/FakeTime.h"
#include "Support/Require.h"
#include "Support/Script.h"
#include "Support/Wire.h"

#include <algorithm>
#include <set>

namespace Tavrik::Bazaar
{
namespace
{

const int mostSteps = 64;

enum Kind
{
  Send,
  HangUp,
  Tick,
  Say,
  Idle,
  Leave, // the server, with its file
  Return,
  Receive
};

struct Play;

// Does what the bytes it hears tell it to.
class Doer : public Listener
{
public:
  explicit Doer(Play* play) : play(play) {}

  void OnMessage(const QString& sender, const QByteArray& data) override;
  void OnResult(long long messageId, Error result, const QString& note) override;
  void OnMemberJoined(const QString& name) override;
  void OnMemberLeft(const QString& name) override;

private:
  Play* const play;
};

struct Play
{
  Play(const Script::Steps& script, int flags)
      : steps(script),
        time([this] { return ActWhileTheClientWaits(); }),
        door(std::make_unique<Bus::Door>(Wire::ServerName(context))),
        impl(std::make_shared<Context::Impl>(context, QStringLiteral("own"), flags))
  {
    Require(door->IsOpen(), "nobody else is there");
    impl->listeners.append(doer);
    impl->Init();
  }
  ~Play() { Go(); }

  Play(const Play&) = delete;
  Play& operator=(const Play&) = delete;

  void Run()
  {
    for (int count = 0; !steps.isEmpty() && count < mostSteps; ++count)
    {
      const Script::Step step = steps.takeFirst();
      if (!Act(step))
        ActForTheClient(step);
    }
    steps.clear();
    RequireMembers();
  }

  // As the destructor of a Context does.
  void Go()
  {
    if (isLeaving)
      return;
    isLeaving = true;
    impl->Leave();
    hasLeft = true;
  }

  void RequireMembers() const
  {
    // Without a server one that never serves forgets its members in silence; a listener may have dropped
    // itself.
    if (hasLeft || !doer || !isPlain || (impl->flags & NoServer) != 0)
      return;
    std::set<QString> members;
    for (const QByteArray& name : qAsConst(impl->members))
      members.insert(QString::fromUtf8(name));
    Require(members == told, "the members are those who joined and have not left");
  }

  FakeTime::Turn ActWhileTheClientWaits()
  {
    if (!steps.isEmpty())
      return Act(steps.takeFirst()) ? FakeTime::Acted : FakeTime::Passed;
    if (!peer && !door)
      return FakeTime::Passed;
    peer.reset();
    door.reset();
    return FakeTime::Acted;
  }

  bool Act(const Script::Step& step)
  {
    switch (step.kind % 8)
    {
    case Send:
      if (!peer && !Admit())
        return false;
      sent += step.bytes;
      peer->Send(step.bytes);
      return true;
    case HangUp:
      peer.reset();
      return true;
    case Leave:
      peer.reset();
      door.reset();
      return true;
    case Return:
      if (!door && !impl->server)
        door = std::make_unique<Bus::Door>(impl->serverName);
      return true;
    case Receive:
      if (peer)
        TakeWritten();
      return true;
    default:
      return false;
    }
  }

  bool Admit()
  {
    written.clear();
    peer = door ? door->Accept() : nullptr;
    return peer != nullptr;
  }

  void TakeWritten()
  {
    written += peer->Receive();
    Require(written.left(Wire::Signature().size()) == Wire::Signature().left(written.size()),
            "what a participant writes begins with the signature");
    for (Wire::Received packet = Wire::Take(&written); !packet.command.isEmpty();
         packet = Wire::Take(&written))
    {
      Require(packet.command == "MESSAGE", "a participant writes messages");
      Require(packet.context == impl->contextName, "a message is one of the participant's context");
      Require(packet.body == Wire::MessageBody(packet.Id(), packet.First(), packet.Second()),
              "a message is whole");
      Require(packet.Id() == 0 ? packet.Second() == "own" : said.count(packet.Id()) != 0,
              "an introduction names the participant, and all else was said");
    }
  }

  void ActForTheClient(const Script::Step& step)
  {
    if (isLeaving)
      return;
    if (step.kind % 8 == Say)
      SayTo(step.argument % 2 == 0 ? "own" : "hostile", step.bytes);
    else
      FakeTime::Pass(step.kind % 8 == Idle ? step.argument * 100 : 20);
    QCoreApplication::processEvents();
  }

  void SayTo(const QByteArray& recipient, const QByteArray& data) { said.insert(impl->Say(recipient, data)); }

  void Do(const QByteArray& command)
  {
    if (isLeaving)
      return;
    if (command.startsWith("say"))
      SayTo("own", command);
    else if (command.startsWith("wait"))
      impl->WaitMember("own", 100);
    else if (command.startsWith("spin"))
      QCoreApplication::processEvents();
    else if (command.startsWith("listen"))
      impl->listeners.append(doer);
    else if (command.startsWith("deaf"))
      doer.reset();
    else if (command.startsWith("leave"))
      Go();
  }

  const QString context = Bus::ContextName();
  Script::Steps steps;
  FakeTime time;
  std::unique_ptr<Bus::Peer> peer;
  std::unique_ptr<Bus::Door> door;
  QByteArray sent;
  QByteArray written;
  std::set<long long> said;
  std::set<QString> told; // as members
  bool isPlain = true;    // the names can be told from each other by their texts
  bool isLeaving = false;
  bool hasLeft = false;
  std::shared_ptr<Doer> doer = std::make_shared<Doer>(this);
  const std::shared_ptr<Context::Impl> impl;
};

void Doer::OnMessage(const QString&, const QByteArray& data)
{
  Require(!play->hasLeft, "who has left is not called");
  Require(play->impl->server || play->sent.contains(data), "nothing is heard that was not sent");
  play->Do(data);
}

void Doer::OnResult(long long messageId, Error result, const QString&)
{
  Require(!play->hasLeft, "who has left is not called");
  Require(result >= NoError && result <= ErrorNoRecipient, "a result is one of the five");
  if (result == ErrorNotSent && play->said.count(messageId) != 0)
    return;
  const QByteArray id = PackNumber(messageId);
  Require(play->impl->server || play->sent.contains(id) || play->sent.contains(id.left(4)),
          "a result that came was sent");
}

void Doer::OnMemberJoined(const QString& name)
{
  Require(!play->hasLeft, "who has left is not called");
  const QVector<QByteArray>& members = play->impl->members;
  Require(std::any_of(members.begin(), members.end(),
                      [&](const QByteArray& member) { return QString::fromUtf8(member) == name; }),
          "who joins is a member already");
  for (const QByteArray& member : members)
    play->isPlain = play->isPlain && QString::fromUtf8(member).toUtf8() == member;
  play->told.insert(name);
}

void Doer::OnMemberLeft(const QString& name)
{
  Require(!play->hasLeft, "who has left is not called");
  Require(!play->isPlain || !play->impl->members.contains(name.toUtf8()), "who leaves is no member any more");
  play->told.erase(name);
}

// The first server of a process is special; that is not the input's doing.
bool ServeOnce()
{
  const FakeTime time([] { return FakeTime::Passed; });
  const auto impl = std::make_shared<Context::Impl>(Bus::ContextName(), QStringLiteral("first"), 0);
  impl->Init();
  QCoreApplication::processEvents();
  impl->Leave();
  return true;
}

} // namespace
} // namespace Tavrik::Bazaar

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  using namespace Tavrik::Bazaar;
  Bus::SetUp();
  static const bool hasServed = ServeOnce();
  Script::Steps steps = Script::Read(data, size);
  if (!hasServed || steps.isEmpty())
    return 0;
  const int flags = steps.takeFirst().argument & (NoServer | HoldUntilMember);
  Play(steps, flags).Run();
  return 0;
}
