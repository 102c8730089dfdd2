// Writes an attribute data file with the exported C++ class, reads it back,
// and explains an error code from the installed message bundle.
#include <velmio/data_file.hpp>
#include <velmio/messages.hpp>
#include <velmio/version.h>

#include <cstdio>
#include <vector>

int main(int argc, char **argv) {
    const MORVAUString directory = MORVAUString::fromUtf8(argc > 1 ? argv[1] : ".");
    std::printf("VelmIO %s\n", VELMIO_VERSION_STRING);
    {
        long status = 0;
        VELMDataFile file(directory, L"Depths", L"example", 42, ACCESS_CREATE, 1, status);
        if (status != 0 || file.AddAttribute(DT_DOUBLE, L"Depth") != 0) return 1;
        dataValue depth;
        depth.d = 12.5;
        if (file.WriteRecord(100.0, 0, {depth}, {}) != 0) return 1;
    }  // the destructor writes the time index and completes the summary

    long status = 0;
    VELMDataFile file(directory, L"Depths", L"", 42, ACCESS_READ, 1, status);
    double time = 0;
    unsigned int recordStatus = 0;
    std::vector<dataValue> values;
    if (status != 0 || file.ReadRecord(time, recordStatus, values, 1) != 0) return 1;
    std::printf("%u record: %.1f s, %.2f m\n", file.GetNumberOfRecords(), time, values[0].d);
    file.FreeRecordValues(values);

    MORVAUString sentence, bundle;
    if (VELMIOUtils::findErrorMessage(5000046, sentence) != 0) return 1;
    VELMIOUtils::findMessageBundleDirectory(VELMIOUtils::kMessageBundleName, bundle);
    std::printf("5000046: %s\nmessages from %s\n", sentence.toUtf8().c_str(), bundle.toUtf8().c_str());
    return 0;
}
