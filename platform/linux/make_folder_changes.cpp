#include "platform/FolderChanges.h"

namespace velto {
namespace {

class NothingTold final : public FolderChanges {
public:
    std::optional<ChangeMark> mark(const std::string&) override { return std::nullopt; }
    std::optional<std::vector<FolderChange>> since(const ChangeMark&, const std::string&,
                                                   const CancellationFlag&) override {
        return std::nullopt;
    }
};

}  // namespace

std::unique_ptr<FolderChanges> makeFolderChanges() { return std::make_unique<NothingTold>(); }

}  // namespace velto
