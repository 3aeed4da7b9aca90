#include "Setting.h"

#include "SafeText.h"
#include "Texts.h"
#include "Values.h"

#include <Common/FormatText.h>

#include <QDir>
#include <QRegularExpression>
#include <QUrl>

#include <array>
#include <optional>

namespace Ostrel
{

using namespace Tavrik::Cleaner;

namespace
{

// Flags ---------------------------------------------------------------------------------------------------

class FlagSetting : public Setting
{
public:
  using Getter = bool (DaemonSettings::*)() const;
  using Setter = void (DaemonSettings::*)(bool);

  FlagSetting(const char* name, const QString& key, Getter getter, Setter setter)
      : Setting(QLatin1String(name), key), getter(getter), setter(setter)
  {
  }

  Value Get(const Store& store) const override { return ToValue((store.settings.*getter)()); }
  Value GetDefault() const override { return ToValue(true); }

  bool Set(Store& store, const QString& text) const override
  {
    const std::optional<bool> flag = ParseFlag(text);
    if (flag)
      (store.settings.*setter)(*flag);
    return flag.has_value();
  }

  void Unset(Store& store) const override { (store.settings.*setter)(true); }

  QString DescribeForms() const override { return Texts::tr("on, true, yes, 1, or off, false, no, 0"); }

private:
  static Value ToValue(bool flag)
  {
    return {flag ? Texts::tr("on") : Texts::tr("off"), flag ? QStringLiteral("on") : QStringLiteral("off"),
            flag};
  }

  Getter getter;
  Setter setter;
};

// Sizes ---------------------------------------------------------------------------------------------------

class SizeSetting : public Setting
{
public:
  using Getter = long long (DaemonSettings::*)() const;
  using Setter = void (DaemonSettings::*)(long long);

  SizeSetting(const char* name, const QString& key, Getter getter, Setter setter, long long fallback)
      : Setting(QLatin1String(name), key), getter(getter), setter(setter), fallback(fallback)
  {
  }

  Value Get(const Store& store) const override { return ToValue((store.settings.*getter)()); }
  Value GetDefault() const override { return ToValue(fallback); }

  bool Set(Store& store, const QString& text) const override
  {
    const std::optional<long long> bytes = ParseBytes(text);
    if (bytes)
      (store.settings.*setter)(*bytes);
    return bytes.has_value();
  }

  void Unset(Store& store) const override { (store.settings.*setter)(fallback); }

  QString DescribeForms() const override
  {
    return Texts::tr("bytes, or a size such as \"500 MB\" or \"2 GB\"");
  }

private:
  // A sign is dropped by the library's text; a store in somebody's hands may hold one.
  static Value ToValue(long long bytes)
  {
    const QString number = QString::number(bytes);
    return {bytes < 0 ? number : FormatSize(bytes, 1), number, bytes};
  }

  Getter getter;
  Setter setter;
  long long fallback;
};

// The share of memory -------------------------------------------------------------------------------------

std::optional<float> ParseFraction(QString text)
{
  const bool isPercentage = text.endsWith(QLatin1Char('%'));
  if (isPercentage)
    text.chop(1);
  static const QRegularExpression number(QStringLiteral("^[0-9]+([.,][0-9]+)?\\z"));
  text = text.trimmed();
  if (!number.match(text).hasMatch())
    return {};
  const double value = text.replace(QLatin1Char(','), QLatin1Char('.')).toDouble() / (isPercentage ? 100 : 1);
  return value <= 1 ? std::optional<float>(static_cast<float>(value)) : std::nullopt;
}

class FractionSetting : public Setting
{
public:
  FractionSetting() : Setting(QStringLiteral("free-ram-limit"), KeyFreeRAMLimit) {}

  Value Get(const Store& store) const override { return ToValue(store.settings.GetFreeRAMLimit()); }
  Value GetDefault() const override { return ToValue(fallback); }

  bool Set(Store& store, const QString& text) const override
  {
    const std::optional<float> fraction = ParseFraction(text);
    if (fraction)
      store.settings.SetFreeRAMLimit(*fraction);
    return fraction.has_value();
  }

  void Unset(Store& store) const override { store.settings.SetFreeRAMLimit(fallback); }

  QString DescribeForms() const override
  {
    return Texts::tr("a part of the memory between 0 and 1, such as 0.05, or a percentage such as 5%");
  }

private:
  static constexpr float fallback = 0.05F;

