// Commands by number: Messages, and the pasteboard. There is no window: messages go to the functions that the host was
// started with, and the pasteboard is one in memory, shared by the processes of the host.
#include <algorithm>
#include <mutex>

#include "host/CommandCall.h"
#include "host/Commands_Private.h"
#include "host/Pictures.h"
#include "host/Text.h"

namespace zrhost {
namespace {

// Messages ---------------------------------------------------------------------------------------------------------

// A message of any kind of value: what is no text is shown as String gives it.
std::u16string MessageText(const CommandCall& call, int i) {
    return call.isText(i) ? std::u16string(call.text(i)) : TextOf(call.host, call.value(i));
}

// 41 ALERT(message; [okTitle])
void Alert(CommandCall& call) {
    if (call.host.options().alert) call.host.options().alert(MessageText(call, 1));
}

// 88 MESSAGE(message)
void Message(CommandCall& call) {
    const Options& options = call.host.options();
    if (options.message) options.message(MessageText(call, 1));
    else if (options.alert) options.alert(MessageText(call, 1));
}

// 910 DISPLAY NOTIFICATION(title; text; [seconds]): as a message, "title: text"
void DisplayNotification(CommandCall& call) {
    const Options& options = call.host.options();
    const std::u16string line = MessageText(call, 1) + u": " + MessageText(call, 2);
    if (options.message) options.message(line);
    else if (options.alert) options.alert(line);
}

// 162 CONFIRM(message; [okTitle]; [cancelTitle]): OK; accepted if there is no one to ask
void Confirm(CommandCall& call) {
    const auto& ask = call.host.options().confirm;
    call.setOK(!ask || ask(MessageText(call, 1), call.text(2), call.text(3)));
}

// 163 Request(message; [preset]; [okTitle]; [cancelTitle]): the answer and OK; the preset if there is no one to ask
void Request(CommandCall& call) {
    const auto& ask = call.host.options().request;
    const std::optional<std::u16string> answer =
        ask ? ask(MessageText(call, 1), call.text(2)) : std::optional<std::u16string>(call.text(2));
    call.setOK(answer.has_value());
    call.setText(answer ? std::u16string_view(*answer) : std::u16string_view());
}

// 151 BEEP, 161 GOTO XY(x; y), 160 ERASE WINDOW, 175 MESSAGES OFF, 181 MESSAGES ON: nothing to hear or see here
void NothingToShow(CommandCall&) {}

// The pasteboard ---------------------------------------------------------------------------------------------------

constexpr std::u16string_view kText = u"com.4d.private.text.native";
constexpr std::u16string_view kTextUtf8 = u"com.4d.private.text.utf8";
constexpr std::u16string_view kFile = u"com.4d.private.file.url";
constexpr std::u16string_view kPicture = u"com.4d.private.picture.png";
constexpr std::u16string_view kOldText = u"TEXT", kOldPicture = u"PICT";
constexpr int kNoSuchData = -102;

struct Pasteboard {
    struct Entry {
        std::u16string type;
        std::vector<uint8_t> bytes;  // text as UTF-8
    };
    std::mutex mutex;
    std::vector<Entry> entries;
    std::vector<std::string> files;

    void clear() {
        entries.clear();
        files.clear();
    }
    Entry* find(std::u16string_view type) {
        const auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& e) { return e.type == type; });
        return found == entries.end() ? nullptr : &*found;
    }
    void append(std::u16string_view type, std::span<const uint8_t> bytes) {
        Entry* entry = find(type);
        if (!entry) entry = &entries.emplace_back(Entry{std::u16string(type), {}});
        entry->bytes.assign(bytes.begin(), bytes.end());
    }
};

// One name for each of the spellings of text and picture.
std::u16string_view TypeOf(std::u16string_view type) {
    if (type == kOldText || type == kTextUtf8) return kText;
    if (type == kOldPicture) return kPicture;
    return type;
}

struct HeldPasteboard {
    explicit HeldPasteboard(CommandCall& call) : board(call.host.state<Pasteboard>()), lock(board.mutex) {}
    Pasteboard* operator->() { return &board; }
    Pasteboard& board;
    std::lock_guard<std::mutex> lock;
};

// 402 CLEAR PASTEBOARD
void ClearPasteboard(CommandCall& call) { HeldPasteboard(call)->clear(); }

// 403 APPEND DATA TO PASTEBOARD(type; blob)
void AppendDataToPasteboard(CommandCall& call) {
    const bool fits = call.isText(1) && !call.text(1).empty() && call.kind(2) == eVK_Blob;
    if (fits) HeldPasteboard(call)->append(TypeOf(call.text(1)), call.blob(2));
    call.setOK(fits);
}

