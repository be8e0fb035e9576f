#include <tiffio.h>

#include "apps/test_files.h"

namespace oct::app::test {
namespace {

struct Page {
  std::uint32_t width = 3;
  std::uint32_t height = 2;
  int bits = 8;
  int format = SAMPLEFORMAT_UINT;
  int photometric = PHOTOMETRIC_MINISBLACK;
  int compression = COMPRESSION_NONE;
  int samples_per_pixel = 1;
};

class TiffReader : public ReaderTest {
 protected:
  template <class T>
  void write(const Page& page, const std::vector<T>& samples, const char* mode = "w") {
    TIFF* tiff = TIFFOpen(path_.c_str(), mode);
    ASSERT_NE(tiff, nullptr);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, page.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, page.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, page.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, page.samples_per_pixel);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, page.format);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, page.photometric);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, page.compression);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 1);
    std::vector<T> copy = samples;
    const std::size_t row_samples = samples.size() / page.height;
    for (std::uint32_t row = 0; row < page.height; ++row) {
      ASSERT_EQ(TIFFWriteScanline(tiff, &copy[row * row_samples], row), 1);
    }
    ASSERT_EQ(TIFFWriteDirectory(tiff), 1);
    TIFFClose(tiff);
  }

  LoadedImage load(std::optional<std::size_t> frame = std::nullopt) {
    return load_image(path_, {frame}, false);
  }
};

TEST_F(TiffReader, ReadsEveryTypeAndForm) {
  const auto expect_read = [&]<class T>(const Page& page, const char* mode, const std::vector<T>& samples,
                                        const std::vector<float>& wanted) {
    write(page, samples, mode);
    EXPECT_EQ(load().image.samples, wanted);
    EXPECT_EQ(load().image.depth, 2U);
  };
  const std::vector<std::uint8_t> bytes{0, 1, 2, 3, 4, 255};
  expect_read({}, "w", bytes, {0, 3, 1, 4, 2, 255});
  expect_read({}, "w8", bytes, {0, 3, 1, 4, 2, 255});  // offsets of 64 bits
  expect_read({.photometric = PHOTOMETRIC_MINISWHITE}, "w", bytes, {255, 252, 254, 251, 253, 0});
  const std::vector<std::uint16_t> words{0, 1, 2, 300, 40000, 65535};
  expect_read({.bits = 16}, "w", words, {0, 300, 1, 40000, 2, 65535});
  expect_read({.bits = 16, .compression = COMPRESSION_LZW}, "wb", words, {0, 300, 1, 40000, 2, 65535});
  const std::vector<float> numbers{-1.5F, 0, 1, 2, 3, 1e20F};
  expect_read({.bits = 32, .format = SAMPLEFORMAT_IEEEFP}, "w", numbers, {-1.5F, 2, 0, 3, 1, 1e20F});
}

TEST_F(TiffReader, PicksAPage) {
  for (std::uint8_t page = 0; page < 3; ++page) {
    write<std::uint8_t>({.width = 1, .height = 1}, {static_cast<std::uint8_t>(page * 10)}, page ? "a" : "w");
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
  write<std::int16_t>({.bits = 16, .format = SAMPLEFORMAT_INT}, {0, 1, 2, 3, 4, -5});
  expect_in("16 bits", error_of<ReadError>([&] { load(); }));
  write<std::uint8_t>({.photometric = PHOTOMETRIC_RGB, .samples_per_pixel = 3},
                      std::vector<std::uint8_t>(18, 1));
  expect_in("only gray", error_of<ReadError>([&] { load(); }));
}

// Cut anywhere, the file must be refused and neither crash the program nor pass as an image.
TEST_F(TiffReader, RefusesTruncatedFiles) {
  write<std::uint8_t>({}, {0, 1, 2, 3, 4, 255});
  const std::string good = read_file(path_);
  for (std::size_t length = 4; length < good.size() - 4; ++length)
    expect_refused({{good.substr(0, length), ""}});
}

}  // namespace
}  // namespace oct::app::test
