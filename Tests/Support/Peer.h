#pragma once

#include "Support/Spin.h"

#include <QProcess>
#include <QString>
#include <QStringList>

#include <functional>
#include <string>
#include <vector>

/** A participant in a process of its own; killed when this goes. */
class Peer
{
public:
  /**
   * Starts it and returns at once.
   *
   * @param arguments What the participant is given beyond its flags.
   */
  Peer(const QString& context, const QString& name, int flags = 0, const QStringList& arguments = {});
  ~Peer();

  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  void Tell(const QString& line);
  void Say(const QString& recipient, const QByteArray& data);

  /** Whether the line has come, or comes in time. */
  bool Told(const QString& line, int limit = 20000);
  bool IsReady(int limit = 20000) { return Told(QStringLiteral("ready"), limit); }

  /** What it answers when asked for its members, joined by commas; empty when it does not answer. */
  QString Members(int limit = 20000);

  void Kill();                  ///< kill -9
  void Stop();                  ///< SIGSTOP
  void Continue();              ///< SIGCONT
  bool Quit(int limit = 20000); ///< Asks it to leave; whether it did, with success.

  bool IsRunning() const { return process.state() == QProcess::Running; }
  qint64 Pid() const { return process.processId(); }
  QStringList Of(const QString& beginning);

  QString name;
  QStringList lines; ///< What it has told so far; nothing while `heard` is set.
  /** Called with each line that it tells. */
  std::function<void(const QString&)> heard;
  QByteArray log; ///< What it has written to its standard error.
  QProcess process;

private:
  void Read();
};

/** Waits until each of @p peers tells exactly these members. */
bool AllSee(const std::vector<Peer*>& peers, const QString& members, int limit = 20000);
