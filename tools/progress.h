// The progress bar of long scans: on standard error, only when it is a
// terminal and the user did not ask for quiet.
#ifndef VELMIO_TOOLS_PROGRESS_H
#define VELMIO_TOOLS_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <string>

namespace velmio::tool {

// "[#####     ]  50/100 lines  12.5 lines/s  4s left" for done of total after
// elapsed seconds; the bar is barWidth characters wide.
std::string progressText(std::size_t done, std::size_t total, double elapsed, int barWidth = 30);

class Progress {
public:
    // Shown only when standard error is a terminal and quiet is false.
    Progress(std::size_t total, bool quiet);
    // Whether a Progress would be shown, before counting its total.
    static bool wanted(bool quiet);
    ~Progress();
    bool shown() const { return shown_; }
    void step();  // one more line done

private:
    std::size_t total_, done_ = 0;
    bool shown_;
    std::chrono::steady_clock::time_point start_, lastDraw_;
};

}  // namespace velmio::tool

#endif
