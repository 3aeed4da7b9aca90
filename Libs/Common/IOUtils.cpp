#include <Common/IOUtils.h>

#include <QIODevice>
#include <QtEndian>

#include <glog/logging.h>

#include <algorithm>
#include <unistd.h>

namespace Tavrik
{

namespace
{

// QIODevice::read allocates what it is asked for before it reads, and the sizes asked for here come from
// the wire.
const long long largestStep = 64LL * 1024;

QByteArray ReadSome(QIODevice* device, long long wanted)
{
  return device->read(std::min(wanted, std::max<long long>(device->bytesAvailable(), largestStep)));
}

} // namespace

template<typename Number>
QByteArray PackNumber(const Number& number)
{
  QByteArray packed(static_cast<int>(sizeof(Number)), Qt::Uninitialized);
  qToLittleEndian(number, packed.data());
  return packed;
}

template QByteArray PackNumber<int>(const int&);
template QByteArray PackNumber<long long>(const long long&);
template QByteArray PackNumber<unsigned short>(const unsigned short&);

QByteArray CalcCRC(const QByteArray& data)
{
  return PackNumber<unsigned short>(qChecksum(data.constData(), static_cast<uint>(data.size())));
}

QByteArray ReadDataWithTimeout(QIODevice* device, long long size, int timeout)
{
  QByteArray result;
  bool isDry = false;
  do
  {
    // A device that claims bytes and hands out none would otherwise be asked for ever.
    if ((isDry || device->bytesAvailable() == 0) && !device->waitForReadyRead(timeout))
      break;
    const QByteArray part = ReadSome(device, std::max(size - result.size(), 0LL));
    isDry = part.isEmpty();
    result += part;
  } while (result.size() < size);

  if (result.size() != size)
    LOG(ERROR) << "Could't read " << size << " bytes. Have read only " << result.size() << " (TIMEOUT)";
  return result;
}

QByteArray ReadData(QIODevice* device, long long size, unsigned int delay, int attempts)
{
  QByteArray result;
  int idle = 0;
  while (idle < attempts)
  {
    const long long missing = std::max(size - result.size(), 0LL);
    // Outside the event loop a socket fetches what has come in a wait only.
    if (device->bytesAvailable() < missing)
      device->waitForReadyRead(0);
    const QByteArray part = ReadSome(device, missing);
    result += part;
    if (result.size() >= size)
      break;
    usleep(delay);
    idle = part.isEmpty() ? idle + 1 : 0;
  }

  if (result.size() != size)
    LOG(ERROR) << "Could't read " << size << " bytes. Have read only " << result.size();
  return result;
}

} // namespace Tavrik
