#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <QByteArray>
#include <QString>

#include <string>
#include <vector>

// What the framework keeps to itself.
struct __CFString // NOLINT(bugprone-reserved-identifier)
{
  QString text;
};

struct __CFURL // NOLINT(bugprone-reserved-identifier)
{
  QByteArray bytes;
  bool isDirectory;
};

/** Stands in for CoreFoundation: notes every call and knows which objects live. */
namespace CoreFoundationDouble
{

extern std::vector<std::string> calls;

/** What CFURLCreateFromFileSystemRepresentation() gives next; not owned by the double. */
extern CFURLRef nextURL;
/** What it was given. */
extern __CFURL requestedURL;

/** What CFURLCopyFileSystemPath() gives next; released when the caller releases it. */
extern CFStringRef nextString;

/** Forgets all calls. */
void Reset(CFURLRef url);

} // namespace CoreFoundationDouble
