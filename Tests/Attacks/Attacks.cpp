// Attacks on the road of the firewall's script to root, each tried many times.
//
//   TavrikAttacks TRIES [ATTACK...]
//
// A try is a host, a process of its own that saves an edited firewall, and an attacker, another process, of
// another user where the host is root and of the host's own where root is asked for. The script writes down,
// as root, how it was started. A try is refused when the save was false and the log said so, harmless when
// exactly the library's script ran, once and clean, and the attack succeeded in all other cases.

#include <Common/DaemonSettings.h>
#include <Common/Firewall.h>
#include <Common/Platform/PrivilegedLauncher.h>

#include "Support/LogCapture.h"
#include "Support/Programs.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QResource>
#include <QTextCodec>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <grp.h>
#include <poll.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace Tavrik;
using Cleaner::Firewall;

namespace
{

const uid_t nobody = 65534;
const int longestTry = 20000; // ms

bool wasRoot = false; // of the machine, with other users to be
std::string work;     // all that the attacks use

std::string In(const std::string& name)
{
  return work + "/" + name;
}

/// @name Files
/// @{

bool Write(const std::string& path, const std::string& text, mode_t mode)
{
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, mode);
  const bool isWritten = file >= 0 &&
                         write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size()) &&
                         fchmod(file, mode) == 0;
  if (file >= 0)
    close(file);
  return isWritten;
}

std::string Read(const std::string& path)
{
  return ReadText(QString::fromUtf8(path.c_str())).toStdString();
}

bool Exists(const std::string& path)
{
  struct stat information;
  return lstat(path.c_str(), &information) == 0;
}

void RemoveWhole(const std::string& path)
{
  std::error_code ignored;
  std::filesystem::remove_all(path, ignored);
}

/// @}
/// @name The parts that are played
/// @{

const std::string preciousText = "precious\n";

std::string HostileScript()
{
  return "#!/bin/sh\n: >'" + In("evidence/hacked") + "'\n";
}

// Builtins only, so that a fake tool in somebody's PATH would have to be looked for by the script's own
// doing.
std::string GenuineScript()
{
  return "#!/bin/sh\n"
         "# genuine\n"
         "e='" +
         In("evidence") +
         "'\n"
         "closed=; for n in 0 1 2; do [ -e /proc/$$/fd/$n ] || closed=$closed$n; done\n"
         "printf '%s\\0' \"$0\" \"$@\" >\"$e/arguments\"\n"
         "one=; two=; [ -f \"$0\" ] && { read -r one; read -r two; } 2>/dev/null <\"$0\"\n"
         "[ \"$two\" = '# genuine' ] || : >\"$e/changed\"\n"
         "/bin/cat /proc/$$/environ >\"$e/environment\"\n"
         "printf '%s' \"$closed\" >\"$e/closed\"\n"
         "echo 'root::0:0:::' >&2\n"
         "printf x >>\"$e/runs\"\n";
}

enum class Way
{
  Direct, // the host is root, the attacker somebody else
  Asked   // host and attacker are one user, who asks for root
};

struct Try
{
  Way way;
  int number;
  std::string script; // the host's file
};

void BecomeNobody()
{
  if (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0)
    _exit(EXIT_FAILURE);
  prctl(PR_SET_DUMPABLE, 1); // as a program is that this user has started
}

// A user namespace makes everybody in it root, the attacker too.
void BecomeHost(Way way)
{
  if (way == Way::Direct && !BecomeRoot())
    _exit(EXIT_FAILURE);
  if (way == Way::Asked && wasRoot)
    BecomeNobody();
}

pid_t StartAttacker(const std::function<bool(int)>& act, int* told)
{
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0)
    return -1;
  const pid_t pid = fork();
  if (pid == 0)
  {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (wasRoot)
      BecomeNobody();
    umask(0);
    _exit(act(ends[1]) ? EXIT_SUCCESS : EXIT_FAILURE);
  }
  close(ends[1]);
  *told = ends[0];
  return pid;
}

