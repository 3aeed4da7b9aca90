#pragma once

#include <sys/types.h>

#include <vector>

/** @file Starting programs. The process's own signal handlers are never touched. */
namespace Tavrik::Platform
{

struct Program
{
  std::vector<const char*> arguments;       ///< The file's path first, a null pointer last.
  const char* const* environment = nullptr; ///< Null: this process's own.
  int input = -1;
  int output = -1;
  int error = -1;              ///< -1: this process's own.
  void (*prepare)() = nullptr; ///< Called in the child, where only what fork() allows may be called.
};

enum class Parent
{
  ThisProcess, ///< It has to reap the program.
  Init         ///< The program leaves no zombie here.
};

/**
 * Starts a program and waits until it runs.
 *
 * @param timeout In milliseconds; -1 for no limit. A program that does not run by then is killed.
 * @param pid     Receives the program's id, when this process is its parent.
 * @return 0, or the error number that says why the program does not run.
 */
int Spawn(const Program& program, Parent parent, int timeout, pid_t* pid);

/** @return Whether the child has ended; it is reaped then. So has one that this process has reaped elsewhere.
 */
bool HasEnded(pid_t child);

/** Leaves a child to be reaped by a later call of Spawn() or ReapAbandoned(). */
void Abandon(pid_t child);

void ReapAbandoned();

} // namespace Tavrik::Platform
