#pragma once

// The test framework and what tests read of the standard library, read once for all of them.

#include "cmake/precompiled/standard.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <sstream>
#include <thread>
