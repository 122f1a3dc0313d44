#include "platform/program_identifier.h"

namespace velto {

const char* const programIdentifier = VELTO_APP_ID;

}  // namespace velto
