#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace Ostrel
{

/** What the scheduler has to tell; the words for them are in Docs/messages.md. */
enum class NoticeKind
{
  TrashSize,
  FreeDiskSpace,
  FreeMemory,
  ApplicationRemoved,
  RegularMaintenance
};

/** One thing that the user ought to know. What a kind does not need stays empty. */
struct Notice
{
  qint64 id = 0;  ///< From 1; a larger one is younger.
  QDateTime time; ///< UTC, whole milliseconds.
  NoticeKind kind = NoticeKind::TrashSize;
  qint64 size = 0;  ///< Bytes: what was found.
  qint64 limit = 0; ///< Bytes: what the settings allow.
  QString path;     ///< The trash, the disk's folder, or the application that has gone.
  QString name;     ///< The application's name.
  QDate date;       ///< When the maintenance is due.
};

/** The largest whole number that every reader of JSON keeps exactly. */
constexpr qint64 largestJsonInteger = 9007199254740992;

/** @return A whole number from 0 to largestJsonInteger; nothing for any other value. */
std::optional<qint64> ReadInteger(const QJsonValue& value);

/** @return The kind's word in messages and in the state file. */
QString GetWord(NoticeKind kind);

QJsonObject ToJson(const Notice& notice);

/** @return What @p object says; nothing unless every field that its kind needs is there and sound. */
std::optional<Notice> ReadNotice(const QJsonObject& object);

/** @return The notice as one line in the user's language, safe to show. */
QString Describe(const Notice& notice);

} // namespace Ostrel
