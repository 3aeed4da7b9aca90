#pragma once

#include <QString>

/** @file Which of the library's rules decides about a path. */
namespace Ostrel
{

enum class SafetyRule
{
  Relative,         ///< It does not begin with "/".
  ParentComponent,  ///< A component is "..".
  LanguageFolder,   ///< It ends in ".lproj".
  InsideFolder,     ///< It is or lies in one of the folders that may be cleaned.
  OnVolume,         ///< It exists on a writable volume under /Volumes.
  MissingOnVolume,  ///< It would lie under /Volumes, but is not there.
  NoWritableVolume, ///< It lies under /Volumes, but on no writable volume.
  Elsewhere         ///< No rule admits it.
};

enum class SearchRule
{
  Safe,          ///< What may be removed may be searched.
  SystemLibrary, ///< It is or lies in one of the system's library folders.
  Elsewhere      ///< No rule admits it.
};

struct SafetyDecision
{
  SafetyRule rule = SafetyRule::Elsewhere;
  bool isSafe = false;
  QString folder; ///< Of InsideFolder.
};

struct SearchDecision
{
  SearchRule rule = SearchRule::Elsewhere;
  bool isScannable = false;
  QString folder; ///< Of SystemLibrary.
};

/**
 * Asks the library whether @p path may be removed and finds out why.
 *
 * The library tells no reasons. Those that lie in the text are read from the text; the folder is found by
 * asking for the folders around the path, the outermost first.
 */
SafetyDecision ExplainSafety(const QString& path);

/** The same for the question whether it may be searched. */
SearchDecision ExplainSearch(const QString& path);

/** @return The word for JSON. */
QString GetWord(SafetyRule rule);
QString GetWord(SearchRule rule);

} // namespace Ostrel
