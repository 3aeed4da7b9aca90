// Started again and again by LoadingBenchmark.

#ifdef WITH_LIBRARY
#include <Common/PathSafety.h>
#endif

#include <QHostAddress>
#include <QStringList>

// Something of Qt's network library in both, so that they differ by the library alone.
int main()
{
#ifdef WITH_LIBRARY
  if (Tavrik::Cleaner::FilterSubDirs({}).size() != 0)
    return 1;
#endif
  return QHostAddress(QHostAddress::LocalHost).isNull() ? 1 : 0;
}
