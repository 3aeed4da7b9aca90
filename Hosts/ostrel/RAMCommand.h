#pragma once

#include "Command.h"

namespace CLI
{
class App;
}

namespace Ostrel
{

/** Adds "ram" with its verbs to @p app. Parsing a command line that names one stores it in @p command. */
void AddRAMCommand(CLI::App& app, Command& command);

} // namespace Ostrel
