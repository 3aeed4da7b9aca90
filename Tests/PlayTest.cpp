// Runs the demonstration with programs that break in one step, by themselves or because of how they are
// called.

#include "Support/HostProcess.h"
#include "Support/Programs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include <string>

using testing::HasSubstr;
using testing::Not;

namespace
{

class PlayTest : public testing::Test
{
protected:
  // Calls $real, the program, unless @p broken, a shell's case pattern with its commands, matches the command
  // line.
  Outcome Play(const QByteArray& broken, const QStringList& options = {})
  {
    WriteProgram(ostrel, "real='" + QByteArray(OSTREL).replace('\'', "'\\''") + "'\ncase \"$*\" in\n" +
                             broken + " ;;\nesac\nexec \"$real\" \"$@\"\n");
    return RunHost(QStringLiteral(TAVRIK_PLAY),
                   options + QStringList{ostrel, QStringLiteral(OSTREL_SCHEDULER)});
  }

  // What is printed from the failure on.
  static std::string FailureIn(const Outcome& outcome)
  {
    return outcome.err.mid(outcome.err.indexOf("FAILED")).toStdString();
  }

  const QTemporaryDir folder;
  const QString ostrel = folder.filePath(QStringLiteral("ostrel"));
};

} // namespace

TEST_F(PlayTest, ReportsAParticipantThatEndsWithItsErrorAndNoOtherLog)
{
  const Outcome outcome = Play("*'--name bob'*) echo 'ostrel: no room' >&2; exit 9");
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(FailureIn(outcome), "FAILED  bob ended with 9\nostrel: no room\n"
                                "With --verbose the logs of all processes follow here.\n");
  EXPECT_THAT(outcome.out.toStdString(), HasSubstr("has opened the bus"));
}

TEST_F(PlayTest, ReportsAParticipantThatIsKilled)
{
  const Outcome outcome = Play("*'--name carol'*) kill -KILL $$");
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(FailureIn(outcome), HasSubstr("FAILED  carol ended with 137\n"));
}

TEST_F(PlayTest, ReportsAParticipantThatIsKilledWhileItTalks)
{
  const Outcome outcome =
      Play("*'--name carol'*) \"$real\" \"$@\" <&0 & sleep 1; kill -KILL $!; wait $!; exit");
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(FailureIn(outcome), HasSubstr("FAILED  carol ended with 137\n"));
}

TEST_F(PlayTest, ShowsTheOtherLogsAfterTheErrorWhenVerbose)
{
  const Outcome outcome = Play("*'--name bob'*) echo 'ostrel: no room' >&2; exit 9", {"--verbose"});
  EXPECT_EQ(outcome.code, 1);
  const std::string failure = FailureIn(outcome);
  EXPECT_THAT(failure, HasSubstr("FAILED  bob ended with 9\nostrel: no room\n\n--- alice.json\n"));
  EXPECT_THAT(failure, Not(HasSubstr("--- bob.err")));
}

TEST_F(PlayTest, ReportsACommandThatFailsWithItsError)
{
  const Outcome outcome = Play("'settings get watch-ram') echo 'ostrel: no settings' >&2; exit 12");
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(FailureIn(outcome),
              HasSubstr("FAILED  reading watch-ram ended with 12\nostrel: no settings\n"));
}

TEST_F(PlayTest, LimitsThePurge)
{
  const Outcome outcome = Play("'ram clean'*) echo \"$*\" >&2; exit 1");
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(FailureIn(outcome), HasSubstr("FAILED  ram clean ended with 1\nram clean --limit 67108864 "));
}

TEST_F(PlayTest, PrintsTheCommandThatPurgesWithoutALimitAndThatTheFirewallIsAStandIn)
{
  const Outcome outcome = Play("'firewall status') echo 'no firewall' >&2; exit 1");
  EXPECT_THAT(FailureIn(outcome), HasSubstr("ended with 1\nno firewall\n"));
  EXPECT_THAT(outcome.out.toStdString(),
              HasSubstr("without a limit: " + ostrel.toStdString() + " ram clean"));
  EXPECT_THAT(outcome.out.toStdString(), HasSubstr("filters nothing"));
}
