#pragma once

#include <Common/Export.h>

#include <QDate>
#include <QMap>
#include <QPair>
#include <QSettings>
#include <QString>
#include <QVariant>

/**
 * @file
 * The settings that the application writes and its scheduler obeys.
 */
namespace Tavrik::Cleaner
{

/** The application's reverse-DNS bundle identifier. */
extern TAVRIK_COMMON_EXPORT const QString applicationId;

/// @name Keys of the store
/// For hosts that read with QSettings themselves or write with DaemonSettings::WriteSettings.
/// @{
extern TAVRIK_COMMON_EXPORT const QString KeyNeedToWatchTrash;                    ///< bool
extern TAVRIK_COMMON_EXPORT const QString KeyNeedToWatchDiskSpace;                ///< bool
extern TAVRIK_COMMON_EXPORT const QString KeyNeedToWatchRAM;                      ///< bool
extern TAVRIK_COMMON_EXPORT const QString KeyNeedToRemindAboutRegularMaintenance; ///< bool
extern TAVRIK_COMMON_EXPORT const QString KeyTrashSizeLimit;                      ///< bytes, decimal text
extern TAVRIK_COMMON_EXPORT const QString KeyFreeDiskSpaceLimit;                  ///< bytes, decimal text
extern TAVRIK_COMMON_EXPORT const QString KeyFreeRAMLimit;                        ///< fraction, decimal text
extern TAVRIK_COMMON_EXPORT const QString KeyPreviousRegularMaintenanceEvent;     ///< ISO 8601 date or empty
extern TAVRIK_COMMON_EXPORT const QString KeyNextRegularMaintenanceEvent;         ///< ISO 8601 date or empty
extern TAVRIK_COMMON_EXPORT const QString KeyregularMaintenanceRemindPeriod;      ///< RemindPeriod as int
extern TAVRIK_COMMON_EXPORT const QString KeyCleanerPath;                         ///< path of the application
extern TAVRIK_COMMON_EXPORT const QString KeyNeedToWatchApplicationRempve;        ///< bool
extern TAVRIK_COMMON_EXPORT const QString KeyHelpUrl;                             ///< text
/// @}

/**
 * One user's settings, shared by every process of that user.
 *
 * A setter writes through to the store, a getter looks at the store again first, so instances of different
 * processes agree without notification. Writers wait for each other: usually for a few milliseconds, for
 * about 5 s if a writer is stopped, and for up to 25 s if several others write at the same time meanwhile.
 * Nothing throws: what is missing or unreadable reads as its default.
 *
 * A value that cannot be stored, because the disk is full or the file must not be written, is kept by this
 * instance: its getter returns it, and the next setter and Save() try again to store it. It is lost when the
 * instance is destroyed. Getters never write, and neither does the destructor.
 *
 * On Linux a write replaces the file as a whole and leaves it unchanged if anything fails. A damaged file,
 * which holds anything that is not a setting, is kept before it is replaced: under its own name with
 * ".damaged" after it, or ".damaged.2" and so on if there is one already. While that cannot be done it is not
 * replaced.
 *
 * An instance is used by one thread at a time.
 */
class TAVRIK_COMMON_EXPORT DaemonSettings
{
public:
  /** How often to remind of the regular maintenance; the values are those of the store. */
  enum RemindPeriod : int
  {
    Weekly = 0,
    EveryTwoWeeks = 1,
    Monthly = 2,
    EveryThreeMonths = 3,
    EverySixMonths = 4,
    Annually = 5
  };

  DaemonSettings(); ///< Opens the store of this user.

  DaemonSettings(const DaemonSettings&) = delete;
  DaemonSettings& operator=(const DaemonSettings&) = delete;

  /// @name What the scheduler watches, and whether it reminds
  /// @{

  /** @return True where the store holds nothing. */
  bool GetNeedToWatchTrashFlag() const;
  bool GetNeedToWatchDiskSpaceFlag() const;
  bool GetNeedToWatchRAMFlag() const;
  bool GetNeedToRemindAboutRegularMaintenanceFlag() const;
  bool GetNeedToWatchApplicationRemoveFlag() const;

  /// @}

  /// @name Setters; each writes to the store at once; Save() says whether it could
  /// @{

  /** Any value is stored as it is. */
  void SetNeedToWatchTrashFlag(bool flag);
  void SetNeedToWatchDiskSpaceFlag(bool flag);
  void SetNeedToWatchRAMFlag(bool flag);
  void SetNeedToRemindAboutRegularMaintenanceFlag(bool flag);
  void SetNeedToWatchApplicationRemoveFlag(bool flag);
  void SetTrashSizeLimit(long long bytes);
  void SetFreeDiskSpaceLimit(long long bytes);
  void SetFreeRAMLimit(float fraction);
  void SetRegularMaintenanceRemindPeriod(RemindPeriod period);
  /// @}

  /** @return Bytes; 0 when the store holds something that is no number. */
  long long GetTrashSizeLimit() const;
  /** @return Bytes; 0 when the store holds something that is no number. */
  long long GetFreeDiskSpaceLimit() const;
  /** @return A fraction of the physical memory; 0 when the store holds something that is no number. */
  float GetFreeRAMLimit() const;

  /** @return What the store holds, which may be none of the enumerators. */
  RemindPeriod GetRegularMaintenanceRemindPeriod() const;

  /** Stores the text as it is. */
  void SetNextEventDate(const QString& date);
  /** Stores the text as it is. */
  void SetPrevEventDate(const QString& date);
  /** Stores an empty text for a date that ISO 8601 cannot write: an invalid one, or a year outside 0 to 9999.
   */
  void SetNextEventDate(const QDate& date);
  /** @copydoc SetNextEventDate(const QDate&) */
  void SetPrevEventDate(const QDate& date);

  /**
   * @return The previous and the next event. Both are invalid when no next event is stored; otherwise each
   *         is invalid where its text is no date.
   */
  QPair<QDate, QDate> PrevNextEventDates() const;

  /** Writes any key of the store. */
  void WriteSettings(const QString& key, const QVariant& value);

  /**
   * Tries again to store what could not be stored. Blocks as a setter does.
   *
   * @return Whether the store holds all that was set with this instance.
   */
  bool Save();

  /** @return Whether the store's file holds anything that is not a setting; never on macOS. */
  bool IsDamaged() const;

  /**
   * @return The stored texts that are not values of their settings, by key: flags that are not "true",
   * "false", 1 or 0, limits that are not finite numbers, dates, and periods outside the enumeration. A getter
   *         converts such a text all the same, so a limit reads as 0.
   */
  QMap<QString, QString> InvalidValues() const;

  /** @return The period in the user's language; null for a value that is no period. */
  QString RemindPeriodToString(RemindPeriod period) const;

  /**
   * @return @p date plus one @p period; @p date itself for a value that is no period; an invalid date where
   *         QDate ends.
   */
  QDate CalculateNextEventFromGiven(const QDate& date, RemindPeriod period) const;

private:
  QVariantMap Unsaved() const;
  QVariant Value(const QString& key, const QVariant& fallback = {}) const;
  QVariant Read(const QString& key, const QVariant& fallback) const;

  mutable QSettings settings; // a const getter has to look at the store again
};

} // namespace Tavrik::Cleaner
