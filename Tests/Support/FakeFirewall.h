#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include <string>
#include <vector>

/**
 * A stand-in for the system's firewall tool: a program with a state of its own, beside it, that answers
 * questions, obeys settings and remembers what it was told.
 */
class FakeFirewall
{
public:
  struct State
  {
    bool isEnabled = false;
    bool blockAll = false;
    bool allowSigned = false;
    bool stealthMode = false;
    bool allowSignedApp = false;                 ///< Of newer tools only.
    QList<QPair<QByteArray, bool>> applications; ///< Path, blocked.

    bool operator==(const State& other) const;
  };
  using Call = std::vector<std::string>;

  static const char* const program; ///< What a test that becomes another user passes to CopyForOthers().

  /** @param path Where the tool shall be found. */
  explicit FakeFirewall(const QString& path);
  ~FakeFirewall();

  FakeFirewall(const FakeFirewall&) = delete;
  FakeFirewall& operator=(const FakeFirewall&) = delete;

  const QString& Path() const { return path; }

  void Set(const State& state);
  State Get() const;

  /** From now on answers in the words of macOS 15 and later, and has a second switch for signed software. */
  void BecomeNewer();

  /** These options fail from now on, and change nothing. */
  void Fail(const QStringList& options);

  /** From now on these options change nothing, say so, and succeed. */
  void Refuse(const QStringList& options);

  /** From now on settings fail unless that user id of the tool's process, "effective" or "real", is root's.
   */
  void DemandRoot(const QByteArray& userId);

  /** The settings that were asked for so far, in order, the failed ones included. */
  std::vector<Call> Calls() const;

private:
  const QString path;
};
