#include <Common/PathHelpers.h>

#import <Foundation/NSArray.h>
#import <Foundation/NSString.h>

namespace Tavrik::Cleaner
{

namespace
{

QString ConvertString(const NSString* string)
{
  const int length = static_cast<int>([string length]);
  QString text(length, Qt::Uninitialized);
  [string getCharacters:reinterpret_cast<unichar*>(text.data())
                  range:NSMakeRange(0, static_cast<NSUInteger>(length))];
  return text;
}

} // namespace

QStringList QStringListFromNSArray(const NSArray* array)
{
  const NSUInteger count = [array count];
  QStringList list;
  list.reserve(static_cast<int>(count));
  for (NSUInteger index = 0; index < count; ++index)
    list.append(ConvertString([array objectAtIndex:index]));
  return list;
}

} // namespace Tavrik::Cleaner
