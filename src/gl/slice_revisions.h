// When each slice of a texture was written last.
#pragma once

#include <cstdint>
#include <vector>

namespace oct::gl {

// Revisions count up over the whole process and never come twice, so that whoever keeps something made of one
// texture's slices never takes another texture's for them.
class SliceRevisions {
 public:
  // A new texture of undefined contents: every slice changed.
  void restart(std::int64_t slices);
  void changed(std::int64_t first, std::int64_t end) noexcept;

  std::uint64_t newest() const { return newest_; }  // 0: never written
  std::uint64_t of(std::int64_t slice) const { return revisions_[static_cast<std::size_t>(slice)]; }
  std::int64_t count() const { return static_cast<std::int64_t>(revisions_.size()); }

 private:
  std::vector<std::uint64_t> revisions_;
  std::uint64_t newest_ = 0;
};

}  // namespace oct::gl
