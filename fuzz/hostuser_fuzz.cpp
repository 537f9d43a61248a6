// The blank-padded and argument functions of ovra/ovHostUser.h under fuzzed
// texts and buffer sizes. Every output goes to a heap block of exactly the
// size given, so AddressSanitizer catches a write one byte past it.
// Input: a size byte, a mode byte, then the arguments separated by 0 bytes.
//  - ncha agrees with a plain search for the last non-blank;
//  - ccase changes ASCII letters only, and only inside the length;
//  - argget copies min(length, size) characters and a NUL only when it fits;
//  - ovghnm and ovgtun stay inside buffers of the fuzzed size.
#include "ovra/ovHostUser.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

void check(bool ok) {
    if (!ok)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2)
        return 0;
    const int room = data[0] % 40;
    const int mode = static_cast<int8_t>(data[1]);
    const std::string rest(reinterpret_cast<const char*>(data + 2), size - 2);

    // ncha and ccase over the whole text, which may hold any bytes.
    {
        const int n = static_cast<int>(rest.size());
        std::unique_ptr<char[]> text(new char[rest.size() + 1]);
        std::memcpy(text.get(), rest.data(), rest.size());
        int expected = n;
        while (expected > 0 && rest[expected - 1] == ' ')
            --expected;
        check(ncha(text.get(), n) == expected);
        const int length = room < n ? room : n;
        ccase(text.get(), length, &mode);
        for (int i = 0; i < n; ++i) {
            const unsigned char before = static_cast<unsigned char>(rest[i]);
            const unsigned char after = static_cast<unsigned char>(text[i]);
            if (i >= length)
                check(after == before);
            else if (mode == 1 && before >= 'a' && before <= 'z')
                check(after == before - 'a' + 'A');
            else if (mode != 1 && before >= 'A' && before <= 'Z')
                check(after == before - 'A' + 'a');
            else
                check(after == before);
        }
    }

    // The arguments: the pieces between 0 bytes.
    std::vector<std::string> pieces(1);
    for (char c : rest) {
        if (c == '\0')
            pieces.emplace_back();
        else
            pieces.back() += c;
    }
    std::vector<char*> argv;
    for (std::string& p : pieces)
        argv.push_back(&p[0]);
    argv.push_back(nullptr);
    argsgi(static_cast<int>(pieces.size()), argv.data());
    for (int index : {-1, 0, static_cast<int>(pieces.size()) - 1, static_cast<int>(pieces.size()),
                      mode, room}) {
        std::unique_ptr<char[]> buf(new char[room > 0 ? room : 1]);
        std::memset(buf.get(), '#', room > 0 ? room : 1);
        int len = -5;
        argget(&index, buf.get(), room, &len);
        const bool inside = index >= 0 && index < static_cast<int>(pieces.size());
        const std::string arg = inside ? pieces[index] : "";
        const int n = static_cast<int>(arg.size()) < room ? static_cast<int>(arg.size()) : room;
        check(len == n);
        check(std::memcmp(buf.get(), arg.data(), n) == 0);
        if (n < room)
            check(buf[n] == '\0');
    }
    argsgi(0, nullptr);

    // Host and user names into buffers of the fuzzed size.
    std::unique_ptr<char[]> a(new char[room > 0 ? room : 1]);
    std::unique_ptr<char[]> b(new char[room > 0 ? room : 1]);
    int len = -5;
    ovghnm(a.get(), room, &len);
    check(len >= 0 && len <= room);
    ovgtun(a.get(), room, b.get(), room);
    return 0;
}
