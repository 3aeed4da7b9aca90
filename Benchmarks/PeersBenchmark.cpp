// What others that move messages, or only tick, cost: the session bus daemon, Qt Remote Objects, two timers.
//
//   PeersBenchmark dbus SECONDS      a call and its reply through a daemon of its own
//   PeersBenchmark objects SECONDS   the same by Qt Remote Objects, where there is no process between
//   PeersBenchmark timers SECONDS [SOCKETS]    a process that runs two timers of 20 ms and nothing else, but
//                                              for sockets that it watches and on which nothing comes
//
// Every figure is a line "name<TAB>value". Linux.

#include "Measure.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QRemoteObjectDynamicReplica>
#include <QRemoteObjectHost>
#include <QRemoteObjectNode>
#include <QRemoteObjectPendingCall>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <memory>
#include <sys/socket.h>
#include <vector>

namespace
{

const QByteArray payload(64, 'x');
const QString service = QStringLiteral("tavrik.bench.Echo");

void SayReady()
{
  std::puts("ready");
  std::fflush(stdout);
}

class Echo : public QObject
{
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "tavrik.bench.Echo")

public slots:
  QByteArray Answer(const QByteArray& data) { return data; }
};

int AnswerOnDBus(const QString& address)
{
  QDBusConnection bus = QDBusConnection::connectToBus(address, QStringLiteral("bench"));
  Echo echo;
  if (!bus.registerObject(QStringLiteral("/"), &echo, QDBusConnection::ExportAllSlots) ||
      !bus.registerService(service))
    return 1;
  SayReady();
  return QCoreApplication::exec();
}

int AnswerAsRemoteObject(const QString& address)
{
  QRemoteObjectHost host{QUrl(address)};
  Echo echo;
  if (!host.enableRemoting(&echo, QStringLiteral("Echo")))
    return 1;
  SayReady();
  return QCoreApplication::exec();
}

int RunTwoTimers(int sockets)
{
  std::vector<std::unique_ptr<QSocketNotifier>> watched;
  for (int i = 0; i < sockets; ++i)
  {
    int ends[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
      return 1;
    watched.push_back(std::make_unique<QSocketNotifier>(ends[0], QSocketNotifier::Read));
  }
  QTimer first;
  QTimer second;
  first.start(20);
  second.start(20);
  SayReady();
  return QCoreApplication::exec();
}

int MeasureDBus(int seconds)
{
  Measure::Role daemon(
      QStringLiteral("dbus-daemon"),
      {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address")});
  const QString address = QString::fromUtf8(daemon.Line());
  Measure::Role answerer(QCoreApplication::applicationFilePath(), {QStringLiteral("answer-dbus"), address});
  if (address.isEmpty() || answerer.Line() != "ready")
    return 1;
  QDBusConnection bus = QDBusConnection::connectToBus(address, QStringLiteral("caller"));
  const double used = Measure::ProcessorTime(daemon.Pid());
  int calls = 0;
  for (QElapsedTimer time =
           []
       {
         QElapsedTimer t;
         t.start();
         return t;
       }();
       time.elapsed() < seconds * 1000;)
  {
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, QStringLiteral("/"), service, QStringLiteral("Answer"));
    call << payload;
    const QDBusMessage reply = bus.call(call);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().value(0).toByteArray() != payload)
      return 1;
    ++calls;
  }
  Measure::Print("daemon us per call and reply",
                 (Measure::ProcessorTime(daemon.Pid()) - used) / 1000 / calls);
  Measure::Print("calls per s", calls / static_cast<double>(seconds));
  return 0;
}

int MeasureRemoteObjects(int seconds)
{
  const QTemporaryDir folder;
  const QString address = QStringLiteral("local:") + folder.filePath(QStringLiteral("objects"));
  Measure::Role answerer(QCoreApplication::applicationFilePath(),
                         {QStringLiteral("answer-objects"), address});
  if (answerer.Line() != "ready")
    return 1;
  QRemoteObjectNode node;
  node.connectToNode(QUrl(address));
  const std::unique_ptr<QRemoteObjectDynamicReplica> replica(node.acquireDynamic(QStringLiteral("Echo")));
  if (!replica->waitForSource(10000))
    return 1;
  const double used = Measure::ProcessorTime(answerer.Pid());
  int calls = 0;
  for (QElapsedTimer time =
           []
       {
         QElapsedTimer t;
         t.start();
         return t;
       }();
       time.elapsed() < seconds * 1000;)
  {
    QRemoteObjectPendingCall call;
    QMetaObject::invokeMethod(replica.get(), "Answer", Q_RETURN_ARG(QRemoteObjectPendingCall, call),
                              Q_ARG(QByteArray, payload));
    if (!call.waitForFinished(10000) || call.returnValue().toByteArray() != payload)
      return 1;
    ++calls;
  }
  Measure::Print("source us per call and reply",
                 (Measure::ProcessorTime(answerer.Pid()) - used) / 1000 / calls);
  Measure::Print("calls per s", calls / static_cast<double>(seconds));
  return 0;
}

int MeasureTimers(int seconds, const QString& sockets)
{
  Measure::Role timers(QCoreApplication::applicationFilePath(), {QStringLiteral("two-timers"), sockets});
  if (timers.Line() != "ready")
    return 1;
  QThread::msleep(500);
  const double time = Measure::ProcessorTime(timers.Pid());
  const double sleeps = Measure::Sleeps(timers.Pid());
  QThread::sleep(static_cast<unsigned long>(seconds));
  Measure::Print("ms per s", (Measure::ProcessorTime(timers.Pid()) - time) / 1e6 / seconds);
  Measure::Print("wake-ups per s", (Measure::Sleeps(timers.Pid()) - sleeps) / seconds);
  return 0;
}

} // namespace

int main(int argc, char** argv)
{
  QCoreApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments().mid(1);
  const QString role = arguments.value(0);
  if (role == QLatin1String("answer-dbus"))
    return AnswerOnDBus(arguments.value(1));
  if (role == QLatin1String("answer-objects"))
    return AnswerAsRemoteObject(arguments.value(1));
  if (role == QLatin1String("two-timers"))
    return RunTwoTimers(arguments.value(1).toInt());
  const int seconds = arguments.value(1).toInt();
  if (role == QLatin1String("dbus") && seconds > 0)
    return MeasureDBus(seconds);
  if (role == QLatin1String("objects") && seconds > 0)
    return MeasureRemoteObjects(seconds);
  if (role == QLatin1String("timers") && seconds > 0)
    return MeasureTimers(seconds, arguments.value(2));
  std::fputs("usage: PeersBenchmark dbus|objects SECONDS | timers SECONDS [SOCKETS]\n", stderr);
  return 2;
}

#include "PeersBenchmark.moc"
