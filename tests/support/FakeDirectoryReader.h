#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/DirectoryReader.h"

namespace velto {

/// A file system of the test's own making: exact sizes and dates, unreadable things, any depth.
/// Built before the walk; safe from every thread during it.
class FakeDirectoryReader final : public DirectoryReader {
public:
    struct Node {
        std::string name;
        Node* parent = nullptr;
        EntryKind kind = EntryKind::folder;
        bool hiddenFlag = false;
        std::int64_t allocatedSize = 0;
        std::int64_t logicalSize = 0;
        double accessed = 0;
        double modified = 0;
        std::uint64_t inode = 0;              // unique, unless the test makes two names of one file
        std::uint32_t links = 1;              // names that the file has
        std::optional<std::uint64_t> device;  // none: that of the folder above
        std::optional<std::uint64_t> mount;   // the same
        int openError = 0;                    // errno with which opening the folder fails
        int listError = 0;             // errno with which listing it fails, after its entries
        bool isLinkMeanwhile = false;  // listed as a folder, but a link by the time it is opened
        std::map<std::string, Node*, std::less<>> children;

        std::string path() const;
    };

    FakeDirectoryReader();

    /// The folder at an absolute path, made with those above it when it is missing.
    Node& folder(std::string_view path);
    /// A regular file of that many allocated bytes (-1: the system does not say).
    Node& file(std::string_view path, std::int64_t allocatedSize, std::int64_t logicalSize = 0);
    Node& entry(std::string_view path, EntryKind kind);
    /// Without the way down from the top, for trees too deep for paths.
    Node& folderIn(Node& parent, std::string_view name) { return child(parent, name); }
    Node& fileIn(Node& parent, std::string_view name, std::int64_t allocatedSize = 1);

    std::shared_ptr<OpenFolder> open(const std::string& path) override;
    std::shared_ptr<OpenFolder> openChild(OpenFolder& parent, std::string_view name) override;
    bool read(OpenFolder& folder, const ReadOptions& options, EntryList& entries) override;
    bool status(OpenFolder& folder, std::string_view name, FolderStatus& status) override;

    /// Called before a folder is read, on the reading thread.
    std::function<void(const Node& folder)> beforeRead;

    std::int64_t mostOpen() const { return mostOpen_; }
    std::int64_t openNow() const { return openNow_; }
    std::int64_t opened() const { return opened_; }
    /// The paths of the folders that were read, sorted.
    std::vector<std::string> readFolders() const;
    void forgetRead();

    // Between walks. Paths of which nothing is there are ignored.
    Node* nodeAt(std::string_view path) { return find(path); }
    void remove(std::string_view path);
    /// To a name that is free, in a folder that is there.
    void move(std::string_view from, std::string_view to);

private:
    class Opened;

    Node& child(Node& parent, std::string_view name);
    Node* find(std::string_view path);
    std::shared_ptr<OpenFolder> openNode(Node* node);

    std::vector<std::unique_ptr<Node>> nodes_;  // flat: deep trees must not recurse at the end
    std::atomic<std::int64_t> openNow_{0};
    std::atomic<std::int64_t> mostOpen_{0};
    std::atomic<std::int64_t> opened_{0};
    mutable std::mutex lock_;
    std::vector<const Node*> read_;
};

}  // namespace velto
