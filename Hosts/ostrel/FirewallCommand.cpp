#include "FirewallCommand.h"

#include "ExitCodes.h"
#include "FirewallPlan.h"
#include "Output.h"
#include "SafeText.h"
#include "Signals.h"
#include "StandIns.h"
#include "Texts.h"

#include <Common/Firewall.h>

#include <CLI/CLI.hpp>

#include <QDeadlineTimer>
#include <QJsonArray>

#include <glog/logging.h>

#include <array>
#include <chrono>
#include <memory>
#include <poll.h>

namespace Ostrel
{

using Tavrik::Cleaner::Firewall;

namespace
{

struct Arguments
{
  FirewallEdit edit;
  bool isDryRun = false;
  bool json = false;
  std::chrono::milliseconds timeout = std::chrono::seconds(30);
};

using SharedArguments = std::shared_ptr<Arguments>;

// The firewall of the system ------------------------------------------------------------------------------

int RequireTool()
{
  if (ChooseFirewallTool())
    return Done;
  PrintError(Texts::tr("there is no firewall tool on this machine"));
  return ToolMissing;
}

FirewallView Look(const Firewall& firewall)
{
  FirewallView view;
  view.switches = {firewall.IsEnabled(), firewall.GetBlockAll(), firewall.GetAllowSigned(),
                   firewall.GetStealthMode()};
  view.applications = firewall.GetApplications();
  for (const QString& path : view.applications)
    view.isBlocked.insert(path, firewall.IsApplicationBlocked(path));
  return view;
}

void SetSwitch(Firewall& firewall, std::size_t number, bool isOn)
{
  using Setter = void (Firewall::*)(bool);
  static const std::array<Setter, switchCount> setters = {
      &Firewall::SetEnabled, &Firewall::SetBlockAll, &Firewall::SetAllowSigned, &Firewall::SetStealthMode};
  (firewall.*setters.at(number))(isOn);
}

bool Perform(Firewall& firewall, const FirewallStep& step)
{
  switch (step.action)
  {
  case FirewallStep::Set:
    SetSwitch(firewall, step.number, step.isOn);
    break;
  case FirewallStep::Add:
    return firewall.AddApplication(step.path, false);
  case FirewallStep::Remove:
    return firewall.RemoveApplication(step.path);
  case FirewallStep::Block:
  case FirewallStep::Unblock:
    firewall.BlockApplication(step.path, step.action == FirewallStep::Block);
  }
  return true;
}

// Of a failed save the model tells only that it failed; its log tells why. A dismissed dialog is no error.
class ErrorWatch : private google::LogSink
{
public:
  ErrorWatch() { google::AddLogSink(this); }
  ~ErrorWatch() override { google::RemoveLogSink(this); }

  ErrorWatch(const ErrorWatch&) = delete;
  ErrorWatch& operator=(const ErrorWatch&) = delete;

  bool IsAuthorisationMissing() const { return isRefused || !hasErrors; }

private:
  void send(google::LogSeverity severity, const char*, const char*, int, const google::LogMessageTime&,
            const char* message, std::size_t length) override
  {
    const QByteArray text(message, static_cast<int>(length));
    hasErrors = hasErrors || severity >= google::GLOG_ERROR;
    isRefused = isRefused || text.startsWith("Can't copy rights: ") ||
                text.startsWith("Can't create authorization object: ");
  }

  bool hasErrors = false;
  bool isRefused = false;
};

// Results -------------------------------------------------------------------------------------------------

QJsonArray DescribePlan(const FirewallPlan& plan)
{
  QJsonArray steps;
  for (const FirewallStep& step : plan)
    steps.append(DescribeStep(step));
  return steps;
}

// What became of an edit; people see its plan before it begins.
class Report
{
public:
  Report(Output& output, const FirewallPlan& plan) : output(output), plan(plan) {}

  void ShowPlan()
  {
    if (!output.IsJson())
      for (const FirewallStep& step : plan)
        output.PrintFitted(QString::fromUtf8(ShowStep(step)));
  }

