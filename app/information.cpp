#include "app/information.h"

#include <fmt/format.h>

#include "app/arguments.h"

namespace velto {
namespace {

constexpr std::string_view english = R"(Velto shows what fills a disk and gives it back safely.

usage: velto [OPTION]

  --analyze      open the window and analyze the disk
  --applications open the window with the applications to uninstall
  --trash        open the window with Velto Trash
  --maintenance  one maintenance pass without a window, as the schedule starts it
  --reset        take away the schedule and all that Velto keeps about this home,
                 what waits in Velto Trash included; the settings stay
  --debug-log    tell whole messages in the log
  --version      print the version and end
  --help         print this and end
)";

constexpr std::string_view spanish =
    R"(Velto muestra qué llena un disco y lo devuelve de forma segura.

uso: velto [OPCIÓN]

  --analyze      abre la ventana y analiza el disco
  --applications abre la ventana con las aplicaciones que se pueden desinstalar
  --trash        abre la ventana con la Papelera de Velto
  --maintenance  una pasada de mantenimiento sin ventana, como la inicia el programa
                 periódico
  --reset        quita el programa periódico y todo lo que Velto guarda de esta carpeta
                 personal, incluido lo que espera en la Papelera de Velto; los ajustes quedan
  --debug-log    escribe mensajes enteros en el registro
  --version      escribe la versión y termina
  --help         escribe esto y termina
)";

}  // namespace

std::string_view versionText() { return VELTO_VERSION; }

std::optional<std::string> informationAskedFor(const std::vector<std::string>& arguments,
                                               const AppLanguage& language) {
    if (isGiven("--help", arguments)) return std::string(language.text(spanish, english));
    if (isGiven("--version", arguments)) return fmt::format("Velto {}\n", versionText());
    return std::nullopt;
}

}  // namespace velto
