// For macOS, not for one of its kin.
#pragma once

#define TARGET_OS_IPHONE 0
