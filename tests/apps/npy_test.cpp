#include <utility>

#include "data/formats/npy_reader.h"
#include "data/formats/npy_writer.h"
#include "data/volume_reader.h"
#include "test_files.h"

namespace oct::app::test {
namespace {

using Npy = ReaderTest;

std::string arrayBytes(const std::string& type, const std::string& shape, const std::string& data,
                       bool fortranOrder = false) {
  return npyBytes(npyDictionary(type, fortranOrder, shape), data);
}

// Larger than the blocks in which the transposition works, and no multiple of them.
constexpr int kRows = 67, kColumns = 101;
const std::string kShape = "67, 101";

template <class T>
std::vector<T> samples(bool columnMajor) {
  std::vector<T> values;
  for (int i = 0; i < kRows * kColumns; ++i) {
    const int inRows = columnMajor ? i % kRows * kColumns + i / kRows : i;
    values.push_back(static_cast<T>(inRows % 251));
  }
  return values;
}

void expectSamples(const Image& image) {
  EXPECT_EQ(std::pair(image.depth, image.ascans), (std::pair<std::size_t, std::size_t>(kRows, kColumns)));
  EXPECT_EQ(image.samples, samples<float>(true));  // depth fastest
}

TEST_F(Npy, ReadsEveryTypeInBothOrders) {
  const auto check = [&]<class T>(const std::string& type, T) {
    SCOPED_TRACE(type);
    for (const bool order : {false, true}) {
      expectSamples(load(arrayBytes(type, kShape, bytesOf(samples<T>(order)), order)).image);
    }
  };
  check("<f4", float{});
  check("<f8", double{});
  check("|u1", std::uint8_t{});
  check("<u2", std::uint16_t{});
  const std::vector<std::uint16_t> wide{0, 255, 256, 65535};
  EXPECT_EQ(load(arrayBytes("<u2", "4, 1", bytesOf(wide))).image.samples,
            std::vector<float>(wide.begin(), wide.end()));
  EXPECT_EQ(load(arrayBytes("|b1", "2, 2", {"\0\1\1\0", 4})).image.samples, (std::vector<float>{0, 1, 1, 0}));
}

// Sample 100 * frame + 10 * row + column of four frames of two rows and three columns; Fortran order with all
// frames at a time, some at a time with a rest, and one at a time.
TEST_F(Npy, ReadsFramesInBothOrders) {
  for (const bool fortranOrder : {false, true}) {
    SCOPED_TRACE(fortranOrder);
    std::vector<float> values(24);
    for (std::size_t i = 0; i < values.size(); ++i) {
      const std::size_t frame = i / 6, row = i / 3 % 2, column = i % 3;
      values[fortranOrder ? frame + 4 * (row + 2 * column) : i] =
          static_cast<float>(100 * frame + 10 * row + column);
    }
    const std::string bytes = arrayBytes("<f4", "4, 2, 3", bytesOf(values), fortranOrder);
    const auto expectFrame = [](std::size_t frame, const std::vector<float>& read) {
      const auto base = static_cast<float>(100 * frame);
      EXPECT_EQ(read, (std::vector<float>{base, base + 10, base + 1, base + 11, base + 2, base + 12}));
    };
    for (std::size_t frame = 0; frame < 4; ++frame) expectFrame(frame, load(bytes, frame).image.samples);
    EXPECT_EQ(load(bytes).frame, 2u);  // the middle one
    expectIn("no frame 4; the file holds 4 frames (0 to 3)", errorOf<ReadError>([&] { load(bytes, 4); }));
    for (const std::size_t samplesAtATime : {24U, 18U, 1U}) {
      InputFile file(path_);
      std::size_t frames = 0;
      const auto take = [&](const Raster& raster) {
        EXPECT_EQ(raster.frame, frames);
        expectFrame(frames++, toImage(raster, false).samples);
      };
      readNpyFrames(file, take, noProgress, samplesAtATime);
      EXPECT_EQ(frames, 4U);
    }
  }
}

TEST_F(Npy, ReadsOtherHeaderForms) {
  const std::string data = bytesOf(samples<std::uint8_t>(false));
  // Other order of entries, other quotes, no comma at the end.
  expectSamples(load(npyBytes("{\"shape\":(67,101),\"fortran_order\":False,\"descr\":\"|u1\"}", data)).image);
  // Version 2 has a header length of four bytes.
  const std::string dictionary = npyDictionary("|u1", false, kShape);
  const std::string start = std::string("\x93NUMPY\x02\0", 8) + static_cast<char>(dictionary.size());
  expectSamples(load(start + std::string(3, '\0') + dictionary + data).image);
}

TEST_F(Npy, ReadsWhatItWrites) {
  VolumeData volume{2, 3, 2, std::vector<float>(12)};
  for (std::size_t i = 0; i < 12; ++i) volume.voxels[i] = static_cast<float>(i) - 0.5f;
  writeNpy(path_, volume);
  const VolumeData read = loadVolume(path_, false);
  EXPECT_EQ((std::vector{read.depth, read.ascans, read.bscans}), (std::vector<std::size_t>{2, 3, 2}));
  EXPECT_EQ(read.voxels, volume.voxels);
  EXPECT_EQ(readFile(path_).find('\n') % 64, 63U);  // samples are aligned
  writeNpy(path_, VolumeData{2, 2, 1, {1, 3, 2, 4}});
  EXPECT_EQ(loadImage(path_, {}, false).image.samples, (std::vector<float>{1, 3, 2, 4}));
  EXPECT_EQ(readFile(path_).substr(readFile(path_).size() - 16), bytesOf(std::vector<float>{1, 2, 3, 4}));
  expectIn("none/a.npy: cannot be written",
           errorOf<WriteError>([&] { writeNpy(folder_ / "none/a.npy", volume); }));
}

TEST_F(Npy, RefusesDamagedHeaders) {
  const auto headed = [](const std::string& dictionary) { return npyBytes(dictionary, "abcd"); };
  const std::string good = headed(npyDictionary("|u1", false, "2, 2"));
  ASSERT_NO_THROW(load(good));
  std::string unknownVersion = good;
  unknownVersion[6] = 9;
  const std::string tooLong = std::string("\x93NUMPY\x02\0\xFF\xFF\xFF\xFF", 12) + good;
  expectRefused({{good.substr(0, 7), "truncated"},
                 {good.substr(0, 9), "truncated"},
                 {good.substr(0, 40), "header is truncated"},
                 {unknownVersion, "version 9"},
                 {tooLong, "length is wrong"},
                 {headed(""), "malformed"},
                 {headed("{'descr': '|u1', 'fortran_order': False, 'shape': (2, 2"), "malformed"},
                 {headed("{'descr': '|u1, 'fortran_order': False, 'shape': (2, 2), }"), "malformed"},
                 {headed("{'descr': '|u1', 'fortran_order': No, 'shape': (2, 2), }"), "True or False"},
                 {headed("{'descr': '|u1', 'fortran_order': False}"), "lacks"},
                 {headed("{'descr': '|u1', 'color': 'red'}"), "'color'"},
                 {headed(npyDictionary("|u1", false, "2, 2") + "{}"), "unexpected text"},
                 {headed("{'descr': [('a', '<f4')], 'fortran_order': False, 'shape': (2, 2)}"), "records"}});
}

TEST_F(Npy, RefusesShapesTypesAndMissingSamples) {
  const auto shaped = [](const std::string& shape) { return arrayBytes("|u1", shape, "abcd"); };
  const auto typed = [](const std::string& type) { return arrayBytes(type, "2, 2", std::string(64, 'x')); };
  expectRefused({{shaped("4,"), "shape (4,)"},
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
                 {arrayBytes("|u1", "3, 2, 2", "abcd", true), "truncated"},
                 {arrayBytes("<f4", "2, 2", std::string(15, 'x')), "truncated"},
                 {arrayBytes("|u1", "2, 2", ""), "truncated"},
                 {typed(">f4"), "big-endian"},
                 {typed("<c8"), "complex"},
                 {typed("<i4"), "'<i4' are not supported"}});
}

}  // namespace
}  // namespace oct::app::test
