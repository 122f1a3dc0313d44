#pragma once

#include <string_view>

#include "platform/HomeLayout.h"

namespace velto {

/// Whether a program without access must stay out of this place (an absolute path): listing it or
/// what is in it, opening or measuring it may raise the system's prompt. Asking for the attributes
/// of a name that is known raises none, wherever it lies. False where the home has no privacy gate.
bool isBehindPrivacyGate(const HomeLayout& layout, std::string_view path);

}  // namespace velto
