#include "plugin/ZR_API_Sound.h"

#include <unistd.h>

void ZR_Beep() {
    if (!isatty(STDERR_FILENO)) return;
    ssize_t written = write(STDERR_FILENO, "\a", 1);
    static_cast<void>(written);
}
