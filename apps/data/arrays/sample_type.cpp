#include "data/arrays/sample_type.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace oct::app {
namespace {

// What is not swapped is copied as it is.
static_assert(std::endian::native == std::endian::little);

struct Half {
  std::uint16_t bits;

  explicit operator float() const {
    const int exponent = bits >> 10 & 31;
    const auto fraction = static_cast<float>(bits & 1023);
    float value = 0;
    if (exponent == 31) {
      value =
          fraction == 0 ? std::numeric_limits<float>::infinity() : std::numeric_limits<float>::quiet_NaN();
    } else if (exponent == 0) {
      value = std::ldexp(fraction, -24);
    } else {
      value = std::ldexp(fraction + 1024, exponent - 25);
    }
    return bits & 0x8000 ? -value : value;
  }
};

template <class T, bool swapped>
void convert(const char* source, std::size_t count, float* destination) {
  for (std::size_t i = 0; i < count; ++i) {
    std::array<char, sizeof(T)> bytes;
    std::memcpy(bytes.data(), source + i * sizeof(T), sizeof(T));
    if constexpr (swapped) std::reverse(bytes.begin(), bytes.end());
    destination[i] = static_cast<float>(std::bit_cast<T>(bytes));
  }
}

struct TypeEntry {
  std::string_view name;
  std::size_t bytes;
  void (*convert)(const char* source, std::size_t count, float* destination);
  void (*convert_swapped)(const char* source, std::size_t count, float* destination);
};

template <class T>
constexpr TypeEntry entry_of(std::string_view name) {
  return {name, sizeof(T), convert<T, false>, convert<T, true>};
}

// In the order of the enumeration.
constexpr TypeEntry types[] = {
    entry_of<std::int8_t>("i1"),   entry_of<std::uint8_t>("u1"),  entry_of<std::int16_t>("i2"),
    entry_of<std::uint16_t>("u2"), entry_of<std::int32_t>("i4"),  entry_of<std::uint32_t>("u4"),
    entry_of<std::int64_t>("i8"),  entry_of<std::uint64_t>("u8"), entry_of<Half>("f2"),
    entry_of<float>("f4"),         entry_of<double>("f8")};

const TypeEntry& entry(SampleType type) {
  return types[static_cast<std::size_t>(type)];
}

}  // namespace

std::size_t bytes_of(SampleType type) {
  return entry(type).bytes;
}

std::optional<SampleType> find_sample_type(std::string_view name) {
  const auto* const found = std::ranges::find(types, name, &TypeEntry::name);
  if (found == std::end(types)) return std::nullopt;
  return static_cast<SampleType>(found - types);
}

std::string_view name_of(SampleType type) {
  return entry(type).name;
}

std::string sample_type_names() {
  std::string names;
  for (const TypeEntry& type : types) names += (names.empty() ? "" : ", ") + std::string(type.name);
  return names;
}

void convert_samples(const SampleFormat& format, const char* source, std::size_t count, float* destination) {
  const TypeEntry& type = entry(format.type);
  (format.big_endian ? type.convert_swapped : type.convert)(source, count, destination);
}

}  // namespace oct::app
