#pragma once

#include <string>
#include <vector>

namespace velto::window {

/// What tells of a graphics processor without starting a driver.
struct GraphicsSigns {
    std::vector<std::string> directNodes;  // names of the devices of the kernel's own drivers
    bool otherDevice = false;              // a driver that shows itself elsewhere
    std::string software;                  // whether the processor shall draw, as the user puts it
};

/// Whether all drawing is the processor's. A toolkit that draws through OpenGL then has a whole
/// graphics processor imitated for it: that costs half a second at the start, and the whole window
/// again for each word that changes.
bool processorDraws(const GraphicsSigns& signs);

}  // namespace velto::window
