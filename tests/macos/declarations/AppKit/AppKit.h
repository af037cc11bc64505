// AppKit, with what the headers of this system lack.
#pragma once

#include_next <AppKit/AppKit.h>
#include <AppKit/AppKitAdditions.h>
#include <Foundation/Foundation.h>