bool AsAttacker(const std::function<bool()>& act)
{
  int told = -1;
  const pid_t pid = StartAttacker([&](int) { return act(); }, &told);
  int status = 0;
  waitpid(pid, &status, 0);
  close(told);
  return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
}

/// @}
/// @name Attacks
/// @{

enum class Ways
{
  Both,
  DirectOnly,
  AskedOnly
};

// By what it is known that an attack has had its chance.
enum class Chance
{
  SetUp,        // its set-up took place
  SeenByScript, // when the script began, its file was another
  Told          // the attacker has told so
};

struct Attack
{
  const char* name;
  Ways ways = Ways::Both;
  Chance chance = Chance::SetUp;
  std::function<bool(const Try&)> before;                     // the host's model is made
  std::function<bool(const Try&)> after;                      // it was made, and before it is saved
  std::function<bool(const Try&)> inHost;                     // in the host, before its model is made
  std::function<bool(const Try&)> inHostAfter;                // in the host, before it saves
  std::function<void(const Try&, pid_t host, int told)> race; // while it saves, without end
  std::function<QString(const Try&)> path;                    // what is blocked, when it is not the usual
  std::vector<const char*> refusals = {}; // one of them is in the log when the save is false
};

void Tell(int told)
{
  (void)!write(told, "w", 1);
}

std::function<bool(const Try&)> Place(const std::function<bool(const std::string&)>& make)
{
  return [make](const Try& one)
  { return AsAttacker([&] { return (RemoveWhole(one.script), make(one.script)); }); };
}

// Some set-ups take the rights of whoever owns the precious file.
std::function<bool(const Try&)> PlaceAsRoot(const std::function<bool(const std::string&)>& make)
{
  return [make](const Try& one) { return (RemoveWhole(one.script), make(one.script)); };
}

bool MakeHostileFile(const std::string& path)
{
  return Write(path, HostileScript(), 0755);
}

bool MakeLinkToHostile(const std::string& path)
{
  return symlink(In("hostile").c_str(), path.c_str()) == 0;
}

bool MakeLinkToPrecious(const std::string& path)
{
  return symlink(In("precious").c_str(), path.c_str()) == 0;
}

bool MakeHardLink(const std::string& path)
{
  return link(In("precious").c_str(), path.c_str()) == 0;
}

bool MakeFifo(const std::string& path)
{
  return mkfifo(path.c_str(), 0777) == 0;
}

bool MakeFolder(const std::string& path)
{
  return mkdir(path.c_str(), 0777) == 0 && Write(path + "/x", "x", 0644);
}

bool Rename(const std::string& from, const std::string& to)
{
  return rename(from.c_str(), to.c_str()) == 0;
}

// Only the folder's owner can, whom the attacker is.
bool ReplaceFolder(const std::string& script)
{
  const std::string name = script.substr(script.rfind('/'));
  return Rename(In("a/t"), In("a/old")) && mkdir(In("a/t").c_str(), 0777) == 0 &&
         MakeHostileFile(In("a/t") + name);
}

std::function<bool(const Try&)> Variable(const char* name, const std::string& value)
{
  return [name, value](const Try&) { return setenv(name, (value.empty() ? work : value).c_str(), 1) == 0; };
}

void RaceToWrite(const Try& one)
{
  const std::string hostile = HostileScript();
  for (;;)
  {
    const int file = open(one.script.c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC);
    if (file < 0)
      continue;
    (void)!pwrite(file, hostile.data(), hostile.size(), 0);
    close(file);
  }
}

void RaceWith(const Try& one, const std::function<bool(const std::string&)>& make)
{
  const std::string spare = In("a/spare");
  for (;;)
    if (make(spare) && rename(spare.c_str(), one.script.c_str()) != 0)
      unlink(spare.c_str());
}

