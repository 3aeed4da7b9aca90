#pragma once

#include <Common/Export.h>

#include <QObject>

#include <memory>

namespace Tavrik::Cleaner
{

/**
 * Frees memory, one run at a time, by a helper executable that ships with the application.
 *
 * A cleaner needs the event loop of the thread that owns it, and is called on that thread only. Nothing
 * throws; failures are logged. A slot may call any member, run the event loop or destroy the cleaner.
 *
 * Destroying a cleaner kills its helpers, emits no signal, and blocks until they have ended, for at most 1 s;
 * a helper that hangs in the system ends later.
 */
class TAVRIK_COMMON_EXPORT RAMCleaner : public QObject
{
  Q_OBJECT

public:
  /** @param parent The owner, or null. */
  explicit RAMCleaner(QObject* parent);
  ~RAMCleaner() override;

signals:
  /** A run has begun. */
  void CleaningStarted();

  /** A run is over, or Stop() was called. @p cleanedBytes is never negative. */
  void CleaningFinished(qint64 cleanedBytes);

  /**
   * The helper has told a new progress.
   *
   * @param progress 0 to 1 from our own helper. A run can finish without ever telling 1.
   */
  void ProgressChanged(float progress);

public:
  /** @return The physical memory in bytes as it was at construction; 0 when it could not be read. */
  Q_INVOKABLE qint64 GetTotalRAMSize() const;

  /**
   * @return The free memory in bytes, read anew; when that fails, what was read last. Memory that the system
   *         would free on demand does not count.
   */
  Q_INVOKABLE qint64 GetFreeRAMSize() const;

  /** @return The bytes freed by the last run, 0 when memory became less. */
  Q_INVOKABLE qint64 GetLastCleanedRAMSize() const;

  /**
   * Starts a run. Blocks until the helper has started, for at most 30 s.
   *
   * @return False when a run is in progress or when the helper could not be started.
   */
  Q_INVOKABLE bool Clean();

  /**
   * Kills the helper and finishes the run at once.
   *
   * Without a run it still tells CleaningFinished, with the bytes freed since the last start, all free memory
   * when nothing was ever started; only from within CleaningFinished it does nothing.
   */
  Q_INVOKABLE void Stop();

  /** @return Whether a run is in progress. */
  Q_INVOKABLE bool IsCleaning() const;

  /** @return 0 to 1; 1 once a run is over. */
  Q_INVOKABLE float GetProgress() const;

  /** @return The absolute path of the helper, or the one it should have; needs the QCoreApplication. */
  static QString FindPurger();

  class TAVRIK_COMMON_NO_EXPORT Impl; ///< The run itself.

protected:
  void timerEvent(QTimerEvent* event) override; ///< Takes one step of a run.

private:
  void ReadStatistics() const;
  void ProcessCleaning();
  void FinishCleaning();

  std::unique_ptr<Impl> impl;
};

} // namespace Tavrik::Cleaner
