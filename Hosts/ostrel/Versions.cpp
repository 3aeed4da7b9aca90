#include "Versions.h"

#include "Output.h"
#include "SafeText.h"
#include "StandIns.h"
#include "Terminal.h"
#include "Texts.h"

#include <Common/RAMCleaner.h>

#include <QFileInfo>
#include <QStandardPaths>

namespace Ostrel
{
namespace
{

QString ShowFile(const QString& path)
{
  const QFileInfo file(path);
  return file.isFile() && file.isExecutable() ? ShowText(path) : Texts::tr("missing: %1").arg(ShowText(path));
}

QString ShowPlace(const ToolPlace& tool)
{
  if (tool.path.isEmpty())
    return Texts::tr("missing");
  return tool.isStandIn ? Texts::tr("%1 (a stand-in)").arg(ShowText(tool.path)) : ShowText(tool.path);
}

} // namespace

int PrintVersions()
{
  Output output(Format::Human);
  output.Print("ostrel " OSTREL_VERSION, {});
  Table table({{}, {{}, Table::Align::Left, true}});
  table.AddRow({QStringLiteral("TavrikCommon"), QStringLiteral(OSTREL_VERSION)});
  table.AddRow({QStringLiteral("Qt"), QString::fromLatin1(qVersion())});
  table.AddRow({QStringLiteral("Boost"), QStringLiteral(OSTREL_BOOST_VERSION)});
  table.AddRow({QStringLiteral("glog"), QStringLiteral(OSTREL_GLOG_VERSION)});
  table.AddRow({Texts::tr("Purger"), ShowFile(Tavrik::Cleaner::RAMCleaner::FindPurger())});
  for (const ToolPlace& tool : FindTools())
    table.AddRow({tool.name, ShowPlace(tool)});
  table.AddRow({QStringLiteral("getconf"),
                ShowPlace({{}, QStandardPaths::findExecutable(QStringLiteral("getconf")), false})});
  output.PrintTable(table);
  return output.Status();
}

} // namespace Ostrel
