#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/** A folder of executables that stands first in PATH while it lives. */
class ToolFolder
{
public:
  ToolFolder();
  ~ToolFolder();

  ToolFolder(const ToolFolder&) = delete;
  ToolFolder& operator=(const ToolFolder&) = delete;

  QString FilePath(const QString& name) const { return folder.filePath(name); }

  /** @param script What a shell runs; `$here` is this folder. */
  void AddTool(const QString& name, const QByteArray& script);
  void AddFile(const QString& name, const QByteArray& content);

  /** The lines of a file that a tool has written; none when there is no such file. */
  QStringList ReadLines(const QString& name) const;

private:
  QTemporaryDir folder;
  QByteArray formerPath;
};
