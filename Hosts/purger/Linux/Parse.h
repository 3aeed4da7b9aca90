#pragma once

#include <limits>
#include <optional>
#include <sstream>
#include <string>

/** @file Texts of /proc and of control groups. Nothing here fetches; what cannot be read is no value. */
namespace Purger
{

/** @return The whole text as a number that is not negative, blanks around it aside. */
inline std::optional<long long> ParseNumber(const std::string& text)
{
  std::istringstream stream(text);
  std::string digits;
  std::string more;
  if (!(stream >> digits) || stream >> more || digits.find_first_not_of("0123456789") != std::string::npos)
    return std::nullopt;
  long long number = 0;
  for (const char digit : digits)
  {
    if (number > (std::numeric_limits<long long>::max() - 9) / 10)
      return std::numeric_limits<long long>::max();
    number = number * 10 + (digit - '0');
  }
  return number;
}

/** @return The number of the line "NAME NUMBER ..." of @p text. */
inline std::optional<long long> ParseField(const std::string& text, const std::string& name)
{
  std::istringstream lines(text);
  std::string line;
  while (std::getline(lines, line))
  {
    std::istringstream words(line);
    std::string word;
    std::string number;
    if (words >> word && word == name)
      return words >> number ? ParseNumber(number) : std::nullopt;
  }
  return std::nullopt;
}

/** A control group's files: where they are mounted, and which group that folder is. */
struct GroupMount
{
  std::string folder;
  std::string root;
  bool isUnified = false;
};

/** @return The mount of the groups of one generation in a text of /proc/self/mountinfo. */
inline std::optional<GroupMount> ParseMount(const std::string& mountInfo, bool isUnified)
{
  std::istringstream lines(mountInfo);
  std::string line;
  while (std::getline(lines, line))
  {
    std::istringstream words(line);
    std::string id, parent, device, root, folder, word, type, source, options;
    words >> id >> parent >> device >> root >> folder;
    while (words >> word && word != "-")
      ;
    words >> type >> source >> options;
    if (folder.empty())
      continue;
    if (isUnified ? type == "cgroup2"
                  : type == "cgroup" && (',' + options + ',').find(",memory,") != std::string::npos)
      return GroupMount{folder, root, isUnified};
  }
  return std::nullopt;
}

/** @return This process's group of one generation in a text of /proc/self/cgroup. */
inline std::optional<std::string> ParseGroup(const std::string& groups, bool isUnified)
{
  std::istringstream lines(groups);
  std::string line;
  while (std::getline(lines, line))
  {
    const size_t first = line.find(':');
    const size_t second = first == std::string::npos ? first : line.find(':', first + 1);
    if (second == std::string::npos)
      continue;
    const std::string controllers = ',' + line.substr(first + 1, second - first - 1) + ',';
    if (isUnified ? controllers == ",," : controllers.find(",memory,") != std::string::npos)
      return line.substr(second + 1);
  }
  return std::nullopt;
}

/** @return The folder of @p group below its mount; the mount itself for a group that lies outside. */
inline std::string GroupFolder(const GroupMount& mount, const std::string& group)
{
  const std::string root = mount.root == "/" ? std::string() : mount.root;
  const bool isBelow = group.compare(0, root.size(), root) == 0 && group.find("/..") == std::string::npos;
  return isBelow ? mount.folder + group.substr(root.size()) : mount.folder;
}

} // namespace Purger
