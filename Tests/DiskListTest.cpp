#include <Common/DiskList.h>

#include "Support/LogCapture.h"
#include "Support/ToolFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QMap>
#include <QTemporaryDir>

#include <cctype>
#include <string>

using namespace Tavrik::Cleaner;
using testing::ElementsAre;
using testing::IsEmpty;

namespace Tavrik::Cleaner
{

bool operator==(const StorageInfo& left, const StorageInfo& right)
{
  return left.name == right.name && left.mountPoint == right.mountPoint &&
         left.totalSize == right.totalSize && left.freeSize == right.freeSize;
}

void PrintTo(const StorageInfo& storage, std::ostream* stream)
{
  *stream << '"' << storage.name.toStdString() << "\" at \"" << storage.mountPoint.toStdString() << "\", "
          << storage.totalSize << " bytes, " << storage.freeSize << " free";
}

} // namespace Tavrik::Cleaner

namespace
{

QByteArray ReadFile(const QString& path)
{
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
  return file.readAll();
}

// A disk tool that answers from files and notes what it is asked.
class LoadDiskListTest : public testing::Test
{
protected:
  LoadDiskListTest()
  {
    tools.AddTool("diskutil", R"(
printf '%s' "$#" >>"$here/calls"
for argument; do printf '<%s>' "$argument" >>"$here/calls"; done
echo >>"$here/calls"
case $1 in
list) cat "$here/list" ;;
info) cat "$here/info-$2" 2>/dev/null || { echo "Could not find disk: $2" >&2; exit 1; } ;;
esac)");
  }

  void SetList(const QByteArray& text) { tools.AddFile("list", text); }
  void SetInfo(const QString& device, const QByteArray& text) { tools.AddFile("info-" + device, text); }

  void UseMachine(const QString& generation)
  {
    const QDir folder(QStringLiteral(TAVRIK_FIXTURES "/DiskList/") + generation);
    for (const QString& name : folder.entryList(QDir::Files))
      tools.AddFile(QString(name).remove(".txt"), ReadFile(folder.filePath(name)));
  }

  // The list of a machine with a single partition of which the tool tells this.
  QList<StorageInfo> LoadSingle(const QByteArray& info)
  {
    SetList("/dev/disk0\n   1: Apple_HFS Data 1.0 GB disk0s1\n");
    SetInfo("disk0s1", info);
    return LoadDiskList();
  }

  QStringList Calls() const { return tools.ReadLines("calls"); }

  ToolFolder tools;
};

TEST_F(LoadDiskListTest, AsksForTheListAndThenForEachIndentedLine)
{
  SetList("/dev/disk0 (internal):\n"
          "   #:                       TYPE NAME                    SIZE       IDENTIFIER\n"
          "   0:      GUID_partition_scheme                        *1.0 GB     disk0\n"
          "\n"
          "   1:                  Apple_HFS Data                    1.0 GB     disk0s1\n");
  EXPECT_THAT(LoadDiskList(), IsEmpty());
  EXPECT_THAT(Calls(), ElementsAre("1<list>", "2<info><IDENTIFIER>", "2<info><disk0>", "2<info><disk0s1>"));
}

