// The scheduler and "ostrel notices" as processes on a bus of their own.

#include "SchedulerFixture.h"

#include <QElapsedTimer>

namespace
{

class Scheduling : public SchedulerFixture
{
protected:
  using Program = std::unique_ptr<HostProcess>;

  static Program BeginOstrel(const QStringList& arguments)
  {
    auto process = std::make_unique<HostProcess>(QStringLiteral(OSTREL), arguments);
    process->Begin();
    return process;
  }

  static Program Listen(const QString& name)
  {
    Program listener = BeginOstrel({"bus", "listen", "--say", "--json", "--name", name});
    EXPECT_FALSE(listener->WaitForEvent({{"event", "ready"}}).isEmpty());
    return listener;
  }

  struct Outcome
  {
    int code;
    QByteArray out;
    QByteArray err;
  };

  static Outcome RunNotices(const QStringList& arguments = {})
  {
    const Program process = BeginOstrel(QStringList{"notices"} + arguments);
    const int code = process->Finish();
    return {code, process->Out(), process->Err()};
  }

  /** The messages that the scheduler has sent to @p listener. */
  static QList<QJsonObject> Messages(HostProcess& listener)
  {
    QList<QJsonObject> messages;
    for (const QJsonObject& event : listener.Events())
      if (event.value("event") == "message" && event.value("sender") == "scheduler")
        messages.append(QJsonDocument::fromJson(event.value("text").toString().toUtf8()).object());
    return messages;
  }

  static QJsonObject Ask(HostProcess& listener, const QByteArray& request)
  {
    const int before = Messages(listener).size();
    listener.Type("scheduler " + request + "\n");
    listener.WaitForOutput([&] { return Messages(listener).size() > before; },
                           "an answer to " + request.left(80));
    return Messages(listener).value(before);
  }

