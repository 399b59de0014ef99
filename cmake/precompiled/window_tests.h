#pragma once

// For tests that look at the toolkit's own windows.

#include "cmake/precompiled/tests.h"
#include "cmake/precompiled/toolkit.h"
