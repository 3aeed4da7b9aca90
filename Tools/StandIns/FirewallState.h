#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

/** @file What the stand-in for the firewall tool keeps between its runs. */
namespace StandIns
{

enum Switch
{
  GlobalState,
  BlockAll,
  AllowSigned,
  StealthMode,
  AllowSignedApp, // downloaded software
  SwitchCount
};

struct Application
{
  std::string path;
  bool isBlocked = false;
};

struct FirewallState
{
  std::array<bool, SwitchCount> switches = {};
  std::vector<Application> applications; // in the order in which they were added

  Application* Find(const std::string& path);
};

/** Where the state is read, and where it may be written. */
struct StatePlace
{
  std::string readFile;
  std::string writeFile; ///< Empty when this user may not change what is read.
  bool isSystemWide = false;
};

/**
 * TAVRIK_FIREWALL_STATE where it is set and the process has no more rights than its user; else, for root, the
 * machine's file; for others the machine's once root has made one, which they cannot change, and until then
 * one of their own.
 */
StatePlace FindPlace();

/** What cannot be read, or is no state, counts as everything off and empty; bad lines are left out. */
FirewallState Load(const StatePlace& place);

/**
 * Loads, calls @p edit, and stores what came of it unless that returned false; other writers wait meanwhile.
 * Of a state in which everything is off and empty no file is kept.
 *
 * @return Empty, or why it could not be stored. Waits for other writers for 10 s at most.
 */
std::string Edit(const StatePlace& place, const std::function<bool(FirewallState&)>& edit);

} // namespace StandIns
