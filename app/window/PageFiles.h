#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/FileManager.h"

namespace velto::window {

/// A field of the answer's head.
struct HeaderField {
    std::string_view name;
    std::string_view value;
};

struct PageFile {
    std::string content;
    std::string_view type;  // media type, with the character set where the file is a text
};

/// Serves the page's addresses from the resource bundle: the files directly inside it, and nothing
/// else of the disk. Safe from every thread.
class PageFiles {
public:
    /// `folder` is the bundle's folder, links resolved. The file manager outlives this.
    PageFiles(const FileManager& files, std::string folder);

    /// The file that a request asks for. Nothing for another method than GET, another origin, a
    /// name with anything but letters, digits, "-", "_" and full stops in it, a kind of file that
    /// the page does not have, a link, a folder, or a file that cannot be read.
    std::optional<PageFile> answer(std::string_view method, std::string_view address) const;

    /// What goes along with every file, the policy of the page's content among it.
    static std::span<const HeaderField> headers();

private:
    const FileManager& files_;
    std::string folder_;
};

}  // namespace velto::window
