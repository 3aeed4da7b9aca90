#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

/** Whom a child becomes. The groups are the supplementary ones, all of them. */
struct Identity
{
  uid_t realUser;
  uid_t user;
  gid_t group;
  std::vector<gid_t> groups;
};

/**
 * Runs @p body in a forked child; its failed assertions, and an end that is none, are this test's.
 * The child ends as a program does, so what it covered is counted.
 */
testing::AssertionResult RunInChild(const std::function<void()>& body);

/** The same as someone else, which takes root. */
testing::AssertionResult RunAs(const Identity& identity, const std::function<void()>& body);

/**
 * RunInChild() in a mount namespace of its own, whose tree is the machine's with an empty folder /Volumes in
 * it. Skips the test, with the reason, where the machine does not allow that.
 */
void RunWithOwnVolumes(const std::function<void()>& body);

/** Mounts an empty file system there, which goes away with the namespace. Creates the folder. */
testing::AssertionResult MountVolume(const std::string& folder);

/**
 * Makes @p folder, which is not a mount point, the root of the calling process, with the machine's folders
 * mounted in it. Only within RunWithOwnVolumes().
 */
testing::AssertionResult EnterPlainRoot(const std::string& folder);

/** Makes a volume of MountVolume() read-only from now on. */
testing::AssertionResult MakeReadOnly(const std::string& folder);
