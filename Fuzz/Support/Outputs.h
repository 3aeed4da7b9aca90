#pragma once

#include <Common/ReadProcess.h>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

/**
 * Stands in for the process reader in the targets that read tools: no process, the same text as of one that
 * wrote the bytes.
 */
namespace Outputs
{

using Tool = std::function<QByteArray(const QStringList& arguments)>;

/** What every tool writes from now on. Until then, while the library is loaded, there is none. */
void Set(const Tool& tool);

/** The parts of an input, separated by bytes of the value 0x1e. */
QList<QByteArray> Split(const std::uint8_t* data, std::size_t size);

/** As the process reader makes text of what a tool wrote. */
QString Text(const QByteArray& output);

} // namespace Outputs
