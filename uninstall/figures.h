#pragma once

namespace velto {

/// Three decimals, halves away from zero.
double roundedToThousandth(double value);

}  // namespace velto
