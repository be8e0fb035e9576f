// Files of images, volumes and colour maps.

#include <stb/stb_image_write.h>

#include "apps/test_files.h"
#include "data/colormap_reader.h"
#include "data/formats/npy_writer.h"
#include "data/formats/png_writer.h"
#include "data/volume_reader.h"

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
                  {"JFIF", "not a .npy, .npz, PNG, TIFF, NRRD, MetaImage or NIfTI file"},
                  {"", "the file is empty"}});
  const std::string missing = error_of<ReadError>([&] { load_image({folder_ / "missing", {}, {}}, {}); });
  expect_in("missing: no such file", missing);
  expect_in("no frame 1; the file holds one frame", error_of<ReadError>([&] { load(good, 1); }));
}

TEST_F(ImageReader, PngsAreWrittenWholeOrNotAtAll) {
  write_file(path_, "old");
  write_png(path_, {{2, 1}, {1, 1, 1, 5, 5, 5}});
  EXPECT_EQ(load_image({path_, {}, {}}, {}).image.samples, (std::vector<float>{1, 5}));
  std::filesystem::create_directory(folder_ / "folder.png");
  for (const char* const name : {"none/out.png", "folder.png"}) {
    const std::string text = error_of<WriteError>([&] { write_png(folder_ / name, {{1, 1}, {1, 2, 3}}); });
    expect_in(std::string(name) + ": ", text);
  }
  EXPECT_EQ(folder_.file_count(), 2) << "nothing is left behind";
}

using Npy = ReaderTest;

TEST_F(Npy, ReadsOtherHeaderForms) {
  const std::vector<float> wanted{'a', 'd', 'b', 'e', 'c', 'f'};
  // Other order of entries, other quotes, no comma at the end.
  const std::string other = "{\"shape\":(2,3),\"fortran_order\":False,\"descr\":\"|u1\"}";
  EXPECT_EQ(load(npy_file(other, "abcdef")).image.samples, wanted);
  // Version 2 has a header length of four bytes.
  const std::string dictionary = npy_dictionary("|u1", "2, 3");
  const std::string start = std::string("\x93NUMPY\x02\0", 8) + static_cast<char>(dictionary.size());
  EXPECT_EQ(load(start + std::string(3, '\0') + dictionary + "abcdef").image.samples, wanted);
}

TEST_F(Npy, ReadsWhatItWrites) {
  VolumeData volume{2, 3, 2, std::vector<float>(12)};
  for (std::size_t i = 0; i < 12; ++i) volume.voxels[i] = static_cast<float>(i) - 0.5F;
  write_npy(path_, volume);
  const VolumeData read = load_volume({path_, {}, {}});
  EXPECT_EQ((std::vector{read.depth, read.ascans, read.bscans}), (std::vector<std::size_t>{2, 3, 2}));
  EXPECT_EQ(read.voxels, volume.voxels);
  EXPECT_EQ(InputFile(path_).whole().find('\n') % 64, 63U);  // samples are aligned
  write_npy(path_, VolumeData{2, 2, 1, {1, 3, 2, 4}});
  EXPECT_EQ(load_image({path_, {}, {}}, {}).image.samples, (std::vector<float>{1, 3, 2, 4}));
  EXPECT_TRUE(InputFile(path_).whole().ends_with(bytes_of(std::vector<float>{1, 2, 3, 4})));
  expect_in("none/a.npy: cannot be opened for writing",
            error_of<WriteError>([&] { write_npy(folder_ / "none/a.npy", volume); }));
}

TEST_F(Npy, RefusesDamagedHeaders) {
  const auto headed = [](const std::string& dictionary) { return npy_file(dictionary, "abcd"); };
  const std::string good = headed(npy_dictionary("|u1", "2, 2"));
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
                  {headed(npy_dictionary("|u1", "2, 2") + "{}"), "unexpected text"},
                  {headed("{'descr': [('a', '<f4')], 'fortran_order': False, 'shape': (2, 2)}"), "records"}});
}