// 401 GET PASTEBOARD DATA(type; blob): OK 0, and the BLOB empty, if there is none of the type
void GetPasteboardData(CommandCall& call) {
    HeldPasteboard board(call);
    const Pasteboard::Entry* entry = board->find(TypeOf(call.text(1)));
    const bool written =
        call.assignBlob(2, entry ? std::span<const uint8_t>(entry->bytes) : std::span<const uint8_t>());
    call.setOK(entry && written);
}

// 400 Pasteboard data size(type): bytes, -102 if there is none of the type
void PasteboardDataSize(CommandCall& call) {
    HeldPasteboard board(call);
    const Pasteboard::Entry* entry = board->find(TypeOf(call.text(1)));
    call.setLongint(entry ? int32_t(entry->bytes.size()) : kNoSuchData);
}

// 958 GET PASTEBOARD DATA TYPE(signatures; types; names)
void GetPasteboardDataType(CommandCall& call) {
    std::vector<std::u16string> types, names;
    {
        HeldPasteboard board(call);
        for (const Pasteboard::Entry& entry : board->entries) types.push_back(entry.type);
        names.resize(types.size());
    }
    call.assignTextArray(1, types);
    call.assignTextArray(2, types);
    call.assignTextArray(3, names);
}

// 523 SET TEXT TO PASTEBOARD(text): replaces all that was there
void SetTextToPasteboard(CommandCall& call) {
    const std::string text = call.utf8(1);
    HeldPasteboard board(call);
    board->clear();
    board->append(kText, {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
    call.setOK(true);
}

// 524 Get text from pasteboard
void GetTextFromPasteboard(CommandCall& call) {
    HeldPasteboard board(call);
    const Pasteboard::Entry* entry = board->find(kText);
    call.setText(entry ? std::string_view(reinterpret_cast<const char*>(entry->bytes.data()), entry->bytes.size())
                       : std::string_view());
    call.setOK(entry != nullptr);
}

// 521 SET PICTURE TO PASTEBOARD(picture): replaces all that was there
void SetPictureToPasteboard(CommandCall& call) {
    const Picture* picture = call.picture(1);
    const bool filled = picture && !picture->empty();
    HeldPasteboard board(call);
    board->clear();
    if (filled) board->append(kPicture, picture->representations()[0].bytes);
    call.setOK(filled);
}

// 522 GET PICTURE FROM PASTEBOARD(picture)
void GetPictureFromPasteboard(CommandCall& call) {
    HeldPasteboard board(call);
    const Pasteboard::Entry* entry = board->find(kPicture);
    const bool written = call.assignPicture(1, entry ? NewPicture(entry->bytes) : Ref<Picture>());
    call.setOK(entry && written);
}

// 975 SET FILE TO PASTEBOARD(path; [*]): * adds to the files that are there
void SetFileToPasteboard(CommandCall& call) {
    const bool add = call.takeStar();
    const std::string path = FullPath(call, 1);
    HeldPasteboard board(call);
    if (!add) board->clear();
    if (!path.empty()) board->files.push_back(path);
    if (!path.empty()) board->append(kFile, {reinterpret_cast<const uint8_t*>(path.data()), path.size()});
    call.setOK(!path.empty());
}

// 976 Get file from pasteboard(index): from 1; empty, OK 0, if there is none
void GetFileFromPasteboard(CommandCall& call) {
    HeldPasteboard board(call);
    const int index = call.integer(1);
    const bool found = index >= 1 && size_t(index) <= board->files.size();
    call.setText(found ? std::string_view(board->files[size_t(index) - 1]) : std::string_view());
    call.setOK(found);
}

constexpr CommandRow kRows[] = {
    {41, Alert},
    {88, Message},
    {151, NothingToShow},
    {160, NothingToShow},
    {161, NothingToShow},
    {162, Confirm},
    {163, Request},
    {175, NothingToShow},
    {181, NothingToShow},
    {400, PasteboardDataSize},
    {401, GetPasteboardData},
    {402, ClearPasteboard},
    {403, AppendDataToPasteboard},
    {521, SetPictureToPasteboard},
    {522, GetPictureFromPasteboard},
    {523, SetTextToPasteboard},
    {524, GetTextFromPasteboard},
    {910, DisplayNotification},
    {958, GetPasteboardDataType},
    {975, SetFileToPasteboard},
    {976, GetFileFromPasteboard},
};

}  // namespace

std::span<const CommandRow> commandsMessages() { return kRows; }

}  // namespace zrhost
