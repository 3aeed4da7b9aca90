// socketfilterfw for machines without it: the options and the answers of macOS 10.11 to 10.14. It filters
// nothing, it remembers.

#include "FirewallState.h"

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace StandIns
{
namespace
{

const int refused = 255;
const int wrongUsage = 1;

const char* const usage =
    "usage: socketfilterfw [-h] OPTION...\n"
    "  --getglobalstate             tell whether the firewall is on\n"
    "  --setglobalstate on|off      turn it on or off\n"
    "  --getblockall                tell whether all incoming connections are blocked\n"
    "  --setblockall on|off         block them all, or not\n"
    "  --listapps                   list the applications and how they are treated\n"
    "  --getappblocked PATH         tell whether connections to an application are blocked\n"
    "  --blockapp PATH              block connections to a listed application\n"
    "  --unblockapp PATH            let them through\n"
    "  --add PATH                   add an application to the list\n"
    "  --remove PATH                take an application from the list\n"
    "  --getallowsigned             tell whether signed software is let through by itself\n"
    "  --setallowsigned on|off      let that of the system through, or not\n"
    "  --setallowsignedapp on|off   let downloaded software through, or not\n"
    "  --getstealthmode             tell whether the machine keeps silent when probed\n"
    "  --setstealthmode on|off      let it keep silent, or not\n"
    "This stand-in filters nothing: it remembers what it is told.\n";

const char* const notListed = "The application is not part of the firewall";

int Say(const char* text)
{
  std::fputs(text, stdout);
  return 0;
}

int Complain()
{
  std::fputs(usage, stderr);
  return wrongUsage;
}

int Refuse(const std::string& reason)
{
  std::fprintf(stderr, "%s\n", reason.c_str());
  return refused;
}

const char* OnOff(bool isOn, const char* on, const char* off)
{
  return isOn ? on : off;
}

/// @name Answers
/// @{

void TellGlobalState(const FirewallState& state)
{
  const bool isEnabled = state.switches[GlobalState];
  std::printf("Firewall is %s. (State = %d) \n", OnOff(isEnabled, "enabled", "disabled"),
              isEnabled ? 1 + state.switches[BlockAll] : 0);
}

void TellBlockAll(const FirewallState& state)
{
  std::puts(OnOff(state.switches[BlockAll],
                  "Firewall is set to block all non-essential incoming connections ",
                  "Block all DISABLED! "));
}

void TellAllowSigned(const FirewallState& state)
{
  std::printf("Automatically allow signed built-in software %s \n"
              "Automatically allow downloaded signed software %s \n",
              OnOff(state.switches[AllowSigned], "ENABLED", "DISABLED"),
              OnOff(state.switches[AllowSignedApp], "ENABLED", "DISABLED"));
}

void TellStealthMode(const FirewallState& state)
{
  std::printf("Stealth mode %s \n", OnOff(state.switches[StealthMode], "enabled", "disabled"));
}

void ListApplications(const FirewallState& state)
{
  std::printf("ALF: total number of apps = %zu \n\n", state.applications.size());
  std::size_t number = 0;
  for (const Application& application : state.applications)
    std::printf("%zu :  %s \n \t ( %s incoming connections ) \n\n", ++number, application.path.c_str(),
                OnOff(application.isBlocked, "Block", "Allow"));
}

int SayTreatment(const Application& application)
{
  std::printf("Incoming connection to the application is %s \n",
              OnOff(application.isBlocked, "blocked", "permitted"));
  return 0;
}

int Tell(void (*tell)(const FirewallState&), const StatePlace& place)
{
  tell(Load(place));
  return 0;
}

/// @}
/// @name Settings
/// @{

int Change(const StatePlace& place, const std::function<int(FirewallState&)>& edit)
{
  if (place.writeFile.empty())
    return Refuse(place.isSystemWide ? "Must be root to change settings."
                                     : "There is no home for the state.");
  int code = 0;
  const std::string reason = Edit(place,
                                  [&](FirewallState& state)
                                  {
                                    code = edit(state);
                                    return code == 0;
                                  });
  return reason.empty() ? code : Refuse(reason);
}

void TellChangedAllowSigned(const FirewallState& state)
{
  std::printf("%s allow signed built-in applications automatically \n",
              OnOff(state.switches[AllowSigned], "Enabled", "Disabled"));
}

void TellChangedAllowSignedApp(const FirewallState& state)
{
  std::printf("%s allow signed downloaded applications automatically \n",
              OnOff(state.switches[AllowSignedApp], "Enabled", "Disabled"));
}

struct SwitchOption
{
  const char* ask;
  const char* set;
  void (*tell)(const FirewallState&);
  void (*tellChanged)(const FirewallState&);
};

const SwitchOption switchOptions[SwitchCount] = {
    {"--getglobalstate", "--setglobalstate", TellGlobalState, TellGlobalState},
    {"--getblockall", "--setblockall", TellBlockAll, TellBlockAll},
    {"--getallowsigned", "--setallowsigned", TellAllowSigned, TellChangedAllowSigned},
    {"--getstealthmode", "--setstealthmode", TellStealthMode, TellStealthMode},
    {"--getallowsigned", "--setallowsignedapp", TellAllowSigned, TellChangedAllowSignedApp}};

int SetSwitch(const StatePlace& place, int number, const std::string& value)
{
  if (value != "on" && value != "off")
    return Complain();
  return Change(place,
                [&](FirewallState& state)
                {
                  state.switches[static_cast<std::size_t>(number)] = value == "on";
                  switchOptions[number].tellChanged(state);
                  return 0;
                });
}

std::string AbsolutePath(const std::string& path)
{
  if (path.empty() || path[0] == '/')
    return path;
  char* const folder = getcwd(nullptr, 0);
  std::string absolute = folder ? std::string(folder) + '/' + path : std::string();
  std::free(folder);
  return absolute;
}

bool Exists(const std::string& path)
{
  struct stat information;
  return stat(path.c_str(), &information) == 0;
}

int Add(const StatePlace& place, const std::string& path)
{
  // The list has one line for a path.
  if (path.find('\n') != std::string::npos || !Exists(path))
    return Refuse("The file path you specified does not exist");
  return Change(place,
                [&](FirewallState& state)
                {
                  if (state.Find(path))
                    return Say("The application is already a part of the firewall \n");
                  state.applications.push_back({path, false});
                  return Say("Application has been added to the firewall \n");
                });
}

int ChangeListed(const StatePlace& place, const std::string& option, const std::string& path)
{
  return Change(place,
                [&](FirewallState& state)
                {
                  Application* const application = state.Find(path);
                  if (!application)
                    return Refuse(notListed);
                  if (option == "--remove")
                  {
                    state.applications.erase(state.applications.begin() +
                                             (application - state.applications.data()));
                    return Say("Application has been removed from the firewall \n");
                  }
                  application->isBlocked = option == "--blockapp";
                  return SayTreatment(*application);
                });
}

int TellTreatment(const StatePlace& place, const std::string& path)
{
  FirewallState state = Load(place);
  const Application* const application = state.Find(path);
  return application ? SayTreatment(*application) : Refuse(notListed);
}

/// @}

// Takes an option, and its value where it has one, from @p words.
int Obey(const StatePlace& place, const std::vector<std::string>& words, std::size_t* next)
{
  const std::string& option = words[(*next)++];
  if (option == "-h" || option == "--help")
    return Say(usage);
  if (option == "--listapps")
    return Tell(ListApplications, place);
  for (const SwitchOption& choice : switchOptions)
    if (option == choice.ask)
      return Tell(choice.tell, place);

  if (*next == words.size())
    return Complain();
  const std::string& value = words[(*next)++];
  for (int number = 0; number < SwitchCount; ++number)
    if (option == switchOptions[number].set)
      return SetSwitch(place, number, value);
  const std::string path = AbsolutePath(value);
  if (option == "--add")
    return Add(place, path);
  if (option == "--getappblocked")
    return TellTreatment(place, path);
  return option == "--remove" || option == "--blockapp" || option == "--unblockapp"
             ? ChangeListed(place, option, path)
             : Complain();
}

// The options of one call are obeyed in their order, up to the first that fails.
int Run(const std::vector<std::string>& words)
{
  if (words.empty())
    return Complain();
  const StatePlace place = FindPlace();
  int code = 0;
  for (std::size_t next = 0; next < words.size() && code == 0;)
    code = Obey(place, words, &next);
  return code;
}

} // namespace
} // namespace StandIns

int main(int argc, char** argv)
{
  umask(0077);
  return StandIns::Run(std::vector<std::string>(argv + 1, argv + argc));
}
