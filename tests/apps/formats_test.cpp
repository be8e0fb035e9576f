// Every format, axis order and sample type that is read, what is refused, and what damaged files do.
#include <cmath>
#include <cstdlib>

#include "apps/test_files.h"
#include "apps/written_formats.h"
#include "data/volume_reader.h"

namespace oct::app::test {
namespace {

class Formats : public testing::Test {
 protected:
  DataFile write(const WrittenFile& written) {
    for (const auto& [name, content] : written.files) {
      std::filesystem::create_directories((folder_ / name).parent_path());
      write_file(folder_ / name, content);
    }
    return {folder_ / (written.open.empty() ? written.files.begin()->first : written.open), written.raw, {}};
  }

  DataFile write(const std::string& content) {
    write_file(folder_ / "x", content);
    return {folder_ / "x", {}, {}};
  }

  TemporaryFolder folder_;
};

// Larger than the blocks in which samples change places, and no multiple of them.
constexpr Sampled sampled{4, 67, 101};

// Depth fastest, B-scans slowest.
void expect_volume(const VolumeData& volume, const Sampled& wanted = sampled) {
  EXPECT_EQ((std::array{volume.bscans, volume.depth, volume.ascans}),
            (std::array{wanted.bscans, wanted.depth, wanted.ascans}));
  EXPECT_TRUE(volume.voxels == wanted.samples("bad"));
}

void expect_spacing(const VoxelSpacing& spacing, const std::array<double, 3>& mm, const std::string& source) {
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(spacing.mm[i], mm[i], 1e-9) << i;
  EXPECT_EQ(spacing.source, source);
}

// From memory; the folder is that of files which headers name.
void read_frames(const std::string& bytes, const std::filesystem::path& folder = {}) {
  const auto frames = open_frames(std::make_shared<InputFile>(folder / "x", bytes), "scan");
  for (std::size_t i = 0; i < frames->frame_count(); ++i) {
    const Raster raster = frames->read(i, no_progress);
    ASSERT_EQ(raster.samples.size(), raster.rows * raster.columns);
  }
  for (const double mm : frames->spacing().mm) ASSERT_TRUE(mm >= 0 && mm <= 15);
}

TEST_F(Formats, GiveTheSameVoxelsAndSpacing) {
  for (const WrittenFile& written : every_format(sampled)) {
    SCOPED_TRACE(written.name);
    const DataFile file = write(written);
    const VolumeData volume = load_volume(file);
    expect_volume(volume);
    expect_spacing(volume.spacing, written.mm, written.source);
    for (const std::size_t frame : {3, 0}) {
      const LoadedImage loaded = load_image(file, {frame});
      EXPECT_EQ(loaded.frame_count, sampled.bscans);
      const auto begin = volume.voxels.begin() + static_cast<std::ptrdiff_t>(frame * 67 * 101);
      EXPECT_TRUE(
          std::equal(begin, begin + 67 * 101, loaded.image.samples.begin(), loaded.image.samples.end()));
      EXPECT_NEAR(loaded.image.spacing.mm[1], written.mm[1], 1e-9);
    }
  }
}

// Cut anywhere, a file neither crashes the program nor passes as a smaller volume.
TEST_F(Formats, CutFilesAreRefused) {
  for (const WrittenFile& written : every_format({2, 3, 4})) {
    SCOPED_TRACE(written.name);
    if (written.files.size() > 1) continue;
    const std::string whole = written.files.begin()->second;
    if (written.raw) {
      const DataFile file = write(written);
      write_file(file.path, whole.substr(0, whole.size() - 5));
      expect_in("too few for the 2 x 4 x 3 samples of type i4 that --raw",
                error_of<ReadError>([&] { load_volume(file); }));
      continue;
    }
    // At the end of compressed data are the end of the block and a sum.
    const bool has_sum =
        written.name == "nii.gz" || written.name == "mha compressed" || written.name == "tiff in deflate";
    for (std::size_t length = 1; length < whole.size() - (has_sum ? 12 : 0); ++length) {
      EXPECT_NE(error_of<ReadError>([&] { read_frames(whole.substr(0, length)); }), "no error") << length;
    }
  }
}

// Each of the orders, slowest axis first, whether frames are B-scans or cut them.
TEST_F(Formats, AxesMayHaveAnyOrder) {
  for (const std::string axes : {"bda", "bad", "dba", "dab", "adb", "abd"}) {
    SCOPED_TRACE(axes);
    std::string shape;
    AxisOrder order{};
    for (std::size_t i = 0; i < 3; ++i) {
      const bool depth = axes[i] == 'd', a_scan = axes[i] == 'a';
      order[2 - i] = depth ? Axis::depth : a_scan ? Axis::ascan : Axis::bscan;
      shape += std::to_string(depth ? sampled.depth : a_scan ? sampled.ascans : sampled.bscans) + ", ";
    }
    DataFile file = write(npy("|u1", false, shape, encoded(sampled.samples(axes), "u1")));
    file.axes = order;
    const VolumeData volume = load_volume(file);
    expect_volume(volume);
    const LoadedImage loaded = load_image(file, {2});
    EXPECT_EQ(std::pair(loaded.image.depth, loaded.frame_count), std::pair(sampled.depth, sampled.bscans));
    EXPECT_TRUE(std::equal(loaded.image.samples.begin(), loaded.image.samples.end(),
                           volume.voxels.begin() + 2 * 67 * 101));
    file.raw =
        RawLayout{sampled.depth, sampled.ascans, sampled.bscans, {SampleType::uint8, false}, {}, "--raw"};
    write_file(file.path, encoded(sampled.samples(axes), "u1"));
    expect_volume(load_volume(file));
  }
}

TEST_F(Formats, SamplesOfEveryTypeKeepTheirValues) {
  const std::vector<float> numbers = sampled.samples();
  for (const std::string type : {"i1", "u1", "i2", "u2", "i4", "u4", "i8", "u8", "f2", "f4", "f8"}) {
    for (const bool big : {false, true}) {
      SCOPED_TRACE(type + (big ? " big-endian" : ""));
      const std::string data = encoded(numbers, type, big);
      expect_volume(load_volume(write(npy((big ? ">" : "<") + type, false, "4, 67, 101", data))));
    }
  }
  const auto samples = [&](const std::string& type, std::size_t count, const std::string& bytes) {
    return load_image(write(npy(type, false, std::to_string(count) + ", 1", bytes)), {}).image.samples;
  };
  EXPECT_EQ(samples("|i1", 2, "\x80\xFF"), (std::vector<float>{-128, -1}));
  EXPECT_EQ(samples("|b1", 2, {"\0\1", 2}), (std::vector<float>{0, 1}));
  EXPECT_EQ(samples(">i2", 2, {"\x80\0\xFF\xFF", 4}), (std::vector<float>{-32768, -1}));
  EXPECT_EQ(samples("<i4", 1, {"\0\0\0\x80", 4}), (std::vector<float>{-2147483648.0F}));
  EXPECT_EQ(samples("<u8", 1, std::string(8, '\xFF')), (std::vector<float>{18446744073709551616.0F}));
  // The least half, the largest, minus five; what is none.
  EXPECT_EQ(samples(">f2", 3, {"\0\1\x7B\xFF\xC5\0", 6}),
            (std::vector<float>{std::ldexp(1.0F, -24), 65504, -5}));
  const std::vector<float> special = samples(">f2", 3, {"\x7C\0\xFC\0\x7E\0", 6});
  EXPECT_EQ(special[0], std::numeric_limits<float>::infinity());
  EXPECT_EQ(special[1], -std::numeric_limits<float>::infinity());
  EXPECT_TRUE(std::isnan(special[2]));
}

TEST_F(Formats, LargeVolumesAreReducedToTheMeansOfBlocks) {
  constexpr Sampled small{4, 7, 5};
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  for (const std::string order : {"bda", "dab"}) {
    SCOPED_TRACE(order);
    const bool pictures = order == "bda";
    std::vector<float> samples = small.samples(order);
    samples[1] = nan;  // of the first block one sample
    DataFile file = write(npy("<f4", false, pictures ? "4, 7, 5" : "7, 5, 4", encoded(samples, "f4")));
    if (!pictures) file.axes = AxisOrder{Axis::bscan, Axis::ascan, Axis::depth};
    const VolumeData volume = load_volume(file, {3, 100});
    EXPECT_EQ(volume.reduction, (std::array<std::size_t, 3>{3, 2, 2}));
    EXPECT_EQ(volume.file_size, (std::array<std::size_t, 3>{7, 5, 4}));
    ASSERT_EQ((std::array{volume.depth, volume.ascans, volume.bscans}),
              (std::array<std::size_t, 3>{3, 3, 2}));
    for (std::size_t i = 0; i < volume.voxels.size(); ++i) {
      const std::size_t z = i % 3 * 3, a = i / 3 % 3 * 2, b = i / 9 * 2;
      float sum = 0, count = 0;
      for (std::size_t s = 0; s < 12; ++s) {
        const std::size_t zs = z + s % 3, as = a + s / 3 % 2, bs = b + s / 6;
        const bool is_nan = pictures ? (zs == 0 && as == 1 && bs == 0) : (zs == 0 && as == 0 && bs == 1);
        if (zs >= 7 || as >= 5 || is_nan) continue;
        sum += Sampled::at(bs, zs, as);
        ++count;
      }
      EXPECT_FLOAT_EQ(volume.voxels[i], sum / count) << i;
    }
    EXPECT_FALSE(load_volume(file, {7, 4 * 140}).is_reduced());
    // By bytes alone: the longest axis first.
    EXPECT_EQ(load_volume(file, {100, 4 * 100}).reduction, (std::array<std::size_t, 3>{2, 1, 1}));
  }
  const DataFile nothing = write(npy("<f4", false, "2, 2, 1", encoded({nan, nan, nan, nan}, "f4")));
  EXPECT_TRUE(std::isnan(load_volume(nothing, {1, 4}).voxels.at(0)));
}

TEST_F(Formats, RefuseWhatTheyCannotRead) {
  const std::string nrrd = "NRRD0004\ntype: uchar\ndimension: 3\nsizes: 1 1 1\nencoding: ";
  const std::string meta = "ObjectType = Image\nNDims = 3\nElementType = MET_UCHAR\nDimSize = ";
  const auto nifti = [&](std::size_t place, const std::string& bytes) {
    for (const WrittenFile& written : every_format({2, 3, 4})) {
      if (written.name == "nii")
        return std::string(written.files.begin()->second).replace(place, bytes.size(), bytes);
    }
    return std::string();
  };
  const auto page = [](std::size_t entry, const std::string& value) {
    return tiff({1, 2, 3}, {}).replace(8 + 2 + entry * 12 + 8, value.size(), value);
  };
  const std::pair<std::string, std::string> refusals[] = {
      {nrrd + "raw\n\n", "truncated: 0 data bytes are too few"},
      {nrrd + "raw\n", "the NRRD header has no end"},
      {nrrd + "ascii\n\n1", "the encoding 'ascii' are not supported; save raw or gzip"},
      {nrrd + "raw\nkinds: RGB-color domain domain\n\n1", "the kinds RGB-color"},
      {nrrd + "gzip\n\n1", "truncated"},
      {nrrd + "gzip\n\nno gzip at all", "the compressed data are damaged"},
      {nrrd + "raw\ndata file: none.raw\n", "none.raw: no such file"},
      {nrrd + "raw\ndata file: LIST\na.raw\n", "several files"},
      {nrrd + "raw\nspacings: 1 2\n\n1", "fewer spacings than axes"},
      {nrrd + "raw\nspacings: 1 2 two\n\n1", "'two' is not a number"},
      {nrrd + "raw\nspace directions: (1,2,3 none none\n\n1", "malformed"},
      {"NRRD0004\ntype: uchar\ndimension: 3\nsizes: 2 2\nencoding: raw\n\n1234",
       "not as many as its dimension"},
      {"NRRD0004\ntype: uchar\ndimension: 4\nsizes: 2 2 2 3\nencoding: raw\n\n1234", "sizes 2 2 2 3"},
      {"NRRD0004\ntype: ushort\ndimension: 2\nsizes: 1 1\nencoding: raw\n\n12", "lacks 'endian'"},
      {"NRRD0004\ntype: block\ndimension: 2\nsizes: 1 1\nencoding: raw\n\n12", "type 'block'"},
      {"NRRD0004\ndimension: 2\nsizes: -1 1\n\n", "'-1' is not a whole number"},
      {meta + "1 1 1\n", "lacks 'ElementDataFile'"},
      {meta + "1 1 1\nElementNumberOfChannels = 3\nElementDataFile = LOCAL\n123", "one channel"},
      {meta + "1 1 1\nElementDataFile = LIST\na\n", "several files"},
      {meta + "1 1 1\nBinaryData = False\nElementDataFile = LOCAL\n1", "as text"},
      {meta + "99999999 9999999999 1\nElementDataFile = LOCAL\n1", "too large"},
      {nifti(344, "xyz"), "only NIfTI files of format 1"},
      {nifti(0, {"\x1C\2", 2}), "only NIfTI files of format 1"},
      {nifti(70, {"\x80\0", 2}), "the type 128"},
      {nifti(42, {"\0\0", 2}), "gives the sizes 0"},
      {nifti(48, {"\2\0", 2}), "4 x 3 x 2 x 2"},
      {nifti(108, {"\0\0\xC0\x7F", 4}), "vox_offset"},
      {gzipped(std::string(999, 'x')), "of compressed files only NIfTI"},
      {"PK\5\6" + std::string(18, '\0'), "holds no .npy array"},
      {"PK\3\4" + std::string(99, '\0'), "no directory"},
      {page(2, {"\x0C", 1}), "12 bits"},
      {page(7, {"\3", 1}), "only gray"},
      {page(3, {"\7", 1}), "not a readable TIFF image: "},
      {"#?RADIANCE", "not a .npy, .npz, PNG, TIFF, NRRD, MetaImage or NIfTI file"}};
  for (const auto& [bytes, words] : refusals) {
    const DataFile file = write(bytes);
    expect_in(words, error_of<ReadError>([&, &file = file] { load_image(file, {0}); }));
  }
  for (const WrittenFile& written : every_format({2, 3, 4})) write(written);
  const auto error = [&](const std::string& name) {
    return error_of<ReadError>([&] { load_volume({folder_ / name, {}, {}}); });
  };
  expect_in("the archive holds several arrays: any, scan; choose one with FILE.npz:NAME", error("x.npz"));
  expect_in("no array 'image'; there are any, scan", error("x.npz:image"));
  write_file(folder_ / "slices/scan3.png", png({1, 3, 5}, 0));
  expect_in("scan3.png: the image is 3 rows of 5 samples, those before it 3 rows of 4 samples",
            error("slices"));
  write_file(folder_ / "slices/scan3.png", tiff({2, 3, 4}, {}));
  expect_in("scan3.png: it holds 2 frames", error("slices"));
  std::filesystem::create_directory(folder_ / "empty");
  expect_in("empty: the folder holds no .png", error("empty"));
}

// Deterministic from round to round. OCT_FUZZ_ROUNDS: how many; OCT_FUZZ_FIRST: the first, to find one again.
class Mutation {
 public:
  explicit Mutation(std::uint64_t round) : state_(round * 0x9E3779B97F4A7C15U + 1) {}

