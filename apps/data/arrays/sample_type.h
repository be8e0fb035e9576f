// How samples are written in files.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace oct::app {

enum class SampleType { int8, uint8, int16, uint16, int32, uint32, int64, uint64, float16, float32, float64 };

struct SampleFormat {
  SampleType type = SampleType::float32;
  bool big_endian = false;

  bool operator==(const SampleFormat&) const = default;
};

std::size_t bytes_of(SampleType type);

// "f4" for floats of four bytes, "i" for signed and "u" for unsigned integers.
std::optional<SampleType> find_sample_type(std::string_view name);
std::string_view name_of(SampleType type);
std::string sample_type_names();  // "f4, u1, ..." for messages and help

// Converts count samples that lie one after another, in any alignment.
void convert_samples(const SampleFormat& format, const char* source, std::size_t count, float* destination);

}  // namespace oct::app
