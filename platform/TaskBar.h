#pragma once

#include <optional>

namespace velto {

/// The program's place in the desktop's task bar or dock. Main thread. A desktop that has none, or
/// knows no progress there, shows nothing; nobody is told of failures.
class TaskBar {
public:
    virtual ~TaskBar() = default;

    /// Work runs. `fraction`, from 0 to 1, of it is done; nothing where nobody can know, which is
    /// shown as an empty bar.
    virtual void showProgress(std::optional<double> fraction) = 0;

    /// None runs any more. Only after `showProgress`.
    virtual void hideProgress() = 0;
};

}  // namespace velto
