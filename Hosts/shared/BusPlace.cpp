#include "BusPlace.h"

#include "ExitCodes.h"
#include "Output.h"
#include "SafeText.h"
#include "Texts.h"

#include <Common/AccessChecks.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

#include <cerrno>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace Ostrel
{
namespace
{

// QDir has no text for a temporary folder that does not exist.
QString GetFolder()
{
  const QString folder = QDir::tempPath();
  return folder.isEmpty() ? QFile::decodeName(qgetenv("TMPDIR")) : QDir(folder).absolutePath();
}

// 0 or an errno: a participant makes files there.
int CheckFolder(const QString& folder)
{
  struct stat status = {};
  const QByteArray path = QFile::encodeName(folder);
  if (stat(path.constData(), &status) != 0)
    return errno;
  if (!S_ISDIR(status.st_mode))
    return ENOTDIR;
  return access(path.constData(), W_OK | X_OK) == 0 ? 0 : errno;
}

ObstacleReport LookAtFile(const QString& path)
{
  struct stat status = {};
  if (lstat(QFile::encodeName(path).constData(), &status) != 0)
    return {};
  if (S_ISDIR(status.st_mode))
    return {Obstacle::FolderInTheWay};
  if (IsStranger(status.st_uid) && !Tavrik::Cleaner::CanRemove(path))
    return {Obstacle::ForeignFile, 0, status.st_uid};
  return {};
}

} // namespace

BusPlace GetBusPlace(const QString& contextName)
{
  const QString seed =
      QStringLiteral("tavrik:bazaar:ipc:1.0:") + QString::number(getuid()) + QLatin1Char(':') + contextName;
  const QByteArray hash = QCryptographicHash::hash(seed.toUtf8(), QCryptographicHash::Sha1);
  return {GetFolder(), QString::fromLatin1(hash.toHex())};
}

int GetLongestSocketPath()
{
  return static_cast<int>(sizeof(sockaddr_un::sun_path)) - 1;
}

bool IsStranger(uid_t userId)
{
  return userId != getuid() && userId != geteuid() && userId != 0;
}

ObstacleReport FindObstacle(const BusPlace& place)
{
  if (QFile::encodeName(place.SocketPath()).size() > GetLongestSocketPath())
    return {Obstacle::NameTooLong};
  if (const int error = CheckFolder(place.folder))
    return {Obstacle::NoFolder, error};
  return LookAtFile(place.SocketPath());
}

int ReportObstacle(const QString& contextName)
{
  const BusPlace place = GetBusPlace(contextName);
  const ObstacleReport report = FindObstacle(place);
  const QString bus = ShowName(contextName);
  const QString path = ShowText(place.SocketPath());
  switch (report.obstacle)
  {
  case Obstacle::None:
    break;
  case Obstacle::NameTooLong:
    PrintError(
        Texts::tr("the name of the socket of the bus %1 has %2 bytes, more than the possible %3: %4; set "
                  "TMPDIR to a folder with a shorter name")
            .arg(bus, QString::number(QFile::encodeName(place.SocketPath()).size()),
                 QString::number(GetLongestSocketPath()), path));
    return SocketNameTooLong;
  case Obstacle::NoFolder:
    PrintError(Texts::tr("the temporary folder %1 cannot be used: %2; set TMPDIR to a folder of your own")
                   .arg(ShowText(place.folder), ShowReason(report.error)));
    return FolderUnusable;
  case Obstacle::FolderInTheWay:
    PrintError(
        Texts::tr("a folder is in the place of the socket of the bus %1: %2; remove it").arg(bus, path));
    return SocketBlocked;
  case Obstacle::ForeignFile:
    PrintError(
        Texts::tr("the socket of the bus %1 belongs to the user with the number %2: %3; set TMPDIR to a "
                  "folder of your own")
            .arg(bus, QString::number(report.userId), path));
    return ForeignSocket;
  }
  return Done;
}

} // namespace Ostrel
