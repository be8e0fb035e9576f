#include "data/formats/tiff_spacing.h"

#include <optional>
#include <string>

#include "data/arrays/length_unit.h"
#include "data/arrays/text_header.h"

namespace oct::app {
namespace {

// The value of an attribute anywhere in the text; empty: there is none.
std::string_view attribute(std::string_view text, const std::string& name) {
  const std::size_t begin = text.find(' ' + name + "=\"");
  if (begin == std::string_view::npos) return {};
  text.remove_prefix(begin + name.size() + 3);
  return text.substr(0, text.find('"'));
}

FileSpacing ome_spacing(std::string_view description) {
  FileSpacing spacing;
  for (std::size_t i = 0; i < 3; ++i) {
    const std::string name = std::string("PhysicalSize") + "XYZ"[i];
    double value = 0;
    if (!parse_double(attribute(description, name), value)) continue;
    const std::string_view unit = attribute(description, name + "Unit");
    const std::optional<double> mm =
        unit.empty() ? 1e-3 : millimetres_of(unit);  // micrometres, where nothing is said
    if (mm) spacing.mm[i] = distance_mm(value, *mm);
  }
  spacing.source = "OME tags";
  return spacing;
}

FileSpacing imagej_spacing(std::string_view description, double columns_per_unit, double rows_per_unit) {
  const std::optional<double> mm = millimetres_of(imagej_value(description, "unit"));
  if (!mm) return {};
  FileSpacing spacing;
  if (columns_per_unit > 0) spacing.mm[0] = distance_mm(1 / columns_per_unit, *mm);
  if (rows_per_unit > 0) spacing.mm[1] = distance_mm(1 / rows_per_unit, *mm);
  double frames = 0;
  if (parse_double(imagej_value(description, "spacing"), frames)) {
    spacing.mm[2] = distance_mm(frames, *mm);
  }
  spacing.source = "ImageJ tags";
  return spacing;
}

}  // namespace

bool is_imagej(std::string_view description) {
  return description.starts_with("ImageJ=");
}

std::string_view imagej_value(std::string_view description, std::string_view name) {
  while (!description.empty()) {
    const std::size_t end = description.find('\n');
    const std::string_view line = without_blanks(description.substr(0, end));
    if (line.starts_with(name) && line.substr(name.size()).starts_with('='))
      return line.substr(name.size() + 1);
    description = end == std::string_view::npos ? std::string_view() : description.substr(end + 1);
  }
  return {};
}

FileSpacing tiff_spacing(std::string_view description, double columns_per_unit, double rows_per_unit) {
  if (is_imagej(description)) return imagej_spacing(description, columns_per_unit, rows_per_unit);
  if (description.find("<Pixels") != std::string_view::npos) return ome_spacing(description);
  return {};
}

}  // namespace oct::app
