#pragma once

#include <cstdint>
#include <string>
#include <vector>

/** @file The volumes of this machine: what is mounted and lies on a disk, or on something like one. */
namespace StandIns
{

struct Volume
{
  std::string
      identifier;    ///< "disk8s1"; the numbers are those of the device, so it stays while it is mounted.
  std::string whole; ///< "disk8"
  std::string name;
  std::string mountPoint;
  std::string type;   ///< Of the file system.
  std::string device; ///< What was mounted.
  bool isReadOnly = false;
  bool hasSizes = false;       ///< Not when the file system did not answer in time.
  std::uint64_t totalSize = 0; ///< Bytes, like all sizes.
  std::uint64_t freeSize = 0;  ///< For those who are not root.
  std::uint64_t blockSize = 0;
};

/**
 * @param mountInfo The text of /proc/self/mountinfo.
 * @return One volume for each device, in the order of the text, without sizes.
 */
std::vector<Volume> ParseMounts(const std::string& mountInfo);

/** @return The volumes of this machine, without sizes. */
std::vector<Volume> LoadVolumes();

/**
 * Asks every file system for its sizes, all at once; those that have not answered after 2 s go without. What
 * turns out to be mounted on a file is left out.
 */
std::vector<Volume> AskForSizes(std::vector<Volume> volumes);

} // namespace StandIns
