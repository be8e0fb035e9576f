#include <stb/stb_image_write.h>

#include "apps/test_files.h"
#include "data/formats/png_writer.h"

namespace oct::app::test {
namespace {

void append(void* text, void* bytes, int count) {
  static_cast<std::string*>(text)->append(static_cast<const char*>(bytes), static_cast<std::size_t>(count));
}

std::string png_bytes(int width, int height, int channels, const std::vector<std::uint8_t>& pixels) {
  std::string bytes;
  stbi_write_png_to_func(append, &bytes, width, height, channels, pixels.data(), width * channels);
  return bytes;
}

// Two rows of three 16-bit samples: 0, 1, 256 and 1000, 40000, 65535.
constexpr unsigned char sixteen_bit_png[] = {
    0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x48, 0x44, 0x52,
    0x00, 0x00, 0x00, 0x03, 0x00, 0x00, 0x00, 0x02, 0x10, 0x00, 0x00, 0x00, 0x00, 0xE8, 0x8F, 0xE5,
    0x85, 0x00, 0x00, 0x00, 0x16, 0x49, 0x44, 0x41, 0x54, 0x78, 0xDA, 0x63, 0x60, 0x60, 0x60, 0x60,
    0x64, 0x64, 0x60, 0x60, 0x7E, 0x31, 0xC7, 0xE1, 0xFF, 0x7F, 0x00, 0x0A, 0xE8, 0x03, 0xC8, 0xBF,
    0x93, 0xC0, 0xF7, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82};

using ImageReader = ReaderTest;

TEST_F(ImageReader, ReadsGrayPngOf8And16Bits) {
  const Image image = load(png_bytes(3, 2, 1, {0, 10, 20, 30, 40, 255})).image;
  EXPECT_EQ(image.depth, 2U);
  EXPECT_EQ(image.ascans, 3U);
  EXPECT_EQ(image.samples, (std::vector<float>{0, 30, 10, 40, 20, 255}));
  const Image wide = load({reinterpret_cast<const char*>(sixteen_bit_png), sizeof sixteen_bit_png}).image;
  EXPECT_EQ(wide.depth, 2U);
  EXPECT_EQ(wide.samples, (std::vector<float>{0, 1000, 1, 40000, 256, 65535}));
}

TEST_F(ImageReader, TurnsColoursToLuminanceAndIgnoresTransparency) {
  const Image image = load(png_bytes(4, 1, 3, {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255})).image;
  EXPECT_NEAR(image.samples[0], 0.299 * 255, 1.5);
  EXPECT_NEAR(image.samples[1], 0.587 * 255, 1.5);
  EXPECT_NEAR(image.samples[2], 0.114 * 255, 1.5);
  EXPECT_EQ(image.samples[3], 255);
  EXPECT_EQ(load(png_bytes(2, 1, 2, {50, 0, 60, 255})).image.samples, (std::vector<float>{50, 60}));
}

TEST_F(ImageReader, RefusesDamagedPngAndWhatIsNoImage) {
  const std::string good = png_bytes(40, 40, 1, std::vector<std::uint8_t>(1600, 7));
  ASSERT_NO_THROW(load(good));
  std::string huge = good, no_width = good;
  huge.replace(16, 8, std::string("\0\xFF\xFF\xFF\0\xFF\xFF\xFF", 8));
  no_width.replace(16, 4, std::string(4, '\0'));
  expect_refused({{good.substr(0, 8), "not a readable PNG image"},
                  {good.substr(0, 33), "not a readable PNG image"},
                  {good.substr(0, 45), "not a readable PNG image"},
                  {huge, ""},
                  {no_width, "not a readable PNG image"},
                  {"JFIF", "not a .npy, PNG or TIFF file"},
                  {"", "the file is empty"}});
  const std::string missing = error_of<ReadError>([&] { load_image(folder_ / "missing", {}, false); });
  expect_in("missing: no such file", missing);
  expect_in("no frame 1; the file holds one frame", error_of<ReadError>([&] { load(good, 1); }));
}

TEST_F(ImageReader, PngsAreWrittenWholeOrNotAtAll) {
  write_file(path_, "old");
  write_png(path_, {{2, 1}, {1, 1, 1, 5, 5, 5}});
  EXPECT_EQ(load_image(path_, {}, false).image.samples, (std::vector<float>{1, 5}));
  std::filesystem::create_directory(folder_ / "folder.png");
  for (const char* const name : {"none/out.png", "folder.png"}) {
    const std::string text = error_of<WriteError>([&] { write_png(folder_ / name, {{1, 1}, {1, 2, 3}}); });
    expect_in(std::string(name) + ": ", text);
  }
  EXPECT_EQ(folder_.file_count(), 2) << "nothing is left behind";
}

}  // namespace
}  // namespace oct::app::test
