#pragma once

#include <string>
#include <vector>

#include <fmt/format.h>

#include "platform/TaskBar.h"

namespace velto {

class FakeTaskBar final : public TaskBar {
public:
    void showProgress(std::optional<double> fraction) override {
        told.push_back(fraction ? fmt::format("{:.0f}%", *fraction * 100) : "busy");
    }
    void hideProgress() override { told.emplace_back("hidden"); }

    std::vector<std::string> told;  // in order; "busy" is a progress that nobody knows
};

}  // namespace velto
