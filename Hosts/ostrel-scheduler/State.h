#pragma once

#include "Notice.h"

#include <QMap>
#include <QSet>
#include <QStringList>
#include <QVector>

#include <optional>

namespace Ostrel
{

/**
 * What a scheduler must not forget: the open notices, which events have been told, which applications there
 * were. Kept in a file of mode 0600 that is replaced as a whole, under a lock that ends with the process.
 *
 * What the file holds is not trusted: what is no state is set aside, what is no notice is left out. A file
 * that cannot be read or set aside is left alone, and then nothing is kept.
 */
class State
{
public:
  explicit State(const QString& path);
  ~State();

  State(const State&) = delete;
  State& operator=(const State&) = delete;

  /**
   * Takes the lock, waiting for up to a second. Where nothing may be written and there is no lock, it goes on
   * without: it cannot write the file either.
   *
   * @return Done; NameTaken when another scheduler holds the lock, Failed when it cannot be taken for another
   *         reason. The reason has been printed.
   */
  int Lock();

  /** Reads the file; with @p isReadOnly nothing is ever written or set aside. */
  void Load(bool isReadOnly);

  /** Writes the file if anything has changed. @return Whether everything is kept, or nothing is to be. */
  bool Save();

  /// @name Notices
  /// @{

  /** Gives @p notice an id and a time and keeps it; beyond 1000 the oldest is dropped. @return It. */
  Notice Add(Notice notice);

  /** Removes the notices of @p ids and saves. @return The ids that were there; nothing, and all is as before,
   * when that could not be kept. */
  std::optional<QVector<qint64>> Acknowledge(const QSet<qint64>& ids);

  const QVector<Notice>& Notices() const { return data.notices; }
  /// @}

  /// @name Events that have been told and whose cause has not gone
  /// @{
  bool IsTold(NoticeKind kind) const { return data.told.contains(GetWord(kind)); }
  void SetTold(NoticeKind kind, bool isTold);

  /** The maintenance that has been reminded of; invalid before the first. */
  const QDate& RemindedDate() const { return data.remindedDate; }
  void SetRemindedDate(const QDate& date);
  /// @}

  /** The applications that were there, by folder. */
  const QMap<QString, QStringList>& Applications() const { return data.applications; }
  void SetApplications(const QMap<QString, QStringList>& applications);

private:
  struct Data
  {
    qint64 lastId = 0;
    QVector<Notice> notices;
    QSet<QString> told;
    QDate remindedDate;
    QMap<QString, QStringList> applications;
  };

  static std::optional<Data> Parse(const QByteArray& text);
  QByteArray Write() const;
  bool OpenLock();
  void SetAside(const QByteArray& damaged);
  void ReportOnce(const QString& text);

  QString path;
  Data data;
  int lockFile = -1;
  bool isKept = true;  // whether the file is ours to write
  bool isSaved = true; // whether the file holds what we hold
  bool isReported = false;
};

} // namespace Ostrel
