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
 * @param camera index of the camera; this device has camera 0 only
 */
OCT_DEVICE_API void getRawDataEx(OCTDeviceHandle device, RawDataHandle raw, int camera);

/**
 * Says where the results of a processing go. Holds until the next call.
 * @param processing the processing
 * @param data the destination; clearing it takes the setting back
 */
OCT_DEVICE_API void setProcessedDataOutput(ProcessingHandle processing, DataHandle data);

/**
 * Processes all spectra of a raw data object: background removal, resampling to even wavenumbers, dispersion
 * compensation, Hann apodisation, Fourier transform, magnitude in decibels (20 log10).
 * The destination gets its sizes, ranges and samples; pointers from getDataPtr() become invalid.
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
 *         Valid until the data is cleared or written by executeProcessing()
 */
OCT_DEVICE_API float* getDataPtr(DataHandle data);

#ifdef __cplusplus
}
#endif

#endif
