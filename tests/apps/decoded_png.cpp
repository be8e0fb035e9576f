#include "apps/decoded_png.h"

#include <cstdlib>
#include <stdexcept>

#include <zlib.h>

#include "data/formats/input_file.h"

namespace oct::app::test {
namespace {

void require(bool condition, const std::string& rule) {
  if (!condition) throw std::runtime_error("broken PNG: " + rule);
}

std::uint32_t number_at(const std::string& bytes, std::size_t place, unsigned length = 4) {
  require(place + length <= bytes.size(), "a number is cut off");
  std::uint32_t number = 0;
  for (unsigned i = 0; i < length; ++i) number = number << 8 | static_cast<std::uint8_t>(bytes[place + i]);
  return number;
}

std::string inflated(const std::string& bytes, std::size_t length) {
  std::string result(length + 1, '\0');
  uLongf size = result.size();
  const int code = uncompress(reinterpret_cast<Bytef*>(result.data()), &size,
                              reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
  require(code == Z_OK && size == length, "the pixels are more or less than the size tells");
  result.resize(length);
  return result;
}

// Each row begins with the kind of its filter.
std::vector<std::uint8_t> unfiltered(const std::string& bytes, std::size_t row_length, std::size_t pixel) {
  std::vector<std::uint8_t> above(row_length), result;
  for (std::size_t start = 0; start < bytes.size(); start += row_length + 1) {
    std::vector<std::uint8_t> row;
    for (std::size_t i = 0; i < row_length; ++i) {
      const int a = i < pixel ? 0 : row[i - pixel], b = above[i], c = i < pixel ? 0 : above[i - pixel];
      const int pa = std::abs(b - c), pb = std::abs(a - c), pc = std::abs(a + b - 2 * c);
      const int nearest = pa <= pb && pa <= pc ? a : pb <= pc ? b : c;
      require(bytes[start] >= 0 && bytes[start] <= 4, "there is no such filter");
      const int expected[] = {0, a, b, (a + b) / 2, nearest};
      row.push_back(
          static_cast<std::uint8_t>(bytes[start + 1 + i] + expected[static_cast<int>(bytes[start])]));
    }
    result.insert(result.end(), row.begin(), row.end());
    above = row;
  }
  return result;
}

}  // namespace

DecodedPng decoded_png(const std::filesystem::path& path) {
  const std::string file = InputFile(path).whole();
  require(file.substr(0, 8) == "\x89PNG\r\n\x1A\n", "signature");
  DecodedPng png;
  std::vector<std::string> compressed;
  std::uint32_t frame_count = 1, sequence = 0;
  bool ended = false;
  for (std::size_t place = 8; place < file.size();) {
    require(!ended, "something follows the end");
    const std::uint32_t length = number_at(file, place);
    const std::string type = file.substr(place + 4, 4);
    const std::string data = file.substr(place + 8, length);
    const std::string checked = type + data;
    require(crc32(0, reinterpret_cast<const Bytef*>(checked.data()), static_cast<uInt>(checked.size())) ==
                number_at(file, place + 8 + length),
            "sum of " + type);
    place += 12 + length;
    if (type == "IHDR") {
      png.size = {number_at(data, 0), number_at(data, 4)};
      png.sample_bits = number_at(data, 8, 1);
      png.channels = std::map<int, unsigned>{{0, 1}, {2, 3}, {6, 4}}.at(data[9]);
      require(data.substr(10) == std::string(3, '\0'), "methods");
    } else if (type == "tEXt" || type == "iTXt") {
      const std::size_t key = data.find('\0');
      png.texts[data.substr(0, key) + (type == "iTXt" ? " (UTF-8)" : "")] =
          data.substr(key + (type == "iTXt" ? 5 : 1));
    } else if (type == "acTL") {
      frame_count = number_at(data, 0);
      png.repetitions = number_at(data, 4);
    } else if (type == "fcTL") {
      require(number_at(data, 0) == sequence++, "order");
      require(number_at(data, 4) == png.size.width && number_at(data, 8) == png.size.height &&
                  number_at(data, 12) == 0 && number_at(data, 16) == 0 && number_at(data, 24, 2) == 0,
              "frames are whole pictures");
      png.delays.push_back(double{1} * number_at(data, 20, 2) / number_at(data, 22, 2));
      compressed.emplace_back();
    } else if (type == "IDAT") {
      if (compressed.empty()) compressed.emplace_back();
      require(compressed.size() == 1, "the picture is the first frame");
      compressed[0] += data;
    } else if (type == "fdAT") {
      require(number_at(data, 0) == sequence++, "order");
      require(compressed.size() > 1, "the first frame is the picture");
      compressed.back() += data.substr(4);
    } else {
      require(type == "IEND" && data.empty(), "unknown chunk " + type);
      ended = true;
    }
  }
  require(ended, "no end");
  require(compressed.size() == frame_count, "number of frames");
  const std::size_t pixel = std::size_t{png.channels} * png.sample_bits / 8;
  const std::size_t row = pixel * png.size.width;
  for (const std::string& bytes : compressed) {
    png.frames.push_back(unfiltered(inflated(bytes, (row + 1) * png.size.height), row, pixel));
  }
  return png;
}

}  // namespace oct::app::test