  void MakeNotices(int count)
  {
    settings.SetNeedToWatchApplicationRemoveFlag(true);
    for (int i = 1; i <= count; ++i)
      QDir().mkpath(applications + QStringLiteral("/App %1.app").arg(i));
    SchedulerProcess looking(Arguments({"--once"}));
    EXPECT_EQ(looking.Begin().Finish(), Done);
    QDir(applications).removeRecursively();
    QDir().mkpath(applications);
  }
};

// Options --------------------------------------------------------------------------------------------------

TEST_F(Scheduling, OnceTellsWhatIsNewAndEnds)
{
  WantAllMemory();
  SchedulerProcess first(Arguments({"--once"}));
  EXPECT_EQ(first.Begin().Finish(), Done);
  EXPECT_EQ(first.Kinds(), QStringList({"free-memory"}));
  EXPECT_EQ(first.CountEvents("looked"), 1);
  SchedulerProcess second(Arguments({"--once"}));
  EXPECT_EQ(second.Begin().Finish(), Done);
  EXPECT_EQ(second.Kinds(), QStringList());
}

TEST_F(Scheduling, OnceForPeoplePrintsAPlainLineOrSaysThatThereIsNothing)
{
  QDir().mkpath(applications + "/Foo.app");
  settings.SetNeedToWatchApplicationRemoveFlag(true);
  const QStringList arguments = {"--once", "--applications", applications, "--state", stateFile};
  HostProcess first(QStringLiteral(OSTREL_SCHEDULER), arguments);
  EXPECT_EQ(first.Begin().Finish(), Done);
  EXPECT_EQ(first.Out(), "");
  EXPECT_EQ(first.Err(), "ostrel-scheduler: there is nothing to tell\n");
  QDir(applications + "/Foo.app").removeRecursively();
  HostProcess second(QStringLiteral(OSTREL_SCHEDULER), arguments);
  EXPECT_EQ(second.Begin().Finish(), Done);
  EXPECT_EQ(second.Out(), "the application Foo has been removed from " + applications.toUtf8() +
                              " and may have left files behind\n");
  EXPECT_EQ(second.Err(), "");
}

TEST_F(Scheduling, DryRunSaysWhatItWouldTellAndTellsAndKeepsNothing)
{
  WantAllMemory();
  settings.SetNextEventDate(QDate(2001, 1, 1));
  settings.SetNeedToRemindAboutRegularMaintenanceFlag(true);
  const Process scheduler = Begin({"--dry-run"});
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_EQ(scheduler->Notices("would-tell").size(), 2);
  EXPECT_EQ(scheduler->Notices().size(), 0);
  EXPECT_EQ(RunNotices().code, NoBus);
  EXPECT_EQ(tools.ReadLines("shown"), QStringList());
  EXPECT_FALSE(QFile::exists(home + "/state"));
  EXPECT_EQ(settings.PrevNextEventDates().second, QDate(2001, 1, 1));
  scheduler->Signal(SIGINT);
  EXPECT_EQ(scheduler->Finish(), EndedBySignal + SIGINT);
}

TEST_F(Scheduling, KeepsItsStateInTheUsersDataFolder)
{
  WantAllMemory();
  SchedulerProcess scheduler({"--once", "--json"});
  EXPECT_EQ(scheduler.Begin().Finish(), Done);
  EXPECT_EQ(scheduler.Kinds(), QStringList({"free-memory"}));
  EXPECT_TRUE(QFile::exists(home + "/data/tavrik/ostrel-scheduler.json"));
}

TEST_F(Scheduling, CommandLineThatIsWrongEndsWithWrongUsage)
{
  for (const QStringList& arguments :
       {QStringList{"--interval", "0"}, QStringList{"--interval", "nan"}, QStringList{"--interval", "86401"},
        QStringList{"--state", ""}, QStringList{"--context", ""}, QStringList{"surplus"},
        QStringList{"--trash"}, QStringList{"--once", "--trash", home, "--trash", home},
        QStringList{"--once", "--disk", home, "--disk", home},
        QStringList{"--once", "--state", stateFile, "--state", stateFile},
        QStringList{"--once", "--state", home}})
  {
    HostProcess scheduler(QStringLiteral(OSTREL_SCHEDULER), arguments);
    EXPECT_EQ(scheduler.Begin().Finish(), WrongUsage) << arguments.join(' ').toStdString();
    EXPECT_EQ(scheduler.Out(), "");
    EXPECT_NE(scheduler.Err(), "");
  }
  for (const QStringList& arguments : {QStringList{"--ack", "some"}, QStringList{"--ack", "0"},
                                       QStringList{"--ack", "1", "--follow"}, QStringList{"surplus"}})
    EXPECT_EQ(RunNotices(arguments).code, WrongUsage) << arguments.join(' ').toStdString();
}

TEST_F(Scheduling, HelpAndVersionGoToStandardOutput)
{
  for (const char* option : {"--help", "--version"})
  {
    HostProcess scheduler(QStringLiteral(OSTREL_SCHEDULER), {option});
    EXPECT_EQ(scheduler.Begin().Finish(), Done);
    EXPECT_TRUE(scheduler.Out().contains("ostrel-scheduler"));
    EXPECT_EQ(scheduler.Err(), "");
  }
}

// Life -----------------------------------------------------------------------------------------------------

TEST_F(Scheduling, SecondSchedulerOnABusSaysSoAndTellsNothing)
{
  WantAllMemory();
  const Process first = BeginOnBus();
  SchedulerProcess second({"--json", "--state", home + "/other.json"});
  EXPECT_EQ(second.Begin().Finish(), NameTaken);
  EXPECT_EQ(second.Err(), "ostrel-scheduler: the name scheduler is taken on the bus ostrel\n");
  EXPECT_EQ(second.Out(), "");
  SchedulerProcess third(Arguments({"--context", "other"}));
  EXPECT_EQ(third.Begin().Finish(), NameTaken);
  EXPECT_EQ(third.Err(), "ostrel-scheduler: another scheduler of this user keeps its notices in " +
                             stateFile.toUtf8() + "\n");
  EXPECT_EQ(RunNotices().code, Done);
}

class EndedBy : public Scheduling, public testing::WithParamInterface<int>
{
};

TEST_P(EndedBy, SignalEndsAtOnceAndCleanly)
{
  const Process scheduler = BeginOnBus();
  QElapsedTimer time;
  time.start();
  scheduler->Signal(GetParam());
  EXPECT_EQ(scheduler->Finish(), EndedBySignal + GetParam());
  EXPECT_LT(time.elapsed(), 10000);
  EXPECT_EQ(QDir(QDir::tempPath()).entryList(QDir::System), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Signals, EndedBy, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_F(Scheduling, WatchesWithoutABusAndJoinsWhenThereCanBeOne)
{
  WantAllMemory();
  const QString folder = home + "/later";
  WriteText(folder, "a file where the temporary folder belongs");
  qputenv("TMPDIR", QFile::encodeName(folder));
  const Process scheduler = Begin();
  ASSERT_TRUE(scheduler->WaitForNotices(1));
  EXPECT_EQ(scheduler->CountEvents("joined"), 0);
  ASSERT_TRUE(QFile::remove(folder));
  QDir().mkpath(folder);
  EXPECT_FALSE(scheduler->WaitForEvent({{"event", "joined"}}).isEmpty());
  EXPECT_TRUE(RunNotices().out.contains(" of memory are free, less than "));
}

TEST_F(Scheduling, WatchesWhileTheServerOfTheBusStandsStill)
{
  WantAllMemory();
  const Program server = Listen("server");
  server->Signal(SIGSTOP);
  const Process scheduler = Begin();
  ASSERT_TRUE(scheduler->WaitForNotices(1));
  EXPECT_EQ(scheduler->CountEvents("joined"), 0);
  server->Signal(SIGCONT);
  EXPECT_FALSE(scheduler->WaitForEvent({{"event", "joined"}}).isEmpty());
}

TEST_F(Scheduling, GoesOnWhenAFollowerThatServedTheBusIsKilled)
{
  const Program follower = BeginOstrel({"notices", "--follow"});
  ASSERT_TRUE(follower->WaitForError("ostrel: waiting for the scheduler\n"));
  const Process scheduler = BeginOnBus();
  WantAllMemory();
  ASSERT_TRUE(follower->WaitForOutput([&] { return follower->Out().contains("1  "); }, "the notice"));
  follower->Signal(SIGKILL);
  follower->Finish();
  EXPECT_TRUE(WaitFor([] { return RunNotices().code == Done; }));
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_EQ(settings.GetFreeRAMLimit(), 2.0F);
  EXPECT_EQ(scheduler->Notices().size(), 1);
  EXPECT_TRUE(RunNotices().out.startsWith("1  "));
}

TEST_F(Scheduling, FollowerGoesOnWhenASchedulerThatServedTheBusIsKilled)
{
  WantAllMemory();
  Process scheduler = BeginOnBus();
  const Program follower = BeginOstrel({"notices", "--follow", "--json"});
  EXPECT_FALSE(follower->WaitForEvent({{"id", 1}}).isEmpty());
  scheduler->Signal(SIGKILL);
  scheduler->Finish();
  WantNoMemory();
  scheduler = BeginOnBus();
  ASSERT_TRUE(scheduler->WaitForLooks());
  WantAllMemory();
  EXPECT_FALSE(follower->WaitForEvent({{"id", 2}}).isEmpty());
  EXPECT_EQ(follower->Events().size(), 2);
  follower->Signal(SIGINT);
  EXPECT_EQ(follower->Finish(), EndedBySignal + SIGINT);
}

// notices --------------------------------------------------------------------------------------------------

TEST_F(Scheduling, NoticesWithoutASchedulerSaySo)
{
  const Outcome alone = RunNotices();
  EXPECT_EQ(alone.code, NoBus);
  EXPECT_EQ(alone.err, "ostrel: nobody serves the bus ostrel\n");
  const Program server = Listen("server");
  const Outcome outcome = RunNotices();
  EXPECT_EQ(outcome.code, NoRecipient);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "ostrel: there is no scheduler on the bus ostrel\n");
}

TEST_F(Scheduling, NoticesAreListedAndAcknowledged)
{
  MakeNotices(3);
  const Process scheduler = BeginOnBus();
  ASSERT_TRUE(scheduler->WaitForNotices(3));
  const QList<QByteArray> lines = RunNotices().out.split('\n');
  ASSERT_EQ(lines.size(), 4);
  EXPECT_TRUE(lines.at(1).startsWith("2  20")) << lines.at(1).constData();
  EXPECT_TRUE(lines.at(1).endsWith("the application \"App 2\" has been removed from " +
                                   applications.toUtf8() + " and may have left files behind"));

  const Outcome some = RunNotices({"--ack", "2", "--ack", "9"});
  EXPECT_EQ(some.code, Done);
  EXPECT_EQ(some.out, "acknowledged 2\n");
  EXPECT_EQ(some.err, "ostrel: there is no notice 9\n");
  EXPECT_EQ(RunNotices({"--ack", "2"}).code, NothingToDo);
  EXPECT_EQ(RunNotices({"--ack", "all", "--json"}).out, "{\"acknowledged\":1}\n{\"acknowledged\":3}\n");
  const Outcome none = RunNotices();
  EXPECT_EQ(none.code, Done);
  EXPECT_EQ(none.out, "");
  EXPECT_EQ(none.err, "ostrel: there are no notices\n");
  EXPECT_EQ(RunNotices({"--ack", "all"}).code, NothingToDo);
}

TEST_F(Scheduling, FollowPrintsWhatIsThereAndWhatComesUntilItsTimeIsOver)
{
  MakeNotices(1);
  const Process scheduler = BeginOnBus();
  ASSERT_TRUE(scheduler->WaitForNotices(1));
  const Program follower = BeginOstrel({"notices", "--follow", "--json"});
  EXPECT_EQ(follower->WaitForEvent({{"id", 1}}).value("kind").toString(), "application-removed");
  WantAllMemory();
  EXPECT_EQ(follower->WaitForEvent({{"id", 2}}).value("kind").toString(), "free-memory");
  const Outcome timed = RunNotices({"--follow", "--timeout", "0.9"});
  EXPECT_EQ(timed.code, Done);
  EXPECT_EQ(timed.out.count('\n'), 2);
}

TEST_F(Scheduling, NoticesOfASchedulerThatDoesNotAnswerTimeOut)
{
  const Program server = Listen("server");
  const Program mute = Listen("scheduler");
  const Outcome outcome = RunNotices({"--timeout", "0.8"});
  EXPECT_EQ(outcome.code, TimedOut);
  EXPECT_EQ(outcome.err, "ostrel: the scheduler has not answered\n");
}

TEST_F(Scheduling, AnswerThatIsNonsenseOrNotTheSchedulersIsNotPrinted)
{
  const Program fake = Listen("scheduler");
  const Program liar = Listen("liar");
  const Program asking = BeginOstrel({"notices", "--json", "--timeout", "3"});
  const QJsonObject question = fake->WaitForEvent({{"event", "message"}});
  const QByteArray name = question.value("sender").toString().toUtf8();
  const QByteArray sound =
      R"({"version":1,"type":"notices","request":"ostrel-notices","notices":[)"
      R"({"id":5,"kind":"free-memory","time":"2026-01-02T03:04:05.678Z","size":1,"limit":2}]})";
  liar->Type(name + ' ' + sound + '\n');
  fake->Type(name + " nonsense\n" + name + " {\"version\":1,\"type\":\"notices\",\"notices\":7}\n");
  fake->Type(name + R"( {"version":9,"type":"notices","request":"ostrel-notices","notices":[]})" + '\n');
  liar->WaitForEvent({{"event", "result"}, {"result", "OK"}});
  fake->WaitForEvent({{"event", "result"}, {"id", 3}, {"result", "OK"}});
  fake->Type(name + ' ' + QByteArray(sound).replace(":5", ":6") + '\n');
  EXPECT_EQ(asking->Finish(), Done);
  ASSERT_EQ(asking->Events().size(), 1);
  EXPECT_EQ(asking->Events().first().value("id").toInt(), 6);
}

// Messages -------------------------------------------------------------------------------------------------

TEST_F(Scheduling, RequestsAreAnsweredWithTheirMark)
{
  settings.WriteSettings(Tavrik::Cleaner::KeyHelpUrl, "https://help.invalid/");
  MakeNotices(1);
  const Process scheduler = BeginOnBus();
  ASSERT_TRUE(scheduler->WaitForNotices(1));
  const Program app = Listen("app");
  const QJsonObject notices = Ask(*app, R"({"version":1,"type":"get-notices","request":42})");
  EXPECT_EQ(notices.value("version").toInt(), 1);
  EXPECT_EQ(notices.value("type").toString(), "notices");
  EXPECT_EQ(notices.value("request").toInt(), 42);
  EXPECT_EQ(notices.value("notices").toArray().first().toObject(), scheduler->Notices().first());

  const QJsonObject status = Ask(*app, R"({"version":1,"type":"get-status"})");
  EXPECT_EQ(status.value("type").toString(), "status");
  EXPECT_FALSE(status.contains("request"));
  EXPECT_EQ(status.value("notices").toInt(), 1);
  EXPECT_EQ(status.value("settings").toObject().size(), 13);
  EXPECT_EQ(status.value("settings").toObject().value("HELP_URL").toString(), "https://help.invalid/");
  EXPECT_TRUE(status.value("findings").toObject().contains("applications"));

  const QJsonObject watching = Ask(*app, R"({"version":1,"type":"watch","request":"w"})");
  EXPECT_EQ(watching.value("lease").toInt(), 30);
  WantAllMemory();
  app->WaitForOutput([&] { return Messages(*app).size() == 4; }, "the notice");
  EXPECT_EQ(Messages(*app).last().value("type").toString(), "notice");
  EXPECT_EQ(Messages(*app).last().value("notice").toObject().value("id").toInt(), 2);

  const QJsonObject closed = Ask(*app, R"({"version":1,"type":"acknowledge","ids":[2,2,77]})");
  EXPECT_EQ(closed.value("type").toString(), "acknowledged");
  EXPECT_EQ(closed.value("ids").toArray(), QJsonArray({2}));
  EXPECT_EQ(closed.value("unknown").toArray(), QJsonArray({77}));
}

TEST_F(Scheduling, HostileMessagesAreAnsweredWithAnErrorAndChangeNothing)
{
  MakeNotices(2);
  const Process scheduler = BeginOnBus();
  ASSERT_TRUE(scheduler->WaitForNotices(2));
  const Program app = Listen("app");
  struct Case
  {
    QByteArray request;
    const char* code;
  };
  const QList<Case> cases = {
      {"", "malformed"},
      {"nonsense", "malformed"},
      {"[1,2]", "malformed"},
      {"\xFF\xFE{}", "malformed"},
      {"{}", "malformed"},
      {R"({"type":"get-notices"})", "malformed"},
      {R"({"version":"1","type":"get-notices"})", "malformed"},
      {R"({"version":1.5,"type":"get-notices"})", "malformed"},
      {R"({"version":1,"type":7})", "malformed"},
      {R"({"version":1,"type":"get-notices","request":{}})", "malformed"},
      {R"({"version":1,"type":"get-notices","request":")" + QByteArray(65, 'x') + "\"}", "malformed"},
      {R"({"version":2,"type":"get-notices"})", "unsupported-version"},
      {R"({"version":1,"type":"shut-down"})", "unknown-type"},
      {R"({"version":1,"type":"acknowledge"})", "malformed"},
      {R"({"version":1,"type":"acknowledge","all":"yes"})", "malformed"},
      {R"({"version":1,"type":"acknowledge","ids":[]})", "malformed"},
      {R"({"version":1,"type":"acknowledge","ids":[1,"2"]})", "malformed"},
      {R"({"version":1,"type":"acknowledge","ids":[1e300]})", "malformed"},
      {R"({"version":1,"type":"acknowledge","ids":[)" + QByteArray("1,").repeated(1000) + "1]}", "malformed"},
      {QByteArray(20000, '['), "malformed"},
      {QByteArray(70000, ' '), "too-long"}};
  for (const Case& entry : cases)
  {
    const QJsonObject answer = Ask(*app, entry.request);
    EXPECT_EQ(answer.value("type").toString(), "error") << entry.request.left(80).constData();
    EXPECT_EQ(answer.value("code").toString(), entry.code) << entry.request.left(80).constData();
  }
  // An error is not answered, so the next answer is that to the request behind it.
  app->Type("scheduler {\"version\":1,\"type\":\"error\",\"code\":\"x\"}\n");
  EXPECT_EQ(Ask(*app, R"({"version":1,"type":"get-notices"})").value("notices").toArray().size(), 2);
}

// The desktop ----------------------------------------------------------------------------------------------

TEST_F(Scheduling, NotifierGetsTheTextAsAnArgumentAndNothingElse)
{
  settings.SetNeedToWatchApplicationRemoveFlag(true);
  const QString bundle = applications + "/-$(touch hit)<b>&\\.app";
  QDir().mkpath(bundle);
  SchedulerProcess first(Arguments({"--once"}));
  EXPECT_EQ(first.Begin().Finish(), Done);
  QDir(bundle).removeRecursively();
  SchedulerProcess second(Arguments({"--once"}));
  EXPECT_EQ(second.Begin().Finish(), Done);
#ifdef __linux__
  EXPECT_EQ(tools.ReadLines("shown"),
            QStringList({"--app-name=ostrel", "--", "Tavrik Ostrel",
                         "the application \"-$(touch hit)&lt;b&gt;&amp;\\\\\" has been removed from " +
                             applications + " and may have left files behind"}));
#endif
}

TEST_F(Scheduling, NotifierThatFailsIsOnlyLogged)
{
  MakeNotices(2);
  tools.AddTool("notify-send", "echo x >>\"$here/tries\"; exit 3");
  SchedulerProcess scheduler(Arguments({"--once"}));
  EXPECT_EQ(scheduler.Begin().Finish(), Done);
  EXPECT_EQ(scheduler.Notices().size(), 2);
  EXPECT_EQ(scheduler.Err(), "");
  EXPECT_EQ(tools.ReadLines("tries").size(), 2);
}

TEST_F(Scheduling, NotifierThatIsMissingIsNoError)
{
  WantAllMemory();
  qputenv("PATH", "/nonexistent");
  SchedulerProcess scheduler(Arguments({"--once"}));
  EXPECT_EQ(scheduler.Begin().Finish(), Done);
  EXPECT_EQ(scheduler.Notices().size(), 1);
  EXPECT_EQ(scheduler.Err(), "");
}

TEST_F(Scheduling, NotifierThatHangsHoldsNothingUp)
{
  tools.AddTool("notify-send", "echo $$ >\"$here/pid\"; exec sleep 1000");
  WantAllMemory();
  const Process scheduler = BeginOnBus();
  ASSERT_TRUE(WaitFor([this] { return !tools.ReadLines("pid").isEmpty(); }));
  ASSERT_TRUE(scheduler->WaitForLooks());
  EXPECT_EQ(RunNotices().code, Done);
  scheduler->Signal(SIGTERM);
  EXPECT_EQ(scheduler->Finish(), EndedBySignal + SIGTERM);
  const pid_t notifier = tools.ReadLines("pid").first().toInt();
  EXPECT_TRUE(WaitFor([notifier] { return ::kill(notifier, 0) != 0; }));
}

TEST_F(Scheduling, NotifierThatHangsIsGivenUp)
{
  tools.AddTool("notify-send", "exec sleep 1000");
  WantAllMemory();
  SchedulerProcess scheduler(Arguments({"--once"}));
  EXPECT_EQ(scheduler.Begin().Finish(), Done);
  EXPECT_EQ(scheduler.Notices().size(), 1);
}

} // namespace
