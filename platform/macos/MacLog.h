#pragma once

#include "platform/Log.h"

namespace velto {

/// The unified log, subsystem "app.velto". The system cuts lines at about 1,000 bytes.
class MacLog final : public Log {
public:
    void line(std::string_view text) override;
};

}  // namespace velto
