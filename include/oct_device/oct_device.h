/** @file
 * Functions of an OCT device: measure raw spectra, process them, read the result.
 *
 * Errors: no function returns an error code. A call that fails does nothing, returns zero or null and leaves
 * a pending error, which isError() announces and getError() fetches. The library holds one pending error;
 * while one is pending, later ones are dropped, because the first is the cause. A null handle, a cleared
 * handle and a handle of another kind are errors in every function.
 *
 * Threads: every function may be called from any thread. Different objects may be used at the same time; one
 * object must not be used by two threads at once, except that stopMeasurement() may be called at any time.
 * The pending error is shared by all threads.
 *
 * Other device libraries: the rendering library finds these functions by name, so a library of one's own that
 * exports them with these types takes this one's place. It may leave out the polarization functions at the
 * end if it serves no device with two sensors; everything else must be there. Numbers of properties and flags
 * are part of the interface, and so are these promises: sizes and ranges as documented at the enumerations,
 * the pointers' lifetimes, and that stopMeasurement() ends a getRawDataEx() that waits.
 */
#ifndef OCT_DEVICE_OCT_DEVICE_H
#define OCT_DEVICE_OCT_DEVICE_H

#include "oct_device_types.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Whole-number properties of a device, for getDevicePropertyInt(). */
enum {
  OCT_DEVICE_SPECTRUM_LENGTH = 0 /**< camera pixels per spectrum, twice the depth samples per A-scan */
};

/** Floating-point properties of a device, for getDevicePropertyFloat(). */
enum {
  OCT_DEVICE_DEPTH_RANGE = 1 /**< optical depth of a whole A-scan, in millimetres in air */
};

/** Whole-number properties of processed data, for getDataPropertyInt(). */
enum {
  OCT_DATA_SIZE_1 = 1,    /**< depth samples per A-scan; neighbours in depth are neighbours in memory */
  OCT_DATA_SIZE_2 = 2,    /**< A-scans per B-scan */
  OCT_DATA_SIZE_3 = 3,    /**< B-scans */
  OCT_DATA_BYTE_COUNT = 5 /**< size of all samples in bytes */
};

/** Floating-point properties of processed data, for getDataPropertyFloat(). */
enum {
  OCT_DATA_RANGE_1 = 3, /**< physical range along depth, in millimetres */
  OCT_DATA_RANGE_2 = 4, /**< physical range along a B-scan, in millimetres */
  OCT_DATA_RANGE_3 = 5  /**< physical range from B-scan to B-scan, in millimetres */
};

/**
 * Reads a whole-number property of a device.
 * @param device the device
 * @param property #OCT_DEVICE_SPECTRUM_LENGTH
 * @return the value; 0 and a pending error for another property
 */
OCT_DEVICE_API int getDevicePropertyInt(OCTDeviceHandle device, int property);

/**
 * Reads a floating-point property of a device.
 * @param device the device
 * @param property #OCT_DEVICE_DEPTH_RANGE
 * @return the value; 0 and a pending error for another property
 */
OCT_DEVICE_API double getDevicePropertyFloat(OCTDeviceHandle device, int property);

/**
 * Creates an empty raw data object.
 * @return the object, to be freed by clearRawData(); null and a pending error if there is no memory
 */
OCT_DEVICE_API RawDataHandle createRawData(void);

/** Frees a raw data object. @param raw the object; the handle is invalid afterwards */
OCT_DEVICE_API void clearRawData(RawDataHandle raw);

/**
 * Creates an empty data object: all sizes and ranges are zero.
 * @return the object, to be freed by clearData(); null and a pending error if there is no memory
 */
OCT_DEVICE_API DataHandle createData(void);

/** Frees a data object. @param data the object; the handle and its sample pointer are invalid afterwards */
OCT_DEVICE_API void clearData(DataHandle data);

/**
 * Starts a measurement. Volumes are then fetched by getRawDataEx().
 * Fails if a measurement is running on this device.
 * @param device the device
 * @param pattern the scan pattern; it may be cleared while the measurement runs
 * @param mode 0: continuous, volume after volume until stopMeasurement(); there is no other mode
 */
OCT_DEVICE_API void startMeasurement(OCTDeviceHandle device, ScanPatternHandle pattern, int mode);

/**
 * Stops the measurement. A volume that is being fetched is given up with a pending error.
 * Nothing happens, and nothing is an error, if no measurement runs.
 * @param device the device
 */
OCT_DEVICE_API void stopMeasurement(OCTDeviceHandle device);

/** Tells whether an error is pending. @return non-zero if so; the error stays pending */
OCT_DEVICE_API int isError(void);

/**
 * Fetches the pending error and takes it back.
 * @param buffer receives the text, cut to fit and always terminated; empty if no error is pending
 * @param size size of the buffer in bytes; with a null buffer or a size below 1 the error stays pending
 * @return non-zero if an error was pending
 */
OCT_DEVICE_API int getError(char* buffer, int size);

