// A bar on standard error for work that takes over a second; only on a terminal.
#ifndef ZRTOOL_PROGRESS_H
#define ZRTOOL_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace zrtool {

class Progress {
  public:
    Progress(std::string_view verb, size_t total);  // "Drawing"
    ~Progress();                                    // takes the bar away
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    void step(std::string_view name);  // one more begins

    static std::string Bar(std::string_view verb, size_t done, size_t total, std::string_view name, size_t width);

  private:
    using Clock = std::chrono::steady_clock;
    std::string verb_;
    size_t total_, done_ = 0;
    bool terminal_, shown_ = false;
    Clock::time_point next_;  // of the next bar
};

}  // namespace zrtool

#endif
