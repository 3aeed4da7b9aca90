#pragma once

#include <QByteArray>
#include <QFile>
#include <QProcess>
#include <QString>

#include <algorithm>
#include <cstdio>
#include <vector>

/** @file What all measuring programs of the bus share. Processes are measured from outside, by /proc. */
namespace Measure
{

/** Processor time of a process in nanoseconds; -1 when it is not there. */
inline double ProcessorTime(qint64 pid)
{
  QFile file(QStringLiteral("/proc/%1/schedstat").arg(pid));
  if (!file.open(QIODevice::ReadOnly))
    return -1;
  return file.readAll().split(' ').first().toDouble();
}

/** How often a process went to sleep by itself, which is how often it was woken; -1 when it is not there. */
inline double Sleeps(qint64 pid)
{
  QFile file(QStringLiteral("/proc/%1/status").arg(pid));
  if (!file.open(QIODevice::ReadOnly))
    return -1;
  for (const QByteArray& line : file.readAll().split('\n'))
    if (line.startsWith("voluntary_ctxt_switches:"))
      return line.mid(line.indexOf(':') + 1).trimmed().toDouble();
  return -1;
}

/** Prints one figure as a line that Scripts/bench reads. */
inline void Print(const char* name, double value)
{
  std::printf("%s\t%.6g\n", name, value);
  std::fflush(stdout);
}

inline double Mean(const std::vector<double>& values)
{
  double sum = 0;
  for (const double value : values)
    sum += value;
  return values.empty() ? 0 : sum / static_cast<double>(values.size());
}

/** The value below which @p share of all lie. */
inline double Quantile(std::vector<double> values, double share)
{
  if (values.empty())
    return 0;
  std::sort(values.begin(), values.end());
  const auto index = static_cast<std::size_t>(share * static_cast<double>(values.size()));
  return values[std::min(index, values.size() - 1)];
}

/** A process of this program in another role, which ends when this goes. */
class Role
{
public:
  Role(const QString& program, const QStringList& arguments)
  {
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    process.waitForStarted();
  }

  ~Role()
  {
    process.kill();
    process.waitForFinished();
  }

  Role(const Role&) = delete;
  Role& operator=(const Role&) = delete;

  qint64 Pid() const { return process.processId(); }

  /** The next line that it prints, at most a minute from now; empty when none comes. */
  QByteArray Line()
  {
    while (!process.canReadLine() && process.waitForReadyRead(60000))
      continue;
    return process.canReadLine() ? process.readLine().trimmed() : QByteArray();
  }

private:
  QProcess process;
};

} // namespace Measure
