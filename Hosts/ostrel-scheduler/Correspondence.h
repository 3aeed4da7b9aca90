#pragma once

#include "BusSession.h"
#include "Messages.h"
#include "State.h"
#include "Watches.h"

#include <QDeadlineTimer>
#include <QHash>

namespace Ostrel
{

/** The scheduler's part in the conversation on the bus: answers requests and tells those who watch. */
class Correspondence : public Tavrik::Bazaar::Listener
{
public:
  Correspondence(BusSession& session, State& state, const Watches& watches);

  /** Tells @p notice to all who watch. */
  void Tell(const Notice& notice);

  void OnMessage(const QString& sender, const QByteArray& data) override;
  void OnResult(long long, Tavrik::Bazaar::Error, const QString&) override {}
  void OnMemberJoined(const QString&) override {}
  void OnMemberLeft(const QString&) override {}

private:
  void DropExpired();
  void Answer(const QString& sender, const Message& message);
  void AnswerWatch(const QString& sender, const Message& message);
  void AnswerAcknowledge(const QString& sender, const Message& message);
  void Say(const QString& recipient, const QString& type, const QJsonObject& fields,
           const QJsonValue& request = QJsonValue::Undefined);
  void SayError(const QString& recipient, const char* code, const QJsonValue& request);
  QJsonObject ListNotices() const;

  BusSession& session;
  State& state;
  const Watches& watches;
  QHash<QString, QDeadlineTimer> watchers; // until when each is told
};

} // namespace Ostrel
