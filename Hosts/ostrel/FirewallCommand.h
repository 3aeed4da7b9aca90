#pragma once

#include "Command.h"

namespace CLI
{
class App;
}

namespace Ostrel
{

/** Adds "firewall" with its verbs; a verb that is chosen puts itself into @p command. */
void AddFirewallCommand(CLI::App& app, Command& command);

} // namespace Ostrel
