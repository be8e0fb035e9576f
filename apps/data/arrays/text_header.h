// Headers of lines of text, in front of samples or in a file of their own.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data/arrays/array_reader.h"
#include "data/formats/input_file.h"

namespace oct::app {

std::string_view without_blanks(std::string_view text);
std::vector<std::string_view> words_of(std::string_view text);
bool parse_double(std::string_view text, double& value);

class TextHeader {
 public:
  // what: "the NRRD header".
  TextHeader(InputFile& file, std::string what);

  // The next line without its end and the blanks around it; nothing after the last.
  std::optional<std::string_view> next_line();
  std::uint64_t position() const { return position_; }  // behind the lines taken so far

  void set_field(const std::string& name, std::string_view value) { fields_[name] = without_blanks(value); }
  const std::string* field(std::string_view name) const;   // null: there is none
  const std::string& needed(std::string_view name) const;  // fails where there is none

  [[noreturn]] void fail(const std::string& reason) const;

  std::vector<double> numbers(std::string_view name, std::string_view text) const;
  std::uint64_t whole_number(std::string_view name, std::string_view text) const;

  // The sizes along the axes, the fastest first. Axes of one sample do not count where there are more than three.
  // axes: which axes of the file the three are.
  std::array<std::uint64_t, 3> sizes(std::string_view text, std::vector<std::size_t>& axes) const;

  // A step per axis of these.
  std::array<double, 3> steps_of(const std::vector<double>& all, const std::vector<std::size_t>& axes) const;

  std::filesystem::path data_file(std::string_view name) const;

 private:
  const std::filesystem::path path_;
  const std::string what_;
  const std::string text_;
  std::map<std::string, std::string, std::less<>> fields_;
  std::size_t position_ = 0;
};

// The steps of the array's axes in millimetres. Steps of 1 without a unit are those of a program that knows of none,
// and tell nothing; others are taken as millimetres.
FileSpacing file_spacing(const std::array<double, 3>& steps, std::optional<double> unit_mm,
                         const std::string& source);

}  // namespace oct::app
