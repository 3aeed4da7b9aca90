#pragma once

#include <QJsonObject>
#include <QList>
#include <QProcess>
#include <QStringList>

#include <functional>

/** A process of one of the programs, which does not outlive the test. */
class HostProcess : public QProcess
{
public:
  HostProcess(const QString& program, const QStringList& arguments);
  ~HostProcess() override;

  HostProcess& Begin();

  void Signal(int number);

  /** Hands @p lines to the standard input now; QProcess alone would wait for its event loop. */
  void Type(const QByteArray& lines);

  /** @return The exit code; -1 when it did not end by itself. */
  int Finish();

  /** All that has come so far. */
  QByteArray Out();
  QByteArray Err();

  bool WaitForLine(const QByteArray& line);
  bool WaitForError(const QByteArray& text);

  /** Standard output as one JSON object per line. */
  QList<QJsonObject> Events();

  /** @return The first event that has all of @p fields; an empty one when it does not come. */
  QJsonObject WaitForEvent(const QJsonObject& fields);

  /** Waits for @p fact, which looks at what this process prints; @p what is for the message if it never
   * comes. */
  bool WaitForOutput(const std::function<bool()>& fact, const QByteArray& what);

protected:
  void setupChildProcess() override;

private:
  QByteArray out;
  QByteArray err;
};
