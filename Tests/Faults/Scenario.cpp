// Walks one of the library's roads with the interposer armed, and holds what comes of it against what is
// promised: a plain result, a line in the log where one belongs to it, and nothing left behind.
//
//   Scenario ROAD   bus, settings, firewall, memory, process, access or disks
//
// Exit code 0: all promises kept; 1: one was not, which standard output tells as "promise ...", "leak ..." or
// "silent ..."; anything else is a crash.

#include "Support/FakeFirewall.h"
#include "Support/LogCapture.h"
#include "Support/Programs.h"
#include "Support/Recorder.h"
#include "Support/Spin.h"
#include "Support/ToolFolder.h"

#include <Common/AccessChecks.h>
#include <Common/Bazaar.h>
#include <Common/DaemonSettings.h>
#include <Common/DiskList.h>
#include <Common/Firewall.h>
#include <Common/RAMCleaner.h>
#include <Common/ReadProcess.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QResource>
#include <QSet>
#include <QTemporaryDir>
#include <QTimer>

#include <glog/logging.h>

#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <dlfcn.h>
#include <initializer_list>
#include <memory>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace Tavrik;

namespace
{

bool isKept = true;

void Break(const char* kind, const std::string& text)
{
  std::printf("%s %s\n", kind, text.c_str());
  std::fflush(stdout);
  isKept = false;
}

void Arm(bool isArmed)
{
  if (void* const arm = dlsym(RTLD_DEFAULT, "ArmFaults"))
    reinterpret_cast<void (*)(int)>(arm)(isArmed);
}

// What has been logged while the road was walked.
class Log
{
public:
  bool Has(const char* text) const
  {
    for (const LoggedLine& line : capture.Lines())
      if (line.text.find(text) != std::string::npos)
        return true;
    return false;
  }

  // One of the lines has to be there when `isOwed`.
  void Demand(bool isOwed, std::initializer_list<const char*> texts) const
  {
    bool isThere = !isOwed;
    for (const char* text : texts)
      isThere = isThere || Has(text);
    if (!isThere)
      Break("silent", *texts.begin());
  }

private:
  LogCapture capture;
};

void Promise(bool isKeptNow, const char* text)
{
  if (!isKeptNow)
    Break("promise", text);
}

QSet<QString> OpenFiles()
{
  QSet<QString> files;
  DIR* const folder = opendir("/proc/self/fd");
  while (const dirent* const entry = readdir(folder))
  {
    char target[512] = {};
    const std::string path = std::string("/proc/self/fd/") + entry->d_name;
    if (readlink(path.c_str(), target, sizeof(target) - 1) > 0 && std::atoi(entry->d_name) != dirfd(folder))
      files.insert(QString::fromLatin1(entry->d_name) + QLatin1Char(' ') + QString::fromLocal8Bit(target));
  }
  closedir(folder);
  return files;
}

// ---- Roads ----------------------------------------------------------------------------------------------

class Road
{
public:
  virtual ~Road() = default;
  virtual void Walk(const Log& log) = 0; // with the interposer armed
  virtual void Check(const Log&) {}      // and then without
};

// Two participants meet, talk, one leaves, and then the other.
class Bus : public Road
{
public:
  void Walk(const Log&) override
  {
    // One whose introduction or answer was lost cannot tell that from a refusal: its constructor does not
    // return.
    QTimer patience;
    QObject::connect(&patience, &QTimer::timeout, &Bus::LeaveUnanswered);
    patience.setSingleShot(true);
    patience.start(12000);

    const QString firstName = QStringLiteral("first");
    const QString secondName = QStringLiteral("second");
    const QString bus = QStringLiteral("faults");
    const auto recorder = std::make_shared<Recorder>();
    auto first = std::make_unique<Bazaar::Context>(bus, firstName, recorder, 0);
    auto second = std::make_unique<Bazaar::Context>(bus, secondName, recorder, 0);
    haveMet = SpinUntil([&] { return first->HasMember(secondName) && second->HasMember(firstName); }, 3000);
    first->Say(secondName, "there");
    second->Say(firstName, "and back");
    haveTalked =
        SpinUntil([&] { return recorder->Count("result 1 OK") == 2 && recorder->Of("message").size() == 2; },
                  haveMet ? 3000 : 500);
    second.reset();
    haveParted = SpinUntil([&] { return !first->HasMember(secondName); }, haveMet ? 3000 : 0);
    first.reset();
  }

  void Check(const Log& log) override
  {
    std::printf("met %d, talked %d, parted %d\n", haveMet, haveTalked, haveParted);
    log.Demand(!haveMet, {"couldn't connect to the server (", "Can't read a packet"});
  }

private:
  [[noreturn]] static void LeaveUnanswered()
  {
    Arm(false);
    std::printf("unanswered\n");
    std::fflush(stdout);
    std::_Exit(EXIT_SUCCESS);
  }

