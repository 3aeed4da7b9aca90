// Holds what the access rules answer against what the kernel then allows, on random trees with random owners,
// groups and modes. The two differ by design; every difference must be of a kind that is known here, and
// every kind must have come up.

#include <Common/AccessChecks.h>

#include "Support/Child.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QString>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <random>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace Tavrik::Cleaner;

namespace
{

const uid_t user = 54001;
const uid_t stranger = 54002;
const gid_t group = 54101;
const gid_t supplementary = 54102;
const gid_t foreignGroup = 54103;

const mode_t readBit = 4;
const mode_t writeBit = 2;
const mode_t searchBit = 1;

enum Reason
{
  None,
  EverybodysBitsServeTheOwner,
  EverybodysBitsServeTheGroup,
  UserFlagsAreTheRealUsers,
  RootGetsNoBonus,
  FoldersNeedNoSearchBit,
  MissingEntriesAreRemovable,
  StickyFoldersServeTheirOwnerAlone,
  Unknown,
  ReasonCount
};

const std::array<const char*, ReasonCount> reasonNames{"as the kernel",
                                                       "everybody's bits serve the owner",
                                                       "everybody's bits serve the group",
                                                       "user flags are the real user's",
                                                       "root gets no bonus",
                                                       "folders need no search bit",
                                                       "missing entries are removable",
                                                       "sticky folders serve their owner alone",
                                                       "UNKNOWN"};

enum class Kind
{
  File,
  Folder,
  Link,
  Missing
};

struct Node
{
  std::string path;
  Kind kind;
  uid_t owner;
  gid_t group;
  mode_t mode;
  size_t parent; ///< The top is its own.
  size_t target; ///< Itself but for a link.
};

class Tree
{
public:
  Tree(const std::string& top, unsigned seed, std::vector<uid_t> owners, std::vector<gid_t> groups)
      : random(seed), owners(std::move(owners)), groups(std::move(groups))
  {
    Add(top, Kind::Folder, 0);
    const size_t count = 4 + random() % 14;
    while (nodes.size() < count)
    {
      const size_t parent = random() % nodes.size();
      if (nodes[parent].kind != Kind::Folder)
        continue;
      const std::string name = (random() % 8 == 0 ? "/." : "/") + std::to_string(nodes.size());
      static const Kind kinds[] = {Kind::File,   Kind::File,   Kind::File, Kind::Folder,
                                   Kind::Folder, Kind::Folder, Kind::Link, Kind::Missing};
      Add(nodes[parent].path + name, kinds[random() % 8], parent);
    }
    for (size_t i = nodes.size(); i-- > 0;)
      Close(nodes[i]);
  }

  void Open() const
  {
    for (const Node& node : nodes)
      if (node.kind == Kind::Folder && geteuid() != 0)
        chmod(node.path.c_str(), 0700);
  }

  std::vector<Node> nodes;

private:
  void Add(const std::string& path, Kind kind, size_t parent)
  {
    Node node{path,
              kind,
              owners[random() % owners.size()],
              groups[random() % groups.size()],
              RandomMode(kind),
              parent,
              nodes.size()};
    int result = 0;
    if (kind == Kind::Folder)
      result = mkdir(path.c_str(), 0700);
    else if (kind == Kind::File)
      result = close(open(path.c_str(), O_CREAT | O_WRONLY, 0600));
    else if (kind == Kind::Link)
    {
      node.target = random() % nodes.size();
      result = symlink(nodes[node.target].path.c_str(), path.c_str());
      node.target = nodes[node.target].target;
    }
    ASSERT_EQ(result, 0) << path;
    nodes.push_back(node);
  }

  mode_t RandomMode(Kind kind)
  {
    mode_t mode = random() % 01000;
    // Folders are mostly passable, or little of a tree would ever be reached.
    if (kind == Kind::Folder && random() % 3 != 0)
      mode |= 0111;
    if (kind == Kind::Folder && random() % 4 == 0)
      mode |= S_ISVTX;
    return mode;
  }

  static void Close(const Node& node)
  {
    if (node.kind == Kind::Missing)
      return;
    ASSERT_TRUE(geteuid() != 0 || lchown(node.path.c_str(), node.owner, node.group) == 0);
    ASSERT_TRUE(node.kind == Kind::Link || chmod(node.path.c_str(), node.mode) == 0);
  }

