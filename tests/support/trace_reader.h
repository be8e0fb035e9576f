// Reads a trace as a viewer would: as JSON, and by tracks whose phases nest.
#pragma once

#include <algorithm>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/platform.h"
#include "core/trace/thread_name.h"
#include "support/test_context.h"

namespace oct::test {

// A flat object of an array of objects: texts with their escapes, numbers as they stand; of inner objects the text.
using TraceEvent = std::map<std::string, std::string>;

class JsonReader {
 public:
  explicit JsonReader(std::string text) : text_(std::move(text)) {}

  // Throws for anything but one array of objects.
  std::vector<TraceEvent> events() {
    std::vector<TraceEvent> events;
    take('[');
    do events.push_back(object());
    while (accept(','));
    take(']');
    if (next() != '\0') fail();
    return events;
  }

 private:
  [[noreturn]] void fail() const {
    throw std::runtime_error("no JSON at " + text_.substr(at_ > 40 ? at_ - 40 : 0, 80));
  }
  char next() {
    at_ = std::min(text_.find_first_not_of(" \n", at_), text_.size());
    return at_ < text_.size() ? text_[at_] : '\0';
  }
  bool accept(char wanted) { return next() == wanted && ++at_ > 0; }
  void take(char wanted) {
    if (!accept(wanted)) fail();
  }

  TraceEvent object() {
    TraceEvent fields;
    take('{');
    do {
      const std::string name = text();
      take(':');
      if (!fields.emplace(name, value()).second) fail();
    } while (accept(','));
    take('}');
    return fields;
  }

  std::string value() {
    if (next() == '"') return text();
    const std::size_t begin = at_;
    if (next() == '{') {
      object();
    } else {
      at_ = text_.find_first_not_of("-0123456789.", at_);
    }
    if (at_ == begin || at_ > text_.size()) fail();
    return text_.substr(begin, at_ - begin);
  }

  std::string text() {
    take('"');
    const std::size_t begin = at_;
    for (; at_ < text_.size() && text_[at_] != '"'; ++at_) {
      if (static_cast<unsigned char>(text_[at_]) < 0x20) fail();
      if (text_[at_] == '\\') ++at_;
    }
    const std::string result = text_.substr(begin, at_ - begin);
    take('"');
    return result;
  }

  std::string text_;
  std::size_t at_ = 0;
};

// A phase of a track, in microseconds.
struct TracePhase {
  std::string name;
  std::size_t depth;
  double begin;
  double end;
};

struct Trace {
  using Phases = std::vector<TracePhase>;

  std::map<std::string, Phases> tracks;                      // by name, in the order of their ends
  std::map<std::string, std::vector<std::string>> instants;  // by the track's name
  std::map<std::string, int> waits;                          // how often each was over

  const TracePhase* find(const std::string& track, const std::string& name) const {
    const auto phases = tracks.find(track);
    if (phases == tracks.end()) return nullptr;
    const auto found = std::ranges::find(phases->second, name, &TracePhase::name);
    return found == phases->second.end() ? nullptr : &*found;
  }
};

// The name of the calling thread's track.
inline std::string own_track() {
  const std::string name = thread_name();
  return name.empty() ? "thread " + std::to_string(current_thread_id()) : name;
}

// Expects that each track's phases nest and follow each other, and that all are closed.
inline Trace read_trace(const std::filesystem::path& file) {
  Trace trace;
  std::map<std::string, std::string> names;
  std::map<std::string, std::vector<TracePhase>> open;
  std::map<std::string, double> latest;
  std::map<std::string, double> waiting;
  for (const TraceEvent& event : JsonReader(text_of(file)).events()) {
    const std::string& phase = event.at("ph");
    if (phase == "M") {
      const std::string& args = event.at("args");
      if (event.at("name") == "thread_name") names[event.at("tid")] = args.substr(9, args.size() - 11);
      continue;
    }
    const double time = std::stod(event.at("ts"));
    const std::string& track = event.at("tid");
    if (phase == "b") {
      waiting[event.at("id")] = time;
    } else if (phase == "e") {
      EXPECT_GE(time, waiting.at(event.at("id")));
      ++trace.waits[event.at("name")];
    } else {
      EXPECT_GE(time, latest[track]) << names[track];
      latest[track] = time;
      auto& stack = open[track];
      EXPECT_FALSE(names[track].empty()) << track;
      if (phase == "i") {
        trace.instants[names[track]].push_back(event.at("name"));
      } else if (phase == "B") {
        stack.push_back({event.at("name"), stack.size(), time, 0.0});
      } else if (stack.empty()) {
        ADD_FAILURE() << "an end without begin on " << names[track];
      } else {
        stack.back().end = time;
        trace.tracks[names[track]].push_back(stack.back());
        stack.pop_back();
      }
    }
  }
  for (const auto& [track, stack] : open) EXPECT_TRUE(stack.empty()) << names[track];
  return trace;
}

}  // namespace oct::test
