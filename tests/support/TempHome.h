#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velto {

constexpr std::int64_t operator""_KB(unsigned long long count) {
    return static_cast<std::int64_t>(count) * 1'000;
}
constexpr std::int64_t operator""_MB(unsigned long long count) {
    return static_cast<std::int64_t>(count) * 1'000'000;
}
/// A number of days in seconds.
constexpr double operator""_days(unsigned long long count) {
    return static_cast<double>(count) * 86400;
}

/// A home folder in the temporary folder, gone with the object. Paths are relative to it; missing
/// folders on the way are made. A step that fails ends the test program with the reason.
class TempHome {
public:
    TempHome();
    /// In a folder of the test's choice, to have it on that folder's volume.
    explicit TempHome(const std::string& parent);
    ~TempHome();
    TempHome(const TempHome&) = delete;
    TempHome& operator=(const TempHome&) = delete;

    /// A file just made; its dates can be set.
    class File {
    public:
        explicit File(std::string path) : path_(std::move(path)) {}
        /// Sets access and modification time to that many seconds ago.
        const File& lastUsed(double secondsAgo) const;
        /// Sets both, in whole seconds since 1970.
        const File& dated(std::int64_t accessed, std::int64_t modified) const;
        const std::string& path() const { return path_; }

    private:
        std::string path_;
    };

    /// A file of that many bytes, really allocated; its content differs from name to name.
    File file(std::string_view path, std::int64_t bytes);
    /// A file of that length that takes up no space: every byte reads as zero.
    File sparse(std::string_view path, std::int64_t bytes);
    File text(std::string_view path, std::string_view content);
    std::string folder(std::string_view path);
    void link(std::string_view path, std::string_view target);

    /// Absolute and without links.
    const std::string& path() const { return root_; }
    std::string path(std::string_view below) const { return root_ + "/" + std::string(below); }

    bool exists(std::string_view path) const;
    std::string read(std::string_view path) const;

private:
    std::string root_;
};

}  // namespace velto
