#pragma once

#include <QByteArray>
#include <QObject>

#include <chrono>
#include <functional>
#include <memory>

/** @file Output that never blocks the event loop, however slowly it is read. */
namespace Ostrel
{

/**
 * Writes lines to a file descriptor from a thread of its own, in order.
 *
 * At most 32 MiB wait to be written, and one line that is longer; further lines are dropped until all that
 * waits is written. Then a line with the number of dropped ones takes their place.
 *
 * The descriptor is used as it is, because a change of its flags would affect other processes. A thread that
 * is blocked in a write is left behind and ends with the process.
 */
class BackgroundWriter
{
public:
  /** Makes the line, with its end, that stands for dropped ones. Called on the writing thread. */
  using Describe = std::function<QByteArray(long long count)>;

  /** Takes the errno of a failed write, once, from the event loop of the constructing thread. */
  using Fail = std::function<void(int error)>;

  BackgroundWriter(int file, Describe describe, Fail fail);
  ~BackgroundWriter();

  BackgroundWriter(const BackgroundWriter&) = delete;
  BackgroundWriter& operator=(const BackgroundWriter&) = delete;

  /** Queues @p line, which carries its end, or drops it. Never blocks. */
  void Write(const QByteArray& line);

  /**
   * Waits until all lines are written, a write has failed or @p limit is over.
   *
   * @return 0, the errno of the failed write, or ETIMEDOUT.
   */
  int Flush(std::chrono::milliseconds limit);

private:
  struct Queue;

  static void Run(const std::shared_ptr<Queue>& queue);

  std::shared_ptr<Queue> queue;
};

/**
 * Puts a pipe in the place of standard error and copies what comes out of it to the former standard error
 * from a thread, while this object lives. Neither the log nor an error message then blocks; what does not fit
 * in the pipe (64 KiB on Linux) is lost.
 */
class BackgroundErrors
{
public:
  BackgroundErrors();

  /** Restores standard error after at most 2 s of waiting for what is in the pipe. */
  ~BackgroundErrors();

  BackgroundErrors(const BackgroundErrors&) = delete;
  BackgroundErrors& operator=(const BackgroundErrors&) = delete;

  /** Returns whether standard error is a pipe that refuses what does not fit in. */
  static bool IsActive();

  /** Ends the process with @p code after at most 2 s of waiting for what is in the pipe, if there is one. */
  [[noreturn]] static void EndProcess(int code);

private:
  static void Drain();
};

} // namespace Ostrel
