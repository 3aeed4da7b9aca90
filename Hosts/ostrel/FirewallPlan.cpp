#include "FirewallPlan.h"

#include "SafeText.h"
#include "Texts.h"
#include "Values.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

namespace Ostrel
{
namespace
{

const char* GetWord(FirewallStep::Action action)
{
  switch (action)
  {
  case FirewallStep::Set:
    return "set";
  case FirewallStep::Add:
    return "add";
  case FirewallStep::Remove:
    return "remove";
  case FirewallStep::Block:
    return "block";
  case FirewallStep::Unblock:
    break;
  }
  return "unblock";
}

QString MakeAbsolute(const QString& path)
{
  return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

QString Resolve(const QString& path, const FirewallView& view)
{
  return view.isBlocked.contains(path) ? path : MakeAbsolute(path);
}

bool IsBundle(const QString& path)
{
  return path.endsWith(QLatin1String(".app")) && QFileInfo(path).isDir();
}

QString AddBundle(const QString& path, FirewallView& view)
{
  const QString absolute = MakeAbsolute(path);
  if (!IsBundle(absolute))
    return Texts::tr("%1 is not an application: a folder whose name ends with .app is wanted")
        .arg(ShowName(path));
  if (!view.isBlocked.contains(absolute))
  {
    view.applications.append(absolute);
    view.isBlocked.insert(absolute, false);
  }
  return {};
}

QString RemoveListed(const QString& path, FirewallView& view)
{
  const QString listed = Resolve(path, view);
  if (view.isBlocked.remove(listed) == 0)
    return Texts::tr("%1 is not in the firewall's list").arg(ShowName(path));
  view.applications.removeAll(listed);
  return {};
}

QString BlockListed(const QString& path, bool isBlocked, FirewallView& view)
{
  const QString listed = Resolve(path, view);
  const auto entry = view.isBlocked.find(listed);
  if (entry == view.isBlocked.end())
    return Texts::tr("%1 is not in the firewall's list; add it first").arg(ShowName(path));
  *entry = isBlocked;
  return {};
}

// The first path that is in both lists, however it is written.
QString FindCommon(const QStringList& one, const QStringList& other)
{
  QSet<QString> paths;
  for (const QString& path : one)
    paths.insert(MakeAbsolute(path));
  for (const QString& path : other)
    if (paths.contains(MakeAbsolute(path)))
      return path;
  return {};
}

} // namespace

std::size_t FindSwitch(const QString& word)
{
  std::size_t number = 0;
  while (number < switchCount && word != QLatin1String(firewallSwitches[number].word))
    ++number;
  return number;
}

QString TakeSettings(FirewallEdit& edit)
{
  for (const QString& setting : qAsConst(edit.settings))
  {
    const std::size_t number = FindSwitch(setting.section(QLatin1Char('='), 0, 0));
    const std::optional<bool> isOn = ParseFlag(setting.section(QLatin1Char('='), 1));
    if (number == switchCount || !isOn)
      return Texts::tr("%1 is not a setting; the keys are enabled, block-all, allow-signed and stealth, the "
                       "values on and off")
          .arg(ShowName(setting));
    if (edit.switches.value(number, *isOn) != *isOn)
      return Texts::tr("%1 must not be set both on and off")
          .arg(QLatin1String(firewallSwitches[number].word));
    edit.switches.insert(number, *isOn);
  }
  return {};
}

QString FindContradiction(const FirewallEdit& edit)
{
  for (const QString& path :
       {FindCommon(edit.added, edit.removed), FindCommon(edit.blocked, edit.unblocked),
        FindCommon(edit.removed, edit.blocked), FindCommon(edit.removed, edit.unblocked)})
    if (!path.isNull())
      return Texts::tr("contradictory orders for %1").arg(ShowName(path));
  return {};
}

QString ApplyEdit(const FirewallEdit& edit, FirewallView& view)
{
  QString problem;
  for (auto change = edit.switches.begin(); change != edit.switches.end(); ++change)
    view.switches[change.key()] = change.value();
  for (const QString& path : edit.added)
    problem = problem.isEmpty() ? AddBundle(path, view) : problem;
  for (const QString& path : edit.removed)
    problem = problem.isEmpty() ? RemoveListed(path, view) : problem;
  for (const QString& path : edit.blocked)
    problem = problem.isEmpty() ? BlockListed(path, true, view) : problem;
  for (const QString& path : edit.unblocked)
    problem = problem.isEmpty() ? BlockListed(path, false, view) : problem;
  return problem;
}

FirewallPlan MakePlan(const FirewallView& before, const FirewallView& after)
{
  FirewallPlan plan;
  for (std::size_t number = 0; number < switchCount; ++number)
    if (before.switches[number] != after.switches[number])
      plan.push_back({FirewallStep::Set, {}, number, after.switches[number]});
  for (const QString& path : after.applications)
    if (!before.isBlocked.contains(path))
      plan.push_back({FirewallStep::Add, path});
  for (const QString& path : before.applications)
    if (!after.isBlocked.contains(path))
      plan.push_back({FirewallStep::Remove, path});
  for (const QString& path : after.applications)
    if (after.isBlocked.value(path) != before.isBlocked.value(path, false))
      plan.push_back({after.isBlocked.value(path) ? FirewallStep::Block : FirewallStep::Unblock, path});
  return plan;
}

QByteArray ShowStep(const FirewallStep& step)
{
  const QByteArray action = QByteArray(GetWord(step.action)) + ' ';
  return step.action == FirewallStep::Set
             ? action + firewallSwitches[step.number].word + (step.isOn ? "=on" : "=off")
             : action + QuoteName(step.path);
}

QJsonObject DescribeStep(const FirewallStep& step)
{
  QJsonObject object{{QStringLiteral("action"), QLatin1String(GetWord(step.action))}};
  if (step.action == FirewallStep::Set)
  {
    object.insert(QStringLiteral("switch"), QLatin1String(firewallSwitches[step.number].key));
    object.insert(QStringLiteral("on"), step.isOn);
  }
  else
    object.insert(QStringLiteral("path"), step.path);
  return object;
}

} // namespace Ostrel
