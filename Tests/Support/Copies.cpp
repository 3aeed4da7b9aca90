#include "Support/Copies.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

const char* const commonLibrary = TAVRIK_COMMON_LIBRARY;

namespace
{

QString copies; // the folder of the copies; empty when there are none

} // namespace

void CopyForOthers(const QStringList& files)
{
  const QByteArray home = QFile::encodeName(QDir::homePath());
  copies = QDir::homePath() + QStringLiteral("/copies/");
  ASSERT_TRUE(QDir().mkpath(copies));
  for (const QByteArray& folder : {home, home + "/copies"})
    ASSERT_EQ(0, chmod(folder.constData(), 0711));
  for (const QString& file : files)
  {
    const QString copy = copies + QFileInfo(file).fileName();
    ASSERT_TRUE(QFile::exists(copy) || QFile::copy(file, copy)) << qPrintable(file);
    ASSERT_EQ(0, chmod(QFile::encodeName(copy).constData(), 0755));
  }
  qputenv("LD_LIBRARY_PATH", home + "/copies");
}

QString FindCopy(const QString& file)
{
  const QString copy = copies + QFileInfo(file).fileName();
  return !copies.isEmpty() && QFile::exists(copy) ? copy : file;
}
