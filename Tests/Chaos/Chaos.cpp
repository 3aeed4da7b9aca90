// Rounds of faults on one bus of real processes: kill -9, SIGSTOP and SIGCONT of whoever serves and of
// others, cold starts, faults on faults, with messages under way. What a round does is drawn from the seed;
// how the processes fall over each other is theirs.
//
//   Chaos --participants N --rounds R [--seed S] [--faults NAME,...]
//
// Every process, socket and lock lies in the temporary directory that the environment names. Exit code 0 only
// if there never were two servers, nobody hung, every round healed and every message is accounted for.

#include "Support/Peer.h"
#include "Support/Processes.h"
#include "Support/Raw.h"
#include "Support/Spin.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>
#include <QSet>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <sys/stat.h>
#include <vector>

namespace
{

const int healingLimit = 10000;  // ms
const int answerLimit = 10000;   // ms
const int givingWayLimit = 1000; // ms, for a server to notice that it has a successor
const int lockTimeout = 3000;    // ms, after which the library goes on without the start-up lock
const int settleTime = 300;      // ms of a connection in which the library sends nothing
const std::size_t nobody = ~std::size_t(0);

// Then it ends after the round that it is in.
volatile std::sig_atomic_t isInterrupted = 0;

// ---- Participants ---------------------------------------------------------------------------------------

// What is known of one process from what it tells.
class Member
{
public:
  Member(const QString& context, const QString& name, int slot, unsigned seed)
      : peer(context, name, 0, {QString::number(seed)}), slot(slot)
  {
    sees.insert(name);
    peer.heard = [this](const QString& line) { Hear(line); };
  }

  int Connections() const { return static_cast<int>(connectedAt.size()); }

  Peer peer;
  const int slot;
  bool isStopped = false;
  QSet<QString> sees; // by what it was told of arrivals and departures, and itself
  QString members;    // by its last answer
  int answers = 0;
  std::vector<qint64> connectedAt;    // ms of the system's own clock
  std::deque<std::size_t> toBeSaid;   // messages that it has not taken yet
  std::map<qint64, std::size_t> said; // by the id it gave them
  std::function<void(std::size_t)> onSaid;
  std::function<void(std::size_t, const QString&)> onResult;
  std::function<void(const QString&, const QByteArray&)> onMessage;

private:
  void Hear(const QString& line)
  {
    const QString word = line.section(QLatin1Char(' '), 0, 0);
    const QString rest = line.section(QLatin1Char(' '), 1);
    const QString first = rest.section(QLatin1Char(' '), 0, 0);
    const QString second = rest.section(QLatin1Char(' '), 1);
    if (word == QLatin1String("joined"))
      sees.insert(rest);
    else if (word == QLatin1String("left"))
      sees.remove(rest);
    else if (word == QLatin1String("connected"))
      connectedAt.push_back(rest.toLongLong());
    else if (word == QLatin1String("members"))
    {
      members = rest;
      ++answers;
    }
    else if (word == QLatin1String("said"))
    {
      said[first.toLongLong()] = toBeSaid.front();
      onSaid(toBeSaid.front());
      toBeSaid.pop_front();
    }
    else if (word == QLatin1String("result"))
      onResult(said.count(first.toLongLong()) ? said[first.toLongLong()] : nobody, second);
    else if (word == QLatin1String("message"))
      onMessage(first, QByteArray::fromBase64(second.toLatin1()));
  }
};

// The process that holds a lock file; 0 when none does.
pid_t HolderOf(const QString& path)
{
  struct stat status = {};
  QFile locks(QStringLiteral("/proc/locks"));
  if (stat(QFile::encodeName(path).constData(), &status) != 0 || !locks.open(QIODevice::ReadOnly))
    return 0;
  const QByteArray node = ':' + QByteArray::number(qulonglong(status.st_ino));
  for (const QByteArray& line : locks.readAll().split('\n'))
  {
    // number: FLOCK ADVISORY WRITE pid major:minor:inode start end
    const QList<QByteArray> fields = line.simplified().split(' ');
    if (fields.value(1) == "FLOCK" && fields.value(5).endsWith(node))
      return fields.value(4).toInt();
  }
  return 0;
}

// Looks without a pause: the lock is held for less than a millisecond.
pid_t WaitForHolder(const QString& path, int limit)
{
  QElapsedTimer waiting;
  waiting.start();
  pid_t holder = 0;
  while (holder == 0 && !waiting.hasExpired(limit))
    holder = HolderOf(path);
  return holder;
}

// ---- Messages -------------------------------------------------------------------------------------------

struct Message
{
  std::weak_ptr<Member> sender;
  std::weak_ptr<Member> recipient;
  int sendersConnection = 0;    // when it was said
  int recipientsConnection = 0; // when it was asked for
  QString result;
  int deliveries = 0;
};

enum class Fate
{
  Delivered,
  Reported,    // its sender knows that it did not arrive
  Lost,        // with the server that it was written to
  Gone,        // sender or recipient is no longer there
  Unaccounted, // or not yet
};

class Ledger
{
public:
  void Watch(const std::shared_ptr<Member>& member)
  {
    Member* const self = member.get();
    member->onSaid = [this, self](std::size_t index)
    { messages[index].sendersConnection = self->Connections(); };
    member->onResult = [this](std::size_t index, const QString& result)
    {
      if (index == nobody || !messages[index].result.isEmpty())
        ++oddities;
      else
        messages[index].result = result;
    };
    member->onMessage = [this](const QString&, const QByteArray& data)
    {
      const std::size_t index = data.mid(data.lastIndexOf(' ') + 1).toULongLong();
      if (index >= messages.size() || ++messages[index].deliveries > 1)
        ++oddities;
    };
  }

