#include <Common/Platform/SettingsStore.h>

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSettings>

#include <algorithm>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

// QSettings reads its file again only when the size or the time of modification, in milliseconds, is not what
// it was. The kernel's clock for that time ticks every few milliseconds, so two changes of one length within
// a tick look alike: a reader misses the second, and a writer that misses it writes the first one's state
// back. Hence writers follow each other under a lock, and each leaves a time that no earlier state had.
//
// QSaveFile of Qt 5.15 does not look at whether its last bytes were written: on a full disk it puts an empty
// file in the place of the settings. Hence the former file is kept by a second name until the new one has
// been looked at.

namespace Tavrik::Platform
{

namespace
{

const int longestWait = 5000;        // ms; a stopped process must not stop the others for ever
const useconds_t betweenTries = 500; // µs; about as long as a change takes

// The lock is on the folder, so that nothing is left behind and the end of the process ends it.
int Lock(const QString& folder)
{
  QDir().mkpath(folder);
  const int descriptor = open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  QElapsedTimer timer;
  timer.start();
  while (descriptor >= 0 && flock(descriptor, LOCK_EX | LOCK_NB) != 0 && timer.elapsed() < longestWait)
    usleep(betweenTries);
  return descriptor;
}

qint64 ModificationTime(const QString& file)
{
  const QFileInfo info(file);
  return info.exists() ? info.lastModified().toMSecsSinceEpoch() : 0;
}

void SetModificationTime(const QString& file, qint64 milliseconds)
{
  QFile changed(file);
  if (changed.open(QIODevice::ReadWrite | QIODevice::ExistingOnly))
    changed.setFileTime(QDateTime::fromMSecsSinceEpoch(milliseconds), QFileDevice::FileModificationTime);
}

class FormerFile
{
public:
  explicit FormerFile(const QString& file) : path(QFile::encodeName(QFileInfo(file).canonicalFilePath()))
  {
    if (path.isEmpty())
      return;
    kept = path + ".former";
    unlink(kept.constData());
    if (link(path.constData(), kept.constData()) != 0)
      kept.clear();
  }

  ~FormerFile()
  {
    if (kept.isEmpty())
      return;
    if ((IsCutOff() || HasLostKeys()) && rename(kept.constData(), path.constData()) == 0)
      return;
    unlink(kept.constData());
  }

  FormerFile(const FormerFile&) = delete;
  FormerFile& operator=(const FormerFile&) = delete;

private:
  // Every change stores a setting, and each is a whole line.
  bool IsCutOff() const
  {
    QFile file(QFile::decodeName(path));
    return file.open(QIODevice::ReadOnly) && !file.readAll().endsWith('\n') &&
           file.error() == QFileDevice::NoError;
  }

  // A store that could not be read is written as if nothing had been in it.
  bool HasLostKeys() const
  {
    // Under its own name the file is remembered by QSettings, not read.
    const QByteArray seen = path + ".seen";
    unlink(seen.constData());
    if (link(path.constData(), seen.constData()) != 0)
      return false;
    const QStringList now = KeysOf(seen);
    unlink(seen.constData());
    const QStringList before = KeysOf(kept);
    return std::any_of(before.begin(), before.end(), [&](const QString& key) { return !now.contains(key); });
  }

  // The plain ones, as the settings' are: of others Qt does not keep every one when it writes.
  static QStringList KeysOf(const QByteArray& file)
  {
    static const QRegularExpression plain(QRegularExpression::anchoredPattern(QStringLiteral("\\w+")));
    return QSettings(QFile::decodeName(file), QSettings::NativeFormat).allKeys().filter(plain);
  }

  const QByteArray path;
  QByteArray kept;
};

} // namespace

void ChangeStore(const QString& fileName, const std::function<void()>& change)
{
  const int lock = Lock(QFileInfo(fileName).absolutePath());
  const qint64 before = ModificationTime(fileName);
  {
    const FormerFile former(fileName);
    change();
  }
  SetModificationTime(fileName, std::max(QDateTime::currentMSecsSinceEpoch(), before + 1));
  if (lock >= 0)
    close(lock);
}

} // namespace Tavrik::Platform
