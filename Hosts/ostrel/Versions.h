#pragma once

namespace Ostrel
{

/** Prints the versions of what the program stands on and where its tools are. @return The exit code. */
int PrintVersions();

} // namespace Ostrel
