#include "ovra/ovPath.h"

#include "filesystem/link_os.h"
#include "filesystem/path_text.h"
#include "ovra/ovFileFinder.h"
#include "ovra/ovFileOperations.h"
#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovStringEncoding.h"

using ovra_internal::kNoIndex;
using ovra_internal::last_index_of;
using ovra_internal::slice;

ovPath::ovPath()
    : ovPathName(), m_reserved(0), m_text_valid(0), m_narrow(""),
      m_encoding(ovStringEncodingChooser().ut_encoding()),
      m_operations(ovFrustrumChooser(nullptr).file_operations()) {}

ovPath::ovPath(const ovString& text, const ovIFileOperations* operations,
               const ovIStringEncoding* encoding)
    : ovPathName(text), m_reserved(0), m_text_valid(0), m_encoding(nullptr), m_operations(nullptr) {
    choose(operations, encoding);
}

ovPath::ovPath(const ovPathName& name, const ovIFileOperations* operations,
               const ovIStringEncoding* encoding)
    : ovPathName(name), m_reserved(0), m_text_valid(0), m_encoding(nullptr), m_operations(nullptr) {
    choose(operations, encoding);
}

ovPath::ovPath(const utString& text)
    : ovPathName(), m_reserved(0), m_text_valid(0), m_encoding(nullptr), m_operations(nullptr) {
    const ovIStringEncoding* encoding = ovStringEncodingChooser().ut_encoding();
    int ignored = 0;
    normalise(encoding->in(text.c_str(), ignored));
    choose(nullptr, encoding);
}

ovPath::ovPath(const ovPath& o) = default;
ovPath& ovPath::operator=(const ovPath& o) = default;

void ovPath::choose(const ovIFileOperations* operations, const ovIStringEncoding* encoding) {
    m_operations = operations ? operations : ovFrustrumChooser(nullptr).file_operations();
    m_encoding = encoding ? encoding : ovStringEncodingChooser().ut_encoding();
    int status = 0;
    m_narrow = m_encoding->out(string(), status);
    // An invalid path name converts to the null text without complaint; it has no
    // narrow form all the same.
    m_text_valid = (status == 0 && !invalid()) ? 1 : 0;
}

utString ovPath::narrow(const ovString& text) const {
    int ignored = 0;
    return m_encoding->out(text, ignored);
}

int ovPath::is_file() const {
    return m_operations->type_of_path(*this) == ovPATH_FILE ? 1 : 0;
}

int ovPath::is_directory() const {
    return m_operations->type_of_path(*this) == ovPATH_DIRECTORY ? 1 : 0;
}

int ovPath::exists() const {
    return m_operations->type_of_path(*this) != ovPATH_DOESNT_EXIST ? 1 : 0;
}

int ovPath::delete_file() const {
    if (!is_file())
        return 1;
    return m_operations->remove_file(*this) ? 1 : 0;
}

int ovPath::create_directory() const {
    if (invalid())
        return 0;
    if (is_directory())
        return 1;
    return m_operations->create_directory(*this) ? 1 : 0;
}

int ovPath::create_directory_full() const {
    if (invalid())
        return 0;
    if (is_directory())
        return 1;
    // A root's parent is itself: without this the walk would never end.
    if (is_root())
        return 0;
    const ovString& text = string();
    if (text.length() == 1 && text.convert(ovSTRING_UTF32)[0] == '.')
        return 1;
    if (create_directory())
        return 1;
    if (!dirname_ov().create_directory_full())
        return 0;
    return create_directory();
}

int ovPath::delete_directory() const {
    if (!is_directory())
        return 1;
    return m_operations->delete_directory(*this) ? 1 : 0;
}

int ovPath::delete_tree() const {
    if (!exists())
        return 1;
    ovFileFinderEx finder(*this);
    while (++finder) {
        const ovPath child = adjoin_ov(finder());
        // A file, or a link to one, goes with the file primitive, which removes a link
        // itself; only what looks like a directory needs the link question.
        const ovPathType type = m_operations->type_of_path(child);
        int done = 0;
        if (type == ovPATH_FILE)
            done = m_operations->remove_file(child) ? 1 : 0;
        else if (ovra_internal::is_link(child))
            done = ovra_internal::remove_link(child) ? 1 : 0;
        else if (type == ovPATH_DIRECTORY)
            done = child.delete_tree();
        if (!done)
            return 0;
    }
    return delete_directory();
}

FILE* ovPath::file_open(const ovIFileMode& mode) const {
    if (!dirname_ov().is_directory())
        return nullptr;
    return mode.file_open(*this);
}

const ovIFileMode& ovPath::read_mode() const {
    return m_operations->read_mode();
}

const ovIFileMode& ovPath::rw_mode() const {
    return m_operations->rw_mode();
}

const ovIFileMode& ovPath::write_mode() const {
    return m_operations->write_mode();
}

ovPath ovPath::new_path(const ovString& text) const {
    return ovPath(text, m_operations, m_encoding);
}

ovPath ovPath::dirname_ov() const {
    return ovPath(ovPathName::dirname(), m_operations, m_encoding);
}

ovPath ovPath::adjoin_ov(const ovFileName& name) const {
    return ovPath(ovPathName::adjoin(name), m_operations, m_encoding);
}

ovPath ovPath::combine(const ovPath& other) const {
    return ovPath(ovPathName::combine(other), m_operations, m_encoding);
}

ovPath ovPath::adjoin(const utString& text) const {
    int ignored = 0;
    const ovPathName other(m_encoding->in(text.c_str(), ignored));
    return ovPath(ovPathName::combine(other), m_operations, m_encoding);
}

ovFileName ovPath::basename_ov() const {
    return ovPathName::basename();
}

ovString ovPath::basename_no_ext_ov() const {
    // The text is taken even from an invalid name (a root), which
    // ovFileName::without_extension would also give whole.
    const ovString name = ovPathName::basename().string();
    const size_t dot = last_index_of(name, '.');
    return dot == kNoIndex ? name : slice(name, 0, dot);
}

ovString ovPath::extension_with_dot() const {
    const ovString& text = string();
    const size_t dot = last_index_of(text, '.');
    if (dot == kNoIndex)
        return ovString(ovSTRING_EMPTY);
    return slice(text, dot, text.length());
}

utString ovPath::dirname() const {
    return narrow(ovPathName::dirname().string());
}

utString ovPath::basename() const {
    return narrow(ovPathName::basename().string());
}

utString ovPath::basename_no_ext() const {
    return narrow(basename_no_ext_ov());
}
