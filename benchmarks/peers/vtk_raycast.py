#!/usr/bin/python3
"""The scene of benchmark_raycast, drawn by VTK's GPU volume mapper. Prints CPU milliseconds of all threads per frame.

Needs Debian's python3-vtk9 and a display, such as xvfb-run gives. Arguments: the volume that "benchmark_raycast
--phantom FILE" writes; the mode, as in benchmark_raycast; if wanted, a PNG file for the picture.
"""

import math
import statistics
import sys
import time

import vtk

VOXELS = 256
PIXELS = 512
SLICES = 128
FRAMES = 15
LOWER, UPPER = 0.15, 0.8


def image(file):
    reader = vtk.vtkImageReader2()
    reader.SetFileName(file)
    reader.SetFileDimensionality(3)
    reader.SetDataScalarTypeToFloat()
    reader.SetDataByteOrderToLittleEndian()
    reader.SetDataExtent(0, VOXELS - 1, 0, VOXELS - 1, 0, VOXELS - 1)
    # Depth is fastest in the file; in the picture it is y.
    permute = vtk.vtkImagePermute()
    permute.SetInputConnection(reader.GetOutputPort())
    permute.SetFilteredAxes(1, 0, 2)
    permute.Update()
    data = permute.GetOutput()
    data.SetSpacing(*([2.0 / (VOXELS - 1)] * 3))
    data.SetOrigin(-1.0, -1.0, -1.0)
    return data


def appearance(mode):
    colors = vtk.vtkColorTransferFunction()
    opacity = vtk.vtkPiecewiseFunction()
    highest, power = (1.0, 1.0) if mode == 3 else (0.12, 2.0)
    for i in range(256):
        value = LOWER + (UPPER - LOWER) * i / 255.0
        colors.AddRGBPoint(value, i / 255.0, (i * i // 255) / 255.0, ((255 - i) // 2) / 255.0)
        opacity.AddPoint(value, round(255.0 * highest * math.pow(i / 255.0, power)) / 255.0)
    properties = vtk.vtkVolumeProperty()
    properties.SetColor(colors)
    properties.SetScalarOpacity(opacity)
    properties.SetScalarOpacityUnitDistance(2.0 * math.sqrt(3.0) / SLICES)
    properties.SetInterpolationTypeToLinear()
    properties.ShadeOff()
    return properties


def scene(file, mode):
    mapper = vtk.vtkOpenGLGPUVolumeRayCastMapper()
    mapper.SetInputData(image(file))
    mapper.SetAutoAdjustSampleDistances(False)
    mapper.SetSampleDistance(2.0 * math.sqrt(3.0) / SLICES)
    mapper.UseJitteringOff()
    if mode == 1:
        mapper.SetBlendModeToMaximumIntensity()
    elif mode == 2:
        mapper.SetBlendModeToAverageIntensity()
    else:
        mapper.SetBlendModeToComposite()
    volume = vtk.vtkVolume()
    volume.SetMapper(mapper)
    volume.SetProperty(appearance(mode))
    turn = vtk.vtkTransform()
    turn.RotateX(25.0)
    turn.RotateY(-35.0)
    turn.Scale(1.0, -1.0, 1.0)
    volume.SetUserTransform(turn)

    renderer = vtk.vtkRenderer()
    renderer.SetBackground(0.0, 0.0, 0.2)
    renderer.AddVolume(volume)
    camera = renderer.GetActiveCamera()
    camera.SetPosition(0.0, 0.0, 5.0)
    camera.SetFocalPoint(0.0, 0.0, 0.0)
    camera.SetViewAngle(45.0)
    camera.SetClippingRange(3.0, 8.0)
    window = vtk.vtkRenderWindow()
    window.SetOffScreenRendering(True)
    window.SetMultiSamples(0)
    window.SetSize(PIXELS, PIXELS)
    window.AddRenderer(renderer)
    return window


def write_picture(window, file):
    grab = vtk.vtkWindowToImageFilter()
    grab.SetInput(window)
    grab.ReadFrontBufferOff()
    writer = vtk.vtkPNGWriter()
    writer.SetFileName(file)
    writer.SetInputConnection(grab.GetOutputPort())
    writer.Write()


def main():
    window = scene(sys.argv[1], int(sys.argv[2]))
    window.Render()
    window.WaitForCompletion()
    times = []
    for _ in range(FRAMES):
        start = time.process_time()
        window.Render()
        window.WaitForCompletion()
        times.append(1e3 * (time.process_time() - start))
    if len(sys.argv) > 3:
        write_picture(window, sys.argv[3])
    print(f"{statistics.median(times):.2f}")


if __name__ == "__main__":
    main()