/**
 * Waits for the next volume of a running measurement and stores its spectra.
 * Fails if no measurement is running.
 * @param device the device
 * @param raw receives the spectra, 16-bit camera counts; what it held before is lost
 * @param camera index of the camera: 0, and 1 for devices with two sensors. The cameras are triggered
 *        together: after one camera's volume has been fetched, the other one gives the same volume
 */
OCT_DEVICE_API void getRawDataEx(OCTDeviceHandle device, RawDataHandle raw, int camera);

/**
 * Fetches the samples at the analog input that belong to the volume that was acquired last.
 * Fails if no measurement is running or no volume was acquired since it started.
 * @param device the device
 * @param data receives volts: #OCT_DATA_SIZE_1 is the number of channels, then A-scans and B-scans as in the
 *        volume. While these sizes stay the same, the pointer from getDataPtr() stays valid
 */
OCT_DEVICE_API void getAnalogInputData(OCTDeviceHandle device, DataHandle data);

/**
 * Says where the intensities of a processing go. Holds until the next call.
 * @param processing the processing
 * @param data the destination; clearing it takes the setting back
 */
OCT_DEVICE_API void setProcessedDataOutput(ProcessingHandle processing, DataHandle data);

/**
 * Processes all spectra of a raw data object: background removal, resampling to even wavenumbers, dispersion
 * compensation, Hann apodisation, Fourier transform, magnitude in decibels (20 log10).
 * The destination gets its sizes, ranges and samples; pointers from getDataPtr() become invalid if the sizes
 * change. A destination for complex data gets amplitude and phase.
 * Fails without a destination, with empty raw data, or when the spectra come from a device with another
 * spectrum length.
 * @param processing the processing
 * @param raw the spectra
 */
OCT_DEVICE_API void executeProcessing(ProcessingHandle processing, RawDataHandle raw);

/**
 * Reads a whole-number property of processed data.
 * @param data the data
 * @param property #OCT_DATA_SIZE_1, #OCT_DATA_SIZE_2, #OCT_DATA_SIZE_3 or #OCT_DATA_BYTE_COUNT
 * @return the value, 0 for empty data; 0 and a pending error for another property, or if the byte count is
 *         larger than an int can hold
 */
OCT_DEVICE_API int getDataPropertyInt(DataHandle data, int property);

/**
 * Reads a floating-point property of processed data.
 * @param data the data
 * @param property #OCT_DATA_RANGE_1, #OCT_DATA_RANGE_2 or #OCT_DATA_RANGE_3
 * @return the value, 0 for empty data; 0 and a pending error for another property
 */
OCT_DEVICE_API double getDataPropertyFloat(DataHandle data, int property);

/**
 * Replaces the physical ranges of processed data, for example after a correction for the refractive index.
 * The samples stay as they are; the next executeProcessing() into the data writes its own ranges.
 * @param data the data
 * @param range1 range along depth in millimetres
 * @param range2 range along a B-scan in millimetres
 * @param range3 range from B-scan to B-scan in millimetres; all three finite and not negative
 */
OCT_DEVICE_API void setDataRange(DataHandle data, double range1, double range2, double range3);

/**
 * Gives access to the samples of processed data, in decibels.
 * @param data the data
 * @return the first sample, sample (i1, i2, i3) lies at i1 + size1 * (i2 + size2 * i3); null for empty data.
 *         Valid until the data is cleared or
 *         written by a function that changes its sizes
 */
OCT_DEVICE_API float* getDataPtr(DataHandle data);

/**
 * Finds the surface of a volume: in every A-scan the depth at which light first comes back.
 * @param volume processed data in decibels; empty data is an error
 * @param surface receives one depth in millimetres per A-scan, counted with the volume's own range along
 * depth: #OCT_DATA_SIZE_1 is A-scans per B-scan, #OCT_DATA_SIZE_2 is B-scans. Where no surface is found, the
 *        depth is the whole range. It must be another object than the volume
 */
OCT_DEVICE_API void determineSurface(DataHandle volume, DataHandle surface);

/**
 * Tells how much light comes from the reference arm, to set it up by.
 * @param device the device
 * @param processing a processing for the device; the volume it executed last counts
 * @return brightest part of the reference spectrum relative to what the camera can measure, 0 to 1; before
 * the first execution the value of the calibration
 */
OCT_DEVICE_API double getRelativeReferenceIntensity(OCTDeviceHandle device, ProcessingHandle processing);

/** @name Optional
 * What a device library may leave out. Clients then do without what it tells.
 * @{
 */

/**
 * Counts the volumes that a device measured and left out because nobody fetched them in time. A volume is
 * counted when the one after it is fetched.
 * @param device the device
 * @return volumes left out since startMeasurement(); the count stays after stopMeasurement()
 */
OCT_DEVICE_API int getLostVolumes(OCTDeviceHandle device);

/** @} */

/** @name Polarization
 * For devices with two sensors that see two polarizations of the light. Sensor 0 sees the light that a mirror
 * would send back, sensor 1 the other half. Per volume: fetch the raw data of both cameras, process each into
 * complex data with a processing of its own, and execute the polarization processing on the pair.
 * @{
 */

/** Flags for setPolarizationFlag(). */
enum {
  OCT_POLARIZATION_USE_THRESHOLD = 0 /**< cut by #OCT_POLARIZATION_THRESHOLD; off at first */
};

