// The scene of benchmark_raycast, drawn by VTK's GPU volume mapper: vtk_raycast MODE [PICTURE.ppm]
// MODE is soft, hard, mip or mean. Prints the median CPU time of all threads per frame in milliseconds.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

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

#include "../raycast_phantom.h"

namespace scene = oct::benchmark_scene;

namespace {

double cpu_milliseconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

// Places the voxels as our renderer does: the fastest axis along -y, the cube of diagonal 4 five units away.
void place(vtkVolume* volume) {
  const double scale = 2.0 / std::sqrt(3.0);
  vtkNew<vtkTransform> transform;
  transform->Translate(0, 0, -5);
  transform->RotateX(scene::angle_x);
  transform->RotateY(scene::angle_y);
  transform->Scale(scale, -scale, scale);
  vtkNew<vtkMatrix4x4> axes;  // (u, v, w) in 0..1 to the model's (x, y, z) in -1..1
  const double elements[16] = {0, 2, 0, -1, 2, 0, 0, -1, 0, 0, 2, -1, 0, 0, 0, 1};
  axes->DeepCopy(elements);
  transform->Concatenate(axes);
  volume->SetUserMatrix(transform->GetMatrix());
}

void color(vtkVolumeProperty* property, double opacity, double power) {
  vtkNew<vtkColorTransferFunction> colors;
  vtkNew<vtkPiecewiseFunction> opacities;
  opacities->AddPoint(scene::lowerValue - 1e-4, 0.0);
  for (int i = 0; i < 256; ++i) {
    const double t = i / 255.0;
    const double value = scene::lowerValue + t * (scene::upperValue - scene::lowerValue);
    colors->AddRGBPoint(value, t, t * t, (1.0 - t) / 2.0);
    opacities->AddPoint(value, opacity * std::pow(t, power));
  }
  property->SetColor(colors);
  property->SetScalarOpacity(opacities);
  property->SetInterpolationTypeToLinear();
  property->ShadeOff();
}

}  // namespace

int main(int argc, char** argv) {
  const std::string mode = argc > 1 ? argv[1] : "";
  if (mode != "soft" && mode != "hard" && mode != "mip" && mode != "mean") {
    std::fprintf(stderr, "usage: vtk_raycast soft|hard|mip|mean [PICTURE.ppm]\n");
    return 2;
  }
  const std::vector<float> voxels = scene::phantom();
  vtkNew<vtkImageData> image;
  image->SetDimensions(scene::voxels, scene::voxels, scene::voxels);
  image->SetSpacing(1.0 / (scene::voxels - 1), 1.0 / (scene::voxels - 1), 1.0 / (scene::voxels - 1));
  image->AllocateScalars(VTK_FLOAT, 1);
  std::memcpy(image->GetScalarPointer(), voxels.data(), voxels.size() * sizeof(float));

  // The step of our 128 slices: the diagonal of the unit cube. The mapper steps in the image's own units,
  // before the volume's matrix.
  const double step = std::sqrt(3.0) / 128.0;
  vtkNew<vtkOpenGLGPUVolumeRayCastMapper> mapper;
  mapper->SetInputData(image);
  mapper->SetAutoAdjustSampleDistances(0);
  mapper->SetSampleDistance(static_cast<float>(step));
  mapper->SetUseJittering(0);
  vtkNew<vtkVolume> volume;
  volume->SetMapper(mapper);
  color(volume->GetProperty(), mode == "soft" ? 0.12 : 1.0, mode == "soft" ? 2.0 : 1.0);
  volume->GetProperty()->SetScalarOpacityUnitDistance(step);
  if (mode == "mip") mapper->SetBlendModeToMaximumIntensity();
  if (mode == "mean") mapper->SetBlendModeToAverageIntensity();
  place(volume);

  vtkNew<vtkRenderer> renderer;
  renderer->SetBackground(0.0, 0.0, 0.2);
  renderer->AddVolume(volume);
  vtkCamera* const camera = renderer->GetActiveCamera();
  camera->SetPosition(0, 0, 0);
  camera->SetFocalPoint(0, 0, -1);
  camera->SetViewAngle(45.0);
  camera->SetClippingRange(3.0, 8.0);
  vtkNew<vtkRenderWindow> window;
  window->SetOffScreenRendering(1);
  window->SetMultiSamples(0);
  window->SetSize(scene::pixels, scene::pixels);
  window->AddRenderer(renderer);

  std::vector<double> times;
  for (int i = 0; i < 18; ++i) {
    camera->SetClippingRange(3.0, 8.0);
    volume->Modified();
    const double start = cpu_milliseconds();
    window->Render();
    window->WaitForCompletion();
    if (i >= 3) times.push_back(cpu_milliseconds() - start);  // the first ones compile and upload
  }
  std::nth_element(times.begin(), times.begin() + 7, times.end());
  std::printf("%.2f\n", times[7]);

  if (argc > 2) {
    vtkNew<vtkUnsignedCharArray> pixels;
    window->GetPixelData(0, 0, scene::pixels - 1, scene::pixels - 1, 0, pixels);
    std::FILE* const file = std::fopen(argv[2], "wb");
    if (!file) return 1;
    std::fprintf(file, "P6 %d %d 255\n", scene::pixels, scene::pixels);
    for (int y = scene::pixels - 1; y >= 0; --y) {
      std::fwrite(pixels->GetPointer(static_cast<vtkIdType>(y) * scene::pixels * 3), 3, scene::pixels, file);
    }
    std::fclose(file);
  }
  return 0;
}
