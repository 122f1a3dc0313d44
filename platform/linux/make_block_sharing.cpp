#include "platform/posix/PosixBlockSharing.h"

namespace velto {

std::unique_ptr<BlockSharing> makeBlockSharing() { return std::make_unique<RangeSharing>(); }

}  // namespace velto
