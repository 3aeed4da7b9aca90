// The bus between real processes: delivery times, routed messages, idle costs.
//
//   BusBenchmark latency PARTICIPANTS RUNS    from Say to OnMessage over three processes
//   BusBenchmark routing SENDERS SECONDS      messages a second of each sender, the server's time for each
//   BusBenchmark idle MEMBERS SECONDS         what a participant and the server of so many cost
//
// Every figure is a line "name<TAB>value". All processes read the same monotonic clock. Linux.

#include "Measure.h"

#include <Common/Bazaar.h>

#include <QCoreApplication>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <glog/logging.h>

#include <chrono>
#include <memory>
#include <vector>

using namespace Tavrik;

namespace
{

const int messagesPerRun = 10;
const int payloadSize = 64;

double Now()
{
  return static_cast<double>(std::chrono::steady_clock::now().time_since_epoch().count()) / 1e6;
}

void SeedPauses()
{
  QT_WARNING_PUSH
  QT_WARNING_DISABLE_DEPRECATED
  qsrand(QRandomGenerator::system()->generate());
  QT_WARNING_POP
}

class Quiet : public Bazaar::Listener
{
public:
  void OnMessage(const QString&, const QByteArray&) override {}
  void OnResult(long long, Bazaar::Error, const QString&) override {}
  void OnMemberJoined(const QString&) override {}
  void OnMemberLeft(const QString&) override {}
};

// Roles ----------------------------------------------------------------------------------------------------

// Prints the time of each message's way, in ms.
class Hearer : public Quiet
{
public:
  void OnMessage(const QString&, const QByteArray& data) override
  {
    std::printf("%.3f\n", Now() - data.toDouble());
    std::fflush(stdout);
  }
};

// Members that do nothing, or that hear and drop.
int Idle(const QStringList& names)
{
  const auto listener = std::make_shared<Quiet>();
  std::vector<std::unique_ptr<Bazaar::Context>> contexts;
  for (const QString& name : names)
    contexts.push_back(std::make_unique<Bazaar::Context>(QStringLiteral("bench"), name, listener, 0));
  std::puts("ready");
  std::fflush(stdout);
  return QCoreApplication::exec();
}

int Hear()
{
  const auto listener = std::make_shared<Hearer>();
  Bazaar::Context context(QStringLiteral("bench"), QStringLiteral("hearer"), listener, 0);
  std::puts("ready");
  std::fflush(stdout);
  return QCoreApplication::exec();
}

// Says one message at random moments, so that it meets the ticks at any phase.
int Say()
{
  const auto listener = std::make_shared<Quiet>();
  Bazaar::Context context(QStringLiteral("bench"), QStringLiteral("sayer"), listener, 0);
  QTimer timer;
  timer.setTimerType(Qt::PreciseTimer);
  timer.setSingleShot(true);
  int said = 0;
  QObject::connect(&timer, &QTimer::timeout,
                   [&]
                   {
                     context.Say(QStringLiteral("hearer"), QByteArray::number(Now(), 'f', 4));
                     if (++said < messagesPerRun)
                       timer.start(static_cast<int>(40 + QRandomGenerator::global()->bounded(40)));
                   });
  timer.start(500);
  return QCoreApplication::exec();
}

// Has always some messages queued, counts the results.
class Flooder : public Quiet
{
public:
  explicit Flooder(int seconds) : seconds(seconds) {}

  void OnResult(long long, Bazaar::Error error, const QString&) override
  {
    if (error != Bazaar::Error::NoError)
      ++failed;
    else if (++done == 1)
      begin = Now();
    else if (end == 0 && Now() - begin >= seconds * 1000)
    {
      end = Now();
      std::printf("%.4f %d\n", (done - 1) / ((end - begin) / 1000), failed);
      std::fflush(stdout);
    }
  }

private:
  int seconds;
  int done = 0;
  int failed = 0;
  double begin = 0;
  double end = 0;
};

int Flood(const QString& number, int seconds)
{
  const auto listener = std::make_shared<Flooder>(seconds);
  Bazaar::Context context(QStringLiteral("bench"), QStringLiteral("sender-") + number, listener, 0);
  const QString recipient = QStringLiteral("recipient-") + number;
  const QByteArray payload(payloadSize, 'x');
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout,
                   [&]
                   {
                     for (int i = 0; i < 60; ++i)
                       context.Say(recipient, payload);
                   });
  timer.start(1000);
  std::puts("ready");
  std::fflush(stdout);
  return QCoreApplication::exec();
}

// Measurements ---------------------------------------------------------------------------------------------

using Roles = std::vector<std::unique_ptr<Measure::Role>>;

Measure::Role& Start(Roles* roles, const QStringList& arguments)
{
  roles->push_back(std::make_unique<Measure::Role>(QCoreApplication::applicationFilePath(), arguments));
  return *roles->back();
}

bool StartReady(Roles* roles, const QStringList& arguments)
{
  return Start(roles, arguments).Line() == "ready";
}

