#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/** @file The messages between the scheduler and those who talk to it; Docs/messages.md describes them. */
namespace Ostrel
{

/** The scheduler's name on the bus. */
extern const QString schedulerName;

/** The version of the messages that this code speaks. */
constexpr int messageVersion = 1;

/** The longest request that the scheduler reads, and the longest answer that anybody reads of it, in bytes.
 */
constexpr int longestRequest = 64 * 1024;
constexpr int longestAnswer = 16 * 1024 * 1024;

/// @name Types of messages
/// @{
extern const QString getNoticesType;   ///< Request: the open notices.
extern const QString watchType;        ///< Request: the open notices, and those to come for a while.
extern const QString acknowledgeType;  ///< Request: close notices.
extern const QString getStatusType;    ///< Request: what the scheduler obeys and has found.
extern const QString noticesType;      ///< Answer to get-notices and watch.
extern const QString noticeType;       ///< Told to those who watch.
extern const QString acknowledgedType; ///< Answer to acknowledge.
extern const QString statusType;       ///< Answer to get-status.
extern const QString errorType;        ///< Answer to what cannot be done.
/// @}

struct Message
{
  QString type;
  QJsonValue request = QJsonValue::Undefined; ///< A mark that the answer repeats: a text or a number.
  QJsonObject fields;                         ///< The whole object.
};

/** Why bytes are no message. */
enum class MessageFault
{
  None,
  TooLong,
  Malformed,
  UnsupportedVersion
};

/** Reads @p data, which may hold anything; @p message is set where there is no fault, and its mark already
 * where the version alone is at fault. */
MessageFault ReadMessage(const QByteArray& data, int longest, Message& message);

/** @return @p fields as a message of @p type, with the mark of the request that it answers, if any. */
QByteArray MakeMessage(const QString& type, QJsonObject fields, const QJsonValue& request);

} // namespace Ostrel
