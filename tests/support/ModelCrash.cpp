#include "support/ModelCrash.h"

#include <algorithm>
#include <set>

namespace velto {
namespace {

using Kind = ModelChange::Kind;

std::string nameKey(const ModelEntryChange& entry) {
    return "name " + std::to_string(entry.folder) + "/" + entry.name;
}
std::string inodeKey(ModelInode::Number inode) { return "inode " + std::to_string(inode); }
std::string journalKey(int volume) { return "journal " + std::to_string(volume); }

bool isMetadata(const ModelChange& change) {
    return change.kind == Kind::entries || change.kind == Kind::attributes;
}

bool touches(const ModelChange& change, ModelInode::Number inode) {
    return change.inode == inode || change.replaced == inode ||
           std::ranges::any_of(change.entries,
                               [&](const auto& entry) { return entry.folder == inode; });
}

}  // namespace

ModelCrash::ModelCrash(const ModelDisk& disk, std::size_t cut, Durability durability)
    : disk_(disk), cut_(cut), durability_(durability) {
    if (durability_ == Durability::posix) {
        chainsOfPosix();
        durableByPosix();
    } else {
        chainsOfExt4();
        durableByExt4();
    }
    State durable = least();
    raise(durable);
    for (std::size_t index = 0; index < chains_.size(); ++index)
        chains_[index].least = durable[index];
}

ModelCrash::Chain& ModelCrash::chainOf(const std::string& key) {
    const auto [found, isNew] = keys_.try_emplace(key, chains_.size());
    if (isNew) chains_.emplace_back();
    return chains_[found->second];
}

std::size_t ModelCrash::add(const std::string& key, std::size_t change, std::size_t half) {
    Chain& chain = chainOf(key);
    chain.links.push_back({change, half});
    return chain.links.size();
}

// Any name by itself

void ModelCrash::chainsOfPosix() {
    constexpr std::size_t inPart = 3;  // not at all, its first half, zeros
    for (std::size_t index = 0; index < cut_; ++index) {
        const ModelChange& change = disk_.log()[index];
        if (change.kind == Kind::attributes || change.kind == Kind::content) {
            add(inodeKey(change.inode), index, 0);
            chainOf(inodeKey(change.inode)).variants = inPart;
        }
        for (std::size_t half = 0; half < change.entries.size(); ++half)
            add(nameKey(change.entries[half]), index, half);
        if (!change.isRename()) continue;
        const std::size_t from = indexOf(nameKey(change.entries[0]));
        const std::size_t to = indexOf(nameKey(change.entries[1]));
        const std::size_t fromLinks = chains_[from].links.size();
        const std::size_t toLinks = chains_[to].links.size();
        rules_.push_back({from, fromLinks, to, toLinks});
        if (disk_.live().at(change.inode).isFolder()) {
            rules_.push_back({to, toLinks, from, fromLinks});
        }
    }
}

/// True for an entry of the log that lets what it is about reach the disk.
bool ModelCrash::isSynced(std::size_t entry) const {
    const ModelChange& change = disk_.log()[entry];
    if (change.kind == Kind::sync) return true;
    if (change.kind != Kind::flush) return false;
    for (std::size_t later = entry + 1; later < cut_; ++later) {
        const ModelChange& next = disk_.log()[later];
        if (next.kind == Kind::sync && next.volume == change.volume) return true;
    }
    return false;
}

void ModelCrash::durableByPosix() {
    for (std::size_t sync = 0; sync < cut_; ++sync) {
        if (!isSynced(sync)) continue;
        const ModelInode::Number inode = disk_.log()[sync].inode;
        for (Chain& chain : chains_) {
            const Link& first = chain.links.front();
            const ModelChange& change = disk_.log()[first.change];
            const bool isName = change.kind == Kind::entries;
            const auto owner = isName ? change.entries[first.half].folder : change.inode;
            if (owner != inode) continue;
            const auto earlier = std::ranges::count_if(
                chain.links, [&](const Link& link) { return link.change < sync; });
            chain.least = std::max(chain.least, static_cast<std::size_t>(earlier) * chain.variants);
        }
    }
}

// One journal for each volume

void ModelCrash::chainsOfExt4() {
    constexpr std::size_t inPart = 2;  // not at all, its first half
    for (std::size_t index = 0; index < cut_; ++index) {
        const ModelChange& change = disk_.log()[index];
        if (isMetadata(change)) add(journalKey(change.volume), index, 0);
        if (change.kind != Kind::content) continue;
        const std::size_t links = add(inodeKey(change.inode), index, 0);
        chainOf(inodeKey(change.inode)).variants = inPart;
        // Its new length comes into the journal after what was there when it was written.
        chainOf(journalKey(change.volume));
        const std::size_t journal = indexOf(journalKey(change.volume));
        rules_.push_back(
            {indexOf(inodeKey(change.inode)), links, journal, chains_[journal].links.size()});
    }
}

void ModelCrash::durableByExt4() {
    for (std::size_t sync = 0; sync < cut_; ++sync) {
        const ModelChange& asked = disk_.log()[sync];
        if (asked.kind != Kind::sync && asked.kind != Kind::flush) continue;
        std::size_t end = 0;  // of the part of the log whose metadata is written
        for (std::size_t index = 0; index < sync; ++index) {
            if (touches(disk_.log()[index], asked.inode)) end = index + 1;
        }
        const auto write = [&](const std::string& key, std::size_t before) {
            const auto found = keys_.find(key);
            if (found == keys_.end()) return;
            Chain& chain = chains_[found->second];
            const auto earlier = std::ranges::count_if(
                chain.links, [&](const Link& link) { return link.change < before; });
            chain.least = std::max(chain.least, static_cast<std::size_t>(earlier) * chain.variants);
        };
        write(inodeKey(asked.inode), sync);
        write(journalKey(asked.volume), end);
    }
}

// States

/// How far the chain that a rule names must have come, counted with its variants.
std::size_t ModelCrash::needed(const Rule& rule) const {
    return rule.neededLinks * chains_[rule.needed].variants;
}

bool ModelCrash::applies(const Rule& rule, const State& state) const {
    // A part of a link needs what the whole link needs.
    return state[rule.chain] > (rule.links - 1) * chains_[rule.chain].variants;
}

bool ModelCrash::isLegal(const State& state) const {
    return std::ranges::all_of(rules_, [&](const Rule& rule) {
        return !applies(rule, state) || state[rule.needed] >= needed(rule);
    });
}

void ModelCrash::raise(State& state) const {
    for (bool isSettled = false; !isSettled;) {
        isSettled = true;
        for (const Rule& rule : rules_) {
            if (!applies(rule, state) || state[rule.needed] >= needed(rule)) continue;
            state[rule.needed] = needed(rule);
            isSettled = false;
        }
    }
}

void ModelCrash::lower(State& state) const {
    for (bool isSettled = false; !isSettled;) {
        isSettled = true;
        for (const Rule& rule : rules_) {
            if (!applies(rule, state) || state[rule.needed] >= needed(rule)) continue;
            state[rule.chain] = (rule.links - 1) * chains_[rule.chain].variants;
            isSettled = false;
        }
    }
}

ModelCrash::State ModelCrash::least() const {
    State state;
    for (const Chain& chain : chains_)
        state.push_back(chain.least);
    return state;
}

ModelCrash::State ModelCrash::most() const {
    State state;
    for (const Chain& chain : chains_)
        state.push_back(chain.most());
    return state;
}

bool ModelCrash::run(std::size_t bound, std::mt19937_64& random,
                     const std::function<void(const State& state)>& visit) const {
    const State first = least();
    const State last = most();
    constexpr std::size_t mostCombinations = 4'096;
    std::size_t combinations = 1;
    for (std::size_t index = 0; index < first.size(); ++index)
        combinations =
            std::min(combinations * (last[index] - first[index] + 1), mostCombinations + 1);
    std::set<State> states;
    if (combinations <= mostCombinations) {
        for (State state = first;;) {
            if (isLegal(state)) states.insert(state);
            std::size_t index = 0;
            for (; index < state.size() && state[index] == last[index]; ++index)
                state[index] = first[index];
            if (index == state.size()) break;
            ++state[index];
        }
    }
    const bool isComplete = !states.empty() && states.size() <= bound;
    if (!isComplete) {
        states = {first, last};
        const auto choose = [&](State state, bool upwards) {
            upwards ? raise(state) : lower(state);
            if (states.size() < bound) states.insert(std::move(state));
        };
        for (std::size_t index = 0; index < first.size(); ++index) {
            if (first[index] == last[index]) continue;
            State alone = first;
            alone[index] = last[index];
            choose(alone, true);
            State without = last;
            without[index] = first[index];
            choose(without, false);
        }
        for (std::size_t draw = 0; draw < 4 * bound && states.size() < bound; ++draw) {
            State state = first;
            for (std::size_t index = 0; index < first.size(); ++index)
                state[index] += random() % (last[index] - first[index] + 1);
            choose(state, random() % 2 == 0);
        }
    }
    for (const State& state : states)
        visit(state);
    return isComplete;
}

}  // namespace velto
