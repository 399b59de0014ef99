#pragma once

#include "platform/backends/media/device.h"
#include "platform/backends/picture/mpv_core.h"
#include "platform/backends/picture/picture.h"
#include "platform/backends/picture/picture_device.h"

#include <memory>
#include <optional>

namespace velmora::platform::picture {

class PictureOpener : public media::DeviceOpener {
public:
    explicit PictureOpener(PictureOptions options) : options_(std::move(options)) {}

    std::unique_ptr<media::Device> open(const media::OpenRequest &request) override;
    // The half of it behind which the device begins. Absent where open() answers null.
    std::optional<OpenMedium> load(const media::OpenRequest &request);

private:
    MpvCore::Options engineOptions() const;

    PictureOptions options_;
    std::shared_ptr<const MpvLibrary> library_; // loaded at the first open
};

} // namespace velmora::platform::picture
