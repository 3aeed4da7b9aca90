#pragma once

#include <Common/Platform/Pipe.h>

#include <QByteArray>
#include <QDeadlineTimer>
#include <QString>
#include <QStringList>

#include <sys/types.h>

namespace Tavrik::Platform
{

/**
 * A tool that runs as an ordinary child of this process, and what it writes to its standard output. Its
 * standard error goes to /dev/null.
 *
 * QProcess is not used, because it installs a handler of SIGCHLD, by which each child that ends interrupts
 * the host's blocking calls. No handler is needed here: the end is seen by looking.
 */
class ChildProcess
{
public:
  ChildProcess() = default;
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /** Kills the tool and does not wait for its end. */
  ~ChildProcess();

  /** Starts @p program, looked up in PATH unless its name holds a "/". Called once. @return Whether it runs.
   */
  bool Start(const QString& program, const QStringList& arguments, const QDeadlineTimer& deadline);

  /** Ends the tool's standard input, which is open and empty until then. */
  void CloseInput() { input.Close(); }

  void Kill();
  bool IsRunning();

  /** Blocks until the tool has ended, and takes what it writes meanwhile. @return False at the deadline. */
  bool WaitForEnd(const QDeadlineTimer& deadline);

  /** Takes what the tool has written by now, so that it does not wait for its pipe to be read. */
  void Receive();

  void Discard()
  {
    Receive();
    received.clear();
  }

  /** @return The next line with its line feed, removed from what was received; empty when none is complete.
   */
  QByteArray TakeLine();

  /** @return All that was received. */
  const QByteArray& GetOutput() const { return received; }

private:
  pid_t pid = -1; // -1: there is none, or it has ended
  Descriptor input;
  Descriptor output;
  QByteArray received;
};

} // namespace Tavrik::Platform
