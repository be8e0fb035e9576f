// Why a frame of the display shows nothing.
#include <algorithm>
#include <limits>

#include "core/number_text.h"
#include "display/display_renderer.h"
#include "vec/vec.h"

namespace oct {
namespace {

// The rule of colours: which one a value has. One that is not finite is none's.
double share_of(float value, float lower, float upper) {
  return (static_cast<double>(value) - lower) / (static_cast<double>(upper) - lower);
}

}  // namespace

std::string DisplayRenderer::explain() const {
  const std::shared_ptr<const Frame> last = last_frame_.record();
  if (last && last->image->samples.empty())
    return cause(*last);  // no frame takes that: the cause of its failure
  return last_frame_.explain(cause);
}

// An overlay is drawn where the image reaches the threshold.
bool DisplayRenderer::overlay_shows(const Frame& frame) {
  if (frame.overlay_image->samples.empty()) return false;
  const auto& layers = frame.content.layers;
  return std::any_of(layers.begin() + 1, layers.end(), [](const Layer& layer) {
    return layer.settings.enabled && has_opacity(layer.colormap.colors());
  });
}

std::string DisplayRenderer::cause(const Frame& frame) {
  const Content& content = frame.content;
  if (content.width <= 0 || content.height <= 0) return no_area_text(content.width, content.height);
  if (overlay_shows(frame)) return {};
  const std::vector<float>& samples = frame.image->samples;
  if (samples.empty()) return "There is no image. Set one of one sample or more (setDisplayData). ";
  const Colormap& colors = content.layers[0].colormap.colors();
  if (!has_opacity(colors)) {
    return "The colour map has no opacity: the fourth byte of each of its " + std::to_string(colors.size()) +
           " colours is 0, and so is the alpha of the picture. Give it some (setDisplayColormap). ";
  }
  if (std::ranges::all_of(colors, [&](std::uint32_t color) { return color == colors.front(); })) {
    return "The colour map has one colour only. Set another one (setDisplayColormap). ";
  }
  const vec::Extremes values = vec::extremes(samples.data(), samples.size());
  if (values.lowest > values.highest) return "The image holds no numbers, only NaN. Check the data. ";
  constexpr float everything = std::numeric_limits<float>::infinity();
  if (vec::count_not_above(samples.data(), samples.size(), everything) < samples.size())
    return {};  // NaN among them
  if (values.lowest == values.highest) {
    return "All samples of the image are " + text_of(values.lowest) +
           ": the picture has one colour. Check the data. ";
  }
  const float lower = content.layers[0].settings.lowerValue;
  const float upper = content.layers[0].settings.upperValue;
  const double low = share_of(values.lowest, lower, upper);
  const double high = share_of(values.highest, lower, upper);
  // Up to the middle of the first entry all is its colour, and from that of the last one on.
  const double entry = 0.5 / static_cast<double>(colors.size());
  const bool first = low <= entry && high <= entry;
  const bool last = low >= 1.0 - entry && high >= 1.0 - entry;
  if (!first && !last) return {};
  const bool beyond = first ? low <= 0.0 && high <= 0.0 : low >= 1.0 && high >= 1.0;
  const bool below = first == (lower <= upper);
  const std::string limit = beyond ? std::string("the ") + (first ? "lower" : "upper") + " colouring boundary"
                            : first ? text_of(lower + entry * (static_cast<double>(upper) - lower))
                                    : text_of(upper - entry * (static_cast<double>(upper) - lower));
  return "All samples of the image lie at or " + std::string(below ? "below " : "above ") + limit +
         ", and the picture has the " + (first ? "first" : "last") + " colour of the map only: values from " +
         text_of(values.lowest) + " to " + text_of(values.highest) + ", boundaries " + text_of(lower) +
         " to " + text_of(upper) + ". " + (below ? "Lower" : "Raise") +
         " the boundaries (setDisplayColoringBoundaries). ";
}

}  // namespace oct
