#pragma once

#include <string>
#include <vector>

#include "platform/HomeLayout.h"
#include "uninstall/AppEntry.h"

namespace velto {

/// Applications as real desktop entries describe them; only `bid`, `name` and `exec` are set.
std::vector<AppEntry> realApplications();

/// Such as are called like a place of others.
std::vector<AppEntry> misleadingApplications();

struct RealFolder {
    std::string path;
    std::string of;  // "P", "profile", "-", or the identifier whose own it is

    bool isProtected() const { return of == "P"; }
    bool isProfile() const { return of == "profile"; }
};

/// Folders and files that stand in real homes, at their places in this one.
std::vector<RealFolder> realFolders(const HomeLayout& home);

}  // namespace velto
