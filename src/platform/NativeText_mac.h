#pragma once

#import <Foundation/Foundation.h>

#include <string>

namespace corvane {

/// UTF-8 as the system's own text; empty where it is not valid.
inline NSString *nativeText(const std::string &text)
{
    NSString *converted = [NSString stringWithUTF8String:text.c_str()];
    return converted ? converted : @"";
}

} // namespace corvane
