#pragma once

#include "Command.h"

namespace CLI
{
class App;
}

namespace Ostrel
{

/** Adds "notices": what the scheduler has to tell. @p command is set when the command line asks for it. */
void AddNoticesCommand(CLI::App& app, Command& command);

} // namespace Ostrel
