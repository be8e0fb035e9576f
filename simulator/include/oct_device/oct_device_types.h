/** @file
 * Handle types of the device functions.
 *
 * A handle is an opaque value of pointer size. Null is the invalid handle. A handle is valid from the call
 * that creates it to the call that clears it and is never given out again afterwards.
 */
#ifndef OCT_DEVICE_OCT_DEVICE_TYPES_H
#define OCT_DEVICE_OCT_DEVICE_TYPES_H

#if defined(_WIN32)
#define OCT_DEVICE_API
#else
#define OCT_DEVICE_API __attribute__((visibility("default")))
#endif

/* The header of the rendering library declares these four as well, and C99 does not allow it twice. */
#ifndef OCT_DEVICE_HANDLES
#define OCT_DEVICE_HANDLES

/** An OCT device: light source, interferometer, scanner and camera. */
typedef struct OctDevice* OCTDeviceHandle;

/** The chain of computations that turns raw spectra into a depth-resolved picture. */
typedef struct OctProcessing* ProcessingHandle;

/** The lateral positions at which a volume is measured. */
typedef struct OctScanPattern* ScanPatternHandle;

/** The computation of polarization quantities from the light of two sensors. */
typedef struct OctPolarizationProcessing* PolarizationProcessingHandle;

#endif

/** The camera readings of one volume. */
typedef struct OctRawData* RawDataHandle;

/** A processed volume of 32-bit floats with its sizes and physical ranges. */
typedef struct OctData* DataHandle;

/** A processed volume of complex numbers: amplitude and phase of the light. */
typedef struct OctComplexData* ComplexDataHandle;

#endif
