// Tests on a drive of their own.
#pragma once

#include "tests/support/fake_host.h"

#include <gtest/gtest.h>

namespace corvane::test {

/// Has an empty drive C:, whose Unix path is `c`. More drives can be mapped beside it.
struct DriveTest : testing::Test {
    ScratchDrives drives;
    std::string c = drives.Map("C:", "c");
};

} // namespace corvane::test
