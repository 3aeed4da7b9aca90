#pragma once

/** @file What every program does before its real work. */
namespace Ostrel
{

/**
 * First of all in main(): gives the program its name, which PrintError() puts in front of errors, and fills
 * in standard descriptors that are missing: their use fails as that of a closed one does.
 */
void BeginProgram(const char* name);

/**
 * After the application object: takes the user's language, lets stand-ins be found, sends the library's log
 * to standard error, and seeds the pauses of elections.
 *
 * @param verbosity 0: errors only; 1: everything but details; more: those, too.
 */
void SetUpProgram(int verbosity);

} // namespace Ostrel
