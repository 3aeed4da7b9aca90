// What "ostrel bus send" makes of every answer that a server can give: the server is spoken by hand.

#include "ExitCodes.h"
#include "Support/Raw.h"

#include <gtest/gtest.h>

#include <QProcess>

#include <algorithm>

using namespace Ostrel;

namespace
{

struct Answer
{
  const char* word;
  int code;
  const char* printed;
};

void PrintTo(const Answer& answer, std::ostream* out)
{
  *out << answer.word;
}

class SendTo : public testing::TestWithParam<Answer>
{
};

TEST_P(SendTo, AServerThatAnswersPrintsTheWordAndEndsWithItsCode)
{
  const Meeting meeting(QStringLiteral("results"));
  RawServer server(meeting.context);
  QProcess sender;
  sender.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  sender.start(QStringLiteral(OSTREL), {"bus", "send", "--context", "results", "bob", "hello"});

  const std::unique_ptr<Link> link = server.Next();
  ASSERT_NE(nullptr, link);
  ASSERT_TRUE(link->Got("MESSAGE", 1));
  const QByteArray name = link->Of("MESSAGE").at(0).Second();
  link->Write(Wire::Status("results", {"bob", name}));
  ASSERT_TRUE(link->Got("MESSAGE", 2));
  const Wire::Received message = link->Of("MESSAGE").at(1);
  EXPECT_EQ("hello", message.Second());
  link->Write(Wire::Packet("results", "RESULT", Wire::MessageBody(message.Id(), GetParam().word, "")));

  ASSERT_TRUE(SpinUntil([&sender] { return sender.state() == QProcess::NotRunning; }));
  EXPECT_EQ(GetParam().code, sender.exitCode());
  EXPECT_EQ(QByteArray(GetParam().printed) + '\n', sender.readAllStandardOutput());
}

INSTANTIATE_TEST_SUITE_P(Words, SendTo,
                         testing::Values(Answer{"OK", Done, "OK"},
                                         Answer{"NO RECIPIENT", NoRecipient, "NO RECIPIENT"},
                                         Answer{"NOT SENT", NotSent, "NOT SENT"},
                                         Answer{"NOT WRITTEN", NotWritten, "NOT WRITTEN"},
                                         Answer{"UNKNOWN", UnknownResult, "UNKNOWN"},
                                         Answer{"no such word", UnknownResult, "UNKNOWN"}),
                         [](const auto& answer)
                         {
                           std::string name = answer.param.word;
                           std::replace(name.begin(), name.end(), ' ', '_');
                           return name;
                         });

} // namespace
