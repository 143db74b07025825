#pragma once

// The part of QuartzCore that this program uses.

#import <Foundation/Foundation.h>

typedef struct CGColor *CGColorRef;

@interface CALayer : NSObject
@property CGFloat cornerRadius;
@property CGColorRef backgroundColor;
@end
