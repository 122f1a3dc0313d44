#include "cleaning/trash_refusal.h"

#include "cleaning/TrashGuard.h"

namespace velto {

std::optional<TrashError::Reason> trashRefusal(const Platform& platform, const std::string& path) {
    try {
        TrashGuard(*platform.files, *platform.mover, platform.layout).admit(path, {});
    } catch (const TrashError& error) {
        return error.reason();
    } catch (const FileError&) {
        // See above.
    }
    return std::nullopt;
}

}  // namespace velto
