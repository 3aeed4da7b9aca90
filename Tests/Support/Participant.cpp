// A participant in a process of its own, led by lines on its standard input:
//
//   say RECIPIENT BASE64    says a message
//   fill RECIPIENT SIZE     says a message of so many bytes
//   members                 tells the members
//   blink                   leaves and comes back
//   quit                    leaves
//   exhaust                 leaves no file descriptor for anything more; `relieve` ends that
//   fork                    forks a process that holds everything this one holds, for a minute
//   forget                  forks a process that destroys its copy of the context and ends
//
// and telling what it hears on its standard output, and besides the id of what it said (`said ID`) and when,
// in milliseconds, it connected to a server (`connected TIME`). At the end of its input it leaves, too.

#include <Common/Bazaar.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QRandomGenerator>
#include <QSocketNotifier>
#include <QStringList>
#include <QTimer>

#include <glog/logging.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <csignal>
#include <sys/prctl.h>
#endif

using namespace Tavrik;

namespace
{

void Tell(const QString& line)
{
  std::printf("%s\n", line.toUtf8().constData());
  std::fflush(stdout);
}

class Teller : public Bazaar::Listener
{
public:
  void OnMessage(const QString& sender, const QByteArray& data) override
  {
    // Long payloads are told by their length and their checksum.
    const QByteArray shown = data.size() > 4096
                                 ? "size " + QByteArray::number(data.size()) + " crc " +
                                       QByteArray::number(qChecksum(data.constData(), uint(data.size())))
                                 : data.toBase64();
    Tell(QStringLiteral("message %1 %2").arg(sender, QString::fromLatin1(shown)));
  }
  void OnResult(long long id, Bazaar::Error result, const QString&) override
  {
    Tell(QStringLiteral("result %1 %2").arg(id).arg(Bazaar::GetErrorString(result)));
  }
  void OnMemberJoined(const QString& name) override { Tell(QStringLiteral("joined %1").arg(name)); }
  void OnMemberLeft(const QString& name) override { Tell(QStringLiteral("left %1").arg(name)); }
};

// Tells of connections in the order in which they and everything else happened.
class ConnectionTeller : public google::LogSink
{
public:
  ConnectionTeller() { google::AddLogSink(this); }
  ~ConnectionTeller() override { google::RemoveLogSink(this); }

  void send(google::LogSeverity, const char*, const char*, int, const google::LogMessageTime&,
            const char* message, std::size_t length) override
  {
    if (QByteArray::fromRawData(message, static_cast<int>(length)).contains(" has connected to a server ("))
      Tell(QStringLiteral("connected %1").arg(QDeadlineTimer::current().deadline()));
  }
};

class Participant
{
public:
  explicit Participant(const QStringList& arguments) : arguments(arguments) { Join(); }

  void Obey(const QByteArray& line)
  {
    const QList<QByteArray> words = line.split(' ');
    if (words.value(0) == "say")
    {
      const long long id =
          context->Say(QString::fromUtf8(words.value(1)), QByteArray::fromBase64(words.value(2)));
      if (arguments.size() > 4)
        Tell(QStringLiteral("said %1").arg(id));
    }
    else if (words.value(0) == "fill")
      context->Say(QString::fromUtf8(words.value(1)), QByteArray(words.value(2).toInt(), 'x'));
    else if (words.value(0) == "members")
      Tell(QStringLiteral("members %1").arg(QStringList(context->Members()).join(QLatin1Char(','))));
    else if (words.value(0) == "blink")
    {
      context.reset();
      Join();
    }
    else if (words.value(0) == "exhaust")
    {
      const int next = dup(STDIN_FILENO);
      close(next);
      LimitFiles(static_cast<rlim_t>(next));
    }
    else if (words.value(0) == "relieve")
      LimitFiles(256);
    else if (words.value(0) == "fork")
      Tell(QStringLiteral("forked %1").arg(Fork(&WaitAMinute)));
    else if (words.value(0) == "forget")
    {
      const pid_t child = Fork([this] { context.reset(); });
      waitpid(child, nullptr, 0);
      Tell(QStringLiteral("forgotten"));
    }
    else if (words.value(0) == "quit")
      QCoreApplication::quit();
  }

private:
  static void LimitFiles(rlim_t count)
  {
    rlimit limit = {};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = count;
    setrlimit(RLIMIT_NOFILE, &limit);
    Tell(QStringLiteral("limited"));
  }

  static void WaitAMinute()
  {
    alarm(60);
    pause();
  }

  // In the child, ends as a program does.
  template<typename Work>
  static pid_t Fork(const Work& work)
  {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0)
    {
      work();
      std::exit(EXIT_SUCCESS);
    }
    return child;
  }

  void Join()
  {
    context = std::make_unique<Bazaar::Context>(arguments.value(1), arguments.value(2), teller,
                                                arguments.value(3).toInt());
    Tell(QStringLiteral("ready"));
  }

  QStringList arguments;
  std::shared_ptr<Teller> teller = std::make_shared<Teller>();
  std::unique_ptr<Bazaar::Context> context;
};

} // namespace

// CONTEXT NAME FLAGS [SEED]
int main(int argc, char** argv)
{
#ifdef __linux__
  // A stopped one does not see the end of its input.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
  google::InitGoogleLogging(argv[0]);
  FLAGS_logtostderr = true;
  QCoreApplication application(argc, argv);
  QT_WARNING_PUSH
  QT_WARNING_DISABLE_DEPRECATED
  qsrand(argc > 4 ? QByteArray(argv[4]).toUInt() : QRandomGenerator::global()->generate());
  QT_WARNING_POP

  // Even a participant whose start-up never returns has to go when its leader has gone.
  QByteArray input;
  std::unique_ptr<Participant> participant;
  bool isBusy = true;
  const auto obey = [&]
  {
    while (!isBusy && input.contains('\n'))
    {
      const QByteArray line = input.left(input.indexOf('\n'));
      input.remove(0, line.size() + 1);
      isBusy = true;
      participant->Obey(line);
      isBusy = false;
    }
  };
  std::unique_ptr<ConnectionTeller> connectionTeller;
  if (argc > 4)
    connectionTeller = std::make_unique<ConnectionTeller>();
  QSocketNotifier notifier(STDIN_FILENO, QSocketNotifier::Read);
  QObject::connect(&notifier, &QSocketNotifier::activated,
                   [&]
                   {
                     char buffer[65536];
                     const ssize_t size = read(STDIN_FILENO, buffer, sizeof(buffer));
                     if (size <= 0)
                     {
                       if (isBusy)
                         std::_Exit(EXIT_FAILURE);
                       notifier.setEnabled(false);
                       QCoreApplication::quit();
                       return;
                     }
                     input.append(buffer, static_cast<int>(size));
                     obey();
                   });
  participant = std::make_unique<Participant>(QCoreApplication::arguments());
  isBusy = false;
  QTimer::singleShot(0, obey);
  const int result = QCoreApplication::exec();
  isBusy = true;
  participant.reset();
  Tell(QStringLiteral("gone"));
  return result;
}
