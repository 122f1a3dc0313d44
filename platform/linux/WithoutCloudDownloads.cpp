#include "platform/WithoutCloudDownloads.h"

namespace velto {

WithoutCloudDownloads::WithoutCloudDownloads() : before_(0) {}
WithoutCloudDownloads::~WithoutCloudDownloads() { static_cast<void>(before_); }

}  // namespace velto