TEST_F(LoadDiskListTest, WithoutADiskToolIsEmptyAndLogsNothing)
{
  const LogCapture log;
  qputenv("PATH", QFile::encodeName(tools.FilePath("none")));
  EXPECT_THAT(LoadDiskList(), IsEmpty());
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(LoadDiskListTest, TakesAnyWhiteSpaceForAnIndent)
{
  SetList(QString("\tA disk1\n\u00a0B disk2\n\u3000C disk3\n\u0085D disk4\n\rE disk5\n-F disk6\n").toUtf8());
  LoadDiskList();
  EXPECT_THAT(Calls(), ElementsAre("1<list>", "2<info><disk1>", "2<info><disk2>", "2<info><disk3>",
                                   "2<info><disk4>", "2<info><disk5>"));
}

TEST_F(LoadDiskListTest, SplitsTheIdentifierOffAtBlanksAlone)
{
  SetList("\tdisk1\n A\tdisk2\n B disk3\r\n");
  LoadDiskList();
  EXPECT_THAT(Calls(), ElementsAre("1<list>", "2<info><\tdisk1>", "2<info><A\tdisk2>", "2<info><disk3\r>"));
}

TEST_F(LoadDiskListTest, TrailingBlankYieldsAnEmptyIdentifierWhichCountsIfTheToolSaysSo)
{
  SetList("   1: Apple_HFS Data 1.0 GB disk0s1 \n");
  EXPECT_THAT(LoadDiskList(), IsEmpty());
  EXPECT_THAT(Calls(), ElementsAre("1<list>", "2<info><>"));

  SetInfo("", "   Mounted:   Yes\n   Mount Point:   /Volumes/Odd\n");
  EXPECT_THAT(LoadDiskList(), ElementsAre(StorageInfo{"Odd", "/Volumes/Odd", -1, -1}));
}

TEST_F(LoadDiskListTest, MountedIsExactlyYes)
{
  EXPECT_THAT(LoadSingle("Mounted: yes\nMount Point: /a\n"), IsEmpty());
  EXPECT_THAT(LoadSingle("Mounted: YES\nMount Point: /a\n"), IsEmpty());
  EXPECT_THAT(LoadSingle("Mounted: Yes, sort of\nMount Point: /a\n"), IsEmpty());
  EXPECT_THAT(LoadSingle("mounted: Yes\nMount Point: /a\n"), IsEmpty());
  EXPECT_THAT(LoadSingle("Mounted Yes\nMount Point: /a\n"), IsEmpty());
  EXPECT_THAT(LoadSingle(""), IsEmpty());
  EXPECT_EQ(LoadSingle("\t Mounted \t: \u00a0 Yes \t\nMount Point: /a\n").size(), 1);
}

TEST_F(LoadDiskListTest, EmptyVolumeNameIsReplacedByTheLastPartOfTheMountPoint)
{
  EXPECT_THAT(LoadSingle("Mounted: Yes\nVolume Name:\nMount Point: /Volumes/Backup\n"),
              ElementsAre(StorageInfo{"Backup", "/Volumes/Backup", -1, -1}));
  EXPECT_THAT(LoadSingle("Mounted: Yes\nMount Point: /Volumes/Backup\n"),
              ElementsAre(StorageInfo{"Backup", "/Volumes/Backup", -1, -1}));
}

TEST_F(LoadDiskListTest, EmptyVolumeNameAtTheRootIsASlash)
{
  EXPECT_THAT(LoadSingle("Mounted: Yes\nVolume Name: \nMount Point: /\n"),
              ElementsAre(StorageInfo{"/", "/", -1, -1}));
  EXPECT_THAT(LoadSingle("Mounted: Yes\nMount Point: //\n"), ElementsAre(StorageInfo{"/", "//", -1, -1}));
  EXPECT_THAT(LoadSingle("Mounted: Yes\n"), ElementsAre(StorageInfo{"/", "", -1, -1}));
}

TEST_F(LoadDiskListTest, EmptyVolumeNameStaysEmptyWhereTheMountPointEndsWithASlash)
{
  EXPECT_THAT(LoadSingle("Mounted: Yes\nMount Point: /Volumes/Backup/\n"),
              ElementsAre(StorageInfo{"", "/Volumes/Backup/", -1, -1}));
}

TEST_F(LoadDiskListTest, SizesAreTheByteCountsInParentheses)
{
  EXPECT_THAT(LoadSingle("Mounted: Yes\nMount Point: /\n"
                         "Total Size: 500.1 GB (500107862016 Bytes) (exactly 976773168 512-Byte-Units)\n"
                         "Volume Free Space: 1.0 GB (1000000001 Bytes)\n"),
              ElementsAre(StorageInfo{"/", "/", 500107862016, 1000000001}));
}

TEST_F(LoadDiskListTest, SizeWithoutParenthesesIsReadWhole)
{
  EXPECT_THAT(LoadSingle("Mounted: Yes\nMount Point: /\nTotal Size: 1,5 GB\nVolume Free Space: 12 bytes\n"),
              ElementsAre(StorageInfo{"/", "/", 1500000000, 12}));
}

TEST_F(LoadDiskListTest, SizeThatCannotBeReadIsMinusOne)
{
  EXPECT_THAT(LoadSingle("Mounted: Yes\nMount Point: /\nTotal Size: 1.5 TB\n"
                         "Volume Free Space: Not applicable (no file system)\n"),
              ElementsAre(StorageInfo{"/", "/", -1, -1}));
}

TEST_F(LoadDiskListTest, ValueEndsAtItsSecondColon)
{
  EXPECT_THAT(LoadSingle("Mounted: Yes\nVolume Name: Disk 1: Music\nMount Point: /Volumes/Disk 1: Music\n"),
              ElementsAre(StorageInfo{"Disk 1", "/Volumes/Disk 1", -1, -1}));
}

TEST_F(LoadDiskListTest, LaterLineWithTheSameKeyReplacesTheValue)
{
  EXPECT_THAT(LoadSingle("Mounted: No\nMount Point: /a\nMounted: Yes\nMount Point: /b\n"),
              ElementsAre(StorageInfo{"b", "/b", -1, -1}));
}

TEST_F(LoadDiskListTest, NamesMayHoldAnyCharacters)
{
  EXPECT_THAT(
      LoadSingle(QString("Mounted: Yes\nVolume Name: 数据 é\nMount Point: /Volumes/数据 é\n").toUtf8()),
      ElementsAre(StorageInfo{"数据 é", "/Volumes/数据 é", -1, -1}));
}

TEST_F(LoadDiskListTest, ReadsTheWholeGenerationOf10Dot8)
{
  UseMachine("10.8");
  EXPECT_THAT(LoadDiskList(),
              ElementsAre(StorageInfo{"Old Faithful", "/", 319213174784, 81604378624},
                          StorageInfo{"Untitled", "/Volumes/Untitled", 4002349056, 4001837056}));
}

TEST_F(LoadDiskListTest, ReadsTheWholeGenerationOf10Dot6)
{
  UseMachine("10.6");
  EXPECT_THAT(LoadDiskList(), ElementsAre(StorageInfo{"Snow", "/", 159697911808, 12884901888}));
}

TEST_F(LoadDiskListTest, ReadsTheWholeGenerationOf10Dot11)
{
  UseMachine("10.11");
  EXPECT_THAT(LoadDiskList(),
              ElementsAre(StorageInfo{"Granite", "/", 249779191808, 77309411328},
                          StorageInfo{"COLD STORE", "/Volumes/COLD STORE", 8004829184, 1073741824}));
}

TEST_F(LoadDiskListTest, ReadsTheWholeGenerationOf10Dot12)
{
  UseMachine("10.12");
  EXPECT_THAT(LoadDiskList(), ElementsAre(StorageInfo{"Workshop", "/", 499055067136, 378795982848}));
  EXPECT_THAT(Calls(), ElementsAre("1<list>", "2<info><IDENTIFIER>", "2<info><disk0>", "2<info><disk0s1>",
                                   "2<info><disk0s2>", "2<info><disk0s3>", "2<info><IDENTIFIER>",
                                   "2<info><disk1>", "2<info><disk0s2>",
                                   "2<info><0B5F2C61-8A4E-4D0E-9C57-3E1B7A90D214>", "2<info><Encrypted>"));
}

TEST_F(LoadDiskListTest, ListsALogicalVolumeTwiceWhereTheToolKnowsItByItsUuidToo)
{
  UseMachine("10.12");
  SetInfo("0B5F2C61-8A4E-4D0E-9C57-3E1B7A90D214", ReadFile(tools.FilePath("info-disk1")));
  const StorageInfo volume = {"Workshop", "/", 499055067136, 378795982848};
  EXPECT_THAT(LoadDiskList(), ElementsAre(volume, volume));
}

TEST_F(LoadDiskListTest, ReadsTheWholeGenerationOf10Dot13)
{
  UseMachine("10.13");
  EXPECT_THAT(LoadDiskList(), ElementsAre(StorageInfo{"SAMPLE", "/Volumes/SAMPLE", 64028672, 63873024}));
}

TEST_F(LoadDiskListTest, ReadsTheApfsVolumesOf10Dot15)
{
  UseMachine("10.15");
  EXPECT_THAT(LoadDiskList(),
              ElementsAre(StorageInfo{"Orchard - 数据", "/System/Volumes/Data", 121018208256, 41943040000},
                          StorageInfo{"Orchard", "/", 121018208256, 41943040000}));
}

TEST_F(LoadDiskListTest, ReadsTheApfsVolumesOf11)
{
  UseMachine("11");
  EXPECT_THAT(LoadDiskList(),
              ElementsAre(StorageInfo{"Meadow", "/", 245107195904, 139650973696},
                          StorageInfo{"Data", "/System/Volumes/Data", 245107195904, 139650973696}));
}

TEST_F(LoadDiskListTest, ReadsTheSnapshotAndTheStickOfALocalised15)
{
  UseMachine("15");
  EXPECT_THAT(LoadDiskList(),
              ElementsAre(StorageInfo{"Harbour", "/", 2000189177856, 750000128000},
                          StorageInfo{"Field Notes", "/Volumes/Field Notes", 16000221184, 15991570432}));
}

TEST_F(LoadDiskListTest, ValueOfANewerSystemEndsAtItsSecondColonToo)
{
  EXPECT_THAT(LoadSingle("Mounted: Yes\nVolume Name: Disk 1: Music\nMount Point: /Volumes/Disk 1: Music\n"
                         "Disk Size: 1.0 KB (1024 Bytes)\nContainer Free Space: 12 B (12 Bytes)\n"),
              ElementsAre(StorageInfo{"Disk 1", "/Volumes/Disk 1", 1024, 12}));
}

TEST_F(LoadDiskListTest, NameWithALineBreakCannotLendANewerVolumeAnotherSize)
{
  EXPECT_THAT(LoadSingle("Volume Name: A\nDisk Size: 9 (9 Bytes)\nContainer Free Space: 9 (9 Bytes)\n"
                         "Mounted: Yes\nMount Point: /Volumes/A\n"
                         "Disk Size: 1.0 KB (1024 Bytes)\nContainer Free Space: 12 B (12 Bytes)\n"),
              ElementsAre(StorageInfo{"A", "/Volumes/A", 1024, 12}));
}

// Real outputs, which stand beside the project where it is developed.

const QString transcripts = QStringLiteral(TAVRIK_TRANSCRIPTS "/diskutil/");

std::string CaseName(const std::string& fileName)
{
  std::string name;
  for (const char c : fileName)
    name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
  return name;
}

struct ListTranscript
{
  const char* name;
  QStringList identifiers; // what the disk tool is asked for, in order
};

QStringList Words(const char* text)
{
  return QString(text).split(' ');
}

const ListTranscript listTranscripts[] = {
    {"list-10.10-sdcard-single-disk", Words("IDENTIFIER disk2 disk2s1")},
    {"list-10.10-single-virtual-machine-disk", Words("IDENTIFIER disk0 disk0s1 disk0s2 disk0s3")},
    {"list-10.11-corestorage-disk-image", Words("IDENTIFIER disk0 disk0s1 disk0s2 disk0s3 IDENTIFIER disk1 "
                                                "disk0s2 2AAC614D-7213-4263-AA1D-183D30F9ECA7 Encrypted "
                                                "IDENTIFIER disk2 disk2s1 disk2s2 IDENTIFIER disk3 disk3s1")},
    {"list-10.11-usb-hfs-unnamed",
     Words("IDENTIFIER disk0 disk0s1 disk0s2 disk0s3 IDENTIFIER disk1 disk0s2 "
           "311961BB-FEAF-4084-A386-F9B54822CC44 Encrypted IDENTIFIER disk2 disk2s1 disk2s2")},
    {"list-10.12-corestorage-fusion",
     Words("IDENTIFIER disk0 disk0s1 disk0s2 disk0s3 IDENTIFIER disk1 disk1s1 disk1s2 disk1s3 disk1s4 "
           "IDENTIFIER disk2 disk1s2 AD4B08B5-5D76-43BC-A3C6-6E59B130DBAA Drive IDENTIFIER disk3 disk3s1 "
           "disk3s2")},
    {"list-10.12-disk-image-whole-disk-volume",
     Words("IDENTIFIER disk0 disk0s1 disk0s2 disk0s3 IDENTIFIER disk1 disk0s2 "
           "BBCECFE4-040A-4FAC-987B-270FF7142E6F Encrypted IDENTIFIER disk2 IDENTIFIER disk3 disk3s1")},
    {"list-10.12-internal-no-star",
     Words("IDENTIFIER disk0 disk0s1 disk0s2 disk0s3 IDENTIFIER disk1 disk0s2 "
           "B41323A1-E981-4D06-BFC3-63222963D3DB Unencrypted IDENTIFIER disk2 disk2s1")},
    {"list-10.12-logical-volume-without-type",
     Words("IDENTIFIER disk0 disk0s1 disk0s2 disk0s3 IDENTIFIER disk1 disk0s2 "
           "1395C08E-BC94-4557-82C8-937EB526B7A5 Encrypted IDENTIFIER disk2 disk2s1 disk2s2 disk2s3 "
           "IDENTIFIER disk3 disk3s1 disk3s2 disk3s3 IDENTIFIER disk4")},
    {"list-10.12-raid-members-disk-images",
     Words("IDENTIFIER disk0 disk0s1 disk0s2 disk0s3 IDENTIFIER disk1 disk0s2 "
           "CDBB66D2-7F81-47AB-93E9-FBE46217BE22 Encrypted IDENTIFIER disk2 disk2s1 disk2s2 IDENTIFIER disk3 "
           "disk3s1 IDENTIFIER disk4 disk4s1 IDENTIFIER disk5 disk5s1 disk5s2 disk5s3 IDENTIFIER disk6 "
           "disk6s1 disk6s2 disk6s3 IDENTIFIER disk7 disk7s1 disk7s2 disk7s3 IDENTIFIER disk8")},
    {"list-10.13-apfs-internal-no-star",
     Words("IDENTIFIER disk0 disk0s1 disk0s2 IDENTIFIER disk1 disk0s2 disk1s1 disk1s2 disk1s3 disk1s4 "
           "IDENTIFIER disk2 disk2s1 disk2s2 disk2s3")},
    {"list-10.13-one-disk-image-mbr", Words("IDENTIFIER disk3 disk3s1")},
    {"list-10.14-apfs-fusion-name-overflow",
     Words("IDENTIFIER disk0 disk0s1 disk0s2 IDENTIFIER disk1 disk1s1 disk1s2 IDENTIFIER disk2 disk1s2 "
           "disk2s1 disk2s2 disk2s3 disk2s4 IDENTIFIER disk3 disk3s1 disk3s2")},
    {"list-10.15-apfs-chinese-data-volume", Words("IDENTIFIER disk0 disk0s1 disk0s2 IDENTIFIER disk1 disk0s2 "
                                                  "disk1s1 disk1s2 disk1s3 disk1s4 disk1s5")},
    {"list-10.6-type-guid-overflow", Words("IDENTIFIER disk0 disk0s1 disk0s2 disk0s3 disk0s4 disk0s5")},
    {"list-10.8-corestorage-bare-headers",
     Words("IDENTIFIER disk0 disk0s1 disk0s2 disk0s3 IDENTIFIER disk1 IDENTIFIER disk2 disk2s1 disk2s2 "
           "disk2s3 IDENTIFIER disk4 IDENTIFIER disk5 disk5s1 disk5s3 IDENTIFIER disk6 disk6s1 disk6s3 "
           "IDENTIFIER disk7 disk7s1 disk7s3")},
    {"list-11plus-arm-snapshot-isc-no-container",
     Words("IDENTIFIER disk0 disk0s1 disk0s2 disk0s3 IDENTIFIER disk3 disk0s2 disk3s1 disk3s1s1 disk3s2 "
           "disk3s3 disk3s5 disk3s6 IDENTIFIER disk4 disk4s1 disk4s2")},
    {"list-11plus-wide-characters-truncated-name",
     Words("IDENTIFIER disk0 disk0s1 disk0s2 IDENTIFIER disk1 disk0s2 disk1s1 disk1s2 disk1s3 disk1s4 "
           "disk1s5 disk1s6 disk1s6s1 IDENTIFIER disk2 disk2s1")},
    {"list-13plus-arm-audio-cd-nested-slices",
     Words("IDENTIFIER disk0 disk0s1 disk0s2 disk0s3 IDENTIFIER disk3 disk0s2 disk3s1 disk3s1s1 disk3s2 "
           "disk3s3 disk3s5 disk3s6 IDENTIFIER disk4 disk4s1 IDENTIFIER disk5 disk5s1 disk5s2 disk5s3 "
           "disk5s4 disk5s5 disk5s6 disk5s7 disk5s8 disk5s9 disk5s10 disk5s11 disk5s12 disk5s13 disk5s14 "
           "disk5s15 disk5s16 disk5s16s1 disk5s16s2")},
    {"list-14-bootcamp-hfs-linux-simulator",
     Words("IDENTIFIER disk0 disk0s1 disk0s2 disk0s3 IDENTIFIER disk1 disk0s2 disk1s1 disk1s3 disk1s4 "
           "disk1s5 disk1s7 disk1s8 disk1s8s1 disk1s9 IDENTIFIER disk2 disk2s1 disk2s2 disk2s3 IDENTIFIER "
           "disk3 disk3s1 IDENTIFIER disk4 disk3s1 disk4s1")},
    {"list-15-apfs-fusion-cryptex-empty-row",
     Words(
         "IDENTIFIER disk0 disk0s1 disk0s2 IDENTIFIER disk1 disk1s1 disk1s2 IDENTIFIER disk2 disk0s2 disk2s1 "
         "disk2s2 disk2s3 disk2s4 disk2s4s1 disk2s6 IDENTIFIER disk3 IDENTIFIER disk4 disk3 disk4s1")},
    {"list-15plus-arm-hfs-disk-image",
     Words("IDENTIFIER disk0 disk0s1 disk0s2 disk0s3 IDENTIFIER disk3 disk0s2 disk3s1 disk3s1s1 disk3s2 "
           "disk3s3 disk3s5 disk3s6 IDENTIFIER disk4 disk4s1")},
};

struct InfoTranscript
{
  const char* name;
  bool isMounted;
  StorageInfo storage;
};

const StorageInfo none;

const InfoTranscript infoTranscripts[] = {
    {"error-10.5-could-not-find-disk", false, none},
    {"info-10.10-whole-sdcard-no-file-system", false, none},
    {"info-10.11-ntfs-empty-name-unindented",
     true,
     {"Untitled", "/Volumes/Untitled", 16029581312, 15961518080}},
    {"info-10.11-whole-internal-ssd", false, none},
    {"info-10.11-whole-ssd-two-device-locations", false, none},
    {"info-10.12-root-corestorage-encrypted-1tb", true, {"Macintosh HD", "/", 999334739968, 346704064512}},
    {"info-10.12-root-corestorage-plain", true, {"Macintosh HD", "/", 249664372736, 55848755200}},
    {"info-10.12-usb-hfs-available-space", true, {"vol", "/Volumes/vol", 15720250368, 15679725568}},
    {"info-10.12-whole-external-thunderbolt", false, none},
    {"info-10.12-whole-internal-hdd", false, none},
    {"info-10.12-whole-ssd-smart-not-supported", false, none},
    {"info-10.12-whole-ssd-two-device-locations", false, none},
    {"info-10.13-exfat-disk-image-free-space", true, {"myexfat", "/Volumes/myexfat", 100032000, 99807232}},
    {"info-10.15-apfs-container", false, none},
    {"info-10.15-whole-internal-ssd", false, none},
    {"info-10.6-fat16-empty-volume-name", true, {"Untitled", "/Volumes/Untitled", 32079872, 11322368}},
    {"info-10.6-fat32-name-with-blank", true, {"NO NAME", "/Volumes/NO NAME", 2146434560, 771989504}},
    {"info-10.6-root-hfs", true, {"Macintosh HD", "/", 120988852224, 20628480000}},
    {"info-10.8-fat32-usb-mounted", true, {"UNTITLED", "/Volumes/UNTITLED", 31142666240, 31131795456}},
    {"info-10.8-firewire-hfs-mounted", true, {"DroboOne", "/Volumes/DroboOne", 2198888927232, 169412173824}},
    {"info-10.9-raid-set-online", true, {"Space", "/Volumes/Space", 1499957919744, 243187904512}},
    {"info-11-apfs-mount-point-with-blank",
     true,
     {"Macintosh HD", "/Volumes/Macintosh HD", 245107195904, 183397150720}},
    {"info-11-apfs-preboot-mounted",
     true,
     {"iSCPreboot", "/System/Volumes/iSCPreboot", 524288000, 506347520}},
    {"info-11-apfs-recovery-not-mounted", false, none},
    {"info-11-apfs-update-temporary-mount",
     true,
     {"Update", "/System/Volumes/Data/private/tmp/tmp-mount-spRxyx", 245107195904, 183397150720}},
    {"info-11plus-exfat-sdcard-mounted", true, {"PSV-CARD", "/Volumes/PSV-CARD", 127864406016, 127847890944}},
    {"info-11plus-exfat-usb-first-line-shifted",
     true,
     {"SETUPWIZ", "/Volumes/SETUPWIZ", 62533926912, 62517673984}},
    {"info-14plus-apfs-8tb", true, {"DATA", "/Volumes/DATA", 7998551654400, 4490433454080}},
    {"info-15-data-volume-fusion-localized",
     true,
     {"10.14 - Data", "/System/Volumes/Data", 1027680514048, 374632353792}},
    {"info-15-root-snapshot-fusion-localized", true, {"Main Storage SSD", "/", 1027680514048, 374632345600}},
};

class DiskToolTranscript : public LoadDiskListTest
{
protected:
  static QByteArray Read(const char* name) { return ReadFile(transcripts + name + ".txt"); }
};

class DiskToolList : public DiskToolTranscript, public testing::WithParamInterface<ListTranscript>
{
};

TEST_P(DiskToolList, LeadsToTheseIdentifiers)
{
  if (!QDir(transcripts).exists())
    GTEST_SKIP() << "There are no transcripts in " << transcripts.toStdString();
  SetList(Read(GetParam().name));
  QStringList expected = {"1<list>"};
  for (const QString& identifier : GetParam().identifiers)
    expected.append("2<info><" + identifier + ">");
  EXPECT_THAT(LoadDiskList(), IsEmpty());
  EXPECT_EQ(Calls(), expected);
}

INSTANTIATE_TEST_SUITE_P(Transcripts, DiskToolList, testing::ValuesIn(listTranscripts),
                         [](const auto& row) { return CaseName(row.param.name); });

class DiskToolInfo : public DiskToolTranscript, public testing::WithParamInterface<InfoTranscript>
{
};

TEST_P(DiskToolInfo, IsReadAsThisVolume)
{
  if (!QDir(transcripts).exists())
    GTEST_SKIP() << "There are no transcripts in " << transcripts.toStdString();
  const QList<StorageInfo> list = LoadSingle(Read(GetParam().name));
  if (GetParam().isMounted)
    EXPECT_THAT(list, ElementsAre(GetParam().storage));
  else
    EXPECT_THAT(list, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Transcripts, DiskToolInfo, testing::ValuesIn(infoTranscripts),
                         [](const auto& row) { return CaseName(row.param.name); });

// A list and what the same machine told of its disks.
struct MachineTranscripts
{
  const char* list;
  QMap<QString, const char*> infos; // by identifier
  QList<StorageInfo> volumes;
};

const MachineTranscripts machines[] = {
    {"list-10.8-corestorage-bare-headers",
     {{"disk5s3", "info-10.8-firewire-hfs-mounted"}},
     {{"DroboOne", "/Volumes/DroboOne", 2198888927232, 169412173824}}},
    {"list-10.10-sdcard-single-disk", {{"disk2", "info-10.10-whole-sdcard-no-file-system"}}, {}},
    {"list-10.12-disk-image-whole-disk-volume",
     {{"disk3s1", "info-10.12-usb-hfs-available-space"}},
     {{"vol", "/Volumes/vol", 15720250368, 15679725568}}},
    {"list-10.13-one-disk-image-mbr",
     {{"disk3s1", "info-10.13-exfat-disk-image-free-space"}},
     {{"myexfat", "/Volumes/myexfat", 100032000, 99807232}}},
    {"list-10.15-apfs-chinese-data-volume",
     {{"disk0", "info-10.15-whole-internal-ssd"}, {"disk1", "info-10.15-apfs-container"}},
     {}},
    {"list-11plus-wide-characters-truncated-name",
     {{"disk2s1", "info-11plus-exfat-sdcard-mounted"}},
     {{"PSV-CARD", "/Volumes/PSV-CARD", 127864406016, 127847890944}}},
    {"list-15-apfs-fusion-cryptex-empty-row",
     {{"disk2s1", "info-15-data-volume-fusion-localized"},
      {"disk2s4s1", "info-15-root-snapshot-fusion-localized"}},
     {{"10.14 - Data", "/System/Volumes/Data", 1027680514048, 374632353792},
      {"Main Storage SSD", "/", 1027680514048, 374632345600}}},
};

class DiskToolMachine : public DiskToolTranscript, public testing::WithParamInterface<MachineTranscripts>
{
};

TEST_P(DiskToolMachine, HasTheseVolumes)
{
  if (!QDir(transcripts).exists())
    GTEST_SKIP() << "There are no transcripts in " << transcripts.toStdString();
  SetList(Read(GetParam().list));
  for (auto info = GetParam().infos.begin(); info != GetParam().infos.end(); ++info)
    SetInfo(info.key(), Read(info.value()));
  EXPECT_THAT(LoadDiskList(), testing::ElementsAreArray(GetParam().volumes));
}

INSTANTIATE_TEST_SUITE_P(Transcripts, DiskToolMachine, testing::ValuesIn(machines),
                         [](const auto& row) { return CaseName(row.param.list); });

TEST(DiskToolTranscripts, AreAllAccountedFor)
{
  if (!QDir(transcripts).exists())
    GTEST_SKIP() << "There are no transcripts in " << transcripts.toStdString();
  QStringList known;
  for (const ListTranscript& transcript : listTranscripts)
    known.append(QString(transcript.name) + ".txt");
  for (const InfoTranscript& transcript : infoTranscripts)
    known.append(QString(transcript.name) + ".txt");
  known.sort();
  EXPECT_EQ(known, QDir(transcripts).entryList(QDir::Files, QDir::Name));
}

class FindDiskTest : public testing::Test
{
protected:
  FindDiskTest()
  {
    EXPECT_TRUE(QDir(root).mkpath("Data/x") && QDir(root).mkpath("Volumes/x"));
    EXPECT_TRUE(QFile::link(root + "/Data", root + "/link"));
  }

  StorageInfo Volume(const QString& name) const { return {name, root + "/" + name, 10, 5}; }

  QTemporaryDir folder;
  const QString root = QDir(folder.path()).canonicalPath();
  const StorageInfo system = {"System", "/", 100, 50};
};

TEST_F(FindDiskTest, LongestMountPointWinsInAnyOrder)
{
  EXPECT_EQ(FindDisk({system, Volume("Data")}, root + "/Data/x"), Volume("Data"));
  EXPECT_EQ(FindDisk({Volume("Data"), system}, root + "/Data/x"), Volume("Data"));
  EXPECT_EQ(FindDisk({system, Volume("Data")}, root + "/Data"), Volume("Data"));
  EXPECT_EQ(FindDisk({system, Volume("Data")}, root + "/Volumes"), system);
}

TEST_F(FindDiskTest, FirstOfEquallyLongMountPointsWins)
{
  StorageInfo other = Volume("Data");
  other.name = "Other";
  EXPECT_EQ(FindDisk({Volume("Data"), other}, root + "/Data/x"), Volume("Data"));
  EXPECT_EQ(FindDisk({other, Volume("Data")}, root + "/Data/x"), other);
}

TEST_F(FindDiskTest, VolumeAtVolAlsoClaimsVolumesX)
{
  EXPECT_EQ(FindDisk({system, Volume("Vol")}, root + "/Volumes/x"), Volume("Vol"));
}

TEST_F(FindDiskTest, MountPointWithATrailingSlashDoesNotClaimItself)
{
  EXPECT_EQ(FindDisk({system, Volume("Data/")}, root + "/Data"), system);
  EXPECT_EQ(FindDisk({system, Volume("Data/")}, root + "/Data/x"), Volume("Data/"));
}

TEST_F(FindDiskTest, ComparesWithCase)
{
  EXPECT_EQ(FindDisk({system, Volume("data")}, root + "/Data/x"), system);
}

TEST_F(FindDiskTest, ResolvesLinksAndDotsOfThePath)
{
  EXPECT_EQ(FindDisk({system, Volume("Data"), Volume("link")}, root + "/link/x"), Volume("Data"));
  EXPECT_EQ(FindDisk({system, Volume("Data")}, root + "/Volumes/../Data//x"), Volume("Data"));
}

TEST_F(FindDiskTest, PathThatDoesNotExistIsOnNoDisk)
{
  EXPECT_EQ(FindDisk({system, Volume("Data")}, root + "/Data/none"), StorageInfo());
  EXPECT_EQ(FindDisk({system}, ""), StorageInfo());
}

TEST_F(FindDiskTest, PathOnNoListedVolumeGivesADefaultRecord)
{
  EXPECT_EQ(FindDisk({Volume("Data")}, root + "/Volumes/x"), StorageInfo());
}

TEST_F(FindDiskTest, EmptyListGivesADefaultRecord)
{
  const StorageInfo found = FindDisk({}, root);
  EXPECT_TRUE(found.name.isNull());
  EXPECT_TRUE(found.mountPoint.isNull());
  EXPECT_EQ(found.totalSize, 0);
  EXPECT_EQ(found.freeSize, 0);
}

TEST_F(FindDiskTest, EntryWithoutAMountPointIsNeverFound)
{
  EXPECT_EQ(FindDisk({StorageInfo{"Nameless", "", 1, 1}}, root), StorageInfo());
}

} // namespace
