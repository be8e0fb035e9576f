// Makes every OpenGL call of a scenario fail once.
#pragma once

#include <functional>
#include <string>

#include "support/pictures.h"

namespace oct::test {

// What a client does. Errors are read as the pending error, unless the scenario has another channel.
struct FaultScenario {
  std::function<void()> start;         // makes the OpenGL objects
  std::function<Picture()> frame;      // may be without pixels after an error
  std::function<void()> stop;          // gives the OpenGL objects back
  std::function<std::string()> error;  // the first since the last call; "(none)"
  bool dies_of_errors = false;         // after any it has to be started again
};

// Runs the scenario once for each of its calls (of each function the middle one, in the native build the first, second
// and last as well; queries and deletions cannot fail): a fault is reported or does not show, and leaves nothing: after it a frame is right again, and after
// stop no object is left.
void fail_every_call(const FaultScenario& scenario);

}  // namespace oct::test
