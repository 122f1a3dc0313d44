#include "support/ModelImage.h"

#include <string_view>

namespace velto {
namespace {

/// With `identities`, what two names share is told apart from two equal files.
class Description {
public:
    Description(const ModelImage& image, bool identities)
        : image_(image), identities_(identities) {}

    std::string run(ModelImage::Number number) {
        describe("", number);
        return std::move(text_);
    }

private:
    void describe(const std::string& name, ModelImage::Number number) {
        const ModelInode& inode = image_.at(number);
        text_ += name + " " + std::to_string(inode.mode);
        if (identities_ && inode.links > 1) text_ += " #" + std::to_string(number);
        if (inode.isFolder()) {
            text_ += "/\n";
            for (const auto& [child, childNumber] : inode.entries)
                describe(name + "/" + child, image_.mounted(childNumber));
        } else {
            if (!inode.isLink()) text_ += " " + std::to_string(inode.modified);
            text_ += " " + std::to_string(inode.content->size()) + ":" + *inode.content + "\n";
        }
    }

    const ModelImage& image_;
    bool identities_;
    std::string text_;
};

}  // namespace

ModelImage::ModelImage() : inodes(2) {
    inodes[root].mode = S_IFDIR | 0755;
    inodes[root].parent = root;
    inodes[root].links = 1;
}

ModelImage::Number ModelImage::mounted(Number folder) const {
    const auto found = mounts.find(folder);
    return found == mounts.end() ? folder : found->second;
}

ModelImage::Number ModelImage::child(Number folder, const std::string& name) const {
    const auto found = at(folder).entries.find(name);
    return found == at(folder).entries.end() ? 0 : mounted(found->second);
}

ModelImage::Number ModelImage::find(const std::string& path) const {
    Number current = root;
    for (std::string_view rest = path; !rest.empty() && current != 0;) {
        rest.remove_prefix(1);
        const std::string name(rest.substr(0, rest.find('/')));
        rest.remove_prefix(name.size());
        if (!name.empty()) current = child(current, name);
    }
    return current;
}

std::string ModelImage::text(const std::string& path) const {
    const Number number = find(path);
    return number == 0 ? "" : Description(*this, false).run(number);
}

std::vector<std::string> ModelImage::names(const std::string& path) const {
    std::vector<std::string> found;
    for (const auto& [name, number] : at(find(path)).entries)
        found.push_back(name);
    return found;
}

std::string ModelImage::fingerprint() const { return Description(*this, true).run(root); }

void ModelImage::repair() {
    for (ModelInode& inode : inodes)
        inode.links = 0;
    std::vector<Number> open{root};
    at(root).links = 1;
    while (!open.empty()) {
        const Number folder = open.back();
        open.pop_back();
        for (const auto& [name, entry] : at(folder).entries) {
            const Number number = mounted(entry);
            ++at(number).links;
            if (!at(number).isFolder()) continue;
            at(number).parent = folder;
            open.push_back(number);
        }
    }
}

}  // namespace velto
