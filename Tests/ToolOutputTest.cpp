#include <Common/Platform/ToolOutput.cpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <ostream>
#include <random>
#include <set>
#include <vector>

using namespace Tavrik::Platform;

namespace
{

const char* const firewallQuestions[] = {"--listapps", "--getglobalstate", "--getblockall",
                                         "--getallowsigned", "--getstealthmode"};

struct Application
{
  QString path;
  bool isBlocked;
};

QString Verb(const Application& application)
{
  return application.isBlocked ? "Block" : "Allow";
}

QString NewerList(const std::vector<Application>& applications)
{
  QString text = QString("Total number of apps = %1 \n").arg(applications.size());
  for (std::size_t i = 0; i < applications.size(); ++i)
    text += QString::number(i + 1) + " : " + applications[i].path + " \n             (" +
            Verb(applications[i]) + " incoming connections)\n";
  return text;
}

QString ClassicList(const std::vector<Application>& applications)
{
  QString text = QString("ALF: total number of apps = %1 \n\n").arg(applications.size());
  for (std::size_t i = 0; i < applications.size(); ++i)
    text += QString::number(i + 1) + " :  " + applications[i].path + " \n \t ( " + Verb(applications[i]) +
            " incoming connections ) \n\n";
  return text;
}

QString TranslatedList(const QString& list)
{
  return ToClassicFirewallAnswer("--listapps", list);
}

QString TranslatedInfo(const QString& info)
{
  return ToClassicDiskAnswer("info", info);
}

// All that the translator does, one behind the other.
std::vector<QString> Translations(const QString& text)
{
  std::vector<QString> translations;
  for (const char* const question : firewallQuestions)
    translations.push_back(ToClassicFirewallAnswer(question, text));
  translations.push_back(ToClassicDiskAnswer("list", text));
  translations.push_back(ToClassicDiskAnswer("info", text));
  return translations;
}

void ExpectToPass(const QString& text)
{
  for (const QString& translation : Translations(text))
    EXPECT_EQ(text, translation);
}

void ExpectTwiceToBeOnce(const QString& text)
{
  const std::vector<QString> once = Translations(text);
  for (std::size_t i = 0; i < once.size(); ++i)
    EXPECT_EQ(once[i], Translations(once[i])[i]) << qPrintable(text);
}

} // namespace

/// @name The firewall tool
/// @{

TEST(FirewallSentence, OfANewerSystemBecomesTheClassicOne)
{
  const auto translate = ToClassicFirewallAnswer;
  EXPECT_EQ("Firewall is enabled. (State = 2) \n",
            translate("--getglobalstate",
                      "Firewall is blocking all non-essential incoming connections. (State = 2)\n"));
  EXPECT_EQ("Firewall is set to block all non-essential incoming connections \n",
            translate("--getblockall",
                      "Firewall is blocking all non-essential incoming connections. (State = 2)\n"));
  EXPECT_EQ("Firewall is set to block all non-essential incoming connections \n",
            translate("--getblockall", "Firewall has block all state set to enabled.\n"));
  EXPECT_EQ("Block all DISABLED! \n",
            translate("--getblockall", "Firewall has block all state set to disabled.\n"));
  EXPECT_EQ("Stealth mode enabled \n", translate("--getstealthmode", "Firewall stealth mode is on\n"));
  EXPECT_EQ("Stealth mode disabled \n", translate("--getstealthmode", "Firewall stealth mode is off\n"));
}

TEST(FirewallSentence, IsKnownWithAndWithoutItsFullStopAndBlanksAround)
{
  for (const char* const text : {"Firewall stealth mode is on", "Firewall stealth mode is on.",
                                 " Firewall stealth mode is on \t", "Firewall stealth mode is on\r"})
    EXPECT_EQ("Stealth mode enabled ", ToClassicFirewallAnswer("--getstealthmode", text)) << text;
}

TEST(FirewallSentence, IsRewrittenAloneAmongOtherLines)
{
  EXPECT_EQ("first\nStealth mode enabled \n\nlast",
            ToClassicFirewallAnswer("--getstealthmode", "first\nFirewall stealth mode is on\n\nlast"));
}

