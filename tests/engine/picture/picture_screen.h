#pragma once

#include "xvfb_server.h"

#include <gtest/gtest.h>

namespace velmora::tests {

// A private X server for all cases of a program, and a window of a film's size in it for each.
class PictureScreenTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        server_ = new XvfbServer;
        server_->exportToEnvironment();
    }
    // It ends with this process: an engine that ended late would lose it, and end us all for that.

    void SetUp() override {
        ASSERT_TRUE(server_->running());
        ASSERT_TRUE(x_.connected());
        parent_ = x_.makeWindow(100, 50, 730, 525);
    }
    void TearDown() override { x_.destroyWindow(parent_); }

    inline static XvfbServer *server_ = nullptr;
    XClient x_;
    xcb_window_t parent_ = 0;
};

} // namespace velmora::tests