  void Say(const std::shared_ptr<Member>& sender, const std::shared_ptr<Member>& recipient, int size)
  {
    Message message;
    message.sender = sender;
    message.recipient = recipient;
    message.recipientsConnection = recipient->Connections();
    sender->toBeSaid.push_back(messages.size());
    sender->peer.Say(recipient->peer.name,
                     QByteArray(size, 'x') + ' ' + QByteArray::number(qulonglong(messages.size())));
    messages.push_back(message);
  }

  std::size_t CountOpen() const
  {
    std::size_t open = 0;
    for (std::size_t i = closed; i < messages.size(); ++i)
      open += FateOf(messages[i]) == Fate::Unaccounted;
    return open;
  }

  // Ends a round; what happens to its messages later counts no more.
  void Close()
  {
    for (; closed < messages.size(); ++closed)
      ++counts[FateOf(messages[closed])];
  }

  std::string DescribeOpen() const
  {
    std::string text;
    for (std::size_t i = closed; i < messages.size(); ++i)
      if (FateOf(messages[i]) == Fate::Unaccounted)
        text += "  from " + messages[i].sender.lock()->peer.name.toStdString() + " to " +
                messages[i].recipient.lock()->peer.name.toStdString() + ": result \"" +
                messages[i].result.toStdString() + "\", " + std::to_string(messages[i].deliveries) +
                " deliveries\n";
    return text;
  }

  std::map<Fate, long long> counts;
  int oddities = 0; // second deliveries, second results, results of nothing

private:
  static Fate FateOf(const Message& message)
  {
    const std::shared_ptr<Member> sender = message.sender.lock();
    const std::shared_ptr<Member> recipient = message.recipient.lock();
    if (!sender || !recipient)
      return Fate::Gone;
    const bool recipientMoved = recipient->Connections() > message.recipientsConnection;
    if (message.result == QLatin1String("OK"))
      return message.deliveries > 0 ? Fate::Delivered : recipientMoved ? Fate::Lost : Fate::Unaccounted;
    if (!message.result.isEmpty())
      return message.deliveries > 0 ? Fate::Unaccounted : Fate::Reported;
    if (message.sendersConnection == 0)
      return Fate::Unaccounted;
    return MayBeLost(message, *sender) || recipientMoved ? Fate::Lost : Fate::Unaccounted;
  }

