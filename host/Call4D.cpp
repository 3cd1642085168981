// The door of the host: one small function a selector, named as the selector is, so that a selector without a function
// does not compile. What comes in may be null, negative or absurd; what is an address is null or right.
#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>

#include "host/CommandCall.h"
#include "host/Host_Private.h"
#include "host/Memory.h"
#include "host/Native.h"
#include "host/Objects.h"
#include "host/Pictures.h"
#include "host/Text.h"
#include "host/Tokens.h"

namespace zrhost {

namespace {

using Block = EngineBlock;

template <class T>
T* At(int64_t address) {
    return reinterpret_cast<T*>(address);
}

int64_t Address(const void* pointer) { return reinterpret_cast<int64_t>(pointer); }

PA_Variable* Record(int64_t address) { return At<PA_Variable>(address); }

// Units at an address; null or a negative length is the empty text.
std::u16string_view Units(int64_t address, int64_t length) {
    if (!address || length <= 0 || length > kLargestHandle) return {};
    return {At<const char16_t>(address), size_t(length)};
}

int16_t Answer(bool ok, int16_t error = ZR_ERR_PARAMETER) { return ok ? int16_t(ZR_ERR_NONE) : error; }

// Memory -----------------------------------------------------------------------------------------------------------

int16_t ServeHandle(Block& block, Host*) {
    switch (block.fParam1) {
        case ZR_HANDLE_NEW: block.fHandle = NewHandle(block.fParam2); return Answer(block.fHandle, ZR_ERR_MEMORY);
        case ZR_HANDLE_DISPOSE: return Answer(DisposeHandle(block.fHandle));
        case ZR_HANDLE_GET_SIZE: {
            int64_t size = HandleSize(block.fHandle);
            block.fParam2 = std::max<int64_t>(size, 0);
            return Answer(size >= 0);
        }
        case ZR_HANDLE_SET_SIZE:
            if (ResizeHandle(block.fHandle, block.fParam2)) return ZR_ERR_NONE;
            return HandleBytes(block.fHandle) && block.fParam2 >= 0 ? int16_t(ZR_ERR_MEMORY)
                                                                    : int16_t(ZR_ERR_PARAMETER);
        case ZR_HANDLE_LOCK:
            block.fParam2 = Address(HandleBytes(block.fHandle));
            return Answer(LockHandle(block.fHandle));
        case ZR_HANDLE_UNLOCK: return Answer(UnlockHandle(block.fHandle));
        case ZR_HANDLE_GET_STATE: {
            int locks = HandleLocks(block.fHandle);
            block.fParam2 = std::max(locks, 0);
            return Answer(locks >= 0);
        }
        case ZR_HANDLE_SET_STATE: return Answer(SetHandleLocks(block.fHandle, block.fParam2));
        default: return ZR_ERR_PARAMETER;
    }
}

int16_t ServeUserData(Block& block, Host*) {
    if (block.fParam1 == ZR_USERDATA_FROM) {
        block.fHandle = nullptr;
        if (block.fParam3 < 0 || (block.fParam3 > 0 && !block.fParam2)) return ZR_ERR_PARAMETER;
        block.fHandle = NewHandle(block.fParam3);
        if (!block.fHandle) return ZR_ERR_MEMORY;
        if (block.fParam3) std::memcpy(*block.fHandle, At<void>(block.fParam2), size_t(block.fParam3));
        return ZR_ERR_NONE;
    }
    if (block.fParam1 != ZR_USERDATA_TO) return ZR_ERR_PARAMETER;
    std::span<const uint8_t> bytes = HandleSpan(block.fHandle);
    block.fParam3 = int64_t(bytes.size());
    if (block.fParam2 && !bytes.empty()) std::memcpy(At<void>(block.fParam2), bytes.data(), bytes.size());
    return Answer(HandleBytes(block.fHandle) != nullptr);
}

// Strings ----------------------------------------------------------------------------------------------------------

int16_t ServeCreateUnistring(Block& block, Host*) {
    auto* record = At<PA_Unistring>(block.fParam1);
    if (!record) return ZR_ERR_PARAMETER;
    if (!MakeUnistring(record, Units(block.fParam2, block.fLength2))) return ZR_ERR_MEMORY;
    return Answer(block.fLength2 >= 0 && block.fLength2 <= kLargestHandle);
}

int16_t ServeSetUnistring(Block& block, Host*) {
    auto* record = At<PA_Unistring>(block.fParam1);
    if (!record) return ZR_ERR_PARAMETER;
    if (!AssignUnistring(record, Units(block.fParam2, block.fLength2))) return ZR_ERR_MEMORY;
    return Answer(block.fLength2 >= 0 && block.fLength2 <= kLargestHandle);
}

int16_t ServeDisposeUnistring(Block& block, Host*) {
    auto* record = At<PA_Unistring>(block.fParam1);
    if (!record) return ZR_ERR_PARAMETER;
    PA_Unistring copy = *record;  // the caller clears its record itself
    FreeUnistring(&copy);
    return ZR_ERR_NONE;
}

int16_t ServeCompareUnibuffers(Block& block, Host*) {
    block.fParam1 = CompareText(Units(block.fParam1, block.fLength1), Units(block.fParam2, block.fLength2),
                                block.fParam3 == 1, block.fParam4 == 1);
    return ZR_ERR_NONE;
}

int16_t ServeConvertCharset(Block& block, Host*) {
    int64_t room = block.fParam2 ? block.fLength2 : 0;
    bool sane = block.fLength1 >= 0 && block.fLength2 >= 0 && (block.fParam1 || block.fLength1 == 0);
    std::span<const uint8_t> source;
    if (sane && block.fLength1) source = {At<const uint8_t>(block.fParam1), size_t(block.fLength1)};
    int from = int(std::clamp<int64_t>(block.fParam3, -1, 1000)),
        to = int(std::clamp<int64_t>(block.fParam4, -1, 1000));
    int64_t written = sane ? ConvertBytes(source, from, At<uint8_t>(block.fParam2), room, to) : -1;
    block.fLength2 = std::max<int64_t>(written, 0);
    return Answer(written >= 0);
}

int16_t ServeLocaliseString(Block& block, Host*) {  // no resources: the key stands for itself
    auto* record = At<PA_Unistring>(block.fParam1);
    return record ? Answer(MakeUnistring(record, BlockText(block.fName)), ZR_ERR_MEMORY) : int16_t(ZR_ERR_PARAMETER);
}

int16_t ServeLocaliseStringByID(Block& block, Host*) {
    auto* record = At<PA_Unistring>(block.fParam1);
    return record ? Answer(MakeUnistring(record, u""), ZR_ERR_MEMORY) : int16_t(ZR_ERR_PARAMETER);
}

// Variables --------------------------------------------------------------------------------------------------------

int16_t GetVariable(const VariableTable& table, Block& block) {
    if (!block.fParam1) return ZR_ERR_PARAMETER;
    table.get(BlockText(block.fName), Record(block.fParam1));
    return ZR_ERR_NONE;
}

int16_t SetVariable(VariableTable& table, Block& block) {
    std::u16string_view name = BlockText(block.fName);
    if (!block.fParam1 || name.empty()) return ZR_ERR_PARAMETER;
    return Answer(table.set(name, *Record(block.fParam1), /*make*/ (block.fFlags & 1) != 0));
}

int16_t ServeGetProcessVariable(Block& block, Host* host) {
    return GetVariable(host->currentProcess().variables, block);
}
int16_t ServeSetProcessVariable(Block& block, Host* host) {
    return SetVariable(host->currentProcess().variables, block);
}
int16_t ServeGetInterprocessVariable(Block& block, Host* host) {
    return GetVariable(host->inside().interprocess, block);
}
int16_t ServeSetInterprocessVariable(Block& block, Host* host) {
    return SetVariable(host->inside().interprocess, block);
}

int16_t ServeClearVariable(Block& block, Host*) {
    if (!block.fParam1) return ZR_ERR_PARAMETER;
    ClearRecord(Record(block.fParam1));
    return ZR_ERR_NONE;
}

int16_t ServeCopyVariable(Block& block, Host*) {
    if (!block.fParam1 || !block.fParam2 || block.fParam1 == block.fParam2)
        return Answer(block.fParam1 == block.fParam2 && block.fParam1);
    return Answer(CopyRecord(*Record(block.fParam1), Record(block.fParam2)), ZR_ERR_MEMORY);
}

int16_t ServeResizeArray(Block& block, Host*) {
    return Answer(block.fParam1 && ResizeRecord(Record(block.fParam1), block.fParam2));
}

int16_t ServePointerByName(Block& block, Host* host) {
    std::u16string_view name = BlockText(block.fName);
    block.fHandle = nullptr;
    bool interprocess = name.starts_with(u"<>");
    if (interprocess) name.remove_prefix(2);
    if (name.empty()) return ZR_ERR_PARAMETER;
    PointerBlock pointer = PointerToVariable(host->inside(), name, interprocess);
    block.fHandle = NewHandle(std::span(reinterpret_cast<const uint8_t*>(&pointer), sizeof pointer));
    return Answer(block.fHandle, ZR_ERR_MEMORY);
}

const PointerBlock* PointerOf(const Block& block) {
    std::span<const uint8_t> bytes = HandleSpan(block.fHandle);
    return bytes.size() >= sizeof(PointerBlock) ? reinterpret_cast<const PointerBlock*>(bytes.data()) : nullptr;
}

int16_t ServePointerProperties(Block& block, Host* host) {
    const PointerBlock* pointer = PointerOf(block);
    block.fParam1 = pointer ? PointerTargetKind(host->inside(), *pointer) : int(eVK_Undefined);
    block.fParam2 = pointer && pointer->fIsVariable == 1 ? pointer->fElement : 0;
    block.fParam3 = 0;
    return Answer(pointer != nullptr);
}

int16_t ServeGetPointerValue(Block& block, Host* host) {
    const PointerBlock* pointer = PointerOf(block);
    if (!block.fParam1) return ZR_ERR_PARAMETER;
    ResetRecord(Record(block.fParam1));
    if (!pointer) return ZR_ERR_PARAMETER;
    if (pointer->fIsVariable != 1) return ZR_ERR_NO_RECORD;
    ReadPointer(host->inside(), *pointer, Record(block.fParam1));
    return ZR_ERR_NONE;
}

int16_t ServeSetPointerValue(Block& block, Host* host) {
    const PointerBlock* pointer = PointerOf(block);
    if (!block.fParam1 || !pointer) return ZR_ERR_PARAMETER;
    if (pointer->fIsVariable != 1) return ZR_ERR_NO_RECORD;
    return Answer(WritePointer(host->inside(), *pointer, *Record(block.fParam1)));
}

// Objects and collections ------------------------------------------------------------------------------------------

// A record as a property or element is kept: an array becomes a collection.
Value PropertyValue(const PA_Variable& record) {
    Value value = ReadRecord(record);
    if (!IsArrayKind(value.kind())) return value;
    Ref<Collection> collection = NewCollection();
    if (value.elements().size() > 1)
        collection->assign(std::vector<Value>(value.elements().begin() + 1, value.elements().end()));
    return Value(collection);
}

std::u16string_view KeyOf(const Block& block) {
    const auto* key = At<const PA_Unistring>(block.fParam2);
    return key ? UnistringText(*key) : std::u16string_view();
}

int16_t ServeObjectAddRef(Block& block, Host*) {
    Object* object = CheckedObject(At<void>(block.fParam1));
    Retain(object);
    return Answer(object);
}

int16_t ServeObjectRelease(Block& block, Host*) {
    Object* object = CheckedObject(At<void>(block.fParam1));
    Release(object);
    return Answer(object);
}

int16_t ServeObjectGetProperty(Block& block, Host*) {
    if (!block.fParam3) return ZR_ERR_PARAMETER;
    Object* object = CheckedObject(At<void>(block.fParam1));
    if (!object) {
        ResetRecord(Record(block.fParam3));
        return ZR_ERR_PARAMETER;
    }
    return Answer(WriteRecord(Record(block.fParam3), object->get(KeyOf(block))), ZR_ERR_MEMORY);
}

int16_t ServeObjectSetProperty(Block& block, Host*) {
    Object* object = CheckedObject(At<void>(block.fParam1));
    if (!object || !block.fParam2 || !block.fParam3) return ZR_ERR_PARAMETER;
    object->set(KeyOf(block), PropertyValue(*Record(block.fParam3)));
    return ZR_ERR_NONE;
}

int16_t ServeObjectHasProperty(Block& block, Host*) {
    Object* object = CheckedObject(At<void>(block.fParam1));
    block.fParam2 = object && object->has(KeyOf(block));
    return Answer(object);
}

int16_t ServeCollectionCreate(Block& block, Host*) {
    block.fParam1 = Address(NewCollection().detach());
    return Answer(block.fParam1, ZR_ERR_MEMORY);
}

int16_t ServeCollectionAddRef(Block& block, Host*) {
    Collection* collection = CheckedCollection(At<void>(block.fParam1));
    Retain(collection);
    return Answer(collection);
}

int16_t ServeCollectionRelease(Block& block, Host*) {
    Collection* collection = CheckedCollection(At<void>(block.fParam1));
    Release(collection);
    return Answer(collection);
}

int16_t ServeCollectionLength(Block& block, Host*) {
    Collection* collection = CheckedCollection(At<void>(block.fParam1));
    block.fParam2 = collection ? int64_t(collection->size()) : 0;
    return Answer(collection);
}

int16_t ServeCollectionGetElement(Block& block, Host*) {
    if (!block.fParam3) return ZR_ERR_PARAMETER;
    Collection* collection = CheckedCollection(At<void>(block.fParam1));
    ResetRecord(Record(block.fParam3));
    if (!collection || block.fParam2 < 0 || block.fParam2 >= int64_t(collection->size())) return ZR_ERR_PARAMETER;
    return Answer(WriteRecord(Record(block.fParam3), collection->at(size_t(block.fParam2))), ZR_ERR_MEMORY);
}

int16_t ServeCollectionSetElement(Block& block, Host*) {
    Collection* collection = CheckedCollection(At<void>(block.fParam1));
    if (!collection || block.fParam2 < 0 || !block.fParam3) return ZR_ERR_PARAMETER;
    return Answer(collection->set(size_t(block.fParam2), PropertyValue(*Record(block.fParam3))));
}

// Language ---------------------------------------------------------------------------------------------------------

constexpr int64_t kMostParameters = 32767;

// The parameters of a call: a table of addresses whose null entries stand for undefined values.
class Parameters {
  public:
    Parameters(int64_t table, int64_t count) {
        sane_ = count >= 0 && count <= kMostParameters && (table || count == 0);
        if (!sane_) return;
        count_ = int(count);
        if (count_ > int(few_.size())) many_.resize(size_t(count_));
        for (int i = 0; i < count_; ++i) {
            PA_Variable* record = At<PA_Variable*>(table)[i];
            if (!record && !missing_) missing_ = std::make_unique<Variable>();
            data()[i] = record ? record : &missing_->record();
        }
    }
    bool sane() const { return sane_; }
    int count() const { return count_; }
    PA_Variable** data() { return many_.empty() ? few_.data() : many_.data(); }
    std::vector<Value> values() {
        std::vector<Value> values;
        for (int i = 0; i < count_; ++i) values.push_back(ReadRecord(*data()[i]));
        return values;
    }

