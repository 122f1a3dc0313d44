#include "bridge/PreviewIntents.h"

#include <algorithm>

#include "bridge/preview_events.h"
#include "cleaning/preview/FilePreview.h"

namespace velto {

PreviewIntents::~PreviewIntents() {
    if (reading_) reading_->cancel();
}

bool PreviewIntents::isListed(const std::string& path) const {
    if (!context_.state.bootState) return false;
    const DiskState& state = context_.state.bootState->state;
    return std::ranges::find(state.files, path, &BigFile::path) != state.files.end() ||
           std::ranges::any_of(state.dupGroups, [&](const DupGroup& group) {
               return std::ranges::find(group.paths, path) != group.paths.end();
           });
}

void PreviewIntents::onPreview(const Payload& payload) {
    const auto request = payload::integerMember(payload, "request");
    if (!request) return;
    if (reading_) reading_->cancel();
    reading_.reset();
    const auto path = payload::pathMember(payload, "path");
    if (!path) return;
    if (!isListed(*path)) {
        FilePreview none;
        none.reason = FilePreview::Reason::gone;
        context_.link.evaluate(events::preview(*request, *path, none));
        return;
    }
    reading_ = CancellationFlag();
    Platform& platform = context_.platform;
    platform.dispatcher->global(
        QualityOfService::userInitiated, [&platform, weak = weak_from_this(), path = *path,
                                          request = *request, cancelled = *reading_] {
            if (cancelled.isCancelled()) return;
            const auto preview = FilePreviewReader(platform).read(path, cancelled);
            if (!preview) return;
            platform.dispatcher->main(
                [weak, cancelled, script = events::preview(request, path, *preview)] {
                    const auto self = weak.lock();
                    if (self && !cancelled.isCancelled()) self->context_.link.evaluate(script);
                });
        });
}

}  // namespace velto
