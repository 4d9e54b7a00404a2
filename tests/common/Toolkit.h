// Starts the toolkit for a test program. Including this header from one of the program's sources is enough; listing the
// program's tests needs no display.
#pragma once

#include "ToolkitSettings.h"

inline testing::Environment* const toolkit = testing::AddGlobalTestEnvironment(new Toolkit);
