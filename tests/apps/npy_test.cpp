#include <utility>

#include "apps/test_files.h"
#include "data/formats/npy_reader.h"
#include "data/formats/npy_writer.h"
#include "data/volume_reader.h"

namespace oct::app::test {
namespace {

using Npy = ReaderTest;

std::string array_bytes(const std::string& type, const std::string& shape, const std::string& data,
                        bool fortran_order = false) {
  return npy_bytes(npy_dictionary(type, fortran_order, shape), data);
}

// Larger than the blocks in which the transposition works, and no multiple of them.
constexpr int rows = 67, columns = 101;
const std::string array_shape = "67, 101";

template <class T>
std::vector<T> samples(bool column_major) {
  std::vector<T> values;
  for (int i = 0; i < rows * columns; ++i) {
    const int in_rows = column_major ? i % rows * columns + i / rows : i;
    values.push_back(static_cast<T>(in_rows % 251));
  }
  return values;
}

void expect_samples(const Image& image) {
  EXPECT_EQ(std::pair(image.depth, image.ascans), (std::pair<std::size_t, std::size_t>(rows, columns)));
  EXPECT_EQ(image.samples, samples<float>(true));  // depth fastest
}

TEST_F(Npy, ReadsEveryTypeInBothOrders) {
  const auto check = [&]<class T>(const std::string& type, T) {
    SCOPED_TRACE(type);
    for (const bool order : {false, true}) {
      expect_samples(load(array_bytes(type, array_shape, bytes_of(samples<T>(order)), order)).image);
    }
  };
  check("<f4", float{});
  check("<f8", double{});
  check("|u1", std::uint8_t{});
  check("<u2", std::uint16_t{});
  const std::vector<std::uint16_t> wide{0, 255, 256, 65535};
  EXPECT_EQ(load(array_bytes("<u2", "4, 1", bytes_of(wide))).image.samples,
            std::vector<float>(wide.begin(), wide.end()));
  EXPECT_EQ(load(array_bytes("|b1", "2, 2", {"\0\1\1\0", 4})).image.samples,
            (std::vector<float>{0, 1, 1, 0}));
}

// Sample 100 * frame + 10 * row + column of four frames of two rows and three columns; Fortran order with all
// frames at a time, some at a time with a rest, and one at a time.
TEST_F(Npy, ReadsFramesInBothOrders) {
  for (const bool fortran_order : {false, true}) {
    SCOPED_TRACE(fortran_order);
    std::vector<float> values(24);
    for (std::size_t i = 0; i < values.size(); ++i) {
      const std::size_t frame = i / 6, row = i / 3 % 2, column = i % 3;
      values[fortran_order ? frame + 4 * (row + 2 * column) : i] =
          static_cast<float>(100 * frame + 10 * row + column);
    }
    const std::string bytes = array_bytes("<f4", "4, 2, 3", bytes_of(values), fortran_order);
    const auto expect_frame = [](std::size_t frame, const std::vector<float>& read) {
      const auto base = static_cast<float>(100 * frame);
      EXPECT_EQ(read, (std::vector<float>{base, base + 10, base + 1, base + 11, base + 2, base + 12}));
    };
    for (std::size_t frame = 0; frame < 4; ++frame) expect_frame(frame, load(bytes, frame).image.samples);
    EXPECT_EQ(load(bytes).frame, 2U);  // the middle one
    expect_in("no frame 4; the file holds 4 frames (0 to 3)", error_of<ReadError>([&] { load(bytes, 4); }));
    for (const std::size_t samples_at_a_time : {24U, 18U, 1U}) {
      InputFile file(path_);
      std::size_t frames = 0;
      const auto take = [&](const Raster& raster) {
        EXPECT_EQ(raster.frame, frames);
        expect_frame(frames++, to_image(raster, false).samples);
      };
      read_npy_frames(file, take, no_progress, samples_at_a_time);
      EXPECT_EQ(frames, 4U);
    }
  }
}

TEST_F(Npy, ReadsOtherHeaderForms) {
  const std::string data = bytes_of(samples<std::uint8_t>(false));
  // Other order of entries, other quotes, no comma at the end.
  expect_samples(
      load(npy_bytes("{\"shape\":(67,101),\"fortran_order\":False,\"descr\":\"|u1\"}", data)).image);
  // Version 2 has a header length of four bytes.
  const std::string dictionary = npy_dictionary("|u1", false, array_shape);
  const std::string start = std::string("\x93NUMPY\x02\0", 8) + static_cast<char>(dictionary.size());
  expect_samples(load(start + std::string(3, '\0') + dictionary + data).image);
}

TEST_F(Npy, ReadsWhatItWrites) {
  VolumeData volume{2, 3, 2, std::vector<float>(12)};
  for (std::size_t i = 0; i < 12; ++i) volume.voxels[i] = static_cast<float>(i) - 0.5F;
  write_npy(path_, volume);
  const VolumeData read = load_volume(path_, false);
  EXPECT_EQ((std::vector{read.depth, read.ascans, read.bscans}), (std::vector<std::size_t>{2, 3, 2}));
  EXPECT_EQ(read.voxels, volume.voxels);
  EXPECT_EQ(read_file(path_).find('\n') % 64, 63U);  // samples are aligned
  write_npy(path_, VolumeData{2, 2, 1, {1, 3, 2, 4}});
  EXPECT_EQ(load_image(path_, {}, false).image.samples, (std::vector<float>{1, 3, 2, 4}));
  EXPECT_EQ(read_file(path_).substr(read_file(path_).size() - 16), bytes_of(std::vector<float>{1, 2, 3, 4}));
  expect_in("none/a.npy: cannot be written",
            error_of<WriteError>([&] { write_npy(folder_ / "none/a.npy", volume); }));
}

TEST_F(Npy, RefusesDamagedHeaders) {
  const auto headed = [](const std::string& dictionary) { return npy_bytes(dictionary, "abcd"); };
  const std::string good = headed(npy_dictionary("|u1", false, "2, 2"));
  ASSERT_NO_THROW(load(good));
  std::string unknown_version = good;
  unknown_version[6] = 9;
  const std::string too_long = std::string("\x93NUMPY\x02\0\xFF\xFF\xFF\xFF", 12) + good;
  expect_refused({{good.substr(0, 7), "truncated"},
                  {good.substr(0, 9), "truncated"},
                  {good.substr(0, 40), "header is truncated"},
                  {unknown_version, "version 9"},
                  {too_long, "length is wrong"},
                  {headed(""), "malformed"},
                  {headed("{'descr': '|u1', 'fortran_order': False, 'shape': (2, 2"), "malformed"},
                  {headed("{'descr': '|u1, 'fortran_order': False, 'shape': (2, 2), }"), "malformed"},
                  {headed("{'descr': '|u1', 'fortran_order': No, 'shape': (2, 2), }"), "True or False"},
                  {headed("{'descr': '|u1', 'fortran_order': False}"), "lacks"},
                  {headed("{'descr': '|u1', 'color': 'red'}"), "'color'"},
                  {headed(npy_dictionary("|u1", false, "2, 2") + "{}"), "unexpected text"},
                  {headed("{'descr': [('a', '<f4')], 'fortran_order': False, 'shape': (2, 2)}"), "records"}});
}

TEST_F(Npy, RefusesShapesTypesAndMissingSamples) {
  const auto shaped = [](const std::string& shape) { return array_bytes("|u1", shape, "abcd"); };
  const auto typed = [](const std::string& type) { return array_bytes(type, "2, 2", std::string(64, 'x')); };
  expect_refused({{shaped("4,"), "shape (4,)"},
                  {shaped(""), "shape ()"},
                  {shaped("1, 1, 2, 2"), "shape (1, 1, 2, 2)"},
                  {shaped("4, 0"), "empty"},
                  {shaped("0, 2, 2"), "empty"},
                  {shaped("-2, 2"), "negative dimension"},
                  {shaped("2.5, 2"), "malformed"},
                  {shaped("two, 2"), "dimension expected"},
                  {shaped("99999999999999999999, 2"), "beyond 64 bits"},
                  {shaped("4294967296, 4294967296"), "too large"},  // the product is 0 in 64 bits
                  {shaped("65536, 65536"), "too large"},
                  {shaped("9223372036854775808, 2, 2"), "truncated"},  // 2^65 bytes: 0 in 64 bits
                  {shaped("3, 2, 2"), "truncated"},
                  {array_bytes("|u1", "3, 2, 2", "abcd", true), "truncated"},
                  {array_bytes("<f4", "2, 2", std::string(15, 'x')), "truncated"},
                  {array_bytes("|u1", "2, 2", ""), "truncated"},
                  {typed(">f4"), "big-endian"},
                  {typed("<c8"), "complex"},
                  {typed("<i4"), "'<i4' are not supported"}});
}

}  // namespace
}  // namespace oct::app::test
