// The cost of the session bus daemon, which also moves messages, and of a process that only runs two timers.
//
//   PeersBenchmark dbus SECONDS      a call and its reply through a daemon of its own
//   PeersBenchmark timers SECONDS [SOCKETS]    a process that runs two timers of 20 ms and nothing else, but
//                                              for sockets that it watches and on which nothing comes
//
// Every figure is a line "name<TAB>value". Linux.

#include "Echo.h"
#include "Measure.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QSocketNotifier>
#include <QThread>
#include <QTimer>

#include <memory>
#include <sys/socket.h>
#include <vector>

namespace
{

const QString service = QStringLiteral("tavrik.bench.Echo");

int AnswerOnDBus(const QString& address)
{
  QDBusConnection bus = QDBusConnection::connectToBus(address, QStringLiteral("bench"));
  Measure::Echo echo;
  if (!bus.registerObject(QStringLiteral("/"), &echo, QDBusConnection::ExportAllSlots) ||
      !bus.registerService(service))
    return 1;
  Measure::SayReady();
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
  Measure::SayReady();
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
  QElapsedTimer time;
  time.start();
  while (time.elapsed() < seconds * 1000)
  {
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, QStringLiteral("/"), service, QStringLiteral("Answer"));
    call << Measure::payload;
    const QDBusMessage reply = bus.call(call);
    if (reply.type() != QDBusMessage::ReplyMessage ||
        reply.arguments().value(0).toByteArray() != Measure::payload)
      return 1;
    ++calls;
  }
  Measure::Print("daemon us per call and reply",
                 (Measure::ProcessorTime(daemon.Pid()) - used) / 1000 / calls);
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
  if (role == QLatin1String("two-timers"))
    return RunTwoTimers(arguments.value(1).toInt());
  const int seconds = arguments.value(1).toInt();
  if (role == QLatin1String("dbus") && seconds > 0)
    return MeasureDBus(seconds);
  if (role == QLatin1String("timers") && seconds > 0)
    return MeasureTimers(seconds, arguments.value(2));
  std::fputs("usage: PeersBenchmark dbus SECONDS | timers SECONDS [SOCKETS]\n", stderr);
  return 2;
}
