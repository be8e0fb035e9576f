// Exports of live volumes: the live renderer and its data sources.
#include <chrono>

#include "api/guard_opengl.h"
#include "api/handles.h"
#include "api/sized.h"
#include "api/texts.h"
#include "api/with_user.h"
#include "core/object_lock.h"
#include "live/brennick_data_source_ps.h"
#include "live/fast_opengl_volume_renderer.h"
#include "oct_rendering/oct_rendering.h"

using oct::BrennickDataSource;
using oct::BrennickDataSource_PS;
using oct::FastOpenGLVolumeRenderer;
using oct::api::checked;
using oct::api::guarded;
using oct::api::guarded_drawing;

namespace {

constexpr const char* invalid_source = "The specified LiveDataSourceHandle is invalid. ";
constexpr const char* invalid_renderer = "The specified VolumeRendererHandle is invalid. ";

// Null for a null handle.
BrennickDataSource* data_source(LiveDataSourceHandle handle) {
  return oct::api::find<BrennickDataSource>(handle);
}

// Null unless the source is one for two sensors.
BrennickDataSource_PS* polarization_source(LiveDataSourceHandle handle) {
  return dynamic_cast<BrennickDataSource_PS*>(data_source(handle));
}

LiveDataSourceHandle handle_of(std::unique_ptr<BrennickDataSource> source) {
  return oct::api::handle_of<OctLiveDataSource>(std::move(source));
}

}  // namespace

LiveVolumeRenderingHandle createLiveRendering(void) {
  return guarded(__func__, [] {
    return oct::api::handle_of<OctLiveVolumeRendering>(std::make_unique<FastOpenGLVolumeRenderer>());
  });
}

void clearLiveRendering(LiveVolumeRenderingHandle Handle) {
  guarded(__func__, [&] {
    const oct::ObjectLock lock(Handle);
    oct::api::delete_object<FastOpenGLVolumeRenderer>(Handle);
  });
}

void setLiveVolumeRenderingRenderer(LiveVolumeRenderingHandle Handle, VolumeRendererHandle Renderer) {
  guarded(__func__, [&] {
    auto& rendering = checked<FastOpenGLVolumeRenderer>(Handle, "Invalid Live Rendering Handle specified. ");
    const oct::ObjectLock lock(Handle);
    const oct::ObjectLock renderer_lock(Renderer);
    rendering.set_renderer(oct::api::find<oct::VolumeRenderer>(Renderer));
  });
}

bool isLiveVolumeRunning(LiveVolumeRenderingHandle Handle) {
  return guarded(__func__, [&] {
    const oct::ObjectLock lock(Handle);
    return oct::api::find<FastOpenGLVolumeRenderer>(Handle)->is_running();
  });
}

LiveDataSourceHandle createOnlineDataSource(OCTDeviceHandle Dev, ProcessingHandle Proc) {
  return guarded("LiveDataSourceHandle createOnlineDataSource(OCTDeviceHandle Dev, ProcessingHandle Proc)",
                 [&] {
                   if (!Dev) throw std::invalid_argument("The specifided OCTDeviceHandle is invalid. ");
                   if (!Proc) throw std::invalid_argument("The specifided ProcessingHandle is invalid. ");
                   return handle_of(std::make_unique<BrennickDataSource>(oct::device_library(), Dev, Proc));
                 });
}

LiveDataSourceHandle createOnlineDataSource_PS(OCTDeviceHandle Dev, ProcessingHandle Proc0,
                                               ProcessingHandle Proc1, PolarizationProcessingHandle PS_Proc) {
  return guarded(
      "LiveDataSourceHandle createOnlineDataSource_PS(OCTDeviceHandle Dev, ProcessingHandle Proc0, "
      "ProcessingHandle Proc1, PolarizationProcessingHandle PS_Proc)",
      [&] {
        if (!Dev) throw std::invalid_argument("The specifided OCTDeviceHandle is invalid. ");
        if (!Proc0) {
          throw std::invalid_argument("The specifided ProcessingHandle for camera/sensor-0 is invalid. ");
        }
        if (!Proc1) {
          throw std::invalid_argument("The specifided ProcessingHandle for camera/sensor-1 is invalid. ");
        }
        if (!PS_Proc) throw std::invalid_argument("The specifided PolarizationProcessingHandle is invalid. ");
        const auto library = oct::device_library();
        library->require_polarization();
        return handle_of(std::make_unique<BrennickDataSource_PS>(
            library, oct::PolarizationDevice{Dev, Proc0, Proc1, PS_Proc}));
      });
}

