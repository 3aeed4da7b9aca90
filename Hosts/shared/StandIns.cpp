#include "StandIns.h"

#include "SafeText.h"

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

struct Tool
{
  QString path; // empty: there is none
  bool isStandIn = false;
};

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

Tool FindFirewallTool()
{
  static const QString systemTool = filewallFileName;
  if (IsProgram(systemTool))
    return {systemTool, false};
  return {FindStandIn(QStringLiteral("socketfilterfw")), true};
}

Tool FindDiskTool()
{
  const QString name = QStringLiteral("diskutil");
  const QString path = QStandardPaths::findExecutable(name);
  return {path, !path.isEmpty() && path == FindStandIn(name)};
}

QString Describe(const QString& name, const Tool& tool)
{
  if (tool.path.isEmpty())
    return name + QLatin1String(": missing");
  const QString line = name + QLatin1String(": ") + ShowText(tool.path);
  return tool.isStandIn ? line + QLatin1String(" (a stand-in)") : line;
}

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
  const Tool tool = FindFirewallTool();
  if (tool.path.isEmpty())
    return false;
  filewallFileName = tool.path;
  const QResource collection(tool.isStandIn ? QStringLiteral(":/tools/standin.rcc")
                                            : QStringLiteral(":/tools/system.rcc"));
  return QResource::registerResource(collection.data());
}

QStringList DescribeTools()
{
  return {Describe(QStringLiteral("firewall tool"), FindFirewallTool()),
          Describe(QStringLiteral("disk tool"), FindDiskTool())};
}

} // namespace Ostrel
