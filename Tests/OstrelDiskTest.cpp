// Drives "ostrel disk" with a disk tool that is a shell script in PATH.

#include "ExitCodes.h"
#include "Support/HostProcess.h"
#include "Support/Programs.h"
#include "Support/PseudoTerminal.h"
#include "Support/ToolFolder.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStorageInfo>

#include <cmath>
#include <csignal>

using namespace Ostrel;

namespace
{

Outcome RunDisk(const QStringList& arguments)
{
  return RunHost(QStringLiteral(OSTREL), QStringList{"disk"} + arguments);
}

QByteArray Describe(const QByteArray& name, const QByteArray& mountPoint, const QByteArray& total,
                    const QByteArray& free)
{
  return "printf '%s\\n' 'Volume Name: " + name + "' 'Mounted: Yes' 'Mount Point: " + mountPoint +
         "' 'Total Size: " + total + "' 'Volume Free Space: " + free + "'";
}

class Disk : public testing::Test
{
protected:
  void SetUp() override
  {
    for (const char* name : {"COLUMNS", "NO_COLOR", "LC_ALL", "LANG", "LANGUAGE"})
      qunsetenv(name);
    qputenv("TERM", "xterm");
  }

  void AddDisks(const QByteArray& secondName = "Data")
  {
    tools.AddTool(
        "diskutil",
        "case \"$1 $2\" in\n"
        "'list ') printf '/dev/disk0\\n  1: x disk0s1\\n  2: x disk0s2\\n  3: x disk0s3\\n' ;;\n"
        "'info disk0s1') " +
            Describe("System", "/", "500.0 GB (500000000000 Bytes)", "125.0 GB (125000000000 Bytes)") +
            " ;;\n'info disk0s2') " + Describe(secondName, QFile::encodeName(QDir::tempPath()), "a lot", "") +
            " ;;\nesac");
  }