void RaceForFolder(const Try& one)
{
  for (;;)
  {
    Rename(In("a/t"), In("a/kept"));
    if (mkdir(In("a/t").c_str(), 0777) == 0)
      MakeHostileFile(one.script);
    unlink(one.script.c_str());
    rmdir(In("a/t").c_str());
    Rename(In("a/kept"), In("a/t"));
  }
}

void SwapAtPrompt(const Try& one, int told)
{
  const std::string asked = In("launchers/prompt/asked");
  while (!Exists(asked))
    poll(nullptr, 0, 1);
  unlink(one.script.c_str());
  if (MakeHostileFile(one.script))
    Tell(told);
  Write(In("launchers/prompt/answered"), "", 0644);
  for (;;)
    pause();
}

bool Limit(int resource, rlim_t limit)
{
  rlimit now;
  getrlimit(static_cast<__rlimit_resource>(resource), &now);
  now.rlim_cur = limit;
  return setrlimit(static_cast<__rlimit_resource>(resource), &now) == 0;
}

const char* const noFile = "Can't open a temporary file: ";
const char* const noRights = "Can't copy rights: -60005";
const char* const noStart = ") as root: -60031";

std::vector<Attack> MakeAttacks()
{
  std::vector<Attack> attacks;
  const auto add = [&](const char* name) -> Attack&
  {
    attacks.emplace_back();
    attacks.back().name = name;
    return attacks.back();
  };

  // The name is taken before the library comes.
  add("squat-file").before = Place(MakeHostileFile);
  add("squat-link").before = Place(MakeLinkToPrecious);
  add("squat-dangling-link").before =
      Place([](const std::string& path) { return symlink(In("made").c_str(), path.c_str()) == 0; });
  add("squat-hard-link").before = PlaceAsRoot(MakeHardLink);
  add("squat-fifo").before = Place(MakeFifo);
  Attack& folder = add("squat-folder");
  folder.before = Place(MakeFolder);
  folder.refusals = {noFile};

  // It is changed before the save.
  add("change-bytes").after = Place(MakeHostileFile);
  add("change-link").after = Place(MakeLinkToHostile);
  add("change-link-to-file").after = Place(MakeLinkToPrecious);
  add("change-hard-link").after = PlaceAsRoot(MakeHardLink);
  add("change-fifo").after = Place(MakeFifo);
  Attack& changed = add("change-folder");
  changed.after = Place(MakeFolder);
  changed.refusals = {noFile};
  add("change-mode").after =
      PlaceAsRoot([](const std::string& path) { return Write(path, GenuineScript(), 0777); });
  add("replace-folder").after = [](const Try& one)
  { return AsAttacker([&] { return ReplaceFolder(one.script); }); };

  // It is changed while the save goes on.
  const auto race = [&](const char* name, const std::function<void(const Try&, pid_t, int)>& act)
  {
    Attack& attack = add(name);
    attack.chance = Chance::SeenByScript;
    attack.race = act;
    attack.refusals = {noFile};
  };
  race("race-rename", [](const Try& one, pid_t, int) { RaceWith(one, MakeHostileFile); });
  race("race-link", [](const Try& one, pid_t, int) { RaceWith(one, MakeLinkToHostile); });
  race("race-folder", [](const Try& one, pid_t, int) { RaceForFolder(one); });
  race("race-write", [](const Try& one, pid_t, int) { RaceToWrite(one); });
  attacks.back().ways = Ways::AskedOnly;
  race("race-prompt", [](const Try& one, pid_t, int told) { SwapAtPrompt(one, told); });
  attacks.back().ways = Ways::AskedOnly;
  attacks.back().chance = Chance::Told;
  attacks.back().before = [](const Try&) { return Write(In("launchers/prompt/wanted"), "", 0644); };

  // The host's environment.
  const std::string library = In("library.so");
  add("PATH").inHostAfter = Variable("PATH", In("tools"));
  add("IFS").inHostAfter = Variable("IFS", "/-;on");
  add("ENV").inHostAfter = Variable("ENV", In("hostile"));
  add("BASH_ENV").inHostAfter = Variable("BASH_ENV", In("hostile"));
  add("shell-function").inHostAfter =
      Variable("BASH_FUNC_printf%%", "() { : >'" + In("evidence/hacked") + "'; }");
  add("LD_PRELOAD").inHostAfter = Variable("LD_PRELOAD", library);
  add("LD_AUDIT").inHostAfter = Variable("LD_AUDIT", library);
  add("LD_LIBRARY_PATH").inHostAfter = Variable("LD_LIBRARY_PATH", In("libraries"));
  Attack& locale = add("locale");
  locale.inHost = [](const Try&)
  {
    // The same name is other bytes in this charset; the hostile script has the name in UTF-8.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    return setenv("LC_ALL", "xx_XX.ISO-8859-1", 1) == 0 && setenv("TMPDIR", In("a/t/\xe9").c_str(), 1) == 0;
  };
  locale.before = [](const Try& one)
  {
    const std::string name = one.script.substr(one.script.rfind('/'));
    return AsAttacker(
        [&]
        {
          return mkdir(In("a/t/\xe9").c_str(), 0777) == 0 && mkdir(In("a/t/\xc3\xa9").c_str(), 0777) == 0 &&
                 MakeHostileFile(In("a/t/\xc3\xa9") + name);
        });
  };

  // What a process hands down besides.
  add("umask-000").inHost = [](const Try&) { return (umask(0), true); };
  add("umask-777").inHost = [](const Try&) { return (umask(0777), true); };
  add("closed-stdio").inHostAfter = [](const Try& one)
  {
    for (int number = 0; number < 3; ++number)
      if ((one.number / 2 & 1 << number) != 0)
        close(number);
    return true;
  };
  add("read-only-stderr").inHostAfter = [](const Try&)
  { return dup2(open(In("readable").c_str(), O_RDONLY | O_CLOEXEC), STDERR_FILENO) == STDERR_FILENO; };
  Attack& descriptors = add("few-descriptors");
  descriptors.inHostAfter = [](const Try& one)
  { return Limit(RLIMIT_NOFILE, 3 + static_cast<rlim_t>(one.number / 2 % 24)); };
  descriptors.refusals = {noRights, noStart, noFile};
  Attack& size = add("small-files");
  size.inHostAfter = [](const Try& one)
  {
    return signal(SIGXFSZ, SIG_IGN) != SIG_ERR &&
           Limit(RLIMIT_FSIZE, static_cast<rlim_t>(one.number / 2 * 8));
  };
  Attack& processes = add("few-processes");
  processes.inHostAfter = [](const Try&) { return Limit(RLIMIT_NPROC, 1); };
  processes.refusals = {noRights, noStart};
  add("program-name").inHost = [](const Try&)
  {
    // The host's own command line, where it lies.
    const QByteArray name = QCoreApplication::arguments().at(0).toLocal8Bit();
    std::memset(program_invocation_name, ';', static_cast<std::size_t>(std::min(name.size(), 3)));
    return prctl(PR_SET_NAME, "-sh;$(id)") == 0;
  };

  // Arguments.
  const auto argue = [&](const char* name, const QString& path) -> Attack&
  {
    Attack& attack = add(name);
    attack.path = [path](const Try&) { return path; };
    return attack;
  };
  const QString hack = ": >'" + QString::fromStdString(In("evidence/hacked")) + "'";
  argue("argument-dash", "-c" + hack);
  argue("argument-semicolon", "/a;" + hack + ";b");
  argue("argument-newline", "/a\n" + hack + "\n");
  argue("argument-quotes", "'\n" + hack + "\n'\\''$(" + hack + ")`" + hack + "`\"");
  argue("argument-glob", "/*?[a-z]~ {a,b} $HOME $((1))");
  argue("argument-bad-text", QString(QChar(0xd800)) + QChar(0xfffe) + QString::fromUtf8("\xff\xfe\xc0\x80"));
  argue("argument-longest", QString(131071, 'x'));
  argue("argument-1-MiB", QString(1 << 20, 'x')).refusals = {noStart};

  // The temporary folder.
  Attack& link = add("tmpdir-link");
  link.inHost = [](const Try&) { return setenv("TMPDIR", In("a/link").c_str(), 1) == 0; };
  link.before = [](const Try&)
  { return AsAttacker([] { return symlink(In("private").c_str(), In("a/link").c_str()) == 0; }); };
  Attack& missing = add("tmpdir-missing");
  missing.inHost = [](const Try&) { return setenv("TMPDIR", In("nowhere").c_str(), 1) == 0; };
  missing.refusals = {noFile};
  return attacks;
}

