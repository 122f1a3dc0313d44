#pragma once

#define kIOPropertyProtocolCharacteristicsKey "Protocol Characteristics"
#define kIOPropertyPhysicalInterconnectTypeKey "Physical Interconnect"
#define kIOPropertyPhysicalInterconnectTypeVirtual "Virtual Interface"
