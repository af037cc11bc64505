// What this system's Foundation lacks, by what it has.
#import <Foundation/Foundation.h>

NSString* const NSFileProtectionKey = @"NSFileProtectionKey";
NSString* const NSFileProtectionComplete = @"NSFileProtectionComplete";

@implementation NSFileManager (Lumora)
- (BOOL)setAttributes:(NSDictionary*)attributes ofItemAtPath:(NSString*)path error:(NSError**)error {
    return [self changeFileAttributes:attributes atPath:path];
}
@end

@implementation NSTask (Lumora)
- (NSURL*)executableURL {
    return [NSURL fileURLWithPath:[self launchPath]];
}
- (void)setExecutableURL:(NSURL*)url {
    [self setLaunchPath:[url path]];
}
- (BOOL)launchAndReturnError:(NSError**)error {
    const int fault = access([[self launchPath] fileSystemRepresentation], X_OK) == 0 ? 0 : errno;
    if (fault == 0)
        [self launch];
    else
        *error = [NSError errorWithDomain:NSPOSIXErrorDomain code:fault userInfo:nil];
    return fault == 0;
}
@end

// Preference levels by name: of this user's there are the defaults, of all users' there is none.
const CFStringRef kCFPreferencesAnyUser = (CFStringRef) @"anyUser";
const CFStringRef kCFPreferencesCurrentUser = (CFStringRef) @"currentUser";
const CFStringRef kCFPreferencesAnyHost = (CFStringRef) @"anyHost";

void CFPreferencesSetValue(CFStringRef key, CFPropertyListRef value, CFStringRef domain, CFStringRef user,
                           CFStringRef) {
    if (user != kCFPreferencesCurrentUser)
        return;
    NSUserDefaults* defaults = [NSUserDefaults standardUserDefaults];
    NSDictionary* stored = [defaults persistentDomainForName:(NSString*)domain];
    NSMutableDictionary* changed = [NSMutableDictionary dictionaryWithDictionary:stored];
    [changed setObject:(id)value forKey:(NSString*)key];
    [defaults setPersistentDomain:changed forName:(NSString*)domain];
}

Boolean CFPreferencesSynchronize(CFStringRef, CFStringRef user, CFStringRef) {
    return user == kCFPreferencesCurrentUser && [[NSUserDefaults standardUserDefaults] synchronize];
}

/// The sources leave the reference counts to the compiler, which for this runtime keeps none: nothing is ever
/// freed.
void neverRelease() { [NSAutoreleasePool enableRelease:NO]; }
