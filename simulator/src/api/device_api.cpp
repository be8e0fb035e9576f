// The device functions: find the objects, make one call.

#include "oct_device/oct_device.h"

#include "api/library.h"
#include "base/data.h"
#include "device/device.h"
#include "device/scan_pattern.h"
#include "processing/processing.h"
#include "processing/surface.h"

#include <limits>
#include <stdexcept>

using namespace oct::simulator;

namespace {

int sizeOf(const Data& data, int property) {
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
  return deviceCall("getDevicePropertyInt", [&](HandleTable& handles) {
    const auto object = handles.find<Device>(device);
    if (property != OCT_DEVICE_SPECTRUM_LENGTH) throw std::invalid_argument("Unknown property. ");
    return object->spectrumLength();
  });
}

double getDevicePropertyFloat(OCTDeviceHandle device, int property) {
  return deviceCall("getDevicePropertyFloat", [&](HandleTable& handles) {
    const auto object = handles.find<Device>(device);
    if (property != OCT_DEVICE_DEPTH_RANGE) throw std::invalid_argument("Unknown property. ");
    return object->depthRangeMm();
  });
}

RawDataHandle createRawData(void) {
  return deviceCall("createRawData", [](HandleTable& handles) {
    return static_cast<RawDataHandle>(handles.add(std::make_shared<RawData>()));
  });
}

void clearRawData(RawDataHandle raw) {
  deviceCall("clearRawData", [&](HandleTable& handles) { handles.remove<RawData>(raw); });
}

DataHandle createData(void) {
  return deviceCall("createData", [](HandleTable& handles) {
    return static_cast<DataHandle>(handles.add(std::make_shared<Data>()));
  });
}

void clearData(DataHandle data) {
  deviceCall("clearData", [&](HandleTable& handles) { handles.remove<Data>(data); });
}

void startMeasurement(OCTDeviceHandle device, ScanPatternHandle pattern, int mode) {
  deviceCall("startMeasurement", [&](HandleTable& handles) {
    handles.find<Device>(device)->start(*handles.find<ScanPattern>(pattern), mode);
  });
}

void stopMeasurement(OCTDeviceHandle device) {
  deviceCall("stopMeasurement", [&](HandleTable& handles) { handles.find<Device>(device)->stop(); });
}

int isError(void) {
  return Library::instance().error.isSet() ? 1 : 0;
}

int getError(char* buffer, int size) {
  return Library::instance().error.take(buffer, size) ? 1 : 0;
}

void getRawDataEx(OCTDeviceHandle device, RawDataHandle raw, int camera) {
  deviceCall("getRawDataEx", [&](HandleTable& handles) {
    handles.find<Device>(device)->acquire(*handles.find<RawData>(raw), camera);
  });
}

void setProcessedDataOutput(ProcessingHandle processing, DataHandle data) {
  deviceCall("setProcessedDataOutput", [&](HandleTable& handles) {
    handles.find<Processing>(processing)->setOutput(handles.find<Data>(data));
  });
}

void executeProcessing(ProcessingHandle processing, RawDataHandle raw) {
  deviceCall("executeProcessing", [&](HandleTable& handles) {
    handles.find<Processing>(processing)->execute(*handles.find<RawData>(raw));
  });
}

int getDataPropertyInt(DataHandle data, int property) {
  return deviceCall("getDataPropertyInt",
                    [&](HandleTable& handles) { return sizeOf(*handles.find<Data>(data), property); });
}

double getDataPropertyFloat(DataHandle data, int property) {
  return deviceCall("getDataPropertyFloat", [&](HandleTable& handles) {
    const auto object = handles.find<Data>(data);
    if (property < OCT_DATA_RANGE_1 || property > OCT_DATA_RANGE_3)
      throw std::invalid_argument("Unknown property. ");
    return object->rangesMm()[property - OCT_DATA_RANGE_1];
  });
}

void setDataRange(DataHandle data, double range1, double range2, double range3) {
  deviceCall("setDataRange", [&](HandleTable& handles) {
    handles.find<Data>(data)->setRanges({range1, range2, range3});
  });
}

float* getDataPtr(DataHandle data) {
  return deviceCall("getDataPtr", [&](HandleTable& handles) -> float* {
    auto& samples = handles.find<Data>(data)->samples();
    return samples.empty() ? nullptr : samples.data();
  });
}

ComplexDataHandle createComplexData(void) {
  return deviceCall("createComplexData", [](HandleTable& handles) {
    return static_cast<ComplexDataHandle>(handles.add(std::make_shared<ComplexData>()));
  });
}

void clearComplexData(ComplexDataHandle data) {
  deviceCall("clearComplexData", [&](HandleTable& handles) { handles.remove<ComplexData>(data); });
}

void setComplexDataOutput(ProcessingHandle processing, ComplexDataHandle data) {
  deviceCall("setComplexDataOutput", [&](HandleTable& handles) {
    handles.find<Processing>(processing)->setOutput(handles.find<ComplexData>(data));
  });
}

void getAnalogInputData(OCTDeviceHandle device, DataHandle data) {
  deviceCall("getAnalogInputData", [&](HandleTable& handles) {
    handles.find<Device>(device)->readAnalogInput(*handles.find<Data>(data));
  });
}

void determineSurface(DataHandle volume, DataHandle surface) {
  deviceCall("determineSurface", [&](HandleTable& handles) {
    findSurface(*handles.find<Data>(volume), *handles.find<Data>(surface));
  });
}

double getRelativeReferenceIntensity(OCTDeviceHandle device, ProcessingHandle processing) {
  return deviceCall("getRelativeReferenceIntensity", [&](HandleTable& handles) {
    const auto length = handles.find<Device>(device)->spectrumLength();
    const auto object = handles.find<Processing>(processing);
    if (object->spectrumLength() != length)
      throw std::invalid_argument("The processing is for devices with another spectrum length. ");
    return object->referenceIntensity();
  });
}
