#include "SettingsCommand.h"

#include "ExitCodes.h"
#include "Options.h"
#include "Output.h"
#include "Progress.h"
#include "SafeText.h"
#include "Setting.h"
#include "Signals.h"
#include "Terminal.h"
#include "Texts.h"

#include <QFile>
#include <QJsonArray>

#include <functional>

namespace Ostrel
{
namespace
{

struct Arguments
{
  bool json = false;
  bool all = false;
  bool yes = false;
  std::string name;
  std::string value;
};

// Null after the reason has been printed.
const Setting* Find(const std::string& name)
{
  const std::optional<QString> text = ToText(name);
  const Setting* setting = text ? FindSetting(*text) : nullptr;
  if (text && !setting)
    PrintError(Texts::tr("there is no setting %1; \"settings list\" names them").arg(ShowName(*text)));
  return setting;
}

QJsonObject ToJson(const Setting& setting, const Store& store)
{
  QJsonObject object{{QStringLiteral("name"), setting.Name()},
                     {QStringLiteral("key"), setting.Key()},
                     {QStringLiteral("value"), setting.Get(store).json},
                     {QStringLiteral("default"), setting.GetDefault().json}};
  const QMap<QString, QString> invalid = store.settings.InvalidValues();
  if (invalid.contains(setting.Key()))
    object.insert(QStringLiteral("stored"), invalid.value(setting.Key()));
  return object;
}

// Changes the store, and reports a change that could not be stored.
int Change(const std::function<void(Store&)>& change)
{
  Store store;
  const bool isDamaged = store.settings.IsDamaged();
  change(store);
  const QString file = store.file.fileName();
  if (!store.settings.Save())
  {
    PrintError(Texts::tr("the settings cannot be written: %1").arg(ShowText(file)));
    return NotPermitted;
  }
  if (isDamaged && !store.settings.IsDamaged())
    PrintError(Texts::tr("%1 was damaged; it is kept with \".damaged\" after its name").arg(ShowName(file)));
  return Done;
}

// list ----------------------------------------------------------------------------------------------------

struct Reminder
{
  QDate from; // the previous event, or today where there is none
  QDate next; // invalid where no reminder comes
};

Reminder GetReminder(const Store& store)
{
  const QDate previous = store.settings.PrevNextEventDates().first;
  const QDate from = previous.isValid() ? previous : QDate::currentDate();
  const bool isWanted = store.settings.GetNeedToRemindAboutRegularMaintenanceFlag();
  return {from, isWanted ? GetNextReminder(store, from) : QDate()};
}

QString Describe(const Reminder& reminder)
{
  if (!reminder.next.isValid())
    return Texts::tr("No reminder.");
  return Texts::tr("Next reminder: %1, counted from %2.")
      .arg(reminder.next.toString(Qt::ISODate), reminder.from.toString(Qt::ISODate));
}

void PrintList(Output& output, const Store& store)
{
  Table table({{Texts::tr("Setting")},
               {Texts::tr("Value"), Table::Align::Left, true},
               {Texts::tr("Default"), Table::Align::Left}});
  const QMap<QString, QString> invalid = store.settings.InvalidValues();
  for (const std::unique_ptr<Setting>& setting : GetSettings())
  {
    Value value = setting->Get(store);
    const Value fallback = setting->GetDefault();
    const Table::Paint paint = value.json == fallback.json ? nullptr : &Style::Blue;
    if (invalid.contains(setting->Key()))
      value.text = Texts::tr("%1 (stored: %2)").arg(value.text, ShowName(invalid.value(setting->Key())));
    table.AddRow({setting->Name(), {value.text, paint}, fallback.text});
  }
  output.PrintTable(table);
  output.Print(Describe(GetReminder(store)).toUtf8(), {});
}

void ReportDamage(const Store& store)
{
  const QString file = store.file.fileName();
  const QString kept = file + QStringLiteral(".damaged");
  if (store.settings.IsDamaged())
    PrintError(Texts::tr("%1 is damaged; the next change keeps it with \".damaged\" after its name")
                   .arg(ShowName(file)));
  else if (QFile::exists(kept))
    PrintError(Texts::tr("the settings were damaged; what they were is in %1").arg(ShowName(kept)));
}

int RunList(const Arguments& arguments)
{
  const Store store;
  ReportDamage(store);
  Output output(arguments.json ? Format::Json : Format::Human);
  if (!output.IsJson())
  {
    PrintList(output, store);
    return output.Status();
  }
  QJsonArray settings;
  for (const std::unique_ptr<Setting>& setting : GetSettings())
    settings.append(ToJson(*setting, store));
  const Reminder reminder = GetReminder(store);
  const bool isComing = reminder.next.isValid();
  output.Print({}, {{QStringLiteral("settings"), settings},
                    {QStringLiteral("nextReminder"),
                     isComing ? QJsonValue(reminder.next.toString(Qt::ISODate)) : QJsonValue()},
                    {QStringLiteral("countedFrom"), reminder.from.toString(Qt::ISODate)}});
  return output.Status();
}

// get, set, unset -----------------------------------------------------------------------------------------

int RunGet(const Arguments& arguments)
{
  const Setting* setting = Find(arguments.name);
  if (!setting)
    return WrongUsage;
  const Store store;
  const QMap<QString, QString> invalid = store.settings.InvalidValues();
  if (invalid.contains(setting->Key()))
    PrintError(Texts::tr("%1 is stored as %2, which is not a value for it")
                   .arg(setting->Key(), ShowName(invalid.value(setting->Key()))));
  Output output(arguments.json ? Format::Json : Format::Human);
  output.Print(EscapeText(setting->Get(store).input), ToJson(*setting, store));
  return output.Status();
}

int RunSet(const Arguments& arguments)
{
  const Setting* setting = Find(arguments.name);
  const std::optional<QString> value = setting ? ToText(arguments.value) : std::nullopt;
  if (!value)
    return WrongUsage;
  bool isValue = false;
  const int code = Change([&](Store& store) { isValue = setting->Set(store, *value); });
  if (isValue)
    return code;
  PrintError(Texts::tr("%1 is no value for %2, which takes %3")
                 .arg(ShowName(*value), setting->Name(), setting->DescribeForms()));
  return WrongUsage;
}

int Unset(const QVector<const Setting*>& settings)
{
  return Change(
      [&settings](Store& store)
      {
        for (const Setting* setting : settings)
          setting->Unset(store);
      });
}

int RunUnset(const Arguments& arguments)
{
  if (arguments.all == !arguments.name.empty())
  {
    PrintError(Texts::tr("name a setting, or all of them with --all"));
    return WrongUsage;
  }
  if (!arguments.all)
  {
    const Setting* setting = Find(arguments.name);
    return setting ? Unset({setting}) : static_cast<int>(WrongUsage);
  }
  if (!arguments.yes && !Confirm(Texts::tr("Set all settings back to their defaults?")))
  {
    if (const int number = Signals::Caught())
      return EndedBySignal + number;
    PrintError(Texts::tr("nothing was changed; --yes needs no answer"));
    return NothingToDo;
  }
  QVector<const Setting*> settings;
  for (const std::unique_ptr<Setting>& setting : GetSettings())
    settings.append(setting.get());
  return Unset(settings);
}

// The verbs on the command line ---------------------------------------------------------------------------

CLI::Option* AddName(CLI::App& verb, Arguments& arguments)
{
  return verb.add_option("NAME", arguments.name, "A name of \"settings list\", or a key of the store")
      ->type_name("");
}

} // namespace

void AddSettingsCommand(CLI::App& app, Command& command)
{
  CLI::App* settings = app.add_subcommand("settings", "Look at the scheduler's settings and change them");
  settings->require_subcommand(1);
  const auto arguments = std::make_shared<Arguments>();

  CLI::App* list = AddVerb(*settings, "list", "Print all settings, their defaults and the next reminder",
                           command, [arguments](Signals&) { return RunList(*arguments); });
  AddJson(*list, arguments->json);

  CLI::App* get = AddVerb(*settings, "get", "Print one value as \"set\" takes it", command,
                          [arguments](Signals&) { return RunGet(*arguments); });
  AddName(*get, *arguments)->required();
  AddJson(*get, arguments->json);

  CLI::App* set = AddVerb(*settings, "set", "Change one setting", command,
                          [arguments](Signals&) { return RunSet(*arguments); });
  AddName(*set, *arguments)->required();
  set->add_option("VALUE", arguments->value, "What it becomes")->required()->type_name("");

  CLI::App* unset = AddVerb(*settings, "unset", "Set one setting, or all, back to the default", command,
                            [arguments](Signals&) { return RunUnset(*arguments); });
  AddName(*unset, *arguments);
  unset->add_flag("--all", arguments->all, "All settings; asks first");
  unset->add_flag("--yes,-y", arguments->yes, "Do not ask");
}

} // namespace Ostrel
