#include "State.h"

#include "ExitCodes.h"
#include "Output.h"
#include "SafeText.h"
#include "Texts.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSaveFile>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Ostrel
{
namespace
{

constexpr int longestLockWait = 1000;          // ms
constexpr useconds_t betweenTries = 10 * 1000; // us
constexpr int stateVersion = 1;
constexpr int mostNotices = 1000;
constexpr qint64 longestFile = 16LL * 1024 * 1024;

const QString versionField = QStringLiteral("version");
const QString lastIdField = QStringLiteral("lastId");
const QString noticesField = QStringLiteral("notices");
const QString toldField = QStringLiteral("told");
const QString remindedField = QStringLiteral("reminded");
const QString applicationsField = QStringLiteral("applications");

// 0 or an errno. What is no plain file is not waited for, and not read.
int ReadAll(const QByteArray& path, QByteArray& text)
{
  const int file = open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (file < 0)
    return errno;
  struct stat status = {};
  int error = fstat(file, &status) != 0 ? errno : 0;
  if (error == 0 && S_ISDIR(status.st_mode))
    error = EISDIR;
  else if (error == 0 && (!S_ISREG(status.st_mode) || status.st_size > longestFile))
    error = S_ISREG(status.st_mode) ? EFBIG : EINVAL;
  std::array<char, 65536> buffer;
  while (error == 0 && text.size() <= longestFile)
  {
    const ssize_t count = read(file, buffer.data(), buffer.size());
    if (count == 0)
      break;
    if (count > 0)
      text.append(buffer.data(), static_cast<int>(count));
    else if (errno != EINTR)
      error = errno;
  }
  close(file);
  return error;
}

// Of a text that is no state any more, so that the ids of notices stay unique.
qint64 FindLargestId(const QByteArray& text)
{
  static const QRegularExpression id(QStringLiteral("\"(?:lastId|id)\"\\s*:\\s*([0-9]{1,15})(?![0-9])"));
  qint64 largest = 0;
  for (auto match = id.globalMatch(QString::fromLatin1(text)); match.hasNext();)
    largest = qMax(largest, match.next().captured(1).toLongLong());
  return largest;
}

// A record lock, because a forked child does not inherit it: one that a killed scheduler leaves before it has
// become another program would hold the lock on. A file that is open for reading only cannot have one.
bool TakeLock(int file)
{
  struct flock whole = {};
  whole.l_type = F_WRLCK;
  whole.l_whence = SEEK_SET;
  return fcntl(file, F_SETLK, &whole) == 0 || (errno == EBADF && flock(file, LOCK_EX | LOCK_NB) == 0);
}

QStringList ReadTexts(const QJsonValue& value)
{
  QStringList texts;
  const QJsonArray array = value.toArray();
  for (const QJsonValue& text : array)
    if (!text.toString().isEmpty())
      texts.append(text.toString());
  return texts;
}

} // namespace

State::State(const QString& path) : path(path) {}

State::~State()
{
  if (lockFile >= 0)
    close(lockFile);
}

// False after the reason has been printed.
bool State::OpenLock()
{
  const QString name = path + QStringLiteral(".lock");
  const QByteArray file = name.toUtf8();
  constexpr int flags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  lockFile = open(file.constData(), O_RDWR | O_CREAT | flags, 0600);
  int error = lockFile < 0 ? errno : 0;
  struct stat status = {};
  const bool isThere = lstat(file.constData(), &status) == 0;
  // On a read-only disk a lock from before serves as well.
  if (error == EACCES || error == EPERM || error == EROFS || error == ENOENT)
  {
    if (!isThere)
      return true;
    lockFile = open(file.constData(), O_RDONLY | flags);
    error = lockFile < 0 ? errno : 0;
  }
  if (isThere && !S_ISREG(status.st_mode))
    PrintError(Texts::tr("%1 must be a regular file, for it is the scheduler's lock; remove it")
                   .arg(ShowName(name)));
  else if (error != 0)
    PrintError(Texts::tr("cannot lock %1: %2").arg(ShowName(name), ShowReason(error)));
  else
    return true;
  return false;
}

int State::Lock()
{
  QDir().mkpath(QFileInfo(path).absolutePath());
  if (!OpenLock())
    return Failed;
  // A scheduler that has been killed takes a moment to end.
  const QDeadlineTimer patience(longestLockWait);
  while (lockFile >= 0 && !TakeLock(lockFile))
  {
    const int error = errno;
    const bool isHeld = error == EAGAIN || error == EACCES;
    if (error == EINTR || (isHeld && !patience.hasExpired()))
    {
      usleep(betweenTries);
      continue;
    }
    if (isHeld)
      PrintError(Texts::tr("another scheduler of this user keeps its notices in %1").arg(ShowName(path)));
    else
      PrintError(Texts::tr("cannot lock %1: %2").arg(ShowName(path), ShowReason(error)));
    return isHeld ? NameTaken : Failed;
  }
  return Done;
}

void State::Load(bool isReadOnly)
{
  isKept = !isReadOnly;
  QByteArray text;
  const int error = ReadAll(path.toUtf8(), text);
  if (error == ENOENT)
    return;
  if (error != 0)
  {
    isKept = false;
    PrintError(Texts::tr("cannot read %1: %2; notices will not outlive this process")
                   .arg(ShowName(path), ShowReason(error)));
    return;
  }
  if (std::optional<Data> parsed = Parse(text))
    data = std::move(*parsed);
  else if (isKept)
    SetAside(text);
}

void State::SetAside(const QByteArray& damaged)
{
  data.lastId = FindLargestId(damaged);
  const QString aside = path + QStringLiteral(".damaged");
  isKept = rename(path.toUtf8().constData(), aside.toUtf8().constData()) == 0;
  const int error = errno;
  if (isKept)
    PrintError(
        Texts::tr("the state in %1 is damaged; it is kept as %2").arg(ShowName(path), ShowName(aside)));
  else
    PrintError(
        Texts::tr(
            "the state in %1 is damaged and cannot be renamed: %2; notices will not outlive this process")
            .arg(ShowName(path), ShowReason(error)));
}

std::optional<State::Data> State::Parse(const QByteArray& text)
{
  const QJsonObject object = QJsonDocument::fromJson(text).object();
  const std::optional<qint64> lastId = ReadInteger(object.value(lastIdField));
  if (ReadInteger(object.value(versionField)) != stateVersion || !lastId)
    return std::nullopt;
  Data data;
  data.lastId = *lastId;
  const QJsonArray notices = object.value(noticesField).toArray();
  for (const QJsonValue& value : notices)
  {
    const std::optional<Notice> notice = ReadNotice(value.toObject());
    const qint64 previousId = data.notices.isEmpty() ? 0 : data.notices.last().id;
    if (notice && notice->id > previousId && data.notices.size() < mostNotices)
      data.notices.append(*notice);
  }
  if (!data.notices.isEmpty())
    data.lastId = qMax(data.lastId, data.notices.last().id);
  for (const QString& word : ReadTexts(object.value(toldField)))
    data.told.insert(word);
  data.remindedDate = QDate::fromString(object.value(remindedField).toString(), Qt::ISODate);
  const QJsonObject applications = object.value(applicationsField).toObject();
  for (auto entry = applications.begin(); entry != applications.end(); ++entry)
    data.applications.insert(entry.key(), ReadTexts(entry.value()));
  return data;
}

QByteArray State::Write() const
{
  QJsonArray notices;
  for (const Notice& notice : data.notices)
    notices.append(ToJson(notice));
  QStringList told = data.told.values();
  told.sort();
  QJsonObject applications;
  for (auto entry = data.applications.begin(); entry != data.applications.end(); ++entry)
    applications.insert(entry.key(), QJsonArray::fromStringList(entry.value()));
  return QJsonDocument(QJsonObject{{versionField, stateVersion},
                                   {lastIdField, data.lastId},
                                   {noticesField, notices},
                                   {toldField, QJsonArray::fromStringList(told)},
                                   {remindedField, data.remindedDate.toString(Qt::ISODate)},
                                   {applicationsField, applications}})
      .toJson();
}

bool State::Save()
{
  if (isSaved || !isKept)
    return true;
  // QSaveFile of Qt 5.15 does not look at whether its last bytes were written, nor whether they are on the
  // disk.
  const QByteArray text = Write();
  QSaveFile file(path);
  isSaved = file.open(QIODevice::WriteOnly) && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) &&
            file.write(text) == text.size() && file.flush() && fsync(file.handle()) == 0 && file.commit();
  if (!isSaved)
    ReportOnce(Texts::tr("cannot write %1: %2").arg(ShowName(path), ShowText(file.errorString())));
  else
    isReported = false;
  return isSaved;
}

