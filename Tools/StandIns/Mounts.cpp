#include "Mounts.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <limits>
#include <poll.h>
#include <set>
#include <sstream>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

namespace StandIns
{
namespace
{

const auto longestAnswer = std::chrono::seconds(2);

struct Mount
{
  unsigned major = 0;
  unsigned minor = 0;
  std::string root;
  std::string point;
  std::string options;
  std::string type;
  std::string source;
};

bool IsOneOf(const std::string& text, const std::set<std::string>& words)
{
  return words.count(text) != 0;
}

bool BeginsWith(const std::string& text, const std::string& beginning)
{
  return text.compare(0, beginning.size(), beginning) == 0;
}

bool IsOctal(const std::string& text)
{
  return text.size() == 3 && text.find_first_not_of("01234567") == std::string::npos && text[0] < '4';
}

// The kernel writes blanks, line ends and backslashes as \040.
std::string Unescape(const std::string& text)
{
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i)
  {
    const std::string digits = text.substr(i + 1, 3);
    if (text[i] != '\\' || !IsOctal(digits))
    {
      plain += text[i];
      continue;
    }
    plain += static_cast<char>(std::stoi(digits, nullptr, 8));
    i += 3;
  }
  return plain;
}

// "ID PARENT MAJOR:MINOR ROOT POINT OPTIONS [FIELD...] - TYPE SOURCE OPTIONS"
bool ParseLine(const std::string& line, Mount* mount)
{
  std::istringstream words(line);
  std::string number;
  char colon = 0;
  words >> number >> number >> mount->major >> colon >> mount->minor >> mount->root >> mount->point >>
      mount->options;
  for (std::string field; words && field != "-";)
    words >> field;
  words >> mount->type >> mount->source;
  if (!words || colon != ':' || mount->point.empty() || mount->point[0] != '/')
    return false;
  mount->root = Unescape(mount->root);
  mount->point = Unescape(mount->point);
  mount->source = Unescape(mount->source);
  return true;
}

bool IsForVolumes(const std::string& point)
{
  for (const char* const folder : {"/Volumes/", "/media/", "/mnt/", "/run/media/"})
    if (BeginsWith(point, folder))
      return true;
  return false;
}

bool IsLikeADisk(const Mount& mount)
{
  static const std::set<std::string> filesOverNetworks = {"nfs",      "nfs4", "cifs", "smb3",   "9p",
                                                          "virtiofs", "ceph", "afs",  "vboxsf", "prl_fs"};
  static const std::set<std::string> services = {"fuse.gvfsd-fuse", "fuse.portal", "fuse.lxcfs",
                                                 "fuse.snapfuse"};
  if (mount.point.find('\n') != std::string::npos)
    return false; // it would be two lines of the answer
  if (mount.point == "/")
    return mount.type != "rootfs";
  if (IsOneOf(mount.type, filesOverNetworks) || mount.type == "zfs")
    return true;
  if (mount.type == "fuse" || BeginsWith(mount.type, "fuse."))
    return !IsOneOf(mount.type, services);
  if (mount.type == "tmpfs")
    return IsForVolumes(mount.point);
  return BeginsWith(mount.source, "/dev/") && !IsOneOf(mount.type, {"devtmpfs", "squashfs"});
}

// Of the mounts of one device the one that shows most of it, and of those the outermost.
bool IsBetter(const Mount& one, const Mount& other)
{
  if (one.point == "/" || other.point == "/")
    return one.point == "/";
  if (one.root.size() != other.root.size())
    return one.root.size() < other.root.size();
  return one.point.size() < other.point.size();
}

std::vector<Mount> ReadMounts(const std::string& text)
{
  std::vector<Mount> mounts;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);)
  {
    Mount mount;
    if (!ParseLine(line, &mount))
      continue;
    // A later mount hides the earlier ones of its place.
    mounts.erase(std::remove_if(mounts.begin(), mounts.end(),
                                [&](const Mount& earlier) { return earlier.point == mount.point; }),
                 mounts.end());
    mounts.push_back(mount);
  }
  return mounts;
}

std::vector<Volume> MakeVolumes(const std::vector<Mount>& mounts)
{
  std::vector<Mount> chosen;
  for (const Mount& mount : mounts)
  {
    if (!IsLikeADisk(mount))
      continue;
    const auto isSameDisk = [&](const Mount& other)
    { return other.major == mount.major && other.minor == mount.minor; };
    const auto same = std::find_if(chosen.begin(), chosen.end(), isSameDisk);
    if (same == chosen.end())
      chosen.push_back(mount);
    else if (IsBetter(mount, *same))
      *same = mount;
  }
  std::vector<Volume> volumes;
  for (const Mount& mount : chosen)
  {
    Volume volume;
    volume.whole = "disk" + std::to_string(mount.major);
    volume.identifier = volume.whole + 's' + std::to_string(mount.minor);
    volume.mountPoint = mount.point;
    volume.name = mount.point == "/" ? mount.point : mount.point.substr(mount.point.find_last_of('/') + 1);
    volume.type = mount.type;
    volume.device = mount.source;
    volume.isReadOnly = BeginsWith(mount.options + ',', "ro,");
    volumes.push_back(volume);
  }
  return volumes;
}

/// @name Sizes
/// @{

struct Answer
{
  bool isFolder = false;
  bool hasSizes = false;
  std::uint64_t totalSize = 0;
  std::uint64_t freeSize = 0;
  std::uint64_t blockSize = 0;
};

std::uint64_t Multiply(std::uint64_t blocks, std::uint64_t size)
{
  std::uint64_t product = 0;
  const auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  return __builtin_mul_overflow(blocks, size, &product) ? most : std::min(product, most);
}