  std::size_t below(std::size_t end) {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 7;
    state_ ^= state_ << 17;
    return static_cast<std::size_t>(state_ % end);
  }

  void change(std::string& bytes) {
    static const std::string pieces[] = {{"\0\0\0\0", 4},
                                         "\xFF\xFF\xFF\xFF",
                                         {"\0\0\0\x80", 4},
                                         "\x7F\xFF\xFF\xFF",
                                         "9",
                                         "0",
                                         "-",
                                         " ",
                                         "\n",
                                         "4294967296",
                                         "18446744073709551615",
                                         "nan",
                                         "1e300"};
    const std::string& piece = pieces[below(std::size(pieces))];
    // Headers lie at the start, directories of archives at the end.
    const std::size_t span = std::min<std::size_t>(bytes.size(), 500);
    const std::size_t place = below(4) == 0 ? bytes.size() - 1 - below(span) : below(span);
    switch (below(6)) {
      case 0:
        bytes[place] = static_cast<char>(below(256));
        break;
      case 1:
        bytes[place] = static_cast<char>(bytes[place] ^ 1 << below(8));
        break;
      case 2:
        bytes.replace(place, std::min(piece.size(), bytes.size() - place), piece);
        break;
      case 3:
        bytes.insert(place, piece);
        break;
      case 4:
        bytes.erase(place, 1 + below(8));
        break;
      default:
        if (below(4) == 0) bytes.resize(place + 1);
        bytes.insert(place, bytes.substr(below(bytes.size()), below(16)));
    }
    if (bytes.empty()) bytes = "?";
  }

