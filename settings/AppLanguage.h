#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace velto {

class VeltoSettings;

/// The interface language, "es" or "en", observed by whatever shows text. Main thread.
class AppLanguage {
public:
    /// Takes the stored language, or the system's.
    explicit AppLanguage(VeltoSettings& settings);

    const std::string& code() const { return code_; }
    bool isSpanish() const { return code_ == "es"; }

    /// The Spanish text when the language is Spanish, else the English one.
    std::string_view text(std::string_view es, std::string_view en) const;

    /// Stores the code through the settings (anything beginning with "es" is Spanish, the rest
    /// English) and tells the observers.
    void setCode(const std::string& code);

    /// `observer` is called after every assignment, as long as this object lives.
    void observe(std::function<void()> observer);

private:
    VeltoSettings& settings_;
    std::string code_;
    std::vector<std::function<void()>> observers_;
};

}  // namespace velto
