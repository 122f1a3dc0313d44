#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/ApplicationShell.h"
#include "platform/Platform.h"

namespace velto {

/// Keeps the log's lines.
class FakeLog final : public Log {
public:
    void line(std::string_view text) override {
        const std::lock_guard lock(mutex_);
        lines_.emplace_back(text);
    }
    std::vector<std::string> lines() const {
        const std::lock_guard lock(mutex_);
        return lines_;
    }
    bool holds(std::string_view text) const {
        const auto all = lines();
        return std::find(all.begin(), all.end(), text) != all.end();
    }
    void clear() {
        const std::lock_guard lock(mutex_);
        lines_.clear();
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
};

/// A clock that the test sets.
class FakeClock final : public Clock {
public:
    double now() const override { return time; }
    double monotonic() const override { return time; }

    double time = 1'700'000'000;
};

/// Waits by moving the clock on.
class FakeSleeper final : public Sleeper {
public:
    explicit FakeSleeper(FakeClock& clock) : clock_(clock) {}
    void sleep(std::int64_t microseconds) override {
        ++sleeps;
        clock_.time += static_cast<double>(microseconds) / 1e6;
        if (onSleep) onSleep();
    }

    int sleeps = 0;
    std::function<void()> onSleep;

private:
    FakeClock& clock_;
};

/// The icon that the test names for a path.
class FakeIcons final : public Icons {
public:
    std::optional<std::string> pngDataURL(const std::string& path, int pixels) override {
        const std::lock_guard lock(mutex_);
        asked.emplace_back(path, pixels);
        const auto found = icons.find(path);
        return found == icons.end() ? std::nullopt : std::optional(found->second);
    }

    std::map<std::string, std::string> icons;
    std::vector<std::pair<std::string, int>> asked;

private:
    std::mutex mutex_;
};

/// Running applications in the test's hands.
class FakeRunningApplications final : public RunningApplications {
public:
    struct Process {
        RunningApplication application;
        bool ignoresTerminate = false;
        bool terminated = false;
        int asked = 0;
        int forced = 0;
    };

    std::vector<RunningApplication> list() override {
        std::vector<RunningApplication> running;
        for (const auto& process : processes) {
            if (!process->terminated) running.push_back(process->application);
        }
        return running;
    }
    std::unique_ptr<ProcessControl> control(const RunningApplication& application) override {
        for (const auto& process : processes) {
            if (process->application.process == application.process && !process->terminated) {
                return std::make_unique<Control>(*process);
            }
        }
        return nullptr;
    }
    void observe(std::function<void(const RunningApplication&)> used) override {
        ++observers;
        onUse = std::move(used);
    }

    Process& add(RunningApplication application) {
        if (application.process == 0) {
            application.process = 100 + static_cast<std::int64_t>(processes.size());
        }
        processes.push_back(std::make_unique<Process>(Process{.application = application}));
        return *processes.back();
    }

    std::vector<std::unique_ptr<Process>> processes;
    std::function<void(const RunningApplication&)> onUse;
    int observers = 0;

private:
    class Control final : public ProcessControl {
    public:
        explicit Control(Process& process) : process_(process) {}
        void terminate() override {
            ++process_.asked;
            if (!process_.ignoresTerminate) process_.terminated = true;
        }
        void forceTerminate() override {
            ++process_.forced;
            process_.terminated = true;
        }
        bool isTerminated() override { return process_.terminated; }

    private:
        Process& process_;
    };
};

class FakeVolumeInfo final : public VolumeInfo {
public:
    std::optional<std::int64_t> totalCapacity(const std::string&) const override { return total; }
    std::optional<std::int64_t> availableCapacity(const std::string&) const override {
        return available;
    }
    std::optional<std::int64_t> reservedCapacity(const std::string&) const override {
        return reserved;
    }
    std::optional<std::int64_t> purgeableCapacity(const std::string&) const override {
        return purgeable;
    }
    std::vector<MountedVolume> volumesBelow(const std::string&) const override { return volumes; }

