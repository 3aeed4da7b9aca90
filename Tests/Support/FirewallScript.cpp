#include "Support/FirewallScript.h"

#include "Support/Processes.h"

#include "Support/Programs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QStandardPaths>

#include <cerrno>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

// From here to exec only what a child of a process with threads may call.
[[noreturn]] void BecomeShell(const std::vector<char*>& words, const char* folder, const char* output,
                              const char* errors)
{
  const int flags = O_WRONLY | O_CREAT | O_TRUNC;
  const int input = open("/dev/null", O_RDONLY);
  if (chdir(folder) != 0 || dup2(input, STDIN_FILENO) < 0 ||
      dup2(open(output, flags, 0600), STDOUT_FILENO) < 0 ||
      dup2(open(errors, flags, 0600), STDERR_FILENO) < 0)
    _exit(EXIT_FAILURE);
  execv(words.front(), words.data());
  _exit(EXIT_FAILURE);
}

int WaitForCode(pid_t child)
{
  const int status = WaitForEnd(child);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

QByteArray TakeText(const QByteArray& path)
{
  const QByteArray text = ReadText(QFile::decodeName(path));
  unlink(path.constData());
  return text;
}

} // namespace

void PrintTo(const Shell& shell, std::ostream* stream)
{
  *stream << shell.name;
}

QString FindShell(const Shell& shell)
{
  return QStandardPaths::findExecutable(QLatin1String(shell.words.front()));
}

void ConfigureScript(const QString& source, const QString& tool, const QString& script)
{
  QByteArray text = ReadText(source);
  ASSERT_THAT(text.toStdString(), testing::HasSubstr("'@TAVRIK_FIREWALL_TOOL@'"));
  WriteText(script, text.replace("@TAVRIK_FIREWALL_TOOL@", tool.toUtf8()));
}

ScriptOutcome RunScript(const Shell& shell, const QString& script, const std::vector<std::string>& arguments,
                        const QString& folder)
{
  const QByteArray program = QFile::encodeName(FindShell(shell));
  const QByteArray place = QFile::encodeName(folder);
  const QByteArray scriptName = QFile::encodeName(script);
  const QByteArray output = place + "/output";
  const QByteArray errors = place + "/errors";

  std::vector<const char*> words = {program.constData()};
  words.insert(words.end(), shell.words.begin() + 1, shell.words.end());
  words.push_back(scriptName.constData());
  for (const std::string& argument : arguments)
    words.push_back(argument.c_str());
  words.push_back(nullptr);
  std::vector<char*> mutableWords;
  for (const char* word : words)
    mutableWords.push_back(const_cast<char*>(word));

  const pid_t child = fork();
  if (child == 0)
    BecomeShell(mutableWords, place.constData(), output.constData(), errors.constData());
  ScriptOutcome outcome;
  outcome.status = child < 0 ? -1 : WaitForCode(child);
  outcome.output = TakeText(output);
  outcome.errors = TakeText(errors);
  return outcome;
}
