#include "platform/notification_permission.h"

namespace velto {

void askToNotify(const Platform&) {}  // no desktop wants to be asked

}  // namespace velto
