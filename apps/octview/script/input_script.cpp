#include "octview/script/input_script.h"

#include <fstream>
#include <iomanip>
#include <sstream>
#include <stdexcept>

#include <imgui.h>

#include "data/file_errors.h"
#include "data/formats/png_writer.h"
#include "octview/viewer.h"
#include "octview/window/item_index.h"
#include "octview/window/keys.h"

namespace oct::app {
namespace {

constexpr auto longest_wait = std::chrono::seconds(120);
constexpr int drag_steps = 6;

// Words, of which those with blanks stand in double quotes.
std::vector<std::string> words_of(const std::string& line) {
  std::istringstream stream(line);
  std::vector<std::string> words;
  std::string word;
  while (stream >> std::ws && stream.peek() != std::char_traits<char>::eof()) {
    if (stream.peek() == '"') {
      stream >> std::quoted(word);
    } else {
      stream >> word;
    }
    words.push_back(word);
  }
  return words;
}

std::optional<double> number_of(const std::string& word) {
  std::istringstream stream(word);
  stream.imbue(std::locale::classic());
  double number = 0;
  if (!(stream >> number) || !stream.eof()) return {};
  return number;
}

std::optional<int> button_of(const std::string& word) {
  if (word == "left") return 0;
  if (word == "right") return 1;
  if (word == "middle") return 2;
  return {};
}

}  // namespace

InputScript::InputScript(const std::filesystem::path& file) : file_(file) {
  std::ifstream stream(file);
  if (!stream) throw ReadError(file, "the script cannot be read");
  std::string line;
  for (std::size_t number = 1; std::getline(stream, line); ++number) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    parse(line, number);
  }
}

void InputScript::refuse(std::size_t line, const std::string& reason) const {
  throw ReadError(file_, "line " + std::to_string(line) + ": " + reason);
}

void InputScript::add(Action action, std::size_t line) {
  add(action, line, Place());
}

void InputScript::add(Action action, std::size_t line, const Place& place, int number) {
  Step step{};
  step.action = action;
  step.line = line;
  step.place = step.to = place;
  step.number = number;
  steps_.push_back(std::move(step));
}

InputScript::Place InputScript::take_place(const std::vector<std::string>& words, std::size_t& next,
                                           std::size_t line) const {
  Place place;
  if (next >= words.size()) refuse(line, "a place is missing");
  if (!number_of(words[next])) place.item = words[next++];
  if (next + 1 < words.size() && number_of(words[next]) && number_of(words[next + 1])) {
    place.position = {*number_of(words[next]), *number_of(words[next + 1])};
    next += 2;
  } else if (place.item.empty()) {
    refuse(line, "a place is an item, an item with two parts of it, or two numbers in points");
  }
  return place;
}

void InputScript::parse_drag(const std::vector<std::string>& words, std::size_t line) {
  std::size_t next = 1;
  const Place from = take_place(words, next, line);
  const Place to = take_place(words, next, line);
  const std::optional<int> button = next < words.size() ? button_of(words[next]) : 0;
  if (!button) refuse(line, "'" + words[next] + "' is no button");
  add(Action::move, line, from);
  add(Action::press, line, {}, *button);
  for (int i = 1; i <= drag_steps; ++i) {
    add(Action::move, line, from);
    steps_.back().to = to;
    steps_.back().share = static_cast<double>(i) / drag_steps;
  }
  add(Action::release, line, {}, *button);
}

void InputScript::parse_key(const std::string& chord, std::size_t line) {
  std::vector<Key> keys;
  std::istringstream stream(chord);
  for (std::string name; std::getline(stream, name, '+');) {
    const std::optional<Key> key = find_key(name);
    if (!key) refuse(line, "'" + name + "' is no key");
    keys.push_back(*key);
  }
  for (const Key key : keys) add(Action::key_down, line, {}, static_cast<int>(key));
  for (auto key = keys.rbegin(); key != keys.rend(); ++key)
    add(Action::key_up, line, {}, static_cast<int>(*key));
}

