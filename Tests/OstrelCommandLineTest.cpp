// What the programs do with their command lines, before any command runs.

#include "ExitCodes.h"
#include "Support/HostProcess.h"

#include <gtest/gtest.h>

#include <QDir>

#include <csignal>

using namespace Ostrel;

namespace
{

const QString ostrel = QStringLiteral(OSTREL);
const QString scheduler = QStringLiteral(OSTREL_SCHEDULER);

struct Mistake
{
  QString program;
  QStringList arguments;
  QByteArray message; // the beginning of the first line
};

TEST(CommandLine, NamesWhatItDoesNotKnowAndSuggestsTheNearest)
{
  const QList<Mistake> mistakes = {
      {ostrel, {"buss"}, "ostrel: unknown command \"buss\" (did you mean \"bus\"?)\n"},
      {ostrel, {"bus", "sned", "bob", "x"}, "ostrel: unknown command \"sned\" (did you mean \"send\"?)\n"},
      {ostrel, {"settings", "lst"}, "ostrel: unknown command \"lst\" (did you mean \"list\"?)\n"},
      {ostrel, {"melt\x1B"}, "ostrel: unknown command \"melt\\u001b\"\n"},
      {ostrel, {"ram", "purge", "--help"}, "ostrel: unknown command \"purge\"\n"},
      {ostrel, {"--verbos", "bus"}, "ostrel: unknown option --verbos (did you mean --verbose?)\n"},
      {ostrel,
       {"bus", "listen", "--contxt", "x"},
       "ostrel: unknown option --contxt (did you mean --context?)\n"},
      {ostrel,
       {"bus", "members", "--contxt=x"},
       "ostrel: unknown option --contxt (did you mean --context?)\n"},
      {ostrel, {"bus", "--json", "members"}, "ostrel: unknown option --json\n"},
      {ostrel,
       {"firewall", "edit", "--blok", "/a"},
       "ostrel: unknown option --blok (did you mean --block?)\n"},
      {ostrel, {"disk", "list", "-x"}, "ostrel: unknown option -x\n"},
      {ostrel, {"bus", "send", "bob", "--name=", "x"}, "ostrel: --name needs a value\n"},
      {scheduler,
       {"--intervall", "5"},
       "ostrel-scheduler: unknown option --intervall (did you mean --interval?)\n"},
  };
  for (const Mistake& mistake : mistakes)
  {
    const Outcome outcome = RunHost(mistake.program, mistake.arguments);
    EXPECT_EQ(outcome.code, WrongUsage) << mistake.message.toStdString();
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(outcome.err.startsWith(mistake.message)) << outcome.err.toStdString();
  }
}

TEST(CommandLine, NeverTakesATextThatBeginsWithADashForARequestOfHelp)
{
  for (const char* text : {"-hi", "-ih", "-hj", "-hh", "-jh", "-V", "-Vh", "--version"})
  {
    const Outcome outcome = RunHost(ostrel, {"bus", "send", "bob", text});
    EXPECT_EQ(outcome.code, WrongUsage) << text;
    EXPECT_EQ(outcome.out, "") << text;
    EXPECT_TRUE(outcome.err.startsWith(QByteArray("ostrel: unknown option ") + text))
        << outcome.err.toStdString();
    EXPECT_TRUE(outcome.err.contains("; an argument that begins with a dash goes after --\n"));
  }
}

TEST(CommandLine, TakesWhatFollowsTwoDashesAndValuesOfOptionsAsTheyAre)
{
  EXPECT_EQ(RunHost(ostrel, {"bus", "send", "--no-server", "bob", "--", "-hi"}).code, NoBus);
  EXPECT_EQ(RunHost(ostrel, {"bus", "send", "--no-server", "--name", "--help", "bob", "x"}).code, NoBus);
  EXPECT_EQ(RunHost(ostrel, {"bus", "send", "--no-server", "-n-h", "bob", "x"}).code, NoBus);
  EXPECT_EQ(RunHost(ostrel, {"bus", "send", "--no-server", "bob", "members"}).code, NoBus);
  EXPECT_EQ(RunHost(ostrel, {"size", "format", "-1500"}).out, "1.5 kB\n");
}

TEST(CommandLine, PrintsTheHelpOfTheCommandThatIsNamed)
{
  EXPECT_TRUE(RunHost(ostrel, {"ram", "clean", "--help"}).out.contains("Usage: ostrel ram clean"));
  EXPECT_TRUE(RunHost(ostrel, {"ram", "--help"}).out.contains("Usage: ostrel ram "));
  EXPECT_TRUE(RunHost(scheduler, {"-h"}).out.contains("Usage: ostrel-scheduler"));
}

// Standard output ------------------------------------------------------------------------------------------

const QList<QPair<QString, QStringList>> printing = {{ostrel, {"--version"}},
                                                     {ostrel, {"--version", "--verbose"}},
                                                     {ostrel, {"--help"}},
                                                     {ostrel, {"--completions", "zsh"}},
                                                     {ostrel, {"size", "format", "1000"}},
                                                     {ostrel, {"settings", "list"}},
                                                     {scheduler, {"--version"}},
                                                     {scheduler, {"--help"}}};

TEST(StandardOutput, ThatIsClosedIsAnError)
{
  for (const auto& line : printing)
  {
    const Outcome outcome = RunHost(QStringLiteral("/bin/sh"),
                                    QStringList{"-c", "exec \"$@\" >&-", "sh", line.first} + line.second);
    EXPECT_EQ(outcome.code, Failed) << line.second.join(' ').toStdString();
    EXPECT_TRUE(outcome.err.contains(": cannot write to the standard output: Bad file descriptor\n"))
        << outcome.err.toStdString();
  }
}

#ifdef __linux__
TEST(StandardOutput, ThatIsFullIsAnError)
{
  for (const auto& line : printing)
  {
    HostProcess process(line.first, line.second);
    process.setStandardOutputFile("/dev/full");
    process.Begin();
    EXPECT_EQ(process.Finish(), Failed) << line.second.join(' ').toStdString();
    EXPECT_TRUE(process.Err().contains(": cannot write to the standard output: No space left on device\n"))
        << process.Err().toStdString();
  }
}
#endif

TEST(StandardOutput, ThatIsClosedDoesNotMatterToWhatPrintsNothing)
{
  const Outcome outcome = RunHost(QStringLiteral("/bin/sh"),
                                  {"-c", "exec \"$@\" >&-", "sh", ostrel, "settings", "unset", "remind"});
  EXPECT_EQ(outcome.code, Done) << outcome.err.toStdString();
}

// The place of the socket
// ------------------------------------------------------------------------------------

class Place : public testing::Test
{
protected:
  void SetUp() override
  {
    ASSERT_TRUE(QDir().mkdir(work));
    ASSERT_TRUE(QDir().mkdir(temporary));
  }

