#pragma once

#include <QByteArray>
#include <QObject>

#include <cstdio>

/** @file The far end of the peers that answer calls. */
namespace Measure
{

const QByteArray payload(64, 'x');

/** Prints the line that a Role waits for. */
inline void SayReady()
{
  std::puts("ready");
  std::fflush(stdout);
}

/** Returns what it gets, over D-Bus or Qt Remote Objects. */
class Echo : public QObject
{
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "tavrik.bench.Echo")

public slots:
  QByteArray Answer(const QByteArray& data) { return data; }
};

} // namespace Measure
