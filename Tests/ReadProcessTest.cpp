#include <Common/ReadProcess.cpp> // NOLINT(bugprone-suspicious-include)

#include "Support/LogCapture.h"
#include "Support/ToolFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTextCodec>

#include <cerrno>
#include <csignal>
#include <sys/wait.h>
#include <thread>

using Tavrik::Cleaner::ReadProcess;
using testing::IsEmpty;

namespace
{

const bool hadApplicationAtLoadTime = QCoreApplication::instance() != nullptr;
const QString outputAtLoadTime = ReadProcess("printf", "%s-%s", "at", "load time");

const char* const printArguments = R"(for argument; do printf '<%s>' "$argument"; done)";

bool IsGone(pid_t pid)
{
  return kill(pid, 0) != 0 && errno == ESRCH;
}

class ReadProcessTest : public testing::Test
{
protected:
  void AddTool(const QByteArray& script) { tools.AddTool("tool", script); }
  QString Read(const QByteArray& script)
  {
    AddTool(script);
    return ReadProcess("tool", QStringList());
  }

  ToolFolder tools;
};

TEST_F(ReadProcessTest, EveryOverloadPassesItsArgumentsInOrder)
{
  AddTool(printArguments);
  EXPECT_EQ(ReadProcess("tool", QStringList()), "");
  EXPECT_EQ(ReadProcess("tool", "a"), "<a>");
  EXPECT_EQ(ReadProcess("tool", "a", "b"), "<a><b>");
  EXPECT_EQ(ReadProcess("tool", "a", "b", "c"), "<a><b><c>");
  EXPECT_EQ(ReadProcess("tool", QStringList{"a", "b", "c", "d"}), "<a><b><c><d>");
}

TEST_F(ReadProcessTest, ArgumentsArriveUnchangedWhateverTheyHold)
{
  AddTool(printArguments);
  const QStringList arguments = {"",    " ",         "two words", "-n", "--",         "\"quoted\"", "'",
                                 "a;b", "$HOME `x`", "*",         "|",  "line\nline", "\\",         "\u00e9"};
  EXPECT_EQ(ReadProcess("tool", arguments), "<" + arguments.join("><") + ">");
}

TEST_F(ReadProcessTest, MissingProgramYieldsAnEmptyTextAndNoLogLine)
{
  const LogCapture log;
  EXPECT_TRUE(ReadProcess("there-is-no-such-tool", "a").isEmpty());
  EXPECT_TRUE(ReadProcess("/there/is/no/such/tool", "a").isEmpty());
  EXPECT_TRUE(ReadProcess("", "a").isEmpty());
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(ReadProcessTest, WhatCannotBeExecutedYieldsAnEmptyText)
{
  tools.AddFile("plain", "#!/bin/sh\necho no\n");
  EXPECT_TRUE(ReadProcess(tools.FilePath("plain"), "a").isEmpty());
  EXPECT_TRUE(ReadProcess(tools.FilePath("."), "a").isEmpty());
}

TEST_F(ReadProcessTest, StandardErrorIsNeverRead)
{
  EXPECT_TRUE(Read("echo complaint >&2").isEmpty());
  EXPECT_EQ(Read("echo complaint >&2; echo answer"), "answer\n");
}

TEST_F(ReadProcessTest, FailingOrCrashingToolYieldsWhatItWrote)
{
  EXPECT_EQ(Read("echo answer; exit 7"), "answer\n");
  EXPECT_EQ(Read("echo answer; kill -SEGV $$"), "answer\n");
}

TEST_F(ReadProcessTest, TextIsNotTrimmedAndKeepsItsLineEnds)
{
  EXPECT_EQ(Read(R"(printf ' \n a \r\n\n')"), " \n a \r\n\n");
}

TEST_F(ReadProcessTest, TextIsCutBeforeTheFirstNulByte)
{
  EXPECT_EQ(Read(R"(printf 'before\0after\n')"), "before");
  EXPECT_EQ(Read(R"(printf '\0after')"), "");
}

TEST_F(ReadProcessTest, TextIsReadInTheEncodingOfTheLocale)
{
  QTextCodec* const former = QTextCodec::codecForLocale();
  QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
  const QString latin1 = Read(R"(printf '\351')");
  QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
  const QString utf8 = Read(R"(printf '\303\251')");
  QTextCodec::setCodecForLocale(former);
  EXPECT_EQ(latin1, QString::fromUtf8("é"));
  EXPECT_EQ(utf8, QString::fromUtf8("é"));
}

TEST_F(ReadProcessTest, OutputOfManyPipesFullArrivesWhole)
{
  const QString text = Read("head -c 3000000 /dev/zero | tr '\\0' x; echo end");
  EXPECT_EQ(text.size(), 3000004);
  EXPECT_EQ(text.count('x'), 3000000);
  EXPECT_TRUE(text.endsWith("xend\n"));
}

TEST_F(ReadProcessTest, ToolThatReadsItsInputFindsItEmptyAndDoesNotWait)
{
  QElapsedTimer timer;
  timer.start();
  EXPECT_EQ(Read("cat; echo end"), "end\n");
  EXPECT_LT(timer.elapsed(), 20000);
}

TEST_F(ReadProcessTest, ToolThatIgnoresItsInputIsNotDisturbedByItsEnd)
{
  EXPECT_EQ(Read("exec 0<&-; echo one; echo two"), "one\ntwo\n");
}

TEST_F(ReadProcessTest, ToolThatOutlivesTheWaitYieldsWhatItWroteByThenAndIsKilled)
{
  AddTool("echo $$; exec sleep 1000");
  QElapsedTimer timer;
  timer.start();
  const QString text = Tavrik::Cleaner::ReadOutput("tool", {}, 2000);
  EXPECT_GE(timer.elapsed(), 1900);
  EXPECT_LT(timer.elapsed(), 20000);
  ASSERT_TRUE(text.endsWith('\n'));
  ASSERT_GT(text.trimmed().toInt(), 0);
  EXPECT_TRUE(IsGone(text.trimmed().toInt()));
}

TEST_F(ReadProcessTest, LimitIsThirtySeconds)
{
  EXPECT_EQ(Tavrik::Cleaner::longestRun, 30000);
}

TEST_F(ReadProcessTest, ChildThatAToolLeavesBehindIsNotWaitedFor)
{
  QElapsedTimer timer;
  timer.start();
  const pid_t child = Read("sleep 1000 & echo $!").trimmed().toInt();
  EXPECT_LT(timer.elapsed(), 20000);
  ASSERT_GT(child, 0);
  EXPECT_EQ(kill(child, SIGKILL), 0);
}

TEST_F(ReadProcessTest, NoZombieIsLeftBehind)
{
  Read("exit 0");
  ReadProcess("there-is-no-such-tool", "a");
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

TEST_F(ReadProcessTest, MayRunOnAnyThreadAndOnSeveralAtOnce)
{
  AddTool("echo $1");
  QString first;
  QString second;
  std::thread one([&first] { first = ReadProcess("tool", "1"); });
  std::thread two([&second] { second = ReadProcess("tool", "2"); });
  one.join();
  two.join();
  EXPECT_EQ(first, "1\n");
  EXPECT_EQ(second, "2\n");
}

TEST(ReadProcess, WorksWhileLibrariesAreLoadedBeforeThereIsAnApplication)
{
  EXPECT_FALSE(hadApplicationAtLoadTime);
  EXPECT_EQ(outputAtLoadTime, "at-load time");
}

} // namespace
