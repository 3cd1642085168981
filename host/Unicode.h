// Opening the object zr-unicode.
#ifndef ZRHOST_UNICODE_H
#define ZRHOST_UNICODE_H

#include <string>

#include "host/unicode/UnicodeTable.h"

namespace zrhost {

const UnicodeTable* Unicode();  // opened at the first call; null = the object is missing
bool UnicodeIsOpen();           // without opening it
// Before the first need: the path of the object, empty = beside this library; the locale of comparisons.
void ConfigureUnicode(const std::string& path, const std::string& locale);
bool LatinOrderHolds();  // the locale sorts Latin letters as the root order does, so that they need no object
std::string FolderOfThisLibrary();  // with a trailing "/"

}  // namespace zrhost

#endif
