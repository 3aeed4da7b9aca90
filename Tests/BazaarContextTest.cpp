// Contexts of one process: the interface, its listeners, and what they may do.

#include <Common/Bazaar.h>

#include "Support/LogCapture.h"
#include "Support/Peer.h"
#include "Support/Processes.h"
#include "Support/Recorder.h"
#include "Support/Spin.h"
#include "Support/Wire.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>

#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Tavrik::Bazaar;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace
{

const QString bus = QStringLiteral("demo");

struct Guest
{
  explicit Guest(const QString& name, int flags = 0, const QString& contextName = bus)
      : recorder(std::make_shared<Recorder>()),
        context(std::make_unique<Context>(contextName, name, recorder, flags))
  {
  }

  bool Sees(const std::string& event, int limit = 20000)
  {
    return SpinUntil([&] { return recorder->Has(event); }, limit);
  }

  std::shared_ptr<Recorder> recorder;
  std::unique_ptr<Context> context;
};

QStringList Names(const QList<QString>& list)
{
  return QStringList(list);
}

bool AreMembers(const std::vector<Guest*>& guests, const QStringList& names)
{
  return SpinUntil(
      [&]
      {
        for (const Guest* guest : guests)
          if (Names(guest->context->Members()) != names)
            return false;
        return true;
      });
}

TEST(ErrorText, IsTheWireWord)
{
  EXPECT_EQ(GetErrorString(NoError), "OK");
  EXPECT_EQ(GetErrorString(ErrorNotSent), "NOT SENT");
  EXPECT_EQ(GetErrorString(ErrorNotWritten), "NOT WRITTEN");
  EXPECT_EQ(GetErrorString(ErrorNoRecipient), "NO RECIPIENT");
}

TEST(ErrorText, OfOneAndOfSevenIsUnknown)
{
  EXPECT_EQ(GetErrorString(ErrorUnknown), "UNKNOWN");
  EXPECT_EQ(GetErrorString(static_cast<Error>(7)), "UNKNOWN");
}

TEST(FirstParticipant, BecomesTheServerAndIsAdmittedUnderItsOwnName)
{
  const LogCapture log;
  Guest anna(QStringLiteral("anna"));
  EXPECT_TRUE(anna.context->WaitMember(QStringLiteral("anna"), 5000));
  EXPECT_EQ(Names(anna.context->Members()), QStringList{"anna"});
  EXPECT_TRUE(QFile::exists(Wire::ServerName(bus)));
  ASSERT_EQ(log.Infos().size(), 1u);
  EXPECT_THAT(log.Infos().front(), testing::MatchesRegex("anna has connected to a server \\(0x[0-9a-f]+\\)"));
}

TEST(FirstParticipant, NeverReportsItselfAsJoined)
{
  Guest anna(QStringLiteral("anna"));
  Guest ben(QStringLiteral("ben"));
  ASSERT_TRUE(anna.Sees("joined ben"));
  SpinFor(400);
  EXPECT_FALSE(anna.recorder->Has("joined anna"));
  EXPECT_THAT(ben.recorder->Of("joined"), ElementsAre("joined anna", "joined ben"));
}

TEST(FirstParticipant, LeavesNoSocketBehind)
{
  {
    const Guest anna(QStringLiteral("anna"));
  }
  EXPECT_FALSE(QFile::exists(Wire::ServerName(bus)));
}

TEST(Socket, IsItsUsersAloneWhateverTheUmask)
{
  for (const mode_t mask : {0u, 0022u, 0777u})
  {
    const mode_t previous = umask(mask);
    {
      const Guest anna(QStringLiteral("anna"));
      struct stat status = {};
      EXPECT_EQ(stat(qPrintable(Wire::ServerName(bus)), &status), 0);
      EXPECT_EQ(status.st_mode & 07777u, 0600u);
      EXPECT_EQ(stat(qPrintable(Wire::ServerName(bus) + ".lock"), &status), 0);
      EXPECT_EQ(status.st_mode & 07777u, 0600u);
    }
    EXPECT_EQ(umask(previous), mask);
  }
}

TEST(LockFile, IsNeverFollowedThroughALink)
{
  const QString lock = Wire::ServerName(bus) + ".lock";
  const QString victim = Wire::ServerName(bus) + ".victim.lock";
  QFile::remove(lock);
  ASSERT_EQ(symlink(qPrintable(victim), qPrintable(lock)), 0);
  {
    Guest anna(QStringLiteral("anna"));
    EXPECT_TRUE(anna.context->WaitMember(QStringLiteral("anna"), 5000));
  }
  EXPECT_FALSE(QFile::exists(victim));
  QFile::remove(lock);
}

TEST(LockFile, HeldByAnotherDelaysTheStartButNeverPreventsIt)
{
  const QString lock = Wire::ServerName(bus) + ".lock";
  const pid_t holder = fork();
  if (holder == 0)
  {
    const int file = open(qPrintable(lock), O_RDWR | O_CREAT, 0600);
    if (file < 0 || flock(file, LOCK_EX) != 0)
      _exit(1);
    mkfifo(qPrintable(lock + ".held.lock"), 0600);
    pause();
    _exit(0);
  }
  ASSERT_TRUE(SpinUntil([&] { return QFileInfo::exists(lock + ".held.lock"); }));
  {
    Guest anna(QStringLiteral("anna"));
    EXPECT_TRUE(anna.context->WaitMember(QStringLiteral("anna"), 5000));
  }
  kill(holder, SIGKILL);
  WaitForEnd(holder);
}

TEST(Names, TwoClientsOfOneContextInOneProcessBothWork)
{
  Guest anna(QStringLiteral("anna"));
  Guest ben(QStringLiteral("ben"));
  EXPECT_TRUE(AreMembers({&anna, &ben}, {"anna", "ben"}));
}

TEST(Names, TheSamePairTwiceInOneProcessIsRefusedAndNeverJoins)
{
  Guest anna(QStringLiteral("anna"));
  const LogCapture log;
  const Guest again(QStringLiteral("anna"));
  EXPECT_THAT(log.Errors(), ElementsAre("The context name demo is already in use with the client name anna"));
  SpinFor(500);
  EXPECT_THAT(again.context->Members(), IsEmpty());
  EXPECT_EQ(log.Errors().size(), 1u);
}

TEST(Names, ThatDifferAfterAZeroByteAreTwo)
{
  Guest anna(QStringLiteral("anna"));
  const QString longer = QStringLiteral("anna") + QChar(0) + QStringLiteral("b");
  const LogCapture log;
  Guest other(longer);
  EXPECT_TRUE(SpinUntil([&] { return anna.context->HasMember(longer) && other.context->HasMember(longer); }));
  EXPECT_THAT(log.Errors(), IsEmpty());
  EXPECT_THAT(other.context->Members(), ElementsAre(QStringLiteral("anna"), longer));
  const Guest again(longer);
  EXPECT_THAT(log.Errors(), ElementsAre("The context name demo is already in use with the client name "
                                        "anna\\x00b"));
}

TEST(Names, ThatDifferInAByteOrderMarkAreTwo)
{
  Guest anna(QStringLiteral("anna"));
  const QString marked = QChar(QChar::ByteOrderMark) + QStringLiteral("anna");
  const LogCapture log;
  Guest other(marked);
  EXPECT_TRUE(SpinUntil([&] { return anna.context->HasMember(marked); }));
  EXPECT_THAT(log.Errors(), IsEmpty());
  EXPECT_THAT(other.context->Members(), ElementsAre(QStringLiteral("anna"), marked));
}

TEST(Names, ThePairIsFreeAgainOnceItsContextHasGone)
{
  {
    const Guest anna(QStringLiteral("anna"));
  }
  const LogCapture log;
  Guest anna(QStringLiteral("anna"));
  EXPECT_TRUE(anna.context->WaitMember(QStringLiteral("anna"), 5000));
  EXPECT_THAT(log.Errors(), IsEmpty());
}

TEST(Names, DestroyingARefusedDuplicateDoesNotFreeTheLivingOnesName)
{
  const Guest anna(QStringLiteral("anna"));
  {
    const Guest again(QStringLiteral("anna"));
  }
  const LogCapture log;
  {
    const Guest again(QStringLiteral("anna"));
  }
  EXPECT_EQ(log.Errors().size(), 1u);
}

TEST(Names, AreComparedCaseSensitivelyAndByTheirBytes)
{
  Guest anna(QStringLiteral("anna"));
  Guest capital(QStringLiteral("Anna"));
  ASSERT_TRUE(AreMembers({&anna, &capital}, {"Anna", "anna"}));
  EXPECT_FALSE(anna.context->HasMember(QStringLiteral("ANNA")));
}

TEST(Names, MayBeEmptyAndMayBeAnyText)
{
  Guest empty(QString(), 0, QString());
  Guest other(QStringLiteral("zoë ☃ 名"), 0, QString());
  EXPECT_TRUE(AreMembers({&empty, &other}, {"", "zoë ☃ 名"}));
  empty.context->Say(QStringLiteral("zoë ☃ 名"), "hi");
  EXPECT_TRUE(other.Sees("message  hi"));
}

TEST(Members, AreListedInByteOrder)
{
  Guest b(QStringLiteral("b"));
  Guest umlaut(QStringLiteral("ä"));
  Guest a(QStringLiteral("a"));
  Guest capital(QStringLiteral("Z"));
  EXPECT_TRUE(AreMembers({&a, &b, &umlaut, &capital}, {"Z", "a", "b", "ä"}));
}

TEST(Say, CountsFromOneBeforeThereIsAConnection)
{
  const Guest alone(QStringLiteral("alone"), NoServer);
  EXPECT_EQ(alone.context->Say(QStringLiteral("x"), "1"), 1);
  EXPECT_EQ(alone.context->Say(QStringLiteral("x"), "2"), 2);
  EXPECT_EQ(alone.context->Say(QStringLiteral("x"), "3"), 3);
}

TEST(Say, RightAfterConstructionWritesNothingFor300Milliseconds)
{
  Guest anna(QStringLiteral("anna"));
  QElapsedTimer sinceConnection;
  sinceConnection.start();
  const Guest ben(QStringLiteral("ben"));
  anna.context->Say(QStringLiteral("anna"), "early");
  ASSERT_TRUE(anna.Sees("message anna early"));
  // The connection is a little older than the end of its constructor.
  EXPECT_GE(sinceConnection.elapsed(), 280);
}

TEST(Say, ReachesItsRecipientAndBringsTheSenderAResult)
{
  Guest anna(QStringLiteral("anna"));
  Guest ben(QStringLiteral("ben"));
  const QByteArray data("bytes\0of\xff"
                        "any kind",
                        18);
  EXPECT_EQ(ben.context->Say(QStringLiteral("anna"), data), 1);
  ASSERT_TRUE(ben.Sees("result 1 OK"));
  EXPECT_TRUE(anna.Sees("message ben " + data.toStdString()));
}

TEST(Say, ToNobodyBringsNoRecipientWithItsOwnId)
{
  Guest anna(QStringLiteral("anna"));
  Guest ben(QStringLiteral("ben"));
  ben.context->Say(QStringLiteral("anna"), "1");
  ben.context->Say(QStringLiteral("nobody"), "2");
  EXPECT_TRUE(ben.Sees("result 2 NO RECIPIENT"));
  EXPECT_TRUE(ben.Sees("result 1 OK"));
}

TEST(Say, ToOneselfWorksInTheServingProcessAndOutsideIt)
{
  Guest anna(QStringLiteral("anna"));
  Guest ben(QStringLiteral("ben"));
  anna.context->Say(QStringLiteral("anna"), "echo");
  ben.context->Say(QStringLiteral("ben"), "echo");
  EXPECT_TRUE(anna.Sees("message anna echo"));
  EXPECT_TRUE(ben.Sees("message ben echo"));
  EXPECT_TRUE(anna.Sees("result 1 OK"));
  EXPECT_TRUE(ben.Sees("result 1 OK"));
}

TEST(Say, KeepsTheOrder)
{
  Guest anna(QStringLiteral("anna"));
  Guest ben(QStringLiteral("ben"));
  std::vector<std::string> expected;
  for (int i = 0; i < 60; ++i)
  {
    anna.context->Say(QStringLiteral("ben"), QByteArray::number(i));
    expected.push_back("message anna " + std::to_string(i));
  }
  ASSERT_TRUE(ben.Sees(expected.back()));
  EXPECT_EQ(ben.recorder->Of("message"), expected);
}

TEST(Say, CarriesSixteenMebibytesBetweenAnyTwo)
{
  Guest anna(QStringLiteral("anna"));
  Guest ben(QStringLiteral("ben"));
  Guest cleo(QStringLiteral("cleo"));
  const QByteArray data(16 * 1024 * 1024, 'm');
  Guest* const guests[] = {&anna, &ben, &cleo};
  int round = 0;
  for (Guest* sender : guests)
    for (const char* recipient : {"anna", "ben", "cleo"})
    {
      const long long id = sender->context->Say(recipient, data);
      ASSERT_TRUE(sender->Sees("result " + std::to_string(id) + " OK", 60000)) << "round " << ++round;
    }
  EXPECT_TRUE(SpinUntil(
      [&]
      {
        std::size_t messages = 0;
        for (const Guest* guest : guests)
          messages += guest->recorder->Of("message").size();
        return messages == 9;
      },
      60000));
  for (const Guest* guest : guests)
    for (const std::string& event : guest->recorder->Of("message"))
      EXPECT_EQ(event.size(), event.find(" m") + 1 + 16 * 1024 * 1024);
}

TEST(HoldUntilMember, KeepsAMessageUntilItsRecipientJoins)
{
  Guest anna(QStringLiteral("anna"), HoldUntilMember);
  anna.context->Say(QStringLiteral("late"), "held");
  anna.context->Say(QStringLiteral("anna"), "not held");
  ASSERT_TRUE(anna.Sees("message anna not held"));
  EXPECT_THAT(anna.recorder->Of("result"), Not(Contains("result 1 NO RECIPIENT")));
  Guest late(QStringLiteral("late"));
  EXPECT_TRUE(late.Sees("message anna held"));
  EXPECT_TRUE(anna.Sees("result 1 OK"));
}

TEST(HoldUntilMember, WithARecipientThatNeverJoinsDropsTheMessageWithoutAResult)
{
  const auto recorder = std::make_shared<Recorder>();
  {
    const Context context(bus, QStringLiteral("anna"), recorder, HoldUntilMember);
    const_cast<Context&>(context).Say(QStringLiteral("never"), "held");
    SpinFor(500);
    EXPECT_THAT(recorder->Of("result"), IsEmpty());
  }
  EXPECT_THAT(recorder->Of("result"), IsEmpty());
}

TEST(Destructor, DropsAMessageForAnAbsentRecipientWithoutAResult)
{
  const auto recorder = std::make_shared<Recorder>();
  {
    Context context(bus, QStringLiteral("anna"), recorder, 0);
    context.Say(QStringLiteral("absent"), "x");
  }
  EXPECT_THAT(recorder->Of("result"), IsEmpty());
}

TEST(Destructor, OfTheServingParticipantPassesOnWhatItSaidToItself)
{
  auto anna = std::make_unique<Guest>(QStringLiteral("anna"));
  Guest ben(QStringLiteral("ben"));
  ASSERT_TRUE(AreMembers({anna.get(), &ben}, {"anna", "ben"}));
  for (int i = 0; i < 100; ++i)
    anna->context->Say(QStringLiteral("ben"), QByteArray::number(i));
  anna.reset();
  EXPECT_TRUE(ben.Sees("message anna 99"));
  EXPECT_EQ(ben.recorder->Of("message").size(), 100u);
}

TEST(Destructor, OfAClientGetsEverythingItSaidDelivered)
{
  Guest anna(QStringLiteral("anna"));
  auto ben = std::make_unique<Guest>(QStringLiteral("ben"));
  ASSERT_TRUE(AreMembers({&anna, ben.get()}, {"anna", "ben"}));
  ben->context->Say(QStringLiteral("anna"), QByteArray(8 * 1024 * 1024, 'x'));
  for (int i = 0; i < 20; ++i)
    ben->context->Say(QStringLiteral("anna"), QByteArray::number(i));
  ben.reset();
  EXPECT_TRUE(anna.Sees("message ben 19"));
  EXPECT_EQ(anna.recorder->Of("message").size(), 21u);
}

TEST(Destructor, NeitherPausesForAReconnectNorLogs)
{
  auto anna = std::make_unique<Guest>(QStringLiteral("anna"));
  auto ben = std::make_unique<Guest>(QStringLiteral("ben"));
  ASSERT_TRUE(AreMembers({anna.get(), ben.get()}, {"anna", "ben"}));
  const LogCapture log;
  QElapsedTimer timer;
  timer.start();
  ben.reset();
  anna.reset();
  EXPECT_LT(timer.elapsed(), 40);
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(AboutToQuit, WritesWhatWasSaidAndDropsWhatHasNoRecipient)
{
  std::unique_ptr<Guest> anna;
  // Connected first, so called first.
  const auto connection =
      QObject::connect(qApp, &QCoreApplication::aboutToQuit,
                       [&]
                       {
                         anna->context->Say(QStringLiteral("nobody"), "dropped");
                         anna->context->Say(QStringLiteral("ben"), QByteArray(4 * 1024 * 1024, 'q'));
                       });
  anna = std::make_unique<Guest>(QStringLiteral("anna"));
  Guest ben(QStringLiteral("ben"));
  ASSERT_TRUE(AreMembers({anna.get(), &ben}, {"anna", "ben"}));
  QTimer::singleShot(0, [] { QCoreApplication::quit(); });
  QCoreApplication::exec();
  QObject::disconnect(connection);
  EXPECT_TRUE(ben.Sees("message anna " + std::string(4 * 1024 * 1024, 'q')));
  EXPECT_TRUE(anna->Sees("result 2 OK"));
  EXPECT_THAT(anna->recorder->Of("result 1"), IsEmpty());
}

TEST(AboutToQuit, NoLongerConcernsAContextThatHasGone)
{
  {
    const Guest anna(QStringLiteral("anna"));
  }
  QTimer::singleShot(0, [] { QCoreApplication::quit(); });
  EXPECT_EQ(QCoreApplication::exec(), 0);
}

TEST(WaitMember, ForANameThatNeverJoinsReturnsFalseAfterTheTimeout)
{
  Guest anna(QStringLiteral("anna"));
  QElapsedTimer timer;
  timer.start();
  EXPECT_FALSE(anna.context->WaitMember(QStringLiteral("never"), 150));
  EXPECT_GE(timer.elapsed(), 149);
}

TEST(WaitMember, ForAPresentNameReturnsAtOnceWithoutProcessingEvents)
{
  Guest anna(QStringLiteral("anna"));
  ASSERT_TRUE(anna.context->WaitMember(QStringLiteral("anna"), 5000));
  bool hasRun = false;
  QTimer::singleShot(0, [&] { hasRun = true; });
  EXPECT_TRUE(anna.context->WaitMember(QStringLiteral("anna"), 5000));
  EXPECT_FALSE(hasRun);
}

TEST(WaitMember, WithATimeoutOfZeroOrLessTestsOnce)
{
  Guest anna(QStringLiteral("anna"));
  bool hasRun = false;
  QTimer::singleShot(0, [&] { hasRun = true; });
  EXPECT_FALSE(anna.context->WaitMember(QStringLiteral("ben"), 0));
  EXPECT_FALSE(anna.context->WaitMember(QStringLiteral("ben"), -5));
  EXPECT_FALSE(hasRun);
}

TEST(NoServer, WithoutAServerWarnsWithZeroWhereThereIsNoSocketFile)
{
  const LogCapture log;
  const Guest anna(QStringLiteral("anna"), NoServer);
  EXPECT_THAT(log.Warnings(),
              ElementsAre("Can't connect to a server and the NO SERVER flag is set (anna): 0"));
  SpinFor(300);
  EXPECT_FALSE(QFile::exists(Wire::ServerName(bus)));
  EXPECT_EQ(log.Warnings().size(), 1u);
}

TEST(NoServer, WithAStaleSocketFileWarnsWithOneAndLeavesTheFile)
{
  QFile stale(Wire::ServerName(bus));
  ASSERT_TRUE(stale.open(QIODevice::WriteOnly));
  stale.close();
  const LogCapture log;
  {
    const Guest anna(QStringLiteral("anna"), NoServer);
    EXPECT_THAT(log.Warnings(),
                ElementsAre("Can't connect to a server and the NO SERVER flag is set (anna): 1"));
  }
  EXPECT_TRUE(stale.remove());
}

TEST(NoServer, WhenItsServerGoesItGivesUpForGoodAndItsMessagesAreNotSent)
{
  auto anna = std::make_unique<Guest>(QStringLiteral("anna"));
  Guest ben(QStringLiteral("ben"), NoServer);
  ASSERT_TRUE(AreMembers({anna.get(), &ben}, {"anna", "ben"}));
  SpinFor(400);
  const LogCapture log;
  anna.reset();
  ASSERT_TRUE(SpinUntil([&] { return ben.context->Members().isEmpty(); }));
  EXPECT_THAT(ben.recorder->Of("left"), IsEmpty());
  ASSERT_EQ(log.Warnings().size(), 1u);
  EXPECT_THAT(log.Warnings().front(),
              StartsWith("Can't connect to a server and the NO SERVER flag is set (ben)"));

  ben.context->Say(QStringLiteral("anna"), "x");
  EXPECT_TRUE(ben.Sees("result 1 NOT SENT"));

  Guest cleo(QStringLiteral("cleo"));
  SpinFor(500);
  EXPECT_EQ(Names(cleo.context->Members()), QStringList{"cleo"});
  EXPECT_THAT(ben.context->Members(), IsEmpty());
  EXPECT_EQ(log.Warnings().size(), 1u);
}

TEST(Flags, OtherBitsAreIgnored)
{
  Guest anna(QStringLiteral("anna"), 0x7ffffffc);
  EXPECT_TRUE(anna.context->WaitMember(QStringLiteral("anna"), 5000));
}

TEST(OneProcess, ServesThreeContexts)
{
  Guest a(QStringLiteral("anna"), 0, QStringLiteral("one"));
  Guest b(QStringLiteral("anna"), 0, QStringLiteral("two"));
  Guest c(QStringLiteral("anna"), 0, QStringLiteral("three"));
  Guest guestOfB(QStringLiteral("ben"), 0, QStringLiteral("two"));
  EXPECT_TRUE(AreMembers({&a, &c}, {"anna"}));
  EXPECT_TRUE(AreMembers({&b, &guestOfB}, {"anna", "ben"}));
  guestOfB.context->Say(QStringLiteral("anna"), "two");
  EXPECT_TRUE(b.Sees("message ben two"));
  EXPECT_THAT(a.recorder->Of("message"), IsEmpty());
}

TEST(OneProcess, MayLeaveAndComeBackAsTheServer)
{
  for (int i = 0; i < 5; ++i)
  {
    Guest anna(QStringLiteral("anna"));
    EXPECT_TRUE(anna.context->WaitMember(QStringLiteral("anna"), 5000)) << i;
    anna.context->Say(QStringLiteral("anna"), "hi");
    EXPECT_TRUE(anna.Sees("message anna hi")) << i;
  }
}

TEST(OneProcess, ServingForTheSecondTimeReportsItselfAsJoined)
{
  {
    const Guest anna(QStringLiteral("anna"));
    SpinFor(50);
  }
  Guest again(QStringLiteral("anna"));
  EXPECT_TRUE(again.Sees("joined anna"));
}

TEST(OneProcess, TheFirstOfTwoWhoLeavesHandsTheBusToTheOther)
{
  auto anna = std::make_unique<Guest>(QStringLiteral("anna"));
  Guest ben(QStringLiteral("ben"));
  ASSERT_TRUE(AreMembers({anna.get(), &ben}, {"anna", "ben"}));
  anna.reset();
  ASSERT_TRUE(ben.Sees("left anna"));
  EXPECT_EQ(Names(ben.context->Members()), QStringList{"ben"});
  Guest back(QStringLiteral("anna"));
  EXPECT_TRUE(AreMembers({&ben, &back}, {"anna", "ben"}));
}

// ---- Attempts that fail

// Nothing can be removed, listened on or connected to where a folder stands.
struct Obstacle
{
  Obstacle() { EXPECT_TRUE(QDir().mkdir(Wire::ServerName(bus))); }
  ~Obstacle() { QDir().rmdir(Wire::ServerName(bus)); }
};

TEST(FailedStart, IsLoggedAndNeverTriedAgain)
{
  auto obstacle = std::make_unique<Obstacle>();
  const LogCapture log;
  const Guest anna(QStringLiteral("anna"));
  ASSERT_EQ(log.Errors().size(), 1u);
  EXPECT_THAT(log.Errors().front(),
              testing::MatchesRegex("anna couldn't connect to the server \\(0x[0-9a-f]+\\)"));
  obstacle.reset();
  SpinFor(500);
  EXPECT_THAT(anna.context->Members(), IsEmpty());
  EXPECT_EQ(log.Lines().size(), 1u);
}

TEST(FailedReconnection, IsTriedAgainUntilItWorks)
{
  auto anna = std::make_unique<Guest>(QStringLiteral("anna"));
  Guest ben(QStringLiteral("ben"));
  ASSERT_TRUE(AreMembers({anna.get(), &ben}, {"anna", "ben"}));
  anna.reset();
  auto obstacle = std::make_unique<Obstacle>();
  const LogCapture log;
  ASSERT_TRUE(SpinUntil([&] { return !log.Errors().empty(); }));
  SpinFor(2500);
  EXPECT_EQ(log.Errors().size(), 1u) << "further failures are not logged";
  EXPECT_FALSE(ben.recorder->Has("left anna"));
  obstacle.reset();
  EXPECT_TRUE(ben.Sees("left anna"));
  EXPECT_EQ(Names(ben.context->Members()), QStringList{"ben"});
}

TEST(Destructor, GivesUpAQueueAfterThirtySecondsWithoutAConnection)
{
  auto anna = std::make_unique<Guest>(QStringLiteral("anna"));
  auto ben = std::make_unique<Guest>(QStringLiteral("ben"));
  ASSERT_TRUE(AreMembers({anna.get(), ben.get()}, {"anna", "ben"}));
  anna.reset();
  const Obstacle obstacle;
  // Anna is still believed to be a member, so her message is not dropped for want of a recipient.
  ben->context->Say(QStringLiteral("anna"), "x");
  QElapsedTimer timer;
  timer.start();
  ben.reset();
  EXPECT_GE(timer.elapsed(), 30000);
}

TEST(Destructor, GivesUpUnwrittenBytesWhenTheServerStandsStill)
{
  Peer server(bus, QStringLiteral("server"));
  ASSERT_TRUE(server.IsReady());
  auto ben = std::make_unique<Guest>(QStringLiteral("ben"));
  ASSERT_TRUE(SpinUntil([&] { return ben->context->HasMember(QStringLiteral("server")); }));
  SpinFor(350);
  server.Stop();
  ben->context->Say(QStringLiteral("server"), QByteArray(16 * 1024 * 1024, 'x'));
  QElapsedTimer timer;
  timer.start();
  ben.reset();
  EXPECT_GE(timer.elapsed(), 2900);
  EXPECT_LT(timer.elapsed(), 25000);
  server.Continue();
  EXPECT_TRUE(server.Quit());
}

TEST(Drain, WithinACallWritesTheRest)
{
  Guest anna(QStringLiteral("anna"));
  auto ben = std::make_unique<Guest>(QStringLiteral("ben"));
  // Ben's own timer stands still while he is in this call, and his connection has not settled yet.
  const auto heard = ben->recorder;
  heard->onEvent = [&](const std::string& event)
  {
    if (event != "message anna x" || !ben)
      return;
    for (int i = 0; i < 5; ++i)
      ben->context->Say(QStringLiteral("anna"), QByteArray::number(i));
    ben.reset();
  };
  anna.context->Say(QStringLiteral("ben"), "x");
  EXPECT_TRUE(anna.Sees("message ben 4"));
}

TEST(Listener, EmptyOnesAreIgnoredAndTheSameTwiceIsCalledTwice)
{
  Guest anna(QStringLiteral("anna"));
  anna.context->Listen(nullptr);
  anna.context->Listen(anna.recorder);
  anna.context->Say(QStringLiteral("anna"), "x");
  ASSERT_TRUE(anna.Sees("result 1 OK"));
  EXPECT_EQ(anna.recorder->Count("message anna x"), 2);
}

TEST(Listener, IsNotKeptAlive)
{
  Guest anna(QStringLiteral("anna"));
  const std::weak_ptr<Recorder> weak = anna.recorder;
  anna.recorder.reset();
  EXPECT_TRUE(weak.expired());
  const auto other = std::make_shared<Recorder>();
  anna.context->Listen(other);
  anna.context->Say(QStringLiteral("anna"), "x");
  EXPECT_TRUE(SpinUntil([&] { return other->Has("result 1 OK"); }));
}

TEST(Listener, AreCalledInTheOrderOfRegistration)
{
  Guest anna(QStringLiteral("anna"));
  std::string order;
  std::vector<std::shared_ptr<Recorder>> more;
  anna.recorder->onEvent = [&](const std::string& event) { order += event == "message anna x" ? "0" : ""; };
  for (int i = 1; i < 4; ++i)
  {
    more.push_back(std::make_shared<Recorder>());
    more.back()->onEvent = [&order, i](const std::string& event)
    { order += event == "message anna x" ? std::to_string(i) : ""; };
    anna.context->Listen(more.back());
  }
  anna.context->Say(QStringLiteral("anna"), "x");
  ASSERT_TRUE(anna.Sees("result 1 OK"));
  EXPECT_EQ(order, "0123");
}

TEST(Listener, ThatLeavesSeesTheNewStateInItsCall)
{
  Guest anna(QStringLiteral("anna"));
  auto ben = std::make_unique<Guest>(QStringLiteral("ben"));
  ASSERT_TRUE(anna.Sees("joined ben"));
  bool hadBen = true;
  anna.recorder->onEvent = [&](const std::string& event)
  {
    if (event == "left ben")
      hadBen = anna.context->HasMember(QStringLiteral("ben"));
  };
  ben.reset();
  ASSERT_TRUE(anna.Sees("left ben"));
  EXPECT_FALSE(hadBen);
}

TEST(Callback, MaySayListenAskWaitAndSpin)
{
  Guest anna(QStringLiteral("anna"));
  Guest ben(QStringLiteral("ben"));
  ASSERT_TRUE(AreMembers({&anna, &ben}, {"anna", "ben"}));
  std::vector<std::shared_ptr<Recorder>> added;
  ben.recorder->onEvent = [&](const std::string& event)
  {
    if (event != "message anna go")
      return;
    added.push_back(std::make_shared<Recorder>());
    ben.context->Listen(added.back());
    ben.context->Say(QStringLiteral("anna"), "answer");
    EXPECT_TRUE(ben.context->WaitMember(QStringLiteral("anna"), 10));
    EXPECT_FALSE(ben.context->WaitMember(QStringLiteral("nobody"), 30));
    SpinFor(100);
    EXPECT_EQ(ben.context->Members().size(), 2);
  };
  for (int i = 0; i < 3; ++i)
    anna.context->Say(QStringLiteral("ben"), "go");
  EXPECT_TRUE(SpinUntil([&] { return anna.recorder->Count("message ben answer") == 3; }));
  EXPECT_TRUE(anna.Sees("result 3 OK"));
}

TEST(Callback, ThatListensAnewOnEveryCallDoesNotLoop)
{
  Guest anna(QStringLiteral("anna"));
  anna.recorder->onEvent = [&](const std::string& event)
  {
    if (event == "message anna x")
      anna.context->Listen(anna.recorder);
  };
  anna.context->Say(QStringLiteral("anna"), "x");
  ASSERT_TRUE(anna.Sees("result 1 OK"));
  EXPECT_EQ(anna.recorder->Count("message anna x"), 1);
}

TEST(Callback, MayDropTheListenersThatAreStillToBeCalled)
{
  Guest anna(QStringLiteral("anna"));
  auto second = std::make_shared<Recorder>();
  auto third = std::make_shared<Recorder>();
  anna.context->Listen(second);
  anna.context->Listen(third);
  anna.recorder->onEvent = [&](const std::string&) { second.reset(); };
  anna.context->Say(QStringLiteral("anna"), "x");
  EXPECT_TRUE(SpinUntil([&] { return third->Has("result 1 OK"); }));
  EXPECT_EQ(second, nullptr);
}

TEST(Callback, MayCreateAndDestroyOtherContexts)
{
  Guest anna(QStringLiteral("anna"));
  std::unique_ptr<Guest> other;
  anna.recorder->onEvent = [&](const std::string& event)
  {
    if (event == "message anna create")
      other = std::make_unique<Guest>(QStringLiteral("other"));
    else if (event == "message anna destroy")
      other.reset();
  };
  anna.context->Say(QStringLiteral("anna"), "create");
  ASSERT_TRUE(anna.Sees("joined other"));
  anna.context->Say(QStringLiteral("anna"), "destroy");
  EXPECT_TRUE(anna.Sees("left other"));
  EXPECT_EQ(other, nullptr);
}

class CallbackDestroying : public testing::TestWithParam<const char*>
{
};

TEST_P(CallbackDestroying, ItsOwnContextIsSafe)
{
  const std::string trigger = GetParam();
  auto anna = std::make_unique<Guest>(QStringLiteral("anna"));
  auto ben = std::make_unique<Guest>(QStringLiteral("ben"));
  ASSERT_TRUE(AreMembers({anna.get(), ben.get()}, {"anna", "ben"}));
  const auto heard = ben->recorder;
  const auto behind = std::make_shared<Recorder>();
  ben->context->Listen(behind);
  heard->onEvent = [&](const std::string& event)
  {
    if (event.compare(0, trigger.size(), trigger) != 0 || !ben)
      return;
    ben->context->Say(QStringLiteral("anna"), "goodbye");
    ben.reset();
  };
  anna->context->Say(QStringLiteral("ben"), "x");
  ben->context->Say(QStringLiteral("anna"), "y");
  std::unique_ptr<Guest> cleo;
  if (trigger == "joined")
    cleo = std::make_unique<Guest>(QStringLiteral("cleo"));
  EXPECT_TRUE(SpinUntil([&] { return ben == nullptr; }));
  EXPECT_TRUE(anna->Sees("left ben"));
  EXPECT_TRUE(anna->Sees("message ben goodbye"));
  EXPECT_THAT(behind->Of(trigger), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(FromWithin, CallbackDestroying, testing::Values("message", "result", "joined"),
                         [](const auto& name) { return std::string(name.param); });

TEST(Callback, DestroyingTheServersOwnContextIsSafe)
{
  auto anna = std::make_unique<Guest>(QStringLiteral("anna"));
  Guest ben(QStringLiteral("ben"));
  ASSERT_TRUE(AreMembers({anna.get(), &ben}, {"anna", "ben"}));
  const auto heard = anna->recorder;
  heard->onEvent = [&](const std::string& event)
  {
    if (event == "message ben x")
      anna.reset();
  };
  ben.context->Say(QStringLiteral("anna"), "x");
  EXPECT_TRUE(ben.Sees("left anna"));
  EXPECT_EQ(Names(ben.context->Members()), QStringList{"ben"});
}

TEST(Callback, MayDestroyAContextThatIsInTheMiddleOfItsHandshake)
{
  auto anna = std::make_unique<Guest>(QStringLiteral("anna"));
  auto ben = std::make_unique<Guest>(QStringLiteral("ben"));
  Guest other(QStringLiteral("x"), 0, QStringLiteral("another"));
  ASSERT_TRUE(AreMembers({anna.get(), ben.get()}, {"anna", "ben"}));
  // Ben reconnects inside his tick and runs the event loop there; whatever comes first ends him.
  other.recorder->onEvent = [&](const std::string&) { ben.reset(); };
  anna.reset();
  for (int i = 0; i < 50; ++i)
    other.context->Say(QStringLiteral("x"), "now");
  EXPECT_TRUE(SpinUntil([&] { return ben == nullptr; }));
}

} // namespace
