#include "octview/panels/histogram.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "data/file_errors.h"
#include "octview/model/layer_colors.h"
#include "octview/panels/widgets.h"
#include "octview/window/item_index.h"

namespace oct::app {
namespace {

constexpr float bars_height = 5;    // letters
constexpr double narrowest = 1e-3;  // range, as a part of what is shown

// The domain of the counts, and the range where it lies outside of it.
ValueRange shown_values(const Statistics& statistics, const ValueRange& range) {
  return {std::min({statistics.domain.lower, range.lower, range.upper}),
          std::max({statistics.domain.upper, range.lower, range.upper})};
}

Colormap colors_of(const LayerLook& look) {
  try {
    return plain_colors(look);
  } catch (const ReadError&) {
    return *find_colormap("gray");
  }
}

ImU32 color_at(const Colormap& colors, double place) {
  const auto last = static_cast<double>(colors.size() - 1);
  const Rgba& color = colors[static_cast<std::size_t>(std::lround(std::clamp(place, 0.0, 1.0) * last))];
  return IM_COL32(color[0], color[1], color[2], 255);
}

// Bars that are narrower than a pixel share one: the highest shows.
void draw_bars(ImDrawList& list, ImVec2 from, ImVec2 to, const ValueRange& shown,
               const Statistics& statistics, const LayerLook& look, bool log_counts) {
  const Colormap colors = colors_of(look);
  const auto height_of = [&](double count) { return log_counts ? std::log1p(count) : count; };
  const double highest = height_of(static_cast<double>(std::ranges::max(statistics.histogram)));
  const double bin_width =
      (statistics.domain.upper - statistics.domain.lower) / static_cast<double>(statistics.histogram.size());
  const auto columns = static_cast<int>(to.x - from.x);
  const double per_column = (shown.upper - shown.lower) / columns;
  for (int column = 0; column < columns; ++column) {
    const double begin = shown.lower + per_column * column;
    const double middle = begin + per_column / 2;
    const double first = std::floor((begin - statistics.domain.lower) / bin_width);
    const double last =
        std::max(first, std::ceil((begin + per_column - statistics.domain.lower) / bin_width) - 1);
    std::uint64_t count = 0;
    for (double bin = std::max(first, 0.0);
         bin <= last && bin < static_cast<double>(statistics.histogram.size()); ++bin)
      count = std::max(count, statistics.histogram[static_cast<std::size_t>(bin)]);
    if (count == 0) continue;
    const auto height = static_cast<float>(height_of(static_cast<double>(count)) / highest) * (to.y - from.y);
    const double place = (middle - look.range.lower) / (look.range.upper - look.range.lower);
    const bool inside = place >= 0 && place <= 1;
    const float x = from.x + static_cast<float>(column);
    list.AddRectFilled({x, to.y - std::max(height, 1.0F)}, {x + 1, to.y},
                       inside ? color_at(colors, place) : ImGui::GetColorU32(ImGuiCol_TextDisabled, 0.5F));
  }
}

void draw_handle(ImDrawList& list, float x, ImVec2 from, ImVec2 to, bool points_right, bool held) {
  const ImU32 color = ImGui::GetColorU32(held ? ImGuiCol_SliderGrabActive : ImGuiCol_SliderGrab);
  const float side = em(points_right ? 0.5F : -0.5F);
  list.AddLine({x, from.y}, {x, to.y}, color, std::max(1.0F, em(0.12F)));
  list.AddTriangleFilled({x, from.y}, {x + side, from.y}, {x, from.y + em(0.8F)}, color);
}

// To a decimal no coarser than a fifth of the step.
double rounded(double value, double step) {
  const double digits = std::ceil(-std::log10(step / 5));
  const double scale = std::pow(10, std::abs(digits));
  return digits >= 0 ? std::round(value * scale) / scale : std::round(value / scale) * scale;
}

bool edit_number(const char* label, double& value) {
  return ImGui::InputDouble(label, &value, 0, 0, "%.6g", ImGuiInputTextFlags_EnterReturnsTrue);
}

}  // namespace

bool Histogram::show(LayerLook& look, const Statistics* statistics) {
  bool changed = false;
  if (statistics) {
    changed = show_bars(look, *statistics);
  } else {
    ImGui::TextDisabled("Counting values ...");
    ImGui::Dummy({0, em(bars_height) - ImGui::GetFontSize()});
  }
  return show_numbers(look, statistics) || changed;
}

bool Histogram::show_bars(LayerLook& look, const Statistics& statistics) {
  const ImVec2 from = ImGui::GetCursorScreenPos();
  const ImVec2 size{std::max(ImGui::GetContentRegionAvail().x, em(4)), em(bars_height)};
  const ImVec2 to{from.x + size.x, from.y + size.y};
  ImGui::InvisibleButton("Histogram", size);
  mark_item("Histogram", from, to);
  const ValueRange shown = shown_values(statistics, look.range);
  const double per_point = (shown.upper - shown.lower) / size.x;
  const auto x_of = [&](double value) {
    return from.x + static_cast<float>((value - shown.lower) / per_point);
  };
  const double value = rounded(shown.lower + (ImGui::GetIO().MousePos.x - from.x) * per_point, per_point);
  bool changed = false;
  if (ImGui::IsItemActivated()) {
    held_ =
        std::abs(value - look.range.lower) < std::abs(value - look.range.upper) ? Held::lower : Held::upper;
  } else if (!ImGui::IsItemActive()) {
    held_ = Held::nothing;
  }
  // A click alone moves nothing.
  if (held_ != Held::nothing && ImGui::IsMouseDragging(ImGuiMouseButton_Left, 0) &&
      ImGui::GetIO().MouseDelta.x != 0) {
    const double gap = (shown.upper - shown.lower) * narrowest;
    if (held_ == Held::lower) {
      look.range.lower = std::clamp(value, shown.lower, std::max(look.range.upper - gap, shown.lower));
    } else {
      look.range.upper = std::clamp(value, std::min(look.range.lower + gap, shown.upper), shown.upper);
    }
    look.shares.reset();
    changed = true;
  }
  if (ImGui::IsItemHovered() && held_ == Held::nothing) {
    ImGui::SetTooltip("%.5g; %.4g %% of the values are below.\nDrag the ends of the range.", value,
                      100 * statistics.share_below(value));
  }
  ImDrawList& list = *ImGui::GetWindowDrawList();
  list.AddRectFilled(from, to, ImGui::GetColorU32(ImGuiCol_FrameBg));
  list.PushClipRect(from, to, true);
  draw_bars(list, from, to, shown, statistics, look, log_counts_);
  draw_handle(list, x_of(look.range.lower), from, to, true, held_ == Held::lower);
  draw_handle(list, x_of(look.range.upper), from, to, false, held_ == Held::upper);
  list.PopClipRect();
  for (const auto& [name, end] :
       {std::pair{"Lower end", look.range.lower}, {"Upper end", look.range.upper}}) {
    const float x = std::clamp(x_of(end), from.x + 1, to.x - 1);
    mark_item(name, {x - 1, from.y}, {x + 1, to.y});
  }
  return changed;
}

bool Histogram::show_numbers(LayerLook& look, const Statistics* statistics) {
  bool changed = false;
  const float width = (ImGui::GetContentRegionAvail().x - ImGui::GetStyle().ItemSpacing.x) / 2;
  ValueRange range = look.range;
  ImGui::SetNextItemWidth(width);
  bool edited = edit_number("##lower", range.lower);
  hint("Value of the first colour");
  ImGui::SameLine();
  ImGui::SetNextItemWidth(width);
  edited |= edit_number("##upper", range.upper);
  hint("Value of the last colour");
  if (edited && std::isfinite(range.lower) && std::isfinite(range.upper) &&
      static_cast<float>(range.lower) != static_cast<float>(range.upper)) {
    look.range = range;
    look.shares.reset();
    changed = true;
  }
  bool follows = look.shares.has_value();
  if (ImGui::Checkbox("Percentiles", &follows)) {
    if (follows) {
      look.shares = image_shares;
    } else {
      look.shares.reset();
    }
    changed = true;
  }
  hint("The range follows the values: so many percent of them lie below its ends");
  ImGui::SameLine();
  ImGui::Checkbox("Log counts", &log_counts_);
  if (look.shares) {
    double percents[2] = {100 * look.shares->lower, 100 * look.shares->upper};
    ImGui::SetNextItemWidth(ImGui::GetContentRegionAvail().x);
    if (ImGui::InputScalarN("##percentiles", ImGuiDataType_Double, percents, 2, nullptr, nullptr,
                            "%.5g %%") &&
        percents[0] >= 0 && percents[0] < percents[1] && percents[1] <= 100) {
      look.shares = Shares{percents[0] / 100, percents[1] / 100};
      changed = true;
    }
  }
  if (changed && statistics) follow_data(look, *statistics);
  return changed;
}

}  // namespace oct::app
