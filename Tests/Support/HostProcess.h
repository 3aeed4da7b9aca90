#pragma once

#include <QJsonObject>
#include <QProcess>

#include <functional>

constexpr int longWait = 30000; // ms; an upper bound for what takes well below a second

/** A process of one of our programs, which does not outlive the test. */
class HostProcess : public QProcess
{
public:
  HostProcess(const QString& program, const QStringList& arguments);
  ~HostProcess() override;

  void Begin();

  void Signal(int number);

  /** Hands @p lines to the standard input now; QProcess alone would wait for its event loop. */
  void Type(const QByteArray& lines);

  /** @return The exit code; -1 when it did not end by itself. */
  int Finish();

  QByteArray Out(); ///< All that it has printed so far.
  QByteArray Err(); ///< The same of standard error.

  bool WaitForLine(const QByteArray& line);
  bool WaitForError(const QByteArray& text);

  /** The JSON objects that it has printed so far, one per line. */
  QList<QJsonObject> Events();

  /** @return The first event that has all of @p fields; an empty one when it does not come. */
  QJsonObject WaitForEvent(const QJsonObject& fields);

protected:
  void setupChildProcess() override;

private:
  bool WaitForOutput(const std::function<bool()>& fact, const QByteArray& what);

  QByteArray out;
  QByteArray err;
};

/** What became of a process. */
struct Outcome
{
  int code;
  QByteArray out;
  QByteArray err;
};

/** Runs @p program to its end. */
Outcome RunHost(const QString& program, const QStringList& arguments, const QByteArray& input = {});
