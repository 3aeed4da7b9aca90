// diskutil for machines without it: "list" and "info", with the layout of OS X 10.8 to 10.11.

#include "Mounts.h"

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace StandIns
{
namespace
{

const int failed = 1;
const char* const notThere = "Not applicable (no file system)";

const char* const usage = "usage: diskutil list [DISK]\n"
                          "       diskutil info DISK\n"
                          "DISK: an identifier, /dev/ and an identifier, or, for info, a mount point.\n"
                          "This stand-in shows what is mounted on this machine.\n";

std::string FormatSize(std::uint64_t bytes)
{
  const char* const units[] = {"B", "KB", "MB", "GB", "TB", "PB", "EB"};
  double size = static_cast<double>(bytes);
  std::size_t unit = 0;
  for (; size >= 1000 && unit + 1 < sizeof(units) / sizeof(units[0]); ++unit)
    size /= 1000;
  char text[32];
  std::snprintf(text, sizeof(text), "%.1f %s", size, units[unit]);
  return text;
}

std::string FormatExactSize(std::uint64_t bytes)
{
  const std::uint64_t blockSize = 512;
  return FormatSize(bytes) + " (" + std::to_string(bytes) + " Bytes) (exactly " +
         std::to_string(bytes / blockSize) + " 512-Byte-Blocks)";
}

std::string WithoutDev(const std::string& disk)
{
  const std::string folder = "/dev/";
  return disk.compare(0, folder.size(), folder) == 0 ? disk.substr(folder.size()) : disk;
}

int ComplainAbout(const std::string& disk)
{
  std::fprintf(stderr, "Could not find disk: %s\n", disk.c_str());
  return failed;
}

std::uint64_t SizeOfWhole(const std::vector<Volume>& volumes, const std::string& whole)
{
  std::uint64_t size = 0;
  for (const Volume& volume : volumes)
    if (volume.whole == whole)
      size += volume.totalSize;
  return size;
}

/// @name list
/// @{

void PrintRow(int number, const std::string& type, const std::string& name, const std::string& size,
              const std::string& identifier)
{
  std::printf("%4d: %26s %-23s%-11s %s\n", number, type.c_str(), name.c_str(), size.c_str(),
              identifier.c_str());
}

// Names of any width would do, but people read columns. A character's bytes stay together.
std::string Shorten(const std::string& name)
{
  const std::size_t longest = 23;
  if (name.size() <= longest)
    return name;
  std::size_t end = longest - 3;
  while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80)
    --end;
  return name.substr(0, end) + "...";
}

void ListWhole(const std::vector<Volume>& volumes, const std::string& whole)
{
  std::printf("/dev/%s\n   #:                       TYPE NAME                    SIZE       IDENTIFIER\n",
              whole.c_str());
  PrintRow(0, "", "", '*' + FormatSize(SizeOfWhole(volumes, whole)), whole);
  int number = 0;
  for (const Volume& volume : volumes)
    if (volume.whole == whole)
      PrintRow(++number, volume.type, Shorten(volume.name), ' ' + FormatSize(volume.totalSize),
               volume.identifier);
}

int List(const std::vector<Volume>& volumes, const std::string& disk)
{
  std::vector<std::string> listed;
  for (const Volume& volume : volumes)
  {
    bool isListed = !disk.empty() && disk != volume.whole && disk != volume.identifier;
    for (const std::string& whole : listed)
      isListed = isListed || whole == volume.whole;
    if (isListed)
      continue;
    listed.push_back(volume.whole);
    ListWhole(volumes, volume.whole);
  }
  return disk.empty() || !listed.empty() ? 0 : ComplainAbout(disk);
}

/// @}
/// @name info
/// @{

void PrintValue(const std::string& key, const std::string& value)
{
  std::printf("   %-25s %s\n", (key + ':').c_str(), value.c_str());
}

void PrintVolume(const Volume& volume)
{
  const std::string unknown = "Not available (the file system does not answer)";
  PrintValue("Device Identifier", volume.identifier);
  PrintValue("Device Node", "/dev/" + volume.identifier);
  PrintValue("Part of Whole", volume.whole);
  PrintValue("Device / Media Name", volume.device);
  std::puts("");
  PrintValue("Volume Name", volume.name);
  std::puts("");
  PrintValue("Mounted", "Yes");
  PrintValue("Mount Point", volume.mountPoint);
  std::puts("");
  PrintValue("File System Personality", volume.type);
  std::puts("");
  PrintValue("Total Size", volume.hasSizes ? FormatExactSize(volume.totalSize) : unknown);
  PrintValue("Volume Free Space", volume.hasSizes ? FormatExactSize(volume.freeSize) : unknown);
  if (volume.hasSizes)
    PrintValue("Device Block Size", std::to_string(volume.blockSize) + " Bytes");
  std::puts("");
  PrintValue("Read-Only Volume", volume.isReadOnly ? "Yes" : "No");
  PrintValue("Whole", "No");
  std::puts("");
}

void PrintWhole(const std::string& whole, std::uint64_t size)
{
  PrintValue("Device Identifier", whole);
  PrintValue("Device Node", "/dev/" + whole);
  PrintValue("Part of Whole", whole);
  std::puts("");
  PrintValue("Volume Name", notThere);
  std::puts("");
  PrintValue("Mounted", notThere);
  std::puts("");
  PrintValue("Total Size", FormatExactSize(size));
  PrintValue("Volume Free Space", notThere);
  std::puts("");
  PrintValue("Whole", "Yes");
  std::puts("");
}

// Only the volumes that are wanted are asked, so that one that does not answer holds up nobody else's answer.
std::vector<Volume> Select(const std::function<bool(const Volume&)>& isWanted)
{
  std::vector<Volume> selected;
  for (const Volume& volume : LoadVolumes())
    if (isWanted(volume))
      selected.push_back(volume);
  return AskForSizes(selected);
}

int Info(const std::string& disk)
{
  const std::string identifier = WithoutDev(disk);
  const std::vector<Volume> volumes = Select(
      [&](const Volume& volume) { return identifier == volume.identifier || disk == volume.mountPoint; });
  if (!volumes.empty())
  {
    PrintVolume(volumes.front());
    return 0;
  }
  const std::vector<Volume> parts = Select([&](const Volume& volume) { return identifier == volume.whole; });
  if (parts.empty())
    return ComplainAbout(disk);
  PrintWhole(identifier, SizeOfWhole(parts, identifier));
  return 0;
}

/// @}

int Run(const std::vector<std::string>& words)
{
  const std::string verb = words.empty() ? "" : words[0];
  if (verb == "list" && words.size() <= 2)
    return List(AskForSizes(LoadVolumes()), words.size() == 2 ? WithoutDev(words[1]) : "");
  if (verb == "info" && words.size() == 2)
    return Info(words[1]);
  std::fputs(usage, stderr);
  return failed;
}

} // namespace
} // namespace StandIns

int main(int argc, char** argv)
{
  const int code = StandIns::Run(std::vector<std::string>(argv + 1, argv + argc));
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
    return code;
  std::perror("diskutil: cannot write to the standard output");
  return StandIns::failed;
}
