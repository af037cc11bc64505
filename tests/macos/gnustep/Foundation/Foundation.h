// This system's Foundation with what it lacks of what the sources that run here use.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include_next <Foundation/Foundation.h>

// Marks of translatable texts, of which the C++ library has variables of the same name.
#undef _
#undef __

enum { NSPropertyListReadCorruptError = 3840 };

extern NSString* const NSFileProtectionKey;
extern NSString* const NSFileProtectionComplete;

@interface NSFileManager (Lumora)
- (BOOL)setAttributes:(NSDictionary*)attributes ofItemAtPath:(NSString*)path error:(NSError**)error;
@end

@interface NSTask (Lumora)
@property(nonatomic, copy) NSURL* executableURL;
- (BOOL)launchAndReturnError:(NSError**)error;
@end
