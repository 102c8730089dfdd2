#include "command.h"

#include <velmio/version.h>

#include <cstdio>

int velmio::tool::runVersion(const Args &) {
    std::printf("velmio %s\n%s\n", VELMIO_VERSION_STRING, VELMIO_DESCRIPTION);
    return 0;
}
