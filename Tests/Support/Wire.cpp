#include "Support/Wire.h"

#include <QCryptographicHash>
#include <QDir>

#include <unistd.h>

namespace Wire
{

namespace
{

qint64 Number(const QByteArray& data, int offset, int size)
{
  quint64 number = 0;
  for (int i = size - 1; i >= 0; --i)
    number = number << 8 | static_cast<quint8>(data.at(offset + i));
  return size == 4 ? static_cast<qint32>(number) : static_cast<qint64>(number);
}

QByteArray Bytes(const QByteArray& data, int offset)
{
  return data.mid(offset + 4, static_cast<int>(Number(data, offset, 4)));
}

} // namespace

QString ServerName(const QString& context)
{
  const QString name = QStringLiteral("tavrik:bazaar:ipc:1.0:%1:%2").arg(getuid()).arg(context);
  return QDir(QDir::tempPath()).absolutePath() + QLatin1Char('/') +
         QString::fromLatin1(QCryptographicHash::hash(name.toUtf8(), QCryptographicHash::Sha1).toHex());
}

qint64 Received::Id() const
{
  return Number(body, 0, 8);
}

QByteArray Received::First() const
{
  return Bytes(body, 8);
}

QByteArray Received::Second() const
{
  return Bytes(body, 12 + First().size());
}

QVector<QByteArray> Received::Names() const
{
  QVector<QByteArray> names;
  int offset = 4;
  for (qint64 i = Number(body, 0, 4); i > 0; --i)
  {
    names.append(Bytes(body, offset));
    offset += 4 + names.last().size();
  }
  return names;
}

Received Take(QByteArray* stream)
{
  const int preamble = 29;
  if (stream->size() < preamble)
    return {};
  const int headerSize = static_cast<int>(Number(*stream, 23, 4));
  if (stream->size() < preamble + headerSize)
    return {};
  Received packet;
  const QByteArray header = stream->mid(preamble, headerSize);
  packet.context = Bytes(header, 0);
  const QByteArray command = Bytes(header, 4 + packet.context.size());
  const int bodySize = static_cast<int>(Number(header, headerSize - 6, 4));
  if (stream->size() < preamble + headerSize + bodySize)
    return {};
  packet.command = command;
  packet.body = stream->mid(preamble + headerSize, bodySize);
  stream->remove(0, preamble + headerSize + bodySize);
  return packet;
}

} // namespace Wire
