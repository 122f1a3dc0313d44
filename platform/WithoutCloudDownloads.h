#pragma once

namespace velto {

/// While it lives, this thread gets EDEADLK for what lies only in the cloud, instead of waiting for
/// a download that nobody has asked for. On Linux, whose file systems have no word for it, it does
/// nothing. Made and destroyed on the same thread; `errno` stays as it is.
class WithoutCloudDownloads {
public:
    WithoutCloudDownloads();
    ~WithoutCloudDownloads();
    WithoutCloudDownloads(const WithoutCloudDownloads&) = delete;
    WithoutCloudDownloads& operator=(const WithoutCloudDownloads&) = delete;

private:
    int before_;
};

}  // namespace velto
