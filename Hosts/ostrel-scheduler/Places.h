#pragma once

#include <QString>
#include <QStringList>

/** @file Where things are on this system. */
namespace Ostrel
{

/** @return The user's trash, whether it is there or not. */
QString GetTrashFolder();

/** A tool that shows a text on the desktop. */
struct NotifierCommand
{
  QString tool; ///< Its name, to be found in PATH.
  QStringList arguments;
};

/** @return What shows @p text under @p title. Neither is read as a script or as options. */
NotifierCommand MakeNotifierCommand(const QString& title, const QString& text);

} // namespace Ostrel
