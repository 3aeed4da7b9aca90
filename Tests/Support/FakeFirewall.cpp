#include "Support/FakeFirewall.h"

#include "Support/Copies.h"
#include "Support/Programs.h"

#include <gtest/gtest.h>

#include <QFile>

bool FakeFirewall::State::operator==(const State& other) const
{
  return isEnabled == other.isEnabled && blockAll == other.blockAll && allowSigned == other.allowSigned &&
         stealthMode == other.stealthMode && allowSignedApp == other.allowSignedApp &&
         applications == other.applications;
}

const char* const FakeFirewall::program = TAVRIK_FAKE_FIREWALL_TOOL;

FakeFirewall::FakeFirewall(const QString& path) : path(path)
{
  EXPECT_TRUE(QFile::link(FindCopy(program), path)) << qPrintable(path);
  Set({});
}

FakeFirewall::~FakeFirewall()
{
  for (const char* ending : {"", ".state", ".calls", ".fails", ".refuses", ".demands", ".newer"})
    QFile::remove(path + QLatin1String(ending));
}

void FakeFirewall::Set(const State& state)
{
  QByteArray text;
  for (const bool isOn :
       {state.isEnabled, state.blockAll, state.allowSigned, state.stealthMode, state.allowSignedApp})
    text += QByteArray(isOn ? "1" : "0") + '\0';
  for (const auto& application : state.applications)
    text += application.first + '\0' + (application.second ? "1" : "0") + '\0';
  WriteText(path + QLatin1String(".state"), text);
}

FakeFirewall::State FakeFirewall::Get() const
{
  const QList<QByteArray> fields = ReadText(path + QLatin1String(".state")).split('\0');
  State state;
  const auto isOn = [&](int index) { return fields.value(index) == "1"; };
  state.isEnabled = isOn(0);
  state.blockAll = isOn(1);
  state.allowSigned = isOn(2);
  state.stealthMode = isOn(3);
  state.allowSignedApp = isOn(4);
  for (int index = 5; index + 1 < fields.size(); index += 2)
    state.applications.append({fields.at(index), isOn(index + 1)});
  return state;
}

void FakeFirewall::BecomeNewer()
{
  WriteText(path + QLatin1String(".newer"), {});
}

void FakeFirewall::Fail(const QStringList& options)
{
  WriteText(path + QLatin1String(".fails"), options.join('\n').toUtf8() + '\n');
}

void FakeFirewall::Refuse(const QStringList& options)
{
  WriteText(path + QLatin1String(".refuses"), options.join('\n').toUtf8() + '\n');
}

void FakeFirewall::DemandRoot(const QByteArray& userId)
{
  WriteText(path + QLatin1String(".demands"), userId + '\n');
}

std::vector<FakeFirewall::Call> FakeFirewall::Calls() const
{
  const QList<QByteArray> fields = ReadText(path + QLatin1String(".calls")).split('\0');
  std::vector<Call> calls;
  for (int index = 0; index + 1 < fields.size();)
  {
    const int count = fields.at(index++).toInt();
    Call call;
    for (int i = 0; i < count && index < fields.size(); ++i)
      call.push_back(fields.at(index++).toStdString());
    calls.push_back(call);
  }
  return calls;
}
