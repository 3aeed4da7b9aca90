#include "PathCommand.h"

#include "Disks.h"
#include "ExitCodes.h"
#include "Options.h"
#include "Output.h"
#include "PathRules.h"
#include "SafeText.h"
#include "Signals.h"
#include "Terminal.h"
#include "Texts.h"

#include <Common/AccessChecks.h>
#include <Common/PathHelpers.h>

#include <QFileInfo>

#include <unistd.h>

namespace Ostrel
{

using namespace Tavrik::Cleaner;

namespace
{

struct Arguments
{
  bool json = false;
  bool check = false;
  std::vector<std::string> paths;
};

enum class Kind
{
  Missing,
  File,
  Folder,
  Link,
  DanglingLink,
  Other
};

struct Explanation
{
  QString path;
  Kind kind = Kind::Missing;
  SafetyDecision safety;
  SearchDecision search;
  bool canRead = false;
  bool canWrite = false;
  bool canRemove = false;
  bool canRemoveWhole = false;
  StorageInfo disk; // without a mount point where none is known
};

Kind GetKind(const QString& path)
{
  const QFileInfo file(path);
  if (file.isSymLink())
    return file.exists() ? Kind::Link : Kind::DanglingLink;
  if (!file.exists())
    return Kind::Missing;
  if (file.isDir())
    return Kind::Folder;
  return file.isFile() ? Kind::File : Kind::Other;
}

Explanation Explain(const QString& path, const QList<StorageInfo>& disks)
{
  Explanation explanation;
  explanation.path = path;
  explanation.kind = GetKind(path);
  explanation.safety = ExplainSafety(path);
  explanation.search = ExplainSearch(path);
  explanation.canRead = CanRead(path);
  explanation.canWrite = CanWrite(path);
  explanation.canRemove = CanRemove(path);
  explanation.canRemoveWhole = CanRemoveWholeDirectory(path);
  explanation.disk = FindHoldingDisk(disks, path);
  return explanation;
}

int GetCode(const Explanation& explanation)
{
  if (!explanation.safety.isSafe)
    return Refused;
  return explanation.canRemoveWhole ? Done : NotPermitted;
}

// JSON ----------------------------------------------------------------------------------------------------

QString GetWord(Kind kind)
{
  switch (kind)
  {
  case Kind::File:
    return QStringLiteral("file");
  case Kind::Folder:
    return QStringLiteral("folder");
  case Kind::Link:
    return QStringLiteral("link");
  case Kind::DanglingLink:
    return QStringLiteral("dangling-link");
  case Kind::Other:
    return QStringLiteral("other");
  case Kind::Missing:
    break;
  }
  return QStringLiteral("missing");
}

QJsonValue OrNull(const QString& text)
{
  return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

QJsonObject ToJson(const Explanation& explanation)
{
  const QString& path = explanation.path;
  return {{QStringLiteral("path"), path},
          {QStringLiteral("kind"), GetWord(explanation.kind)},
          {QStringLiteral("safe"), explanation.safety.isSafe},
          {QStringLiteral("safeRule"), GetWord(explanation.safety.rule)},
          {QStringLiteral("safeFolder"), OrNull(explanation.safety.folder)},
          {QStringLiteral("scannable"), explanation.search.isScannable},
          {QStringLiteral("scannableRule"), GetWord(explanation.search.rule)},
          {QStringLiteral("scannableFolder"), OrNull(explanation.search.folder)},
          {QStringLiteral("readable"), explanation.canRead},
          {QStringLiteral("writable"), explanation.canWrite},
          {QStringLiteral("removable"), explanation.canRemove},
          {QStringLiteral("removableWhole"), explanation.canRemoveWhole},
          {QStringLiteral("bundle"), OrNull(ExtractBundlePath(path))},
          {QStringLiteral("bundleIdentifier"), OrNull(ExtractBundleIdentifier(path))},
          {QStringLiteral("languageFolder"), OrNull(ExtractLProjPath(path))},
          {QStringLiteral("language"), OrNull(ExtractBasicLangCode(ExtractLProjName(path)))},
          {QStringLiteral("disk"), OrNull(explanation.disk.mountPoint)}};
}

// For people ----------------------------------------------------------------------------------------------

QString Describe(Kind kind)
{
  switch (kind)
  {
  case Kind::File:
    return Texts::tr("a file");
  case Kind::Folder:
    return Texts::tr("a folder");
  case Kind::Link:
    return Texts::tr("a link");
  case Kind::DanglingLink:
    return Texts::tr("a link to nothing");
  case Kind::Other:
    return Texts::tr("neither file nor folder");
  case Kind::Missing:
    break;
  }
  return Texts::tr("not there");
}

QString Describe(const SafetyDecision& decision)
{
  switch (decision.rule)
  {
  case SafetyRule::Relative:
    return Texts::tr("the path does not begin with /");
  case SafetyRule::ParentComponent:
    return Texts::tr("a component of the path is \"..\"");
  case SafetyRule::LanguageFolder:
    return Texts::tr("language folders may be removed anywhere");
  case SafetyRule::InsideFolder:
    return Texts::tr("%1 may be cleaned").arg(ShowText(decision.folder));
  case SafetyRule::OnVolume:
    return Texts::tr("it is on a writable volume");
  case SafetyRule::MissingOnVolume:
    return Texts::tr("under /Volumes only what exists may be removed");
  case SafetyRule::NoWritableVolume:
    return Texts::tr("no writable volume holds it");
  case SafetyRule::Elsewhere:
    break;
  }
  return Texts::tr("it lies in no folder that may be cleaned");
}

QString Describe(const SearchDecision& decision)
{
  switch (decision.rule)
  {
  case SearchRule::Safe:
    return Texts::tr("what may be removed may be searched");
  case SearchRule::SystemLibrary:
    return Texts::tr("%1 is a library folder of the system").arg(ShowText(decision.folder));
  case SearchRule::Elsewhere:
    break;
  }
  return Texts::tr("it may not be removed and is in no library folder");
}

Table::Cell ShowAnswer(bool isYes, const QString& reason = {})
{
  const QString answer = isYes ? Texts::tr("yes") : Texts::tr("no");
  return {reason.isEmpty() ? answer : answer + QStringLiteral(": ") + reason,
          isYes ? &Style::Green : &Style::Red};
}

QString OrNone(const QString& text)
{
  return text.isEmpty() ? Texts::tr("none") : ShowText(text);
}

void PrintForPeople(Output& output, const Explanation& explanation)
{
  const QString& path = explanation.path;
  const QString shown = ShowName(path);
  const Style style(STDOUT_FILENO);
  output.Print(style.Bold(output.IsTerminal() ? Shorten(shown, GetWidth(STDOUT_FILENO)) : shown).toUtf8(),
               {});
  Table table({{}, {{}, Table::Align::Left, true}});
  const auto add = [&table](const QString& name, const Table::Cell& cell)
  {
    const QString indented = QStringLiteral("  ") + name;
    table.AddRow({indented, cell});
  };
  add(Texts::tr("What it is"), Describe(explanation.kind));
  add(Texts::tr("Safe to remove"), ShowAnswer(explanation.safety.isSafe, Describe(explanation.safety)));
  add(Texts::tr("To be searched"), ShowAnswer(explanation.search.isScannable, Describe(explanation.search)));
  add(Texts::tr("You may read it"), ShowAnswer(explanation.canRead));
  add(Texts::tr("You may write it"), ShowAnswer(explanation.canWrite));
  add(Texts::tr("You may remove it"), ShowAnswer(explanation.canRemove));
  add(Texts::tr("With all inside"), ShowAnswer(explanation.canRemoveWhole));
  add(Texts::tr("Application"), OrNone(ExtractBundlePath(path)));
  add(Texts::tr("Language folder"), OrNone(ExtractLProjPath(path)));
  add(Texts::tr("Disk"), explanation.disk.mountPoint.isEmpty()
                             ? Texts::tr("unknown")
                             : QStringLiteral("%1 (%2)").arg(ShowText(explanation.disk.name),
                                                             ShowText(explanation.disk.mountPoint)));
  output.PrintTable(table);
}

int RunExplain(const Arguments& arguments)
{
  QStringList paths;
  for (const std::string& argument : arguments.paths)
  {
    const std::optional<QString> path = ToPath(argument);
    if (!path)
      return WrongUsage;
    paths.append(*path);
  }
  // Tools that hang and trees that never end are waited for, and nothing is left behind.
  Signals::EndAtOnce();
  const QList<StorageInfo> disks = HasDiskTool() ? LoadDiskList() : QList<StorageInfo>();
  Output output(arguments.json ? Format::Json : Format::Human);
  int code = Done;
  for (const QString& path : paths)
  {
    const Explanation explanation = Explain(path, disks);
    if (output.IsJson())
      output.Print({}, ToJson(explanation));
    else
      PrintForPeople(output, explanation);
    if (output.Status() != Done)
      return output.Status();
    if (code != Refused && GetCode(explanation) != Done)
      code = GetCode(explanation);
  }
  return arguments.check ? code : Done;
}

} // namespace

void AddPathCommand(CLI::App& app, Command& command)
{
  CLI::App* path = app.add_subcommand("path", "Explain what may be done with files and folders");
  path->require_subcommand(1);
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* explain = AddVerb(*path, "explain", "Say which rules decide about paths", command,
                              [arguments](Signals&) { return RunExplain(*arguments); });
  explain->add_option("PATH", arguments->paths, "Taken as they are written")->required()->type_name("");
  explain->add_flag("--check", arguments->check,
                    "End with 11 where a safety rule forbids to remove one of them, with 12 where the system "
                    "does");
  AddJson(*explain, arguments->json);
}

} // namespace Ostrel
