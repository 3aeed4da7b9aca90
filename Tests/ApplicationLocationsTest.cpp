#include <Common/Platform/ApplicationLocations.cpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>
#include <vector>

using namespace Tavrik::Platform;
using testing::ElementsAre;

namespace
{

// The test below starts a copy of this program where an application would be, to say what it finds.
const char* const askedName = "TAVRIK_TEST_HELPER";

class Installed
{
public:
  // Copies this program to a path within the folder.
  explicit Installed(const QString& program) : program(folder.filePath(program))
  {
    QDir().mkpath(QFileInfo(this->program).path());
    EXPECT_TRUE(QFile::copy(QCoreApplication::applicationFilePath(), this->program));
  }

  void Put(const QString& path, bool isExecutable = true)
  {
    QDir().mkpath(QFileInfo(Full(path)).path());
    QFile file(Full(path));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.setPermissions(isExecutable ? QFile::ReadOwner | QFile::ExeOwner : QFile::ReadOwner);
  }

  QString Full(const QString& path) const { return QDir(folder.path()).canonicalPath() + '/' + path; }

  // What the copy finds, as a path within the folder where it is in there.
  QString Find(const QString& helper) const
  {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(askedName), helper);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, {QStringLiteral("--gtest_filter=HelperOfACopy.IsTold")});
    EXPECT_TRUE(process.waitForFinished());
    for (const QByteArray& line : process.readAllStandardOutput().split('\n'))
      if (line.startsWith("FOUND "))
        return QString::fromUtf8(line.mid(6)).remove(Full(QString()));
    return QStringLiteral("nothing told");
  }

private:
  QTemporaryDir folder;
  QString program;
};

TEST(HelperOfACopy, IsTold)
{
  const QByteArray name = qgetenv(askedName);
  if (!name.isEmpty())
    std::printf("\nFOUND %s\n", FindHelper(Path(QString::fromUtf8(name))).ToUtf8().constData());
  else
    EXPECT_TRUE(QDir::isAbsolutePath(FindHelper(Path(QStringLiteral("no such helper"))).Text()));
}

TEST(Path, TravelsAsUtf8)
{
  EXPECT_EQ(Path(QStringLiteral("Purg\u00e9r")).ToUtf8(), QByteArray("Purg\xc3\xa9r"));
}

TEST(HelperFolders, OfAFolderNamedContentsOutsideABundleAreThoseOfAPlainProgram)
{
  for (const char* folder :
       {"/Contents/bin", "/home/u/Contents/tools/bin", "/home/u/app/Contents/MacOS",
        "/home/u/O.APP/Contents/MacOS", "/home/u/O.app/x/Contents/MacOS", "/O.app.d/Contents/MacOS"})
  {
    const QString own = QString::fromLatin1(folder);
    EXPECT_EQ(GetHelperFolders(own),
              QStringList({own, QDir::cleanPath(own + QStringLiteral("/" TAVRIK_LIBEXEC_FROM_BIN)),
                           QStringLiteral(TAVRIK_LIBEXEC)}))
        << folder;
  }
}

TEST(HelperFolders, OfAPlainProgramAreItsOwnAndLibexec)
{
  EXPECT_EQ(GetHelperFolders(QStringLiteral("/opt/tavrik/bin")),
            QStringList({QStringLiteral("/opt/tavrik/bin"), QStringLiteral("/opt/tavrik/libexec/tavrik"),
                         QStringLiteral(TAVRIK_LIBEXEC)}));
}

TEST(HelperFolders, OfABundledProgramAreThoseOfTheBundleInOrder)
{
  EXPECT_EQ(
      GetHelperFolders(QStringLiteral("/A/O.app/Contents/MacOS")).mid(0, 3),
      QStringList({QStringLiteral("/A/O.app/Contents/MacOS"), QStringLiteral("/A/O.app/Contents/Helpers"),
                   QStringLiteral("/A/O.app/Contents/Resources")}));
}

TEST(HelperFolders, OfABundleInABundleAreThoseOfTheInnerOneFirst)
{
  const QStringList folders =
      GetHelperFolders(QStringLiteral("/A/O.app/Contents/Library/LoginItems/S.app/Contents/MacOS"));
  EXPECT_EQ(
      folders.mid(0, 6),
      QStringList({QStringLiteral("/A/O.app/Contents/Library/LoginItems/S.app/Contents/MacOS"),
                   QStringLiteral("/A/O.app/Contents/Library/LoginItems/S.app/Contents/Helpers"),
                   QStringLiteral("/A/O.app/Contents/Library/LoginItems/S.app/Contents/Resources"),
                   QStringLiteral("/A/O.app/Contents/MacOS"), QStringLiteral("/A/O.app/Contents/Helpers"),
                   QStringLiteral("/A/O.app/Contents/Resources")}));
}

TEST(HelperFolders, OfAnUnknownProgramAreWhereTheHelpersWereInstalled)
{
  EXPECT_EQ(GetHelperFolders(QString()), QStringList(QStringLiteral(TAVRIK_LIBEXEC)));
}

TEST(HelperFolders, EndForAnyText)
{
  for (const char* const text :
       {"/", "//", ".", "..", "a", "a/b", "/a/", "Contents", "/Contents", "Contents/.."})
    EXPECT_FALSE(GetHelperFolders(QString::fromLatin1(text)).isEmpty()) << text;
}

TEST(FindHelper, TakesTheFirstThatCanBeRun)
{
  Installed application(QStringLiteral("O.app/Contents/MacOS/ostrel"));
  const QString helper = QStringLiteral("The H\u00e9lper");
  EXPECT_EQ(application.Find(helper), "O.app/Contents/MacOS/" + helper); // where it should be
  application.Put("O.app/Contents/Resources/" + helper);
  EXPECT_EQ(application.Find(helper), "O.app/Contents/Resources/" + helper);
  application.Put("O.app/Contents/Helpers/" + helper);
  EXPECT_EQ(application.Find(helper), "O.app/Contents/Helpers/" + helper);
  QDir().mkpath(application.Full("O.app/Contents/MacOS/" + helper)); // a folder is none
  EXPECT_EQ(application.Find(helper), "O.app/Contents/Helpers/" + helper);
  QDir().rmdir(application.Full("O.app/Contents/MacOS/" + helper));
  application.Put("O.app/Contents/MacOS/" + helper, false); // nor is a file that cannot be run
  EXPECT_EQ(application.Find(helper), "O.app/Contents/Helpers/" + helper);
}

TEST(FindHelper, LooksBesideAPlainProgramAndThenInLibexec)
{
  Installed application(QStringLiteral("bin/ostrel"));
  application.Put(QStringLiteral("libexec/tavrik/helper"));
  EXPECT_EQ(application.Find(QStringLiteral("helper")), "libexec/tavrik/helper");
  application.Put(QStringLiteral("bin/helper"));
  EXPECT_EQ(application.Find(QStringLiteral("helper")), "bin/helper");
}

} // namespace
