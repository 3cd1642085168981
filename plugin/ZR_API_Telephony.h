// The telephony commands. There is no telephony on this platform: every command answers empty, which means that it
// clears its result and the numbers it would have filled, and has no other effect. The list below is the whole of it;
// the commands, their bodies and their rows in the module's selector table are made from it.
#ifndef ZR_API_TELEPHONY_H
#define ZR_API_TELEPHONY_H

struct PluginBlock;

// X(command, selector, parameters whose 32 bits are cleared as a mask with bit N-1 for parameter N, the 8-byte result
// is cleared) Required: zrTel_Redirect, zrTel_GetAllOpenDevices and zrTel_GetLineStatus leave even the result as it
// was. Required: selectors are neither grouped nor without a gap: 15 is no command.
#define ZR_TELEPHONY_COMMANDS(X)                  \
    X(zrTel_Init, 1, 0x00, true)                  \
    X(zrTel_DeInit, 2, 0x00, true)                \
    X(zrTel_GetDeviceName, 3, 0x00, true)         \
    X(zrTel_CountDevices, 4, 0x00, true)          \
    X(zrTel_Open, 5, 0x00, true)                  \
    X(zrTel_MakeCall, 6, 0x00, true)              \
    X(zrTel_Drop, 7, 0x00, true)                  \
    X(zrTel_Close, 8, 0x00, true)                 \
    X(zrTel_GetCallStatus, 9, 0x02, true)         \
    X(zrTel_GetMessage, 10, 0x3F, true)           \
    X(zrTel_ClearMessages, 11, 0x00, true)        \
    X(zrTel_GetCallinfo, 12, 0x00, true)          \
    X(zrTel_Accept, 13, 0x00, true)               \
    X(zrTel_GetLastCallID, 14, 0x01, true)        \
    X(zrTel_Answer, 16, 0x00, true)               \
    X(zrTel_GetRedirectionInfo, 17, 0x00, true)   \
    X(zrTel_GetCallOrigin, 18, 0x02, true)        \
    X(zrTel_GetDeviceIDFromCall, 19, 0x02, true)  \
    X(zrTel_DeallocateCall, 20, 0x00, true)       \
    X(zrTel_GetAllOpenDevices, 21, 0x00, false)   \
    X(zrTel_GetLineStatus, 22, 0x00, false)       \
    X(zrTel_OpenEx, 23, 0x00, true)               \
    X(zrTel_CountDeviceAddresses, 24, 0x00, true) \
    X(zrTel_GetAddressInfo, 25, 0x00, true)       \
    X(zrTel_GetCallinfoArray, 26, 0x00, true)     \
    X(zrTel_Redirect, 27, 0x00, false)            \
    X(zrTel_Hold, 28, 0x00, true)                 \
    X(zrTel_Unhold, 29, 0x00, true)

#define ZR_X(command, selector, parameters, result) void command(PluginBlock* block);
ZR_TELEPHONY_COMMANDS(ZR_X)
#undef ZR_X

#endif
