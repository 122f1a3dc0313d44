#pragma once

namespace velto {

struct Platform;

/// Asks the person, once in the life of the installation, whether the program may show
/// notifications, where a system wants that (a Mac, for an application bundle). For when somebody
/// is there to answer: later questions of this kind are the system's to refuse. Returns at once.
void askToNotify(const Platform& platform);

}  // namespace velto
