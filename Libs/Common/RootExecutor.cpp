#include <Common/Platform/PrivilegedLauncher.h>
#include <Common/Printable.h>
#include <Common/RootExecutor.h>

#include <QByteArray>

#include <glog/logging.h>

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace Tavrik::Cleaner::Details
{

class RootExecutor::Impl
{
public:
  Impl(const QString& toolPath, bool readPid) : toolPath(toolPath.toUtf8()), readPid(readPid) {}
  ~Impl() { DropAuthorization(); }

  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  bool Authorize();
  bool Exec(const QStringList& arguments);

  void SetScript(const QByteArray& content) { script = content.toStdString(); }
  bool IsAuthorized() const { return authorized; }
  qint32 GetPid() const { return pid; }

private:
  void DropAuthorization();

  const QByteArray toolPath;
  Platform::PrivilegedSession* authorization = nullptr;
  bool authorized = false;
  qint32 pid = -1;
  const bool readPid;
  std::optional<std::string> script;
};

namespace
{

// The pointers are valid for as long as the texts are left alone.
std::vector<char*> ToVector(QList<QByteArray>* texts)
{
  std::vector<char*> vector;
  for (QByteArray& text : *texts)
    vector.push_back(text.data());
  vector.push_back(nullptr);
  return vector;
}

qint32 ReadPid(std::FILE* stream)
{
  qint32 pid = -1;
  return std::fread(&pid, sizeof(pid), 1, stream) == 1 ? pid : -1;
}

} // namespace

bool RootExecutor::Impl::Authorize()
{
  if (authorized && Platform::HasPrivilege(authorization))
    return true;
  authorized = false;

  if (!authorization)
  {
    const std::int32_t status = Platform::OpenPrivilegedSession(&authorization);
    if (status != 0)
    {
      LOG(ERROR) << "Can't create authorization object: " << status;
      return false;
    }
  }

  const std::int32_t status = Platform::AskForPrivilege(authorization, toolPath.constData(),
                                                        static_cast<std::size_t>(toolPath.size()));
  if (status == 0)
  {
    authorized = true;
  }
  else if (status == Platform::privilegeCancelled)
  {
    LOG(INFO) << "Authorization canceled";
  }
  else
  {
    DropAuthorization();
    LOG(ERROR) << "Can't copy rights: " << status;
  }
  return authorized;
}

bool RootExecutor::Impl::Exec(const QStringList& arguments)
{
  const bool wasAuthorized = authorized;
  if (!Authorize())
  {
    if (wasAuthorized)
      pid = -1;
    return false;
  }

  QList<QByteArray> texts;
  for (const QString& argument : arguments)
    texts.append(argument.toUtf8());
  const std::vector<char*> vector = ToVector(&texts);

  std::FILE* stream = nullptr;
  const std::int32_t status = Platform::StartPrivileged(authorization, toolPath.constData(),
                                                        script ? &*script : nullptr, vector.data(), &stream);
  if (status != 0)
  {
    pid = -1;
    LOG(ERROR) << "Can't run a process (" << Printable(toolPath).constData() << ") as root: " << status;
    return false;
  }
  if (readPid)
    pid = ReadPid(stream);
  return true;
}

void RootExecutor::Impl::DropAuthorization()
{
  if (authorization)
    Platform::ClosePrivilegedSession(authorization);
  authorization = nullptr;
}

RootExecutor::RootExecutor(const QString& toolPath, bool readPid)
    : impl(std::make_unique<Impl>(toolPath, readPid))
{
}

RootExecutor::~RootExecutor() = default;

bool RootExecutor::IsAuthorized() const
{
  return impl->IsAuthorized();
}

bool RootExecutor::Authorize()
{
  return impl->Authorize();
}

bool RootExecutor::Exec(const QStringList& arguments)
{
  return impl->Exec(arguments);
}

void RootExecutor::SetScript(const QByteArray& script)
{
  impl->SetScript(script);
}

qint32 RootExecutor::GetPid() const
{
  return impl->GetPid();
}

} // namespace Tavrik::Cleaner::Details
