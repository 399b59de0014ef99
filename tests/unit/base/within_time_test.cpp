#include "base/within_time.h"

#include "base/run_time_error.h"

#include <gtest/gtest.h>

#include <pthread.h>

namespace velmora {
namespace {

using std::chrono::milliseconds;
constexpr milliseconds longTime{60000};

TEST(WithinTime, GivesWhatTheWorkGives) {
    EXPECT_EQ(withinTime(
                  longTime, [] { return 42; }),
              42);
    const auto pointer = withinTime(longTime, [] { return std::make_unique<int>(7); });
    ASSERT_TRUE(pointer);
    EXPECT_EQ(**pointer, 7);
}

TEST(WithinTime, RaisesWhatTheWorkRaises) {
    EXPECT_THROW(withinTime(
                     longTime, []() -> int { raise(ErrorNumber::PermissionDenied); }),
                 RunTimeError);
}

TEST(WithinTime, DoesNotWaitForWorkThatHangsNorForItsEnd) {
    const auto release = std::make_shared<std::promise<void>>();
    const auto ended = std::make_shared<std::promise<void>>();
    auto isEnded = ended->get_future();
    const auto answer =
        withinTime(milliseconds(1), [released = release->get_future().share(), ended] {
            released.wait();
            ended->set_value();
            return 1;
        });
    EXPECT_FALSE(answer);
    EXPECT_EQ(isEnded.wait_for(milliseconds(0)), std::future_status::timeout);
    release->set_value();
    EXPECT_EQ(isEnded.wait_for(longTime), std::future_status::ready);
}

TEST(WithinTime, ALateResultIsLetGo) {
    struct Result {
        explicit Result(std::shared_ptr<std::promise<void>> told) : gone(std::move(told)) {}
        Result(Result &&) = default;
        ~Result() {
            if (gone)
                gone->set_value();
        }
        std::shared_ptr<std::promise<void>> gone;
    };
    const auto release = std::make_shared<std::promise<void>>();
    const auto gone = std::make_shared<std::promise<void>>();
    auto isGone = gone->get_future();
    EXPECT_FALSE(withinTime(milliseconds(1), [released = release->get_future().share(), gone] {
        released.wait();
        return Result(gone);
    }));
    release->set_value();
    EXPECT_EQ(isGone.wait_for(longTime), std::future_status::ready);
}

// While it lives each new thread asks for more memory than there is.
class NoThreads {
public:
    NoThreads() {
        pthread_getattr_default_np(&before_);
        pthread_attr_t greedy;
        pthread_attr_init(&greedy);
        pthread_attr_setstacksize(&greedy, std::size_t{1} << 46);
        pthread_setattr_default_np(&greedy);
        pthread_attr_destroy(&greedy);
    }
    ~NoThreads() { pthread_setattr_default_np(&before_); }

private:
    pthread_attr_t before_{};
};

TEST(WithinTime, WithoutAThreadTheWorkIsDoneAllTheSame) {
    const NoThreads none;
    ASSERT_THROW(std::thread([] {}), std::system_error);
    EXPECT_EQ(withinTime(milliseconds(1), [] { return 3; }), 3);
    TimedHelper helper;
    EXPECT_EQ(helper.within(milliseconds(1), [] { return 4; }), 4);
}

TEST(TimedHelper, DoesOneWorkAfterTheOtherOnTheSameThread) {
    TimedHelper helper;
    const auto first = helper.within(longTime, std::this_thread::get_id);
    ASSERT_TRUE(first);
    EXPECT_NE(*first, std::this_thread::get_id());
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(helper.within(longTime, std::this_thread::get_id), first) << i;
}

TEST(TimedHelper, WhatTheWorkRaisesEndsNeitherTheHelperNorTheProgram) {
    TimedHelper helper;
    EXPECT_THROW(helper.within(
                     longTime, []() -> int { raise(ErrorNumber::PermissionDenied); }),
                 RunTimeError);
    EXPECT_EQ(helper.within(longTime, [] { return 5; }), 5);
}

TEST(TimedHelper, AThreadThatHangsIsGivenUpAndTheNextWorkIsDoneByAnother) {
    const auto release = std::make_shared<std::promise<void>>();
    const auto hung = std::make_shared<std::promise<std::thread::id>>();
    auto hungThread = hung->get_future();
    const auto ended = std::make_shared<std::promise<void>>();
    auto isEnded = ended->get_future();
    {
        TimedHelper helper;
        EXPECT_FALSE(
            helper.within(milliseconds(1), [released = release->get_future().share(), hung, ended] {
                hung->set_value(std::this_thread::get_id());
                released.wait();
                ended->set_value();
                return 1;
            }));
        const auto next = helper.within(longTime, std::this_thread::get_id);
        ASSERT_TRUE(next);
        EXPECT_NE(*next, hungThread.get());
        EXPECT_EQ(helper.within(longTime, std::this_thread::get_id), next);
    }
    // The helper went without waiting for it.
    EXPECT_EQ(isEnded.wait_for(milliseconds(0)), std::future_status::timeout);
    release->set_value();
    EXPECT_EQ(isEnded.wait_for(longTime), std::future_status::ready);
}

} // namespace
} // namespace velmora
