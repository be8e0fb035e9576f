#include "apps/written_formats.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#define STBI_WRITE_NO_STDIO
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>
#include <zlib.h>

namespace oct::app::test {
namespace {

class Bytes {
 public:
  explicit Bytes(bool big_endian = false) : big_endian_(big_endian) {}

  Bytes& put(std::uint64_t value, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
      bytes_ += static_cast<char>(i < 8 ? value >> 8 * (big_endian_ ? count - 1 - i : i) & 0xFF : 0);
    return *this;
  }
  Bytes& put_float(float value) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, 4);
    return put(bits, 4);
  }
  Bytes& text(const std::string& text) {
    bytes_ += text;
    return *this;
  }
  Bytes& pad_to(std::size_t size) {
    bytes_.resize(size);
    return *this;
  }
  std::size_t size() const { return bytes_.size(); }
  const std::string& bytes() const { return bytes_; }

 private:
  bool big_endian_;
  std::string bytes_;
};

std::uint64_t half_bits(float value) {
  if (value == 0) return 0;
  int exponent = 0;
  const float fraction = std::frexp(std::abs(value), &exponent);
  return (value < 0 ? 0x8000U : 0U) | static_cast<unsigned>(exponent + 14) << 10 |
         static_cast<unsigned>((2 * fraction - 1) * 1024);
}

std::uint64_t bits_of(float value, char kind, std::size_t size) {
  if (kind != 'f') return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
  if (size == 2) return half_bits(value);
  if (size == 4) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, 4);
    return bits;
  }
  const double wide = value;
  std::uint64_t bits = 0;
  std::memcpy(&bits, &wide, 8);
  return bits;
}

// window_bits: 15 zlib, 31 gzip, -15 neither.
std::string deflated(const std::string& bytes, int window_bits) {
  z_stream stream{};
  deflateInit2(&stream, 6, Z_DEFLATED, window_bits, 8, Z_DEFAULT_STRATEGY);
  std::string result(deflateBound(&stream, bytes.size()) + 64, '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = reinterpret_cast<Bytef*>(result.data());
  stream.avail_out = static_cast<uInt>(result.size());
  deflate(&stream, Z_FINISH);
  result.resize(stream.total_out);
  deflateEnd(&stream);
  return result;
}

// As TIFF keeps the bytes of a strip. LZW: codes of nine bits, each behind one that clears the table.
std::string packed(const std::string& bytes, unsigned compression, std::size_t row_bytes) {
  if (compression == 8) return deflated(bytes, 15);
  std::string result;
  if (compression == 5) {
    std::string bits;
    const auto put_code = [&](unsigned code) {
      for (unsigned bit = 9; bit-- > 0;) bits += static_cast<char>('0' + (code >> bit & 1));
    };
    for (const char byte : bytes) {
      put_code(256);
      put_code(static_cast<unsigned char>(byte));
    }
    put_code(257);
    bits.resize((bits.size() + 7) / 8 * 8, '0');
    for (std::size_t i = 0; i < bits.size(); i += 8)
      result += static_cast<char>(std::stoi(bits.substr(i, 8), nullptr, 2));
    return result;
  }
  if (compression == 1) return bytes;
  for (std::size_t i = 0; i < bytes.size(); i += row_bytes) {
    const std::string run = bytes.substr(i, row_bytes);
    result += static_cast<char>(run.size() - 1) + run;
  }
  return result;
}

// As Python writes them: sizes of 64 bits in the local headers only.
std::string zip(const std::map<std::string, std::string>& members, bool packed) {
  Bytes archive, directory;
  for (const auto& [name, content] : members) {
    const std::string data = packed ? deflated(content, -15) : content;
    const std::size_t place = archive.size();
    const unsigned method = packed ? 8 : 0;
    archive.text("PK\3\4")
        .put(45, 2)
        .put(0, 2)
        .put(method, 2)
        .put(0, 8)
        .put(0xFFFFFFFF, 4)
        .put(0xFFFFFFFF, 4);
    archive.put(name.size(), 2).put(20, 2).text(name).put(1, 2).put(16, 2).put(content.size(), 8);
    archive.put(data.size(), 8).text(data);
    directory.text("PK\1\2").put(45, 2).put(45, 2).put(0, 2).put(method, 2).put(0, 8).put(data.size(), 4);
    directory.put(content.size(), 4).put(name.size(), 2).put(0, 12).put(place, 4).text(name);
  }
  const std::size_t place = archive.size();
  archive.text(directory.bytes()).text("PK\5\6").put(0, 4).put(members.size(), 2).put(members.size(), 2);
  return archive.put(directory.size(), 4).put(place, 4).put(0, 2).bytes();
}

std::string nifti_header(const Sampled& volume, bool big_endian, int type, float slope, bool in_one_file) {
  Bytes header(big_endian);
  header.put(348, 4)
      .pad_to(40)
      .put(4, 2)
      .put(volume.ascans, 2)
      .put(volume.depth, 2)
      .put(volume.bscans, 2)
      .put(1, 2);
  header.pad_to(70).put(static_cast<unsigned>(type), 2).pad_to(76).put_float(1).put_float(10).put_float(20);
  header.put_float(30)
      .pad_to(108)
      .put_float(in_one_file ? 352.0F : 0.0F)
      .put_float(slope)
      .put_float(slope ? -3.0F : 0.0F);
  header.pad_to(123).put(3, 1).pad_to(344).text(in_one_file ? "n+1" : "ni1");  // micrometres
  return header.pad_to(in_one_file ? 352 : 348).bytes();
}

void append_bytes(void* text, void* bytes, int count) {
  static_cast<std::string*>(text)->append(static_cast<const char*>(bytes), static_cast<std::size_t>(count));
}

}  // namespace

