#pragma once

#include "Signals.h"

#include <Common/Bazaar.h>

#include <QDeadlineTimer>
#include <QTimer>

#include <chrono>
#include <optional>

namespace Ostrel
{

/** What every verb of the bus takes from the command line. */
struct BusOptions
{
  QString contextName = QStringLiteral("ostrel");
  QString clientName; ///< Empty: a name that no other process has.
  bool holdUntilMember = false;
  bool noServer = false;
  bool json = false;
  bool isPatient = false; ///< Join waits for a bus for ever; timers of the caller run meanwhile.
  std::optional<std::chrono::milliseconds> timeout; ///< Counted from the start of the program.
};

/** @return A name for a participant that only looks; no other process has it. */
QString GetScoutName();

/** @return Whether @p name belongs to a participant that only looks who is there and goes again. */
bool IsScout(const QString& name);

/**
 * One stay on the bus: joins without waiting for ever, runs until told to leave, leaves cleanly.
 *
 * Order of use: the constructor, Join, Run. Leave may be called from anywhere in between, a listener's call
 * included.
 */
class BusSession
{
public:
  BusSession(const BusOptions& options, Signals& signalSource);
  ~BusSession();

  BusSession(const BusSession&) = delete;
  BusSession& operator=(const BusSession&) = delete;

  /**
   * Joins the bus, after a look whether a chosen name is free.
   *
   * A bus that does not let this participant in would hold it for ever; then the process is ended from here,
   * with the exit code NotJoined, and so is a signal that comes meanwhile. Nothing needs tidying up at that
   * point. A patient participant is ended by a signal alone; it reports what keeps it from joining once, and
   * waits.
   *
   * @return Done, NoBus, NameTaken or what ReportObstacle() returns, after the reason has been printed.
   */
  int Join(const std::shared_ptr<Tavrik::Bazaar::Listener>& listener);

  /** @return Whether there is a bus to talk to. */
  bool HasBus() const { return context != nullptr; }

  /** The bus; only after a Join that returned Done and before Run returns. */
  Tavrik::Bazaar::Context& Bus() { return *context; }

  const QString& ClientName() const { return clientName; }

  /**
   * Runs the event loop until Leave, a signal, the end of the time, or, for a participant that never serves,
   * of the bus; then leaves the bus.
   *
   * @return What Leave was given, EndedBySignal + number, TimedOut or NoBus.
   */
  int Run();

  /** Ends Run, with @p code as its result; the first call decides. */
  void Leave(int code);

private:
  class JoinGuard;

  int LookFirst();
  void WaitUntilAdmitted(QDeadlineTimer limit);
  void JoinPatiently(const std::shared_ptr<Tavrik::Bazaar::Listener>& listener);
  int GetFlags() const;
  void WatchBus();
  void EndWhenStuck(int code);

  BusOptions options;
  Signals& signalSource;
  QString clientName;
  QDeadlineTimer deadline;
  QTimer stuckTimer;
  std::optional<int> outcome;
  std::unique_ptr<Tavrik::Bazaar::Context> context;
};

} // namespace Ostrel
