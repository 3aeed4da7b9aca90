#include <Common/PathHelpers.h>

#include <QByteArray>
#include <QFileInfo>

#include <CoreFoundation/CoreFoundation.h>

namespace Tavrik::Cleaner
{

namespace
{

QString ConvertString(CFStringRef string)
{
  const int length = static_cast<int>(CFStringGetLength(string));
  QString text(length, Qt::Uninitialized);
  CFStringGetCharacters(string, CFRangeMake(0, length), reinterpret_cast<UniChar*>(text.data()));
  return text;
}

} // namespace

CFURLRef CFURLCreateFromPath(const QString& path)
{
  const QByteArray bytes = path.toUtf8();
  return CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault,
                                                 reinterpret_cast<const UInt8*>(bytes.constData()),
                                                 bytes.size(), QFileInfo(path).isDir());
}

QString CFURLConvertToPath(CFURLRef url)
{
  const CFStringRef string = CFURLCopyFileSystemPath(url, kCFURLPOSIXPathStyle);
  if (!string)
    return {};
  QString path = ConvertString(string);
  CFRelease(string);
  return path;
}

} // namespace Tavrik::Cleaner
