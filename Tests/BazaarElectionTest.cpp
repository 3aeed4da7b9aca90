// Who serves when many start at once, and when the serving process is killed again and again. Scripts/chaos
// plays more rounds, with more that goes wrong.

#include "Support/Peer.h"
#include "Support/Processes.h"
#include "Support/Raw.h"
#include "Support/Spin.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>

#include <algorithm>
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

  // Waits until everybody sees exactly those who live, one of them serving.
  bool Meet(int limit) const
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
        return true;
    } while (!waiting.hasExpired(limit));
    return false;
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

class ColdStarts : public testing::TestWithParam<int>
{
};

TEST_P(ColdStarts, OfEightAtOnceEndWithOneServerAndEverybodyTogether)
{
  const int rounds = 25;
  for (int round = 1; round <= rounds; ++round)
  {
    Crowd crowd(QStringLiteral("cold %1 %2").arg(GetParam()).arg(round));
    crowd.StartAll();
    ASSERT_TRUE(crowd.Meet(meetingLimit)) << crowd.Describe();
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
  ASSERT_TRUE(crowd.Meet(meetingLimit)) << crowd.Describe();

  const int rounds = 15;
  for (int round = 1; round <= rounds; ++round)
  {
    crowd.Chatter(5);
    const int killed = crowd.KillServer();
    ASSERT_GE(killed, 0) << crowd.Describe();
    ASSERT_TRUE(crowd.Meet(healingLimit)) << crowd.Describe();
    ASSERT_TRUE(crowd.IsTalking("round " + QByteArray::number(round), healingLimit)) << crowd.Describe();

    crowd.Start(killed);
    ASSERT_TRUE(crowd.Meet(meetingLimit)) << crowd.Describe();
  }
}

INSTANTIATE_TEST_SUITE_P(Round, Kills, testing::Range(0, 2));

// As a cleaner of temporary folders leaves it.
TEST(ServerWithoutASocketFile, GivesWayToTheOneWhoServesInItsPlace)
{
  const Meeting meeting(QStringLiteral("swept"));
  Peer first(meeting.context, QStringLiteral("first"));
  ASSERT_TRUE(first.IsReady());
  Peer second(meeting.context, QStringLiteral("second"));
  ASSERT_TRUE(AllSee({&first, &second}, QStringLiteral("first,second")));

  ASSERT_TRUE(QFile::remove(Wire::ServerName(meeting.context)));
  Peer third(meeting.context, QStringLiteral("third"));
  ASSERT_TRUE(third.IsReady());
  EXPECT_TRUE(AllSee({&first, &second, &third}, QStringLiteral("first,second,third"), healingLimit));
  EXPECT_EQ(CountServers(meeting.context), 1);

  // What the first left behind is not in the way of those who come.
  Peer fourth(meeting.context, QStringLiteral("fourth"));
  EXPECT_TRUE(
      AllSee({&first, &second, &third, &fourth}, QStringLiteral("first,fourth,second,third"), healingLimit));
  EXPECT_EQ(FindServer({&first, &second, &third, &fourth}, meeting.context), &third);
}

} // namespace
