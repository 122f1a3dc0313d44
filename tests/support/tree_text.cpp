#include "support/tree_text.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <vector>

#include "platform/posix/same_state.h"
#include "support/extended_attributes.h"

namespace velto {
namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    std::string content(fs::file_size(path), '\0');
    stream.read(content.data(), static_cast<std::streamsize>(content.size()));
    content.resize(static_cast<std::size_t>(stream.gcount()));
    return content;
}

std::string timeText(const timespec& time) {
    return std::to_string(time.tv_sec) + "." + std::to_string(time.tv_nsec);
}

void describeTheRest(const fs::path& path, const struct stat& status, std::string& text) {
    text += " owner " + std::to_string(status.st_uid) + ":" + std::to_string(status.st_gid) +
            " modified " + timeText(modifiedTime(status)) + " accessed " +
            timeText(accessedTime(status));
    for (const auto& [attribute, value] : extendedAttributes(path)) {
        text += " " + attribute + "=" + std::to_string(std::hash<std::string>{}(value));
    }
}

void describe(const fs::path& path, const std::string& name, TreeDetail detail, std::string& text) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0) return;
    text += name + " " + std::to_string(status.st_mode);
    if (detail == TreeDetail::everything) describeTheRest(path, status, text);
    if (S_ISLNK(status.st_mode)) {
        text += " -> " + fs::read_symlink(path).string() + "\n";
    } else if (S_ISDIR(status.st_mode)) {
        text += "/\n";
        std::vector<fs::path> children;
        for (const auto& entry : fs::directory_iterator(path))
            children.push_back(entry.path());
        std::ranges::sort(children);
        for (const fs::path& child : children) {
            describe(child, name + "/" + child.filename().string(), detail, text);
        }
    } else if (!S_ISREG(status.st_mode)) {
        text += " special\n";  // a pipe would be waited for
    } else {
        const std::string content = contentOf(path);
        text += " " + std::to_string(status.st_mtime) + " " + std::to_string(content.size()) + " " +
                std::to_string(std::hash<std::string>{}(content)) + "\n";
    }
    if (detail == TreeDetail::everything) {
        const timespec times[2] = {accessedTime(status), modifiedTime(status)};
        utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW);
    }
}

void collect(const fs::path& folder, const std::string& below, std::set<std::string>& leaves) {
    bool isEmpty = true;
    for (const auto& entry : fs::directory_iterator(folder)) {
        isEmpty = false;
        const std::string name = below + entry.path().filename().string();
        if (entry.symlink_status().type() == fs::file_type::directory) {
            collect(entry.path(), name + "/", leaves);
        } else {
            leaves.insert(name);
        }
    }
    if (isEmpty) leaves.insert(below);
}

}  // namespace

std::string treeText(const std::string& path, TreeDetail detail) {
    std::string text;
    describe(path, "", detail, text);
    return text;
}

std::set<std::string> leavesBelow(const std::string& folder) {
    std::set<std::string> leaves;
    if (fs::exists(folder)) collect(folder, "", leaves);
    return leaves;
}

}  // namespace velto
