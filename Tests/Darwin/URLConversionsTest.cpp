#include <Common/PathHelpers.h>

#include "Darwin/CoreFoundationDouble.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace CoreFoundationDouble;
using Tavrik::Cleaner::CFURLConvertToPath;
using Tavrik::Cleaner::CFURLCreateFromPath;
using testing::ElementsAre;

namespace
{

const __CFURL someURL = {};

class CFURLCreateFromPathTest : public testing::Test
{
protected:
  CFURLCreateFromPathTest() { Reset(&someURL); }

  bool IsTakenForADirectory(const QString& path)
  {
    const CFURLRef url = CFURLCreateFromPath(path);
    EXPECT_EQ(url, &someURL);
    CFRelease(url);
    EXPECT_EQ(requestedURL.bytes, path.toUtf8());
    return requestedURL.isDirectory;
  }

  QTemporaryDir folder;
};

TEST_F(CFURLCreateFromPathTest, PassesTheUtf8BytesAndTheirCountToTheDefaultAllocator)
{
  const CFURLRef url = CFURLCreateFromPath(QString::fromUtf8("/none/é/数据/𝄞"));
  EXPECT_EQ(url, &someURL);
  EXPECT_THAT(calls, ElementsAre("CFURLCreateFromFileSystemRepresentation default 20 0"));
  EXPECT_EQ(requestedURL.bytes, "/none/\xc3\xa9/\xe6\x95\xb0\xe6\x8d\xae/\xf0\x9d\x84\x9e");
  CFRelease(url);
}

TEST_F(CFURLCreateFromPathTest, AsksTheFileSystemWhatIsADirectory)
{
  QFile file(folder.filePath("file"));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  ASSERT_TRUE(QFile::link(folder.path(), folder.filePath("link")));
  EXPECT_TRUE(IsTakenForADirectory(folder.path()));
  EXPECT_TRUE(IsTakenForADirectory(folder.path() + "/"));
  EXPECT_TRUE(IsTakenForADirectory(folder.filePath("link")));
  EXPECT_FALSE(IsTakenForADirectory(folder.filePath("file")));
}

TEST_F(CFURLCreateFromPathTest, TakesWhatDoesNotExistForAFile)
{
  EXPECT_FALSE(IsTakenForADirectory(folder.filePath("none")));
  EXPECT_FALSE(IsTakenForADirectory(folder.filePath("none") + "/"));
  EXPECT_FALSE(IsTakenForADirectory(""));
}

TEST_F(CFURLCreateFromPathTest, LeavesTheUrlToTheCaller)
{
  const CFURLRef url = CFURLCreateFromPath("/");
  EXPECT_THAT(calls, ElementsAre("CFURLCreateFromFileSystemRepresentation default 1 1"));
  CFRelease(url);
}

TEST_F(CFURLCreateFromPathTest, GivesNullWhereTheSystemMakesNoUrl)
{
  nextURL = nullptr;
  EXPECT_EQ(CFURLCreateFromPath("/x"), nullptr);
}

class CFURLConvertToPathTest : public testing::Test
{
protected:
  CFURLConvertToPathTest() { Reset(&someURL); }

  QString Convert(const QString& text)
  {
    nextString = new __CFString{text};
    return CFURLConvertToPath(&someURL);
  }
};

TEST_F(CFURLConvertToPathTest, CopiesThePosixPathAndReleasesTheCopyAndNothingElse)
{
  EXPECT_EQ(Convert("/Users/a"), "/Users/a");
  EXPECT_THAT(calls, ElementsAre("CFURLCopyFileSystemPath url 0", "CFStringGetLength string",
                                 "CFStringGetCharacters string 0 8", "CFRelease string"));
}

TEST_F(CFURLConvertToPathTest, KeepsEveryUtf16Unit)
{
  const QString text = QString::fromUtf8("/é/数据/𝄞") + QChar(0) + QChar(0xd834);
  EXPECT_EQ(Convert(text), text);
}

TEST_F(CFURLConvertToPathTest, OfAnEmptyPathIsEmpty)
{
  EXPECT_EQ(Convert(""), "");
  EXPECT_EQ(calls.back(), "CFRelease string");
}

TEST_F(CFURLConvertToPathTest, OfAUrlWithoutAPathIsNullAndReleasesNothing)
{
  nextString = nullptr;
  EXPECT_TRUE(CFURLConvertToPath(&someURL).isNull());
  EXPECT_THAT(calls, ElementsAre("CFURLCopyFileSystemPath url 0"));
}

} // namespace
