#include "StandIns.h"

#include "Texts.h"

#include <Common/Firewall.h>

#include <QFile>
#include <QFileInfo>
#include <QResource>
#include <QStandardPaths>

namespace Ostrel
{

using Tavrik::Cleaner::filewallFileName;

namespace
{

QString GetStandInFolder()
{
  QFile file(QStringLiteral(":/tools/standins"));
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

bool IsProgram(const QString& path)
{
  const QFileInfo information(path);
  return information.isFile() && information.isExecutable();
}

QString FindStandIn(const QString& name)
{
  const QString folder = GetStandInFolder();
  const QString path = folder + QLatin1Char('/') + name;
  return !folder.isEmpty() && IsProgram(path) ? path : QString();
}

ToolPlace FindFirewallTool()
{
  static const QString systemTool = filewallFileName;
  const QString name = Texts::tr("Firewall tool");
  if (IsProgram(systemTool))
    return {name, systemTool, false};
  return {name, FindStandIn(QStringLiteral("socketfilterfw")), true};
}

ToolPlace FindDiskTool()
{
  const QString name = QStringLiteral("diskutil");
  const QString path = QStandardPaths::findExecutable(name);
  return {Texts::tr("Disk tool"), path, !path.isEmpty() && path == FindStandIn(name)};
}

// A collection of resources that is a resource itself, in use while this lives.
class Collection
{
public:
  explicit Collection(const QString& name)
      : data(QResource(name).data()), isRegistered(QResource::registerResource(data))
  {
  }

  ~Collection()
  {
    if (isRegistered)
      QResource::unregisterResource(data);
  }

  Collection(const Collection&) = delete;
  Collection& operator=(const Collection&) = delete;

  bool IsRegistered() const { return isRegistered; }

private:
  const uchar* const data;
  const bool isRegistered;
};

} // namespace

void OfferStandIns()
{
  const QByteArray folder = QFile::encodeName(GetStandInFolder());
  if (folder.isEmpty())
    return;
  const QByteArray path = qEnvironmentVariableIsSet("PATH") ? qgetenv("PATH") : QByteArray("/usr/bin:/bin");
  qputenv("PATH", path + ':' + folder);
}

bool ChooseFirewallTool()
{
  const ToolPlace tool = FindFirewallTool();
  if (tool.path.isEmpty())
    return false;
  filewallFileName = tool.path;
  static const Collection script(tool.isStandIn ? QStringLiteral(":/tools/standin.rcc")
                                                : QStringLiteral(":/tools/system.rcc"));
  return script.IsRegistered();
}

QVector<ToolPlace> FindTools()
{
  return {FindFirewallTool(), FindDiskTool()};
}

} // namespace Ostrel