  // What was said on a connection that broke later was written to the server that went, unless that was over
  // before anything could be written.
  static bool MayBeLost(const Message& message, const Member& sender)
  {
    const auto connection = static_cast<std::size_t>(message.sendersConnection);
    if (sender.connectedAt.size() <= connection)
      return false;
    return sender.connectedAt[connection] - sender.connectedAt[connection - 1] >= settleTime;
  }

  std::vector<Message> messages;
  std::size_t closed = 0;
};

// ---- Rounds ---------------------------------------------------------------------------------------------

struct Figures
{
  int rounds = 0;
  int withOneServer = 0;
  std::vector<qint64> healed; // ms
};

class Chaos
{
public:
  Chaos(int participants, unsigned seed)
      : meeting(QStringLiteral("chaos %1").arg(seed)),
        random(seed),
        members(static_cast<std::size_t>(participants)),
        incarnations(members.size())
  {
  }

  using Fault = void (Chaos::*)();
  static const std::vector<std::pair<const char*, Fault>>& Faults();

  bool Begin()
  {
    StartMissing();
    return IsHealed(healingLimit) >= 0;
  }

  void Play(int round, const char* name, Fault fault);
  void Print(double seconds) const;
  bool IsFlawless() const
  {
    return secondServers == 0 && hung == 0 && unhealed == 0 && ledger.oddities == 0 && !HasUnaccounted();
  }

private:
  using Living = std::vector<std::shared_ptr<Member>>;

  // The faults
  void StartAllAtOnce();
  void KillServer();
  void KillClient();
  void KillServerAndOthers();
  void KillTwice();
  void KillStoppedServer();
  void KillServerWhileSomebodyJoins();
  void StopServer();
  void StopClient();
  void StopClientInElection();
  void StopLockHolder();
  void SweepSocketFile();
  void SweepSocketFileOfStoppedServer();
  void QuitServer();

  int Draw(int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); }
  std::shared_ptr<Member> DrawFrom(const Living& candidates)
  {
    return candidates[static_cast<std::size_t>(Draw(static_cast<int>(candidates.size())))];
  }
  Living GetLiving() const
  {
    Living living;
    std::copy_if(members.begin(), members.end(), std::back_inserter(living),
                 [](const std::shared_ptr<Member>& member) { return member != nullptr; });
    return living;
  }
  std::shared_ptr<Member> Server() const;
  Living Clients() const;

  void Start(int slot);
  void StartMissing();
  void Kill(const std::shared_ptr<Member>& member);
  void Stop(const std::shared_ptr<Member>& member);
  void Continue(const std::shared_ptr<Member>& member);
  void Pass(int duration);
  void Chatter(int most);

  void CountServersNow();
  bool SeeEachOther() const;
  qint64 IsHealed(int limit);
  int CountHung();
  bool AnswersAgree() const;
  void Describe(int round, const char* name, const char* what) const;
  bool HasUnaccounted() const
  {
    const auto found = ledger.counts.find(Fate::Unaccounted);
    return found != ledger.counts.end() && found->second > 0;
  }

  const Meeting meeting;
  std::mt19937 random;
  Ledger ledger;
  Living members; // by slot; empty where somebody has been killed
  std::vector<int> incarnations;
  QElapsedTimer sinceFault;
  bool mayHaveSuccessor = false; // a stopped or swept server may have been succeeded
  bool stoodStill = false;       // then it is healed when everything said meanwhile has arrived, too
  bool hadSecondServer = false;

  std::map<std::string, Figures> figures;
  int secondServers = 0;
  int hung = 0;
  int unhealed = 0;
  int lockHoldersStopped = 0;
};

