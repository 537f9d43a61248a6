#include "ovra/ovByteArray.h"

#include <cstring>
#include <utility>
#include <vector>

ovByteArray::ovByteArray() noexcept : m_data(nullptr), m_length(0), m_count(nullptr) {}

ovByteArray::ovByteArray(const char* bytes, uint64_t length) : ovByteArray() {
    if (!bytes)
        return;
    std::unique_ptr<char[]> copy(new char[static_cast<size_t>(length)]);
    if (length)
        std::memcpy(copy.get(), bytes, static_cast<size_t>(length));
    ovByteArray(std::move(copy), length).swap(*this);
}

ovByteArray::ovByteArray(std::unique_ptr<char[]> bytes, uint64_t length) : ovByteArray() {
    if (!bytes)
        return;
    m_count = new int32_t(1);
    m_data = bytes.release();
    m_length = length;
}

ovByteArray::ovByteArray(const ovByteArray& o) noexcept
    : m_data(o.m_data), m_length(o.m_length), m_count(o.m_count) {
    if (m_count)
        ++*m_count;
}

ovByteArray& ovByteArray::operator=(const ovByteArray& o) noexcept {
    if (this != &o)
        ovByteArray(o).swap(*this);
    return *this;
}

ovByteArray::~ovByteArray() {
    release();
}

bool ovByteArray::operator==(const ovByteArray& o) const noexcept {
    if (m_length != o.m_length)
        return false;
    if (m_data == o.m_data || m_length == 0)
        return true;
    if (!m_data || !o.m_data)
        return false;
    return std::memcmp(m_data, o.m_data, static_cast<size_t>(m_length)) == 0;
}

void ovByteArray::release() noexcept {
    if (m_count && --*m_count == 0) {
        delete[] m_data;
        delete m_count;
    }
    m_data = nullptr;
    m_length = 0;
    m_count = nullptr;
}

void ovByteArray::swap(ovByteArray& o) noexcept {
    std::swap(m_data, o.m_data);
    std::swap(m_length, o.m_length);
    std::swap(m_count, o.m_count);
}

ovByteArray::ovByteArray(utDeepCopy, const ovByteArray& o) : ovByteArray(o.m_data, o.m_length) {}

char* ovByteArray::get_copy_ptr() const {
    if (!m_data)
        return nullptr;
    char* copy = new char[static_cast<size_t>(m_length ? m_length : 1)];
    if (m_length)
        std::memcpy(copy, m_data, static_cast<size_t>(m_length));
    return copy;
}

int ovByteArray::replace_all(const ovByteArray& find, const ovByteArray& replacement) {
    const size_t flen = static_cast<size_t>(find.m_length);
    const size_t len = static_cast<size_t>(m_length);
    if (!m_data || !find.m_data || flen == 0 || flen > len)
        return 0;
    // The scan compares each byte with the next byte of `find`; a mismatch starts
    // again at the following byte. Bytes that cannot start a match are skipped with
    // memchr, which is the same scan, faster.
    const unsigned char first = static_cast<unsigned char>(find.m_data[0]);
    std::vector<size_t> starts;
    size_t i = 0;
    while (i < len) {
        const void* hit = std::memchr(m_data + i, first, len - i);
        if (!hit)
            break;
        const size_t at = static_cast<size_t>(static_cast<const char*>(hit) - m_data);
        size_t k = 1;
        while (k < flen && at + k < len && m_data[at + k] == find.m_data[k])
            ++k;
        if (k == flen) {
            starts.push_back(at);
            i = at + flen;
        } else {
            i = at + k + 1;
        }
    }
    if (starts.empty())
        return 0;
    const size_t rlen = replacement.m_data ? static_cast<size_t>(replacement.m_length) : 0;
    const size_t out_len = len - starts.size() * flen + starts.size() * rlen;
    std::unique_ptr<char[]> out(new char[out_len ? out_len : 1]);
    char* w = out.get();
    size_t from = 0;
    for (size_t at : starts) {
        std::memcpy(w, m_data + from, at - from);
        w += at - from;
        if (rlen)
            std::memcpy(w, replacement.m_data, rlen);
        w += rlen;
        from = at + flen;
    }
    std::memcpy(w, m_data + from, len - from);
    release();
    ovByteArray(std::move(out), out_len).swap(*this);
    return static_cast<int>(starts.size());
}

ovByteArray ovByteArray::operator+(const ovByteArray& o) const {
    const size_t a = m_data ? static_cast<size_t>(m_length) : 0;
    const size_t b = o.m_data ? static_cast<size_t>(o.m_length) : 0;
    std::unique_ptr<char[]> out(new char[a + b ? a + b : 1]);
    if (a)
        std::memcpy(out.get(), m_data, a);
    if (b)
        std::memcpy(out.get() + a, o.m_data, b);
    return ovByteArray(std::move(out), a + b);
}
