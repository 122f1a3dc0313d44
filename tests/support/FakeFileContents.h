#pragma once

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/FileContent.h"

namespace velto {

/// Files in memory whose every read is seen and may be tampered with. Filled before use; safe from
/// every thread afterwards.
class FakeFileContents final : public FileContentReader {
public:
    struct File {
        std::string content;
        int openError = 0;
        int readError = 0;
        std::int64_t readErrorFrom = 0;      // offset from which on reads fail
        int interruptions = 0;               // reads that fail with EINTR before one succeeds
        std::size_t longestRead = SIZE_MAX;  // short reads
        std::int64_t sizeAfterReads = -1;    // size once it has been read, when not -1
        std::optional<FileStamp> stamp{};    // of its length; none: the system does not say
        std::optional<FileStamp> stampAfterReads{};  // once it has been read, when there is one
        std::optional<FilePlace> place{};            // none: the system does not say
        int opensBeforeItIsGone = -1;                // it is gone after so many, when not -1
        std::size_t endsAt = SIZE_MAX;               // where reads meet its end, whatever its size
    };
    struct Read {
        std::string path;
        std::int64_t offset;
        std::size_t wanted;
        std::size_t given;
    };

    std::map<std::string, File> files;

    /// Called before each read, on the reading thread, without a lock.
    std::function<void(const std::string& path, std::int64_t offset)> beforeRead;

    std::unique_ptr<FileContent> open(const std::string& path) override {
        const auto found = files.find(path);
        errno = found == files.end() ? ENOENT : found->second.openError;
        if (errno != 0) return nullptr;
        const std::int64_t before = counted(path);
        if (found->second.opensBeforeItIsGone >= 0 && before >= found->second.opensBeforeItIsGone) {
            errno = ENOENT;
            return nullptr;
        }
        ++opened_;
        return std::make_unique<Content>(*this, path, found->second);
    }

    std::optional<FileStamp> stamp(const std::string& path) override {
        const auto found = files.find(path);
        return found == files.end() ? std::nullopt : found->second.stamp;
    }

    std::optional<FilePlace> place(const std::string& path) override {
        const auto found = files.find(path);
        return found == files.end() ? std::nullopt : found->second.place;
    }

    std::vector<Read> reads() const {
        const std::lock_guard guard(lock_);
        return reads_;
    }
    /// Bytes that were read of a file, over all readings.
    std::int64_t bytesRead(const std::string& path) const {
        std::int64_t sum = 0;
        for (const Read& read : reads()) {
            if (read.path == path) sum += static_cast<std::int64_t>(read.given);
        }
        return sum;
    }
    std::int64_t opened() const { return opened_; }

    /// The most that were open at a time.
    std::int64_t mostOpen() const { return mostOpen_; }

private:
    /// So often has it been opened before; counts this time too.
    std::int64_t counted(const std::string& path) {
        const std::lock_guard guard(lock_);
        return opens_[path]++;
    }

    class Content final : public FileContent {
    public:
        Content(FakeFileContents& owner, std::string path, const File& file)
            : owner_(owner),
              path_(std::move(path)),
              file_(file),
              interruptions_(file.interruptions) {
            const std::lock_guard guard(owner_.lock_);
            owner_.mostOpen_ = std::max(owner_.mostOpen_, ++owner_.open_);
        }
        ~Content() override {
            const std::lock_guard guard(owner_.lock_);
            --owner_.open_;
        }

        std::int64_t size() const override {
            if (wasRead_ && file_.sizeAfterReads >= 0) return file_.sizeAfterReads;
            return static_cast<std::int64_t>(file_.content.size());
        }

        std::optional<FileStamp> stamp() const override {
            return wasRead_ && file_.stampAfterReads ? file_.stampAfterReads : file_.stamp;
        }

        std::ptrdiff_t read(std::int64_t offset, std::span<std::byte> buffer) override {
            if (owner_.beforeRead) owner_.beforeRead(path_, offset);
            if (interruptions_ > 0) {
                --interruptions_;
                errno = EINTR;
                return -1;
            }
            interruptions_ = file_.interruptions;
            if (file_.readError != 0 && offset >= file_.readErrorFrom) {
                errno = file_.readError;
                return -1;
            }
            const std::size_t end = std::min(file_.content.size(), file_.endsAt);
            const auto start = std::min(static_cast<std::size_t>(offset), end);
            const std::size_t length = std::min({buffer.size(), end - start, file_.longestRead});
            std::memcpy(buffer.data(), file_.content.data() + start, length);
            wasRead_ = true;
            const std::lock_guard guard(owner_.lock_);
            owner_.reads_.push_back({path_, offset, buffer.size(), length});
            return static_cast<std::ptrdiff_t>(length);
        }

    private:
        FakeFileContents& owner_;
        std::string path_;
        const File& file_;
        int interruptions_;
        bool wasRead_ = false;
    };

    std::atomic<std::int64_t> opened_{0};
    mutable std::mutex lock_;
    std::vector<Read> reads_;
    std::map<std::string, std::int64_t> opens_;
    std::int64_t open_ = 0;
    std::int64_t mostOpen_ = 0;
};

}  // namespace velto
