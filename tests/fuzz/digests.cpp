#include <cctype>
#include <span>
#include <string>

#include "cleaning/DigestStore.h"
#include "fuzz/engine/Target.h"
#include "platform/Digest.h"

namespace velto::fuzz {
namespace {

/// With the sum that the store would write: no fuzzer finds one.
std::string summed(std::string_view lines) {
    const auto digest = makeDigest(DigestKind::sha256);
    digest->update(std::as_bytes(std::span(lines)));
    return std::string(lines) + digest->finish() + "\n";
}

/// What was read says the same of every file when it has been written, and takes further files.
void judgeStore(std::string_view text) {
    const auto store = DigestStore::decoded(text);
    require(store->size() <= DigestStore::mostFiles, "no more than is remembered");
    require(!store->hasChanged(), "reading changes nothing");
    const std::string written = store->encoded();
    const auto again = DigestStore::decoded(written);
    require(again->size() == store->size(), "what was written is read whole");
    require(again->encoded().size() == written.size(), "and is as long again");

    const FileStamp stamp{
        .identity = {.device = 7, .number = 9}, .length = 5, .modified = 1, .changed = 1};
    const std::string digest(64, 'a');
    const std::size_t before = store->size();
    store->put(stamp, DigestStore::Part::wholeContent, digest, 1'700'000'000);
    require(store->size() - before <= 1, "one file more at most");
    require(before >= DigestStore::mostFiles ||
                store->find(stamp, DigestStore::Part::wholeContent) == digest,
            "what was put is found");
    store->dropUnused();
    require(store->size() <= 1, "what nobody has asked about is forgotten");
}

void judge(std::string_view input) {
    judgeStore(input);
    judgeStore(summed(input));
}

const Registration registered("digests", judge);

}  // namespace
}  // namespace velto::fuzz
