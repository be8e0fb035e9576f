// The reasons for which a run ends, and the exit code that each of them gives.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace oct::app {

enum class ExitCode {
  Ok = 0,
  RenderingFailed = 1,
  BadCommandLine = 2,
  InputFailed = 3,
  OutputFailed = 4,
  DeviceFailed = 5
};

class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
  ExitCode code() const { return code_; }

 private:
  ExitCode code_;
};

// Paths are UTF-8 in messages and on the command line, whatever the platform's own encoding is.
inline std::string toUtf8(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

inline std::filesystem::path fromUtf8(const std::string& text) {
  return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

inline Failure badCommandLine(const std::string& reason) {
  return {ExitCode::BadCommandLine, reason};
}

inline Failure inputFailure(const std::filesystem::path& file, const std::string& reason) {
  return {ExitCode::InputFailed, toUtf8(file) + ": " + reason};
}

inline Failure outputFailure(const std::filesystem::path& file, const std::string& reason) {
  return {ExitCode::OutputFailed, toUtf8(file) + ": " + reason};
}

inline Failure deviceFailure(const std::string& reason) {
  return {ExitCode::DeviceFailed, reason};
}

}  // namespace oct::app
