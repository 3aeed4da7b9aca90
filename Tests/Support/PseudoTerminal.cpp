#include "Support/PseudoTerminal.h"

#include "Support/Processes.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>

#include <csignal>
#include <poll.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>
#ifdef __APPLE__
#include <util.h>
#else
#include <pty.h>
#endif
#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace
{

constexpr int longestWait = 20000; // ms

} // namespace

PseudoTerminal::PseudoTerminal(int columns, const QString& program, const QStringList& arguments)
{
  std::vector<std::string> words{QFile::encodeName(program).toStdString()};
  for (const QString& argument : arguments)
    words.push_back(QFile::encodeName(argument).toStdString());
  std::vector<char*> pointers;
  for (std::string& word : words)
    pointers.push_back(word.data());
  pointers.push_back(nullptr);

  winsize size = {};
  size.ws_col = static_cast<unsigned short>(columns);
  size.ws_row = 50;
  pid = forkpty(&file, nullptr, nullptr, &size);
  if (pid == 0)
  {
#ifdef __linux__
    prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
    execv(pointers.front(), pointers.data());
    _exit(127);
  }
  EXPECT_GT(pid, 0);
}

PseudoTerminal::~PseudoTerminal()
{
  if (pid > 0)
  {
    kill(pid, SIGKILL);
    WaitForEnd(pid);
  }
  close(file);
}

void PseudoTerminal::Type(const QByteArray& keys)
{
  EXPECT_EQ(write(file, keys.constData(), static_cast<size_t>(keys.size())), keys.size());
}

bool PseudoTerminal::WaitForText(const QByteArray& text)
{
  QElapsedTimer waiting;
  for (waiting.start(); !written.contains(text) && !waiting.hasExpired(longestWait);)
    if (!Read())
      break;
  EXPECT_TRUE(written.contains(text)) << text.toStdString() << " never came: " << written.toStdString();
  return written.contains(text);
}

int PseudoTerminal::Finish()
{
  QElapsedTimer waiting;
  for (waiting.start(); Read() && !waiting.hasExpired(longestWait);)
    continue;
  // Its end of the terminal is closed; what is left is to be told how it ended.
  int status = 0;
  for (; waitpid(pid, &status, WNOHANG) == 0; usleep(1000))
    if (waiting.hasExpired(longestWait))
    {
      ADD_FAILURE() << "did not end: " << written.toStdString();
      return -1;
    }
  pid = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

QByteArray PseudoTerminal::Screen() const
{
  return QByteArray(written).replace("\r\n", "\n");
}

// False when no process has the other end open any more.
bool PseudoTerminal::Read()
{
  pollfd watched = {file, POLLIN, 0};
  if (poll(&watched, 1, 20) <= 0)
    return true;
  char bytes[4096];
  const ssize_t count = read(file, bytes, sizeof bytes);
  if (count > 0)
    written.append(bytes, static_cast<int>(count));
  return count > 0;
}
