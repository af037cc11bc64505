#pragma once

#include "../../declarations/CoreFoundation/CoreFoundation.h"
