#include "Support/HostProcess.h"

#include "Support/Copies.h"
#include "Support/Programs.h"

#include <gtest/gtest.h>

#include <QJsonDocument>

#include <csignal>
#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace
{

bool HasFields(const QJsonObject& event, const QJsonObject& fields)
{
  for (auto field = fields.begin(); field != fields.end(); ++field)
    if (event.value(field.key()) != field.value())
      return false;
  return true;
}

} // namespace

HostProcess::HostProcess(const QString& program, const QStringList& arguments)
{
  setProgram(FindCopy(program));
  setArguments(arguments);
}

HostProcess::~HostProcess()
{
  if (state() == NotRunning)
    return;
  Signal(SIGCONT);
  terminate();
  if (!waitForFinished(5000))
    kill();
  waitForFinished(5000);
}

HostProcess& HostProcess::Begin()
{
  start();
  EXPECT_TRUE(waitForStarted(longWait));
  return *this;
}

void HostProcess::Signal(int number)
{
  // Without a process that would be everybody in the test's process group.
  ASSERT_NE(processId(), 0);
  ::kill(static_cast<pid_t>(processId()), number);
}

void HostProcess::Type(const QByteArray& lines)
{
  write(lines);
  while (bytesToWrite() > 0 && waitForBytesWritten(longWait))
    continue;
  EXPECT_EQ(bytesToWrite(), 0);
}

int HostProcess::Finish()
{
  closeWriteChannel();
  if (state() != NotRunning && !waitForFinished(longWait))
  {
    ADD_FAILURE() << "did not end: " << arguments().join(QLatin1Char(' ')).toStdString();
    return -1;
  }
  return exitStatus() == NormalExit ? exitCode() : -1;
}

QByteArray HostProcess::Out()
{
  out += readAllStandardOutput();
  return out;
}

QByteArray HostProcess::Err()
{
  err += readAllStandardError();
  return err;
}

bool HostProcess::WaitForLine(const QByteArray& line)
{
  return WaitForOutput([&] { return ("\n" + Out()).contains("\n" + line + "\n"); }, line);
}

bool HostProcess::WaitForError(const QByteArray& text)
{
  return WaitForOutput([&] { return Err().contains(text); }, text);
}

QList<QJsonObject> HostProcess::Events()
{
  QList<QJsonObject> events;
  for (const QByteArray& line : Out().split('\n'))
    if (!line.isEmpty())
      events.append(QJsonDocument::fromJson(line).object());
  return events;
}

QJsonObject HostProcess::WaitForEvent(const QJsonObject& fields)
{
  QJsonObject found;
  WaitForOutput(
      [&]
      {
        for (const QJsonObject& event : Events())
          if (found.isEmpty() && HasFields(event, fields))
            found = event;
        return !found.isEmpty();
      },
      QJsonDocument(fields).toJson(QJsonDocument::Compact));
  return found;
}

void HostProcess::setupChildProcess()
{
#ifdef __linux__
  prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
}

bool HostProcess::WaitForOutput(const std::function<bool()>& fact, const QByteArray& what)
{
  const bool isTrue = WaitFor(
      [&]
      {
        waitForReadyRead(1);
        return fact();
      });
  EXPECT_TRUE(isTrue) << "never came: " << what.toStdString() << "\nout: " << Out().toStdString()
                      << "\nerr: " << Err().toStdString();
  return isTrue;
}

Outcome RunHost(const QString& program, const QStringList& arguments, const QByteArray& input)
{
  HostProcess process(program, arguments);
  process.Begin();
  process.write(input);
  const int code = process.Finish();
  return {code, process.Out(), process.Err()};
}
