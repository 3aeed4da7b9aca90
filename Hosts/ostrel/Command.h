#pragma once

#include <functional>

namespace Ostrel
{

class Signals;

/** What the command line asked for; empty when it asked for nothing that is left to do. Returns the exit
 * code. */
using Command = std::function<int(Signals&)>;

} // namespace Ostrel
