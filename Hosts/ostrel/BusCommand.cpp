#include "BusCommand.h"

#include "Arguments.h"
#include "BackgroundWriter.h"
#include "BusSession.h"
#include "Doctor.h"
#include "ExitCodes.h"
#include "Options.h"
#include "Output.h"
#include "Payload.h"
#include "SafeText.h"
#include "SayReader.h"
#include "Texts.h"

#include <QCoreApplication>
#include <QJsonArray>

#include <algorithm>

namespace Ostrel
{

using Tavrik::Bazaar::Error;
using Tavrik::Bazaar::Listener;

namespace
{

// Common options ------------------------------------------------------------------------------------------

struct Arguments
{
  BusOptions bus;
  QString recipient;
  std::optional<std::string> data;
  std::string file;
  QString awaited;
  bool say = false;
};

using SharedArguments = std::shared_ptr<Arguments>;

void AddCommonOptions(CLI::App& verb, BusOptions& options, const std::string& timeoutHelp)
{
  AddName(verb, "--context,-c", options.contextName, "The bus to join (default: ostrel)");
  AddName(verb, "--name,-n", options.clientName, "Who to be on the bus (default: ostrel-PID)");
  AddTimeout(verb, options.timeout, timeoutHelp);
  verb.add_flag("--hold-until-member", options.holdUntilMember,
                "Hold each message back until its recipient is on the bus");
  verb.add_flag("--no-server", options.noServer, "Never serve the bus; without a server end with code 20");
  AddJson(verb, options.json);
}

// Results and events --------------------------------------------------------------------------------------

constexpr int longestShown = 1000; // of a payload on a terminal, in bytes after escaping

QJsonObject DescribePayload(const QString& sender, const QByteArray& data)
{
  QJsonObject fields{{QStringLiteral("sender"), sender},
                     {QStringLiteral("size"), data.size()},
                     {QStringLiteral("base64"), QString::fromLatin1(data.toBase64())}};
  if (IsUtf8(data))
    fields.insert(QStringLiteral("text"), DecodeUtf8(data));
  return fields;
}

QByteArray ShowPayload(const QByteArray& data, bool isTerminal)
{
  if (!isTerminal || data.size() <= longestShown)
    return EscapeBytes(data);
  return EscapeBytes(data.left(longestShown)) + "... (" + Texts::tr("%1 bytes").arg(data.size()).toUtf8() +
         ')';
}

void PrintSaid(Output& output, long long id, const QString& recipient)
{
  output.Print("said " + QByteArray::number(id) + " to " + QuoteName(recipient),
               MakeEvent(QStringLiteral("said"),
                         {{QStringLiteral("id"), id}, {QStringLiteral("recipient"), recipient}}));
}

QJsonObject DescribeResult(long long id, const QString& recipient, Error result, const QString& note)
{
  return MakeEvent(QStringLiteral("result"), {{QStringLiteral("id"), id},
                                              {QStringLiteral("recipient"), recipient},
                                              {QStringLiteral("result"), GetErrorString(result)},
                                              {QStringLiteral("note"), note}});
}

void PrintJoined(Output& output, const QString& name)
{
  output.Print("joined " + QuoteName(name),
               MakeEvent(QStringLiteral("joined"), {{QStringLiteral("name"), name}}));
}

void PrintLeft(Output& output, const QString& name)
{
  output.Print("left " + QuoteName(name),
               MakeEvent(QStringLiteral("left"), {{QStringLiteral("name"), name}}));
}

int GetExitCode(Error result)
{
  switch (result)
  {
  case Tavrik::Bazaar::NoError:
    return Done;
  case Tavrik::Bazaar::ErrorNoRecipient:
    return NoRecipient;
  case Tavrik::Bazaar::ErrorNotSent:
    return NotSent;
  case Tavrik::Bazaar::ErrorNotWritten:
    return NotWritten;
  case Tavrik::Bazaar::ErrorUnknown:
    break;
  }
  return UnknownResult;
}

class QuietListener : public Listener
{
public:
  void OnMessage(const QString&, const QByteArray&) override {}
  void OnResult(long long, Error, const QString&) override {}
  void OnMemberJoined(const QString&) override {}
  void OnMemberLeft(const QString&) override {}
};

// members -------------------------------------------------------------------------------------------------

void PrintMembers(Output& output, const BusOptions& options, const QStringList& names)
{
  if (output.IsJson())
  {
    output.Print({}, {{QStringLiteral("context"), options.contextName},
                      {QStringLiteral("members"), QJsonArray::fromStringList(names)}});
    return;
  }
  for (const QString& name : names)
    output.Print(EscapeText(name), {});
}

int RunMembers(BusOptions options, Signals& signalSource)
{
  options.noServer = true;
  Output output(options.json ? Format::Json : Format::Human);
  BusSession session(options, signalSource);
  if (const int failure = session.Join(nullptr))
    return failure;
  QStringList names;
  for (const QString& name : session.Bus().Members())
    if (name != session.ClientName() && !IsScout(name))
      names.append(name);
  PrintMembers(output, options, names);
  return output.Status();
}

// send ----------------------------------------------------------------------------------------------------

// The result is printed after the end of the session: a terminal that is stopped must not stop a bus that
// this process serves.
class ResultKeeper : public QuietListener
{
public:
  explicit ResultKeeper(BusSession& session) : session(session) {}

