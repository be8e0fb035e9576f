// Plays input from a file as a person would give it: one event a frame, through ImGui's input, while the clock goes on by a
// sixtieth of a second a frame. docs/octview.md has its language.
#pragma once

#include <array>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "octview/window/window.h"

namespace oct::app {

class Viewer;

class InputScript {
 public:
  static constexpr double frame_seconds = 1.0 / 60;

  // Throws a ReadError.
  explicit InputScript(const std::filesystem::path& file);

  // What the frame that begins gets. Points are scaled to pixels. Throws std::runtime_error when an item is not there.
  void feed(float scale);
  // What happens when the frame is drawn. False when the script is over.
  bool after_frame(Window& window, Viewer& viewer);

 private:
  enum class Action {
    move,
    press,
    release,
    wheel,
    key_down,
    key_up,
    type,
    idle,
    wait,
    capture,
    state,
    open,
    theme,
    quit
  };
  // A place on the screen: points, or parts of an item.
  struct Place {
    std::string item;
    std::array<double, 2> position{0.5, 0.5};
  };
  struct Step {
    Action action;
    std::size_t line;
    Place place;
    Place to;  // the place lies between the two, by the share
    double share = 0;
    int number = 0;     // button, key, frames
    double amount = 0;  // of the wheel
    std::string text;
  };

  void parse(const std::string& line, std::size_t number);
  void parse_drag(const std::vector<std::string>& words, std::size_t line);
  void parse_key(const std::string& chord, std::size_t line);
  Place take_place(const std::vector<std::string>& words, std::size_t& next, std::size_t line) const;
  [[noreturn]] void refuse(std::size_t line, const std::string& reason) const;
  std::array<float, 2> find(const Place& place, const Step& step, float scale) const;
  void add(Action action, std::size_t line);
  void add(Action action, std::size_t line, const Place& place, int number = 0);

  std::filesystem::path file_;
  std::vector<Step> steps_;
  std::size_t next_ = 0;
  int idle_frames_ = 0;
  int quiet_frames_ = 0;
  std::optional<std::chrono::steady_clock::time_point> waits_since_;
  std::array<float, 2> mouse_{-1, -1};
  std::array<bool, 3> buttons_{};
  std::array<bool, 512> keys_{};
};

}  // namespace oct::app
