// A process that serves the bus while its output is not read.

#include "ExitCodes.h"
#include "Support/HostProcess.h"
#include "Support/Programs.h"
#include "Support/PseudoTerminal.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <csignal>

using namespace Ostrel;

namespace
{

const QString ostrel = QStringLiteral(OSTREL);

Outcome RunBus(const QStringList& arguments)
{
  return RunHost(ostrel, QStringList{"bus"} + arguments);
}

/** The rest of the bus works while "server" serves it. */
void ExpectThatOthersTalk()
{
  HostProcess carol(ostrel, {"bus", "listen", "--json", "--name", "carol"});
  carol.Begin();
  EXPECT_FALSE(carol.WaitForEvent({{"event", "ready"}}).isEmpty());
  for (const char* text : {"one", "two", "three"})
  {
    const Outcome outcome = RunBus({"send", "carol", text, "--name", "dave"});
    EXPECT_EQ(outcome.code, Done) << outcome.err.toStdString();
    EXPECT_FALSE(carol.WaitForEvent({{"event", "message"}, {"text", text}}).isEmpty());
  }
  EXPECT_EQ(RunBus({"send", "server", "x"}).out, "OK\n");
}

/** A listener that serves, whose output goes to a process that has stopped itself. */
class UnreadPipe : public testing::Test
{
protected:
  void SetUp() override
  {
    server.setStandardOutputProcess(&reader);
    server.Begin();
    reader.start("sh",
                 {"-c", "echo stopped >&2; kill -STOP $$; exec grep --line-buffered -a -E 'dropped|after'"});
    ASSERT_TRUE(reader.waitForStarted(longWait));
    ASSERT_TRUE(reader.WaitForError("stopped\n"));
    ASSERT_TRUE(WaitFor([] { return RunBus({"members"}).out == "server\n"; }));
  }

  void TearDown() override
  {
    QFile::remove(payload);
    if (reader.state() != QProcess::NotRunning)
      reader.Signal(SIGCONT);
  }

  void Fill()
  {
    QFile file(payload);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(14 * 1024 * 1024, 'x'));
    file.close();
    for (int i = 0; i < 4; ++i)
    {
      const Outcome outcome = RunBus({"send", "server", "--file", payload, "--timeout", "60"});
      EXPECT_EQ(outcome.code, Done) << outcome.err.toStdString();
    }
  }

  const QString payload = QDir::tempPath() + "/payload";
  HostProcess reader{QString(), {}};
  HostProcess server{ostrel, {"bus", "listen", "--name", "server"}};
};

TEST_F(UnreadPipe, DoesNotStopTheBus)
{
  Fill();
  ExpectThatOthersTalk();
}

TEST_F(UnreadPipe, LosesLinesAndSaysHowManyOnceItIsReadAgain)
{
  Fill();
  reader.Signal(SIGCONT);
  ASSERT_TRUE(reader.WaitForOutput(
      [this] { return reader.Out().contains(" lines were dropped because the output was not read\n"); },
      "the number of dropped lines"));
  EXPECT_GT(reader.Out().left(reader.Out().indexOf(' ')).toInt(), 0) << reader.Out().toStdString();
  EXPECT_EQ(RunBus({"send", "server", "after", "--name", "alice"}).code, Done);
  EXPECT_TRUE(reader.WaitForOutput([this] { return reader.Out().endsWith("message from alice: after\n"); },
                                   "the later message"));
  server.Signal(SIGTERM);
  EXPECT_EQ(server.Finish(), EndedBySignal + SIGTERM);
  EXPECT_EQ(reader.Finish(), 0);
}

TEST_F(UnreadPipe, DoesNotKeepTheProcessFromEnding)
{
  Fill();
  server.Signal(SIGTERM);
  EXPECT_EQ(server.Finish(), EndedBySignal + SIGTERM);
  EXPECT_EQ(server.Err(), "ostrel: listening as server on the bus ostrel\n"
                          "ostrel: the end of the output was not read\n");
}

TEST(StoppedTerminal, DoesNotStopTheBus)
{
  // Verbose, so that the log is written to the terminal, too.
  PseudoTerminal terminal(80, ostrel, {"-v", "bus", "listen", "--name", "server"});
  ASSERT_TRUE(terminal.WaitForText("listening as server"));
  const QByteArray stop("\x13");
  const QByteArray resume("\x11");
  terminal.Type(stop);
  ExpectThatOthersTalk();
  terminal.Type(resume);
  EXPECT_TRUE(terminal.WaitForText("joined carol"));
  EXPECT_TRUE(terminal.WaitForText("message from"));
  terminal.Type("\x03");
  EXPECT_EQ(terminal.Finish(), EndedBySignal + SIGINT);
}

} // namespace
