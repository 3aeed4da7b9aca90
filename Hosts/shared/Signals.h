#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace Ostrel
{

/**
 * Turns SIGINT, SIGTERM and SIGHUP into a call on the event loop, and ignores SIGPIPE.
 *
 * A second signal ends the process at once, whatever it is doing. A signal that was ignored when the process
 * started (nohup, a job in the background) stays ignored. One object per process, on the main thread, after
 * the application object.
 */
class Signals
{
public:
  Signals();
  ~Signals();

  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

  /** @return The number of the signal that has come; 0 for none. Any thread. */
  static int Caught();

  /** From now on the first signal ends the process at once: for work that leaves nothing to tidy up. */
  static void EndAtOnce();

  /** What to call, with the signal's number; at once when the signal has come already. */
  void OnSignal(std::function<void(int)> handler);

private:
  void Notify();

  std::unique_ptr<QSocketNotifier> notifier;
  std::function<void(int)> handler;
};

} // namespace Ostrel
