#include "Doctor.h"

#include "BusPlace.h"
#include "BusProbe.h"
#include "BusSession.h"
#include "ExitCodes.h"
#include "Output.h"
#include "SafeText.h"
#include "Signals.h"
#include "Texts.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace Ostrel
{
namespace
{

// Together below two seconds, on a busy machine, too.
constexpr int probeTime = 900;  // ms
constexpr int searchTime = 300; // ms

enum class Finding
{
  Live,
  Unreachable,
  NoSocket,
  NameTaken,
  NoAnswer,
  Starting,
  StaleSocket,
  FileInTheWay,
  FolderInTheWay,
  LinkInTheWay,
  ForeignSocket,
  NameTooLong,
  OtherFolder,
  SocketRemoved,
  NoFolder,
  NotABus
};

struct FindingName
{
  Finding finding;
  const char* word; // in JSON
  ExitCode code;
};

const FindingName findingNames[] = {
    {Finding::Live, "live", Done},
    {Finding::Unreachable, "unreachable", Failed},
    {Finding::NoSocket, "no-socket", NoBus},
    {Finding::NameTaken, "name-taken", NameTaken},
    {Finding::NoAnswer, "no-answer", NotJoined},
    {Finding::Starting, "starting", NotJoined},
    {Finding::StaleSocket, "stale-socket", StaleSocket},
    {Finding::FileInTheWay, "file-in-the-way", SocketBlocked},
    {Finding::FolderInTheWay, "folder-in-the-way", SocketBlocked},
    {Finding::LinkInTheWay, "link-in-the-way", SocketBlocked},
    {Finding::ForeignSocket, "foreign-socket", ForeignSocket},
    {Finding::NameTooLong, "name-too-long", SocketNameTooLong},
    {Finding::OtherFolder, "other-folder", OtherFolder},
    {Finding::SocketRemoved, "socket-removed", SocketRemoved},
    {Finding::NoFolder, "no-folder", FolderUnusable},
    {Finding::NotABus, "not-a-bus", NotABus},
};

const FindingName& GetName(Finding finding)
{
  for (const FindingName& name : findingNames)
    if (name.finding == finding)
      return name;
  return findingNames[0];
}

struct Diagnosis
{
  Finding finding = Finding::Live;
  QString contextName;
  QString clientName;
  BusPlace place;
  int error = 0;             // of Unreachable and NoFolder
  uid_t userId = 0;          // of ForeignSocket
  QString linkTarget;        // of LinkInTheWay
  pid_t server = 0;          // 0 when there is none, or when it cannot be seen
  QStringList members;       // without those who only look
  QList<ServedSocket> other; // buses of this name that are somewhere else

  QString SocketPath() const { return place.SocketPath(); }
};

// What is there ---------------------------------------------------------------------------------------------

bool LookAt(const QString& path, struct stat& status)
{
  return lstat(QFile::encodeName(path).constData(), &status) == 0;
}

bool IsSameFile(const QString& path, const QString& other)
{
  struct stat one = {};
  struct stat two = {};
  return path == other ||
         (LookAt(path, one) && LookAt(other, two) && one.st_dev == two.st_dev && one.st_ino == two.st_ino);
}

void NoteAnswer(Diagnosis& diagnosis, const ProbeResult& result)
{
  diagnosis.server = result.peer.pid;
  for (const QString& member : result.members)
    if (!IsScout(member))
      diagnosis.members.append(member);
  switch (result.answer)
  {
  case Answer::Members:
    diagnosis.finding = diagnosis.members.contains(diagnosis.clientName) ? Finding::NameTaken : Finding::Live;
    break;
  case Answer::Nobody:
    diagnosis.finding = Finding::StaleSocket;
    break;
  case Answer::Foreign:
    diagnosis.finding = Finding::ForeignSocket;
    diagnosis.userId = result.peer.userId;
    break;
  case Answer::Silent:
    diagnosis.finding = Finding::NoAnswer;
    break;
  case Answer::Starting:
    diagnosis.finding = Finding::Starting;
    break;
  case Answer::Strange:
    diagnosis.finding = Finding::NotABus;
    break;
  case Answer::Refused:
    diagnosis.finding = Finding::Unreachable;
    diagnosis.error = result.error;
    break;
  }
}

void AskServer(Diagnosis& diagnosis)
{
  NoteAnswer(diagnosis, Probe(diagnosis.SocketPath(), diagnosis.contextName, GetScoutName(),
                              QDeadlineTimer(probeTime, Qt::PreciseTimer)));
}

void LookAtFile(Diagnosis& diagnosis)
{
  struct stat status = {};
  const QString path = diagnosis.SocketPath();
  if (!LookAt(path, status))
  {
    diagnosis.error = errno;
    diagnosis.finding = diagnosis.error == ENOENT ? Finding::NoSocket : Finding::Unreachable;
  }
  else if (S_ISLNK(status.st_mode))
    diagnosis.finding = Finding::LinkInTheWay;
  else if (S_ISDIR(status.st_mode))
    diagnosis.finding = Finding::FolderInTheWay;
  else if (!S_ISSOCK(status.st_mode))
    diagnosis.finding = Finding::FileInTheWay;
  else if (IsStranger(status.st_uid))
    diagnosis.finding = Finding::ForeignSocket;
  else
    AskServer(diagnosis);
  if (diagnosis.finding == Finding::ForeignSocket && diagnosis.userId == 0)
    diagnosis.userId = status.st_uid;
  if (diagnosis.finding == Finding::LinkInTheWay)
    diagnosis.linkTarget = QFileInfo(path).symLinkTarget();
}

// A server is found even when it does not answer or when nobody can reach it any more.
void LookElsewhere(Diagnosis& diagnosis)
{
  const QString path = diagnosis.SocketPath();
  const bool isAlone = diagnosis.finding == Finding::NoSocket || diagnosis.finding == Finding::StaleSocket;
  for (const ServedSocket& served :
       FindServedSockets(diagnosis.place.fileName, QDeadlineTimer(searchTime, Qt::PreciseTimer)))
  {
    if (!IsSameFile(served.path, path))
    {
      // One of another container has a path of its own world.
      if (served.pid != 0 || QFile::exists(served.path))
        diagnosis.other.append(served);
      continue;
    }
    if (diagnosis.server == 0)
      diagnosis.server = served.pid;
    // On macOS the file itself is all that is known.
    if (isAlone && served.pid != 0)
      diagnosis.finding = Finding::SocketRemoved;
  }
  if (isAlone && diagnosis.finding != Finding::SocketRemoved && !diagnosis.other.isEmpty())
    diagnosis.finding = Finding::OtherFolder;
}

Diagnosis Diagnose(const DoctorOptions& options)
{
  Diagnosis diagnosis;
  diagnosis.contextName = options.contextName;
  diagnosis.clientName = options.clientName;
  diagnosis.place = GetBusPlace(options.contextName);

  const ObstacleReport report = FindObstacle(diagnosis.place);
  diagnosis.error = report.error;
  if (report.obstacle == Obstacle::NameTooLong)
    diagnosis.finding = Finding::NameTooLong;
  else if (report.obstacle == Obstacle::NoFolder)
    diagnosis.finding = Finding::NoFolder;
  else
    LookAtFile(diagnosis);
  LookElsewhere(diagnosis);
  return diagnosis;
}

// What is said of it ----------------------------------------------------------------------------------------

QString ShowProcess(pid_t pid)
{
  if (pid == 0)
    return Texts::tr("a process that cannot be seen from here");
  const QString program = GetProgram(pid).section(QLatin1Char('/'), -1);
  return program.isEmpty() ? Texts::tr("process %1").arg(pid)
                           : Texts::tr("%1 (process %2)").arg(ShowText(program), QString::number(pid));
}

QString ShowMembers(const QStringList& members)
{
  QStringList names;
  for (const QString& member : members)
    names.append(ShowName(member));
  return names.join(QStringLiteral(", "));
}

QString ShowFolder(const ServedSocket& socket)
{
  return ShowText(QFileInfo(socket.path).path());
}

QString Describe(const Diagnosis& diagnosis)
{
  const QString bus = ShowName(diagnosis.contextName);
  const QString path = ShowText(diagnosis.SocketPath());
  const QString reason = ShowReason(diagnosis.error);
  switch (diagnosis.finding)
  {
  case Finding::Live:
    return Texts::tr("The bus %1 is served by %2. Its members: %3.")
        .arg(bus, ShowProcess(diagnosis.server), ShowMembers(diagnosis.members));
  case Finding::Unreachable:
    return Texts::tr("The system refuses the connection to the bus %1 at %2: %3.").arg(bus, path, reason);
  case Finding::NoSocket:
    return Texts::tr("Nobody serves the bus %1: there is no socket %2.").arg(bus, path);
  case Finding::NameTaken:
    return Texts::tr("The name %1 is taken on the bus %2, which is served by %3.")
        .arg(ShowName(diagnosis.clientName), bus, ShowProcess(diagnosis.server));
  case Finding::NoAnswer:
    return Texts::tr("The server of the bus %1 does not answer: %2. It may be stopped or busy.")
        .arg(bus, ShowProcess(diagnosis.server));
  case Finding::Starting:
    return Texts::tr("A process that is joining the bus %1 keeps all others out: it holds %2.lock. It may be "
                     "stopped or busy.")
        .arg(bus, path);
  case Finding::StaleSocket:
    return Texts::tr("Nobody serves the bus %1: a server that has gone left the socket %2 behind. The next "
                     "process that may serve clears it away.")
        .arg(bus, path);
  case Finding::FileInTheWay:
    return Texts::tr("A file that is no socket is where the socket of the bus %1 belongs. Remove it: %2.")
        .arg(bus, path);
  case Finding::FolderInTheWay:
    return Texts::tr("A folder is where the socket of the bus %1 belongs. Remove it: %2.").arg(bus, path);
  case Finding::LinkInTheWay:
    return Texts::tr("A link to %1 is where the socket of the bus %2 belongs. Remove it: %3.")
        .arg(ShowText(diagnosis.linkTarget), bus, path);
  case Finding::ForeignSocket:
    return Texts::tr("The socket of the bus %1 belongs to the user with the number %2: %3. Set TMPDIR to a "
                     "folder of your own.")
        .arg(bus, QString::number(diagnosis.userId), path);
  case Finding::NameTooLong:
    return Texts::tr("The name of the socket of the bus %1 has %2 bytes, and no more than %3 are possible: "
                     "%4. Set TMPDIR to a folder with a shorter name.")
        .arg(bus, QString::number(QFile::encodeName(diagnosis.SocketPath()).size()),
             QString::number(GetLongestSocketPath()), path);
  case Finding::OtherFolder:
    return Texts::tr("The bus %1 is served in another temporary folder, %2, by %3. This process looks in %4. "
                     "TMPDIR must be the same for both.")
        .arg(bus, ShowFolder(diagnosis.other.first()), ShowProcess(diagnosis.other.first().pid),
             ShowText(diagnosis.place.folder));
  case Finding::SocketRemoved:
    return Texts::tr(
               "The bus %1 is served by %2, but its socket %3 has been removed: who comes now does not find "
               "it. Start that process again.")
        .arg(bus, ShowProcess(diagnosis.server), path);
  case Finding::NoFolder:
    return Texts::tr("The temporary folder %1 cannot be used: %2.")
        .arg(ShowText(diagnosis.place.folder), reason);
  case Finding::NotABus:
    return Texts::tr("%1 listens on the socket of the bus %2 but does not speak its language: %3.")
        .arg(ShowProcess(diagnosis.server), bus, path);
  }
  return {};
}

// A bus of the same name elsewhere is worth knowing of whatever else was found.
QStringList DescribeOthers(const Diagnosis& diagnosis)
{
  QStringList lines;
  for (const ServedSocket& socket :
       diagnosis.finding == Finding::OtherFolder ? diagnosis.other.mid(1) : diagnosis.other)
    lines.append(Texts::tr("Another bus of this name is served in the temporary folder %1 by %2.")
                     .arg(ShowFolder(socket), ShowProcess(socket.pid)));
  return lines;
}

QJsonObject ToJson(pid_t pid)
{
  return {{QStringLiteral("pid"), pid}, {QStringLiteral("program"), GetProgram(pid)}};
}

QJsonObject ToJson(const Diagnosis& diagnosis, const QString& text)
{
  const FindingName& name = GetName(diagnosis.finding);
  QJsonObject object{{QStringLiteral("finding"), QLatin1String(name.word)},
                     {QStringLiteral("exitCode"), name.code},
                     {QStringLiteral("text"), text},
                     {QStringLiteral("context"), diagnosis.contextName},
                     {QStringLiteral("socket"), diagnosis.SocketPath()},
                     {QStringLiteral("temporaryFolder"), diagnosis.place.folder},
                     {QStringLiteral("members"), QJsonArray::fromStringList(diagnosis.members)}};
  if (diagnosis.server != 0)
    object.insert(QStringLiteral("server"), ToJson(diagnosis.server));
  QJsonArray elsewhere;
  for (const ServedSocket& socket : diagnosis.other)
  {
    QJsonObject other = ToJson(socket.pid);
    other.insert(QStringLiteral("socket"), socket.path);
    elsewhere.append(other);
  }
  object.insert(QStringLiteral("elsewhere"), elsewhere);
  return object;
}

} // namespace

int RunDoctor(const DoctorOptions& options)
{
  const Diagnosis diagnosis = Diagnose(options);
  if (const int number = Signals::Caught())
    return EndedBySignal + number;
  const QString text = Describe(diagnosis);
  Output output(options.json ? Format::Json : Format::Human);
  output.Print(text.toUtf8(), ToJson(diagnosis, text));
  if (!options.json)
    for (const QString& line : DescribeOthers(diagnosis))
      output.Print(line.toUtf8(), {});
  return output.Status() != Done ? output.Status() : GetName(diagnosis.finding).code;
}

} // namespace Ostrel
