#include "octview/model/session_file.h"

#include <algorithm>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <type_traits>

#include <nlohmann/json.hpp>

#include "data/colormap.h"
#include "data/file_errors.h"
#include "data/formats/input_file.h"
#include "data/formats/output_file.h"
#include "octview/model/number_text.h"

namespace oct::app {
namespace {

using Json = nlohmann::ordered_json;

constexpr int version = 1;
constexpr char version_field[] = "octview_session";
constexpr std::uint64_t largest_file = 64'000'000;
constexpr std::size_t most_entries = 1'000'000;  // of a list

struct Bounds {
  double lowest = -1e15;
  double highest = 1e15;
};

constexpr Bounds part{0, 1};
constexpr Bounds color{0, 0xFFFFFF};

template <class Value>
struct Names;
template <>
struct Names<VolumeLook> {
  static constexpr std::array texts{"composite", "maximum", "mean", "sections"};
};
template <>
struct Names<Pane> {
  static constexpr std::array texts{"bscan", "enface", "third", "volume"};
};
template <>
struct Names<Projection> {
  static constexpr std::array texts{"mean", "maximum"};
};
template <>
struct Names<MeasurementKind> {
  static constexpr std::array texts{"distance", "angle", "profile"};
};
template <>
struct Names<Axis> {
  static constexpr std::array texts{"depth", "ascan", "bscan"};
};

template <class Value>
concept Number = std::is_arithmetic_v<Value> && !std::same_as<Value, bool>;

class FieldError : public std::runtime_error {
  using runtime_error::runtime_error;
};

// Both archives are handed the same descriptions of what a session holds.
class Writer {
 public:
  explicit Writer(std::filesystem::path folder) : folder_(std::move(folder)) {}

  template <class Value>
  void operator()(const char* name, const Value& value, const Bounds& = {}) {
    Json json = json_of(value);
    if (!json.is_null()) object_[name] = std::move(json);
  }

  Json take() { return std::move(object_); }

 private:
  template <class Value>
  Json json_of(const Value& value);
  template <class Value>
  Json json_of(const std::optional<Value>& value) {
    return value ? json_of(*value) : Json();
  }
  template <class Value, std::size_t count>
  Json json_of(const std::array<Value, count>& values) {
    return list_of(values);
  }
  template <class Value>
  Json json_of(const std::vector<Value>& values) {
    return list_of(values);
  }
  template <class Values>
  Json list_of(const Values& values) {
    Json json = Json::array();
    for (const auto& value : values) json.push_back(json_of(value));
    return json;
  }

  const std::filesystem::path folder_;
  Json object_ = Json::object();
};

class Reader {
 public:
  Reader(const Json& object, std::string where, std::filesystem::path folder)
      : object_(object), where_(std::move(where)), folder_(std::move(folder)) {
    if (!object.is_object()) throw FieldError(where_ + " must be an object");
  }

  template <class Value>
  void operator()(const char* name, Value& value, const Bounds& bounds = {}) {
    const auto found = object_.find(name);
    if (found != object_.end()) read(*found, where_.empty() ? name : where_ + "." + name, value, bounds);
  }

 private:
  template <class Value>
  void read(const Json& json, const std::string& where, Value& value, const Bounds& bounds);
  template <class Value>
  void read(const Json& json, const std::string& where, std::optional<Value>& value, const Bounds& bounds) {
    value.reset();
    if (!json.is_null()) read(json, where, value.emplace(), bounds);
  }
  template <class Value, std::size_t count>
  void read(const Json& json, const std::string& where, std::array<Value, count>& values,
            const Bounds& bounds) {
    if (!json.is_array() || json.size() != count)
      throw FieldError(where + " must be a list of " + std::to_string(count) + " values");
    for (std::size_t i = 0; i < count; ++i)
      read(json[i], where + "[" + std::to_string(i) + "]", values[i], bounds);
  }
  template <class Value>
  void read(const Json& json, const std::string& where, std::vector<Value>& values, const Bounds& bounds) {
    if (!json.is_array() || json.size() > most_entries) throw FieldError(where + " must be a list");
    values.assign(json.size(), Value());
    for (std::size_t i = 0; i < values.size(); ++i)
      read(json[i], where + "[" + std::to_string(i) + "]", values[i], bounds);
  }

