/**
 * @file interface_list.h
 * @brief Every function of the interface, with its types, as one list. Not part of oct_rendering.h.
 *
 * For whoever binds functions by name: OCT_API_LIST(FUNCTION) expands FUNCTION(since, family, result, name,
 * parameters) for each of them. The version in which a function came is a number as 0.1, the family is the header that
 * documents it, parameters stand in parentheses. A table of pointers, for example:
 *
 *     #define OCT_POINTER(since, family, result, name, parameters) result(*name) parameters;
 *     struct Functions { OCT_API_LIST(OCT_POINTER) };
 *
 * The library's exports, its test of every signature and its bindings for other languages are made from this list.
 */
#ifndef OCT_RENDERING_INTERFACE_LIST_H
#define OCT_RENDERING_INTERFACE_LIST_H

#include "oct_rendering.h"

/* One line for each function, because programs read them. */
/* clang-format off */

/** @brief Every function: FUNCTION(since, family, result, name, parameters). */
#define OCT_API_LIST(FUNCTION) \
  FUNCTION(0.1, library, const char*, getRendererVersion, (void)) \
  FUNCTION(0.1, library, int, isRendererError, (void)) \
  FUNCTION(0.1, library, int, getRendererError, (char* Message, int Size)) \
  FUNCTION(0.2, library, int, getOwnRendererError, (char* Message, int Size)) \
  FUNCTION(0.2, library, int, getRendererErrorKind, (void)) \
  FUNCTION(0.2, library, void, getRendererInfo, (OctRendererInfo* Info)) \
  FUNCTION(0.1, library, void, setRendererLogFile, (const char* FileName)) \
  FUNCTION(0.1, library, void, setErrorCallback, (LiveDataSourceHandle DataSource, OctErrorFunction Callback)) \
  FUNCTION(0.2, library, void, setErrorCallbackWithUser, (LiveDataSourceHandle DataSource, OctErrorFunctionWithUser Callback, void* user)) \
  FUNCTION(0.2, library, void, setRendererTraceFile, (const char* FileName)) \
  FUNCTION(0.2, library, void, setRendererTimingCallback, (OctTimingFunction Begin, OctTimingFunction End, OctTimingFunction Instant, void* user)) \
  FUNCTION(0.1, display, DisplayRenderingHandle, createDisplayRendering, (void)) \
  FUNCTION(0.1, display, void, clearDisplayRendering, (DisplayRenderingHandle Handle)) \
  FUNCTION(0.1, display, void, initDisplayRendering, (DisplayRenderingHandle Handle)) \
  FUNCTION(0.1, display, void, uninitDisplayRendering, (DisplayRenderingHandle Handle)) \
  FUNCTION(0.1, display, void, renderDisplay, (DisplayRenderingHandle Handle)) \
  FUNCTION(0.1, display, void, setDisplayData, (DisplayRenderingHandle Handle, int Size1, int Size2, const float* Data)) \
  FUNCTION(0.1, display, void, setDisplayBounds, (DisplayRenderingHandle Handle, int Lower, int Upper)) \
  FUNCTION(0.1, display, void, clearDisplayData, (DisplayRenderingHandle Handle)) \
  FUNCTION(0.1, display, void, setGammaCorrection, (DisplayRenderingHandle Handle, float Gamma)) \
  FUNCTION(0.1, display, void, setDisplayBlur, (DisplayRenderingHandle Handle, int First, int Second)) \
  FUNCTION(0.1, display, void, setDisplayFlip, (DisplayRenderingHandle Handle, int Flip)) \
  FUNCTION(0.2, display, void, setDisplayPart, (DisplayRenderingHandle Handle, unsigned int Width, unsigned int Height, int X, int Y)) \
  FUNCTION(0.1, display, void, setDisplayDynamicReduction, (DisplayRenderingHandle Handle, int Reduction)) \
  FUNCTION(0.1, display, void, setDisplayPepperFilter, (DisplayRenderingHandle Handle, int Enable)) \
  FUNCTION(0.1, display, void, setDisplayMedianFilter, (DisplayRenderingHandle Handle, int MedianFilter)) \
  FUNCTION(0.1, display, void, setBackgroundColor, (DisplayRenderingHandle Handle, int Color)) \
  FUNCTION(0.1, display, void, setDisplayColormap, (DisplayRenderingHandle Handle, const void* Colormap, int Count)) \
  FUNCTION(0.1, display, void, setDisplayColoringBoundaries, (DisplayRenderingHandle Handle, double Lower, double Upper)) \
  FUNCTION(0.1, display, void, setDisplayNumberOverlays, (DisplayRenderingHandle Handle, int Unused, int Count)) \
  FUNCTION(0.1, display, void, setDisplayOverlayData, (DisplayRenderingHandle Handle, int Size1, int Size2, const float* Data)) \
  FUNCTION(0.1, display, void, setDisplayOverlayColormap, (DisplayRenderingHandle Handle, int Overlay, const void* Colormap, int Count)) \
  FUNCTION(0.1, display, void, setDisplayOveralyColoringBoundaries, (DisplayRenderingHandle Handle, int Overlay, double Lower, double Upper)) \
  FUNCTION(0.1, display, void, setDisplayOveralyThreshold, (DisplayRenderingHandle Handle, double Threshold)) \
  FUNCTION(0.2, display, int, explainDisplay, (DisplayRenderingHandle Handle, char* Text, int Size)) \
  FUNCTION(0.1, volume, VolumeRendererHandle, createVolumeRenderer, (void)) \
  FUNCTION(0.1, volume, void, deleteVolumeRenderer, (VolumeRendererHandle Handle)) \
  FUNCTION(0.1, volume, void, initializeVolumeRenderer, (VolumeRendererHandle Handle)) \
  FUNCTION(0.1, volume, void, uninitializeVolumeRenderer, (VolumeRendererHandle Handle)) \
  FUNCTION(0.1, volume, void, clearVolumeRenderer, (VolumeRendererHandle Handle)) \
  FUNCTION(0.1, volume, void, setAngles, (VolumeRendererHandle Handle, double X, double Y)) \
  FUNCTION(0.1, volume, void, setTranslation, (VolumeRendererHandle Handle, double X, double Y, double Z)) \
  FUNCTION(0.1, volume, void, setRange, (VolumeRendererHandle Handle, double Axial, double Lateral1, double Lateral2)) \
  FUNCTION(0.1, volume, void, setZoom, (VolumeRendererHandle Handle, double Zoom)) \
  FUNCTION(0.1, volume, void, setViewportSize, (unsigned int Width, unsigned int Height)) \
  FUNCTION(0.1, volume, void, setRenderingSlices, (VolumeRendererHandle Handle, int Slices)) \
  FUNCTION(0.1, volume, void, setUsePerspective, (VolumeRendererHandle Handle, bool Perspective)) \
  FUNCTION(0.1, volume, void, setLateralVoxelsPerPixel, (VolumeRendererHandle Handle, double Voxels)) \
  FUNCTION(0.1, volume, void, setRenderingMode, (VolumeRendererHandle Handle, int Mode)) \
  FUNCTION(0.1, volume, void, setVolumeMode, (VolumeRendererHandle Handle, int Mode)) \
  FUNCTION(0.1, volume, void, setVolumeLighting, (VolumeRendererHandle Handle, double Ambient, double Diffuse, double Specular)) \
  FUNCTION(0.1, volume, void, setRayJitter, (VolumeRendererHandle Handle, int Enable)) \
  FUNCTION(0.1, volume, void, setOpacityLength, (VolumeRendererHandle Handle, double Millimetres)) \
  FUNCTION(0.1, volume, void, setSectionalView, (VolumeRendererHandle Handle, int Show1, float Position1, int Show2, float Position2, int Show3, float Position3)) \
  FUNCTION(0.1, volume, void, setClipPlane, (VolumeRendererHandle Handle, int Enable, int OpenCut, float Value)) \
  FUNCTION(0.1, volume, void, fixClipPlane, (VolumeRendererHandle Handle, int Fix)) \
  FUNCTION(0.1, volume, void, setBorder, (VolumeRendererHandle Handle, int ScaleMarks, int Edges, int Box)) \
  FUNCTION(0.1, volume, void, setRemoveSegment, (VolumeRendererHandle Handle, int Remove)) \
  FUNCTION(0.1, volume, void, setRenderElements, (VolumeRendererHandle Handle, int Volume, int Surface)) \
  FUNCTION(0.1, volume, void, setRenderBackground, (VolumeRendererHandle Handle, unsigned int Bottom, unsigned int Top)) \
  FUNCTION(0.1, volume, void, setRenderForeground, (VolumeRendererHandle Handle, unsigned int Color)) \
  FUNCTION(0.2, volume, void, setRendererPart, (VolumeRendererHandle Handle, unsigned int Width, unsigned int Height, int X, int Y)) \
  FUNCTION(0.1, volume, void, setRendererColormap, (VolumeRendererHandle Handle, const void* Colormap, int Count)) \
  FUNCTION(0.1, volume, void, setRendererSecondaryColormap, (VolumeRendererHandle Handle, const void* Colormap, int Count)) \
  FUNCTION(0.1, volume, void, setOverlayRendererColormap, (VolumeRendererHandle Handle, const void* Colormap, int Count)) \
  FUNCTION(0.1, volume, void, setSurfaceColormap, (VolumeRendererHandle Handle, const void* Colormap, int Count)) \
  FUNCTION(0.1, volume, void, setRendererColoringBoundaries, (VolumeRendererHandle Handle, double Lower, double Upper)) \
  FUNCTION(0.1, volume, void, setRendererSecondaryColoringBoundaries, (VolumeRendererHandle Handle, double Lower, double Upper)) \
  FUNCTION(0.1, volume, void, setOverlayRendererColoringBoundaries, (VolumeRendererHandle Handle, double Lower, double Upper)) \
  FUNCTION(0.1, volume, void, setRendererSecondarySliceIndex, (VolumeRendererHandle Handle, int Index)) \
  FUNCTION(0.2, volume, int, explainFrame, (VolumeRendererHandle Handle, char* Text, int Size)) \
  FUNCTION(0.2, volume, int, pickVolume, (VolumeRendererHandle Handle, int X, int Y, OctPick* Pick)) \
  FUNCTION(0.1, volume, void, setSurface, (VolumeRendererHandle Handle, int Width, int Height, double Scale, const float* Values)) \
  FUNCTION(0.1, volume, void, setSurfaceDepths, (VolumeRendererHandle Handle, double Lower, double Upper)) \
  FUNCTION(0.1, offline, OfflineRenderingHandle, createOfflineRendering, (void)) \
  FUNCTION(0.1, offline, void, clearOfflineRendering, (OfflineRenderingHandle Handle)) \
  FUNCTION(0.1, offline, void, setOfflineRenderingRenderer, (OfflineRenderingHandle Handle, VolumeRendererHandle Renderer)) \
  FUNCTION(0.1, offline, void, setOfflineAspectRatio, (OfflineRenderingHandle Handle, float Axial, float Lateral1, float Lateral2)) \
  FUNCTION(0.1, offline, void, allocateOfflineVolume, (OfflineRenderingHandle Handle, int Width, int Height, int Depth)) \
  FUNCTION(0.1, offline, void, uploadOfflineVolume, (OfflineRenderingHandle Handle, const float* Volume)) \
  FUNCTION(0.1, offline, void, uploadOfflineVolumeOverlay, (OfflineRenderingHandle Handle, const float* Volume)) \
  FUNCTION(0.1, offline, void, uploadOfflineSubVolume, (OfflineRenderingHandle Handle, int First, int End, const float* Block)) \
  FUNCTION(0.1, offline, void, uploadOfflineVolumeSlice, (OfflineRenderingHandle Handle, int Index, const float* Slice)) \
  FUNCTION(0.1, offline, void, uploadOverlayOfflineVolume, (OfflineRenderingHandle Handle, const float* Volume)) \
  FUNCTION(0.1, offline, void, uploadOfflineSecondaryData, (OfflineRenderingHandle Handle, int Height, int Depth, unsigned int Width, unsigned int First, unsigned int Count, const float* Data)) \
  FUNCTION(0.1, offline, void, renderOfflineVolume, (OfflineRenderingHandle Handle, int ContentType)) \
  FUNCTION(0.1, offscreen, OffscreenTargetHandle, createOffscreenTarget, (void)) \
  FUNCTION(0.1, offscreen, void, clearOffscreenTarget, (OffscreenTargetHandle Handle)) \
  FUNCTION(0.1, offscreen, void, beginOffscreenFrame, (OffscreenTargetHandle Handle, unsigned int Width, unsigned int Height)) \
  FUNCTION(0.1, offscreen, void, finishOffscreenFrame, (OffscreenTargetHandle Handle, void* Pixels)) \
  FUNCTION(0.2, offscreen, void, finishOffscreenFrameAs, (OffscreenTargetHandle Handle, int Format, void* Pixels)) \
  FUNCTION(0.1, hosting, void, setSurfaceSharing, (int Sharing)) \
  FUNCTION(0.2, hosting, void, setHostPixelFormat, (int Format)) \
  FUNCTION(0.1, hosting, OpenGLControlHandle, createUniversalOpenGLControl, (void)) \
  FUNCTION(0.1, hosting, void, deleteUniversalOpenGLControl, (OpenGLControlHandle Handle)) \
  FUNCTION(0.1, hosting, void, beforeRender, (OpenGLControlHandle Handle)) \
  FUNCTION(0.1, hosting, void, updateBuffer, (OpenGLControlHandle Handle)) \
  FUNCTION(0.1, hosting, void, readBuffer, (OpenGLControlHandle Handle)) \
  FUNCTION(0.1, hosting, void, renderTestImage, (OpenGLControlHandle Handle)) \
  FUNCTION(0.1, hosting, void, prepareOpenGL, (void)) \
  FUNCTION(0.1, hosting, void, finishOpenGL, (void)) \
  FUNCTION(0.1, hosting, OpenGLControlLoopHandle, createOpenGLControlLoop, (void)) \
  FUNCTION(0.1, hosting, OpenGLControlLoopHandle, createOpenGLControlLoopCB, (OctLoopFunction Init, OctLoopFunction Uninit, OctErrorFunction Error)) \
  FUNCTION(0.2, hosting, OpenGLControlLoopHandle, createOpenGLControlLoopCBWithUser, (OctLoopFunctionWithUser Init, OctLoopFunctionWithUser Uninit, OctErrorFunctionWithUser Error, void* user)) \
  FUNCTION(0.1, hosting, void, deleteOpenGLControlLoop, (OpenGLControlLoopHandle Handle)) \
  FUNCTION(0.1, hosting, void, registerOpenGLControlLoopRenderCallback, (OpenGLControlLoopHandle Handle, OctRenderFunction Render)) \
  FUNCTION(0.2, hosting, void, registerOpenGLControlLoopRenderCallbackWithUser, (OpenGLControlLoopHandle Handle, OctRenderFunctionWithUser Render, void* user)) \
  FUNCTION(0.1, hosting, void, registerOpenGLControlLoopCallback, (OpenGLControlLoopHandle Handle, OctImageReadyFunction ImageReady)) \
  FUNCTION(0.2, hosting, void, registerOpenGLControlLoopCallbackWithUser, (OpenGLControlLoopHandle Handle, OctImageReadyFunctionWithUser ImageReady, void* user)) \
  FUNCTION(0.1, hosting, void, renderOpenGLControlLoop, (OpenGLControlLoopHandle Handle)) \
  FUNCTION(0.1, hosting, void, renderMultOpenGLControlLoop, (OpenGLControlLoopHandle Handle, int Id)) \
  FUNCTION(0.1, hosting, void, snapshotOpenGLControlLoop, (OpenGLControlLoopHandle Handle, int Width, int Height, void* Data)) \
  FUNCTION(0.2, hosting, void, snapshotOpenGLControlLoopAs, (OpenGLControlLoopHandle Handle, int Width, int Height, int Format, void* Data)) \
  FUNCTION(0.1, hosting, void, resizeOpenGLControlLoop, (OpenGLControlLoopHandle Handle, unsigned int Width, unsigned int Height)) \
  FUNCTION(0.1, hosting, void, OpenGLControlLoopMode, (OpenGLControlLoopHandle Handle, unsigned int Mode)) \
  FUNCTION(0.1, hosting, void, unlockBuffer, (OpenGLControlLoopHandle Handle)) \
  FUNCTION(0.1, hosting, void, glRenderTestImage, (void)) \
  FUNCTION(0.1, hosting, void*, createDXSurface, (OpenGLControlLoopHandle Handle, unsigned int Width, unsigned int Height)) \
  FUNCTION(0.1, hosting, void, copyDXSurface, (OpenGLControlLoopHandle Handle, void* Source, void* Destination)) \
  FUNCTION(0.1, hosting, void, destroyDXSurface, (OpenGLControlLoopHandle Handle, void* Surface)) \
  FUNCTION(0.1, live, void, setDeviceLibrary, (const char* NameOrPath)) \
  FUNCTION(0.1, live, LiveVolumeRenderingHandle, createLiveRendering, (void)) \
  FUNCTION(0.1, live, void, clearLiveRendering, (LiveVolumeRenderingHandle Handle)) \
  FUNCTION(0.1, live, void, setLiveVolumeRenderingRenderer, (LiveVolumeRenderingHandle Handle, VolumeRendererHandle Renderer)) \
  FUNCTION(0.1, live, bool, isLiveVolumeRunning, (LiveVolumeRenderingHandle Handle)) \
  FUNCTION(0.1, live, void, renderVolume, (LiveVolumeRenderingHandle Handle)) \
  FUNCTION(0.1, live, double, getRenderedVolumesPerSec, (LiveVolumeRenderingHandle Handle)) \
  FUNCTION(0.1, live, void, getLiveVolumeRenderingSize, (LiveVolumeRenderingHandle Handle, int* X, int* Y, int* Z)) \
  FUNCTION(0.1, live, void, getLiveVolumeCounts, (LiveVolumeRenderingHandle Handle, unsigned int* Drawn, unsigned int* Dropped)) \
  FUNCTION(0.1, live, void, getLiveStatistics, (LiveVolumeRenderingHandle Handle, OctLiveStatistics* Statistics)) \
  FUNCTION(0.1, live, LiveDataSourceHandle, createOnlineDataSource, (OCTDeviceHandle Dev, ProcessingHandle Proc)) \
  FUNCTION(0.1, live, LiveDataSourceHandle, createOnlineDataSource_PS, (OCTDeviceHandle Dev, ProcessingHandle Proc0, ProcessingHandle Proc1, PolarizationProcessingHandle PS_Proc)) \
  FUNCTION(0.1, live, void, clearDataSource, (LiveDataSourceHandle DataSource)) \
  FUNCTION(0.1, live, void, startDataSource, (LiveVolumeRenderingHandle Renderer, LiveDataSourceHandle DataSource, ScanPatternHandle Pattern)) \
  FUNCTION(0.1, live, void, stopDataSource, (LiveDataSourceHandle DataSource)) \
  FUNCTION(0.1, live, void, cancelDataSource, (LiveDataSourceHandle DataSource)) \
  FUNCTION(0.1, live, bool, isDataSourceRunning, (LiveDataSourceHandle DataSource)) \
  FUNCTION(0.2, live, int, getDataSourceError, (LiveDataSourceHandle DataSource, char* Message, int Size)) \
  FUNCTION(0.2, live, double, getRefIntensity, (LiveDataSourceHandle DataSource)) \
  FUNCTION(0.1, live, void, setSizeZ, (LiveDataSourceHandle DataSource, int Size)) \
  FUNCTION(0.1, live, void, setOnlineRefractiveIndex, (LiveDataSourceHandle DataSource, double Index)) \
  FUNCTION(0.1, live, void, setOnlineAnalogInputConfiguration, (LiveDataSourceHandle DataSource, bool Enable)) \
  FUNCTION(0.1, live, void, selectOnlineDataSource_Camera, (LiveDataSourceHandle DataSource, int Camera)) \
  FUNCTION(0.1, live, void, selectOnlineDataSource_PS, (LiveDataSourceHandle DataSource, int Output)) \
  FUNCTION(0.1, live, void, setOnlineAveraging_PS, (LiveDataSourceHandle DataSource, int Depth, int AScans, int BScans, int Volumes)) \
  FUNCTION(0.1, live, void, setOnlineDOPU_PS, (LiveDataSourceHandle DataSource, int Depth, int AScans, int BScans, int Reserved)) \
  FUNCTION(0.1, live, void, setOnlineDataThreshold_PS, (LiveDataSourceHandle DataSource, double Threshold, bool Enable)) \
  FUNCTION(0.1, live, void, setRefIntensityCallback, (LiveDataSourceHandle DataSource, OctIntensityFunction Callback)) \
  FUNCTION(0.2, live, void, setRefIntensityCallbackWithUser, (LiveDataSourceHandle DataSource, OctIntensityFunctionWithUser Callback, void* user)) \
  FUNCTION(0.2, live, void, setVolumeCallbackWithUser, (LiveDataSourceHandle DataSource, OctVolumeFunctionWithUser Callback, void* user))

/* clang-format on */

#endif /* OCT_RENDERING_INTERFACE_LIST_H */
