#include "platform/WithoutCloudDownloads.h"

#include <sys/resource.h>

#include <cerrno>

namespace velto {
namespace {

// A refusal changes nothing but that reading may wait for a download.
void setDownloadPolicy(int policy) {
    setiopolicy_np(IOPOL_TYPE_VFS_MATERIALIZE_DATALESS_FILES, IOPOL_SCOPE_THREAD, policy);
}

}  // namespace

WithoutCloudDownloads::WithoutCloudDownloads()
    : before_(getiopolicy_np(IOPOL_TYPE_VFS_MATERIALIZE_DATALESS_FILES, IOPOL_SCOPE_THREAD)) {
    setDownloadPolicy(IOPOL_MATERIALIZE_DATALESS_FILES_OFF);
}

WithoutCloudDownloads::~WithoutCloudDownloads() {
    const int cause = errno;  // the caller's, not ours
    setDownloadPolicy(before_ < 0 ? IOPOL_MATERIALIZE_DATALESS_FILES_DEFAULT : before_);
    errno = cause;
}

}  // namespace velto
