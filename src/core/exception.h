// Errors with their kind, which a client asks for instead of comparing texts. What is wrong with an argument is a
// std::invalid_argument, and a missing byte of memory a std::bad_alloc; everything else that the library throws
// is one of these.
#pragma once

#include <exception>
#include <stdexcept>
#include <string>

namespace oct {

// The numbers are those that clients see.
enum class ErrorKind : int {
  none = 0,
  argument = 1,
  state = 2,
  opengl = 3,
  memory = 4,
  device = 5,
  system = 6
};

// An error whose kind is known where it happens only, or that carries another one's on. The text may be empty.
class Exception : public std::runtime_error {
 public:
  Exception(ErrorKind kind, const std::string& message) : std::runtime_error(message), kind_(kind) {}
  ErrorKind kind() const noexcept { return kind_; }

 private:
  ErrorKind kind_;
};

template <ErrorKind error_kind>
class ErrorOf : public Exception {
 public:
  explicit ErrorOf(const std::string& message) : Exception(error_kind, message) {}
};

using StateError = ErrorOf<ErrorKind::state>;    // the wrong time, thread or context
using OpenGLError = ErrorOf<ErrorKind::opengl>;  // OpenGL, Direct3D and what they share
using MemoryError = ErrorOf<ErrorKind::memory>;  // of the graphics card; of the host it is std::bad_alloc
using DeviceError = ErrorOf<ErrorKind::device>;  // the device library
using SystemError = ErrorOf<ErrorKind::system>;  // files, threads, windows, fonts

// Of whatever was thrown. What says nothing of its kind comes from the system.
ErrorKind kind_of(const std::exception& error) noexcept;

// For failures that also leave their text on the standard error stream.
[[noreturn]] void write_error_and_throw(const Exception& error);

}  // namespace oct
