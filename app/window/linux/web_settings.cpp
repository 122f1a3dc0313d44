#include "app/window/linux/web_settings.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace velto::window {
namespace {

/// Of the engine's features those that open connections ahead of use or past a page's policy, run
/// scripts beside the page, or keep more than its choices. An engine that lacks one has it off.
constexpr std::array<std::string_view, 19> unwantedFeatures{
    "BeaconAPI",      "BroadcastChannel", "CacheAPI",          "GeolocationAPI",
    "IndexedDBAPI",   "LinkDNSPrefetch",  "LinkPreconnect",    "LinkPreconnectEarlyHints",
    "LinkPrefetch",   "LinkPreload",      "NotificationEvent", "Notifications",
    "PeerConnection", "PushAPI",          "ServiceWorkers",    "SharedWorker",
    "StorageAPI",     "WebSocket",        "WebTransport"};

void switchFeaturesOff([[maybe_unused]] WebKitSettings* settings) {
#if WEBKIT_CHECK_VERSION(2, 42, 0)  // older engines do not name their features
    WebKitFeatureList* const features = webkit_settings_get_all_features();
    for (gsize index = webkit_feature_list_get_length(features); index-- > 0;) {
        WebKitFeature* const feature = webkit_feature_list_get(features, index);
        const std::string_view name = webkit_feature_get_identifier(feature);
        if (std::find(unwantedFeatures.begin(), unwantedFeatures.end(), name) !=
            unwantedFeatures.end()) {
            webkit_settings_set_feature_enabled(settings, feature, FALSE);
        }
    }
    webkit_feature_list_unref(features);
#endif
}

}  // namespace

GlibReference<WebKitSettings> pageSettings() {
    GlibReference<WebKitSettings> settings(webkit_settings_new());
    WebKitSettings* const raw = settings.get();
    for (const auto switchIt : {webkit_settings_set_enable_developer_extras,
                                webkit_settings_set_enable_back_forward_navigation_gestures,
                                webkit_settings_set_enable_page_cache,
                                webkit_settings_set_enable_media,
                                webkit_settings_set_enable_mediasource,
                                webkit_settings_set_enable_media_capabilities,
                                webkit_settings_set_enable_media_stream,
                                webkit_settings_set_enable_webrtc,
                                webkit_settings_set_enable_encrypted_media,
                                webkit_settings_set_enable_webaudio,
                                webkit_settings_set_enable_webgl,
                                webkit_settings_set_enable_fullscreen,
                                webkit_settings_set_enable_html5_database,
                                webkit_settings_set_enable_site_specific_quirks,
                                webkit_settings_set_javascript_can_open_windows_automatically,
                                webkit_settings_set_javascript_can_access_clipboard,
                                webkit_settings_set_allow_modal_dialogs,
                                webkit_settings_set_allow_file_access_from_file_urls,
                                webkit_settings_set_allow_universal_access_from_file_urls,
                                webkit_settings_set_allow_top_navigation_to_data_urls}) {
        switchIt(raw, FALSE);
    }
    webkit_settings_set_media_playback_requires_user_gesture(raw, TRUE);
    webkit_settings_set_enable_smooth_scrolling(raw, TRUE);
    switchFeaturesOff(raw);
    return settings;
}

}  // namespace velto::window
