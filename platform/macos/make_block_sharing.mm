#include "platform/posix/CloneSharing.h"

namespace velto {

std::unique_ptr<BlockSharing> makeBlockSharing() { return std::make_unique<CloneSharing>(); }

}  // namespace velto
