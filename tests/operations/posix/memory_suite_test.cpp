// An implementation of the file operations that keeps everything in memory, written
// apart from the library's own, and the conformance suite judging it. Its streams are
// glibc's custom streams (fopencookie), so it lives with the POSIX tests.
#include "ovra/ovFileOperations.h"
#include "ovra/ovFileOpsTester.h"

#include "../../support/scratch_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <stdio.h>
#include <string>
#include <vector>

using namespace ovtest;

namespace {

// A file's bytes, shared with its open streams; a directory has none.
using Bytes = std::shared_ptr<std::string>;

struct MemoryStream {
    Bytes bytes;
    size_t pos;
};

class MemoryFileOperations final : public ovIFileOperations {
public:
    explicit MemoryFileOperations(const std::string& root)
        : m_read(this, "rb"), m_rw(this, "r+b"), m_write(this, "wb") {
        m_nodes[root] = nullptr;
    }

    ovPathType type_of_path(const ovPathName& p) const override {
        const auto it = m_nodes.find(key(p));
        if (key(p) == "." || (it != m_nodes.end() && !it->second))
            return ovPATH_DIRECTORY;
        return it == m_nodes.end() ? ovPATH_DOESNT_EXIST : ovPATH_FILE;
    }
    int remove_file(const ovPathName& p) const override {
        return type_of_path(p) == ovPATH_FILE && m_nodes.erase(key(p));
    }
    int create_directory(const ovPathName& p) const override {
        return parent_is_directory(p) && m_nodes.emplace(key(p), nullptr).second;
    }
    int delete_directory(const ovPathName& p) const override {
        return type_of_path(p) == ovPATH_DIRECTORY && children(key(p)).empty() &&
               m_nodes.erase(key(p));
    }
    ovIFileIteratorcoPrf iterator(const ovPathName& p) const override;
    const ovIFileMode& read_mode() const override { return m_read; }
    const ovIFileMode& rw_mode() const override { return m_rw; }
    const ovIFileMode& write_mode() const override { return m_write; }
    int check_encoding(const ovPathName& p) const override { return p.invalid() ? 0 : 1; }
    ovString os_style_path(const ovPathName& p) const override { return p.string(); }
    ovStatus rename(const ovPathName& from, const ovPathName& to) const override {
        const std::string f = key(from), t = key(to);
        if (!m_nodes.count(f) || m_nodes.count(t) || !parent_is_directory(to))
            return ovStatus(0);
        std::map<std::string, Bytes> moved;
        for (auto it = m_nodes.begin(); it != m_nodes.end();) {
            if (it->first == f || it->first.compare(0, f.size() + 1, f + "/") == 0) {
                moved[t + it->first.substr(f.size())] = it->second;
                it = m_nodes.erase(it);
            } else {
                ++it;
            }
        }
        m_nodes.insert(moved.begin(), moved.end());
        return ovStatus(1);
    }

    std::vector<std::string> children(const std::string& dir) const {
        std::vector<std::string> out;
        for (const auto& n : m_nodes)
            if (n.first.size() > dir.size() + 1 &&
                n.first.compare(0, dir.size() + 1, dir + "/") == 0 &&
                n.first.find('/', dir.size() + 1) == std::string::npos)
                out.push_back(n.first.substr(dir.size() + 1));
        return out;
    }

private:
    class Mode final : public ovIFileMode {
    public:
        Mode(const MemoryFileOperations* ops, const char* mode) : m_ops(ops), m_mode(mode) {}
        FILE* file_open(const ovPathName& p) const override { return m_ops->open(p, m_mode); }

    private:
        const MemoryFileOperations* m_ops;
        const char* m_mode;
    };

    static std::string key(const ovPathName& p) { return utf8_of(p.string()); }
    bool parent_is_directory(const ovPathName& p) const {
        return type_of_path(p.dirname()) == ovPATH_DIRECTORY;
    }

    FILE* open(const ovPathName& p, const char* mode) const {
        Bytes bytes;
        if (mode[0] == 'w' && type_of_path(p) != ovPATH_DIRECTORY && parent_is_directory(p))
            bytes = m_nodes[key(p)] = std::make_shared<std::string>();
        else if (mode[0] == 'r' && type_of_path(p) == ovPATH_FILE)
            bytes = m_nodes[key(p)];
        if (!bytes)
            return nullptr;
        std::unique_ptr<MemoryStream> s(new MemoryStream{bytes, 0});
        FILE* f = fopencookie(s.get(), mode, {&read, &write, &seek, &close});
        if (f)
            s.release();
        return f;
    }