  bool haveMet = false;
  bool haveTalked = false;
  bool haveParted = false;
};

// One setting is written; it or the former one is there afterwards, and so is every other.
class Settings : public Road
{
public:
  Settings()
  {
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder.path()));
    Cleaner::DaemonSettings settings;
    settings.SetTrashSizeLimit(former);
    settings.SetFreeDiskSpaceLimit(other);
  }

  void Walk(const Log&) override
  {
    Cleaner::DaemonSettings settings;
    settings.SetTrashSizeLimit(written);
    const long long read = settings.GetTrashSizeLimit();
    Promise(read == written || read == former || read == fallback,
            "a setting is what it was, what was written, or unreadable");
  }

  void Check(const Log&) override
  {
    const QList<QByteArray> lines =
        ReadText(folder.filePath(QStringLiteral("tavrik/ostrel2.scheduler.conf"))).split('\n');
    const auto has = [&](const char* key, long long value)
    { return lines.contains(QByteArray(key) + '=' + QByteArray::number(value)); };
    Promise(has("TRASH_SIZE_LIMIT", written) || has("TRASH_SIZE_LIMIT", former),
            "a setting stays what it was or what was written");
    Promise(has("FREE_DISK_SPACE_LIMIT", other), "the other settings stay");
  }

private:
  QTemporaryDir folder;

  static constexpr long long former = 7000;
  static constexpr long long written = 123000;
  static constexpr long long other = 456000;
  static constexpr long long fallback = 1000000000; // when the store cannot be read
};

// The firewall is read, edited, and saved by its script as root.
class FirewallRoad : public Road
{
public:
  FirewallRoad()
      : tool(folder.filePath(QStringLiteral("tool"))), bundle(folder.filePath(QStringLiteral("A.app")))
  {
    BecomeRoot();
    Cleaner::filewallFileName = tool.Path();
    QDir().mkpath(bundle);
    QDir().mkpath(folder.filePath(QStringLiteral("Scripts")));
    QByteArray script = ReadText(QStringLiteral(TAVRIK_FIREWALL_SCRIPT));
    script.replace("@TAVRIK_FIREWALL_TOOL@", tool.Path().toUtf8());
    WriteText(folder.filePath(QStringLiteral("Scripts/Firewall")), script);
    WriteText(folder.filePath(QStringLiteral("Scripts.qrc")),
              "<RCC><qresource prefix=\"/\"><file>Scripts/Firewall</file></qresource></RCC>");
    resource = folder.filePath(QStringLiteral("Scripts.rcc"));
    QProcess::execute(QStringLiteral(TAVRIK_RCC),
                      {QStringLiteral("-binary"), folder.filePath(QStringLiteral("Scripts.qrc")),
                       QStringLiteral("-o"), resource});
    Promise(QResource::registerResource(resource), "the script is there");
  }

  // The script may still be writing there.
  ~FirewallRoad() override
  {
    SpinUntil([this] { return folder.remove(); }, 5000);
  }

  void Walk(const Log& log) override
  {
    Cleaner::Firewall firewall(nullptr);
    firewall.SetEnabled(!firewall.IsEnabled());
    isEnabled = firewall.IsEnabled();
    log.Demand(!firewall.AddApplication(bundle, false), {"Can't add a path to the firewall: "});
    isSaved = firewall.Save();
    Promise(firewall.IsSaved() == isSaved, "what could not be saved is still to be saved");
    log.Demand(!isSaved, {"Can't execute the firewall script", "Can't run a process (",
                          "Can't open a temporary file: "});
    log.Demand(!isSaved && log.Has("Can't execute the firewall script"),
               {"Can't open a temporary file: ", "Can't open: "});
    if (isSaved)
      Promise(SpinUntil([&] { return tool.Get().isEnabled == isEnabled && tool.Calls().size() >= 6; }, 10000),
              "what was saved is what the system then has");
  }

  void Check(const Log& log) override
  {
    const QStringList left = QDir(QDir::tempPath()).entryList({QStringLiteral("*.fw.*")}, QDir::Files);
    log.Demand(!left.isEmpty(), {"Couldn't remove a temporary file: "});
    for (const QString& name : left)
      QFile::remove(QDir::tempPath() + QLatin1Char('/') + name);
  }

private:
  QTemporaryDir folder;
  FakeFirewall tool;
  const QString bundle;
  QString resource;
  bool isEnabled = false;
  bool isSaved = false;
};

// A purge with the purger that stands beside this program.
class Memory : public Road
{
public:
  void Walk(const Log& log) override
  {
    Cleaner::RAMCleaner cleaner(nullptr);
    log.Demand(cleaner.GetTotalRAMSize() == 0, {"Can't get the machine physical memory size"});
    log.Demand(cleaner.GetFreeRAMSize() == 0, {"Can't get memory statistics"});
    const bool isStarted = cleaner.Clean();
    log.Demand(!isStarted, {"Can't start "});
    Promise(isStarted == cleaner.IsCleaning(), "a run that started is in progress");
    Promise(SpinUntil([&] { return !cleaner.IsCleaning(); }, 10000), "a run ends");
    Promise(!isStarted || cleaner.GetProgress() == 1.0F, "a run that ended is complete");
  }
};