TEST_F(Npy, RefusesShapesTypesAndMissingSamples) {
  const auto shaped = [](const std::string& shape) { return npy_array("|u1", shape, "abcd"); };
  const auto typed = [](const std::string& type) { return npy_array(type, "2, 2", std::string(64, 'x')); };
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
                  {npy_array("|u1", "3, 2, 2", "abcd", true), "truncated"},
                  {npy_array("<f4", "2, 2", std::string(15, 'x')), "truncated"},
                  {npy_array("|u1", "2, 2", ""), "truncated"},
                  {typed("<c8"), "complex"},
                  {typed("<M8"), "'<M8' are not supported"},
                  {typed("|u2"), "'|u2' are not supported"}});
  const std::string two = npy_array("|u1", "2, 1, 1", "ab");
  expect_in("no frame 2; the file holds 2 frames (0 to 1)", error_of<ReadError>([&] { load(two, 2); }));
}

class ColormapFile : public ReaderTest {
 protected:
  Colormap read(const std::string& text) {
    write_file(path_, text);
    return read_colormap(path_);
  }
};

TEST_F(ColormapFile, ReadsWholeNumbersAndFractions) {
  EXPECT_EQ(read("0,10,20\n255,1,0\n"), (Colormap{{0, 10, 20, 255}, {255, 1, 0, 255}}));
  EXPECT_EQ(read("0,0.5,1,0\n1,.25,1e-1,0.5"), (Colormap{{0, 128, 255, 0}, {255, 64, 26, 128}}));
  // No number above 1: a map from black to white, and not from black to almost black.
  EXPECT_EQ(read("0,0,0\n1,1,1\n"), (Colormap{{0, 0, 0, 255}, {255, 255, 255, 255}}));
  // Header, blank lines and foreign line ends.
  EXPECT_EQ(read("\xEF\xBB\xBFred, green, blue\r\n\r\n 0, 10 ,20\r\n255,1,0\r\n\r\n"),
            (Colormap{{0, 10, 20, 255}, {255, 1, 0, 255}}));
}

TEST_F(ColormapFile, NamesTheLineOfAnError) {
  const auto lines = [](int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += "0,0,0\n";
    return text;
  };
  EXPECT_EQ(read(lines(4096)).size(), 4096U);
  const std::pair<std::string, std::string> cases[] = {
      {"r,g,b\n0,0,0\n1,x,1\n", "line 3: not a number: 'x'"},
      {"0,0,0\n1,,1\n", "line 2: not a number: ''"},
      {"0,0,0\n1,1,1,\n", "line 2: not a number: ''"},
      {"0,0,0\n1 1 1\n", "line 2: not a number: '1 1 1'"},
      {"0,0,0\n256,0,0\n", "line 2: not between 0 and 255: 256"},
      {"0,0,0\n-1,0,0\n", "line 2: not between 0 and 255: -1"},
      {"0,0,0\nnan,0,0\n", "line 2: not between 0 and 255: nan"},
      {"0,0\n1,1\n", "line 1: 3 or 4 numbers"},
      {"0,0,0,0,0\n", "line 1: 3 or 4 numbers"},
      {"0,0,0\n\n1,1,1,1\n", "line 3: 4 numbers, but 3"},
      {"0,0,0\n0.5,0,0\n9,0,0\n", "line 2: a fraction, but line 3"},
      {"r,g,b\nred,green,blue\n0,0,0\n", "line 2: not a number: 'red'"},
      {"r,g,b\n", "a colour map has from 2 to 4096 colours, this one 0"},
      {lines(1), "a colour map has from 2 to 4096 colours, this one 1"},
      {lines(4097), "a colour map has from 2 to 4096 colours, this one 4097"}};
  for (const auto& [text, words] : cases) {
    expect_in(to_utf8(path_) + ": " + words, error_of<ReadError>([&, &text = text] { read(text); }));
  }
}

}  // namespace
}  // namespace oct::app::test
