#include "RAMCommand.h"

#include "ExitCodes.h"
#include "Options.h"
#include "Output.h"
#include "Progress.h"
#include "SafeText.h"
#include "Signals.h"
#include "Terminal.h"
#include "Texts.h"

#include <Common/FormatText.h>
#include <Common/RAMCleaner.h>
#include <Common/RAMInfo.h>

#include <QTimer>

#include <cmath>

namespace Ostrel
{

using Tavrik::Cleaner::FormatSize;
using Tavrik::Cleaner::RAMCleaner;

namespace
{

struct Arguments
{
  bool json = false;
  std::optional<std::chrono::milliseconds> timeout;
  std::optional<qint64> limit; // bytes
};

// status --------------------------------------------------------------------------------------------------

int RunStatus(const Arguments& arguments)
{
  qint64 total = 0;
  vm_statistics64 statistics = {};
  if (!Tavrik::Cleaner::RAMInfo::GetTotalSize(&total) ||
      !Tavrik::Cleaner::RAMInfo::GetStatistics(&statistics))
  {
    PrintError(Texts::tr("the system does not tell its memory"));
    return Failed;
  }
  const qint64 free = RAMCleaner(nullptr).GetFreeRAMSize();

  Output output(arguments.json ? Format::Json : Format::Human);
  if (output.IsJson())
    output.Print({}, {{QStringLiteral("totalBytes"), total}, {QStringLiteral("freeBytes"), free}});
  else
  {
    Table table({{}, {{}, Table::Align::Right}});
    table.AddRow({Texts::tr("Memory"), FormatSize(total, 1)});
    table.AddRow({Texts::tr("Free"), FormatSize(free, 1)});
    output.PrintTable(table);
  }
  return output.Status();
}

// clean ---------------------------------------------------------------------------------------------------

/** One run of the cleaner, from its start until it has told what it freed. */
class CleaningRun
{
public:
  CleaningRun(const Arguments& arguments, Signals& signalSource)
      : arguments(arguments),
        signalSource(signalSource),
        output(arguments.json ? Format::Json : Format::Human),
        progress(Texts::tr("Cleaning the memory")),
        cleaner(nullptr)
  {
    QObject::connect(&cleaner, &RAMCleaner::CleaningStarted, &cleaner, [this] { OnStarted(); });
    QObject::connect(&cleaner, &RAMCleaner::ProgressChanged, &cleaner,
                     [this](float fraction) { OnProgress(fraction); });
    QObject::connect(&cleaner, &RAMCleaner::CleaningFinished, &cleaner,
                     [this](qint64 bytes) { OnFinished(bytes); });
    output.OnClosed([this](int status) { Stop(status); });
    limit.setSingleShot(true);
    limit.setTimerType(Qt::PreciseTimer);
    limit.callOnTimeout([this] { Stop(TimedOut); });
  }

  ~CleaningRun() { signalSource.OnSignal(nullptr); }

  CleaningRun(const CleaningRun&) = delete;
  CleaningRun& operator=(const CleaningRun&) = delete;

  int Run()
  {
    // The library starts the purger without arguments.
    if (arguments.limit)
      qputenv("TAVRIK_PURGER_LIMIT", QByteArray::number(*arguments.limit));
    if (!cleaner.Clean())
    {
      PrintError(Texts::tr("the purger cannot be started: %1").arg(ShowText(RAMCleaner::FindPurger())));
      return ToolMissing;
    }
    signalSource.OnSignal([this](int number) { Stop(EndedBySignal + number); });
    if (arguments.timeout)
      limit.start(*arguments.timeout);
    if (!isFinished)
      QCoreApplication::exec();
    return output.Combine(code);
  }

private:
  void Stop(int reason)
  {
    if (isFinished || code != Done)
      return;
    code = reason;
    if (cleaner.IsCleaning())
      cleaner.Stop();
  }

  void OnStarted() { output.IsJson() ? Print(QStringLiteral("started"), GetMemory()) : progress.Show(0); }

  void OnProgress(float fraction)
  {
    if (output.IsJson())
      Print(QStringLiteral("progress"),
            {{QStringLiteral("percent"), static_cast<qint64>(std::llround(fraction * 100.0))}});
    else
      progress.Show(fraction);
  }

  void OnFinished(qint64 bytes)
  {
    // Ctrl-C on a terminal ends the purger, too, and that may be seen first.
    if (code == Done && Signals::Caught() != 0)
      code = EndedBySignal + Signals::Caught();
    isFinished = true;
    progress.Clear();
    QJsonObject fields = GetMemory();
    fields.insert(QStringLiteral("freedBytes"), bytes);
    fields.insert(QStringLiteral("reason"), GetReason());
    if (output.IsJson())
      Print(QStringLiteral("finished"), fields);
    else
      output.Print(Describe(bytes).toUtf8(), {});
    QCoreApplication::exit();
  }

  QString GetReason() const
  {
    if (code == Done)
      return QStringLiteral("done");
    return code == TimedOut ? QStringLiteral("timed-out") : QStringLiteral("stopped");
  }

  QString Describe(qint64 bytes) const
  {
    const QString freed = FormatSize(bytes, 1);
    if (code == Done)
      return Texts::tr("Freed %1.").arg(freed);
    if (code == TimedOut)
      return Texts::tr("The time is over; %1 were freed.").arg(freed);
    return Texts::tr("Stopped; %1 were freed.").arg(freed);
  }

  QJsonObject GetMemory() const
  {
    return {{QStringLiteral("totalBytes"), cleaner.GetTotalRAMSize()},
            {QStringLiteral("freeBytes"), cleaner.GetFreeRAMSize()}};
  }

  void Print(const QString& event, const QJsonObject& fields) { output.Print({}, MakeEvent(event, fields)); }

  const Arguments& arguments;
  Signals& signalSource;
  Output output;
  Progress progress;
  RAMCleaner cleaner;
  QTimer limit;
  int code = Done;
  bool isFinished = false;
};

} // namespace

void AddRAMCommand(CLI::App& app, Command& command)
{
  CLI::App* ram = app.add_subcommand("ram", "Look at the memory and free some");
  ram->require_subcommand(1);
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* status = AddVerb(*ram, "status", "Print how much memory there is and how much is free", command,
                             [arguments](Signals&) { return RunStatus(*arguments); });
  AddJson(*status, arguments->json);
  CLI::App* clean =
      AddVerb(*ram, "clean", "Free memory by the purger", command,
              [arguments](Signals& signalSource) { return CleaningRun(*arguments, signalSource).Run(); });
  AddJson(*clean, arguments->json);
  AddTimeout(*clean, arguments->timeout, "Stop after so long, with code 3 (default: never)");
  clean
      ->add_option("-l,--limit", arguments->limit,
                   "Take at most so many bytes of memory, and do not drop the system's caches")
      ->type_name("BYTES")
      ->check(CLI::Validator(CLI::NonNegativeNumber).description(""));
  clean->footer(
      "Ctrl-C stops the purger, tells what was freed and ends with 130; a second one ends at once.\n"
      "A purger that cannot be started ends with 14.");
}

} // namespace Ostrel
