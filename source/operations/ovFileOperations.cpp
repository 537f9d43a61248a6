#include "ovra/ovFileOperations.h"

#include "common/immortal.h"
#include "operations/path_os.h"

#include <cstring>
#include <memory>

bool ovra_internal::is_dot(const ovPathName& path) noexcept {
    const ovString& s = path.string();
    return s.length() == 1 && s.convert(ovSTRING_UTF32)[0] == '.';
}

namespace {

// Closes the stream on every way out.
struct StreamCloser {
    FILE* f;
    ~StreamCloser() {
        if (f)
            std::fclose(f);
    }
};

// A new last component must stay one: a name with a separator (a backslash counts,
// since path names turn it into "/") would move the entry somewhere else.
bool one_component(const ovFileName& name) {
    if (name.invalid())
        return false;
    const ovString text = name.string();
    const unsigned int* s = text.convert(ovSTRING_UTF32);
    for (size_t i = 0; i < text.length(); ++i)
        if (s[i] == '\\')
            return false;
    return true;
}

} // namespace

ovIFileMode::~ovIFileMode() {}

ovIFileIterator::ovIFileIterator(const ovPath& path) : m_path(path), m_current() {}

ovIFileIterator::~ovIFileIterator() {}

int ovIFileIterator::operator++() {
    // Compared as names, so the current entry's text is not copied for every entry.
    // Never destroyed, so that a listing still works from a destructor at exit.
    static const ovra_internal::Immortal<ovFileName> the_dot(OVSTRING("."));
    static const ovra_internal::Immortal<ovFileName> the_dot_dot(OVSTRING(".."));
    const ovFileName& dot = the_dot.value;
    const ovFileName& dot_dot = the_dot_dot.value;
    // A loop rather than the recursion it replaces: a directory holds one "." and
    // one "..", but nothing else bounds the depth.
    for (;;) {
        if (!get_next_file())
            return 0;
        if (m_current != dot && m_current != dot_dot)
            return 1;
    }
}

ovFileName ovIFileIterator::operator()() const {
    return m_current;
}

ovIFileOperations::~ovIFileOperations() {}

int ovIFileOperations::check_file_exists(const ovPathName& path) const {
    if (path.invalid())
        return 0;
    return type_of_path(path) == ovPATH_FILE ? 1 : 0;
}

int ovIFileOperations::check_directory_exists(const ovPathName& path) const {
    if (path.invalid())
        return 0;
    return type_of_path(path) == ovPATH_DIRECTORY ? 1 : 0;
}

int ovIFileOperations::convert_file_size(long long size, unsigned long long& out) const {
    out = static_cast<unsigned long long>(size);
    return static_cast<long long>(out) == size ? 1 : 0;
}

ovStatus ovIFileOperations::write_file(const ovPathName& path, const ovByteArray& data) const {
    StreamCloser stream{write_mode().file_open(path)};
    if (!stream.f)
        return ovStatus(0);
    if (!data.empty())
        std::fwrite(data.get_ptr(), 1, static_cast<size_t>(data.length()), stream.f);
    const bool ok = std::ferror(stream.f) == 0;
    return ovStatus(ok ? 1 : 0);
}

ovStatus ovIFileOperations::read_file(const ovPathName& path, ovByteArray& data) const {
    const int64_t measured = file_size(path);
    unsigned long long size = 0;
    // A negative size is no size; left alone it would ask for nearly 2^64 bytes.
    if (measured < 0 || !convert_file_size(measured, size))
        return ovStatus(0);
    StreamCloser stream{read_mode().file_open(path)};
    if (!stream.f)
        return ovStatus(0);
    // The buffer must read as zero wherever the file gave less than `size` bytes.
    // Clearing only what fread left unfilled gives the same bytes as clearing all
    // first, without a second pass over a large file.
    std::unique_ptr<char[]> buffer(new char[static_cast<size_t>(size)]);
    const size_t got = std::fread(buffer.get(), 1, static_cast<size_t>(size), stream.f);
    if (std::ferror(stream.f) != 0)
        return ovStatus(0);
    std::memset(buffer.get() + got, 0, static_cast<size_t>(size) - got);
    data = ovByteArray(std::move(buffer), size);
    return ovStatus(1);
}

int64_t ovIFileOperations::file_size(const ovPathName& path) const {
    StreamCloser stream{read_mode().file_open(path)};
    if (!stream.f)
        return 0;
    std::fseek(stream.f, 0, SEEK_END);
    // ftell is a long: this body is meant for files under 2 GiB.
    return static_cast<int64_t>(std::ftell(stream.f));
}

ovStatus ovIFileOperations::move_file(const ovPathName& from, const ovPathName& to) const {
    if (!check_file_exists(from))
        return ovStatus(0);
    if (type_of_path(to) != ovPATH_DOESNT_EXIST)
        return ovStatus(0);
    return rename(from, to);
}

ovStatus ovIFileOperations::rename_directory(const ovPathName& dir, const ovFileName& name) const {
    if (!one_component(name))
        return ovStatus(0);
    const ovPathName target = dir.dirname().adjoin(name);
    if (!check_directory_exists(dir) || type_of_path(target) != ovPATH_DOESNT_EXIST)
        return ovStatus(0);
    return rename(dir, target);
}

ovStatus ovIFileOperations::rename_file(const ovPathName& file, const ovFileName& name) const {
    // No check of the source or the target, unlike rename_directory: an existing
    // target meets whatever the system's rename does with it. Only a name that is
    // not one component is refused, as bad input.
    if (!one_component(name))
        return ovStatus(0);
    return rename(file, file.dirname().adjoin(name));
}

ovPathName ovIFileOperations::full_path(const ovPathName& path) const {
    return path;
}
