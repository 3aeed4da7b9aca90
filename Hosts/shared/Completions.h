#pragma once

#include <string>

namespace CLI
{
class App;
}

/** @file Completion of a program's command line in the user's shell. */
namespace Ostrel
{

/**
 * Adds the option "--completions SHELL", which prints what MakeCompletions() makes and ends the parsing with
 * success. It is not in the help: packages are its users. After everything else has been added to @p app.
 */
void AddCompletionsOption(CLI::App& app);

/**
 * @return The script that completes the command line of @p app, which needs a name; empty when @p shell is
 * not "bash", "zsh" or "fish".
 *
 * What can stand for a value is told by the type names: PATH or FILE, FOLDER, a list of words in braces, and
 * MEMBER or RECIPIENT for who is on the bus.
 */
std::string MakeCompletions(const CLI::App& app, const std::string& shell);

} // namespace Ostrel
