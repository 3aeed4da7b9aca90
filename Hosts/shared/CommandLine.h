#pragma once

#include <CLI/CLI.hpp>

#include <vector>

/** @file Strict parsing of a program's command line, and the output of its help. */
namespace Ostrel
{

/** Returns the commands of @p app, without its groups of options. */
std::vector<const CLI::App*> GetVerbs(const CLI::App& app);

/** Returns the options of @p app that its help shows, those in groups of options included. */
std::vector<const CLI::Option*> GetShownOptions(const CLI::App& app);

/**
 * Parses the command line after a check that every command and every option of it is known where it stands.
 *
 * An unknown one is named, with the nearest known one as a suggestion. "-h" counts only by itself and
 * "--version" only in front of every command: a text that begins with a dash must not print the help
 * with success in place of what the command does.
 *
 * @throws CLI::ParseError as CLI::App::parse() does; also for help, version and any other early success.
 */
void ParseCommandLine(CLI::App& app, int argc, char** argv);

/**
 * Prints what @p end asks for: the help or the version on standard output, an error on standard error.
 *
 * @return Done, WrongUsage, or the exit code for a standard output that cannot be written.
 */
int EndParsing(const CLI::App& app, const CLI::ParseError& end);

} // namespace Ostrel