int MeasureLatency(int participants, int runs)
{
  std::vector<double> times;
  std::vector<double> means;
  for (int run = 0; run < runs; ++run)
  {
    const QTemporaryDir folder;
    qputenv("TMPDIR", folder.path().toLocal8Bit());
    Roles roles;
    if (!StartReady(&roles, {QStringLiteral("idle"), QStringLiteral("server")}))
      return 1;
    for (int other = 3; other < participants; ++other)
      if (!StartReady(&roles, {QStringLiteral("idle"), QStringLiteral("other-%1").arg(other)}))
        return 1;
    if (!StartReady(&roles, {QStringLiteral("hear")}))
      return 1;
    Measure::Role& hearer = *roles.back();
    Start(&roles, {QStringLiteral("say")});
    std::vector<double> ofThisRun;
    for (int i = 0; i < messagesPerRun; ++i)
    {
      const QByteArray line = hearer.Line();
      if (line.isEmpty())
        return 1;
      ofThisRun.push_back(line.toDouble());
    }
    means.push_back(Measure::Mean(ofThisRun));
    times.insert(times.end(), ofThisRun.begin(), ofThisRun.end());
  }
  Measure::Print("mean", Measure::Mean(times));
  Measure::Print("median", Measure::Quantile(times, 0.5));
  Measure::Print("p99", Measure::Quantile(times, 0.99));
  Measure::Print("worst", Measure::Quantile(times, 1));
  Measure::Print("least mean of a run", Measure::Quantile(means, 0));
  Measure::Print("largest mean of a run", Measure::Quantile(means, 1));
  return 0;
}

int MeasureRouting(int senders, int seconds)
{
  const QTemporaryDir folder;
  qputenv("TMPDIR", folder.path().toLocal8Bit());
  Roles roles;
  if (!StartReady(&roles, {QStringLiteral("idle"), QStringLiteral("server")}))
    return 1;
  const qint64 server = roles.front()->Pid();
  QStringList recipients = {QStringLiteral("idle")};
  for (int i = 0; i < senders; ++i)
    recipients << QStringLiteral("recipient-%1").arg(i);
  if (!StartReady(&roles, recipients))
    return 1;
  const std::size_t first = roles.size();
  for (int i = 0; i < senders; ++i)
    if (!StartReady(&roles, {QStringLiteral("flood"), QString::number(i), QString::number(seconds)}))
      return 1;

  QThread::msleep(1500);
  const double begin = Now();
  const double used = Measure::ProcessorTime(server);
  std::vector<double> rates;
  int failed = 0;
  for (std::size_t i = first; i < roles.size(); ++i)
  {
    const QList<QByteArray> answer = roles[i]->Line().split(' ');
    if (answer.size() != 2)
      return 1;
    rates.push_back(answer[0].toDouble());
    failed += answer[1].toInt();
  }
  const double time = Measure::ProcessorTime(server) - used;
  const double routed = Measure::Mean(rates) * senders * (Now() - begin) / 1000;
  Measure::Print("least rate", Measure::Quantile(rates, 0));
  Measure::Print("mean rate", Measure::Mean(rates));
  Measure::Print("largest rate", Measure::Quantile(rates, 1));
  Measure::Print("failed", failed);
  Measure::Print("server us per message", time / 1000 / routed);
  return 0;
}

void PrintCosts(const char* cost, const char* wakeUps, qint64 pid, int seconds)
{
  const double time = Measure::ProcessorTime(pid);
  const double sleeps = Measure::Sleeps(pid);
  QThread::sleep(static_cast<unsigned long>(seconds));
  Measure::Print(cost, (Measure::ProcessorTime(pid) - time) / 1e6 / seconds);
  Measure::Print(wakeUps, (Measure::Sleeps(pid) - sleeps) / seconds);
}

int MeasureIdle(int members, int seconds)
{
  const QTemporaryDir folder;
  qputenv("TMPDIR", folder.path().toLocal8Bit());
  Roles roles;
  for (int i = 0; i < members; ++i)
    if (!StartReady(&roles, {QStringLiteral("idle"), QStringLiteral("member-%1").arg(i)}))
      return 1;
  QThread::msleep(1000);
  PrintCosts("server ms per s", "server wake-ups per s", roles.front()->Pid(), seconds);
  if (members > 1)
    PrintCosts("participant ms per s", "participant wake-ups per s", roles.back()->Pid(), seconds);
  return 0;
}

} // namespace

int main(int argc, char** argv)
{
  google::InitGoogleLogging(argv[0]);
  QCoreApplication application(argc, argv);
  SeedPauses();
  const QStringList arguments = QCoreApplication::arguments().mid(1);
  const QString role = arguments.value(0);
  const int first = arguments.value(1).toInt();
  const int second = arguments.value(2).toInt();
  if (role == QLatin1String("idle") && first == 0 && arguments.size() > 1)
    return Idle(arguments.mid(1));
  if (role == QLatin1String("hear"))
    return Hear();
  if (role == QLatin1String("say"))
    return Say();
  if (role == QLatin1String("flood"))
    return Flood(arguments.value(1), second);
  if (role == QLatin1String("latency") && first > 2 && second > 0)
    return MeasureLatency(first, second);
  if (role == QLatin1String("routing") && first > 0 && second > 0)
    return MeasureRouting(first, second);
  if (role == QLatin1String("idle") && first > 0 && second > 0)
    return MeasureIdle(first, second);
  std::fputs(
      "usage: BusBenchmark latency PARTICIPANTS RUNS | routing SENDERS SECONDS | idle MEMBERS SECONDS\n",
      stderr);
  return 2;
}
