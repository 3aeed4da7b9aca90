// What 32 hostile clients do to the messages of an honest pair, when the server has limits.
//
// One process serves, two talk, and 32 more connect to the server by hand: 8 say nothing, 8 say a byte per
// tick, 8 flood it, 4 are stopped and never read, 4 send garbage. Who is disconnected comes back at once.
// Ends with 1 when the pair's messages take more than twice as long with them.

#include "Support/Wire.h"

#include <Common/Bazaar.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTimer>

#include <glog/logging.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>
#ifdef __linux__
#include <sys/prctl.h>
#endif

using namespace Tavrik;

namespace
{

const QString contextName = QStringLiteral("hostile");
const QByteArray contextBytes = contextName.toUtf8();
const int messages = 300;
const int tick = 20000; // us
const char* const packetVariable = "HOSTILE_CLIENTS_PACKET";
const int mostTimesSlower = 2;

int LargestPacket()
{
  return std::max(qEnvironmentVariableIntValue(packetVariable), 1024);
}

Bazaar::Limits ServerLimits()
{
  Bazaar::Limits limits;
  limits.admissionTime = 2000;
  limits.replyTime = 10000;
  limits.packetSize = LargestPacket();
  limits.queuedMessages = 10000;
  limits.queuedBytes = 16LL * LargestPacket();
  limits.unwrittenBytes = 4LL * LargestPacket();
  limits.clients = 64;
  limits.clientRate = 1 << 20;
  return limits;
}

long long Now()
{
  return std::chrono::steady_clock::now().time_since_epoch().count();
}

void Tell(const char* text)
{
  std::printf("%s\n", text);
  std::fflush(stdout);
}

// ---- The honest -----------------------------------------------------------------------------------------

class Quiet : public Bazaar::Listener
{
public:
  void OnMessage(const QString&, const QByteArray&) override {}
  void OnResult(long long, Bazaar::Error, const QString&) override {}
  void OnMemberJoined(const QString&) override {}
  void OnMemberLeft(const QString&) override {}
};

// Tells the latencies of the sayer's messages, and how many others came between them.
class Hearer : public Quiet
{
public:
  void OnMessage(const QString& sender, const QByteArray& data) override
  {
    if (sender != QStringLiteral("sayer"))
    {
      ++others;
      return;
    }
    latencies.push_back(static_cast<double>(Now() - data.toLongLong()) / 1e6);
    if (latencies.size() < messages)
      return;
    std::sort(latencies.begin(), latencies.end());
    std::printf("%f %f %f %d\n", latencies[messages / 2], latencies[messages * 99 / 100], latencies.back(),
                others);
    std::fflush(stdout);
    QCoreApplication::quit();
  }

private:
  std::vector<double> latencies;
  int others = 0;
};

int Participate(const QString& name)
{
  if (name == QStringLiteral("server"))
    Bazaar::SetLimits(ServerLimits());
  const std::shared_ptr<Bazaar::Listener> listener =
      name == QStringLiteral("hearer") ? std::make_shared<Hearer>() : std::make_shared<Quiet>();
  Bazaar::Context context(contextName, name, listener, 0);
  Tell("ready");
  // At random moments, so that the messages meet the ticks at any phase.
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout,
                   [&]
                   {
                     context.Say(QStringLiteral("hearer"), QByteArray::number(Now()));
                     timer.start(static_cast<int>(30 + QRandomGenerator::global()->bounded(40)));
                   });
  if (name == QStringLiteral("sayer"))
    timer.start(1000);
  return QCoreApplication::exec();
}

// ---- The hostile ----------------------------------------------------------------------------------------

