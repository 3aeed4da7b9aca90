// Seeds FOLDER: writes the inputs from which the fuzzing of the bus begins, a folder for each target.

#include "Support/Script.h"
#include "Support/Wire.h"

#include <QDir>
#include <QFile>

#include <cstdio>

namespace
{

using Script::Step;
using Script::Steps;

const QByteArray context("fuzz");

QByteArray Introduction(const QByteArray& name)
{
  return Wire::Introduction(context, name);
}

QByteArray Message(qint64 id, const QByteArray& name, const QByteArray& data)
{
  return Wire::Message(context, id, name, data);
}

QByteArray Result(qint64 id, const QByteArray& word)
{
  return Wire::Packet(context, "RESULT", Wire::MessageBody(id, word, QByteArray()));
}

QByteArray List(const QVector<QByteArray>& names)
{
  return Wire::Status(context, names);
}

// A byte of the header is wrong, or of the body.
QByteArray Spoiled(QByteArray packet, int at)
{
  packet[at] = static_cast<char>(packet.at(at) + 1);
  return packet;
}

QList<Steps> PacketScripts()
{
  const QByteArray whole = Message(1, "agent", "hi");
  const QByteArray garbage(60, 'g');
  return {
      {{0, 0, whole}},
      {{0, 0, "garbage<<TAVRIK" + whole + List({"a", "bc", ""})}},
      {{0, 0, whole.left(30)}, {0, 0, whole.mid(30)}, {0, 0, Result(1, "OK")}},
      {{0, 0, whole.left(25)}, {1, 5, {}}, {0, 0, whole.mid(25)}},
      {{0, 0, whole.left(27)}, {1, 5, {}}, {0, 0, whole.mid(27) + whole}},
      {{0, 0, garbage}, {1, 2, {}}, {0, 0, whole}},
      {{0, 0, garbage}, {1, 8, {}}, {0, 0, whole}, {1, 10, {}}, {0, 0, whole}},
      {{0, 0, garbage + whole.left(27)}, {1, 11, {}}, {0, 0, whole}},
      {{0, 0, garbage + whole.left(60)}, {1, 9, {}}, {0, 0, whole.mid(60)}, {1, 10, {}}, {0, 0, whole}},
      {{0, 0, Spoiled(whole, 31) + whole + Spoiled(whole, whole.size() - 1) + whole}},
      {{0, 0, Wire::WithPreamble(Wire::Int(1000) + QByteArray(10, 'x')) + whole}},
      {{0, 0, Wire::WithPreamble(Wire::Counted("c") + Wire::Int(1000) + QByteArray(10, 'x')) + whole}},
      {{0, 0, Wire::WithPreamble(QByteArray(13, '\0')) + Wire::Packet("c", "", "body") + whole}},
  };
}

QList<Steps> ServerScripts()
{
  const Step tick = {2, 0, {}};
  const Step honest = {3, 0, "honest words"};
  const Step join = {0, 0, Introduction("hostile")};
  const QByteArray garbage(60, 'g');
  return {
      {honest, tick, {3, 1, "to the server"}, tick, {4, 0, "own words"}, {5, 4, {}}, tick},
      {join, tick, {0, 0, Message(7, "A", "boo")}, tick, {6, 0, {}}, {1, 0, {}}, tick},
      {join, tick, {0, 0, Message(1, "hostile", "self")}, {1, 0, {}}, tick, honest, tick},
      {{0, 0, Introduction("A")}, tick, {0, 1, Introduction("own")}, tick, honest},
      {join,
       {0, 1, Introduction("other")},
       tick,
       {1, 1, {}},
       {0, 0, Message(1, "other", "late")},
       tick,
       tick},
      {{0, 0, Message(5, "B", "strange")}, tick, {0, 0, Message(2, "nobody", "x")}, tick},
      {{0, 0, List({"A", "B"})}, tick, {0, 0, QByteArray(100, 'x')}, tick, {1, 0, {}}, tick},
      {{0, 0, Spoiled(Introduction("hostile"), 40)}, tick, honest, tick},
      {{0, 0, Introduction("hostile").left(20)},
       {2, 0, {}},
       {5, 1, {}},
       {0, 0, Introduction("hostile").mid(20)}},
      {join, tick, {0, 0, Message(1, "A", "half").left(60)}, tick, {5, 255, {}}, {5, 255, {}}, tick, honest},
      {join,
       tick,
       {0, 0, garbage + Message(1, "B", "cut").left(25)},
       tick,
       {5, 5, {}},
       tick,
       {0, 0, Message(2, "B", "next")},
       tick},
      {join, tick, {0, 0, garbage}, tick, {5, 11, {}}, tick, {0, 0, Message(1, "B", "late")}, tick},
      {join, tick, {0, 0, Result(1, "OK") + List({"x"})}, tick, tick, {7, 0, {}}, tick, honest, tick},
  };
}

QList<Steps> ClientScripts()
{
  const Step tick = {2, 0, {}};
  const Step settled = {4, 4, {}};
  const Step reply = {0, 0, List({"hostile", "own"})};
  const QByteArray garbage(60, 'g');
  const auto command = [](const QByteArray& text) { return Step{0, 0, Message(0, "hostile", text)}; };
  QList<Steps> scripts = {
      {{0, 0, {}}, reply, settled, tick, {3, 0, "words"}, tick, {7, 0, {}}, {0, 0, Result(1, "OK")}, tick},
      {{0, 2, {}}, reply, {3, 0, "held"}, {3, 1, "sent"}, settled, tick, {7, 0, {}}, tick},
      {{0, 1, {}}, reply, settled, {5, 0, {}}, tick, {3, 0, "words"}, settled, tick},
      {{0, 0, {}}, reply, {0, 0, List({"a", "own"})}, {0, 0, List({"b", "own"})}, tick, settled, tick},
      {{0, 0, {}}, reply, settled, {1, 0, {}}, tick, {0, 0, List({"own"})}, settled, tick},
      {{0, 0, {}}, reply, settled, {5, 0, {}}, tick, tick, {3, 0, "to itself"}, settled, tick, tick, tick},
      {{0, 0, {}}, {0, 0, Message(1, "a", "no list")}, settled, {0, 0, Spoiled(List({"own"}), 35)}, tick},
      {{0, 0, {}}, {5, 0, {}}, {6, 0, {}}, reply, settled, tick},
      {{0, 0, {}}, reply, settled, {0, 0, Wire::Packet(context, "RESULT", Wire::Little(9, 8))}, tick},
      {{0, 0, {}}, reply, settled, {0, 0, Wire::Packet(context, "OTHER", "body")}, tick},
      {{0, 0, {}},
       reply,
       settled,
       {0, 0, garbage + List({"own"}).left(25)},
       tick,
       {4, 6, {}},
       tick,
       reply,
       tick},
      {{0, 0, {}}, reply, settled, {0, 0, garbage}, tick, {4, 11, {}}, tick, reply, tick},
  };
  for (const char* text : {"say", "wait", "spin", "listen", "deaf", "leave"})
    scripts.append(
        {{0, 0, {}}, reply, settled, command(text), command("more"), tick, tick, {3, 0, "x"}, tick});
  return scripts;
}

bool Write(const QString& folder, const QList<QByteArray>& inputs)
{
  bool isWritten = QDir().mkpath(folder);
  for (int i = 0; i < inputs.size(); ++i)
  {
    QFile file(folder + QStringLiteral("/seed-%1").arg(i));
    isWritten =
        isWritten && file.open(QIODevice::WriteOnly) && file.write(inputs.at(i)) == inputs.at(i).size();
  }
  return isWritten;
}

QList<QByteArray> Written(const QList<Steps>& scripts)
{
  QList<QByteArray> inputs;
  for (const Steps& script : scripts)
    inputs.append(Script::Write(script));
  return inputs;
}

} // namespace

int main(int count, char** arguments)
{
  if (count != 2)
  {
    std::fprintf(stderr, "usage: Seeds FOLDER\n");
    return 2;
  }
  const QString folder = QFile::decodeName(arguments[1]);
  const QList<QByteArray> bodies = {Wire::MessageBody(1, "agent", "hi"),
                                    Wire::MessageBody(-1, "", ""),
                                    Wire::Int(2) + Wire::Counted("a") + Wire::Counted("bc"),
                                    "OK",
                                    "NOT SENT",
                                    "NOT WRITTEN",
                                    "NO RECIPIENT"};
  const bool isWritten = Write(folder + "/Packet", Written(PacketScripts())) &&
                         Write(folder + "/Server", Written(ServerScripts())) &&
                         Write(folder + "/Client", Written(ClientScripts())) &&
                         Write(folder + "/Bodies", bodies);
  return isWritten ? 0 : 1;
}
