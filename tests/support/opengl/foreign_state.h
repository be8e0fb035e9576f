// What a client may leave in its OpenGL context before it calls the library.
#pragma once

#include <array>
#include <functional>
#include <vector>

#include "gl/gl.h"
#include "oct_rendering/oct_rendering.h"
#include "support/pictures.h"

namespace oct::test {

// Everything that decides how a context uploads and draws.
struct StateValue {
  GLenum query;
  GLenum unit;  // of textures; else 0
  std::array<double, 4> values;
  bool operator==(const StateValue&) const = default;
};
using StateValues = std::vector<StateValue>;
StateValues state_values();
testing::AssertionResult same_state(const StateValues& before, const StateValues& after);

// Draws into targets of other kinds, and then into a part of this one while one foreign state after the
// other is set and none is taken back. The picture is the expected one, and the state is as the client set
// it.
void expect_same_whatever_the_client_sets(OffscreenTargetHandle target, const Picture& expected,
                                          const std::function<void()>& draw);

}  // namespace oct::test
