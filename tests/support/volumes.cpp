#include "support/volumes.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace velto {
namespace {

namespace fs = std::filesystem;

/// Makes a file of one name and tells whether another name leads to it too, or nothing when the
/// name is refused.
enum class Tried { refused, otherLeadsNowhere, otherLeadsThere };

Tried tryNames(const std::string& folder, const std::string& name, const std::string& other) {
    const std::string made = folder + "/" + name;
    if (!std::ofstream(made).is_open()) return Tried::refused;
    const bool leads = ::access((folder + "/" + other).c_str(), F_OK) == 0;
    ::unlink(made.c_str());
    return leads ? Tried::otherLeadsThere : Tried::otherLeadsNowhere;
}

}  // namespace

std::string buildVolume() { return fs::canonical(fs::current_path()).string(); }

std::string otherVolume() {
    if (const char* named = std::getenv("VELTO_OTHER_VOLUME")) return fs::canonical(named).string();
    constexpr const char* memory = "/dev/shm";
    return fs::is_directory(memory) && ::access(memory, W_OK) == 0 ? memory : buildVolume();
}

bool areTwoVolumes(const std::string& one, const std::string& other) {
    struct stat first {};
    struct stat second {};
    return stat(one.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 &&
           first.st_dev != second.st_dev;
}

bool takesNamesOfAnyBytes(const std::string& folder) {
    return tryNames(folder, ".velto-tried-\xff", ".velto-tried-") != Tried::refused;
}

bool tellsCaseApart(const std::string& folder) {
    return tryNames(folder, ".velto-tried-case", ".VELTO-TRIED-CASE") == Tried::otherLeadsNowhere;
}

}  // namespace velto
