#pragma once

#include <optional>

#include "analysis/Measurement.h"
#include "platform/FileManager.h"
#include "platform/HomeLayout.h"

namespace velto {

/// Keeps what the last analysis has measured beside the analysis itself. One thread at a time.
class MeasurementFile {
public:
    MeasurementFile(FileManager& files, const HomeLayout& layout);

    /// `ts` is the stamp of the analysis. Silent when it cannot be saved: it is only not
    /// remembered.
    void save(const Measurement& measurement, double ts) const;

    /// What belongs to the analysis of that stamp; nothing when another one, none, or something
    /// damaged is stored.
    std::optional<Measurement> load(double ts) const;

private:
    FileManager& files_;
    std::string path_;
};

}  // namespace velto
