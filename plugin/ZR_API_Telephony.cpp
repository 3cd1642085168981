#include "plugin/ZR_API_Telephony.h"

#include <cstring>

#include "plugin/ZR_API_Plugin.h"

// The whole effect of a command: 32 bits of each parameter in the mask, then the 8-byte result.
static void AnswerEmpty(PluginBlock* block, unsigned parameters, bool result) {
    if (block == nullptr) return;
    for (int i = 0; parameters >> i != 0 && block->parameters != nullptr; i++)
        if ((parameters >> i & 1) != 0 && block->parameters[i] != nullptr) memset(block->parameters[i], 0, 4);
    if (result && block->result != nullptr) memset(block->result, 0, 8);
}

#define ZR_X(command, selector, parameters, result) \
    void command(PluginBlock* block) { AnswerEmpty(block, parameters, result); }
ZR_TELEPHONY_COMMANDS(ZR_X)
#undef ZR_X
