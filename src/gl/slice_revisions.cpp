#include "gl/slice_revisions.h"

#include <algorithm>
#include <atomic>

namespace oct::gl {
namespace {

std::uint64_t next_revision() {
  static std::atomic<std::uint64_t> last = 0;
  return ++last;
}

}  // namespace

void SliceRevisions::restart(std::int64_t slices) {
  revisions_.assign(static_cast<std::size_t>(slices), 0);
  changed(0, slices);
}

void SliceRevisions::changed(std::int64_t first, std::int64_t end) noexcept {
  newest_ = next_revision();
  std::fill(revisions_.begin() + first, revisions_.begin() + end, newest_);
}

}  // namespace oct::gl
