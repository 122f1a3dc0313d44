#include "bridge/ExclusionIntents.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "bridge/events.h"
#include "platform/FileManager.h"
#include "platform/values/path_text.h"
#include "platform/values/text.h"

namespace velto {
namespace {

/// The chooser tells a path as the user came by it; the walk knows folders without links alone.
std::optional<std::string> resolved(const FileManager& files, const std::string& folder) {
    try {
        return files.resolved(folder);
    } catch (const FileError&) {
        return std::nullopt;
    }
}

struct Reason {
    std::string_view spanish;
    std::string_view english;
};

/// Why leaving the folder out makes no sense; nothing when it does.
std::optional<Reason> objection(const std::optional<std::string>& folder,
                                const HomeLayout& layout) {
    if (!folder) return Reason{"La carpeta ya no está.", "The folder is not there any more."};
    const auto& roots = layout.walkRoots;
    const auto holds = [&](const auto& root) { return isAtOrBelow(root, *folder); };
    if (*folder == "/" || std::ranges::any_of(roots, holds))
        return Reason{"No quedaría nada que analizar.", "Nothing would be left to analyze."};
    if (std::ranges::none_of(roots, [&](const auto& root) { return isAtOrBelow(*folder, root); }))
        return Reason{"Está fuera de tu carpeta personal, que es lo que se analiza.",
                      "It is outside your home folder, which is what gets analyzed."};
    return std::nullopt;
}

}  // namespace

void ExclusionIntents::onAddExclusion(const Payload& payload) {
    const auto path = payload::path(payload);
    if (path && path->starts_with('/')) exclude(*path);
}

void ExclusionIntents::onRemoveExclusion(const Payload& payload) {
    const auto path = payload::path(payload);
    if (!path) return;
    context_.exclusions.remove(*path);
    tell();
}

void ExclusionIntents::onExclusions(const Payload&) { tell(); }

void ExclusionIntents::onChooseExclusion(const Payload&) {
    const AppLanguage& language = context_.language;
    context_.shell.chooseFolder(
        {.title = std::string(language.text("Elige una carpeta que no se analice",
                                            "Choose a folder to leave out of the analysis")),
         .accept = std::string(language.text("Excluir", "Exclude")),
         .decline = std::string(language.text("Cancelar", "Cancel")),
         .startAt = context_.platform.layout.home},
        [weak = weak_from_this()](const std::optional<std::string>& folder) {
            const auto self = weak.lock();
            if (self && folder) self->excludeChosen(*folder);
        });
}

void ExclusionIntents::excludeChosen(const std::string& folder) {
    const auto path = resolved(*context_.platform.files, folder);
    if (const auto reason = objection(path, context_.platform.layout)) {
        context_.link.toast("No se puede excluir", "Can't be excluded",
                            context_.language.text(reason->spanish, reason->english));
        return;
    }
    exclude(*path);
}

/// Of a path that was left out already nothing is new: taking it back would take back the other.
void ExclusionIntents::exclude(const std::string& path) {
    const bool isNew = !context_.exclusions.isExcluded(path);
    context_.exclusions.add(path);
    if (isNew) {
        context_.link.evaluate(events::call("onExcluded", events::literal(pathText(path))));
    }
    context_.link.toast("Excluido del análisis", "Excluded from the analysis", path);
    tell();
}

void ExclusionIntents::tell() {
    context_.link.evaluate(events::exclusions(context_.exclusions.paths()));
}

}  // namespace velto
