// The writer process of the kill test: creates a line of one family
// ("gyro", "navigation" or "depths") with up to COUNT records or profiles,
// and is meant to be killed part way.
#include <velmio/navigation.h>
#include <velmio/observed_depths.h>
#include <velmio/simple_sensor.h>

#include <cstdlib>
#include <cstring>
#include <string>

int main(int argc, char **argv) {
    if (argc != 4) return 2;
    const std::wstring line(argv[2], argv[2] + std::strlen(argv[2]));
    const long count = std::atol(argv[3]);
    const std::string family = argv[1];
    int error = 0;
    if (family == "gyro") {
        TOVO_Sensor *h = GyroOpenDir(line.c_str(), L"create", &error);
        if (!h || GyroBgnSeqWriteSummary(h) || GyroBgnSeqWriteLineSegment(h, L"raw")) return 1;
        for (long i = 0; i < count; ++i)
            if (GyroSeqWrite(h, 1e6 + i * 0.01, 1e-4 * (i % 1000), 0)) return 1;
        return GyroEndSeqWriteLineSegment(h, 0) || GyroEndSeqWriteSummary(h, 0) || GyroClose(h);
    }
    if (family == "navigation") {
        TOVO_Sensor *h = NavigationOpenDir(line.c_str(), L"create", &error);
        if (!h || NavigationBgnSeqWriteSummary(h, 1) || NavigationBgnSeqWriteLineSegment(h, L"raw")) return 1;
        for (long i = 0; i < count; ++i)
            if (NavigationSeqWrite(h, 1e6 + i * 0.01, 0.5 + 1e-7 * (i % 1000), -1.0, 0.01 * (i % 1000), 0)) return 1;
        return NavigationEndSeqWriteLineSegment(h, 0) || NavigationEndSeqWriteSummary(h, 0) || NavigationClose(h);
    }
    if (family == "depths") {
        TOVO_Sensor *h = ObservedDepthsOpenDir(line.c_str(), L"create", &error);
        if (!h || ObservedDepthsBgnSeqWriteSummary(h) || ObservedDepthsBgnSeqWriteLineSegment(h, L"raw")) return 1;
        for (long p = 0; p < count; ++p) {
            if (ObservedDepthsBgnSeqWriteProfile(h, 4, 1, 1e6 + p * 0.1, 0, 0, 0)) return 1;
            for (int b = 0; b < 4; ++b)
                if (ObservedDepthsSeqWrite(h, 1e6 + p * 0.1 + 0.001 * b, b, -b, 20.0 + 0.01 * (p % 1000), 0, 0, 0)) return 1;
            if (ObservedDepthsEndSeqWriteProfile(h)) return 1;
        }
        return ObservedDepthsEndSeqWriteLineSegment(h, 0) || ObservedDepthsEndSeqWriteSummary(h, 0) ||
               ObservedDepthsClose(h);
    }
    return 2;
}
