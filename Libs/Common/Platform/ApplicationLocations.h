#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/** @file Seam: where the executables are that come with the application. */
namespace Tavrik::Platform
{

/** A path or a file name; travels as UTF-8. */
class Path
{
public:
  explicit Path(const QString& text) : text(text) {}

  const QString& Text() const { return text; }
  QByteArray ToUtf8() const { return text.toUtf8(); }

private:
  QString text;
};

/**
 * The folders that may hold a helper, the first choice first: that of the running executable, then
 * Contents/MacOS, Contents/Helpers and Contents/Resources of each ".app" bundle around it, the innermost
 * first, then the libexec folder as it lies beside the executable's folder in an installed tree, and where it
 * was configured to be installed.
 *
 * @param executableFolder Absolute, or empty when it is not known.
 */
QStringList GetHelperFolders(const QString& executableFolder);

/**
 * Needs the QCoreApplication.
 *
 * @return The absolute path of the first executable file of that name in the helper folders of the running
 *         executable; where there is none, the path it should have.
 */
Path FindHelper(const Path& fileName);

} // namespace Tavrik::Platform
