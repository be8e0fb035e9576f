// The polarization functions: find the objects, make one call.

#include <stdexcept>

#include "api/library.h"
#include "oct_device/oct_device.h"
#include "processing/polarization_processing.h"

using namespace oct::simulator;

namespace {

void set_output(const char* function, PolarizationProcessing::Quantity quantity,
                PolarizationProcessingHandle processing, DataHandle data) {
  device_call(function, [&](HandleTable& handles) {
    handles.find<PolarizationProcessing>(processing)->set_output(quantity, handles.find<Data>(data));
  });
}

}  // namespace

void setPolarizationOutputI(PolarizationProcessingHandle processing, DataHandle data) {
  set_output("setPolarizationOutputI", PolarizationProcessing::intensity, processing, data);
}

void setPolarizationOutputRetardation(PolarizationProcessingHandle processing, DataHandle data) {
  set_output("setPolarizationOutputRetardation", PolarizationProcessing::retardation, processing, data);
}

void setPolarizationOutputOpticAxis(PolarizationProcessingHandle processing, DataHandle data) {
  set_output("setPolarizationOutputOpticAxis", PolarizationProcessing::optic_axis, processing, data);
}

void setPolarizationOutputDOPU(PolarizationProcessingHandle processing, DataHandle data) {
  set_output("setPolarizationOutputDOPU", PolarizationProcessing::dopu, processing, data);
}

void setPolarizationOutputQ(PolarizationProcessingHandle processing, DataHandle data) {
  set_output("setPolarizationOutputQ", PolarizationProcessing::stokes_q, processing, data);
}

void setPolarizationOutputU(PolarizationProcessingHandle processing, DataHandle data) {
  set_output("setPolarizationOutputU", PolarizationProcessing::stokes_u, processing, data);
}

void setPolarizationOutputV(PolarizationProcessingHandle processing, DataHandle data) {
  set_output("setPolarizationOutputV", PolarizationProcessing::stokes_v, processing, data);
}

void setPolarizationFlag(PolarizationProcessingHandle processing, int flag, int value) {
  device_call("setPolarizationFlag", [&](HandleTable& handles) {
    const auto object = handles.find<PolarizationProcessing>(processing);
    if (flag != OCT_POLARIZATION_USE_THRESHOLD) throw std::invalid_argument("Unknown flag. ");
    object->set_threshold_enabled(value != 0);
  });
}

void setPolarizationPropertyFloat(PolarizationProcessingHandle processing, int property, double value) {
  device_call("setPolarizationPropertyFloat", [&](HandleTable& handles) {
    const auto object = handles.find<PolarizationProcessing>(processing);
    if (property != OCT_POLARIZATION_THRESHOLD) throw std::invalid_argument("Unknown property. ");
    object->set_threshold(value);
  });
}

void setPolarizationPropertyInt(PolarizationProcessingHandle processing, int property, int value) {
  device_call("setPolarizationPropertyInt", [&](HandleTable& handles) {
    const auto object = handles.find<PolarizationProcessing>(processing);
    switch (property) {
      case OCT_POLARIZATION_DOPU_1:
      case OCT_POLARIZATION_DOPU_2:
      case OCT_POLARIZATION_DOPU_3:
        return object->set_dopu_box(property - OCT_POLARIZATION_DOPU_1, value);
      case OCT_POLARIZATION_AVERAGING_1:
      case OCT_POLARIZATION_AVERAGING_2:
      case OCT_POLARIZATION_AVERAGING_3:
        return object->set_averaging(property - OCT_POLARIZATION_AVERAGING_1, value);
      case OCT_POLARIZATION_AVERAGING_VOLUMES:
        return object->set_volume_averaging(value);
      default:
        throw std::invalid_argument("Unknown property. ");
    }
  });
}

void executePolarizationProcessing(PolarizationProcessingHandle processing, ComplexDataHandle sensor0,
                                   ComplexDataHandle sensor1) {
  device_call("executePolarizationProcessing", [&](HandleTable& handles) {
    handles.find<PolarizationProcessing>(processing)
        ->execute(*handles.find<ComplexData>(sensor0), *handles.find<ComplexData>(sensor1));
  });
}
