#include <Common/PathHelpers.h>

#include <gtest/gtest.h>

#import <Foundation/Foundation.h>

using Tavrik::Cleaner::QStringListFromNSArray;

/** A string class of a program's own, with what the ready-made ones may refuse: half a surrogate pair. */
@interface HalfPairString : NSString
@end

@implementation HalfPairString
- (NSUInteger)length
{
  return 2;
}
- (unichar)characterAtIndex:(NSUInteger)index
{
  return index == 0 ? 'a' : 0xd834;
}
@end

// This Foundation and its runtime keep what they make for themselves; a leak of ours has other callers.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions()
{
  return "leak:libobjc\nleak:libgnustep-base\n";
}

namespace
{

NSString* MakeString(const QString& text)
{
  return [NSString stringWithCharacters:reinterpret_cast<const unichar*>(text.utf16())
                                 length:static_cast<NSUInteger>(text.size())];
}

class QStringListFromNSArrayTest : public testing::Test
{
protected:
  QStringListFromNSArrayTest() : pool([[NSAutoreleasePool alloc] init]) {}
  ~QStringListFromNSArrayTest() override { [pool drain]; }

  static QStringList ThereAndBack(const QStringList& list)
  {
    NSMutableArray* const array = [NSMutableArray array];
    for (const QString& text : list)
      [array addObject:MakeString(text)];
    return QStringListFromNSArray(array);
  }

private:
  NSAutoreleasePool* pool;
};

TEST_F(QStringListFromNSArrayTest, OfAnEmptyArrayIsEmpty)
{
  EXPECT_TRUE(QStringListFromNSArray([NSArray array]).isEmpty());
  EXPECT_TRUE(QStringListFromNSArray(nil).isEmpty());
}

TEST_F(QStringListFromNSArrayTest, KeepsTheOrder)
{
  EXPECT_EQ(QStringListFromNSArray([NSArray arrayWithObjects:@"b", @"a", @"", @"b", nil]),
            QStringList({"b", "a", "", "b"}));
}

TEST_F(QStringListFromNSArrayTest, KeepsEveryUtf16Unit)
{
  const QStringList list = {QString::fromUtf8("é"), QString::fromUtf8("数据"), QString::fromUtf8("𝄞"),
                            QString("a") + QChar(0) + "b"};
  EXPECT_EQ(ThereAndBack(list), list);
}

TEST_F(QStringListFromNSArrayTest, TakesStringsOfEveryKind)
{
  NSMutableString* const mutableString = [NSMutableString stringWithString:@"one"];
  NSArray* const array =
      [NSArray arrayWithObjects:mutableString, [NSString stringWithUTF8String:"tw\xc3\xb6"],
                                [@"a/three" lastPathComponent], nil];
  const QStringList list = QStringListFromNSArray(array);
  [mutableString setString:@"changed"];
  EXPECT_EQ(list, QStringList({"one", QString::fromUtf8("twö"), "three"}));
}

TEST_F(QStringListFromNSArrayTest, KeepsHalfASurrogatePairOfAForeignString)
{
  HalfPairString* const string = [[[HalfPairString alloc] init] autorelease];
  EXPECT_EQ(QStringListFromNSArray([NSArray arrayWithObject:string]),
            QStringList(QString("a") + QChar(0xd834)));
}

TEST_F(QStringListFromNSArrayTest, TakesLongArraysAndLongStrings)
{
  QStringList list;
  for (int number = 0; number < 20000; ++number)
    list.append(QString::number(number));
  list.append(QString(100000, 'y'));
  EXPECT_EQ(ThereAndBack(list), list);
}

} // namespace
