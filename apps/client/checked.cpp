#include "client/checked.h"

#include <array>

namespace oct::app {

void throw_pending_error() {
  std::array<char, 4096> text{};
  if (getOwnRendererError(text.data(), static_cast<int>(text.size())) == 0) return;
  throw RenderingError(static_cast<OctErrorKind>(getRendererErrorKind()), text.data());
}

void discard_pending_errors() {
  // One text of the library never goes away, so a loop until none is pending might not end.
  for (int i = 0; i < 16 && getOwnRendererError(nullptr, 0) != 0; ++i) {
  }
}

}  // namespace oct::app
