#include "octview/viewer.h"

#include <algorithm>
#include <cmath>

#include <imgui.h>

#include "command_line/memory_budget.h"
#include "data/file_errors.h"
#include "octview/panels/keys_panel.h"
#include "octview/panels/widgets.h"
#include "octview/window/keys.h"
#include "octview/window/progress_box.h"
#include "scene/drawable_limits.h"

namespace oct::app {
namespace {

constexpr ImGuiWindowFlags pane_flags =
    ImGuiWindowFlags_NoScrollbar | ImGuiWindowFlags_NoScrollWithMouse | ImGuiWindowFlags_NoBackground;

}  // namespace

Viewer::Viewer(Window& window)
    : window_(window),
      slices_{SlicePane(window.gl(), SliceAxis::bscan), SlicePane(window.gl(), SliceAxis::enface),
              SlicePane(window.gl(), SliceAxis::third)},
      volume_(window.gl()) {}

void Viewer::open(const std::vector<std::filesystem::path>& files) {
  if (files.empty()) return;
  try {
    open(opening_of(files.front()), files);
  } catch (const ReadError& error) {
    workspace_.fail(error.what());
  }
}

void Viewer::open(Opening opening, std::vector<std::filesystem::path> offered) {
  workspace_.offered = std::move(offered);
  start(std::move(opening));
}

void Viewer::start(Opening opening) {
  state_to_come_ = std::move(opening.state);
  loading_.start(
      "Reading " + to_utf8(opening.files.base.path.filename()),
      [files = std::move(opening.files), before = workspace_.document,
       limits = DocumentLimits{within_memory({}), drawable_limits()}](const ProgressFunction& progress) {
        return load_document(files, progress, before, limits);
      });
}

void Viewer::show_live() {
  live_panel_.start(live_, workspace_);
}

// What was shown before stays until the first volume has come, and where none comes.
void Viewer::take_live() {
  const LiveSession::State before = live_.state();
  live_.update();
  if (live_.state() == LiveSession::State::failed && before != LiveSession::State::failed) {
    workspace_.fail(live_.error());
  }
  if (!is_live()) return;
  const bool began = !live_document_.is_shown(workspace_);
  live_document_.show(live_, live_panel_.title(), workspace_);
  if (began && live_document_.is_shown(workspace_)) {
    workspace_.say("");
    window_.set_title(workspace_.document.title + " - octview");
  }
  if (workspace_.state.large != Pane::volume) live_.request_volume();
}

void Viewer::take_loaded() {
  auto outcome = loading_.take();
  if (!outcome) return;
  if (!outcome->result) {
    if (!outcome->error.empty()) workspace_.fail(outcome->error);
    return;
  }
  live_.stop();
  workspace_.document = std::move(*outcome->result);
  if (state_to_come_) {
    workspace_.state = *std::exchange(state_to_come_, std::nullopt);
    fit_state(workspace_.document, workspace_.state);
  } else {
    workspace_.state = start_state(workspace_.document);
  }
  workspace_.say("");
  window_.set_title(workspace_.document.title + " - octview");
}

bool Viewer::is_busy() const {
  const bool live_begins =
      live_.state() == LiveSession::State::opening || (is_live() && !live_document_.is_shown(workspace_));
  const bool reads = std::ranges::any_of(slices_, [](const SlicePane& pane) { return pane.is_reading(); });
  return reads || loading_.is_running() || sidebar_.is_busy() || save_.is_busy() || volume_.is_coarse() ||
         live_begins;
}

void Viewer::build(double now) {
  workspace_.now = now;
  workspace_.under_cursor.clear();
  open(window_.take_dropped());
  if (workspace_.wanted) start(*std::exchange(workspace_.wanted, std::nullopt));
  take_loaded();
  take_live();
  handle_keys();
  const ImGuiViewport& screen = *ImGui::GetMainViewport();
  ImGui::SetNextWindowPos(screen.Pos);
  ImGui::SetNextWindowSize(screen.Size);
  ImGui::Begin("octview", nullptr,
               ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove | ImGuiWindowFlags_NoSavedSettings |
                   ImGuiWindowFlags_NoBringToFrontOnFocus | ImGuiWindowFlags_NoBackground);
  const float status_height = ImGui::GetFrameHeightWithSpacing();
  ImGui::BeginChild("##everything", {0, -status_height}, false, ImGuiWindowFlags_NoBackground);
  show_sidebar(em(19));
  ImGui::SameLine();
  ImGui::BeginChild("##panes", {0, 0}, false, pane_flags);
  show_panes();
  ImGui::EndChild();
  ImGui::EndChild();
  show_status();
  ImGui::End();
  if (loading_.is_running() && show_progress_box("##reading", loading_.activity(), loading_.share()))
    loading_.cancel();
  save_.show(workspace_);
  show_keys_panel(keys_shown_);
}

void Viewer::show_sidebar(float width) {
  ImGui::BeginChild("##sidebar", {width, 0}, true);
  if (live_.state() != LiveSession::State::off) ImGui::SetNextItemOpen(true, ImGuiCond_Once);
  if (ImGui::CollapsingHeader("Live")) live_panel_.show(live_, workspace_);
  sidebar_.show(workspace_);
  ImGui::EndChild();
}

void Viewer::show_panes() {
  if (workspace_.state.large) {
    show_pane(*workspace_.state.large);
    return;
  }
  const ImVec2 space = ImGui::GetContentRegionAvail();
  const ImVec2 gap = ImGui::GetStyle().ItemSpacing;
  const ImVec2 size{std::floor((space.x - gap.x) / 2), std::floor((space.y - gap.y) / 2)};
  for (std::size_t i = 0; i < 4; ++i) {
    if (i % 2) ImGui::SameLine();
    ImGui::BeginChild(pane_names[i], size, false, pane_flags);
    show_pane(static_cast<Pane>(i));
    ImGui::EndChild();
  }
}

// A pane that cannot be drawn says why in its place.
void Viewer::show_pane(Pane pane) {
  if (!workspace_.document && !live_.error().empty()) {
    wrapped_text(live_.error().c_str());
    return;
  }
  try {
    if (pane == Pane::volume) {
      volume_.show(workspace_, is_live() && live_document_.is_shown(workspace_) ? &live_ : nullptr);
    } else {
      slices_[static_cast<std::size_t>(pane)].show(workspace_);
    }
  } catch (const std::exception& error) {
    wrapped_text(error.what());
  }
}

// A message stays until it was read and something else is under the cursor.
void Viewer::show_status() {
  constexpr double reading_seconds = 6;
  const bool fresh = workspace_.now - workspace_.said_at < reading_seconds;
  if (!workspace_.message.empty() && (fresh || workspace_.under_cursor.empty())) {
    if (workspace_.message_is_error) ImGui::PushStyleColor(ImGuiCol_Text, error_color);
    ImGui::TextUnformatted(workspace_.message.c_str());
    if (workspace_.message_is_error) ImGui::PopStyleColor();
  } else {
    ImGui::TextUnformatted(workspace_.under_cursor.c_str());
  }
  const char* const keys = "? keys";
  ImGui::SameLine(ImGui::GetWindowContentRegionMax().x - ImGui::CalcTextSize(keys).x);
  ImGui::TextDisabled("%s", keys);
}

void Viewer::handle_keys() {
  if (is_question_mark_pressed()) keys_shown_ = !keys_shown_;
  if (is_pressed(Key::escape)) keys_shown_ = false;
  if (is_pressed(letter('Q'), true)) window_.close();
  if (is_pressed(letter('S'), true)) save_.open(workspace_);
  if (is_pressed(letter('C'), true)) save_.copy(workspace_);
}

}  // namespace oct::app
