// Stands in for the Objective-C runtime's own header, which no package of this system has for ARC and blocks.
#pragma once

#include <stddef.h>
#include <stdint.h>

#if defined(__APPLE__) && defined(__aarch64__)
typedef bool BOOL;
#else
typedef signed char BOOL;
#endif
#define YES __objc_yes
#define NO __objc_no

#ifndef nil
#define nil nullptr
#define Nil nullptr
#endif

typedef struct objc_selector* SEL;
typedef id (*IMP)(id, SEL, ...);
