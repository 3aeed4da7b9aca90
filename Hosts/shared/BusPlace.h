#pragma once

#include <QString>

#include <sys/types.h>

/** @file Where the socket of a bus is, and what keeps a participant from using it. */
namespace Ostrel
{

struct BusPlace
{
  QString folder;
  QString fileName;

  QString SocketPath() const { return folder + QLatin1Char('/') + fileName; }
};

/** Returns the place that the library uses for the bus, or would use if the temporary folder existed. */
BusPlace GetBusPlace(const QString& contextName);

/** Returns the maximum size of a socket's path, in bytes. */
int GetLongestSocketPath();

/** Returns whether files of this user do not concern the present one and root. */
bool IsStranger(uid_t userId);

/** What makes it impossible to join or to serve a bus, whatever other processes do. */
enum class Obstacle
{
  None,
  NameTooLong,
  NoFolder,       ///< The temporary folder is missing or cannot be used.
  FolderInTheWay, ///< A folder is in the place of the socket.
  ForeignFile     ///< A file of another user is in the place of the socket and cannot be removed.
};

struct ObstacleReport
{
  Obstacle obstacle = Obstacle::None;
  int error = 0;    ///< The errno of NoFolder.
  uid_t userId = 0; ///< The owner of ForeignFile.
};

ObstacleReport FindObstacle(const BusPlace& place);

/**
 * Prints the obstacle to the bus @p contextName, if there is one.
 *
 * @return Done, FolderUnusable, SocketBlocked, ForeignSocket or SocketNameTooLong.
 */
int ReportObstacle(const QString& contextName);

} // namespace Ostrel