void State::ReportOnce(const QString& text)
{
  if (!isReported)
    PrintError(text);
  isReported = true;
}

Notice State::Add(Notice notice)
{
  notice.id = ++data.lastId;
  notice.time = QDateTime::currentDateTimeUtc();
  data.notices.append(notice);
  if (data.notices.size() > mostNotices)
    data.notices.removeFirst();
  isSaved = false;
  return notice;
}

std::optional<QVector<qint64>> State::Acknowledge(const QSet<qint64>& ids)
{
  QVector<qint64> removed;
  QVector<Notice> rest;
  for (const Notice& notice : qAsConst(data.notices))
  {
    if (ids.contains(notice.id))
      removed.append(notice.id);
    else
      rest.append(notice);
  }
  if (removed.isEmpty())
    return removed;
  rest.swap(data.notices);
  isSaved = false;
  if (Save())
    return removed;
  rest.swap(data.notices);
  return std::nullopt;
}

void State::SetTold(NoticeKind kind, bool isTold)
{
  if (IsTold(kind) == isTold)
    return;
  if (isTold)
    data.told.insert(GetWord(kind));
  else
    data.told.remove(GetWord(kind));
  isSaved = false;
}

void State::SetRemindedDate(const QDate& date)
{
  isSaved = isSaved && data.remindedDate == date;
  data.remindedDate = date;
}

void State::SetApplications(const QMap<QString, QStringList>& applications)
{
  isSaved = isSaved && data.applications == applications;
  data.applications = applications;
}

} // namespace Ostrel
