// Foundation, with what the headers of this system lack.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include_next <Foundation/Foundation.h>

// Marks of translatable texts, of which the C++ library has variables of the same name.
#undef _
#undef __
#include <Foundation/FoundationAdditions.h>
#include <Foundation/URLSession.h>
#include <dispatch/dispatch.h>
#include <os/availability.h>
