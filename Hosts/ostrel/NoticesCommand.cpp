#include "NoticesCommand.h"

#include "Arguments.h"
#include "BackgroundWriter.h"
#include "BusSession.h"
#include "ExitCodes.h"
#include "Messages.h"
#include "Notice.h"
#include "Output.h"
#include "SafeText.h"
#include "Texts.h"

#include <CLI/CLI.hpp>

#include <QJsonArray>
#include <QPair>
#include <QSet>

namespace Ostrel
{

using namespace std::chrono_literals;
using Tavrik::Bazaar::Error;
using Tavrik::Bazaar::Listener;

namespace
{

struct Arguments
{
  BusOptions bus;
  bool follow = false;
  bool acknowledgesAll = false;
  QJsonArray acknowledged; // ids
};

constexpr std::chrono::milliseconds answerTime = 10s;

// Well within the time for which the scheduler tells who has asked to be told.
// A scheduler that is killed and started again while the bus heals is not seen to leave and come: this is how
// long it can take until it is asked.
constexpr std::chrono::milliseconds renewInterval = 2s;

// What the answer to our request repeats. A process asks for one thing only.
const QString requestMark = QStringLiteral("ostrel-notices");

void PrintNotice(Output& output, const Notice& notice)
{
  const QString time = notice.time.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm"));
  output.Print(QByteArray::number(notice.id) + "  " + time.toUtf8() + "  " + Describe(notice).toUtf8(),
               ToJson(notice));
}

QVector<Notice> ReadNotices(const QJsonObject& fields)
{
  QVector<Notice> notices;
  const QJsonArray array = fields.value(noticesType).toArray();
  for (const QJsonValue& value : array)
    if (const std::optional<Notice> notice = ReadNotice(value.toObject()))
      notices.append(*notice);
  return notices;
}

QJsonArray ReadIds(const QJsonValue& value)
{
  QJsonArray ids;
  const QJsonArray array = value.toArray();
  for (const QJsonValue& entry : array)
    if (const std::optional<qint64> id = ReadInteger(entry))
      ids.append(*id);
  return ids;
}

/** Asks the scheduler, and hears nobody else. */
class Asker : public Listener
{
public:
  Asker(BusSession& session, Output& output) : session(session), output(output) {}

  void Ask(const QString& type, const QJsonObject& fields = {})
  {
    session.Bus().Say(schedulerName, MakeMessage(type, fields, requestMark));
  }

  void OnMessage(const QString& sender, const QByteArray& data) override
  {
    Message message;
    if (sender != schedulerName || ReadMessage(data, longestAnswer, message) != MessageFault::None)
      return;
    if (message.type == errorType)
      TakeError(message.fields.value(QStringLiteral("code")).toString());
    else
      Take(message);
  }

  void OnResult(long long, Error, const QString&) override {}
  void OnMemberJoined(const QString&) override {}
  void OnMemberLeft(const QString&) override {}

protected:
  virtual void Take(const Message& message) = 0;

  BusSession& session;
  Output& output;

private:
  void TakeError(const QString& code)
  {
    PrintError(Texts::tr("the scheduler answered: %1").arg(ShowText(code.left(100))));
    session.Leave(Failed);
  }
};

// Once ----------------------------------------------------------------------------------------------------

class OneAnswer : public Asker
{
public:
  using Asker::Asker;

  void OnResult(long long, Error result, const QString&) override
  {
    if (result != Tavrik::Bazaar::NoError)
      SayThereIsNone();
  }

  void OnMemberLeft(const QString& name) override
  {
    if (name == schedulerName)
      SayThereIsNone();
  }

protected:
  void Take(const Message& message) override
  {
    if (message.request != requestMark)
      return;
    if (message.type == noticesType)
      TakeNotices(ReadNotices(message.fields));
    else if (message.type == acknowledgedType)
      TakeAcknowledged(ReadIds(message.fields.value(QStringLiteral("ids"))),
                       ReadIds(message.fields.value(QStringLiteral("unknown"))));
  }

private:
  void SayThereIsNone()
  {
    PrintError(Texts::tr("the scheduler has gone"));
    session.Leave(NoRecipient);
  }

  void TakeNotices(const QVector<Notice>& notices)
  {
    for (const Notice& notice : notices)
      PrintNotice(output, notice);
    if (notices.isEmpty() && !output.IsJson())
      PrintError(Texts::tr("there are no notices"));
    session.Leave(Done);
  }

