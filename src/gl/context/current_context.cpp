#include "gl/context/current_context.h"

namespace oct::gl {

void CurrentContext::restore() const noexcept {
  forget_current_identity();
  if (is_current()) return;
  // A handle that has become another context's would be as good to the system.
  const bool gone = identity_ != no_context && !is_known(identity_);
  const bool made = context_ && !gone && make_current();
  const bool another = made && identity_ != no_context && current_identity() != identity_;
  if (!made || another) release_current();
  forget_current_identity();
}

}  // namespace oct::gl
