#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

/**
 * Runs the event loop until @p isDone holds.
 *
 * @param limit Milliseconds after which it gives up.
 * @return Whether @p isDone holds.
 */
template<typename Predicate>
bool SpinUntil(const Predicate& isDone, int limit = 20000)
{
  QTimer wakeUp;
  wakeUp.start(5);
  QElapsedTimer waiting;
  waiting.start();
  while (!isDone())
  {
    if (waiting.hasExpired(limit))
      return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  }
  return true;
}

/** Runs the event loop for @p duration milliseconds, to see that something does not happen. */
inline void SpinFor(int duration)
{
  SpinUntil([] { return false; }, duration);
}
