#include "BusSession.h"

#include "BackgroundWriter.h"
#include "BusPlace.h"
#include "ExitCodes.h"
#include "Output.h"
#include "Payload.h"
#include "SafeText.h"
#include "Texts.h"

#include <QCoreApplication>
#include <QRandomGenerator>

namespace Ostrel
{

using namespace std::chrono_literals;
using Tavrik::Bazaar::Context;
using Tavrik::Bazaar::Listener;

namespace
{

const QString scoutPrefix = QStringLiteral("ostrel-scout-");

// A living server answers within a few ticks of 20 ms; it may stand still for a while when it is busy.
constexpr std::chrono::milliseconds joinTime = 10s;

// How often a new server looks whether it is a member of its own bus.
constexpr std::chrono::milliseconds admissionInterval = 5ms;

// A participant that could not even listen, because its temporary folder is missing or full, never tries
// again by itself. Longer than a server in the making needs.
constexpr std::chrono::milliseconds patience = 5s;

// How often a participant that never serves looks whether it still has a bus.
constexpr std::chrono::milliseconds watchInterval = 200ms;

// The event loop has this long, three times over, to return after it was told to.
constexpr std::chrono::milliseconds stuckInterval = 500ms;
constexpr int stuckTicks = 3;

// The largest payload has to pass. How long joining takes, and how much is said at once, this program bounds
// itself.
void LimitBus()
{
  Tavrik::Bazaar::Limits limits;
  limits.admissionTime = std::chrono::milliseconds(5s).count();
  limits.packetSize = longestPayload + 1024LL * 1024;
  limits.unwrittenBytes = 2 * limits.packetSize;
  limits.clients = 256;
  limits.clientRate = 8LL * 1024 * 1024;
  Tavrik::Bazaar::SetLimits(limits);
}

QString GetProcessId()
{
  return QString::number(QCoreApplication::applicationPid());
}

QString InSeconds(std::chrono::milliseconds time)
{
  return QString::number(static_cast<double>(time.count()) / 1000);
}

} // namespace

QString GetScoutName()
{
  return scoutPrefix + GetProcessId() + QLatin1Char('-') +
         QString::number(QRandomGenerator::system()->generate(), 16);
}

bool IsScout(const QString& name)
{
  return name.startsWith(scoutPrefix);
}

/**
 * Ends the process when joining takes too long or a signal comes: the constructor of a Context runs the event
 * loop while it waits for the server's answer, so that this much can happen inside of it.
 */
class BusSession::JoinGuard
{
public:
  explicit JoinGuard(BusSession& session) : session(session)
  {
    session.signalSource.OnSignal([](int number) { BackgroundErrors::EndProcess(EndedBySignal + number); });
    const std::chrono::milliseconds limit = session.options.timeout.value_or(joinTime);
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    timer.callOnTimeout([this, limit] { GiveUp(limit); });
    if (!session.options.isPatient)
      timer.start(limit);
  }

  ~JoinGuard()
  {
    session.signalSource.OnSignal([&leaving = session](int number)
                                  { leaving.Leave(EndedBySignal + number); });
  }

  JoinGuard(const JoinGuard&) = delete;
  JoinGuard& operator=(const JoinGuard&) = delete;

private:
  void GiveUp(std::chrono::milliseconds limit) const
  {
    PrintError(
        Texts::tr("%1 could not join the bus %2 within %3 s: the name is taken or the server does not "
                  "answer")
            .arg(ShowName(session.clientName), ShowName(session.options.contextName), InSeconds(limit)));
    BackgroundErrors::EndProcess(NotJoined);
  }

