#include "Completions.h"

#include "CommandLine.h"
#include "Output.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel
{
namespace
{

using Strings = std::vector<std::string>;

const char* const listMembers = "ostrel bus members --timeout 1 2>/dev/null";

enum class Values
{
  Any,
  Files,
  Folders,
  Members,
  Words
};

struct Value
{
  Values kind = Values::Any;
  Strings words;
};

struct Option
{
  Strings shortNames; // without dashes
  Strings longNames;
  std::string description;
  std::optional<Value> value; // none for a flag

  Strings Spellings() const
  {
    Strings spellings;
    for (const std::string& name : longNames)
      spellings.push_back("--" + name);
    for (const std::string& name : shortNames)
      spellings.push_back("-" + name);
    return spellings;
  }
};

// One place in the command line: the program itself or one of its verbs.
struct Place
{
  std::string path; // "ostrel bus send"
  std::vector<std::pair<std::string, std::string>> verbs;
  std::vector<Option> options;
  std::optional<Value> operand;
};

std::string Join(const Strings& parts, const std::string& between)
{
  std::string joined;
  for (const std::string& part : parts)
    joined += (joined.empty() ? "" : between) + part;
  return joined;
}

std::string Replace(std::string text, const std::string& what, const std::string& by)
{
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
    text.replace(at, what.size(), by);
  return text;
}

std::string Quote(const std::string& text)
{
  return "'" + Replace(text, "'", "'\\''") + "'";
}

std::string QuoteForFish(const std::string& text)
{
  return "'" + Replace(Replace(text, "\\", "\\\\"), "'", "\\'") + "'";
}

Strings SplitWords(const std::string& list)
{
  Strings words;
  for (std::size_t begin = 0; begin <= list.size();)
  {
    const std::size_t end = std::min(list.find(',', begin), list.size());
    words.push_back(list.substr(begin, end - begin));
    begin = end + 1;
  }
  return words;
}

Value GetValue(const std::string& type)
{
  const std::size_t open = type.find('{');
  const std::size_t close = type.find('}', open);
  if (open != std::string::npos && close != std::string::npos)
    return {Values::Words, SplitWords(type.substr(open + 1, close - open - 1))};
  const auto says = [&type](const char* word) { return type.find(word) != std::string::npos; };
  if (says("PATH") || says("FILE"))
    return {Values::Files, {}};
  if (says("FOLDER"))
    return {Values::Folders, {}};
  if (says("MEMBER") || says("RECIPIENT"))
    return {Values::Members, {}};
  return {};
}

Value GetValue(const CLI::Option& option)
{
  const std::string type = option.get_type_name();
  return GetValue(option.get_positional() ? option.get_name(true) + ' ' + type : type);
}

void AddOptions(const CLI::App& app, Place* place)
{
  for (const CLI::Option* option : app.get_options())
    if (option->get_positional() && !place->operand)
      place->operand = GetValue(*option);
  for (const CLI::Option* option : GetShownOptions(app))
  {
    Option entry{option->get_snames(), option->get_lnames(), option->get_description(), {}};
    if (option->get_items_expected_max() > 0)
      entry.value = GetValue(*option);
    place->options.push_back(entry);
  }
}

void AddPlaces(const CLI::App& app, const std::string& path, std::vector<Place>* places)
{
  Place place;
  place.path = path;
  AddOptions(app, &place);
  const std::vector<const CLI::App*> verbs = GetVerbs(app);
  for (const CLI::App* verb : verbs)
    place.verbs.emplace_back(verb->get_name(), verb->get_description());
  places->push_back(place);
  for (const CLI::App* verb : verbs)
    AddPlaces(*verb, path + ' ' + verb->get_name(), places);
}

std::vector<Place> GetPlaces(const CLI::App& app)
{
  std::vector<Place> places;
  AddPlaces(app, app.get_name(), &places);
  return places;
}

// The alternatives of a case: every place that is reached by one more word, 'ostrel bus' | 'ostrel bus send'.
std::string GetVerbPatterns(const std::vector<Place>& places, const std::string& between)
{
  Strings patterns;
  for (const Place& place : places)
    if (&place != &places.front())
      patterns.push_back(Quote(place.path));
  return patterns.empty() ? "''" : Join(patterns, between);
}

// The same for the word before the one that is completed: 'ostrel bus send:--file' | 'ostrel bus send:-f'.
std::string GetOptionPatterns(const Place& place, const Option& option, const std::string& between)
{
  Strings patterns;
  for (const std::string& spelling : option.Spellings())
    patterns.push_back(Quote(std::string(place.path).append(":").append(spelling)));
  return Join(patterns, between);
}

std::string GetFunctionName(const std::vector<Place>& places)
{
  return "_" + Replace(places.front().path, "-", "_");
}

// bash -----------------------------------------------------------------------------------------------------

std::string CompleteInBash(const Value& value)
{
  switch (value.kind)
  {
  case Values::Files:
    return "compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -f -- \"$word\"))";
  case Values::Folders:
    return "compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -d -- \"$word\"))";
  case Values::Members:
    return "while read -r name; do [ \"${name#\"$word\"}\" = \"$name\" ] && [ -n \"$word\" ] || "
           "COMPREPLY+=(\"$(printf %q \"$name\")\"); done < <(" +
           std::string(listMembers) + ")";
  case Values::Words:
    return "COMPREPLY=($(compgen -W " + Quote(Join(value.words, "\n")) + " -- \"$word\"))";
  case Values::Any:
    break;
  }
  return ":";
}

std::string MakeForBash(const std::vector<Place>& places)
{
  const std::string name = GetFunctionName(places);
  std::string script = "# Completes the command line of " + places.front().path + " in bash.\n\n" + name +
                       "()\n{\n"
                       "  local IFS=$'\\n' index name at=" +
                       Quote(places.front().path) +
                       "\n"
                       "  local word=${COMP_WORDS[COMP_CWORD]} former=${COMP_WORDS[COMP_CWORD - 1]}\n"
                       "  for ((index = 1; index < COMP_CWORD; ++index)); do\n"
                       "    case \"$at ${COMP_WORDS[index]}\" in\n      " +
                       GetVerbPatterns(places, " | ") +
                       ") at=\"$at ${COMP_WORDS[index]}\" ;;\n"
                       "    esac\n"
                       "  done\n"
                       "  COMPREPLY=()\n"
                       "  case \"$at:$former\" in\n";
  for (const Place& place : places)
    for (const Option& option : place.options)
      if (option.value)
      {
        script += "    " + GetOptionPatterns(place, option, " | ") + ")\n      " +
                  CompleteInBash(*option.value) + "\n      return\n      ;;\n";
      }
  script += "  esac\n"
            "  case \"$at:$word\" in\n";
  for (const Place& place : places)
  {
    Strings spellings;
    for (const Option& option : place.options)
      for (const std::string& spelling : option.Spellings())
        spellings.push_back(spelling);
    script += "    " + Quote(place.path + ":-") + "*) COMPREPLY=($(compgen -W " +
              Quote(Join(spellings, "\n")) + " -- \"$word\")) ;;\n";
    Strings verbs;
    for (const auto& verb : place.verbs)
      verbs.push_back(verb.first);
    const Value next = verbs.empty() ? place.operand.value_or(Value()) : Value{Values::Words, verbs};
    script += "    " + Quote(place.path + ":") + "*)\n      " + CompleteInBash(next) + "\n      ;;\n";
  }
  return script + "  esac\n}\n\ncomplete -F " + name + ' ' + places.front().path + "\n";
}

// zsh ------------------------------------------------------------------------------------------------------

std::string CompleteInZsh(const Value& value)
{
  switch (value.kind)
  {
  case Values::Files:
    return "_files";
  case Values::Folders:
    return "_files -/";
  case Values::Members:
    return "compadd -- ${(f)\"$(" + std::string(listMembers) + ")\"}";
  case Values::Words:
    return "compadd -- " + Join(value.words, " ");
  case Values::Any:
    break;
  }
  return ":";
}

std::string DescribeInZsh(const std::string& word, const std::string& description)
{
  return "      " + Quote(Replace(word, ":", "\\:") + ':' + description) + "\n";
}

std::string MakeForZsh(const std::vector<Place>& places)
{
  const std::string name = GetFunctionName(places);
  std::string script = "#compdef " + places.front().path +
                       "\n"
                       "# Completes the command line of " +
                       places.front().path + " in zsh.\n\n" + name +
                       "()\n{\n"
                       "  local index at=" +
                       Quote(places.front().path) +
                       "\n"
                       "  local -a entries\n"
                       "  for ((index = 2; index < CURRENT; ++index)); do\n"
                       "    case \"$at ${words[index]}\" in\n      (" +
                       GetVerbPatterns(places, "|") +
                       ") at=\"$at ${words[index]}\" ;;\n"
                       "    esac\n"
                       "  done\n"
                       "  case \"$at:${words[CURRENT - 1]}\" in\n";
  for (const Place& place : places)
    for (const Option& option : place.options)
      if (option.value)
      {
        script += "    (" + GetOptionPatterns(place, option, "|") + ") " + CompleteInZsh(*option.value) +
                  "; return ;;\n";
      }
  script += "  esac\n"
            "  case \"$at:${words[CURRENT]}\" in\n";
  for (const Place& place : places)
  {
    script += "    (" + Quote(place.path + ":-") + "*) entries=(\n";
    for (const Option& option : place.options)
      for (const std::string& spelling : option.Spellings())
        script += DescribeInZsh(spelling, option.description);
    script += "      ); _describe -o option entries ;;\n    (" + Quote(place.path + ":") + "*) ";
    if (place.verbs.empty())
      script += CompleteInZsh(place.operand.value_or(Value()));
    else
    {
      script += "entries=(\n";
      for (const auto& verb : place.verbs)
        script += DescribeInZsh(verb.first, verb.second);
      script += "      ); _describe verb entries";
    }
    script += " ;;\n";
  }
  return script + "  esac\n}\n\n" + name + " \"$@\"\n";
}

// fish -----------------------------------------------------------------------------------------------------

std::string CompleteInFish(const Value& value)
{
  switch (value.kind)
  {
  case Values::Files:
    return " -F";
  case Values::Folders:
    return " -a '(__fish_complete_directories)'";
  case Values::Members:
    return " -a '(" + std::string(listMembers) + ")'";
  case Values::Words:
    return " -a " + QuoteForFish(Join(value.words, " "));
  case Values::Any:
    break;
  }
  return "";
}

std::string MakeForFish(const std::vector<Place>& places)
{
  const std::string program = places.front().path;
  const std::string condition = "__complete" + GetFunctionName(places) + "_at";
  std::string script = "# Completes the command line of " + program + " in fish.\n\nfunction " + condition +
                       "\n"
                       "  set -l at " +
                       QuoteForFish(program) +
                       "\n"
                       "  for word in (commandline -opc)[2..-1]\n"
                       "    switch \"$at $word\"\n      case " +
                       GetVerbPatterns(places, " ") +
                       "\n"
                       "        set at \"$at $word\"\n"
                       "    end\n"
                       "  end\n"
                       "  test \"$at\" = $argv[1]\n"
                       "end\n\ncomplete -c " +
                       program + " -f\n";
  for (const Place& place : places)
  {
    std::string begin = "complete -c ";
    begin.append(program).append(" -n \"").append(condition).append(" ");
    begin.append(QuoteForFish(place.path)).append("\"");
    for (const auto& verb : place.verbs)
      script += begin + " -a " + verb.first + " -d " + QuoteForFish(verb.second) + "\n";
    if (place.verbs.empty() && place.operand && place.operand->kind != Values::Any)
      script += begin + CompleteInFish(*place.operand) + "\n";
    for (const Option& option : place.options)
    {
      script += begin;
      for (const std::string& name : option.longNames)
        script += " -l " + name;
      for (const std::string& name : option.shortNames)
        script += " -s " + name;
      if (option.value)
        script += " -r" + CompleteInFish(*option.value);
      script += " -d " + QuoteForFish(option.description) + "\n";
    }
  }
  return script;
}

} // namespace

std::string MakeCompletions(const CLI::App& app, const std::string& shell)
{
  const std::vector<Place> places = GetPlaces(app);
  if (shell == "bash")
    return MakeForBash(places);
  if (shell == "zsh")
    return MakeForZsh(places);
  return shell == "fish" ? MakeForFish(places) : std::string();
}

void AddCompletionsOption(CLI::App& app)
{
  app.add_option_function<std::string>(
         "--completions",
         [&app](const std::string& shell)
         {
           const std::string script = MakeCompletions(app, shell);
           if (script.empty())
             throw CLI::ValidationError("--completions", "there are completions for bash, zsh and fish");
           const int failure = WriteOutput(QByteArray::fromStdString(script));
           throw CLI::RuntimeError(failure);
         })
      ->trigger_on_parse()
      ->group("");
}

} // namespace Ostrel
