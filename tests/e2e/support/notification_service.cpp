// A notification service for the tests of the real program: prints what it is asked, a line of JSON
// each, until its standard input ends. The bus is that of the environment.

#include <cstdio>
#include <cstdlib>
#include <iostream>

#include <nlohmann/json.hpp>

#include "../../platform/linux/NotificationService.h"

int main() {
    const char* const bus = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (bus == nullptr) return 1;
    const auto print = [](const nlohmann::json& line) {
        std::puts(line.dump().c_str());
        std::fflush(stdout);
    };
    const velto::NotificationService service(bus,
                                             {.shown =
                                                  [&](const auto& shown) {
                                                      print({{"shown", shown.number},
                                                             {"application", shown.application},
                                                             {"title", shown.title},
                                                             {"body", shown.body}});
                                                  },
                                              .closed =
                                                  [&](std::uint32_t number) {
                                                      print({{"closed", number}});
                                                  }});
    print({{"ready", true}});
    while (std::cin.get() != EOF)
        continue;
}