/** Properties for setPolarizationPropertyFloat(). */
enum {
  OCT_POLARIZATION_THRESHOLD = 0 /**< intensity in decibels below which all other quantities are set to 0 */
};

/** Properties for setPolarizationPropertyInt(): counts of 1 or more. */
enum {
  OCT_POLARIZATION_DOPU_1 = 0,      /**< depth samples over which DOPU is formed, at first 3 */
  OCT_POLARIZATION_DOPU_2 = 1,      /**< the same in A-scans */
  OCT_POLARIZATION_DOPU_3 = 2,      /**< the same in B-scans */
  OCT_POLARIZATION_AVERAGING_1 = 5, /**< depth samples over which Stokes vectors are averaged, at first 1 */
  OCT_POLARIZATION_AVERAGING_2 = 6, /**< the same in A-scans */
  OCT_POLARIZATION_AVERAGING_3 = 7, /**< the same in B-scans */
  OCT_POLARIZATION_AVERAGING_VOLUMES = 8 /**< the same in successive volumes, as a running mean */
};

/**
 * Creates an empty complex data object.
 * @return the object, to be freed by clearComplexData(); null and a pending error if there is no memory
 */
OCT_DEVICE_API ComplexDataHandle createComplexData(void);

/** Frees a complex data object. @param data the object; the handle is invalid afterwards */
OCT_DEVICE_API void clearComplexData(ComplexDataHandle data);

/**
 * Says where the complex results of a processing go. Holds until the next call, beside the destination that
 * setProcessedDataOutput() has set.
 * @param processing the processing
 * @param data the destination; clearing it takes the setting back
 */
OCT_DEVICE_API void setComplexDataOutput(ProcessingHandle processing, ComplexDataHandle data);

/**
 * Says where a quantity goes. Quantities without a destination are not computed. A data object takes one
 * quantity: it is taken away from the quantity that it was set for before.
 * Intensity: decibels. Holds until the next call.
 * @param processing the polarization processing
 * @param data the destination; clearing it takes the setting back
 */
OCT_DEVICE_API void setPolarizationOutputI(PolarizationProcessingHandle processing, DataHandle data);

/** The same for the retardation: 0 to 90 degrees, accumulated from the surface down to the sample. */
OCT_DEVICE_API void setPolarizationOutputRetardation(PolarizationProcessingHandle processing,
                                                     DataHandle data);

/** The same for the direction of the slow axis: 0 to 180 degrees. Without retardation it is random. */
OCT_DEVICE_API void setPolarizationOutputOpticAxis(PolarizationProcessingHandle processing, DataHandle data);

/** The same for the degree of polarization uniformity: 0 random, 1 uniform. */
OCT_DEVICE_API void setPolarizationOutputDOPU(PolarizationProcessingHandle processing, DataHandle data);

/** The same for Stokes Q relative to the intensity, -1 to 1: power on sensor 0 less power on sensor 1. */
OCT_DEVICE_API void setPolarizationOutputQ(PolarizationProcessingHandle processing, DataHandle data);

/** The same for Stokes U relative to the intensity, -1 to 1: light of equal phase on both sensors. */
OCT_DEVICE_API void setPolarizationOutputU(PolarizationProcessingHandle processing, DataHandle data);

/** The same for Stokes V relative to the intensity, -1 to 1: sensor 1 a quarter period ahead. */
OCT_DEVICE_API void setPolarizationOutputV(PolarizationProcessingHandle processing, DataHandle data);

/**
 * Switches a flag.
 * @param processing the polarization processing
 * @param flag #OCT_POLARIZATION_USE_THRESHOLD; another one is an error
 * @param value non-zero for on
 */
OCT_DEVICE_API void setPolarizationFlag(PolarizationProcessingHandle processing, int flag, int value);

/**
 * Sets a floating-point property.
 * @param processing the polarization processing
 * @param property #OCT_POLARIZATION_THRESHOLD; another one is an error
 * @param value decibels, finite
 */
OCT_DEVICE_API void setPolarizationPropertyFloat(PolarizationProcessingHandle processing, int property,
                                                 double value);

/**
 * Sets a whole-number property.
 * @param processing the polarization processing
 * @param property one of the OCT_POLARIZATION_DOPU_ and OCT_POLARIZATION_AVERAGING_ values; another one is an
 *        error
 * @param value 1 or more; boxes are cut off at the edges of the volume
 */
OCT_DEVICE_API void setPolarizationPropertyInt(PolarizationProcessingHandle processing, int property,
                                               int value);

/**
 * Computes all quantities that have a destination.
 * Each destination gets its sizes, ranges and samples; pointers from getDataPtr() become invalid if the sizes
 * change. Fails if no quantity has a destination, or if the sensors' data are empty or differ in size.
 * @param processing the polarization processing
 * @param sensor0 complex data of sensor 0
 * @param sensor1 complex data of sensor 1
 */
OCT_DEVICE_API void executePolarizationProcessing(PolarizationProcessingHandle processing,
                                                  ComplexDataHandle sensor0, ComplexDataHandle sensor1);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