  void TakeAcknowledged(const QJsonArray& ids, const QJsonArray& unknown)
  {
    for (const QJsonValue& id : ids)
      output.Print("acknowledged " + QByteArray::number(id.toDouble(), 'f', 0),
                   {{QStringLiteral("acknowledged"), id}});
    for (const QJsonValue& id : unknown)
      PrintError(Texts::tr("there is no notice %1").arg(id.toDouble(), 0, 'f', 0));
    if (ids.isEmpty() && unknown.isEmpty() && !output.IsJson())
      PrintError(Texts::tr("there are no notices"));
    session.Leave(ids.isEmpty() ? NothingToDo : Done);
  }
};

int RunOnce(const Arguments& arguments, Signals& signalSource)
{
  BusOptions options = arguments.bus;
  options.noServer = true;
  if (!options.timeout)
    options.timeout = answerTime;
  Output output(options.json ? Format::Json : Format::Human);
  BusSession session(options, signalSource);
  const auto asker = std::make_shared<OneAnswer>(session, output);
  if (const int failure = session.Join(asker))
    return failure;
  if (!session.Bus().HasMember(schedulerName))
  {
    PrintError(Texts::tr("there is no scheduler on the bus %1").arg(ShowName(options.contextName)));
    return NoRecipient;
  }
  if (arguments.acknowledgesAll)
    asker->Ask(acknowledgeType, {{QStringLiteral("all"), true}});
  else if (!arguments.acknowledged.isEmpty())
    asker->Ask(acknowledgeType, {{QStringLiteral("ids"), arguments.acknowledged}});
  else
    asker->Ask(getNoticesType);
  const int code = session.Run();
  if (code == TimedOut)
    PrintError(Texts::tr("the scheduler has not answered"));
  return output.Status() != Done ? output.Status() : code;
}

// --follow ------------------------------------------------------------------------------------------------

class Follower : public Asker
{
public:
  Follower(BusSession& session, Output& output) : Asker(session, output)
  {
    renewTimer.callOnTimeout([this] { Watch(); });
  }

  void Begin()
  {
    renewTimer.start(renewInterval);
    if (session.Bus().HasMember(schedulerName))
      Watch();
    else
      PrintError(Texts::tr("waiting for the scheduler"));
  }

  // After an election the scheduler may not know us any more, whoever has gone.
  void OnMemberJoined(const QString& name) override
  {
    if (name == schedulerName && renewTimer.isActive())
      Watch();
  }

  void OnMemberLeft(const QString&) override
  {
    if (renewTimer.isActive() && session.Bus().HasMember(schedulerName))
      Watch();
  }

protected:
  void Take(const Message& message) override
  {
    if (message.type == noticesType)
      for (const Notice& notice : ReadNotices(message.fields))
        Show(notice);
    else if (message.type == noticeType)
      if (const std::optional<Notice> notice = ReadNotice(message.fields.value(noticeType).toObject()))
        Show(*notice);
  }

private:
  void Watch() { Ask(watchType); }

  // A scheduler that has lost its state counts from 1 again.
  void Show(const Notice& notice)
  {
    const auto identity = qMakePair(notice.id, notice.time.toMSecsSinceEpoch());
    if (shown.contains(identity))
      return;
    shown.insert(identity);
    PrintNotice(output, notice);
  }

  QTimer renewTimer;
  QSet<QPair<qint64, qint64>> shown;
};

int RunFollow(const Arguments& arguments, Signals& signalSource)
{
  const BackgroundErrors errors; // others depend on the event loop of a participant that serves
  Output output(arguments.bus.json ? Format::Json : Format::Human, Writing::InBackground);
  BusSession session(arguments.bus, signalSource);
  output.OnClosed([&session](int code) { session.Leave(code); });
  const auto follower = std::make_shared<Follower>(session, output);
  if (const int failure = session.Join(follower))
    return output.Finish(failure);
  follower->Begin();
  const int code = session.Run();
  return output.Finish(code == TimedOut ? static_cast<int>(Done) : code);
}

// The command line ----------------------------------------------------------------------------------------

void TakeIds(Arguments& arguments, const std::vector<std::string>& texts)
{
  for (const std::string& text : texts)
  {
    bool isNumber = false;
    const qlonglong id = QByteArray::fromStdString(text).toLongLong(&isNumber);
    if (text == "all")
      arguments.acknowledgesAll = true;
    else if (isNumber && id > 0 && id <= largestJsonInteger)
      arguments.acknowledged.append(id);
    else
      throw CLI::ValidationError("--ack", "a notice is named by its number, or all");
  }
}

} // namespace

void AddNoticesCommand(CLI::App& app, Command& command)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* verb = app.add_subcommand("notices", "Show what the scheduler has to tell, or close it");
  CLI::Option* follow =
      verb->add_flag("--follow,-f", arguments->follow, "Go on and print notices as they come");
  verb->add_option_function<std::vector<std::string>>(
          "--ack,-a", [arguments](const std::vector<std::string>& texts) { TakeIds(*arguments, texts); },
          "Acknowledge a notice, which closes it, or all of them; may be given again")
      ->allow_extra_args(false)
      ->type_name("ID")
      ->excludes(follow);
  verb->add_flag("--json,-j", arguments->bus.json, "Print JSON, one object per line and nothing else");
  AddName(*verb, "--context,-c", arguments->bus.contextName, "The bus of the scheduler (default: ostrel)");
  AddTimeout(*verb, arguments->bus.timeout,
             "Give up after so long (default: 10); with --follow leave, with code 0 (default: never)");
  verb->footer("Without --follow it never serves the bus: without one it ends with code 20, without a\n"
               "scheduler on it with 23. When none of the notices to close is there it ends with 10.");
  verb->final_callback(
      [&command, arguments]
      {
        const auto run = arguments->follow ? RunFollow : RunOnce;
        command = [arguments, run](Signals& signalSource) { return run(*arguments, signalSource); };
      });
}

} // namespace Ostrel
