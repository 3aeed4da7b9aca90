#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

/** The wire format, written down a second time, so that the library is not held against itself. */
namespace Wire
{

inline quint16 Crc(const QByteArray& data)
{
  quint16 crc = 0xffff;
  for (const char byte : data)
  {
    crc = static_cast<quint16>(crc ^ static_cast<quint8>(byte));
    for (int i = 0; i < 8; ++i)
      crc = static_cast<quint16>((crc & 1) != 0 ? crc >> 1 ^ 0x8408 : crc >> 1);
  }
  return static_cast<quint16>(crc ^ 0xffff);
}

inline QByteArray Little(quint64 number, int size)
{
  QByteArray bytes;
  for (int i = 0; i < size; ++i)
    bytes += static_cast<char>(number >> 8 * i & 0xff);
  return bytes;
}

inline QByteArray Int(qint64 number)
{
  return Little(static_cast<quint64>(number), 4);
}
inline QByteArray Counted(const QByteArray& bytes)
{
  return Int(bytes.size()) + bytes;
}

inline const QByteArray& Signature()
{
  static const QByteArray signature("<TAVRIK:BAZAAR:IPC:1.0>");
  return signature;
}

/** Signature, length and checksum in front of any header. */
inline QByteArray WithPreamble(const QByteArray& header)
{
  return Signature() + Int(header.size()) + Little(Crc(header), 2) + header;
}

inline QByteArray Packet(const QByteArray& context, const QByteArray& command, const QByteArray& body)
{
  return WithPreamble(Counted(context) + Counted(command) + Int(body.size()) + Little(Crc(body), 2)) + body;
}

inline QByteArray MessageBody(qint64 id, const QByteArray& first, const QByteArray& second)
{
  return Little(static_cast<quint64>(id), 8) + Counted(first) + Counted(second);
}

inline QByteArray Message(const QByteArray& context, qint64 id, const QByteArray& first,
                          const QByteArray& second)
{
  return Packet(context, "MESSAGE", MessageBody(id, first, second));
}

inline QByteArray Introduction(const QByteArray& context, const QByteArray& name)
{
  return Message(context, 0, QByteArray(), name);
}

inline QByteArray Status(const QByteArray& context, const QVector<QByteArray>& names)
{
  QByteArray body = Int(names.size());
  for (const QByteArray& name : names)
    body += Counted(name);
  return Packet(context, "STATUS", body);
}

/** Where the participants of this user meet for @p context, in the present temporary directory. */
QString ServerName(const QString& context);

/** A packet as it came; `command` is empty when none was there. */
struct Received
{
  QByteArray context;
  QByteArray command;
  QByteArray body;

  qint64 Id() const;
  QByteArray First() const;
  QByteArray Second() const;
  QVector<QByteArray> Names() const;
};

/** Takes the first packet off @p stream when it is there whole; the stream has to be in order. */
Received Take(QByteArray* stream);

} // namespace Wire