const std::vector<std::pair<const char*, Chaos::Fault>>& Chaos::Faults()
{
  static const std::vector<std::pair<const char*, Fault>> faults = {
      {"cold-start", &Chaos::StartAllAtOnce},
      {"kill-server", &Chaos::KillServer},
      {"kill-client", &Chaos::KillClient},
      {"kill-several", &Chaos::KillServerAndOthers},
      {"kill-twice", &Chaos::KillTwice},
      {"kill-stopped", &Chaos::KillStoppedServer},
      {"kill-and-join", &Chaos::KillServerWhileSomebodyJoins},
      {"stop-server", &Chaos::StopServer},
      {"stop-client", &Chaos::StopClient},
      {"stop-in-election", &Chaos::StopClientInElection},
      {"stop-lock-holder", &Chaos::StopLockHolder},
      {"sweep", &Chaos::SweepSocketFile},
      {"sweep-stopped", &Chaos::SweepSocketFileOfStoppedServer},
      {"quit-server", &Chaos::QuitServer},
  };
  return faults;
}

void Chaos::StartAllAtOnce()
{
  for (const std::shared_ptr<Member>& member : GetLiving())
    Kill(member);
  StartMissing();
}

void Chaos::KillServer()
{
  Kill(Server());
}

void Chaos::KillClient()
{
  Kill(DrawFrom(Clients()));
}

void Chaos::KillServerAndOthers()
{
  Living clients = Clients();
  std::shuffle(clients.begin(), clients.end(), random);
  clients.resize(static_cast<std::size_t>(Draw(static_cast<int>(clients.size()))));
  Kill(Server());
  for (const std::shared_ptr<Member>& member : clients)
    Kill(member);
}

void Chaos::KillTwice()
{
  Kill(Server());
  Pass(Draw(500));
  // In half of the rounds the successor, if there is one already.
  const std::shared_ptr<Member> successor = Server();
  if (GetLiving().size() > 1)
    Kill(successor && Draw(2) == 0 ? successor : DrawFrom(GetLiving()));
}

void Chaos::KillStoppedServer()
{
  const std::shared_ptr<Member> server = Server();
  Stop(server);
  Pass(Draw(500));
  Kill(server);
}

void Chaos::KillServerWhileSomebodyJoins()
{
  const std::shared_ptr<Member> server = Server();
  const int slot = server->slot;
  Kill(server);
  Pass(Draw(300));
  Start(slot);
}

void Chaos::StopServer()
{
  stoodStill = true;
  const std::shared_ptr<Member> server = Server();
  Stop(server);
  Pass(100 + Draw(1400));
  Continue(server);
}

void Chaos::StopClient()
{
  stoodStill = true;
  const std::shared_ptr<Member> client = DrawFrom(Clients());
  Stop(client);
  Pass(100 + Draw(1400));
  Continue(client);
}

void Chaos::StopClientInElection()
{
  const std::shared_ptr<Member> client = DrawFrom(Clients());
  Kill(Server());
  Pass(Draw(250));
  Stop(client);
  Pass(100 + Draw(900));
  Continue(client);
}

// Long enough for the others to go on without the lock. Who cannot be caught with it is stopped without.
void Chaos::StopLockHolder()
{
  mayHaveSuccessor = true;
  const Living clients = Clients();
  Kill(Server());
  const pid_t holder = WaitForHolder(Wire::ServerName(meeting.context) + QStringLiteral(".lock"), 300);
  const auto isHolder = [&](const std::shared_ptr<Member>& client) { return client->peer.Pid() == holder; };
  const auto found = std::find_if(clients.begin(), clients.end(), isHolder);
  const std::shared_ptr<Member> caught = found != clients.end() ? *found : DrawFrom(clients);
  Stop(caught);
  lockHoldersStopped += HolderOf(Wire::ServerName(meeting.context) + QStringLiteral(".lock")) ==
                        static_cast<pid_t>(caught->peer.Pid());
  Pass(lockTimeout + 500);
  Continue(caught);
}

// As cleaners of temporary folders do. Nobody notices until somebody comes, who serves then.
void Chaos::SweepSocketFile()
{
  mayHaveSuccessor = true;
  const std::shared_ptr<Member> client = DrawFrom(Clients());
  const int slot = client->slot;
  Kill(client);
  QFile::remove(Wire::ServerName(meeting.context));
  Start(slot);
}

