// Pictures that a person has looked at and accepted, for looks that no formula fixes.
#pragma once

#include <string>

#include "support/pictures.h"

namespace oct::test {

// Without pixels when the file cannot be read.
Picture readPng(const std::string& file);

// Compares with tests/golden/NAME.png. With OCT_ACCEPT_GOLDEN set in the environment the picture is written
// there instead, to be looked at before it is committed.
testing::AssertionResult looksLike(const Picture& picture, const std::string& name, Tolerance tolerance);

}  // namespace oct::test
