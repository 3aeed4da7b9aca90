#pragma once

#include <Common/Platform/Pipe.h>

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Tavrik::Platform
{

extern const char* const rootPath; ///< "PATH=...", as tools of root get it.
extern const char* const rootHome; ///< "HOME=..."

/**
 * A shell that pkexec or sudo has started as root for this process, once, and that starts the tools: both
 * would ask again for every tool otherwise, pkexec by its default policy, sudo when its ticket has run out.
 *
 * Root runs only what comes through the socket to the shell, which no other process can open. The ends of a
 * tool's stream are opened by their numbers, but only in the very process that has asked: a process that has
 * taken over its id, or was forked from it, has to ask itself.
 */
class RootShell
{
public:
  enum class Answer
  {
    Started,
    Refused,
    Lost ///< The shell has ended or does not answer; it is dismissed.
  };

  RootShell() = default;
  RootShell(const RootShell&) = delete;
  RootShell& operator=(const RootShell&) = delete;
  ~RootShell() { Dismiss(); }

  /** Asks the user through pkexec, or sudo, after dismissing an earlier shell. @return A status of the seam.
   */
  std::int32_t Ask();

  /** @return Whether there is a shell that has been granted to this process. */
  bool IsThere() const;

  /** @param input,output Ends of pipes, which become the tool's standard input and output. */
  Answer Start(const std::vector<std::string>& command, const Descriptor& input, const Descriptor& output);

private:
  struct Asked;

  Asked AskThrough(const std::vector<const char*>& launcher, bool isShown);
  std::int32_t AskThroughPolkit(const std::string& path);
  std::int32_t AskThroughSudo(const std::string& path);
  char Send(const std::string& request);
  void Dismiss();

  Descriptor control;
  pid_t shell = -1;
  std::string owner; // the process that was granted the shell
};

} // namespace Tavrik::Platform