void InputScript::parse(const std::string& line, std::size_t number) {
  const std::vector<std::string> words = words_of(line);
  if (words.empty() || words[0][0] == '#') return;
  const std::string& verb = words[0];
  const auto argument = [&]() -> const std::string& {
    if (words.size() != 2) refuse(number, verb + " wants one argument");
    return words[1];
  };
  const auto with_text = [&](Action action) {
    add(action, number);
    steps_.back().text = argument();
  };
  std::size_t next = 1;
  if (verb == "move") {
    add(Action::move, number, take_place(words, next, number));
  } else if (verb == "click" || verb == "double") {
    add(Action::move, number, take_place(words, next, number));
    add(Action::idle, number, {}, 1);
    for (int i = 0; i < (verb == "click" ? 1 : 2); ++i) {
      add(Action::press, number);
      add(Action::release, number);
    }
  } else if (verb == "drag") {
    parse_drag(words, number);
  } else if (verb == "press" || verb == "release") {
    const std::optional<int> button = button_of(argument());
    if (!button) refuse(number, "'" + words[1] + "' is no button");
    add(verb == "press" ? Action::press : Action::release, number, {}, *button);
  } else if (verb == "wheel") {
    const std::optional<double> amount = number_of(argument());
    if (!amount) refuse(number, "'" + words[1] + "' is no number");
    add(Action::wheel, number);
    steps_.back().amount = *amount;
  } else if (verb == "hold" || verb == "let") {
    const std::optional<Key> key = find_key(argument());
    if (!key) refuse(number, "'" + words[1] + "' is no key");
    add(verb == "hold" ? Action::key_down : Action::key_up, number, {}, static_cast<int>(*key));
  } else if (verb == "key") {
    parse_key(argument(), number);
  } else if (verb == "frames") {
    const std::optional<double> frames = number_of(argument());
    if (!frames || !(*frames >= 1 && *frames <= 100000))
      refuse(number, "'" + words[1] + "' is no number of frames");
    add(Action::idle, number, {}, static_cast<int>(*frames));
  } else if (verb == "wait" && words.size() == 1) {
    add(Action::wait, number);
  } else if (verb == "quit" && words.size() == 1) {
    add(Action::quit, number);
  } else if (verb == "type") {
    with_text(Action::type);
  } else if (verb == "capture") {
    with_text(Action::capture);
  } else if (verb == "state") {
    with_text(Action::state);
  } else if (verb == "theme") {
    with_text(Action::theme);
  } else if (verb == "open") {
    with_text(Action::open);
  } else {
    refuse(number, "'" + verb + "' is no command");
  }
}

std::array<float, 2> InputScript::find(const Place& place, const Step& step, float scale) const {
  if (place.item.empty())
    return {static_cast<float>(place.position[0]) * scale, static_cast<float>(place.position[1]) * scale};
  const std::optional<IndexedItem> item = find_item(place.item);
  if (!item) {
    std::string labels;
    for (const IndexedItem& other : all_items())
      if (other.visible) labels += (labels.empty() ? "" : ", ") + other.label;
    refuse(step.line, "there is no item '" + place.item + "' on the screen, but " + labels);
  }
  return {item->from.x + (item->to.x - item->from.x) * static_cast<float>(place.position[0]),
          item->from.y + (item->to.y - item->from.y) * static_cast<float>(place.position[1])};
}

void InputScript::feed(float scale) {
  ImGuiIO& io = ImGui::GetIO();
  io.DeltaTime = static_cast<float>(frame_seconds);
  io.MouseWheel = 0;
  if (next_ < steps_.size()) {
    const Step& step = steps_[next_];
    switch (step.action) {
      case Action::move: {
        const auto [x, y] = find(step.place, step, scale);
        const auto [to_x, to_y] = find(step.to, step, scale);
        const auto share = static_cast<float>(step.share);
        mouse_ = {x + (to_x - x) * share, y + (to_y - y) * share};
        break;
      }
      case Action::press:
        buttons_[static_cast<std::size_t>(step.number)] = true;
        break;
      case Action::release:
        buttons_[static_cast<std::size_t>(step.number)] = false;
        break;
      case Action::wheel:
        io.MouseWheel = static_cast<float>(step.amount);
        break;
      case Action::key_down:
        keys_[static_cast<std::size_t>(step.number)] = true;
        break;
      case Action::key_up:
        keys_[static_cast<std::size_t>(step.number)] = false;
        break;
      case Action::type:
        io.AddInputCharactersUTF8(step.text.c_str());
        break;
      default:
        break;
    }
  }
  io.MousePos = {mouse_[0], mouse_[1]};
  for (std::size_t i = 0; i < buttons_.size(); ++i) io.MouseDown[i] = buttons_[i];
  for (std::size_t i = 0; i < keys_.size(); ++i) io.KeysDown[i] = keys_[i];
  io.KeyCtrl = keys_[static_cast<std::size_t>(Key::control)];
  io.KeyShift = keys_[static_cast<std::size_t>(Key::shift)];
  io.KeyAlt = keys_[static_cast<std::size_t>(Key::alt)];
  forget_items();
}

bool InputScript::after_frame(Window& window, Viewer& viewer) {
  if (next_ >= steps_.size()) return false;
  const Step& step = steps_[next_];
  switch (step.action) {
    case Action::idle:
      if (++idle_frames_ < step.number) return true;
      idle_frames_ = 0;
      break;
    case Action::wait: {
      const auto now = std::chrono::steady_clock::now();
      if (!waits_since_) waits_since_ = now;
      if (now - *waits_since_ > longest_wait)
        refuse(step.line, "the program is busy for more than two minutes");
      quiet_frames_ = viewer.is_busy() ? 0 : quiet_frames_ + 1;
      if (quiet_frames_ < 3) return true;
      quiet_frames_ = 0;
      waits_since_.reset();
      break;
    }
    case Action::capture:
      write_png(from_utf8(step.text), window.capture());
      break;
    case Action::state: {
      std::ofstream stream(from_utf8(step.text), std::ios::binary);
      stream << viewer.description() << '\n';
      if (!stream.flush()) throw WriteError(from_utf8(step.text), "the state cannot be written");
      break;
    }
    case Action::open:
      viewer.open({from_utf8(step.text)});
      break;
    case Action::theme:
      window.set_dark(step.text != "light");
      break;
    case Action::quit:
      return false;
    default:
      break;
  }
  ++next_;
  return true;
}

}  // namespace oct::app
