#include <Common/Platform/ApplicationLocations.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace Tavrik::Platform
{

namespace
{

void AddBundleFolders(QString folder, QStringList* folders)
{
  for (QFileInfo info(folder); info.path() != folder; folder = info.path(), info.setFile(folder))
    if (info.fileName() == QLatin1String("Contents") && info.path().endsWith(QLatin1String(".app")))
      for (const char* const place : {"MacOS", "Helpers", "Resources"})
        *folders << folder + QLatin1Char('/') + QLatin1String(place);
}

} // namespace

QStringList GetHelperFolders(const QString& executableFolder)
{
  QStringList folders;
  if (!executableFolder.isEmpty())
  {
    folders << executableFolder;
    AddBundleFolders(executableFolder, &folders);
    folders << QDir::cleanPath(executableFolder + QStringLiteral("/" TAVRIK_LIBEXEC_FROM_BIN));
  }
  folders << QStringLiteral(TAVRIK_LIBEXEC);
  folders.removeDuplicates();
  return folders;
}

Path FindHelper(const Path& fileName)
{
  const QStringList folders = GetHelperFolders(QCoreApplication::applicationDirPath());
  for (const QString& folder : folders)
  {
    const QFileInfo file(QDir(folder), fileName.Text());
    if (file.isFile() && file.isExecutable())
      return Path(file.absoluteFilePath());
  }
  return Path(QDir(folders.first()).absoluteFilePath(fileName.Text()));
}

} // namespace Tavrik::Platform