/// @}
/// @name Trying
/// @{

enum class Result
{
  Refused,
  Harmless,
  Succeeded,
  Broken // the try itself did not take place
};

struct Saved
{
  bool isThere = false;
  bool isSaved = false;
  std::string log;
};

const QString usualPath = QStringLiteral("/Applications/Some.app");

// The host's end of a conversation in which each side waits for the other.
struct Meeting
{
  int input;
  int output;

  void Wait() const
  {
    char byte = 0;
    pollfd look = {input, POLLIN, 0};
    if (poll(&look, 1, longestTry) == 1)
      (void)!read(input, &byte, 1);
  }
  void Go() const { (void)!write(output, "g", 1); }
};

[[noreturn]] void BeHost(const Attack& attack, const Try& one, const Meeting& meeting)
{
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  meeting.Wait(); // until the attacker is ready
  BecomeHost(one.way);
  dup2(open(In("said").c_str(), O_WRONLY | O_APPEND | O_CLOEXEC), STDERR_FILENO);
  setenv("TMPDIR", In("a/t").c_str(), 1);
  bool isSetUp = !attack.inHost || attack.inHost(one);
  std::string text;
  {
    const LogCapture log;
    Firewall firewall(nullptr);
    meeting.Go();
    meeting.Wait();
    firewall.SetEnabled(true);
    firewall.BlockApplication(attack.path ? attack.path(one) : usualPath, true);
    isSetUp = isSetUp && (!attack.inHostAfter || attack.inHostAfter(one));
    text = firewall.Save() ? "y" : "n";
    for (const std::string& line : log.Errors())
      text += line.substr(0, 200) + "\n";
    Limit(RLIMIT_FSIZE, RLIM_INFINITY);
    if (isSetUp)
      (void)!write(meeting.output, text.data(), std::min<std::size_t>(text.size(), 4000));
    close(meeting.output);
    meeting.Wait(); // the model lives as long as its application
  }
  _exit(EXIT_SUCCESS);
}

