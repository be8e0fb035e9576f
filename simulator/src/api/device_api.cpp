// The device functions: find the objects, make one call.

#include <limits>
#include <stdexcept>

#include "api/library.h"
#include "base/data.h"
#include "device/device.h"
#include "device/scan_pattern.h"
#include "oct_device/oct_device.h"
#include "processing/processing.h"
#include "processing/surface.h"

using namespace oct::simulator;

namespace {

int size_of(const Data& data, int property) {
  const auto& sizes = data.sizes();
  switch (property) {
    case OCT_DATA_SIZE_1:
    case OCT_DATA_SIZE_2:
    case OCT_DATA_SIZE_3:
      return sizes[property - OCT_DATA_SIZE_1];
    case OCT_DATA_BYTE_COUNT: {
      const std::size_t bytes = sizeof(float) * sizes[0] * sizes[1] * sizes[2];
      if (bytes > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw std::overflow_error("The data has more bytes than an int can count. ");
      return static_cast<int>(bytes);
    }
    default:
      throw std::invalid_argument("Unknown property. ");
  }
}

}  // namespace

int getDevicePropertyInt(OCTDeviceHandle device, int property) {
  return device_call("getDevicePropertyInt", [&](HandleTable& handles) {
    const auto object = handles.find<Device>(device);
    if (property != OCT_DEVICE_SPECTRUM_LENGTH) throw std::invalid_argument("Unknown property. ");
    return object->spectrum_length();
  });
}

double getDevicePropertyFloat(OCTDeviceHandle device, int property) {
  return device_call("getDevicePropertyFloat", [&](HandleTable& handles) {
    const auto object = handles.find<Device>(device);
    if (property != OCT_DEVICE_DEPTH_RANGE) throw std::invalid_argument("Unknown property. ");
    return object->depth_range_mm();
  });
}

RawDataHandle createRawData(void) {
  return device_call("createRawData", [](HandleTable& handles) {
    return static_cast<RawDataHandle>(handles.add(std::make_shared<RawData>()));
  });
}

void clearRawData(RawDataHandle raw) {
  device_call("clearRawData", [&](HandleTable& handles) { handles.remove<RawData>(raw); });
}

DataHandle createData(void) {
  return device_call("createData", [](HandleTable& handles) {
    return static_cast<DataHandle>(handles.add(std::make_shared<Data>()));
  });
}

void clearData(DataHandle data) {
  device_call("clearData", [&](HandleTable& handles) { handles.remove<Data>(data); });
}

void startMeasurement(OCTDeviceHandle device, ScanPatternHandle pattern, int mode) {
  device_call("startMeasurement", [&](HandleTable& handles) {
    handles.find<Device>(device)->start(*handles.find<ScanPattern>(pattern), mode);
  });
}

void stopMeasurement(OCTDeviceHandle device) {
  device_call("stopMeasurement", [&](HandleTable& handles) { handles.find<Device>(device)->stop(); });
}

int isError(void) {
  return Library::instance().error.is_set() ? 1 : 0;
}

int getError(char* buffer, int size) {
  return Library::instance().error.take(buffer, size) ? 1 : 0;
}

void getRawDataEx(OCTDeviceHandle device, RawDataHandle raw, int camera) {
  device_call("getRawDataEx", [&](HandleTable& handles) {
    handles.find<Device>(device)->acquire(*handles.find<RawData>(raw), camera);
  });
}

void setProcessedDataOutput(ProcessingHandle processing, DataHandle data) {
  device_call("setProcessedDataOutput", [&](HandleTable& handles) {
    handles.find<Processing>(processing)->set_output(handles.find<Data>(data));
  });
}

void executeProcessing(ProcessingHandle processing, RawDataHandle raw) {
  device_call("executeProcessing", [&](HandleTable& handles) {
    handles.find<Processing>(processing)->execute(*handles.find<RawData>(raw));
  });
}

int getDataPropertyInt(DataHandle data, int property) {
  return device_call("getDataPropertyInt",
                     [&](HandleTable& handles) { return size_of(*handles.find<Data>(data), property); });
}

double getDataPropertyFloat(DataHandle data, int property) {
  return device_call("getDataPropertyFloat", [&](HandleTable& handles) {
    const auto object = handles.find<Data>(data);
    if (property < OCT_DATA_RANGE_1 || property > OCT_DATA_RANGE_3)
      throw std::invalid_argument("Unknown property. ");
    return object->ranges_mm()[property - OCT_DATA_RANGE_1];
  });
}

void setDataRange(DataHandle data, double range1, double range2, double range3) {
  device_call("setDataRange", [&](HandleTable& handles) {
    handles.find<Data>(data)->set_ranges({range1, range2, range3});
  });
}

float* getDataPtr(DataHandle data) {
  return device_call("getDataPtr", [&](HandleTable& handles) -> float* {
    auto& samples = handles.find<Data>(data)->samples();
    return samples.empty() ? nullptr : samples.data();
  });
}

ComplexDataHandle createComplexData(void) {
  return device_call("createComplexData", [](HandleTable& handles) {
    return static_cast<ComplexDataHandle>(handles.add(std::make_shared<ComplexData>()));
  });
}

void clearComplexData(ComplexDataHandle data) {
  device_call("clearComplexData", [&](HandleTable& handles) { handles.remove<ComplexData>(data); });
}

void setComplexDataOutput(ProcessingHandle processing, ComplexDataHandle data) {
  device_call("setComplexDataOutput", [&](HandleTable& handles) {
    handles.find<Processing>(processing)->set_output(handles.find<ComplexData>(data));
  });
}

void getAnalogInputData(OCTDeviceHandle device, DataHandle data) {
  device_call("getAnalogInputData", [&](HandleTable& handles) {
    handles.find<Device>(device)->read_analog_input(*handles.find<Data>(data));
  });
}

void determineSurface(DataHandle volume, DataHandle surface) {
  device_call("determineSurface", [&](HandleTable& handles) {
    find_surface(*handles.find<Data>(volume), *handles.find<Data>(surface));
  });
}

double getRelativeReferenceIntensity(OCTDeviceHandle device, ProcessingHandle processing) {
  return device_call("getRelativeReferenceIntensity", [&](HandleTable& handles) {
    const auto length = handles.find<Device>(device)->spectrum_length();
    const auto object = handles.find<Processing>(processing);
    if (object->spectrum_length() != length)
      throw std::invalid_argument("The processing is for devices with another spectrum length. ");
    return object->reference_intensity();
  });
}