class Process : public Road
{
public:
  void Walk(const Log&) override
  {
    const QString text =
        Cleaner::ReadProcess(QStringLiteral("sh"), QStringLiteral("-c"), QStringLiteral("echo word"));
    Promise(QStringLiteral("word\n").startsWith(text), "a text is the tool's or a part of it");
  }
};

// Nothing that fails may allow more.
class Access : public Road
{
public:
  Access()
  {
    QDir().mkpath(folder.filePath(QStringLiteral("open/sub")));
    WriteText(folder.filePath(QStringLiteral("open/sub/file")), "text");
    QFile::setPermissions(folder.filePath(QStringLiteral("open/sub/file")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::WriteGroup);
    QDir().mkpath(folder.filePath(QStringLiteral("closed")));
    WriteText(folder.filePath(QStringLiteral("closed/file")), "text");
    QFile::setPermissions(folder.filePath(QStringLiteral("closed")), QFile::ReadOwner | QFile::ExeOwner);
    isRefused = geteuid() == 0
                    ? chown(qPrintable(folder.filePath(QStringLiteral("closed"))), 65534, 65534) == 0
                    : true;
  }
  ~Access() override
  {
    if (geteuid() == 0)
      (void)!chown(qPrintable(folder.filePath(QStringLiteral("closed"))), 0, 0);
    QFile::setPermissions(folder.filePath(QStringLiteral("closed")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  }

  void Walk(const Log&) override
  {
    const QString file = folder.filePath(QStringLiteral("open/sub/file"));
    answers = {Cleaner::CanRead(file), Cleaner::CanWrite(file), Cleaner::CanRemove(file),
               Cleaner::CanRemoveWholeDirectory(folder.filePath(QStringLiteral("open")))};
    const bool isAllowed =
        Cleaner::CanRemove(folder.filePath(QStringLiteral("closed/file"))) ||
        Cleaner::CanRemoveWholeDirectory(folder.filePath(QStringLiteral("closed")) + QStringLiteral("/."));
    Promise(!isRefused || !isAllowed, "what is refused stays refused");
  }

private:
  QTemporaryDir folder;
  std::vector<bool> answers;
  bool isRefused = false;
};

class Disks : public Road
{
public:
  Disks()
  {
    tools.AddTool(
        QStringLiteral("diskutil"),
        "case $1 in\n"
        "list) printf '/dev/disk0\\n   0: volume Data disk0s1\\n' ;;\n"
        "info) printf '   Volume Name: Data\\n   Mounted: Yes\\n   Mount Point: /\\n   Total Size: 5.0 GB "
        "(5000000000 Bytes)\\n   Volume Free Space: 1.0 GB (1000000000 Bytes)\\n' ;;\n"
        "esac\n");
  }

  void Walk(const Log&) override
  {
    const QList<Cleaner::StorageInfo> disks = Cleaner::LoadDiskList();
    Promise(disks.size() <= 1, "the list holds what there is, or nothing");
    Promise(disks.isEmpty() || disks.first().mountPoint == QLatin1String("/"),
            "a disk is the one that there is");
    Cleaner::FindDisk(disks, QStringLiteral("/"));
  }

private:
  ToolFolder tools;
};

std::unique_ptr<Road> MakeRoad(const std::string& name)
{
  if (name == "bus")
    return std::make_unique<Bus>();
  if (name == "settings")
    return std::make_unique<Settings>();
  if (name == "firewall")
    return std::make_unique<FirewallRoad>();
  if (name == "memory")
    return std::make_unique<Memory>();
  if (name == "process")
    return std::make_unique<Process>();
  if (name == "access")
    return std::make_unique<Access>();
  if (name == "disks")
    return std::make_unique<Disks>();
  return nullptr;
}

void CheckLeftovers(const QSet<QString>& before)
{
  // A descriptor may be closed by an event that is still to come.
  SpinUntil([&] { return (OpenFiles() - before).isEmpty(); }, 1000);
  for (const QString& file : OpenFiles() - before)
    Break("leak", "descriptor " + file.toStdString());
  if (waitpid(-1, nullptr, WNOHANG) >= 0)
    Break("leak", "child");
}

} // namespace

int main(int argc, char** argv)
{
  // What this starts is not to be preloaded as well.
  unsetenv("LD_PRELOAD");
  unsetenv("LD_LIBRARY_PATH");
  google::InitGoogleLogging(argv[0]);
  FLAGS_logtostderr = true;
  QCoreApplication application(argc, argv);
  const std::unique_ptr<Road> road = MakeRoad(argc > 1 ? argv[1] : "");
  if (!road)
  {
    std::fprintf(stderr, "Scenario: bus, settings, firewall, memory, process, access or disks\n");
    return 2;
  }

  const QSet<QString> before = OpenFiles();
  const Log log;
  Arm(true);
  road->Walk(log);
  Arm(false);
  road->Check(log);
  CheckLeftovers(before);
  std::fflush(stdout);
  return isKept ? EXIT_SUCCESS : EXIT_FAILURE;
}
