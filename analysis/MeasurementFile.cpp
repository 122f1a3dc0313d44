#include "analysis/MeasurementFile.h"

#include <string>

#include <nlohmann/json.hpp>

#include "platform/values/parse_json.h"
#include "platform/values/write_json.h"

namespace velto {
namespace {

// Figures and some paths; the exclusions among them are the user's.
constexpr ReadLimit measurementLimit = ownFile(4 << 20);

}  // namespace

MeasurementFile::MeasurementFile(FileManager& files, const HomeLayout& layout)
    : files_(files), path_(layout.dataFolder + "/measurement.json") {}

void MeasurementFile::save(const Measurement& measurement, double ts) const {
    const nlohmann::json entry = {{"measurement", toJson(measurement)}, {"ts", ts}};
    try {
        files_.writeAtomically(path_, writeJson(entry));
    } catch (const FileError&) {
        // Not remembered; the page is told all the same.
    }
}

std::optional<Measurement> MeasurementFile::load(double ts) const {
    try {
        const auto entry = parseJson(files_.read(path_, measurementLimit));
        if (entry.at("ts").get<double>() != ts) return std::nullopt;
        return measurementFromJson(entry.at("measurement"));
    } catch (const FileError&) {
        return std::nullopt;  // never saved, or out of reach
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;  // damaged: the next save replaces it
    }
}

}  // namespace velto
