#include "settings/VeltoSettings.h"

#include <algorithm>
#include <cmath>

namespace velto {
namespace {

constexpr std::array<std::string_view, 3> frequencies{"daily", "weekends", "monthly"};

bool isFrequency(std::string_view text) {
    for (std::string_view frequency : frequencies) {
        if (text == frequency) return true;
    }
    return false;
}

std::string languageOf(std::string_view tag) { return tag.starts_with("es") ? "es" : "en"; }

template <typename Type>
std::optional<Type> read(const UserDefaults& defaults, const std::string& key) {
    const auto value = defaults.value(key);
    if (!value || !std::holds_alternative<Type>(*value)) return std::nullopt;
    return std::get<Type>(*value);
}

/// A number of either kind.
std::optional<double> readNumber(const UserDefaults& defaults, const std::string& key) {
    if (const auto whole = read<std::int64_t>(defaults, key)) return static_cast<double>(*whole);
    return read<double>(defaults, key);
}

/// Seconds since 1970, 0 for none.
double readTime(const UserDefaults& defaults, const std::string& key) {
    const double time = readNumber(defaults, key).value_or(0);
    return std::isfinite(time) ? time : 0;
}

/// A whole number from 0 to `most`; nothing for what is no number.
std::optional<std::int64_t> readCount(const UserDefaults& defaults, const std::string& key,
                                      std::int64_t most) {
    const auto number = readNumber(defaults, key);
    if (!number || std::isnan(*number)) return std::nullopt;
    return static_cast<std::int64_t>(std::clamp(*number, 0.0, static_cast<double>(most)));
}

}  // namespace

VeltoSettings::VeltoSettings(UserDefaults& defaults, const Locale& locale)
    : defaults_(defaults), locale_(locale) {}

std::int64_t VeltoSettings::retention() const {
    const double days = readNumber(defaults_, defaultsKey::retentionDays).value_or(0);
    if (!(days >= 1)) return defaultRetentionDays;  // NaN too
    // Whoever asked for longer never gets less: nothing may be deleted sooner.
    return static_cast<std::int64_t>(std::min(days, static_cast<double>(longestRetentionDays)));
}

void VeltoSettings::setRetention(std::int64_t days) {
    defaults_.setValue(defaultsKey::retentionDays, days);
}

bool VeltoSettings::autoMaintenance() const {
    return read<bool>(defaults_, defaultsKey::autoMaintenance).value_or(false);
}

void VeltoSettings::setAutoMaintenance(bool on) {
    defaults_.setValue(defaultsKey::autoMaintenance, on);
}

std::string VeltoSettings::frequency() const {
    const std::string stored =
        read<std::string>(defaults_, defaultsKey::frequency).value_or("daily");
    if (isFrequency(stored)) return stored;
    return stored == "weekly" ? "weekends" : "daily";
}

void VeltoSettings::setFrequency(std::string_view frequency) {
    defaults_.setValue(defaultsKey::frequency,
                       std::string(isFrequency(frequency) ? frequency : "daily"));
}

std::string VeltoSettings::language() const {
    const std::string stored = read<std::string>(defaults_, defaultsKey::language).value_or("");
    if (!stored.empty()) return languageOf(stored);
    const auto preferred = locale_.preferredLanguages();
    return preferred.empty() ? "en" : languageOf(preferred.front());
}

void VeltoSettings::setLanguage(std::string_view code) {
    defaults_.setValue(defaultsKey::language, languageOf(code));
}

std::map<std::string, bool> VeltoSettings::rules() const {
    std::map<std::string, bool> rules;
    for (const RuleSwitch& rule : ruleSwitches) {
        const std::string id(rule.id);
        rules[id] = read<bool>(defaults_, defaultsKey::rulePrefix + id).value_or(rule.onByDefault);
    }
    return rules;
}

void VeltoSettings::setRule(const std::string& id, bool on) {
    defaults_.setValue(defaultsKey::rulePrefix + id, on);
}

bool VeltoSettings::settingsConfigured() const {
    return read<bool>(defaults_, defaultsKey::settingsConfigured).value_or(false);
}

void VeltoSettings::markConfigured() { defaults_.setValue(defaultsKey::settingsConfigured, true); }

double VeltoSettings::duplicatesRound() const {
    return readTime(defaults_, defaultsKey::duplicatesRound);
}

void VeltoSettings::setDuplicatesRound(double time) {
    defaults_.setValue(defaultsKey::duplicatesRound, time);
}

std::optional<std::int64_t> VeltoSettings::cacheDays() const {
    return readCount(defaults_, defaultsKey::cacheDays, longestRetentionDays);
}

void VeltoSettings::setCacheDays(std::int64_t days) {
    defaults_.setValue(defaultsKey::cacheDays, days);
}

std::int64_t VeltoSettings::fullDiskGB() const {
    return readCount(defaults_, defaultsKey::fullDiskGB, largestFullDiskGB).value_or(0);
}

void VeltoSettings::setFullDiskGB(std::int64_t gigabytes) {
    defaults_.setValue(defaultsKey::fullDiskGB, gigabytes);
}

double VeltoSettings::fullDiskTold() const {
    return readTime(defaults_, defaultsKey::fullDiskTold);
}

void VeltoSettings::setFullDiskTold(double time) {
    defaults_.setValue(defaultsKey::fullDiskTold, time);
}

Settings VeltoSettings::record() const {
    return {.retention = retention(),
            .autoMaintenance = autoMaintenance(),
            .frequency = frequency(),
            .language = language(),
            .rules = rules()};
}

}  // namespace velto
