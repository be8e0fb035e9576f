#include "data/arrays/nifti_header.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "data/arrays/text_header.h"
#include "data/file_errors.h"

namespace oct::app {
namespace {

constexpr std::uint32_t header_sizes[] = {nifti_header_bytes, 540};  // of the formats 1 and 2

std::optional<SampleType> nifti_type(int code) {
  using enum SampleType;
  constexpr std::pair<int, SampleType> types[] = {{2, uint8},    {4, int16},    {8, int32},    {16, float32},
                                                  {64, float64}, {256, int8},   {512, uint16}, {768, uint32},
                                                  {1024, int64}, {1280, uint64}};
  for (const auto& [known, type] : types) {
    if (code == known) return type;
  }
  return std::nullopt;
}

class NiftiHeader {
 public:
  NiftiHeader(std::string_view start, const std::filesystem::path& path)
      : start_(start), path_(path), big_endian_(start[0] == 0) {}

  ArrayDescription read(Compression compression) {
    description_.origin = "the NIfTI header";
    description_.compression = compression;
    if (start_.size() < nifti_header_bytes) fail("the NIfTI header is truncated");
    const std::string_view magic = start_.substr(344, 4);
    const bool in_one_file = magic == std::string_view("n+1\0", 4);
    if (number<std::uint32_t>(0) != nifti_header_bytes ||
        (!in_one_file && magic != std::string_view("ni1\0", 4))) {
      fail("only NIfTI files of format 1 are supported");
    }
    read_sizes();
    const int code = number<std::int16_t>(70);
    const std::optional<SampleType> type = nifti_type(code);
    if (!type) fail("NIfTI samples of the type " + std::to_string(code) + " are not supported");
    description_.format = {*type, big_endian_};
    read_scale();
    read_spacing();
    const auto offset = number<float>(108);
    if (!(offset >= 0 && offset < 1e9F)) fail("the NIfTI header's vox_offset makes no sense");
    description_.skip = static_cast<std::uint64_t>(offset);
    if (in_one_file) {
      description_.skip = std::max<std::uint64_t>(description_.skip, nifti_header_bytes + 4);
    } else {
      find_image();
    }
    return description_;
  }

 private:
  [[noreturn]] void fail(const std::string& reason) const { throw ReadError(path_, reason); }

  template <class T>
  T number(std::size_t place) const {
    std::array<char, sizeof(T)> bytes;
    std::memcpy(bytes.data(), start_.data() + place, sizeof(T));
    if (big_endian_) std::reverse(bytes.begin(), bytes.end());
    return std::bit_cast<T>(bytes);
  }

  void read_sizes() {
    const int count = number<std::int16_t>(40);
    if (count < 1 || count > 7) fail("the NIfTI header tells of " + std::to_string(count) + " axes");
    std::string text;
    std::vector<std::size_t> all;
    for (int i = 0; i < count; ++i) {
      const int size = number<std::int16_t>(42 + 2 * static_cast<std::size_t>(i));
      text += (i ? " x " : "") + std::to_string(size);
      if (size < 1) fail("the NIfTI header gives the sizes " + text);
      all.push_back(static_cast<std::size_t>(size));
      if (count <= 3 || size != 1) axes_.push_back(static_cast<std::size_t>(i));
    }
    if (axes_.size() > 3) fail("the array has the sizes " + text + "; an image has two axes, a volume three");
    for (std::size_t i = 0; i < axes_.size(); ++i) description_.sizes[i] = all[axes_[i]];
  }

  void read_scale() {
    const auto slope = number<float>(112), intercept = number<float>(116);
    if (slope == 0 || !std::isfinite(slope) || !std::isfinite(intercept)) return;  // not given
    description_.slope = slope;
    description_.intercept = intercept;
  }

  void read_spacing() {
    constexpr std::array<double, 4> unit_mm{0, 1000, 1, 1e-3};
    const auto unit = static_cast<unsigned>(start_[123]) & 7U;
    std::array<double, 3> steps{};
    for (std::size_t i = 0; i < axes_.size(); ++i) {
      const auto step = number<float>(80 + 4 * axes_[i]);
      if (std::isfinite(step)) steps[i] = step;
    }
    std::optional<double> mm;
    if (unit > 0 && unit < unit_mm.size()) mm = unit_mm[unit];
    description_.spacing = file_spacing(steps, mm, "NIfTI header");
  }

  // The samples of name.hdr are in name.img.
  void find_image() {
    std::filesystem::path name = path_.filename();
    if (description_.compression != Compression::none) name = name.stem();
    description_.data_file = name.replace_extension(".img");
    std::error_code ignored;
    const std::filesystem::path plain = path_.parent_path() / description_.data_file;
    if (std::filesystem::exists(plain, ignored)) {
      description_.compression = Compression::none;
    } else if (description_.compression != Compression::none) {
      description_.data_file += ".gz";
    }
  }

  const std::string_view start_;
  const std::filesystem::path& path_;
  const bool big_endian_;
  std::vector<std::size_t> axes_;
  ArrayDescription description_;
};

}  // namespace

bool is_nifti_header(std::string_view start) {
  if (start.size() < 4) return false;
  return std::ranges::any_of(header_sizes, [&](std::uint32_t size) {
    const std::array<char, 4> little{static_cast<char>(size & 0xFF), static_cast<char>(size >> 8), 0, 0};
    const std::array<char, 4> big{0, 0, static_cast<char>(size >> 8), static_cast<char>(size & 0xFF)};
    return std::equal(little.begin(), little.end(), start.begin()) ||
           std::equal(big.begin(), big.end(), start.begin());
  });
}

ArrayDescription read_nifti_header(std::string_view start, const std::filesystem::path& path,
                                   Compression compression) {
  return NiftiHeader(start, path).read(compression);
}

}  // namespace oct::app