bool IsCleanEnvironment(const std::string& text)
{
  const char clean[] = "PATH=/usr/sbin:/usr/bin:/sbin:/bin\0HOME=/root";
  return text == std::string(clean, sizeof(clean));
}

std::string WantedArguments(const Attack& attack, const Try& one)
{
  const QString path = attack.path ? attack.path(one) : usualPath;
  std::string wanted;
  for (const char* word : {"on", "off", "off", "off", "", ""})
    wanted += word + std::string(1, '\0');
  return wanted + path.toUtf8().toStdString() + '\0' + '\0';
}

// Why the script's run is not what it should be; empty when it is.
std::string Fault(const Attack& attack, const Try& one, bool isSaved)
{
  if (Exists(In("evidence/hacked")))
    return "other bytes, or another tool, were run";
  if (Read(In("precious")) != preciousText || Read(In("readable")) != preciousText || Exists(In("made")))
    return "a file was written to that is not the library's";
  const std::string runs = Read(In("evidence/runs"));
  if (!isSaved)
    return runs.empty() ? "" : "a save that was false has run the script";
  if (runs != "x")
    return "the script has run " + std::to_string(runs.size()) +
           " times, not once; it said: " + Read(In("said"));
  struct stat information;
  if (stat(In("evidence/runs").c_str(), &information) != 0 || information.st_uid != (wasRoot ? 0 : getuid()))
    return "the script was not run by root";
  if (!IsCleanEnvironment(Read(In("evidence/environment"))))
    return "the environment is not clean";
  if (!Read(In("evidence/closed")).empty())
    return "a standard descriptor was closed";
  const std::string arguments = Read(In("evidence/arguments"));
  if (arguments.substr(arguments.find('\0') + 1) != WantedArguments(attack, one))
    return "the arguments are others";
  return "";
}

