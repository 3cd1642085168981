#include "plugin/ZR_API_Telephony.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "plugin/ZR_API_Plugin.h"

namespace {

// A command's block whose places all start at ones: 8 bytes of result and 8 of each parameter.
struct Places {
    static constexpr int kParameters = 8;
    uint64_t values[kParameters], result = ~0ull;
    void* parameters[kParameters];
    PluginBlock block;

    Places() {
        for (int i = 0; i < kParameters; i++) {
            values[i] = ~0ull;
            parameters[i] = &values[i];
        }
        block = {parameters, &result, nullptr};
    }
};

struct Effect {
    const char* name;
    void (*command)(PluginBlock*);
    int selector;
    std::vector<int> cleared;  // parameters, 32 bits each
    bool result;
};

// Written out by hand beside the library's own list.
const Effect kEffects[] = {
    {"Init", zrTel_Init, 1, {}, true},
    {"DeInit", zrTel_DeInit, 2, {}, true},
    {"GetDeviceName", zrTel_GetDeviceName, 3, {}, true},
    {"CountDevices", zrTel_CountDevices, 4, {}, true},
    {"Open", zrTel_Open, 5, {}, true},
    {"MakeCall", zrTel_MakeCall, 6, {}, true},
    {"Drop", zrTel_Drop, 7, {}, true},
    {"Close", zrTel_Close, 8, {}, true},
    {"GetCallStatus", zrTel_GetCallStatus, 9, {2}, true},
    {"GetMessage", zrTel_GetMessage, 10, {1, 2, 3, 4, 5, 6}, true},
    {"ClearMessages", zrTel_ClearMessages, 11, {}, true},
    {"GetCallinfo", zrTel_GetCallinfo, 12, {}, true},
    {"Accept", zrTel_Accept, 13, {}, true},
    {"GetLastCallID", zrTel_GetLastCallID, 14, {1}, true},
    {"Answer", zrTel_Answer, 16, {}, true},
    {"GetRedirectionInfo", zrTel_GetRedirectionInfo, 17, {}, true},
    {"GetCallOrigin", zrTel_GetCallOrigin, 18, {2}, true},
    {"GetDeviceIDFromCall", zrTel_GetDeviceIDFromCall, 19, {2}, true},
    {"DeallocateCall", zrTel_DeallocateCall, 20, {}, true},
    {"GetAllOpenDevices", zrTel_GetAllOpenDevices, 21, {}, false},
    {"GetLineStatus", zrTel_GetLineStatus, 22, {}, false},
    {"OpenEx", zrTel_OpenEx, 23, {}, true},
    {"CountDeviceAddresses", zrTel_CountDeviceAddresses, 24, {}, true},
    {"GetAddressInfo", zrTel_GetAddressInfo, 25, {}, true},
    {"GetCallinfoArray", zrTel_GetCallinfoArray, 26, {}, true},
    {"Redirect", zrTel_Redirect, 27, {}, false},
    {"Hold", zrTel_Hold, 28, {}, true},
    {"Unhold", zrTel_Unhold, 29, {}, true},
};

void ExpectEffect(const Effect& effect, const Places& places, const char* way) {
    EXPECT_EQ(places.result, effect.result ? 0 : ~0ull) << effect.name << way;
    for (int i = 1; i <= Places::kParameters; i++) {
        bool cleared = std::find(effect.cleared.begin(), effect.cleared.end(), i) != effect.cleared.end();
        // Only the low 32 bits: the host's number. What lies behind it stays.
        EXPECT_EQ(places.values[i - 1], cleared ? 0xFFFFFFFF00000000ull : ~0ull) << effect.name << way << i;
    }
}

}  // namespace

TEST(Telephony, Command_CalledByName_ClearsWhatItsRowSays) {
    for (const Effect& effect : kEffects) {
        Places places;
        effect.command(&places.block);
        ExpectEffect(effect, places, " by name, parameter ");
    }
}

TEST(Telephony, Command_CalledBySelector_ClearsWhatItsRowSays) {
    for (const Effect& effect : kEffects) {
        Places places;
        FourDPackex(effect.selector, places.parameters, nullptr, &places.result);
        ExpectEffect(effect, places, " by selector, parameter ");
    }
}

// Required: three commands leave even a preset result alone.
TEST(Telephony, Redirect_WithPresetResult_LeavesIt_WhileHoldClearsIt) {
    Places redirect, hold;
    zrTel_Redirect(&redirect.block);
    zrTel_Hold(&hold.block);
    EXPECT_EQ(redirect.result, ~0ull);
    EXPECT_EQ(hold.result, 0u);
}

// Required: all six are cleared though nothing in the family ever stores a message.
TEST(Telephony, GetMessage_Always_ClearsSixParameters) {
    Places places;
    zrTel_GetMessage(&places.block);
    for (int i = 0; i < 6; i++) EXPECT_EQ((uint32_t)places.values[i], 0u) << i;
    EXPECT_EQ(places.values[6], ~0ull);
}

TEST(Telephony, Command_WithPlacesMissing_TouchesNothing) {
    for (const Effect& effect : kEffects) {
        effect.command(nullptr);
        PluginBlock empty = {nullptr, nullptr, nullptr};
        effect.command(&empty);
        Places places;
        void* none[Places::kParameters] = {};
        PluginBlock noParameters = {none, &places.result, nullptr};
        effect.command(&noParameters);
        EXPECT_EQ(places.result, effect.result ? 0 : ~0ull) << effect.name;
    }
}

TEST(Telephony, Command_WithUnalignedPlaces_ClearsThem) {
    alignas(8) char bytes[32];
    memset(bytes, -1, sizeof bytes);
    void* parameters[6] = {bytes + 1, bytes + 1, bytes + 1, bytes + 1, bytes + 1, bytes + 1};
    PluginBlock block = {parameters, bytes + 9, nullptr};
    zrTel_GetMessage(&block);
    EXPECT_EQ(bytes[0], -1);
    EXPECT_EQ(bytes[1], 0);
    EXPECT_EQ(bytes[4], 0);
    EXPECT_EQ(bytes[5], -1);
    EXPECT_EQ(bytes[8], -1);
    EXPECT_EQ(bytes[9], 0);
    EXPECT_EQ(bytes[16], 0);
    EXPECT_EQ(bytes[17], -1);
}
