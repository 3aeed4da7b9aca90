#include "Support/Peer.h"

#include <QElapsedTimer>

#include <csignal>

Peer::Peer(const QString& context, const QString& name, int flags, const QStringList& arguments) : name(name)
{
  QObject::connect(&process, &QProcess::readyReadStandardOutput, &process, [this] { Read(); });
  QObject::connect(&process, &QProcess::readyReadStandardError, &process,
                   [this] { log += process.readAllStandardError(); });
  process.start(QStringLiteral(TAVRIK_PARTICIPANT),
                QStringList{context, name, QString::number(flags)} + arguments);
  process.waitForStarted();
}

Peer::~Peer()
{
  process.disconnect();
  if (process.state() != QProcess::NotRunning)
  {
    process.kill();
    process.waitForFinished();
  }
}

void Peer::Read()
{
  while (process.canReadLine())
  {
    const QString line = QString::fromUtf8(process.readLine()).chopped(1);
    if (heard)
      heard(line);
    else
      lines.append(line);
  }
}

void Peer::Tell(const QString& line)
{
  process.write(line.toUtf8() + '\n');
  process.waitForBytesWritten();
}

void Peer::Say(const QString& recipient, const QByteArray& data)
{
  Tell(QStringLiteral("say %1 %2").arg(recipient, QString::fromLatin1(data.toBase64())));
}

bool Peer::Told(const QString& line, int limit)
{
  return SpinUntil([&] { return lines.contains(line); }, limit);
}

QString Peer::Members(int limit)
{
  const QString beginning = QStringLiteral("members ");
  const int before = Of(beginning).size();
  Tell(QStringLiteral("members"));
  if (!SpinUntil([&] { return Of(beginning).size() > before; }, limit))
    return {};
  return Of(beginning).last().mid(beginning.size());
}

void Peer::Kill()
{
  process.kill();
  process.waitForFinished();
}

void Peer::Stop()
{
  kill(static_cast<pid_t>(Pid()), SIGSTOP);
}

void Peer::Continue()
{
  kill(static_cast<pid_t>(Pid()), SIGCONT);
}

bool Peer::Quit(int limit)
{
  Tell(QStringLiteral("quit"));
  return SpinUntil([&] { return process.state() == QProcess::NotRunning; }, limit) &&
         process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

QStringList Peer::Of(const QString& beginning)
{
  QStringList found;
  for (const QString& line : qAsConst(lines))
    if (line.startsWith(beginning))
      found.append(line);
  return found;
}

bool AllSee(const std::vector<Peer*>& peers, const QString& members, int limit)
{
  QElapsedTimer waiting;
  waiting.start();
  for (Peer* peer : peers)
    while (peer->Members(limit) != members)
    {
      if (waiting.hasExpired(limit))
        return false;
      SpinFor(10);
    }
  return true;
}
