// What several files of commands share: paths of documents, whole files, errors of the system as the language numbers
// them, and the text of any value.
#ifndef ZRHOST_COMMANDS_PRIVATE_H
#define ZRHOST_COMMANDS_PRIVATE_H

#include <cstdint>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/CommandCall.h"

namespace zrhost {

// Errors of documents and folders, as the language numbers them.
enum FileError : int {
    kDiskFull = -34,
    kInputOutput = -36,
    kBadName = -37,
    kTooManyOpen = -42,
    kFileNotFound = -43,
    kDiskLocked = -44,
    kFolderNotEmpty = -47,
    kAlreadyExists = -48,
    kAlreadyOpen = -49,
    kBadReference = -51,
    kNoPermission = -54,
    kFolderNotFound = -120
};
int FileErrorOf(int systemError);  // from errno; 0 stays 0

// The folder that holds the structure, or the working directory without one; ends with the separator.
std::string BaseFolder(const Host& host);
// The full path of a text parameter: a relative one counts from BaseFolder, "." and ".." are resolved by name alone.
// Empty if the text is empty or holds a null unit.
std::string FullPath(const CommandCall& call, int i);
std::string FullPathOf(const Host& host, std::string_view path);
std::string WithSeparator(std::string path);  // ends with one separator; empty stays empty

// Whole files. The answer is 0 or a FileError; a document over 2 GB is refused with ZR_ERR_MEMORY.
int ReadWholeFile(const std::string& path, std::vector<uint8_t>* bytes);
int WriteWholeFile(const std::string& path, std::span<const uint8_t> bytes);

// Ends a command: OK 1, or OK 0 and the error.
void Finish(CommandCall& call, int error);

// The text that String gives for a value: numbers in their shortest form, dates and times in the system's short one.
std::u16string TextOf(const Host& host, const Value& value);

// A kind as the constants of the language number it: text 2, picture 3, text array 18; others as they are.
int LanguageKind(int kind);

// Two columns of a command's parameters: one 16-bit date and a time, local, of seconds since 1970.
Date LocalDateOf(int64_t seconds);
int32_t LocalTimeOf(int64_t seconds);
int64_t SecondsOfLocal(Date date, int32_t time);  // -1 = no such moment

}  // namespace zrhost

#endif
