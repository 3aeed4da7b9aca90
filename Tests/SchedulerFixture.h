#pragma once

#include "ExitCodes.h"
#include "Support/HostProcess.h"
#include "Support/Programs.h"
#include "Support/ToolFolder.h"

#include <Common/DaemonSettings.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <csignal>
#include <memory>
#include <unistd.h>

using namespace Ostrel;
using Tavrik::Cleaner::DaemonSettings;

/** A scheduler that looks every 30 ms and prints what it does as JSON. */
class SchedulerProcess : public HostProcess
{
public:
  explicit SchedulerProcess(const QStringList& arguments)
      : HostProcess(QStringLiteral(OSTREL_SCHEDULER), arguments)
  {
  }

  qint64 CountEvents(const QString& name)
  {
    const QList<QJsonObject> events = Events();
    return std::count_if(events.begin(), events.end(),
                         [&name](const QJsonObject& event) { return event.value("event") == name; });
  }

  /** Waits until it has looked @p count times more, the first of them begun after this call. */
  bool WaitForLooks(int count = 2)
  {
    while (waitForReadyRead(0)) // what it has printed already and nobody has read
      continue;
    const qint64 before = CountEvents("looked");
    return WaitForOutput([&] { return CountEvents("looked") > before + count; }, "further looks");
  }

  QList<QJsonObject> Notices(const QString& event = QStringLiteral("notice"))
  {
    QList<QJsonObject> notices;
    for (const QJsonObject& entry : Events())
      if (entry.value("event") == event)
        notices.append(entry.value("notice").toObject());
    return notices;
  }

  QStringList Kinds()
  {
    QStringList kinds;
    for (const QJsonObject& notice : Notices())
      kinds.append(notice.value("kind").toString());
    return kinds;
  }

  bool WaitForNotices(int count)
  {
    return WaitForOutput([&] { return Notices().size() >= count; }, "notice " + QByteArray::number(count));
  }
};

/** Folders and settings of the test's own; nothing is watched until the test says so. */
class SchedulerFixture : public testing::Test
{
protected:
  using Process = std::unique_ptr<SchedulerProcess>;

  SchedulerFixture()
      : home(QDir::homePath()),
        trash(home + "/trash"),
        applications(home + "/apps"),
        stateFile(home + "/state/state.json")
  {
    qputenv("XDG_DATA_HOME", QFile::encodeName(home + "/data"));
    tools.AddTool("notify-send", "for text; do printf '%s\\n' \"$text\"; done >>\"$here/shown\"");
    QDir().mkpath(trash);
    QDir().mkpath(applications);
    settings.SetNeedToWatchTrashFlag(false);
    settings.SetNeedToWatchDiskSpaceFlag(false);
    settings.SetNeedToWatchRAMFlag(false);
    settings.SetNeedToWatchApplicationRemoveFlag(false);
    settings.SetNeedToRemindAboutRegularMaintenanceFlag(false);
  }

  QStringList Arguments(const QStringList& more = {}) const
  {
    return QStringList{"--json", "--interval",     "0.03",       "--trash", trash,    "--disk",
                       home,     "--applications", applications, "--state", stateFile} +
           more;
  }

  Process Begin(const QStringList& more = {}) const
  {
    auto scheduler = std::make_unique<SchedulerProcess>(Arguments(more));
    scheduler->Begin();
    return scheduler;
  }

  /** A scheduler that is on the bus. */
  Process BeginOnBus(const QStringList& more = {}) const
  {
    Process scheduler = Begin(more);
    EXPECT_FALSE(scheduler->WaitForEvent({{"event", "joined"}}).isEmpty());
    return scheduler;
  }

  /** Its memory is never enough; whatever the machine has. */
  void WantAllMemory()
  {
    settings.SetFreeRAMLimit(2);
    settings.SetNeedToWatchRAMFlag(true);
  }

  void WantNoMemory() { settings.SetFreeRAMLimit(0); }

  QString home;
  QString trash;
  QString applications;
  QString stateFile;
  ToolFolder tools;
  DaemonSettings settings;
};
