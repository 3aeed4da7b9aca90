// The cost of a call and its reply over Qt Remote Objects, which needs no process between the two ends.
//
//   ObjectsBenchmark SECONDS
//
// Every figure is a line "name<TAB>value". Linux. Built only if the system has Qt Remote Objects.

#include "Echo.h"
#include "Measure.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRemoteObjectDynamicReplica>
#include <QRemoteObjectHost>
#include <QRemoteObjectNode>
#include <QRemoteObjectPendingCall>
#include <QTemporaryDir>

#include <memory>

namespace
{

int Answer(const QString& address)
{
  QRemoteObjectHost host{QUrl(address)};
  Measure::Echo echo;
  if (!host.enableRemoting(&echo, QStringLiteral("Echo")))
    return 1;
  Measure::SayReady();
  return QCoreApplication::exec();
}

int MeasureCalls(int seconds)
{
  const QTemporaryDir folder;
  const QString address = QStringLiteral("local:") + folder.filePath(QStringLiteral("objects"));
  Measure::Role answerer(QCoreApplication::applicationFilePath(), {QStringLiteral("answer"), address});
  if (answerer.Line() != "ready")
    return 1;
  QRemoteObjectNode node;
  node.connectToNode(QUrl(address));
  const std::unique_ptr<QRemoteObjectDynamicReplica> replica(node.acquireDynamic(QStringLiteral("Echo")));
  if (!replica->waitForSource(10000))
    return 1;
  const double used = Measure::ProcessorTime(answerer.Pid());
  int calls = 0;
  QElapsedTimer time;
  time.start();
  while (time.elapsed() < seconds * 1000)
  {
    QRemoteObjectPendingCall call;
    QMetaObject::invokeMethod(replica.get(), "Answer", Q_RETURN_ARG(QRemoteObjectPendingCall, call),
                              Q_ARG(QByteArray, Measure::payload));
    if (!call.waitForFinished(10000) || call.returnValue().toByteArray() != Measure::payload)
      return 1;
    ++calls;
  }
  Measure::Print("source us per call and reply",
                 (Measure::ProcessorTime(answerer.Pid()) - used) / 1000 / calls);
  Measure::Print("calls per s", calls / static_cast<double>(seconds));
  return 0;
}

} // namespace

int main(int argc, char** argv)
{
  QCoreApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments().mid(1);
  if (arguments.value(0) == QLatin1String("answer"))
    return Answer(arguments.value(1));
  const int seconds = arguments.value(0).toInt();
  if (seconds > 0)
    return MeasureCalls(seconds);
  std::fputs("usage: ObjectsBenchmark SECONDS\n", stderr);
  return 2;
}
