#include <Common/Platform/ChildProcess.h>

#include <Common/Platform/Spawn.h>

#include <QFile>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>

namespace Tavrik::Platform
{

namespace
{

const int longestStep = 20; // ms between two looks at whether the tool has ended

int ToTimeout(const QDeadlineTimer& deadline, int longest)
{
  const qint64 left = deadline.remainingTime();
  return left < 0 ? longest : static_cast<int>(std::min<qint64>(left, longest));
}

} // namespace

ChildProcess::~ChildProcess()
{
  Kill();
  if (pid > 0)
    Abandon(pid);
}

bool ChildProcess::Start(const QString& program, const QStringList& arguments, const QDeadlineTimer& deadline)
{
  const QString path = program.contains(QLatin1Char('/')) ? program : QStandardPaths::findExecutable(program);
  QList<QByteArray> texts = {QFile::encodeName(path)};
  for (const QString& argument : arguments)
    texts += argument.toLocal8Bit();
  Program tool;
  for (const QByteArray& text : texts)
    tool.arguments.push_back(text.constData());
  tool.arguments.push_back(nullptr);

  Descriptor toolInput;
  Descriptor toolOutput;
  const Descriptor toolError(open("/dev/null", O_WRONLY | O_CLOEXEC));
  if (path.isEmpty() || !toolError || !MakePipe(&toolInput, &input) || !MakePipe(&output, &toolOutput))
    return false;
  fcntl(output.Get(), F_SETFL, O_NONBLOCK);
  tool.input = toolInput.Get();
  tool.output = toolOutput.Get();
  tool.error = toolError.Get();
  pid_t started = -1;
  if (Spawn(tool, Parent::ThisProcess, static_cast<int>(deadline.remainingTime()), &started) != 0)
    return false;
  pid = started;
  return true;
}

void ChildProcess::Kill()
{
  if (IsRunning())
    kill(pid, SIGKILL);
}

bool ChildProcess::IsRunning()
{
  if (pid > 0 && HasEnded(pid))
    pid = -1;
  return pid > 0;
}

bool ChildProcess::WaitForEnd(const QDeadlineTimer& deadline)
{
  for (int step = 1;; step = std::min(2 * step, longestStep))
  {
    // In this order, so that nothing is missed of a tool that ends in between.
    const bool isRunning = IsRunning();
    Receive();
    if (!isRunning || deadline.hasExpired())
      return !isRunning;
    pollfd look = {output.Get(), POLLIN, 0};
    poll(&look, output ? 1 : 0, ToTimeout(deadline, step));
  }
}

void ChildProcess::Receive()
{
  char bytes[16384];
  ssize_t size = 1;
  while (output && size > 0)
  {
    size = Retry([&] { return read(output.Get(), bytes, sizeof(bytes)); });
    if (size > 0)
      received.append(bytes, static_cast<int>(size));
    else if (size == 0 || errno != EAGAIN)
      output.Close();
  }
}

QByteArray ChildProcess::TakeLine()
{
  QByteArray line = received.left(received.indexOf('\n') + 1);
  received.remove(0, line.size());
  return line;
}

} // namespace Tavrik::Platform
