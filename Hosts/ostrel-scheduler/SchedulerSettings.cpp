#include "SchedulerSettings.h"

#include "Output.h"
#include "SafeText.h"
#include "Texts.h"

#include <utility>

namespace Ostrel
{

using namespace Tavrik::Cleaner;

SettingsReader::SettingsReader() : texts(QStringLiteral("tavrik"), QStringLiteral("ostrel2.scheduler")) {}

void SettingsReader::ReportFaults()
{
  const bool wasDamaged = std::exchange(isDamaged, settings.IsDamaged());
  if (isDamaged && !wasDamaged)
    PrintError(Texts::tr("%1 is damaged; the next change keeps it with \".damaged\" after its name")
                   .arg(ShowName(texts.fileName())));
  const QMap<QString, QString> before = std::exchange(invalidValues, settings.InvalidValues());
  for (auto value = invalidValues.cbegin(); value != invalidValues.cend(); ++value)
    if (!before.contains(value.key()) || before.value(value.key()) != *value)
      PrintError(
          Texts::tr("%1 is stored as %2, which is not a value for it").arg(value.key(), ShowName(*value)));
  const bool wasSaved = std::exchange(isSaved, settings.Save());
  if (!isSaved && wasSaved)
    PrintError(Texts::tr("the settings cannot be written: %1").arg(ShowText(texts.fileName())));
}

SchedulerSettings SettingsReader::Read()
{
  ReportFaults();
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
