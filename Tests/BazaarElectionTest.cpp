// Who serves when many start at once, and when the serving process is killed again and again. Each round
// tells in one line how long it took; TAVRIK_COLD_STARTS and TAVRIK_KILLS set how many rounds a case plays.

#include "Support/Peer.h"
#include "Support/Processes.h"
#include "Support/Raw.h"
#include "Support/Spin.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace
{

const int participants = 8;
const int meetingLimit = 10000; // ms
const int healingLimit = 5000;  // ms

QString NameOf(int index)
{
  return QStringLiteral("p%1").arg(index);
}

// Participants by their index; one that is being replaced is missing.
class Crowd
{
public:
  explicit Crowd(const QString& context) : meeting(context), peers(participants) {}

  void Start(int index)
  {
    peers[static_cast<std::size_t>(index)] = std::make_unique<Peer>(meeting.context, NameOf(index));
  }

  void StartAll()
  {
    for (int i = 0; i < participants; ++i)
      Start(i);
  }

  std::vector<Peer*> Living() const
  {
    std::vector<Peer*> living;
    for (const std::unique_ptr<Peer>& peer : peers)
      if (peer)
        living.push_back(peer.get());
    return living;
  }

  // Kills the serving process and tells which it was; -1 when nobody serves.
  int KillServer()
  {
    const Peer* server = FindServer(Living(), meeting.context);
    for (int i = 0; i < participants; ++i)
    {
      std::unique_ptr<Peer>& peer = peers[static_cast<std::size_t>(i)];
      if (!peer || peer.get() != server)
        continue;
      peer.reset();
      return i;
    }
    return -1;
  }

  // Milliseconds until everybody sees exactly those who live, one of them serving; -1 when that never comes.
  qint64 TimeToMeet(int limit) const
  {
    QElapsedTimer waiting;
    waiting.start();
    const std::vector<Peer*> living = Living();
    QStringList names;
    for (const Peer* peer : living)
      names.append(peer->name);
    do
    {
      if (AllSee(living, names.join(QLatin1Char(',')), limit) && CountServers(meeting.context) == 1)
        return waiting.elapsed();
    } while (!waiting.hasExpired(limit));
    return -1;
  }

  void Chatter(int messages) const
  {
    const std::vector<Peer*> living = Living();
    for (int i = 0; i < messages; ++i)
      for (std::size_t from = 0; from < living.size(); ++from)
        living[from]->Say(living[(from + 1 + static_cast<std::size_t>(i)) % living.size()]->name,
                          QByteArray(200, 'x'));
  }

  // Whether everybody hears what his neighbour says now.
  bool IsTalking(const QByteArray& word, int limit) const
  {
    const std::vector<Peer*> living = Living();
    for (std::size_t i = 0; i < living.size(); ++i)
      living[i]->Say(living[(i + 1) % living.size()]->name, word);
    for (std::size_t i = 0; i < living.size(); ++i)
      if (!living[(i + 1) % living.size()]->Told(
              QStringLiteral("message %1 %2").arg(living[i]->name, QString::fromLatin1(word.toBase64())),
              limit))
        return false;
    return true;
  }

  std::string Describe() const
  {
    std::string text = std::to_string(CountServers(meeting.context)) + " servers\n";
    for (Peer* peer : Living())
      text += peer->name.toStdString() + " sees " + peer->Members(500).toStdString() + "\n" +
              peer->log.right(1500).toStdString();
    return text;
  }

  const Meeting meeting;

private:
  std::vector<std::unique_ptr<Peer>> peers;
};

int Rounds(const char* variable, int usual)
{
  bool isSet = false;
  const int rounds = qEnvironmentVariableIntValue(variable, &isSet);
  return isSet ? rounds : usual;
}

void TellTime(const char* what, int round, qint64 time)
{
  if (time >= 0)
    std::printf("%s %d: %lld ms\n", what, round, static_cast<long long>(time));
  else
    std::printf("%s %d: never\n", what, round);
  std::fflush(stdout);
}

class ColdStarts : public testing::TestWithParam<int>
{
};

TEST_P(ColdStarts, OfEightAtOnceEndWithOneServerAndEverybodyTogether)
{
  const int rounds = Rounds("TAVRIK_COLD_STARTS", 25);
  for (int round = 1; round <= rounds; ++round)
  {
    Crowd crowd(QStringLiteral("cold %1 %2").arg(GetParam()).arg(round));
    crowd.StartAll();
    const qint64 time = crowd.TimeToMeet(meetingLimit);
    TellTime("start", round, time);
    ASSERT_GE(time, 0) << crowd.Describe();
  }
}

INSTANTIATE_TEST_SUITE_P(Round, ColdStarts, testing::Range(0, 4));

class Kills : public testing::TestWithParam<int>
{
};

TEST_P(Kills, OfTheServerAgainAndAgainAreHealedWithMessagesInFlight)
{
  Crowd crowd(QStringLiteral("kills %1").arg(GetParam()));
  crowd.StartAll();
  ASSERT_GE(crowd.TimeToMeet(meetingLimit), 0) << crowd.Describe();

  const int rounds = Rounds("TAVRIK_KILLS", 15);
  for (int round = 1; round <= rounds; ++round)
  {
    crowd.Chatter(5);
    const int killed = crowd.KillServer();
    ASSERT_GE(killed, 0) << crowd.Describe();
    const qint64 time = crowd.TimeToMeet(healingLimit);
    TellTime("kill", round, time);
    ASSERT_GE(time, 0) << crowd.Describe();
    ASSERT_TRUE(crowd.IsTalking("round " + QByteArray::number(round), healingLimit)) << crowd.Describe();

    crowd.Start(killed);
    ASSERT_GE(crowd.TimeToMeet(meetingLimit), 0) << crowd.Describe();
  }
}

INSTANTIATE_TEST_SUITE_P(Round, Kills, testing::Range(0, 2));

} // namespace
