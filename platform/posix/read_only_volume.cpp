#include <sys/statvfs.h>

#include "platform/program_places.h"

namespace velto {

bool isOnReadOnlyVolume(const std::string& path) {
    struct statvfs figures;
    return ::statvfs(path.c_str(), &figures) == 0 && (figures.f_flag & ST_RDONLY) != 0;
}

}  // namespace velto
