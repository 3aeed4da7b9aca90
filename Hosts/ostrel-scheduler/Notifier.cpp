#include "Notifier.h"

#include "Places.h"

#include <glog/logging.h>

#include <QStandardPaths>

namespace Ostrel
{
namespace
{

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds longestRun = 5s;
constexpr int mostWaiting = 20;

} // namespace

Notifier::Notifier()
{
  process.setStandardInputFile(QProcess::nullDevice());
  process.setStandardOutputFile(QProcess::nullDevice());
  process.setStandardErrorFile(QProcess::nullDevice());
  limit.setSingleShot(true);
  limit.callOnTimeout([this] { process.kill(); });
  next.setSingleShot(true);
  next.callOnTimeout(
      [this]
      {
        if (process.state() == QProcess::NotRunning)
          StartNext();
      });
  QObject::connect(&process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), &limit,
                   [this](int code, QProcess::ExitStatus status)
                   { End(status == QProcess::NormalExit && code == 0); });
  QObject::connect(&process, &QProcess::errorOccurred, &limit,
                   [this](QProcess::ProcessError error)
                   {
                     if (error == QProcess::FailedToStart)
                       End(false);
                   });
}

Notifier::~Notifier()
{
  process.disconnect();
  process.kill();
}

void Notifier::Show(const QString& text)
{
  if (waiting.size() >= mostWaiting)
  {
    LOG(WARNING) << "Too many notices for the desktop";
    return;
  }
  waiting.enqueue(text);
  if (process.state() == QProcess::NotRunning)
    StartNext();
}

void Notifier::StartNext()
{
  while (!waiting.isEmpty())
  {
    const NotifierCommand command = MakeNotifierCommand(QStringLiteral("Tavrik Ostrel"), waiting.dequeue());
    const QString tool = QStandardPaths::findExecutable(command.tool);
    if (tool.isEmpty())
    {
      LOG(INFO) << "There is no " << command.tool.toStdString();
      continue;
    }
    limit.start(longestRun);
    process.start(tool, command.arguments, QIODevice::NotOpen);
    return;
  }
  if (idleHandler)
    idleHandler();
}

// Not from within the signal: the process is not ready for another start yet.
void Notifier::End(bool isShown)
{
  limit.stop();
  if (!isShown)
    LOG(WARNING) << "A notice could not be shown on the desktop";
  next.start(0);
}

} // namespace Ostrel
