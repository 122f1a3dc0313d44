#pragma once

#include <string>

namespace velto {

/// The desktop around the program. Main thread; failures are logged, never thrown.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Opens a URL with the application that the user has chosen for it.
    virtual void openURL(const std::string& url) = 0;

    /// Shows the item at `path` selected in the file viewer.
    virtual void reveal(const std::string& path) = 0;
};

}  // namespace velto
