#include "app/Progress.h"

#include <unistd.h>

#include "app/Messages.h"

namespace zrtool {

static constexpr size_t kBarWidth = 30, kLineWidth = 79;  // columns
static constexpr std::chrono::milliseconds kPatience(1000), kBetween(100);

Progress::Progress(std::string_view verb, size_t total)
    : verb_(verb), total_(total), terminal_(isatty(STDERR_FILENO) == 1), next_(Clock::now() + kPatience) {}

Progress::~Progress() {
    if (shown_) Print("\r" + std::string(kLineWidth, ' ') + "\r");
}

std::string Progress::Bar(std::string_view verb, size_t done, size_t total, std::string_view name, size_t width) {
    size_t filled = total ? kBarWidth * done / total : 0;
    std::string line = std::string(verb) + " [" + std::string(filled, '#') + std::string(kBarWidth - filled, '.') +
                       "] " + std::to_string(done) + "/" + std::to_string(total) + " " + Shown(name);
    if (line.size() > width) line.resize(width);
    while (!line.empty() && (line.back() & 0x80)) line.pop_back();  // no half of a character
    return line + std::string(width - line.size(), ' ');
}

void Progress::step(std::string_view name) {
    size_t before = done_++;
    if (!terminal_ || Clock::now() < next_) return;
    next_ = Clock::now() + kBetween;
    shown_ = true;
    Print("\r" + Bar(verb_, before, total_, name, kLineWidth));
}

}  // namespace zrtool