  void OnResult(long long resultId, Error result, const QString& resultNote) override
  {
    id = resultId;
    error = result;
    note = resultNote;
    session.Leave(GetExitCode(result));
  }

  void Print(Output& output, const QString& recipient) const
  {
    if (error)
      output.Print(GetErrorString(*error).toUtf8(), DescribeResult(id, recipient, *error, note));
  }

private:
  BusSession& session;
  long long id = 0;
  std::optional<Error> error; // none before there is a result
  QString note;
};

constexpr std::chrono::milliseconds resultTime{10000};

int RunSend(const Arguments& arguments, Signals& signalSource)
{
  QByteArray payload;
  if (const int failure =
          arguments.data ? TakePayload(*arguments.data, payload) : ReadPayload(arguments.file, payload))
    return failure;

  BusOptions options = arguments.bus;
  if (!options.timeout && !options.holdUntilMember)
    options.timeout = resultTime;
  Output output(options.json ? Format::Json : Format::Human);
  BusSession session(options, signalSource);
  const auto keeper = std::make_shared<ResultKeeper>(session);
  if (const int failure = session.Join(keeper))
    return failure;
  session.Bus().Say(arguments.recipient, payload);
  const int code = session.Run();
  keeper->Print(output, arguments.recipient);
  if (code == TimedOut)
    PrintError(Texts::tr("no result came for the message to %1").arg(ShowName(arguments.recipient)));
  return output.Combine(code);
}

// listen --------------------------------------------------------------------------------------------------

class EventPrinter : public Listener
{
public:
  explicit EventPrinter(Output& output) : output(output) {}

  void OnMessage(const QString& sender, const QByteArray& data) override
  {
    const QByteArray human =
        output.IsJson() ? QByteArray()
                        : "message from " + QuoteName(sender) + ": " + ShowPayload(data, output.IsTerminal());
    output.Print(human, output.IsJson() ? MakeEvent(QStringLiteral("message"), DescribePayload(sender, data))
                                        : QJsonObject());
  }

  void OnResult(long long id, Error result, const QString& note) override
  {
    const QString recipient = recipients.take(id);
    output.Print("result " + QByteArray::number(id) + " to " + QuoteName(recipient) + ": " +
                     GetErrorString(result).toUtf8(),
                 DescribeResult(id, recipient, result, note));
    if (resultHandler)
      resultHandler();
  }

  void OnMemberJoined(const QString& name) override
  {
    if (!IsScout(name))
      PrintJoined(output, name);
  }

  void OnMemberLeft(const QString& name) override
  {
    if (!IsScout(name))
      PrintLeft(output, name);
  }

  void NoteSaid(long long id, const QString& recipient)
  {
    recipients.insert(id, recipient);
    PrintSaid(output, id, recipient);
  }

  void CallOnResult(std::function<void()> handler) { resultHandler = std::move(handler); }

private:
  Output& output;
  QHash<long long, QString> recipients; // of messages whose result is still to come
  std::function<void()> resultHandler;
};

void PrintReady(Output& output, const BusOptions& options, const QString& clientName)
{
  if (output.IsJson())
    output.Print({}, MakeEvent(QStringLiteral("ready"),
                               {{QStringLiteral("context"), options.contextName},
                                {QStringLiteral("name"), clientName},
                                {QStringLiteral("pid"), QCoreApplication::applicationPid()}}));
  else
    PrintError(
        Texts::tr("listening as %1 on the bus %2").arg(ShowName(clientName), ShowName(options.contextName)));
}

int RunListen(const Arguments& arguments, Signals& signalSource)
{
  const BackgroundErrors errors; // others depend on the event loop of a participant that serves
  Output output(arguments.bus.json ? Format::Json : Format::Human, Writing::InBackground);
  BusSession session(arguments.bus, signalSource);
  output.OnClosed([&session](int code) { session.Leave(code); });
  const auto printer = std::make_shared<EventPrinter>(output);
  if (const int failure = session.Join(printer))
    return output.Finish(failure);
  PrintReady(output, arguments.bus, session.ClientName());

  std::unique_ptr<SayReader> reader;
  if (arguments.say)
  {
    reader =
        std::make_unique<SayReader>([&](const QString& recipient, const QByteArray& data)
                                    { printer->NoteSaid(session.Bus().Say(recipient, data), recipient); });
    printer->CallOnResult([&reader] { reader->NoteResult(); });
  }

  const int code = session.Run();
  return output.Finish(code == TimedOut ? static_cast<int>(Done) : code);
}

// wait ----------------------------------------------------------------------------------------------------

class ArrivalWaiter : public QuietListener
{
public:
  ArrivalWaiter(BusSession& session, const QString& name) : session(session), name(name) {}

