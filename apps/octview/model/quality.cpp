#include "octview/model/quality.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace oct::app {
namespace {

// The finest first. Fewer steps are seen less than fewer pixels.
constexpr std::array<Quality, QualityControl::level_count> levels{
    {{1, 1}, {0.7, 1}, {0.5, 1}, {0.5, 2}, {0.35, 2}, {0.35, 3}, {0.25, 4}}};

// What remains of a thirtieth of a second beside the interface and the slices.
constexpr double longest = 0.025;
// Finer pictures are tried when they would take less than this.
constexpr double comfortable = 0.018;
// A hand that rests for so long has let go; full quality is there 0.3 s after the last change where it can be.
constexpr double longest_rest = 0.15;
constexpr double shortest_rest = 0.05;
constexpr double promised = 0.3;
// Of what is known of other levels, after every picture: drivers and settings change, so all are tried again.
constexpr double memory = 0.99;

double cost(const Quality& quality) {
  return quality.steps / quality.pixels / quality.pixels;
}

}  // namespace

VolumeView in_quality(const VolumeView& view, const Quality& quality, const BoxExtent& extent) {
  VolumeView result = view;
  if (quality.is_full()) return result;
  const auto pixels = static_cast<unsigned>(quality.pixels);
  result.size.width = std::max(1U, (view.size.width + pixels - 1) / pixels);
  result.size.height = std::max(1U, (view.size.height + pixels - 1) / pixels);
  result.slices = std::max(1, static_cast<int>(std::lround(view.slices * quality.steps)));
  // Of fewer steps each is longer, and would have to be more opaque.
  if (view.opacity_length == 0)
    result.opacity_length = std::hypot(extent[0], extent[1], extent[2]) / view.slices;
  result.jitter = true;
  // Labels have a least size in pixels of the picture, and would grow and shrink under the hand.
  if (quality.pixels > 1) result.scale_marks = false;
  return result;
}

void QualityControl::moved(double now) {
  moved_at_ = now;
  changed_ = owed_ = true;
}

void QualityControl::replaced() {
  changed_ = owed_ = true;
  moved_at_.reset();
}

bool QualityControl::is_moving(double now) const {
  // Where no rest is short enough for a picture to keep the promise, hands had better not be interrupted.
  const double left = promised - seconds_[0];
  const double rest = left < shortest_rest ? longest_rest : std::min(left, longest_rest);
  return moved_at_ && now - *moved_at_ < rest;
}

std::optional<Quality> QualityControl::wanted(double now) const {
  if (!owed_) return std::nullopt;
  if (!is_moving(now)) return Quality{};
  if (changed_) return levels[level_];
  return std::nullopt;
}

// Of what is not known half is taken for what any picture takes, however coarse.
double QualityControl::expected(std::size_t level) const {
  if (seconds_[level] > 0) return seconds_[level];
  return seconds_[level_] * (0.5 + 0.5 * cost(levels[level]) / cost(levels[level_]));
}

void QualityControl::drawn(const Quality& quality, double seconds) {
  changed_ = false;
  if (quality.is_full()) owed_ = false;
  const auto level = static_cast<std::size_t>(std::ranges::find(levels, quality) - levels.begin());
  for (double& known : seconds_) known *= memory;
  seconds_[level] = seconds;
  if (level == 0 && seconds < comfortable) level_ = 0;
  if (level != level_ && level != 0) return;
  if (seconds > longest) {
    // Coarser at once, as far as it takes.
    std::size_t next = level;
    while (next + 1 < levels.size() && seconds * cost(levels[next]) / cost(levels[level]) > longest) ++next;
    level_ = std::max(level_, next);
  } else if (level == level_ && level_ > 0 && expected(level_ - 1) < comfortable) {
    --level_;
  }
}

}  // namespace oct::app