 private:
  std::uint64_t state_;
};

std::uint64_t number_from(const char* variable, std::uint64_t fallback) {
  const char* const text = std::getenv(variable);
  return text ? std::strtoull(text, nullptr, 10) : fallback;
}

// Whatever a header says, a file is read or refused with a reason: nothing else happens, and nothing large is allocated.
TEST_F(Formats, MutatedFilesAreReadOrRefused) {
  const std::vector<WrittenFile> formats = every_format({2, 3, 4});
  for (const WrittenFile& written : formats) write(written);
  std::vector<std::string> contents;
  for (const WrittenFile& written : formats) {
    if (!written.raw && written.open != "slices") contents.push_back(written.files.begin()->second);
  }
  contents.push_back(png({1, 3, 4}, 0));
  const std::uint64_t first = number_from("OCT_FUZZ_FIRST", 0), rounds = number_from("OCT_FUZZ_ROUNDS", 4000);
  std::size_t read = 0, refused = 0;
  for (std::uint64_t round = first; round < first + rounds && !HasFatalFailure(); ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    Mutation mutation(round);
    std::string bytes = contents[mutation.below(contents.size())];
    for (std::size_t i = mutation.below(4) + 1; i > 0; --i) mutation.change(bytes);
    try {
      read_frames(bytes, folder_ / "");
      ++read;
    } catch (const ReadError&) {
      ++refused;
    } catch (const std::exception& error) {
      FAIL() << error.what();
    }
  }
  EXPECT_GT(read, rounds / 20);  // mutations are not so strong that nothing gets past the first check
  EXPECT_GT(refused, rounds / 20);
}

}  // namespace
}  // namespace oct::app::test
