#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "support/TempHome.h"

namespace velto {

/// A program that runs from a path of a made home until it is ended (a copy of sleep(1)).
class Child {
public:
    enum class Manner { obedient, ignoresTerm };

    /// `path` lies in the home. Returns once the program runs.
    Child(TempHome& home, const std::string& path, Manner manner = Manner::obedient,
          std::vector<std::string> environment = {}) {
        home.folder(path.substr(home.path().size() + 1, path.rfind('/') - home.path().size() - 1));
        // Where another child runs from, nothing can be written, and need not be.
        namespace fs = std::filesystem;
        if (!fs::exists(path) || fs::file_size(path) != fs::file_size("/bin/sleep")) {
            fs::copy_file("/bin/sleep", path, fs::copy_options::overwrite_existing);
        }
        std::array<std::string, 2> arguments{path, "600"};
        std::array<char*, 3> argumentList{arguments[0].data(), arguments[1].data(), nullptr};
        std::vector<char*> environmentList;
        for (std::string& variable : environment)
            environmentList.push_back(variable.data());
        environmentList.push_back(nullptr);
        std::array<int, 2> started{};
        if (::pipe2(started.data(), O_CLOEXEC) != 0) std::abort();
        process_ = ::fork();
        if (process_ == 0) {
            ::signal(SIGTERM, manner == Manner::ignoresTerm ? SIG_IGN : SIG_DFL);
            ::execve(path.c_str(), argumentList.data(), environmentList.data());
            ::_exit(127);
        }
        ::close(started[1]);
        char byte = 0;
        while (::read(started[0], &byte, 1) > 0) {
        }  // closed by the start of the program
        ::close(started[0]);
    }
    ~Child() { end(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    std::int64_t process() const { return process_; }

    /// Waits for the end and returns the signal that ended it, 0 for none.
    int wait() {
        int status = 0;
        ::waitpid(process_, &status, 0);
        isGone_ = true;
        return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    }
    void end() {
        if (isGone_) return;
        ::kill(process_, SIGKILL);
        wait();
    }

private:
    pid_t process_ = -1;
    bool isGone_ = false;
};

}  // namespace velto
