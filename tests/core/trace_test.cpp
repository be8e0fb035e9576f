// Traces and the functions of a host, while marks come and go on many threads.
#include <atomic>
#include <filesystem>
#include <future>
#include <map>
#include <mutex>
#include <string>

#include "core/timing_mark.h"
#include "core/trace/thread_name.h"
#include "oct_rendering/oct_rendering.h"
#include "support/mark_recorder.h"
#include "support/test_context.h"
#include "support/trace_reader.h"

namespace oct::test {
namespace {

// A folder of the test's own, with traces in it.
class TraceTest : public testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(folder_); }
  void TearDown() override {
    setRendererTraceFile(nullptr);
    setRendererTimingCallback(nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(pending_error(), "(none)");
    std::filesystem::remove_all(folder_);
  }
  std::string file(const std::string& name) const { return (folder_ / name).string(); }

  const std::filesystem::path folder_ =
      std::filesystem::path(testing::TempDir()) /
      ("oct_trace_" + std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
};

TEST_F(TraceTest, HoldsWhatBeganAndEndsWhatIsOpen) {
  {
    const TimingMark before("before");
    setRendererTraceFile(file("a").c_str());
    MarkRecorder recorder;  // others may listen at the same time
    {
      const TimingMark outer("outer");
      const TimingMark inner("quoted \"\\ \n\x01 \xC3\xA4 \xFF\xC3", " end");
      record_timing_mark("point");
    }
    record_timing_wait("wait", begin_timing_wait());
    std::thread other([] {
      name_thread("named");
      const TimingMark mark("of another thread");
    });
    other.join();
    EXPECT_EQ(recorder.all().size(), 2U);
    const TimingMark open("open");
    const TimingMark inner("open within");
    // As it is while it is written, a process may be killed.
    std::this_thread::sleep_for(std::chrono::milliseconds(250));
    record_timing_mark("later");
    EXPECT_NO_THROW(JsonReader(text_of(file("a"))).events());
    // Another one begins with everything open, and then the first anew.
    setRendererTraceFile(file("b").c_str());
    const TimingMark second("second");
  }
  const Trace trace = read_trace(file("a"));
  const std::string self = own_track();
  EXPECT_TRUE(trace.find(self, "outer"));
  EXPECT_TRUE(trace.find(self, "open"));
  EXPECT_FALSE(trace.find(self, "before"));
  EXPECT_TRUE(trace.find("named", "of another thread"));
  const auto* const escaped = trace.find(self, "quoted \\\"\\\\ \\u000a\\u0001 \xC3\xA4 \\ufffd\\ufffd end");
  ASSERT_TRUE(escaped);
  EXPECT_EQ(escaped->depth, 1U);
  EXPECT_EQ(trace.instants.at(self), (std::vector<std::string>{"point", "later"}));
  EXPECT_EQ(trace.waits.at("wait"), 1);
  setRendererTraceFile(file("b").c_str());  // the file that is being written
  { const TimingMark mark("anew"); }
  setRendererTraceFile("");
  const Trace again = read_trace(file("b"));
  EXPECT_TRUE(again.find(self, "anew"));
  EXPECT_FALSE(again.find(self, "second"));
}

TEST_F(TraceTest, AFileThatCannotBeOpenedChangesNothing) {
  setRendererTraceFile(file("goes on %p").c_str());
  { const TimingMark mark("first"); }
  setRendererTraceFile(file("no folder/trace").c_str());
  EXPECT_TRUE(pending_error().starts_with("The trace file could not be opened: "));
  { const TimingMark mark("second"); }
  setRendererTraceFile(nullptr);
  const Trace trace = read_trace(file("goes on " + std::to_string(current_process_id())));
  EXPECT_TRUE(trace.find(own_track(), "first"));
  EXPECT_TRUE(trace.find(own_track(), "second"));
}

// What a host's profiler hears.
struct Profiler {
  std::mutex mutex;
  std::map<unsigned, std::vector<std::string>> open;
  std::atomic<int> begins{0};
  std::atomic<int> calls{0};
  std::atomic<bool> gone{false};

  static Profiler& of(void* user) {
    auto& self = *static_cast<Profiler*>(user);
    EXPECT_FALSE(self.gone);
    ++self.calls;
    return self;
  }
  static void begin(const char* name, unsigned thread, unsigned long long time, void* user) {
    Profiler& self = of(user);
    EXPECT_GT(time, 0U);
    ++self.begins;
    const std::lock_guard lock(self.mutex);
    self.open[thread].push_back(name);
  }
  static void end(const char* name, unsigned thread, unsigned long long, void* user) {
    Profiler& self = of(user);
    const std::lock_guard lock(self.mutex);
    ASSERT_FALSE(self.open[thread].empty()) << name;
    EXPECT_EQ(self.open[thread].back(), name);
    self.open[thread].pop_back();
  }
  void set() { setRendererTimingCallback(begin, end, begin_and_end, this); }
  static void begin_and_end(const char*, unsigned, unsigned long long, void* user) { of(user); }

  // No call is running or comes, and every phase that began has ended.
  void expect_gone() {
    gone = true;
    for (const auto& [thread, names] : open) EXPECT_TRUE(names.empty()) << thread;
  }
};

TEST_F(TraceTest, EachEndGoesToWhoHeardItsBeginWhileAllIsExchanged) {
  std::atomic<bool> going_on{true};
  const auto mark_until_end = [&](int i) {
    const TimingMark always("always open");
    while (going_on) {
      const TimingMark outer("outer ", std::to_string(i));
      record_timing_mark("point");
      const TimingMark inner("inner");
    }
  };
  std::vector<std::thread> marking;
  for (int i = 0; i < 3; ++i) marking.emplace_back(mark_until_end, i);
  // Two exchange the functions, one the traces.
  on_threads(3, [&](int i) {
    if (i == 0) {
      for (int n = 0; n < 20; ++n) {
        setRendererTraceFile(file(n % 2 == 0 ? "even" : "odd").c_str());
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
      }
      return;
    }
    for (int n = 0; n < 40; ++n) {
      auto profiler = std::make_unique<Profiler>();
      profiler->set();
      std::this_thread::sleep_for(std::chrono::microseconds(500));
      setRendererTimingCallback(nullptr, nullptr, nullptr, nullptr);
      profiler->expect_gone();
    }
  });
  // The last of each are there until they have heard something.
  setRendererTraceFile(file("odd").c_str());
  Profiler last;
  last.set();
  for (int patience = 0; patience < 5000 && last.begins < 10; ++patience)
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  setRendererTimingCallback(nullptr, nullptr, nullptr, nullptr);
  last.expect_gone();
  EXPECT_GE(last.begins, 10);
  going_on = false;
  for (std::thread& thread : marking) thread.join();
  setRendererTraceFile(nullptr);
  read_trace(file("even"));
  const auto tracks = read_trace(file("odd")).tracks;
  EXPECT_TRUE(std::ranges::any_of(tracks, [](const auto& track) {
    return std::ranges::count(track.second, "inner", &TracePhase::name) > 0;
  }));
}

TEST_F(TraceTest, AFunctionMayExchangeItselfAndUseTheLibrary) {
  struct Client {
    std::atomic<int> calls{0};
    Profiler after;
  } client;
  setRendererTimingCallback(
      [](const char*, unsigned, unsigned long long, void* user) {
        auto& self = *static_cast<Client*>(user);
        if (++self.calls != 2) return;
        const TimingMark unheard("within a call");
        setRendererTraceFile(nullptr);
        self.after.set();
      },
      nullptr, nullptr, &client);
  const TimingMark first("first");
  {
    const TimingMark second("second");
    const TimingMark third("third");
  }
  EXPECT_EQ(client.calls, 2);
  EXPECT_EQ(client.after.calls, 2);  // the third's
  setRendererTimingCallback(nullptr, nullptr, nullptr, nullptr);
  client.after.expect_gone();
}

}  // namespace
}  // namespace oct::test
