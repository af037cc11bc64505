#import <Foundation/Foundation.h>

void call(NSString* text) { [text stringByAppendingNothing:@""]; }