    static ssize_t read(void* c, char* buf, size_t n) {
        MemoryStream* s = static_cast<MemoryStream*>(c);
        const size_t k = std::min(n, s->bytes->size() - std::min(s->pos, s->bytes->size()));
        std::memcpy(buf, s->bytes->data() + s->pos, k);
        s->pos += k;
        return static_cast<ssize_t>(k);
    }
    static ssize_t write(void* c, const char* buf, size_t n) {
        MemoryStream* s = static_cast<MemoryStream*>(c);
        s->bytes->resize(std::max(s->bytes->size(), s->pos + n));
        std::memcpy(&(*s->bytes)[s->pos], buf, n);
        s->pos += n;
        return static_cast<ssize_t>(n);
    }
    static int seek(void* c, off64_t* offset, int whence) {
        MemoryStream* s = static_cast<MemoryStream*>(c);
        const off64_t base = whence == SEEK_SET   ? 0
                             : whence == SEEK_CUR ? static_cast<off64_t>(s->pos)
                                                  : static_cast<off64_t>(s->bytes->size());
        if (base + *offset < 0)
            return -1;
        s->pos = static_cast<size_t>(base + *offset);
        *offset = static_cast<off64_t>(s->pos);
        return 0;
    }
    static int close(void* c) {
        delete static_cast<MemoryStream*>(c);
        return 0;
    }

    mutable std::map<std::string, Bytes> m_nodes;
    Mode m_read, m_rw, m_write;
};

// Lists a snapshot of the directory taken when a listing opens.
class MemoryIterator final : public ovIFileIterator {
public:
    MemoryIterator(const ovPath& path, const MemoryFileOperations* ops)
        : ovIFileIterator(path), m_ops(ops), m_invalid(path.is_directory() ? 0 : 1) {}
    int invalid() const override { return m_invalid; }
    int undefined() const override { return m_entries.empty() ? 1 : 0; }
    int get_next_file() override {
        if (m_invalid)
            return 0;
        if (m_entries.empty()) {
            m_entries = {".", ".."};
            for (const std::string& c : m_ops->children(utf8_of(listed_path().path_ov())))
                m_entries.push_back(c);
            m_next = 0;
        }
        if (m_next == m_entries.size()) {
            m_entries.clear();
            return 0;
        }
        set_current(ovFileName(utf8_text(m_entries[m_next++])));
        return 1;
    }

private:
    const MemoryFileOperations* m_ops;
    int m_invalid;
    size_t m_next = 0;
    std::vector<std::string> m_entries; // empty when no listing is open
};

ovIFileIteratorcoPrf MemoryFileOperations::iterator(const ovPathName& p) const {
    return ovIFileIteratorcoPrf(new MemoryIterator(ovPath(p, this, nullptr), this));
}

std::string failures_of(const utUnitTest& suite) {
    std::string out;
    for (size_t i = 0; i < suite.failure_count(); ++i)
        out += std::string(suite.failure(i).expression) + "\n";
    return out;
}

} // namespace

TEST(MemoryFileOperations, PassesTheSuite) {
    const MemoryFileOperations ops("/memory");
    ovFileOpsTester suite(&ops, ovPathName(utf8_text("/memory")));
    EXPECT_TRUE(suite.execute()) << failures_of(suite);
    // Only the scratch directory is left, and the real disk was never asked.
    EXPECT_TRUE(ops.children("/memory").empty());
    EXPECT_FALSE(std::filesystem::exists("/memory"));
}

TEST(MemoryFileOperations, PathsBoundToItAskIt) {
    const MemoryFileOperations ops("/memory");
    const ovPath dir(utf8_text("/memory/a/b/c"), &ops, nullptr);
    EXPECT_FALSE(dir.exists());
    EXPECT_TRUE(dir.create_directory_full());
    EXPECT_TRUE(dir.is_directory());
    EXPECT_TRUE(dir.dirname_ov().is_directory());
    EXPECT_EQ(ops.children("/memory/a"), std::vector<std::string>{"b"});
    EXPECT_FALSE(std::filesystem::exists("/memory"));
}
