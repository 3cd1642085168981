#include "app/Messages.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "app/Output.h"

namespace zrtool {

static void WriteToStandardError(std::string_view text) {
    while (!text.empty()) {
        ssize_t written = write(STDERR_FILENO, text.data(), text.size());
        if (written <= 0) return;  // nobody is left to tell
        text.remove_prefix(static_cast<size_t>(written));
    }
}

void Print(std::string_view message) {
    StandardOutput::Flush();
    WriteToStandardError(message);
}

void Say(std::string_view sentence) { Print("zr: " + std::string(sentence) + "\n"); }

bool ColourOnStandardError() {
    const char* noColour = getenv("NO_COLOR");
    const char* terminal = getenv("TERM");
    if (noColour && *noColour) return false;
    if (!terminal || !strcmp(terminal, "dumb")) return false;
    return isatty(STDERR_FILENO) == 1;
}

static void AppendShown(std::string& out, unsigned char byte) {
    static const char kDigits[] = "0123456789ABCDEF";
    if (byte == '\n') out += "\\n";
    else if (byte == '\r') out += "\\r";
    else if (byte == '\t') out += "\\t";
    else if (byte < 0x20 || byte == 0x7F) {
        out += "\\x";
        out += kDigits[byte >> 4];
        out += kDigits[byte & 15];
    } else {
        out += static_cast<char>(byte);
    }
}

std::string Shown(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char byte : text) AppendShown(out, static_cast<unsigned char>(byte));
    return out;
}

std::string Quoted(std::string_view text) { return "\"" + Shown(text) + "\""; }

std::string ReasonOf(int errorNumber) { return strerror(errorNumber); }

// Steps from one word to the other: a letter more, less, another one, or two swapped. ASCII case does not count.
static size_t Distance(std::string_view left, std::string_view right) {
    auto folded = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    std::vector<std::vector<size_t>> steps(left.size() + 1, std::vector<size_t>(right.size() + 1));
    for (size_t i = 0; i <= left.size(); ++i) steps[i][0] = i;
    for (size_t j = 0; j <= right.size(); ++j) steps[0][j] = j;
    for (size_t i = 1; i <= left.size(); ++i) {
        for (size_t j = 1; j <= right.size(); ++j) {
            bool same = folded(left[i - 1]) == folded(right[j - 1]);
            size_t best = std::min({steps[i - 1][j] + 1, steps[i][j - 1] + 1, steps[i - 1][j - 1] + (same ? 0 : 1)});
            bool swapped = i > 1 && j > 1 && folded(left[i - 1]) == folded(right[j - 2]) &&
                           folded(left[i - 2]) == folded(right[j - 1]);
            if (swapped) best = std::min(best, steps[i - 2][j - 2] + 1);
            steps[i][j] = best;
        }
    }
    return steps[left.size()][right.size()];
}

std::string Nearest(std::string_view word, const char* const* candidates, size_t count) {
    if (word.size() > 64) return "";
    size_t best = word.size() < 4 ? 2 : 3;  // from here on it is another word
    const char* nearest = "";
    for (size_t i = 0; i < count; ++i) {
        size_t distance = Distance(word, candidates[i]);
        if (distance >= best) continue;
        best = distance;
        nearest = candidates[i];
    }
    return nearest;
}

}  // namespace zrtool
