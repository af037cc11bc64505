#import <Foundation/Foundation.h>

NSString* call(NSString* text) { return [text stringByAppendingString:@3]; }
