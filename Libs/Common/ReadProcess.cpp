#include <Common/ReadProcess.h>

#include <Common/Platform/ChildProcess.h>

#include <QByteArray>
#include <QDeadlineTimer>

namespace Tavrik::Cleaner
{

namespace
{

const int longestRun = 30000; // ms
const int longestEnd =
    1000; // ms that a killed tool may take to end; one that hangs in the system takes longer

QString ReadOutput(const QString& program, const QStringList& arguments, int wait)
{
  const QDeadlineTimer deadline(wait);
  Platform::ChildProcess tool;
  if (!tool.Start(program, arguments, deadline))
    return {};
  // A tool that reads its input would otherwise wait for it until its time is up.
  tool.CloseInput();
  if (!tool.WaitForEnd(deadline))
  {
    tool.Kill();
    tool.WaitForEnd(QDeadlineTimer(longestEnd));
  }
  // The conversion of the array as a whole ends at a NUL byte, that of its data and size would not.
  return QString::fromLocal8Bit(tool.GetOutput());
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