Answer Ask(const std::string& mountPoint)
{
  Answer answer;
  struct stat information;
  struct statvfs sizes;
  answer.isFolder = stat(mountPoint.c_str(), &information) == 0 && S_ISDIR(information.st_mode);
  answer.hasSizes = statvfs(mountPoint.c_str(), &sizes) == 0;
  if (answer.hasSizes)
  {
    answer.totalSize = Multiply(sizes.f_blocks, sizes.f_frsize);
    answer.freeSize = Multiply(sizes.f_bavail, sizes.f_frsize);
    answer.blockSize = sizes.f_frsize;
  }
  return answer;
}

// A process that asks; a file system that does not answer holds up nobody else.
struct Question
{
  pid_t process = -1;
  int answers = -1;
};

Question BeginToAsk(const std::string& mountPoint)
{
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0)
    return {};
  const pid_t process = fork();
  if (process == 0)
  {
    // It may outlive this process, and whoever reads the output waits for everybody who could write to it.
    close(STDIN_FILENO);
    close(STDOUT_FILENO);
    close(STDERR_FILENO);
    const Answer answer = Ask(mountPoint);
    (void)!write(ends[1], &answer, sizeof(answer));
    _exit(EXIT_SUCCESS);
  }
  close(ends[1]);
  return {process, ends[0]};
}

bool WaitForAnswer(int answers, std::chrono::steady_clock::time_point deadline)
{
  pollfd look = {answers, POLLIN, 0};
  const auto left =
      std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
  return poll(&look, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0))) == 1;
}

// False when nobody knows what is there.
bool TakeAnswer(const Question& question, std::chrono::steady_clock::time_point deadline, Answer* answer)
{
  if (question.answers < 0)
    return false;
  const bool isAnswered = WaitForAnswer(question.answers, deadline) &&
                          read(question.answers, answer, sizeof(*answer)) == sizeof(*answer);
  close(question.answers);
  if (question.process > 0)
  {
    kill(question.process, SIGKILL);
    waitpid(question.process, nullptr, isAnswered ? 0 : WNOHANG);
  }
  return isAnswered;
}

/// @}
/// @name Names
/// @{

std::string Unhex(const std::string& text)
{
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i)
  {
    const std::string digits = text.substr(i, 2) == "\\x" ? text.substr(i + 2, 2) : std::string();
    const bool isEscape =
        digits.size() == 2 && digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    plain += isEscape ? static_cast<char>(std::stoi(digits, nullptr, 16)) : text[i];
    i += isEscape ? 3 : 0;
  }
  return plain;
}

// The labels that the system knows take the place of names that are made of mount points.
void TakeLabels(std::vector<Volume>* volumes)
{
  const std::string folder = "/dev/disk/by-label";
  DIR* const entries = opendir(folder.c_str());
  if (!entries)
    return;
  while (const dirent* const entry = readdir(entries))
  {
    struct stat information;
    const std::string label = entry->d_name;
    if (stat(std::string(folder).append("/").append(label).c_str(), &information) != 0 ||
        !S_ISBLK(information.st_mode))
      continue;
    const std::string identifier = "disk" + std::to_string(major(information.st_rdev)) + 's' +
                                   std::to_string(minor(information.st_rdev));
    for (Volume& volume : *volumes)
      if (volume.identifier == identifier && label.find("\\x0a") == std::string::npos)
        volume.name = Unhex(label);
  }
  closedir(entries);
}

/// @}

// A root folder that chroot made of a plain folder is no mount point, but its file system may be mounted
// below it.
void AddRoot(std::vector<Volume>* volumes)
{
  struct stat information;
  if (std::any_of(volumes->begin(), volumes->end(),
                  [](const Volume& volume) { return volume.mountPoint == "/"; }) ||
      stat("/", &information) != 0)
    return;
  Volume root;
  root.whole = "disk" + std::to_string(major(information.st_dev));
  root.identifier = root.whole + 's' + std::to_string(minor(information.st_dev));
  root.name = root.mountPoint = "/";
  root.type = "unknown";
  root.device = "unknown";
  const auto same = std::find_if(volumes->begin(), volumes->end(),
                                 [&](const Volume& volume) { return volume.identifier == root.identifier; });
  if (same != volumes->end())
  {
    root.type = same->type;
    root.device = same->device;
    volumes->erase(same);
  }
  volumes->insert(volumes->begin(), root);
}

std::string ReadFile(const char* path)
{
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

std::vector<Volume> ParseMounts(const std::string& mountInfo)
{
  return MakeVolumes(ReadMounts(mountInfo));
}

std::vector<Volume> LoadVolumes()
{
  std::vector<Volume> volumes = ParseMounts(ReadFile("/proc/self/mountinfo"));
  AddRoot(&volumes);
  TakeLabels(&volumes);
  return volumes;
}

std::vector<Volume> AskForSizes(std::vector<Volume> volumes)
{
  std::vector<Question> questions;
  questions.reserve(volumes.size());
  for (const Volume& volume : volumes)
    questions.push_back(BeginToAsk(volume.mountPoint));
  const auto deadline = std::chrono::steady_clock::now() + longestAnswer;
  std::vector<Volume> folders;
  for (std::size_t i = 0; i < questions.size(); ++i)
  {
    Answer answer;
    const bool isAnswered = TakeAnswer(questions[i], deadline, &answer);
    if (isAnswered && !answer.isFolder)
      continue;
    Volume& volume = volumes[i];
    volume.hasSizes = answer.hasSizes;
    volume.totalSize = answer.totalSize;
    volume.freeSize = answer.freeSize;
    volume.blockSize = answer.blockSize;
    folders.push_back(volume);
  }
  return folders;
}

} // namespace StandIns
