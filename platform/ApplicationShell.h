#pragma once

#include <functional>
#include <optional>
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

/// A question for one of the user's folders.
struct FolderQuestion {
    std::string title;
    std::string accept;   // the button that chooses
    std::string decline;  // the button that stops; also what closing the dialog means
    std::string startAt;  // the folder that is shown first, absolute
};

/// The running windowed application. Main thread.
class ApplicationShell {
public:
    virtual ~ApplicationShell() = default;

    /// Makes the application active without pushing others back: a settings pane that was just
    /// opened stays in sight.
    virtual void activate() = 0;

    virtual Appearance appearance() const = 0;

    /// The window has this appearance from now on, whatever the system's is or comes to be.
    virtual void setAppearance(Appearance appearance) = 0;
    /// The same for the appearance that it has already.
    virtual void keepAppearance() = 0;
    /// The window has the system's again, and follows it.
    virtual void followSystemAppearance() = 0;

    /// Asks, then calls `answer` on the main thread (perhaps before `confirm` returns).
    virtual void confirm(const Confirmation& question, std::function<void(bool)> answer) = 0;

    /// Lets the user choose a folder, then calls `answer` on the main thread (perhaps before
    /// `chooseFolder` returns) with its absolute path as the system gives it, or with nothing.
    using FolderAnswer = std::function<void(std::optional<std::string> folder)>;
    virtual void chooseFolder(const FolderQuestion& question, FolderAnswer answer) = 0;
};

/// The system's name of an appearance, as it is logged.
std::string appearanceName(Appearance appearance);

}  // namespace velto