    std::optional<std::int64_t> total = 500'000'000'000;
    std::optional<std::int64_t> available = 125'000'000'000;
    std::optional<std::int64_t> reserved;
    std::optional<std::int64_t> purgeable;
    std::vector<MountedVolume> volumes;
};

class FakeUserDefaults final : public UserDefaults {
public:
    std::optional<DefaultsValue> value(const std::string& key) const override {
        const auto found = values.find(key);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
    void setValue(const std::string& key, DefaultsValue value) override {
        values[key] = std::move(value);
    }
    void remove(const std::string& key) override { values.erase(key); }

    std::map<std::string, DefaultsValue> values;
};

class FakeLocale final : public Locale {
public:
    std::vector<std::string> preferredLanguages() const override { return languages; }
    std::string decimal(double value, std::string_view) const override {
        return std::to_string(value);
    }
    int compare(std::string_view left, std::string_view right) const override {
        return left.compare(right);
    }
    std::string lowerCased(std::string_view text) const override {
        std::string result(text);
        for (char& letter : result) {
            if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
        }
        return result;
    }

    std::vector<std::string> languages{"en-US"};
};

/// Answers every run with `result` and keeps what was asked.
class FakeToolRunner final : public ToolRunner {
public:
    ToolResult run(const std::string& path, const std::vector<std::string>& arguments) override {
        std::vector<std::string> command{path};
        command.insert(command.end(), arguments.begin(), arguments.end());
        commands.push_back(std::move(command));
        return result;
    }
    ToolResult read(const std::string& path, const std::vector<std::string>& arguments) override {
        ToolResult answer = run(path, arguments);
        std::string asked = path.substr(path.rfind('/') + 1);
        auto output = outputs.find(asked);
        for (const std::string& argument : arguments) {
            if (output != outputs.end()) break;
            output = outputs.find(asked += " " + argument);
        }
        if (output != outputs.end()) answer.standardOutput = output->second;
        return answer;
    }

    /// Of `read`, by the tool's name, or that with the first of its arguments.
    std::map<std::string, std::string> outputs;
    ToolResult result{.started = true, .startError = "", .exitStatus = 0, .standardError = ""};
    std::vector<std::vector<std::string>> commands;
};

/// Owns one entry.
class FakePackageService final : public PackageService {
public:
    PackageKeeper keeper() const override { return kind; }
    std::optional<Package> owner(const std::string& desktopEntry) override {
        fail();
        return desktopEntry == entry ? std::optional(package) : std::nullopt;
    }
    std::vector<Package> removedWith(const Package&) override {
        fail();
        return others;
    }
    void remove(const Package& gone, bool withOthers) override {
        removed.push_back(gone.identifier + (withOthers ? " and others" : ""));
        if (refusal) throw PackageError(*refusal, "in its own words");
    }

    PackageKeeper kind = PackageKeeper::distribution;
    std::string entry = "/usr/share/applications/org.example.Maps.desktop";
    Package package{"example-maps", "example-maps;1.0;amd64;installed"};
    std::vector<Package> others;
    std::optional<PackageError::Reason> failure;  // of looking
    std::optional<PackageError::Reason> refusal;  // of removing
    std::vector<std::string> removed;

private:
    void fail() const {
        if (failure) throw PackageError(*failure, "in its own words");
    }
};

class FakeWorkspace final : public Workspace {
public:
    void openURL(const std::string& url) override { openedURLs.push_back(url); }
    void reveal(const std::string& path) override { revealed.push_back(path); }

    std::vector<std::string> openedURLs;
    std::vector<std::string> revealed;
};

class FakeNotifications final : public Notifications {
public:
    void removeAllDelivered() override { ++removals; }
    void post(const std::string& identifier, const std::string& title,
              const std::string& body) override {
        posted.push_back({identifier, title, body});
    }

    struct Posted {
        std::string identifier, title, body;
    };
    int removals = 0;
    std::vector<Posted> posted;
};

class FakeApplicationShell final : public ApplicationShell {
public:
    void activate() override { ++activations; }
    Appearance appearance() const override { return current; }
    void setAppearance(Appearance appearance) override {
        current = appearance;
        ++appearanceChanges;
        isFollowing = false;
    }
    void keepAppearance() override { isFollowing = false; }
    void followSystemAppearance() override { isFollowing = true; }
    void confirm(const Confirmation& question, std::function<void(bool)> answer) override {
        questions.push_back(question);
        answer(accepts);
    }
    void chooseFolder(const FolderQuestion& question, FolderAnswer answer) override {
        folderQuestions.push_back(question);
        answer(chosenFolder);
    }

    Appearance current = Appearance::light;
    bool accepts = true;
    int activations = 0;
    int appearanceChanges = 0;
    bool isFollowing = true;  // the system
    std::vector<Confirmation> questions;
    std::optional<std::string> chosenFolder;  // nothing: the user declines
    std::vector<FolderQuestion> folderQuestions;
};

}  // namespace velto
