// The virtual structure of a context, as commands for 4D code.

#include "language/ZR_API_VirtualStructure.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Plugin.h"
#include "runtime/ZR_API_Context.h"

// What a call works on: the context of parameter 1 if there is an Executer, else the caller's own list.
struct Target {
    ZR_ExecutionContext* context;
    ZR_Handle* list;
    long* counter;
};

static ZR_ExecutionContext* ContextOfParameter(ZR_Executer* executer, PluginBlock* block) {
    return executer ? executer->GetExecutionContextPtrByReference(PA_GetLongParameter(block, 1)) : nullptr;
}

static Target FindTarget(ZR_Executer* executer, PluginBlock* block, ZR_Handle* list, long* counter) {
    if (!executer) return {nullptr, list, counter};
    ZR_ExecutionContext* context = ContextOfParameter(executer, block);
    if (!context) return {nullptr, nullptr, nullptr};
    return {context, &context->virtualStructure, &context->nextVirtualReference};
}

static void Return32(PluginBlock* block, long value) {
    if (!block || !block->result) return;
    int number = static_cast<int>(value);
    memcpy(block->result, &number, sizeof number);
}

static long Finish(const Target& target, PluginBlock* block, long reference, long error) {
    Return32(block, reference);
    if (target.context) target.context->lastError = error;
    return error;
}

static ZR_Executer_VirtualStructure* Append(ZR_Handle* list) {
    return reinterpret_cast<ZR_Executer_VirtualStructure*>(list->AppendGetPtr());
}

// The common course: an existing record gets the caption, a new one is made if its key is good.
template <typename Make>
static long SetOrMake(const Target& target, PluginBlock* block, ZR_Executer_VirtualStructure* existing, bool keyIsGood,
                      ZR_Text* caption, Make make) {
    if (existing) {
        existing->SetVirtualName(caption);
        return Finish(target, block, existing->reference, 0);
    }
    if (!keyIsGood) return Finish(target, block, 0, kErrorNoVirtualEntry);
    ZR_Executer_VirtualStructure* fresh = Append(target.list);
    if (!fresh) return Finish(target, block, 0, kErrorNoVirtualEntry);
    make(fresh, (*target.counter)++);
    return Finish(target, block, fresh->reference, 0);
}

long zrExe_CreateVirtualStructureTable(ZR_Executer* executer, PluginBlock* block, ZR_Handle* list, long* counter,
                                       short first) {
    Target target = FindTarget(executer, block, list, counter);
    if (!target.list || !target.counter) return Finish(target, block, 0, 0);
    long table = PA_GetLongParameter(block, first);
    ZR_Text caption;
    caption.CreateFrom4DParameter(block, static_cast<short>(first + 1));
    long error = SetOrMake(
        target, block, ZR_EXE_GetVStructureByTableNo(target.list, table), table >= 1, &caption,
        [&](ZR_Executer_VirtualStructure* fresh, long reference) { fresh->CreateTable(table, &caption, reference); });
    caption.Dispose();
    return error;
}

long zrExe_CreateVirtualStructureField(ZR_Executer* executer, PluginBlock* block, ZR_Handle* list, long* counter,
                                       short first) {
    Target target = FindTarget(executer, block, list, counter);
    if (!target.list || !target.counter) return Finish(target, block, 0, 0);
    long table = PA_GetLongParameter(block, first);
    long field = PA_GetLongParameter(block, static_cast<short>(first + 1));
    ZR_Text caption;
    caption.CreateFrom4DParameter(block, static_cast<short>(first + 2));
    long error =
        SetOrMake(target, block, ZR_EXE_GetVStructureByFieldNo(target.list, table, field), table >= 1 && field >= 1,
                  &caption, [&](ZR_Executer_VirtualStructure* fresh, long reference) {
                      fresh->CreateField(table, field, &caption, reference);
                  });
    caption.Dispose();
    return error;
}

long zrExe_CreateVirtualStructureMethod(ZR_Executer* executer, PluginBlock* block, ZR_Handle* list, long* counter,
                                        short first) {
    Target target = FindTarget(executer, block, list, counter);
    if (!target.list || !target.counter) return Finish(target, block, 0, 0);
    ZR_Text name, caption;
    name.CreateFrom4DParameter(block, first);
    caption.CreateFrom4DParameter(block, static_cast<short>(first + 1));
    long error = SetOrMake(target, block, ZR_EXE_GetVStructureByMethodname(target.list, &name), name.count > 0,
                           &caption, [&](ZR_Executer_VirtualStructure* fresh, long reference) {
                               fresh->CreateMethod(&name, &caption, reference, 0);
                           });
    name.Dispose();
    caption.Dispose();
    return error;
}

void zrExe_ActivateVStructure(ZR_Executer* executer, PluginBlock* block) {
    ZR_ExecutionContext* context = ContextOfParameter(executer, block);
    if (context) context->useVirtualStructure = PA_GetLongParameter(block, 2) == 1;
}

static void ReturnHandle(PluginBlock* block, PA_Handle handle) {
    if (block && block->result) memcpy(block->result, &handle, sizeof handle);
}

void zrExe_VStructureToBlob(ZR_Executer* executer, PluginBlock* block) {
    ZR_ExecutionContext* context = ContextOfParameter(executer, block);
    if (!context) {
        ReturnHandle(block, nullptr);
        return;
    }
    ZR_Handle blob;
    blob.Create(1, 0);
    ZR_EXE_VStructureToBlob(&context->virtualStructure, &blob);
    ReturnHandle(block, FromUserData(blob.data, static_cast<int>(blob.count)));
    blob.Dispose();
}

void zrExe_BlobToVStructure(ZR_Executer* executer, PluginBlock* block) {
    ZR_ExecutionContext* context = ContextOfParameter(executer, block);
    if (!context) return;
    ZR_Handle blob;
    blob.CreateFrom4DParameter(block, 2);
    ZR_EXE_BlobToVStructure(&blob, &context->virtualStructure);
    blob.Dispose();
}
