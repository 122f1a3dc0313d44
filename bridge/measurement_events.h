#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "analysis/Measurement.h"
#include "analysis/list_details.h"

/// The exact script of each event about what was measured, and how exactly. Pure.
namespace velto::events {

using SizesByKey = std::map<std::string, std::int64_t>;

/// Where the home is: the page begins paths with "~".
std::string home(const std::string& path);

/// Bytes of large files and of duplicates, by path.
std::string exactListSizes(const ListDetails& details);
/// Bytes of cleaning candidates, by path.
std::string exactCleanableSizes(const SizesByKey& byPath);
/// Bytes of the trash's items, by id.
std::string exactTrashSizes(const SizesByKey& byId);

/// When each duplicate was changed last, by path: whole seconds since 1970.
std::string copyDates(const ListDetails& details);

/// By group: lists of the copies that are names of one file.
std::string linkedCopies(const ListDetails& details);

/// How the comparison of files stands beside what the analysis says of it.
struct ComparisonState {
    bool canContinue = false;  // this process knows what was not compared
    bool isRunning = false;
};
std::string measurement(const Measurement& measurement, const ComparisonState& comparison);

}  // namespace velto::events
