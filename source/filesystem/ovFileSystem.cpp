#include "ovra/ovFileSystem.h"

#include "filesystem/link_os.h"
#include "ovra/ovFileOperations.h"
#include "ovra/ovFrustrumChooser.h"

namespace {

const ovIFileOperations* chosen(const ovIFileOperations* operations) {
    return operations ? operations : ovFrustrumChooser(nullptr).file_operations();
}

bool is_dot(const ovPathName& p) {
    const ovString& s = p.string();
    return s.length() == 1 && s.convert(ovSTRING_UTF32)[0] == '.';
}

// Nothing at all is at the path, not even a dangling link.
bool nothing_at(const ovFileSystemComponent& c) {
    return !c.something_exists() && !ovra_internal::is_link(c.path_name());
}

} // namespace

ovFileSystemComponent::ovFileSystemComponent(const ovPathName& path,
                                             const ovIFileOperations* operations)
    : m_operations(chosen(operations)), m_path(path) {}

ovString ovFileSystemComponent::os_string() const {
    return m_operations->os_style_path(m_path);
}

int ovFileSystemComponent::something_exists() const {
    return m_operations->type_of_path(m_path) != ovPATH_DOESNT_EXIST ? 1 : 0;
}

int ovFileSystemComponent::is_file() const {
    return m_operations->check_file_exists(m_path);
}

int ovFileSystemComponent::is_directory() const {
    return m_operations->check_directory_exists(m_path);
}

// Files.

ovFile::ovFile(const ovPathName& path, const ovIFileOperations* operations)
    : ovFileSystemComponent(path, operations) {}

ovFile::ovFile(const ovFileSystemComponent& c) : ovFileSystemComponent(c) {}

ovFile::~ovFile() {}

int64_t ovFile::size() const {
    return m_operations->file_size(m_path);
}

ovStatus ovFile::write_file(const ovByteArray& data) const {
    return m_operations->write_file(m_path, data);
}

ovStatus ovFile::read_file(ovByteArray& data) const {
    return m_operations->read_file(m_path, data);
}

ovStatus ovFile::delete_file() const {
    return ovStatus(m_operations->remove_file(m_path) ? 1 : 0);
}

ovStatus ovFile::rename(const ovFileName& name) {
    const ovStatus status = m_operations->rename_file(m_path, name);
    if (status.ok())
        m_path = m_path.dirname().adjoin(name);
    return status;
}

ovStatus ovFile::copy_to(const ovFile& target) const {
    if (!is_file() || target.is_file())
        return ovStatus(0);
    ovByteArray data;
    if (!read_file(data).ok())
        return ovStatus(0);
    return target.write_file(data);
}

ovStatus ovFile::move_to(const ovFile& target) {
    if (target.is_file())
        return ovStatus(0);
    const ovStatus status = m_operations->move_file(m_path, target.m_path);
    if (status.ok())
        m_path = target.m_path;
    return status;
}

// Directories.

ovDirectory::ovDirectory(const ovPathName& path, const ovIFileOperations* operations)
    : ovFileSystemComponent(path, operations) {}

ovDirectory::ovDirectory(const ovFileSystemComponent& c) : ovFileSystemComponent(c) {}

ovDirectory::~ovDirectory() {}

int ovDirectory::empty() const {
    ovDirectoryIterator it(m_path, m_operations);
    return ++it ? 0 : 1;
}

int ovDirectory::number_of_files() const {
    int n = 0;
    ovDirectoryIterator it(m_path, m_operations);
    while (++it)
        n += it().is_file();
    return n;
}

int ovDirectory::number_of_directories() const {
    int n = 0;
    ovDirectoryIterator it(m_path, m_operations);
    while (++it)
        n += it().is_directory();
    return n;
}

ovFile ovDirectory::file(const ovFileName& name) const {
    return ovFile(m_path.adjoin(name), m_operations);
}

ovDirectory ovDirectory::directory(const ovFileName& name) const {
    return ovDirectory(m_path.adjoin(name), m_operations);
}

