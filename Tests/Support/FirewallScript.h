#pragma once

#include <QByteArray>
#include <QString>

#include <ostream>
#include <string>
#include <vector>

/** @file The script that runs as root, under every shell that may be a machine's /bin/sh. */

struct Shell
{
  const char* name;
  std::vector<const char*> words;
};

const Shell shells[] = {{"Dash", {"dash"}},
                        {"Bash", {"bash"}},
                        {"BashPosix", {"bash", "--posix"}},
                        {"Busybox", {"busybox", "sh"}},
                        {"Mksh", {"mksh"}},
                        {"Zsh", {"zsh", "--emulate", "sh"}}};

void PrintTo(const Shell& shell, std::ostream* stream);

/** @return The shell's path; empty where the machine has none. */
QString FindShell(const Shell& shell);

/** Writes the script @p source, as it is configured for the firewall tool at @p tool, to @p script. */
void ConfigureScript(const QString& source, const QString& tool, const QString& script);

struct ScriptOutcome
{
  int status = -1; ///< The exit code; -1 when a signal ended it.
  QByteArray output;
  QByteArray errors;
};

/**
 * Runs the script under @p shell, with its arguments byte by byte as they are.
 *
 * @param folder Where it runs; its outputs lie there meanwhile.
 */
ScriptOutcome RunScript(const Shell& shell, const QString& script, const std::vector<std::string>& arguments,
                        const QString& folder);
