#include "octview/panels/session_panel.h"

#include <array>
#include <stdexcept>
#include <string>

#include "command_line/platform.h"
#include "data/file_errors.h"
#include "octview/model/octrender_command.h"
#include "octview/model/session_file.h"
#include "octview/panels/widgets.h"
#include "octview/window/keys.h"

namespace oct::app {
namespace {

void save_session(Workspace& workspace, const std::filesystem::path& file) {
  write_session(file, {workspace.document.files, workspace.state});
  workspace.say("Saved " + to_utf8(file));
}

void copy_command(Workspace& workspace, Pane pane) {
  std::vector<std::string> words =
      pane_command(workspace.document, workspace.state, pane, workspace.size_of(pane), "picture.png");
  words.insert(words.begin(), "octrender");
  ImGui::SetClipboardText(native_shell_words(words).c_str());
  workspace.say("Copied the octrender command");
}

// What fails is told; everything stays as it was.
template <class Action>
void attempt(Workspace& workspace, Action action) {
  try {
    action();
  } catch (const std::runtime_error& error) {
    workspace.fail(error.what());
  }
}

}  // namespace

void SessionPanel::show(Workspace& workspace) {
  const bool open = static_cast<bool>(workspace.document);
  const std::filesystem::path& shown = workspace.document.files.base.path;
  const std::filesystem::path base = std::filesystem::absolute(shown.empty() ? "live" : shown);
  bool wants_to_open = is_pressed(letter('O'), true);
  if (ImGui::CollapsingHeader("Session")) {
    wants_to_open |= ImGui::Button("Open ...");
    hint("A session, or a file (Ctrl+O)");
    if (open) {
      ImGui::SameLine();
      if (ImGui::Button("Save ...")) {
        purpose_ = FileChooser::Purpose::save;
        chooser_.ask("Session to save", purpose_,
                     std::filesystem::path(base).replace_extension(".octview.json"));
      }
      if (ImGui::Button("Copy as octrender command"))
        attempt(workspace, [&] { copy_command(workspace, pane_); });
      hint("The command line that draws the pane's picture as a file, pixel for pixel");
      leave_for_labels(5.5F);
      int pane = static_cast<int>(pane_);
      if (ImGui::Combo("of pane", &pane, pane_names.data(), static_cast<int>(pane_names.size())))
        pane_ = static_cast<Pane>(pane);
    }
  }
  if (wants_to_open) {
    purpose_ = FileChooser::Purpose::open;
    chooser_.ask("File or session to open", purpose_, base.parent_path());
  }
  const std::optional<std::filesystem::path> file = chooser_.show();
  if (!file) return;
  attempt(workspace, [&] {
    if (purpose_ == FileChooser::Purpose::open) {
      workspace.wanted = opening_of(*file);
    } else {
      save_session(workspace, *file);
    }
  });
}

}  // namespace oct::app
