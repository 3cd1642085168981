// Commands by number: Pictures as encoded bytes, and their conversion.
#include <algorithm>
#include <filesystem>
#include <map>

#include "host/CommandCall.h"
#include "host/Commands_Private.h"
#include "host/Native.h"
#include "host/Pictures.h"
#include "host/Text.h"

namespace zrhost {
namespace {

// The bytes of a picture in the type that was asked for (".png", "image/png"; empty = the first); null = not in it.
const std::vector<uint8_t>* BytesAs(const Picture* picture, const std::string& wanted) {
    if (!picture || picture->empty()) return nullptr;
    if (wanted.empty()) return &picture->representations()[0].bytes;
    const PictureKind* kind = FindPictureKind(wanted);
    for (const Representation& one : picture->representations())
        if (kind && one.type == kind->type) return &one.bytes;
    return nullptr;
}

// The same, encoded anew if the picture is in another type; empty = it cannot be made.
std::vector<uint8_t> ConvertedTo(const Picture* picture, const std::string& wanted, double quality = 1) {
    if (const std::vector<uint8_t>* bytes = BytesAs(picture, wanted)) return *bytes;
    const PictureKind* kind = FindPictureKind(wanted);
    if (!picture || !kind || !CanEncode(*kind)) return {};
    const std::optional<Pixels> pixels = DecodePicture(*picture);
    return pixels ? EncodePicture(*pixels, *kind, quality) : std::vector<uint8_t>();
}

// 356 Picture size(picture): bytes
void PictureSizeOf(CommandCall& call) {
    const Picture* picture = call.picture(1);
    call.setLongint(picture ? int32_t(std::min<size_t>(picture->byteCount(), INT32_MAX)) : 0);
}

// 457 PICTURE PROPERTIES(picture; width; height; [hOffset]; [vOffset]; [mode])
void PictureProperties(CommandCall& call) {
    const Picture* picture = call.picture(1);
    const std::vector<uint8_t>* bytes = BytesAs(picture, {});
    std::pair<int, int> size = bytes ? PictureSize(*bytes) : std::pair(0, 0);
    if (bytes && (size.first == 0 || size.second == 0)) size = NativeSize(*picture);
    call.assignLongint(2, size.first);
    call.assignLongint(3, size.second);
    for (int i = 4; i <= std::min(6, call.count); ++i) call.assignLongint(i, 0);
}

// 678 READ PICTURE FILE(path; picture; [*]): Document is the full path; what is no picture is refused.
void ReadPictureFile(CommandCall& call) {
    call.takeStar();
    const std::string path = FullPath(call, 1);
    std::vector<uint8_t> bytes;
    const int error = path.empty() ? int(kBadName) : ReadWholeFile(path, &bytes);
    if (error != 0) return Finish(call, error);
    if (!SniffPicture(bytes) || !call.assignPicture(2, NewPicture(bytes))) return Finish(call, ZR_ERR_PARAMETER);
    call.setDocument(FromUtf8(path));
    call.setOK(true);
}

// 680 WRITE PICTURE FILE(path; picture; [type]): in the type, else in that of the file's name, else as it is.
void WritePictureFile(CommandCall& call) {
    const std::string path = FullPath(call, 1);
    std::string type = call.utf8(3);
    if (type.empty()) {
        const std::string extension = std::filesystem::path(path).extension().string();
        if (FindPictureKind(extension)) type = extension;
    }
    if (path.empty()) return Finish(call, kBadName);
    const std::vector<uint8_t> bytes = ConvertedTo(call.picture(2), type);
    if (bytes.empty()) return Finish(call, ZR_ERR_PARAMETER);
    const int error = WriteWholeFile(path, bytes);
    if (error == 0) call.setDocument(FromUtf8(path));
    Finish(call, error);
}

// 682 BLOB TO PICTURE(blob; picture; [type]): OK 0, and the picture stays, if the bytes are no picture
void BlobToPicture(CommandCall& call) {
    const bool known = SniffPicture(call.blob(1)) != nullptr;
    Finish(call, known && call.assignPicture(2, NewPicture(call.blob(1))) ? 0 : ZR_ERR_PARAMETER);
}

// 692 PICTURE TO BLOB(picture; blob; type): OK 0 if the picture is empty or cannot be had in the type
void PictureToBlob(CommandCall& call) {
    const std::vector<uint8_t> bytes = ConvertedTo(call.picture(1), call.utf8(3));
    Finish(call, !bytes.empty() && call.assignBlob(2, bytes) ? 0 : ZR_ERR_PARAMETER);
}

// 1002 CONVERT PICTURE(picture; type; [compression]): 0 = smallest, 1 = best; OK 0, and it stays, if it cannot be had
void ConvertPicture(CommandCall& call) {
    const std::vector<uint8_t> bytes = ConvertedTo(call.picture(1), call.utf8(2), call.number(3, 1));
    Finish(call, !bytes.empty() && call.assignPicture(1, NewPicture(bytes)) ? 0 : ZR_ERR_PARAMETER);
}

// 1113 Is picture file(path; [*])
void IsPictureFile(CommandCall& call) {
    call.takeStar();
    std::vector<uint8_t> bytes;
    const std::string path = FullPath(call, 1);
    const int error = path.empty() ? int(kBadName) : ReadWholeFile(path, &bytes);
    call.setBoolean(error == 0 && SniffPicture(bytes));
    Finish(call, error);
}

// 1196 Equal pictures(left; right; mask): by their bytes; the mask stays.
void EqualPictures(CommandCall& call) {
    const std::vector<uint8_t>*left = BytesAs(call.picture(1), {}), *right = BytesAs(call.picture(2), {});
    call.setBoolean(left == right || (left && right && *left == *right));
}

// 1406 GET PICTURE FORMATS(picture; types)
void GetPictureFormats(CommandCall& call) {
    std::vector<std::u16string> types;
    if (const Picture* picture = call.picture(1))
        for (const Representation& one : picture->representations()) types.push_back(FromUtf8(one.type));
    call.assignTextArray(2, types);
}

// 992 PICTURE CODEC LIST(types; [names]): what is recognised
void PictureCodecList(CommandCall& call) {
    call.takeStar();
    std::vector<std::u16string> types, names;
    for (const PictureKind& kind : PictureKinds()) {
        types.push_back(FromUtf8(kind.extension));
        names.push_back(FromUtf8(kind.name));
    }
    call.assignTextArray(1, types);
    if (call.has(2)) call.assignTextArray(2, names);
}

constexpr CommandRow kRows[] = {
    {356, PictureSizeOf},  {457, PictureProperties}, {678, ReadPictureFile},    {680, WritePictureFile},
    {682, BlobToPicture},  {692, PictureToBlob},     {992, PictureCodecList},   {1002, ConvertPicture},
    {1113, IsPictureFile}, {1196, EqualPictures},    {1406, GetPictureFormats},
};

}  // namespace

std::span<const CommandRow> commandsPictures() { return kRows; }

}  // namespace zrhost
