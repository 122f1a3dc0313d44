#include "app/program_end.h"

#include <cstdio>
#include <cstdlib>

namespace velto {

void finishWork(Platform& platform, int status) {
    if (platform.dispatcher->finish(readingGrace)) return;
    platform.log->line("Velto ▶ salida: se abandona una lectura que no termina");
    std::fflush(nullptr);
    std::_Exit(status);
}

}  // namespace velto
