// The bus, in the order in which a message travels: packets, what becomes of them, the participant that says
// one, the election that gives it a server, the server that routes it, the participant that hears it, the
// members, and the way out.
//
// Everything of a context happens on one thread, from two timers: CheckSocket is the client's tick, and in
// the serving process CheckClients is the server's. Neither waits for bytes that are not there yet: a
// PacketReader takes the bytes of a packet as they come, and reports one that stalls.
// The connection and the handshake on either side block; the pauses after a broken connection do not.
//
// A listener may do anything, destroying the context that calls it included. So an entry point holds the Impl
// alive, lists are walked by copy, and after every call `closing` is looked at before anything else.

#include <Common/Bazaar.h>

#include <Common/Bazaar/PacketReader.h>
#include <Common/Bazaar/Rendezvous.h>
#include <Common/Platform/LocalPeer.h>
#include <Common/Printable.h>

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>
#include <QLocalSocket>
#include <QMap>
#include <QPair>
#include <QPointer>
#include <QSet>
#include <QTimer>
#include <QVector>

#include <boost/chrono.hpp>
#include <boost/thread/locks.hpp>
#include <boost/thread/mutex.hpp>
#include <glog/logging.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <limits>
#include <poll.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace Tavrik::Bazaar
{

using namespace Details;
using SteadyClock = boost::chrono::steady_clock;

namespace
{

// ---- Names and periods ----------------------------------------------------------------------------------

const QString userIdString = QLatin1Char(':') + QString::number(getuid());

// QDir::tempPath() is empty when the temporary folder does not exist, and QDir takes an empty path for the
// current folder. Nothing can be created below /dev/null.
QDir GetTemporaryFolder()
{
  const QString path = QDir::tempPath();
  return QDir(path.isEmpty() ? QStringLiteral("/dev/null") : path);
}

const QString pathToSocket = GetTemporaryFolder().absolutePath() + QLatin1Char('/');
// Not used by the bus itself.
const QString baseServerName =
    GetTemporaryFolder().absoluteFilePath(QStringLiteral("tavrik:bazaar:ipc:1.0") + userIdString);

QSet<QPair<QString, QString>> usedContextAndClientPairs;
boost::mutex usedContextAndClientPairsMutex;

const int tickPeriod = 20;               // ms, of both timers
const int serverTimeout = 3000;          // ms, for a server that may not exist to accept
const int ownServerTimeout = 30000;      // ms, for a server that must exist to accept
const int introductionTimeout = 50;      // ms, for another look at an introduction that is not there whole
const int lockTimeout = 3000;            // ms, for another participant's start-up to end
const int servicePause = 20;             // ms, from a broken connection to the end of an own server
const int shortestPause = 20;            // ms, from then to the next attempt, and at random up to
const int reconnectSpread = 150;         // ms more
const int retryPause = 1000;             // ms, in place of the former after an attempt that failed
const int serverCheckPeriod = 1000;      // ms, between two looks at whether the server's process still lives
const int heartbeat = 100;               // ms, between two looks at whether the server still lives
const int drainTimeout = 30000;          // ms without a connection, after which a queue is given up
const int writeOutTimeout = 3000;        // ms without progress, after which unwritten bytes are given up
const long long settleTime = 300000000;  // ns after a connection before anything is sent
const long long readingTime = 100000000; // ns that one tick may spend on reading
const int smallestIntroduction = 30;     // bytes
const int smallestReadAhead = 4096;      // bytes that Qt may read ahead where packets are limited
const int warningPeriod = 10000;         // ms in which breaches of a limit are logged once
const int longestShownName = 64;         // bytes of a name in such a line

// ---- Limits ---------------------------------------------------------------------------------------------

using LimitField = long long Limits::*;

Limits processLimits;
boost::mutex processLimitsMutex;

long long Nanoseconds(SteadyClock::duration duration)
{
  return boost::chrono::duration_cast<boost::chrono::nanoseconds>(duration).count();
}

// Unlike QString::fromUtf8(name), neither cut at a zero byte nor without its byte order mark: names are
// compared whole.
QString ToWholeString(const QByteArray& name)
{
  const QString text = QString::fromUtf8(name.constData(), name.size());
  return name.startsWith("\xEF\xBB\xBF") ? QChar(QChar::ByteOrderMark) + text : text;
}

} // namespace

namespace Details
{

// The packets of one connection, at the rate that it is allowed.
class Intake : public PacketReader
{
public:
  using PacketReader::PacketReader;

  bool IsPaused() const { return Clock::now() < end; }

  // For as long as the last packet takes at `rate` bytes a second.
  void Pause(long long rate)
  {
    const double pause = static_cast<double>(LastSize()) / static_cast<double>(rate);
    end = Clock::now() + boost::chrono::microseconds(static_cast<long long>(pause * 1e6));
  }

private:
  Clock::time_point end;
};

} // namespace Details

namespace
{

// ---- What becomes of a message --------------------------------------------------------------------------

const QByteArray noError("OK");
const QByteArray errorUnknown("UNKNOWN");
const QByteArray errorNotSent("NOT SENT");
const QByteArray errorNotWritten("NOT WRITTEN");
const QByteArray errorNoRecipient("NO RECIPIENT");

const QMap<QString, Error>& GetErrorCodes()
{
  static const QMap<QString, Error> erroCodecs = {
      {QString::fromLatin1(noError), NoError},
      {QString::fromLatin1(errorNotSent), ErrorNotSent},
      {QString::fromLatin1(errorNotWritten), ErrorNotWritten},
      {QString::fromLatin1(errorNoRecipient), ErrorNoRecipient},
  };
  return erroCodecs;
}

const QMap<QString, Error> errorCodes = GetErrorCodes();

// ---- The rendezvous -------------------------------------------------------------------------------------

// Another user may have squatted the name in a shared temporary directory.
bool IsTrusted(const Platform::LocalPeer& peer)
{
  return !peer.isKnown || Details::IsTrustedUser(peer.userId);
}

// What a server leaves when it ends may still be held open by a process that it has forked.
bool HasEnded(const Platform::ProcessIdentity& process)
{
  return process.pid > 0 && !Platform::IsAlive(process);
}

bool IsOwnProcess(const Platform::ProcessIdentity& process)
{
  return process.pid <= 0 || process.pid == getpid();
}

int Random()
{
  QT_WARNING_PUSH
  QT_WARNING_DISABLE_DEPRECATED
  return qrand();
  QT_WARNING_POP
}

bool IsConnected(const QLocalSocket* socket)
{
  return socket && socket->state() == QLocalSocket::ConnectedState;
}

// A write that fails makes Qt forget what has come by then, unless it has been looked at.
void KeepIncoming(QLocalSocket* socket)
{
  QObject::connect(
      socket, &QLocalSocket::errorOccurred, socket,
      [socket](QLocalSocket::LocalSocketError error)
      {
        if (error == QLocalSocket::PeerClosedError)
          socket->peek(socket->bytesAvailable());
      },
      Qt::DirectConnection);
}

// Lets the event loop run once, sleeping until it has something to do. Somebody's timer must be running.
void RunEventLoop()
{
  QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

} // namespace

// ---- The participant ------------------------------------------------------------------------------------

class Context::Impl : public std::enable_shared_from_this<Context::Impl>
{
public:
  struct PendingMessage
  {
    long long id;
    QByteArray recipient;
    QByteArray packet;
  };

  // Somebody who has connected and is not admitted yet.
  struct Entrant
  {
    QPointer<QLocalSocket> client;
    Details::Intake intake;
    QElapsedTimer waiting;
    bool isDeaf = false; // his first packet was no introduction, and he is not read again
  };

  // How often the breach of one limit was not told, and since when.
  struct Silence
  {
    QElapsedTimer since;
    long long untold = 0;
  };

  Impl(const QString& contextName, const QString& clientName, int flags);

  // Limits
  long long LargestPacket() const;
  void LimitReading(QLocalSocket* of) const;
  bool CanHear(const QLocalSocket* peer) const;
  void Warn(LimitField breached, const QByteArray& text);

  // Saying
  long long Say(const QByteArray& recipient, const QByteArray& data);
  void FlushPending();
  bool Write(const QByteArray& packet);
  void CancelMessagaesWithoutRecipient();
  void CountPending();
  bool HasRoomFor(const QByteArray& packet);

  // Start-up
  bool Init();
  bool Register();
  void Unregister();
  bool Connect(int timeout);
  bool ConnectToElected();
  void NoteConnection();
  bool GiveUp();
  bool FailAttempt(bool isTicking);
  void BecomeServer();
  void RemoveSocketFile();
  bool ShakeHands();
  void SendIntroduction();
  bool WaitForReply(Packet* reply);
  bool TakeReply(Packet* reply);
  void StartOver();
  bool IsServerGone() const;
  bool IsServerProcessGone();
  void Attach();
  void ScheduleReconnect();
  void EndService();
  bool IsPausing() const;
  bool IsReconnecting() const;
  bool IsLockBusy();
  std::unique_ptr<Details::StartupLock> TakeLock();
  void DropSocket();
  void DropServer();
  void StopServing();

  // Serving
  void AddClient(QLocalSocket* client);
  void AddOwnClient(QLocalSocket* client);
  void Enter(const QByteArray& name, QLocalSocket* client);
  bool HasRoomForClients();
  void CheckEntrants();
  bool Receive(Entrant* entrant);
  bool Admit(QLocalSocket* client, const Packet& packet);
  bool IsNameTooLong(const QByteArray& name) const;
  bool IsBehind(QLocalSocket* client, const QByteArray& packet);
  void Ignore(QLocalSocket* client);
  void Refuse(QLocalSocket* client);
  void Expel(const QByteArray& name);
  void ExpelTheIdle();
  void WaitForIntroduction(QLocalSocket* client);
  bool IsNameTaken(const QByteArray& name);
  void RemoveDisconnectedClients();
  void RemoveClient(const QByteArray& name);
  void SendStatus();
  void TellMembers();
  void CheckClients();
  void AlignTicks();
  void HearOwn();
  void RouteAll();
  bool TakeAndRoute(const QByteArray& name, QLocalSocket* client, bool isPaced = false);
  void RoutePacket(const QByteArray& name, const Packet& packet);
  void SendMessage(const QByteArray& sender, const QByteArray& recipient, const QByteArray& data,
                   long long id);
  bool Send(QLocalSocket* client, const QByteArray& packet);
  void SendResultToClient(const QByteArray& name, long long id, const QByteArray& code);
  void SendResult(QLocalSocket* client, long long id, const QByteArray& code);

  // Hearing
  void CheckSocket();
  void Tick();
  void ReadIncoming(long long limit);
  void DispatchPacket(const Packet& packet);
  void DispatchMessage(const Packet& packet);
  void DispatchStatus(const Packet& packet);
  void DispatchResult(const Packet& packet);
  Error ConvertErrorCode(const QByteArray& word) const;
  long long TimeSinceConnection() const;

  // Members and listeners
  void ForAllListeners(const std::function<void(std::shared_ptr<Listener>)>& call);
  void DispatchMembership(const BodyStatus& status);
  bool HasMember(const QByteArray& name) const;
  bool WaitMember(const QByteArray& name, long long timeout);
  QPair<QString, QString> GetContextAndClientPair() const;

  // Leaving
  void Drain();
  void WriteOut();
  long long CountUnwritten();
  void PassOnOwnMessages();
  void Leave();

  const Limits limits;
  std::vector<std::pair<LimitField, Silence>> silences;
  int flags;
  QByteArray contextName;
  QByteArray clientName;
  QString serverName;
  const pid_t process = getpid();
  bool closing = false; // set when the Context is destroyed: everything on the stack has to unwind
  SteadyClock::time_point lastConnectTime;
  std::unique_ptr<QLocalSocket> socket;
  Details::Intake intake;                  // of `socket`
  Platform::ProcessIdentity serverProcess; // at the other end of `socket`
  Details::SocketFile serverFile;          // through which `socket` connected
  QTimer socketTimer;
  bool isSettled = false; // whether this tick may send and tell of members
  int tickDepth = 0;      // a Qt timer does not fire again within its own call
  long long lastMessageId = 0;
  bool isRegistered = false; // whether the pair of names was entered by this context
  bool reconnectRequested = false;
  QTimer serviceTimer;                               // from a broken connection to the end of an own server
  QTimer reconnectTimer;                             // from then until a reconnection is requested
  QElapsedTimer lockWait;                            // since the start-up lock is wanted
  std::unique_ptr<Details::StartupLock> startupLock; // taken for the reconnection that is about to begin
  int reconnectPause = 0;                            // ms of `reconnectTimer`
  bool isUnreachable = false; // whether the latest attempt found no server and made none
  bool isUnanswered = false;  // whether it found one that did not answer
  QElapsedTimer serverCheck;  // since the last look at the server's process
  QVector<QByteArray> deferredStatus;
  QVector<PendingMessage> pending;
  long long pendingBytes = 0;  // of the packets in `pending`
  bool isReplyOverdue = false; // whether the last handshake ended for that
  QVector<QByteArray> members;
  std::unique_ptr<Details::ListeningSocket> server; // `socket` is connected to it; or empty
  Details::SocketFile ownFile;                      // through which others connect to `server`
  QMap<QByteArray, QPointer<QLocalSocket>> clients;
  QHash<const QLocalSocket*, Details::Intake> intakes; // of `clients`
  QVector<Entrant> entrants;
  int statusesToSend = 0;
  bool haveClientsSpoken = false; // whether there may be something to route
  bool hasOwnSpoken = false; // whether this participant wrote to its own server since the server's last tick
  QVector<std::weak_ptr<Listener>> listeners;
  QVector<std::weak_ptr<Listener>> stagedListeners;
  QTimer clientsTimer;
  int ticksToAlignment = 0;
  QMetaObject::Connection quitConnection;
};

Context::Impl::Impl(const QString& contextName, const QString& clientName, int flags)
    : limits(GetLimits()), flags(flags), contextName(contextName.toUtf8()), clientName(clientName.toUtf8())
{
  const QString name =
      QStringLiteral("tavrik:bazaar:ipc:1.0") + userIdString + QLatin1Char(':') + contextName;
  serverName = pathToSocket +
               QString::fromLatin1(QCryptographicHash::hash(name.toUtf8(), QCryptographicHash::Sha1).toHex());

  QObject::connect(
      &clientsTimer, &QTimer::timeout, &clientsTimer, [this] { CheckClients(); }, Qt::DirectConnection);
  serviceTimer.setSingleShot(true);
  QObject::connect(
      &serviceTimer, &QTimer::timeout, &serviceTimer, [this] { EndService(); }, Qt::DirectConnection);
  reconnectTimer.setSingleShot(true);
  reconnectTimer.setTimerType(Qt::PreciseTimer);
  QObject::connect(
      &reconnectTimer, &QTimer::timeout, &reconnectTimer,
      [this]
      {
        reconnectRequested = true;
        lockWait.start();
      },
      Qt::DirectConnection);
  if (QCoreApplication::instance())
    quitConnection =
        QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, &clientsTimer,
                         [this]
                         {
                           const auto self = shared_from_this();
                           if (process == getpid())
                             Drain();
                         });
}

// ---- Limits ---------------------------------------------------------------------------------------------

long long Context::Impl::LargestPacket() const
{
  return limits.packetSize > 0 ? limits.packetSize : std::numeric_limits<long long>::max();
}

void Context::Impl::LimitReading(QLocalSocket* of) const
{
  if (limits.packetSize > 0)
    of->setReadBufferSize(std::max<long long>(limits.packetSize, smallestReadAhead));
}

// A write that fails loses what the system still holds, and where reading is limited, that may be much.
bool Context::Impl::CanHear(const QLocalSocket* peer) const
{
  if (!IsConnected(peer))
    return false;
  pollfd end = {static_cast<int>(peer->socketDescriptor()), 0, 0};
  return limits.packetSize <= 0 || poll(&end, 1, 0) <= 0 || (end.revents & POLLHUP) == 0;
}

void Context::Impl::Warn(LimitField breached, const QByteArray& text)
{
  auto silence = std::find_if(silences.begin(), silences.end(),
                              [&](const auto& other) { return other.first == breached; });
  if (silence == silences.end())
    silence = silences.insert(silences.end(), {breached, Silence()});
  else if (!silence->second.since.hasExpired(warningPeriod))
  {
    ++silence->second.untold;
    return;
  }
  const long long untold = silence->second.untold;
  LOG(WARNING) << Printable(text).constData()
               << (untold > 0 ? " (and " + QByteArray::number(untold) + " times more since the last line)"
                              : QByteArray())
                      .constData();
  silence->second.untold = 0;
  silence->second.since.start();
}

// ---- Saying ---------------------------------------------------------------------------------------------

long long Context::Impl::Say(const QByteArray& recipient, const QByteArray& data)
{
  const long long id = lastMessageId + 1;
  const QByteArray packet = CreateMessagePacket(contextName, id, recipient, data,
                                                std::min<long long>(largestArray, LargestPacket()));
  if (packet.isEmpty() && limits.packetSize > 0)
    Warn(&Limits::packetSize, "A message is larger than a packet may be and will not be sent");
  if (!HasRoomFor(packet))
    return -1;
  pending.append({id, recipient, packet});
  pendingBytes += packet.size();
  lastMessageId = id;
  return id;
}

bool Context::Impl::HasRoomFor(const QByteArray& packet)
{
  if (limits.queuedMessages > 0 && pending.size() >= limits.queuedMessages)
  {
    Warn(&Limits::queuedMessages, "The queue is full of messages and refuses another");
    return false;
  }
  const long long unwritten = socket ? socket->bytesToWrite() : 0;
  if (limits.queuedBytes > 0 && pendingBytes + unwritten + packet.size() > limits.queuedBytes)
  {
    Warn(&Limits::queuedBytes, "The queue has no room for the bytes of a message and refuses it");
    return false;
  }
  return true;
}

void Context::Impl::CountPending()
{
  pendingBytes = 0;
  for (const PendingMessage& message : qAsConst(pending))
    pendingBytes += message.packet.size();
}

void Context::Impl::FlushPending()
{
  QVector<PendingMessage> held;
  QVector<long long> unsent;
  for (const PendingMessage& message : qAsConst(pending))
  {
    if ((flags & HoldUntilMember) != 0 && !HasMember(message.recipient))
      held.append(message);
    else if (!Write(message.packet))
      unsent.append(message.id);
  }
  const bool hasSpoken = pending.size() > held.size() + unsent.size();
  pending = held;
  CountPending();
  if (server && hasSpoken)
  {
    socket->flush();
    hasOwnSpoken = true;
  }

  const Error notSent = ConvertErrorCode(errorNotSent);
  for (const long long id : qAsConst(unsent))
    ForAllListeners([&](const std::shared_ptr<Listener>& listener)
                    { listener->OnResult(id, notSent, QString()); });
}

// An empty packet is that of a message too long to be built.
bool Context::Impl::Write(const QByteArray& packet)
{
  return !packet.isEmpty() && CanHear(socket.get()) && socket->write(packet) == packet.size();
}

void Context::Impl::CancelMessagaesWithoutRecipient()
{
  const auto hasNoRecipient = [this](const PendingMessage& message) { return !HasMember(message.recipient); };
  pending.erase(std::remove_if(pending.begin(), pending.end(), hasNoRecipient), pending.end());
  CountPending();
}

// ---- Start-up and election ------------------------------------------------------------------------------

namespace
{

// The first connection that a server of this process accepts is the process's own and comes without an
// introduction. It belongs to the server that claims it: two that start before the event loop runs must not
// both believe to be first.
class FirstAdmission
{
public:
  // Whether the own connection of `server` may stay silent.
  static bool Claim(const void* server)
  {
    const void* nobody = nullptr;
    return owner.compare_exchange_strong(nobody, server);
  }

  static bool Use(const void* server) { return owner.compare_exchange_strong(server, &owner); }

  // A claim that was never used goes back.
  static void Release(const void* server) { owner.compare_exchange_strong(server, nullptr); }

private:
  static std::atomic<const void*> owner; // of itself once it is used up
};

std::atomic<const void*> FirstAdmission::owner{nullptr};

} // namespace

bool Context::Impl::Init()
{
  if (reconnectRequested)
  {
    reconnectRequested = false;
    DropSocket();
    Unregister();
  }
  if (socket)
    return true;
  if (!Register())
    return false;

  const bool isTicking = socketTimer.isActive();
  bool isElected = false; // by this attempt, whoever it was
  {
    const auto lock = TakeLock();
    if (Connect(serverTimeout))
      NoteConnection();
    else if ((flags & NoServer) != 0)
      return GiveUp();
    else
    {
      BecomeServer();
      isElected = true;
      if (!ConnectToElected())
        return FailAttempt(isTicking);
      // Without the lock another server may have put its file there before or after the look at the own one.
      if (server && (!IsOwnProcess(serverProcess) || !ownFile.IsSameNode(serverFile)))
        DropServer();
    }
  }
  bool isAnswered = ShakeHands();
  if (!closing && !isElected && !IsReconnecting() && !IsConnected(socket.get()))
  {
    if (!ConnectToElected())
      return FailAttempt(isTicking);
    isAnswered = ShakeHands();
  }
  if (closing)
    return false;

  // A server that never answers must not make every further tick come once more.
  if (!isTicking || isAnswered)
    Attach();
  if (isTicking && !IsReconnecting() && !IsConnected(socket.get()))
    ScheduleReconnect();
  isUnanswered = !isAnswered;
  return true;
}

bool Context::Impl::Register()
{
  const auto pair = GetContextAndClientPair();
  const boost::unique_lock<boost::mutex> lock(usedContextAndClientPairsMutex);
  if (usedContextAndClientPairs.contains(pair))
  {
    LOG(ERROR) << "The context name " << Printable(contextName).constData()
               << " is already in use with the client name " << Printable(clientName).constData();
    return false;
  }
  usedContextAndClientPairs.insert(pair);
  isRegistered = true;
  return true;
}

void Context::Impl::Unregister()
{
  if (!isRegistered)
    return;
  const boost::unique_lock<boost::mutex> lock(usedContextAndClientPairsMutex);
  usedContextAndClientPairs.remove(GetContextAndClientPair());
  isRegistered = false;
}

bool Context::Impl::Connect(int timeout)
{
  socket = std::make_unique<QLocalSocket>();
  LimitReading(socket.get());
  intake = Details::Intake(LargestPacket());
  // Waiting for another user's server may take the whole time limit.
  if (!Details::IsTrustedSocketFile(serverName))
    return false;
  socket->connectToServer(serverName, QIODevice::ReadWrite);
  if (!socket->waitForConnected(timeout))
    return false;

  const Platform::LocalPeer peer = Platform::GetLocalPeer(static_cast<int>(socket->socketDescriptor()));
  if (!IsTrusted(peer) || HasEnded(peer.process))
  {
    socket->abort();
    return false;
  }
  serverProcess = peer.process;
  serverFile = Details::LookAtSocketFile(serverName);
  serverCheck.start();
  return true;
}

bool Context::Impl::ConnectToElected()
{
  if (Connect(ownServerTimeout))
  {
    NoteConnection();
    return true;
  }
  LOG_IF(ERROR, !isUnreachable) << Printable(clientName).constData() << " couldn't connect to the server ("
                                << static_cast<const void*>(serverName.constData()) << ")";
  isUnreachable = true;
  return false;
}

void Context::Impl::NoteConnection()
{
  lastConnectTime = SteadyClock::now();
  isUnreachable = false;
  LOG(INFO) << Printable(clientName).constData() << " has connected to a server ("
            << static_cast<const void*>(serverName.constData()) << ")";
}

bool Context::Impl::GiveUp()
{
  clientsTimer.stop();
  LOG(WARNING) << "Can't connect to a server and the NO SERVER flag is set ("
               << Printable(clientName).constData() << "): " << QFile::exists(serverName);
  return false;
}

// A participant that has not started yet stays away; one that ticks tries again.
bool Context::Impl::FailAttempt(bool isTicking)
{
  if (isTicking && (flags & NoServer) == 0)
    ScheduleReconnect();
  return false;
}

void Context::Impl::BecomeServer()
{
  // Without a descriptor for it, no other server could be reached either: its file stays.
  auto candidate = Details::ListeningSocket::Open();
  if (!candidate)
    return;
  RemoveSocketFile();
  clients.clear();
  intakes.clear();
  entrants.clear();

  if (!candidate->Listen(serverName))
    return;
  ownFile = Details::LookAtSocketFile(serverName);
  server = std::move(candidate);
  QObject::connect(
      server.get(), &Details::ListeningSocket::Accepted, server.get(),
      [this](QLocalSocket* client) { AddClient(client); }, Qt::DirectConnection);
  clientsTimer.start(tickPeriod);
  ticksToAlignment = 0;
}

void Context::Impl::RemoveSocketFile()
{
  if (!QFile::remove(serverName))
    VLOG(30) << "Can't remove an old local socket file: " << Printable(serverName).constData();
}

// Whether the server has answered, well or badly, or need not.
bool Context::Impl::ShakeHands()
{
  isReplyOverdue = false;
  if (server && FirstAdmission::Claim(this))
    return true;

  SendIntroduction();
  Packet packet;
  if (!WaitForReply(&packet))
    return false;
  if (!IsUsable(packet))
  {
    LOG(ERROR) << "Can't read a packet";
    return true;
  }
  if (packet.command != commandStatus)
  {
    LOG(ERROR) << "Expected " << commandStatus.constData() << " got "
               << Printable(packet.command).constData();
    return true;
  }
  const BodyStatus status = ParseBodyStatus(packet.body);
  if (status.members.isEmpty())
    LOG(ERROR) << "Can't parse a body of the command " << Printable(packet.command).constData();
  else
    DispatchMembership(status);
  return true;
}

void Context::Impl::SendIntroduction()
{
  socket->write(CreatePacket(contextName, commandMessage, CreateBodyMessage(0, QByteArray(), clientName)));
  socket->waitForBytesWritten(transferTimeout);
}

// A server that refuses the name hangs up and never answers: that wait has no end. One that is gone cannot
// answer.
bool Context::Impl::WaitForReply(Packet* reply)
{
  QTimer wakeUp;
  wakeUp.start(limits.replyTime > 0 ? static_cast<int>(std::min<long long>(limits.replyTime, heartbeat))
                                    : heartbeat);
  QElapsedTimer waiting;
  waiting.start();
  while (!TakeReply(reply))
  {
    if (IsServerGone())
    {
      ScheduleReconnect();
      return false;
    }
    if (intake.IsTooLarge())
    {
      Warn(&Limits::packetSize, "The server answers with a packet that is too large");
      StartOver();
      return false;
    }
    if (limits.replyTime > 0 && waiting.hasExpired(limits.replyTime))
    {
      Warn(&Limits::replyTime, clientName + " has waited too long for the server to answer");
      StartOver();
      return false;
    }
    RunEventLoop();
    if (closing)
      return false;
  }
  return true;
}

// Without limits the answer is waited for as soon as it begins.
bool Context::Impl::TakeReply(Packet* reply)
{
  if (limits.replyTime > 0 || limits.packetSize > 0)
    return intake.Take(socket.get(), reply);
  if (socket->bytesAvailable() == 0)
    return false;
  *reply = ReadPacket(socket.get());
  return true;
}

void Context::Impl::StartOver()
{
  isReplyOverdue = true;
  socket->abort();
  ScheduleReconnect();
}

bool Context::Impl::IsServerGone() const
{
  const bool isConnected = IsConnected(socket.get());
  if (HasEnded(serverProcess))
    return true;
  return !isConnected && (serverProcess.pid <= 0 || !(Details::LookAtSocketFile(serverName) == serverFile));
}

// A process that the server has forked may keep the connection of a server that has ended open.
bool Context::Impl::IsServerProcessGone()
{
  if (!IsConnected(socket.get()) || !serverCheck.hasExpired(serverCheckPeriod))
    return false;
  serverCheck.start();
  return HasEnded(serverProcess);
}

void Context::Impl::Attach()
{
  KeepIncoming(socket.get());
  QObject::connect(
      socket.get(), &QLocalSocket::disconnected, socket.get(), [this] { ScheduleReconnect(); },
      Qt::DirectConnection);
  QObject::connect(
      socket.get(), &QLocalSocket::errorOccurred, socket.get(),
      [this]
      {
        // A wait that merely timed out is an error, too.
        if (!IsConnected(socket.get()))
          ScheduleReconnect();
      },
      Qt::DirectConnection);
  // One more connection for every reconnection: after k of them a tick comes k + 1 times.
  QObject::connect(
      &socketTimer, &QTimer::timeout, &socketTimer, [this] { CheckSocket(); }, Qt::DirectConnection);
  // Starting it anew within its own call would let it fire inside that call.
  if (!socketTimer.isActive())
    socketTimer.start(tickPeriod);
}

// Nothing waits here: the ticks do nothing until both pauses are over. The random one spreads the survivors
// of a server over time.
void Context::Impl::ScheduleReconnect()
{
  if (IsReconnecting())
    return;
  if (server)
    server->Pause();
  // A server that ends in the handshake is replaced as soon as any other, but not time after time.
  reconnectPause = isUnreachable || isUnanswered ? retryPause : shortestPause;
  lockWait.start();
  serviceTimer.start(servicePause);
}

void Context::Impl::EndService()
{
  if (server)
  {
    if (IsLockBusy())
    {
      serviceTimer.start(tickPeriod);
      return;
    }
    StopServing();
    startupLock.reset();
  }
  reconnectTimer.start(reconnectPause + Random() % (reconnectSpread * 1000) / 1000);
}

bool Context::Impl::IsPausing() const
{
  return serviceTimer.isActive() || reconnectTimer.isActive();
}

bool Context::Impl::IsReconnecting() const
{
  return IsPausing() || reconnectRequested;
}

// Whether the lock has to be waited for, which has an end. Takes it otherwise.
bool Context::Impl::IsLockBusy()
{
  startupLock = std::make_unique<Details::StartupLock>(serverName);
  if (!startupLock->IsBusy() || lockWait.hasExpired(lockTimeout))
    return false;
  startupLock.reset();
  return true;
}

// Blocks, unless a tick has taken the lock already.
std::unique_ptr<Details::StartupLock> Context::Impl::TakeLock()
{
  if (!startupLock)
  {
    startupLock = std::make_unique<Details::StartupLock>(serverName);
    startupLock->Wait(lockTimeout);
  }
  return std::move(startupLock);
}

void Context::Impl::DropSocket()
{
  if (socket)
    socket->disconnect();
  socket.reset();
  intake = Details::Intake();
  deferredStatus.clear();
}

// Needs the start-up lock, or the file may be a successor's by the time that it is removed.
void Context::Impl::StopServing()
{
  DropServer();
  if (!Details::HasSuccessor(serverName, ownFile))
    RemoveSocketFile();
}

// Touches nothing outside the process.
void Context::Impl::DropServer()
{
  clientsTimer.stop();
  FirstAdmission::Release(this);
  for (QLocalSocket* client : server->findChildren<QLocalSocket*>())
    client->disconnect();
  server->disconnect();
  clients.clear();
  intakes.clear();
  entrants.clear();
  server.reset();
}

// ---- Serving: admission ---------------------------------------------------------------------------------

void Context::Impl::AddClient(QLocalSocket* client)
{
  if (!client)
    return;
  LimitReading(client);
  const Platform::LocalPeer peer = Platform::GetLocalPeer(static_cast<int>(client->socketDescriptor()));
  if (IsOwnProcess(peer.process) && FirstAdmission::Use(this))
  {
    AddOwnClient(client);
    return;
  }
  if (!HasRoomForClients())
  {
    Warn(&Limits::clients, "Too many clients: refused another");
    Refuse(client);
    return;
  }
  if (limits.admissionTime > 0 || limits.packetSize > 0)
  {
    QElapsedTimer waiting;
    waiting.start();
    entrants.append({client, Details::Intake(LargestPacket(), smallestIntroduction), waiting});
    return;
  }

  WaitForIntroduction(client);
  Admit(client, ReadPacket(client));
}

bool Context::Impl::HasRoomForClients()
{
  if (limits.clients <= 0)
    return true;
  const QList<QLocalSocket*> accepted = server->findChildren<QLocalSocket*>();
  return std::count_if(accepted.begin(), accepted.end(), &IsConnected) <= limits.clients;
}

void Context::Impl::CheckEntrants()
{
  QVector<Entrant> waiting;
  waiting.swap(entrants);
  for (Entrant& entrant : waiting)
    if (!Receive(&entrant))
      entrants.append(entrant);
}

// Whether the matter is settled, one way or the other.
bool Context::Impl::Receive(Entrant* entrant)
{
  QLocalSocket* const client = entrant->client;
  Packet packet;
  if (!client)
    return true;
  if (!entrant->isDeaf && entrant->intake.Take(client, &packet))
  {
    entrant->isDeaf = !Admit(client, packet);
    return !entrant->isDeaf;
  }
  if (!IsConnected(client))
  {
    if (!entrant->isDeaf)
      Admit(client, packet);
    return true;
  }
  if (entrant->intake.IsTooLarge())
  {
    Warn(&Limits::packetSize, "Refused somebody whose introduction is too large");
    Refuse(client);
    return true;
  }
  if (limits.admissionTime > 0 && entrant->waiting.hasExpired(limits.admissionTime))
  {
    Warn(&Limits::admissionTime, "Refused somebody who did not introduce himself in time");
    Refuse(client);
    return true;
  }
  return false;
}

// False when the socket stays without being admitted.
bool Context::Impl::Admit(QLocalSocket* client, const Packet& packet)
{
  if (!IsUsable(packet))
  {
    LOG(ERROR) << "Can't read a packet";
    client->deleteLater();
    return true;
  }
  if (packet.command != commandMessage)
  {
    LOG(ERROR) << "Got the command " << Printable(packet.command).constData()
               << " (expected: " << commandMessage.constData() << ")";
    Ignore(client);
    return false;
  }
  const BodyMessage introduction = ParseBodyMessage(packet.body);
  const QByteArray& name = introduction.second;
  if (introduction.id != 0 || !introduction.first.isEmpty())
    LOG(WARNING) << "Something strange with the initial message (MESSAGE ID: " << introduction.id
                 << "; RECIPIENT NAME: \"" << Printable(introduction.first).constData() << "\"; MESSAGE: \""
                 << Printable(name).constData() << "\")";

  RemoveDisconnectedClients();
  if (IsNameTaken(name))
  {
    LOG(ERROR) << "The client with the name \"" << Printable(name).constData() << "\" has alredy connected";
    client->deleteLater();
    return true;
  }
  if (IsNameTooLong(name))
  {
    Warn(&Limits::packetSize, "Refused a name that makes the list of members too large");
    Refuse(client);
    return true;
  }
  Enter(name, client);
  QObject::connect(
      client, &QLocalSocket::disconnected, client, [this] { RemoveDisconnectedClients(); },
      Qt::DirectConnection);
  SendStatus();
  // Nobody will tell of one who left while his introduction was read.
  if (!IsConnected(client))
    RemoveDisconnectedClients();
  return true;
}

// Leaves the connection open and discards what comes: only a socket that is read notices that its peer hangs
// up.
void Context::Impl::Ignore(QLocalSocket* client)
{
  const auto discard = [client] { client->skip(client->bytesAvailable()); };
  QObject::connect(client, &QLocalSocket::readyRead, client, discard, Qt::DirectConnection);
  QObject::connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
  discard();
  if (!IsConnected(client))
    client->deleteLater();
}

// A list that is too large would drive everybody away.
bool Context::Impl::IsNameTooLong(const QByteArray& name) const
{
  if (limits.packetSize <= 0)
    return false;
  long long size = preambleSize + smallestHeader + contextName.size() + commandStatus.size() + 4LL;
  for (const QByteArray& other : clients.keys() + QList<QByteArray>{name})
    size += 4LL + other.size();
  return size > limits.packetSize;
}

void Context::Impl::Refuse(QLocalSocket* client)
{
  client->disconnect();
  client->abort();
  client->deleteLater();
}

void Context::Impl::Expel(const QByteArray& name)
{
  const QPointer<QLocalSocket> client = clients.take(name);
  intakes.remove(client);
  Refuse(client);
  SendStatus();
}

bool Context::Impl::IsBehind(QLocalSocket* client, const QByteArray& packet)
{
  if (limits.unwrittenBytes <= 0 || client->bytesToWrite() + packet.size() <= limits.unwrittenBytes)
    return false;
  Warn(&Limits::unwrittenBytes, "A message finds too much unread before it and is not forwarded");
  return true;
}

// Not the server's own participant: it reads again once its listener lets it.
void Context::Impl::ExpelTheIdle()
{
  if (limits.unwrittenBytes <= 0)
    return;
  QVector<QByteArray> idle;
  for (auto client = clients.cbegin(); client != clients.cend(); ++client)
    if (client.key() != clientName && IsConnected(*client) &&
        (*client)->bytesToWrite() - limits.unwrittenBytes > limits.unwrittenBytes)
      idle.append(client.key());
  for (const QByteArray& name : qAsConst(idle))
  {
    if (!clients.value(name)) // left when another was shown the door
      continue;
    Warn(&Limits::unwrittenBytes, "Disconnected a client that does not read: " + name.left(longestShownName));
    Expel(name);
  }
}

void Context::Impl::AddOwnClient(QLocalSocket* client)
{
  Enter(clientName, client);
  if (!HasMember(clientName))
    members.append(clientName);
  SendStatus();
}

void Context::Impl::Enter(const QByteArray& name, QLocalSocket* client)
{
  clients.insert(name, client);
  haveClientsSpoken = true;
  KeepIncoming(client);
  QObject::connect(
      client, &QLocalSocket::readyRead, client, [this] { haveClientsSpoken = true; }, Qt::DirectConnection);
}

// A peer that lives and says nothing is waited for; one that has gone is not.
void Context::Impl::WaitForIntroduction(QLocalSocket* client)
{
  if (client->bytesAvailable() == 0)
    client->waitForReadyRead(transferTimeout);
  while (client->bytesAvailable() < smallestIntroduction && IsConnected(client))
    client->waitForReadyRead(introductionTimeout);
}

// Somebody who left and comes back may stand at the door before the event loop has told that he left.
bool Context::Impl::IsNameTaken(const QByteArray& name)
{
  const QPointer<QLocalSocket> holder = clients.value(name);
  const int looks = 64;
  for (int i = 0; i < looks && IsConnected(holder) && holder->waitForReadyRead(0); ++i)
    continue;
  return !clients.value(name).isNull();
}

void Context::Impl::RemoveDisconnectedClients()
{
  if (closing || !server)
    return;
  for (const QByteArray& name : clients.keys())
  {
    const QPointer<QLocalSocket> client = clients.value(name);
    if (client &&
        (client->state() == QLocalSocket::UnconnectedState || client->state() == QLocalSocket::ClosingState))
      RemoveClient(name);
  }
  SendStatus();
}

// What a client had sent whole when it left is still passed on.
void Context::Impl::RemoveClient(const QByteArray& name)
{
  const QPointer<QLocalSocket> client = clients.value(name);
  // A word to itself takes it off the table; what stands behind is passed on all the same.
  while (client && TakeAndRoute(name, client))
    continue;
  if (clients.value(name) == client)
    clients.remove(name);
  intakes.remove(client);
  if (client)
    client->deleteLater();
}

// Somebody may be found gone while the others are told. The list without him comes after this one, not in its
// middle: who is told last would hear the older list last.
void Context::Impl::SendStatus()
{
  if (statusesToSend++ > 0)
    return;
  for (; statusesToSend > 0; --statusesToSend)
    TellMembers();
}

void Context::Impl::TellMembers()
{
  const QList<QByteArray> names = clients.keys();
  const QByteArray packet = CreatePacket(contextName, commandStatus, CreateBodyStatus(names));
  for (const QByteArray& name : names)
  {
    const QPointer<QLocalSocket> client = clients.value(name);
    if (!CanHear(client))
      continue;
    // Who has not read what came before will not read this any sooner for being waited for.
    const bool isBehind = client->bytesToWrite() > 0;
    client->write(packet);
    // Unlike flush(), this reads first: writing to one who has left would lose what he had said.
    if (limits.unwrittenBytes > 0 || limits.packetSize > 0)
      client->waitForBytesWritten(0);
    else if (!isBehind)
      client->waitForBytesWritten(transferTimeout);
  }
}

// ---- Serving: routing -----------------------------------------------------------------------------------

void Context::Impl::CheckClients()
{
  if (IsPausing())
    return;
  if (Details::HasSuccessor(serverName, ownFile))
  {
    ScheduleReconnect();
    return;
  }
  server->Resume();
  AlignTicks();
  CheckEntrants();
  HearOwn();
  if (haveClientsSpoken)
    RouteAll();
  ExpelTheIdle();
}

// Two timers that are due at the same moment wake the process, and make it look at all its sockets, once.
// Seldom, because this puts the participant's tick off. A timer that is started within its own call could
// fire there.
void Context::Impl::AlignTicks()
{
  const int ticksBetween = 256;
  if (--ticksToAlignment > 0 || tickDepth > 0 || !socketTimer.isActive())
    return;
  socketTimer.start(tickPeriod);
  clientsTimer.start(tickPeriod);
  ticksToAlignment = ticksBetween;
}

// The event loop has not run since the participant's tick, which comes right before this one.
void Context::Impl::HearOwn()
{
  if (!std::exchange(hasOwnSpoken, false))
    return;
  const QPointer<QLocalSocket> own = clients.value(clientName);
  if (IsConnected(own))
    own->waitForReadyRead(0);
}

void Context::Impl::RouteAll()
{
  // Most have said nothing; the others may change who is there.
  QVector<QByteArray> speakers;
  for (auto client = clients.cbegin(); client != clients.cend(); ++client)
    if (*client && intakes.value(*client).IsDue(*client))
      speakers.append(client.key());
  haveClientsSpoken = !speakers.isEmpty();
  for (const QByteArray& name : qAsConst(speakers))
    TakeAndRoute(name, clients.value(name), limits.clientRate > 0 && name != clientName);
}

bool Context::Impl::TakeAndRoute(const QByteArray& name, QLocalSocket* client, bool isPaced)
{
  if (!client)
    return false;
  auto found = intakes.find(client);
  if (found == intakes.end())
    found = intakes.insert(client, Details::Intake(LargestPacket()));
  if (!found->IsDue(client) || (isPaced && found->IsPaused()))
    return false;
  Packet packet;
  if (found->Take(client, &packet))
  {
    if (isPaced)
      found->Pause(limits.clientRate);
    RoutePacket(name, packet);
    return true;
  }
  if (found->IsTooLarge() && IsConnected(client))
  {
    Warn(&Limits::packetSize,
         "Disconnected a client whose packet is too large: " + name.left(longestShownName));
    Expel(name);
  }
  return false;
}

void Context::Impl::RoutePacket(const QByteArray& name, const Packet& packet)
{
  if (!IsUsable(packet))
  {
    LOG(ERROR) << "Can't read a packet";
  }
  else if (packet.command == commandMessage)
  {
    const BodyMessage message = ParseBodyMessage(packet.body);
    SendMessage(name, message.first, message.second, message.id);
  }
  else
  {
    LOG(ERROR) << "Unexpected command \"" << Printable(packet.command).constData() << "\" from the client "
               << Printable(name).constData();
  }
}

void Context::Impl::SendMessage(const QByteArray& sender, const QByteArray& recipient, const QByteArray& data,
                                long long id)
{
  const QPointer<QLocalSocket> target = clients.value(recipient);
  if (!target)
  {
    SendResultToClient(sender, id, errorNoRecipient);
    return;
  }
  if (!IsConnected(target))
  {
    clients.remove(recipient);
    intakes.remove(target);
    target->deleteLater();
    LOG(WARNING) << "Client " << Printable(recipient).constData() << " is not connected";
    return;
  }
  const QByteArray packet =
      CreateMessagePacket(contextName, 0, sender, data, std::min<long long>(largestArray, LargestPacket()));
  if (packet.isEmpty() && limits.packetSize > 0)
    Warn(&Limits::packetSize, "A message is larger than a packet may be and is not forwarded");
  const bool isWritten =
      !packet.isEmpty() && !IsBehind(target, packet) && CanHear(target) && Send(target, packet);
  SendResultToClient(sender, id, isWritten ? noError : errorNotWritten);
}

// Whether it is accepted. Where reading is limited it goes at once, before its recipient may leave.
bool Context::Impl::Send(QLocalSocket* client, const QByteArray& packet)
{
  const bool isAccepted = client->write(packet) == packet.size();
  if (limits.packetSize > 0)
    client->flush();
  return isAccepted;
}

void Context::Impl::SendResultToClient(const QByteArray& name, long long id, const QByteArray& code)
{
  const QPointer<QLocalSocket> client = clients.value(name);
  if (CanHear(client))
    SendResult(client, id, code);
}

void Context::Impl::SendResult(QLocalSocket* client, long long id, const QByteArray& code)
{
  Send(client, CreatePacket(contextName, commandResult, CreateBodyMessage(id, code, QByteArray())));
}

// ---- Hearing --------------------------------------------------------------------------------------------

void Context::Impl::CheckSocket()
{
  const auto self = shared_from_this();
  ++tickDepth;
  Tick();
  --tickDepth;
}

void Context::Impl::Tick()
{
  if (IsPausing())
    return;
  isSettled = TimeSinceConnection() >= settleTime;

  if (reconnectRequested)
  {
    // What came before the connection broke would go with the socket.
    ReadIncoming(std::numeric_limits<long long>::max());
    if (closing || IsLockBusy())
      return;
  }
  else if (IsServerProcessGone())
  {
    ScheduleReconnect();
    return;
  }

  const SteadyClock::time_point previousConnectTime = lastConnectTime;
  const bool isStarted = Init();
  startupLock.reset();
  if (closing)
    return;
  if (!isStarted)
  {
    if (isSettled && (flags & NoServer) != 0)
    {
      members.clear();
      DispatchMembership(BodyStatus());
    }
    return;
  }
  if (lastConnectTime != previousConnectTime)
    isSettled = TimeSinceConnection() >= settleTime;

  if (isSettled && !deferredStatus.isEmpty())
  {
    BodyStatus status;
    status.members.swap(deferredStatus);
    DispatchMembership(status);
  }
  ReadIncoming(readingTime);
  if ((isSettled || isReplyOverdue) && !closing)
    FlushPending();
}

void Context::Impl::ReadIncoming(long long limit)
{
  const SteadyClock::time_point start = SteadyClock::now();
  while (!closing && socket && intake.IsDue(socket.get()) && Nanoseconds(SteadyClock::now() - start) < limit)
  {
    Packet packet;
    if (!intake.Take(socket.get(), &packet))
      break;
    DispatchPacket(packet);
  }
  if (!closing && intake.IsTooLarge() && IsConnected(socket.get()))
  {
    Warn(&Limits::packetSize, "The server sends a packet that is too large");
    socket->abort();
  }
}

void Context::Impl::DispatchPacket(const Packet& packet)
{
  if (!IsUsable(packet))
    LOG(ERROR) << "Can't read a packet";
  else if (packet.command == commandMessage)
    DispatchMessage(packet);
  else if (packet.command == commandStatus)
    DispatchStatus(packet);
  else if (packet.command == commandResult)
    DispatchResult(packet);
  else
    LOG(ERROR) << "Unexpected command \"" << Printable(packet.command).constData();
}

void Context::Impl::DispatchMessage(const Packet& packet)
{
  const BodyMessage message = ParseBodyMessage(packet.body);
  const QString sender = QString::fromUtf8(message.first);
  ForAllListeners([&](const std::shared_ptr<Listener>& listener)
                  { listener->OnMessage(sender, message.second); });
}

void Context::Impl::DispatchStatus(const Packet& packet)
{
  const BodyStatus status = ParseBodyStatus(packet.body);
  if (status.members.isEmpty())
    LOG(ERROR) << "Can't parse a body of the command " << Printable(packet.command).constData();
  else if (!isSettled)
    deferredStatus = status.members;
  else
    DispatchMembership(status);
}

void Context::Impl::DispatchResult(const Packet& packet)
{
  const long long id = UnpackNumber<long long>(packet.body, 0);
  QByteArray code;
  QByteArray description;
  if (!UnpackBytes(packet.body, 8, &code))
    LOG(ERROR) << "Can't parse an error code";
  else if (!UnpackBytes(packet.body, 12LL + code.size(), &description))
    LOG(ERROR) << "Can't parse an error description";
  const Error result = ConvertErrorCode(code);
  const QString note = QString::fromUtf8(description);
  ForAllListeners([&](const std::shared_ptr<Listener>& listener) { listener->OnResult(id, result, note); });
}

Error Context::Impl::ConvertErrorCode(const QByteArray& word) const
{
  return errorCodes.value(QString::fromLatin1(word), ErrorUnknown);
}

long long Context::Impl::TimeSinceConnection() const
{
  return Nanoseconds(SteadyClock::now() - lastConnectTime);
}

// ---- Members and listeners ------------------------------------------------------------------------------

void Context::Impl::ForAllListeners(const std::function<void(std::shared_ptr<Listener>)>& call)
{
  listeners += stagedListeners;
  stagedListeners.clear();

  const QVector<std::weak_ptr<Listener>> walked = listeners;
  for (const std::weak_ptr<Listener>& reference : walked)
  {
    if (closing)
      return;
    if (const std::shared_ptr<Listener> listener = reference.lock())
      call(listener);
  }
  listeners.erase(std::remove_if(listeners.begin(), listeners.end(),
                                 [](const std::weak_ptr<Listener>& reference)
                                 { return reference.expired(); }),
                  listeners.end());
}

void Context::Impl::DispatchMembership(const BodyStatus& status)
{
  const auto difference = [](const QVector<QByteArray>& names, const QVector<QByteArray>& others)
  {
    const QSet<QByteArray> known(others.begin(), others.end());
    QStringList missing;
    for (const QByteArray& name : names)
      if (!known.contains(name))
        missing.append(QString::fromUtf8(name));
    return missing;
  };
  const QStringList departed = difference(members, status.members);
  const QStringList arrived = difference(status.members, members);
  members = status.members;

  for (const QString& name : departed)
    ForAllListeners([&](const std::shared_ptr<Listener>& listener) { listener->OnMemberLeft(name); });
  for (const QString& name : arrived)
    ForAllListeners([&](const std::shared_ptr<Listener>& listener) { listener->OnMemberJoined(name); });
}

bool Context::Impl::HasMember(const QByteArray& name) const
{
  return members.contains(name);
}

bool Context::Impl::WaitMember(const QByteArray& name, long long timeout)
{
  const SteadyClock::time_point start = SteadyClock::now();
  while (!HasMember(name) && !closing && Nanoseconds(SteadyClock::now() - start) / 1000000 < timeout)
    QCoreApplication::processEvents();
  return HasMember(name);
}

QPair<QString, QString> Context::Impl::GetContextAndClientPair() const
{
  return {ToWholeString(contextName), ToWholeString(clientName)};
}

// ---- Leaving --------------------------------------------------------------------------------------------

void Context::Impl::Drain()
{
  QTimer wakeUp;
  wakeUp.start(tickPeriod);
  QElapsedTimer unconnected;
  unconnected.start();
  do
  {
    while (!pending.isEmpty() && !unconnected.hasExpired(drainTimeout))
    {
      CancelMessagaesWithoutRecipient();
      RunEventLoop();
      if (IsConnected(socket.get()))
        unconnected.restart();
      // Called from within a tick, there will be no other to write the rest.
      if (tickDepth > 0 && TimeSinceConnection() >= settleTime)
        FlushPending();
    }
    WriteOut();
  } while (!pending.isEmpty() && !unconnected.hasExpired(drainTimeout));
}

// Bytes that Qt has accepted would go with the socket.
void Context::Impl::WriteOut()
{
  QTimer wakeUp;
  wakeUp.start(tickPeriod);
  QElapsedTimer idle;
  idle.start();
  long long least = std::numeric_limits<long long>::max();
  for (long long rest = CountUnwritten(); rest > 0 && !idle.hasExpired(writeOutTimeout);
       rest = CountUnwritten())
  {
    if (rest < least)
    {
      least = rest;
      idle.restart();
    }
    RunEventLoop();
  }
}

long long Context::Impl::CountUnwritten()
{
  long long unwritten = IsConnected(socket.get()) ? socket->bytesToWrite() : 0;
  if (!server)
    return unwritten;
  PassOnOwnMessages();
  for (const QPointer<QLocalSocket>& client : qAsConst(clients))
    if (IsConnected(client))
      unwritten += client->bytesToWrite();
  return unwritten;
}

void Context::Impl::PassOnOwnMessages()
{
  const QPointer<QLocalSocket> own = clients.value(clientName);
  while (IsConnected(own) && own->waitForReadyRead(0))
    continue;
  while (own && TakeAndRoute(clientName, own))
    continue;
}

// A forked process shares the sockets and the file with the one that made them, and only frees its memory.
void Context::Impl::Leave()
{
  const bool isOwnProcess = process == getpid();
  if (isOwnProcess)
    Drain();
  closing = true;
  if (isOwnProcess)
    Unregister();

  QObject::disconnect(quitConnection);
  clientsTimer.stop();
  serviceTimer.stop();
  reconnectTimer.stop();
  stagedListeners.clear();
  listeners.clear();
  if (server && isOwnProcess)
  {
    const auto lock = TakeLock();
    StopServing();
  }
  else if (server)
    DropServer();
  members.clear();
  pending.clear();
  socketTimer.stop();
  DropSocket();
}

// ---- The facade -----------------------------------------------------------------------------------------

void SetLimits(const Limits& limits)
{
  Limits set = limits;
  for (const LimitField limit :
       {&Limits::admissionTime, &Limits::replyTime, &Limits::packetSize, &Limits::queuedMessages,
        &Limits::queuedBytes, &Limits::unwrittenBytes, &Limits::clients, &Limits::clientRate})
    set.*limit = std::max(set.*limit, 0LL);
  const boost::unique_lock<boost::mutex> lock(processLimitsMutex);
  processLimits = set;
}

Limits GetLimits()
{
  const boost::unique_lock<boost::mutex> lock(processLimitsMutex);
  return processLimits;
}

QString GetErrorString(Error error)
{
  return errorCodes.key(error, QString::fromLatin1(errorUnknown));
}

Listener::~Listener() = default;

Context::Context(const QString& contextName, const QString& clientName,
                 const std::shared_ptr<Listener>& listener, int flags)
    : impl(std::make_shared<Impl>(contextName, clientName, flags))
{
  Listen(listener);
  impl->Init();
}

Context::~Context()
{
  impl->Leave();
}

void Context::Listen(const std::shared_ptr<Listener>& listener)
{
  if (listener)
    impl->listeners.append(listener);
}

long long Context::Say(const QString& recipient, const QByteArray& data)
{
  return impl->Say(recipient.toUtf8(), data);
}

bool Context::HasMember(const QString& name) const
{
  return impl->HasMember(name.toUtf8());
}

QList<QString> Context::Members() const
{
  QList<QString> names;
  for (const QByteArray& name : qAsConst(impl->members))
    names.append(ToWholeString(name));
  return names;
}

bool Context::WaitMember(const QString& name, long long timeout)
{
  const std::shared_ptr<Impl> self = impl;
  return self->WaitMember(name.toUtf8(), timeout);
}

} // namespace Tavrik::Bazaar
