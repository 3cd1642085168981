// Commands that the host runs, and what happens to its OK afterwards.

#include "runtime/ZR_API_CommandTable_Private.h"

static void Forward(ZR_CommandCall* call, ZR_Executer_Token* result) {
    *call->wrongType = !call->context->ExecuteGenericCommand(call->id, nullptr, call->parameters, result);
}

void zrExe_ForwardKeepingValue(ZR_CommandCall* call) { Forward(call, call->result); }

void zrExe_ForwardWithoutValue(ZR_CommandCall* call) { Forward(call, nullptr); }

void zrExe_ForwardKeepingValueThenOK(ZR_CommandCall* call) {
    Forward(call, call->result);
    call->context->SetOKVariable();
}

void zrExe_ForwardWithoutValueThenOK(ZR_CommandCall* call) {
    Forward(call, nullptr);
    call->context->SetOKVariable();
}

// 41 (T)|(T,T): a message; the second form is tried only if the first failed for its count.
void zrExe_AlertMessage(ZR_CommandCall* call) {
    static constexpr ZR_CommandForms kForms = Forms("(T)|(T,T)");
    for (int i = 0; i < kForms.formCount; ++i) {
        if (call->context->Execute4DCommandCheckParam(call->parameters, const_cast<short*>(kForms.kinds[i]),
                                                      kForms.counts[i], call->wrongCount, call->wrongType)) {
            Forward(call, nullptr);
            return;
        }
        if (!*call->wrongCount) return;
    }
}

// 678 (T,V): a picture from a file; OK tells whether there is one.
void zrExe_ReadPictureFile(ZR_CommandCall* call) {
    Forward(call, nullptr);
    ZR_Executer_Variable* picture = call->Variable(2);
    call->context->SetOKVariable(picture && picture->kind == ZR_EXE_Picture && picture->picture.nativeData.count >= 1);
}

// 692 (I,V,T)|(I,F,T): a picture into a BLOB; an empty one is not even tried.
void zrExe_PictureToBlob(ZR_CommandCall* call) {
    if (call->Parameter(1)->GetPictureSize() < 1) {
        call->context->SetOKVariable(false);
        return;
    }
    Forward(call, nullptr);
    call->context->SetOKVariable();
}

// 229: array variables, and at the end < or >.
void zrExe_SortArrays(ZR_CommandCall* call) {
    for (long i = 1; i <= call->Count(); ++i) {
        ZR_Executer_Token* token = call->Parameter(i);
        if (zrExe_IsVariableToken(token->kind)) continue;
        long comparison = token->GetComparison();
        bool direction = comparison == ZREXE_COMPARISON_LESS || comparison == ZREXE_COMPARISON_GREATER;
        if (i > 1 && i == call->Count() && direction) continue;
        *call->wrongType = true;
        return;
    }
    Forward(call, nullptr);
}

// 955 (B,X,X), or a number and two parameters or more.
void zrExe_Choose(ZR_CommandCall* call) {
    static constexpr ZR_CommandForms kForm = Forms("(B,X,X)");
    if (!call->context->Execute4DCommandCheckParam(call->parameters, const_cast<short*>(kForm.kinds[0]), 3,
                                                   call->wrongCount, call->wrongType)) {
        *call->wrongCount = call->Count() < 2;
        *call->wrongType = false;
        if (*call->wrongCount) return;
        if (!zrExe_IsNumberToken(call->Parameter(1)->kind)) {
            call->context->Fail(kErrorFirstParameterType);
            return;
        }
    }
    Forward(call, call->result);
}
