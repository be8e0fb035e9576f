// One volume in every format that is read, written here without the code that reads.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "data/data_file.h"

namespace oct::app::test {

// Samples that tell their place and fit into every type, in the order of a picture: B-scan, depth, A-scan.
struct Sampled {
  std::size_t bscans, depth, ascans;

  static float at(std::size_t bscan, std::size_t depth, std::size_t ascan) {
    return static_cast<float>((37 * bscan + 5 * depth + ascan) % 127);
  }
  // Slowest axis first, "bda" that of a picture.
  std::vector<float> samples(const std::string& axes = "bda") const;
};

// The samples in a type such as "u2".
std::string encoded(const std::vector<float>& samples, const std::string& type, bool big_endian = false);

std::string npy(const std::string& descr, bool fortran_order, const std::string& shape,
                const std::string& data);

struct TiffForm {
  std::string description{};
  unsigned column_units = 1;  // between columns and between rows
  unsigned row_units = 1;
  bool big_endian = false;
  bool one_directory = false;  // the first page alone has tags
  bool wide = false;           // offsets of 64 bits
  unsigned compression = 1;    // none; 5 LZW, 8 deflate, 32773 PackBits
  bool white_is_zero = false;
};
// Pages of bytes.
std::string tiff(const Sampled& volume, const TiffForm& form);

std::string png(const Sampled& volume, std::size_t bscan);

std::string gzipped(const std::string& bytes);

struct WrittenFile {
  std::string name;
  std::map<std::string, std::string> files;  // the first is opened, unless `open` tells what is
  std::string open{};
  std::optional<RawLayout> raw;
  std::array<double, 3> mm;  // depth, A-scans, B-scans
  std::string source;
};

std::vector<WrittenFile> every_format(const Sampled& volume);

}  // namespace oct::app::test
