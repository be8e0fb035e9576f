#include <tiffio.h>

#include "apps/test_files.h"

namespace oct::app::test {
namespace {

using Tags = std::map<int, int>;

class TiffReader : public ReaderTest {
 protected:
  // Two rows of three gray samples, where the tags say nothing else.
  template <class T>
  void write(Tags tags, std::vector<T> samples, const char* mode = "w") {
    Tags usual{{TIFFTAG_IMAGEWIDTH, 3},
               {TIFFTAG_IMAGELENGTH, 2},
               {TIFFTAG_BITSPERSAMPLE, 8 * sizeof(T)},
               {TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK},
               {TIFFTAG_ROWSPERSTRIP, 1}};
    tags.merge(usual);
    TIFF* tiff = TIFFOpen(path_.c_str(), mode);
    ASSERT_NE(tiff, nullptr);
    for (const auto& [tag, value] : tags) TIFFSetField(tiff, static_cast<std::uint32_t>(tag), value);
    const auto rows = static_cast<std::uint32_t>(tags[TIFFTAG_IMAGELENGTH]);
    for (std::uint32_t row = 0; row < rows; ++row)
      ASSERT_EQ(TIFFWriteScanline(tiff, &samples[row * samples.size() / rows], row), 1);
    ASSERT_EQ(TIFFWriteDirectory(tiff), 1);
    TIFFClose(tiff);
  }

  LoadedImage load(std::optional<std::size_t> frame = std::nullopt) {
    return load_image(path_, {frame}, false);
  }
};

TEST_F(TiffReader, ReadsEveryTypeAndForm) {
  const auto expect_read = [&]<class T>(const Tags& tags, const char* mode, const std::vector<T>& samples,
                                        const std::vector<float>& wanted) {
    write(tags, samples, mode);
    EXPECT_EQ(load().image.samples, wanted);
    EXPECT_EQ(load().image.depth, 2U);
  };
  const std::vector<std::uint8_t> bytes{0, 1, 2, 3, 4, 255};
  expect_read({}, "w", bytes, {0, 3, 1, 4, 2, 255});
  expect_read({}, "w8", bytes, {0, 3, 1, 4, 2, 255});  // offsets of 64 bits
  expect_read({{TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE}}, "w", bytes, {255, 252, 254, 251, 253, 0});
  const std::vector<std::uint16_t> words{0, 1, 2, 300, 40000, 65535};
  expect_read({}, "w", words, {0, 300, 1, 40000, 2, 65535});
  expect_read({{TIFFTAG_COMPRESSION, COMPRESSION_LZW}}, "wb", words, {0, 300, 1, 40000, 2, 65535});
  const std::vector<float> numbers{-1.5F, 0, 1, 2, 3, 1e20F};
  expect_read({{TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP}}, "w", numbers, {-1.5F, 2, 0, 3, 1, 1e20F});
}

TEST_F(TiffReader, PicksAPage) {
  for (std::uint8_t page = 0; page < 3; ++page) {
    write<std::uint8_t>({{TIFFTAG_IMAGEWIDTH, 1}, {TIFFTAG_IMAGELENGTH, 1}},
                        {static_cast<std::uint8_t>(page * 10)}, page ? "a" : "w");
  }
  EXPECT_EQ(load(2).image.samples, std::vector<float>{20});
  const LoadedImage middle = load();
  EXPECT_EQ(middle.image.samples, std::vector<float>{10});
  EXPECT_EQ(middle.frame_count, 3U);
  expect_in("no frame 3", error_of<ReadError>([&] { load(3); }));
  std::vector<float> all;
  load_images(path_, false, [&](const LoadedImage& loaded) {
    EXPECT_EQ(loaded.frame, all.size());
    EXPECT_EQ(loaded.frame_count, 3U);
    all.push_back(loaded.image.samples.front());
  });
  EXPECT_EQ(all, (std::vector<float>{0, 10, 20}));
}

TEST_F(TiffReader, RefusesOtherKinds) {
  write<std::int16_t>({{TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_INT}}, {0, 1, 2, 3, 4, -5});
  expect_in("16 bits", error_of<ReadError>([&] { load(); }));
  write<std::uint8_t>({{TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB}, {TIFFTAG_SAMPLESPERPIXEL, 3}},
                      std::vector<std::uint8_t>(18, 1));
  expect_in("only gray", error_of<ReadError>([&] { load(); }));
}

// Cut anywhere, the file must be refused and neither crash the program nor pass as an image.
TEST_F(TiffReader, RefusesTruncatedFiles) {
  write<std::uint8_t>({}, {0, 1, 2, 3, 4, 255});
  const std::string good = InputFile(path_).whole();
  for (std::size_t length = 4; length < good.size() - 4; ++length)
    expect_refused({{good.substr(0, length), ""}});
}

}  // namespace
}  // namespace oct::app::test