struct Row
{
  int tries = 0;
  int chances = 0;
  int refused = 0;
  int harmless = 0;
  int succeeded = 0;
  int broken = 0;
};

void ClearAway()
{
  for (const char* name : {"a", "evidence", "made", "launchers/prompt"})
    RemoveWhole(In(name));
}

// What every try finds. The temporary folder is the attacker's own, in one of theirs.
bool SetTheStage()
{
  ClearAway();
  bool isSet = mkdir(In("a").c_str(), 0777) == 0 && mkdir(In("a/t").c_str(), 0777) == 0 &&
               mkdir(In("evidence").c_str(), 0700) == 0 && mkdir(In("launchers/prompt").c_str(), 0777) == 0;
  for (const char* name : {"a", "a/t", "launchers/prompt"})
    isSet = isSet && chmod(In(name).c_str(), 0777) == 0 &&
            (!wasRoot || chown(In(name).c_str(), nobody, nobody) == 0);
  return isSet && Write(In("precious"), preciousText, 0644) && Write(In("readable"), preciousText, 0644) &&
         Write(In("said"), "", 0666);
}

Saved TryOnce(const Attack& attack, Try one, bool* hadChance)
{
  int toHost[2];
  int fromHost[2];
  *hadChance = false;
  if (!SetTheStage() || pipe2(toHost, O_CLOEXEC) != 0 || pipe2(fromHost, O_CLOEXEC) != 0)
    return {};
  const pid_t host = fork();
  if (host == 0)
  {
    // High, out of the way of what an attack closes or exhausts.
    const int input = fcntl(toHost[0], F_DUPFD_CLOEXEC, 100);
    const int output = fcntl(fromHost[1], F_DUPFD_CLOEXEC, 100);
    for (const int number : {toHost[0], toHost[1], fromHost[0], fromHost[1]})
      close(number);
    BeHost(attack, one, {input, output});
  }
  close(toHost[0]);
  close(fromHost[1]);
  const Meeting meeting = {fromHost[0], toHost[1]};

  one.script = In("a/t/") + Cleaner::applicationId.toStdString() + ".fw." + std::to_string(host);
  bool isSetUp = !attack.before || attack.before(one);
  meeting.Go();
  meeting.Wait();
  isSetUp = isSetUp && (!attack.after || attack.after(one));
  int told = -1;
  pid_t attacker = -1;
  if (attack.race)
    attacker = StartAttacker([&](int output) { return (attack.race(one, host, output), true); }, &told);
  meeting.Go();

  Saved saved;
  std::string text;
  char bytes[4096];
  pollfd look = {meeting.input, POLLIN, 0};
  while (poll(&look, 1, longestTry) == 1)
  {
    const ssize_t size = read(meeting.input, bytes, sizeof(bytes));
    if (size <= 0)
      break;
    text.append(bytes, static_cast<std::size_t>(size));
  }
  saved.isThere = !text.empty();
  saved.isSaved = saved.isThere && text.front() == 'y';
  saved.log = text.substr(saved.isThere ? 1 : 0);

  // The script ends on its own; after a false save there is nothing to wait for.
  if (saved.isSaved)
    for (int waited = 0;
         waited < longestTry && Read(In("evidence/runs")).empty() && !Exists(In("evidence/hacked")); ++waited)
      poll(nullptr, 0, 1);
  if (attacker > 0)
  {
    kill(attacker, SIGKILL);
    waitpid(attacker, nullptr, 0);
    if (attack.chance == Chance::Told)
      isSetUp = read(told, bytes, 1) == 1;
    close(told);
  }
  close(toHost[1]);
  close(fromHost[0]);
  waitpid(host, nullptr, 0);
  if (attack.chance == Chance::SeenByScript)
    isSetUp = Exists(In("evidence/changed"));
  *hadChance = isSetUp;
  return saved;
}

