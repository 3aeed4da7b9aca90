#pragma once

#include "SchedulerOptions.h"
#include "SchedulerSettings.h"
#include "State.h"
#include "TrashWalk.h"

#include <memory>
#include <optional>

namespace Ostrel
{

/** What was found; nothing where nobody looks or nobody could tell. */
struct Findings
{
  std::optional<qint64> trashSize;     ///< Bytes on the disk.
  std::optional<qint64> freeDiskSpace; ///< Bytes that this user may still write.
  std::optional<qint64> freeMemory;    ///< Bytes.
  std::optional<qint64> applications;  ///< How many.
};

QJsonObject ToJson(const Findings& findings);

/**
 * Looks at what the settings say and finds what is new: an event is told once, and again only after its cause
 * has gone. Which events have been told is kept in the state.
 */
class Watches
{
public:
  Watches(const SchedulerOptions& options, State& state);

  /** Looks at everything but the size of the trash, which takes its time. @return New notices. */
  QVector<Notice> Look();

  /** Goes on adding up the trash for some milliseconds. @return Whether the look is over; then @p notices has
   * what is new. */
  bool LookAtTrash(QVector<Notice>& notices);

  /** @return Whether the trash is being added up. */
  bool IsLooking() const { return trashWalk != nullptr; }

  const Findings& LastFindings() const { return findings; }
  const SchedulerSettings& LastSettings() const { return settings; }

  /** Moves the calendar on where that is due; after the notices have been kept. */
  void MoveCalendar();

private:
  using Notices = QVector<Notice>;

  void LookAtDisk(Notices& notices);
  void LookAtMemory(Notices& notices);
  void LookAtApplications(Notices& notices);
  void LookAtCalendar(Notices& notices);
  void EndTrash(Notices& notices);
  void FollowShortage(Notices& notices, const Notice& notice, qint64 total);
  void Tell(Notices& notices, const Notice& notice);
  void Report(const QString& place, const QString& text);

  const SchedulerOptions& options;
  State& state;
  SettingsReader reader;
  SchedulerSettings settings;
  Findings findings;
  std::unique_ptr<TrashWalk> trashWalk;
  QSet<QString> reportedPlaces; // that cannot be looked at
};

} // namespace Ostrel
