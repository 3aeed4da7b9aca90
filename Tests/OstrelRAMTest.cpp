// Drives "ostrel ram" with purgers that are shell scripts beside a copy of the program.

#include "ExitCodes.h"
#include "Support/HostProcess.h"
#include "Support/Programs.h"
#include "Support/PseudoTerminal.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <csignal>
#include <sys/stat.h>

using namespace Ostrel;

namespace
{

class Ram : public testing::Test
{
protected:
  void SetUp() override
  {
    ASSERT_TRUE(QFile::copy(QStringLiteral(OSTREL), program));
    for (const char* name : {"COLUMNS", "NO_COLOR", "LC_ALL", "LANG", "LANGUAGE"})
      qunsetenv(name);
    qputenv("TERM", "xterm");
  }

  /** @param script What the purger does; `$here` is its folder. */
  void SetPurger(const QByteArray& script)
  {
    WriteProgram(folder.filePath("Tavrik Ostrel Purger"),
                 "here='" + QFile::encodeName(folder.path()) + "'\n" + script + '\n');
  }

  Outcome RunRam(const QStringList& arguments) { return RunHost(program, QStringList{"ram"} + arguments); }

  std::unique_ptr<HostProcess> Begin(const QStringList& arguments)
  {
    auto process = std::make_unique<HostProcess>(program, QStringList{"ram"} + arguments);
    process->Begin();
    return process;
  }

  /** Whether the purger that wrote its number into "pid" is gone. */
  bool IsPurgerGone()
  {
    const pid_t pid = ReadText(folder.filePath("pid")).trimmed().toInt();
    return pid > 0 && kill(pid, 0) != 0;
  }