  BusSession& session;
  QTimer timer;
};

BusSession::BusSession(const BusOptions& options, Signals& signalSource)
    : options(options),
      signalSource(signalSource),
      clientName(options.clientName),
      deadline(QDeadlineTimer::Forever)
{
  if (clientName.isEmpty())
    clientName = QStringLiteral("ostrel-") + GetProcessId();
  if (options.timeout)
    deadline.setRemainingTime(options.timeout->count());
  LimitBus();
}

BusSession::~BusSession()
{
  signalSource.OnSignal(nullptr);
}

int BusSession::Join(const std::shared_ptr<Listener>& listener)
{
  const int obstacle = ReportObstacle(options.contextName);
  if (obstacle != Done && !options.isPatient)
    return obstacle;
  const JoinGuard guard(*this);
  if (const int failure = LookFirst())
    return failure;
  if (options.isPatient)
    JoinPatiently(listener);
  else
    context = std::make_unique<Context>(options.contextName, clientName, listener, GetFlags());
  if (!options.noServer)
    WaitUntilAdmitted(QDeadlineTimer::Forever);
  if (!context->Members().isEmpty() || outcome)
    return Done;
  PrintError(Texts::tr("nobody serves the bus %1").arg(ShowName(options.contextName)));
  return NoBus;
}

// A server admits itself from the event loop and tells no listener. One that could not listen never does:
// then the guard ends the wait.
void BusSession::WaitUntilAdmitted(QDeadlineTimer limit)
{
  QTimer waker;
  waker.start(admissionInterval);
  while (context->Members().isEmpty() && !outcome && !limit.hasExpired())
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void BusSession::JoinPatiently(const std::shared_ptr<Listener>& listener)
{
  do
  {
    context.reset();
    context = std::make_unique<Context>(options.contextName, clientName, listener, GetFlags());
    WaitUntilAdmitted(QDeadlineTimer(patience));
  } while (context->Members().isEmpty() && !outcome);
}

// The bus leaves a participant whose name is taken waiting without a word, so ask the members beforehand. A
// name made of the process id needs no look.
int BusSession::LookFirst()
{
  if (options.clientName.isEmpty())
    return Done;
  const Context scout(options.contextName, GetScoutName(), nullptr, Tavrik::Bazaar::NoServer);
  if (!scout.HasMember(clientName))
    return Done;
  PrintError(Texts::tr("the name %1 is taken on the bus %2")
                 .arg(ShowName(clientName), ShowName(options.contextName)));
  return NameTaken;
}

int BusSession::GetFlags() const
{
  return (options.noServer ? Tavrik::Bazaar::NoServer : 0) |
         (options.holdUntilMember ? Tavrik::Bazaar::HoldUntilMember : 0);
}

int BusSession::Run()
{
  QTimer endTimer;
  endTimer.setSingleShot(true);
  endTimer.setTimerType(Qt::PreciseTimer);
  endTimer.callOnTimeout([this] { Leave(TimedOut); });
  if (!deadline.isForever())
    endTimer.start(static_cast<int>(deadline.remainingTime()));

  QTimer watchTimer;
  watchTimer.callOnTimeout([this] { WatchBus(); });
  if (options.noServer)
    watchTimer.start(watchInterval);

  if (!outcome)
    QCoreApplication::exec();
  stuckTimer.stop();
  context.reset();
  return outcome.value_or(Failed);
}

void BusSession::Leave(int code)
{
  if (outcome)
    return;
  outcome = code;
  EndWhenStuck(code);
  QCoreApplication::exit(code);
}

// Such a participant looks for another server once, and is told of nothing when there is none.
void BusSession::WatchBus()
{
  if (outcome || !context->Members().isEmpty())
    return;
  PrintError(Texts::tr("the server of the bus %1 has gone").arg(ShowName(options.contextName)));
  Leave(NoBus);
}

// A participant whose name was taken while it looked for a new server waits inside of a timer's call for
// ever: the event loop that was told to end never comes to it.
void BusSession::EndWhenStuck(int code)
{
  stuckTimer.callOnTimeout(
      [code, ticks = 0]() mutable
      {
        if (++ticks == stuckTicks)
          BackgroundErrors::EndProcess(code);
      });
  stuckTimer.start(stuckInterval);
}

} // namespace Ostrel
