#include "ovra/ovByteArray.h"

#include <cstring>
#include <utility>

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
