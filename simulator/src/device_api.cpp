// The device functions: find the objects, make one call.

#include "oct_device/oct_device.h"

#include "data.h"
#include "device.h"
#include "library.h"
#include "processing.h"
#include "scan_pattern.h"

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
  return framed("getDevicePropertyInt", [&](HandleTable& handles) {
    const auto object = handles.find<Device>(device);
    if (property != OCT_DEVICE_SPECTRUM_LENGTH) throw std::invalid_argument("Unknown property. ");
    return object->spectrometer().spectrumLength();
  });
}

double getDevicePropertyFloat(OCTDeviceHandle device, int property) {
  return framed("getDevicePropertyFloat", [&](HandleTable& handles) {
    const auto object = handles.find<Device>(device);
    if (property != OCT_DEVICE_DEPTH_RANGE) throw std::invalid_argument("Unknown property. ");
    return object->spectrometer().depthRangeMm();
  });
}

RawDataHandle createRawData(void) {
  return framed("createRawData", [](HandleTable& handles) {
    return static_cast<RawDataHandle>(handles.add(std::make_shared<RawData>()));
  });
}

void clearRawData(RawDataHandle raw) {
  framed("clearRawData", [&](HandleTable& handles) { handles.remove<RawData>(raw); });
}

DataHandle createData(void) {
  return framed("createData", [](HandleTable& handles) {
    return static_cast<DataHandle>(handles.add(std::make_shared<Data>()));
  });
}

void clearData(DataHandle data) {
  framed("clearData", [&](HandleTable& handles) { handles.remove<Data>(data); });
}

void startMeasurement(OCTDeviceHandle device, ScanPatternHandle pattern, int mode) {
  framed("startMeasurement", [&](HandleTable& handles) {
    handles.find<Device>(device)->start(*handles.find<ScanPattern>(pattern), mode);
  });
}

void stopMeasurement(OCTDeviceHandle device) {
  framed("stopMeasurement", [&](HandleTable& handles) { handles.find<Device>(device)->stop(); });
}

int isError(void) { return Library::instance().error.isSet() ? 1 : 0; }

int getError(char* buffer, int size) { return Library::instance().error.take(buffer, size) ? 1 : 0; }

void getRawDataEx(OCTDeviceHandle device, RawDataHandle raw, int camera) {
  framed("getRawDataEx", [&](HandleTable& handles) {
    handles.find<Device>(device)->acquire(*handles.find<RawData>(raw), camera);
  });
}

void setProcessedDataOutput(ProcessingHandle processing, DataHandle data) {
  framed("setProcessedDataOutput", [&](HandleTable& handles) {
    handles.find<Processing>(processing)->setOutput(handles.find<Data>(data));
  });
}

void executeProcessing(ProcessingHandle processing, RawDataHandle raw) {
  framed("executeProcessing", [&](HandleTable& handles) {
    handles.find<Processing>(processing)->execute(*handles.find<RawData>(raw));
  });
}

int getDataPropertyInt(DataHandle data, int property) {
  return framed("getDataPropertyInt",
                [&](HandleTable& handles) { return sizeOf(*handles.find<Data>(data), property); });
}

double getDataPropertyFloat(DataHandle data, int property) {
  return framed("getDataPropertyFloat", [&](HandleTable& handles) {
    const auto object = handles.find<Data>(data);
    if (property < OCT_DATA_RANGE_1 || property > OCT_DATA_RANGE_3)
      throw std::invalid_argument("Unknown property. ");
    return object->rangesMm()[property - OCT_DATA_RANGE_1];
  });
}

void setDataRange(DataHandle data, double range1, double range2, double range3) {
  framed("setDataRange",
         [&](HandleTable& handles) { handles.find<Data>(data)->setRanges({range1, range2, range3}); });
}

float* getDataPtr(DataHandle data) {
  return framed("getDataPtr", [&](HandleTable& handles) -> float* {
    auto& samples = handles.find<Data>(data)->samples();
    return samples.empty() ? nullptr : samples.data();
  });
}
