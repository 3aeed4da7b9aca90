#include "Darwin/CoreFoundationDouble.h"

#include <algorithm>

struct __CFAllocator // NOLINT(bugprone-reserved-identifier)
{
};

namespace
{

const __CFAllocator defaultAllocator;

std::string Describe(const void* object)
{
  if (object == CoreFoundationDouble::nextURL)
    return "url";
  if (object == CoreFoundationDouble::nextString)
    return "string";
  return object == &defaultAllocator ? "default" : "unknown";
}

template<typename... Arguments>
void Note(const std::string& function, const Arguments&... arguments)
{
  std::string call = function;
  ((call += ' ' + arguments), ...);
  CoreFoundationDouble::calls.push_back(call);
}

} // namespace

namespace CoreFoundationDouble
{

std::vector<std::string> calls;
CFURLRef nextURL = nullptr;
__CFURL requestedURL;
CFStringRef nextString = nullptr;

void Reset(CFURLRef url)
{
  calls.clear();
  nextURL = url;
  requestedURL = {};
  nextString = nullptr;
}

} // namespace CoreFoundationDouble

const CFAllocatorRef kCFAllocatorDefault = &defaultAllocator;

void CFRelease(CFTypeRef object)
{
  Note("CFRelease", Describe(object));
  if (object == CoreFoundationDouble::nextString)
    delete static_cast<CFStringRef>(object); // so that a later use is one of freed memory
}

CFIndex CFStringGetLength(CFStringRef string)
{
  Note("CFStringGetLength", Describe(string));
  return string->text.size();
}

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer)
{
  Note("CFStringGetCharacters", Describe(string), std::to_string(range.location),
       std::to_string(range.length));
  std::copy_n(string->text.utf16() + range.location, range.length, buffer);
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* buffer,
                                                 CFIndex length, Boolean isDirectory)
{
  Note("CFURLCreateFromFileSystemRepresentation", Describe(allocator), std::to_string(length),
       std::to_string(isDirectory));
  CoreFoundationDouble::requestedURL.bytes =
      QByteArray(reinterpret_cast<const char*>(buffer), static_cast<int>(length));
  CoreFoundationDouble::requestedURL.isDirectory = isDirectory;
  return CoreFoundationDouble::nextURL;
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style)
{
  Note("CFURLCopyFileSystemPath", Describe(url), std::to_string(style));
  return CoreFoundationDouble::nextString;
}
