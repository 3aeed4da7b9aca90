#include "PathRules.h"

#include <Common/PathHelpers.h>
#include <Common/PathSafety.h>

#include <QFileInfo>

#include <algorithm>

namespace Ostrel
{

using Tavrik::Cleaner::dirSep;
using Tavrik::Cleaner::IsPathSafe;

namespace
{

const QString volumesFolder = QStringLiteral("/Volumes");

bool HasParentComponent(const QString& path)
{
  return path.split(dirSep).contains(QStringLiteral(".."));
}

// What lies in a folder that may be cleaned is safe by its text alone, whether it exists or not.
bool IsCleanable(const QString& folder)
{
  return IsPathSafe(folder + QStringLiteral("/entry"));
}

QString FindFolder(const QString& path)
{
  for (int end = path.indexOf(dirSep, 1); end > 0; end = path.indexOf(dirSep, end + 1))
    if (IsCleanable(path.left(end)))
      return path.left(end);
  return path;
}

SafetyRule WhySafe(const QString& path)
{
  if (path.endsWith(Tavrik::Cleaner::lProjExt))
    return SafetyRule::LanguageFolder;
  // No folder that may be cleaned as such lies there.
  return path.startsWith(volumesFolder) ? SafetyRule::OnVolume : SafetyRule::InsideFolder;
}

SafetyRule WhyUnsafe(const QString& path)
{
  if (!path.startsWith(dirSep))
    return SafetyRule::Relative;
  if (HasParentComponent(path))
    return SafetyRule::ParentComponent;
  if (!path.startsWith(volumesFolder + dirSep))
    return SafetyRule::Elsewhere;
  return QFileInfo::exists(path) ? SafetyRule::NoWritableVolume : SafetyRule::MissingOnVolume;
}

} // namespace

SafetyDecision ExplainSafety(const QString& path)
{
  SafetyDecision decision;
  decision.isSafe = IsPathSafe(path);
  decision.rule = decision.isSafe ? WhySafe(path) : WhyUnsafe(path);
  if (decision.rule == SafetyRule::InsideFolder)
    decision.folder = FindFolder(path);
  return decision;
}

SearchDecision ExplainSearch(const QString& path)
{
  SearchDecision decision;
  decision.isScannable = Tavrik::Cleaner::IsPathScannable(path);
  if (!decision.isScannable)
    return decision;
  const QStringList folders = Tavrik::Cleaner::GetSystemLibraryPrefixes();
  const auto holds = [&path](const QString& folder)
  { return path == folder || path.startsWith(folder + dirSep); };
  const auto found = std::find_if(folders.begin(), folders.end(), holds);
  decision.rule = IsPathSafe(path) || found == folders.end() ? SearchRule::Safe : SearchRule::SystemLibrary;
  if (decision.rule == SearchRule::SystemLibrary)
    decision.folder = *found;
  return decision;
}

QString GetWord(SafetyRule rule)
{
  switch (rule)
  {
  case SafetyRule::Relative:
    return QStringLiteral("relative");
  case SafetyRule::ParentComponent:
    return QStringLiteral("parent-component");
  case SafetyRule::LanguageFolder:
    return QStringLiteral("language-folder");
  case SafetyRule::InsideFolder:
    return QStringLiteral("inside-folder");
  case SafetyRule::OnVolume:
    return QStringLiteral("on-volume");
  case SafetyRule::MissingOnVolume:
    return QStringLiteral("missing-on-volume");
  case SafetyRule::NoWritableVolume:
    return QStringLiteral("no-writable-volume");
  case SafetyRule::Elsewhere:
    break;
  }
  return QStringLiteral("elsewhere");
}

QString GetWord(SearchRule rule)
{
  switch (rule)
  {
  case SearchRule::Safe:
    return QStringLiteral("safe");
  case SearchRule::SystemLibrary:
    return QStringLiteral("system-library");
  case SearchRule::Elsewhere:
    break;
  }
  return QStringLiteral("elsewhere");
}

} // namespace Ostrel
