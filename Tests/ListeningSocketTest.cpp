// Built once for each system's source; both are sources for this one.

#include <Common/Platform/ListeningSocket.h>

#include <gtest/gtest.h>

#include <QByteArray>
#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Tavrik::Platform;

namespace
{

struct ListeningSocket : testing::Test
{
  ListeningSocket() { EXPECT_GE(listener, 0); }

  ~ListeningSocket() override
  {
    close(listener);
    unlink(path.constData());
  }

  static int Connect(const QByteArray& path)
  {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    const int client = socket(AF_UNIX, SOCK_STREAM, 0);
    if (connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0)
      return client;
    close(client);
    return -1;
  }

  static QStringList Entries()
  {
    return QDir(QDir::tempPath()).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
  }

  const QByteArray path = QFile::encodeName(QDir::tempPath() + "/socket");
  const int listener = OpenLocalSocket();
};

TEST_F(ListeningSocket, AcceptsConnectionsAndIsItsUsersAloneWhateverTheUmask)
{
  for (const mode_t mask : {0u, 0022u, 0777u})
  {
    const int another = OpenLocalSocket();
    const mode_t previous = umask(mask);
    EXPECT_TRUE(ListenPrivately(another, path));
    EXPECT_EQ(umask(previous), mask);
    struct stat status = {};
    ASSERT_EQ(lstat(path.constData(), &status), 0);
    EXPECT_EQ(status.st_mode, static_cast<mode_t>(S_IFSOCK | 0600));
    EXPECT_EQ(Entries(), QStringList{"socket"});

    const int client = Connect(path);
    EXPECT_GE(client, 0);
    const int accepted = AcceptConnection(another);
    EXPECT_EQ(fcntl(accepted, F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(write(client, "x", 1), 1);
    char byte = 0;
    EXPECT_EQ(read(accepted, &byte, 1), 1);
    for (const int file : {client, accepted, another})
      close(file);
    unlink(path.constData());
  }
}

TEST_F(ListeningSocket, NeitherBlocksNorSurvivesAnExec)
{
  EXPECT_EQ(fcntl(listener, F_GETFD), FD_CLOEXEC);
  ASSERT_TRUE(ListenPrivately(listener, path));
  EXPECT_EQ(AcceptConnection(listener), -1);
  EXPECT_EQ(errno, EAGAIN);
}

TEST_F(ListeningSocket, WhereAFolderStandsFailsAndLeavesNothingElse)
{
  ASSERT_EQ(mkdir(path.constData(), 0700), 0);
  EXPECT_FALSE(ListenPrivately(listener, path));
  EXPECT_EQ(Entries(), QStringList{"socket"});
  EXPECT_EQ(rmdir(path.constData()), 0);
}

TEST_F(ListeningSocket, WithTooLongAPathFails)
{
  EXPECT_FALSE(ListenPrivately(listener, path + QByteArray(sizeof(sockaddr_un::sun_path), 'x')));
}

TEST_F(ListeningSocket, InAMissingFolderFails)
{
  EXPECT_FALSE(ListenPrivately(listener, QFile::encodeName(QDir::tempPath() + "/missing/socket")));
}

} // namespace
