#pragma once

#include <map>
#include <string>

#include "platform/Log.h"
#include "platform/Workspace.h"

namespace velto {

/// The desktop through GIO: the user's default applications, and the file manager that answers for
/// org.freedesktop.FileManager1 on the session bus. Nothing blocks; what fails is logged when the
/// answer arrives in the main loop. What is opened gets the environment as it was when this object
/// was made, without what the program has set for itself since. Main thread.
class LinuxWorkspace final : public Workspace {
public:
    /// The log outlives the main loop.
    explicit LinuxWorkspace(Log& log);

    void openURL(const std::string& url) override;

    /// Without such a file manager the folder that holds the item is opened instead.
    void reveal(const std::string& path) override;

private:
    Log& log_;
    std::map<std::string, std::string> environment_;
};

}  // namespace velto
