#include "ovra/ovPathName.h"

#include "common/immortal.h"
#include "filesystem/path_text.h"

#include <cstring>

using ovra_internal::kNoIndex;
using ovra_internal::last_index_of;
using ovra_internal::slice;
using ovra_internal::TextBuilder;

namespace {

constexpr unsigned int kSlash = '/';
constexpr unsigned int kBackslash = '\\';
constexpr unsigned int kDot = '.';

// Separator test; with Backslash set a backslash reads as "/", which is how
// normalising sees the text before it has been rewritten.
template <bool Backslash> inline bool is_sep(unsigned int c) noexcept {
    return c == kSlash || (Backslash && c == kBackslash);
}

template <bool Backslash> size_t root_of(const unsigned int* s, size_t n) noexcept {
    size_t root = 0;
    if (n >= 1 && is_sep<Backslash>(s[0]))
        root = 1;
    if (n >= 2 && is_sep<Backslash>(s[0]) && is_sep<Backslash>(s[1]))
        root = 2;
    if (n >= 3 && s[1] == ':' && is_sep<Backslash>(s[2]))
        root = 3;
    return root;
}

// True when normalising would change the text: a separator to cut at the
// end, a backslash to rewrite, or a run of separators after the root. Stops
// at the first such place, which for typical Windows text comes early.
template <bool Backslash>
bool needs_change(const unsigned int* s, size_t root, size_t end, size_t n) noexcept {
    if (end != n)
        return true;
    bool after_sep = false;
    for (size_t i = 0; i < end; ++i) {
        if (Backslash && s[i] == kBackslash)
            return true;
        const bool sep = s[i] == kSlash;
        if (sep && after_sep && i > root)
            return true;
        after_sep = sep;
    }
    return false;
}

// The root kept, then the rest without its closing separators and with every
// run of separators made one "/". Equal to rewriting backslashes, cutting
// the trailing "/" one at a time and replacing "//" by "/" until none is
// left, but in one checking and one filling pass with at most one
// allocation: text that needs no change comes back sharing its buffer.
template <bool Backslash> ovString tidy(const ovString& text) {
    const unsigned int* s = text.convert(ovSTRING_UTF32);
    const size_t n = text.length();
    const size_t root = root_of<Backslash>(s, n);
    size_t end = n;
    while (end > root && is_sep<Backslash>(s[end - 1]))
        --end;
    if (!needs_change<Backslash>(s, root, end, n))
        return text;

    // Sized for the text before collapsing: a few spare code points are
    // cheaper than a counting pass.
    unsigned int* out;
    ovString result = TextBuilder::with_room(end, out);
    size_t o = 0;
    for (size_t i = 0; i < root; ++i)
        out[o++] = is_sep<Backslash>(s[i]) ? kSlash : s[i];
    bool after_sep = false;
    for (size_t i = root; i < end; ++i) {
        const bool sep = is_sep<Backslash>(s[i]);
        if (sep && after_sep)
            continue;
        out[o++] = sep ? kSlash : s[i];
        after_sep = sep;
    }
    TextBuilder::shorten(result, o);
    return result;
}

// "." is the commonest made-up result; one shared buffer serves them all.
const ovString& dot_text() {
    static const ovra_internal::Immortal<ovString> dot(ovString::literal("."));
    return dot.value;
}

bool is_dot(const ovString& text) noexcept {
    return text.length() == 1 && text.convert(ovSTRING_UTF32)[0] == kDot;
}

bool unusable(const ovString& text) noexcept {
    return text.invalid() || text.failed();
}

// base, a "/" unless base already ends with one, and tail; normalised.
ovPathName joined(const ovString& base, const ovString& tail) {
    if (base.invalid() || tail.invalid())
        return ovPathName(ovString());
    const size_t n = base.length();
    const bool closed = n > 0 && base.convert(ovSTRING_UTF32)[n - 1] == kSlash;
    return ovPathName(ovra_internal::join(base, closed ? 0 : kSlash, tail));
}

// The text from the last "." plus `skip` code points; empty without a dot.
ovString extension_after(const ovString& name, size_t skip) {
    if (name.invalid())
        return ovString();
    const size_t dot = last_index_of(name, kDot);
    if (dot == kNoIndex)
        return ovString(ovSTRING_EMPTY);
    return slice(name, dot + skip, name.length());
}

} // namespace

