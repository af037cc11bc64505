#import <Foundation/Foundation.h>

NSString* call(CFTypeRef text) { return (NSString*)text; }
