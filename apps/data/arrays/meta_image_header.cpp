#include "data/arrays/meta_image_header.h"

#include <map>

#include "data/arrays/length_unit.h"
#include "data/arrays/text_header.h"

namespace oct::app {
namespace {

const std::map<std::string_view, SampleType>& meta_image_types() {
  using enum SampleType;
  static const std::map<std::string_view, SampleType> types{
      {"MET_CHAR", int8},       {"MET_UCHAR", uint8},       {"MET_SHORT", int16},   {"MET_USHORT", uint16},
      {"MET_INT", int32},       {"MET_UINT", uint32},       {"MET_LONG", int32},    {"MET_ULONG", uint32},
      {"MET_LONG_LONG", int64}, {"MET_ULONG_LONG", uint64}, {"MET_FLOAT", float32}, {"MET_DOUBLE", float64}};
  return types;
}

class MetaImageHeader {
 public:
  explicit MetaImageHeader(InputFile& file) : header_(file, "the MetaImage header") {}

  ArrayDescription read() {
    read_fields();
    description_.origin = "the MetaImage header";
    std::vector<std::size_t> axes;
    description_.sizes = header_.sizes(header_.needed("DimSize"), axes);
    if (header_.whole_number("NDims", header_.needed("NDims")) !=
        words_of(header_.needed("DimSize")).size()) {
      header_.fail("the MetaImage header's sizes are not as many as its NDims");
    }
    read_type();
    read_place();
    read_spacing(axes);
    return description_;
  }

 private:
  // The data file is named last: samples may follow.
  void read_fields() {
    for (std::optional<std::string_view> line; (line = header_.next_line());) {
      const std::size_t sign = line->find('=');
      if (sign == std::string_view::npos) continue;
      const std::string name(without_blanks(line->substr(0, sign)));
      header_.set_field(name, line->substr(sign + 1));
      if (name == "ElementDataFile") return;
    }
    header_.fail("the MetaImage header lacks 'ElementDataFile'");
  }

  bool flag(std::string_view name, bool fallback) const {
    const std::string* const value = header_.field(name);
    return value ? value->starts_with('T') || value->starts_with('t') || *value == "1" : fallback;
  }

  void read_type() {
    const std::string& name = header_.needed("ElementType");
    const auto type = meta_image_types().find(name);
    if (type == meta_image_types().end()) header_.fail("samples of type '" + name + "' are not supported");
    if (const std::string* const channels = header_.field("ElementNumberOfChannels");
        channels && *channels != "1") {
      header_.fail("only one channel is supported, there are " + *channels);
    }
    if (!flag("BinaryData", true)) header_.fail("samples as text are not supported; save binary data");
    description_.format = {type->second, flag("BinaryDataByteOrderMSB", flag("ElementByteOrderMSB", false))};
  }

  void read_place() {
    if (flag("CompressedData", false)) description_.compression = Compression::zlib_or_gzip;
    const std::string& name = header_.needed("ElementDataFile");
    if (name == "LOCAL" || name == "Local" || name == "local") {
      description_.data_begin = header_.position();
    } else if (name.starts_with("LIST") || name.find('%') != std::string::npos) {
      header_.fail("MetaImage data in several files are not supported");
    } else {
      description_.data_file = header_.data_file(name);
    }
    const std::string* const bytes = header_.field("HeaderSize");
    if (!bytes) return;
    if (*bytes == "-1") {
      if (description_.compression != Compression::none) header_.fail("'HeaderSize' of -1 needs raw data");
      description_.at_the_end = true;
    } else {
      const std::uint64_t skipped = header_.whole_number("HeaderSize", *bytes);
      if (skipped > 0 && !description_.data_file.empty()) description_.data_begin = skipped;
    }
  }

  void read_spacing(const std::vector<std::size_t>& axes) {
    const std::string* text = header_.field("ElementSpacing");
    if (!text) text = header_.field("ElementSize");
    if (!text) return;
    const std::vector<double> all = header_.numbers("ElementSpacing", *text);
    const std::string* const unit = header_.field("DistanceUnits");
    description_.spacing = file_spacing(header_.steps_of(all, axes),
                                        unit ? millimetres_of(*unit) : std::nullopt, "MetaImage header");
  }

  TextHeader header_;
  ArrayDescription description_;
};

}  // namespace

ArrayDescription read_meta_image_header(InputFile& file) {
  return MetaImageHeader(file).read();
}

}  // namespace oct::app
