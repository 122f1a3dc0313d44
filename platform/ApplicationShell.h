#pragma once

#include <functional>
#include <string>

namespace velto {

enum class Appearance { light, dark };

/// A question with two answers.
struct Confirmation {
    std::string title;
    std::string body;
    std::string accept;   // the button that goes on
    std::string decline;  // the button that stops; also what closing the dialog means
};

/// The running windowed application. Main thread.
class ApplicationShell {
public:
    virtual ~ApplicationShell() = default;

    /// Makes the application active without pushing others back: a settings pane that was just
    /// opened stays in sight.
    virtual void activate() = 0;

    virtual Appearance appearance() const = 0;
    virtual void setAppearance(Appearance appearance) = 0;

    /// Asks, then calls `answer` on the main thread (perhaps before `confirm` returns).
    virtual void confirm(const Confirmation& question, std::function<void(bool)> answer) = 0;
};

/// The system's name of an appearance, as it is logged.
std::string appearanceName(Appearance appearance);

}  // namespace velto
