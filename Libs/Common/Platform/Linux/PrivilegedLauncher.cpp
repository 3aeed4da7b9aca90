// A process that is root starts tools itself. Any other asks once, through pkexec or sudo, for a root shell
// that lives as long as the session, and has that shell start the tools: both would ask again for every tool
// otherwise, pkexec by its default policy, sudo when its ticket has run out. The shell reads from a socket
// the number of a descriptor of this process, and runs what it reads from there. Other processes of the user
// can open that descriptor too, so what lies behind it is sealed before it is named.

#include <Common/Platform/PrivilegedLauncher.h>

#include <Common/Printable.h>

#include <glog/logging.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <memory>
#include <mutex>
#include <poll.h>
#include <string>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace Tavrik::Platform
{

const char* launcherFolders = "/run/wrappers/bin:/usr/bin:/bin";

namespace
{

const char* const rootPath = "PATH=/usr/sbin:/usr/bin:/sbin:/bin";
const char* const rootHome = "HOME=/root";
const char* const rootEnvironment[] = {rootPath, rootHome, nullptr};

const int longestAnswer = 10000;      // ms that the root shell may take to start a tool
const int longestFarewell = 1000;     // ms that is waited for the root shell to end
const int farewellStep = 10;          // ms
const std::size_t longestNote = 4096; // bytes kept of what a launcher says

// The launcher's output is closed by it and by nobody else, so standard error of the host is opened anew.
const char* const rootShell = "if (: 2>>\"$2\") 2>/dev/null\n"
                              "then exec 2>>\"$2\"\n"
                              "else exec 2>/dev/null\n"
                              "fi\n"
                              "trap '' HUP INT QUIT\n"
                              "ulimit -S -f \"$(ulimit -H -f)\" 2>/dev/null\n"
                              "ulimit -S -n \"$(ulimit -H -n)\" 2>/dev/null\n"
                              "printf y\n"
                              "while IFS= read -r request\n"
                              "do ( ( . \"/proc/$1/fd/$request\" ) & )\n"
                              "done\n";

class Descriptor
{
public:
  Descriptor() = default;

  // Never 0, 1 or 2, even when the host has closed those: they are what a child's are made from.
  explicit Descriptor(int number) : number(number)
  {
    if (number < 0 || number > STDERR_FILENO)
      return;
    this->number = fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    close(number);
  }

  Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept
  {
    std::swap(number, other.number);
    return *this;
  }
  ~Descriptor() { Close(); }

  explicit operator bool() const { return number >= 0; }
  int Get() const { return number; }
  int Release() { return std::exchange(number, -1); }

  void Close()
  {
    if (number >= 0)
      close(number);
    number = -1;
  }

private:
  int number = -1;
};

bool MakeSocketPair(Descriptor* one, Descriptor* other)
{
  int ends[2] = {-1, -1};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
    return false;
  *one = Descriptor(ends[0]);
  *other = Descriptor(ends[1]);
  return *one && *other;
}

bool MakePipe(Descriptor* readEnd, Descriptor* writeEnd)
{
  int ends[2] = {-1, -1};
  if (pipe2(ends, O_CLOEXEC) != 0)
    return false;
  *readEnd = Descriptor(ends[0]);
  *writeEnd = Descriptor(ends[1]);
  return *readEnd && *writeEnd;
}

template<typename Call>
auto Retry(const Call& call)
{
  auto result = call();
  while (result == -1 && errno == EINTR)
    result = call();
  return result;
}

/// @name Children
/// @{

struct Program
{
  std::vector<const char*> arguments; // the file's path first, a null pointer last
  const char* const* environment;
  int input;
  int output;
  int error;       // -1: this process's own
  int script = -1; // kept open under its number
};

// A limit that the host has set itself must not stop a tool of root's halfway.
void LiftLimits()
{
  for (const auto resource : {RLIMIT_FSIZE, RLIMIT_NOFILE})
  {
    rlimit limit;
    if (getrlimit(resource, &limit) != 0)
      continue;
    limit.rlim_cur = limit.rlim_max;
    setrlimit(resource, &limit);
  }
}

// From here to exec only what a child of a process with threads may call.
[[noreturn]] void BecomeProgram(const Program& program, int report)
{
  for (int number = 1; number < NSIG; ++number)
    signal(number, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);

  dup2(program.input, STDIN_FILENO);
  dup2(program.output, STDOUT_FILENO);
  if (program.error >= 0)
    dup2(program.error, STDERR_FILENO);
  if (close_range(STDERR_FILENO + 1, ~0u, CLOSE_RANGE_CLOEXEC) != 0)
    for (int number = STDERR_FILENO + 1; number < FD_SETSIZE; ++number)
      fcntl(number, F_SETFD, FD_CLOEXEC);
  if (program.script >= 0)
    fcntl(program.script, F_SETFD, 0);
  if (program.environment == rootEnvironment)
    LiftLimits();

  // A program without a standard error would write it into the first file that it opens.
  if (fcntl(STDERR_FILENO, F_GETFD) >= 0 || open("/dev/null", O_RDWR) == STDERR_FILENO)
    execve(program.arguments[0], const_cast<char**>(program.arguments.data()),
           const_cast<char**>(program.environment));
  const int reason = errno;
  (void)!write(report, &reason, sizeof(reason));
  _exit(EXIT_FAILURE);
}

[[noreturn]] void BecomeProgramOfNobody(const Program& program, int report)
{
  const pid_t pid = fork();
  if (pid == 0)
    BecomeProgram(program, report);
  const int reason = errno;
  if (pid < 0)
    (void)!write(report, &reason, sizeof(reason));
  _exit(EXIT_SUCCESS);
}

void Wait(pid_t pid, int* status)
{
  *status = 0;
  Retry([&] { return waitpid(pid, status, 0); });
}

enum class Parent
{
  ThisProcess, // which has to wait for it
  Nobody       // so it leaves no zombie here
};

// The result is 0 once the program runs, or the reason why it does not.
int Spawn(const Program& program, Parent parent, pid_t* pid)
{
  Descriptor reported;
  Descriptor report;
  if (!MakePipe(&reported, &report))
    return errno;

  // A handler of the host must not run in the child.
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  *pid = fork();
  if (*pid == 0)
  {
    if (parent == Parent::Nobody)
      BecomeProgramOfNobody(program, report.Get());
    BecomeProgram(program, report.Get());
  }
  int reason = *pid < 0 ? errno : 0;
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  report.Close();
  if (reason != 0)
    return reason;

  Retry([&] { return read(reported.Get(), &reason, sizeof(reason)); });
  int status = 0;
  if (parent == Parent::Nobody || reason != 0)
    Wait(*pid, &status);
  return reason;
}

/// @}
/// @name Streams
/// @{

struct PipeEnds
{
  Descriptor input;
  Descriptor output;
};

struct Stream
{
  std::FILE* file;
  int input;                      // the descriptor that it reads from
  std::shared_ptr<PipeEnds> ends; // what it is made of, unless that is a socket
};

ssize_t ReadEnds(void* ends, char* bytes, std::size_t size)
{
  return read(static_cast<PipeEnds*>(ends)->input.Get(), bytes, size);
}

ssize_t WriteEnds(void* ends, const char* bytes, std::size_t size)
{
  return std::max<ssize_t>(write(static_cast<PipeEnds*>(ends)->output.Get(), bytes, size), 0);
}

Stream OpenStream(const std::shared_ptr<PipeEnds>& ends)
{
  return {fopencookie(ends.get(), "r+", {ReadEnds, WriteEnds, nullptr, nullptr}), ends->input.Get(), ends};
}

Stream OpenStream(Descriptor socket)
{
  const int number = socket.Release();
  return {fdopen(number, "r+"), number, nullptr};
}

bool IsOver(const Stream& stream)
{
  pollfd look = {stream.input, 0, 0};
  return poll(&look, 1, 0) == 1 && (look.revents & POLLHUP) != 0;
}

// A stream stays open while its tool runs, which would be killed by writing to it otherwise.
void CloseFinished(std::vector<Stream>* streams)
{
  const auto finished =
      std::partition(streams->begin(), streams->end(), [](const Stream& stream) { return !IsOver(stream); });
  std::for_each(finished, streams->end(), [](const Stream& stream) { std::fclose(stream.file); });
  streams->erase(finished, streams->end());
}

/// @}

// What closed sessions have left: streams of tools that still run, root shells that have not ended yet.
class Leftovers
{
public:
  void Add(const std::vector<Stream>& more, pid_t shell)
  {
    const std::lock_guard<std::mutex> lock(mutex);
    streams.insert(streams.end(), more.begin(), more.end());
    if (shell > 0)
      shells.push_back(shell);
  }

  void Tidy()
  {
    const std::lock_guard<std::mutex> lock(mutex);
    CloseFinished(&streams);
    shells.erase(std::remove_if(shells.begin(), shells.end(),
                                [](pid_t shell) { return waitpid(shell, nullptr, WNOHANG) != 0; }),
                 shells.end());
  }

private:
  std::mutex mutex;
  std::vector<Stream> streams;
  std::vector<pid_t> shells;
};

// Never destroyed: sessions are closed by the destructors of static objects too.
Leftovers& GetLeftovers()
{
  static Leftovers& leftovers = *new Leftovers;
  return leftovers;
}

} // namespace

struct PrivilegedSession
{
  Descriptor control; // to the root shell
  pid_t shell = -1;
  std::vector<Stream> streams;
};

namespace
{

/// @name Asking
/// @{

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

struct Answer
{
  bool isGranted = false;
  int status = 0;   // as waitpid() gives it, when it is not granted
  std::string note; // the beginning of what was said on standard error
};

enum class Errors
{
  Kept,
  Shown
};

void ReadNote(int input, Errors errors, std::string* note)
{
  char bytes[512];
  const ssize_t size = read(input, bytes, sizeof(bytes));
  if (size <= 0)
    return;
  if (errors == Errors::Shown)
    (void)!write(STDERR_FILENO, bytes, static_cast<std::size_t>(size));
  note->append(bytes, std::min(static_cast<std::size_t>(size), longestNote - note->size()));
}

// Waits until the shell has said that it runs, or its end of the control is closed.
bool WaitForShell(int control, int error, Errors errors, std::string* note)
{
  pollfd looks[] = {{control, POLLIN, 0}, {error, POLLIN, 0}};
  while (looks[0].revents == 0)
  {
    looks[1].revents = 0;
    if (poll(looks, 2, -1) < 0)
      continue;
    if ((looks[1].revents & POLLIN) != 0)
      ReadNote(error, errors, note);
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
std::string ErrorsOfHost()
{
  const int flags = fcntl(STDERR_FILENO, F_GETFL);
  const int access = flags & O_ACCMODE;
  const bool isWritable = flags >= 0 && (flags & O_PATH) == 0 && (access == O_WRONLY || access == O_RDWR);
  return isWritable ? "/proc/" + std::to_string(getpid()) + "/fd/2" : "/dev/null";
}

Answer AskThrough(const std::vector<const char*>& launcher, Errors errors, PrivilegedSession* session)
{
  Answer answer;
  Descriptor control;
  Descriptor shellControl;
  Descriptor error;
  Descriptor shellError;
  if (!MakeSocketPair(&control, &shellControl) || !MakePipe(&error, &shellError))
    return answer;

  const std::string pid = std::to_string(getpid());
  const std::string errorsOfHost = ErrorsOfHost();
  const std::vector<const char*> environment = LauncherEnvironment();
  Program program = {launcher, environment.data(), shellControl.Get(), shellControl.Get(), shellError.Get()};
  for (const char* argument : {"/usr/bin/env", "-i", rootPath, rootHome, "/bin/sh", "-c", rootShell, "sh",
                               pid.c_str(), errorsOfHost.c_str(), static_cast<const char*>(nullptr)})
    program.arguments.push_back(argument);

  pid_t shell = -1;
  const int reason = Spawn(program, Parent::ThisProcess, &shell);
  shellControl.Close();
  shellError.Close();
  if (reason != 0)
  {
    answer.status = W_EXITCODE(EXIT_FAILURE, 0);
    LOG(ERROR) << "Can't start " << launcher.front() << ": " << std::strerror(reason);
    return answer;
  }

  answer.isGranted = WaitForShell(control.Get(), error.Get(), errors, &answer.note);
  if (answer.isGranted)
  {
    session->control = std::move(control);
    session->shell = shell;
    return answer;
  }
  control.Close();
  Wait(shell, &answer.status);
  pollfd look = {error.Get(), POLLIN, 0};
  while (poll(&look, 1, 0) == 1 && (look.revents & POLLIN) != 0)
    ReadNote(error.Get(), errors, &answer.note);
  return answer;
}

bool HasExited(const Answer& answer, int code)
{
  return WIFEXITED(answer.status) && WEXITSTATUS(answer.status) == code;
}

bool Says(const Answer& answer, const char* text)
{
  return answer.note.find(text) != std::string::npos;
}

std::int32_t AskThroughPolkit(const std::string& path, PrivilegedSession* session)
{
  const Answer answer = AskThrough({path.c_str(), "--disable-internal-agent"}, Errors::Kept, session);
  if (answer.isGranted)
    return 0;
  const int dismissed = 126;
  if (HasExited(answer, dismissed))
    return privilegeCancelled;
  // One code tells of a refusal, of a missing agent and of a missing service.
  if (Says(answer, "Not authorized"))
    return privilegeDenied;
  VLOG(30) << "pkexec can't ask: " << Printable(QByteArray::fromStdString(answer.note)).constData();
  return privilegeUnavailable;
}

std::int32_t AskThroughSudo(const std::string& path, PrivilegedSession* session)
{
  const Answer answer = AskThrough({path.c_str(), "--"}, Errors::Shown, session);
  if (answer.isGranted)
    return 0;
  // It ends with 1 whatever the reason: an interrupted or empty prompt has left it without a password, and so
  // has a missing terminal, of which it complains first.
  const bool isDismissed = Says(answer, "a password is required") && !Says(answer, "a terminal is required");
  return isDismissed ? privilegeCancelled : privilegeDenied;
}

void DismissShell(PrivilegedSession* session)
{
  session->control.Close();
  if (session->shell <= 0)
    return;
  for (int waited = 0; waited < longestFarewell; waited += farewellStep)
  {
    if (waitpid(session->shell, nullptr, WNOHANG) != 0)
    {
      session->shell = -1;
      return;
    }
    poll(nullptr, 0, farewellStep);
  }
  GetLeftovers().Add({}, std::exchange(session->shell, -1));
}

std::int32_t AskForShell(PrivilegedSession* session)
{
  const std::string pkexec = FindLauncher("pkexec");
  if (!pkexec.empty())
  {
    const std::int32_t status = AskThroughPolkit(pkexec, session);
    if (status != privilegeUnavailable)
      return status;
  }
  const std::string sudo = FindLauncher("sudo");
  if (!sudo.empty())
    return AskThroughSudo(sudo, session);
  LOG(ERROR)
      << "Nothing can ask for an administrator's password: install pkexec with a polkit agent, or sudo";
  return privilegeUnavailable;
}

/// @}
/// @name Starting
/// @{

// A file of a process that nobody can write to any more, although others of the user can open it.
Descriptor MakeSealedFile(const std::string& content)
{
  Descriptor file(memfd_create("request", MFD_CLOEXEC | MFD_ALLOW_SEALING));
  std::size_t written = 0;
  while (file && written < content.size())
  {
    const ssize_t size =
        Retry([&] { return write(file.Get(), content.data() + written, content.size() - written); });
    if (size <= 0)
      return {};
    written += static_cast<std::size_t>(size);
  }
  if (!file || fcntl(file.Get(), F_ADD_SEALS, F_SEAL_WRITE | F_SEAL_GROW | F_SEAL_SHRINK | F_SEAL_SEAL) != 0)
    return {};

  // Somebody may have written before the seal.
  std::string sealed(content.size() + 1, '\0');
  const ssize_t size = Retry([&] { return pread(file.Get(), sealed.data(), sealed.size(), 0); });
  sealed.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
  return sealed == content ? std::move(file) : Descriptor();
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

// What runs the script behind the descriptor under the tool's name.
std::vector<std::string> ScriptCommand(const std::string& script, int descriptor, const char* toolPath)
{
  std::vector<std::string> command = ShellOf(script);
  for (const std::string& word :
       {std::string("-c"), ". /proc/self/fd/" + std::to_string(descriptor), std::string(toolPath)})
    command.push_back(word);
  return command;
}

std::int32_t StartAsRoot(PrivilegedSession* session, const char* toolPath, const std::string* script,
                         char* const* arguments, std::FILE** stream)
{
  Descriptor ours;
  Descriptor theirs;
  if (!MakeSocketPair(&ours, &theirs))
    return privilegedStartFailed;

  Program program = {{}, rootEnvironment, theirs.Get(), theirs.Get(), -1};
  Descriptor content;
  std::vector<std::string> command = {toolPath};
  if (script)
  {
    content = MakeSealedFile(*script);
    if (!content)
      return privilegedStartFailed;
    program.script = content.Get();
    command = ScriptCommand(*script, content.Get(), toolPath);
  }
  for (const std::string& word : command)
    program.arguments.push_back(word.c_str());
  for (; *arguments; ++arguments)
    program.arguments.push_back(*arguments);
  program.arguments.push_back(nullptr);

  pid_t pid = -1;
  const int reason = Spawn(program, Parent::Nobody, &pid);
  if (reason != 0)
  {
    VLOG(30) << Printable(QByteArray(toolPath)).constData() << ": " << std::strerror(reason);
    return privilegedStartFailed;
  }
  session->streams.push_back(OpenStream(std::move(ours)));
  *stream = session->streams.back().file;
  return 0;
}

// The kernel's own limits: the shell could not tell that its exec has met them.
bool IsTooLong(const char* toolPath, char* const* arguments)
{
  const std::size_t longest = 32 * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t longestTogether = static_cast<std::size_t>(sysconf(_SC_ARG_MAX)) - PATH_MAX;
  std::size_t together = std::strlen(toolPath) + 1;
  for (; *arguments; ++arguments)
  {
    const std::size_t size = std::strlen(*arguments) + 1;
    together += size + sizeof(char*);
    if (size > longest || together > longestTogether)
      return true;
  }
  return false;
}

std::string Quoted(const std::string& text)
{
  std::string quoted = "'";
  for (const char c : text)
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

std::string AbsolutePath(const char* path)
{
  char folder[PATH_MAX];
  return path[0] == '/' || !getcwd(folder, sizeof(folder)) ? path : std::string(folder) + "/" + path;
}

std::string OwnDescriptor(const Descriptor& descriptor)
{
  return "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(descriptor.Get());
}

// What the root shell reads to start a tool: a script from its descriptor, any other from its path.
std::string MakeRequest(const char* toolPath, const std::string* script, const Descriptor& content,
                        char* const* arguments, const Descriptor& input, const Descriptor& output)
{
  const int scriptNumber = 9; // the highest that every shell takes in a redirection
  const std::string path = AbsolutePath(toolPath);
  const std::vector<std::string> command =
      script ? ScriptCommand(*script, scriptNumber, path.c_str()) : std::vector<std::string>{path};
  const std::string program = Quoted(command.front());
  std::string request = "trap - HUP INT QUIT\n"
                        "exec 3>&1 <" +
                        OwnDescriptor(input) + " >" + OwnDescriptor(output) + " || exit\n";
  if (script)
    request += "exec " + std::to_string(scriptNumber) + "<" + OwnDescriptor(content) + " || exit\n";
  request += "if [ -f " + program + " ] && [ -x " + program +
             " ]\n"
             "then printf y >&3; exec 3>&-";
  for (const std::string& word : command)
    request += " " + Quoted(word);
  for (; *arguments; ++arguments)
    request += " " + Quoted(*arguments);
  return request + "\nfi\nprintf n >&3\n";
}

bool IsBroken(const Descriptor& control)
{
  char byte = 0;
  return !control || recv(control.Get(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) >= 0 || errno != EAGAIN;
}

// 'y' or 'n', or 0 when the shell is lost.
char SendRequest(const Descriptor& control, const Descriptor& request)
{
  const std::string line = std::to_string(request.Get()) + "\n";
  if (send(control.Get(), line.data(), line.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(line.size()))
    return 0;
  pollfd look = {control.Get(), POLLIN, 0};
  char answer = 0;
  if (Retry([&] { return poll(&look, 1, longestAnswer); }) != 1 || read(control.Get(), &answer, 1) != 1)
    return 0;
  return answer;
}

std::int32_t StartThroughShell(PrivilegedSession* session, const char* toolPath, const std::string* script,
                               char* const* arguments, std::FILE** stream)
{
  if (IsTooLong(toolPath, arguments))
    return privilegedStartFailed;
  if (IsBroken(session->control))
  {
    DismissShell(session);
    const std::int32_t status = AskForShell(session);
    if (status != 0)
      return status;
  }

  Descriptor toolInput;
  Descriptor toolOutput;
  const auto ours = std::make_shared<PipeEnds>();
  if (!MakePipe(&toolInput, &ours->output) || !MakePipe(&ours->input, &toolOutput))
    return privilegedStartFailed;
  Descriptor content;
  if (script)
    content = MakeSealedFile(*script);
  Descriptor request;
  if (content || !script)
    request = MakeSealedFile(MakeRequest(toolPath, script, content, arguments, toolInput, toolOutput));
  if (!request)
    return privilegedStartFailed;

  const char answer = SendRequest(session->control, request);
  if (answer == 0)
  {
    DismissShell(session);
    // A root shell that is merely slow opens them by their numbers, which must never be another file's.
    for (Descriptor* descriptor : {&request, &content, &toolInput, &toolOutput})
      descriptor->Release();
  }
  if (answer != 'y')
    return privilegedStartFailed;
  session->streams.push_back(OpenStream(ours));
  *stream = session->streams.back().file;
  return 0;
}

/// @}

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
  DismissShell(session);
  GetLeftovers().Add(session->streams, -1);
  GetLeftovers().Tidy();
  delete session;
}

std::int32_t AskForPrivilege(PrivilegedSession* session, const char*, std::size_t)
{
  return IsRoot() ? 0 : AskForShell(session);
}

std::int32_t StartPrivileged(PrivilegedSession* session, const char* toolPath, const std::string* script,
                             char* const* arguments, std::FILE** stream)
{
  CloseFinished(&session->streams);
  GetLeftovers().Tidy();
  return IsRoot() ? StartAsRoot(session, toolPath, script, arguments, stream)
                  : StartThroughShell(session, toolPath, script, arguments, stream);
}

} // namespace Tavrik::Platform
