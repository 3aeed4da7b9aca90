#include <Common/Platform/Linux/RootShell.h>

#include <Common/Platform/Linux/ToolSetup.h>
#include <Common/Platform/PrivilegedLauncher.h>
#include <Common/Platform/Scripts.h>
#include <Common/Platform/Spawn.h>
#include <Common/Printable.h>

#include <glog/logging.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <poll.h>
#include <sstream>
#include <sys/socket.h>
#include <sys/wait.h>

namespace Tavrik::Platform
{

const char* launcherFolders = "/run/wrappers/bin:/usr/bin:/bin";
const char* const rootPath = "PATH=/usr/sbin:/usr/bin:/sbin:/bin";
const char* const rootHome = "HOME=/root";

struct RootShell::Asked
{
  bool isGranted = false;
  int status = 0;   // as waitpid() gives it, when it is not granted
  std::string note; // the beginning of what was said on standard error

  bool HasExited(int code) const { return WIFEXITED(status) && WEXITSTATUS(status) == code; }
  bool Says(const char* text) const { return note.find(text) != std::string::npos; }
};

namespace
{

const int longestAnswer = 10000;      // ms that the root shell may take to start a tool
const int longestFarewell = 1000;     // ms that is waited for the root shell to end
const int farewellStep = 10;          // ms
const std::size_t longestNote = 4096; // bytes kept of what a launcher says

bool MakeSocketPair(Descriptor* one, Descriptor* other)
{
  int ends[2] = {-1, -1};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
    return false;
  *one = Descriptor(ends[0]);
  *other = Descriptor(ends[1]);
  return *one && *other;
}

std::string FindLauncher(const char* name)
{
  const std::string folders = launcherFolders;
  for (std::size_t begin = 0; begin <= folders.size();)
  {
    const std::size_t end = std::min(folders.find(':', begin), folders.size());
    std::string path = folders.substr(begin, end - begin) + "/" + name;
    if (access(path.c_str(), X_OK) == 0)
      return path;
    begin = end + 1;
  }
  return {};
}

void ReadNote(int input, bool isShown, std::string* note)
{
  char bytes[512];
  const ssize_t size = read(input, bytes, sizeof(bytes));
  if (size <= 0)
    return;
  if (isShown)
    (void)!write(STDERR_FILENO, bytes, static_cast<std::size_t>(size));
  note->append(bytes, std::min(static_cast<std::size_t>(size), longestNote - note->size()));
}

// Waits until the shell has said that it runs, or its end of the control is closed.
bool WaitForShell(int control, int error, bool isShown, std::string* note)
{
  pollfd looks[] = {{control, POLLIN, 0}, {error, POLLIN, 0}};
  while (looks[0].revents == 0)
  {
    looks[1].revents = 0;
    if (poll(looks, 2, -1) < 0)
      continue;
    if ((looks[1].revents & POLLIN) != 0)
      ReadNote(error, isShown, note);
    else if (looks[1].revents != 0)
      looks[1].fd = -1;
  }
  char said = 0;
  return Retry([&] { return read(control, &said, 1); }) == 1 && said == 'y';
}

// What the launchers say is looked at, so they say it in one language. Else they get what finds the user's
// screen, agent and terminal, and nothing that could change what they start.
std::vector<const char*> LauncherEnvironment()
{
  const char* const kept[] = {"DBUS_SESSION_BUS_ADDRESS",
                              "DISPLAY",
                              "HOME",
                              "LOGNAME",
                              "SSH_AUTH_SOCK",
                              "SUDO_ASKPASS",
                              "TERM",
                              "USER",
                              "WAYLAND_DISPLAY",
                              "XAUTHORITY",
                              "XDG_RUNTIME_DIR",
                              "XDG_SESSION_ID"};
  std::vector<const char*> environment = {"LC_ALL=C", rootPath};
  for (char** variable = environ; variable && *variable; ++variable)
    if (std::any_of(std::begin(kept), std::end(kept),
                    [&](const char* name)
                    {
                      const std::size_t length = std::strlen(name);
                      return std::strncmp(*variable, name, length) == 0 && (*variable)[length] == '=';
                    }))
      environment.push_back(*variable);
  environment.push_back(nullptr);
  return environment;
}

// Root opens it anew, for writing: nothing that the host itself may only read.
const char* ErrorsOfHost()
{
  const int flags = fcntl(STDERR_FILENO, F_GETFL);
  const int access = flags & O_ACCMODE;
  const bool isWritable = flags >= 0 && (flags & O_PATH) == 0 && (access == O_WRONLY || access == O_RDWR);
  return isWritable ? "/proc/self/fd/7/fd/2" : "/dev/null";
}

// When this process began, in the units of /proc. The name in the second field may hold anything.
std::string OwnStartTime()
{
  std::ifstream file("/proc/self/stat");
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  const std::size_t nameEnd = text.rfind(") ");
  std::istringstream fields(nameEnd == std::string::npos ? "" : text.substr(nameEnd + 2));
  const int startTimeField = 20;
  std::string field;
  for (int number = 1; number <= startTimeField; ++number)
    fields >> field;
  return field;
}

// Of no other process, not even of one with the same id in a namespace of its own.
std::string OwnIdentity()
{
  return std::to_string(getpid()) + " " + OwnStartTime();
}

std::string Quoted(const std::string& text)
{
  std::string quoted = "'";
  for (const char c : text)
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

// Whether the shell can still answer.
bool IsConnected(const Descriptor& control)
{
  char byte = 0;
  return control && recv(control.Get(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) < 0 && errno == EAGAIN;
}

} // namespace

bool RootShell::IsThere() const
{
  return IsConnected(control) && owner == OwnIdentity();
}

RootShell::Asked RootShell::AskThrough(const std::vector<const char*>& launcher, bool isShown)
{
  Asked asked;
  Descriptor ours;
  Descriptor theirs;
  Descriptor error;
  Descriptor shellError;
  if (!MakeSocketPair(&ours, &theirs) || !MakePipe(&error, &shellError))
    return asked;

  const std::string folder = "/proc/" + std::to_string(getpid());
  const std::string startTime = OwnStartTime();
  const std::vector<const char*> environment = LauncherEnvironment();
  Program program;
  program.arguments = launcher;
  for (const char* argument :
       {"/usr/bin/env", "-i", rootPath, rootHome, "/bin/sh", "-c", rootShellText, "sh", folder.c_str(),
        startTime.c_str(), ErrorsOfHost(), drainText, static_cast<const char*>(nullptr)})
    program.arguments.push_back(argument);
  program.environment = environment.data();
  program.input = theirs.Get();
  program.output = theirs.Get();
  program.error = shellError.Get();
  program.prepare = PrepareLauncher;

  pid_t pid = -1;
  const int reason = Spawn(program, Parent::ThisProcess, -1, &pid);
  theirs.Close();
  shellError.Close();
  if (reason != 0)
  {
    asked.status = W_EXITCODE(EXIT_FAILURE, 0);
    LOG(ERROR) << "Can't start " << launcher.front() << ": " << std::strerror(reason);
    return asked;
  }

  asked.isGranted = WaitForShell(ours.Get(), error.Get(), isShown, &asked.note);
  if (asked.isGranted)
  {
    control = std::move(ours);
    shell = pid;
    owner = OwnIdentity();
    return asked;
  }
  ours.Close();
  Retry([&] { return waitpid(pid, &asked.status, 0); });
  pollfd look = {error.Get(), POLLIN, 0};
  while (poll(&look, 1, 0) == 1 && (look.revents & POLLIN) != 0)
    ReadNote(error.Get(), isShown, &asked.note);
  return asked;
}

std::int32_t RootShell::AskThroughPolkit(const std::string& path)
{
  const Asked asked = AskThrough({path.c_str(), "--disable-internal-agent"}, false);
  if (asked.isGranted)
    return 0;
  // A host that ignores SIGCHLD never learns of the exit code.
  const int dismissed = 126;
  if (asked.HasExited(dismissed) || asked.Says("Request dismissed"))
    return privilegeCancelled;
  // One code means a refusal, a missing agent or a missing service.
  if (asked.Says("Not authorized"))
    return privilegeDenied;
  VLOG(30) << "pkexec can't ask: " << Printable(QByteArray::fromStdString(asked.note)).constData();
  return privilegeUnavailable;
}

std::int32_t RootShell::AskThroughSudo(const std::string& path)
{
  const Asked asked = AskThrough({path.c_str(), "--"}, true);
  if (asked.isGranted)
    return 0;
  // Its exit code is 1 whatever the reason. Without a terminal it first complains of that, and then, as after
  // an interrupted or empty prompt, that it has no password.
  for (const char* complaint : {"a terminal is required", "no tty present", "you must have a tty"})
    if (asked.Says(complaint))
      return privilegeUnavailable;
  return asked.Says("a password is required") ? privilegeCancelled : privilegeDenied;
}

std::int32_t RootShell::Ask()
{
  Dismiss();
  const std::string pkexec = FindLauncher("pkexec");
  if (!pkexec.empty())
  {
    const std::int32_t status = AskThroughPolkit(pkexec);
    if (status != privilegeUnavailable)
      return status;
  }
  const std::string sudo = FindLauncher("sudo");
  if (!sudo.empty())
    return AskThroughSudo(sudo);
  LOG(ERROR)
      << "Nothing can ask for an administrator's password: install pkexec with a polkit agent, or sudo";
  return privilegeUnavailable;
}

// The shell's answer, or 0 when there is none.
char RootShell::Send(const std::string& request)
{
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(longestAnswer);
  const auto waitFor = [&](short event)
  {
    pollfd look = {control.Get(), event, 0};
    return Retry(
               [&]
               {
                 const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                     end - std::chrono::steady_clock::now());
                 return poll(&look, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
               }) == 1;
  };
  for (std::size_t sent = 0; sent < request.size();)
  {
    if (!waitFor(POLLOUT))
      return 0;
    const ssize_t size =
        send(control.Get(), request.data() + sent, request.size() - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (size < 0 && errno != EAGAIN && errno != EINTR)
      return 0;
    sent += static_cast<std::size_t>(std::max<ssize_t>(size, 0));
  }
  char answer = 0;
  return waitFor(POLLIN) && read(control.Get(), &answer, 1) == 1 ? answer : '\0';
}

RootShell::Answer RootShell::Start(const std::vector<std::string>& command, const Descriptor& input,
                                   const Descriptor& output)
{
  std::string text = "Start " + std::to_string(input.Get()) + " " + std::to_string(output.Get());
  for (const std::string& word : command)
    text += " " + Quoted(word);
  const char answer = IsThere() ? Send(std::to_string(text.size()) + "\n" + text) : '\0';
  if (answer == 0)
    Dismiss();
  return answer == 'y' ? Answer::Started : answer == 0 ? Answer::Lost : Answer::Refused;
}

// A forked process closes its copy of the socket, and has no such child to wait for.
void RootShell::Dismiss()
{
  control.Close();
  for (int waited = 0; shell > 0 && waited < longestFarewell; waited += farewellStep)
  {
    if (HasEnded(shell))
      shell = -1;
    else
      poll(nullptr, 0, farewellStep);
  }
  if (shell > 0)
    Abandon(shell);
  shell = -1;
}

} // namespace Tavrik::Platform
