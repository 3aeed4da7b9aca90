#pragma once

#include <Foundation/NSObject.h>

typedef unsigned short unichar;

typedef struct _NSRange
{
  NSUInteger location;
  NSUInteger length;
} NSRange;

inline NSRange NSMakeRange(NSUInteger location, NSUInteger length)
{
  const NSRange range = {location, length};
  return range;
}

@interface NSString : NSObject
- (NSUInteger)length;
- (void)getCharacters:(unichar*)buffer range:(NSRange)range;
@end
