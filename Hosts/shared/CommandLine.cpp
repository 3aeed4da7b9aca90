#include "CommandLine.h"

#include "ExitCodes.h"
#include "Output.h"
#include "SafeText.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

namespace Ostrel
{
namespace
{

using Strings = std::vector<std::string>;

// Suggestions ----------------------------------------------------------------------------------------------

// Insertions, deletions, replacements and exchanges of neighbours that turn one word into the other.
std::size_t CountEdits(const std::string& one, const std::string& other)
{
  std::vector<std::vector<std::size_t>> edits(one.size() + 1, std::vector<std::size_t>(other.size() + 1));
  std::iota(edits.front().begin(), edits.front().end(), 0);
  for (std::size_t i = 1; i <= one.size(); ++i)
  {
    edits[i][0] = i;
    for (std::size_t j = 1; j <= other.size(); ++j)
    {
      const bool isSame = one[i - 1] == other[j - 1];
      edits[i][j] = std::min({edits[i - 1][j] + 1, edits[i][j - 1] + 1, edits[i - 1][j - 1] + !isSame});
      if (i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1])
        edits[i][j] = std::min(edits[i][j], edits[i - 2][j - 2] + 1);
    }
  }
  return edits.back().back();
}

// Empty when no candidate is near enough to be what was meant.
std::string Suggest(const std::string& word, const Strings& candidates)
{
  constexpr std::size_t longestWord = 100; // the cost grows with the product of both lengths
  if (word.size() > longestWord)
    return {};
  std::string nearest;
  std::size_t fewest = std::max<std::size_t>(1, word.size() / 3) + 1;
  for (const std::string& candidate : candidates)
  {
    const bool isAbbreviated = word.size() > 1 && candidate.compare(0, word.size(), word) == 0;
    const std::size_t edits = isAbbreviated ? 1 : CountEdits(word, candidate);
    if (edits < fewest)
    {
      fewest = edits;
      nearest = candidate;
    }
  }
  return nearest;
}

std::string Show(const std::string& word)
{
  return EscapeBytes(QByteArray::fromStdString(word)).toStdString();
}

// What is known at a place of the command line
// ---------------------------------------------------------------

Strings GetNames(const std::vector<const CLI::App*>& verbs)
{
  Strings names;
  for (const CLI::App* verb : verbs)
    names.push_back(verb->get_name());
  return names;
}

const CLI::App* FindVerb(const CLI::App& place, const std::string& name)
{
  for (const CLI::App* verb : GetVerbs(place))
    if (verb->get_name() == name)
      return verb;
  return nullptr;
}

// The option with this spelling, "--name" or "-n", of this verb or of those around it; null if there is none.
const CLI::Option* FindOption(const CLI::App& place, const std::string& spelling)
{
  for (const CLI::App* app = &place; app; app = app->get_parent())
  {
    const CLI::Option* option = app->get_option_no_throw(spelling);
    if (option && !(app != &place && option == app->get_version_ptr()))
      return option;
  }
  return nullptr;
}

bool HasOperands(const CLI::App& place)
{
  const std::vector<const CLI::Option*> options = place.get_options();
  return std::any_of(options.begin(), options.end(),
                     [](const CLI::Option* option) { return option->get_positional(); });
}

[[noreturn]] void Refuse(const std::string& message)
{
  throw CLI::ParseError(message, CLI::ExitCodes::ExtrasError);
}

[[noreturn]] void RefuseVerb(const CLI::App& place, const std::string& word)
{
  const std::string nearest = Suggest(word, GetNames(GetVerbs(place)));
  Refuse("unknown command \"" + Show(word) + '"' +
         (nearest.empty() ? "" : " (did you mean \"" + nearest + "\"?)"));
}

[[noreturn]] void RefuseOption(const CLI::App& place, const std::string& spelling)
{
  std::string nearest;
  if (spelling.compare(0, 2, "--") == 0)
  {
    Strings names;
    for (const CLI::App* app = &place; app; app = app->get_parent())
      for (const CLI::Option* option : GetShownOptions(*app))
        for (const std::string& name : option->get_lnames())
          if (FindOption(place, "--" + name))
            names.push_back(name);
    nearest = Suggest(spelling.substr(2), names);
  }
  Refuse("unknown option " + Show(spelling) + (nearest.empty() ? "" : " (did you mean --" + nearest + "?)") +
         (HasOperands(place) ? "; an argument that begins with a dash goes after --" : ""));
}

// The check ------------------------------------------------------------------------------------------------

// Whether the next word is the value of the option in this one.
bool CheckLong(const CLI::App& place, const std::string& word)
{
  const std::size_t equals = word.find('=');
  const std::string spelling = word.substr(0, equals);
  const CLI::Option* const option = FindOption(place, spelling);
  if (!option)
    RefuseOption(place, spelling);
  const bool takesValue = option->get_items_expected_max() > 0;
  if (takesValue && equals == word.size() - 1) // the parser would take the next word
    Refuse(spelling + " needs a value");
  return takesValue && equals == std::string::npos;
}

bool CheckShort(const CLI::App& place, const std::string& word)
{
  for (std::size_t at = 1; at < word.size(); ++at)
  {
    const CLI::Option* const option = FindOption(place, std::string("-") + word[at]);
    const bool isHelpAmongOthers = option && option->check_lname("help") && word.size() > 2;
    if (!option || isHelpAmongOthers)
      RefuseOption(place, word);
    if (option->get_items_expected_max() > 0)
      return at + 1 == word.size();
  }
  return false;
}

bool IsNumber(const std::string& word)
{
  return std::isdigit(static_cast<unsigned char>(word[1])) != 0;
}

void Check(const CLI::App& app, int argc, char** argv)
{
  const CLI::App* place = &app;
  for (int i = 1; i < argc; ++i)
  {
    const std::string word = argv[i];
    if (word == "--")
      return;
    bool isValueNext = false;
    if (word.size() > 2 && word.compare(0, 2, "--") == 0)
      isValueNext = CheckLong(*place, word);
    else if (word.size() > 1 && word[0] == '-' && !IsNumber(word))
      isValueNext = CheckShort(*place, word);
    else if (const CLI::App* const verb = FindVerb(*place, word))
      place = verb;
    else if (!GetVerbs(*place).empty())
      RefuseVerb(*place, word);
    i += isValueNext ? 1 : 0;
  }
}

} // namespace

