#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "core/ZR_API_Text.h"
#include "plugin/ZR_API_Bridge.h"
#include "tests/plugin/FakeHost.h"

namespace {

char* dialogBytes = nullptr;
const PA_Dial4D kDialog = &dialogBytes;

// A host whose dialogs hold one value, by the kind it was set with.
struct OneValue {
    FakeHost host;
    int kind = eVK_Undefined;
    double number = 0;
    std::string text, name;
    int64_t element = 0;

    OneValue() {
        host.answer[ZR_SEL_DialogSet] = [this](EngineBlock* block) {
            EXPECT_EQ(block->fHandle, kDialog);
            const PA_Variable* value = At<PA_Variable>(block->fParam1);
            kind = value->fType;
            name = Narrow(block->fName);
            element = block->fParam2;
            number = kind == eVK_Real      ? PA_GetRealVariable(value)
                     : kind == eVK_Longint ? PA_GetLongintVariable(value)
                                           : PA_GetBooleanVariable(value);
            if (kind == eVK_Text) text = Narrow(value->uValue.fText);
        };
        host.answer[ZR_SEL_DialogGet] = [this](EngineBlock* block) {
            EXPECT_EQ(block->fHandle, kDialog);
            PA_Variable* value = At<PA_Variable>(block->fParam1);
            EXPECT_EQ(value->fType, eVK_Undefined);
            name = Narrow(block->fName);
            element = block->fParam2;
            *value = PA_CreateVariable(kind);
            PA_SetRealVariable(value, number);
            PA_SetLongintVariable(value, (int)number);
            if (kind == eVK_Text) value->uValue.fText = host.String(text.c_str());
        };
        host.answer[ZR_SEL_LocaliseString] = [this](EngineBlock* block) {
            *At<PA_Unistring>(block->fParam1) = host.String((Narrow(block->fName) + " in words").c_str());
        };
    }
};

std::string Contents(ZR_Text* text) { return Narrow(*text->GetUnistringPtr()); }

}  // namespace

TEST(BridgeDialogs, Alert_OfText_SendsItWhole) {
    FakeHost host;
    PA_Alert(Wide(std::string(1000, 'x')));
    EXPECT_EQ(host.last().selector, ZR_SEL_Alert);
    EXPECT_EQ(host.last().in.fLength1, 1000);
    PA_Alert(nullptr);
    EXPECT_EQ(host.last().in.fLength1, 0);
}