  // A store in somebody's hands may hold "nan" or "inf", for which JSON has no number.
  static Value ToValue(float fraction)
  {
    const QString number = QString::number(fraction);
    const QString percentage = QString::number(fraction * 100.0, 'g', 4);
    return {Texts::tr("%1 %").arg(percentage), number, QJsonValue(number.toDouble())};
  }
};

// Dates ---------------------------------------------------------------------------------------------------

class DateSetting : public Setting
{
public:
  using Part = QDate QPair<QDate, QDate>::*;
  using Setter = void (DaemonSettings::*)(const QDate&);

  DateSetting(const char* name, const QString& key, Part part, Setter setter)
      : Setting(QLatin1String(name), key), part(part), setter(setter)
  {
  }

  Value Get(const Store& store) const override { return ToValue(store.settings.PrevNextEventDates().*part); }
  Value GetDefault() const override { return ToValue({}); }

  bool Set(Store& store, const QString& text) const override
  {
    static const QRegularExpression form(QStringLiteral("^[0-9]{4}-[0-9]{2}-[0-9]{2}\\z"));
    const QDate date = QDate::fromString(text, Qt::ISODate);
    const bool isDate = form.match(text).hasMatch() && date.isValid();
    if (isDate || IsNone(text))
      (store.settings.*setter)(isDate ? date : QDate());
    return isDate || IsNone(text);
  }

  void Unset(Store& store) const override { (store.settings.*setter)(QDate()); }

  QString DescribeForms() const override { return Texts::tr("a date such as 2026-01-31, or none"); }

private:
  static Value ToValue(const QDate& date)
  {
    if (!date.isValid())
      return {Texts::tr("none"), QStringLiteral("none"), QJsonValue()};
    const QString text = date.toString(Qt::ISODate);
    return {text, text, text};
  }

  Part part;
  Setter setter;
};

// The period ----------------------------------------------------------------------------------------------

const std::array<const char*, 6> periodWords = {
    "weekly", "every-two-weeks", "monthly", "every-three-months", "every-six-months", "annually"};

class PeriodSetting : public Setting
{
public:
  PeriodSetting() : Setting(QStringLiteral("remind-period"), KeyregularMaintenanceRemindPeriod) {}

  Value Get(const Store& store) const override
  {
    return ToValue(store.settings, store.settings.GetRegularMaintenanceRemindPeriod());
  }

  Value GetDefault() const override { return ToValue(DaemonSettings(), fallback); }

  bool Set(Store& store, const QString& text) const override
  {
    for (size_t i = 0; i < periodWords.size(); ++i)
    {
      const auto period = static_cast<DaemonSettings::RemindPeriod>(i);
      if (text.compare(QLatin1String(periodWords.at(i)), Qt::CaseInsensitive) != 0 &&
          text.compare(store.settings.RemindPeriodToString(period), Qt::CaseInsensitive) != 0 &&
          text != QString::number(i))
        continue;
      store.settings.SetRegularMaintenanceRemindPeriod(period);
      return true;
    }
    return false;
  }

  void Unset(Store& store) const override { store.settings.SetRegularMaintenanceRemindPeriod(fallback); }

  QString DescribeForms() const override
  {
    QStringList words;
    for (const char* word : periodWords)
      words.append(QLatin1String(word));
    return words.join(QStringLiteral(", "));
  }

private:
  static constexpr DaemonSettings::RemindPeriod fallback{DaemonSettings::Monthly};

  static Value ToValue(const DaemonSettings& settings, DaemonSettings::RemindPeriod period)
  {
    const QString text = settings.RemindPeriodToString(period);
    const auto index = static_cast<size_t>(period);
    if (text.isNull() || index >= periodWords.size())
    {
      const QString number = QString::number(static_cast<int>(period));
      return {Texts::tr("%1 (no period)").arg(number), number, static_cast<int>(period)};
    }
    const QLatin1String word(periodWords.at(index));
    return {text, word, word};
  }
};

// Texts ---------------------------------------------------------------------------------------------------

class TextSetting : public Setting
{
public:
  using Check = bool (*)(const QString&);
  using Forms = QString (*)();

  TextSetting(const char* name, const QString& key, Check check, Forms forms)
      : Setting(QLatin1String(name), key), check(check), forms(forms)
  {
  }

  Value Get(const Store& store) const override { return ToValue(store.file.value(Key()).toString()); }
  Value GetDefault() const override { return ToValue({}); }

  bool Set(Store& store, const QString& text) const override
  {
    if (IsNone(text))
      Unset(store);
    else if (check(text))
      store.settings.WriteSettings(Key(), text);
    else
      return false;
    return true;
  }

