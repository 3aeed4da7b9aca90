#include "Places.h"

#include <QDir>

namespace Ostrel
{

QString GetTrashFolder()
{
  return QDir::homePath() + QStringLiteral("/.Trash");
}

// The script is fixed; what it shows are its arguments.
NotifierCommand MakeNotifierCommand(const QString& title, const QString& text)
{
  const QString script = QStringLiteral("on run argv\n"
                                        "display notification (item 2 of argv) with title (item 1 of argv)\n"
                                        "end run");
  return {QStringLiteral("osascript"), {QStringLiteral("-e"), script, title, text}};
}

} // namespace Ostrel
