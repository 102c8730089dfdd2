#include <velmio/encoding.h>

#include "foundation/diagnostics.h"

#include <new>
#include <string>

extern "C" VELMIO_API int TOVO_DecodeAccessTypeToken(const wchar_t *token) {
    if (!token || !*token) {
        velmio::say("TOVO_DecodeAccessTypeToken: supplied token type is invalid (empty).\n");
        return 5000035;
    }
    std::wstring folded;
    try {
        folded = token;
    } catch (const std::bad_alloc &) {
        velmio::say("TOVO_DecodeAccessTypeToken: out of memory\n");
        return 5000009;
    }
    for (auto &c : folded)
        if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c - L'A' + L'a');
    static const struct {
        const wchar_t *name;
        int mode;
    } kTokens[] = {
        {L"create", VELMIO_ACCESS_CREATE}, {L"query", VELMIO_ACCESS_QUERY}, {L"update", VELMIO_ACCESS_UPDATE}};
    for (const auto &t : kTokens)
        if (folded == t.name) return t.mode;
    velmio::say("TOVO_DecodeAccessTypeToken: token type invalid (unknown)\n");
    return 5000035;
}
