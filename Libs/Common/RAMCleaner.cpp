#include <Common/RAMCleaner.h>

#include <Common/Platform/ApplicationLocations.h>
#include <Common/Platform/ChildProcess.h>
#include <Common/Printable.h>
#include <Common/RAMInfo.h>

#include <QPointer>
#include <QTimer>
#include <QTimerEvent>

#include <glog/logging.h>

#include <algorithm>
#include <vector>

namespace Tavrik::Cleaner
{

namespace
{

const Platform::Path purgerName(QStringLiteral("Tavrik Ostrel Purger"));
[[maybe_unused]] const QString vmStatCommand = QStringLiteral("vm_stat");

const int startTimeout = 30000; // ms
const int longestEnd =
    1000; // ms that killed purgers may take to end; one that hangs in the system takes longer
const int pollPeriod = 50;        // ms
const qint64 bytesPerPage = 4096; // on every machine, also where pages are larger
const int complete = 100;

qint64 FreedBytes(quint32 pagesBefore, quint32 pagesAfter)
{
  return pagesAfter > pagesBefore ? (pagesAfter - pagesBefore) * bytesPerPage : 0;
}

// QString::toInt forgives blanks around the number.
int ToNumber(const QString& text)
{
  return text == text.trimmed() ? text.toInt() : 0;
}

bool ParseProgress(const QByteArray& line, int* percentage)
{
  const QString prefix = QStringLiteral("PROGRESS: ");
  const QString suffix = QStringLiteral("%\n");
  const QString text = QString::fromLocal8Bit(line.constData()); // up to the first zero byte
  if (!text.startsWith(prefix) || !text.endsWith(suffix))
    return false;
  *percentage = ToNumber(text.mid(prefix.size(), text.size() - prefix.size() - suffix.size()));
  return true;
}

} // namespace

class RAMCleaner::Impl
{
public:
  Impl()
  {
    tidying.setInterval(pollPeriod);
    tidying.callOnTimeout([this] { Tidy(); });
  }

  // Lets the purgers of earlier runs write on, and forgets those that have ended.
  void Tidy()
  {
    const int inUse = timerId > 0 ? 1 : 0;
    purgers.erase(std::remove_if(purgers.begin(), purgers.end() - inUse,
                                 [](const auto& purger)
                                 {
                                   purger->Discard();
                                   return !purger->IsRunning();
                                 }),
                  purgers.end() - inUse);
    if (purgers.size() == static_cast<std::size_t>(inUse))
      tidying.stop();
    else if (!tidying.isActive())
      tidying.start();
  }

  int timerId = 0; // above 0 exactly while a run is in progress
  qint64 totalSize = 0;
  vm_statistics64 statistics = {};
  quint32 freePagesBefore = 0;
  quint32 freePagesAfter = 0;
  std::vector<std::unique_ptr<Platform::ChildProcess>>
      purgers;      // the last run's, behind earlier ones that still end
  int progress = 0; // percent
  int run = 0;      // which run it is; a slot may have ended one and begun another
  bool isTellingEnd = false;
  QTimer tidying; // while purgers of earlier runs are left
};

RAMCleaner::RAMCleaner(QObject* parent) : QObject(parent), impl(std::make_unique<Impl>())
{
  if (!RAMInfo::GetTotalSize(&impl->totalSize))
    LOG(ERROR) << "Can't get the machine physical memory size";
  ReadStatistics();
}

RAMCleaner::~RAMCleaner()
{
  // Together, so that several that do not end cost the time of one.
  for (const auto& purger : impl->purgers)
    purger->Kill();
  const QDeadlineTimer deadline(longestEnd);
  for (const auto& purger : impl->purgers)
    purger->WaitForEnd(deadline);
}

qint64 RAMCleaner::GetTotalRAMSize() const
{
  return impl->totalSize;
}

qint64 RAMCleaner::GetFreeRAMSize() const
{
  ReadStatistics();
  return impl->statistics.free_count * bytesPerPage;
}

qint64 RAMCleaner::GetLastCleanedRAMSize() const
{
  return FreedBytes(impl->freePagesBefore, impl->freePagesAfter);
}

bool RAMCleaner::Clean()
{
  if (IsCleaning())
    return false;

  const QString program = FindPurger();
  ReadStatistics();
  impl->freePagesBefore = impl->statistics.free_count;
  impl->progress = 0;
  auto purger = std::make_unique<Platform::ChildProcess>();
  if (!purger->Start(program, QStringList(), QDeadlineTimer(startTimeout)))
  {
    LOG(ERROR) << "Can't start " << Printable(program).constData() << '\n';
    return false;
  }
  impl->purgers.push_back(std::move(purger));
  ++impl->run;
  impl->timerId = startTimer(pollPeriod, Qt::CoarseTimer);
  emit CleaningStarted();
  return true;
}

void RAMCleaner::Stop()
{
  if (impl->isTellingEnd && !IsCleaning())
    return;
  if (!impl->purgers.empty())
    impl->purgers.back()->Kill();
  FinishCleaning();
}

bool RAMCleaner::IsCleaning() const
{
  return impl->timerId > 0;
}

float RAMCleaner::GetProgress() const
{
  return static_cast<float>(impl->progress / 100.0);
}

QString RAMCleaner::FindPurger()
{
  return QString::fromUtf8(Platform::FindHelper(purgerName).ToUtf8());
}

void RAMCleaner::timerEvent(QTimerEvent* event)
{
  QObject::timerEvent(event);
  if (event->timerId() == impl->timerId)
    ProcessCleaning();
}

void RAMCleaner::ReadStatistics() const
{
  if (!RAMInfo::GetStatistics(&impl->statistics))
    LOG(ERROR) << "Can't get memory statistics";
}

void RAMCleaner::ProcessCleaning()
{
  Platform::ChildProcess& purger = *impl->purgers.back();
  if (!purger.IsRunning())
    return FinishCleaning();

  int percentage = 0;
  purger.Receive();
  if (!ParseProgress(purger.TakeLine(), &percentage))
    return;
  const bool isNew = percentage != impl->progress;
  impl->progress = percentage;
  if (isNew)
  {
    const QPointer<RAMCleaner> self(this);
    const int run = impl->run;
    emit ProgressChanged(GetProgress());
    if (!self || !IsCleaning() || impl->run != run)
      return;
  }
  if (percentage == complete)
    FinishCleaning();
}

void RAMCleaner::FinishCleaning()
{
  if (impl->timerId != 0)
    killTimer(impl->timerId);
  impl->timerId = 0;
  impl->progress = complete;
  impl->Tidy();
  ReadStatistics();
  impl->freePagesAfter = impl->statistics.free_count;

  const QPointer<RAMCleaner> self(this);
  const bool wasTellingEnd = impl->isTellingEnd;
  impl->isTellingEnd = true;
  emit CleaningFinished(GetLastCleanedRAMSize());
  if (self)
    impl->isTellingEnd = wasTellingEnd;
}

} // namespace Tavrik::Cleaner