  int End(const char* outcome, int code, const FirewallPlan& differences = {})
  {
    if (output.IsJson())
      output.Print({}, {{QStringLiteral("outcome"), QLatin1String(outcome)},
                        {QStringLiteral("plan"), DescribePlan(plan)},
                        {QStringLiteral("differences"), DescribePlan(differences)}});
    return output.Status() != Done ? output.Status() : code;
  }

private:
  Output& output;
  const FirewallPlan& plan;
};

QByteArray ShowOnOff(bool isOn)
{
  return (isOn ? Texts::tr("on") : Texts::tr("off")).toUtf8();
}

// status --------------------------------------------------------------------------------------------------

void PrintStatus(Output& output, const FirewallView& view)
{
  if (output.IsJson())
  {
    QJsonObject object{{QStringLiteral("applications"), view.applications.size()},
                       {QStringLiteral("tool"), Tavrik::Cleaner::filewallFileName}};
    for (std::size_t number = 0; number < switchCount; ++number)
      object.insert(QLatin1String(firewallSwitches[number].key), view.switches[number]);
    output.Print({}, object);
    return;
  }
  const QString names[switchCount] = {Texts::tr("Firewall: %1"), Texts::tr("Block all connections: %1"),
                                      Texts::tr("Allow signed software: %1"), Texts::tr("Stealth mode: %1")};
  for (std::size_t number = 0; number < switchCount; ++number)
    output.Print(names[number].arg(QString::fromUtf8(ShowOnOff(view.switches[number]))).toUtf8(), {});
  output.Print(Texts::tr("Applications: %1").arg(view.applications.size()).toUtf8(), {});
}

int RunStatus(const Arguments& arguments)
{
  if (const int failure = RequireTool())
    return failure;
  Output output(arguments.json ? Format::Json : Format::Human);
  PrintStatus(output, Look(Firewall::GetInstance()));
  return output.Status();
}

// list ----------------------------------------------------------------------------------------------------

void PrintList(Output& output, const FirewallView& view)
{
  QJsonArray entries;
  for (const QString& path : view.applications)
  {
    const bool isBlocked = view.isBlocked.value(path);
    entries.append(QJsonObject{{QStringLiteral("path"), path}, {QStringLiteral("blocked"), isBlocked}});
    if (!output.IsJson())
      output.PrintFitted(QString::fromUtf8((isBlocked ? "blocked " : "allowed ") + QuoteName(path)));
  }
  if (output.IsJson())
    output.Print({}, {{QStringLiteral("applications"), entries}});
}

int RunList(const Arguments& arguments)
{
  if (const int failure = RequireTool())
    return failure;
  Output output(arguments.json ? Format::Json : Format::Human);
  PrintList(output, Look(Firewall::GetInstance()));
  return output.Status();
}

// edit ----------------------------------------------------------------------------------------------------

constexpr int readPause = 100; // ms between two looks at the system

// The script may still be at work. Returns what is different when the time is over; a signal ends it earlier.
FirewallPlan ReadBack(Firewall& firewall, const FirewallView& wanted, std::chrono::milliseconds timeout)
{
  const QDeadlineTimer deadline(timeout);
  for (;;)
  {
    firewall.Undo();
    FirewallPlan differences = MakePlan(Look(firewall), wanted);
    if (differences.empty() || deadline.hasExpired() || Signals::Caught() != 0)
      return differences;
    poll(nullptr, 0, readPause);
  }
}

int Save(Firewall& firewall, const FirewallPlan& plan, Report& report)
{
  for (const FirewallStep& step : plan)
  {
    if (Perform(firewall, step))
      continue;
    PrintError(Texts::tr("the firewall does not take this step: %1").arg(QString::fromUtf8(ShowStep(step))));
    return report.End("failed", Failed);
  }
  const ErrorWatch watch;
  if (firewall.Save())
    return Done;
  if (watch.IsAuthorisationMissing())
  {
    PrintError(Texts::tr("nothing is changed: the administrator's authorisation was not given"));
    return report.End("not-authorised", NotAuthorised);
  }
  PrintError(Texts::tr("nothing is changed: the firewall's script could not be run"));
  return report.End("failed", Failed);
}

int Verify(const FirewallPlan& differences, Output& output, Report& report)
{
  if (differences.empty())
  {
    if (!output.IsJson())
      output.Print(Texts::tr("saved").toUtf8(), {});
    return report.End("saved", Done);
  }
  PrintError(Texts::tr("the firewall is not as it should be; what is missing:"));
  for (const FirewallStep& step : differences)
    PrintError(QString::fromUtf8(ShowStep(step)));
  const int signal = Signals::Caught();
  return report.End("different", signal != 0 ? EndedBySignal + signal : static_cast<int>(Failed),
                    differences);
}

int RunEdit(const Arguments& arguments)
{
  FirewallEdit edit = arguments.edit;
  QString mistake = TakeSettings(edit);
  if (mistake.isEmpty())
    mistake = FindContradiction(edit);
  if (!mistake.isEmpty())
  {
    PrintError(mistake);
    return WrongUsage;
  }
  if (const int failure = RequireTool())
    return failure;

  Firewall& firewall = Firewall::GetInstance();
  const FirewallView before = Look(firewall);
  FirewallView wanted = before;
  const QString problem = ApplyEdit(edit, wanted);
  if (!problem.isEmpty())
  {
    PrintError(problem);
    return Failed;
  }

  Output output(arguments.json ? Format::Json : Format::Human);
  const FirewallPlan plan = MakePlan(before, wanted);
  Report report(output, plan);
  if (plan.empty())
  {
    PrintError(Texts::tr("nothing to do: the firewall is like that already"));
    return report.End("nothing-to-do", NothingToDo);
  }
  report.ShowPlan();
  if (arguments.isDryRun)
    return report.End("planned", Done);
  if (const int failure = Save(firewall, plan, report))
    return failure;
  return Verify(ReadBack(firewall, wanted, arguments.timeout), output, report);
}

// The verbs on the command line ---------------------------------------------------------------------------

constexpr double shortestTimeout = 0.001; // s
constexpr double longestTimeout = 7 * 24 * 60 * 60;

// The script's lists are separated by semicolons, the firewall's by line ends.
QString ParsePath(const std::string& text)
{
  const QByteArray bytes = QByteArray::fromStdString(text);
  if (bytes.isEmpty())
    throw CLI::ValidationError("PATH", "a path must not be empty");
  if (!IsUtf8(bytes))
    throw CLI::ValidationError("PATH", "a path must be UTF-8");
  if (bytes.contains(';') || bytes.contains('\n'))
    throw CLI::ValidationError("PATH", "a path must not hold a semicolon or a line end");
  return DecodeUtf8(bytes);
}

CLI::Option* AddPaths(CLI::App& verb, const std::string& option, QStringList& paths, const std::string& help)
{
  return verb
      .add_option_function<std::vector<std::string>>(
          option,
          [&paths](const std::vector<std::string>& texts)
          {
            for (const std::string& text : texts)
              paths.append(ParsePath(text));
          },
          help)
      ->type_name("PATH");
}

CLI::Option* AddSettings(CLI::App& verb, const std::string& option, FirewallEdit& edit)
{
  return verb
      .add_option_function<std::vector<std::string>>(
          option,
          [&edit](const std::vector<std::string>& texts)
          {
            for (const std::string& text : texts)
              edit.settings.append(DecodeUtf8(QByteArray::fromStdString(text)));
          },
          "A switch: enabled, block-all, allow-signed or stealth, on or off")
      ->type_name("KEY=on|off");
}

CLI::App* AddVerb(CLI::App& firewall, const std::string& name, const std::string& help, Command& command,
                  const SharedArguments& arguments, int (*run)(const Arguments&))
{
  CLI::App* verb = firewall.add_subcommand(name, help);
  verb->add_flag("--json,-j", arguments->json, "Print one JSON object and nothing else");
  verb->final_callback([&command, arguments, run]
                       { command = [arguments, run](Signals&) { return run(*arguments); }; });
  return verb;
}

CLI::App* AddEditingVerb(CLI::App& firewall, const std::string& name, const std::string& help,
                         Command& command, const SharedArguments& arguments)
{
  CLI::App* verb = AddVerb(firewall, name, help, command, arguments, RunEdit);
  verb->add_flag("--dry-run,-d", arguments->isDryRun, "Show what would be done, and do nothing");
  verb->add_option_function<double>(
          "--timeout,-t",
          [arguments](double seconds)
          {
            const bool isInRange = seconds >= shortestTimeout && seconds <= longestTimeout; // false for NaN
            if (!isInRange)
              throw CLI::ValidationError("--timeout", "a timeout must be between 0.001 and 604800 seconds");
            arguments->timeout = std::chrono::milliseconds(static_cast<long long>(seconds * 1000));
          },
          "Wait so long for the change to appear (default: 30)")
      ->type_name("SECONDS");
  return verb;
}

void AddEdit(CLI::App& firewall, Command& command)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* verb =
      AddEditingVerb(firewall, "edit", "Do several of what follows, in one go", command, arguments);
  FirewallEdit& edit = arguments->edit;
  auto* orders = verb->add_option_group("Orders");
  AddPaths(*orders, "--add,-a", edit.added, "Add applications to the list");
  AddPaths(*orders, "--remove,-r", edit.removed, "Take applications from the list");
  AddPaths(*orders, "--block,-b", edit.blocked, "Block incoming connections to listed or added applications");
  AddPaths(*orders, "--unblock,-u", edit.unblocked, "Let incoming connections through to them");
  AddSettings(*orders, "--set,-s", edit);
  orders->require_option(1, 0);
}

using PathsOfEdit = QStringList FirewallEdit::*;

void AddShortForm(CLI::App& firewall, Command& command, const std::string& name, const std::string& help,
                  PathsOfEdit paths)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* verb = AddEditingVerb(firewall, name, help, command, arguments);
  AddPaths(*verb, "PATH", arguments->edit.*paths, "The applications")->required();
}

void AddSet(CLI::App& firewall, Command& command)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* verb = AddEditingVerb(firewall, "set", "Turn switches on and off", command, arguments);
  AddSettings(*verb, "SWITCH", arguments->edit)->required();
}

} // namespace

void AddFirewallCommand(CLI::App& app, Command& command)
{
  CLI::App* firewall = app.add_subcommand("firewall", "Look at the application firewall and change it");
  firewall->require_subcommand(1);
  AddVerb(*firewall, "status", "Print the switches", command, std::make_shared<Arguments>(), RunStatus);
  AddVerb(*firewall, "list", "Print the applications, one per line", command, std::make_shared<Arguments>(),
          RunList);
  AddEdit(*firewall, command);
  AddShortForm(*firewall, command, "add", "Add applications to the list", &FirewallEdit::added);
  AddShortForm(*firewall, command, "remove", "Take applications from the list", &FirewallEdit::removed);
  AddShortForm(*firewall, command, "block", "Block incoming connections to applications",
               &FirewallEdit::blocked);
  AddShortForm(*firewall, command, "unblock", "Let incoming connections through to applications",
               &FirewallEdit::unblocked);
  AddSet(*firewall, command);
}

} // namespace Ostrel
