// Before every source: this system's runtime has no weak references.
#pragma once

#undef __weak
#define __weak
