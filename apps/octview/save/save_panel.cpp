#include "octview/save/save_panel.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <system_error>
#include <utility>

#include <imgui.h>

#include "data/file_errors.h"
#include "data/formats/png_writer.h"
#include "octview/window/clipboard.h"
#include "octview/window/progress_box.h"

namespace oct::app {
namespace {

constexpr const char* form_title = "Save picture";
constexpr int widest = 32768;

PictureSize scaled(PictureSize size, double factor) {
  const auto side = [&](unsigned pixels) {
    return static_cast<unsigned>(std::clamp(std::round(pixels * factor), 1.0, double{widest}));
  };
  return {side(size.width), side(size.height)};
}

// Where copies lie whose path is handed on in place of the picture.
std::filesystem::path copy_file() {
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
  return (error ? std::filesystem::path(".") : folder) / "octview-copy.png";
}

bool is_enter_pressed() {
  return ImGui::IsWindowFocused() && (ImGui::IsKeyPressed(ImGui::GetKeyIndex(ImGuiKey_Enter), false) ||
                                      ImGui::IsKeyPressed(ImGui::GetKeyIndex(ImGuiKey_KeyPadEnter), false));
}

}  // namespace

PictureOrder SavePanel::order(const Workspace& workspace) const {
  const PictureSize pane = workspace.size_of(pane_);
  const double factor = scale_ > 0 ? scale_ : static_cast<double>(width_) / pane.width;
  return {pane_, scaled(pane, factor), figure_ && pane_ == Pane::volume, from_utf8(file_.data())};
}

void SavePanel::open(const Workspace& workspace) {
  if (!workspace.document || task_.is_running()) return;
  pane_ = workspace.pane;
  wants_to_open_ = true;
}

void SavePanel::copy(Workspace& workspace) {
  if (!workspace.document || task_.is_running()) return;
  const PictureOrder order{workspace.pane, workspace.size_of(workspace.pane), false, copy_file()};
  task_.start("Copying the picture", [document = workspace.document, state = workspace.state,
                                      order](const ProgressFunction& progress) {
    DrawnPicture drawn = draw_picture_of(document, state, order, progress);
    return Outcome{order.file, std::move(drawn.explanation), std::move(drawn.picture)};
  });
}

void SavePanel::show(Workspace& workspace) {
  if (std::exchange(wants_to_open_, false)) ImGui::OpenPopup(form_title);
  ImGui::SetNextWindowPos(ImGui::GetMainViewport()->GetCenter(), ImGuiCond_Appearing, {0.5F, 0.5F});
  if (ImGui::BeginPopupModal(form_title, nullptr,
                             ImGuiWindowFlags_AlwaysAutoResize | ImGuiWindowFlags_NoSavedSettings)) {
    show_form(workspace);
    ImGui::EndPopup();
  }
  take(workspace);
  if (task_.is_running() && show_progress_box("##saving", task_.activity(), task_.share())) task_.cancel();
}

void SavePanel::show_form(Workspace& workspace) {
  const float em = ImGui::GetFontSize();
  int pane = static_cast<int>(pane_);
  ImGui::PushItemWidth(em * 22);
  if (ImGui::IsWindowAppearing()) ImGui::SetKeyboardFocusHere();
  ImGui::InputText("File", file_.data(), file_.size(), ImGuiInputTextFlags_AutoSelectAll);
  if (ImGui::Combo("Pane", &pane, pane_names.data(), static_cast<int>(pane_names.size())))
    pane_ = static_cast<Pane>(pane);
  ImGui::Combo("Size", &scale_,
               "width in pixels\0as shown\0twice\0"
               "3 times\0"
               "4 times\0"
               "5 times\0"
               "6 times\0"
               "7 times\0"
               "8 times\0");
  if (scale_ == 0 && ImGui::InputInt("Width", &width_, 0)) width_ = std::clamp(width_, 1, widest);
  ImGui::PopItemWidth();
  if (pane_ == Pane::volume) ImGui::Checkbox("Figure with scale bar and colour bar", &figure_);
  const PictureOrder wanted = order(workspace);
  ImGui::TextDisabled("%u x %u pixels%s", wanted.size.width, wanted.size.height,
                      wanted.figure ? ", and paper around them" : "");
  std::error_code ignored;
  if (std::filesystem::exists(wanted.file, ignored)) {
    ImGui::SameLine();
    ImGui::TextUnformatted("- replaces the file");
  }
  // The field would not see it in the form's first frames.
  const bool saves = ImGui::Button("Save") || is_enter_pressed();
  ImGui::SameLine();
  if (ImGui::Button("Cancel") || ImGui::IsKeyPressed(ImGui::GetKeyIndex(ImGuiKey_Escape)))
    ImGui::CloseCurrentPopup();
  if (!saves || wanted.file.empty()) return;
  ImGui::CloseCurrentPopup();
  task_.start(
      "Saving " + to_utf8(wanted.file.filename()),
      [document = workspace.document, state = workspace.state, wanted](const ProgressFunction& progress) {
        return Outcome{wanted.file, save_picture(document, state, wanted, progress), {}};
      });
}

void SavePanel::take(Workspace& workspace) {
  const bool copies = task_.is_running() && task_.activity().starts_with("Copying");
  auto outcome = task_.take();
  if (!outcome) return;
  if (!outcome->result) {
    workspace.fail(outcome->error.empty() ? "Stopped" : outcome->error);
    return;
  }
  const Outcome& result = *outcome->result;
  std::string text;
  try {
    if (!copies) {
      text = "Saved " + to_utf8(result.file);
    } else if (copy_picture(*result.copied)) {
      text = "Copied the picture";
    } else {
      write_png(result.file, *result.copied);
      ImGui::SetClipboardText(to_utf8(result.file).c_str());
      text = "Copied the path of " + to_utf8(result.file);
    }
  } catch (const std::exception& error) {
    workspace.fail(error.what());
    return;
  }
  if (!result.explanation.empty()) text += ". It shows nothing: " + result.explanation;
  workspace.say(text);
}

}  // namespace oct::app
