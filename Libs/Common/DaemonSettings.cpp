#include <Common/DaemonSettings.h>

#include <Common/Platform/SettingsStore.h>

#include <QCoreApplication>

#include <array>
#include <cmath>

namespace Tavrik::Cleaner
{

const QString applicationId = QStringLiteral("com.tavrik.ostrel");

const QString KeyNeedToWatchTrash = QStringLiteral("NEED_TO_WATCH_TRASH");
const QString KeyNeedToWatchDiskSpace = QStringLiteral("NEED_TO_WATCH_DISK_SPACE");
const QString KeyNeedToWatchRAM = QStringLiteral("NEED_TO_WATCH_RAM");
const QString KeyNeedToRemindAboutRegularMaintenance =
    QStringLiteral("NEED_TO_REMIND_ABOUT_REGULAR_MAINTENANCE");
const QString KeyTrashSizeLimit = QStringLiteral("TRASH_SIZE_LIMIT");
const QString KeyFreeDiskSpaceLimit = QStringLiteral("FREE_DISK_SPACE_LIMIT");
const QString KeyFreeRAMLimit = QStringLiteral("FREE_RAM_LIMIT");
const QString KeyPreviousRegularMaintenanceEvent = QStringLiteral("PREVIOUS_REGULAR_MAINTENANCE_EVENT");
const QString KeyNextRegularMaintenanceEvent = QStringLiteral("NEXT_REGULAR_MAINTENANCE_EVENT");
const QString KeyregularMaintenanceRemindPeriod = QStringLiteral("REGULAR_MAINTENANCE_REMIND_PERIOD");
const QString KeyCleanerPath = QStringLiteral("CLEANER_PATH");
const QString KeyNeedToWatchApplicationRempve = QStringLiteral("NEED_TO_WATCH_APPLICATION_REMOVE");
const QString KeyHelpUrl = QStringLiteral("HELP_URL");

namespace
{

struct Period
{
  const char* text;
  int days;
  int months;
  int years;
};

const std::array<Period, 6> periods = {{
    {QT_TRANSLATE_NOOP("Tavrik::Ostrel::DaemonSettings", "Weekly"), 7, 0, 0},
    {QT_TRANSLATE_NOOP("Tavrik::Ostrel::DaemonSettings", "Once in two weeks"), 14, 0, 0},
    {QT_TRANSLATE_NOOP("Tavrik::Ostrel::DaemonSettings", "Monthly"), 0, 1, 0},
    {QT_TRANSLATE_NOOP("Tavrik::Ostrel::DaemonSettings", "Once in three months"), 0, 3, 0},
    {QT_TRANSLATE_NOOP("Tavrik::Ostrel::DaemonSettings", "Once in six months"), 0, 6, 0},
    {QT_TRANSLATE_NOOP("Tavrik::Ostrel::DaemonSettings", "Annualy"), 0, 0, 1},
}};

// The store may hold any number, and it arrives here as an enumerator.
const Period* FindPeriod(DaemonSettings::RemindPeriod period)
{
  const auto index = static_cast<unsigned int>(period);
  return index < periods.size() ? &periods[index] : nullptr;
}

// A property of the QSettings holds what could not be stored. QSettings::setValue() would keep it as well,
// but sync(), the destructor and an event of QSettings would then write it, over the only copy of the store.
const char* const unsavedProperty = "unsaved";

bool IsFlag(const QVariant& value)
{
  static const QStringList flags{QStringLiteral("true"), QStringLiteral("false"), QStringLiteral("1"),
                                 QStringLiteral("0")};
  return flags.contains(value.toString(), Qt::CaseInsensitive);
}

bool IsSize(const QVariant& value)
{
  bool isNumber = false;
  value.toLongLong(&isNumber);
  return isNumber;
}

bool IsFraction(const QVariant& value)
{
  bool isNumber = false;
  return std::isfinite(value.toFloat(&isNumber)) && isNumber;
}

bool IsDate(const QVariant& value)
{
  return value == QString() || QDate::fromString(value.toString(), Qt::ISODate).isValid();
}

bool IsPeriod(const QVariant& value)
{
  bool isNumber = false;
  return FindPeriod(static_cast<DaemonSettings::RemindPeriod>(value.toInt(&isNumber))) && isNumber;
}

QString DateText(const QDate& date)
{
  return date.isValid() ? date.toString(Qt::ISODate) : QStringLiteral("");
}

} // namespace

DaemonSettings::DaemonSettings()
    : settings(QStringLiteral("tavrik"), QStringLiteral("ostrel2.scheduler"), nullptr)
{
}

bool DaemonSettings::GetNeedToWatchTrashFlag() const
{
  return Read(KeyNeedToWatchTrash, true).toBool();
}

bool DaemonSettings::GetNeedToWatchDiskSpaceFlag() const
{
  return Read(KeyNeedToWatchDiskSpace, true).toBool();
}

bool DaemonSettings::GetNeedToWatchRAMFlag() const
{
  return Read(KeyNeedToWatchRAM, true).toBool();
}

bool DaemonSettings::GetNeedToRemindAboutRegularMaintenanceFlag() const
{
  return Read(KeyNeedToRemindAboutRegularMaintenance, true).toBool();
}

bool DaemonSettings::GetNeedToWatchApplicationRemoveFlag() const
{
  return Read(KeyNeedToWatchApplicationRempve, true).toBool();
}

void DaemonSettings::SetNeedToWatchTrashFlag(bool flag)
{
  WriteSettings(KeyNeedToWatchTrash, flag);
}

void DaemonSettings::SetNeedToWatchDiskSpaceFlag(bool flag)
{
  WriteSettings(KeyNeedToWatchDiskSpace, flag);
}

void DaemonSettings::SetNeedToWatchRAMFlag(bool flag)
{
  WriteSettings(KeyNeedToWatchRAM, flag);
}

void DaemonSettings::SetNeedToRemindAboutRegularMaintenanceFlag(bool flag)
{
  WriteSettings(KeyNeedToRemindAboutRegularMaintenance, flag);
}

void DaemonSettings::SetNeedToWatchApplicationRemoveFlag(bool flag)
{
  WriteSettings(KeyNeedToWatchApplicationRempve, flag);
}

long long DaemonSettings::GetTrashSizeLimit() const
{
  return Read(KeyTrashSizeLimit, 1000000000LL).toLongLong();
}

long long DaemonSettings::GetFreeDiskSpaceLimit() const
{
  return Read(KeyFreeDiskSpaceLimit, 5000000000LL).toLongLong();
}

float DaemonSettings::GetFreeRAMLimit() const
{
  return Read(KeyFreeRAMLimit, 0.05f).toFloat();
}

void DaemonSettings::SetTrashSizeLimit(long long bytes)
{
  WriteSettings(KeyTrashSizeLimit, QVariant(bytes).toString());
}

void DaemonSettings::SetFreeDiskSpaceLimit(long long bytes)
{
  WriteSettings(KeyFreeDiskSpaceLimit, QVariant(bytes).toString());
}

void DaemonSettings::SetFreeRAMLimit(float fraction)
{
  WriteSettings(KeyFreeRAMLimit, QVariant(fraction).toString());
}

DaemonSettings::RemindPeriod DaemonSettings::GetRegularMaintenanceRemindPeriod() const
{
  return static_cast<RemindPeriod>(
      Read(KeyregularMaintenanceRemindPeriod, static_cast<int>(Monthly)).toInt());
}

void DaemonSettings::SetRegularMaintenanceRemindPeriod(RemindPeriod period)
{
  WriteSettings(KeyregularMaintenanceRemindPeriod, static_cast<int>(period));
}

void DaemonSettings::SetNextEventDate(const QString& date)
{
  WriteSettings(KeyNextRegularMaintenanceEvent, date);
}

void DaemonSettings::SetPrevEventDate(const QString& date)
{
  WriteSettings(KeyPreviousRegularMaintenanceEvent, date);
}

void DaemonSettings::SetNextEventDate(const QDate& date)
{
  SetNextEventDate(DateText(date));
}

void DaemonSettings::SetPrevEventDate(const QDate& date)
{
  SetPrevEventDate(DateText(date));
}

QPair<QDate, QDate> DaemonSettings::PrevNextEventDates() const
{
  // Both texts come from one look at the store.
  const QString previous = Read(KeyPreviousRegularMaintenanceEvent, QString()).toString();
  const QString next = Value(KeyNextRegularMaintenanceEvent).toString();
  if (next.isEmpty())
    return {};
  return {QDate::fromString(previous, Qt::ISODate), QDate::fromString(next, Qt::ISODate)};
}

void DaemonSettings::WriteSettings(const QString& key, const QVariant& value)
{
  QVariantMap unsaved = Unsaved();
  unsaved.insert(key, value);
  settings.setProperty(unsavedProperty, unsaved);
  Save();
}

bool DaemonSettings::Save()
{
  const QVariantMap unsaved = Unsaved();
  if (!unsaved.isEmpty() && !Platform::WriteStore(settings, unsaved))
    return false;
  settings.setProperty(unsavedProperty, QVariant());
  return true;
}

bool DaemonSettings::IsDamaged() const
{
  return Platform::IsStoreDamaged(settings);
}

QMap<QString, QString> DaemonSettings::InvalidValues() const
{
  struct Kind
  {
    const QString& key;
    bool (*isValid)(const QVariant&);
  };
  const std::array<Kind, 11> kinds = {{{KeyNeedToWatchTrash, IsFlag},
                                       {KeyNeedToWatchDiskSpace, IsFlag},
                                       {KeyNeedToWatchRAM, IsFlag},
                                       {KeyNeedToRemindAboutRegularMaintenance, IsFlag},
                                       {KeyNeedToWatchApplicationRempve, IsFlag},
                                       {KeyTrashSizeLimit, IsSize},
                                       {KeyFreeDiskSpaceLimit, IsSize},
                                       {KeyFreeRAMLimit, IsFraction},
                                       {KeyPreviousRegularMaintenanceEvent, IsDate},
                                       {KeyNextRegularMaintenanceEvent, IsDate},
                                       {KeyregularMaintenanceRemindPeriod, IsPeriod}}};
  settings.sync();
  QMap<QString, QString> invalid;
  for (const Kind& kind : kinds)
  {
    const QVariant value = Value(kind.key);
    if ((settings.contains(kind.key) || value.isValid()) && !kind.isValid(value))
      invalid.insert(kind.key, value.toStringList().join(QStringLiteral(", ")));
  }
  return invalid;
}

QString DaemonSettings::RemindPeriodToString(RemindPeriod period) const
{
  const Period* const found = FindPeriod(period);
  return found ? QCoreApplication::translate("Tavrik::Ostrel::DaemonSettings", found->text) : QString();
}

QDate DaemonSettings::CalculateNextEventFromGiven(const QDate& date, RemindPeriod period) const
{
  const Period* const found = FindPeriod(period);
  if (!found)
    return date;
  const QDate next = date.addDays(found->days).addMonths(found->months).addYears(found->years);
  return next > date ? next : QDate(); // QDate wraps round after its last year
}

QVariantMap DaemonSettings::Unsaved() const
{
  return settings.property(unsavedProperty).toMap();
}

QVariant DaemonSettings::Value(const QString& key, const QVariant& fallback) const
{
  return Unsaved().value(key, settings.value(key, fallback));
}

QVariant DaemonSettings::Read(const QString& key, const QVariant& fallback) const
{
  settings.sync(); // without a change of its own it only reads
  return Value(key, fallback);
}

} // namespace Tavrik::Cleaner
