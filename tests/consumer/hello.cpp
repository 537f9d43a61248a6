// Hello, libovra: UTF-8 in, through UTF-16 and back out.
#include <cstdio>
#include <ovra/ovString.h>

int main() {
    const ovString text(ovSTRING_UTF8, "naïve 日本語 😀");
    int status = 0;
    const ovString back(ovSTRING_UTF16, text.convert(ovSTRING_UTF16), status);
    std::printf("%s (%zu code points)\n", back.to_utf8().c_str(), back.length());
    return status == 0 && back == text ? 0 : 1;
}
