#include "support/FakeDirectoryReader.h"

#include <algorithm>
#include <cerrno>

namespace velto {
namespace {

std::string_view nextName(std::string_view& path) {
    while (!path.empty() && path.front() == '/')
        path.remove_prefix(1);
    const std::string_view name = path.substr(0, path.find('/'));
    path.remove_prefix(name.size());
    return name;
}

bool isHidden(const FakeDirectoryReader::Node& node, const ReadOptions& options) {
    if (node.name.starts_with('.')) return true;
    if (!node.hiddenFlag) return false;
    return options.keepFlagged == nullptr ||
           std::ranges::find(*options.keepFlagged, node.name) == options.keepFlagged->end();
}

}  // namespace

class FakeDirectoryReader::Opened final : public OpenFolder {
public:
    Opened(Node& opened, std::atomic<std::int64_t>& openNow) : node(opened), openNow_(openNow) {}
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;
    ~Opened() override { --openNow_; }

    Node& node;

private:
    std::atomic<std::int64_t>& openNow_;
};

std::string FakeDirectoryReader::Node::path() const {
    std::string text;
    for (const Node* node = this; node->parent != nullptr; node = node->parent) {
        text.insert(0, "/" + node->name);
    }
    return text.empty() ? "/" : text;
}

FakeDirectoryReader::FakeDirectoryReader() { nodes_.push_back(std::make_unique<Node>()); }

FakeDirectoryReader::Node& FakeDirectoryReader::child(Node& parent, std::string_view name) {
    const auto found = parent.children.find(name);
    if (found != parent.children.end()) return *found->second;
    Node& node = *nodes_.emplace_back(std::make_unique<Node>());
    node.name = name;
    node.parent = &parent;
    node.inode = nodes_.size();
    parent.children.emplace(node.name, &node);
    return node;
}

FakeDirectoryReader::Node& FakeDirectoryReader::folder(std::string_view path) {
    Node* node = nodes_.front().get();
    for (auto name = nextName(path); !name.empty(); name = nextName(path)) {
        node = &child(*node, name);
    }
    return *node;
}

FakeDirectoryReader::Node& FakeDirectoryReader::file(std::string_view path,
                                                     std::int64_t allocatedSize,
                                                     std::int64_t logicalSize) {
    Node& node = entry(path, EntryKind::regular);
    node.allocatedSize = allocatedSize;
    node.logicalSize = logicalSize;
    return node;
}

FakeDirectoryReader::Node& FakeDirectoryReader::fileIn(Node& parent, std::string_view name,
                                                       std::int64_t allocatedSize) {
    Node& node = child(parent, name);
    node.kind = EntryKind::regular;
    node.allocatedSize = allocatedSize;
    return node;
}

FakeDirectoryReader::Node& FakeDirectoryReader::entry(std::string_view path, EntryKind kind) {
    Node& node = folder(path);
    node.kind = kind;
    return node;
}

FakeDirectoryReader::Node* FakeDirectoryReader::find(std::string_view path) {
    Node* node = nodes_.front().get();
    for (auto name = nextName(path); !name.empty(); name = nextName(path)) {
        const auto found = node->children.find(name);
        if (found == node->children.end()) return nullptr;
        node = found->second;
    }
    return node;
}

std::shared_ptr<OpenFolder> FakeDirectoryReader::openNode(Node* node) {
    const auto refusal = [&] {
        if (node == nullptr) return ENOENT;
        if (node->kind == EntryKind::symbolicLink || node->isLinkMeanwhile) return ELOOP;
        return node->kind == EntryKind::folder ? node->openError : ENOTDIR;
    }();
    if (refusal != 0) {
        errno = refusal;
        return nullptr;
    }
    ++opened_;
    const std::int64_t now = ++openNow_;
    std::int64_t most = mostOpen_;
    while (now > most && !mostOpen_.compare_exchange_weak(most, now)) {
    }
    return std::make_shared<Opened>(*node, openNow_);
}

std::shared_ptr<OpenFolder> FakeDirectoryReader::open(const std::string& path) {
    return openNode(find(path));
}

std::shared_ptr<OpenFolder> FakeDirectoryReader::openChild(OpenFolder& parent,
                                                           std::string_view name) {
    const auto& children = dynamic_cast<Opened&>(parent).node.children;
    const auto found = children.find(name);
    return openNode(found == children.end() ? nullptr : found->second);
}

bool FakeDirectoryReader::read(OpenFolder& folder, const ReadOptions& options, EntryList& entries) {
    const Node& node = dynamic_cast<Opened&>(folder).node;
    if (beforeRead) beforeRead(node);
    {
        const std::lock_guard guard(lock_);
        read_.push_back(&node);
    }
    for (const auto& [name, child] : node.children) {
        if (options.skipHidden && isHidden(*child, options)) continue;
        DirectoryEntry& entry = entries.add(name);
        entry.kind = child->kind;
        entry.hiddenFlag = child->hiddenFlag;
        if (options.sizeEveryEntry) entry.logicalSize = child->logicalSize;
        const bool isFile = child->kind == EntryKind::regular ||
                            (options.allocatedOfEveryFile && child->kind != EntryKind::folder);
        if (!isFile) continue;
        entry.inode = child->inode;
        entry.links = child->links;
        entry.allocatedSize = child->allocatedSize;
        entry.logicalSize = child->logicalSize;
        entry.accessed = child->accessed;
        entry.modified = child->modified;
    }
    errno = node.listError;
    return node.listError == 0;
}

bool FakeDirectoryReader::status(OpenFolder& folder, std::string_view name, FolderStatus& status) {
    const Node* node = &dynamic_cast<Opened&>(folder).node;
    if (!name.empty()) {
        const auto found = node->children.find(name);
        node = found == node->children.end() ? nullptr : found->second;
    }
    if (node == nullptr || node->kind != EntryKind::folder) {
        errno = node == nullptr ? ENOENT : ENOTDIR;
        return false;
    }
    status = {
        .inode = node->inode, .allocatedSize = node->allocatedSize, .modified = node->modified};
    const auto inherited = [&](std::optional<std::uint64_t> Node::*field) {
        const Node* holder = node;
        while (holder != nullptr && !(holder->*field))
            holder = holder->parent;
        return holder == nullptr ? 0 : *(holder->*field);
    };
    status.device = inherited(&Node::device);
    status.mount = inherited(&Node::mount);
    return true;
}

void FakeDirectoryReader::remove(std::string_view path) {
    if (Node* node = find(path)) node->parent->children.erase(node->name);
}

void FakeDirectoryReader::move(std::string_view from, std::string_view to) {
    Node* node = find(from);
    if (node == nullptr) return;
    node->parent->children.erase(node->name);
    const std::size_t slash = to.rfind('/');
    node->parent = &folder(to.substr(0, slash));
    node->name = to.substr(slash + 1);
    node->parent->children.emplace(node->name, node);
}

void FakeDirectoryReader::forgetRead() {
    const std::lock_guard guard(lock_);
    read_.clear();
}

std::vector<std::string> FakeDirectoryReader::readFolders() const {
    const std::lock_guard guard(lock_);
    std::vector<std::string> paths;
    for (const Node* node : read_)
        paths.push_back(node->path());
    std::ranges::sort(paths);
    return paths;
}

}  // namespace velto
