// The firewall tool's answers: the first part of the input is its list, the next four answer for the
// switches, and the last tells what is edited.

#include <Common/Firewall.cpp>

#include "Support/LogCapture.h"
#include "Support/Outputs.h"
#include "Support/Require.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace
{

using Tavrik::Cleaner::Firewall;

const QList<QByteArray> questions = {"--listapps", "--getglobalstate", "--getblockall", "--getallowsigned",
                                     "--getstealthmode"};

struct Listing
{
  std::vector<QString> paths;
  std::map<QString, bool> isBlocked;
};

QString SecondTrimmed(const QString& text)
{
  int begin = 0;
  int end = text.size();
  while (begin < end && text.at(begin).isSpace())
    ++begin;
  while (begin < end && text.at(end - 1).isSpace())
    --end;
  return text.mid(begin, end - begin);
}

// Blocks of: anything up to an empty line, then the first line that is not empty for the path, the next for
// its status.
Listing SecondParse(const QString& output)
{
  Listing listing;
  const QStringList lines = output.split('\n');
  const auto next = [&](int from, bool isEmpty)
  {
    while (from < lines.size() && lines.at(from).isEmpty() != isEmpty)
      ++from;
    return from;
  };
  for (int at = next(0, true); at < lines.size(); at = next(at + 1, true))
  {
    const int pathAt = next(at, false);
    const int statusAt = next(pathAt + 1, false);
    if (statusAt >= lines.size())
      break;
    const QString line = lines.at(pathAt);
    const int slash = line.indexOf('/');
    const QString path = SecondTrimmed(slash > 0 ? line.mid(slash - 1) : line);
    listing.paths.push_back(path);
    listing.isBlocked[path] = lines.at(statusAt).indexOf("Block") >= 0;
    at = statusAt;
  }
  return listing;
}

void RequireListing(const Firewall& firewall, const Listing& listing)
{
  const QStringList paths = firewall.GetApplications();
  Require(std::equal(paths.begin(), paths.end(), listing.paths.begin(), listing.paths.end()),
          "the list is that of the second parser");
  for (const auto& application : listing.isBlocked)
    Require(firewall.IsApplicationBlocked(application.first) == application.second,
            "an application is blocked when the second parser says so");
  Require(firewall.IsSaved(), "what has just been read is saved");
}

// What newer systems print is rewritten first, which has tests of its own.
QString Classic(const QList<QByteArray>& parts, int part)
{
  return Tavrik::Platform::ToClassicFirewallAnswer(QString::fromLatin1(questions.at(part)),
                                                   Outputs::Text(parts.value(part)));
}

void RequireSwitches(const Firewall& firewall, const QList<QByteArray>& parts)
{
  const auto says = [&](int part, const char* text)
  { return Classic(parts, part).indexOf(QLatin1String(text)) >= 0; };
  Require(firewall.IsEnabled() == says(1, "Firewall is enabled"), "the firewall is on when its tool says so");
  Require(firewall.GetBlockAll() == says(2, "Firewall is set to block all"), "and blocks all");
  Require(firewall.GetAllowSigned() == says(3, "ENABLED"), "and allows what is signed");
  Require(firewall.GetStealthMode() == says(4, "enabled"), "and is in stealth mode");
}

void Edit(Firewall* firewall, quint8 how, const QString& path)
{
  const int kind = how % 8;
  const bool flag = (how & 8) != 0;
  const QStringList before = firewall->GetApplications();
  switch (kind)
  {
  case 0:
    firewall->SetEnabled(flag);
    Require(firewall->IsEnabled() == flag, "a switch that is set is set");
    break;
  case 1:
    firewall->SetBlockAll(flag);
    break;
  case 2:
    firewall->SetAllowSigned(flag);
    break;
  case 3:
    firewall->SetStealthMode(flag);
    break;
  case 4:
    firewall->BlockApplication(path, flag);
    Require(firewall->IsApplicationBlocked(path) == flag, "what is blocked is blocked");
    break;
  case 5:
    Require(firewall->RemoveApplication(path) == before.contains(path), "what is listed can be removed");
    Require(!firewall->GetApplications().contains(path), "what is removed is not listed");
    break;
  case 6:
    Require(!firewall->AddApplication(path, flag) || path.endsWith(".app"), "only bundles are added");
    break;
  default:
    firewall->IsApplicationBlocked(path);
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  const QList<QByteArray> parts = Outputs::Split(data, size);
  Outputs::Set([&](const QStringList& arguments)
               { return parts.value(questions.indexOf(arguments.first().toLatin1())); });
  const LogCapture log;
  Firewall firewall(nullptr);
  const Listing listing = SecondParse(Classic(parts, 0));
  RequireListing(firewall, listing);
  RequireSwitches(firewall, parts);

  const QByteArray edits = parts.value(5);
  const QStringList known = firewall.GetApplications();
  for (int i = 0; i < std::min(edits.size(), 64); ++i)
  {
    const auto how = static_cast<quint8>(edits.at(i));
    Edit(&firewall, how, known.value((how >> 4) % (known.size() + 1), QStringLiteral("/nowhere/Odd.app")));
  }

  bool isToldSaved = false;
  QObject::connect(&firewall, &Firewall::IsSavedChanged, &firewall,
                   [&](bool isSaved) { isToldSaved = isSaved; });
  const bool wasSaved = firewall.IsSaved();
  firewall.Undo();
  Require(isToldSaved == !wasSaved, "an undo tells of becoming saved, and of nothing else");
  RequireListing(firewall, listing);
  RequireSwitches(firewall, parts);
  for (const std::string& line : log.Errors())
    Require(line.find("Can't parse an applications list") == std::string::npos, "no line is beyond parsing");
  return 0;
}
