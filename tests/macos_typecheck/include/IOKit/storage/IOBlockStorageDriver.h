#pragma once

#define kIOBlockStorageDriverClass "IOBlockStorageDriver"
#define kIOBlockStorageDriverStatisticsKey "Statistics"
#define kIOBlockStorageDriverStatisticsBytesReadKey "Bytes (Read)"
#define kIOBlockStorageDriverStatisticsBytesWrittenKey "Bytes (Write)"
