#include <Common/Platform/MemoryStatistics.h>

#include <Common/RAMInfo.h>

#include <QByteArray>
#include <QFile>
#include <QList>

#include <algorithm>
#include <limits>

namespace Tavrik::Platform
{

namespace
{

const int bytesPerPage = 4096;

QByteArray ReadMemInfo()
{
  QFile file(QStringLiteral("/proc/meminfo"));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Finds a line such as "MemFree:         1024 kB".
bool ParseBytes(const QByteArray& memInfo, const QByteArray& name, qint64* bytes)
{
  for (const QByteArray& line : memInfo.split('\n'))
  {
    const QList<QByteArray> words = line.simplified().split(' ');
    if (words.first() != name + ':')
      continue;
    bool isNumber = false;
    const qint64 kilobytes = words.value(1).toLongLong(&isNumber);
    if (!isNumber || words.size() != 3 || words.last() != "kB" || kilobytes < 0 ||
        kilobytes > std::numeric_limits<qint64>::max() / 1024)
      return false;
    *bytes = kilobytes * 1024;
    return true;
  }
  return false;
}

quint32 ToPages(qint64 bytes)
{
  const qint64 most = std::numeric_limits<quint32>::max();
  return static_cast<quint32>(std::min(bytes / bytesPerPage, most));
}

} // namespace

bool GetPhysicalMemorySize(qint64* size)
{
  return ParseBytes(ReadMemInfo(), "MemTotal", size);
}

bool GetMemoryStatistics(vm_statistics64* statistics)
{
  qint64 bytes = 0;
  const bool isKnown = ParseBytes(ReadMemInfo(), "MemFree", &bytes);
  if (isKnown)
    statistics->free_count = ToPages(bytes);
  return isKnown;
}

} // namespace Tavrik::Platform
