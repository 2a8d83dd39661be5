#include "platform/trace.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

using namespace platform;

namespace {

TEST(Trace, CaptureSeesFormattedTexts) {
  ScopedTraceCapture capture;
  Trace("code:%u ,desc:%s ,json_param:%s", 6014u, "not logged in", "{}");
  Trace("%s", std::string(2000, 'x').c_str());  // longer than the stack buffer
  ASSERT_EQ(capture.Lines().size(), 2u);
  EXPECT_EQ(capture.Lines()[0], "code:6014 ,desc:not logged in ,json_param:{}");
  EXPECT_EQ(capture.Lines()[1].size(), 2000u);
}

TEST(Trace, NestedCapturesBothSeeLinesAndStopAtTheirEnd) {
  ScopedTraceCapture outer;
  {
    ScopedTraceCapture inner;
    Trace("one");
    EXPECT_EQ(inner.Count("one"), 1u);
  }
  Trace("two");
  EXPECT_EQ(outer.Lines(), (std::vector<std::string>{"one", "two"}));
}

TEST(Trace, IsSafeFromManyThreads) {
  ScopedTraceCapture capture;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < 200; ++i) Trace("thread %d line %d", t, i);
    });
  }
  for (auto& th : threads) th.join();
  EXPECT_EQ(capture.Lines().size(), 800u);
}

TEST(TraceDeathTest, EnvironmentFileGetsOneLinePerCall) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const std::string file = testing::TempDir() + "/im_trace_test.log";
  std::filesystem::remove(file);
  // The child re-runs this test from scratch, so it reads IM_TRACE anew.
  EXPECT_EXIT(
      {
        setenv("IM_TRACE", file.c_str(), 1);
        Trace("IM SDK卸载 开始!!!");
        Trace("value %d", 42);
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
  std::ifstream in(file);
  std::string first, second, third;
  std::getline(in, first);
  std::getline(in, second);
  EXPECT_NE(first.find("] IM SDK卸载 开始!!!"), std::string::npos) << first;
  EXPECT_NE(second.find("] value 42"), std::string::npos) << second;
  EXPECT_FALSE(std::getline(in, third));
}

}  // namespace
