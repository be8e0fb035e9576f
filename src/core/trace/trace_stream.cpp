#include "core/trace/trace_stream.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

#include "core/console.h"
#include "core/exception.h"
#include "core/platform.h"

namespace oct {
namespace {

constexpr std::size_t most_bytes = 64 * 1024;
constexpr auto longest_delay = std::chrono::milliseconds(200);
constexpr std::string_view closing = "\n]\n";

// How many bytes of UTF-8 make the character that the text begins with; 0 where they make none.
std::size_t character_length(std::string_view text) {
  const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
  const std::size_t length = byte(0) < 0x80   ? 1
                             : byte(0) < 0xC2 ? 0
                             : byte(0) < 0xE0 ? 2
                             : byte(0) < 0xF0 ? 3
                             : byte(0) < 0xF5 ? 4
                                              : 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80) return 0;
  }
  const unsigned second = byte(1);
  const bool wrong = (byte(0) == 0xE0 && second < 0xA0) || (byte(0) == 0xED && second > 0x9F) ||
                     (byte(0) == 0xF0 && second < 0x90) || (byte(0) == 0xF4 && second > 0x8F);
  return wrong ? 0 : length;
}

}  // namespace

TraceStream::TraceStream(const std::string& path)
    : path_(path), process_(current_process_id()), file_(std::fopen(path.c_str(), "wb")) {
  if (!file_) throw SystemError("The trace file could not be opened: " + system_error_text());
  std::setvbuf(file_.get(), nullptr, _IONBF, 0);
  events_ = "[\n{\"ph\":\"M\",\"name\":\"process_name\",\"pid\":" + std::to_string(process_) +
            ",\"args\":{\"name\":\"OCT rendering\"}}";
  write();
}

TraceStream::~TraceStream() {
  try {
    const Time now = std::chrono::steady_clock::now();
    for (auto& [track, count] : open_) {
      for (; count > 0; --count) {
        add("E", track, now);
        events_ += '}';
      }
    }
    if (file_) write();
  } catch (const std::exception& error) {
    write_error(error.what());  // the file is whole as it is
  }
}

bool TraceStream::is_file(const std::string& path) const {
  std::error_code ignored;
  return std::filesystem::equivalent(path, path_, ignored);
}

void TraceStream::name_track(std::uint32_t track, std::string_view name) {
  events_ += ",\n{\"ph\":\"M\",\"name\":\"thread_name\",\"pid\":" + std::to_string(process_) +
             ",\"tid\":" + std::to_string(track) + ",\"args\":{\"name\":\"";
  add_escaped(name);
  events_ += "\"}}";
}

void TraceStream::begin(std::uint32_t track, std::string_view name, Time time) {
  ++open_[track];
  add("B", track, time);
  events_ += ",\"name\":\"";
  add_escaped(name);
  events_ += '"';
  finish_event(time);
}

void TraceStream::end(std::uint32_t track, Time time) {
  const auto count = open_.find(track);
  if (count == open_.end()) return;
  if (--count->second == 0) open_.erase(count);
  add("E", track, time);
  finish_event(time);
}

void TraceStream::instant(std::uint32_t track, std::string_view name, Time time) {
  add("i", track, time);
  events_ += ",\"s\":\"t\",\"name\":\"";
  add_escaped(name);
  events_ += '"';
  finish_event(time);
}

void TraceStream::wait(std::string_view name, Time begin, Time end) {
  ++waits_;
  for (const bool first : {true, false}) {
    add(first ? "b" : "e", 0, first ? begin : end);
    events_ += ",\"cat\":\"wait\",\"id\":" + std::to_string(waits_) + ",\"name\":\"";
    add_escaped(name);
    events_ += '"';
    finish_event(end);
  }
}

// Microseconds, with the nanoseconds behind the point.
void TraceStream::add(const char* phase, std::uint32_t track, Time time) {
  const auto since = std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch()).count();
  std::array<char, 128> text;
  std::snprintf(text.data(), text.size(), ",\n{\"ph\":\"%s\",\"pid\":%u,\"tid\":%u,\"ts\":%lld.%03d", phase,
                static_cast<unsigned>(process_), static_cast<unsigned>(track),
                static_cast<long long>(since / 1000), static_cast<int>(since % 1000));
  events_ += text.data();
}

void TraceStream::finish_event(Time now) {
  events_ += '}';
  if (events_.size() >= most_bytes || now - written_ >= longest_delay) write();
}

void TraceStream::add_escaped(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = character_length(text);
    const auto first = static_cast<unsigned char>(text[0]);
    if (length == 0) {
      events_ += "\\ufffd";
    } else if (first < 0x20) {
      constexpr const char* digits = "0123456789abcdef";
      (events_ += "\\u00") += {digits[first / 16], digits[first % 16]};
    } else {
      if (first == '"' || first == '\\') events_ += '\\';
      events_ += text.substr(0, length);
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
}

void TraceStream::write() {
  if (current_process_id() != process_) return events_.clear();
  const auto size = static_cast<long>(events_.size());
  events_ += closing;
  const bool written = std::fseek(file_.get(), whole_, SEEK_SET) == 0 &&
                       std::fwrite(events_.data(), 1, events_.size(), file_.get()) == events_.size();
  if (!written) fail();
  whole_ += size;
  events_.clear();
  written_ = std::chrono::steady_clock::now();
}

// There was room for the closing bracket where it stood before.
void TraceStream::fail() {
  const std::string reason = system_error_text();
  if (whole_ > 0 && std::fseek(file_.get(), whole_, SEEK_SET) == 0)
    std::fwrite(closing.data(), 1, closing.size(), file_.get());
  file_.reset();
  std::error_code ignored;
  if (whole_ > 0)
    std::filesystem::resize_file(path_, static_cast<std::uintmax_t>(whole_) + closing.size(), ignored);
  open_.clear();
  throw SystemError("The trace file could not be written: " + reason);
}

}  // namespace oct
