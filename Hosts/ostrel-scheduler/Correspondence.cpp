#include "Correspondence.h"

#include <QJsonArray>

namespace Ostrel
{
namespace
{

using namespace std::chrono_literals;

constexpr std::chrono::seconds lease = 30s;
constexpr int mostWatchers = 100;
constexpr int mostIds = 1000; // in one request

const QString idsField = QStringLiteral("ids");

QJsonArray ToJson(const QVector<qint64>& ids)
{
  QJsonArray array;
  for (const qint64 id : ids)
    array.append(id);
  return array;
}

// Nothing unless each is an id.
std::optional<QVector<qint64>> ReadIds(const QJsonValue& value)
{
  const QJsonArray array = value.toArray();
  if (array.isEmpty() || array.size() > mostIds)
    return std::nullopt;
  QVector<qint64> ids;
  for (const QJsonValue& entry : array)
  {
    const std::optional<qint64> id = ReadInteger(entry);
    if (!id)
      return std::nullopt;
    ids.append(*id);
  }
  return ids;
}

} // namespace

Correspondence::Correspondence(BusSession& session, State& state, const Watches& watches)
    : session(session), state(state), watches(watches)
{
}

void Correspondence::Tell(const Notice& notice)
{
  DropExpired();
  for (const QString& name : watchers.keys())
    Say(name, noticeType, {{QStringLiteral("notice"), Ostrel::ToJson(notice)}});
}

void Correspondence::DropExpired()
{
  for (auto watcher = watchers.begin(); watcher != watchers.end();)
  {
    if (watcher->hasExpired())
      watcher = watchers.erase(watcher);
    else
      ++watcher;
  }
}

// An error is never answered: two who do not understand each other would never stop.
void Correspondence::OnMessage(const QString& sender, const QByteArray& data)
{
  Message message;
  const MessageFault fault = ReadMessage(data, longestRequest, message);
  if (sender == session.ClientName() || message.type == errorType)
    return;
  switch (fault)
  {
  case MessageFault::None:
    return Answer(sender, message);
  case MessageFault::TooLong:
    return SayError(sender, "too-long", message.request);
  case MessageFault::Malformed:
    return SayError(sender, "malformed", message.request);
  case MessageFault::UnsupportedVersion:
    return SayError(sender, "unsupported-version", message.request);
  }
}

void Correspondence::Answer(const QString& sender, const Message& message)
{
  if (message.type == getNoticesType)
    Say(sender, noticesType, ListNotices(), message.request);
  else if (message.type == watchType)
    AnswerWatch(sender, message);
  else if (message.type == acknowledgeType)
    AnswerAcknowledge(sender, message);
  else if (message.type == getStatusType)
    Say(sender, statusType,
        {{QStringLiteral("settings"), Ostrel::ToJson(watches.LastSettings())},
         {QStringLiteral("findings"), Ostrel::ToJson(watches.LastFindings())},
         {QStringLiteral("notices"), state.Notices().size()}},
        message.request);
  else
    SayError(sender, "unknown-type", message.request);
}

void Correspondence::AnswerWatch(const QString& sender, const Message& message)
{
  DropExpired();
  if (!watchers.contains(sender) && watchers.size() >= mostWatchers)
    return SayError(sender, "too-many-watchers", message.request);
  watchers.insert(sender, QDeadlineTimer(lease));
  QJsonObject fields = ListNotices();
  fields.insert(QStringLiteral("lease"), static_cast<int>(lease.count()));
  Say(sender, noticesType, fields, message.request);
}

void Correspondence::AnswerAcknowledge(const QString& sender, const Message& message)
{
  QVector<qint64> wanted;
  if (message.fields.value(QStringLiteral("all")).toBool())
    for (const Notice& notice : state.Notices())
      wanted.append(notice.id);
  else if (const auto ids = ReadIds(message.fields.value(idsField)))
    wanted = *ids;
  else
    return SayError(sender, "malformed", message.request);

  const auto closed = state.Acknowledge({wanted.begin(), wanted.end()});
  if (!closed)
    return SayError(sender, "not-kept", message.request);
  QVector<qint64> unknown;
  for (const qint64 id : wanted)
    if (!closed->contains(id))
      unknown.append(id);
  Say(sender, acknowledgedType, {{idsField, ToJson(*closed)}, {QStringLiteral("unknown"), ToJson(unknown)}},
      message.request);
}

void Correspondence::Say(const QString& recipient, const QString& type, const QJsonObject& fields,
                         const QJsonValue& request)
{
  if (session.HasBus())
    session.Bus().Say(recipient, MakeMessage(type, fields, request));
}

void Correspondence::SayError(const QString& recipient, const char* code, const QJsonValue& request)
{
  Say(recipient, errorType, {{QStringLiteral("code"), QString::fromLatin1(code)}}, request);
}

QJsonObject Correspondence::ListNotices() const
{
  QJsonArray notices;
  for (const Notice& notice : state.Notices())
    notices.append(Ostrel::ToJson(notice));
  return {{noticesType, notices}};
}

} // namespace Ostrel
