#include "Notice.h"

#include "SafeText.h"
#include "Texts.h"

#include <Common/FormatText.h>
#include <Common/PathHelpers.h>

#include <QLocale>

#include <array>
#include <cmath>

namespace Ostrel
{
namespace
{

constexpr int longestText = 4096; // of a path or a name, in UTF-16 units

struct KindWord
{
  NoticeKind kind;
  const char* word;
};

constexpr std::array<KindWord, 5> kindWords = {{{NoticeKind::TrashSize, "trash-size"},
                                                {NoticeKind::FreeDiskSpace, "free-disk-space"},
                                                {NoticeKind::FreeMemory, "free-memory"},
                                                {NoticeKind::ApplicationRemoved, "application-removed"},
                                                {NoticeKind::RegularMaintenance, "regular-maintenance"}}};

std::optional<NoticeKind> FindKind(const QString& word)
{
  for (const KindWord& entry : kindWords)
    if (word == QLatin1String(entry.word))
      return entry.kind;
  return std::nullopt;
}

bool HasSizes(NoticeKind kind)
{
  return kind == NoticeKind::TrashSize || kind == NoticeKind::FreeDiskSpace || kind == NoticeKind::FreeMemory;
}

bool HasPath(NoticeKind kind)
{
  return kind == NoticeKind::TrashSize || kind == NoticeKind::FreeDiskSpace ||
         kind == NoticeKind::ApplicationRemoved;
}

bool ReadSize(const QJsonValue& value, qint64& size)
{
  const std::optional<qint64> number = ReadInteger(value);
  size = number.value_or(0);
  return number.has_value();
}

bool ReadShortText(const QJsonValue& value, QString& text)
{
  text = value.toString();
  return !text.isEmpty() && text.size() <= longestText;
}

bool ReadDetails(const QJsonObject& object, Notice& notice)
{
  if (HasSizes(notice.kind) && !(ReadSize(object.value(QStringLiteral("size")), notice.size) &&
                                 ReadSize(object.value(QStringLiteral("limit")), notice.limit)))
    return false;
  if (HasPath(notice.kind) && !ReadShortText(object.value(QStringLiteral("path")), notice.path))
    return false;
  if (notice.kind == NoticeKind::ApplicationRemoved &&
      !ReadShortText(object.value(QStringLiteral("name")), notice.name))
    return false;
  if (notice.kind != NoticeKind::RegularMaintenance)
    return true;
  notice.date = QDate::fromString(object.value(QStringLiteral("date")).toString(), Qt::ISODate);
  return notice.date.isValid();
}

QString ShowSize(qint64 bytes)
{
  return Tavrik::Cleaner::FormatSize(bytes, 1);
}

} // namespace

std::optional<qint64> ReadInteger(const QJsonValue& value)
{
  const double number = value.toDouble(-1);
  const bool isInRange = number >= 0 && number <= static_cast<double>(largestJsonInteger); // false for NaN
  if (!isInRange || std::floor(number) != number)
    return std::nullopt;
  return static_cast<qint64>(number);
}

QString GetWord(NoticeKind kind)
{
  for (const KindWord& entry : kindWords)
    if (entry.kind == kind)
      return QString::fromLatin1(entry.word);
  return {};
}

QJsonObject ToJson(const Notice& notice)
{
  QJsonObject object{{QStringLiteral("id"), notice.id},
                     {QStringLiteral("time"), notice.time.toString(Qt::ISODateWithMs)},
                     {QStringLiteral("kind"), GetWord(notice.kind)}};
  if (HasSizes(notice.kind))
  {
    object.insert(QStringLiteral("size"), notice.size);
    object.insert(QStringLiteral("limit"), notice.limit);
  }
  if (HasPath(notice.kind))
    object.insert(QStringLiteral("path"), notice.path);
  if (notice.kind == NoticeKind::ApplicationRemoved)
    object.insert(QStringLiteral("name"), notice.name);
  if (notice.kind == NoticeKind::RegularMaintenance)
    object.insert(QStringLiteral("date"), notice.date.toString(Qt::ISODate));
  return object;
}

std::optional<Notice> ReadNotice(const QJsonObject& object)
{
  Notice notice;
  const std::optional<qint64> id = ReadInteger(object.value(QStringLiteral("id")));
  const std::optional<NoticeKind> kind = FindKind(object.value(QStringLiteral("kind")).toString());
  notice.time = QDateTime::fromString(object.value(QStringLiteral("time")).toString(), Qt::ISODateWithMs);
  if (!id || *id == 0 || !kind || !notice.time.isValid())
    return std::nullopt;
  notice.id = *id;
  notice.kind = *kind;
  notice.time = notice.time.toUTC();
  if (!ReadDetails(object, notice))
    return std::nullopt;
  return notice;
}

QString Describe(const Notice& notice)
{
  switch (notice.kind)
  {
  case NoticeKind::TrashSize:
    return Texts::tr("the trash holds %1, more than %2").arg(ShowSize(notice.size), ShowSize(notice.limit));
  case NoticeKind::FreeDiskSpace:
    return Texts::tr("%1 are free on the disk of %2, less than %3")
        .arg(ShowSize(notice.size), ShowName(notice.path), ShowSize(notice.limit));
  case NoticeKind::FreeMemory:
    return Texts::tr("%1 of memory are free, less than %2")
        .arg(ShowSize(notice.size), ShowSize(notice.limit));
  case NoticeKind::ApplicationRemoved:
    return Texts::tr("the application %1 has been removed from %2 and may have left files behind")
        .arg(ShowName(notice.name), ShowName(Tavrik::Cleaner::ExtractParentPath(notice.path)));
  case NoticeKind::RegularMaintenance:
    return Texts::tr("the regular maintenance has been due since %1")
        .arg(QLocale::system().toString(notice.date, QLocale::ShortFormat));
  }
  return {};
}

} // namespace Ostrel
