// The functions that a library for standard devices leaves out.
#include "live/pattern_device.h"

using oct::test::entered;
using oct::test::locked;
using oct::test::pattern_state;
using oct::test::PatternDevice;

// One more with every call, and not recorded.
int getLostVolumes(OCTDeviceHandle) {
  return locked([](PatternDevice& state) { return ++state.lost; });
}

ComplexDataHandle createComplexData(void) {
  return entered("createComplexData") ? pattern_state().make<OctComplexData>("complex") : nullptr;
}

void clearComplexData(ComplexDataHandle data) {
  if (entered("clearComplexData", data)) pattern_state().clear(data);
}

void setComplexDataOutput(ProcessingHandle processing, ComplexDataHandle data) {
  if (!entered("setComplexDataOutput", processing, data)) return;
  locked([=](PatternDevice& state) { state.complex_outputs[processing] = data; });
}

#define OCT_OUTPUT(function, number)                                                                  \
  void function(PolarizationProcessingHandle processing, DataHandle data) {                           \
    if (!entered(#function, processing, data)) return;                                                \
    locked([=](PatternDevice& state) { state.polarization_output = data, state.quantity = number; }); \
  }
OCT_OUTPUT(setPolarizationOutputI, oct::test::PatternDevice::intensity)
OCT_OUTPUT(setPolarizationOutputRetardation, 1)
OCT_OUTPUT(setPolarizationOutputOpticAxis, 2)
OCT_OUTPUT(setPolarizationOutputDOPU, 3)
OCT_OUTPUT(setPolarizationOutputQ, 4)
OCT_OUTPUT(setPolarizationOutputU, 5)
OCT_OUTPUT(setPolarizationOutputV, 6)
#undef OCT_OUTPUT

void setPolarizationFlag(PolarizationProcessingHandle processing, int flag, int value) {
  entered("setPolarizationFlag", processing, flag, value);
}

void setPolarizationPropertyFloat(PolarizationProcessingHandle processing, int property, double value) {
  entered("setPolarizationPropertyFloat", processing, property, value);
}

void setPolarizationPropertyInt(PolarizationProcessingHandle processing, int property, int value) {
  entered("setPolarizationPropertyInt", processing, property, value);
}

void executePolarizationProcessing(PolarizationProcessingHandle processing, ComplexDataHandle sensor0,
                                   ComplexDataHandle sensor1) {
  if (!entered("executePolarizationProcessing", processing, sensor0, sensor1)) return;
  if (sensor0->volume != sensor1->volume) return pattern_state().raise("The sensors show different volumes");
  if (DataHandle const data = pattern_state().polarization_output) {
    pattern_state().fill(*data, sensor0->volume, pattern_state().quantity);
  }
}
