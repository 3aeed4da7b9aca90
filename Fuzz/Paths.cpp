// Paths, sizes and frequencies of any text, held against facts that hold for all of them and against second
// versions of the simpler functions.

#include <Common/AccessChecks.h>
#include <Common/FormatText.h>
#include <Common/PathHelpers.h>
#include <Common/PathSafety.h>

#include "Support/Require.h"

#include <QDir>
#include <QFileInfo>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>
#include <limits>

namespace
{

using namespace Tavrik::Cleaner;

QString LastBehind(const QString& path, const QChar separator)
{
  return path.contains(separator) ? path.split(separator).last() : path;
}

void PickApart(const QString& path)
{
  const QString parent = ExtractParentPath(path);
  const QString name = ExtractFileName(path);
  const QChar separator = path.contains('/') ? '/' : '\\';
  Require(name == LastBehind(path, separator), "a name is what stands behind the last separator");
  if (!path.contains(separator))
    Require(parent.isNull(), "without a separator there is no parent");
  else if (parent == "/" && path.lastIndexOf(separator) == 0)
    Require(path == separator + name && !name.isEmpty(), "the root is the parent of what lies in it");
  else
    Require(path == parent + separator + name, "a parent, a separator and a name are the path");
}

void PickComponents(const QString& path)
{
  const QStringList components = path.split('/');
  const auto first = [&](const QString& extension)
  {
    int at = 0;
    while (at < components.size() && !components.at(at).endsWith(extension))
      ++at;
    return at;
  };
  const auto pathTo = [&](int at)
  {
    QString text;
    for (int i = 0; i <= at && at < components.size(); ++i)
      if (!components.at(i).isEmpty())
        text += "/" + components.at(i);
    return text;
  };
  const int bundle = first(".app");
  const int folder = first(".lproj");
  Require(ExtractBundleName(path) + (bundle < components.size() ? ".app" : "") == components.value(bundle),
          "a bundle's name is its component's");
  Require(ExtractLProjName(path) + (folder < components.size() ? ".lproj" : "") == components.value(folder),
          "a localisation folder's name is its component's");
  Require(ExtractBundlePath(path) == pathTo(bundle), "a bundle's path goes down to it");
  Require(ExtractLProjPath(path) == pathTo(folder), "a localisation folder's path goes down to it");
  QString all;
  for (int i = 0; i < components.size(); ++i)
    if (components.at(i).endsWith(".app"))
      all += pathTo(i);
  Require(ExtractBundlePathLast(path) == all, "the paths of all bundles stand one behind the other");

  QStringList identifiers;
  for (const QString& component : components)
    if (component.indexOf('.') != component.lastIndexOf('.'))
      identifiers.append(component);
  Require(ExtractBundleIdentifier(path) == identifiers.value(0), "an identifier is the first with two dots");
  Require(ExtractBundleIdentifierLast(path) == identifiers.value(identifiers.size() - 1),
          "or the last with two dots");
}

void CutTexts(const QString& text)
{
  const QString code = ExtractBasicLangCode(text);
  Require(text.startsWith(code) && !code.contains('_') && !code.contains('-'),
          "a language is a beginning without what follows it");
  const QString inside = CutFromFirstParentheses(text);
  Require(text.contains(inside), "what stands in parentheses is part of the text");
  if (!text.contains('(') && !text.contains(')'))
    Require(inside == text, "without parentheses it is all of it");
}

bool IsListedPrefix(const QString& path)
{
  const QStringList prefixes = {"/Users",
                                "/Library/Logs",
                                "/System/Library/Logs",
                                "/Library/Caches",
                                "/System/Library/Caches",
                                "/Library/LaunchAgents",
                                "/Library/LaunchDaemons",
                                "/Applications",
                                "/private/var/log/asl",
                                "/var/folders"};
  for (const QString& prefix : prefixes)
    if ((path + '/').startsWith(prefix + '/'))
      return true;
  return false;
}

void Judge(const QString& path)
{
  const bool isSafe = IsPathSafe(path);
  Require(isSafe || !IsListedPrefix(path) || ("/" + path + "/").contains("/../"),
          "what lies in a listed folder is safe unless it leads out");
  if (isSafe)
  {
    Require(path.startsWith('/'), "what is safe is absolute");
    Require(!(path + '/').contains("/../"), "what is safe leads nowhere else");
    Require(path.endsWith(".lproj") || IsListedPrefix(path) ||
                (path.startsWith("/Volumes") && QFileInfo::exists(path)),
            "what is safe has a reason to be");
    Require(IsPathScannable(path), "what is safe may be looked at");
    if (IsListedPrefix(path))
      Require(IsPathSafe(path + "/x") && IsPathSafe(path + "/a..b"), "what lies in what is safe is safe");
    Require(!IsPathSafe(path + "/.."), "a way out is not safe");
  }
  Require(!IsPathSafe('x' + path) && !IsPathSafe("/Users/../" + path), "no relative path, no way up is safe");
  Require(IsPathScannable(path) == (isSafe || (path + '/').startsWith("/Library/")),
          "what may be looked at is safe or in the system's library");
  Require(IsPathScannable("/Library/" + path), "the library may be looked at");
}

void Filter(const QStringList& folders)
{
  const QStringList kept = FilterSubDirs(folders);
  if (folders.contains("/") || folders.contains("\\"))
  {
    Require(kept == QStringList("/"), "the root covers everything");
    return;
  }
  for (const QString& folder : kept)
    Require(folders.contains(folder) && QFileInfo::exists(folder), "what is kept was given and exists");
  Require(FilterSubDirs(kept) == kept, "what is kept is kept again");
  for (const QString& folder : folders)
  {
    const QString canonical = QFileInfo(folder).canonicalFilePath();
    bool isCovered = !QFileInfo::exists(folder);
    for (const QString& other : kept)
      isCovered = isCovered || (canonical + '/').startsWith(QFileInfo(other).canonicalFilePath() + '/');
    Require(isCovered, "every folder that exists is covered by one that is kept");
  }
}

void Measure(const QString& text, FuzzedDataProvider* provider)
{
  const long long size = ParseSize(text);
  const bool hasUnit =
      text.toLower().endsWith("bytes") || text.endsWith("KB") || text.endsWith("MB") || text.endsWith("GB");
  Require(hasUnit || size == -1, "a size without a unit is none");
  const bool hasFrequency = text.endsWith("MHz") || text.endsWith("GHz");
  Require(hasFrequency || ParseFrequency(text) == -1, "a frequency without a unit is none");
  QString dotted = text;
  Require(ParseSize(dotted.replace(',', '.')) == size, "a comma is a point");

  const auto number = provider->ConsumeIntegral<long long>();
  const long long magnitude = number == std::numeric_limits<long long>::min()
                                  ? std::numeric_limits<long long>::max()
                                  : std::abs(number);
  Require(ParseSize(QString::number(number) + " bytes") == number, "a size in bytes comes back");
  const int precision = provider->ConsumeIntegralInRange<int>(-2, 400);
  const QString shown = FormatSize(number, precision);
  Require(!shown.startsWith('-'), "no size is shown with a sign");
  if (magnitude < 1000)
    Require(ParseSize(shown) == magnitude, "a small size that is shown is read");
  if (magnitude < 1000000000000LL)
    Require(!shown.endsWith("MB") || std::abs(ParseSize(FormatSize(number, 6)) - magnitude) <= 1,
            "a size that is shown with all its digits is read");
  Require(ParseFrequency(FormatFrequencyMHz(number)) == magnitude / 1000000 * 1000000 ||
              magnitude > (1LL << 53),
          "a frequency that is shown is read");
  FormatFrequencyGHz(number, precision);
  if (number >= 0 && number < std::numeric_limits<long long>::max() - 4096)
  {
    const long long rounded = RoundSize4K(number);
    Require(rounded % 4096 == 0 && rounded >= number && rounded - number < 4096,
            "rounded up is the next whole block");
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
  QStringList texts;
  for (const QByteArray& line : bytes.split('\n').mid(0, 16))
    texts.append(QString::fromUtf8(line.constData(), line.size()));
  FuzzedDataProvider provider(data, size);
  for (const QString& text : qAsConst(texts))
  {
    PickApart(text);
    PickComponents(text);
    CutTexts(text);
    Judge(text);
    Measure(text, &provider);
    CanRead(text);
    CanWrite(text);
    CanRemove(text);
  }
  Filter(texts);
  return 0;
}
