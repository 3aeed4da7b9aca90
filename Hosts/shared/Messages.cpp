#include "Messages.h"

#include "Notice.h"

#include <QJsonDocument>

namespace Ostrel
{

const QString schedulerName = QStringLiteral("scheduler");

const QString getNoticesType = QStringLiteral("get-notices");
const QString watchType = QStringLiteral("watch");
const QString acknowledgeType = QStringLiteral("acknowledge");
const QString getStatusType = QStringLiteral("get-status");
const QString noticesType = QStringLiteral("notices");
const QString noticeType = QStringLiteral("notice");
const QString acknowledgedType = QStringLiteral("acknowledged");
const QString statusType = QStringLiteral("status");
const QString errorType = QStringLiteral("error");

namespace
{

const QString versionField = QStringLiteral("version");
const QString typeField = QStringLiteral("type");
const QString requestField = QStringLiteral("request");

constexpr int longestMark = 64;

bool IsMark(const QJsonValue& value)
{
  return value.isUndefined() || ReadInteger(value) ||
         (value.isString() && value.toString().size() <= longestMark);
}

} // namespace

MessageFault ReadMessage(const QByteArray& data, int longest, Message& message)
{
  if (data.size() > longest)
    return MessageFault::TooLong;
  const QJsonDocument document = QJsonDocument::fromJson(data);
  message.fields = document.object();
  message.type = message.fields.value(typeField).toString();
  const QJsonValue mark = message.fields.value(requestField);
  const std::optional<qint64> version = ReadInteger(message.fields.value(versionField));
  if (!document.isObject() || message.type.isEmpty() || !IsMark(mark) || !version)
    return MessageFault::Malformed;
  message.request = mark;
  return *version == messageVersion ? MessageFault::None : MessageFault::UnsupportedVersion;
}

QByteArray MakeMessage(const QString& type, QJsonObject fields, const QJsonValue& request)
{
  fields.insert(versionField, messageVersion);
  fields.insert(typeField, type);
  if (!request.isUndefined())
    fields.insert(requestField, request);
  return QJsonDocument(fields).toJson(QJsonDocument::Compact);
}

} // namespace Ostrel
