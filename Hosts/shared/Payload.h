#pragma once

#include <QByteArray>

#include <string>

/** @file The bytes of a message, from the command line, a file or standard input, unchanged. */
namespace Ostrel
{

/** The longest message that is sent; picked so that a wrong file name does not fill the memory. */
constexpr int longestPayload = 64 * 1024 * 1024;

/** Takes @p text. @return Done, or Failed after the reason has been printed. */
int TakePayload(const std::string& text, QByteArray& payload);

/**
 * Reads to the end. Blocks; a caught signal ends it.
 *
 * @param path Empty or "-" for standard input.
 * @return Done; Failed after the reason has been printed; EndedBySignal + number.
 */
int ReadPayload(const std::string& path, QByteArray& payload);

} // namespace Ostrel
