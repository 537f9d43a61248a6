// Windows code page numbers on POSIX, through iconv's tables. The results
// follow the Windows behaviour: invalid bytes refuse the whole text, missing
// characters become the default character "?" and are reported by status.
#include "ovra/ovStringEncoding.h"

#include "strings/utf_codec.h"

#include <cerrno>
#include <cstring>
#include <cwchar>
#include <iconv.h>
#include <langinfo.h>
#include <string>
#include <vector>

using namespace ovra_internal;

namespace {

// iconv's name for a Windows code page number.
std::string iconv_name(int code_page) {
    switch (code_page) {
    case 0: // the "ANSI" page: here, the locale's own character set
        return nl_langinfo(CODESET);
    case 65000:
        return "UTF-7";
    case 65001:
        return "UTF-8";
    case 20127:
        return "ASCII";
    case 20866:
        return "KOI8-R";
    case 21866:
        return "KOI8-U";
    case 20932:
        return "EUC-JP";
    case 50220:
        return "ISO-2022-JP";
    case 51949:
        return "EUC-KR";
    case 54936:
        return "GB18030";
    default:
        break;
    }
    if (code_page >= 28591 && code_page <= 28606)
        return "ISO-8859-" + std::to_string(code_page - 28590);
    return "CP" + std::to_string(code_page);
}

// An iconv descriptor that closes itself.
class Iconv {
public:
    Iconv(const std::string& to, const std::string& from)
        : m_cd(iconv_open(to.c_str(), from.c_str())) {}
    ~Iconv() {
        if (ok())
            iconv_close(m_cd);
    }
    Iconv(const Iconv&) = delete;
    Iconv& operator=(const Iconv&) = delete;
    bool ok() const { return m_cd != reinterpret_cast<iconv_t>(-1); }
    iconv_t get() const { return m_cd; }

private:
    iconv_t m_cd;
};

} // namespace

ovString ovStringCPEncoding::in(const char* text, int& status) const {
    if (!text)
        return refused_cp_in(status);
    Iconv cd("WCHAR_T", iconv_name(m_code_page));
    if (!cd.ok())
        return refused_cp_in(status);
    const size_t n = std::strlen(text);
    // No code page gives more characters than it has bytes.
    std::vector<wchar_t> wide(n + 1, 0);
    char* in = const_cast<char*>(text);
    size_t in_left = n;
    char* out = reinterpret_cast<char*>(wide.data());
    size_t out_left = n * sizeof(wchar_t);
    if (iconv(cd.get(), &in, &in_left, &out, &out_left) == static_cast<size_t>(-1) ||
        iconv(cd.get(), nullptr, nullptr, &out, &out_left) == static_cast<size_t>(-1))
        return refused_cp_in(status);
    ovString s(ovSTRING_WCS, wide.data(), status);
    status = 0; // the code page already refused bad input
    return unfailed(s);
}

utString ovStringCPEncoding::out(const ovString& s, int& status) const {
    const wchar_t* w = s.convert(ovSTRING_WCS);
    // Windows will not report default characters for the UTF pages and
    // refuses the call; kept so both platforms answer alike.
    if (!w || m_code_page == 65000 || m_code_page == 65001)
        return refused_cp_out(status);
    const std::string name = iconv_name(m_code_page);
    Iconv cd(name, "WCHAR_T");
    Iconv question(name, "ASCII");
    if (!cd.ok() || !question.ok())
        return refused_cp_out(status);

    // The page's own spelling of the default character "?".
    char qbuf[8];
    char qsrc[] = "?";
    char* qin = qsrc;
    size_t qin_left = 1;
    char* qout = qbuf;
    size_t qout_left = sizeof qbuf;
    if (iconv(question.get(), &qin, &qin_left, &qout, &qout_left) == static_cast<size_t>(-1))
        return refused_cp_out(status);
    const std::string default_char(qbuf, static_cast<size_t>(qout - qbuf));

    char* in = const_cast<char*>(reinterpret_cast<const char*>(w));
    size_t in_left = std::wcslen(w) * sizeof(wchar_t);
    std::string narrow(in_left + 16, '\0'); // grown when a page needs more
    size_t used = 0;
    int lacked = 0;
    for (;;) {
        char* out = &narrow[used];
        size_t out_left = narrow.size() - used;
        const bool flushing = in_left == 0; // one last call ends any shift state
        const size_t r = flushing ? iconv(cd.get(), nullptr, nullptr, &out, &out_left)
                                  : iconv(cd.get(), &in, &in_left, &out, &out_left);
        const int err = errno;
        used = narrow.size() - out_left;
        if (r != static_cast<size_t>(-1)) {
            if (flushing)
                break;
            continue;
        }
        if (err == E2BIG) {
            narrow.resize(narrow.size() * 2);
        } else if (err == EILSEQ && !flushing) {
            lacked = 1; // a character the page does not have
            if (narrow.size() - used < default_char.size())
                narrow.resize(narrow.size() * 2);
            narrow.replace(used, default_char.size(), default_char);
            used += default_char.size();
            in += sizeof(wchar_t);
            in_left -= sizeof(wchar_t);
        } else {
            return refused_cp_out(status);
        }
    }
    status = lacked;
    narrow.resize(used);
    return utString(utCOPY, narrow.c_str());
}
