// The program behind FakeFirewall. Its state lies beside the name that it was started by.

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{

using Words = std::vector<std::string>;

std::string ReadFile(const std::string& path)
{
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

Words Split(const std::string& text, char separator)
{
  Words words;
  std::istringstream stream(text);
  for (std::string word; std::getline(stream, word, separator);)
    words.push_back(word);
  return words;
}

class Tool
{
public:
  explicit Tool(const std::string& path) : path(path), fields(Split(ReadFile(path + ".state"), '\0'))
  {
    if (fields.size() < firstApplication)
      fields.assign(firstApplication, "0");
  }

  int Run(const Words& words)
  {
    const std::string option = words.empty() ? "" : words.front();
    if (Answer(option))
      return 0;
    Remember(words);
    if (!HasDemandedRights())
      return Complain("Must be root to change settings.");
    if (IsIn(".fails", option))
      return Complain("refused");
    if (IsIn(".refuses", option))
      return std::puts("Firewall settings cannot be modified from command line on managed Mac computers") < 0;
    return words.size() == 2 && (SetSwitch(option, words[1]) || Edit(option, words[1])) ? Store()
                                                                                        : Complain("usage");
  }

private:
  static constexpr std::size_t allowSignedApp = 4;
  static constexpr std::size_t firstApplication = 5;

  static int Complain(const char* text)
  {
    std::fprintf(stderr, "%s\n", text);
    return 255;
  }

  bool IsIn(const char* ending, const std::string& option) const
  {
    const Words options = Split(ReadFile(path + ending), '\n');
    return std::find(options.begin(), options.end(), option) != options.end();
  }

  bool HasDemandedRights() const
  {
    return (!IsIn(".demands", "effective") || geteuid() == 0) && (!IsIn(".demands", "real") || getuid() == 0);
  }

  bool Answer(const std::string& option) const
  {
    const auto isOn = [this](std::size_t index) { return fields[index] == "1"; };
    if (option == "--listapps")
      List();
    else if (option == "--getglobalstate" && isNewer && isOn(0) && isOn(1))
      std::puts("Firewall is blocking all non-essential incoming connections. (State = 2)");
    else if (option == "--getglobalstate")
      std::printf("Firewall is %s. (State = %s) \n", isOn(0) ? "enabled" : "disabled", isOn(0) ? "1" : "0");
    else if (option == "--getblockall" && isNewer)
      std::printf("Firewall has block all state set to %s.\n", isOn(1) ? "enabled" : "disabled");
    else if (option == "--getblockall")
      std::puts(isOn(1) ? "Firewall is set to block all non-essential incoming connections "
                        : "Block all DISABLED! ");
    else if (option == "--getallowsigned" && isNewer)
      std::printf("Automatically allow built-in signed software %s.\n"
                  "Automatically allow downloaded signed software %s.\n",
                  isOn(2) ? "ENABLED" : "DISABLED", isOn(allowSignedApp) ? "ENABLED" : "DISABLED");
    else if (option == "--getallowsigned")
      std::printf("Automatically allow signed built-in software %s \n", isOn(2) ? "ENABLED" : "DISABLED");
    else if (option == "--getstealthmode" && isNewer)
      std::printf("Firewall stealth mode is %s\n", isOn(3) ? "on" : "off");
    else if (option == "--getstealthmode")
      std::printf("Stealth mode %s \n", isOn(3) ? "enabled" : "disabled");
    else
      return false;
    return true;
  }

  void List() const
  {
    const std::size_t count = (fields.size() - firstApplication) / 2;
    std::printf(isNewer ? "Total number of apps = %zu \n" : "ALF: total number of apps = %zu \n\n", count);
    for (std::size_t i = 0; i < count; ++i)
      std::printf(isNewer ? "%zu : %s \n             (%s incoming connections)\n"
                          : "%zu :  %s \n \t ( %s incoming connections ) \n\n",
                  i + 1, fields[firstApplication + 2 * i].c_str(),
                  fields[firstApplication + 2 * i + 1] == "1" ? "Block" : "Allow");
  }

  void Remember(const Words& words) const
  {
    std::string record = std::to_string(words.size()) + '\0';
    for (const std::string& word : words)
      record += word + '\0';
    const int file = open((path + ".calls").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    (void)!write(file, record.data(), record.size());
    close(file);
  }

  bool SetSwitch(const std::string& option, const std::string& value)
  {
    Words options = {"--setglobalstate", "--setblockall", "--setallowsigned", "--setstealthmode"};
    if (isNewer)
      options.emplace_back("--setallowsignedapp");
    for (std::size_t i = 0; i < options.size(); ++i)
    {
      if (option != options[i] || (value != "on" && value != "off"))
        continue;
      fields[i] = value == "on" ? "1" : "0";
      return true;
    }
    return false;
  }

  bool Edit(const std::string& option, const std::string& application)
  {
    std::size_t at = firstApplication;
    while (at < fields.size() && fields[at] != application)
      at += 2;
    const bool isListed = at < fields.size();
    if (option == "--add")
    {
      if (!isListed)
        fields.insert(fields.end(), {application, "0"});
      return true;
    }
    if (!isListed || (option != "--remove" && option != "--blockapp" && option != "--unblockapp"))
      return false;
    if (option == "--remove")
      fields.erase(fields.begin() + static_cast<std::ptrdiff_t>(at),
                   fields.begin() + static_cast<std::ptrdiff_t>(at) + 2);
    else
      fields[at + 1] = option == "--blockapp" ? "1" : "0";
    return true;
  }

  int Store() const
  {
    const std::string fresh = path + ".state.new";
    {
      std::ofstream file(fresh, std::ios::binary);
      for (const std::string& field : fields)
        file << field << '\0';
    }
    return std::rename(fresh.c_str(), (path + ".state").c_str()) == 0 ? 0 : Complain("no state");
  }

  const std::string path;
  const bool isNewer = access((path + ".newer").c_str(), F_OK) == 0; // speaks as macOS 15 and later do
  Words fields; // the five switches, then a path and its block state for each application
};

} // namespace

int main(int argc, char** argv)
{
  return Tool(argv[0]).Run(Words(argv + 1, argv + argc));
}
