#include "volume/skipping/empty_cubes.h"

#include <algorithm>

namespace oct {
namespace {

constexpr std::uint8_t farthest = 255;

// The cube at a brick is one brick larger than the smallest of those that begin at its seven neighbours on the rays'
// way. Six of them lie in other rows, and their minimum is taken for a whole row at a time; the seventh is the one
// that was found just before.
class Row {
 public:
  explicit Row(std::size_t length) : smallest_(length + 1) {}

  void begin() { std::fill(smallest_.begin(), smallest_.end(), farthest); }

  // Another row, padded by one brick beyond the grid on the side that rays leave at.
  void lower(const std::uint8_t* row) {
    const std::size_t length = smallest_.size() - 1;
    for (std::size_t i = 0; i < length; ++i) {
      const std::uint8_t two = std::min(row[i], row[i + 1]);
      smallest_[i] = std::min(smallest_[i], two);
    }
  }

  std::uint8_t at(std::size_t i) const { return smallest_[i]; }

 private:
  std::vector<std::uint8_t> smallest_;
};

}  // namespace

// Rows are kept with their first brick at the end that rays leave by, mirrored where they go towards smaller
// indices, so that one loop serves all octants.
void find_empty_cubes(std::span<const float> maxima, const BrickGrid& grid, float limit, Octant octant,
                      std::span<std::uint8_t> sides) {
  const auto length = static_cast<std::size_t>(grid.depth);
  const auto rows = static_cast<std::size_t>(grid.a_scans);
  const auto layers = static_cast<std::size_t>(grid.b_scans);
  // Two layers of rows in the order of the rays, each row and layer with one more, empty, beyond the grid.
  const std::size_t stride = length + 1;
  std::array<std::vector<std::uint8_t>, 2> layer_sides;
  for (auto& layer : layer_sides) layer.assign(stride * (rows + 1), farthest);
  Row row(length);
  for (std::size_t k = layers; k-- > 0;) {  // from where rays leave
    std::vector<std::uint8_t>& here = layer_sides[k % 2];
    const std::vector<std::uint8_t>& beyond = layer_sides[(k + 1) % 2];
    const std::size_t layer = octant.b_scans ? k : layers - 1 - k;
    for (std::size_t j = rows; j-- > 0;) {
      row.begin();
      row.lower(here.data() + (j + 1) * stride);
      row.lower(beyond.data() + j * stride);
      row.lower(beyond.data() + (j + 1) * stride);
      const std::size_t start = (layer * rows + (octant.a_scans ? j : rows - 1 - j)) * length;
      std::uint8_t* const found = here.data() + j * stride;
      std::uint8_t next = farthest;
      for (std::size_t i = length; i-- > 0;) {
        const std::size_t at = start + (octant.depth ? i : length - 1 - i);
        const std::uint8_t smallest = std::min(row.at(i), next);
        next = maxima[at] > limit ? 0 : static_cast<std::uint8_t>(smallest + (smallest < farthest ? 1 : 0));
        found[i] = next;
        sides[at] = next;
      }
    }
  }
}

}  // namespace oct
