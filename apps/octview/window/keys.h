// Keys of the interface.
#pragma once

#include <optional>
#include <string_view>

namespace oct::app {

// As the window system's library numbers them, whose numbers ImGui takes over; those of letters and digits are their ASCII codes.
enum class Key : int {
  escape = 256,
  enter = 257,
  tab = 258,
  backspace = 259,
  del = 261,
  right = 262,
  left = 263,
  down = 264,
  up = 265,
  page_up = 266,
  page_down = 267,
  home = 268,
  end = 269,
  shift = 340,
  control = 341,
  alt = 342,
};
constexpr Key letter(char upper_case) {
  return static_cast<Key>(upper_case);
}

// Whether the key went down in this frame (or repeats), with exactly these modifiers, and nobody is typing text.
bool is_pressed(Key key, bool control = false, bool shift = false);
bool is_question_mark_pressed();

// "R", "3", "Left", "PageUp", "Escape"; none: unknown name.
std::optional<Key> find_key(std::string_view name);

}  // namespace oct::app