TEST(FirewallSentence, ThatAnswersAnotherQuestionPasses)
{
  const QString on = "Firewall stealth mode is on\n";
  const QString blockAll = "Firewall has block all state set to enabled.\n";
  const QString state = "Firewall is blocking all non-essential incoming connections. (State = 2)\n";
  EXPECT_EQ(on, ToClassicFirewallAnswer("--getglobalstate", on));
  EXPECT_EQ(on, ToClassicFirewallAnswer("--listapps", on));
  EXPECT_EQ(blockAll, ToClassicFirewallAnswer("--getstealthmode", blockAll));
  EXPECT_EQ(state, ToClassicFirewallAnswer("--getstealthmode", state));
  EXPECT_EQ(state, ToClassicFirewallAnswer("--getallowsigned", state));
  EXPECT_EQ(state, ToClassicFirewallAnswer("", state));
}

TEST(FirewallSentence, ThatIsOnlyLikeANewerOnePasses)
{
  for (const char* const text :
       {"Firewall stealth mode is one", "firewall stealth mode is on", "The Firewall stealth mode is on",
        "Firewall stealth  mode is on", "Firewall stealth mode is on, sort of",
        "Firewall is enabled. (State = 1)", "Firewall is disabled. (State = 0)",
        "Firewall is blocking all. (State = 2)", "Automatically allow built-in signed software ENABLED.",
        "Must be root to change settings.", ".", ""})
    ExpectToPass(text);
}

TEST(FirewallList, OfANewerSystemBecomesTheClassicOne)
{
  EXPECT_EQ("ALF: total number of apps = 2 \n\n"
            "1 :  /usr/bin/ruby \n \t ( Allow incoming connections ) \n\n"
            "2 :  /Applications/A b.app \n \t ( Block incoming connections ) \n\n",
            TranslatedList("Total number of apps = 2 \n"
                           "1 : /usr/bin/ruby \n             (Allow incoming connections)\n"
                           "2 : /Applications/A b.app \n             (Block incoming connections)\n"));
}

TEST(FirewallList, WithoutApplicationsIsAHeaderAlone)
{
  EXPECT_EQ("ALF: total number of apps = 0 \n\n", TranslatedList("Total number of apps = 0 \n"));
  EXPECT_EQ("ALF: total number of apps =\n\n", TranslatedList("Total number of apps ="));
}

TEST(FirewallList, MayHaveBlankLinesAndLoseBlanksAtLineEnds)
{
  const QString expected = ClassicList({{"/a", false}, {"/b", true}});
  EXPECT_EQ(expected,
            TranslatedList("\n \nTotal number of apps = 2 \n\n1 : /a\n (Allow incoming connections)\n\n\n"
                           "2:/b\r\n(Block incoming connections)"));
}

TEST(FirewallList, KeepsWhatIsOddInAPath)
{
  const std::vector<Application> odd = {{"/Applications/Block.app", false},
                                        {"/Applications/A: b : c.app", true},
                                        {"/Applications/(Block incoming connections)", false},
                                        {"/7 : /x", true},
                                        {"/Total number of apps = 3", false},
                                        {QString("/数据/\u2028\u0085x"), true},
                                        {"/", false}};
  EXPECT_EQ(ClassicList(odd), TranslatedList(NewerList(odd)));
}

TEST(FirewallList, LeavesOutAnEntryWithALineBreakInItsPath)
{
  const QString kept = "ALF: total number of apps = 2 \n\n2 :  /b \n \t ( Allow incoming connections ) \n\n";
  for (const char* const path : {"/Applications/A\nBlock.app", "/Applications/A\n", "/Applications/A\n\nB",
                                 "/Applications/A\n/usr/bin/ruby", "/Applications/A\n: /b"})
    EXPECT_EQ(kept, TranslatedList(NewerList({{path, true}, {"/b", false}}))) << path;
}

TEST(FirewallList, LeavesOutWhatIsNoEntryWithAStatus)
{
  const QString header = "Total number of apps = 9 \n";
  const QString status = "\n             (Allow incoming connections)\n";
  for (const char* const entry : {"1 /a", "x : /a", " : /a", "1x : /a", "-1 : /a", "\u0661 : /a", "1 : a",
                                  "1 : ", "1 :", "", "/a : /b"})
    EXPECT_EQ("ALF: total number of apps = 9 \n\n", TranslatedList(header + entry + status)) << entry;
  for (const char* const other : {"", "Allow", "(Allow", "Allow)", "(", ")", "2 : /b"})
    EXPECT_EQ("ALF: total number of apps = 9 \n\n", TranslatedList(header + "1 : /a\n" + other)) << other;
}

