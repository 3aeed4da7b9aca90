#include "BusProbe.h"

#include "BusPlace.h"
#include "Signals.h"

#include <Common/IOUtils.h>

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace Ostrel
{
namespace
{

using Tavrik::CalcCRC;
using Tavrik::PackNumber;

constexpr int retryInterval = 5; // ms

constexpr int largestAnswer = 4 * 1024 * 1024; // bytes; members beyond that are nobody's

/** A descriptor that is closed when this goes. */
class File
{
public:
  explicit File(int descriptor) : descriptor(descriptor) {}

  ~File()
  {
    if (descriptor >= 0)
      close(descriptor);
  }

  File(const File&) = delete;
  File& operator=(const File&) = delete;

  bool IsOpen() const { return descriptor >= 0; }
  int Get() const { return descriptor; }

private:
  int descriptor;
};

// The wire -------------------------------------------------------------------------------------------------

const QByteArray signature("<TAVRIK:BAZAAR:IPC:1.0>");
constexpr int lengthSize = 4;
constexpr int checksumSize = 2;

QByteArray Counted(const QByteArray& bytes)
{
  return PackNumber(bytes.size()) + bytes;
}

QByteArray MakeIntroduction(const QByteArray& contextName, const QByteArray& clientName)
{
  const QByteArray body = PackNumber(0LL) + Counted(QByteArray()) + Counted(clientName);
  const QByteArray header =
      Counted(contextName) + Counted("MESSAGE") + PackNumber(body.size()) + CalcCRC(body);
  return signature + PackNumber(header.size()) + CalcCRC(header) + header + body;
}

/** Takes the parts of a packet one after the other; once something was not there, nothing is. */
class Reader
{
public:
  explicit Reader(const QByteArray& bytes) : bytes(bytes) {}

  bool IsGood() const { return isGood; }

  QByteArray Take(int length)
  {
    if (!isGood || length < 0 || length > bytes.size() - position)
    {
      isGood = false;
      return {};
    }
    position += length;
    return bytes.mid(position - length, length);
  }

  int TakeLength()
  {
    const QByteArray taken = Take(lengthSize);
    quint32 number = 0;
    for (int i = taken.size() - 1; i >= 0; --i)
      number = number << 8 | static_cast<uchar>(taken.at(i));
    return static_cast<int>(number);
  }

  QByteArray TakeCounted() { return Take(TakeLength()); }

private:
  QByteArray bytes;
  int position = 0;
  bool isGood = true;
};

enum class Reading
{
  Incomplete,
  Complete,
  Wrong
};

Reading ReadMembers(const QByteArray& body, QStringList& members)
{
  Reader reader(body);
  const int count = reader.TakeLength();
  for (int i = 0; i < count && reader.IsGood(); ++i)
    members.append(QString::fromUtf8(reader.TakeCounted()));
  return reader.IsGood() && count > 0 ? Reading::Complete : Reading::Wrong;
}

Reading ReadAnswer(const QByteArray& bytes, QStringList& members)
{
  if (!signature.startsWith(bytes.left(signature.size())))
    return Reading::Wrong;
  Reader packet(bytes);
  packet.Take(signature.size());
  const int headerSize = packet.TakeLength();
  const QByteArray headerChecksum = packet.Take(checksumSize);
  if (packet.IsGood() && (headerSize < 0 || headerSize > largestAnswer))
    return Reading::Wrong;
  const QByteArray headerBytes = packet.Take(headerSize);
  if (!packet.IsGood())
    return Reading::Incomplete;

  Reader header(headerBytes);
  header.TakeCounted();
  const QByteArray command = header.TakeCounted();
  const int bodySize = header.TakeLength();
  const QByteArray bodyChecksum = header.Take(checksumSize);
  if (!header.IsGood() || CalcCRC(headerBytes) != headerChecksum || command != "STATUS" || bodySize < 0 ||
      bodySize > largestAnswer)
    return Reading::Wrong;
  const QByteArray body = packet.Take(bodySize);
  if (!packet.IsGood())
    return Reading::Incomplete;
  return CalcCRC(body) == bodyChecksum ? ReadMembers(body, members) : Reading::Wrong;
}

// The connection -------------------------------------------------------------------------------------------

// A server that has just begun takes the first who connects for itself; the lock file that every participant
// holds while it starts keeps others away until then. One that is not there is held by nobody.
class StartupLook
{
public:
  explicit StartupLook(const QString& socketPath)
      : file(open(QFile::encodeName(socketPath + QStringLiteral(".lock")).constData(),
                  O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC))
  {
  }

  bool IsFree() const
  {
    return !file.IsOpen() || !IsOwn() || flock(file.Get(), LOCK_SH | LOCK_NB) == 0 || errno != EWOULDBLOCK;
  }

private:
  // Nobody heeds a file that somebody else put there.
  bool IsOwn() const
  {
    struct stat status = {};
    return fstat(file.Get(), &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid();
  }

  File file;
};

bool IsOver(const QDeadlineTimer& deadline)
{
  return deadline.hasExpired() || Signals::Caught() != 0;
}

void WaitFor(int file, short events, int time)
{
  pollfd watched = {file, events, 0};
  poll(&watched, file < 0 ? 0 : 1, time);
}

int Remaining(const QDeadlineTimer& deadline)
{
  return static_cast<int>(std::max<qint64>(deadline.remainingTime(), 0));
}

// 0 or an errno.
int ConnectOnce(int socket, const QString& socketPath)
{
  const QByteArray path = QFile::encodeName(socketPath);
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  if (path.size() > GetLongestSocketPath())
    return ENAMETOOLONG;
  std::copy(path.begin(), path.end(), address.sun_path);
  return connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ? 0 : errno;
}

// 0 or an errno; EAGAIN when the server had no room for one more until the deadline, EBUSY when somebody was
// starting until then.
int Connect(int socket, const QString& socketPath, const QDeadlineTimer& deadline)
{
  for (;;)
  {
    int error = EBUSY;
    const StartupLook look(socketPath);
    if (look.IsFree())
      error = ConnectOnce(socket, socketPath);
    if ((error != EBUSY && error != EAGAIN && error != EINTR) || IsOver(deadline))
      return error;
    WaitFor(-1, 0, retryInterval);
  }
}

Answer NameFailure(int error)
{
  switch (error)
  {
  case EAGAIN:
  case EINTR:
    return Answer::Silent;
  case EBUSY:
    return Answer::Starting;
  case ECONNREFUSED:
  case ENOENT:
    return Answer::Nobody;
  default:
    return Answer::Refused;
  }
}

bool IsTrusted(const SocketPeer& peer)
{
  return !peer.isKnown || peer.userId == getuid() || peer.userId == geteuid() || peer.userId == 0;
}

Answer Listen(int socket, const QDeadlineTimer& deadline, QStringList& members)
{
  QByteArray bytes;
  while (!IsOver(deadline))
  {
    WaitFor(socket, POLLIN, Remaining(deadline));
    char buffer[64 * 1024];
    const ssize_t count = read(socket, buffer, sizeof buffer);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
      continue;
    if (count <= 0)
      return Answer::Silent;
    bytes.append(buffer, static_cast<int>(count));
    members.clear();
    const Reading reading = ReadAnswer(bytes, members);
    if (reading != Reading::Incomplete)
      return reading == Reading::Complete ? Answer::Members : Answer::Strange;
  }
  return Answer::Silent;
}

} // namespace

ProbeResult Probe(const QString& socketPath, const QString& contextName, const QString& clientName,
                  const QDeadlineTimer& deadline)
{
  ProbeResult result;
  const QByteArray introduction = MakeIntroduction(contextName.toUtf8(), clientName.toUtf8());
  const File socket(::socket(AF_UNIX, SOCK_STREAM, 0));
  if (!socket.IsOpen() || fcntl(socket.Get(), F_SETFD, FD_CLOEXEC) != 0 ||
      fcntl(socket.Get(), F_SETFL, O_NONBLOCK) != 0)
  {
    result.error = errno;
    result.answer = Answer::Refused;
    return result;
  }
  result.error = Connect(socket.Get(), socketPath, deadline);
  if (result.error != 0)
  {
    result.answer = NameFailure(result.error);
    return result;
  }
  result.peer = GetSocketPeer(socket.Get());
  if (!IsTrusted(result.peer))
    result.answer = Answer::Foreign;
  else if (write(socket.Get(), introduction.constData(), introduction.size()) != introduction.size())
    result.answer = Answer::Strange;
  else
    result.answer = Listen(socket.Get(), deadline, result.members);
  return result;
}

} // namespace Ostrel
