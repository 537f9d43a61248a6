#include "ovra/ovEnvironmentVariables.h"

#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovSystemOperations.h"

#include <climits>

ovEnvironmentVariables::ovEnvironmentVariables(ovIProcessEnvironmentOperations* operations)
    : m_operations(look_up_operations(operations)) {}

utObserverPtr<ovIProcessEnvironmentOperations>
ovEnvironmentVariables::look_up_operations(ovIProcessEnvironmentOperations* operations) {
    if (operations)
        return utObserverPtr<ovIProcessEnvironmentOperations>(operations);
    return ovFrustrumChooser(nullptr).process_environment_operations();
}

bool ovEnvironmentVariables::put(ovString name, ovString value) {
    return m_operations->put(ovString(name), ovString(value));
}

ovString ovEnvironmentVariables::get(ovString name) {
    return m_operations->get(ovString(name));
}

namespace {
// A cipher wanting more padding than this is taken to accept no length at all.
constexpr int kMaxPadding = 65536;
} // namespace

bool ovICrypt::encrypt_string(std::string& text) {
    if (text.size() > static_cast<size_t>(INT_MAX))
        return false;
    const int n = static_cast<int>(text.size());
    int m = n;
    while (num_encryptable(m) != m) {
        if (m == INT_MAX || m - n >= kMaxPadding)
            return false;
        ++m;
    }
    text.append(static_cast<size_t>(m - n), '\0');
    return encrypt_buffer(&text[0], m) != 0;
}

bool ovICrypt::decrypt_string(std::string& text) {
    if (text.size() > static_cast<size_t>(INT_MAX))
        return false;
    if (decrypt_buffer(&text[0], static_cast<int>(text.size())) == 0)
        return false;
    const size_t last = text.find_last_not_of('\0');
    if (last != std::string::npos)
        text.erase(last + 1);
    return true;
}

int ovICrypt::num_encryptable(int length) const {
    return length;
}

int ovICrypt::num_decryptable(int length) const {
    return length;
}

int ovICrypt::num_needed_to_decrypt(int length) const {
    return length;
}

ovICrypt::~ovICrypt() = default;
