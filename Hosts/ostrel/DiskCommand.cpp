#include "DiskCommand.h"

#include "Disks.h"
#include "ExitCodes.h"
#include "Options.h"
#include "Output.h"
#include "SafeText.h"
#include "Signals.h"
#include "Terminal.h"
#include "Texts.h"

#include <Common/FormatText.h>

#include <QFileInfo>
#include <QJsonArray>

#include <cmath>

namespace Ostrel
{

using Tavrik::Cleaner::StorageInfo;

namespace
{

struct Arguments
{
  bool json = false;
  std::string path;
};

constexpr int barColumns = 10;

QJsonValue ToJson(long long size)
{
  return size < 0 ? QJsonValue() : QJsonValue(size);
}

// Rounded up, as df(1) does.
int ToPercentage(double part)
{
  return static_cast<int>(std::ceil(part * 100));
}

QJsonObject ToJson(const StorageInfo& disk)
{
  const std::optional<double> used = GetUsedPart(disk);
  return {{QStringLiteral("name"), disk.name},
          {QStringLiteral("mountPoint"), disk.mountPoint},
          {QStringLiteral("totalBytes"), ToJson(disk.totalSize)},
          {QStringLiteral("freeBytes"), ToJson(disk.freeSize)},
          {QStringLiteral("usedPercent"), used ? QJsonValue(ToPercentage(*used)) : QJsonValue()}};
}

QString ShowSize(long long size)
{
  return size < 0 ? Texts::tr("unknown") : Tavrik::Cleaner::FormatSize(size, 1);
}

QString ShowUsed(const StorageInfo& disk, bool withBar)
{
  const std::optional<double> used = GetUsedPart(disk);
  if (!used)
    return Texts::tr("unknown");
  const QString number = QStringLiteral("%1 %").arg(ToPercentage(*used));
  return withBar ? MakeBar(*used, barColumns) + QLatin1Char(' ') + number.rightJustified(5) : number;
}

void PrintDisks(Output& output, const QList<StorageInfo>& disks)
{
  Table table({{Texts::tr("Name"), Table::Align::Left, true},
               {Texts::tr("Mounted at"), Table::Align::Left, true},
               {Texts::tr("Total"), Table::Align::Right},
               {Texts::tr("Free"), Table::Align::Right},
               {Texts::tr("Used"), Table::Align::Right}});
  for (const StorageInfo& disk : disks)
    table.AddRow({ShowText(disk.name), ShowText(disk.mountPoint), ShowSize(disk.totalSize),
                  ShowSize(disk.freeSize), ShowUsed(disk, output.IsTerminal())});
  output.PrintTable(table);
}

// Done, or the exit code after the reason has been printed.
int Load(QList<StorageInfo>& disks)
{
  if (!HasDiskTool())
  {
    PrintError(Texts::tr("the disk tool diskutil is missing; it comes with macOS and is looked for in PATH"));
    return ToolMissing;
  }
  // Each of the tool's answers may take half a minute, and nothing is left behind.
  Signals::EndAtOnce();
  disks = Tavrik::Cleaner::LoadDiskList();
  if (!disks.isEmpty())
    return Done;
  PrintError(Texts::tr("diskutil tells of no mounted disk"));
  return Failed;
}

int RunList(const Arguments& arguments)
{
  QList<StorageInfo> disks;
  if (const int failure = Load(disks))
    return failure;
  Output output(arguments.json ? Format::Json : Format::Human);
  if (output.IsJson())
  {
    QJsonArray array;
    for (const StorageInfo& disk : disks)
      array.append(ToJson(disk));
    output.Print({}, {{QStringLiteral("disks"), array}});
  }
  else
    PrintDisks(output, disks);
  return output.Status();
}

int RunFind(const Arguments& arguments)
{
  const std::optional<QString> path = ToPath(arguments.path);
  if (!path)
    return WrongUsage;
  if (!QFileInfo::exists(*path))
  {
    PrintError(Texts::tr("there is no %1").arg(ShowName(*path)));
    return Failed;
  }
  QList<StorageInfo> disks;
  if (const int failure = Load(disks))
    return failure;
  const StorageInfo disk = FindHoldingDisk(disks, *path);
  if (disk.mountPoint.isEmpty())
  {
    PrintError(Texts::tr("no disk holds %1").arg(ShowName(*path)));
    return Failed;
  }
  Output output(arguments.json ? Format::Json : Format::Human);
  if (output.IsJson())
    output.Print({}, {{QStringLiteral("path"), *path}, {QStringLiteral("disk"), ToJson(disk)}});
  else
    PrintDisks(output, {disk});
  return output.Status();
}

} // namespace

void AddDiskCommand(CLI::App& app, Command& command)
{
  CLI::App* disk = app.add_subcommand("disk", "List the mounted disks and find the one that holds a path");
  disk->require_subcommand(1);
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* list = AddVerb(*disk, "list", "Print the mounted disks with their sizes", command,
                           [arguments](Signals&) { return RunList(*arguments); });
  AddJson(*list, arguments->json);
  CLI::App* find = AddVerb(*disk, "find", "Print the disk that holds a path", command,
                           [arguments](Signals&) { return RunFind(*arguments); });
  find->add_option("PATH", arguments->path, "What exists somewhere")->required()->type_name("");
  AddJson(*find, arguments->json);
}

} // namespace Ostrel