TEST(FirewallList, HasOneApplicationPerEntryAndStatus)
{
  EXPECT_EQ(ClassicList({{"/a", false}}),
            TranslatedList("Total number of apps = 1 \n1 : /a\n(Allow incoming connections)\n"
                           "(Block incoming connections)\n"));
}

TEST(FirewallList, TakesAnyStatusInParentheses)
{
  EXPECT_EQ("ALF: total number of apps = 1 \n\n1 :  /a \n \t ( Ask ) \n\n",
            TranslatedList("Total number of apps = 1 \n1 : /a\n( Ask )"));
  EXPECT_EQ("ALF: total number of apps = 1 \n\n1 :  /a \n \t (  ) \n\n",
            TranslatedList("Total number of apps = 1 \n1 : /a\n()"));
}

TEST(FirewallList, WithoutTheNewerHeaderPasses)
{
  const QString entries = "\n1 : /a \n             (Allow incoming connections)\n";
  for (const char* const header :
       {"ALF: total number of apps = 1 ", "total number of apps = 1", "1 : /b",
        "The Total number of apps = 1", "Total number of apps", "x\nTotal number of apps = 1"})
    ExpectToPass(header + entries);
}

TEST(FirewallList, OfAnyApplicationsIsTheClassicListOfThem)
{
  std::mt19937 random(20);
  const auto roll = [&](std::size_t sides) { return random() % sides; };
  const std::vector<QString> pieces = {"/",    " ", ":", "(",  ")",  "Block", "Allow",
                                       ".app", "7", "é", "数", "\t", "=",     "\r"};
  for (int round = 0; round < 500; ++round)
  {
    std::vector<Application> applications(roll(5));
    for (Application& application : applications)
    {
      application.path = "/a";
      for (std::size_t i = roll(12); i > 0; --i)
        application.path += pieces[roll(pieces.size())];
      application.path = application.path.trimmed();
      application.isBlocked = roll(2) == 0;
    }
    ASSERT_EQ(ClassicList(applications), TranslatedList(NewerList(applications)));
    ExpectToPass(ClassicList(applications));
  }
}

TEST(FirewallList, OfManyApplicationsIsTranslatedInTheSameOrder)
{
  std::vector<Application> applications;
  for (int i = 0; i < 200000; ++i)
    applications.push_back({"/usr/local/bin/tool" + QString::number(i), i % 3 == 0});
  EXPECT_EQ(ClassicList(applications), TranslatedList(NewerList(applications)));
}

/// @}
/// @name The disk tool
/// @{

TEST(VolumeInfo, OfANewerSystemHasTheClassicNamesOfItsSizes)
{
  EXPECT_EQ(
      "   Mounted:   Yes\n   Total Size:     9 B (9 Bytes)\n   Volume Total Space:  8 B (8 Bytes)\n"
      "   Volume Free Space:   3 B (3 Bytes)\n",
      TranslatedInfo("   Mounted:   Yes\n   Disk Size:     9 B (9 Bytes)\n"
                     "   Volume Total Space:  8 B (8 Bytes)\n   Volume Available Space:   3 B (3 Bytes)\n"));
  EXPECT_EQ("   Total Size:  9\n   Volume Free Space:   3",
            TranslatedInfo("   Disk Size:  9\n   Container Free Space:   3"));
  EXPECT_EQ("   Total Size:  9\n   Volume Free Space:   3",
            TranslatedInfo("   Disk Size:  9\n   Volume Free Space:   3"));
  EXPECT_EQ("Total Size:9", TranslatedInfo("Disk Size:9")) << "a whole disk tells no free space";
}

TEST(VolumeInfo, HasOneFreeSpaceItsVolumesBeforeItsContainers)
{
  EXPECT_EQ("Total Size:9\nContainer Free Space:2\nVolume Free Space:3",
            TranslatedInfo("Disk Size:9\nContainer Free Space:2\nVolume Free Space:3"));
  EXPECT_EQ("Total Size:9\nVolume Available Space:2\nVolume Free Space:3",
            TranslatedInfo("Disk Size:9\nVolume Available Space:2\nVolume Free Space:3"));
  EXPECT_EQ("Total Size:9\nContainer Free Space:2\nVolume Free Space:3",
            TranslatedInfo("Disk Size:9\nContainer Free Space:2\nVolume Available Space:3"));
}

