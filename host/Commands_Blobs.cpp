// Commands by number: BLOB, and base64 of Tools.
//
// Offsets count from 0. A command that reads or writes at an offset moves the variable behind what it took; an offset
// outside the BLOB changes nothing and sets OK to 0.
#include <dlfcn.h>
#include <zlib.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>

#include "host/CommandCall.h"
#include "host/Commands_Private.h"
#include "host/Objects.h"
#include "host/Pictures.h"
#include "host/Text.h"

namespace zrhost {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr int64_t kMaximumSize = INT32_MAX;

void Refuse(CommandCall& call) { Finish(call, ZR_ERR_PARAMETER); }

Bytes BytesOf(std::string_view text) { return Bytes(text.begin(), text.end()); }

std::string_view CharsOf(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// Numbers and texts in a BLOB --------------------------------------------------------------------------------------

// Puts bytes into BLOB parameter blob: appended after a *, over what stands at an offset variable, or alone.
bool Store(CommandCall& call, int blob, int offset, bool append, const Bytes& bytes) {
    if (!append && !call.has(offset)) return call.assignBlob(blob, bytes);
    const std::span<const uint8_t> old = call.blob(blob);
    const int64_t at = append ? int64_t(old.size()) : call.integer64(offset);
    if (at < 0 || at > int64_t(old.size()) || at + int64_t(bytes.size()) > kMaximumSize) return false;
    Bytes all(old.begin(), old.end());
    all.resize(std::max(all.size(), size_t(at) + bytes.size()));
    std::copy(bytes.begin(), bytes.end(), all.begin() + at);
    if (!call.assignBlob(blob, all)) return false;
    if (!append) call.assignLongint(offset, int32_t(at + int64_t(bytes.size())));
    return true;
}

void StoreOrRefuse(CommandCall& call, int blob, int offset, const Bytes& bytes) {
    const bool append = call.takeStar();
    if (!Store(call, blob, offset, append, bytes)) Refuse(call);
}

// Bytes from an offset variable on, or from the start; nothing if the offset lies outside.
std::optional<std::span<const uint8_t>> From(CommandCall& call, int blob, int offset) {
    const std::span<const uint8_t> bytes = call.blob(blob);
    const int64_t at = call.integer64(offset);
    if (at < 0 || at > int64_t(bytes.size())) return std::nullopt;
    return bytes.subspan(size_t(at));
}

void Advance(CommandCall& call, int offset, size_t count) {
    if (call.has(offset)) call.assignLongint(offset, int32_t(call.integer64(offset) + int64_t(count)));
}

enum ByteOrder { kNativeOrder = 0, kBigEndian = 1, kLittleEndian = 2 };

template <class T>
Bytes Packed(T number, int order) {
    Bytes bytes(sizeof number);
    std::memcpy(bytes.data(), &number, sizeof number);
    if (order == kBigEndian) std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

template <class T>
bool Unpack(CommandCall& call, int order, int offset, T* number) {
    const auto bytes = From(call, 1, offset);
    if (!bytes || bytes->size() < sizeof *number) return false;
    Bytes copy(bytes->begin(), bytes->begin() + sizeof *number);
    if (order == kBigEndian) std::reverse(copy.begin(), copy.end());
    std::memcpy(number, copy.data(), sizeof *number);
    Advance(call, offset, sizeof *number);
    return true;
}

static_assert(std::endian::native == std::endian::little, "the native order is that of the machine");

// 548 INTEGER TO BLOB(integer; blob; byteOrder; [offset or *]): 16 bits; 0 native, 1 big-endian, 2 little-endian
void IntegerToBlob(CommandCall& call) { StoreOrRefuse(call, 2, 4, Packed(int16_t(call.integer(1)), call.integer(3))); }

// 550 LONGINT TO BLOB(longint; blob; byteOrder; [offset or *])
void LongintToBlob(CommandCall& call) { StoreOrRefuse(call, 2, 4, Packed(call.integer(1), call.integer(3))); }

enum RealFormat { kNativeReal = 0, kExtendedReal = 1, kMacintoshReal = 2, kWindowsReal = 3 };

int OrderOfReal(int format) { return format == kMacintoshReal ? kBigEndian : kLittleEndian; }

// 552 REAL TO BLOB(real; blob; format; [offset or *]): 0 native, 2 big-endian, 3 little-endian; the extended format 1
// is not served.
void RealToBlob(CommandCall& call) {
    if (call.integer(3) == kExtendedReal) return call.notServed();
    StoreOrRefuse(call, 2, 4, Packed(call.number(1), OrderOfReal(call.integer(3))));
}

// 549 BLOB to integer(blob; byteOrder; [offset])
void BlobToInteger(CommandCall& call) {
    int16_t number = 0;
    if (!Unpack(call, call.integer(2), 3, &number)) Refuse(call);
    call.setLongint(number);
}

// 551 BLOB to longint(blob; byteOrder; [offset])
void BlobToLongint(CommandCall& call) {
    int32_t number = 0;
    if (!Unpack(call, call.integer(2), 3, &number)) Refuse(call);
    call.setLongint(number);
}

// 553 BLOB to real(blob; format; [offset])
void BlobToReal(CommandCall& call) {
    double number = 0;
    if (call.integer(2) == kExtendedReal) return call.notServed();
    if (!Unpack(call, OrderOfReal(call.integer(2)), 3, &number)) Refuse(call);
    call.setReal(number);
}

enum TextFormat { kMacC, kMacPascal, kMacLength, kMacPlain, kUtf8C, kUtf8Length, kUtf8Plain };

bool IsTextFormat(int format) { return format >= kMacC && format <= kUtf8Plain; }

// Bytes of the length that stands in front.
int LengthBytes(int format) {
    return format == kMacPascal ? 1 : format == kMacLength ? 2 : format == kUtf8Length ? 4 : 0;
}

Bytes PackedText(std::u16string_view text, int format) {
    Bytes body;
    if (format >= kUtf8C) body = BytesOf(ToUtf8(text));
    else EncodeText(text, "macintosh", &body);
    if (format == kMacPascal) body.resize(std::min<size_t>(body.size(), 0xFF));
    if (format == kMacLength) body.resize(std::min<size_t>(body.size(), 0xFFFF));
    Bytes bytes;
    for (int i = LengthBytes(format) - 1; i >= 0; --i) bytes.push_back(uint8_t(body.size() >> (8 * i)));
    bytes.insert(bytes.end(), body.begin(), body.end());
    if (format == kMacC || format == kUtf8C) bytes.push_back(0);
    return bytes;
}

// 554 TEXT TO BLOB(text; blob; [format]; [offset or *]): 0 Mac C string, 1 Pascal, 2 with a length of 2 bytes, 3 plain;
// 4 UTF-8 C string, 5 with a length of 4 bytes, 6 plain
void TextToBlob(CommandCall& call) {
    const int format = call.integer(3);
    if (!IsTextFormat(format)) return Refuse(call);
    StoreOrRefuse(call, 2, 4, PackedText(call.text(1), format));
}

// 555 BLOB to text(blob; format; [offset]; [length])
void BlobToText(CommandCall& call) {
    const int format = call.integer(2), front = LengthBytes(format);
    const auto bytes = From(call, 1, 3);
    call.setText(u"");
    if (!IsTextFormat(format) || !bytes || bytes->size() < size_t(front)) return Refuse(call);
    size_t count = 0;
    for (int i = 0; i < front; ++i) count = count << 8 | (*bytes)[size_t(i)];
    const std::span<const uint8_t> rest = bytes->subspan(size_t(front));
    const bool ended = format == kMacC || format == kUtf8C;
    if (ended) count = size_t(std::find(rest.begin(), rest.end(), 0) - rest.begin());
    else if (front == 0) count = call.has(4) ? size_t(std::max(0, call.integer(4))) : rest.size();
    if (count > rest.size()) return Refuse(call);
    const Bytes body(rest.begin(), rest.begin() + int64_t(count));
    const size_t terminator = ended && count < rest.size() ? 1 : 0;
    Advance(call, 3, size_t(front) + count + terminator);
    std::u16string text;
    if (format >= kUtf8C) text = FromUtf8(CharsOf(body));
    else DecodeText(body, "macintosh", &text);
    call.setText(text);
}

// Bytes ------------------------------------------------------------------------------------------------------------

// 605 BLOB size(blob)
void BlobSize(CommandCall& call) { call.setLongint(int32_t(call.blob(1).size())); }

// 606 SET BLOB SIZE(blob; size; [filler]): new bytes are the filler, 0 if not given.
void SetBlobSize(CommandCall& call) {
    const std::span<const uint8_t> old = call.blob(1);
    const int64_t size = call.integer64(2, -1);
    if (size < 0 || size > kMaximumSize) return Refuse(call);
    Bytes bytes(old.begin(), old.end());
    bytes.resize(size_t(size), uint8_t(call.integer(3)));
    if (!call.assignBlob(1, bytes)) Refuse(call);
}

// 558 COPY BLOB(source; target; sourceOffset; targetOffset; length): the target grows if it must; both offsets move.
void CopyBlob(CommandCall& call) {
    const auto source = From(call, 1, 3);
    const int64_t at = call.integer64(4), length = call.integer64(5);
    const std::span<const uint8_t> old = call.blob(2);
    if (!source || length < 0 || length > int64_t(source->size()) || at < 0 || at > int64_t(old.size()))
        return Refuse(call);
    const Bytes part(source->begin(), source->begin() + length);
    if (!Store(call, 2, 4, /*append*/ false, part)) return Refuse(call);
    Advance(call, 3, size_t(length));
}

// 559 INSERT IN BLOB(blob; offset; count; [filler])
void InsertInBlob(CommandCall& call) {
    const std::span<const uint8_t> old = call.blob(1);
    const int64_t at = call.integer64(2), count = call.integer64(3);
    if (at < 0 || at > int64_t(old.size()) || count < 0 || count > kMaximumSize - int64_t(old.size()))
        return Refuse(call);
    Bytes bytes(old.begin(), old.end());
    bytes.insert(bytes.begin() + at, size_t(count), uint8_t(call.integer(4)));
    if (!call.assignBlob(1, bytes)) Refuse(call);
}

// 560 DELETE FROM BLOB(blob; offset; count)
void DeleteFromBlob(CommandCall& call) {
    const std::span<const uint8_t> old = call.blob(1);
    const int64_t at = call.integer64(2), count = call.integer64(3);
    if (at < 0 || at > int64_t(old.size()) || count < 0) return Refuse(call);
    Bytes bytes(old.begin(), old.end());
    bytes.erase(bytes.begin() + at, bytes.begin() + at + std::min(count, int64_t(bytes.size()) - at));
    if (!call.assignBlob(1, bytes)) Refuse(call);
}

// Variables --------------------------------------------------------------------------------------------------------

// A variable in a BLOB: "zrVR", a byte of version 1, then one record. A record is a byte of kind and
//     real 8 bytes; integer, longint, time 4; date 3 times 4; Boolean 1; undefined, Null nothing
//     text 4 bytes of length, UTF-16; BLOB 4 bytes of length, bytes
//     object, collection 4 bytes of length, JSON as UTF-8
//     picture 4 bytes of count, then per representation two texts: type and bytes, each with 4 bytes of length
//     array 4 bytes of count with element 0, then a record per element
// All numbers are little-endian.
constexpr uint8_t kVariableMark[] = {'z', 'r', 'V', 'R', 1};
constexpr int kMaximumDepth = 4;  // arrays in arrays

class Writer {
  public:
    Bytes bytes{std::begin(kVariableMark), std::end(kVariableMark)};

    bool record(const Value& value, int depth = 0) {
        bytes.push_back(uint8_t(value.kind()));
        switch (value.kind()) {
            case eVK_Real: return raw(value.number());
            case eVK_Integer:
            case eVK_Longint:
            case eVK_Time: return raw(value.integer());
            case eVK_Date:
                return raw(int32_t(value.date().day)) && raw(int32_t(value.date().month)) &&
                       raw(int32_t(value.date().year));
            case eVK_Boolean: return raw(uint8_t(value.boolean()));
            case eVK_Undefined:
            case eVK_Null: return true;
            case eVK_Text: return counted(value.text().data(), value.text().size() * sizeof(char16_t));
            case eVK_Blob: return counted(value.blob().data(), value.blob().size());
            case eVK_Object:
            case eVK_Collection: {
                const std::string json = WriteJson(value);
                return counted(json.data(), json.size());
            }
            case eVK_Picture: return picture(value.picture());
            default: break;
        }
        if (value.elements().empty() || depth >= kMaximumDepth) return false;  // a pointer has no meaning elsewhere
        raw(uint32_t(value.elements().size()));
        return std::all_of(value.elements().begin(), value.elements().end(),
                           [&](const Value& element) { return record(element, depth + 1); });
    }

  private:
    template <class T>
    bool raw(T number) {
        const uint8_t* at = reinterpret_cast<const uint8_t*>(&number);
        bytes.insert(bytes.end(), at, at + sizeof number);
        return int64_t(bytes.size()) <= kMaximumSize;
    }
    bool counted(const void* data, size_t size) {
        if (int64_t(size) > kMaximumSize || !raw(uint32_t(size))) return false;
        const uint8_t* at = static_cast<const uint8_t*>(data);
        if (size != 0) bytes.insert(bytes.end(), at, at + size);
        return int64_t(bytes.size()) <= kMaximumSize;
    }
    bool picture(const Picture* picture) {
        const size_t count = picture ? picture->representations().size() : 0;
        raw(uint32_t(count));
        for (size_t i = 0; i < count; ++i) {
            const Representation& one = picture->representations()[i];
            if (!counted(one.type.data(), one.type.size()) || !counted(one.bytes.data(), one.bytes.size()))
                return false;
        }
        return true;
    }
};

class Reader {
  public:
    explicit Reader(std::span<const uint8_t> bytes) : bytes_(bytes) {}
    size_t taken() const { return at_; }

    bool mark() {
        if (left() < sizeof kVariableMark || std::memcmp(bytes_.data(), kVariableMark, sizeof kVariableMark) != 0)
            return false;
        at_ += sizeof kVariableMark;
        return true;
    }

    bool record(Value* value, int depth = 0) {
        uint8_t kind = 0;
        if (!raw(&kind)) return false;
        switch (kind) {
            case eVK_Real: return number<double>(value, [](double real) { return Value(real); });
            case eVK_Integer:
            case eVK_Longint: return number<int32_t>(value, Value::Longint);
            case eVK_Time: return number<int32_t>(value, Value::Time);
            case eVK_Boolean: return number<uint8_t>(value, [](uint8_t set) { return Value(set != 0); });
            case eVK_Undefined: return *value = Value(), true;
            case eVK_Null: return *value = Value::Null(), true;
            case eVK_Date: return date(value);
            case eVK_Text: return text(value);
            case eVK_Blob: return blob(value);
            case eVK_Object:
            case eVK_Collection: return json(value, kind);
            case eVK_Picture: return picture(value);
            default: return ZR_HostArrayElementSize(kind) != 0 && array(value, kind, depth);
        }
    }

  private:
    size_t left() const { return bytes_.size() - at_; }
    template <class T>
    bool raw(T* number) {
        if (left() < sizeof *number) return false;
        std::memcpy(number, bytes_.data() + at_, sizeof *number);
        at_ += sizeof *number;
        return true;
    }
    template <class T, class Make>
    bool number(Value* value, Make make) {
        T read{};
        if (!raw(&read)) return false;
        *value = make(read);
        return true;
    }
    bool counted(std::span<const uint8_t>* part) {
        uint32_t size = 0;
        if (!raw(&size) || size > left()) return false;
        *part = bytes_.subspan(at_, size);
        at_ += size;
        return true;
    }
    bool date(Value* value) {
        int32_t day = 0, month = 0, year = 0;
        if (!raw(&day) || !raw(&month) || !raw(&year)) return false;
        auto fits = [](int32_t part) { return part >= INT16_MIN && part <= INT16_MAX; };
        if (!fits(day) || !fits(month) || !fits(year)) return false;
        *value = Value(Date{day, month, year});
        return true;
    }
    bool text(Value* value) {
        std::span<const uint8_t> part;
        if (!counted(&part) || part.size() % sizeof(char16_t) != 0) return false;
        std::u16string units(part.size() / sizeof(char16_t), u'\0');
        if (!part.empty()) std::memcpy(units.data(), part.data(), part.size());
        *value = Value(std::move(units));
        return true;
    }
    bool blob(Value* value) {
        std::span<const uint8_t> part;
        if (!counted(&part)) return false;
        *value = Value(Bytes(part.begin(), part.end()));
        return true;
    }
    bool json(Value* value, int kind) {
        std::span<const uint8_t> part;
        if (!counted(&part)) return false;
        std::optional<Value> read = ReadJsonUtf8(CharsOf(part));
        if (!read || (read->kind() != kind && !read->isNull())) return false;
        if (read->isNull()) *value = kind == eVK_Object ? Value(Ref<Object>()) : Value(Ref<Collection>());
        else *value = std::move(*read);
        return true;
    }
    bool picture(Value* value) {
        uint32_t count = 0;
        if (!raw(&count)) return false;
        std::vector<Representation> all;
        for (uint32_t i = 0; i < count; ++i) {
            std::span<const uint8_t> type, bytes;
            if (!counted(&type) || !counted(&bytes)) return false;
            all.push_back({std::string(CharsOf(type)), Bytes(bytes.begin(), bytes.end())});
        }
        *value = Value(NewPicture(std::move(all)));
        return true;
    }
    bool array(Value* value, int kind, int depth) {
        uint32_t count = 0;
        if (depth >= kMaximumDepth || !raw(&count) || count == 0 || count > left()) return false;
        Value::Elements elements;
        for (uint32_t i = 0; i < count; ++i) {
            elements.emplace_back();
            if (!record(&elements.back(), depth + 1)) return false;
        }
        *value = Value::Array(PA_VariableKind(kind), std::move(elements));
        return true;
    }

    std::span<const uint8_t> bytes_;
    size_t at_ = 0;
};

// 532 VARIABLE TO BLOB(variable; blob; [offset or *]): of any kind but pointers
void VariableToBlob(CommandCall& call) {
    const bool append = call.takeStar();
    Writer writer;
    const bool written = writer.record(call.value(1)) && Store(call, 2, 3, append, writer.bytes);
    Finish(call, written ? 0 : ZR_ERR_PARAMETER);
}

// 533 BLOB TO VARIABLE(blob; variable; [offset]): OK 0 if the BLOB holds no variable there, or one of another kind
void BlobToVariable(CommandCall& call) {
    const auto bytes = From(call, 1, 3);
    if (!bytes) return Refuse(call);
    Reader reader(*bytes);
    Value value;
    if (!reader.mark() || !reader.record(&value) || !call.assignValue(2, value)) return Refuse(call);
    Advance(call, 3, reader.taken());
    call.setOK(true);
}

// 75 SAVE VARIABLES(path; variable...): their values one after the other
void SaveVariables(CommandCall& call) {
    const std::string path = FullPath(call, 1);
    if (path.empty()) return Finish(call, kBadName);
    Bytes all;
    for (int i = 2; i <= call.count; ++i) {
        Writer writer;
        if (!writer.record(call.value(i))) return Refuse(call);
        all.insert(all.end(), writer.bytes.begin(), writer.bytes.end());
    }
    const int error = WriteWholeFile(path, all);
    if (error == 0) call.setDocument(FromUtf8(path));
    Finish(call, error);
}

// 74 LOAD VARIABLES(path; variable...): in the order in which they were saved; OK 0 at the first that does not fit
void LoadVariables(CommandCall& call) {
    const std::string path = FullPath(call, 1);
    Bytes all;
    const int error = path.empty() ? int(kBadName) : ReadWholeFile(path, &all);
    if (error != 0) return Finish(call, error);
    std::span<const uint8_t> rest(all);
    for (int i = 2; i <= call.count; ++i) {
        Reader reader(rest);
        Value value;
        if (!reader.mark() || !reader.record(&value) || !call.assignValue(i, value)) return Refuse(call);
        rest = rest.subspan(reader.taken());
    }
    call.setDocument(FromUtf8(path));
    call.setOK(true);
}

// Compression ------------------------------------------------------------------------------------------------------

// zlib, opened at the first need.
struct Zlib {
    decltype(&::deflateInit2_) startDeflate = nullptr;
    decltype(&::deflate) deflate = nullptr;
    decltype(&::deflateEnd) deflateEnd = nullptr;
    decltype(&::inflateInit2_) startInflate = nullptr;
    decltype(&::inflate) inflate = nullptr;
    decltype(&::inflateEnd) inflateEnd = nullptr;

    Zlib() {
        void* library = ::dlopen("libz.so.1", RTLD_NOW | RTLD_LOCAL);
        if (!library) return;
        auto find = [&](auto* function, const char* name) {
            *function = reinterpret_cast<std::remove_pointer_t<decltype(function)>>(::dlsym(library, name));
        };
        find(&startDeflate, "deflateInit2_");
        find(&deflate, "deflate");
        find(&deflateEnd, "deflateEnd");
        find(&startInflate, "inflateInit2_");
        find(&inflate, "inflate");
        find(&inflateEnd, "inflateEnd");
    }
    bool ready() const { return startDeflate && deflate && deflateEnd && startInflate && inflate && inflateEnd; }
};

const Zlib& TheZlib() {
    static const Zlib zlib;
    return zlib;
}

enum CompressionMode { kGzipFast = -2, kGzipCompact = -1, kNotCompressed = 0, kCompact = 1, kFast = 2 };

// The compact and fast modes put a head before a zlib stream: "zrCB", 4 bytes of mode, 8 bytes of expanded size,
// little-endian. The gzip modes are plain gzip.
constexpr size_t kHead = 16;
constexpr size_t kWorthIt = 255;  // smaller BLOBs are not compressed

struct Compression {
    int mode = kNotCompressed;
    uint64_t expanded = 0;
};

Compression CompressionOf(std::span<const uint8_t> bytes) {
    Compression found;
    int32_t mode = 0;
    if (bytes.size() >= kHead && std::memcmp(bytes.data(), "zrCB", 4) == 0) {
        std::memcpy(&mode, bytes.data() + 4, sizeof mode);
        std::memcpy(&found.expanded, bytes.data() + 8, sizeof found.expanded);
        if (mode == kCompact || mode == kFast) found.mode = mode;
    } else if (bytes.size() >= 18 && bytes[0] == 0x1F && bytes[1] == 0x8B && bytes[2] == 8) {
        uint32_t size = 0;
        std::memcpy(&size, bytes.data() + bytes.size() - 4, sizeof size);
        found.expanded = size;
        found.mode = bytes[8] == 4 ? kGzipFast : kGzipCompact;  // what the writer says of itself
    }
    return found.mode == kNotCompressed ? Compression{} : found;
}

constexpr size_t kStep = 1 << 16;

bool Deflate(CommandCall& call, std::span<const uint8_t> source, int mode, Bytes* out) {
    const bool gzip = mode < 0, fast = mode == kFast || mode == kGzipFast;
    z_stream stream{};
    if (TheZlib().startDeflate(&stream, fast ? Z_BEST_SPEED : Z_BEST_COMPRESSION, Z_DEFLATED, gzip ? 15 + 16 : 15, 8,
                               Z_DEFAULT_STRATEGY, ZLIB_VERSION, int(sizeof stream)) != Z_OK)
        return false;
    stream.next_in = const_cast<Bytef*>(source.data());
    stream.avail_in = uInt(source.size());
    int state = Z_OK;
    while (state == Z_OK && !call.interrupted()) {
        const size_t used = out->size();
        out->resize(used + kStep);
        stream.next_out = out->data() + used;
        stream.avail_out = kStep;
        state = TheZlib().deflate(&stream, Z_FINISH);
        out->resize(used + kStep - stream.avail_out);
        if (state == Z_BUF_ERROR) state = Z_OK;
    }
    TheZlib().deflateEnd(&stream);
    return state == Z_STREAM_END;
}

bool Inflate(CommandCall& call, std::span<const uint8_t> source, bool gzip, Bytes* out) {
    z_stream stream{};
    if (TheZlib().startInflate(&stream, gzip ? 15 + 16 : 15, ZLIB_VERSION, int(sizeof stream)) != Z_OK) return false;
    stream.next_in = const_cast<Bytef*>(source.data());
    stream.avail_in = uInt(source.size());
    int state = Z_OK;
    while (state == Z_OK && int64_t(out->size()) <= kMaximumSize && !call.interrupted()) {
        const size_t used = out->size();
        out->resize(used + kStep);
        stream.next_out = out->data() + used;
        stream.avail_out = kStep;
        state = TheZlib().inflate(&stream, Z_NO_FLUSH);
        out->resize(used + kStep - stream.avail_out);
    }
    TheZlib().inflateEnd(&stream);
    return state == Z_STREAM_END && int64_t(out->size()) <= kMaximumSize;
}

// 534 COMPRESS BLOB(blob; [mode]): 1 compact, 2 fast, -1 gzip compact, -2 gzip fast. OK 0, and the BLOB stays, below
// 255 bytes or if it is compressed already.
void CompressBlob(CommandCall& call) {
    const int mode = call.has(2) ? call.integer(2) : int(kCompact);
    const std::span<const uint8_t> source = call.blob(1);
    const bool known = mode == kCompact || mode == kFast || mode == kGzipCompact || mode == kGzipFast;
    if (!known || !TheZlib().ready() || call.kind(1) != eVK_Blob) return Refuse(call);
    if (source.size() < kWorthIt || CompressionOf(source).mode != kNotCompressed) return call.setOK(false);
    Bytes out;
    if (mode > 0) {
        const int32_t headMode = mode;
        const uint64_t size = source.size();
        out.assign({'z', 'r', 'C', 'B'});
        out.resize(kHead);
        std::memcpy(out.data() + 4, &headMode, sizeof headMode);
        std::memcpy(out.data() + 8, &size, sizeof size);
    }
    call.setOK(Deflate(call, source, mode, &out) && int64_t(out.size()) <= kMaximumSize && call.assignBlob(1, out));
}

// 535 EXPAND BLOB(blob): OK 0, and the BLOB stays, if it is not compressed or damaged
void ExpandBlob(CommandCall& call) {
    const std::span<const uint8_t> source = call.blob(1);
    const Compression compression = CompressionOf(source);
    if (compression.mode == kNotCompressed || !TheZlib().ready()) return Refuse(call);
    const bool gzip = compression.mode < 0;
    Bytes out;
    if (!Inflate(call, gzip ? source : source.subspan(kHead), gzip, &out)) return Refuse(call);
    call.setOK(call.assignBlob(1, out));
}

// 536 BLOB PROPERTIES(blob; mode; [expandedSize]; [size]): mode 0 if it is not compressed
void BlobProperties(CommandCall& call) {
    const std::span<const uint8_t> bytes = call.blob(1);
    const Compression compression = CompressionOf(bytes);
    const uint64_t size = bytes.size(), expanded = compression.mode == kNotCompressed ? size : compression.expanded;
    call.assignLongint(2, compression.mode);
    if (call.has(3)) call.assignLongint(3, int32_t(std::min<uint64_t>(expanded, INT32_MAX)));
    if (call.has(4)) call.assignLongint(4, int32_t(size));
}

// Base64 -----------------------------------------------------------------------------------------------------------

std::string ForUrl(std::string text) {
    std::replace(text.begin(), text.end(), '+', '-');
    std::replace(text.begin(), text.end(), '/', '_');
    text.erase(std::find(text.begin(), text.end(), '='), text.end());
    return text;
}

std::string FromUrl(std::string text) {
    std::replace(text.begin(), text.end(), '-', '+');
    std::replace(text.begin(), text.end(), '_', '/');
    while (text.size() % 4 != 0) text += '=';
    return text;
}

// Text goes as UTF-8.
Bytes BytesOf(const CommandCall& call, int i) {
    if (call.kind(i) != eVK_Blob) return BytesOf(call.utf8(i));
    const std::span<const uint8_t> bytes = call.blob(i);
    return Bytes(bytes.begin(), bytes.end());
}

bool AssignBytes(CommandCall& call, int i, const Bytes& bytes) {
    return call.isText(i) ? call.assignText(i, FromUtf8(CharsOf(bytes))) : call.assignBlob(i, bytes);
}

// 895 BASE64 ENCODE(toEncode; [encoded]; [*]): a BLOB or text; in place without a second; * for URLs
void Base64Encode(CommandCall& call) {
    const bool url = call.takeStar();
    const std::string text = WriteBase64(BytesOf(call, 1));
    const Bytes bytes = BytesOf(url ? ForUrl(text) : text);
    const int target = call.has(2) ? 2 : 1;
    const bool asText = call.isUndefined(target);
    call.setOK(asText ? call.assignText(target, FromUtf8(CharsOf(bytes))) : AssignBytes(call, target, bytes));
}

// 896 BASE64 DECODE(toDecode; [decoded]; [*])
void Base64Decode(CommandCall& call) {
    const bool url = call.takeStar();
    const Bytes source = BytesOf(call, 1);
    const std::string text(source.begin(), source.end());
    const std::optional<Bytes> bytes = ReadBase64(url ? FromUrl(text) : text);
    Finish(call, bytes && AssignBytes(call, call.has(2) ? 2 : 1, *bytes) ? 0 : ZR_ERR_PARAMETER);
}

constexpr CommandRow kRows[] = {
    {74, LoadVariables},  {75, SaveVariables},   {532, VariableToBlob}, {533, BlobToVariable}, {534, CompressBlob},
    {535, ExpandBlob},    {536, BlobProperties}, {548, IntegerToBlob},  {549, BlobToInteger},  {550, LongintToBlob},
    {551, BlobToLongint}, {552, RealToBlob},     {553, BlobToReal},     {554, TextToBlob},     {555, BlobToText},
    {558, CopyBlob},      {559, InsertInBlob},   {560, DeleteFromBlob}, {605, BlobSize},       {606, SetBlobSize},
    {895, Base64Encode},  {896, Base64Decode},
};

}  // namespace

std::span<const CommandRow> commandsBlobs() { return kRows; }

}  // namespace zrhost
