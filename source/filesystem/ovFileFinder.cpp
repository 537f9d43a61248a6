#include "ovra/ovFileFinder.h"

#include "filesystem/path_text.h"
#include "filesystem/wildcard.h"
#include "ovra/ovFileUtils.h"
#include "ovra/ovNarrowHelpers.h"
#include "ovra/ovStringCompare.h"
#include "ovra/ovStringEncoding.h"

#include <cstring>
#include <memory>

using ovra_internal::slice;
using ovra_internal::WalkEnd;
using ovra_internal::wildcard_search;

namespace {

bool pattern_valid(const ovString& pattern) {
    if (pattern.invalid() || pattern.length() == 0)
        return false;
    const unsigned int* s = pattern.convert(ovSTRING_UTF32);
    for (size_t i = 0; i < pattern.length(); ++i)
        if (s[i] == '/')
            return false;
    return true;
}

} // namespace

ovIFileMatch::~ovIFileMatch() {}

ovFileMatch::ovFileMatch(const ovString& pattern, const ovIStringCompare* compare)
    : m_pattern(pattern), m_compare(compare), m_valid(pattern_valid(pattern) ? 1 : 0) {}

ovFileMatch::ovFileMatch(const ovFileMatch& o) = default;
ovFileMatch& ovFileMatch::operator=(const ovFileMatch& o) = default;
ovFileMatch::~ovFileMatch() {}

int ovFileMatch::match(const ovFileName& file_name) const {
    if (!m_valid || !m_compare || file_name.invalid())
        return 0;
    const ovString name = file_name.string();
    const unsigned int* ns = name.convert(ovSTRING_UTF32);
    const unsigned int* ps = m_pattern.convert(ovSTRING_UTF32);
    const size_t nlen = name.length();
    const size_t plen = m_pattern.length();
    // Exact comparison needs no strings made: code points equal is what it says.
    const bool exact = dynamic_cast<const ovStringCompareNumeric*>(m_compare) != nullptr;
    const auto equal = [&](size_t n, size_t n_end, size_t p, size_t p_end) -> bool {
        if (exact) {
            if (n_end - n != p_end - p)
                return false;
            return std::memcmp(ns + n, ps + p, (n_end - n) * sizeof *ns) == 0;
        }
        return m_compare->equal(slice(name, n, n_end), slice(m_pattern, p, p_end)) != 0;
    };
    // Past the last wildcard the pattern is one literal tail.
    size_t tail = plen;
    while (tail > 0 && ps[tail - 1] != '*' && ps[tail - 1] != '?')
        --tail;
    const auto walk = [&](size_t& n, size_t& p) -> WalkEnd {
        for (;;) {
            const unsigned int c = p < plen ? ps[p] : 0;
            if (p < plen && c == '*') {
                // A last star takes whatever is left; a last star before the literal
                // tail can only match where exact comparison finds the tail's length.
                if (p + 1 == plen)
                    return WalkEnd::MATCH;
                if (exact && p + 1 == tail) {
                    const size_t need = plen - tail;
                    if (nlen < n + need)
                        return WalkEnd::FAIL;
                    return equal(nlen - need, nlen, tail, plen) ? WalkEnd::MATCH : WalkEnd::FAIL;
                }
                return WalkEnd::STAR;
            }
            if (p < plen && c == '?' && n < nlen) {
                ++n;
                ++p;
                continue;
            }
            size_t s = p;
            while (s < plen && ps[s] != '*' && ps[s] != '?')
                ++s;
            if (s == plen)
                return equal(n, nlen, p, plen) ? WalkEnd::MATCH : WalkEnd::FAIL;
            // A literal run before a wildcard must leave a character of the name.
            const size_t after = n + (s - p);
            if (after >= nlen)
                return WalkEnd::FAIL;
            if (!equal(n, after, p, s))
                return WalkEnd::FAIL;
            n = after;
            p = s;
        }
    };
    return wildcard_search(nlen, plen, walk);
}

