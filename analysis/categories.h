#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace velto {

/// In the order in which the page shows them.
enum class Category : std::size_t { photos, applications, documents, downloads, music, system };

inline constexpr std::size_t categoryCount = 6;

struct CategoryRow {
    std::string_view id;
    std::string_view name;         // Spanish; the page translates by id
    std::string_view icon;         // symbolic, the page has the glyph
    std::string_view colour;       // "#RRGGBB"
    std::string_view equivalence;  // Spanish; the page translates by id
    std::string_view bigFileKind;  // big files of music are shown as videos, on purpose
};

inline constexpr std::array<CategoryRow, categoryCount> categoryTable{{
    {"fotos", "Fotos y vídeo", "photo", "#E8355A",
     "aprox. 150.000 fotos o un año de vídeos caseros", "video"},
    {"apps", "Aplicaciones", "apps", "#2563EB", "como 40 juegos grandes", "app"},
    {"docs", "Documentos", "doc", "#E88F0C", "como 8.000 libros digitales", "doc"},
    {"descargas", "Descargas", "tray", "#0BA5D6", "como 190 películas en HD", "descarga"},
    {"musica", "Música y audio", "music", "#7C3AED", "como 6.500 canciones", "video"},
    {"sistema", "macOS y Datos del sistema", "cpu", "#8B919C",
     "el espacio esencial para que tu Mac funcione", "doc"},
}};

constexpr const CategoryRow& row(Category category) {
    return categoryTable[static_cast<std::size_t>(category)];
}

/// The category of an identifier, nothing for an unknown one.
std::optional<Category> categoryWithId(std::string_view id);

/// The category of a file that lies in none of the known folders, by its name's extension.
Category categoryByExtension(std::string_view fileName);

}  // namespace velto
