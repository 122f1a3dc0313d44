// Something for the live view to show: `load busy PROCESSES` computes in as many processes,
// `load hold MEGABYTES` fills that much memory, `load talk` sends bytes to itself over the loopback
// interface as fast as it can, `load stubborn MEGABYTES` holds memory too and does not end when it
// is asked to. Writes "ready" once it does, and goes on until it is ended.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <thread>
#include <vector>

namespace {

void tellReady() {
    std::puts("ready");
    std::fflush(stdout);
}

void compute(int processes) {
    for (int i = 1; i < processes; ++i) {
        if (fork() != 0) continue;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        break;
    }
    tellReady();
    volatile unsigned work = 0;
    while (true)
        work = work + 1;
}

void hold(std::size_t megabytes) {
    std::vector<char> memory(megabytes * 1'000'000);
    std::memset(memory.data(), 1, memory.size());
    tellReady();
    while (true)
        pause();
}

int fail(const char* what) {
    std::perror(what);
    return 1;
}

int talk() {
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t length = sizeof address;
    if (bind(listener, generic, length) != 0 || listen(listener, 1) != 0) return fail("listen");
    if (getsockname(listener, generic, &length) != 0) return fail("getsockname");
    const int speaker = socket(AF_INET, SOCK_STREAM, 0);
    if (connect(speaker, generic, length) != 0) return fail("connect");
    const int hearer = accept(listener, nullptr, nullptr);
    if (hearer < 0) return fail("accept");
    std::thread([hearer] {
        std::vector<char> heard(1 << 20);
        while (read(hearer, heard.data(), heard.size()) > 0) {
        }
    }).detach();
    const std::vector<char> said(1 << 20);
    tellReady();
    while (write(speaker, said.data(), said.size()) > 0) {
    }
    return fail("write");
}

}  // namespace

int main(int count, char** arguments) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const std::string_view kind = count > 1 ? arguments[1] : "";
    if (kind == "busy" && count == 3) compute(std::atoi(arguments[2]));
    if (kind == "hold" && count == 3) hold(std::strtoul(arguments[2], nullptr, 10));
    if (kind == "stubborn" && count == 3) {
        signal(SIGTERM, SIG_IGN);
        hold(std::strtoul(arguments[2], nullptr, 10));
    }
    if (kind == "talk") return talk();
    std::fputs("usage: load busy PROCESSES | hold MEGABYTES | stubborn MEGABYTES | talk\n", stderr);
    return 2;
}
