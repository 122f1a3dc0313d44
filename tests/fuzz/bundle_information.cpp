#include "uninstall/bundle_information.h"

#include "fuzz/engine/Target.h"
#include "platform/values/PropertyList.h"
#include "platform/values/text.h"

namespace velto::fuzz {
namespace {

/// Where the quick reader has an answer, it is the parser's, key by key.
void proveAgreement(const BundleInformation& quick, std::string_view input) {
    const auto list = readPropertyList(input);
    require(list && list->isDictionary(), "the parser reads what the quick reader reads");
    for (const auto& [key, member] : bundleInformationKeys) {
        const std::string* const text = list->text(key);
        const std::optional<std::string>& own = quick.*member;
        require(own.has_value() == (text != nullptr), "both find the same keys");
        require(text == nullptr || *own == *text, "both read the same text");
    }
}

void judge(std::string_view input) {
    const auto quick = quickBundleInformation(input);
    if (quick) proveAgreement(*quick, input);
    const auto information = bundleInformationFrom(input);
    require(!quick || information == quick, "a quick answer counts");
    if (!information) return;
    for (const auto& [key, member] : bundleInformationKeys) {
        const std::optional<std::string>& text = *information.*member;
        require(!text || isValidUtf8(*text), "texts are UTF-8");
    }
}

const Registration registered("bundle_information", judge);

}  // namespace
}  // namespace velto::fuzz
