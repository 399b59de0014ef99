#pragma once

// The panels of a desktop in memory: there or not as a test says, asking when it asks.

#include "platform/contracts/status_item.h"

namespace velmora::fakes {

class FakeStatusItem : public platform::StatusItem {
public:
    bool hasPanel = false;                      // answers at once
    platform::StatusItemOwner *owner = nullptr; // while the icon is shown
    int updates = 0;
    int otherPictures = 0;

    // Panels come or go.
    void setPanel(bool there) {
        hasPanel = there;
        if (owner != nullptr)
            owner->taken(there);
    }

    void show(platform::StatusItemOwner &shown) noexcept override {
        owner = &shown;
        owner->taken(hasPanel);
    }
    void update(bool otherPicture) noexcept override {
        ++updates;
        otherPictures += otherPicture ? 1 : 0;
    }
    void hide() noexcept override { owner = nullptr; }
};

} // namespace velmora::fakes
