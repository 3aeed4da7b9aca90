#pragma once

#include <QString>

#include <optional>

/** @file Values as the command line takes them: all that the programs print, in English and in the user's
 * language. */
namespace Ostrel
{

/** Parses on, true, yes, 1 or off, false, no, 0, or what the user's language has for on and off. */
std::optional<bool> ParseFlag(const QString& text);

/** Returns whether @p text stands for no value. */
bool IsNone(const QString& text);

/** Parses a number of bytes, or a number, a blank and "bytes", "KB", "kB", "MB", "GB" or "TB". */
std::optional<long long> ParseBytes(const QString& text);

/** Parses a number, a blank and "MHz" or "GHz". */
std::optional<long long> ParseHertz(const QString& text);

} // namespace Ostrel
