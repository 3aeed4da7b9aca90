#include <Common/IOUtils.h>

#include <cstdio>

// The check value of the checksum, and a number as it travels.
int main()
{
  const QByteArray checksum = Tavrik::CalcCRC("123456789").toHex();
  const QByteArray number = Tavrik::PackNumber(0x01020304).toHex();
  std::printf("%s %s\n", checksum.constData(), number.constData());
  return checksum == "6e90" && number == "04030201" ? 0 : 1;
}