TEST(VolumeInfo, RenamesAKeyEveryTimeItComes)
{
  EXPECT_EQ("Total Size:1\nVolume Free Space:2\nTotal Size:3\nVolume Free Space:4",
            TranslatedInfo("Disk Size:1\nContainer Free Space:2\nDisk Size:3\nContainer Free Space:4"));
}

TEST(VolumeInfo, RenamesKeysAloneAndNoValues)
{
  const QString names = "Volume Name: Disk Size\nMount Point: /Disk Size: Container Free Space:\nDisk Size\n"
                        "x Disk Size: 1\nDisk Sizes: 1\ndisk size: 1\nContainer Free Space\n";
  EXPECT_EQ(names + "\tTotal Size \t: Disk Size", TranslatedInfo(names + "\tDisk Size \t: Disk Size"));
  EXPECT_EQ(names, TranslatedInfo(names));
}

TEST(VolumeInfo, WithTheClassicTotalSizePasses)
{
  ExpectToPass("Total Size: 1\nVolume Free Space: 2\n");
  ExpectToPass("Total Size: 1\nDisk Size: 2\nContainer Free Space: 3\n");
  ExpectToPass("Volume Name: A\nTotal Size: 1\nDisk Size: 2\nVolume Available Space: 3\n");
}

TEST(VolumeInfo, WithoutADiskSizePasses)
{
  ExpectToPass(
      "Mounted: Yes\nVolume Available Space: 2\nContainer Free Space: 3\nContainer Total Space: 4\n");
}

TEST(VolumeInfo, IsTheAnswerToInfoAlone)
{
  const QString info = "Disk Size: 1\n";
  EXPECT_EQ(info, ToClassicDiskAnswer("list", info));
  EXPECT_EQ(info, ToClassicDiskAnswer("", info));
  EXPECT_NE(info, ToClassicDiskAnswer("info", info));
}

TEST(VolumeInfo, OfAnyLinesIsNewerByADiskSizeWithoutATotalSize)
{
  std::mt19937 random(10);
  const auto roll = [&](std::size_t sides) { return static_cast<int>(random() % sides); };
  const QStringList keys = {
      "Disk Size",   "Total Size", "Volume Free Space", "Volume Available Space", "Container Free Space",
      "Volume Name", "Mounted",    "Mount Point"};
  int newer = 0;
  for (int round = 0; round < 2000; ++round)
  {
    QStringList lines;
    std::set<QString> present;
    for (int i = roll(6); i > 0; --i)
    {
      const QString key = keys.at(roll(8));
      const QString ending = roll(4) == 0 ? "" : ": " + QString::number(roll(100)) + ": " + keys.at(roll(8));
      if (!ending.isEmpty())
        present.insert(key);
      lines.append(QString(roll(4), ' ') + key + ending);
    }
    const QString text = lines.join('\n');
    const bool isNewer = present.count("Disk Size") == 1 && present.count("Total Size") == 0;
    newer += isNewer;
    ASSERT_EQ(isNewer, TranslatedInfo(text) != text) << qPrintable(text);
    ASSERT_EQ(lines.size(), TranslatedInfo(text).split('\n').size() - (lines.isEmpty() ? 1 : 0));
  }
  EXPECT_GT(newer, 200);
}

TEST(VolumeInfo, OfManyLinesIsTranslatedWhole)
{
  QString newer;
  QString classic;
  for (int i = 0; i < 200000; ++i)
  {
    newer += "   Disk Size:  " + QString::number(i) + "\n   Container Free Space:  1\n";
    classic += "   Total Size:  " + QString::number(i) + "\n   Volume Free Space:  1\n";
  }
  EXPECT_EQ(classic, TranslatedInfo(newer));
}

/// @}
/// @name Any text
/// @{

TEST(AnyText, ThatIsRandomPasses)
{
  const QString alphabet =
      QString("\n\n\n\r\t  ::/()0123456789=.-AaBbDdSsTtFf\u0085\u2028é数") + QChar(0xd800) + QChar(0);
  std::mt19937 random(1);
  for (int round = 0; round < 2000; ++round)
  {
    QString text;
    for (unsigned i = random() % 200; i > 0; --i)
      text += alphabet.at(static_cast<int>(random() % static_cast<unsigned>(alphabet.size())));
    ExpectToPass(text);
  }
}

