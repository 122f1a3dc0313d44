#include <system_error>

#include <fmt/format.h>

#include "platform/FileManager.h"

namespace velto {

FileError::FileError(std::string attempt, std::string path, int code)
    : FileError(std::move(attempt), std::move(path), code, std::generic_category().message(code)) {}

FileError::FileError(std::string attempt, std::string path, int code, const std::string& reason)
    : std::runtime_error(fmt::format("could not {} {}: {}", attempt, path, reason)),
      attempt_(std::move(attempt)),
      path_(std::move(path)),
      code_(code) {}

}  // namespace velto
