#pragma once

#include "Command.h"

#include <CLI/CLI.hpp>

#include <QString>

#include <chrono>
#include <optional>

/** @file What the verbs' command lines have in common. */
namespace Ostrel
{

/** @return A verb of @p parent that does @p action. */
CLI::App* AddVerb(CLI::App& parent, const std::string& name, const std::string& help, Command& command,
                  const Command& action);

void AddTimeout(CLI::App& verb, std::optional<std::chrono::milliseconds>& timeout, const std::string& help);

void AddJson(CLI::App& verb, bool& json);

/** @return The text of an argument; no text, after the reason has been printed, where it is not UTF-8. */
std::optional<QString> ToText(const std::string& argument);

/**
 * @return The path of an argument; no text, after the reason has been printed, for one that the locale cannot
 *         express.
 */
std::optional<QString> ToPath(const std::string& argument);

} // namespace Ostrel
