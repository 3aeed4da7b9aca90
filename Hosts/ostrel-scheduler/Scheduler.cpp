#include "Scheduler.h"

#include "ExitCodes.h"
#include "SafeText.h"
#include "Texts.h"

#include <QCoreApplication>

namespace Ostrel
{
namespace
{

using namespace std::chrono_literals;

// Between two slices of adding up the trash the disk and the processor are others'.
constexpr std::chrono::milliseconds slicePause = 5ms;

// Who finds another scheduler on the bus has told nothing yet; who finds no bus does not wait for one.
constexpr std::chrono::milliseconds joinHeadStart = 1s;

QJsonObject MakeEvent(const char* event, QJsonObject fields)
{
  fields.insert(QStringLiteral("event"), QString::fromLatin1(event));
  return fields;
}

} // namespace

Scheduler::Scheduler(const SchedulerOptions& options, Signals& signalSource)
    : options(options),
      signalSource(signalSource),
      output(options.json ? Format::Json : Format::Human,
             options.once ? Writing::Blocking : Writing::InBackground),
      state(options.stateFile),
      watches(this->options, state)
{
  firstLook.setSingleShot(true);
  firstLook.callOnTimeout([this] { Look(); });
  lookTimer.callOnTimeout([this] { Look(); });
  trashTimer.callOnTimeout([this] { LookAtTrash(); });
  output.OnClosed([this](int code) { Leave(code); });
}

int Scheduler::Run()
{
  if (!options.dryRun)
    if (const int failure = state.Lock())
      return failure;
  state.Load(options.dryRun);
  return output.Finish(options.once || options.dryRun ? RunAlone() : RunOnBus());
}

int Scheduler::RunOnBus()
{
  BusOptions bus;
  bus.contextName = options.contextName;
  bus.clientName = schedulerName;
  bus.isPatient = true;
  session = std::make_unique<BusSession>(bus, signalSource);
  correspondence = std::make_shared<Correspondence>(*session, state, watches);
  QTimer headStart;
  headStart.setSingleShot(true);
  headStart.callOnTimeout(
      [this]
      {
        if (!lookTimer.isActive())
          StartLooking();
      });
  headStart.start(joinHeadStart);
  if (const int failure = session->Join(correspondence))
    return failure;
  if (!lookTimer.isActive())
    StartLooking();
  if (output.IsJson())
    output.Print({}, MakeEvent("joined", {{QStringLiteral("context"), options.contextName},
                                          {QStringLiteral("pid"), QCoreApplication::applicationPid()}}));
  return session->Run();
}

int Scheduler::RunAlone()
{
  signalSource.OnSignal([this](int number) { Leave(EndedBySignal + number); });
  notifier.OnIdle([this] { EndWhenAllIsDone(); });
  StartLooking();
  const int code = QCoreApplication::exec();
  signalSource.OnSignal(nullptr);
  return code;
}

void Scheduler::StartLooking()
{
  firstLook.start(0);
  if (!options.once)
    lookTimer.start(options.interval);
}

void Scheduler::Look()
{
  Publish(watches.Look());
  if (!options.dryRun)
    watches.MoveCalendar();
  if (!watches.IsLooking())
    EndLook();
  else if (!trashTimer.isActive())
    trashTimer.start(slicePause);
}

void Scheduler::LookAtTrash()
{
  QVector<Notice> notices;
  if (!watches.LookAtTrash(notices))
    return;
  trashTimer.stop();
  Publish(notices);
  EndLook();
}

// Kept first, told then: who is killed in between tells those who ask later.
void Scheduler::Publish(const QVector<Notice>& notices)
{
  state.Save();
  for (const Notice& notice : notices)
  {
    PrintNotice(notice);
    if (options.dryRun)
      continue;
    notifier.Show(Describe(notice));
    if (correspondence)
      correspondence->Tell(notice);
  }
  toldCount += notices.size();
}

void Scheduler::PrintNotice(const Notice& notice)
{
  QJsonObject json{{QStringLiteral("notice"), ToJson(notice)}};
  if (options.dryRun)
    output.Print(Texts::tr("would tell: %1").arg(Describe(notice)).toUtf8(), MakeEvent("would-tell", json));
  else
    output.Print(Describe(notice).toUtf8(), MakeEvent("notice", json));
}

void Scheduler::EndLook()
{
  if (output.IsJson())
    output.Print({}, MakeEvent("looked", ToJson(watches.LastFindings())));
  else if (options.once && toldCount == 0)
    PrintError(Texts::tr("there is nothing to tell"));
  isLookOver = true;
  EndWhenAllIsDone();
}

void Scheduler::EndWhenAllIsDone()
{
  if (options.once && isLookOver && notifier.IsIdle())
    Leave(Done);
}

void Scheduler::Leave(int code)
{
  firstLook.stop();
  lookTimer.stop();
  trashTimer.stop();
  if (session)
    session->Leave(code);
  else
    QCoreApplication::exit(code);
}

} // namespace Ostrel