ovFileFinderEx::ovFileFinderEx(const ovPath& path)
    : m_iterator(path.file_operations()->iterator(path)) {}

int ovFileFinderEx::operator++() {
    return m_iterator ? ++*m_iterator : 0;
}

ovFileName ovFileFinderEx::operator()() const {
    return m_iterator ? (*m_iterator)() : ovFileName();
}

int ovFileFinderEx::invalid() const {
    return m_iterator ? m_iterator->invalid() : 1;
}

int ovFileFinderEx::undefined() const {
    return m_iterator ? m_iterator->undefined() : 1;
}

ovFileMatchFinder::ovFileMatchFinder(const ovPath& path, const ovIFileMatch* match)
    : m_finder(path), m_match(match) {}

int ovFileMatchFinder::operator++() {
    while (++m_finder)
        if (m_match && m_match->match(m_finder()))
            return 1;
    return 0;
}

ovRecursiveFileFinder::ovRecursiveFileFinder(const ovPath& top) : m_top(top) {}

ovRecursiveFileFinder::~ovRecursiveFileFinder() {}

void ovRecursiveFileFinder::get_files_including_sub_folders(const utString& filter,
                                                            int case_sensitive, int relative,
                                                            ovPathcoDList& result) {
    const ovStringEncodingChooser encodings;
    int ignored = 0;
    const ovString pattern = encodings.ut_encoding()->in(filter.c_str(), ignored);
    if (case_sensitive) {
        const ovStringCompareNumeric exact;
        list_files(ovFileMatch(pattern, &exact), relative, result);
    } else {
        const ovStringCompareInsensitive insensitive(encodings.mb_encoding());
        list_files(ovFileMatch(pattern, &insensitive), relative, result);
    }
}

void ovRecursiveFileFinder::list_files(const ovFileMatch& match, int relative,
                                       ovPathcoDList& result) {
    ovFileFinderEx finder(m_top);
    const ovIFileOperations* ops = m_top.file_operations();
    while (++finder) {
        const ovFileName name = finder();
        // The bare path name is enough to ask; an ovPath is made only when needed.
        const ovPathName child_name = m_top.ovPathName::adjoin(name);
        const ovPathType type = ops->type_of_path(child_name);
        if (type == ovPATH_DIRECTORY) {
            const ovPath child(child_name, ops, m_top.encoding());
            ovPathcoDList inner;
            ovRecursiveFileFinder(child).list_files(match, 1, inner);
            const ovPath base =
                relative ? ovPath(ovPathName(name.string()), nullptr, nullptr) : child;
            for (const ovPath& p : inner)
                result.insert_last(base.combine(p));
        } else if (type == ovPATH_FILE && match.match(name)) {
            if (relative)
                result.insert_last(ovPath(ovPathName(name.string()), nullptr, nullptr));
            else
                result.insert_last(ovPath(child_name, ops, m_top.encoding()));
        }
    }
}

// The older finder.

ovFileFinder::ovFileFinder(const utString& path) : ovFileFinder(path, utString("*")) {}

ovFileFinder::ovFileFinder(const utString& path, const utString& filter)
    : m_handle(UB_INVALID_HANDLE), m_data(), m_filter(filter), m_case_sensitive(1) {
    initialise(path);
}

ovFileFinder::~ovFileFinder() {
    if (m_handle != UB_INVALID_HANDLE)
        FindCloseU(m_handle);
}

void ovFileFinder::initialise(const utString& path) {
    m_case_sensitive = 1;
    const std::string text = path.is_null() ? std::string() : std::string(path.c_str());
    m_pattern = utString((text + "/*").c_str());
    m_handle = UB_INVALID_HANDLE;
}

