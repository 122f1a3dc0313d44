#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
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
inline constexpr const char* cacheDays = "velto.cacheDays";
inline constexpr const char* fullDiskGB = "velto.fullDiskGB";
inline constexpr const char* fullDiskTold = "velto.fullDiskTold";
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

/// More than any disk has.
inline constexpr std::int64_t largestFullDiskGB = 1'000'000;

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

    /// Days that caches which the maintenance has taken stay in the trash; 0: as long as everything
    /// else, nothing: the user has not been asked yet.
    std::optional<std::int64_t> cacheDays() const;
    void setCacheDays(std::int64_t days);

    /// Free space, in GB, below which the maintenance says that the disk gets full; 0 for never.
    std::int64_t fullDiskGB() const;
    void setFullDiskGB(std::int64_t gigabytes);

    double fullDiskTold() const;  // seconds since 1970 when it said so, 0 when there is room again
    void setFullDiskTold(double time);

    /// The record that the page receives.
    Settings record() const;

private:
    UserDefaults& defaults_;
    const Locale& locale_;
};

}  // namespace velto
