#pragma once

#include <QProcess>
#include <QQueue>
#include <QTimer>

#include <functional>

namespace Ostrel
{

/**
 * Shows texts on the desktop, one after the other, by a tool of the system. Where there is none, or it fails
 * or hangs, the log tells and nothing else happens. What waits is dropped when this is destroyed.
 */
class Notifier
{
public:
  Notifier();
  ~Notifier();

  Notifier(const Notifier&) = delete;
  Notifier& operator=(const Notifier&) = delete;

  /** Shows @p text soon; returns at once. */
  void Show(const QString& text);

  bool IsIdle() const { return waiting.isEmpty() && process.state() == QProcess::NotRunning; }

  /** What to call each time it has become idle. */
  void OnIdle(std::function<void()> handler) { idleHandler = std::move(handler); }

private:
  void StartNext();
  void End(bool isShown);

  // Qt 5.15 takes a refused clone() of a plain QProcess for a process with the id -1, which is everybody when
  // it is killed; a derived one is made by fork().
  class Tool : public QProcess
  {
  };

  Tool process;
  QTimer limit;
  QTimer next;
  QQueue<QString> waiting;
  std::function<void()> idleHandler;
};

} // namespace Ostrel
