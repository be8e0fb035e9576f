#include "octview/window/input_queue.h"

#include <algorithm>

#include <imgui.h>

#include "octview/window/keys.h"

namespace oct::app {
namespace {

// Of both sides of the keyboard; the right ones have numbers four higher.
bool is_down(const ImGuiIO& io, Key modifier) {
  const int left = static_cast<int>(modifier);
  return io.KeysDown[left] || io.KeysDown[left + 4];
}

bool is_modifier(int key) {
  return key >= static_cast<int>(Key::shift) && key < static_cast<int>(Key::shift) + 8;
}

}  // namespace

bool InputQueue::fits(const Event& event, const Taken& taken) {
  switch (event.kind) {
    case Kind::move:
    case Kind::key:
      return !taken.press && !taken.wheel;
    case Kind::button:
      return !taken.press && !taken.wheel && !taken.move;
    case Kind::wheel:
      return !taken.press;
    case Kind::character:  // comes with the key that it belongs to
      return !taken.wheel;
  }
  return false;
}

void InputQueue::take(const Event& event, Taken& taken, ImGuiIO& io) {
  const auto index = static_cast<std::size_t>(event.code);
  switch (event.kind) {
    case Kind::move:
      // A drag goes on outside.
      if (event.down) {
        mouse_ = {event.x, event.y};
      } else if (std::ranges::count(buttons_, true) == 0) {
        mouse_ = {-FLT_MAX, -FLT_MAX};
      }
      taken.move = true;
      break;
    case Kind::button:
      if (index < buttons_.size()) buttons_[index] = event.down;
      taken.press = true;
      break;
    case Kind::wheel:
      io.MouseWheelH += event.x;
      io.MouseWheel += event.y;
      taken.wheel = true;
      break;
    case Kind::key:
      if (index < std::size(io.KeysDown)) io.KeysDown[index] = event.down;
      taken.press |= event.down && !is_modifier(event.code);
      break;
    case Kind::character:
      io.AddInputCharacter(static_cast<unsigned>(event.code));
      break;
  }
}

void InputQueue::feed(ImGuiIO& io) {
  for (Taken taken; !waiting_.empty() && fits(waiting_.front(), taken); waiting_.pop_front())
    take(waiting_.front(), taken, io);
  io.MousePos = {mouse_[0], mouse_[1]};
  std::ranges::copy(buttons_, io.MouseDown);
  io.KeyCtrl = is_down(io, Key::control);
  io.KeyShift = is_down(io, Key::shift);
  io.KeyAlt = is_down(io, Key::alt);
}

}  // namespace oct::app
