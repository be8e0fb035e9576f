// Surfaces that one thread copies while another frees them.
#include "hosting/surfaces/client_surfaces.h"

#include <atomic>
#include <thread>

#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

constexpr SurfaceSharing host_memory = SurfaceSharing::host_memory;
constexpr const char* unknown = "The specified surface is unknown. ";

// Sanitizers see a copy that goes on after the surface was freed.
TEST(ClientSurfacesTest, EndWhenTheirCopiesHave) {
  ClientSurfaces& surfaces = client_surfaces();
  for (int round = 0; round < 20; ++round) {
    void* const source = surfaces.create(host_memory, 600, 400);
    void* const destination = surfaces.create(host_memory, 500, 300);
    std::atomic<int> copies{0};
    std::thread ends([&] {
      while (copies < 3) std::this_thread::yield();
      surfaces.destroy(round % 2 == 0 ? source : destination);
    });
    const std::string failure = failure_of([&] {
      for (;; ++copies) surfaces.copy(host_memory, source, destination);
    });
    ends.join();
    EXPECT_EQ(failure, unknown);
    surfaces.destroy(round % 2 == 0 ? destination : source);
  }
}

// A frame is known while it is lent, and is not the client's to free.
TEST(ClientSurfacesTest, AFrameIsLent) {
  ClientSurfaces& surfaces = client_surfaces();
  void* const kept = surfaces.create(host_memory, 4, 4);
  OctHostSurface frame{2, 2, 8, nullptr};
  std::vector<unsigned char> pixels(16, 77);
  frame.pixels = pixels.data();
  const auto copy = [&] { surfaces.copy(host_memory, &frame, kept); };
  EXPECT_EQ(failure_of(copy), unknown);
  {
    const ClientSurfaces::Loan loan(surfaces, host_memory, &frame);
    EXPECT_EQ(failure_of(copy), "(none)");
    EXPECT_EQ(static_cast<OctHostSurface*>(kept)->pixels[63], 77);
    EXPECT_FALSE(surfaces.destroy(&frame));
  }
  EXPECT_EQ(failure_of(copy), unknown);
  EXPECT_TRUE(surfaces.destroy(kept));
  EXPECT_FALSE(surfaces.destroy(kept));
}

}  // namespace
}  // namespace oct::test