void Judge(const Attack& attack, const Try& one, const Saved& saved, bool hadChance, Row* row)
{
  ++row->tries;
  row->chances += hadChance;
  if (!saved.isThere)
  {
    ++row->broken;
    std::fprintf(stderr, "%s, try %d: the host never answered\n", attack.name, one.number);
    return;
  }
  std::string fault = Fault(attack, one, saved.isSaved);
  const auto isLogged = [&](const char* refusal) { return saved.log.find(refusal) != std::string::npos; };
  const bool isReported = std::any_of(attack.refusals.begin(), attack.refusals.end(), isLogged);
  if (fault.empty() && !saved.isSaved && !isReported)
    fault = "nothing was saved, and the log says: " + saved.log;
  if (!fault.empty())
  {
    ++row->succeeded;
    std::fprintf(stderr, "%s, try %d: %s\n", attack.name, one.number, fault.c_str());
  }
  else
    ++(saved.isSaved ? row->harmless : row->refused);
}

bool Run(const Attack& attack, int tries)
{
  const auto begin = std::chrono::steady_clock::now();
  Row row;
  const bool canAsk = attack.ways != Ways::DirectOnly;
  const bool canBeDirect = attack.ways != Ways::AskedOnly;
  for (int number = 0; number < tries; ++number)
  {
    const Way way = !canAsk || (canBeDirect && number % 2 == 0) ? Way::Direct : Way::Asked;
    const Try one = {way, number, {}};
    bool hadChance = false;
    const Saved saved = TryOnce(attack, one, &hadChance);
    Judge(attack, one, saved, hadChance, &row);
  }
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
  std::printf("%-20s %6d %8d %8d %9d %10d %8.1f\n", attack.name, row.tries, row.chances, row.refused,
              row.harmless, row.succeeded, took.count());
  std::fflush(stdout);
  // A race need not be won each time; everything else has to take place.
  const int wanted = attack.chance == Chance::SetUp ? tries : 1;
  if (row.chances < wanted)
    std::fprintf(stderr, "%s: of %d tries only %d had their chance\n", attack.name, tries, row.chances);
  return row.succeeded == 0 && row.broken == 0 && row.chances >= wanted;
}

/// @}
/// @name The stage
/// @{

bool RegisterScript()
{
  const QString folder = QString::fromStdString(work);
  if (mkdir(In("Scripts").c_str(), 0755) != 0 || !Write(In("Scripts/Firewall"), GenuineScript(), 0644))
    return false;
  WriteText(folder + "/Scripts.qrc",
            "<RCC><qresource prefix=\"/\"><file>Scripts/Firewall</file></qresource></RCC>");
  return QProcess::execute(TAVRIK_RCC, {"-binary", folder + "/Scripts.qrc", "-o", folder + "/Scripts.rcc"}) ==
             0 &&
         QResource::registerResource(folder + "/Scripts.rcc");
}

