#pragma once

#include "platform/Log.h"
#include "platform/Workspace.h"

namespace velto {

class MacWorkspace final : public Workspace {
public:
    /// The log outlives the workspace.
    explicit MacWorkspace(Log& log) : log_(log) {}

    void openURL(const std::string& url) override;
    void reveal(const std::string& path) override;

private:
    Log& log_;
};

}  // namespace velto