ovDirectoryIterator ovDirectory::iterator() const {
    return ovDirectoryIterator(m_path, m_operations);
}

ovStatus ovDirectory::create() const {
    return ovStatus(m_operations->create_directory(m_path) ? 1 : 0);
}

ovStatus ovDirectory::create_directory_tree(const ovPathName& relative) const {
    if (is_directory())
        return ovStatus(1);
    const ovPathName target = is_dot(relative) ? m_path : m_path.combine(relative);
    if (target.is_root())
        return ovStatus(0);
    if (is_dot(target))
        return ovStatus(1);
    const ovDirectory made(target, m_operations);
    if (made.create().ok())
        return ovStatus(1);
    const ovStatus parent = ovDirectory(target.dirname(), m_operations)
                                .create_directory_tree(ovPathName(OVSTRING(".")));
    if (!parent.ok())
        return ovStatus(0);
    return made.create();
}

ovStatus ovDirectory::rename(const ovFileName& name) {
    const ovStatus status = m_operations->rename_directory(m_path, name);
    if (status.ok())
        m_path = m_path.dirname().adjoin(name);
    return status;
}

ovStatus ovDirectory::copy_to(const ovDirectory& target) const {
    if (!nothing_at(target) || !target.create().ok())
        return ovStatus(0);
    ovFileFinderEx finder(ovPath(m_path, m_operations, nullptr));
    while (++finder) {
        const ovFileName name = finder();
        const ovFile entry = file(name);
        const ovStatus done = entry.is_file() ? entry.copy_to(target.file(name))
                                              : directory(name).copy_to(target.directory(name));
        if (!done.ok())
            return ovStatus(0);
    }
    return ovStatus(1);
}

ovStatus ovDirectory::move_to(const ovDirectory& target) {
    if (!nothing_at(target) || !target.create().ok())
        return ovStatus(0);
    ovFileFinderEx finder(ovPath(m_path, m_operations, nullptr));
    while (++finder) {
        const ovFileName name = finder();
        ovFile entry = file(name);
        const ovFile to = target.file(name);
        ovStatus done(0);
        if (ovra_internal::is_link(entry.path_name())) {
            // The link itself moves; what it points to stays where it is.
            if (nothing_at(to))
                done = m_operations->rename(entry.path_name(), to.path_name());
        } else if (entry.is_file()) {
            done = entry.move_to(to);
        } else {
            ovDirectory sub = directory(name);
            done = sub.move_to(target.directory(name));
        }
        if (!done.ok())
            return ovStatus(0);
    }
    const ovStatus removed = delete_empty_directory();
    if (!removed.ok())
        return removed;
    m_path = target.m_path;
    return ovStatus(1);
}

ovStatus ovDirectory::delete_empty_directory() const {
    return ovStatus(m_operations->delete_directory(m_path) ? 1 : 0);
}

ovStatus ovDirectory::delete_tree() const {
    ovFileFinderEx finder(ovPath(m_path, m_operations, nullptr));
    while (++finder) {
        const ovFileName name = finder();
        const ovFile entry = file(name);
        // A file, or a link to one, goes with the file primitive, which removes a link
        // itself; only what is not a file needs the link question.
        ovStatus done(0);
        if (entry.is_file())
            done = entry.delete_file();
        else if (ovra_internal::is_link(entry.path_name()))
            done = ovStatus(ovra_internal::remove_link(entry.path_name()) ? 1 : 0);
        else
            done = directory(name).delete_tree();
        if (!done.ok())
            return ovStatus(0);
    }
    return delete_empty_directory();
}

// Iterators.

ovDirectoryIterator::ovDirectoryIterator(const ovPathName& path,
                                         const ovIFileOperations* operations)
    : m_path(path), m_operations(chosen(operations)),
      m_finder(ovPath(path, m_operations, nullptr)) {}

ovFileSystemComponent ovDirectoryIterator::operator()() const {
    return ovFileSystemComponent(m_path.adjoin(m_finder()), m_operations);
}

void ovDirectoryIterator::reset() {
    m_finder = ovFileFinderEx(ovPath(m_path, m_operations, nullptr));
}