ovString ovra_internal::join(const ovString& a, unsigned int mid, const ovString& b) {
    const size_t na = a.length();
    const size_t nm = mid ? 1 : 0;
    const size_t nb = b.length();
    unsigned int* out;
    ovString result = TextBuilder::with_room(na + nm + nb, out);
    if (na)
        std::memcpy(out, a.convert(ovSTRING_UTF32), na * sizeof(unsigned int));
    if (nm)
        out[na] = mid;
    if (nb)
        std::memcpy(out + na + nm, b.convert(ovSTRING_UTF32), nb * sizeof(unsigned int));
    return result;
}

// ---- ovPathName ---------------------------------------------------------

ovPathName::ovPathName() : m_path(ovSTRING_EMPTY) {}

ovPathName::ovPathName(const ovString& text) {
    normalise(text);
}

ovPathName::ovPathName(const ovPathName& o) = default;

ovPathName& ovPathName::operator=(const ovPathName& o) = default;

void ovPathName::normalise(const ovString& text) {
    if (unusable(text))
        m_path = ovString();
    else if (text.empty())
        m_path = dot_text();
    else
        m_path = tidy<true>(text);
}

ovString ovPathName::trim(const ovString& text) {
    if (unusable(text))
        return ovString();
    return tidy<false>(text);
}

size_t ovPathName::root_length(const ovString& text) noexcept {
    return root_of<false>(text.convert(ovSTRING_UTF32), text.length());
}

int ovPathName::relative_path() const noexcept {
    return root_length(m_path) == 0 ? 1 : 0;
}

int ovPathName::is_root() const noexcept {
    return root_length(m_path) == m_path.length() ? 1 : 0;
}

ovPathName ovPathName::dirname() const {
    const size_t root = root_length(m_path);
    if (root == m_path.length() || is_dot(m_path))
        return ovPathName(m_path);
    const size_t slash = last_index_of(m_path, kSlash);
    if (slash == kNoIndex)
        return ovPathName(dot_text());
    // A "/" inside the root belongs to the parent: /a gives "/", not "".
    return ovPathName(slice(m_path, 0, slash <= root ? slash + 1 : slash));
}

ovFileName ovPathName::basename() const {
    if (is_root())
        return ovFileName(m_path);
    const size_t slash = last_index_of(m_path, kSlash);
    if (slash == kNoIndex)
        return ovFileName(m_path);
    return ovFileName(slice(m_path, slash + 1, m_path.length()));
}

ovPathName ovPathName::adjoin(const ovFileName& name) const {
    return joined(m_path, name.string());
}

ovPathName ovPathName::combine(const ovPathName& other) const {
    return joined(m_path, other.m_path);
}

// ---- ovFileName -----------------------------------------------------------

ovFileName::ovFileName() : m_name(ovSTRING_EMPTY), m_valid(0) {}

ovFileName::ovFileName(const ovString& name) : m_valid(0) {
    set_name(name);
}

ovFileName::ovFileName(const ovFileName& o) = default;

ovFileName& ovFileName::operator=(const ovFileName& o) = default;

void ovFileName::set_name(const ovString& name) {
    m_name = unusable(name) ? ovString() : name;
    m_valid = test_valid(m_name);
}

int ovFileName::test_valid(const ovString& name) noexcept {
    return !name.empty() && last_index_of(name, kSlash) == kNoIndex ? 1 : 0;
}

int ovFileName::has_extension() const noexcept {
    return last_index_of(m_name, kDot) != kNoIndex ? 1 : 0;
}

ovString ovFileName::extension_with_dot() const {
    return extension_after(m_name, 0);
}

ovString ovFileName::extension_without_dot() const {
    return extension_after(m_name, 1);
}

ovString ovFileName::without_extension() const {
    const size_t dot = last_index_of(m_name, kDot);
    if (dot == kNoIndex)
        return m_name;
    return slice(m_name, 0, dot);
}

ovFileName ovFileName::add_extension(const ovString& e) const {
    if (m_name.invalid() || unusable(e))
        return ovFileName(ovString());
    return ovFileName(ovra_internal::join(m_name, kDot, e));
}

ovFileName ovFileName::replace_extension(const ovString& e) const {
    if (m_name.invalid() || unusable(e))
        return ovFileName(ovString());
    return ovFileName(ovra_internal::join(without_extension(), kDot, e));
}
