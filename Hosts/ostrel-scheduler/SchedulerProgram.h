#pragma once

namespace Ostrel
{

/** Reads the command line, watches and @return the exit code. */
int RunSchedulerProgram(int argc, char** argv);

} // namespace Ostrel
