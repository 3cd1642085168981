// Options that several commands share, as the host takes them.
#ifndef ZRTOOL_HOSTOPTIONS_H
#define ZRTOOL_HOSTOPTIONS_H

#include "app/Options.h"
#include "host/Host.h"

namespace zrtool {

zrhost::Options HostOptions(const Arguments& arguments);  // language, locale, host version; throws Refusal

}  // namespace zrtool

#endif