  void TearDown() override
  {
    EXPECT_TRUE(QDir(work).entryList(everything).isEmpty()) << "a file was created in the current folder";
    QDir(work).removeRecursively();
    QDir(temporary).removeRecursively();
  }

  // In a current folder of its own.
  Outcome Run(const QString& program, const QStringList& arguments, const QString& folder)
  {
    HostProcess process(program, arguments);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", folder);
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(work);
    process.Begin();
    const int code = process.Finish();
    return {code, process.Out(), process.Err()};
  }

  void ExpectFromAll(int code, const QByteArray& message, const QString& folder)
  {
    const QList<QPair<QString, QStringList>> lines = {
        {ostrel, {"bus", "members"}},
        {ostrel, {"bus", "send", "bob", "x"}},
        {ostrel, {"bus", "listen", "--name", "bob", "--timeout", "20"}},
        {ostrel, {"bus", "wait", "bob", "--timeout", "20"}},
        {ostrel, {"notices"}},
        {ostrel, {"notices", "--follow", "--timeout", "20"}}};
    for (const auto& line : lines)
    {
      const Outcome outcome = Run(line.first, line.second, folder);
      EXPECT_EQ(outcome.code, code) << line.second.join(' ').toStdString();
      EXPECT_EQ(outcome.out, "");
      EXPECT_TRUE(outcome.err.contains(message)) << outcome.err.toStdString();
    }
  }

  const QDir::Filters everything = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
  const QString work = QDir::tempPath() + "/work";
  const QString temporary = QDir::tempPath() + "/t";
};

TEST_F(Place, IsMissingWithoutATemporaryFolder)
{
  const QString missing = QDir::tempPath() + "/missing";
  ExpectFromAll(FolderUnusable,
                ": the temporary folder " + missing.toUtf8() + " cannot be used: No such file or directory",
                missing);
}

TEST_F(Place, ThatIsMissingIsReportedByASchedulerThatGoesOn)
{
  HostProcess process(scheduler, {"--json", "--trash", work, "--applications", work});
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("TMPDIR", QDir::tempPath() + "/missing");
  process.setProcessEnvironment(environment);
  process.setWorkingDirectory(work);
  process.Begin();
  EXPECT_TRUE(process.WaitForError("ostrel-scheduler: the temporary folder "));
  EXPECT_FALSE(process.WaitForEvent({{"event", "looked"}}).isEmpty());
  process.Signal(SIGTERM);
  EXPECT_EQ(process.Finish(), EndedBySignal + SIGTERM);
}

TEST_F(Place, IsMissingInATemporaryFolderThatIsAFile)
{
  ExpectFromAll(FolderUnusable, ": the temporary folder /dev/null cannot be used: Not a directory",
                "/dev/null");
}

TEST_F(Place, MayHaveANameThatIsTooLong)
{
  const QString folder = temporary + '/' + QString(100, 'x');
  ASSERT_TRUE(QDir().mkdir(folder));
  ExpectFromAll(SocketNameTooLong, ": the name of the socket of the bus ostrel has ", folder);
  EXPECT_TRUE(QDir(folder).entryList(everything).isEmpty());
}

TEST_F(Place, MayBeTakenByAFolder)
{
  HostProcess server(ostrel, {"bus", "listen", "--json"});
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("TMPDIR", temporary);
  server.setProcessEnvironment(environment);
  server.Begin();
  EXPECT_FALSE(server.WaitForEvent({{"event", "ready"}}).isEmpty());
  const QStringList sockets = QDir(temporary).entryList(QDir::System);
  ASSERT_EQ(sockets.size(), 1);
  server.terminate();
  server.Finish();
  const QString folder = temporary + '/' + sockets.first();
  ASSERT_TRUE(QDir().mkdir(folder));
  ExpectFromAll(SocketBlocked,
                ": a folder is in the place of the socket of the bus ostrel: " + folder.toUtf8() +
                    "; remove it\n",
                temporary);
}

TEST_F(Place, OfTheLibraryIsNeverTheCurrentFolder)
{
  HostProcess participant(QStringLiteral(TAVRIK_PARTICIPANT), {"demo", "anna", "0"});
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("TMPDIR", QDir::tempPath() + "/missing");
  participant.setProcessEnvironment(environment);
  participant.setWorkingDirectory(work);
  participant.Begin();
  EXPECT_TRUE(participant.WaitForError("anna couldn't connect to the server"));
}

} // namespace
