// A settings file of any bytes: what is read is in range and is what QSettings holds, and what is set comes
// back, for another reader of the file, too.

#include <Common/DaemonSettings.h>

#include "Support/Require.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>

namespace
{

using Tavrik::Cleaner::DaemonSettings;

// The store's file, in a folder of its own.
QString StoreFile()
{
  static const QTemporaryDir folder;
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
  return folder.path() + QStringLiteral("/tavrik/ostrel2.scheduler.conf");
}

// Like every new file of the store's, it is later than any before.
void WriteStore(const QString& path, const QByteArray& bytes)
{
  static qint64 time = 1000000000000;
  QFile file(path);
  Require(file.open(QIODevice::WriteOnly), "the store can be written");
  file.write(bytes);
  file.flush();
  file.setFileTime(QDateTime::fromMSecsSinceEpoch(++time), QFileDevice::FileModificationTime);
}

void ReadAll(const DaemonSettings& settings, const QSettings& store)
{
  using namespace Tavrik::Cleaner;
  const auto flag = [&](const QString& key) { return store.value(key, true).toBool(); };
  Require(settings.GetNeedToWatchTrashFlag() == flag(KeyNeedToWatchTrash), "a flag is the store's");
  Require(settings.GetNeedToWatchDiskSpaceFlag() == flag(KeyNeedToWatchDiskSpace), "a flag is the store's");
  Require(settings.GetNeedToWatchRAMFlag() == flag(KeyNeedToWatchRAM), "a flag is the store's");
  Require(settings.GetNeedToRemindAboutRegularMaintenanceFlag() ==
              flag(KeyNeedToRemindAboutRegularMaintenance),
          "a flag is the store's");
  Require(settings.GetNeedToWatchApplicationRemoveFlag() == flag(KeyNeedToWatchApplicationRempve),
          "a flag is the store's");
  Require(settings.GetTrashSizeLimit() == store.value(KeyTrashSizeLimit, 1000000000LL).toLongLong(),
          "the trash's limit is the store's");
  Require(settings.GetFreeDiskSpaceLimit() == store.value(KeyFreeDiskSpaceLimit, 5000000000LL).toLongLong(),
          "the disk's limit is the store's");
  const float limit = settings.GetFreeRAMLimit();
  const float stored = store.value(KeyFreeRAMLimit, 0.05f).toFloat();
  Require(limit == stored || (std::isnan(limit) && std::isnan(stored)), "the memory's limit is the store's");

  const QPair<QDate, QDate> dates = settings.PrevNextEventDates();
  if (store.value(KeyNextRegularMaintenanceEvent).toString().isEmpty())
    Require(!dates.first.isValid() && !dates.second.isValid(), "without a next event there is none");

  const auto period = settings.GetRegularMaintenanceRemindPeriod();
  const bool isKnown = period >= DaemonSettings::Weekly && period <= DaemonSettings::Annually;
  Require(settings.RemindPeriodToString(period).isEmpty() != isKnown, "a period that is none has no text");
  for (const QDate& date : {dates.first, dates.second})
  {
    const QDate next = settings.CalculateNextEventFromGiven(date, period);
    Require(isKnown ? !next.isValid() || next > date : next == date, "the next event is later");
  }
}

void SetAll(FuzzedDataProvider* provider, const QString& path)
{
  using namespace Tavrik::Cleaner;
  DaemonSettings writer;
  const DaemonSettings reader;
  const bool flag = provider->ConsumeBool();
  const auto bytes = provider->ConsumeIntegral<long long>();
  const auto fraction = provider->ConsumeFloatingPoint<float>();
  const auto period = static_cast<DaemonSettings::RemindPeriod>(provider->ConsumeIntegral<int>());
  const QDate date = QDate::fromJulianDay(provider->ConsumeIntegralInRange<qint64>(1000000, 6000000));
  const QString text = QString::fromUtf8(QByteArray::fromStdString(provider->ConsumeRandomLengthString(64)));

  writer.SetNeedToWatchTrashFlag(flag);
  Require(reader.GetNeedToWatchTrashFlag() == flag, "a flag that is set is read");
  writer.SetTrashSizeLimit(bytes);
  Require(reader.GetTrashSizeLimit() == bytes, "a limit that is set is read");
  writer.SetFreeRAMLimit(fraction);
  const float read = reader.GetFreeRAMLimit();
  Require(read == fraction || (std::isnan(fraction) && std::isnan(read)), "a fraction that is set is read");
  writer.SetRegularMaintenanceRemindPeriod(period);
  Require(reader.GetRegularMaintenanceRemindPeriod() == period, "a period that is set is read");
  writer.SetNextEventDate(date);
  writer.SetPrevEventDate(QDate());
  const bool hasText = date.year() >= 0 && date.year() <= 9999;
  Require(reader.PrevNextEventDates() == qMakePair(QDate(), hasText ? date : QDate()),
          "a date that is set is read");
  writer.WriteSettings(KeyHelpUrl, text);

  const QSettings fresh(path, QSettings::IniFormat);
  Require(fresh.value(KeyHelpUrl).toString() == text, "a text that is written is read");
  Require(fresh.value(KeyTrashSizeLimit).toString() == QString::number(bytes),
          "a limit is stored as its text");
  ReadAll(reader, fresh);
}

} // namespace

// QSettings has the disk write what nobody will need after the next input.
#pragma GCC visibility push(default)
extern "C" int fsync(int)
{
  return 0;
}

extern "C" int fdatasync(int)
{
  return 0;
}
#pragma GCC visibility pop

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  static const QString path = StoreFile();
  QDir().mkpath(QFileInfo(path).path());
  const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
  WriteStore(path, bytes);
  {
    const DaemonSettings settings;
    ReadAll(settings, QSettings(path, QSettings::IniFormat));
  }
  FuzzedDataProvider provider(data, size);
  SetAll(&provider, path);
  QFile::remove(path + QStringLiteral(".damaged"));
  return 0;
}
