#include "core/error_store.h"

#include <array>
#include <cstring>
#include <future>
#include <stdexcept>
#include <thread>

#include "core/exception.h"
#include "core/platform.h"
#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

void post(ErrorStore& store, const char* message, bool sticky = false) {
  store.postError(std::runtime_error(message), sticky);
}

TEST(ErrorStoreTest, FirstErrorOfAThreadWins) {
  ErrorStore store(true);
  EXPECT_FALSE(store.hasError());
  EXPECT_EQ(store.takeError(), std::nullopt);
  post(store, "first");
  post(store, "second");
  EXPECT_TRUE(store.hasError());
  EXPECT_EQ(store.takeError(), "first");
  EXPECT_FALSE(store.hasError());
  post(store, "third");
  EXPECT_EQ(store.takeError(), "third");
}

TEST(ErrorStoreTest, EmptyMessageIsAnError) {
  ErrorStore store(true);
  store.postError(Exception(""), false);
  EXPECT_TRUE(store.hasError());
  EXPECT_EQ(store.takeError(), "");
  EXPECT_EQ(store.takeError(), std::nullopt);
}

TEST(ErrorStoreTest, StickyErrorStays) {
  ErrorStore store(false);  // a processor without SSE 4.2
  const char* const text = "Processor with SSE 4.2 required for proper operation.";
  EXPECT_EQ(store.takeError(), text);
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

// Threads that are alive together have distinct identifiers.
class Helper {
 public:
  explicit Helper(std::function<void()> action) {
    std::promise<std::uint32_t> started;
    auto id = started.get_future();
    thread_ = std::thread([this, action = std::move(action), &started] {
      action();
      started.set_value(currentThreadId());
      end_.get_future().wait();
    });
    id_ = id.get();
  }
  ~Helper() {
    end_.set_value();
    thread_.join();
  }
  std::uint32_t id() const { return id_; }

 private:
  std::promise<void> end_;
  std::thread thread_;
  std::uint32_t id_ = 0;
};

TEST(ErrorStoreTest, OtherThreadsErrorsAreReadInOrderOfTheirIdentifiers) {
  ErrorStore store(true);
  Helper a([&] { post(store, "a"); });
  Helper b([&] { post(store, "b"); });
  const bool aFirst = a.id() < b.id();
  post(store, "own");
  EXPECT_EQ(store.takeError(), "own");
  EXPECT_EQ(store.takeError(), aFirst ? "a" : "b");
  EXPECT_EQ(store.takeError(), aFirst ? "b" : "a");
  EXPECT_FALSE(store.hasError());
}

class ErrorExportTest : public testing::Test {
 protected:
  static constexpr const char* text = "Invalid DisplayRenderingHandle specified. ";
  static void fail() { clearDisplayData(nullptr); }
};

TEST_F(ErrorExportTest, NothingPending) {
  EXPECT_EQ(isRendererError(), 0);
  std::array<char, 8> buffer{'u', 'n', 't', 'o', 'u', 'c', 'h', 'e'};
  const auto before = buffer;
  EXPECT_EQ(getRendererError(buffer.data(), 8), 0);
  EXPECT_EQ(buffer, before);
}

TEST_F(ErrorExportTest, PollingConsumesNothing) {
  fail();
  EXPECT_EQ(static_cast<unsigned>(isRendererError()), 0xE0000000U);
  EXPECT_EQ(isRendererError(), -536870912);
  EXPECT_EQ(pendingError(), text);
  EXPECT_EQ(isRendererError(), 0);
}

TEST_F(ErrorExportTest, BufferSizes) {
  const int length = static_cast<int>(std::strlen(text));
  for (const int size : {1, 2, 10, length, length + 1, length + 2, 100}) {
    fail();
    std::array<char, 128> buffer;
    buffer.fill('#');
    EXPECT_EQ(getRendererError(buffer.data(), size), OCT_RENDERER_ERROR);
    EXPECT_EQ(std::string(buffer.data()), std::string(text).substr(0, static_cast<std::size_t>(size) - 1));
    EXPECT_EQ(buffer[static_cast<std::size_t>(size)], '#') << "written past the buffer";
    EXPECT_EQ(isRendererError(), 0);
  }
}

TEST_F(ErrorExportTest, ReadingWithoutBufferDiscards) {
  std::array<char, 4> buffer{'#', '#', '#', '#'};
  for (const auto& [message, size] :
       {std::pair<char*, int>{nullptr, 0}, {nullptr, 10}, {buffer.data(), 0}, {buffer.data(), -5}}) {
    fail();
    EXPECT_EQ(getRendererError(message, size), OCT_RENDERER_ERROR);
    EXPECT_EQ(isRendererError(), 0);
  }
  EXPECT_EQ(buffer[0], '#');
}

TEST_F(ErrorExportTest, ErrorOfAnEndedThreadIsSeen) {
  std::thread(fail).join();
  EXPECT_EQ(isRendererError(), OCT_RENDERER_ERROR);
  EXPECT_EQ(pendingError(), text);
}

TEST(PlatformTest, SystemErrorText) {
  EXPECT_FALSE(systemErrorText().empty());
  std::thread([own = currentThreadId()] { EXPECT_NE(currentThreadId(), own); }).join();
}

}  // namespace
}  // namespace oct::test