std::vector<float> Sampled::samples(const std::string& axes) const {
  const std::map<char, std::size_t> sizes{{'b', bscans}, {'d', depth}, {'a', ascans}};
  std::vector<float> result;
  std::map<char, std::size_t> i;
  for (i[axes[0]] = 0; i[axes[0]] < sizes.at(axes[0]); ++i[axes[0]]) {
    for (i[axes[1]] = 0; i[axes[1]] < sizes.at(axes[1]); ++i[axes[1]]) {
      for (i[axes[2]] = 0; i[axes[2]] < sizes.at(axes[2]); ++i[axes[2]])
        result.push_back(at(i['b'], i['d'], i['a']));
    }
  }
  return result;
}

std::string encoded(const std::vector<float>& samples, const std::string& type, bool big_endian) {
  Bytes bytes(big_endian);
  const auto size = static_cast<std::size_t>(type[1] - '0');
  for (const float sample : samples) bytes.put(bits_of(sample, type[0], size), size);
  return bytes.bytes();
}

std::string npy(const std::string& descr, bool fortran_order, const std::string& shape,
                const std::string& data) {
  const std::string text = "{'descr': '" + descr +
                           "', 'fortran_order': " + (fortran_order ? "True" : "False") + ", 'shape': (" +
                           shape + "), }\n";
  return Bytes().text(std::string("\x93NUMPY\1\0", 8)).put(text.size(), 2).text(text + data).bytes();
}

