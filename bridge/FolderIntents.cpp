#include "bridge/FolderIntents.h"

#include <utility>

#include "bridge/events.h"
#include "bridge/folder_search.h"
#include "bridge/json_text.h"
#include "platform/privacy_gate.h"
#include "platform/values/path_text.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr double patience = 0.3;  // seconds that an answer waits for other volumes

std::int64_t requestOf(const Payload& payload) {
    return payload::integerMember(payload, "request").value_or(0);
}

/// Each volume that answers. A dead one may hang for ever.
VolumeUses usesOf(const VolumeInfo& volumes, const std::string& folder,
                  const std::vector<std::string>& names) {
    VolumeUses uses;
    for (const std::string& name : names) {
        const std::string path = (folder == "/" ? "" : folder) + "/" + name;
        const auto total = volumes.totalCapacity(path);
        const auto free = volumes.availableCapacity(path);
        if (total && free && *free <= *total) uses[name] = {*total - *free, *total};
    }
    return uses;
}

}  // namespace

FolderIntents::FolderIntents(const Context& context)
    : context_(context),
      cache_(std::make_shared<FolderCache>(*context.platform.files, context.platform.layout)) {}

void FolderIntents::load() {
    if (loading_ != Loading::notBegun) return;
    loading_ = Loading::running;
    Dispatcher& dispatcher = *context_.platform.dispatcher;
    dispatcher.global(QualityOfService::userInitiated,
                      [&dispatcher, weak = weak_from_this(), cache = cache_] {
                          const Folders loaded = cache->load();
                          dispatcher.main([weak, loaded] {
                              const auto self = weak.lock();
                              // By now there may be newer ones, or none any more.
                              if (!self || self->loading_ != Loading::running) return;
                              self->loading_ = Loading::over;
                              self->folders_ = loaded;
                              self->countDepartures({});
                              for (const auto& work : std::exchange(self->waiting_, {}))
                                  work();
                          });
                      });
}

void FolderIntents::replace(Folders folders, bool isSaved) {
    folders_ = std::move(folders);
    loading_ = Loading::over;
    departures_.forget();
    countDepartures({});
    // In its turn with a reset, which none of it may outlive.
    if (isSaved && folders_) {
        context_.cleanups.run(
            [cache = cache_, folders = folders_](CleanupServices&) { cache->save(*folders); });
    }
    for (const auto& work : std::exchange(waiting_, {}))
        work();
}

void FolderIntents::takeTrash(const CleanupOutcome& outcome) {
    trash_ = outcome.trash;
    departures_.noteBack(outcome.back);
    countDepartures(outcome.returned);
}

void FolderIntents::countDepartures(const std::vector<VeltoTrashService::Returned>& returned) {
    if (!folders_ || !trash_) return;
    departures_.take(trash_->items, trash_->bytes, returned, folders_->measured);
}

void FolderIntents::forget() { replace(nullptr, false); }

void FolderIntents::whenLoaded(std::function<void()> work) {
    load();
    if (loading_ == Loading::running) {
        waiting_.push_back(std::move(work));
    } else {
        work();
    }
}

void FolderIntents::onFolder(const Payload& payload) {
    const auto text = payload::stringMember(payload, "path");
    if (!text) return;
    const std::string& home = context_.platform.layout.home;
    FolderRequest question{.request = requestOf(payload),
                           .path = text->empty() ? home : pathBytes(*text)};
    if (!question.path.starts_with('/')) return;
    // An earlier analysis may have had the access that the program lacks by now.
    question.isWithheld = !context_.state.accessGranted &&
                          isBehindPrivacyGate(context_.platform.layout, question.path);
    whenLoaded([weak = weak_from_this(), question] {
        if (const auto self = weak.lock()) self->open(question);
    });
}

/// Another volume may be dead and never say how full it is; the rest does not wait for it.
void FolderIntents::open(const FolderRequest& question) {
    const auto names =
        folders_ ? volumesInside(*folders_, question.path) : std::vector<std::string>();
    if (names.empty()) return read(question, {});

    auto answer = [weak = weak_from_this(), question,
                   isDone = std::make_shared<bool>(false)](const VolumeUses& uses) {
        const auto self = weak.lock();
        if (self && !std::exchange(*isDone, true)) self->read(question, uses);
    };
    Dispatcher& dispatcher = *context_.platform.dispatcher;
    dispatcher.mainAfter(patience, [answer] { answer({}); });
    dispatcher.global(QualityOfService::userInitiated, [&dispatcher,
                                                        &volumes = *context_.platform.volumes,
                                                        names, question, answer] {
        dispatcher.main([answer, uses = usesOf(volumes, question.path, names)] { answer(uses); });
    });
}

void FolderIntents::read(const FolderRequest& question, const VolumeUses& volumes) {
    inBackground(
        [folders = folders_, &reader = *context_.platform.directories, question, volumes,
         departures = departures_] {
            return folderContents(reader, folders.get(), question, volumes, departures);
        },
        "onFolder");
}

void FolderIntents::onSearchFolders(const Payload& payload) {
    const auto text = payload::stringMember(payload, "text");
    if (!text) return;
    whenLoaded([weak = weak_from_this(),
                search = FolderSearch{.request = requestOf(payload), .text = *text}] {
        const auto self = weak.lock();
        if (!self) return;
        self->inBackground(
            [folders = self->folders_, search] { return foundFolders(folders.get(), search); },
            "onFolderSearch");
    });
}

/// Tells the page what `answer` returns on a thread of its own.
void FolderIntents::inBackground(std::function<std::string()> answer, const char* event) {
    Dispatcher& dispatcher = *context_.platform.dispatcher;
    dispatcher.global(QualityOfService::userInitiated,
                      [&dispatcher, weak = weak_from_this(), answer = std::move(answer), event] {
                          if (weak.expired()) return;
                          const std::string script = events::call(event, scriptLiteral(answer()));
                          dispatcher.main([weak, script] {
                              if (const auto self = weak.lock())
                                  self->context_.link.evaluate(script);
                          });
                      });
}

}  // namespace velto
