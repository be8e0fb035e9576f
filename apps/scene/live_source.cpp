#include "scene/live_source.h"

#include "client/checked.h"

namespace oct::app {
namespace {

LiveDataSourceHandle create_source(const LiveDevice& device, const SourceSettings& settings) {
  if (!settings.polarization) return checked(createOnlineDataSource, device.device(), device.processing(0));
  return checked(createOnlineDataSource_PS, device.device(), device.processing(0), device.processing(1),
                 device.polarization());
}

}  // namespace

LiveSource::LiveSource(const LiveDevice& device, const SourceSettings& settings)
    : device_(device), handle_(create_source(device, settings), clearDataSource) {
  const LiveDataSourceHandle source = handle_.get();
  if (settings.size_z) checked(setSizeZ, source, *settings.size_z);
  checked(setOnlineRefractiveIndex, source, settings.refractive_index);
  if (settings.analog) checked(setOnlineAnalogInputConfiguration, source, true);
  if (settings.polarization) {
    checked(selectOnlineDataSource_PS, source, static_cast<int>(*settings.polarization));
    checked(setOnlineDataThreshold_PS, source, settings.threshold, true);
    const auto& [depth, a_scans, b_scans, volumes] = settings.averaging;
    checked(setOnlineAveraging_PS, source, depth, a_scans, b_scans, volumes);
  }
}

void LiveSource::announce(OctErrorFunctionWithUser on_error, void* user) {
  checked(setErrorCallbackWithUser, handle_.get(), on_error, user);
}

void LiveSource::hand_volumes_to(OctVolumeFunctionWithUser on_volume, void* user) {
  checked(setVolumeCallbackWithUser, handle_.get(), on_volume, user);
}

void LiveSource::start(LiveVolumeRenderingHandle live) {
  checked(startDataSource, live, handle_.get(), device_.pattern());
}

void LiveSource::stop() {
  checked(stopDataSource, handle_.get());
}

void LiveSource::cancel() {
  checked(cancelDataSource, handle_.get());
}

bool LiveSource::is_running() const {
  return checked(isDataSourceRunning, handle_.get());
}

}  // namespace oct::app
