// The UTF-8 reader's read_line, which takes bytes from the stream's buffer in
// place, against read_token(is, 0, "\n", status), which reads one character at
// a time: the same lines, statuses, stream states and bytes taken, over
// buffers that hand the bytes out in chunks of any size, or one at a time
// without a buffer. Shared by the reader tests and the fuzz target.
#pragma once

#include "ovra/ovStringReader.h"

#include <algorithm>
#include <istream>
#include <sstream>
#include <streambuf>
#include <string>

namespace ovtest {

// Serves `data` in get areas of `chunk` bytes; with chunk 0 it keeps no get
// area and hands out each byte through uflow, as unbuffered devices do.
class ChunkedBuf final : public std::streambuf {
public:
    ChunkedBuf(const std::string& data, size_t chunk) : m_data(data), m_chunk(chunk) {}
    size_t taken() const {
        return m_chunk ? m_next - static_cast<size_t>(egptr() - gptr()) : m_next;
    }

protected:
    int_type underflow() override {
        if (m_chunk == 0)
            return m_next < m_data.size() ? traits_type::to_int_type(m_data[m_next])
                                          : traits_type::eof();
        if (gptr() < egptr())
            return traits_type::to_int_type(*gptr());
        if (m_next >= m_data.size())
            return traits_type::eof();
        char* at = &m_data[m_next];
        const size_t n = std::min(m_chunk, m_data.size() - m_next);
        setg(at, at, at + n);
        m_next += n;
        return traits_type::to_int_type(*at);
    }
    int_type uflow() override {
        if (m_chunk != 0)
            return std::streambuf::uflow();
        return m_next < m_data.size() ? traits_type::to_int_type(m_data[m_next++])
                                      : traits_type::eof();
    }

private:
    std::string m_data;
    size_t m_chunk;
    size_t m_next = 0;
};

inline std::string describe(const ovString& s, int status, const std::istream& is, size_t taken) {
    std::ostringstream os;
    if (s.invalid()) {
        os << "null";
    } else {
        const unsigned int* p = s.convert(ovSTRING_UTF32);
        os << "[";
        for (size_t i = 0; i < s.length(); ++i)
            os << (i ? " " : "") << std::hex << p[i] << std::dec;
        os << "]";
    }
    os << " status " << status << " state " << is.rdstate() << " taken " << taken;
    return os.str();
}

// "" when both ways read `bytes` alike, line by line to the end; otherwise
// the first difference.
inline std::string line_disagreement(const std::string& bytes, size_t chunk) {
    ChunkedBuf fast_buf(bytes, chunk), plain_buf(bytes, chunk);
    std::istream fast(&fast_buf), plain(&plain_buf);
    ovStringReaderUTF8 reader;
    ovStringReader& base = reader;
    for (size_t line = 0; line <= bytes.size() + 1; ++line) {
        int fast_status = -1, plain_status = -1;
        const ovString f = reader.read_line(fast, fast_status);
        const ovString p = base.read_token(plain, 0, "\n", plain_status);
        const std::string a = describe(f, fast_status, fast, fast_buf.taken());
        const std::string b = describe(p, plain_status, plain, plain_buf.taken());
        if (a != b)
            return "line " + std::to_string(line) + ": read_line " + a + ", read_token " + b;
        if (fast.eof())
            return "";
    }
    return "the stream never ended";
}

} // namespace ovtest
