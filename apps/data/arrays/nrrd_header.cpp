#include "data/arrays/nrrd_header.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "data/arrays/length_unit.h"
#include "data/arrays/text_header.h"

namespace oct::app {
namespace {

const std::map<std::string_view, SampleType>& nrrd_types() {
  using enum SampleType;
  static const std::map<std::string_view, SampleType> types{{"signed char", int8},
                                                            {"int8", int8},
                                                            {"int8_t", int8},
                                                            {"uchar", uint8},
                                                            {"unsigned char", uint8},
                                                            {"uint8", uint8},
                                                            {"uint8_t", uint8},
                                                            {"short", int16},
                                                            {"short int", int16},
                                                            {"signed short", int16},
                                                            {"signed short int", int16},
                                                            {"int16", int16},
                                                            {"int16_t", int16},
                                                            {"ushort", uint16},
                                                            {"unsigned short", uint16},
                                                            {"unsigned short int", uint16},
                                                            {"uint16", uint16},
                                                            {"uint16_t", uint16},
                                                            {"int", int32},
                                                            {"signed int", int32},
                                                            {"int32", int32},
                                                            {"int32_t", int32},
                                                            {"uint", uint32},
                                                            {"unsigned int", uint32},
                                                            {"uint32", uint32},
                                                            {"uint32_t", uint32},
                                                            {"longlong", int64},
                                                            {"long long", int64},
                                                            {"long long int", int64},
                                                            {"signed long long", int64},
                                                            {"signed long long int", int64},
                                                            {"int64", int64},
                                                            {"int64_t", int64},
                                                            {"ulonglong", uint64},
                                                            {"unsigned long long", uint64},
                                                            {"unsigned long long int", uint64},
                                                            {"uint64", uint64},
                                                            {"uint64_t", uint64},
                                                            {"float", float32},
                                                            {"double", float64}};
  return types;
}

class NrrdHeader {
 public:
  explicit NrrdHeader(InputFile& file) : header_(file, "the NRRD header") {}

  ArrayDescription read() {
    read_fields();
    description_.origin = "the NRRD header";
    description_.sizes = header_.sizes(header_.needed("sizes"), axes_);
    if (header_.whole_number("dimension", header_.needed("dimension")) !=
        words_of(header_.needed("sizes")).size()) {
      header_.fail("the NRRD header's sizes are not as many as its dimension");
    }
    const std::string* const kinds = header_.field("kinds");
    for (const char* const kind : {"color", "vector", "matrix", "complex"}) {
      if (kinds && kinds->find(kind) != std::string::npos)
        header_.fail("NRRD samples of the kinds " + *kinds + " are not supported");
    }
    read_type();
    read_place();
    read_spacing();
    return description_;
  }

 private:
  void read_fields() {
    header_.next_line();  // the magic
    for (std::optional<std::string_view> line; (line = header_.next_line());) {
      if (line->empty()) return;
      // "key:=value" is the user's own.
      const std::size_t colon = line->find(':');
      if (line->front() == '#' || colon == std::string_view::npos || line->substr(colon).starts_with(":="))
        continue;
      std::string name(line->substr(0, colon));
      if (name == "datafile") name = "data file";
      if (name == "lineskip") name = "line skip";
      if (name == "byteskip") name = "byte skip";
      header_.set_field(name, line->substr(colon + 1));
      if (name == "data file" && header_.needed(name).starts_with("LIST")) return;  // names of files follow
    }
    if (!header_.field("data file")) header_.fail("the NRRD header has no end");
  }

  void read_type() {
    const auto type = nrrd_types().find(header_.needed("type"));
    if (type == nrrd_types().end())
      header_.fail("samples of type '" + header_.needed("type") + "' are not supported");
    description_.format.type = type->second;
    const std::string* const endian = header_.field("endian");
    if (!endian && bytes_of(type->second) > 1 && header_.needed("encoding") == "raw") {
      header_.fail("the NRRD header lacks 'endian'");
    }
    description_.format.big_endian = endian && *endian == "big";
  }

  void read_place() {
    const std::string& encoding = header_.needed("encoding");
    if (encoding == "gzip" || encoding == "gz") {
      description_.compression = Compression::zlib_or_gzip;
    } else if (encoding != "raw") {
      header_.fail("NRRD data in the encoding '" + encoding + "' are not supported; save raw or gzip");
    }
    description_.data_begin = header_.position();
    if (const std::string* const name = header_.field("data file")) {
      if (name->starts_with("LIST") || name->find('%') != std::string::npos) {
        header_.fail("NRRD data in several files are not supported");
      }
      description_.data_file = header_.data_file(*name);
      description_.data_begin = 0;
    }
    if (const std::string* const lines = header_.field("line skip")) {
      if (header_.whole_number("line skip", *lines) != 0) header_.fail("'line skip' is not supported");
    }
    const std::string* const bytes = header_.field("byte skip");
    if (bytes && *bytes == "-1") {
      if (encoding != "raw") header_.fail("'byte skip' of -1 needs the encoding raw");
      description_.at_the_end = true;
    } else if (bytes) {
      description_.skip = header_.whole_number("byte skip", *bytes);
    }
  }

  void read_spacing() {
    const std::string* const directions = header_.field("space directions");
    const std::string* const spacings = header_.field("spacings");
    if (!directions && !spacings) return;
    const std::vector<double> all =
        directions ? lengths_of(*directions) : header_.numbers("spacings", *spacings);
    description_.spacing =
        file_spacing(header_.steps_of(all, axes_), unit(directions != nullptr), "NRRD header");
  }

  // Of "(0,0,0.1) none (0,0.1,0)", one per axis.
  std::vector<double> lengths_of(std::string_view text) const {
    std::vector<double> lengths;
    for (text = without_blanks(text); !text.empty(); text = without_blanks(text)) {
      if (text.starts_with("none")) {
        lengths.push_back(0);
        text.remove_prefix(4);
        continue;
      }
      const std::size_t end = text.find(')');
      if (text.front() != '(' || end == std::string_view::npos)
        header_.fail("'space directions' are malformed");
      std::string inside(text.substr(1, end - 1));
      std::ranges::replace(inside, ',', ' ');
      double sum = 0;
      for (const double number : header_.numbers("space directions", inside)) sum += number * number;
      lengths.push_back(std::sqrt(sum));
      text.remove_prefix(end + 1);
    }
    return lengths;
  }

  // The first quoted one that is a length: nobody measures the axes of one array in several units.
  std::optional<double> unit(bool of_space) const {
    const std::string* const units = header_.field(of_space ? "space units" : "units");
    for (std::size_t begin = 0; units && (begin = units->find('"', begin)) != std::string::npos;) {
      const std::size_t end = units->find('"', begin + 1);
      if (end == std::string::npos) break;
      const std::optional<double> mm =
          millimetres_of(std::string_view(*units).substr(begin + 1, end - begin - 1));
      if (mm) return mm;
      begin = end + 1;
    }
    return std::nullopt;
  }

  TextHeader header_;
  std::vector<std::size_t> axes_;
  ArrayDescription description_;
};

}  // namespace

ArrayDescription read_nrrd_header(InputFile& file) {
  return NrrdHeader(file).read();
}

}  // namespace oct::app
