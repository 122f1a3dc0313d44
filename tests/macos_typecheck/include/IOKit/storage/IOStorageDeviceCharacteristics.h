#pragma once

#define kIOPropertyDeviceCharacteristicsKey "Device Characteristics"
#define kIOPropertyMediumTypeKey "Medium Type"
#define kIOPropertyMediumTypeRotationalKey "Rotational"
