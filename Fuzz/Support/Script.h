#pragma once

#include <QByteArray>
#include <QVector>

#include <cstddef>
#include <cstdint>

/**
 * The input of a target that plays a conversation: steps, each with a kind, an argument and bytes. In the
 * file a step is the kind and the argument, one byte each, the number of bytes, least significant first, in
 * two, and the bytes. Whatever the fuzzer makes of such a file is a script, too: what is missing at its end
 * was never there.
 */
namespace Script
{

struct Step
{
  quint8 kind = 0;
  quint8 argument = 0;
  QByteArray bytes;
};

using Steps = QVector<Step>;

Steps Read(const std::uint8_t* data, std::size_t size);
QByteArray Write(const Steps& steps);

} // namespace Script
