#include <Common/Bazaar.h>

#include <QCoreApplication>

#include <cstdio>

struct Greeter : Tavrik::Bazaar::Listener
{
  void OnMessage(const QString& sender, const QByteArray& data) override
  {
    std::printf("%s says: %s\n", qPrintable(sender), data.constData());
    CountDown();
  }
  void OnResult(long long id, Tavrik::Bazaar::Error result, const QString&) override
  {
    std::printf("message %lld: %s\n", id, qPrintable(Tavrik::Bazaar::GetErrorString(result)));
    CountDown();
  }
  void OnMemberJoined(const QString&) override {}
  void OnMemberLeft(const QString&) override {}

  // The message and its result travel apart: either may come first.
  void CountDown()
  {
    if (--outstanding == 0)
      QCoreApplication::quit();
  }
  int outstanding = 2;
};

int main(int argc, char** argv)
{
  QCoreApplication application(argc, argv);
  const auto greeter = std::make_shared<Greeter>();
  Tavrik::Bazaar::Context ada("garden", "ada", greeter, 0);
  Tavrik::Bazaar::Context bob("garden", "bob", greeter, 0);
  ada.Say("bob", "Hello, bus");
  return QCoreApplication::exec();
}
