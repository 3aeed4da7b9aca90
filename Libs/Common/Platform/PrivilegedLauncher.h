#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

/**
 * @file
 * Seam: asking the user for an administrator's rights, and starting a tool with them.
 *
 * Statuses are those of macOS on every system; 0 is success. A session is used by one thread at a time.
 */
namespace Tavrik::Platform
{

const std::int32_t privilegeDenied = -60005;
const std::int32_t privilegeCancelled = -60006;   ///< The user dismissed the question.
const std::int32_t privilegeUnavailable = -60008; ///< This system has nothing to ask with.
const std::int32_t privilegedStartFailed = -60031;

/** Linux: the folders, parted by ":", where pkexec and sudo are looked for. Only tests assign it. */
extern const char* launcherFolders;

/** What this process has been granted so far. */
struct PrivilegedSession;

/** @param session Receives a session of no rights, for ClosePrivilegedSession(); untouched on failure. */
std::int32_t OpenPrivilegedSession(PrivilegedSession** session);

/** Leaves running tools and their streams alone. */
void ClosePrivilegedSession(PrivilegedSession* session);

/**
 * Asks for the right to start tools as root. Blocks while the system's question is shown.
 *
 * @param toolPath The tool that the question is about, UTF-8.
 */
std::int32_t AskForPrivilege(PrivilegedSession* session, const char* toolPath, std::size_t toolPathLength);

/**
 * @return Whether a right that was granted is still there. Linux: not once the root shell has ended, nor in a
 *         process that was forked from the one that has asked.
 */
bool HasPrivilege(const PrivilegedSession* session);

/**
 * Starts a tool as root, and does not wait for its end.
 *
 * @param session   One whose right has been granted.
 * @param script    Null for a tool that is started by its path. Otherwise the tool is a shell script that the
 *                  user may write to, and this is what it holds: on Linux these bytes are run under the
 *                  tool's name, whatever its file has become, as long as they are fewer than 128 KiB; macOS
 *                  has no means to start anything but a file.
 * @param arguments What follows the tool's own name, unchanged; ends in a null pointer.
 * @param stream    Receives the stream to the tool's standard input and from its standard output. It is not
 *                  the caller's to close, and may be used until the session's next call. On Linux only the
 *                  first four bytes of the output arrive; the rest is dropped for as long as the tool runs.
 */
std::int32_t StartPrivileged(PrivilegedSession* session, const char* toolPath, const std::string* script,
                             char* const* arguments, std::FILE** stream);

} // namespace Tavrik::Platform
