#include "Support/ToolFolder.h"

#include <gtest/gtest.h>

#include <QFile>

ToolFolder::ToolFolder() : formerPath(qgetenv("PATH"))
{
  EXPECT_TRUE(folder.isValid());
  qputenv("PATH", QFile::encodeName(folder.path()) + ':' + formerPath);
}

ToolFolder::~ToolFolder()
{
  qputenv("PATH", formerPath);
}

void ToolFolder::AddTool(const QString& name, const QByteArray& script)
{
  AddFile(name, "#!/bin/sh\nhere='" + QFile::encodeName(folder.path()) + "'\n" + script + '\n');
  EXPECT_TRUE(QFile::setPermissions(FilePath(name), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

void ToolFolder::AddFile(const QString& name, const QByteArray& content)
{
  QFile file(FilePath(name));
  EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
  EXPECT_EQ(file.write(content), content.size());
}

QStringList ToolFolder::ReadLines(const QString& name) const
{
  QFile file(FilePath(name));
  if (!file.open(QIODevice::ReadOnly))
    return {};
  QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
  lines.removeLast(); // what follows the last line's end
  return lines;
}
