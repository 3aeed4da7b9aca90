#pragma once

#include <QString>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

/** @file What the command lines of the programs have in common. */
namespace CLI
{
class App;
class Option;
} // namespace CLI

namespace Ostrel
{

/** Adds an option for a name on the bus: UTF-8 whatever the locale, and not empty. */
CLI::Option* AddName(CLI::App& app, const std::string& option, QString& name, const std::string& help);

/** Adds an option for the path of a file or a folder, which is handed to @p take each time it is given: UTF-8
 * whatever the locale, and not empty. */
CLI::Option* AddPath(CLI::App& app, const std::string& option, std::function<void(const QString&)> take,
                     const std::string& help);

/** Seconds, fractions allowed, within bounds of which the command line tells when they are broken. */
struct SecondsRange
{
  const char* what; ///< "a timeout", "an interval"
  double shortest;
  double longest;
};

CLI::Option* AddSeconds(CLI::App& app, const std::string& option, SecondsRange range,
                        std::function<void(std::chrono::milliseconds)> take, const std::string& help);

/** Adds --timeout, 1 ms to a week. */
CLI::Option* AddTimeout(CLI::App& app, std::optional<std::chrono::milliseconds>& timeout,
                        const std::string& help);

} // namespace Ostrel
