#include <gtest/gtest.h>

#include "data/image_reader.h"
#include "data/formats/npy_reader.h"
#include "test_files.h"

namespace oct::app::test {
namespace {

class NpyReader : public testing::Test {
 protected:
  LoadedImage load(const std::string& bytes, std::optional<std::size_t> frame = std::nullopt) {
    writeFile(path_, bytes);
    return loadImage(path_, {frame}, false);
  }

  void expectRefused(const std::string& bytes, const std::string& words) {
    SCOPED_TRACE(words);
    expectFailure(ExitCode::InputFailed, "array.npy: ", [&] { load(bytes); });
    expectFailure(ExitCode::InputFailed, words, [&] { load(bytes); });
  }

  TemporaryFolder folder_;
  std::filesystem::path path_ = folder_ / "array.npy";
};

// Three rows (depth) of five columns (A-scans): sample 10 * row + column.
template <class T>
std::vector<T> samples(bool columnMajor) {
  std::vector<T> values;
  for (int i = 0; i < 15; ++i) {
    values.push_back(static_cast<T>(columnMajor ? 10 * (i % 3) + i / 3 : 10 * (i / 5) + i % 5));
  }
  return values;
}

void expectThreeByFive(const Image& image) {
  EXPECT_EQ(image.depth, 3u);
  EXPECT_EQ(image.ascans, 5u);
  EXPECT_EQ(image.samples, samples<float>(true));  // depth fastest
}

TEST_F(NpyReader, ReadsEveryTypeInBothOrders) {
  const auto check = [&]<class T>(const std::string& type, T) {
    SCOPED_TRACE(type);
    for (const bool order : {false, true}) {
      expectThreeByFive(load(npyBytes(npyDictionary(type, order, "3, 5"), bytesOf(samples<T>(order)))).image);
    }
  };
  check("<f4", float{});
  check("<f8", double{});
  check("|u1", std::uint8_t{});
  check("<u2", std::uint16_t{});
}

TEST_F(NpyReader, KeepsWideValuesAndMasks) {
  const std::vector<std::uint16_t> values{0, 255, 256, 65535};
  EXPECT_EQ(load(npyBytes(npyDictionary("<u2", false, "4, 1"), bytesOf(values))).image.samples,
            (std::vector<float>{0, 255, 256, 65535}));
  const std::vector<double> doubles{-1e30, 0.5};
  EXPECT_EQ(load(npyBytes(npyDictionary("<f8", false, "1, 2"), bytesOf(doubles))).image.samples,
            (std::vector<float>{-1e30f, 0.5f}));
  EXPECT_EQ(load(npyBytes(npyDictionary("|b1", false, "2, 2"), std::string("\0\1\1\0", 4))).image.samples,
            (std::vector<float>{0, 1, 1, 0}));
}

// Larger than the blocks in which the transposition works, and no multiple of them.
TEST_F(NpyReader, TransposesLargeOddSizes) {
  constexpr std::size_t kRows = 67, kColumns = 101;
  std::vector<std::uint16_t> values(kRows * kColumns);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<std::uint16_t>(i);
  const Image image = load(npyBytes(npyDictionary("<u2", false, "67, 101"), bytesOf(values))).image;
  for (std::size_t x = 0; x < kColumns; ++x) {
    for (std::size_t z = 0; z < kRows; ++z) {
      ASSERT_EQ(image.samples[x * kRows + z], static_cast<float>(z * kColumns + x));
    }
  }
}

// Sample 100 * frame + 10 * row + column of four frames of two rows and three columns.
std::string volumeBytes(bool fortranOrder) {
  std::vector<float> values(24);
  for (std::size_t frame = 0; frame < 4; ++frame) {
    for (std::size_t row = 0; row < 2; ++row) {
      for (std::size_t column = 0; column < 3; ++column) {
        const std::size_t index =
            fortranOrder ? frame + 4 * (row + 2 * column) : (frame * 2 + row) * 3 + column;
        values[index] = static_cast<float>(100 * frame + 10 * row + column);
      }
    }
  }
  return npyBytes(npyDictionary("<f4", fortranOrder, "4, 2, 3"), bytesOf(values));
}

TEST_F(NpyReader, PicksAFrameInBothOrders) {
  for (const bool fortranOrder : {false, true}) {
    SCOPED_TRACE(fortranOrder);
    for (std::size_t frame = 0; frame < 4; ++frame) {
      const LoadedImage loaded = load(volumeBytes(fortranOrder), frame);
      const auto base = static_cast<float>(100 * frame);
      EXPECT_EQ(loaded.frame, frame);
      EXPECT_EQ(loaded.frameCount, 4u);
      EXPECT_EQ(loaded.image.samples,
                (std::vector<float>{base, base + 10, base + 1, base + 11, base + 2, base + 12}));
    }
    EXPECT_EQ(load(volumeBytes(fortranOrder)).frame, 2u);  // the middle one
  }
}

// Fortran order: all at a time, some at a time with a rest, and one at a time.
TEST_F(NpyReader, ReadsEveryFrameInBothOrders) {
  for (const bool fortranOrder : {false, true}) {
    writeFile(path_, volumeBytes(fortranOrder));
    for (const std::size_t samplesAtATime : {24U, 18U, 1U}) {
      InputFile file(path_);
      std::size_t frames = 0;
      const auto take = [&](const Raster& raster) {
        const auto base = static_cast<float>(100 * frames);
        EXPECT_EQ(raster.frame, frames++);
        EXPECT_EQ(raster.frameCount, 4U);
        EXPECT_EQ(raster.samples,
                  (std::vector<float>{base, base + 1, base + 2, base + 10, base + 11, base + 12}));
      };
      readNpyFrames(file, take, samplesAtATime);
      EXPECT_EQ(frames, 4U);
    }
  }
}

TEST_F(NpyReader, RefusesFramesThatAreNotThere) {
  expectFailure(ExitCode::InputFailed, "no frame 4; the file holds 4 frames (0 to 3)",
                [&] { load(volumeBytes(false), 4); });
  expectFailure(ExitCode::InputFailed, "one frame",
                [&] { load(npyBytes(npyDictionary("|u1", false, "1, 1"), "x"), 1); });
}

TEST_F(NpyReader, ReadsOtherHeaderForms) {
  const std::string data = bytesOf(samples<std::uint8_t>(false));
  // Other order of entries, other quotes, no comma at the end.
  expectThreeByFive(
      load(npyBytes("{\"shape\":(3,5),\"fortran_order\":False,\"descr\":\"|u1\"}", data)).image);
  // Version 2 has a header length of four bytes.
  const std::string dictionary = npyDictionary("|u1", false, "3, 5");
  const std::string start = std::string("\x93NUMPY\x02\0", 8) + static_cast<char>(dictionary.size());
  expectThreeByFive(load(start + std::string(3, '\0') + dictionary + data).image);
}

TEST_F(NpyReader, RefusesDamagedHeaders) {
  const std::string good = npyBytes(npyDictionary("|u1", false, "2, 2"), "abcd");
  ASSERT_NO_THROW(load(good));
  expectRefused("", "empty");
  expectRefused(good.substr(0, 5), "not a .npy, PNG or TIFF file");
  expectRefused(good.substr(0, 7), "truncated");
  expectRefused(good.substr(0, 9), "truncated");
  expectRefused(good.substr(0, 40), "header is truncated");
  expectRefused("NUMPY " + good, "not a .npy, PNG or TIFF file");
  std::string unknownVersion = good;
  unknownVersion[6] = 9;
  expectRefused(unknownVersion, "version 9");
  expectRefused(std::string("\x93NUMPY\x02\0\xFF\xFF\xFF\xFF", 12) + good, "length is wrong");
  expectRefused(npyBytes("", "abcd"), "malformed");
  expectRefused(npyBytes("{'descr': '|u1', 'fortran_order': False, 'shape': (2, 2", "abcd"), "malformed");
  expectRefused(npyBytes("{'descr': '|u1, 'fortran_order': False, 'shape': (2, 2), }", "abcd"), "malformed");
  expectRefused(npyBytes("{'descr': '|u1', 'fortran_order': No, 'shape': (2, 2), }", "abcd"),
                "True or False");
  expectRefused(npyBytes("{'descr': '|u1', 'fortran_order': False}", "abcd"), "lacks");
  expectRefused(npyBytes("{'descr': '|u1', 'color': 'red'}", "abcd"), "'color'");
  expectRefused(npyBytes(npyDictionary("|u1", false, "2, 2") + "{}", "abcd"), "unexpected text");
}

TEST_F(NpyReader, RefusesShapesThatAreNoImage) {
  const auto shaped = [](const std::string& shape) {
    return npyBytes(npyDictionary("|u1", false, shape), "abcd");
  };
  expectRefused(shaped("4,"), "shape (4,)");
  expectRefused(shaped(""), "shape ()");
  expectRefused(shaped("1, 1, 2, 2"), "shape (1, 1, 2, 2)");
  expectRefused(shaped("0, 4"), "empty");
  expectRefused(shaped("4, 0"), "empty");
  expectRefused(shaped("0, 2, 2"), "empty");
  expectRefused(shaped("-2, 2"), "negative dimension");
  expectRefused(shaped("2.5, 2"), "malformed");
  expectRefused(shaped("two, 2"), "dimension expected");
  expectRefused(shaped("99999999999999999999, 2"), "beyond 64 bits");
  expectRefused(shaped("4294967296, 4294967296"), "too large");  // the product is 0 in 64 bits
  expectRefused(shaped("65536, 65536"), "too large");
  expectRefused(shaped("9223372036854775808, 2, 2"), "truncated");  // 2^65 bytes: 0 in 64 bits
}

TEST_F(NpyReader, RefusesTypesThatItCannotRead) {
  const auto typed = [](const std::string& type) {
    return npyBytes(npyDictionary(type, false, "2, 2"), std::string(64, 'x'));
  };
  expectRefused(typed(">f4"), "big-endian");
  expectRefused(typed("<c8"), "complex");
  expectRefused(typed("<i4"), "'<i4' are not supported");
  expectRefused(typed("|O"), "'|O' are not supported");
  expectRefused(npyBytes("{'descr': [('a', '<f4')], 'fortran_order': False, 'shape': (2, 2)}", "abcd"),
                "records");
}

TEST_F(NpyReader, RefusesMissingSamples) {
  for (const bool fortranOrder : {false, true}) {
    expectRefused(npyBytes(npyDictionary("<f4", fortranOrder, "2, 2"), std::string(15, 'x')), "truncated");
    expectRefused(npyBytes(npyDictionary("|u1", fortranOrder, "3, 2, 2"), std::string(11, 'x')), "truncated");
    expectRefused(npyBytes(npyDictionary("|u1", fortranOrder, "2, 2"), ""), "truncated");
  }
}

}  // namespace
}  // namespace oct::app::test
