// Redirection of standard output (the library's diagnostics) chosen by the
// environment variable "CONSOLE". The only process-wide state of the library.
#include <velmio/console.h>

#include "foundation/diagnostics.h"
#include "foundation/utf8.h"
#include "platform/native_path.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#else
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {

constexpr int kFileNotOpened = 5017203;
constexpr int kUnchanged = -1;   // the descriptor was never touched
constexpr int kWasClosed = -2;   // the descriptor was closed before we changed it

#if defined(_WIN32)
int duplicate(int fd) { return _dup(fd); }
int duplicateOnto(int from, int to) { return _dup2(from, to); }
int closeDescriptor(int fd) { return _close(fd); }
int openForWriting(const std::string &path) {
    return _wopen(velmio::fromUtf8(path).c_str(), _O_WRONLY | _O_CREAT | _O_TRUNC | _O_TEXT, 0666);
}
#else
int duplicate(int fd) { return fcntl(fd, F_DUPFD_CLOEXEC, 3); }
int duplicateOnto(int from, int to) {
    int r;
    do r = dup2(from, to);
    while (r < 0 && errno == EINTR);
    return r;
}
int closeDescriptor(int fd) { return close(fd); }
int openForWriting(const std::string &path) {
    return open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
}
#endif

// What Start changed, so that Stop can put everything back: copies of the
// original standard descriptors 0, 1 and 2, and the diagnostics file.
struct Redirection {
    int original[3] = {kUnchanged, kUnchanged, kUnchanged};
    int file = -1;
    bool console = false;
};

Redirection &state() {
    static Redirection redirection;
    return redirection;
}

// Start and Stop may come from any thread; one at a time changes the state.
std::mutex &stateLock() {
    static std::mutex lock;
    return lock;
}

void flushStandardStreams() {
    std::fflush(stdout);
    std::fflush(stderr);
}

void keepOriginal(int fd) {
    Redirection &s = state();
    if (s.original[fd] != kUnchanged) return;
    const int copy = duplicate(fd);
    s.original[fd] = copy >= 0 ? copy : kWasClosed;
}

void restoreOriginals() {
    Redirection &s = state();
    for (int fd = 0; fd < 3; ++fd) {
        if (s.original[fd] >= 0) {
            duplicateOnto(s.original[fd], fd);
            closeDescriptor(s.original[fd]);
        } else if (s.original[fd] == kWasClosed) {
            closeDescriptor(fd);
        }
        s.original[fd] = kUnchanged;
    }
    std::clearerr(stdin);
}

bool equalsIgnoringCase(const char *a, const char *b) {
    for (; *a && *b; ++a, ++b) {
        char x = *a, y = *b;
        if (x >= 'a' && x <= 'z') x = static_cast<char>(x - 'a' + 'A');
        if (y >= 'a' && y <= 'z') y = static_cast<char>(y - 'a' + 'A');
        if (x != y) return false;
    }
    return *a == *b;
}

void attachConsole() {
    Redirection &s = state();
    if (s.console) return;
#if defined(_WIN32)
    if (!AllocConsole()) return;
    flushStandardStreams();
    keepOriginal(0);
    keepOriginal(1);
    keepOriginal(2);
    const int in = _open("CONIN$", _O_RDONLY | _O_TEXT);
    const int out = _open("CONOUT$", _O_WRONLY | _O_TEXT);
    if (in >= 0) duplicateOnto(in, 0), _close(in);
    if (out >= 0) duplicateOnto(out, 1), duplicateOnto(out, 2), _close(out);
#else
    // Without a controlling terminal there is nothing to attach to.
    const int tty = open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (tty < 0) return;
    flushStandardStreams();
    for (int fd = 0; fd < 3; ++fd) {
        keepOriginal(fd);
        duplicateOnto(tty, fd);
    }
    closeDescriptor(tty);
#endif
    s.console = true;
}

int redirectToFile(const char *name) {
    Redirection &s = state();
    const int fd = openForWriting(velmio::platform::nativePath(velmio::fromUtf8(name)));
    if (fd < 0) return kFileNotOpened;
    flushStandardStreams();
    keepOriginal(1);
    duplicateOnto(fd, 1);
    if (s.file >= 0) closeDescriptor(s.file);
    s.file = fd;
    return 0;
}

}  // namespace

extern "C" {

VELMIO_API int VELM_IO_StartDiagnostics(void) {
    const char *value = std::getenv("CONSOLE");
    if (!value || !*value || equalsIgnoringCase(value, "NO")) return 0;
    try {
        std::lock_guard<std::mutex> guard(stateLock());
        if (equalsIgnoringCase(value, "YES") || equalsIgnoringCase(value, "CONSOLE")) {
            attachConsole();
            return 0;
        }
        return redirectToFile(value);
    } catch (...) {
        return 5000009;
    }
}

VELMIO_API int VELM_IO_StopDiagnostics(void) {
    std::lock_guard<std::mutex> guard(stateLock());
    Redirection &s = state();
    flushStandardStreams();
    restoreOriginals();
#if defined(_WIN32)
    if (s.console) FreeConsole();
#endif
    s.console = false;
    int result = 0;
    // Closed after stdout is restored, so that this close is the file's last
    // and reports a failed write-back.
    if (s.file >= 0) result = closeDescriptor(s.file) == 0 ? 0 : -1;
    s.file = -1;
    return result;
}

int VELM_IO_SetDiagnostics(int enabled) {
    const bool was = velmio::diagnosticsEnabled();
    velmio::setDiagnosticsEnabled(enabled != 0);
    return was ? 1 : 0;
}

}  // extern "C"
