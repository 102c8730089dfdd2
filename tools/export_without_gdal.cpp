// velmio export in a build without GDAL: the command is still known and says
// why it cannot write, so that scripts see a clear refusal.
#include "command.h"

namespace velmio::tool {

int runExport(const Args &) {
    return usageError("export", text("ToolExportWithoutGdal", "this velmio was built without GDAL"));
}

}  // namespace velmio::tool
