// An exception of no particular class, with a text that may be empty.
#pragma once

#include <exception>
#include <string>
#include <utility>

#include "core/console.h"

namespace oct {

class Exception : public std::exception {
 public:
  explicit Exception(std::string message) : message_(std::move(message)) {}
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  std::string message_;
};

// For failures that also leave their text on the standard error stream.
[[noreturn]] inline void write_error_and_throw(const std::string& message) {
  write_error(message);
  throw Exception(message);
}

}  // namespace oct