  std::mt19937 random;
  std::vector<uid_t> owners;
  std::vector<gid_t> groups;
};

bool Opens(const std::string& path, int flags, mode_t mode = 0)
{
  const int file = open(path.c_str(), flags | O_NONBLOCK | O_CLOEXEC, mode);
  if (file >= 0)
    close(file);
  return file >= 0;
}

bool KernelReads(const Node& node)
{
  return Opens(node.path, O_RDONLY);
}

// A folder is written by making an entry in it.
bool KernelWrites(const Node& node, const Node& target)
{
  if (target.kind != Kind::Folder)
    return Opens(node.path, O_WRONLY);
  const std::string probe = node.path + "/.probe";
  if (!Opens(probe, O_WRONLY | O_CREAT | O_EXCL, 0600))
    return false;
  EXPECT_EQ(unlink(probe.c_str()), 0);
  return true;
}

// Rights are looked at before it matters that a folder is not empty.
bool KernelRemoves(const Node& node)
{
  const int result = node.kind == Kind::Folder ? rmdir(node.path.c_str()) : unlink(node.path.c_str());
  return result == 0 || errno == ENOTEMPTY;
}

class Judge
{
public:
  explicit Judge(const Identity& identity) : identity(identity) {}

  // Why the rules' answer for this bit of a file differs from the kernel's.
  Reason Explain(const Node& file, mode_t bit, bool isRuleTrue) const
  {
    const bool isOwner = file.owner == identity.user;
    const bool isOthers = (file.mode & bit) != 0;
    const bool isGroups = (file.mode & (bit << 3)) != 0 && IsInGroup(file);
    const bool isOwners = (file.mode & (bit << 6)) != 0;
    const bool isReal = identity.realUser == identity.user;
    if (identity.user == 0)
      return !isRuleTrue && !isOthers && !isGroups && !isOwner ? RootGetsNoBonus : Unknown;
    if (!isRuleTrue)
      return !isReal && isOwner && isOwners && !isOthers && !isGroups ? UserFlagsAreTheRealUsers : Unknown;
    if (isOwner && !isOwners && (isOthers || isGroups))
      return EverybodysBitsServeTheOwner;
    if (isOwner && !isOwners && !isReal)
      return UserFlagsAreTheRealUsers;
    if (!isOwner && IsInGroup(file) && !isGroups && isOthers)
      return EverybodysBitsServeTheGroup;
    return Unknown;
  }

  Reason ExplainWrite(const Node& file, bool isRuleTrue) const
  {
    if (isRuleTrue && file.kind == Kind::Folder && !Grants(file, searchBit) && Grants(file, writeBit))
      return FoldersNeedNoSearchBit;
    return Explain(file, writeBit, isRuleTrue);
  }

  Reason ExplainRemoval(const Node& entry, const Node& parent, bool isRuleTrue) const
  {
    const bool isStickyOfAnother = (parent.mode & S_ISVTX) != 0 && parent.owner != identity.user;
    if (isRuleTrue && entry.kind == Kind::Missing && Grants(parent, writeBit) && Grants(parent, searchBit))
      return MissingEntriesAreRemovable;
    if (!isRuleTrue && isStickyOfAnother && identity.user == 0)
      return RootGetsNoBonus;
    if (!isRuleTrue && isStickyOfAnother && entry.owner == identity.user)
      return StickyFoldersServeTheirOwnerAlone;
    return ExplainWrite(parent, isRuleTrue);
  }

private:
  bool IsInGroup(const Node& file) const
  {
    return file.group == identity.group ||
           std::find(identity.groups.begin(), identity.groups.end(), file.group) != identity.groups.end();
  }

  // One class of bits decides.
  bool Grants(const Node& file, mode_t bit) const
  {
    if (identity.user == 0)
      return true;
    const int shift = file.owner == identity.user ? 6 : IsInGroup(file) ? 3 : 0;
    return (file.mode >> shift & bit) != 0;
  }

  Identity identity;
};

using Counts = std::array<int, ReasonCount>;

// Counts that children share.
class SharedCounts
{
public:
  SharedCounts()
      : counts(mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))
  {
  }
  ~SharedCounts() { munmap(counts, sizeof(Counts)); }
  Counts& operator*() const { return *static_cast<Counts*>(counts); }

private:
  void* counts;
};

struct Answers
{
  bool isRead;
  bool isWritten;
  bool isRemoved;
};

std::string Describe(const char* what, const Node& node, const Node& decisive, bool isRuleTrue)
{
  char text[200];
  std::snprintf(text, sizeof(text), ": %s is %d, decided by mode %o owner %u group %u", what, isRuleTrue,
                decisive.mode, decisive.owner, decisive.group);
  return node.path + text;
}