// The setters below take a null handle, or one of the other kind, without a word; only
// misuse of a value is an error.

void setOnlineRefractiveIndex(LiveDataSourceHandle Handle, double Index) {
  guarded(__func__, [&] {
    if (auto* const source = data_source(Handle)) source->set_refractive_index(Index);
  });
}

void setOnlineAnalogInputConfiguration(LiveDataSourceHandle Handle, bool Enable) {
  guarded(__func__, [&] {
    if (auto* const source = data_source(Handle)) source->set_analog_input(Enable);
  });
}

void selectOnlineDataSource_Camera(LiveDataSourceHandle Handle, int Camera) {
  guarded(__func__, [&] {
    if (auto* const source = data_source(Handle)) source->set_camera(Camera);
  });
}

void selectOnlineDataSource_PS(LiveDataSourceHandle Handle, int Output) {
  guarded(__func__, [&] {
    if (auto* const source = polarization_source(Handle)) source->set_output_mode(Output);
  });
}

void setOnlineAveraging_PS(LiveDataSourceHandle Handle, int Depth, int AScans, int BScans, int Volumes) {
  guarded(__func__, [&] {
    if (auto* const source = polarization_source(Handle))
      source->set_averaging(Depth, AScans, BScans, Volumes);
  });
}

void setOnlineDOPU_PS(LiveDataSourceHandle Handle, int Depth, int AScans, int BScans, int) {
  guarded(__func__, [&] {
    if (auto* const source = polarization_source(Handle)) source->set_dopu(Depth, AScans, BScans);
  });
}

void setOnlineDataThreshold_PS(LiveDataSourceHandle Handle, double Threshold, bool Enable) {
  guarded(__func__, [&] {
    if (auto* const source = polarization_source(Handle)) source->set_threshold(Threshold, Enable);
  });
}

void clearDataSource(LiveDataSourceHandle Handle) {
  guarded(__func__, [&] {
    if (!Handle) return;
    oct::api::delete_object<BrennickDataSource>(Handle, [](BrennickDataSource& source) {
      source.stop();  // throws on the source's own thread, which must not lose its object
    });
  });
}

void setRefIntensityCallback(LiveDataSourceHandle Handle, OctIntensityFunction Callback) {
  guarded(__func__, [&] {
    auto& source = checked<BrennickDataSource>(Handle, invalid_source);
    source.set_ref_intensity_callback(Callback);
  });
}

void setRefIntensityCallbackWithUser(LiveDataSourceHandle Handle, OctIntensityFunctionWithUser Callback,
                                     void* user) {
  guarded(__func__, [&] {
    auto& source = checked<BrennickDataSource>(Handle, invalid_source);
    source.set_ref_intensity_callback(oct::api::with_user<oct::RefIntensityCallback>(Callback, user));
  });
}

void setVolumeCallbackWithUser(LiveDataSourceHandle DataSource, OctVolumeFunctionWithUser Callback,
                               void* user) {
  guarded(__func__, [&] {
    auto& source = checked<BrennickDataSource>(DataSource, invalid_source);
    if (!Callback) return source.set_volume_callback({});
    source.set_volume_callback([Callback, user](const oct::MeasuredSamples& samples) {
      const auto [depth, a_scans, b_scans] = samples.extent;
      const auto time = std::chrono::nanoseconds(samples.processed.time_since_epoch()).count();
      Callback(samples.first, static_cast<int>(depth), static_cast<int>(a_scans), static_cast<int>(b_scans),
               samples.index, static_cast<unsigned long long>(time), user);
    });
  });
}

void startDataSource(LiveVolumeRenderingHandle Renderer, LiveDataSourceHandle DataSource,
                     ScanPatternHandle Pattern) {
  guarded(
      "void startDataSource(LiveVolumeRenderingHandle Renderer, LiveDataSourceHandle DataSource, "
      "ScanPatternHandle Pattern)",
      [&] {
        auto& source = checked<BrennickDataSource>(DataSource, invalid_source);
        auto& rendering = checked<FastOpenGLVolumeRenderer>(Renderer, invalid_renderer);
        if (!Pattern) throw std::invalid_argument("The specified ScanPatternHandle is invalid. ");
        source.await_end();  // not under the lock, for which a callback of the ending thread may be waiting
        const oct::ObjectLock lock(Renderer);
        source.start(rendering.feed(), Pattern);
      });
}

