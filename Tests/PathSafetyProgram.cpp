// Says what the library found out while it was loaded, from a static initialiser of its own and from main().

#include <Common/PathSafety.h>

#include <cstdio>

using namespace Tavrik::Cleaner;

namespace
{

const QString early = GetDarwinUserCachePath();
const QStringList earlyPrefixes = GetSystemLibraryPrefixes();

} // namespace

int main()
{
  const QString path = GetDarwinUserCachePath();
  if (early != path || early.isNull() != path.isNull() || earlyPrefixes != GetSystemLibraryPrefixes() ||
      earlyPrefixes.isEmpty())
    return 1;
  std::fputs(path.isNull() ? "null" : qPrintable("[" + path + "]"), stdout);
  return 0;
}
