#pragma once

#include <Common/DaemonSettings.h>

#include <QJsonValue>
#include <QSettings>
#include <QVector>

/** @file The settings of the scheduler one by one, as values that people and scripts write and read. */
namespace Ostrel
{

/** The store: the library's view of it, and the one of Qt for the texts that the library only names. */
struct Store
{
  Tavrik::Cleaner::DaemonSettings settings;
  // The texts have no getters.
  QSettings file{QStringLiteral("tavrik"), QStringLiteral("ostrel2.scheduler")};
};

/** A value in its three forms. */
struct Value
{
  QString text;  ///< For people, in their language.
  QString input; ///< What Set takes to store it again.
  QJsonValue json;
};

class Setting
{
public:
  virtual ~Setting() = default;

  const QString& Name() const { return name; }
  const QString& Key() const { return key; }

  /** @return What the library reads. */
  virtual Value Get(const Store& store) const = 0;
  virtual Value GetDefault() const = 0;

  /** @return Whether @p text is a value; it is stored then. */
  virtual bool Set(Store& store, const QString& text) const = 0;

  /** Stores the default. */
  virtual void Unset(Store& store) const = 0;

  /** @return What Set takes, in words. */
  virtual QString DescribeForms() const = 0;

protected:
  Setting(QString name, QString key) : name(std::move(name)), key(std::move(key)) {}

private:
  QString name;
  QString key;
};

/** @return All settings, in the order in which they are listed. */
const std::vector<std::unique_ptr<Setting>>& GetSettings();

/** @return The setting with this name, or with this key in the store; null when there is none. */
const Setting* FindSetting(const QString& nameOrKey);

/** @return The next reminder that the library computes from @p from; invalid for a period that is none. */
QDate GetNextReminder(const Store& store, const QDate& from);

} // namespace Ostrel
