#include "progress.h"

#include <cstdio>
#include <unistd.h>

namespace velmio::tool {

std::string progressText(std::size_t done, std::size_t total, double elapsed, int barWidth) {
    const double fraction = total ? static_cast<double>(done) / static_cast<double>(total) : 1.0;
    const int filled = static_cast<int>(fraction * barWidth);
    std::string bar(static_cast<std::size_t>(barWidth), ' ');
    for (int i = 0; i < filled && i < barWidth; ++i) bar[static_cast<std::size_t>(i)] = '#';
    const double rate = elapsed > 0 ? static_cast<double>(done) / elapsed : 0.0;
    char left[32] = "";
    if (rate > 0 && done < total)
        std::snprintf(left, sizeof left, "  %.0fs left", static_cast<double>(total - done) / rate);
    char buf[160];
    std::snprintf(buf, sizeof buf, "[%s] %zu/%zu lines  %.1f lines/s%s", bar.c_str(), done, total, rate, left);
    return buf;
}

bool Progress::wanted(bool quiet) { return !quiet && isatty(STDERR_FILENO); }

Progress::Progress(std::size_t total, bool quiet)
    : total_(total), shown_(wanted(quiet)), start_(std::chrono::steady_clock::now()),
      lastDraw_(start_) {}

void Progress::step() {
    ++done_;
    if (!shown_) return;
    const auto now = std::chrono::steady_clock::now();
    // Redraw at most ten times a second: a terminal is slower than a scan.
    if (done_ < total_ && now - lastDraw_ < std::chrono::milliseconds(100)) return;
    lastDraw_ = now;
    const double elapsed = std::chrono::duration<double>(now - start_).count();
    std::fprintf(stderr, "\r%s\033[K", progressText(done_, total_, elapsed).c_str());
    std::fflush(stderr);
}

Progress::~Progress() {
    if (shown_) std::fputs("\r\033[K", stderr);
}

}  // namespace velmio::tool
