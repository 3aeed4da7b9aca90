#include <Common/ReadProcess.h>

#include <Common/Platform/ChildProcess.h>

#include <QByteArray>

namespace Tavrik::Cleaner
{

namespace
{

const int longestRun = 30000; // ms

QString ReadOutput(const QString& program, const QStringList& arguments, int wait)
{
  Platform::ChildProcess process;
  process.start(program, arguments, QIODevice::ReadWrite);
  // A tool that reads its input would otherwise wait for it until its time is up.
  process.closeWriteChannel();
  process.waitForFinished(wait);
  // The conversion of the array as a whole ends at a NUL byte, that of its data and size would not.
  const QByteArray output = process.readAll();
  return QString::fromLocal8Bit(output);
}

} // namespace

QString ReadProcess(const QString& program, const QStringList& arguments)
{
  return ReadOutput(program, arguments, longestRun);
}

QString ReadProcess(const QString& program, const QString& a1)
{
  return ReadProcess(program, QStringList{a1});
}

QString ReadProcess(const QString& program, const QString& a1, const QString& a2)
{
  return ReadProcess(program, QStringList{a1, a2});
}

QString ReadProcess(const QString& program, const QString& a1, const QString& a2, const QString& a3)
{
  return ReadProcess(program, QStringList{a1, a2, a3});
}

} // namespace Tavrik::Cleaner