  void Unset(Store& store) const override { store.settings.WriteSettings(Key(), QString()); }

  QString DescribeForms() const override { return forms(); }

private:
  static Value ToValue(const QString& text)
  {
    return {text.isEmpty() ? Texts::tr("none") : ShowText(text), text,
            text.isEmpty() ? QJsonValue() : QJsonValue(text)};
  }

  Check check;
  Forms forms;
};

bool IsAbsolutePath(const QString& text)
{
  return QDir::isAbsolutePath(text) && !text.contains(QChar::Null);
}

bool IsUrl(const QString& text)
{
  const QUrl url(text, QUrl::StrictMode);
  return url.isValid() && !url.scheme().isEmpty();
}

std::vector<std::unique_ptr<Setting>> MakeSettings()
{
  std::vector<std::unique_ptr<Setting>> settings;
  const auto addFlag = [&settings](const char* name, const QString& key, FlagSetting::Getter getter,
                                   FlagSetting::Setter setter)
  { settings.push_back(std::make_unique<FlagSetting>(name, key, getter, setter)); };
  using S = DaemonSettings;
  addFlag("watch-trash", KeyNeedToWatchTrash, &S::GetNeedToWatchTrashFlag, &S::SetNeedToWatchTrashFlag);
  addFlag("watch-disk-space", KeyNeedToWatchDiskSpace, &S::GetNeedToWatchDiskSpaceFlag,
          &S::SetNeedToWatchDiskSpaceFlag);
  addFlag("watch-ram", KeyNeedToWatchRAM, &S::GetNeedToWatchRAMFlag, &S::SetNeedToWatchRAMFlag);
  addFlag("watch-application-remove", KeyNeedToWatchApplicationRempve,
          &S::GetNeedToWatchApplicationRemoveFlag, &S::SetNeedToWatchApplicationRemoveFlag);
  addFlag("remind", KeyNeedToRemindAboutRegularMaintenance, &S::GetNeedToRemindAboutRegularMaintenanceFlag,
          &S::SetNeedToRemindAboutRegularMaintenanceFlag);
  settings.push_back(std::make_unique<SizeSetting>("trash-size-limit", KeyTrashSizeLimit,
                                                   &S::GetTrashSizeLimit, &S::SetTrashSizeLimit, 1000000000));
  settings.push_back(std::make_unique<SizeSetting>("free-disk-space-limit", KeyFreeDiskSpaceLimit,
                                                   &S::GetFreeDiskSpaceLimit, &S::SetFreeDiskSpaceLimit,
                                                   5000000000));
  settings.push_back(std::make_unique<FractionSetting>());
  const DateSetting::Setter setPrevious = &S::SetPrevEventDate; // of several overloads
  const DateSetting::Setter setNext = &S::SetNextEventDate;
  settings.push_back(std::make_unique<DateSetting>("previous-event", KeyPreviousRegularMaintenanceEvent,
                                                   &QPair<QDate, QDate>::first, setPrevious));
  settings.push_back(std::make_unique<DateSetting>("next-event", KeyNextRegularMaintenanceEvent,
                                                   &QPair<QDate, QDate>::second, setNext));
  settings.push_back(std::make_unique<PeriodSetting>());
  settings.push_back(std::make_unique<TextSetting>("cleaner-path", KeyCleanerPath, &IsAbsolutePath,
                                                   [] { return Texts::tr("a path that begins with /"); }));
  settings.push_back(std::make_unique<TextSetting>(
      "help-url", KeyHelpUrl, &IsUrl, [] { return Texts::tr("a URL such as https://example.org/help"); }));
  return settings;
}

} // namespace

const std::vector<std::unique_ptr<Setting>>& GetSettings()
{
  static const std::vector<std::unique_ptr<Setting>> settings = MakeSettings();
  return settings;
}

const Setting* FindSetting(const QString& nameOrKey)
{
  for (const std::unique_ptr<Setting>& setting : GetSettings())
    if (setting->Name() == nameOrKey || setting->Key() == nameOrKey)
      return setting.get();
  return nullptr;
}

QDate GetNextReminder(const Store& store, const QDate& from)
{
  const DaemonSettings::RemindPeriod period = store.settings.GetRegularMaintenanceRemindPeriod();
  if (store.settings.RemindPeriodToString(period).isNull())
    return {};
  return store.settings.CalculateNextEventFromGiven(from, period);
}

} // namespace Ostrel
