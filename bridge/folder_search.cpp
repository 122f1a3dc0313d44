#include "bridge/folder_search.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "bridge/json_text.h"
#include "platform/folded_text.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr std::size_t mostFound = 200;

/// The words of a search, and whether a name holds all of them.
class Words {
public:
    explicit Words(std::string_view search) {
        const std::string folded = foldedText(search);
        for (std::size_t start = 0; start < folded.size();) {
            const std::size_t end = std::min(folded.find_first_of(" \t\n\r", start), folded.size());
            if (end > start) words_.push_back(folded.substr(start, end - start));
            start = end + 1;
        }
    }

    bool empty() const { return words_.empty(); }

    bool areIn(std::string_view name) {
        fold(name);
        return std::ranges::all_of(words_, [&](const std::string& word) {
            return folded_.find(word) != std::string::npos;
        });
    }

private:
    /// Most names are ASCII, which needs no tables.
    void fold(std::string_view name) {
        folded_.assign(name);
        for (char& letter : folded_) {
            if (static_cast<unsigned char>(letter) >= 0x80) {
                folded_ = foldedText(name);
                return;
            }
            letter = lowerCasedAscii(letter);
        }
    }

    std::vector<std::string> words_;
    std::string folded_;
};

/// Of the others nobody knows what they take, or it was not for the analysis to look.
bool isMeasured(const FolderTree::Folder& folder) {
    const FolderState state = folder.own.state;
    return state == FolderState::measured || (state == FolderState::unreadable && folder.bytes > 0);
}

std::vector<FolderTree::Index> matches(const FolderTree& tree, std::string_view text) {
    std::vector<FolderTree::Index> found;
    Words words(text);
    if (words.empty()) return found;
    for (FolderTree::Index index = 0; index < tree.size(); ++index) {
        if (isMeasured(tree[index]) && words.areIn(lastPathComponent(tree.name(index))))
            found.push_back(index);
    }
    return found;
}

}  // namespace

std::string foundFolders(const MeasuredFolders* measured, const FolderSearch& search) {
    static const FolderTree nothing;
    const FolderTree& tree = measured == nullptr ? nothing : *measured->tree;
    std::vector<FolderTree::Index> found = matches(tree, search.text);
    const std::size_t total = found.size();
    const auto shown = static_cast<std::ptrdiff_t>(std::min(total, mostFound));
    std::ranges::partial_sort(found, found.begin() + shown, [&](auto one, auto other) {
        return tree[one].bytes != tree[other].bytes ? tree[one].bytes > tree[other].bytes
                                                    : one < other;
    });
    found.resize(static_cast<std::size_t>(shown));

    const nlohmann::json text = validUtf8(search.text);
    std::string json = fmt::format(R"({{"request":{},"text":{},"total":{},"found":[)",
                                   search.request, text.dump(), total);
    for (const FolderTree::Index index : found) {
        if (json.back() == '}') json += ',';
        json += R"({"path":)";
        appendPathJson(json, tree.path(index));
        fmt::format_to(std::back_inserter(json), R"(,"bytes":{},"files":{},"latest":{}}})",
                       tree[index].bytes, tree[index].files, tree[index].latest);
    }
    return json + "]}";
}

}  // namespace velto
