// From Say to OnMessage over three processes, and how many messages a second one client gets through.
//
// The first participant serves, the second says, the third hears. All three read the same monotonic clock.

#include <Common/Bazaar.h>

#include <QCoreApplication>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTimer>

#include <glog/logging.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

using namespace Tavrik;

namespace
{

const int latencyMessages = 500;
const int throughputMessages = 500;

long long Now()
{
  return std::chrono::steady_clock::now().time_since_epoch().count();
}

class Quiet : public Bazaar::Listener
{
public:
  void OnMessage(const QString&, const QByteArray&) override {}
  void OnResult(long long, Bazaar::Error, const QString&) override {}
  void OnMemberJoined(const QString&) override {}
  void OnMemberLeft(const QString&) override {}
};

// Says one message at random moments, so that it meets the ticks at any phase, and then many at once.
class Sayer
{
public:
  explicit Sayer(Bazaar::Context& context) : context(context)
  {
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, [this] { Say(); });
    timer.start(1000);
  }

private:
  void Say()
  {
    const auto stamp = [] { return QByteArray::number(Now()); };
    if (++said <= latencyMessages)
    {
      context.Say(QStringLiteral("hearer"), stamp());
      timer.start(static_cast<int>(30 + QRandomGenerator::global()->bounded(40)));
      return;
    }
    for (int i = 0; i < throughputMessages; ++i)
      context.Say(QStringLiteral("hearer"), stamp());
  }

  Bazaar::Context& context;
  QTimer timer;
  int said = 0;
};

class Hearer : public Quiet
{
public:
  void OnMessage(const QString&, const QByteArray& data) override
  {
    const long long now = Now();
    ++heard;
    if (heard <= latencyMessages)
      latencies.push_back(static_cast<double>(now - data.toLongLong()) / 1e6);
    else if (heard == latencyMessages + 1)
      firstOfMany = now;
    if (heard == latencyMessages + throughputMessages)
      Report(now);
  }

private:
  void Report(long long now)
  {
    std::sort(latencies.begin(), latencies.end());
    double sum = 0;
    for (const double latency : latencies)
      sum += latency;
    std::printf("latency of %d messages in ms: mean %.1f, median %.1f, p99 %.1f, worst %.1f\n",
                latencyMessages, sum / latencyMessages, latencies[latencyMessages / 2],
                latencies[latencyMessages * 99 / 100], latencies.back());
    std::printf("messages a second from one client: %.2f\n",
                (throughputMessages - 1) / (static_cast<double>(now - firstOfMany) / 1e9));
    std::fflush(stdout);
    QCoreApplication::quit();
  }

  std::vector<double> latencies;
  int heard = 0;
  long long firstOfMany = 0;
};

int Participate(const QString& name)
{
  const std::shared_ptr<Bazaar::Listener> listener =
      name == QStringLiteral("hearer") ? std::make_shared<Hearer>() : std::make_shared<Quiet>();
  Bazaar::Context context(QStringLiteral("latency"), name, listener, 0);
  std::unique_ptr<Sayer> sayer;
  if (name == QStringLiteral("sayer"))
    sayer = std::make_unique<Sayer>(context);
  return QCoreApplication::exec();
}

int Lead()
{
  const QTemporaryDir folder;
  qputenv("TMPDIR", folder.path().toLocal8Bit());
  const QString program = QCoreApplication::applicationFilePath();
  QProcess server;
  QProcess sayer;
  QProcess hearer;
  server.start(program, {QStringLiteral("server")});
  server.waitForStarted();
  hearer.setProcessChannelMode(QProcess::ForwardedOutputChannel);
  hearer.start(program, {QStringLiteral("hearer")});
  sayer.start(program, {QStringLiteral("sayer")});
  const bool isDone = hearer.waitForFinished(300000);
  for (QProcess* process : {&sayer, &hearer, &server})
  {
    process->terminate();
    process->waitForFinished();
  }
  return isDone ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
  google::InitGoogleLogging(argv[0]);
  QCoreApplication application(argc, argv);
  return argc > 1 ? Participate(QString::fromLocal8Bit(argv[1])) : Lead();
}
