/** @file
 * Creates and frees the objects of the simulated OCT device that the device functions only use.
 *
 * The simulated device computes spectral interferograms of a phantom, with source spectrum, dispersion, noise
 * and a camera of 12 bits, and processes them as an instrument does. Errors and threads: see oct_device.h.
 */
#ifndef OCT_DEVICE_OCT_SIMULATOR_H
#define OCT_DEVICE_OCT_SIMULATOR_H

#include "oct_device_types.h"

#ifdef __cplusplus
extern "C" {
#endif

/** What the simulated device looks at. */
enum {
  OCT_PHANTOM_FINGER_PAD = 0, /**< finger pad with fingerprint and sweat ducts; 1300 nm, 3.6 mm depth range */
  OCT_PHANTOM_RETINA = 1,     /**< retina with the fovea in the middle; 850 nm, 2.4 mm depth range */
  OCT_PHANTOM_MIRROR = 2      /**< tilted mirror, 1 mm deep in the middle; 1300 nm, 3.6 mm depth range */
};

/**
 * Creates a simulated device.
 * The depth range does not depend on the spectrum length: a longer spectrum covers a wider band of the light
 * and resolves finer depths.
 * @param phantom one of the OCT_PHANTOM_ values
 * @param spectrumLength camera pixels per spectrum: even, 64 to 4096; 2048 gives 1024 depth samples
 * @param seed chooses the individual phantom and its noise; the same seed gives the same volumes
 * @return the device, to be freed by clearSimulatedDevice(); null and a pending error if an argument is
 * invalid
 */
OCT_DEVICE_API OCTDeviceHandle createSimulatedDevice(int phantom, int spectrumLength, unsigned int seed);

/**
 * Frees a simulated device; a running measurement is stopped.
 * @param device the device; processings and scan patterns made for it stay valid
 */
OCT_DEVICE_API void clearSimulatedDevice(OCTDeviceHandle device);

/**
 * Creates a processing that is calibrated for the spectra of a simulated device.
 * @param device the device
 * @return the processing, to be freed by clearSimulatedProcessing(); null and a pending error if it fails
 */
OCT_DEVICE_API ProcessingHandle createSimulatedProcessing(OCTDeviceHandle device);

/** Frees a processing. @param processing the processing */
OCT_DEVICE_API void clearSimulatedProcessing(ProcessingHandle processing);

/**
 * Creates a scan pattern: a grid of A-scans around the middle of the phantom.
 * @param device the device
 * @param aScans A-scans per B-scan, 1 or more
 * @param bScans B-scans per volume, 1 or more; a single B-scan runs through the middle
 * @param widthMm width of a B-scan in millimetres, above 0
 * @param lengthMm extent from the first to the last B-scan in millimetres, above 0
 * @return the pattern, to be freed by clearSimulatedScanPattern(); null and a pending error if an argument is
 *         invalid
 */
OCT_DEVICE_API ScanPatternHandle createSimulatedScanPattern(OCTDeviceHandle device, int aScans, int bScans,
                                                            double widthMm, double lengthMm);

/** Frees a scan pattern. @param pattern the pattern */
OCT_DEVICE_API void clearSimulatedScanPattern(ScanPatternHandle pattern);

/**
 * Counts the objects of every kind that were created and not cleared, to find leaks in programs under test.
 * @return the count
 */
OCT_DEVICE_API int getSimulatedObjectCount(void);

#ifdef __cplusplus
}
#endif

#endif
