#pragma once

#include <Common/Export.h>

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

/**
 * @file
 * The operating system's application firewall: read, edited in memory, and saved as root.
 */
namespace Tavrik::Cleaner
{

/**
 * The system's firewall tool. A host may name another before it first calls Firewall::GetInstance(), where
 * the system has none. (The name is spelled so.)
 */
extern TAVRIK_COMMON_EXPORT QString filewallFileName;

/**
 * An editable model of the firewall's four switches and its list of applications.
 *
 * Used from the thread of the user interface; nothing throws. Every reading runs the firewall tool five times
 * and blocks for up to 30 s each; a tool that is missing or fails reads as all switches off and no
 * applications. The saving runs the resource ":Scripts/Firewall", which the host brings along: a script that
 * takes eight arguments, the four switches as "on" or "off", and the paths to add, to remove, to block and to
 * unblock, each list joined with ";".
 *
 * Signals are emitted from within the call that caused them; a handler may call anything here.
 */
class TAVRIK_COMMON_EXPORT Firewall : public QObject
{
  Q_OBJECT
  Q_PROPERTY(bool IsSaved READ IsSaved NOTIFY IsSavedChanged)

public:
  /** @return The one of this process, made by the first call and destroyed when the process ends. */
  static Firewall& GetInstance();

  /** Writes the script to a file of this process's own and reads the system's state. */
  explicit Firewall(QObject* parent);

  /** Removes the script's file. */
  ~Firewall() override;

  /// @name Switches
  /// A setter emits IsSavedChanged() unless the value is there already.
  /// @{
  bool IsEnabled() const;
  bool GetBlockAll() const;    ///< All incoming connections are blocked.
  bool GetAllowSigned() const; ///< Signed software is let through by itself.
  bool GetStealthMode() const;
  void SetEnabled(bool isEnabled);
  void SetBlockAll(bool blockAll);
  void SetAllowSigned(bool allowSigned);
  void SetStealthMode(bool stealthMode);
  /// @}

  /** @return The applications' paths in the firewall's order. */
  QStringList GetApplications() const;

  /**
   * @return Whether incoming connections for @p path are blocked.
   *
   * To ask for a path that the model does not know makes it known, and with that the model unsaved, without a
   * signal; Undo() and a Save() end that.
   */
  bool IsApplicationBlocked(const QString& path) const;

  /**
   * Adds an existing application bundle.
   *
   * @param path Absolute or relative; its absolute form must end with ".app" and exist. One with a ";" in it
   *             can't be saved: the script would take it for two.
   * @return Whether it was accepted; it may have been in the list before, in which case a pending change of
   *         its blocking is dropped.
   *
   * The second argument is ignored.
   */
  bool AddApplication(const QString& path, bool);

  /** @return Whether @p path was in the list, exactly so written. */
  bool RemoveApplication(const QString& path);

  /** Does nothing, and signals nothing, when that is how it stands already. */
  void BlockApplication(const QString& path, bool block);

  /** @return Whether the model equals the system's state as last read or saved; the order does not count. */
  bool IsSaved() const;

  /** Drops all edits and reads the system's state; signals if the model becomes saved by that. */
  void Undo();

  /**
   * Writes what has been changed to the system, in one run of the script as root. Blocks while the system
   * asks for an administrator's password, which it does at most once; does not wait for the script's end and
   * does not read the system's state again.
   *
   * @return Whether the script was started. `false` at once when the model is saved; after a failure, which
   * is logged, the model still holds all changes.
   */
  bool Save();

  class TAVRIK_COMMON_NO_EXPORT Impl;

signals:
  /** Follows every accepted edit, changed or not; @p isSaved is IsSaved(). */
  void IsSavedChanged(bool isSaved);

private:
  bool Tell(bool isChanged);

  std::unique_ptr<Impl> impl;
};

} // namespace Tavrik::Cleaner