  QTemporaryDir folder;
  QString program = folder.filePath("ostrel");
};

const QByteArray steady = "echo 'PROGRESS: 0%'; echo 'PROGRESS: 50%'; echo 'PROGRESS: 100%'; exec sleep 1";
const QByteArray hanging = "echo $$ >\"$here/pid\"; echo 'PROGRESS: 30%'; exec sleep 60";

TEST_F(Ram, StatusTellsTotalAndFree)
{
  const Outcome human = RunRam({"status"});
  EXPECT_EQ(human.code, Done);
  EXPECT_TRUE(human.out.startsWith("Memory  "));
  EXPECT_EQ(human.out.count('\n'), 2);
  const Outcome json = RunRam({"status", "--json"});
  const QJsonObject object = QJsonDocument::fromJson(json.out).object();
  EXPECT_EQ(object.keys(), (QStringList{"freeBytes", "totalBytes"}));
  EXPECT_GT(object["totalBytes"].toDouble(), object["freeBytes"].toDouble());
  EXPECT_GT(object["freeBytes"].toDouble(), 0);
  EXPECT_EQ(json.out.count('\n'), 1);
}

TEST_F(Ram, CleanPassesItsLimitToThePurger)
{
  SetPurger("echo \"${TAVRIK_PURGER_LIMIT-none}\" >>\"$here/limits\"\n" + steady);
  EXPECT_EQ(RunRam({"clean"}).code, Done);
  EXPECT_EQ(RunRam({"clean", "--limit", "134217728"}).code, Done);
  EXPECT_EQ(ReadText(folder.filePath("limits")), "none\n134217728\n");
  for (const char* limit : {"-1", "1.5", "1 MB", ""})
    EXPECT_EQ(RunRam({"clean", "--limit", limit}).code, WrongUsage) << limit;
}

TEST_F(Ram, CleanTellsProgressOnStandardErrorAndTheResultOnStandardOutput)
{
  SetPurger(steady);
  const Outcome outcome = RunRam({"clean"});
  EXPECT_EQ(outcome.code, Done);
  EXPECT_TRUE(outcome.out.startsWith("Freed ")) << outcome.out.toStdString();
  EXPECT_EQ(outcome.out.count('\n'), 1);
  EXPECT_EQ(outcome.err, "ostrel: Cleaning the memory: 0 %\nostrel: Cleaning the memory: 50 %\n"
                         "ostrel: Cleaning the memory: 100 %\n");
}

TEST_F(Ram, CleanInJsonIsOneEventPerLine)
{
  SetPurger(steady);
  const std::unique_ptr<HostProcess> process = Begin({"clean", "--json"});
  EXPECT_EQ(process->Finish(), Done);
  const QList<QJsonObject> events = process->Events();
  ASSERT_EQ(events.size(), 4);
  EXPECT_EQ(events[0].keys(), (QStringList{"event", "freeBytes", "time", "totalBytes"}));
  EXPECT_EQ(events[0]["event"].toString(), "started");
  EXPECT_EQ(events[1].keys(), (QStringList{"event", "percent", "time"}));
  EXPECT_EQ(events[1]["percent"].toInt(), 50);
  EXPECT_EQ(events[2]["percent"].toInt(), 100);
  EXPECT_EQ(events[3].keys(),
            (QStringList{"event", "freeBytes", "freedBytes", "reason", "time", "totalBytes"}));
  EXPECT_EQ(events[3]["event"].toString(), "finished");
  EXPECT_EQ(events[3]["reason"].toString(), "done");
  EXPECT_GE(events[3]["freedBytes"].toDouble(), 0);
  EXPECT_EQ(process->Err(), "");
}

TEST_F(Ram, CleanWithAPurgerThatDiesIsDone)
{
  SetPurger("echo 'PROGRESS: 30%'; kill -9 $$");
  const Outcome outcome = RunRam({"clean"});
  EXPECT_EQ(outcome.code, Done);
  EXPECT_TRUE(outcome.out.startsWith("Freed "));
}

TEST_F(Ram, CleanWithAPurgerThatCannotBeStartedEndsWithToolMissing)
{
  const QByteArray purger = QFile::encodeName(folder.filePath("Tavrik Ostrel Purger"));
  WriteText(purger, "#!/nonexistent\n");
  ASSERT_EQ(chmod(purger.constData(), 0755), 0);
  const Outcome outcome = RunRam({"clean", "--json"});
  EXPECT_EQ(outcome.code, ToolMissing);
  EXPECT_EQ(outcome.out, "");
  EXPECT_TRUE(outcome.err.contains("ostrel: the purger cannot be started: " + purger))
      << outcome.err.toStdString();
}

TEST_F(Ram, CleanWithAPurgerThatHangsEndsWhenItsTimeIsOver)
{
  SetPurger(hanging);
  const std::unique_ptr<HostProcess> process = Begin({"clean", "--json", "--timeout", "1"});
  EXPECT_EQ(process->Finish(), TimedOut);
  EXPECT_EQ(process->Events().last()["reason"].toString(), "timed-out");
  EXPECT_TRUE(IsPurgerGone());
  EXPECT_TRUE(RunRam({"clean", "--timeout", "0.3"}).out.startsWith("The time is over; "));
}

TEST_F(Ram, CleanStoppedByASignalTellsWhatWasFreed)
{
  SetPurger(hanging);
  for (const int number : {SIGINT, SIGTERM})
  {
    const std::unique_ptr<HostProcess> process = Begin({"clean", "--json"});
    process->WaitForEvent({{"event", "progress"}, {"percent", 30}});
    process->Signal(number);
    EXPECT_EQ(process->Finish(), EndedBySignal + number);
    EXPECT_EQ(process->Events().last()["event"].toString(), "finished");
    EXPECT_EQ(process->Events().last()["reason"].toString(), "stopped");
    EXPECT_EQ(process->Err(), "");
    EXPECT_TRUE(IsPurgerGone());
  }
}

TEST_F(Ram, CleanWhoseReaderHasGoneStopsThePurger)
{
  SetPurger("echo $$ >\"$here/pid\"; echo 'PROGRESS: 30%'; sleep 0.5; echo 'PROGRESS: 40%'; exec sleep 60");
  QProcess reader;
  HostProcess process(program, {"ram", "clean", "--json"});
  process.setStandardOutputProcess(&reader);
  process.Begin();
  reader.start("head", {"-n", "1"});
  ASSERT_TRUE(reader.waitForFinished(longWait));
  EXPECT_EQ(process.Finish(), OutputClosed);
  EXPECT_TRUE(IsPurgerGone());
}

TEST_F(Ram, CleanOnATerminalMovesABarAndTakesItAway)
{
  SetPurger(steady);
  for (const int columns : {80, 200, 30, 12})
  {
    PseudoTerminal terminal(columns, program, {"ram", "clean"});
    EXPECT_EQ(terminal.Finish(), Done);
    const QByteArray screen = terminal.Screen();
    EXPECT_TRUE(screen.contains(" 50%")) << columns;
    EXPECT_EQ(screen.contains("#-"), columns > 30) << screen.toStdString();
    const QByteArray last = screen.mid(screen.lastIndexOf("\r\x1B[K"));
    EXPECT_TRUE(last.startsWith("\r\x1B[KFreed ")) << last.toStdString();
    for (QByteArray drawn : screen.split('\r'))
    {
      drawn.replace("\x1B[K", "").replace("\x1B[1m", "").replace("\x1B[0m", "");
      EXPECT_LT(drawn.left(drawn.indexOf('\n')).size(), std::max(columns, 25)) << drawn.toStdString();
    }
  }
}

TEST_F(Ram, CleanOnADumbTerminalPrintsPlainLines)
{
  SetPurger(steady);
  qputenv("TERM", "dumb");
  PseudoTerminal terminal(80, program, {"ram", "clean"});
  EXPECT_EQ(terminal.Finish(), Done);
  EXPECT_FALSE(terminal.Screen().contains('\x1B'));
  EXPECT_TRUE(terminal.Screen().contains("ostrel: Cleaning the memory: 50 %\n"));
}

TEST_F(Ram, CtrlCOnATerminalStopsThePurgerAndTellsWhatWasFreed)
{
  SetPurger(hanging);
  PseudoTerminal terminal(80, program, {"ram", "clean"});
  ASSERT_TRUE(terminal.WaitForText(" 30%"));
  terminal.Type("\x03");
  EXPECT_EQ(terminal.Finish(), EndedBySignal + SIGINT);
  EXPECT_TRUE(terminal.Screen().contains("Stopped; ")) << terminal.Screen().toStdString();
  EXPECT_TRUE(IsPurgerGone());
}

TEST_F(Ram, CommandLineThatIsWrongEndsWithWrongUsage)
{
  for (const QStringList& wrong :
       {QStringList{}, QStringList{"clean", "surplus"}, QStringList{"clean", "--timeout", "0"},
        QStringList{"status", "--timeout", "1"}})
  {
    const Outcome outcome = RunRam(wrong);
    EXPECT_EQ(outcome.code, WrongUsage) << wrong.join(' ').toStdString();
    EXPECT_EQ(outcome.out, "");
  }
}

} // namespace
