#include "scene/live_source.h"

#include "client/checked.h"

namespace oct::app {
namespace {

LiveDataSourceHandle createSource(const LiveDevice& device, const SourceSettings& settings) {
  if (!settings.polarization) return checked(createOnlineDataSource, device.device(), device.processing(0));
  return checked(createOnlineDataSource_PS, device.device(), device.processing(0), device.processing(1),
                 device.polarization());
}

}  // namespace

LiveSource::LiveSource(const LiveDevice& device, const SourceSettings& settings)
    : device_(device), handle_(createSource(device, settings), clearDataSource) {
  const LiveDataSourceHandle source = handle_.get();
  if (settings.sizeZ) checked(setSizeZ, source, *settings.sizeZ);
  checked(setOnlineRefractiveIndex, source, settings.refractiveIndex);
  if (settings.analog) checked(setOnlineAnalogInputConfiguration, source, true);
  if (settings.polarization) {
    checked(selectOnlineDataSource_PS, source, static_cast<int>(*settings.polarization));
    checked(setOnlineDataThreshold_PS, source, settings.threshold, true);
    const auto& [depth, aScans, bScans, volumes] = settings.averaging;
    checked(setOnlineAveraging_PS, source, depth, aScans, bScans, volumes);
  }
}

void LiveSource::announce(OctIntensityFunction onReferenceIntensity, OctErrorFunction onError) {
  checked(setRefIntensityCallback, handle_.get(), onReferenceIntensity);
  checked(setErrorCallback, handle_.get(), onError);
}

void LiveSource::start(LiveVolumeRenderingHandle live) {
  checked(startDataSource, live, handle_.get(), device_.pattern());
}

void LiveSource::stop() {
  checked(stopDataSource, handle_.get());
}

}  // namespace oct::app
