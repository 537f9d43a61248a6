// File operations that hand every primitive to another implementation and keep the
// portable bodies for the rest, so that those bodies meet a real disk, and so that a
// test can replace just the one operation it wants to break.
#pragma once

#include "ovra/ovFileOperations.h"

namespace ovtest {

class DelegatingFileOperations : public ovIFileOperations {
public:
    explicit DelegatingFileOperations(const ovIFileOperations* real) : m_real(real) {}

    ovPathType type_of_path(const ovPathName& p) const override { return m_real->type_of_path(p); }
    int remove_file(const ovPathName& p) const override { return m_real->remove_file(p); }
    int create_directory(const ovPathName& p) const override { return m_real->create_directory(p); }
    int delete_directory(const ovPathName& p) const override { return m_real->delete_directory(p); }
    ovIFileIteratorcoPrf iterator(const ovPathName& p) const override {
        return m_real->iterator(p);
    }
    const ovIFileMode& read_mode() const override { return m_real->read_mode(); }
    const ovIFileMode& rw_mode() const override { return m_real->rw_mode(); }
    const ovIFileMode& write_mode() const override { return m_real->write_mode(); }
    int check_encoding(const ovPathName& p) const override { return m_real->check_encoding(p); }
    ovString os_style_path(const ovPathName& p) const override { return m_real->os_style_path(p); }
    ovStatus rename(const ovPathName& from, const ovPathName& to) const override {
        return m_real->rename(from, to);
    }

protected:
    const ovIFileOperations* m_real;
};

} // namespace ovtest
