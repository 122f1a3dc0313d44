#include <algorithm>
#include <unordered_set>

#include "uninstall/Leftovers.h"
#include "uninstall/words.h"

namespace velto::Leftovers {
namespace {

std::string pathIn(const std::string& folder, const std::string& name) {
    return folder + "/" + name;
}

using Tokens = std::unordered_set<std::string>;

std::vector<std::string> namesIn(const FileManager& files, const std::string& folder) {
    try {
        return files.list(folder);
    } catch (const FileError&) {
        return {};  // what cannot be read contributes nothing
    }
}

bool isClosed(const Gate& gate, const std::string& folder) { return gate && gate(folder); }

/// A link to a folder counts as one, as it does for whoever opens it.
bool isFolder(const FileManager& files, const std::string& path) {
    const auto attributes = files.attributes(path);
    if (!attributes) return false;
    if (attributes->kind != FileKind::symbolicLink) return attributes->kind == FileKind::folder;
    try {
        const auto target = files.attributes(files.resolved(path));
        return target && target->kind == FileKind::folder;
    } catch (const FileError&) {
        return false;  // leads nowhere
    }
}

/// Searches one root.
class Search {
public:
    Search(const FileManager& files, const Locale& locale, Tokens tokens,
           std::optional<std::string> second, std::string cat, const Gate& gate)
        : files_(files),
          locale_(locale),
          tokens_(std::move(tokens)),
          second_(std::move(second)),
          cat_(std::move(cat)),
          gate_(gate) {}

    void run(const std::string& root, int limit, std::vector<Candidate>& found) const {
        int opened = 0;
        for (const std::string& name : namesIn(files_, root)) {
            if (name.starts_with('.')) return;
            const std::string path = pathIn(root, name);
            if (!isFolder(files_, path)) continue;
            const std::string lower = locale_.lowerCased(name);
            if (tokens_.contains(lower) && lower != second_) {
                found.push_back(match(path));
                continue;
            }
            if (isClosed(gate_, path)) continue;
            if (opened == limit) return;
            ++opened;
            for (const std::string& child : namesIn(files_, path)) {
                if (tokens_.contains(locale_.lowerCased(child))) {
                    found.push_back(match(pathIn(path, child)));
                }
            }
            if (opened == limit) return;
        }
    }

private:
    Candidate match(std::string path) const {
        return {.path = std::move(path), .cat = cat_, .conf = Conf::possible};
    }

    const FileManager& files_;
    const Locale& locale_;
    Tokens tokens_;
    std::optional<std::string> second_;
    std::string cat_;
    const Gate& gate_;
};

}  // namespace

std::vector<Candidate> searchByName(const FileManager& files, const Locale& locale,
                                    const std::string& name, const std::vector<std::string>& roots,
                                    const std::string& cat, int limit, const Gate& gate) {
    const auto tokens = nameTokens(name, locale);
    std::vector<Candidate> found;
    if (tokens.empty()) return found;
    const Search search(files, locale, Tokens(tokens.begin(), tokens.end()),
                        secondWord(name, locale), cat, gate);
    for (const std::string& root : roots)
        search.run(root, limit, found);
    return found;
}

std::vector<Candidate> expand(const FileManager& files, const Candidate& candidate, int limit,
                              const Gate& gate) {
    if (!candidate.prefix) return {candidate};
    const std::size_t slash = candidate.path.rfind('/');
    if (slash == std::string::npos || slash == 0) return {};
    const std::string folder = candidate.path.substr(0, slash);
    const std::string prefix = candidate.path.substr(slash + 1);
    if (prefix.empty() || isClosed(gate, folder)) return {};
    std::vector<std::string> names = namesIn(files, folder);
    std::erase_if(names, [&](const std::string& name) { return !name.starts_with(prefix); });
    std::ranges::sort(names);
    if (names.size() > static_cast<std::size_t>(limit)) {
        names.resize(static_cast<std::size_t>(limit));
    }
    std::vector<Candidate> expanded;
    for (const std::string& name : names) {
        Candidate one = candidate;
        one.path = pathIn(folder, name);
        one.prefix = false;
        expanded.push_back(std::move(one));
    }
    return expanded;
}

}  // namespace velto::Leftovers