void Chaos::SweepSocketFileOfStoppedServer()
{
  mayHaveSuccessor = true;
  const std::shared_ptr<Member> server = Server();
  Stop(server);
  SweepSocketFile();
  SpinUntil([&] { return CountServers(meeting.context) == 2; }, healingLimit);
  Pass(Draw(1000));
  Continue(server);
}

void Chaos::QuitServer()
{
  const std::shared_ptr<Member> server = Server();
  server->peer.Tell(QStringLiteral("quit"));
  if (!SpinUntil([&] { return !server->peer.IsRunning(); }, answerLimit))
    ++hung;
  Kill(server);
}

std::shared_ptr<Member> Chaos::Server() const
{
  std::vector<Peer*> peers;
  for (const std::shared_ptr<Member>& member : GetLiving())
    peers.push_back(&member->peer);
  const Peer* server = FindServer(peers, meeting.context);
  for (const std::shared_ptr<Member>& member : GetLiving())
    if (&member->peer == server)
      return member;
  return nullptr;
}

Chaos::Living Chaos::Clients() const
{
  Living clients = GetLiving();
  clients.erase(std::remove(clients.begin(), clients.end(), Server()), clients.end());
  return clients;
}

// A new name each time, so that nobody can take the old list for the new one.
void Chaos::Start(int slot)
{
  const auto index = static_cast<std::size_t>(slot);
  const QString name = QStringLiteral("p%1.%2").arg(slot).arg(++incarnations[index]);
  members[index] = std::make_shared<Member>(meeting.context, name, slot, static_cast<unsigned>(random()));
  ledger.Watch(members[index]);
}

void Chaos::StartMissing()
{
  for (std::size_t slot = 0; slot < members.size(); ++slot)
    if (!members[slot])
      Start(static_cast<int>(slot));
}

void Chaos::Kill(const std::shared_ptr<Member>& member)
{
  member->peer.heard = [](const QString&) {};
  members[static_cast<std::size_t>(member->slot)].reset();
  if (member->peer.IsRunning())
    member->peer.process.kill();
  if (!member->peer.process.waitForFinished(answerLimit) && member->peer.IsRunning())
    ++hung;
}

void Chaos::Stop(const std::shared_ptr<Member>& member)
{
  member->isStopped = true;
  member->peer.Stop();
}

void Chaos::Continue(const std::shared_ptr<Member>& member)
{
  member->isStopped = false;
  member->peer.Continue();
}

// Time in which people talk.
void Chaos::Pass(int duration)
{
  QElapsedTimer passing;
  passing.start();
  while (!passing.hasExpired(duration))
  {
    Chatter(1);
    SpinUntil(
        [&]
        {
          CountServersNow();
          return passing.hasExpired(duration);
        },
        50);
  }
}

void Chaos::Chatter(int most)
{
  const Living living = GetLiving();
  for (const std::shared_ptr<Member>& sender : living)
    for (int left = Draw(most + 1); left > 0; --left)
      ledger.Say(sender, DrawFrom(living), Draw(400));
}

void Chaos::CountServersNow()
{
  if (mayHaveSuccessor && (!sinceFault.isValid() || !sinceFault.hasExpired(givingWayLimit)))
    return;
  hadSecondServer = hadSecondServer || CountServers(meeting.context) > 1;
}

bool Chaos::SeeEachOther() const
{
  const Living living = GetLiving();
  QSet<QString> names;
  for (const std::shared_ptr<Member>& member : living)
    names.insert(member->peer.name);
  return std::all_of(living.begin(), living.end(),
                     [&](const std::shared_ptr<Member>& member) { return member->sees == names; });
}