// Blocking system calls and nothing else.
class Connection
{
public:
  Connection()
  {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const QByteArray path = QFile::encodeName(Wire::ServerName(contextName));
    std::strncpy(address.sun_path, path.constData(), sizeof(address.sun_path) - 1);
    isOpen = file >= 0 && connect(file, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
  }
  ~Connection() { close(file); }

  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  bool Write(const QByteArray& bytes)
  {
    for (int written = 0; isOpen && written < bytes.size();)
    {
      const ssize_t some = send(file, bytes.constData() + written, bytes.size() - written, MSG_NOSIGNAL);
      isOpen = some > 0;
      written += static_cast<int>(some);
    }
    return isOpen;
  }

  void WaitForEnd()
  {
    while (Discard(0))
      continue;
  }

  bool Discard(int flags)
  {
    char buffer[65536];
    return recv(file, buffer, sizeof(buffer), flags) > 0;
  }

private:
  int file = socket(AF_UNIX, SOCK_STREAM, 0);
  bool isOpen = false;
};

void SayByteByByte(Connection& connection, const QByteArray& packet)
{
  for (int i = 0; i < packet.size() && connection.Write(packet.mid(i, 1)); ++i)
    usleep(tick);
}

// Largest and small messages, to the honest, to the stopped, and to nobody; half of them never read.
void Flood(Connection& connection, int number)
{
  const QByteArray recipients[] = {"hearer", "stopped0", "nobody", "server"};
  const int size = number < 4 ? LargestPacket() - 200 : 100;
  const QByteArray message = Wire::Message(contextBytes, 1, recipients[number % 4], QByteArray(size, 'x'));
  while (connection.Write(message))
    while (number % 2 == 0 && connection.Discard(MSG_DONTWAIT))
      continue;
}

void SendGarbage(Connection& connection, int number)
{
  QByteArray garbage;
  for (int i = 0; i < 65536; ++i)
    garbage += static_cast<char>(QRandomGenerator::global()->generate());
  if (number % 2 == 0)
    garbage += Wire::Signature() + Wire::Int(30);
  while (connection.Write(garbage))
    continue;
}

[[noreturn]] void BeHostile(const QString& kind, int number)
{
  const QByteArray introduction =
      Wire::Introduction(contextBytes, kind.toUtf8() + QByteArray::number(number));
  const QByteArray large = Wire::Message(contextBytes, 1, "nobody", QByteArray(LargestPacket() / 2, 'x'));
  const std::map<QString, std::function<void(Connection&)>> kinds = {
      {QStringLiteral("silent"), [](Connection& connection) { connection.WaitForEnd(); }},
      {QStringLiteral("slow"),
       [&](Connection& connection)
       {
         if (number % 2 == 0)
           connection.Write(introduction);
         SayByteByByte(connection, large);
       }},
      {QStringLiteral("flooding"),
       [&](Connection& connection)
       {
         connection.Write(introduction);
         Flood(connection, number);
       }},
      {QStringLiteral("stopped"),
       [&](Connection& connection)
       {
         connection.Write(introduction);
         raise(SIGSTOP);
       }},
      {QStringLiteral("garbage"),
       [&](Connection& connection)
       {
         connection.Write(introduction);
         SendGarbage(connection, number);
       }},
  };
  Tell("ready");
  for (;;)
  {
    Connection connection;
    kinds.at(kind)(connection);
    usleep(tick);
  }
}

// ---- The comparison -------------------------------------------------------------------------------------

class Child
{
public:
  explicit Child(const QStringList& arguments)
  {
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(QCoreApplication::applicationFilePath(), arguments);
    process.waitForReadyRead();
    process.readLine();
  }
  ~Child()
  {
    process.kill();
    process.waitForFinished();
  }

  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  QProcess process;
};

// Seconds of processor time that the process has used.
double ProcessorTime(qint64 pid)
{
  QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
  if (!file.open(QIODevice::ReadOnly))
    return 0;
  const QList<QByteArray> fields = file.readAll().split(' ');
  return (fields.value(13).toDouble() + fields.value(14).toDouble()) /
         static_cast<double>(sysconf(_SC_CLK_TCK));
}

struct Figures
{
  double median = 0;
  double p99 = 0;
  double worst = 0;
  int others = 0;  // messages that the hearer got from the hostile
  double load = 0; // of the server, in processors
};

Figures Measure(qint64 server)
{
  Child hearer({QStringLiteral("hearer")});
  const Child sayer({QStringLiteral("sayer")});
  QElapsedTimer time;
  time.start();
  const double before = ProcessorTime(server);
  hearer.process.waitForFinished(300000);
  const QList<QByteArray> numbers = hearer.process.readAll().trimmed().split(' ');
  return {numbers.value(0).toDouble(), numbers.value(1).toDouble(), numbers.value(2).toDouble(),
          numbers.value(3).toInt(),
          (ProcessorTime(server) - before) / (static_cast<double>(time.elapsed()) / 1000)};
}

void Print(const char* name, const Figures& figures)
{
  std::printf("%-16s %8.1f %8.1f %8.1f %8.2f %8d\n", name, figures.median, figures.p99, figures.worst,
              figures.load, figures.others);
  std::fflush(stdout);
}

int Lead(const QByteArray& packetSize)
{
  qputenv(packetVariable, packetSize);
  const QTemporaryDir folder;
  qputenv("TMPDIR", folder.path().toLocal8Bit());
  const Child server({QStringLiteral("server")});
  std::printf("%d messages, ms   median      p99    worst     load   others\n", messages);
  const Figures without = Measure(server.process.processId());
  Print("without", without);

  std::vector<std::unique_ptr<Child>> hostile;
  const std::map<QString, int> crowd = {{QStringLiteral("silent"), 8},
                                        {QStringLiteral("slow"), 8},
                                        {QStringLiteral("flooding"), 8},
                                        {QStringLiteral("stopped"), 4},
                                        {QStringLiteral("garbage"), 4}};
  for (const auto& [kind, count] : crowd)
    for (int number = 0; number < count; ++number)
      hostile.push_back(std::make_unique<Child>(QStringList{kind, QString::number(number)}));
  const Figures with = Measure(server.process.processId());
  Print("with 32 hostile", with);
  const bool isMeasured = without.median > 0 && with.median > 0;
  if (isMeasured)
    std::printf("%-16s %8.2f %8.2f %8.2f\n", "ratio", with.median / without.median, with.p99 / without.p99,
                with.worst / without.worst);
  return isMeasured && with.median <= mostTimesSlower * without.median ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
  google::InitGoogleLogging(argv[0]);
  FLAGS_logtostderr = true;
#ifdef __linux__
  if (std::getenv(packetVariable))
    prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
  QCoreApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments().mid(1);
  if (arguments.size() > 1)
    BeHostile(arguments[0], arguments[1].toInt());
  const QString first = arguments.value(0, QStringLiteral("65536"));
  return first.toInt() > 0 ? Lead(first.toLatin1()) : Participate(first);
}