int ovFileFinder::get_next_file() {
    if (m_handle != UB_INVALID_HANDLE)
        return FindNextFileU(m_handle, &m_data) ? 1 : 0;
    m_handle = FindFirstFileU(m_pattern.c_str(), &m_data);
    return m_handle != UB_INVALID_HANDLE ? 1 : 0;
}

int ovFileFinder::operator++() {
    while (get_next_file())
        if (filename_matches_filter(m_data.cFileName, m_filter.c_str()))
            return 1;
    return 0;
}

utString ovFileFinder::file_name() const {
    return utString(m_data.cFileName);
}

int ovFileFinder::compare_char(char a, char b) const {
    return m_case_sensitive ? (a == b ? 1 : 0) : (ovchcasecmp(a, b) == 0 ? 1 : 0);
}

int ovFileFinder::filename_matches_filter(const char* name, const char* filter) const {
    if (!name || !filter)
        return 0;
    if (std::strcmp(filter, "*") == 0)
        return 1;
    const size_t nlen = std::strlen(name);
    const size_t flen = std::strlen(filter);
    const auto walk = [&](size_t& n, size_t& p) -> WalkEnd {
        for (; p < flen; ++p) {
            const char c = filter[p];
            if (c == '*')
                return p + 1 == flen ? WalkEnd::MATCH : WalkEnd::STAR;
            if (n == nlen)
                return WalkEnd::FAIL;
            if (c != '?' && !compare_char(c, name[n]))
                return WalkEnd::FAIL;
            ++n;
        }
        return n == nlen ? WalkEnd::MATCH : WalkEnd::FAIL;
    };
    return wildcard_search(nlen, flen, walk);
}

int ovFileFinder::check_filter_character_valid(char c) {
    return std::strchr("\"/:<>\\|", c) && c != '\0' ? 0 : 1;
}

int ovFileFinder::check_filter_valid(const utString& filter) {
    if (filter.empty())
        return 0;
    for (const char* c = filter.c_str(); *c; ++c)
        if (!check_filter_character_valid(*c))
            return 0;
    return 1;
}

int ovFileFinder::check_path_valid(const utString& path) {
    return path.empty() ? 0 : 1;
}

ovFileError ovFileFinder::check_path_exists(const utString& path) {
    // A separate zero-terminated copy: fcusta takes a length, not a terminator.
    const std::string copy = path.is_null() ? std::string() : std::string(path.c_str());
    const int n = static_cast<int>(copy.size());
    int id[2] = {0, 0};
    int type = -1;
    int ierr = 0;
    fcusta(copy.c_str(), n, &n, id, &type, &ierr);
    if (ierr != 0)
        return ovFILE_NO_SUCH_PATH;
    return type == 0 ? ovFILE_IS_DIRECTORY : ovFILE_IS_FILE;
}

int ovFileFinder::check_directory_exists(const utString& path) {
    if (path.empty())
        return 0;
    utString trimmed(utDEEP_COPY, path);
    trimmed.remove_trailing_chars("/\\");
    if (trimmed.empty())
        trimmed = path;
    return check_path_exists(trimmed) == ovFILE_IS_DIRECTORY ? 1 : 0;
}

int ovFileFinder::check_file_exists(const utString& path) {
    if (path.empty())
        return 0;
    return check_path_exists(path) == ovFILE_IS_FILE ? 1 : 0;
}

ovFileError ovFileFinder::remove_file(const utString& path) {
    const ovFileError kind = check_path_exists(path);
    if (kind == ovFILE_IS_DIRECTORY)
        return ovFILE_IS_A_DIRECTORY;
    if (kind != ovFILE_IS_FILE)
        return ovFILE_NOT_FOUND;
    const std::string copy(path.c_str());
    const int n = static_cast<int>(copy.size());
    const int is_file = 1;
    int ierr = 0;
    fcudel(copy.c_str(), n, &n, &is_file, &ierr);
    return ierr != 0 ? ovFILE_REMOVE_FAILED : ovFILE_REMOVED;
}
