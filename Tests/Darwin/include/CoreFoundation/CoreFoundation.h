#pragma once

// The few declarations of CoreFoundation that the library uses, for builds without the framework.

typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef unsigned short UniChar;
typedef long CFIndex;

typedef const void* CFTypeRef;
// NOLINTBEGIN(bugprone-reserved-identifier): the names are the framework's.
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFURL* CFURLRef;
// NOLINTEND(bugprone-reserved-identifier)

typedef struct
{
  CFIndex location;
  CFIndex length;
} CFRange;

inline CFRange CFRangeMake(CFIndex location, CFIndex length)
{
  const CFRange range = {location, length};
  return range;
}

enum CFURLPathStyle : CFIndex
{
  kCFURLPOSIXPathStyle = 0,
  kCFURLHFSPathStyle = 1,
  kCFURLWindowsPathStyle = 2
};

extern "C"
{
  extern const CFAllocatorRef kCFAllocatorDefault;

  void CFRelease(CFTypeRef object);

  CFIndex CFStringGetLength(CFStringRef string);
  void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer);

  CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* buffer,
                                                   CFIndex length, Boolean isDirectory);
  CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);
}
