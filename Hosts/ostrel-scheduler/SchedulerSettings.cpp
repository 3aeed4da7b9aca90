#include "SchedulerSettings.h"

namespace Ostrel
{

using namespace Tavrik::Cleaner;

SettingsReader::SettingsReader() : texts(QStringLiteral("tavrik"), QStringLiteral("ostrel2.scheduler")) {}

SchedulerSettings SettingsReader::Read()
{
  SchedulerSettings now;
  now.watchesTrash = settings.GetNeedToWatchTrashFlag();
  now.watchesDiskSpace = settings.GetNeedToWatchDiskSpaceFlag();
  now.watchesMemory = settings.GetNeedToWatchRAMFlag();
  now.watchesApplications = settings.GetNeedToWatchApplicationRemoveFlag();
  now.remindsOfMaintenance = settings.GetNeedToRemindAboutRegularMaintenanceFlag();
  now.trashSizeLimit = settings.GetTrashSizeLimit();
  now.freeDiskSpaceLimit = settings.GetFreeDiskSpaceLimit();
  now.freeMemoryLimit = settings.GetFreeRAMLimit();
  now.period = settings.GetRegularMaintenanceRemindPeriod();
  const auto dates = settings.PrevNextEventDates();
  now.previousMaintenance = dates.first;
  now.nextMaintenance = dates.second;
  texts.sync();
  now.cleanerPath = texts.value(KeyCleanerPath).toString();
  now.helpUrl = texts.value(KeyHelpUrl).toString();
  return now;
}

QJsonObject ToJson(const SchedulerSettings& settings)
{
  return {{KeyNeedToWatchTrash, settings.watchesTrash},
          {KeyNeedToWatchDiskSpace, settings.watchesDiskSpace},
          {KeyNeedToWatchRAM, settings.watchesMemory},
          {KeyNeedToRemindAboutRegularMaintenance, settings.remindsOfMaintenance},
          {KeyTrashSizeLimit, settings.trashSizeLimit},
          {KeyFreeDiskSpaceLimit, settings.freeDiskSpaceLimit},
          {KeyFreeRAMLimit, settings.freeMemoryLimit},
          {KeyPreviousRegularMaintenanceEvent, settings.previousMaintenance.toString(Qt::ISODate)},
          {KeyNextRegularMaintenanceEvent, settings.nextMaintenance.toString(Qt::ISODate)},
          {KeyregularMaintenanceRemindPeriod, static_cast<int>(settings.period)},
          {KeyCleanerPath, settings.cleanerPath},
          {KeyNeedToWatchApplicationRempve, settings.watchesApplications},
          {KeyHelpUrl, settings.helpUrl}};
}

} // namespace Ostrel
