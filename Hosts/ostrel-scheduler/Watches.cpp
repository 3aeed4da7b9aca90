#include "Watches.h"

#include "Applications.h"
#include "Output.h"
#include "SafeText.h"
#include "Texts.h"

#include <Common/PathHelpers.h>
#include <Common/RAMInfo.h>

#include <glog/logging.h>

#include <QFile>
#include <QStorageInfo>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <sys/statvfs.h>

namespace Ostrel
{

using namespace Tavrik::Cleaner;

namespace
{

constexpr int sliceTime = 10; // ms of adding up the trash before the bus gets its turn
constexpr qint64 pageSize = 4096;

// A value that wavers about its limit is one event, not many: it has to come back by so much of the limit.
constexpr qint64 marginPart = 20;

// A folder of applications is reported under its path, which is never one of these.
const QString diskPlace = QStringLiteral("disk:/");
const QString trashPlace = QStringLiteral("trash:/");

struct Space
{
  qint64 available; // bytes
  qint64 total;
};

// Of the disk that holds a path. In a container the table of mounts may lack the root; the file system itself
// knows, but on macOS only up to 16 TiB.
std::optional<Space> FindSpace(const QString& path)
{
  const QStorageInfo disk(path);
  if (disk.isValid() && disk.isReady() && disk.bytesAvailable() >= 0)
    return Space{disk.bytesAvailable(), disk.bytesTotal()};
  struct statvfs status = {};
  if (statvfs(QFile::encodeName(path).constData(), &status) != 0)
    return {};
  const auto block = static_cast<qint64>(status.f_frsize);
  return Space{static_cast<qint64>(status.f_bavail) * block, static_cast<qint64>(status.f_blocks) * block};
}

void Insert(QJsonObject& object, const QString& name, const std::optional<qint64>& value)
{
  if (value)
    object.insert(name, *value);
}

// Where the limit is near to all that there is, half of the rest is the margin.
qint64 GetRecovery(qint64 limit, qint64 total)
{
  return limit + std::clamp<qint64>((total - limit) / 2, 0, limit / marginPart);
}

Notice MakeNotice(NoticeKind kind, qint64 size, qint64 limit, const QString& path)
{
  Notice notice;
  notice.kind = kind;
  notice.size = std::min(size, largestJsonInteger);
  notice.limit = std::min(limit, largestJsonInteger);
  notice.path = path;
  return notice;
}

} // namespace

QJsonObject ToJson(const Findings& findings)
{
  QJsonObject object;
  Insert(object, QStringLiteral("trashSize"), findings.trashSize);
  Insert(object, QStringLiteral("freeDiskSpace"), findings.freeDiskSpace);
  Insert(object, QStringLiteral("freeMemory"), findings.freeMemory);
  Insert(object, QStringLiteral("applications"), findings.applications);
  return object;
}

Watches::Watches(const SchedulerOptions& options, State& state) : options(options), state(state) {}

QVector<Notice> Watches::Look()
{
  settings = reader.Read();
  Notices notices;
  LookAtDisk(notices);
  LookAtMemory(notices);
  LookAtApplications(notices);
  LookAtCalendar(notices);
  if (!settings.watchesTrash)
  {
    trashWalk.reset();
    findings.trashSize.reset();
    state.SetTold(NoticeKind::TrashSize, false);
  }
  else if (!trashWalk)
    trashWalk = std::make_unique<TrashWalk>(options.trash.toUtf8());
  return notices;
}

void Watches::Tell(Notices& notices, const Notice& notice)
{
  notices.append(state.Add(notice));
}

// Once, until the place can be looked at again.
void Watches::Report(const QString& place, const QString& text)
{
  if (!reportedPlaces.contains(place))
    PrintError(text);
  reportedPlaces.insert(place);
}

// An event ends with its watch: who switches it on again wants to hear what is wrong.
void Watches::FollowShortage(Notices& notices, const Notice& notice, qint64 total)
{
  const bool isTold = state.IsTold(notice.kind);
  if (notice.size < notice.limit && !isTold)
    Tell(notices, notice);
  const bool isOver = notice.limit <= 0 || notice.size >= GetRecovery(notice.limit, total);
  state.SetTold(notice.kind, notice.size < notice.limit || (isTold && !isOver));
}

void Watches::LookAtDisk(Notices& notices)
{
  findings.freeDiskSpace.reset();
  if (!settings.watchesDiskSpace)
  {
    state.SetTold(NoticeKind::FreeDiskSpace, false);
    return;
  }
  const std::optional<Space> disk = FindSpace(options.disk);
  const int error = errno;
  if (!disk)
  {
    Report(diskPlace,
           Texts::tr("cannot look at the disk of %1: %2").arg(ShowName(options.disk), ShowReason(error)));
    return;
  }
  reportedPlaces.remove(diskPlace);
  findings.freeDiskSpace = disk->available;
  FollowShortage(
      notices,
      MakeNotice(NoticeKind::FreeDiskSpace, disk->available, settings.freeDiskSpaceLimit, options.disk),
      disk->total);
}

void Watches::LookAtMemory(Notices& notices)
{
  findings.freeMemory.reset();
  if (!settings.watchesMemory)
  {
    state.SetTold(NoticeKind::FreeMemory, false);
    return;
  }
  qint64 total = 0;
  vm_statistics64 statistics = {};
  if (!RAMInfo::GetTotalSize(&total) || !RAMInfo::GetStatistics(&statistics))
  {
    LOG(WARNING) << "Can't get memory statistics";
    return;
  }
  findings.freeMemory = static_cast<qint64>(statistics.free_count) * pageSize;
  // What is no number at all compares with nothing.
  const double fraction = settings.freeMemoryLimit > 0 ? std::min(settings.freeMemoryLimit, 1.0) : 0.0;
  const auto limit = static_cast<qint64>(static_cast<double>(total) * fraction);
  FollowShortage(notices, MakeNotice(NoticeKind::FreeMemory, *findings.freeMemory, limit, {}), total);
}

// A folder that cannot be read, as one on a disk that is not there, is no folder without applications.
void Watches::LookAtApplications(Notices& notices)
{
  findings.applications.reset();
  if (!settings.watchesApplications)
  {
    state.SetApplications({});
    return;
  }
  QMap<QString, QStringList> known;
  qint64 count = 0;
  for (const QString& folder : options.applications)
  {
    const std::optional<QStringList> present = ListApplications(folder);
    const auto former = state.Applications().constFind(folder);
    const bool isFirstLook = former == state.Applications().constEnd();
    if (!present)
    {
      Report(folder, Texts::tr("cannot look for applications in %1").arg(ShowName(folder)));
      if (!isFirstLook)
        known.insert(folder, *former);
      continue;
    }
    reportedPlaces.remove(folder);
    known.insert(folder, *present);
    count += present->size();
    if (isFirstLook)
      continue;
    for (const QString& bundle : *former)
    {
      if (present->contains(bundle))
        continue;
      Notice notice = MakeNotice(NoticeKind::ApplicationRemoved, 0, 0, folder + QLatin1Char('/') + bundle);
      notice.name = ExtractBundleName(bundle);
      Tell(notices, notice);
    }
  }
  findings.applications = count;
  state.SetApplications(known);
}

void Watches::LookAtCalendar(Notices& notices)
{
  const QDate due = settings.nextMaintenance;
  if (!settings.remindsOfMaintenance || !due.isValid() || due > QDate::currentDate() ||
      due == state.RemindedDate())
    return;
  Notice notice;
  notice.kind = NoticeKind::RegularMaintenance;
  notice.date = due;
  Tell(notices, notice);
  state.SetRemindedDate(due);
}

void Watches::MoveCalendar()
{
  const QDate today = QDate::currentDate();
  const QDate due = settings.nextMaintenance;
  if (!settings.remindsOfMaintenance || (due.isValid() && (due > today || due != state.RemindedDate())))
    return;
  DaemonSettings& store = reader.Store();
  QDate next = store.CalculateNextEventFromGiven(due.isValid() ? due : today, settings.period);
  while (next.isValid() && next <= today)
  {
    const QDate later = store.CalculateNextEventFromGiven(next, settings.period);
    if (later <= next)
      break;
    next = later;
  }
  if (!next.isValid() || next <= today)
  {
    LOG(WARNING) << "The period of the regular maintenance is none";
    return;
  }
  if (due.isValid())
    store.SetPrevEventDate(due);
  store.SetNextEventDate(next);
}

bool Watches::LookAtTrash(Notices& notices)
{
  if (!trashWalk)
    return true;
  if (!trashWalk->Advance(QDeadlineTimer(sliceTime)))
    return false;
  EndTrash(notices);
  trashWalk.reset();
  return true;
}

void Watches::EndTrash(Notices& notices)
{
  findings.trashSize.reset();
  if (trashWalk->Error() != 0)
  {
    Report(trashPlace, Texts::tr("cannot look into the trash %1: %2")
                           .arg(ShowName(options.trash), ShowReason(trashWalk->Error())));
    return;
  }
  reportedPlaces.remove(trashPlace);
  if (trashWalk->SkippedFolders() > 0)
    LOG(WARNING) << "Folders in the trash that can't be looked into: " << trashWalk->SkippedFolders();
  const qint64 size = trashWalk->Size();
  const qint64 limit = settings.trashSizeLimit;
  findings.trashSize = size;
  const bool isTold = state.IsTold(NoticeKind::TrashSize);
  const bool isTooLarge = limit > 0 && size > limit;
  if (isTooLarge && !isTold)
    Tell(notices, MakeNotice(NoticeKind::TrashSize, size, limit, options.trash));
  const bool isOver = limit <= 0 || size <= limit - limit / marginPart;
  state.SetTold(NoticeKind::TrashSize, isTooLarge || (isTold && !isOver));
}

} // namespace Ostrel
