#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <string>

namespace velto {

/// The folder in which the test program runs, on the build folder's volume; programs may be started
/// from it.
inline std::string buildVolume() {
    return std::filesystem::canonical(std::filesystem::current_path()).string();
}

/// True when both folders are there, on volumes of their own.
inline bool areTwoVolumes(const std::string& one, const std::string& other) {
    struct stat first {};
    struct stat second {};
    return stat(one.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 &&
           first.st_dev != second.st_dev;
}

}  // namespace velto
