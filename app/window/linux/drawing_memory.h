#pragma once

namespace velto::window {

/// Has the memory of a picture of the window kept for the next one. Before anything is drawn.
/// Nothing where the C library has its own way.
void keepDrawingMemory();

}  // namespace velto::window
