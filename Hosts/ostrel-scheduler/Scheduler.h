#pragma once

#include "Correspondence.h"
#include "Notifier.h"
#include "Output.h"
#include "SchedulerOptions.h"
#include "Signals.h"
#include "State.h"
#include "Watches.h"

namespace Ostrel
{

/** Watches and tells, once or until a signal ends it. */
class Scheduler
{
public:
  Scheduler(const SchedulerOptions& options, Signals& signalSource);

  Scheduler(const Scheduler&) = delete;
  Scheduler& operator=(const Scheduler&) = delete;

  /** @return The exit code. */
  int Run();

private:
  int RunOnBus();
  int RunAlone();
  void StartLooking();
  void Look();
  void LookAtTrash();
  void Publish(const QVector<Notice>& notices);
  void PrintNotice(const Notice& notice);
  void EndLook();
  void EndWhenAllIsDone();
  void Leave(int code);

  SchedulerOptions options;
  Signals& signalSource;
  Output output;
  State state;
  Watches watches;
  Notifier notifier;
  std::unique_ptr<BusSession> session; // none without a bus
  std::shared_ptr<Correspondence> correspondence;
  QTimer firstLook;
  QTimer lookTimer;
  QTimer trashTimer;
  qint64 toldCount = 0;
  bool isLookOver = false;
};

} // namespace Ostrel