// Milliseconds until everybody sees exactly those who live, one of them serving; -1 when that never comes.
qint64 Chaos::IsHealed(int limit)
{
  QElapsedTimer waiting;
  waiting.start();
  const bool isHealed = SpinUntil(
      [&]
      {
        CountServersNow();
        return SeeEachOther() && CountServers(meeting.context) == 1 &&
               (!stoodStill || ledger.CountOpen() == 0);
      },
      limit);
  return isHealed ? waiting.elapsed() : -1;
}

int Chaos::CountHung()
{
  const Living living = GetLiving();
  std::vector<int> answers;
  for (const std::shared_ptr<Member>& member : living)
  {
    answers.push_back(member->answers);
    member->peer.Tell(QStringLiteral("members"));
  }
  int silent = 0;
  QElapsedTimer waiting;
  waiting.start();
  for (std::size_t i = 0; i < living.size(); ++i)
  {
    const int left = answerLimit - static_cast<int>(std::min<qint64>(waiting.elapsed(), answerLimit));
    silent += !SpinUntil([&] { return living[i]->answers > answers[i]; }, left);
  }
  return silent;
}

// Whether what everybody answered is what he was told of.
bool Chaos::AnswersAgree() const
{
  const Living living = GetLiving();
  return std::all_of(living.begin(), living.end(),
                     [&](const std::shared_ptr<Member>& member)
                     {
                       const QStringList names = member->members.split(QLatin1Char(','));
                       return QSet<QString>(names.begin(), names.end()) == member->sees;
                     });
}

void Chaos::Play(int round, const char* name, Fault fault)
{
  Figures& figure = figures[name];
  ++figure.rounds;
  hadSecondServer = false;
  mayHaveSuccessor = false;
  stoodStill = false;
  sinceFault.invalidate();
  const int formerlyHung = hung;

  Chatter(3);
  (this->*fault)();
  sinceFault.start();
  qint64 time = IsHealed(healingLimit);
  Chatter(1);
  const bool isComplete = SpinUntil(
      [&]
      {
        CountServersNow();
        return ledger.CountOpen() == 0;
      },
      answerLimit);
  if (!isComplete)
    Describe(round, name, "has messages that are not accounted for");
  hung += CountHung();
  if (!AnswersAgree())
    time = -1;

  StartMissing();
  if (IsHealed(healingLimit) < 0)
    time = -1;
  ledger.Close();

  if (hadSecondServer || CountServers(meeting.context) != 1)
  {
    ++secondServers;
    Describe(round, name, "had not exactly one server");
  }
  else
    ++figure.withOneServer;
  if (time >= 0)
    figure.healed.push_back(time);
  else
  {
    ++unhealed;
    Describe(round, name, "did not heal");
  }
  if (hung > formerlyHung)
    Describe(round, name, "left a process that does not answer");
  if (time >= 0 && hung == formerlyHung)
    return;
  // The next round gets a bus that works.
  StartAllAtOnce();
  IsHealed(healingLimit);
}

void Chaos::Describe(int round, const char* name, const char* what) const
{
  std::printf("round %d (%s) %s; %d servers\n%s", round, name, what, CountServers(meeting.context),
              ledger.DescribeOpen().c_str());
  for (const std::shared_ptr<Member>& member : GetLiving())
    std::printf("  %s (%lld) sees %s\n%s", qPrintable(member->peer.name),
                static_cast<long long>(member->peer.Pid()),
                qPrintable(QStringList(member->sees.values()).join(QLatin1Char(','))),
                member->peer.log.right(600).constData());
  std::fflush(stdout);
}

std::string Quantile(std::vector<qint64> times, double part)
{
  if (times.empty())
    return "-";
  std::sort(times.begin(), times.end());
  return std::to_string(times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1) + 0.5)]);
}

void PrintLine(const std::string& name, const Figures& figure)
{
  std::printf("%-18s %6d %10d %6zu %9s %6s %6s\n", name.c_str(), figure.rounds, figure.withOneServer,
              figure.healed.size(), Quantile(figure.healed, 0.5).c_str(),
              Quantile(figure.healed, 0.99).c_str(), Quantile(figure.healed, 1).c_str());
}

