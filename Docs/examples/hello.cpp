#include <Common/Bazaar.h>

#include <QCoreApplication>

#include <cstdio>

struct Greeter : Tavrik::Bazaar::Listener
{
  void OnMessage(const QString& sender, const QByteArray& data) override
  {
    std::printf("%s says: %s\n", qPrintable(sender), data.constData());
    QCoreApplication::quit();
  }
  void OnResult(long long, Tavrik::Bazaar::Error, const QString&) override {}
  void OnMemberJoined(const QString&) override {}
  void OnMemberLeft(const QString&) override {}
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