void stopDataSource(LiveDataSourceHandle DataSource) {
  guarded(__func__, [&] { checked<BrennickDataSource>(DataSource, invalid_source).stop(); });
}

void cancelDataSource(LiveDataSourceHandle DataSource) {
  guarded(__func__, [&] { checked<BrennickDataSource>(DataSource, invalid_source).cancel(); });
}

bool isDataSourceRunning(LiveDataSourceHandle DataSource) {
  return guarded(__func__,
                 [&] { return checked<BrennickDataSource>(DataSource, invalid_source).is_acquiring(); });
}

int getDataSourceError(LiveDataSourceHandle DataSource, char* Message, int Size) {
  return guarded(__func__, [&] {
    return oct::api::give_error(checked<BrennickDataSource>(DataSource, invalid_source).take_error(), Message,
                                Size);
  });
}

double getRefIntensity(LiveDataSourceHandle DataSource) {
  return guarded(__func__,
                 [&] { return checked<BrennickDataSource>(DataSource, invalid_source).ref_intensity(); });
}

void renderVolume(LiveVolumeRenderingHandle Handle) {
  guarded_drawing(__func__, [&] {
    auto& rendering = checked<FastOpenGLVolumeRenderer>(Handle, invalid_renderer);
    const oct::ObjectLock lock(Handle);
    rendering.render();
  });
}

double getRenderedVolumesPerSec(LiveVolumeRenderingHandle Handle) {
  return guarded(__func__, [&] {
    auto& rendering = checked<FastOpenGLVolumeRenderer>(Handle, invalid_renderer);
    const oct::ObjectLock lock(Handle);
    return rendering.get_fps();
  });
}

void getLiveVolumeCounts(LiveVolumeRenderingHandle Handle, unsigned int* Drawn, unsigned int* Dropped) {
  guarded(__func__, [&] {
    // No lock: an acquisition thread that asks must not wait for a frame.
    const oct::LiveCounts counts =
        checked<FastOpenGLVolumeRenderer>(Handle, invalid_renderer).feed()->counts();
    if (Drawn) *Drawn = static_cast<unsigned>(counts.shown);
    if (Dropped) *Dropped = static_cast<unsigned>(counts.dropped_no_frame + counts.dropped_by_driver);
  });
}

void getLiveStatistics(LiveVolumeRenderingHandle Handle, OctLiveStatistics* Statistics) {
  guarded(__func__, [&] {
    auto& rendering = checked<FastOpenGLVolumeRenderer>(Handle, invalid_renderer);
    const unsigned size = oct::api::size_of(Statistics, "The size of the statistics must be set. ");
    const oct::LiveStatistics now = rendering.feed()->statistics();
    const oct::LiveStatistics::Latency latency = now.latency();
    const oct::LiveCounts& counts = now.counts;
    const OctLiveStatistics all{size,
                                0,
                                counts.acquired,
                                counts.handed_over,
                                counts.shown,
                                counts.dropped_no_frame,
                                counts.dropped_withdrawn,
                                counts.dropped_by_driver,
                                counts.dropped_by_device,
                                now.volumes_per_second(std::chrono::steady_clock::now()),
                                latency.median_ms,
                                latency.p99_ms,
                                latency.worst_ms};
    oct::api::give(all, *Statistics);
  });
}

void getLiveVolumeRenderingSize(LiveVolumeRenderingHandle Handle, int* X, int* Y, int* Z) {
  guarded(__func__, [&] {
    const oct::VolumeExtent extent =
        checked<FastOpenGLVolumeRenderer>(Handle, invalid_source).feed()->extent();
    if (X) *X = static_cast<int>(extent.depth);
    if (Y) *Y = static_cast<int>(extent.a_scans);
    if (Z) *Z = static_cast<int>(extent.b_scans);
  });
}

void setSizeZ(LiveDataSourceHandle DataSource, int Size) {
  guarded(__func__, [&] { checked<BrennickDataSource>(DataSource, invalid_source).set_size_z(Size); });
}
