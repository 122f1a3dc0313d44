#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/HomeLayout.h"

namespace velto {

/// What the page has to know of the folders of this home, whatever they are called here.
struct HomeFolders {
    /// Not to be moved as a whole, sorted: what the system or programs look for, and every folder
    /// on the way to one of those. What lies in one may go.
    std::vector<std::string> kept;
    /// By the page's name of a category: the folders that are its own. One that has none is not
    /// there.
    std::map<std::string, std::vector<std::string>> categories;
};

/// Pure: the folders need not exist.
HomeFolders homeFolders(const HomeLayout& layout);

namespace events {
std::string homeFolders(const HomeFolders& folders);
}  // namespace events

}  // namespace velto
