#include <Common/Platform/SettingsStore.h>

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

// QSettings does not write the store: QSaveFile of Qt 5.15 does not look at whether its last bytes were
// written and puts an empty file in the place of the settings when the disk is full, and the lock file of
// QSettings blocks all writers while its holder is stopped. QSettings only formats the new text, in a folder
// that no other process uses; the text is then written and checked here.
//
// QSettings reads its file again only when the size or the time of modification, in milliseconds, is not what
// it was. The kernel's clock for that time ticks every few milliseconds, so two changes of one length within
// a tick look alike. Hence each write leaves a time that no earlier state had.

namespace Tavrik::Platform
{

namespace
{

const int longestWait = 5000;        // ms; a stopped process must not stop the others for ever
const int longestStruggle = 20000;   // ms; with others that have not waited for the lock either
const useconds_t betweenTries = 500; // µs; less than a change takes
const int firstPause = 50;           // ms; about twice as long as a change takes on a busy machine

// The lock is on the folder, so that nothing is left behind and the end of the process ends it.
class FolderLock
{
public:
  explicit FolderLock(const QString& folder)
      : descriptor(open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
  {
  }

  ~FolderLock()
  {
    if (descriptor >= 0)
      close(descriptor);
  }

  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

  // Waits for at most so many milliseconds.
  void Take(int patience)
  {
    QElapsedTimer timer;
    timer.start();
    while (!isTaken)
    {
      isTaken = flock(descriptor, LOCK_EX | LOCK_NB) == 0;
      const bool isBusy = !isTaken && (errno == EWOULDBLOCK || errno == EINTR);
      if (!isBusy || timer.elapsed() >= patience)
        return;
      usleep(betweenTries);
    }
  }

private:
  const int descriptor;
  bool isTaken = false;
};

bool Rename(const QString& from, const QString& to)
{
  return rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

// Nothing when the file cannot be read; a file that does not exist is empty.
std::optional<QByteArray> ReadWhole(const QString& path)
{
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly))
  {
    const bool isMissing = access(QFile::encodeName(path).constData(), F_OK) != 0 && errno == ENOENT;
    return isMissing ? std::make_optional(QByteArray()) : std::nullopt;
  }
  const QByteArray text = file.readAll();
  return file.error() == QFileDevice::NoError ? std::make_optional(text) : std::nullopt;
}

bool WriteWhole(QFile& file, const QByteArray& text)
{
  return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush();
}

// True only when every byte is on the disk.
bool WriteLasting(const QString& path, const QByteArray& text, const QDateTime& time)
{
  QFile file(path);
  if (!WriteWhole(file, text) || !file.setFileTime(time, QFileDevice::FileModificationTime) ||
      fsync(file.handle()) != 0)
    return false;
  file.close();
  return file.error() == QFileDevice::NoError;
}

// Every line that Qt writes is ended.
bool IsWhole(const QByteArray& text)
{
  return text.endsWith('\n');
}

bool IsDamaged(const QByteArray& text)
{
  const auto isControl = [](char c)
  { return static_cast<unsigned char>(c) < ' ' && c != '\n' && c != '\r' && c != '\t'; };
  if (std::any_of(text.begin(), text.end(), isControl))
    return true;
  bool isContinued = false;
  for (const QByteArray& line : text.split('\n'))
  {
    const QByteArray trimmed = line.trimmed();
    const bool isSection = trimmed.startsWith('[') && trimmed.endsWith(']');
    const bool isSetting = !trimmed.startsWith('[') && trimmed.indexOf('=') > 0;
    if (!isContinued && !trimmed.isEmpty() && !trimmed.startsWith(';') && !isSection && !isSetting)
      return true;
    isContinued = trimmed.endsWith('\\');
  }
  return false;
}

// By a second name, so that the disk needs no room for it. An earlier one stays.
bool KeepDamaged(const QString& store)
{
  const QByteArray path = QFile::encodeName(store);
  for (int number = 1;; ++number)
  {
    const QByteArray kept =
        path + ".damaged" + (number > 1 ? '.' + QByteArray::number(number) : QByteArray());
    if (link(path.constData(), kept.constData()) == 0)
      return true;
    struct stat now = {};
    struct stat earlier = {};
    if (errno != EEXIST || stat(path.constData(), &now) != 0 || lstat(kept.constData(), &earlier) != 0)
      return false;
    if (now.st_dev == earlier.st_dev && now.st_ino == earlier.st_ino)
      return true;
  }
}

// Earlier versions gave the file a second name while they wrote. One that was killed on a full disk left an
// empty file under the first.
bool RestoreFormer(const QString& store)
{
  const QString name = store + QStringLiteral(".former");
  if (!QFileInfo::exists(name))
    return true;
  const std::optional<QByteArray> former = ReadWhole(name);
  const std::optional<QByteArray> now = ReadWhole(store);
  if (!former || !now)
    return false;
  if (IsWhole(*now) || former->isEmpty())
    return QFile::remove(name);
  return (now->isEmpty() || KeepDamaged(store)) && Rename(name, store);
}

// An attempt to write has a folder of its own and takes away those of all others: of writers that were
// killed, and of those that were stopped until the lock was no longer waited for. The rename of such a writer
// then fails, so it cannot put back what was there before the others' changes.
void EndOtherAttempts(const QTemporaryDir& own, const QString& prefix)
{
  const QFileInfo self(own.path());
  const QDir folder = self.dir();
  const QStringList names = folder.entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
  for (const QString& name : names)
    if (name.startsWith(prefix) && name.size() == self.fileName().size() && name != self.fileName())
      Rename(folder.filePath(name), own.filePath(name));
}

// The plain keys, as the settings' are: of others Qt does not keep every one when it writes.
QStringList PlainKeys(const QSettings& settings)
{
  static const QRegularExpression plain(QRegularExpression::anchoredPattern(QStringLiteral("\\w+")));
  return settings.allKeys().filter(plain);
}

bool HasKeys(const QString& file, const QStringList& keys)
{
  const QStringList present = PlainKeys(QSettings(file, QSettings::NativeFormat));
  return std::all_of(keys.begin(), keys.end(), [&](const QString& key) { return present.contains(key); });
}

// The text of a store after the changes; nothing when it cannot be made. QSettings reports neither a read
// that failed nor a file that was written only in part. It remembers a file under its name, so that each look
// at what the file holds takes a new name.
std::optional<QByteArray> Format(const QByteArray& former, const QVariantMap& changes,
                                 const QTemporaryDir& folder)
{
  const QString copy = folder.filePath(QStringLiteral("copy"));
  const QString scratch = folder.filePath(QStringLiteral("scratch"));
  const QString written = folder.filePath(QStringLiteral("written"));
  {
    QFile file(copy);
    if (!WriteWhole(file, former))
      return std::nullopt;
  }
  const QStringList formerKeys = PlainKeys(QSettings(copy, QSettings::NativeFormat));
  if (!Rename(copy, scratch))
    return std::nullopt;
  // A status stays what its first error made it, so another object takes the errors of the format.
  const QSettings reader(scratch, QSettings::NativeFormat);
  (void)reader.allKeys();
  QSettings writer(scratch, QSettings::NativeFormat);
  for (auto change = changes.begin(); change != changes.end(); ++change)
    writer.setValue(change.key(), change.value());
  writer.sync();
  if (writer.status() != QSettings::NoError || !Rename(scratch, written))
    return std::nullopt;
  const std::optional<QByteArray> text = ReadWhole(written);
  return text && IsWhole(*text) && HasKeys(written, formerKeys + PlainKeys(writer)) ? text : std::nullopt;
}

bool Replace(const QString& store, const QVariantMap& changes, const QTemporaryDir& attempt)
{
  const QFileInfo before(store);
  if (before.exists() && (!before.isFile() || !before.isWritable()))
    return false;
  const qint64 earliest = before.exists() ? before.lastModified().toMSecsSinceEpoch() + 1 : 0;
  if (!RestoreFormer(store))
    return false;
  const std::optional<QByteArray> former = ReadWhole(store);
  const std::optional<QByteArray> text = former ? Format(*former, changes, attempt) : std::nullopt;
  const QString file = attempt.filePath(QStringLiteral("store"));
  const QDateTime time =
      QDateTime::fromMSecsSinceEpoch(std::max(QDateTime::currentMSecsSinceEpoch(), earliest));
  return text && WriteLasting(file, *text, time) &&
         (!before.exists() || QFile::setPermissions(file, before.permissions())) &&
         (!IsDamaged(*former) || KeepDamaged(store)) && Rename(file, store);
}

} // namespace

bool WriteStore(const QSettings& store, const QVariantMap& changes)
{
  const QFileInfo named(store.fileName());
  QDir().mkpath(named.absolutePath());
  // A link to the file stays a link.
  const QString target = named.isSymLink() ? named.symLinkTarget() : named.absoluteFilePath();
  const QString file = named.exists() ? named.canonicalFilePath() : target;
  const QString prefix = file + QStringLiteral(".new.");
  FolderLock lock(QFileInfo(file).path());
  int patience = longestWait;
  int pause = firstPause;
  QElapsedTimer timer;
  timer.start();
  do
  {
    lock.Take(patience);
    const QTemporaryDir attempt(prefix + QStringLiteral("XXXXXX"));
    if (!attempt.isValid())
      return false;
    EndOtherAttempts(attempt, QFileInfo(prefix).fileName());
    if (Replace(file, changes, attempt))
      return true;
    if (QFileInfo::exists(attempt.path()))
      return false;
    // Another writer has ended this attempt. Random pauses keep the two from ending each other's for ever;
    // the global generator would give the same ones to a forked process.
    patience = QRandomGenerator::system()->bounded(pause);
    pause = std::min(2 * pause, longestWait);
  } while (timer.elapsed() < longestStruggle);
  return false;
}

bool IsStoreDamaged(const QSettings& store)
{
  const std::optional<QByteArray> text = ReadWhole(store.fileName());
  return text && IsDamaged(*text);
}

} // namespace Tavrik::Platform
