#include <Common/DaemonSettings.h>
#include <Common/Firewall.h>
#include <Common/Platform/ToolOutput.h>
#include <Common/Printable.h>
#include <Common/ReadProcess.h>
#include <Common/RootExecutor.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QOperatingSystemVersion>

#include <glog/logging.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Tavrik::Cleaner
{

QString filewallFileName = QStringLiteral("/usr/libexec/ApplicationFirewall/socketfilterfw");

namespace Details
{

struct AppInfo
{
  bool isSaved = false;   // equals what the system has stored
  bool isAdded = false;   // in this session; not yet in the system's list
  bool isRemoved = false; // in this session; still in the system's list
  bool isBlocked = false;

  bool operator==(const AppInfo& other) const
  {
    return isSaved == other.isSaved && isAdded == other.isAdded && isRemoved == other.isRemoved &&
           isBlocked == other.isBlocked;
  }
};

struct FirewallState
{
  bool isEnabled = false;
  bool blockAll = false;
  bool allowSigned = false;
  bool stealthMode = false;
  QStringList applications;
  QMap<QString, AppInfo> infos; // of removed and of merely looked-up paths too
};

} // namespace Details

namespace
{

using Details::AppInfo;
using Details::FirewallState;

const auto bundleExtension = QLatin1String(".app");
const auto pathSeparator = QLatin1Char(';');

/// @name Reading
/// @{

enum class Listed
{
  Everything,
  Bundles // all that OS X 10.8 and older ones are asked for
};

Listed WhatThisSystemLists()
{
  const QOperatingSystemVersion system = QOperatingSystemVersion::current();
  const bool isOld = system.type() == QOperatingSystemVersion::MacOS &&
                     system < QOperatingSystemVersion(QOperatingSystemVersion::MacOS, 10, 9);
  return isOld ? Listed::Bundles : Listed::Everything;
}

QString PathOfLine(const QString& line)
{
  return line.mid(std::max(line.indexOf(QLatin1Char('/')) - 1, 0)).trimmed();
}

void ReadApplications(const QString& output, Listed listed, FirewallState* state)
{
  enum
  {
    Header,
    Path,
    Status
  } expected = Header;

  QString path;
  for (const QString& line : output.split(QLatin1Char('\n')))
  {
    if (line.isEmpty())
    {
      if (expected == Header)
        expected = Path;
      continue;
    }
    switch (expected)
    {
    case Header:
      break;
    case Path:
      path = PathOfLine(line);
      expected = Status;
      break;
    case Status:
      state->infos[path].isSaved = true;
      state->infos[path].isBlocked = line.contains(QLatin1String("Block"));
      if (listed == Listed::Everything || path.endsWith(bundleExtension))
        state->applications.append(path);
      expected = Header;
      break;
    default:
      LOG(ERROR) << "Can't parse an applications list:" << Printable(line).constData() << "\n\n"
                 << Printable(output).constData();
    }
  }
}

QString Ask(const char* question)
{
  const QString option = QLatin1String(question);
  return Platform::ToClassicFirewallAnswer(option, ReadProcess(filewallFileName, option));
}

bool Answers(const char* question, const char* text)
{
  return Ask(question).contains(QLatin1String(text));
}

FirewallState ReadState()
{
  FirewallState state;
  ReadApplications(Ask("--listapps"), WhatThisSystemLists(), &state);
  state.isEnabled = Answers("--getglobalstate", "Firewall is enabled");
  state.blockAll = Answers("--getblockall", "Firewall is set to block all");
  state.allowSigned = Answers("--getallowsigned", "ENABLED");
  state.stealthMode = Answers("--getstealthmode", "enabled");
  return state;
}

/// @}

QStringList Sorted(QStringList list)
{
  list.sort(Qt::CaseSensitive);
  return list;
}

bool AreEqual(const FirewallState& one, const FirewallState& other)
{
  return one.isEnabled == other.isEnabled && one.blockAll == other.blockAll &&
         one.allowSigned == other.allowSigned && one.stealthMode == other.stealthMode &&
         Sorted(one.applications) == Sorted(other.applications) && one.infos == other.infos;
}

/// @name The script's file
/// It runs as root and lies in a folder where others may write, so nothing that was there before is used, no
/// link is followed, and what is run is looked at first.
/// @{

const mode_t scriptMode = S_IRWXU;
const mode_t allModes = 07777;

class OpenFile
{
public:
  OpenFile(const QByteArray& name, int flags, mode_t mode)
      : descriptor(open(name.constData(), flags | O_NOFOLLOW | O_CLOEXEC, mode))
  {
  }
  ~OpenFile()
  {
    if (descriptor >= 0)
      close(descriptor);
  }

  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  int Get() const { return descriptor; }
  bool IsOpen() const { return descriptor >= 0; }

private:
  const int descriptor;
};

bool WriteWhole(int descriptor, const QByteArray& content)
{
  for (int written = 0; written < content.size();)
  {
    const ssize_t size =
        write(descriptor, content.constData() + written, static_cast<std::size_t>(content.size() - written));
    if (size < 0 && errno == EINTR)
      continue;
    if (size <= 0)
      return false;
    written += static_cast<int>(size);
  }
  return true;
}

bool WriteScript(const QByteArray& name, const QByteArray& content)
{
  unlink(name.constData());
  const OpenFile file(name, O_WRONLY | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
  if (!file.IsOpen())
    return false;
  if (WriteWhole(file.Get(), content) && fchmod(file.Get(), scriptMode) == 0)
    return true;
  unlink(name.constData());
  return false;
}

bool IsOurScript(const QByteArray& name, const QByteArray& content)
{
  const OpenFile file(name, O_RDONLY | O_NONBLOCK, 0);
  struct stat information;
  if (!file.IsOpen() || fstat(file.Get(), &information) != 0 || !S_ISREG(information.st_mode) ||
      information.st_uid != geteuid() || (information.st_mode & allModes) != scriptMode ||
      information.st_size != content.size())
    return false;
  QFile reader;
  return reader.open(file.Get(), QIODevice::ReadOnly | QIODevice::Unbuffered) &&
         reader.read(content.size() + 1) == content;
}

/// @}

// What the script is told to do with the paths.
struct Changes
{
  QStringList added;
  QStringList removed;
  QStringList blocked;
  QStringList unblocked;
};

Changes CollectChanges(const FirewallState& state)
{
  Changes changes;
  for (auto info = state.infos.begin(); info != state.infos.end(); ++info)
  {
    if (info->isSaved)
      continue;
    if (info->isAdded)
      changes.added.append(info.key());
    QStringList& list = info->isRemoved   ? changes.removed
                        : info->isBlocked ? changes.blocked
                                          : changes.unblocked;
    list.append(info.key());
  }
  return changes;
}

const char* OnOrOff(bool isOn)
{
  return isOn ? "on" : "off";
}

} // namespace

class Firewall::Impl
{
public:
  Impl() = default;
  ~Impl();

  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  void UpdateScript();
  void UpdateInfo();
  bool IsSaved() const { return AreEqual(current, stored); }
  bool HasUnsavedApps() const;

  using Switch = bool FirewallState::*;
  bool Set(Switch field, bool value);
  bool Add(const QString& path);
  bool Remove(const QString& path);
  bool Block(const QString& path, bool block);
  bool Save();

  FirewallState current;
  FirewallState stored;

private:
  QByteArray ScriptName() const { return QFile::encodeName(scriptFile.fileName()); }
  bool WriteScriptFile();

  QByteArray script;
  std::unique_ptr<Details::RootExecutor> executor; // null until the script is ready
  QFile scriptFile;
};

Firewall::Impl::~Impl()
{
  const QByteArray name = ScriptName();
  if (!name.isEmpty() && unlink(name.constData()) != 0 && errno != ENOENT)
    LOG(ERROR) << "Couldn't remove a temporary file: " << Printable(name).constData();
}

void Firewall::Impl::UpdateScript()
{
  QFile resource(QStringLiteral(":Scripts/Firewall"));
  if (!resource.open(QIODevice::ReadOnly))
  {
    LOG(ERROR) << "Can't open: " << Printable(resource.fileName()).constData();
    return;
  }
  script = resource.readAll();
  const QString name = applicationId + QLatin1String(".fw.") + QString::number(getpid());
  const QString folder = QDir::tempPath();
  if (folder.isEmpty()) // it does not exist
  {
    LOG(ERROR) << "Can't open a temporary file: " << Printable(name).constData();
    return;
  }
  scriptFile.setFileName(folder + QLatin1Char('/') + name);
  if (!WriteScriptFile())
    return;
  executor = std::make_unique<Details::RootExecutor>(scriptFile.fileName(), false);
  executor->SetScript(script);
}

bool Firewall::Impl::WriteScriptFile()
{
  if (WriteScript(ScriptName(), script))
    return true;
  LOG(ERROR) << "Can't open a temporary file: " << Printable(ScriptName()).constData();
  return false;
}

void Firewall::Impl::UpdateInfo()
{
  current = ReadState();
  stored = current;
}

bool Firewall::Impl::HasUnsavedApps() const
{
  return std::any_of(current.infos.begin(), current.infos.end(),
                     [](const AppInfo& info) { return !info.isSaved; });
}

bool Firewall::Impl::Set(Switch field, bool value)
{
  return std::exchange(current.*field, value) != value;
}

bool Firewall::Impl::Add(const QString& path)
{
  const QString absolute = QFileInfo(path).absoluteFilePath();
  if (!absolute.endsWith(bundleExtension) || !QFileInfo::exists(absolute))
  {
    LOG(WARNING) << "Can't add a path to the firewall: " << Printable(path).constData() << " ("
                 << Printable(absolute).constData() << ")";
    return false;
  }

  AppInfo& info = current.infos[absolute];
  if (!current.applications.contains(absolute))
  {
    current.applications.append(absolute);
    info.isAdded = !stored.applications.contains(absolute);
  }
  info.isRemoved = false;
  info.isBlocked = stored.infos[absolute].isBlocked;
  info.isSaved = !info.isAdded;
  return true;
}

bool Firewall::Impl::Remove(const QString& path)
{
  if (current.applications.removeAll(path) == 0)
    return false;
  AppInfo& info = current.infos[path];
  info.isAdded = false;
  info.isRemoved = stored.applications.contains(path);
  info.isSaved = !info.isRemoved;
  return true;
}

bool Firewall::Impl::Block(const QString& path, bool block)
{
  AppInfo& info = current.infos[path];
  if (info.isBlocked == block)
    return false;
  info.isBlocked = block;
  const auto known = stored.infos.constFind(path);
  info.isSaved = known != stored.infos.constEnd() && known->isBlocked == block;
  return true;
}

bool Firewall::Impl::Save()
{
  if (IsSaved())
    return false;
  if (!executor)
  {
    LOG(ERROR) << "Can't execute the firewall script";
    return false;
  }
  // Asking takes as long as the user does, so the file is looked at afterwards.
  if (!executor->Authorize() || (!IsOurScript(ScriptName(), script) && !WriteScriptFile()))
    return false;

  const Changes changes = CollectChanges(current);
  if (!executor->Exec(OnOrOff(current.isEnabled), OnOrOff(current.blockAll), OnOrOff(current.allowSigned),
                      OnOrOff(current.stealthMode), changes.added.join(pathSeparator),
                      changes.removed.join(pathSeparator), changes.blocked.join(pathSeparator),
                      changes.unblocked.join(pathSeparator)))
    return false;

  for (AppInfo& info : current.infos)
    info = {true, false, false, info.isBlocked};
  stored = current;
  return true;
}

Firewall& Firewall::GetInstance()
{
  static Firewall instance(nullptr);
  return instance;
}

Firewall::Firewall(QObject* parent) : QObject(parent), impl(std::make_unique<Impl>())
{
  impl->UpdateScript();
  impl->UpdateInfo();
}

Firewall::~Firewall() = default;

bool Firewall::Tell(bool isChanged)
{
  if (isChanged)
    emit IsSavedChanged(IsSaved());
  return isChanged;
}

bool Firewall::IsEnabled() const
{
  return impl->current.isEnabled;
}

bool Firewall::GetBlockAll() const
{
  return impl->current.blockAll;
}

bool Firewall::GetAllowSigned() const
{
  return impl->current.allowSigned;
}

bool Firewall::GetStealthMode() const
{
  return impl->current.stealthMode;
}

void Firewall::SetEnabled(bool isEnabled)
{
  Tell(impl->Set(&FirewallState::isEnabled, isEnabled));
}

void Firewall::SetBlockAll(bool blockAll)
{
  Tell(impl->Set(&FirewallState::blockAll, blockAll));
}

void Firewall::SetAllowSigned(bool allowSigned)
{
  Tell(impl->Set(&FirewallState::allowSigned, allowSigned));
}

void Firewall::SetStealthMode(bool stealthMode)
{
  Tell(impl->Set(&FirewallState::stealthMode, stealthMode));
}

QStringList Firewall::GetApplications() const
{
  return impl->current.applications;
}

bool Firewall::IsApplicationBlocked(const QString& path) const
{
  return impl->current.infos[path].isBlocked;
}

bool Firewall::AddApplication(const QString& path, bool)
{
  return Tell(impl->Add(path));
}

bool Firewall::RemoveApplication(const QString& path)
{
  return Tell(impl->Remove(path));
}

void Firewall::BlockApplication(const QString& path, bool block)
{
  Tell(impl->Block(path, block));
}

bool Firewall::IsSaved() const
{
  return impl->IsSaved();
}

void Firewall::Undo()
{
  const bool wasSaved = IsSaved();
  impl->UpdateInfo();
  if (!wasSaved && IsSaved())
    emit IsSavedChanged(true);
}

bool Firewall::Save()
{
  return Tell(impl->Save());
}

} // namespace Tavrik::Cleaner