std::string tiff(const Sampled& volume, const TiffForm& form) {
  Bytes file(form.big_endian);
  const std::size_t width = form.wide ? 8 : 4,
                    directory_bytes = form.wide ? 8 + 12 * 20 + 8 : 2 + 12 * 12 + 4;
  file.text(form.big_endian ? "MM" : "II").put(form.wide ? 43 : 42, 2);
  if (form.wide) file.put(8, 2).put(0, 2);
  std::string samples = encoded(volume.samples(), "u1");
  if (form.white_is_zero) {
    for (char& sample : samples) sample = static_cast<char>(~sample);
  }
  const std::size_t pages = form.one_directory ? 1 : volume.bscans,
                    page_bytes = samples.size() / volume.bscans;
  const std::string description = form.description + std::string(9, '\0');
  for (std::size_t page = 0; page < pages; ++page) {
    const std::string first =
        packed(samples.substr(page * page_bytes, page_bytes), form.compression, volume.ascans);
    const std::string data = form.one_directory ? samples : first;
    if (page == 0) file.put(file.size() + width, width);  // where the first directory is
    const std::size_t description_place = file.size() + directory_bytes;
    const std::size_t numbers = description_place + description.size(), data_place = numbers + 16;
    const auto entry = [&](unsigned tag, unsigned type, std::size_t count, std::size_t value) {
      file.put(tag, 2).put(type, 2).put(count, width);
      if (type == 3) {
        file.put(value, 2).put(0, width - 2);
      } else {
        file.put(value, type == 4 ? 4 : width).put(0, type == 4 ? width - 4 : 0);
      }
    };
    const auto fraction = [&](unsigned tag, unsigned value, std::size_t place) {
      file.put(tag, 2).put(5, 2).put(1, width);
      if (form.wide) {
        file.put(1, 4).put(value, 4);
      } else {
        file.put(place, 4);
      }
    };
    file.put(12, form.wide ? 8 : 2);
    entry(256, 4, 1, volume.ascans);
    entry(257, 4, 1, volume.depth);
    entry(258, 3, 1, 8);
    entry(259, 3, 1, form.compression);
    entry(262, 3, 1, form.white_is_zero ? 0 : 1);
    entry(270, 2, description.size(), description_place);
    entry(273, 4, 1, data_place);
    entry(277, 3, 1, 1);
    entry(278, 4, 1, volume.depth);
    entry(279, 4, 1, first.size());
    fraction(282, form.column_units, numbers);
    fraction(283, form.row_units, numbers + 8);
    file.put(page + 1 == pages ? 0 : data_place + data.size(), width);  // where the next one is
    file.text(description).put(1, 4).put(form.column_units, 4).put(1, 4).put(form.row_units, 4).text(data);
  }
  return file.bytes();
}

std::string png(const Sampled& volume, std::size_t bscan) {
  const std::size_t page_bytes = volume.depth * volume.ascans;
  const std::string pixels = encoded(volume.samples(), "u1").substr(bscan * page_bytes, page_bytes);
  std::string bytes;
  stbi_write_png_to_func(append_bytes, &bytes, static_cast<int>(volume.ascans),
                         static_cast<int>(volume.depth), 1, pixels.data(), static_cast<int>(volume.ascans));
  return bytes;
}

std::string gzipped(const std::string& bytes) {
  return deflated(bytes, 31);
}

