// What mouse and keys did, in its order, for an interface that looks once a frame at what is down. Behind a slow frame several
// things wait; each gets a frame of its own where a later one would hide it: a key that went down and up, a drag and its end.
#pragma once

#include <array>
#include <cfloat>
#include <deque>

struct ImGuiIO;

namespace oct::app {

class InputQueue {
 public:
  void move(double x, double y) { waiting_.push_back({Kind::move, 0, true, to_float(x), to_float(y)}); }
  void leave() { waiting_.push_back({Kind::move, 0, false, 0, 0}); }  // of the mouse, the window
  void button(int button, bool down) { waiting_.push_back({Kind::button, button, down, 0, 0}); }
  void wheel(double x, double y) { waiting_.push_back({Kind::wheel, 0, true, to_float(x), to_float(y)}); }
  void key(int key, bool down) { waiting_.push_back({Kind::key, key, down, 0, 0}); }
  void character(unsigned code) { waiting_.push_back({Kind::character, static_cast<int>(code), true, 0, 0}); }

  bool is_empty() const { return waiting_.empty(); }

  // As much as fits into one frame. At least the first of what waits does.
  void feed(ImGuiIO& io);

 private:
  enum class Kind { move, button, wheel, key, character };
  struct Event {
    Kind kind;
    int code;   // of the button, the key or the character
    bool down;  // for the mouse: in the window
    float x, y;
  };
  struct Taken {  // by a frame
    bool move = false;
    bool press = false;  // or the release of a button
    bool wheel = false;
  };

  static float to_float(double value) { return static_cast<float>(value); }
  static bool fits(const Event& event, const Taken& taken);
  void take(const Event& event, Taken& taken, ImGuiIO& io);

  std::deque<Event> waiting_;
  std::array<float, 2> mouse_{-FLT_MAX, -FLT_MAX};  // ImGui's sign for nowhere
  std::array<bool, 5> buttons_{};
};

}  // namespace oct::app
