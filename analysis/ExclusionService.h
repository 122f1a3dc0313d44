#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/FileManager.h"
#include "platform/HomeLayout.h"

namespace velto {

/// The files and folders that the user keeps out of the analysis. Main thread; a walk takes a copy
/// of `paths`.
class ExclusionService {
public:
    /// Reads the stored list; a missing or damaged file counts as an empty one.
    ExclusionService(FileManager& files, const HomeLayout& layout);

    /// The process's instance, made at first use from the process's platform.
    static ExclusionService& shared();

    /// True when the path equals an entry or lies below one. Exact comparison.
    bool isExcluded(std::string_view path) const;

    /// Appends the path unless it is excluded already, and saves. What is no absolute path excludes
    /// nothing, here as in the stored list.
    void add(const std::string& path);

    /// Takes an entry back (exact match) and saves; an unknown one changes nothing.
    void remove(const std::string& path);

    /// Forgets the list without saving; for a reset that has deleted the file.
    void clear() { paths_.clear(); }

    const std::vector<std::string>& paths() const { return paths_; }  // in the order of adding

private:
    void save() const;

    FileManager& files_;
    std::string folder_;
    std::vector<std::string> paths_;
};

}  // namespace velto
