// ovra: a command-line tour of the library, one verb per family.
//
//   ovra text TEXT...          code points, UTF-16 units, the UTF-8 round trip
//   ovra format FORMAT ARG...  the library's printf-like formatting
//   ovra path PATH...          normalised form, parent, last component, extension
//   ovra version               the library's version
#include "ovra_tool.h"

#include "ovra/ovPathName.h"
#include "ovra/ovString.h"
#include "ovra/ovStringFormat.h"
#include "ovra/ovStringParse.h"
#include "ovra/ovVersion.h"

#include <cstdint>
#include <cstdio>
#include <deque>
#include <functional>
#include <map>

namespace {

// "1 code point", "3 code points".
std::string count(size_t n, const char* what) {
    return std::to_string(n) + " " + what + (n == 1 ? "" : "s");
}

void print(const std::string& line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
}

// The argument as given, quoted; bytes that are not valid UTF-8 show as \xHH.
std::string quoted(const std::string& text, bool valid) {
    std::string out = "\"";
    for (const unsigned char c : text) {
        if (!valid && c >= 0x80) {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02X", static_cast<unsigned>(c));
            out += hex;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out + "\"";
}

// Where the first undecodable byte is: the end of the longest prefix that
// still decodes (cut anywhere else, a prefix would end inside a character).
size_t first_bad_byte(const std::string& text) {
    for (size_t n = text.size(); n > 0; --n) {
        int status = 0;
        if (!ovString(ovSTRING_UTF8, text.data(), n, status).failed())
            return n;
    }
    return 0;
}

int text_verb(const std::vector<std::string>& args) {
    for (const std::string& arg : args) {
        int status = 0;
        const ovString s(ovSTRING_UTF8, arg, status);
        print(quoted(arg, !s.failed()));
        if (s.failed()) {
            print("  failed: " + s.to_utf8() + " (first bad byte at offset " +
                  std::to_string(first_bad_byte(arg)) + ")");
            continue;
        }
        std::string line = "  " + count(s.length(), "code point") + ":";
        const unsigned int* cp = s.convert(ovSTRING_UTF32);
        for (size_t i = 0; i < s.length(); ++i) {
            char item[16];
            std::snprintf(item, sizeof item, " U+%04X", cp[i]);
            line += item;
        }
        print(line);

        const ovChar16* u = s.convert(ovSTRING_UTF16);
        size_t units = 0;
        while (u[units])
            ++units;
        line = "  " + count(units, "UTF-16 unit") + ":";
        for (size_t i = 0; i < units; ++i) {
            char item[8];
            std::snprintf(item, sizeof item, " %04X", static_cast<unsigned>(u[i]) & 0xFFFFu);
            line += item;
        }
        print(line);

        // UTF-8 -> code points -> UTF-16 -> code points -> UTF-8.
        const ovString back(ovSTRING_UTF16, u, units, status);
        const std::string again = back.to_utf8();
        print("  UTF-8 round trip: " + again + (again == arg ? " (exact)" : " (CHANGED)"));
    }
    return 0;
}

int format_verb(const std::vector<std::string>& args) {
    if (args.empty()) {
        print("usage: ovra format FORMAT [ARG...]");
        return 2;
    }
    // Each argument becomes what it reads as: a whole integer, a whole
    // number with a decimal point, or else text.
    const ovStringHandIntParser ints;
    const ovStringSimpleDoubleParser doubles;
    std::deque<ovString> texts; // the arguments point at these
    std::vector<ovStringFormatArg> packed;
    for (size_t i = 1; i < args.size(); ++i) {
        texts.emplace_back(ovSTRING_UTF8, args[i]);
        const ovString& text = texts.back();
        const ovStringParseIntResult n = ints.parse(text);
        if (n.success() && n.remainder().empty()) {
            packed.emplace_back(n.result());
            continue;
        }
        const ovStringParseDoubleResult d = doubles.parse(text);
        if (d.success() && d.remainder().empty())
            packed.emplace_back(d.result());
        else
            packed.emplace_back(text);
    }
    ovStringFormatArgs list(packed.data(), static_cast<int>(packed.size()));
    const ovString result =
        ovStringFormatter().format_with_list(ovString(ovSTRING_UTF8, args[0]), list);
    print(result.to_utf8());
    return 0;
}

int path_verb(const std::vector<std::string>& args) {
    for (const std::string& arg : args) {
        const ovPathName path(ovString(ovSTRING_UTF8, arg));
        print(quoted(arg, !path.invalid()));
        if (path.invalid()) {
            print("  invalid: not UTF-8");
            continue;
        }
        const ovFileName last = path.basename();
        print("  normalised: " + path.string().to_utf8() +
              (path.relative_path() ? "  (relative)" : "  (absolute)"));
        print("  parent:     " + path.dirname().string().to_utf8());
        print("  last:       " + last.string().to_utf8() +
              (last.invalid() ? "  (the root, not a name)" : ""));
        if (!last.invalid() && last.has_extension())
            print("  extension:  " + last.extension_without_dot().to_utf8());
    }
    return 0;
}

int version_verb(const std::vector<std::string>&) {
    print("libovra " OVRA_VERSION_STRING);
    return 0;
}

int usage() {
    print("ovra " OVRA_VERSION_STRING ": a tour of libovra\n"
          "  ovra text TEXT...          code points, UTF-16 units, UTF-8 round trip\n"
          "  ovra format FORMAT ARG...  formatting: ovra format \"%s has %5.2f\" pi 3.14159\n"
          "  ovra path PATH...          normalised form, parent, last component, extension\n"
          "  ovra version               the library's version");
    return 2;
}

} // namespace

int ovra_tool_run(const std::vector<std::string>& args) {
    static const std::map<std::string, std::function<int(const std::vector<std::string>&)>> verbs =
        {
            {"text", text_verb},
            {"format", format_verb},
            {"path", path_verb},
            {"version", version_verb},
        };
    if (args.empty())
        return usage();
    const auto verb = verbs.find(args[0]);
    if (verb == verbs.end())
        return usage();
    const int rc = verb->second(std::vector<std::string>(args.begin() + 1, args.end()));
    std::fflush(stdout);
    return rc;
}
