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

}  // namespace
}  // namespace oct::test
