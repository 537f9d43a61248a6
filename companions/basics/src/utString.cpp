#include "ut/utString.h"

#include <cmath>
#include <cstring>
#include <locale>
#include <sstream>
#include <string>
#include <utility>

namespace {

char* duplicate(const char* s, size_t len) {
    char* p = new char[len + 1];
    std::memcpy(p, s, len + 1);
    return p;
}

} // namespace

utString::utString() noexcept : m_str(nullptr), m_len(0), m_owned(false) {}

utString::utString(const char* s) : utString(utCOPY, s) {}

utString::utString(utCopy, const char* s) : utString() {
    if (s) {
        m_len = std::strlen(s);
        m_str = duplicate(s, m_len);
        m_owned = true;
    }
}

utString::utString(utStringLit, const char* s) noexcept
    : m_str(s), m_len(s ? std::strlen(s) : 0), m_owned(false) {}

utString::utString(utPtrClaim, char* s) noexcept
    : m_str(s), m_len(s ? std::strlen(s) : 0), m_owned(s != nullptr) {}

utString::utString(const utString& o) : utString() {
    if (o.m_owned) {
        m_str = duplicate(o.m_str, o.m_len);
        m_owned = true;
    } else {
        m_str = o.m_str;
    }
    m_len = o.m_len;
}

utString::utString(utDeepCopy, const utString& o) : utString() {
    if (o.m_str) {
        m_str = duplicate(o.m_str, o.m_len);
        m_len = o.m_len;
        m_owned = true;
    }
}

utString::utString(utString&& o) noexcept : utString() { swap(o); }

utString& utString::operator=(const utString& o) {
    utString tmp(o);
    swap(tmp);
    return *this;
}

utString& utString::operator=(utString&& o) noexcept {
    utString tmp(std::move(o));
    swap(tmp);
    return *this;
}

utString::~utString() {
    if (m_owned)
        delete[] m_str;
}

const char* utString::c_str() const noexcept { return m_str; }

size_t utString::length() const noexcept { return m_len; }

bool utString::is_null() const noexcept { return m_str == nullptr; }

bool utString::empty() const noexcept { return m_len == 0; }

void utString::swap(utString& o) noexcept {
    std::swap(m_str, o.m_str);
    std::swap(m_len, o.m_len);
    std::swap(m_owned, o.m_owned);
}

utString utString::substr(size_t pos, size_t len) const {
    if (!m_str)
        return utString();
    if (pos > m_len)
        pos = m_len;
    if (len > m_len - pos)
        len = m_len - pos;
    char* p = new char[len + 1];
    std::memcpy(p, m_str + pos, len);
    p[len] = '\0';
    return utString(utPTR_CLAIM, p);
}

bool utString::parse(double& value) const {
    if (empty())
        return false;
    std::istringstream in(std::string(m_str, m_len));
    in.imbue(std::locale::classic());
    double v = 0;
    if (!(in >> v) || !std::isfinite(v))
        return false;
    in >> std::ws;
    if (!in.eof())
        return false;
    value = v;
    return true;
}

bool operator==(const utString& a, const utString& b) noexcept {
    if (a.is_null() || b.is_null())
        return a.is_null() && b.is_null();
    return a.length() == b.length() && std::memcmp(a.c_str(), b.c_str(), a.length()) == 0;
}

bool operator!=(const utString& a, const utString& b) noexcept { return !(a == b); }

bool operator==(const utString& a, const char* b) noexcept {
    if (a.is_null() || !b)
        return a.is_null() && !b;
    return std::strcmp(a.c_str(), b) == 0;
}

bool operator==(const char* a, const utString& b) noexcept { return b == a; }

bool operator!=(const utString& a, const char* b) noexcept { return !(a == b); }

bool operator!=(const char* a, const utString& b) noexcept { return !(b == a); }

size_t utString::find(char c, size_t from) const noexcept {
    if (!m_str || from >= m_len)
        return npos;
    const void* hit = std::memchr(m_str + from, c, m_len - from);
    return hit ? static_cast<size_t>(static_cast<const char*>(hit) - m_str) : npos;
}

char* utString::modify() {
    if (!m_str)
        return nullptr;
    if (!m_owned) {
        m_str = duplicate(m_str, m_len);
        m_owned = true;
    }
    return const_cast<char*>(m_str);
}

void utString::remove_trailing_chars(const char* chars) {
    if (!m_str || !chars)
        return;
    size_t len = m_len;
    while (len > 0 && *chars && std::strchr(chars, m_str[len - 1]))
        --len;
    if (len == m_len)
        return;
    char* text = modify();
    text[len] = '\0';
    m_len = len;
}
