#include <Common/PathHelpers.h>

#include <QVector>

#include <algorithm>
#include <unistd.h>

namespace Tavrik::Cleaner
{

namespace
{

int FindLastSeparator(const QString& path)
{
  const int slash = path.lastIndexOf(QLatin1Char('/'));
  return slash >= 0 ? slash : path.lastIndexOf(QLatin1Char('\\'));
}

QString ExtractNameWith(const QString& extension, const QString& path)
{
  for (const QStringRef& component : path.splitRef(dirSep))
    if (component.endsWith(extension))
      return component.chopped(extension.size()).toString();
  return {};
}

// Calls visit with the path up to and with each component that ends with the extension, until it says no.
template<typename Visit>
void VisitPathsWith(const QString& extension, const QString& path, Visit visit)
{
  QString accumulated;
  for (const QStringRef& component : path.splitRef(dirSep, Qt::SkipEmptyParts))
  {
    accumulated += dirSep;
    accumulated += component;
    if (component.endsWith(extension) && !visit(accumulated))
      return;
  }
}

QString ExtractPathWith(const QString& extension, const QString& path)
{
  QString found;
  VisitPathsWith(extension, path,
                 [&found](const QString& candidate)
                 {
                   found = candidate;
                   return false;
                 });
  return found;
}

template<typename Iterator>
QString FindIdentifier(const Iterator& first, const Iterator& last)
{
  const auto isIdentifier = [](const QStringRef& component)
  { return component.count(QLatin1Char('.')) >= 2; };
  const Iterator found = std::find_if(first, last, isIdentifier);
  return found == last ? QString() : found->toString();
}

} // namespace

QString ExtractParentPath(const QString& path)
{
  const int separator = FindLastSeparator(path);
  if (separator < 0)
    return {};
  if (separator == 0)
    return path.size() >= 2 ? dirSep : QStringLiteral("");
  return path.left(separator);
}

QString ExtractFileName(const QString& path)
{
  return path.mid(FindLastSeparator(path) + 1);
}

QString ExtractBundleName(const QString& path)
{
  return ExtractNameWith(appExt, path);
}

QString ExtractBundlePath(const QString& path)
{
  return ExtractPathWith(appExt, path);
}

QString ExtractBundlePathLast(const QString& path)
{
  QString paths;
  VisitPathsWith(appExt, path,
                 [&paths](const QString& bundle)
                 {
                   paths += bundle;
                   return true;
                 });
  return paths;
}

QString ExtractBundleIdentifier(const QString& path)
{
  const QVector<QStringRef> components = path.splitRef(dirSep);
  return FindIdentifier(components.begin(), components.end());
}

QString ExtractBundleIdentifierLast(const QString& path)
{
  const QVector<QStringRef> components = path.splitRef(dirSep);
  return FindIdentifier(components.rbegin(), components.rend());
}

// NOLINTBEGIN(performance-unnecessary-value-param): this is how the interface takes them.
QString ExtractLProjName(QString path)
{
  return ExtractNameWith(lProjExt, path);
}

QString ExtractLProjPath(QString path)
{
  return ExtractPathWith(lProjExt, path);
}

QString ExtractBasicLangCode(QString code)
{
  return code.left(code.indexOf(QLatin1Char('_'))).left(code.indexOf(QLatin1Char('-')));
}

QString CutFromFirstParentheses(QString text)
{
  const int start = text.indexOf(QLatin1Char('(')) + 1;
  const int length = text.indexOf(QLatin1Char(')')) - start;
  return text.mid(start, length < 0 ? -1 : length);
}
// NOLINTEND(performance-unnecessary-value-param)

QString GetUserIdString()
{
  return QString::number(getuid());
}

QString GetEffectiveUserIdString()
{
  return QString::number(geteuid());
}

} // namespace Tavrik::Cleaner
