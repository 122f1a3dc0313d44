#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "analysis/DiskState.h"
#include "platform/Locale.h"
#include "platform/UserDefaults.h"

namespace velto {

/// The keys of the user defaults.
namespace defaultsKey {
inline constexpr const char* retentionDays = "velto.retentionDays";
inline constexpr const char* autoMaintenance = "velto.autoMaintenance";
inline constexpr const char* frequency = "velto.frequency";
inline constexpr const char* language = "velto.language";
inline constexpr const char* rulePrefix = "velto.rule.";  // + rule id
inline constexpr const char* settingsConfigured = "velto.settingsConfigured";
inline constexpr const char* duplicatesRound = "velto.duplicatesRound";
}  // namespace defaultsKey

struct RuleSwitch {
    std::string_view id;
    bool onByDefault;
};
/// The rules that the user can switch, in the order in which they are shown.
inline constexpr std::array<RuleSwitch, 4> ruleSwitches{{
    {"systemTrash", true},
    {"oldDownloads", true},
    {"caches", true},
    {"duplicates", false},
}};

inline constexpr std::int64_t defaultRetentionDays = 30;
/// More than that no calendar holds; it is as good as forever.
inline constexpr std::int64_t longestRetentionDays = 1'000'000;

/// The user's settings, read with their defaults and normalised. Thread rules of UserDefaults.
class VeltoSettings {
public:
    /// Both outlive the settings.
    VeltoSettings(UserDefaults& defaults, const Locale& locale);

    /// Days. 0 or less, or no number, reads as 30; more than the longest one as that.
    std::int64_t retention() const;
    void setRetention(std::int64_t days);

    bool autoMaintenance() const;
    void setAutoMaintenance(bool on);

    /// "daily", "weekends" or "monthly". "weekly" reads as "weekends", deliberately; anything else
    /// as "daily".
    std::string frequency() const;
    /// Stores one of the three; any other text is stored as "daily".
    void setFrequency(std::string_view frequency);

    std::string language() const;  // "es" or "en"
    void setLanguage(std::string_view code);

    std::map<std::string, bool> rules() const;
    void setRule(const std::string& id, bool on);

    bool settingsConfigured() const;
    void markConfigured();

    double duplicatesRound() const;  // seconds since 1970, 0 when never
    void setDuplicatesRound(double time);

    /// The record that the page receives.
    Settings record() const;

private:
    UserDefaults& defaults_;
    const Locale& locale_;
};

}  // namespace velto
