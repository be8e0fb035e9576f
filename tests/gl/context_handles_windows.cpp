#include "gl/context_handles.h"

namespace oct::test {

// Windows has one window system, and chooses its handles itself.
constexpr bool can_change_context_handles = false;

ChangedContextHandles::ChangedContextHandles(Handles) {}
ChangedContextHandles::~ChangedContextHandles() = default;

}  // namespace oct::test
