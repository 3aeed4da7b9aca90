#pragma once

#include <Common/Export.h>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>
#include <type_traits>

/**
 * @file
 * One fixed tool, started with administrator rights.
 */
namespace Tavrik::Cleaner::Details
{

/**
 * Starts a tool as root, any number of times, after the user has entered an administrator's password once.
 *
 * The right is kept for the life of the object. One thread at a time; nothing throws, and a failure is one
 * log line and `false`. What the started tool writes is not handed on. Linux reads and drops it until the
 * tool ends, also after this process has ended; macOS does not, and a tool waits once its pipe is full.
 */
class TAVRIK_COMMON_EXPORT RootExecutor
{
  template<typename T>
  using IsText =
      std::disjunction<std::is_convertible<const T&, const char*>, std::is_convertible<const T&, QString>>;

public:
  /**
   * Stores its arguments; the system is not asked for anything yet.
   *
   * @param toolPath The tool's absolute path.
   * @param readPid  The tool's first output is its own process id, as four raw bytes in the host's order, and
   *                 each start waits for it.
   */
  RootExecutor(const QString& toolPath, bool readPid);

  /** Gives the right back. Tools that run go on. */
  ~RootExecutor();

  RootExecutor(const RootExecutor&) = delete;
  RootExecutor& operator=(const RootExecutor&) = delete;

  /**
   * @return Whether the right has been granted. Linux can lose it; a start that finds it lost asks anew, and
   *         it is false when that is not granted.
   */
  bool IsAuthorized() const;

  /**
   * Asks for the right unless it has been granted already; blocks while the system's question is shown.
   * After a dismissed question a later call asks again.
   */
  bool Authorize();

  /**
   * Authorises, then starts the tool; does not wait for its end. Blocks as Authorize() does and, with read
   * pid on, until the tool has written its id or closed its output.
   *
   * @return Whether the tool was started.
   */
  bool Exec(const QStringList& arguments);

  /** The same for any mix of zero-terminated UTF-8 byte strings and QStrings. */
  template<typename... Arguments,
           std::enable_if_t<(sizeof...(Arguments) > 0) && std::conjunction_v<IsText<Arguments>...>, int> = 0>
  bool Exec(const Arguments&... arguments)
  {
    QStringList list;
    return Exec(static_cast<const QStringList&>(JoinArguments(list, arguments...)));
  }

  /**
   * From now on the tool is a shell script that holds @p script. Linux runs these bytes, fewer than
   * 128 KiB, under the tool's name, so that a process that may write to its file cannot change what root
   * runs.
   */
  TAVRIK_COMMON_NO_EXPORT void SetScript(const QByteArray& script);

  /**
   * @return The process id that the last started tool reported. -1 before any start, after a failed one and
   *         when the tool reported nothing; with read pid off a successful start changes nothing.
   */
  qint32 GetPid() const;

  /// @name Joining
  /// @{

  /** Appends its arguments in their order. @return @p list. */
  template<typename First, typename... Rest>
  static QStringList& JoinArguments(QStringList& list, const First& first, const Rest&... rest)
  {
    list.append(ToArgument(first));
    return JoinArguments(list, rest...);
  }

  template<typename First, typename Last>
  static QStringList& JoinArguments(QStringList& list, const First& first, const Last& last)
  {
    list.append(ToArgument(first));
    list.append(ToArgument(last));
    return list;
  }

  template<typename Only>
  static QStringList& JoinArguments(QStringList& list, const Only& only)
  {
    list.append(ToArgument(only));
    return list;
  }
  /// @}

private:
  static QString ToArgument(const char* argument) { return QString::fromUtf8(argument); }
  static QString ToArgument(const QString& argument) { return argument; }

  class TAVRIK_COMMON_NO_EXPORT Impl;
  std::unique_ptr<Impl> impl;
};

} // namespace Tavrik::Cleaner::Details