  ToolFolder tools;
};

TEST_F(Disk, ListPrintsATableForPeople)
{
  AddDisks();
  const Outcome outcome = RunDisk({"list"});
  EXPECT_EQ(outcome.code, Done);
  const QList<QByteArray> lines = outcome.out.split('\n');
  ASSERT_EQ(lines.size(), 4) << outcome.out.toStdString();
  EXPECT_EQ(lines[0].simplified(), "Name Mounted at Total Free Used");
  EXPECT_EQ(lines[1].simplified(), "System / 500.0 GB 125.0 GB 75 %");
  EXPECT_EQ(lines[2].simplified(), "Data " + QDir::tempPath().toUtf8() + " unknown unknown unknown");
  EXPECT_FALSE(outcome.out.contains('\x1B'));
  EXPECT_EQ(outcome.err, "");
}

TEST_F(Disk, ListInJsonIsOneObject)
{
  AddDisks();
  const Outcome outcome = RunDisk({"list", "--json"});
  EXPECT_EQ(outcome.code, Done);
  EXPECT_EQ(outcome.out,
            "{\"disks\":[{\"freeBytes\":125000000000,\"mountPoint\":\"/\",\"name\":\"System\","
            "\"totalBytes\":500000000000,\"usedPercent\":75},{\"freeBytes\":null,\"mountPoint\":\"" +
                QDir::tempPath().toUtf8() +
                "\",\"name\":\"Data\",\"totalBytes\":null,\"usedPercent\":null}]}\n");
}

TEST_F(Disk, ListOnATerminalFitsItAndShortensNamesInTheMiddle)
{
  AddDisks(QByteArray("Beginning ") + QByteArray("x").repeated(100) + " End");
  {
    PseudoTerminal terminal(80, QStringLiteral(OSTREL), {"disk", "list"});
    EXPECT_EQ(terminal.Finish(), Done);
    const QString screen = QString::fromUtf8(terminal.Screen());
    EXPECT_TRUE(screen.contains("\x1B[1mName")) << screen.toStdString();
    EXPECT_TRUE(screen.contains("#######---")) << screen.toStdString();
    EXPECT_TRUE(screen.contains(QChar(0x2026)));
    EXPECT_TRUE(screen.contains("Begin"));
    for (QString line : screen.split('\n'))
      EXPECT_LE(line.remove("\x1B[1m").remove("\x1B[0m").size(), 80) << line.toStdString();
  }
  PseudoTerminal wide(200, QStringLiteral(OSTREL), {"disk", "list"});
  EXPECT_EQ(wide.Finish(), Done);
  EXPECT_FALSE(QString::fromUtf8(wide.Screen()).contains(QChar(0x2026)));
  EXPECT_TRUE(RunDisk({"list"}).out.contains(QByteArray("x").repeated(100)));
}

TEST_F(Disk, ListHasNoColoursWhereTheyAreNotWanted)
{
  AddDisks();
  qputenv("NO_COLOR", "1");
  PseudoTerminal terminal(80, QStringLiteral(OSTREL), {"disk", "list"});
  EXPECT_EQ(terminal.Finish(), Done);
  EXPECT_FALSE(terminal.Screen().contains('\x1B'));
}

TEST_F(Disk, NamesWithControlsAreSafeToShow)
{
  AddDisks("a\x1B[31m\tb");
  EXPECT_TRUE(RunDisk({"list"}).out.contains("a\\u001b[31m\\tb"));
}

TEST_F(Disk, FindPrintsTheDiskOfThePath)
{
  AddDisks();
  const Outcome root = RunDisk({"find", "/etc"});
  EXPECT_EQ(root.code, Done);
  EXPECT_TRUE(root.out.contains("System"));
  EXPECT_FALSE(root.out.contains("Data"));
  const Outcome json = RunDisk({"find", QDir::tempPath(), "--json"});
  const QJsonObject object = QJsonDocument::fromJson(json.out).object();
  EXPECT_EQ(object.keys(), (QStringList{"disk", "path"}));
  EXPECT_EQ(object["disk"].toObject()["name"].toString(), "Data");
}

TEST_F(Disk, FindDoesNotTakeTheBeginningOfANameForAFolder)
{
  const QString folder = QDir::tempPath() + "/ab";
  ASSERT_TRUE(QDir().mkdir(folder));
  tools.AddTool("diskutil", "case \"$1 $2\" in\n"
                            "'list ') printf '  1: x disk0s1\\n  2: x disk0s2\\n' ;;\n"
                            "'info disk0s1') " +
                                Describe("System", "/", "", "") + " ;;\n'info disk0s2') " +
                                Describe("A", QFile::encodeName(QDir::tempPath()) + "/a", "", "") +
                                " ;;\nesac");
  EXPECT_TRUE(RunDisk({"find", folder}).out.contains("System"));
  EXPECT_TRUE(QDir().rmdir(folder));
}

QJsonObject Find(const QString& path)
{
  const Outcome outcome = RunDisk({"find", path, "--json"});
  EXPECT_EQ(outcome.code, Done) << outcome.err.toStdString();
  return QJsonDocument::fromJson(outcome.out).object()["disk"].toObject();
}

TEST_F(Disk, FindAsksTheSystemWhereTheToolDoesNotListTheFileSystem)
{
  const QString mountPoint = QStringLiteral("/dev/shm");
  if (QStorageInfo(mountPoint).rootPath() != mountPoint)
    GTEST_SKIP() << "there is no file system in memory at " << mountPoint.toStdString();
  AddDisks();
  const QJsonObject disk = Find(mountPoint);
  EXPECT_EQ(disk["mountPoint"].toString(), mountPoint);
  EXPECT_EQ(disk["name"].toString(), "shm");
  EXPECT_EQ(disk["totalBytes"].toVariant().toLongLong(), QStorageInfo(mountPoint).bytesTotal());
  EXPECT_EQ(Find("/proc/self")["mountPoint"].toString(), "/proc");
}

#ifdef __linux__
TEST_F(Disk, ListAgreesWithDf)
{
  const Outcome probe = RunHost("df", {"--output=pcent", "-B1", "/"});
  if (probe.code != 0)
    GTEST_SKIP() << "this df has no --output";
  // Other processes write meanwhile, so both are asked until they have seen the same.
  const auto agrees = []
  {
    const QJsonArray disks =
        QJsonDocument::fromJson(RunDisk({"list", "--json"}).out).object()["disks"].toArray();
    EXPECT_FALSE(disks.isEmpty());
    for (const QJsonValue& value : disks)
    {
      const QJsonObject disk = value.toObject();
      const Outcome df =
          RunHost("df", {"--output=size,avail,pcent", "-B1", "--", disk["mountPoint"].toString()});
      const QList<QByteArray> fields = df.out.split('\n').value(1).simplified().split(' ');
      const double free = disk["freeBytes"].toDouble();
      const double tolerance = 0.01 * disk["totalBytes"].toDouble();
      if (fields.value(0).toDouble() != disk["totalBytes"].toDouble() ||
          std::abs(fields.value(1).toDouble() - free) > tolerance ||
          fields.value(2) != QByteArray::number(disk["usedPercent"].toInt()) + '%')
        return false;
    }
    return true;
  };
  EXPECT_TRUE(WaitFor(agrees));
}
#endif

TEST_F(Disk, FindOfNothingIsToldPlainly)
{
  AddDisks();
  const Outcome outcome = RunDisk({"find", "/nonexistent\n"});
  EXPECT_EQ(outcome.code, Failed);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "ostrel: there is no \"/nonexistent\\n\"\n");
}

TEST_F(Disk, ToolThatIsMissingEndsWithToolMissing)
{
  // The program from the build tree always has its stand-ins.
  if (QFile::exists(QStringLiteral(TAVRIK_LIBEXEC "/standins/diskutil")))
    GTEST_SKIP() << "stand-ins are installed here";
  qputenv("PATH", "/nonexistent");
  for (const QStringList& verb : {QStringList{"disk", "list", "--json"}, QStringList{"disk", "find", "/"}})
  {
    const Outcome outcome = RunHost(QStringLiteral(OSTREL_INSTALLED), verb);
    EXPECT_EQ(outcome.code, ToolMissing);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(outcome.err.startsWith("ostrel: the disk tool diskutil is missing"));
  }
}

TEST_F(Disk, ToolThatFailsIsTold)
{
  tools.AddTool("diskutil", "exit 1");
  const Outcome outcome = RunDisk({"list"});
  EXPECT_EQ(outcome.code, Failed);
  EXPECT_EQ(outcome.err, "ostrel: diskutil tells of no mounted disk\n");
}

TEST_F(Disk, SignalEndsAWaitForAToolThatHangs)
{
  tools.AddTool("diskutil", "echo $$ >\"$here/pid\"; exec sleep 20");
  HostProcess process(QStringLiteral(OSTREL), {"disk", "list"});
  process.Begin();
  while (tools.ReadLines("pid").isEmpty() && process.state() == QProcess::Running)
    process.waitForFinished(10);
  process.Signal(SIGINT);
  EXPECT_EQ(process.Finish(), EndedBySignal + SIGINT);
  kill(tools.ReadLines("pid").value(0).toInt(), SIGKILL);
}

} // namespace