TEST(AnyText, TranslatedTwiceIsTranslatedOnce)
{
  const std::vector<QString> pieces = {"\n",
                                       "\n",
                                       "\n\n",
                                       " ",
                                       "\t",
                                       "1 : ",
                                       "12 :  ",
                                       "/a",
                                       "/Applications/B c.app ",
                                       "(Allow incoming connections)",
                                       " \t ( Block incoming connections ) ",
                                       "Total number of apps = ",
                                       "ALF: total number of apps = ",
                                       ". (State = 2)",
                                       "Firewall is blocking all non-essential incoming connections",
                                       "Firewall is enabled",
                                       "Firewall has block all state set to enabled",
                                       "Firewall has block all state set to disabled",
                                       "Firewall stealth mode is on",
                                       "Firewall stealth mode is off",
                                       "Stealth mode enabled",
                                       "Block all DISABLED! ",
                                       "Disk Size",
                                       "Total Size",
                                       "Volume Free Space",
                                       "Volume Available Space",
                                       "Container Free Space",
                                       ":",
                                       ": 1 (1 Bytes)",
                                       "Mounted: Yes",
                                       "数"};
  std::mt19937 random(2);
  for (int round = 0; round < 3000; ++round)
  {
    QString text;
    for (unsigned i = random() % 30; i > 0; --i)
      text += pieces[random() % pieces.size()];
    ExpectTwiceToBeOnce(text);
  }
}

TEST(AnyText, OfOneEndlessLinePasses)
{
  for (const char* const piece : {" ", "1", ":", "(", "/", "Disk Size", "Total number of apps"})
    ExpectToPass(QString(piece).repeated(300000));
}

/// @}
/// @name What systems print, of our own making and recorded
/// @{

namespace
{

QString Read(const QString& path)
{
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
  return QString::fromUtf8(file.readAll());
}

// The files, as paths within the folder, that some question makes another text of.
std::set<std::string> Translated(const QString& folder)
{
  std::set<std::string> translated;
  QDirIterator file(folder, QDir::Files, QDirIterator::Subdirectories);
  while (file.hasNext())
  {
    const QString text = Read(file.next());
    ExpectTwiceToBeOnce(text);
    for (const QString& translation : Translations(text))
      if (translation != text)
        translated.insert(QDir(folder).relativeFilePath(file.filePath()).toStdString());
  }
  return translated;
}

} // namespace

TEST(Fixtures, OfNewerSystemsAloneAreTranslated)
{
  EXPECT_THAT(
      Translated(TAVRIK_FIXTURES),
      testing::ElementsAre(
          "DiskList/10.12/info-disk1.txt", "DiskList/10.13/info-disk2s1.txt",
          "DiskList/10.15/info-disk1s1.txt", "DiskList/10.15/info-disk1s5.txt", "DiskList/11/info-disk3.txt",
          "DiskList/11/info-disk3s1s1.txt", "DiskList/11/info-disk3s5.txt", "DiskList/15/info-disk2s4.txt",
          "DiskList/15/info-disk2s4s1.txt", "DiskList/15/info-disk5s1.txt", "Firewall/15/getblockall.txt",
          "Firewall/15/getstealthmode.txt", "Firewall/15/listapps.txt", "Firewall/26/getblockall.txt",
          "Firewall/26/getglobalstate.txt", "Firewall/26/getstealthmode.txt", "Firewall/26/listapps.txt"));
}

TEST(Transcripts, OfNewerSystemsAloneAreTranslated)
{
  if (!QDir(TAVRIK_TRANSCRIPTS).exists())
    GTEST_SKIP() << "There are no transcripts in " << TAVRIK_TRANSCRIPTS;
  std::set<std::string> expected = {
      "socketfilterfw/getglobalstate-26-block-all.txt", "socketfilterfw/getstealthmode-26-on.txt",
      "socketfilterfw/listapps-15-fifteen-apps.txt", "socketfilterfw/listapps-26-seven-apps.txt"};
  for (const QString& name : QDir(TAVRIK_TRANSCRIPTS "/diskutil").entryList({"info-1*"}))
    if (!name.startsWith("info-10.6") && !name.startsWith("info-10.8") && !name.startsWith("info-10.9") &&
        !name.startsWith("info-10.10") && !name.startsWith("info-10.11"))
      expected.insert("diskutil/" + name.toStdString());
  EXPECT_EQ(4u + 19u, expected.size());
  EXPECT_EQ(expected, Translated(TAVRIK_TRANSCRIPTS));
}

/// @}
