#include "Versions.h"

#include "Output.h"
#include "SafeText.h"
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

QString ShowTool(const QString& name)
{
  const QString path = QStandardPaths::findExecutable(name);
  return path.isEmpty() ? Texts::tr("missing: %1").arg(name) : ShowText(path);
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
  table.AddRow({Texts::tr("Disk tool"), ShowTool(QStringLiteral("diskutil"))});
  table.AddRow({Texts::tr("Firewall tool"),
                ShowFile(QStringLiteral("/usr/libexec/ApplicationFirewall/socketfilterfw"))});
  table.AddRow({QStringLiteral("getconf"), ShowTool(QStringLiteral("getconf"))});
  output.PrintTable(table);
  return output.Status();
}

} // namespace Ostrel
