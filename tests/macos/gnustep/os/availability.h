#pragma once

#include "../../declarations/os/availability.h"