  const Json& object_;
  const std::string where_;
  const std::filesystem::path folder_;
};

// What cannot be as it is. Throws a FieldError; where: the object's own name.
void check(const ValueRange& range, const std::string& where) {
  if (static_cast<float>(range.lower) == static_cast<float>(range.upper))
    throw FieldError(where + ": lower and upper must differ");
}

void check(const Shares& shares, const std::string& where) {
  if (!(shares.lower < shares.upper)) throw FieldError(where + ": lower must be below upper");
}

void check(const OpacityRule& rule, const std::string& where) {
  if (!is_opacity_curve(rule.points))
    throw FieldError(where + ".points must be places in rising order, with parts");
}

void check(const LayerLook& look, const std::string& where) {
  if (!find_colormap(look.colormap) && from_utf8(look.colormap).extension() != ".csv")
    throw FieldError(where + ".colormap: there is no colour map '" + look.colormap + "'; there are " +
                     colormap_names() + " and .csv files");
}

void check(const Measurement& measurement, const std::string& where) {
  if (measurement.points.size() != point_count(measurement.kind))
    throw FieldError(where + ".points must be " + std::to_string(point_count(measurement.kind)) + " points");
}

void check(const RawLayout& raw, const std::string& where) {
  if (raw.depth == 0 || raw.ascans == 0 || raw.bscans == 0)
    throw FieldError(where + ": sizes must be 1 or more");
}

template <class Object>
void check(const Object&, const std::string&) {}

template <class Archive, class T>
void describe(Archive& archive, T& raw) requires std::same_as<std::remove_const_t<T>, RawLayout> {
  constexpr Bounds side{1, 65536};
  archive("depth", raw.depth, side);
  archive("ascans", raw.ascans, side);
  archive("bscans", raw.bscans, side);
  archive("type", raw.format.type);
  archive("big_endian", raw.format.big_endian);
  archive("offset", raw.offset, Bounds{0, 1e15});
}

template <class Archive, class T>
void describe(Archive& archive, T& file) requires std::same_as<std::remove_const_t<T>, DataFile> {
  archive("path", file.path);
  archive("raw", file.raw);
  archive("axes", file.axes);
}

template <class Archive, class T>
void describe(Archive& archive, T& files) requires std::same_as<std::remove_const_t<T>, SessionFiles> {
  archive("volume", files.base);
  archive("overlay", files.overlay);
  archive("surface", files.surface);
  archive("secondary", files.secondary);
  archive("decibels", files.decibels);
  archive("extent_mm", files.extent, Bounds{1e-6, 1e6});
}

template <class Archive, class T>
void describe(Archive& archive, T& range) requires std::same_as<std::remove_const_t<T>, ValueRange> {
  archive("lower", range.lower, Bounds{-3e38, 3e38});
  archive("upper", range.upper, Bounds{-3e38, 3e38});
}

template <class Archive, class T>
void describe(Archive& archive, T& shares) requires std::same_as<std::remove_const_t<T>, Shares> {
  archive("lower", shares.lower, part);
  archive("upper", shares.upper, part);
}

template <class Archive, class T>
void describe(Archive& archive, T& rule) requires std::same_as<std::remove_const_t<T>, OpacityRule> {
  archive("highest", rule.highest, part);
  archive("shift", rule.shift, Bounds{-1, 1});
  archive("points", rule.points, part);
}

template <class Archive, class T>
void describe(Archive& archive, T& look) requires std::same_as<std::remove_const_t<T>, LayerLook> {
  archive("colormap", look.colormap);
  archive("reverse", look.reverse);
  archive("range", look.range);
  archive("percentiles", look.shares);
  archive("opacity", look.opacity);
  archive("visible", look.visible);
}

template <class Archive, class T>
void describe(Archive& archive, T& clip) requires std::same_as<std::remove_const_t<T>, ClipSetting> {
  archive("value", clip.value, part);
  archive("open", clip.open);
  archive("ghost", clip.ghost);
}

template <class Archive, class T>
void describe(Archive& archive, T& view) requires std::same_as<std::remove_const_t<T>, VolumeView> {
  constexpr Bounds wide{-1e6, 1e6};
  archive("mode", view.look);
  archive("secondary_colors", view.secondary_colors);
  archive("angles", view.angles, wide);
  archive("translation", view.translation, wide);
  archive("zoom", view.zoom, Bounds{0.1, 170});
  archive("perspective", view.perspective);
  archive("steps", view.slices, Bounds{1, 4096});
  archive("light", view.lighting, Bounds{0, 1e6});
  archive("jitter", view.jitter);
  archive("opacity_length_mm", view.opacity_length, Bounds{0, 1e6});
  archive("clip", view.clip);
  archive("sections", view.sections, part);
  archive("edges", view.edges);
  archive("scale_marks", view.scale_marks);
  archive("box", view.box);
  archive("background_bottom", view.background_bottom, color);
  archive("background_top", view.background_top, color);
  archive("foreground", view.foreground, color);
}

template <class Archive, class T>
void describe(Archive& archive, T& enface) requires std::same_as<std::remove_const_t<T>, EnFace> {
  archive("layers", enface.layers, Bounds{1, 1e6});
  archive("projection", enface.projection);
  archive("along_surface", enface.along_surface);
}

template <class Archive, class T>
void describe(Archive& archive, T& window) requires std::same_as<std::remove_const_t<T>, SliceWindow> {
  archive("zoom", window.zoom, Bounds{1e-3, 1e6});
  archive("centre", window.centre, Bounds{-10, 10});
}

template <class Archive, class T>
void describe(Archive& archive, T& measurement) requires std::same_as<std::remove_const_t<T>, Measurement> {
  archive("kind", measurement.kind);
  archive("name", measurement.name);
  archive("points", measurement.points, Bounds{-1e9, 1e9});
}

template <class Archive, class T>
void describe(Archive& archive, T& state) requires std::same_as<std::remove_const_t<T>, ViewState> {
  archive("volume_view", state.volume);
  archive("volume", state.base);
  archive("overlay", state.overlay);
  archive("surface", state.surface);
  archive("secondary", state.secondary);
  archive("cursor", state.cursor, Bounds{-1e9, 1e9});
  archive("enface", state.enface);
  archive("below_surface", state.below_surface, Bounds{-1e9, 1e9});
  archive("below_surface", state.below_surface, Bounds{-1e6, 1e6});
  archive("windows", state.windows);
  archive("large", state.large);
  archive("crosshair", state.crosshair);
  archive("measurements", state.measurements);
}

// Below the folder as from there, else with the whole path.
std::string kept_path(const std::filesystem::path& path, const std::filesystem::path& folder) {
  if (path.empty()) return {};
  if (path == "-") throw FieldError("the standard input cannot be opened again from a session");
  const std::filesystem::path whole = std::filesystem::absolute(path).lexically_normal();
  const std::filesystem::path relative = whole.lexically_relative(folder);
  const bool below = !relative.empty() && *relative.begin() != "..";
  const std::u8string text = (below ? relative : whole).generic_u8string();
  return {text.begin(), text.end()};
}

template <class Value>
Json Writer::json_of(const Value& value) {
  if constexpr (std::is_same_v<Value, std::filesystem::path>) {
    return kept_path(value, folder_);
  } else if constexpr (std::is_same_v<Value, SampleType>) {
    return std::string(name_of(value));
  } else if constexpr (std::is_enum_v<Value>) {
    return Names<Value>::texts[static_cast<std::size_t>(value)];
  } else if constexpr (std::is_arithmetic_v<Value> || std::is_same_v<Value, std::string>) {
    return value;
  } else {
    Writer inner(folder_);
    describe(inner, value);
    return inner.take();
  }
}

void read_text(const Json& json, const std::string& where, std::string& text) {
  if (!json.is_string()) throw FieldError(where + " must be a text");
  text = json.get<std::string>();
}

template <class Value>
void read_name(const Json& json, const std::string& where, Value& value) {
  std::string known;
  for (std::size_t i = 0; i < Names<Value>::texts.size(); ++i) {
    if (json == Names<Value>::texts[i]) {
      value = static_cast<Value>(i);
      return;
    }
    known += (i ? ", " : "") + std::string(Names<Value>::texts[i]);
  }
  throw FieldError(where + " must be one of " + known);
}

template <Number Value>
void read_number(const Json& json, const std::string& where, Value& value, const Bounds& bounds) {
  const double number = json.is_number() ? json.get<double>() : std::numeric_limits<double>::quiet_NaN();
  const bool whole = std::floating_point<Value> || number == std::floor(number);
  const double lowest = std::is_unsigned_v<Value> ? std::max(bounds.lowest, 0.0) : bounds.lowest;
  if (!(number >= lowest && number <= bounds.highest) || !whole) {
    throw FieldError(where + " must be a " + (std::integral<Value> ? "whole " : "") + "number from " +
                     number_text(lowest) + " to " + number_text(bounds.highest));
  }
  value = static_cast<Value>(number);
}

template <class Value>
void Reader::read(const Json& json, const std::string& where, Value& value, const Bounds& bounds) {
  if constexpr (std::is_same_v<Value, std::filesystem::path>) {
    std::string text;
    read_text(json, where, text);
    value = text.empty() ? std::filesystem::path() : (folder_ / from_utf8(text)).lexically_normal();
  } else if constexpr (std::is_same_v<Value, std::string>) {
    read_text(json, where, value);
  } else if constexpr (std::is_same_v<Value, SampleType>) {
    std::string text;
    read_text(json, where, text);
    const std::optional<SampleType> type = find_sample_type(text);
    if (!type) throw FieldError(where + " must be one of " + sample_type_names());
    value = *type;
  } else if constexpr (std::is_enum_v<Value>) {
    read_name(json, where, value);
  } else if constexpr (std::is_same_v<Value, bool>) {
    if (!json.is_boolean()) throw FieldError(where + " must be true or false");
    value = json.get<bool>();
  } else if constexpr (Number<Value>) {
    read_number(json, where, value, bounds);
  } else {
    Reader inner(json, where, folder_);
    describe(inner, value);
    check(value, where);
  }
}

std::filesystem::path folder_of(const std::filesystem::path& path) {
  return std::filesystem::absolute(path).lexically_normal().parent_path();
}

Session session_of(const Json& json, const std::filesystem::path& folder) {
  if (!json.is_object() || !json.contains(version_field)) throw FieldError("this is no session of octview");
  const Json& written = json[version_field];
  if (!written.is_number_integer() || written < 1)
    throw FieldError(std::string(version_field) + " must be a version");
  if (written > version)
    throw FieldError("the session has version " + written.dump() + "; this octview reads version " +
                     std::to_string(version));
  Session session;
  Reader archive(json, "", folder);
  archive("files", session.files);
  archive("state", session.state);
  if (session.files.base.path.empty()) throw FieldError("files.volume.path is missing");
  return session;
}

}  // namespace

void write_session(const std::filesystem::path& path, const Session& session) {
  try {
    if (session.files.base.path.empty())
      throw FieldError("what is shown is in no file that a session could name");
    Writer archive(folder_of(path));
    archive(version_field, version);
    archive("files", session.files);
    archive("state", session.state);
    OutputFile file(path);
    file.write(archive.take().dump(1) + "\n");
    file.commit();
  } catch (const FieldError& error) {
    throw WriteError(path, error.what());
  } catch (const Json::exception&) {
    throw WriteError(path, "a name in the session is no text in UTF-8");
  }
}

bool is_session(const std::filesystem::path& path) {
  if (path == "-" || !std::filesystem::is_regular_file(path)) return false;
  InputFile file(path);
  return file.start(4096).find(std::string("\"") + version_field + "\"") != std::string::npos;
}

Session read_session(const std::filesystem::path& path) {
  try {
    InputFile file(path);
    if (file.size() > largest_file) throw FieldError("this is no session of octview");
    return session_of(Json::parse(file.whole()), folder_of(path));
  } catch (const FieldError& error) {
    throw ReadError(path, error.what());
  } catch (const Json::exception&) {
    throw ReadError(path, "this is no session of octview, or was cut off");
  }
}

}  // namespace oct::app
