#pragma once

#include <Common/DaemonSettings.h>

#include <QJsonObject>

namespace Ostrel
{

/** All that the store tells the scheduler, read at one moment. */
struct SchedulerSettings
{
  bool watchesTrash = false;
  bool watchesDiskSpace = false;
  bool watchesMemory = false;
  bool watchesApplications = false;
  bool remindsOfMaintenance = false;
  qint64 trashSizeLimit = 0;
  qint64 freeDiskSpaceLimit = 0;
  double freeMemoryLimit = 0; ///< A fraction of the physical memory.
  Tavrik::Cleaner::DaemonSettings::RemindPeriod period{Tavrik::Cleaner::DaemonSettings::Monthly};
  QDate previousMaintenance;
  QDate nextMaintenance;
  QString cleanerPath;
  QString helpUrl;
};

/** The store of this user, as the scheduler uses it. Reports what is wrong with it, once until that changes.
 */
class SettingsReader
{
public:
  SettingsReader();

  /** Tries again to store what could not be stored. @return What the store holds now. */
  SchedulerSettings Read();

  Tavrik::Cleaner::DaemonSettings& Store() { return settings; }

private:
  void ReportFaults();

  Tavrik::Cleaner::DaemonSettings settings;
  QSettings texts; // the keys that have no getter
  bool isDamaged = false;
  bool isSaved = true;
  QMap<QString, QString> invalidValues;
};

/** @return The settings under the names of their keys. */
QJsonObject ToJson(const SchedulerSettings& settings);

} // namespace Ostrel
