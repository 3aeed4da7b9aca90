#pragma once

// The few declarations of Foundation that the library uses, for builds without the framework.

typedef unsigned long NSUInteger;

__attribute__((objc_root_class))
@interface NSObject
@end