  private:
    bool sane_ = false;
    int count_ = 0;
    std::array<PA_Variable*, 16> few_;
    std::vector<PA_Variable*> many_;
    std::unique_ptr<Variable> missing_;
};

// Where a call leaves its result: the caller's record, or nowhere.
class Result {
  public:
    explicit Result(int64_t address) : record_(Record(address)) {
        if (!record_) unwanted_ = std::make_unique<Variable>();
        if (!record_) record_ = &unwanted_->record();
        ResetRecord(record_);
    }
    PA_Variable* record() { return record_; }
    void write(const Value& value) { WriteRecord(record_, value); }

  private:
    std::unique_ptr<Variable> unwanted_;
    PA_Variable* record_;
};

int16_t ServeExecuteCommand(Block& block, Host* host) {
    Parameters parameters(block.fParam1, block.fParam4);
    Result result(block.fParam2);
    if (!parameters.sane()) return ZR_ERR_PARAMETER;
    bool known = block.fParam3 >= 1 && block.fParam3 <= Host::kLastCommand;
    int id = known ? int(block.fParam3) : 0;
    return RunCommand(*host, id, parameters.data(), parameters.count(), result.record());
}

int16_t ServeExecuteMember(Block& block, Host* host) {
    Parameters parameters(block.fParam1, block.fParam4);
    Result result(block.fParam2);
    if (!parameters.sane() || parameters.count() < 2) return ZR_ERR_PARAMETER;
    std::vector<Value> values = parameters.values();
    Value answer;
    int16_t error = RunMember(*host, values[0], values[1].text(), std::span(values).subspan(2), &answer);
    result.write(answer);
    return error;
}

int16_t ServeExecuteMethod(Block& block, Host* host) {
    Parameters parameters(block.fParam2, block.fParam3);
    Result result(block.fParam4);
    if (!parameters.sane()) return ZR_ERR_PARAMETER;
    std::vector<Value> values = parameters.values();
    Value answer;
    int16_t error = RunMethodOrLine(*host, Units(block.fParam1, block.fLength1), values, &answer);
    result.write(answer);
    return error;
}

int16_t ServeExecuteFunction(Block& block, Host* host) {
    Result result(block.fParam4);
    Value answer;
    int16_t error = EvaluateText(*host, Units(block.fParam1, block.fLength1), &answer);
    result.write(answer);
    return error;
}

// The host's own tokens: 16-bit words in a handle.
std::span<uint16_t> TokensOf(PA_Handle handle) {
    std::span<const uint8_t> bytes = HandleSpan(handle);
    return {bytes.empty() ? nullptr : reinterpret_cast<uint16_t*>(*handle), bytes.size() / sizeof(uint16_t)};
}

int16_t ServeTokenize(Block& block, Host* host) {
    const std::vector<uint16_t> words = Tokenize(*host, Units(block.fParam1, block.fLength1));
    block.fHandle =
        NewHandle(std::span(reinterpret_cast<const uint8_t*>(words.data()), words.size() * sizeof(uint16_t)));
    return Answer(block.fHandle != nullptr, ZR_ERR_MEMORY);
}

int16_t ServeDetokenize(Block& block, Host* host) {
    auto* record = At<PA_Unistring>(block.fParam1);
    const std::optional<std::u16string> code = Detokenize(*host, TokensOf(block.fHandle));
    if (!record || !code) return ZR_ERR_PARAMETER;
    return Answer(AssignUnistring(record, *code), ZR_ERR_MEMORY);
}

int16_t ServeByteSwapTokens(Block& block, Host*) {
    return Answer(ByteSwapTokens(TokensOf(block.fHandle)), ZR_ERR_PARAMETER);
}

int16_t ServeExecuteTokens(Block& block, Host* host) {
    const std::optional<std::u16string> code = Detokenize(*host, TokensOf(block.fHandle));
    if (!code) return ZR_ERR_PARAMETER;
    for (size_t at = 0; at < code->size();) {
        const size_t end = std::min(code->find_first_of(u"\r\n", at), code->size());
        const std::u16string_view line = std::u16string_view(*code).substr(at, end - at);
        Value answer;
        if (line.find_first_not_of(u" \t") != line.npos)
            if (int16_t error = RunMethodOrLine(*host, line, {}, &answer)) return error;
        at = end + 1;
    }
    return ZR_ERR_NONE;
}

int16_t ServeMethodID(Block& block, Host* host) {
    block.fParam1 = host->methodNumber(BlockText(block.fName));
    return ZR_ERR_NONE;
}

int16_t ServeMethodByID(Block& block, Host* host) {
    Parameters parameters(block.fParam2, block.fParam3);
    Result result(block.fParam4);
    if (!parameters.sane()) return ZR_ERR_PARAMETER;
    std::vector<Value> values = parameters.values();
    Value answer;
    int number = int(std::clamp<int64_t>(block.fParam1, 0, INT32_MAX));
    int16_t error = RunRegistered(*host, number, values, &answer);
    result.write(answer);
    return error;
}

int16_t ServeCommandName(Block& block, Host* host) {
    CommandInfo info;
    if (block.fParam1 >= 1 && block.fParam1 <= Host::kLastCommand) info = host->command(int(block.fParam1));
    FillBlockText(block.fName, FromUtf8(info.name));
    return Answer(info.id != 0, ZR_ERR_UNKNOWN_COMMAND);
}

int16_t ServeHostVersion(Block& block, Host* host) {
    if (block.fParam3 != ZR_HOST_VERSION_REQUEST) return ZR_ERR_PARAMETER;
    block.fParam1 = host->options().version;
    block.fFlags = host->options().compiled ? ZR_HOST_COMPILED | ZR_HOST_DATABASE_COMPILED : 0;
    return ZR_ERR_NONE;
}

// Formats ----------------------------------------------------------------------------------------------------------

int Small(int64_t number) { return int(std::clamp<int64_t>(number, INT32_MIN, INT32_MAX)); }

int16_t ServeFormatReal(Block& block, Host* host) {
    FillBlockText(block.fText, FormatReal(block.fReal, BlockText(block.fName), host->inside().locale));
    return ZR_ERR_NONE;
}

int16_t ServeFormatLongint(Block& block, Host* host) {
    FillBlockText(block.fText, FormatLongint(block.fParam1, BlockText(block.fName), host->inside().locale));
    return ZR_ERR_NONE;
}

int16_t ServeFormatDate(Block& block, Host* host) {
    constexpr int kAsInCode = 2;  // of this selector: a date as it stands in code, in digits that EvalDate reads back
    constexpr int kSystemShort = 7;
    int format = Small(block.fParam4) == kAsInCode ? kSystemShort : Small(block.fParam4);
    Date date{Small(block.fParam1), Small(block.fParam2), Small(block.fParam3)};
    FillBlockText(block.fText, FormatDate(date, format, host->inside().locale));
    return ZR_ERR_NONE;
}

int16_t ServeFormatTime(Block& block, Host* host) {
    FillBlockText(block.fText, FormatTime(block.fParam1, Small(block.fParam4), host->inside().locale));
    return ZR_ERR_NONE;
}

int16_t ServeFormatString(Block& block, Host*) {
    FillBlockText(block.fText, FormatString(Units(block.fParam1, block.fLength1), BlockText(block.fName)));
    return ZR_ERR_NONE;
}

int16_t ServeEvalDate(Block& block, Host* host) {
    Date date = ReadDate(BlockText(block.fName), host->inside().locale);
    block.fParam1 = date.day;
    block.fParam2 = date.month;
    block.fParam3 = date.year;
    return ZR_ERR_NONE;
}

int16_t ServeEvalTime(Block& block, Host* host) {
    block.fParam1 = ReadTime(BlockText(block.fName), host->inside().locale);
    return ZR_ERR_NONE;
}

// Structure, records and selections: an empty structure ------------------------------------------------------------

int16_t ServeTableName(Block& block, Host*) {
    block.fName[0] = 0;
    return ZR_ERR_NO_RECORD;
}
int16_t ServeFieldName(Block& block, Host*) {
    block.fName[0] = 0;
    return ZR_ERR_NO_RECORD;
}
int16_t ServeFieldProperties(Block& block, Host*) {
    block.fParam3 = -1;
    block.fLength1 = 0;
    block.fFlags = 0;
    return ZR_ERR_NONE;
}
int16_t ServeTableAndFieldNumbers(Block& block, Host*) {
    block.fParam1 = block.fParam2 = 0;
    return ZR_ERR_NONE;
}
int16_t ServeNextRecord(Block&, Host*) { return ZR_ERR_NO_RECORD; }
int16_t ServeFirstRecord(Block&, Host*) { return ZR_ERR_NO_RECORD; }
int16_t ServeGotoSelectedRecord(Block&, Host*) { return ZR_ERR_NO_RECORD; }
int16_t ServeSelectedRecordNumber(Block& block, Host*) {
    block.fParam2 = 0;
    return ZR_ERR_NO_RECORD;
}
int16_t ServeRecordsInSelection(Block& block, Host*) {
    block.fParam2 = 0;
    return ZR_ERR_NO_RECORD;
}
int16_t ServeRecordNumber(Block& block, Host*) {
    block.fParam2 = -1;
    return ZR_ERR_NO_RECORD;
}
int16_t ServeRelate(Block&, Host*) { return ZR_ERR_NO_RECORD; }
int16_t ServeUseAutomaticRelations(Block&, Host*) { return ZR_ERR_NONE; }
int16_t ServeGetField(Block& block, Host*) {
    if (!block.fParam3) return ZR_ERR_PARAMETER;
    ResetRecord(Record(block.fParam3));
    return ZR_ERR_NO_RECORD;
}
int16_t ServeSetField(Block&, Host*) { return ZR_ERR_NO_RECORD; }

// Pictures ---------------------------------------------------------------------------------------------------------

int16_t ServeCreatePicture(Block& block, Host*) {
    block.fParam1 = 0;
    if (block.fHandle && !HandleBytes(block.fHandle)) return ZR_ERR_PARAMETER;
    block.fParam1 = Address(NewPicture(HandleSpan(block.fHandle)).detach());
    return ZR_ERR_NONE;
}

int16_t ServeDisposePicture(Block& block, Host*) {
    Picture* picture = CheckedPicture(At<void>(block.fParam1));
    Release(picture);
    return Answer(picture || !block.fParam1);
}

int16_t ServeDuplicatePicture(Block& block, Host*) {
    Picture* picture = CheckedPicture(At<void>(block.fParam1));
    Retain(picture);
    block.fParam2 = Address(picture);
    return Answer(picture || !block.fParam1);
}

int16_t ServeGetPictureData(Block& block, Host*) {
    Picture* picture = CheckedPicture(At<void>(block.fParam1));
    auto* type = At<PA_Unistring>(block.fParam3);
    if (type) MakeUnistring(type, u"");
    int64_t index = block.fParam2 == 0 ? 1 : block.fParam2;
    if (!picture || index < 1 || size_t(index) > picture->representations().size()) return ZR_ERR_NO_REPRESENTATION;
    const Representation& one = picture->representations()[size_t(index) - 1];
    if (block.fHandle) {
        if (!HandleBytes(block.fHandle)) return ZR_ERR_PARAMETER;
        if (!ResizeHandle(block.fHandle, int64_t(one.bytes.size()))) return ZR_ERR_MEMORY;
        std::memcpy(HandleBytes(block.fHandle), one.bytes.data(), one.bytes.size());
    }
    if (type) MakeUnistring(type, FromUtf8(one.type));
    return ZR_ERR_NONE;
}

int16_t ServeNativePictureForScreen(Block& block, Host*) {
    Picture* picture = CheckedPicture(At<void>(block.fParam1));
    block.fParam2 = picture ? Address(NativeImage(*picture)) : 0;
    return Answer(picture || !block.fParam1);
}

int16_t ServeNativePictureForPrinting(Block& block, Host*) {
    Picture* picture = CheckedPicture(At<void>(block.fParam1));
    block.fParam2 = picture ? Address(NativeDocument(*picture)) : 0;
    return Answer(picture || !block.fParam1);
}

// Processes --------------------------------------------------------------------------------------------------------

int16_t ServeCurrentProcessNumber(Block& block, Host* host) {
    block.fParam1 = host->currentProcess().number;
    return ZR_ERR_NONE;
}

int16_t ServeYield(Block&, Host* host) {
    Yield(*host);
    return ZR_ERR_NONE;
}

int16_t ServeRunInMainProcess(Block& block, Host* host) {
    auto function = reinterpret_cast<void (*)(void*)>(block.fParam1);
    if (!function) return ZR_ERR_PARAMETER;
    bool ran = false;
    host->runInMainProcess([&] {
        function(At<void>(block.fParam2));
        ran = true;
    });
    return Answer(ran, ZR_ERR_NOT_NOW);
}

// Dialogs: a machine without a screen ------------------------------------------------------------------------------

int16_t ServeAlert(Block& block, Host* host) {
    if (host->options().alert) host->options().alert(Units(block.fParam1, block.fLength1));
    return ZR_ERR_NONE;
}
int16_t ServeOpenDialog(Block& block, Host*) {
    block.fHandle = nullptr;
    return ZR_ERR_NO_DIALOG;
}
int16_t ServeModalDialog(Block& block, Host*) {
    block.fParam1 = 2;  // closed
    block.fName[0] = 0;
    return ZR_ERR_NO_DIALOG;
}
int16_t ServeCloseDialog(Block&, Host*) { return ZR_ERR_NO_DIALOG; }
int16_t ServeDialogUpdate(Block&, Host*) { return ZR_ERR_NO_DIALOG; }
int16_t ServeDialogSet(Block&, Host*) { return ZR_ERR_NO_DIALOG; }
int16_t ServeDialogGet(Block& block, Host*) {
    if (block.fParam1) ResetRecord(Record(block.fParam1));
    return ZR_ERR_NO_DIALOG;
}
int16_t ServeDialogSetEnterable(Block&, Host*) { return ZR_ERR_NO_DIALOG; }
int16_t ServeDialogWindow(Block& block, Host*) {
    block.fParam1 = 0;
    return ZR_ERR_NO_DIALOG;
}
int16_t ServeWindowPtr(Block& block, Host*) {
    block.fParam2 = 0;
    return ZR_ERR_NO_DIALOG;
}
int16_t ServeCustomizeDesignMode(Block& block, Host*) {
    Release(CheckedPicture(At<void>(block.fParam1)));  // taken
    return ZR_ERR_NONE;
}

// Memory and values outlive a host, so that what a module still holds can be given back after its end.
bool NeedsHost(int selector) {
    bool memoryOrText = selector == ZR_SEL_Handle || selector == ZR_SEL_UserData ||
                        (selector <= ZR_SEL_CreateUnistring && selector >= ZR_SEL_LocaliseStringByID);
    bool values = selector == ZR_SEL_ClearVariable || selector == ZR_SEL_CopyVariable ||
                  selector == ZR_SEL_ResizeArray ||
                  (selector <= ZR_SEL_ObjectAddRef && selector >= ZR_SEL_CollectionSetElement) ||
                  (selector <= ZR_SEL_CreatePicture && selector >= ZR_SEL_NativePictureForPrinting);
    return !memoryOrText && !values;
}

}  // namespace

void Host::Call4D(int selector, EngineBlock* block) {
    if (!block) return;
    Host* host = active();
    int16_t (*serve)(EngineBlock&, Host*) = nullptr;
    switch (selector) {
#define ZR_X(name, number, in, out) \
    case number: serve = Serve##name; break;
        ZR_HOST_SELECTORS(ZR_X)
#undef ZR_X
        default: block->fError = ZR_ERR_UNKNOWN_SELECTOR; return;
    }
    if (!host && NeedsHost(selector)) {
        block->fError = ZR_ERR_NOT_NOW;
        return;
    }
    try {
        block->fError = serve(*block, host);
    } catch (const std::bad_alloc&) { block->fError = ZR_ERR_MEMORY; } catch (...) {  // no exception passes the door
        block->fError = ZR_ERR_PARAMETER;
    }
}

}  // namespace zrhost
