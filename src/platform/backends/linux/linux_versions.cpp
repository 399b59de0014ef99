#include "platform/backends/linux/linux_versions.h"

#include "platform/backends/linux/open_file.h"
#include "text/version/version_image.h"
#include "text/version/version_query.h"

#include <algorithm>

namespace velmora::platform {

namespace {

struct FoundRecord {
    Descriptor file;
    VersionPlace place;
};

std::optional<FoundRecord> findRecord(std::u16string_view path) {
    const auto bytes = systemPath(path);
    if (!bytes)
        return std::nullopt;
    struct ::stat info {};
    FoundRecord found;
    found.file = openRegular(*bytes, info);
    if (!found.file)
        return std::nullopt;
    const auto size = static_cast<std::uint64_t>(info.st_size);
    const auto place = findVersionRecord([&](std::uint64_t offset, std::size_t count) {
        if (offset >= size)
            return std::string();
        const auto within = static_cast<std::size_t>(std::min<std::uint64_t>(count, size - offset));
        return readAt(found.file.number(), static_cast<std::int64_t>(offset), within)
            .value_or(std::string());
    });
    if (!place)
        return std::nullopt;
    found.place = *place;
    return found;
}

} // namespace

std::uint32_t LinuxVersionRecords::GetFileVersionInfoSizeA(std::u16string_view path) {
    const auto found = findRecord(path);
    return found ? found->place.size : 0;
}

std::string LinuxVersionRecords::GetFileVersionInfoA(std::u16string_view path, std::uint32_t size) {
    const auto found = findRecord(path);
    if (!found)
        return {};
    return readAt(found->file.number(), static_cast<std::int64_t>(found->place.offset),
                  std::min(size, found->place.size))
        .value_or(std::string());
}

std::optional<std::string> LinuxVersionRecords::VerQueryValueA(std::string_view record,
                                                               std::u16string_view query) {
    const auto value = versionValue(record, query);
    if (!value)
        return std::nullopt;
    return value->text ? ansi_.encode(versionText(value->bytes)) : std::string(value->bytes);
}

} // namespace velmora::platform
