#include "support/ModelCrash.h"

#include <map>
#include <memory>
#include <utility>

namespace velto {

void ModelCrash::applyContent(ModelImage& image, const ModelChange& change,
                              std::size_t variant) const {
    ModelInode& inode = image.at(change.inode);
    std::string text = *inode.content;
    const std::size_t size = change.content->size();
    if (variant == 0 || size <= text.size()) return;
    if (variant == 1) text += change.content->substr(text.size(), (size - text.size()) / 2);
    if (variant == 2) text.resize(size);
    inode.content = std::make_shared<const std::string>(std::move(text));
}

ModelImage ModelCrash::image(const State& state) const {
    ModelImage image = disk_.durable();
    std::map<std::pair<std::size_t, std::size_t>, std::size_t> reached;  // link to variant; 0 whole
    std::map<std::size_t, std::size_t> parts;
    for (std::size_t index = 0; index < chains_.size(); ++index) {
        const Chain& chain = chains_[index];
        const std::size_t whole = state[index] / chain.variants;
        for (std::size_t link = 0; link < whole; ++link)
            reached[{chain.links[link].change, chain.links[link].half}] = 0;
        if (whole < chain.links.size()) {
            parts[chain.links[whole].change] = state[index] % chain.variants;
        }
    }
    for (std::size_t index = 0; index < cut_; ++index) {
        const ModelChange& change = disk_.log()[index];
        if (change.kind == ModelChange::Kind::entries && change.made.mode != 0) {
            image.inodes.push_back(change.made);
        }
        if (change.kind == ModelChange::Kind::content && parts.contains(index)) {
            applyContent(image, change, parts[index]);
        }
        const bool isOneStep = durability_ == Durability::ext4Ordered;
        for (std::size_t half = 0; half < change.entries.size(); ++half) {
            if (reached.contains({index, isOneStep ? 0 : half})) {
                applyEntry(image, change.entries[half]);
            }
        }
        if (!reached.contains({index, 0})) continue;
        ModelInode& inode = image.at(change.inode);
        if (change.kind == ModelChange::Kind::content) {
            inode.content = change.content;
            inode.modified = change.made.modified;
        }
        if (change.kind == ModelChange::Kind::attributes) {
            inode.mode = change.made.mode;
            inode.accessed = change.made.accessed;
            inode.modified = change.made.modified;
        }
    }
    image.repair();
    return image;
}

std::string ModelCrash::missing(const State& state) const {
    std::string text;
    for (const auto& [key, index] : keys_) {
        const Chain& chain = chains_[index];
        if (state[index] == chain.most()) continue;
        text += "  " + key + " has " + std::to_string(state[index] / chain.variants) + " of " +
                std::to_string(chain.links.size()) + ", part " +
                std::to_string(state[index] % chain.variants) + "\n";
        for (std::size_t link = state[index] / chain.variants; link < chain.links.size(); ++link) {
            text += "    not " + std::to_string(chain.links[link].change) + ": " +
                    describe(disk_.log()[chain.links[link].change]) + "\n";
        }
    }
    return text;
}

}  // namespace velto
