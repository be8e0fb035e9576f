// The scene of the comparison, drawn by VTK's GPU volume mapper at its best: one volume and one property that stay as
// they are, only the camera moves.
#include <cmath>
#include <cstring>

#include <vtkCamera.h>
#include <vtkColorTransferFunction.h>
#include <vtkFloatArray.h>
#include <vtkImageData.h>
#include <vtkMatrix4x4.h>
#include <vtkNew.h>
#include <vtkOpenGLGPUVolumeRayCastMapper.h>
#include <vtkPiecewiseFunction.h>
#include <vtkPointData.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkTransform.h>
#include <vtkUnsignedCharArray.h>
#include <vtkVolume.h>
#include <vtkVolumeProperty.h>

#include "scene.h"

namespace scene = oct::benchmark_scene;

namespace {

// Places the voxels as our renderer does: the fastest axis along -y, a cube of diagonal 4 about the origin.
void place(vtkVolume* volume) {
  const double scale = 2.0 / std::sqrt(3.0);
  vtkNew<vtkTransform> transform;
  transform->Scale(scale, -scale, scale);
  vtkNew<vtkMatrix4x4> axes;  // (u, v, w) in 0..1 to the model's (x, y, z) in -1..1
  const double elements[16] = {0, 2, 0, -1, 2, 0, 0, -1, 0, 0, 2, -1, 0, 0, 0, 1};
  axes->DeepCopy(elements);
  transform->Concatenate(axes);
  volume->SetUserMatrix(transform->GetMatrix());
}

// Goes round the volume instead of turning it, at a distance of five.
void look(vtkCamera* camera, double angle_y) {
  vtkNew<vtkTransform> to_world;
  to_world->RotateY(-angle_y);
  to_world->RotateX(-scene::angle_x);
  camera->SetPosition(to_world->TransformDoublePoint(0, 0, 5));
  camera->SetViewUp(to_world->TransformDoubleVector(0, 1, 0));
}

void color(vtkVolumeProperty* property, const scene::Volume& volume, const scene::Mode& mode) {
  vtkNew<vtkColorTransferFunction> colors;
  vtkNew<vtkPiecewiseFunction> opacities;
  opacities->AddPoint(volume.lower - 1e-4, 0.0);
  for (int i = 0; i < 256; ++i) {
    const double t = i / 255.0;
    const double value = volume.lower + t * (volume.upper - volume.lower);
    colors->AddRGBPoint(value, t, t * t, (1.0 - t) / 2.0);
    opacities->AddPoint(value, mode.opacity * std::pow(t, mode.power));
  }
  property->SetColor(colors);
  property->SetScalarOpacity(opacities);
  property->SetInterpolationTypeToLinear();
  property->ShadeOff();
}

double measure(const scene::Volume& data, const scene::Mode& mode, int side, const std::string& picture) {
  vtkNew<vtkImageData> image;
  image->SetDimensions(data.depth, data.a_scans, data.b_scans);
  image->SetSpacing(1.0 / (data.depth - 1), 1.0 / (data.a_scans - 1), 1.0 / (data.b_scans - 1));
  image->AllocateScalars(VTK_FLOAT, 1);
  std::memcpy(image->GetScalarPointer(), data.voxels.data(), data.voxels.size() * sizeof(float));

  // The step of our slices: their share of the unit cube's diagonal. The mapper steps in the image's own units,
  // before the volume's matrix.
  const double step = std::sqrt(3.0) / scene::slices;
  vtkNew<vtkOpenGLGPUVolumeRayCastMapper> mapper;
  mapper->SetInputData(image);
  mapper->SetAutoAdjustSampleDistances(0);
  mapper->SetSampleDistance(static_cast<float>(step));
  mapper->SetUseJittering(0);
  const std::string name = mode.name;
  if (name == "maximum") mapper->SetBlendModeToMaximumIntensity();
  if (name == "mean") mapper->SetBlendModeToAverageIntensity();
  vtkNew<vtkVolume> volume;
  volume->SetMapper(mapper);
  color(volume->GetProperty(), data, mode);
  volume->GetProperty()->SetScalarOpacityUnitDistance(step);
  place(volume);

  vtkNew<vtkRenderer> renderer;
  renderer->SetBackground(0.0, 0.0, 0.2);
  renderer->AddVolume(volume);
  vtkCamera* const camera = renderer->GetActiveCamera();
  camera->SetFocalPoint(0, 0, 0);
  camera->SetViewAngle(45.0);
  camera->SetClippingRange(2.9, 8.0);
  vtkNew<vtkRenderWindow> window;
  window->SetOffScreenRendering(1);
  window->SetMultiSamples(0);
  window->SetSize(side, side);
  window->AddRenderer(renderer);

  const double time = scene::time_frames([&](int frame) {
    look(camera, scene::angle_y_of(frame));
    window->Render();
    window->WaitForCompletion();
  });
  if (!picture.empty()) {
    vtkNew<vtkUnsignedCharArray> rgb;
    window->GetPixelData(0, 0, side - 1, side - 1, 0, rgb);
    scene::write_picture(picture, side, {rgb->GetPointer(0), rgb->GetPointer(0) + rgb->GetNumberOfValues()});
  }
  return time;
}

}  // namespace

int main(int argc, char** argv) {
  return scene::run(argc, argv, measure);
}
