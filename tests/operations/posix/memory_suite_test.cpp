// An implementation of the file operations that keeps everything in memory, written
// apart from the library's own, and the conformance suite judging it. Its streams are
// glibc's custom streams (fopencookie), so it lives with the POSIX tests.
#include "ovra/ovFileOperations.h"
#include "ovra/ovFileOpsTester.h"

#include "../../support/scratch_dir.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <set>
#include <stdio.h>
#include <string>
#include <vector>

using namespace ovtest;

namespace {

class MemoryFileOperations;

// An open stream on one stored file; what it holds goes back to the store on close.
struct MemoryStream {
    const MemoryFileOperations* store;
    std::string key;
    std::string bytes;
    size_t pos;
};

class MemoryFileOperations final : public ovIFileOperations {
public:
    explicit MemoryFileOperations(const std::string& root)
        : m_read(this, "rb"), m_rw(this, "r+b"), m_write(this, "wb") {
        m_nodes[root] = Node{true, std::string()};
    }

    ovPathType type_of_path(const ovPathName& p) const override {
        if (key(p) == ".")
            return ovPATH_DIRECTORY;
        const auto it = m_nodes.find(key(p));
        if (it == m_nodes.end())
            return ovPATH_DOESNT_EXIST;
        return it->second.dir ? ovPATH_DIRECTORY : ovPATH_FILE;
    }
    int remove_file(const ovPathName& p) const override {
        const auto it = m_nodes.find(key(p));
        if (it == m_nodes.end() || it->second.dir)
            return 0;
        m_nodes.erase(it);
        return 1;
    }
    int create_directory(const ovPathName& p) const override {
        if (!parent_is_directory(p) || m_nodes.count(key(p)))
            return 0;
        m_nodes[key(p)] = Node{true, std::string()};
        return 1;
    }
    int delete_directory(const ovPathName& p) const override {
        if (type_of_path(p) != ovPATH_DIRECTORY || !children(key(p)).empty())
            return 0;
        m_nodes.erase(key(p));
        return 1;
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
        std::map<std::string, Node> moved;
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

    // The stream calls.
    FILE* open(const ovPathName& p, const std::string& mode) const {
        const auto it = m_nodes.find(key(p));
        const bool exists = it != m_nodes.end();
        if (exists && it->second.dir)
            return nullptr;
        std::unique_ptr<MemoryStream> s(new MemoryStream{this, key(p), std::string(), 0});
        if (mode == "wb") {
            if (!parent_is_directory(p))
                return nullptr;
            m_nodes[s->key] = Node{false, std::string()};
        } else {
            if (!exists)
                return nullptr;
            s->bytes = it->second.bytes;
        }
        cookie_io_functions_t io = {&MemoryFileOperations::read, &MemoryFileOperations::write,
                                    &MemoryFileOperations::seek, &MemoryFileOperations::close};
        FILE* f = fopencookie(s.get(), mode.c_str(), io);
        if (f)
            s.release();
        return f;
    }

private:
    struct Node {
        bool dir;
        std::string bytes;
    };

    class Mode final : public ovIFileMode {
    public:
        Mode(const MemoryFileOperations* ops, const char* mode) : m_ops(ops), m_mode(mode) {}
        FILE* file_open(const ovPathName& p) const override { return m_ops->open(p, m_mode); }

    private:
        const MemoryFileOperations* m_ops;
        std::string m_mode;
    };

    static std::string key(const ovPathName& p) { return utf8_of(p.string()); }
    bool parent_is_directory(const ovPathName& p) const {
        return type_of_path(p.dirname()) == ovPATH_DIRECTORY;
    }

    static ssize_t read(void* c, char* buf, size_t n) {
        MemoryStream* s = static_cast<MemoryStream*>(c);
        const size_t k = s->pos < s->bytes.size() ? std::min(n, s->bytes.size() - s->pos) : 0;
        std::memcpy(buf, s->bytes.data() + s->pos, k);
        s->pos += k;
        return static_cast<ssize_t>(k);
    }
    static ssize_t write(void* c, const char* buf, size_t n) {
        MemoryStream* s = static_cast<MemoryStream*>(c);
        if (s->bytes.size() < s->pos + n)
            s->bytes.resize(s->pos + n);
        std::memcpy(&s->bytes[s->pos], buf, n);
        s->pos += n;
        return static_cast<ssize_t>(n);
    }
    static int seek(void* c, off64_t* offset, int whence) {
        MemoryStream* s = static_cast<MemoryStream*>(c);
        const off64_t base = whence == SEEK_SET   ? 0
                             : whence == SEEK_CUR ? static_cast<off64_t>(s->pos)
                                                  : static_cast<off64_t>(s->bytes.size());
        if (base + *offset < 0)
            return -1;
        s->pos = static_cast<size_t>(base + *offset);
        *offset = static_cast<off64_t>(s->pos);
        return 0;
    }
    static int close(void* c) {
        std::unique_ptr<MemoryStream> s(static_cast<MemoryStream*>(c));
        const auto it = s->store->m_nodes.find(s->key);
        if (it != s->store->m_nodes.end() && !it->second.dir)
            it->second.bytes = s->bytes;
        return 0;
    }

    mutable std::map<std::string, Node> m_nodes;
    Mode m_read, m_rw, m_write;
};

// Lists a snapshot of the directory taken when a listing opens.
class MemoryIterator final : public ovIFileIterator {
public:
    MemoryIterator(const ovPath& path, const MemoryFileOperations* ops)
        : ovIFileIterator(path), m_ops(ops), m_invalid(path.is_directory() ? 0 : 1), m_open(false),
          m_next(0) {}
    int invalid() const override { return m_invalid; }
    int undefined() const override { return m_open ? 0 : 1; }
    int get_next_file() override {
        if (m_invalid)
            return 0;
        if (!m_open) {
            m_entries = {".", ".."};
            for (const std::string& c : m_ops->children(utf8_of(listed_path().path_ov())))
                m_entries.push_back(c);
            m_open = true;
            m_next = 0;
        }
        if (m_next == m_entries.size()) {
            m_open = false;
            return 0;
        }
        set_current(ovFileName(utf8_text(m_entries[m_next++])));
        return 1;
    }

private:
    const MemoryFileOperations* m_ops;
    int m_invalid;
    bool m_open;
    size_t m_next;
    std::vector<std::string> m_entries;
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