std::vector<const CLI::App*> GetVerbs(const CLI::App& app)
{
  return app.get_subcommands([](const CLI::App* verb) { return !verb->get_name().empty(); });
}

std::vector<const CLI::Option*> GetShownOptions(const CLI::App& app)
{
  std::vector<const CLI::Option*> options = app.get_options(
      [](const CLI::Option* option) { return option->nonpositional() && !option->get_group().empty(); });
  for (const CLI::App* group :
       app.get_subcommands([](const CLI::App* verb) { return verb->get_name().empty(); }))
    for (const CLI::Option* option : GetShownOptions(*group))
      if (option != group->get_help_ptr()) // each group has one of its own
        options.push_back(option);
  return options;
}

void ParseCommandLine(CLI::App& app, int argc, char** argv)
{
  Check(app, argc, argv);
  app.parse(argc, argv);
}

int EndParsing(const CLI::App& app, const CLI::ParseError& end)
{
  std::ostringstream out;
  std::ostringstream err;
  const int code = app.exit(end, out, err);
  if (!err.str().empty())
  {
    WriteError(QString::fromStdString(app.get_name() + ": " + err.str()));
    return WrongUsage;
  }
  const int failure = WriteOutput(QByteArray::fromStdString(out.str()));
  return code != 0 ? code : failure;
}

} // namespace Ostrel
