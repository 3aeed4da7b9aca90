#pragma once

#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>

#include <array>
#include <vector>

/** @file What an edit of the firewall amounts to, before anybody is asked for a password. */
namespace Ostrel
{

/** A switch of the firewall by its names on the command line and in JSON. */
struct FirewallSwitch
{
  const char* word;
  const char* key;
};

constexpr std::size_t switchCount = 4;
constexpr FirewallSwitch firewallSwitches[switchCount] = {{"enabled", "enabled"},
                                                          {"block-all", "blockAll"},
                                                          {"allow-signed", "allowSigned"},
                                                          {"stealth", "stealth"}};

/** @return The number of the switch called @p word on the command line; switchCount for none. */
std::size_t FindSwitch(const QString& word);

/** The firewall at one moment. */
struct FirewallView
{
  std::array<bool, switchCount> switches = {};
  QStringList applications;      ///< In the firewall's order.
  QMap<QString, bool> isBlocked; ///< Of every application.
};

/** One step from one view to another. */
struct FirewallStep
{
  enum Action
  {
    Set,
    Add,
    Remove,
    Block,
    Unblock
  };

  Action action;
  QString path;           ///< Of every action but Set.
  std::size_t number = 0; ///< The switch of Set.
  bool isOn = false;      ///< What it is set to.
};

using FirewallPlan = std::vector<FirewallStep>;

/** What the command line asks for. */
struct FirewallEdit
{
  QStringList added;
  QStringList removed;
  QStringList blocked;
  QStringList unblocked;
  QStringList settings; ///< "KEY=on|off" as written, which TakeSettings() turns into switches.
  QMap<std::size_t, bool> switches;
};

/** Adds the switches that are written in @p edit. @return What is wrong with them, in the user's language;
 * empty when nothing is. */
QString TakeSettings(FirewallEdit& edit);

/** @return What contradicts itself in @p edit, in the user's language; empty when nothing does. */
QString FindContradiction(const FirewallEdit& edit);

/**
 * Makes @p view what @p edit wants it to be.
 *
 * Paths are taken as they are listed, or else in their absolute form. @return Why that is not possible, in
 * the user's language; empty when it is.
 */
QString ApplyEdit(const FirewallEdit& edit, FirewallView& view);

/** @return The steps that lead from @p before to @p after, switches first; the order of applications does not
 * count. */
FirewallPlan MakePlan(const FirewallView& before, const FirewallView& after);

/** @return One line, without its end, that is safe to show. */
QByteArray ShowStep(const FirewallStep& step);

QJsonObject DescribeStep(const FirewallStep& step);

} // namespace Ostrel
