#include "Support/Processes.h"
#include <Common/PathHelpers.h>

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

using namespace Tavrik::Cleaner;

namespace
{

const QString bundleAtLoadTime = ExtractBundlePath("/Applications/Foo.app/Contents");
const QString constantsAtLoadTime = dirSep + appExt + lProjExt;

bool IsEmptyButNotNull(const QString& text)
{
  return text.isEmpty() && !text.isNull();
}

TEST(PathHelpers, MayBeUsedWhileLibrariesAreLoaded)
{
  EXPECT_EQ(bundleAtLoadTime, "/Applications/Foo.app");
  EXPECT_EQ(constantsAtLoadTime, "/.app.lproj");
}

TEST(ExtractParentPath, GivesAllBeforeTheLastSlash)
{
  EXPECT_EQ(ExtractParentPath("/Users/a/file.txt"), "/Users/a");
  EXPECT_EQ(ExtractParentPath("a/b"), "a");
  EXPECT_EQ(ExtractParentPath("/a//b"), "/a/");
}

TEST(ExtractParentPath, OfWhatLiesBelowTheRootIsTheRoot)
{
  EXPECT_EQ(ExtractParentPath("/x"), "/");
  EXPECT_EQ(ExtractParentPath("/Users"), "/");
  EXPECT_EQ(ExtractParentPath("\\x"), "/");
}

TEST(ExtractParentPath, OfTheRootIsEmpty)
{
  EXPECT_TRUE(IsEmptyButNotNull(ExtractParentPath("/")));
  EXPECT_TRUE(IsEmptyButNotNull(ExtractParentPath("\\")));
}

TEST(ExtractParentPath, OfANameWithoutSeparatorsIsNull)
{
  EXPECT_TRUE(ExtractParentPath("file").isNull());
  EXPECT_TRUE(ExtractParentPath("").isNull());
  EXPECT_TRUE(ExtractParentPath(QString()).isNull());
}

TEST(ExtractParentPath, CountsASeparatorAtTheEnd)
{
  EXPECT_EQ(ExtractParentPath("/a/b/"), "/a/b");
  EXPECT_EQ(ExtractParentPath("/a/"), "/a");
  EXPECT_EQ(ExtractParentPath("//"), "/");
}

TEST(ExtractParentPath, TakesBackslashesOnlyWhereThereIsNoSlash)
{
  EXPECT_EQ(ExtractParentPath("C:\\x\\y"), "C:\\x");
  EXPECT_EQ(ExtractParentPath("a\\b/c"), "a\\b");
  EXPECT_EQ(ExtractParentPath("/a\\b"), "/");
}

TEST(ExtractFileName, GivesAllBehindTheLastSeparator)
{
  EXPECT_EQ(ExtractFileName("/a/b.txt"), "b.txt");
  EXPECT_EQ(ExtractFileName("name"), "name");
  EXPECT_EQ(ExtractFileName("C:\\x\\y"), "y");
  EXPECT_EQ(ExtractFileName("a/b\\c"), "b\\c");
  EXPECT_TRUE(IsEmptyButNotNull(ExtractFileName("/a/b/")));
  EXPECT_TRUE(ExtractFileName("").isEmpty());
}

TEST(ExtractBundleName, GivesTheNameOfTheOutermostBundle)
{
  EXPECT_EQ(ExtractBundleName("/Applications/Foo.app/Contents/MacOS/Foo"), "Foo");
  EXPECT_EQ(ExtractBundleName("/A.app/Contents/B.app/x"), "A");
  EXPECT_EQ(ExtractBundleName("Foo.app"), "Foo");
  EXPECT_EQ(ExtractBundleName("/a/Foo.app.app"), "Foo.app");
}

TEST(ExtractBundleName, OfTheExtensionAloneIsEmpty)
{
  EXPECT_TRUE(IsEmptyButNotNull(ExtractBundleName("/a/.app/b")));
}

TEST(ExtractBundleName, TakesTheExtensionOnlyAtTheEndAndInLowerCase)
{
  EXPECT_TRUE(ExtractBundleName("/a/x.apple/y").isNull());
  EXPECT_TRUE(ExtractBundleName("/a/Foo.APP/y").isNull());
  EXPECT_TRUE(ExtractBundleName("/a/Foo.app /y").isNull());
  EXPECT_TRUE(ExtractBundleName("/a/b").isNull());
  EXPECT_TRUE(ExtractBundleName("").isNull());
}

TEST(ExtractBundlePath, GivesTheCleanedPathOfTheOutermostBundle)
{
  EXPECT_EQ(ExtractBundlePath("/Applications/Foo.app/Contents"), "/Applications/Foo.app");
  EXPECT_EQ(ExtractBundlePath("Applications//Foo.app/Contents"), "/Applications/Foo.app");
  EXPECT_EQ(ExtractBundlePath("/A.app/Contents/B.app/x"), "/A.app");
  EXPECT_EQ(ExtractBundlePath("/a/../Foo.app"), "/a/../Foo.app");
  EXPECT_EQ(ExtractBundlePath("/a/.app"), "/a/.app");
}

TEST(ExtractBundlePath, IsNullWithoutABundle)
{
  EXPECT_TRUE(ExtractBundlePath("/a/x.apple/Foo.APP").isNull());
  EXPECT_TRUE(ExtractBundlePath("/").isNull());
  EXPECT_TRUE(ExtractBundlePath("").isNull());
}

TEST(ExtractBundlePathLast, ConcatenatesThePathsOfEveryBundleLevel)
{
  EXPECT_EQ(ExtractBundlePathLast("/A.app/Contents/B.app/x"), "/A.app/A.app/Contents/B.app");
  EXPECT_EQ(ExtractBundlePathLast("A.app//B.app/C.app"), "/A.app/A.app/B.app/A.app/B.app/C.app");
}

TEST(ExtractBundlePathLast, OfASingleBundleIsItsPath)
{
  EXPECT_EQ(ExtractBundlePathLast("Applications//Foo.app/Contents"), "/Applications/Foo.app");
}

TEST(ExtractBundlePathLast, IsEmptyWithoutABundle)
{
  EXPECT_TRUE(ExtractBundlePathLast("/a/x.apple/Foo.APP").isEmpty());
  EXPECT_TRUE(ExtractBundlePathLast("").isEmpty());
}

TEST(ExtractLProjName, GivesTheNameOfTheOutermostLocalisationFolder)
{
  EXPECT_EQ(ExtractLProjName("/X.app/Contents/Resources/de.lproj/Localizable.strings"), "de");
  EXPECT_EQ(ExtractLProjName("//en.lproj//de.lproj/x"), "en");
  EXPECT_TRUE(IsEmptyButNotNull(ExtractLProjName("/a/.lproj")));
  EXPECT_TRUE(ExtractLProjName("/a/de.LPROJ/de.lprojx").isNull());
}

TEST(ExtractLProjPath, GivesTheCleanedPathOfTheOutermostLocalisationFolder)
{
  EXPECT_EQ(ExtractLProjPath("/X.app/Contents/Resources/de.lproj/Localizable.strings"),
            "/X.app/Contents/Resources/de.lproj");
  EXPECT_EQ(ExtractLProjPath("a//en.lproj/de.lproj"), "/a/en.lproj");
  EXPECT_TRUE(ExtractLProjPath("/a/de.LPROJ").isNull());
}

TEST(ExtractBundleIdentifier, GivesTheFirstComponentWithTwoDots)
{
  EXPECT_EQ(ExtractBundleIdentifier("/Users/u/Library/Caches/com.example.tool/data"), "com.example.tool");
  EXPECT_EQ(ExtractBundleIdentifier("/Foo.app/com.example.a/com.example.b"), "com.example.a");
  EXPECT_EQ(ExtractBundleIdentifier("1.2.3"), "1.2.3");
  EXPECT_TRUE(ExtractBundleIdentifier("/Foo.app/x.y").isNull());
  EXPECT_TRUE(ExtractBundleIdentifier("").isNull());
}

TEST(ExtractBundleIdentifier, TakesTheParentFolderForAnIdentifier)
{
  EXPECT_EQ(ExtractBundleIdentifier("/a/../com.example.tool"), "..");
}

TEST(ExtractBundleIdentifierLast, GivesTheLastComponentWithTwoDots)
{
  EXPECT_EQ(ExtractBundleIdentifierLast("/com.example.a/com.example.b/data"), "com.example.b");
  EXPECT_EQ(ExtractBundleIdentifierLast("/com.example.a/.."), "..");
  EXPECT_TRUE(ExtractBundleIdentifierLast("/Foo.app/x.y").isNull());
}

TEST(ExtractBasicLangCode, CutsAtTheFirstUnderscoreAndTheFirstHyphen)
{
  EXPECT_EQ(ExtractBasicLangCode("en_US"), "en");
  EXPECT_EQ(ExtractBasicLangCode("zh-Hans"), "zh");
  EXPECT_EQ(ExtractBasicLangCode("pt-BR_x"), "pt");
  EXPECT_EQ(ExtractBasicLangCode("en_US-x"), "en");
  EXPECT_EQ(ExtractBasicLangCode("en"), "en");
  EXPECT_EQ(ExtractBasicLangCode("_en"), "");
  EXPECT_EQ(ExtractBasicLangCode("-en"), "");
  EXPECT_EQ(ExtractBasicLangCode(""), "");
}

TEST(CutFromFirstParentheses, GivesWhatStandsBetweenTheFirstPair)
{
  EXPECT_EQ(CutFromFirstParentheses("Name (1.2)"), "1.2");
  EXPECT_EQ(CutFromFirstParentheses("1 GB (1 Bytes) (exactly 2 Units)"), "1 Bytes");
  EXPECT_EQ(CutFromFirstParentheses("a()b"), "");
  EXPECT_EQ(CutFromFirstParentheses("((a))"), "(a");
}

TEST(CutFromFirstParentheses, WithoutParenthesesReturnsItsInputUnchanged)
{
  EXPECT_EQ(CutFromFirstParentheses("text"), "text");
  EXPECT_EQ(CutFromFirstParentheses(""), "");
}

TEST(CutFromFirstParentheses, WithOneMissingOrInTheWrongOrderGoesToTheEnd)
{
  EXPECT_EQ(CutFromFirstParentheses("a(b"), "b");
  EXPECT_EQ(CutFromFirstParentheses("a)b"), "a");
  EXPECT_EQ(CutFromFirstParentheses("x)y(z"), "z");
  EXPECT_EQ(CutFromFirstParentheses(")("), "");
  EXPECT_EQ(CutFromFirstParentheses("("), "");
  EXPECT_EQ(CutFromFirstParentheses(")"), "");
}

TEST(GetUserIdString, IsTheRealIdAndTheEffectiveOneHasItsOwn)
{
  EXPECT_EQ(GetUserIdString(), QString::number(getuid()));
  EXPECT_EQ(GetEffectiveUserIdString(), QString::number(geteuid()));
}

TEST(GetUserIdString, TellsTheTwoIdsApart)
{
  if (geteuid() != 0)
    GTEST_SKIP() << "Only root can take two different ids";
  const pid_t child = fork();
  if (child == 0)
  {
    const bool isRight = setreuid(4294967000u, 1234) == 0 && GetUserIdString() == "4294967000" &&
                         GetEffectiveUserIdString() == "1234";
    _exit(isRight ? 0 : 1);
  }
  EXPECT_EQ(WaitForEnd(child), 0);
}

} // namespace
