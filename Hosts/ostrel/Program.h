#pragma once

namespace Ostrel
{

/** Reads the command line, does what it says and @return the exit code. */
int RunProgram(int argc, char** argv);

} // namespace Ostrel
