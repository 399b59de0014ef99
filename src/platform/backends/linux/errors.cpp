#include "platform/backends/linux/errors.h"

#include "base/run_time_error.h"
#include "base/text.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace velmora::platform {

namespace {

ErrorNumber numberOf(int error) {
    switch (error) {
    case ENOENT:
        return ErrorNumber::FileNotFound;
    case ENOTDIR:
    case ELOOP:
    case ENAMETOOLONG:
        return ErrorNumber::PathNotFound;
    case EEXIST:
        return ErrorNumber::FileExists;
    case ENOSPC:
    case EDQUOT:
        return ErrorNumber::DiskFull;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
        return ErrorNumber::PermissionDenied;
    case EINVAL:
        return ErrorNumber::InvalidCall;
    default:
        return ErrorNumber::DeviceIo;
    }
}

} // namespace

std::u16string errorText(int error) { return fromUtf8(std::generic_category().message(error)); }

void raiseSystemError(int error) { throw RunTimeError(numberOf(error), errorText(error)); }

void complain(const std::string &text) { std::fprintf(stderr, "velmora: %s\n", text.c_str()); }

} // namespace velmora::platform
