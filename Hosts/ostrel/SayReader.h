#pragma once

#include <QByteArray>
#include <QSocketNotifier>
#include <QTimer>

#include <functional>

namespace Ostrel
{

/**
 * Reads lines "RECIPIENT TEXT" from standard input as they come and hands each on. A line without a space is
 * an empty message; lines that cannot be said are reported and skipped.
 *
 * Reading pauses while many messages have no result yet, because the bus carries fewer messages than a pipe.
 */
class SayReader
{
public:
  using SayHandler = std::function<void(const QString& recipient, const QByteArray& data)>;

  explicit SayReader(SayHandler say);

  SayReader(const SayReader&) = delete;
  SayReader& operator=(const SayReader&) = delete;

  /** A message has got its result. */
  void NoteResult();

private:
  void ReadSome();
  void TakeLines();
  void TakeLine(const QByteArray& line);
  void End();
  void Update();

  SayHandler say;
  QByteArray buffer;
  int unanswered = 0;
  bool hasEnded = false;
  QTimer patience;
  QSocketNotifier notifier;
};

} // namespace Ostrel
