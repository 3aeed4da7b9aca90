#pragma once

#include <Common/IOUtils.h>

#include <QByteArray>
#include <QList>
#include <QVector>

#include <limits>

/**
 * @file
 * The packets of the bus and their bodies: making them, and taking them apart.
 */
namespace Tavrik::Bazaar::Details
{

const char rawSignature[] = "<TAVRIK:BAZAAR:IPC:1.0>";
inline const QByteArray signature(rawSignature);
inline const QByteArray commandStatus("STATUS");
inline const QByteArray commandResult("RESULT");
inline const QByteArray commandMessage("MESSAGE");

const int preambleSize = 29;   // bytes: signature, header length, header checksum
const int smallestHeader = 14; // bytes
const int smallestBody = 4;    // bytes
const int largestArray = std::numeric_limits<int>::max() - 64; // bytes that one QByteArray holds for sure
const int transferTimeout = 30000;                             // ms, for bytes of one transfer to move

struct Packet
{
  int headerSize = 0;
  quint16 headerChecksum = 0;
  QByteArray contextName;
  QByteArray command;
  int bodySize = 0;
  quint16 bodyChecksum = 0;
  QByteArray body;
};

struct BodyMessage
{
  long long id = 0;
  QByteArray first;
  QByteArray second;
};

struct BodyStatus
{
  QVector<QByteArray> members;
};

// Bytes that are not there read as zero.
template<typename Number>
Number UnpackNumber(const QByteArray& data, long long offset)
{
  unsigned long long number = 0;
  for (long long i = sizeof(Number) - 1; i >= 0; --i)
  {
    const long long position = offset + i;
    const bool isThere = position >= 0 && position < data.size();
    number = number << 8 | (isThere ? static_cast<unsigned char>(data.at(static_cast<int>(position))) : 0u);
  }
  return static_cast<Number>(number);
}

quint16 Checksum(const QByteArray& data);

// A length and that many bytes, at `offset`; false when they are not all there.
bool UnpackBytes(const QByteArray& data, long long offset, QByteArray* bytes);

QByteArray CreatePacket(const QByteArray& contextName, const QByteArray& command, const QByteArray& body);
QByteArray CreateBodyMessage(long long id, const QByteArray& first, const QByteArray& second);
QByteArray CreateBodyStatus(const QList<QByteArray>& names);

// The packet of a message, or nothing when it would be larger than `largest`.
QByteArray CreateMessagePacket(const QByteArray& contextName, long long id, const QByteArray& name,
                               const QByteArray& data, long long largest = largestArray);

bool ParseHeader(const QByteArray& header, Packet* packet);
bool HasBody(const Packet& packet);
bool IsUsable(const Packet& packet);

BodyMessage ParseBodyMessage(const QByteArray& body);
BodyStatus ParseBodyStatus(const QByteArray& body);

} // namespace Tavrik::Bazaar::Details
