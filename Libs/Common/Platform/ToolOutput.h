#pragma once

#include <QString>

/**
 * @file
 * Seam: what the tools of newer macOS systems print, in the layout of the older ones that the areas read.
 *
 * An output is taken for a newer one by its own marks alone, on every system; any other is returned as it is.
 * The functions are pure, and take time in proportion to the text.
 */
namespace Tavrik::Platform
{

/**
 * Since macOS 15 the firewall tool has other sentences, and lists applications without blank lines.
 *
 * @param question The tool's one argument, such as "--listapps".
 */
QString ToClassicFirewallAnswer(const QString& question, const QString& answer);

/**
 * Since macOS 10.12 the disk tool has other names for a volume's sizes.
 *
 * @param question The tool's first argument, such as "info".
 */
QString ToClassicDiskAnswer(const QString& question, const QString& answer);

} // namespace Tavrik::Platform
