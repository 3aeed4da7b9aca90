#include "Texts.h"

#include <QLocale>
#include <QTranslator>

// Part of a static library, which the linker would leave out together with the catalogues. In no namespace,
// because what the macro declares is in none.
static void InitResources()
{
  Q_INIT_RESOURCE(translations);
}

namespace Ostrel
{

void InstallTranslations()
{
  InitResources();
  auto* const translator = new QTranslator(QCoreApplication::instance());
  if (translator->load(QLocale::system(), QStringLiteral("ostrel"), QStringLiteral("_"),
                       QStringLiteral(":/translations")))
    QCoreApplication::installTranslator(translator);
}

} // namespace Ostrel
