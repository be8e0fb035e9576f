// The library frame, used by many threads at once.
#include <algorithm>
#include <map>
#include <sstream>

#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

TEST(CoreThreadTest, EveryErrorIsReadByItsOwnThread) {
  const std::string messages[] = {"Invalid DisplayRenderingHandle specified. ",
                                  "Invalid OffscreenTargetHandle specified. "};
  testing::internal::CaptureStderr();
  on_threads(8, [&](int i) {
    for (int n = 0; n < 200; ++n) {
      i % 2 == 0 ? clearDisplayData(nullptr) : finishOffscreenFrame(nullptr, nullptr);
      EXPECT_EQ(isRendererError(), OCT_RENDERER_ERROR);
      // No other thread takes it: each takes its own first, and posts before it takes.
      EXPECT_EQ(pending_error(), messages[i % 2]);
    }
  });
  EXPECT_EQ(isRendererError(), 0);
  // Lines of several threads do not mix.
  std::istringstream lines(testing::internal::GetCapturedStderr());
  std::map<std::string, int> counted;
  for (std::string line; std::getline(lines, line);) ++counted[line];
  for (const std::string& message : messages) EXPECT_EQ(counted["An error occured: " + message], 800);
  EXPECT_EQ(counted.size(), 2U);
}

}  // namespace
}  // namespace oct::test
