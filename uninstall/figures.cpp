#include "uninstall/figures.h"

#include <cmath>

namespace velto {

double roundedToThousandth(double value) { return std::round(value * 1000) / 1000; }

}  // namespace velto
