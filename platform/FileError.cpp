#include <system_error>

#include <fmt/format.h>

#include "platform/FileManager.h"

namespace velto {

FileError::FileError(std::string attempt, std::string path, int code)
    : std::runtime_error(
          fmt::format("could not {} {}: {}", attempt, path, std::generic_category().message(code))),
      attempt_(std::move(attempt)),
      path_(std::move(path)),
      code_(code) {}

}  // namespace velto