std::vector<WrittenFile> every_format(const Sampled& volume) {
  const auto text = [](std::size_t number) { return std::to_string(number); };
  const std::string b = text(volume.bscans), d = text(volume.depth), a = text(volume.ascans);
  const std::string shape = b + ", " + d + ", " + a, sizes = a + " " + d + " " + b;
  const std::vector<float> samples = volume.samples();
  const std::string u1 = encoded(samples, "u1"), u2 = encoded(samples, "u2"),
                    i2be = encoded(samples, "i2", true);
  const std::string f4 = encoded(samples, "f4");
  const std::string array = npy("<f4", false, shape, f4);
  std::vector<float> scaled = samples;  // value = 0.5 * sample - 3
  for (float& sample : scaled) sample = 2 * sample + 6;

  std::vector<WrittenFile> written;
  const auto add = [&](const std::string& name, std::map<std::string, std::string> files,
                       std::array<double, 3> mm = {}, const std::string& source = "",
                       const std::string& open = "") {
    written.push_back({name, std::move(files), open, {}, mm, source});
  };
  add("npy", {{"x", array}});
  add("npy in Fortran order", {{"x", npy(">i2", true, shape, encoded(volume.samples("adb"), "i2", true))}});
  add("npz stored", {{"x", zip({{"any.npy", array}, {"notes.txt", "?"}}, false)}});
  add("npz deflated",
      {{"x.npz", zip({{"any.npy", npy("|u1", false, "1, 1", "?")}, {"scan.npy", array}}, true)}}, {}, "",
      "x.npz:scan");
  const std::string nrrd = "NRRD0004\n# by hand\ntype: ushort\ndimension: 3\nsizes: " + sizes + "\n";
  add("nrrd",
      {{"x", nrrd +
                 "endian: little\nencoding: raw\nspacings: 10 20 30\nunits: \"um\" \"um\" \"um\"\n"
                 "key:=value\n\n" +
                 u2}},
      {0.02, 0.01, 0.03}, "NRRD header");
  add("nrrd detached",
      {{"a.nhdr",
        "NRRD0005\r\ntype: int16\r\ndimension: 4\r\nsizes: 1 " + sizes +
            "\r\nendian: big\r\nencoding: gzip\r\nbyte skip: 5\r\n"
            "space directions: none (0,0.003,0.004) (0.02,0,0) (0,0,-0.03)\r\ndata file: b.raw.gz\r\n"},
       {"b.raw.gz", gzipped("12345" + i2be)}},
      {0.02, 0.005, 0.03}, "NRRD header, without a unit: taken as mm");
  const std::string meta =
      "ObjectType = Image\nNDims = 3\nDimSize = " + sizes + "\nElementSpacing = 0.01 0.02 0.03\n";
  add("mha compressed",
      {{"x", meta + "ElementType = MET_FLOAT\nCompressedData = True\nElementDataFile = LOCAL\n" +
                 deflated(f4, 15)}},
      {0.02, 0.01, 0.03}, "MetaImage header, without a unit: taken as mm");
  add("mhd",
      {{"a.mhd",
        meta + "DistanceUnits = mm\nBinaryDataByteOrderMSB = True\nElementType = MET_SHORT\nHeaderSize = -1\n"
               "ElementDataFile = b.raw\n"},
       {"b.raw", "a header" + i2be}},
      {0.02, 0.01, 0.03}, "MetaImage header");
  add("nii", {{"x", nifti_header(volume, false, 16, 0.5F, true) + encoded(scaled, "f4")}}, {0.02, 0.01, 0.03},
      "NIfTI header");
  add("nii.gz", {{"x", gzipped(nifti_header(volume, false, 512, 0, true)) + gzipped(u2)}}, {0.02, 0.01, 0.03},
      "NIfTI header");
  add("hdr and img",
      {{"x.hdr", nifti_header(volume, true, 4, 1, false)}, {"x.img", encoded(samples, "i2", true)}},
      {0.02, 0.01, 0.03}, "NIfTI header");
  written.back().files["x.hdr"].replace(112, 8,
                                        std::string(8, '\0'));  // no slope: the samples are the values
  const std::string imagej = "ImageJ=1.53\nimages=" + b + "\nslices=" + b + "\nunit=\\u00B5m\nspacing=30.0\n";
  add("tiff of ImageJ", {{"x", tiff(volume, {imagej + "loop=false\n", 10, 20, true})}}, {0.02, 0.01, 0.03},
      "ImageJ tags");
  add("tiff of ImageJ with one directory", {{"x", tiff(volume, {imagej, 10, 20, true, true})}},
      {0.02, 0.01, 0.03}, "ImageJ tags");
  const std::string ome =
      "<?xml version=\"1.0\"?><OME><Image><Pixels PhysicalSizeX=\"10\" PhysicalSizeY=\"0.02\" "
      "PhysicalSizeYUnit=\"mm\" "
      "PhysicalSizeZ=\"30000\" PhysicalSizeZUnit=\"nm\"/></Image></OME>";
  add("tiff with OME tags", {{"x", tiff(volume, {ome})}}, {0.02, 0.01, 0.03}, "OME tags");
  add("tiff with 64-bit offsets", {{"x", tiff(volume, {.wide = true})}});
  add("tiff in LZW, white is zero", {{"x", tiff(volume, {.compression = 5, .white_is_zero = true})}});
  add("tiff in deflate", {{"x", tiff(volume, {.compression = 8})}});
  add("tiff in PackBits", {{"x", tiff(volume, {.compression = 32773})}});
  std::map<std::string, std::string> slices{{"slices/notes.txt", "?"}, {"slices/.scan0.png", "?"}};
  for (std::size_t i = 0; i < volume.bscans; ++i) {
    slices["slices/scan" + text(6 * i * i) + ".PNG"] = png(volume, i);  // 0, 6, 24, 54
  }
  add("folder", slices, {}, "", "slices");
  add("raw", {{"x", std::string(128, 'h') + encoded(volume.samples("bad"), "i4", true) + "tail"}});
  written.back().raw =
      RawLayout{volume.depth, volume.ascans, volume.bscans, {SampleType::int32, true}, 128, "--raw"};
  return written;
}

}  // namespace oct::app::test