void Chaos::Print(double seconds) const
{
  std::printf("%-18s %6s %10s %6s %9s %6s %6s\n", "fault", "rounds", "one server", "healed", "median ms",
              "p99", "worst");
  Figures all;
  Figures kills;
  for (const auto& [name, figure] : figures)
  {
    PrintLine(name, figure);
    for (Figures* sum : {&all, &kills})
      if (sum == &all || name.compare(0, 4, "kill") == 0)
      {
        sum->rounds += figure.rounds;
        sum->withOneServer += figure.withOneServer;
        sum->healed.insert(sum->healed.end(), figure.healed.begin(), figure.healed.end());
      }
  }
  PrintLine("all kill-*", kills);
  PrintLine("all", all);

  const auto count = [this](Fate fate)
  {
    const auto found = ledger.counts.find(fate);
    return found == ledger.counts.end() ? 0LL : found->second;
  };
  double load = 0;
  getloadavg(&load, 1);
  std::printf("participants %zu, hung %d, unhealed %d, rounds with a second server %d; %.0f s, load %.1f\n",
              members.size(), hung, unhealed, secondServers, seconds, load);
  std::printf("stopped while they held the start-up lock: %d\n", lockHoldersStopped);
  std::printf(
      "messages between survivors: delivered %lld, reported %lld, lost with a server %lld, unaccounted %lld, "
      "twice or unasked %d; from or to the dead: %lld\n",
      count(Fate::Delivered), count(Fate::Reported), count(Fate::Lost), count(Fate::Unaccounted),
      ledger.oddities, count(Fate::Gone));
}

} // namespace

int main(int argc, char** argv)
{
  QCoreApplication application(argc, argv);
  QCommandLineParser parser;
  parser.addOption({QStringLiteral("participants"), QStringLiteral("At least 2."), QStringLiteral("N"),
                    QStringLiteral("8")});
  parser.addOption(
      {QStringLiteral("rounds"), QStringLiteral("How many."), QStringLiteral("R"), QStringLiteral("20")});
  parser.addOption({QStringLiteral("seed"), QStringLiteral("What the rounds are drawn from."),
                    QStringLiteral("S"), QStringLiteral("1")});
  parser.addOption({QStringLiteral("faults"), QStringLiteral("Only these, separated by commas."),
                    QStringLiteral("NAMES")});
  parser.addHelpOption();
  parser.process(application);

  const int participants = parser.value(QStringLiteral("participants")).toInt();
  const int rounds = parser.value(QStringLiteral("rounds")).toInt();
  const unsigned seed = parser.value(QStringLiteral("seed")).toUInt();
  const QStringList names =
      parser.value(QStringLiteral("faults")).split(QLatin1Char(','), Qt::SkipEmptyParts);
  auto faults = Chaos::Faults();
  const auto isUnwanted = [&](const auto& fault) { return !names.contains(QLatin1String(fault.first)); };
  if (!names.isEmpty())
    faults.erase(std::remove_if(faults.begin(), faults.end(), isUnwanted), faults.end());
  if (participants < 2 || rounds < 1 || faults.empty())
  {
    std::fprintf(stderr, "Chaos: at least two participants, one round and one fault are needed\n");
    return 2;
  }

  for (const int signal : {SIGINT, SIGTERM})
    std::signal(signal, [](int) { isInterrupted = 1; });

  QElapsedTimer time;
  time.start();
  std::mt19937 random(seed);
  Chaos chaos(participants, seed);
  if (!chaos.Begin())
  {
    std::fprintf(stderr, "Chaos: the participants do not meet\n");
    return EXIT_FAILURE;
  }
  for (int round = 1; round <= rounds && isInterrupted == 0; ++round)
  {
    const auto& [name, fault] = faults[random() % faults.size()];
    chaos.Play(round, name, fault);
  }
  chaos.Print(static_cast<double>(time.elapsed()) / 1000);
  return chaos.IsFlawless() ? EXIT_SUCCESS : EXIT_FAILURE;
}
