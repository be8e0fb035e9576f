// The polarization functions: find the objects, make one call.

#include "oct_device/oct_device.h"

#include "api/library.h"
#include "processing/polarization_processing.h"

#include <stdexcept>

using namespace oct::simulator;

namespace {

void setOutput(const char* function, PolarizationProcessing::Quantity quantity,
               PolarizationProcessingHandle processing, DataHandle data) {
  deviceCall(function, [&](HandleTable& handles) {
    handles.find<PolarizationProcessing>(processing)->setOutput(quantity, handles.find<Data>(data));
  });
}

}  // namespace

void setPolarizationOutputI(PolarizationProcessingHandle processing, DataHandle data) {
  setOutput("setPolarizationOutputI", PolarizationProcessing::kIntensity, processing, data);
}

void setPolarizationOutputRetardation(PolarizationProcessingHandle processing, DataHandle data) {
  setOutput("setPolarizationOutputRetardation", PolarizationProcessing::kRetardation, processing, data);
}

void setPolarizationOutputOpticAxis(PolarizationProcessingHandle processing, DataHandle data) {
  setOutput("setPolarizationOutputOpticAxis", PolarizationProcessing::kOpticAxis, processing, data);
}

void setPolarizationOutputDOPU(PolarizationProcessingHandle processing, DataHandle data) {
  setOutput("setPolarizationOutputDOPU", PolarizationProcessing::kDopu, processing, data);
}

void setPolarizationOutputQ(PolarizationProcessingHandle processing, DataHandle data) {
  setOutput("setPolarizationOutputQ", PolarizationProcessing::kQ, processing, data);
}

void setPolarizationOutputU(PolarizationProcessingHandle processing, DataHandle data) {
  setOutput("setPolarizationOutputU", PolarizationProcessing::kU, processing, data);
}

void setPolarizationOutputV(PolarizationProcessingHandle processing, DataHandle data) {
  setOutput("setPolarizationOutputV", PolarizationProcessing::kV, processing, data);
}

void setPolarizationFlag(PolarizationProcessingHandle processing, int flag, int value) {
  deviceCall("setPolarizationFlag", [&](HandleTable& handles) {
    const auto object = handles.find<PolarizationProcessing>(processing);
    if (flag != OCT_POLARIZATION_USE_THRESHOLD) throw std::invalid_argument("Unknown flag. ");
    object->setThresholdEnabled(value != 0);
  });
}

void setPolarizationPropertyFloat(PolarizationProcessingHandle processing, int property, double value) {
  deviceCall("setPolarizationPropertyFloat", [&](HandleTable& handles) {
    const auto object = handles.find<PolarizationProcessing>(processing);
    if (property != OCT_POLARIZATION_THRESHOLD) throw std::invalid_argument("Unknown property. ");
    object->setThreshold(value);
  });
}

void setPolarizationPropertyInt(PolarizationProcessingHandle processing, int property, int value) {
  deviceCall("setPolarizationPropertyInt", [&](HandleTable& handles) {
    const auto object = handles.find<PolarizationProcessing>(processing);
    switch (property) {
      case OCT_POLARIZATION_DOPU_1:
      case OCT_POLARIZATION_DOPU_2:
      case OCT_POLARIZATION_DOPU_3:
        return object->setDopuBox(property - OCT_POLARIZATION_DOPU_1, value);
      case OCT_POLARIZATION_AVERAGING_1:
      case OCT_POLARIZATION_AVERAGING_2:
      case OCT_POLARIZATION_AVERAGING_3:
        return object->setAveraging(property - OCT_POLARIZATION_AVERAGING_1, value);
      case OCT_POLARIZATION_AVERAGING_VOLUMES:
        return object->setVolumeAveraging(value);
      default:
        throw std::invalid_argument("Unknown property. ");
    }
  });
}

void executePolarizationProcessing(PolarizationProcessingHandle processing, ComplexDataHandle sensor0,
                                   ComplexDataHandle sensor1) {
  deviceCall("executePolarizationProcessing", [&](HandleTable& handles) {
    handles.find<PolarizationProcessing>(processing)
        ->execute(*handles.find<ComplexData>(sensor0), *handles.find<ComplexData>(sensor1));
  });
}