bool Build()
{
  const QString folder = QString::fromStdString(work);
  for (const char* name : {"launchers", "tools", "libraries"})
    if (mkdir(In(name).c_str(), 0755) != 0)
      return false;
  if (mkdir(In("private").c_str(), 0700) != 0)
    return false;
  if (wasRoot && chown(In("private").c_str(), nobody, nobody) != 0)
    return false;
  for (const char* tool : {"env", "sh", "printf", "cat", "sudo", "pkexec"})
    if (!Write(In("tools/") + tool, HostileScript(), 0755))
      return false;
  const char* const libraries[] = {"library.so", "libraries/libc.so.6"};
  for (const char* library : libraries)
    if (!QFile::copy(QStringLiteral(TAVRIK_ATTACK_LIBRARY), folder + "/" + library))
      return false;
  const std::string sudo = In("launchers/sudo");
  return Write(In("hostile"), HostileScript(), 0755) &&
         QFile::copy(QStringLiteral(TAVRIK_ATTACK_LAUNCHER), QString::fromStdString(sudo)) &&
         chmod(sudo.c_str(), wasRoot ? 04755 : 0755) == 0 && RegisterScript();
}

// A set-user-id program is not for the rest of the machine to see.
bool HideFromOthers()
{
  return unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount("attacks", work.c_str(), "tmpfs", 0, "mode=0755") == 0;
}

bool CanBeRootSomehow()
{
  const pid_t pid = fork();
  if (pid == 0)
    _exit(BecomeRoot() ? EXIT_SUCCESS : EXIT_FAILURE);
  int status = 0;
  waitpid(pid, &status, 0);
  return status == 0;
}

/// @}

} // namespace

int main(int argc, char** argv)
{
  const int skipped = 77;
  google::InitGoogleLogging(argv[0]);
  FLAGS_stderrthreshold = google::GLOG_FATAL;
  for (const google::LogSeverity severity : {google::GLOG_INFO, google::GLOG_WARNING, google::GLOG_ERROR})
    google::SetLogDestination(severity, "");
  const QCoreApplication application(argc, argv);
  const int tries = argc > 1 ? std::atoi(argv[1]) : 0;
  if (tries < 1)
    return std::fprintf(stderr, "usage: %s TRIES [ATTACK...]\n", argv[0]), 2;

  wasRoot = geteuid() == 0;
  if (!CanBeRootSomehow())
    return std::puts(
               "Skipped: this machine lets a plain user make no user namespace, so nobody is root here"),
           skipped;
  work = "/tmp/tavrik-attack." + std::to_string(getpid()) + ".XXXXXX";
  if (!mkdtemp(work.data()))
    return std::perror("mkdtemp"), EXIT_FAILURE;
  if (wasRoot && !HideFromOthers())
  {
    rmdir(work.c_str());
    return std::puts(
               "Skipped: root may not mount here, and a set-user-id program must not be seen by others"),
           skipped;
  }

  signal(SIGPIPE, SIG_IGN);
  const std::string launchers = In("launchers");
  Platform::launcherFolders = launchers.c_str();
  Cleaner::filewallFileName = QString::fromStdString(In("no-tool"));
  bool isGood = Build();
  if (!isGood)
    std::fputs("The stage could not be built\n", stderr);

  const std::vector<std::string> wanted(argv + 2, argv + argc);
  const std::vector<Attack> attacks = MakeAttacks();
  for (const std::string& name : wanted)
    if (std::none_of(attacks.begin(), attacks.end(),
                     [&](const Attack& attack) { return name == attack.name; }))
    {
      std::fprintf(stderr, "There is no attack named %s\n", name.c_str());
      isGood = false;
    }
  std::printf("%-20s %6s %8s %8s %9s %10s %8s\n", "attack", "tries", "chances", "refused", "harmless",
              "succeeded", "seconds");
  bool isEverythingDefended = isGood;
  for (const Attack& attack : attacks)
    if (isGood && (wanted.empty() || std::find(wanted.begin(), wanted.end(), attack.name) != wanted.end()))
      isEverythingDefended = Run(attack, tries) && isEverythingDefended;

  ClearAway();
  if (wasRoot)
    umount2(work.c_str(), MNT_DETACH);
  RemoveWhole(work);
  return isEverythingDefended ? EXIT_SUCCESS : EXIT_FAILURE;
}
