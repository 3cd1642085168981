#include "app/HostOptions.h"

#include <charconv>

#include "app/Messages.h"

namespace zrtool {

static uint16_t ReadVersion(std::string_view value) {
    std::string_view digits = value;
    if (digits.starts_with("0x") || digits.starts_with("0X")) digits.remove_prefix(2);
    unsigned version = 0;
    auto [end, problem] = std::from_chars(digits.data(), digits.data() + digits.size(), version, 16);
    bool whole = problem == std::errc() && end == digits.data() + digits.size();
    if (!whole || version < 0x1000 || version > 0xFFFF)
        throw Refusal{"--host-version needs four hexadecimal digits such as 0x1800, not " + Quoted(value)};
    return static_cast<uint16_t>(version);
}

static bool IsLocale(std::string_view value) {
    if (value.empty() || value.size() > 20) return false;
    for (char c : value)
        if (!((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_'))
            return false;
    return true;
}

zrhost::Options HostOptions(const Arguments& arguments) {
    zrhost::Options options;
    if (auto language = arguments.value("language")) {
        if (*language != "en" && *language != "fr") throw Refusal{"--language is en or fr, not " + Quoted(*language)};
        options.language = *language;
    }
    if (auto locale = arguments.value("locale")) {
        if (!IsLocale(*locale))
            throw Refusal{"--locale needs a language and country such as en-US, not " + Quoted(*locale)};
        options.locale = *locale;
    }
    if (auto version = arguments.value("host-version")) options.version = ReadVersion(*version);
    return options;
}

}  // namespace zrtool