void Compare(const Tree& tree, const Identity& identity, Counts& counts)
{
  const Judge judge(identity);
  const auto& nodes = tree.nodes;
  const auto count = [&counts](Reason reason, const std::string& description)
  {
    ++counts[reason];
    EXPECT_NE(reason, Unknown) << description;
  };

  std::vector<Answers> rules;
  for (const Node& node : nodes)
  {
    const QString path = QString::fromStdString(node.path);
    rules.push_back({CanRead(path), CanWrite(path), CanRemove(path)});
  }
  for (size_t i = 0; i < nodes.size(); ++i)
  {
    const Node& target = nodes[nodes[i].target];
    const Answers& rule = rules[i];
    count(KernelReads(nodes[i]) == rule.isRead ? None : judge.Explain(target, readBit, rule.isRead),
          Describe("CanRead", nodes[i], target, rule.isRead));
    count(KernelWrites(nodes[i], target) == rule.isWritten ? None
                                                           : judge.ExplainWrite(target, rule.isWritten),
          Describe("CanWrite", nodes[i], target, rule.isWritten));
  }
  // From the inside out, and never the top, whose parent is not of the tree.
  for (size_t i = nodes.size(); i-- > 1;)
  {
    const Node& parent = nodes[nodes[i].parent];
    const bool isRuleTrue = rules[i].isRemoved;
    count(KernelRemoves(nodes[i]) == isRuleTrue ? None : judge.ExplainRemoval(nodes[i], parent, isRuleTrue),
          Describe("CanRemove", nodes[i], parent, isRuleTrue));
  }
}

class AccessReality : public testing::Test
{
protected:
  static const unsigned treesEach = 800;

  void SetUp() override
  {
    ASSERT_EQ(chmod(std::getenv("HOME"), 0711), 0);
    ASSERT_EQ(chmod(std::getenv("TMPDIR"), 0711), 0);
    ASSERT_EQ(chmod(qPrintable(folder.path()), 0711), 0);
  }

  void TearDown() override
  {
    for (int reason = 0; reason < ReasonCount && !IsSkipped(); ++reason)
      std::printf("%8d %s\n", (*counts)[static_cast<size_t>(reason)],
                  reasonNames[static_cast<size_t>(reason)]);
  }

  void CompareOn(unsigned seed, const Identity& identity, const std::vector<uid_t>& owners,
                 const std::vector<gid_t>& groups)
  {
    const std::string top = folder.path().toStdString() + "/" + std::to_string(seed);
    const Tree tree(top, seed, owners, groups);
    const auto compare = [&] { Compare(tree, identity, *counts); };
    EXPECT_TRUE(geteuid() == 0 ? RunAs(identity, compare) : RunInChild(compare)) << "seed " << seed;
    tree.Open();
    ASSERT_TRUE(QDir(QString::fromStdString(top)).removeRecursively());
  }

  void ExpectAll(std::initializer_list<Reason> reasons) const
  {
    for (const Reason reason : reasons)
      EXPECT_GT((*counts)[reason], 0) << "never met: " << reasonNames[reason];
    EXPECT_EQ((*counts)[Unknown], 0);
  }

  QTemporaryDir folder;
  SharedCounts counts;
};

class AccessRealityOfMany : public AccessReality, public testing::WithParamInterface<unsigned>
{
};

TEST_P(AccessRealityOfMany, DiffersFromTheRulesOnlyInKnownWaysForManyUsers)
{
  if (geteuid() != 0)
    GTEST_SKIP() << "Only root can become other users";
  const std::vector<Identity> identities{{user, user, group, {supplementary, 54104}},
                                         {user, user, group, {}},
                                         {stranger, user, group, {supplementary}},
                                         {0, user, group, {supplementary}},
                                         {0, 0, 0, {0}}};
  for (unsigned i = 0; i < treesEach && !HasFailure(); ++i)
    CompareOn(GetParam() * treesEach + i, identities[i % identities.size()], {user, user, stranger, 0},
              {group, supplementary, foreignGroup, 0});
  ExpectAll({None, EverybodysBitsServeTheOwner, EverybodysBitsServeTheGroup, UserFlagsAreTheRealUsers,
             RootGetsNoBonus, FoldersNeedNoSearchBit, MissingEntriesAreRemovable,
             StickyFoldersServeTheirOwnerAlone});
}

TEST_F(AccessReality, DiffersFromTheRulesOnlyInKnownWaysForOneUser)
{
  const Identity self =
      geteuid() == 0 ? Identity{user, user, group, {}} : Identity{getuid(), geteuid(), getegid(), {}};
  for (unsigned i = 0; i < treesEach && !HasFailure(); ++i)
    CompareOn(i, self, {self.user}, {self.group});
  ExpectAll({None, EverybodysBitsServeTheOwner, FoldersNeedNoSearchBit, MissingEntriesAreRemovable});
}

INSTANTIATE_TEST_SUITE_P(Seeds, AccessRealityOfMany, testing::Range(0u, 4u));

} // namespace
