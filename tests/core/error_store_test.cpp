#include "core/error_store.h"

#include <array>
#include <atomic>
#include <cstring>
#include <stdexcept>
#include <thread>

#include "core/platform.h"
#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

void post(ErrorStore& store, const char* message) {
  store.postError(std::runtime_error(message), false);
}

TEST(ErrorStoreTest, FirstErrorOfAThreadWins) {
  ErrorStore store(true);
  EXPECT_EQ(store.takeError(), std::nullopt);
  for (const char* first : {"first", ""}) {
    EXPECT_FALSE(store.hasError());
    post(store, first);
    post(store, "second");
    EXPECT_TRUE(store.hasError());
    EXPECT_EQ(store.takeError(), first);
  }
  EXPECT_FALSE(store.hasError());
}

TEST(ErrorStoreTest, StickyErrorStays) {
  ErrorStore store(false);  // a processor without SSE 4.2
  const char* const text = "Processor with SSE 4.2 required for proper operation.";
  EXPECT_EQ(store.takeError(), text);
  post(store, "dropped: this thread has a record");
  EXPECT_EQ(store.takeError(), text);
  // Another thread reads its own record before the sticky one.
  std::thread([&] {
    post(store, "own");
    EXPECT_EQ(store.takeError(), "own");
    EXPECT_EQ(store.takeError(), text);
  }).join();
  EXPECT_TRUE(store.hasError());
}

TEST(ErrorStoreTest, OthersErrorsComeAfterItsOwnInOrderOfTheThreadsIdentifiers) {
  ErrorStore store(true);
  std::array<std::uint32_t, 2> ids{};
  std::atomic<int> alive{0};  // together, so that their identifiers differ
  on_threads(2, [&](int i) {
    ids[static_cast<std::size_t>(i)] = current_thread_id();
    post(store, i == 0 ? "a" : "b");
    for (++alive; alive < 2;) std::this_thread::yield();
  });
  for (int taken = 0; taken < 2; ++taken) {
    post(store, "own");
    EXPECT_TRUE(store.hasError());
    EXPECT_EQ(taken == 0 ? store.take_own_error() : store.takeError(), "own");
    EXPECT_EQ(store.take_own_error(), std::nullopt);
  }
  EXPECT_EQ(store.takeError(), ids[0] < ids[1] ? "a" : "b");
  EXPECT_EQ(store.takeError(), ids[0] < ids[1] ? "b" : "a");
  EXPECT_FALSE(store.hasError());
}

// What fits is written, whatever the size; the error is gone in any case, and polling consumes nothing.
TEST(ErrorExportTest, ReadingByBufferSize) {
  const std::string text = "Invalid DisplayRenderingHandle specified. ";
  const int length = static_cast<int>(text.size());
  std::array<char, 128> buffer;
  buffer.fill('#');
  const auto untouched = buffer;
  EXPECT_EQ(isRendererError(), 0);
  EXPECT_EQ(getRendererError(buffer.data(), 8), 0);
  EXPECT_EQ(buffer, untouched);
  for (const int size : {-5, 0, 1, 2, 10, length, length + 1, length + 2, 100}) {
    std::thread([] { clearDisplayData(nullptr); }).join();  // that of an ended thread is seen
    for (int poll = 0; poll < 2; ++poll) EXPECT_EQ(isRendererError(), -536870912);
    auto expected = untouched;
    const std::size_t count = size > 0 ? std::min(text.size(), static_cast<std::size_t>(size) - 1) : 0;
    if (size > 0) *std::copy_n(text.begin(), count, expected.begin()) = '\0';
    buffer.fill('#');
    EXPECT_EQ(getRendererError(buffer.data(), size), OCT_RENDERER_ERROR);
    EXPECT_EQ(buffer, expected) << size;
    EXPECT_EQ(isRendererError(), 0);
  }
  clearDisplayData(nullptr);
  EXPECT_EQ(getRendererError(nullptr, 10), OCT_RENDERER_ERROR);
  EXPECT_EQ(isRendererError(), 0);
}

}  // namespace
}  // namespace oct::test
