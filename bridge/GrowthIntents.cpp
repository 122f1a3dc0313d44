#include "bridge/GrowthIntents.h"

#include <utility>

#include "analysis/growth/GrowthKeeper.h"
#include "bridge/growth_events.h"
#include "platform/values/text.h"

namespace velto {
namespace {

GrowthSince sinceOf(const Payload& payload) {
    using Kind = GrowthSince::Kind;
    const auto word = payload::stringMember(payload, "since");
    if (word == "week") return {.kind = Kind::week};
    if (word == "month") return {.kind = Kind::month};
    const nlohmann::json* const value = payload::member(payload, "since");
    const bool isMoment = value != nullptr && value->is_number();
    const double moment = isMoment ? value->get<double>() : 0;
    // What no clock shows is the first analysis or the last one.
    if (moment > 0 && moment < 1e15) {
        return {.kind = Kind::moment, .moment = static_cast<std::int64_t>(moment)};
    }
    return {.kind = Kind::last};
}

}  // namespace

GrowthIntents::GrowthIntents(const Context& context)
    : link_(context.link),
      platform_(context.platform),
      cleanups_(context.cleanups),
      answers_(std::make_shared<GrowthAnswers>(context.platform)) {}

void GrowthIntents::onGrowth(const Payload& payload) { answer(sinceOf(payload)); }

void GrowthIntents::answer(const GrowthSince& since) {
    asked_ = since;
    const Platform& platform = platform_;
    platform.dispatcher->global(
        QualityOfService::utility, [&platform, answers = answers_, weak = weak_from_this(), since,
                                    question = ++questions_, stored = stored_] {
            if (weak.expired()) return;
            const auto found = answers->growth(since);
            platform.dispatcher->main([weak, since, question, stored, found] {
                const auto self = weak.lock();
                if (!self || question != self->questions_ || stored != self->stored_) return;
                self->link_.evaluate(events::growth(since, found, self->platform_.layout.home));
            });
        });
}

void GrowthIntents::onFolderGrowth(const Payload& payload) {
    const auto path = payload::pathMember(payload, "path");
    if (!path) return;
    const Platform& platform = platform_;
    platform.dispatcher->global(
        QualityOfService::utility,
        [&platform, answers = answers_, weak = weak_from_this(), since = sinceOf(payload),
         asked = path->empty() ? platform.layout.home : *path, stored = stored_] {
            if (weak.expired()) return;
            const auto inside = answers->inside(asked, since);
            platform.dispatcher->main([weak, asked, inside, stored] {
                const auto self = weak.lock();
                if (!self) return;
                // Of what was forgotten meanwhile nothing is told.
                const bool isCurrent = stored == self->stored_;
                self->link_.evaluate(
                    events::folderGrowth(asked, isCurrent ? inside : std::nullopt));
            });
        });
}

void GrowthIntents::keep(std::shared_ptr<const FolderTree> folders, double now,
                         std::vector<std::string> leftOut) {
    if (!folders) return;
    cleanups_.run([&platform = platform_, weak = weak_from_this(), folders = std::move(folders),
                   now, leftOut = std::move(leftOut)](CleanupServices&) {
        GrowthKeeper(platform).keep(*folders, now, leftOut);
        platform.dispatcher->main([weak] {
            if (const auto self = weak.lock()) self->tellAnew();
        });
    });
}

void GrowthIntents::tellAnew() {
    ++stored_;
    if (asked_) answer(*asked_);
}

void GrowthIntents::onForgetGrowth(const Payload&) {
    cleanups_.run(
        [&platform = platform_, answers = answers_, weak = weak_from_this()](CleanupServices&) {
            std::optional<std::string> failure;
            try {
                answers->forget();
                platform.log->line("Velto ▶ crecimiento: los análisis guardados se han olvidado");
            } catch (const FileError& error) {
                failure = singleLine(error.what());
            }
            platform.dispatcher->main([weak, failure] {
                if (const auto self = weak.lock()) self->finishForgetting(failure);
            });
        });
}

/// What could not be removed is shown as before.
void GrowthIntents::finishForgetting(const std::optional<std::string>& failure) {
    if (failure) {
        platform_.log->line("Velto ▶ crecimiento: no se pudo olvidar: " + *failure);
        link_.toast("No se ha podido olvidar todo", "Not everything could be forgotten",
                    platform_.layout.dataFolder + "/Growth");
    }
    ++stored_;
    answer(asked_.value_or(GrowthSince{}));
}

}  // namespace velto
