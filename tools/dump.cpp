// velmio dump: every field of the records of one sensor, read in chunks so
// that memory stays the same whatever the size of the line.
#include "command.h"
#include "families.h"
#include "format.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace velmio::tool {
namespace {

constexpr std::size_t kChunkRows = 65536;

// "A:B", "A:", ":B" or "A" into first..last within 1..count. False when malformed.
bool parseRange(const std::string &text, unsigned int count, unsigned int &first, unsigned int &last) {
    first = 1;
    last = count;
    const std::size_t colon = text.find(':');
    auto read = [](const std::string &s, unsigned int &out) {
        if (s.empty()) return true;
        char *end = nullptr;
        errno = 0;
        const unsigned long v = std::strtoul(s.c_str(), &end, 10);
        if (errno || *end || s[0] == '-' || v == 0 || v > 0xFFFFFFFFul) return false;
        out = static_cast<unsigned int>(v);
        return true;
    };
    if (colon == std::string::npos) return read(text, first) && read(text, last);
    return read(text.substr(0, colon), first) && read(text.substr(colon + 1), last);
}

// Column headings: a time gives its ISO text and seconds, a status its text.
std::vector<std::string> headings(const std::vector<Column> &columns) {
    std::vector<std::string> out;
    for (const Column &c : columns) {
        const std::string n = c.name;
        switch (c.type) {
        case ColumnType::Time: out.push_back(n + "_iso"); out.push_back(n + "_s80"); break;
        case ColumnType::Radians: out.push_back(n + "_deg"); break;
        case ColumnType::Status: out.push_back(n); out.push_back(n + "_text"); break;
        default: out.push_back(n);
        }
    }
    return out;
}

// The shown values of one row, as texts (strings quoted for JSON when json).
std::vector<std::string> cells(const std::vector<Column> &columns, const double *row, bool json) {
    std::vector<std::string> out;
    auto str = [json](const std::string &s) { return json ? jsonString(s) : csvField(s); };
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const double v = row[i];
        switch (columns[i].type) {
        case ColumnType::Time: out.push_back(str(isoText(v))); out.push_back(number(v)); break;
        case ColumnType::Status:
            out.push_back(number(v));
            out.push_back(str(statusText(static_cast<unsigned int>(v))));
            break;
        default: out.push_back(number(shown(v, columns[i].type)));
        }
    }
    return out;
}

}  // namespace

int runDump(const Args &args) {
    const Parsed p = parseArgs(args, {}, {"--records", "--profiles", "--format"});
    if (!p.error.empty() || p.positional.size() != 2) return usageError("dump", p.error);
    const std::string format = p.get("--format", "csv");
    if (format != "csv" && format != "json") return usageError("dump", "--format: " + format);
    const Family *family = findFamily(p.positional[1]);
    if (!family) {
        std::string known;
        for (const Family &f : families()) known += std::string(known.empty() ? "" : " ") + f.name;
        return usageError("dump", p.positional[1] + ": " + text("ToolDumpUnknownSensor", "not a sensor; one of") + " " + known);
    }
    const bool profiles = family->kind == Kind::Profile;
    if (p.has(profiles ? "--records" : "--profiles"))
        return usageError("dump", profiles ? "--records: use --profiles" : "--profiles: use --records");

    const std::wstring line = widen(p.positional[0]);
    int error = 0;
    TOVO_Sensor *h = family->open(line.c_str(), L"query", &error);
    if (!h) return reportError((p.positional[0] + ": " + family->name).c_str(), error ? error : -1);
    Summary summary;
    if (int rc = family->summarise(h, summary)) {
        family->close(h);
        return reportError(family->name, rc);
    }
    unsigned int first = 1, last = summary.records;
    const std::string range = p.get(profiles ? "--profiles" : "--records");
    if (!range.empty() && !parseRange(range, summary.records, first, last)) {
        family->close(h);
        return usageError("dump", range);
    }
    if (last > summary.records) last = summary.records;

    const bool json = format == "json";
    auto reader = family->reader(h, first, last);
    const std::vector<std::string> names = headings(reader->columns());
    if (json) {
        std::printf("{\"line\":%s,\"sensor\":%s,\"records\":[", jsonString(p.positional[0]).c_str(),
                    jsonString(family->name).c_str());
    } else {
        for (std::size_t i = 0; i < names.size(); ++i) std::printf("%s%s", i ? "," : "", names[i].c_str());
        std::printf("\n");
    }
    std::vector<double> rows;
    const std::size_t width = reader->columns().size();
    bool firstRow = true;
    int rc = 0;
    while ((rc = reader->next(rows, kChunkRows)) == 0 && !rows.empty()) {
        for (std::size_t r = 0; r < rows.size(); r += width) {
            const std::vector<std::string> values = cells(reader->columns(), &rows[r], json);
            if (json) {
                std::printf("%s\n{", firstRow ? "" : ",");
                for (std::size_t i = 0; i < values.size(); ++i)
                    std::printf("%s\"%s\":%s", i ? "," : "", names[i].c_str(), values[i].c_str());
                std::printf("}");
            } else {
                for (std::size_t i = 0; i < values.size(); ++i) std::printf("%s%s", i ? "," : "", values[i].c_str());
                std::printf("\n");
            }
            firstRow = false;
        }
    }
    if (json) std::printf("\n]}\n");
    reader.reset();
    family->close(h);
    return rc ? reportError(family->name, rc) : 0;
}

}  // namespace velmio::tool
