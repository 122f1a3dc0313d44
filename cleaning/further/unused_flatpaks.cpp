#include "cleaning/further/unused_flatpaks.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <memory>

#include <fmt/format.h>

#include "cleaning/further/tool_answers.h"
#include "platform/parallel.h"
#include "platform/values/text.h"
#include "platform/walk/TreeWalk.h"

namespace velto {
namespace {

constexpr std::string_view runtimeKind = "runtime/";
constexpr std::int64_t mostMetadata = 256 * 1024;  // bytes
// A deployed file is a name of one in Flatpak's store, which goes when no other name is left.
constexpr std::size_t namesInStore = 1;

std::string_view withoutKind(std::string_view ref) {
    if (ref.starts_with(runtimeKind)) ref.remove_prefix(runtimeKind.size());
    return ref;
}

/// ID/ARCH/BRANCH of letters that may stand in a path and in a command.
bool isRef(std::string_view text) {
    if (std::ranges::count(text, '/') != 2) return false;
    for (int part = 0; part < 3; ++part) {
        const std::string_view name = nextPart(text, '/');
        if (name.empty() || name.front() == '.' || name.front() == '-') return false;
        if (!std::ranges::all_of(name, [](char letter) {
                return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
                       (letter >= '0' && letter <= '9') || letter == '.' || letter == '_' ||
                       letter == '-' || letter == '+';
            }))
            return false;
    }
    return true;
}

/// "*" stands for any text. Goes back to the last star only: no pattern takes long.
bool fits(std::string_view text, std::string_view pattern) {
    std::size_t at = 0;
    std::size_t in = 0;
    std::size_t star = std::string_view::npos;
    std::size_t afterStar = 0;  // in the text
    while (at < text.size()) {
        if (in < pattern.size() && pattern[in] == '*') {
            star = in++;
            afterStar = at;
        } else if (in < pattern.size() && pattern[in] == text[at]) {
            ++in;
            ++at;
        } else if (star != std::string_view::npos) {
            in = star + 1;
            at = ++afterStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', in) == std::string_view::npos;
}

std::string_view idOf(std::string_view ref) { return ref.substr(0, ref.find('/')); }
std::string_view branchOf(std::string_view ref) { return ref.substr(ref.rfind('/') + 1); }

struct Flatpak {
    InstalledFlatpak installed;
    FlatpakMetadata metadata;
    std::string folder;  // of all that was deployed of it
    bool isUsed = false;
};

/// Throws FileError when it cannot be told what it uses.
Flatpak readFlatpak(const FileManager& files, InstalledFlatpak installed,
                    const FlatpakInstallations& installations) {
    const std::string& root = installed.isUsers ? installations.user : installations.system;
    const bool isApplication = !installed.runtime.empty();
    std::string folder =
        fmt::format("{}/{}/{}", root, isApplication ? "app" : "runtime", installed.ref);
    FlatpakMetadata metadata = flatpakMetadata(
        files.read(folder + "/active/metadata", anyFile(mostMetadata)), branchOf(installed.ref));
    return {std::move(installed), std::move(metadata), std::move(folder), isApplication};
}

bool isTakenUpBy(const Flatpak& extension, const Flatpak& user) {
    const std::string_view ref = extension.installed.ref;
    const std::string_view id = idOf(ref);
    const std::string_view of = extension.metadata.extensionOf;
    if (!of.empty() && withoutKind(of) == user.installed.ref) return true;
    return std::ranges::any_of(user.metadata.extensions, [&](const auto& wanted) {
        const bool isNamed = id == wanted.name || id.starts_with(wanted.name + ".");
        return isNamed &&
               std::ranges::find(wanted.branches, branchOf(ref)) != wanted.branches.end();
    });
}

bool isNeededBy(const Flatpak& one, const Flatpak& user) {
    return one.installed.ref == user.installed.runtime || one.installed.ref == user.metadata.sdk ||
           isTakenUpBy(one, user);
}

/// Marks what is used, from the applications and pins on.
void markUsed(std::vector<Flatpak>& flatpaks, const std::vector<std::string>& pins) {
    std::vector<const Flatpak*> asked;
    for (Flatpak& one : flatpaks) {
        one.isUsed = one.isUsed || std::ranges::any_of(pins, [&](const std::string& pin) {
                         return fitsPattern(one.installed.ref, pin);
                     });
        if (one.isUsed) asked.push_back(&one);
    }
    while (!asked.empty()) {
        const Flatpak& user = *asked.back();
        asked.pop_back();
        for (Flatpak& one : flatpaks) {
            if (one.isUsed || !isNeededBy(one, user)) continue;
            one.isUsed = true;
            asked.push_back(&one);
        }
    }
}

struct StoredFile {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    auto operator<=>(const StoredFile&) const = default;  // NOLINT(modernize-use-nullptr)
};

/// A file by the names that were met of it.
struct Names {
    std::int64_t bytes = 0;
    std::size_t met = 0;
    std::size_t all = 0;
    std::size_t root = 0;  // the first of the runtimes that have it
};

class NamesVisitor final : public TreeVisitor {
public:
    bool begin(const WalkedFolder&, const FolderStatus& status) override {
        device_ = status.device;
        return true;
    }
    void file(const WalkedFolder& folder, const DirectoryEntry& entry, const Place*) override {
        const std::size_t root = folder.root();
        Names& names = found.try_emplace({device_, entry.inode}, Names{.root = root}).first->second;
        names.bytes = std::max<std::int64_t>(entry.allocatedSize, 0);
        names.all = entry.links;
        names.root = std::min(names.root, root);
        ++names.met;
    }

    std::map<StoredFile, Names> found;

private:
    std::uint64_t device_ = 0;  // of the folder whose turn it is
};

/// What goes with each folder when all of them go.
std::vector<std::int64_t> bytesThatGo(DirectoryReader& reader,
                                      const std::vector<std::string>& folders) {
    std::vector<WalkRoot> roots;
    for (const std::string& folder : folders)
        roots.push_back({.path = folder, .resolved = folder});
    std::vector<std::unique_ptr<NamesVisitor>> workers;
    std::vector<TreeVisitor*> visitors;
    for (std::size_t thread = 0; thread < processorCount(); ++thread) {
        workers.push_back(std::make_unique<NamesVisitor>());
        visitors.push_back(workers.back().get());
    }
    TreeWalk(reader).run(roots, visitors, {.folderStatus = true});
    std::map<StoredFile, Names> all;
    for (const auto& worker : workers) {
        for (const auto& [file, names] : worker->found) {
            const auto [place, isNew] = all.try_emplace(file, names);
            if (isNew) continue;
            place->second.met += names.met;
            place->second.root = std::min(place->second.root, names.root);
        }
    }
    std::vector<std::int64_t> bytes(folders.size());
    for (const auto& [file, names] : all) {
        if (names.met + namesInStore >= names.all) bytes[names.root] += names.bytes;
    }
    return bytes;
}

std::optional<std::vector<InstalledFlatpak>> installedFlatpaks(std::string_view answer,
                                                               bool areApplications) {
    std::vector<InstalledFlatpak> installed;
    while (!answer.empty()) {
        std::string_view line = trimmedAnswer(nextPart(answer, '\n'));
        if (line.empty()) continue;
        const std::string_view ref = withoutKind(trimmedAnswer(nextPart(line, '\t')));
        const std::string_view runtime =
            areApplications ? withoutKind(trimmedAnswer(nextPart(line, '\t'))) : "";
        const std::string_view installation = trimmedAnswer(line);
        if (!isRef(ref) || (areApplications && !isRef(runtime))) return std::nullopt;
        if (installation != "user" && installation != "system") return std::nullopt;
        installed.push_back({std::string(ref), std::string(runtime), installation == "user"});
    }
    return installed;
}

ToolPart partOf(const InstalledFlatpak& runtime, std::int64_t bytes) {
    std::string_view rest = runtime.ref;
    const std::string_view name = nextPart(rest, '/');
    const std::string_view branch = rest.substr(rest.find('/') + 1);
    return {
        .name = fmt::format("{} {}", name, branch),
        .bytes = bytes,
        .command = fmt::format("flatpak uninstall {} {}{}", runtime.isUsers ? "--user" : "--system",
                               runtimeKind, runtime.ref)};
}

}  // namespace

std::optional<ToolMeasure> measureUnusedFlatpaks(const Platform& platform,
                                                 const std::vector<std::string>& tools,
                                                 const FlatpakInstallations& installations) {
    const auto ask = [&](const std::vector<std::string>& arguments) {
        return toolAnswer(platform, "flatpak", arguments, tools);
    };
    const auto applications = ask({"list", "--app", "--columns=ref,runtime,installation"});
    const auto runtimes = ask({"list", "--runtime", "--all", "--columns=ref,installation"});
    const auto usersPins = ask({"pin", "--user"});
    const auto systemPins = ask({"pin", "--system"});
    if (!applications || !runtimes || !usersPins || !systemPins) return std::nullopt;
    std::vector<Flatpak> flatpaks;
    for (const auto& listed :
         {installedApplications(*applications), installedRuntimes(*runtimes)}) {
        if (!listed) return std::nullopt;
        try {
            for (const InstalledFlatpak& one : *listed)
                flatpaks.push_back(readFlatpak(*platform.files, one, installations));
        } catch (const FileError&) {
            return std::nullopt;
        }
    }
    std::vector<std::string> pins = pinnedPatterns(*usersPins);
    std::ranges::move(pinnedPatterns(*systemPins), std::back_inserter(pins));
    markUsed(flatpaks, pins);
    std::erase_if(flatpaks, [](const Flatpak& one) { return one.isUsed; });

    std::vector<std::string> folders;
    for (const Flatpak& one : flatpaks)
        folders.push_back(one.folder);
    const std::vector<std::int64_t> bytes = bytesThatGo(*platform.directories, folders);
    ToolMeasure measure;
    for (std::size_t index = 0; index < flatpaks.size(); ++index) {
        measure.bytes += bytes[index];
        if (bytes[index] > 0)
            measure.parts.push_back(partOf(flatpaks[index].installed, bytes[index]));
    }
    std::ranges::stable_sort(measure.parts, std::greater(), &ToolPart::bytes);
    return measure;
}

std::optional<std::vector<InstalledFlatpak>> installedApplications(std::string_view answer) {
    return installedFlatpaks(answer, true);
}

std::optional<std::vector<InstalledFlatpak>> installedRuntimes(std::string_view answer) {
    return installedFlatpaks(answer, false);
}

std::vector<std::string> pinnedPatterns(std::string_view answer) {
    std::vector<std::string> patterns;
    while (!answer.empty()) {
        const std::string_view line = nextPart(answer, '\n');
        const std::string_view pattern = withoutKind(trimmedAnswer(line));
        // The heading begins its line, and the patterns do not.
        if (line.starts_with(' ') && !pattern.empty()) patterns.emplace_back(pattern);
    }
    return patterns;
}

bool fitsPattern(std::string_view ref, std::string_view pattern) {
    constexpr int parts = 3;
    pattern = withoutKind(pattern);
    for (int part = 0; part < parts; ++part) {
        const std::string_view wanted = nextPart(pattern, '/');
        const std::string_view name = nextPart(ref, '/');
        if (!wanted.empty() && !fits(name, wanted)) return false;
    }
    return true;
}

FlatpakMetadata flatpakMetadata(std::string_view text, std::string_view branch) {
    constexpr std::string_view extensionPoint = "Extension ";
    FlatpakMetadata metadata;
    std::string_view group;
    while (!text.empty()) {
        std::string_view line = trimmedAnswer(nextPart(text, '\n'));
        if (line.starts_with('[') && line.ends_with(']')) {
            group = line.substr(1, line.size() - 2);
            if (group.starts_with(extensionPoint)) {
                // "NAME@TAG" is a second one of that name.
                const std::string_view name = group.substr(extensionPoint.size());
                metadata.extensions.push_back({std::string(name.substr(0, name.find('@'))), {}});
            }
            continue;
        }
        if (!line.contains('=')) continue;
        const std::string_view key = trimmedAnswer(nextPart(line, '='));
        std::string_view value = trimmedAnswer(line);
        if ((group == "Runtime" || group == "Application") && key == "sdk")
            metadata.sdk = withoutKind(value);
        if (group == "ExtensionOf" && key == "ref") metadata.extensionOf = value;
        if (!group.starts_with(extensionPoint) || (key != "version" && key != "versions")) continue;
        while (!value.empty())
            metadata.extensions.back().branches.emplace_back(nextPart(value, ';'));
    }
    for (auto& extension : metadata.extensions) {
        if (extension.branches.empty()) extension.branches.emplace_back(branch);
    }
    return metadata;
}

}  // namespace velto