  void OnMemberJoined(const QString& joined) override
  {
    if (joined == name)
      session.Leave(Done);
  }

private:
  BusSession& session;
  QString name;
};

int RunWait(const Arguments& arguments, Signals& signalSource)
{
  Output output(arguments.bus.json ? Format::Json : Format::Human);
  BusSession session(arguments.bus, signalSource);
  const auto waiter = std::make_shared<ArrivalWaiter>(session, arguments.awaited);
  if (const int failure = session.Join(waiter))
    return failure;
  if (session.Bus().HasMember(arguments.awaited))
    session.Leave(Done);
  const int code = session.Run();
  if (code == Done)
    PrintJoined(output, arguments.awaited);
  else if (code == TimedOut)
    PrintError(Texts::tr("%1 has not come").arg(ShowName(arguments.awaited)));
  return output.Combine(code);
}

// The verbs on the command line ---------------------------------------------------------------------------

void AddMembers(CLI::App& bus, Command& command)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* verb =
      AddVerb(bus, "members", "Print who is on the bus, one name per line", command,
              [arguments](Signals& signalSource) { return RunMembers(arguments->bus, signalSource); });
  AddCommonOptions(*verb, arguments->bus, "Give up after so long (default: 10)");
  verb->footer("Never serves: when nobody is on the bus it ends with code 20.");
}

void AddSend(CLI::App& bus, Command& command)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* verb = AddVerb(bus, "send", "Send one message and print what became of it", command,
                           [arguments](Signals& signalSource) { return RunSend(*arguments, signalSource); });
  AddName(*verb, "RECIPIENT", arguments->recipient, "Whom it is for")->required();
  CLI::Option* data = verb->add_option_function<std::string>(
                              "DATA", [arguments](const std::string& text) { arguments->data = text; },
                              "The message; without it and without --file it is read from standard input")
                          ->allow_extra_args(false)
                          ->type_name("");
  verb->add_option("--file,-f", arguments->file, "Read the message from a file; - is standard input")
      ->type_name("PATH")
      ->allow_extra_args(false)
      ->excludes(data);
  AddCommonOptions(*verb, arguments->bus,
                   "Wait so long for the result (default: 10; with --hold-until-member for ever)");
  verb->footer(
      "The bytes of the message are sent unchanged. A message that begins with a dash goes behind --.\n"
      "Prints and returns: OK 0, NO RECIPIENT 23, NOT SENT 24, NOT WRITTEN 25, UNKNOWN 26.");
}

void AddListen(CLI::App& bus, Command& command)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* verb =
      AddVerb(bus, "listen", "Print messages, results, arrivals and departures as they come", command,
              [arguments](Signals& signalSource) { return RunListen(*arguments, signalSource); });
  verb->add_flag("--say,-s", arguments->say,
                 "Read lines \"RECIPIENT TEXT\" from standard input and say them");
  AddCommonOptions(*verb, arguments->bus, "Leave after so long, with code 0 (default: never)");
  verb->footer("Ends with Ctrl-C (code 130) or SIGTERM (code 143); a second signal ends it at once.");
}

void AddWait(CLI::App& bus, Command& command)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* verb = AddVerb(bus, "wait", "Wait until somebody is on the bus", command,
                           [arguments](Signals& signalSource) { return RunWait(*arguments, signalSource); });
  AddName(*verb, "MEMBER", arguments->awaited, "Whom to wait for")->required();
  AddCommonOptions(*verb, arguments->bus, "Give up after so long, with code 3 (default: never)");
}

void AddDoctor(CLI::App& bus, Command& command)
{
  const auto options = std::make_shared<DoctorOptions>();
  CLI::App* verb = AddVerb(bus, "doctor", "Say what is wrong with the bus, within two seconds", command,
                           [options](Signals&) { return RunDoctor(*options); });
  AddName(*verb, "--context,-c", options->contextName, "The bus to look at (default: ostrel)");
  AddName(*verb, "--name,-n", options->clientName, "Look whether this name is taken, too");
  verb->add_flag("--json,-j", options->json, "Print one JSON object and nothing else");
  verb->footer("Exit codes:\n"
               "  0    the bus is served and answers\n"
               "  1    the system refuses the connection\n"
               "  20   nobody serves it: there is no socket\n"
               "  21   the name is taken\n"
               "  22   its server does not answer\n"
               "  27   a server that has gone left its socket behind\n"
               "  28   a file, a folder or a link is where the socket belongs\n"
               "  29   the socket is another user's\n"
               "  30   the socket's name is too long for a socket's address\n"
               "  31   it is served in another temporary folder\n"
               "  32   the socket of a living server has been removed\n"
               "  33   the temporary folder is missing or cannot be used\n"
               "  34   whoever listens is no bus");
}

} // namespace

void AddBusCommand(CLI::App& app, Command& command)
{
  CLI::App* bus = app.add_subcommand("bus", "Meet the other processes of this user and exchange messages");
  bus->require_subcommand(1);
  AddMembers(*bus, command);
  AddSend(*bus, command);
  AddListen(*bus, command);
  AddWait(*bus, command);
  AddDoctor(*bus, command);
}

} // namespace Ostrel
