#include "octview/panels/file_chooser.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <system_error>
#include <utility>

#include "data/file_errors.h"
#include "octview/panels/widgets.h"
#include "octview/window/keys.h"

namespace oct::app {
namespace {

constexpr std::size_t most_entries = 5000;  // of a folder; the rest is reached by typing

bool begins_alike(const std::string& name, const std::string& typed) {
  return name.size() >= typed.size() &&
         std::equal(typed.begin(), typed.end(), name.begin(), [](char a, char b) {
           return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
         });
}

}  // namespace

void FileChooser::ask(std::string title, Purpose purpose, const std::filesystem::path& start) {
  title_ = std::move(title);
  purpose_ = purpose;
  wanted_ = true;
  to_replace_.clear();
  std::error_code ignored;
  std::filesystem::path whole =
      std::filesystem::absolute(start.empty() ? "." : start, ignored).lexically_normal();
  name_.fill('\0');
  if (!start.empty() && !std::filesystem::is_directory(whole, ignored)) {
    const std::string name = to_utf8(whole.filename());
    name.copy(name_.data(), name_.size() - 1);
    whole = whole.parent_path();
  }
  enter(whole);
}

void FileChooser::enter(std::filesystem::path folder) {
  folder_ = std::move(folder);
  entries_.clear();
  problem_.clear();
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder_, error), end; !error && entry != end;
       entry.increment(error)) {
    if (entries_.size() == most_entries) break;
    std::error_code ignored;
    Entry found{to_utf8(entry->path().filename()), entry->is_directory(ignored)};
    if (!found.name.starts_with('.')) entries_.push_back(std::move(found));
  }
  if (error) problem_ = "This folder cannot be read: " + error.message();
  std::ranges::sort(entries_, [](const Entry& a, const Entry& b) {
    return a.folder != b.folder ? a.folder : a.name < b.name;
  });
}

std::optional<std::filesystem::path> FileChooser::show() {
  if (wanted_) ImGui::OpenPopup(title_.c_str());
  const bool first = std::exchange(wanted_, false);
  ImGui::SetNextWindowPos(ImGui::GetMainViewport()->GetCenter(), ImGuiCond_Appearing, {0.5F, 0.5F});
  ImGui::SetNextWindowSize({em(34), em(28)}, ImGuiCond_Appearing);
  bool open = true;
  if (!ImGui::BeginPopupModal(title_.c_str(), &open, ImGuiWindowFlags_NoSavedSettings)) return {};
  if (ImGui::Button("Up") && folder_.has_relative_path()) enter(folder_.parent_path());
  ImGui::SameLine();
  ImGui::TextUnformatted(to_utf8(folder_).c_str());
  if (first) ImGui::SetKeyboardFocusHere();
  ImGui::SetNextItemWidth(-em(11));
  bool done = ImGui::InputTextWithHint("##file name", "name or path", name_.data(), name_.size(),
                                       ImGuiInputTextFlags_EnterReturnsTrue);
  ImGui::SameLine();
  done |= ImGui::Button(purpose_ == Purpose::open ? "Open##file" : "Save##file", {em(5), 0});
  ImGui::SameLine();
  if (ImGui::Button("Cancel", {em(5), 0}) || is_pressed(Key::escape)) open = false;
  if (!problem_.empty()) wrapped_text(problem_.c_str());
  ImGui::BeginChild("##entries", {0, 0}, true);
  show_entries();
  ImGui::EndChild();
  std::optional<std::filesystem::path> result = done || chosen_ ? finish() : std::nullopt;
  chosen_.reset();
  if (!open || result) ImGui::CloseCurrentPopup();
  ImGui::EndPopup();
  return result;
}

// Those that begin with what is typed; all of them where none does.
void FileChooser::show_entries() {
  const std::string typed = name_.data();
  const bool filter =
      std::ranges::any_of(entries_, [&](const Entry& entry) { return begins_alike(entry.name, typed); });
  std::optional<std::filesystem::path> entered;
  for (const Entry& entry : entries_) {
    if (filter && !begins_alike(entry.name, typed)) continue;
    const std::string shown = entry.folder ? entry.name + "/" : entry.name;
    if (!ImGui::Selectable(shown.c_str(), false, ImGuiSelectableFlags_DontClosePopups)) continue;
    if (entry.folder) {
      entered = folder_ / from_utf8(entry.name);
    } else {
      name_.fill('\0');
      entry.name.copy(name_.data(), name_.size() - 1);
      if (purpose_ == Purpose::open) chosen_ = folder_ / from_utf8(entry.name);
    }
  }
  if (!entered) return;
  name_.fill('\0');
  enter(*entered);
}

std::optional<std::filesystem::path> FileChooser::finish() {
  if (chosen_) return chosen_;
  const std::string name = name_.data();
  if (name.empty()) return {};
  const std::filesystem::path path = folder_ / from_utf8(name);
  std::error_code ignored;
  if (purpose_ == Purpose::open && std::filesystem::is_directory(path, ignored)) {
    name_.fill('\0');
    enter(path);
    return {};
  }
  if (purpose_ == Purpose::save && std::filesystem::exists(path, ignored) && to_replace_ != path) {
    to_replace_ = path;
    problem_ = "There is such a file. Save again to replace it.";
    return {};
  }
  return path;
}

}  // namespace oct::app
