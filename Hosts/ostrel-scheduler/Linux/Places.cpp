#include "Places.h"

#include <QStandardPaths>

namespace Ostrel
{
namespace
{

// Some desktops show the text as markup. The quotes are left alone, for the others.
QString EscapeMarkup(QString text)
{
  return text.replace(QLatin1Char('&'), QLatin1String("&amp;"))
      .replace(QLatin1Char('<'), QLatin1String("&lt;"))
      .replace(QLatin1Char('>'), QLatin1String("&gt;"));
}

} // namespace

QString GetTrashFolder()
{
  return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/Trash");
}

NotifierCommand MakeNotifierCommand(const QString& title, const QString& text)
{
  return {QStringLiteral("notify-send"),
          {QStringLiteral("--app-name=ostrel"), QStringLiteral("--"), title, EscapeMarkup(text)}};
}

} // namespace Ostrel