TEST(BridgeDialogs, OpenDialog_OfAProjectForm_SendsEverything) {
    FakeHost host;
    host.answer[ZR_SEL_OpenDialog] = [](EngineBlock* block) { block->fHandle = kDialog; };
    PA_Rect bounds = {1, 2, 3, -4};  // top, left, bottom, right
    Wide title("Title");
    EXPECT_EQ(PA_OpenDialog(nullptr, Wide("Debugger_New"), title, 1, bounds, true), kDialog);
    const EngineBlock& in = host.last().in;
    EXPECT_EQ(host.calls.size(), 1u);
    EXPECT_EQ(in.fParam1, 0);
    EXPECT_EQ(Narrow(in.fName), "Debugger_New");
    EXPECT_EQ(in.fParam2, (int64_t)(intptr_t)title.data());
    EXPECT_EQ(in.fLength2, 5);
    EXPECT_EQ(in.fParam3, 1);
    EXPECT_EQ((uint64_t)in.fParam4, 0x0003'FFFC'0001'0002ull);  // left lowest, then top, right, bottom
    EXPECT_EQ(in.fFlags, 1);
}

TEST(BridgeDialogs, OpenDialog_OfATableForm_LooksTheTableUp) {
    FakeHost host;
    host.answer[ZR_SEL_TableAndFieldNumbers] = [](EngineBlock* block) { block->fParam1 = 9; };
    EXPECT_EQ(PA_OpenDialog(Wide("[Invoices]"), Wide("Entry"), nullptr, 1, {}, false), nullptr);
    EXPECT_EQ(host.last().selector, ZR_SEL_OpenDialog);
    EXPECT_EQ(host.last().in.fParam1, 9);
    EXPECT_EQ(host.last().in.fLength2, 0);
    EXPECT_EQ(host.last().in.fFlags, 0);
}

TEST(BridgeDialogs, ModalDialog_Answered_TellsActionAndVariable) {
    FakeHost host;
    int64_t action = 0;
    host.answer[ZR_SEL_ModalDialog] = [&](EngineBlock* block) {
        EXPECT_EQ(block->fHandle, kDialog);
        EXPECT_EQ(block->fName[0], 0);
        block->fParam1 = action;
        block->fName[0] = 'v';
        block->fName[1] = 0;
        block->fError = action == 99 ? 4010 : 0;
    };
    PA_Unichar name[256];
    for (int64_t answer : {0, 1, 2, 99}) {
        action = answer;
        EXPECT_EQ(PA_ModalDialog(kDialog, name), answer == 99 ? 2 : answer);  // an error reads as closed
        EXPECT_EQ(Narrow(name), answer == 99 ? "" : "v");
    }
}

TEST(BridgeDialogs, DialogCalls_Each_SendTheDialog) {
    FakeHost host;
    host.answer[ZR_SEL_DialogWindow] = [](EngineBlock* block) { block->fParam1 = 31; };
    host.answer[ZR_SEL_WindowPtr] = [](EngineBlock* block) { block->fParam2 = block->fParam1 == 31 ? 0x1000 : 0; };
    PA_Dial4DBeginUpdateVariables(kDialog);
    EXPECT_EQ(host.last().selector, ZR_SEL_DialogUpdate);
    EXPECT_EQ(host.last().in.fParam1, 1);
    PA_Dial4DEndUpdateVariables(kDialog);
    EXPECT_EQ(host.last().in.fParam1, 0);
    EXPECT_EQ(PA_Dial4DWindowFromDial4D(kDialog), 31);
    EXPECT_EQ(PA_GetWindowPtr(31), (void*)0x1000);
    EXPECT_EQ(PA_GetWindowPtr(32), nullptr);
    PA_CloseDialog(kDialog);
    EXPECT_EQ(host.last().selector, ZR_SEL_CloseDialog);
    EXPECT_EQ(host.last().in.fHandle, kDialog);
}

TEST(BridgeDialogs, Values_SetAndGetByUnits_UseTheirKind) {
    OneValue dialog;
    PA_Dial4DSetLong(kDialog, Wide("vl"), -4);
    EXPECT_EQ(dialog.kind, eVK_Longint);
    EXPECT_EQ(dialog.element, -1);
    EXPECT_EQ(PA_Dial4DGetLong(kDialog, Wide("vl")), -4);
    EXPECT_EQ(dialog.name, "vl");
    EXPECT_EQ(dialog.element, -1);
    PA_Dial4DSetReal(kDialog, Wide("vr"), 0.5);
    EXPECT_EQ(dialog.kind, eVK_Real);
    EXPECT_EQ(PA_Dial4DGetReal(kDialog, Wide("vr")), 0.5);
    Wide units("text");
    PA_Unistring text = units.record();
    PA_Dial4DSetText(kDialog, Wide("vt"), &text);
    EXPECT_EQ(dialog.text, "text");
    EXPECT_EQ(dialog.element, -1);
    PA_Unistring answer = PA_Dial4DGetText(kDialog, Wide("vt"));
    EXPECT_EQ(Narrow(answer), "text");
    PA_DisposeUnistring(&answer);
    PA_Dial4DSetArrayText(kDialog, Wide("at"), 3, &text);
    EXPECT_EQ(dialog.element, 3);
    answer = PA_Dial4DGetArrayText(kDialog, Wide("at"), 4);
    EXPECT_EQ(dialog.element, 4);
    PA_DisposeUnistring(&answer);
    EXPECT_EQ(PA_Dial4DGetLong(kDialog, Wide("vt")), 0);  // another kind: neutral and freed
    EXPECT_EQ(PA_Dial4DGetReal(kDialog, Wide("vt")), 0.0);
    PA_Variable value = PA_CreateVariable(eVK_Boolean);
    PA_SetBooleanVariable(&value, true);
    PA_Dial4DSet(kDialog, Wide("vb"), &value);
    EXPECT_EQ(dialog.kind, eVK_Boolean);
    EXPECT_EQ(PA_Dial4DGet(kDialog, Wide("vb")).fType, eVK_Boolean);
    PA_Dial4DSet(kDialog, Wide("vb"), (const PA_Variable*)nullptr);
    PA_Dial4DSetText(kDialog, Wide("vt"), nullptr);
    EXPECT_EQ(dialog.text, "");
    PA_Dial4DSetEnterable(kDialog, Wide("vt"), true);
    EXPECT_EQ(dialog.host.last().selector, ZR_SEL_DialogSetEnterable);
    EXPECT_EQ(dialog.host.last().in.fParam1, 1);
    EXPECT_EQ(dialog.host.liveStrings, 0);
}

TEST(BridgeDialogs, Values_SetByByteName_WidenItAndUseTheirKind) {
    OneValue dialog;
    PA_Dial4DSet(kDialog, "vl", 7L);
    EXPECT_EQ(dialog.kind, eVK_Longint);
    EXPECT_EQ(dialog.number, 7);
    PA_Dial4DSet(kDialog, "vl", 8);
    EXPECT_EQ(dialog.kind, eVK_Longint);
    EXPECT_EQ(dialog.number, 8);
    EXPECT_EQ(PA_Dial4DGetLong(kDialog, "vl"), 8);
    PA_Dial4DSet(kDialog, "vb", true);
    EXPECT_EQ(dialog.kind, eVK_Boolean);
    EXPECT_EQ(dialog.number, 1);
    PA_Dial4DSet(kDialog, "vr", 0.25);
    EXPECT_EQ(dialog.kind, eVK_Real);
    EXPECT_EQ(PA_Dial4DGetDouble(kDialog, "vr"), 0.25);
    PA_Dial4DSet(kDialog, "vt", 2.0, (short)2);
    EXPECT_EQ(dialog.kind, eVK_Text);
    EXPECT_EQ(dialog.text, "2.00");
    EXPECT_EQ(dialog.name, "vt");
    PA_Dial4DSetEnterable(kDialog, "vt", false);
    EXPECT_EQ(Narrow(dialog.host.last().in.fName), "vt");
    EXPECT_EQ(dialog.host.last().in.fParam1, 0);
    const char umlaut[] =
        "gr\xFC"
        "n";
    PA_Dial4DSetEnterable(kDialog, umlaut, false);
    EXPECT_EQ(dialog.host.last().in.fName[2], 0xFC);  // Latin-1, without a sign
    PA_Dial4DSetEnterable(kDialog, std::string(300, 'n').c_str(), false);
    EXPECT_EQ(PA_GetUnicharsLength(dialog.host.last().in.fName), 255);
    PA_Dial4DSetEnterable(kDialog, (const char*)nullptr, false);
    EXPECT_EQ(dialog.host.last().in.fName[0], 0);
    EXPECT_EQ(dialog.host.liveStrings, 0);
}

TEST(BridgeDialogs, Texts_SetAndGetByByteName_AreCopied) {
    OneValue dialog;
    ZR_Text text;
    text.Create();
    text.AddString("hello");
    PA_Dial4DSet(kDialog, "vt", &text);
    EXPECT_EQ(dialog.text, "hello");
    PA_Dial4DSetArrayElement(kDialog, "at", 2, &text);
    EXPECT_EQ(dialog.element, 2);
    dialog.text = "answer";
    PA_Dial4DGet(kDialog, "vt", &text);  // what the text held before is gone
    EXPECT_EQ(Contents(&text), "answer");
    dialog.kind = eVK_Longint;
    PA_Dial4DGet(kDialog, "vt", &text);
    EXPECT_EQ(Contents(&text), "");
    PA_Dial4DGet(kDialog, "vt", nullptr);
    PA_Dial4DSet(kDialog, "vt", (ZR_Text*)nullptr);
    EXPECT_EQ(dialog.text, "");
    PA_Dial4DSetArrayElement(kDialog, "at", 2, nullptr);
    text.Dispose();
    EXPECT_EQ(dialog.host.liveStrings, 0);
}

TEST(BridgeDialogs, LocalisedTexts_SetByKey_AreLookedUp) {
    OneValue dialog;
    PA_Dial4DSetLocalized(kDialog, "vt", "title");
    EXPECT_EQ(dialog.text, "title in words");
    EXPECT_EQ(dialog.element, -1);
    PA_Dial4DSetArrayElementLocalized(kDialog, "at", 5, "row");
    EXPECT_EQ(dialog.text, "row in words");
    EXPECT_EQ(dialog.element, 5);
    EXPECT_EQ(dialog.host.liveStrings, 0);
}
