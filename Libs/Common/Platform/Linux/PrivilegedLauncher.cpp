// A process that is root starts tools itself; any other has a root shell start them.

#include <Common/Platform/Linux/RootShell.h>
#include <Common/Platform/Linux/ToolSetup.h>
#include <Common/Platform/Linux/ToolStream.h>
#include <Common/Platform/PrivilegedLauncher.h>
#include <Common/Platform/Scripts.h>
#include <Common/Platform/Spawn.h>

#include <Common/Printable.h>

#include <glog/logging.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <unistd.h>
#include <vector>

namespace Tavrik::Platform
{

struct PrivilegedSession
{
  RootShell shell; // of a process that is not root
  std::vector<ToolStream> streams;
};

namespace
{

// The streams of tools that still run although their session is closed. Never destroyed: sessions are closed
// by the destructors of static objects too.
class Leftovers
{
public:
  void Add(const std::vector<ToolStream>& more)
  {
    const std::lock_guard<std::mutex> lock(mutex);
    streams.insert(streams.end(), more.begin(), more.end());
  }

  void Tidy()
  {
    const std::lock_guard<std::mutex> lock(mutex);
    CloseFinished(&streams);
  }

private:
  std::mutex mutex;
  std::vector<ToolStream> streams;
};

Leftovers& GetLeftovers()
{
  static Leftovers& leftovers = *new Leftovers;
  return leftovers;
}

// The shell that a script's first line names, with what stands behind it, as the kernel takes it.
std::vector<std::string> ShellOf(const std::string& script)
{
  const std::string blanks = " \t";
  const std::string line = script.substr(0, script.find('\n'));
  const std::size_t begin = line.find_first_not_of(blanks, 2);
  if (line.compare(0, 2, "#!") != 0 || begin == std::string::npos)
    return {"/bin/sh"};
  const std::size_t end = std::min(line.find_first_of(blanks, begin), line.size());
  std::vector<std::string> shell = {line.substr(begin, end - begin)};
  const std::size_t option = line.find_first_not_of(blanks, end);
  if (option != std::string::npos)
    shell.push_back(line.substr(option, line.find_last_not_of(blanks) + 1 - option));
  return shell;
}

std::string AbsolutePath(const char* path)
{
  char folder[PATH_MAX];
  return path[0] == '/' || !getcwd(folder, sizeof(folder)) ? path : std::string(folder) + "/" + path;
}

// A script is handed to its shell as an argument: nothing that lies in a file, or can be opened by others.
std::vector<std::string> MakeCommand(const char* toolPath, const std::string* script, char* const* arguments)
{
  std::vector<std::string> command;
  if (script)
  {
    command = ShellOf(*script);
    command.emplace_back("-c");
    command.push_back(*script);
  }
  command.push_back(AbsolutePath(toolPath));
  for (; *arguments; ++arguments)
    command.emplace_back(*arguments);
  return command;
}

// The kernel's own limits: a shell could not report that its exec has met them.
bool IsTooLong(const std::vector<std::string>& command)
{
  const std::size_t longest = 32 * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t longestTogether = static_cast<std::size_t>(sysconf(_SC_ARG_MAX)) - PATH_MAX;
  std::size_t together = 0;
  for (const std::string& word : command)
  {
    together += word.size() + 1 + sizeof(char*);
    if (word.size() >= longest || together > longestTogether)
      return true;
  }
  return false;
}

std::vector<const char*> ToPointers(const std::vector<std::string>& words)
{
  std::vector<const char*> pointers;
  pointers.reserve(words.size() + 1);
  for (const std::string& word : words)
    pointers.push_back(word.c_str());
  pointers.push_back(nullptr);
  return pointers;
}

// The drain runs first: a tool that starts always has a reader.
bool StartDirectly(const std::vector<std::string>& command, Descriptor toolInput, Descriptor output)
{
  Descriptor drainInput;
  Descriptor toolOutput;
  if (!MakePipe(&drainInput, &toolOutput))
    return false;
  const char* const environment[] = {rootPath, rootHome, nullptr};
  Program drain;
  drain.arguments = {"/bin/sh", "-c", drainText, nullptr};
  drain.environment = environment;
  drain.input = drainInput.Get();
  drain.output = output.Get();
  drain.prepare = PrepareTool;
  Program tool;
  tool.arguments = ToPointers(command);
  tool.environment = environment;
  tool.input = toolInput.Get();
  tool.output = toolOutput.Get();
  tool.prepare = PrepareTool;

  pid_t ignored = -1;
  int reason = Spawn(drain, Parent::Init, -1, &ignored);
  if (reason == 0)
    reason = Spawn(tool, Parent::Init, -1, &ignored);
  VLOG_IF(30, reason != 0) << Printable(QByteArray::fromStdString(command.front())).constData() << ": "
                           << std::strerror(reason);
  return reason == 0;
}

bool StartThroughShell(RootShell* shell, const std::vector<std::string>& command, Descriptor toolInput,
                       Descriptor toolOutput)
{
  const RootShell::Answer answer = shell->Start(command, toolInput, toolOutput);
  if (answer == RootShell::Answer::Lost)
  {
    // A shell that is merely slow opens them by their numbers, which must never be another file's.
    toolInput.Release();
    toolOutput.Release();
  }
  return answer == RootShell::Answer::Started;
}

bool IsRoot()
{
  return geteuid() == 0;
}

} // namespace

std::int32_t OpenPrivilegedSession(PrivilegedSession** session)
{
  *session = new PrivilegedSession;
  return 0;
}

void ClosePrivilegedSession(PrivilegedSession* session)
{
  GetLeftovers().Add(session->streams);
  delete session;
  GetLeftovers().Tidy();
  ReapAbandoned();
}

std::int32_t AskForPrivilege(PrivilegedSession* session, const char*, std::size_t)
{
  return IsRoot() ? 0 : session->shell.Ask();
}

bool HasPrivilege(const PrivilegedSession* session)
{
  return IsRoot() || session->shell.IsThere();
}

std::int32_t StartPrivileged(PrivilegedSession* session, const char* toolPath, const std::string* script,
                             char* const* arguments, std::FILE** stream)
{
  CloseFinished(&session->streams);
  GetLeftovers().Tidy();

  const std::vector<std::string> command = MakeCommand(toolPath, script, arguments);
  Descriptor toolInput;
  Descriptor toolOutput;
  const auto ends = std::make_shared<PipeEnds>();
  if (IsTooLong(command) || !MakePipe(&toolInput, &ends->output) || !MakePipe(&ends->input, &toolOutput))
    return privilegedStartFailed;
  const ToolStream opened = OpenToolStream(ends);
  if (!opened.file)
    return privilegedStartFailed;
  if (IsRoot() ? !StartDirectly(command, std::move(toolInput), std::move(toolOutput))
               : !StartThroughShell(&session->shell, command, std::move(toolInput), std::move(toolOutput)))
  {
    std::fclose(opened.file);
    return privilegedStartFailed;
  }
  session->streams.push_back(opened);
  *stream = opened.file;
  return 0;
}

} // namespace Tavrik::Platform
