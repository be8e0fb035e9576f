#include "octview/panels/live_panel.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include <imgui.h>

#include "data/file_errors.h"
#include "octview/panels/widgets.h"
#include "octview/window/item_index.h"

namespace oct::app {
namespace {

constexpr std::array phantoms{"Finger pad", "Retina", "Mirror", "Polarization target", "The open volume"};
constexpr int played = 4;
constexpr std::array motions{"None", "Breathing", "Drift"};

template <std::size_t Size>
void assign(std::array<char, Size>& text, std::string_view value) {
  text[value.copy(text.data(), Size - 1)] = '\0';
}

// Labels stand to the left, in a column of their own.
void label(const char* text) {
  ImGui::AlignTextToFramePadding();
  ImGui::TextUnformatted(text);
  ImGui::SameLine(ImGui::GetFontSize() * 5);
  ImGui::SetNextItemWidth(-1);
}

// A list of choices, which has no label of ImGui's own for scripts.
bool begin_choice(const char* name, const char* id, const char* shown) {
  label(name);
  const ImVec2 from = ImGui::GetCursorScreenPos();
  mark_item(id, from, {from.x + ImGui::GetContentRegionAvail().x, from.y + ImGui::GetFrameHeight()});
  return ImGui::BeginCombo(id, shown);
}

bool whole_number(const char* name, const char* id, int& value, int least, int most) {
  label(name);
  if (!ImGui::InputInt(id, &value, 0)) return false;
  value = std::clamp(value, least, most);
  return true;
}

void millimetres(const char* name, const char* id, double& value) {
  label(name);
  if (ImGui::InputDouble(id, &value, 0, 0, "%.3g mm")) value = std::clamp(value, 0.001, 1000.0);
}

template <class... Values>
void row(const char* name, const char* format, Values... values) {
  label(name);
  ImGui::Text(format, values...);
}

// Not indented: the sidebar is narrow.
constexpr ImGuiTreeNodeFlags heading =
    ImGuiTreeNodeFlags_DefaultOpen | ImGuiTreeNodeFlags_NoTreePushOnOpen | ImGuiTreeNodeFlags_SpanAvailWidth;

void show_error(const std::string& text) {
  if (text.empty()) return;
  ImGui::PushStyleColor(ImGuiCol_Text, error_color);
  wrapped_text(text.c_str());
  ImGui::PopStyleColor();
}

const char* state_text(LiveSession::State state) {
  switch (state) {
    case LiveSession::State::off:
      return "Off";
    case LiveSession::State::opening:
      return "Opening the device ...";
    case LiveSession::State::running:
      return "Running";
    case LiveSession::State::failed:
      return "Failed";
  }
  return "";
}

}  // namespace

LivePanel::LivePanel() {
  setup_.device.scan.a_scans = 96;
  setup_.device.scan.b_scans = 96;
  assign(library_, setup_.device.library);
  assign(file_, "live");
}

void LivePanel::start(LiveSession& session, const Workspace& workspace) {
  LiveSetup setup = setup_;
  setup.device.library = library_.data();
  setup.device.scan.spectrum_length = 2 * depth_;
  if (keeps_rate_) setup.device.rate = static_cast<double>(rate_);
  if (plays_back_ && workspace.document) {
    const std::array<double, 3> extent = workspace.document.extent();
    setup.recording = workspace.document.volume;
    setup.device.depth = extent[0];
    setup.device.scan.width = extent[1];
    setup.device.scan.length = extent[2];
    setup.device.motion = OCT_MOTION_NONE;
    title_ = workspace.document.title + ", played back";
  } else {
    title_ = std::string(phantoms[static_cast<std::size_t>(setup.device.phantom)]) + ", live";
  }
  session.start(setup);
}

void LivePanel::show(LiveSession& session, Workspace& workspace) {
  show_state(session, workspace);
  show_device(workspace);
  if (!plays_back_) show_scan();
  show_numbers(session);
  show_recorder(session, workspace);
}

void LivePanel::show_state(LiveSession& session, const Workspace& workspace) {
  const bool on =
      session.state() == LiveSession::State::running || session.state() == LiveSession::State::opening;
  const float half = (ImGui::GetContentRegionAvail().x - ImGui::GetStyle().ItemSpacing.x) / 2;
  if (ImGui::Button(on ? "Restart##live" : "Start##live", {half, 0})) start(session, workspace);
  ImGui::SameLine();
  ImGui::BeginDisabled(!on);
  if (ImGui::Button("Stop##live", {half, 0})) session.stop();
  ImGui::EndDisabled();
  ImGui::TextUnformatted(state_text(session.state()));
  show_error(session.error());
}

void LivePanel::show_device(const Workspace& workspace) {
  label("Library");
  ImGui::InputText("##library", library_.data(), library_.size());
  const int shown = plays_back_ ? played : setup_.device.phantom;
  if (begin_choice("Shows", "##phantom", phantoms[static_cast<std::size_t>(shown)])) {
    for (int i = 0; i <= played; ++i) {
      if (i == played && !workspace.document) continue;
      if (!ImGui::Selectable(phantoms[static_cast<std::size_t>(i)], i == shown)) continue;
      plays_back_ = i == played;
      if (!plays_back_) setup_.device.phantom = i;
    }
    ImGui::EndCombo();
  }
  if (plays_back_) {
    label("Noise");
    if (ImGui::InputDouble("##noise", &setup_.device.noise, 0, 0, "%.3g dB")) {
      setup_.device.noise = std::clamp(setup_.device.noise, 0.0, 1000.0);
    }
  }
}

void LivePanel::show_scan() {
  ScanSettings& scan = setup_.device.scan;
  const std::string depth = std::to_string(depth_) + " samples";
  if (begin_choice("Depth", "##depth", depth.c_str())) {
    for (const int samples : {64, 128, 256, 512, 1024, 2048}) {
      if (ImGui::Selectable((std::to_string(samples) + " samples").c_str(), samples == depth_))
        depth_ = samples;
    }
    ImGui::EndCombo();
  }
  whole_number("A-scans", "##ascans", scan.a_scans, 1, 8192);
  whole_number("B-scans", "##bscans", scan.b_scans, 1, 8192);
  millimetres("Width", "##width", scan.width);
  millimetres("Length", "##length", scan.length);
  if (begin_choice("Motion", "##motion", motions[static_cast<std::size_t>(setup_.device.motion)])) {
    for (int i = 0; i < static_cast<int>(motions.size()); ++i) {
      if (ImGui::Selectable(motions[static_cast<std::size_t>(i)], i == setup_.device.motion)) {
        setup_.device.motion = i;
      }
    }
    ImGui::EndCombo();
  }
  label("Seed");
  int seed = static_cast<int>(scan.seed);
  if (ImGui::InputInt("##seed", &seed, 0)) scan.seed = static_cast<unsigned>(std::max(seed, 0));
  ImGui::Checkbox("At a rate of", &keeps_rate_);
  ImGui::SameLine();
  ImGui::SetNextItemWidth(-1);
  ImGui::BeginDisabled(!keeps_rate_);
  if (ImGui::InputFloat("##rate", &rate_, 0, 0, "%.0f A-scans/s")) rate_ = std::clamp(rate_, 1.0F, 1e9F);
  ImGui::EndDisabled();
}

void LivePanel::show_numbers(const LiveSession& session) const {
  if (!ImGui::TreeNodeEx("Volumes##numbers", heading)) return;
  const OctLiveStatistics numbers = session.statistics();
  if (session.state() == LiveSession::State::running && !session.draws_volumes()) {
    row("Shown", "%llu, volume is hidden", numbers.shown);
  } else {
    row("Shown", "%llu, %.1f per second", numbers.shown, numbers.volumes_per_second);
  }
  row("Acquired", "%llu", numbers.acquired);
  row("Dropped", "%llu without a frame", numbers.dropped_no_frame);
  row("", "%llu withdrawn", numbers.dropped_withdrawn);
  row("", "%llu by the driver", numbers.dropped_by_driver);
  row("", "%llu by the device", numbers.dropped_by_device);
  row("Latency", "median %.0f ms", numbers.latency_median_ms);
  row("", "99 %% %.0f, worst %.0f ms", numbers.latency_p99_ms, numbers.latency_worst_ms);
}

void LivePanel::show_recorder(LiveSession& session, Workspace& workspace) {
  if (!ImGui::TreeNodeEx("Recording", heading)) return;
  VolumeRecorder& recorder = session.recorder();
  bool changed = ImGui::Checkbox("Keep the last", &records_);
  ImGui::SameLine();
  ImGui::SetNextItemWidth(ImGui::GetFontSize() * 3);
  if (ImGui::InputInt("volumes##kept", &recorded_count_, 0)) {
    recorded_count_ = std::clamp(recorded_count_, 1, 100'000);
    changed = true;
  }
  if (changed) recorder.keep(records_ ? static_cast<std::size_t>(recorded_count_) : 0);
  const VolumeRecorder::Content content = recorder.content();
  ImGui::Text("%zu volumes, %.0f MB%s", content.volumes, static_cast<double>(content.bytes) / 1e6,
              content.limited ? ": no room for more" : "");
  label("Files");
  ImGui::InputText("##recording", file_.data(), file_.size());
  const VolumeRecorder::Writing writing = recorder.writing();
  if (writing.active) {
    ImGui::ProgressBar(static_cast<float>(writing.done) / static_cast<float>(writing.total),
                       {-ImGui::GetFontSize() * 4, 0});
    ImGui::SameLine();
    if (ImGui::Button("Stop##writing")) recorder.stop_writing();
  } else {
    ImGui::BeginDisabled(content.volumes == 0);
    if (ImGui::Button("Write .npy files", {-1, 0})) write(recorder, workspace);
    ImGui::EndDisabled();
    if (writing.total > 0 && writing.error.empty()) {
      ImGui::Text("%zu of %zu volumes written", writing.done, writing.total);
    }
    show_error(writing.error);
  }
}

void LivePanel::write(VolumeRecorder& recorder, Workspace& workspace) {
  try {
    recorder.write(from_utf8(file_.data()));
  } catch (const WriteError& error) {
    workspace.fail(error.what());
  }
}

}  // namespace oct::app
