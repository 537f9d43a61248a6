// The registry through the glyphs library's UTF-8 calls, with the view rules of a
// 64-bit process: KEY_WOW64_32KEY reaches what 32-bit programs see.
#include "ovra/ovRegistry.h"

#include "common/win32.h"
#include "ovra/ovStringEncoding.h"
#include "ub/ubWindows.h"

#include <cmath>
#include <cstring>
#include <memory>
#include <string>

namespace {

// The byte buffer every read uses; one more byte keeps a terminator behind it.
constexpr DWORD kBuffer = 1024;

// Closes a key on every way out.
class Key {
public:
    Key() = default;
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key() {
        if (m_key)
            RegCloseKey(m_key);
    }
    HKEY* out() { return &m_key; }
    HKEY get() const { return m_key; }

private:
    HKEY m_key = nullptr;
};

HKEY root_of(ovHKeyType type) {
    return ov_reg_master_key(type);
}

ovValueType map_type(DWORD type) {
    switch (type) {
    case REG_DWORD:
        return ovREG_INT;
    case REG_EXPAND_SZ:
        return ovREG_EXPAND_STRING;
    case REG_SZ:
        return ovREG_STRING;
    default:
        return ovREG_OTHER;
    }
}

bool is_string(DWORD type) {
    return type == REG_SZ || type == REG_EXPAND_SZ;
}

// Queries `name` into a 1024-byte buffer that always ends in a terminator.
LONG query(HKEY key, const utString& name, DWORD& type, char (&data)[kBuffer + 1]) {
    std::memset(data, 0, sizeof data);
    DWORD size = kBuffer;
    type = REG_NONE;
    return RegQueryValueExU(key, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(data),
                            &size);
}

// The value named in the ANSI code page, read with the W call into a 1024-byte
// buffer; on success `text` holds the stored text up to its first terminator.
LONG query_acp(HKEY key, const utString& name, DWORD& type, std::wstring& text) {
    type = REG_NONE;
    const int n = MultiByteToWideChar(CP_ACP, 0, name.c_str(), -1, nullptr, 0);
    if (n <= 0)
        return ERROR_NO_UNICODE_TRANSLATION;
    std::wstring wide(static_cast<size_t>(n), L'\0');
    MultiByteToWideChar(CP_ACP, 0, name.c_str(), -1, &wide[0], n);
    wchar_t data[kBuffer / sizeof(wchar_t) + 1] = {};
    DWORD size = kBuffer;
    const LONG r =
        RegQueryValueExW(key, wide.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(data), &size);
    if (r == ERROR_SUCCESS)
        text.assign(data, wcsnlen(data, size / sizeof(wchar_t)));
    return r;
}

int utf8_result(DWORD type, const std::wstring& text, utString& data) {
    if (!is_string(type))
        return 0;
    if (text.empty()) {
        data = utString("");
        return 1;
    }
    const int len = static_cast<int>(text.size());
    const int n = WideCharToMultiByte(CP_UTF8, 0, text.data(), len, nullptr, 0, nullptr, nullptr);
    if (n <= 0)
        return 0;
    std::unique_ptr<char[]> out(new char[static_cast<size_t>(n) + 1]);
    WideCharToMultiByte(CP_UTF8, 0, text.data(), len, out.get(), n, nullptr, nullptr);
    out[static_cast<size_t>(n)] = '\0';
    data = utString(utPTR_CLAIM, out.release());
    return 1;
}

// Enumerates names with `next(index, buffer)` until the system says there are no
// more; any other failure drops what was found.
template <class Next> utStringcoPageArr* collect(Next next) {
    std::unique_ptr<utStringcoPageArr> list;
    char name[kBuffer + 1];
    for (DWORD index = 0;; ++index) {
        name[0] = '\0';
        const LONG r = next(index, name);
        if (r == ERROR_NO_MORE_ITEMS)
            return list.release();
        if (r != ERROR_SUCCESS && r != ERROR_MORE_DATA)
            return nullptr;
        name[kBuffer] = '\0';
        if (!list)
            list.reset(new utStringcoPageArr());
        list->append(utString(name));
    }
}

// Depth first: children through the object's own listing, then the key itself.
template <class Open, class Delete>
int remove_tree(const ovRegistry& reg, const utString& path, Open open, Delete remove) {
    if (path.empty())
        return 0;
    std::unique_ptr<utStringcoPageArr> children(reg.key_list(path));
    if (children) {
        for (int i = 0; i < children->size(); ++i) {
            const utString child_path(
                (std::string(path.c_str()) + "\\" + (*children)[i].c_str()).c_str());
            remove_tree(reg, child_path, open, remove);
        }
    }
    Key key;
    if (open(path, key.out()) != ERROR_SUCCESS)
        return 0;
    return remove(path) == ERROR_SUCCESS ? 1 : 0;
}

int create_with(HKEY root, const utString& path, REGSAM access) {
    if (path.empty())
        return 0;
    char no_class[1] = "";
    Key key;
    DWORD disposition = 0;
    return RegCreateKeyExU(root, path.c_str(), 0, no_class, 0, access, nullptr, key.out(),
                           &disposition) == ERROR_SUCCESS
               ? 1
               : 0;
}

} // namespace

int ovRegistry::has_wow64() {
    return 1;
}

int ovRegistry::key_exists(const utString& path) const {
    return key_exists(path, m_look_in_wow64_area);
}

int ovRegistry::key_exists(const utString& path, int wow64) const {
    if (path.empty())
        return 0;
    Key key;
    return ov_reg_RegOpenKeyEx(root_of(m_root), path, 0, KEY_READ, key.out(), wow64) ==
                   ERROR_SUCCESS
               ? 1
               : 0;
}

int ovRegistry::value_exists(const utString& path, const utString& name, ovValueType& type) const {
    return value_exists(path, name, type, m_look_in_wow64_area);
}

int ovRegistry::value_exists(const utString& path, const utString& name, ovValueType& type,
                             int wow64) const {
    if (path.empty() || name.empty())
        return 0;
    Key key;
    if (ov_reg_RegOpenKeyEx(root_of(m_root), path, 0, KEY_QUERY_VALUE, key.out(), wow64) !=
        ERROR_SUCCESS)
        return 0;
    DWORD stored;
    char data[kBuffer + 1];
    const LONG r = query(key.get(), name, stored, data);
    type = map_type(stored);
    return r == ERROR_SUCCESS ? 1 : 0;
}

ovValueType ovRegistry::value_type(const utString& path, const utString& name) {
    if (path.empty() || name.empty())
        return ovREG_OTHER;
    Key key;
    if (ov_reg_RegOpenKeyEx(root_of(m_root), path, 0, KEY_QUERY_VALUE, key.out(),
                            m_look_in_wow64_area) != ERROR_SUCCESS)
        return ovREG_OTHER;
    DWORD stored;
    char data[kBuffer + 1];
    query(key.get(), name, stored, data); // a value too long for the buffer still has a type
    return map_type(stored);
}

int ovRegistry::value_data(const utString& path, const utString& name, int& data) const {
    if (path.empty() || name.empty())
        return 0;
    Key key;
    if (ov_reg_RegOpenKeyEx(root_of(m_root), path, 0, KEY_QUERY_VALUE, key.out(),
                            m_look_in_wow64_area) != ERROR_SUCCESS)
        return 0;
    DWORD type = REG_NONE;
    DWORD value = 0;
    DWORD size = sizeof value;
    if (RegQueryValueExU(key.get(), name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(&value),
                         &size) != ERROR_SUCCESS ||
        type != REG_DWORD)
        return 0;
    data = static_cast<int>(value);
    return 1;
}

int ovRegistry::value_data(const utString& path, const utString& name, utString& data) const {
    if (path.empty() || name.empty())
        return 0;
    Key key;
    if (ov_reg_RegOpenKeyEx(root_of(m_root), path, 0, KEY_QUERY_VALUE, key.out(),
                            m_look_in_wow64_area) != ERROR_SUCCESS)
        return 0;
    DWORD type;
    char text[kBuffer + 1];
    if (query(key.get(), name, type, text) != ERROR_SUCCESS || !is_string(type))
        return 0;
    data = utString(text);
    return 1;
}

int ovRegistry::set_value_data(const utString& path, const utString& name, ovValueType type,
                               const utString& data) {
    if (path.empty() || name.empty())
        return 0;
    DWORD number = 0;
    DWORD kind = REG_SZ;
    const BYTE* bytes = nullptr;
    DWORD size = 0;
    switch (type) {
    case ovREG_INT: {
        double parsed = 0;
        if (!data.parse(parsed))
            return 0;
        // The integer part's low 32 bits, exact for every finite value.
        double low = std::fmod(std::trunc(parsed), 4294967296.0);
        if (low < 0)
            low += 4294967296.0;
        number = static_cast<DWORD>(low);
        kind = REG_DWORD;
        bytes = reinterpret_cast<const BYTE*>(&number);
        size = sizeof number;
        break;
    }
    case ovREG_EXPAND_STRING:
    case ovREG_STRING: {
        const char* text = data.is_null() ? "" : data.c_str();
        kind = type == ovREG_STRING ? REG_SZ : REG_EXPAND_SZ;
        bytes = reinterpret_cast<const BYTE*>(text);
        size = static_cast<DWORD>(std::strlen(text) + 1);
        break;
    }
    default:
        return 0; // no defined data to write
    }
    Key key;
    if (RegCreateKeyU(root_of(m_root), path.c_str(), key.out()) != ERROR_SUCCESS)
        return 0;
    return RegSetValueExU(key.get(), name.c_str(), 0, kind, bytes, size) == ERROR_SUCCESS ? 1 : 0;
}

int ovRegistry::create_key(const utString& path) {
    return create_with(root_of(m_root), path, KEY_ALL_ACCESS);
}

int ovRegistry::remove_key(const utString& path) {
    const HKEY root = root_of(m_root);
    const int wow64 = m_look_in_wow64_area;
    return remove_tree(
        *this, path,
        [=](const utString& p, HKEY* key) {
            return ov_reg_RegOpenKeyEx(root, p, 0, KEY_ALL_ACCESS, key, wow64);
        },
        [=](const utString& p) { return RegDeleteKeyU(root, p.c_str()); });
}

int ovRegistry::remove_value(const utString& path, const utString& name) {
    if (path.empty() || name.empty())
        return 0;
    Key key;
    if (ov_reg_RegOpenKeyEx(root_of(m_root), path, 0, KEY_ALL_ACCESS, key.out(),
                            m_look_in_wow64_area) != ERROR_SUCCESS)
        return 0;
    return RegDeleteValueU(key.get(), name.c_str()) == ERROR_SUCCESS ? 1 : 0;
}

utStringcoPageArr* ovRegistry::key_list(const utString& path) const {
    if (path.empty() || !key_exists(path))
        return nullptr;
    Key key;
    if (ov_reg_RegOpenKeyEx(root_of(m_root), path, 0, KEY_ENUMERATE_SUB_KEYS, key.out(), 1) !=
        ERROR_SUCCESS)
        return nullptr;
    const HKEY k = key.get();
    return collect([k](DWORD index, char* name) { return RegEnumKeyU(k, index, name, kBuffer); });
}

utStringcoPageArr* ovRegistry::value_list(const utString& path) const {
    if (path.empty() || !key_exists(path))
        return nullptr;
    Key key;
    if (ov_reg_RegOpenKeyEx(root_of(m_root), path, 0, KEY_QUERY_VALUE, key.out(), 1) !=
        ERROR_SUCCESS)
        return nullptr;
    const HKEY k = key.get();
    return collect([k](DWORD index, char* name) {
        DWORD size = kBuffer;
        DWORD type = REG_NONE;
        return RegEnumValueU(k, index, name, &size, nullptr, &type, nullptr, nullptr);
    });
}

int ovRegistry::value_data_utf8(const utString& path, const utString& name, utString& data) const {
    if (path.empty() || name.empty())
        return 0;
    Key key;
    if (ov_reg_RegOpenKeyEx(root_of(m_root), path, 0, KEY_QUERY_VALUE, key.out(), 1) !=
        ERROR_SUCCESS)
        return 0;
    DWORD type;
    std::wstring text;
    if (query_acp(key.get(), name, type, text) != ERROR_SUCCESS)
        return 0;
    return utf8_result(type, text, data);
}

int ovRegistry6432::key_exists(const utString& path) const {
    return ovRegistry::key_exists(path, 1);
}

int ovRegistry6432::value_exists(const utString& path, const utString& name,
                                 ovValueType& type) const {
    return ovRegistry::value_exists(path, name, type, has_wow64() ? 1 : 0);
}

utStringcoPageArr* ovRegistry6432::key_list(const utString& path) const {
    if (path.empty())
        return nullptr;
    std::unique_ptr<utStringcoPageArr> list;
    utStringcoSet seen(4, 50);
    const HKEY root = root_of(m_root);
    for (int view = 0; view < 2; ++view) {
        Key key;
        const long opened =
            view == 0 ? ov_reg_RegOpenKeyEx64(root, path, 0, KEY_ENUMERATE_SUB_KEYS, key.out())
                      : ov_reg_RegOpenKeyEx32(root, path, 0, KEY_ENUMERATE_SUB_KEYS, key.out());
        if (opened != ERROR_SUCCESS)
            continue;
        char name[kBuffer + 1];
        for (DWORD index = 0; RegEnumKeyU(key.get(), index, name, kBuffer) == ERROR_SUCCESS;
             ++index) {
            const utString found(name);
            if (!seen.add(found))
                continue;
            if (!list)
                list.reset(new utStringcoPageArr());
            list->append(found);
        }
    }
    return list.release();
}

int ovRegistry6432::value_data_utf8(const utString& path, const utString& name,
                                    utString& data) const {
    if (path.empty() || name.empty())
        return 0;
    const HKEY root = root_of(m_root);
    DWORD type = REG_NONE;
    std::wstring text;
    LONG r;
    {
        Key key;
        r = ov_reg_RegOpenKeyEx(root, path, 0, KEY_QUERY_VALUE, key.out(), 1);
        if (r == ERROR_SUCCESS)
            r = query_acp(key.get(), name, type, text);
    }
    if (r != ERROR_SUCCESS) {
        Key key;
        if (ov_reg_RegOpenKeyEx64(root, path, 0, KEY_QUERY_VALUE, key.out()) != ERROR_SUCCESS)
            return 0;
        if (query_acp(key.get(), name, type, text) != ERROR_SUCCESS)
            return 0;
    }
    return utf8_result(type, text, data);
}

int ovRegistry6432::key_exists_64(const utString& path) const {
    if (path.empty())
        return 0;
    Key key;
    return ov_reg_RegOpenKeyEx64(root_of(m_root), path, 0, KEY_READ, key.out()) == ERROR_SUCCESS
               ? 1
               : 0;
}

int ovRegistry6432::create_key_32(const utString& path) {
    return create_with(root_of(m_root), path, KEY_ALL_ACCESS | KEY_WOW64_32KEY);
}

int ovRegistry6432::create_key_64(const utString& path) {
    return create_with(root_of(m_root), path, KEY_ALL_ACCESS | KEY_WOW64_64KEY);
}

int ovRegistry6432::remove_key_32(const utString& path) {
    const HKEY root = root_of(m_root);
    return remove_tree(
        *this, path,
        [=](const utString& p, HKEY* key) {
            return ov_reg_RegOpenKeyEx32(root, p, 0, KEY_ALL_ACCESS, key);
        },
        [=](const utString& p) { return ov_reg_RegDeleteKeyEx(root, p, KEY_WOW64_32KEY); });
}

int ovRegistry6432::remove_key_64(const utString& path) {
    const HKEY root = root_of(m_root);
    return remove_tree(
        *this, path,
        [=](const utString& p, HKEY* key) {
            return ov_reg_RegOpenKeyEx64(root, p, 0, KEY_ALL_ACCESS, key);
        },
        [=](const utString& p) { return ov_reg_RegDeleteKeyEx(root, p, KEY_WOW64_64KEY); });
}

ovHKey ov_reg_master_key(ovHKeyType type) {
    switch (type) {
    case ovHKEY_CLASSES_ROOT:
        return HKEY_CLASSES_ROOT;
    case ovHKEY_CURRENT_USER:
        return HKEY_CURRENT_USER;
    case ovHKEY_USERS:
        return HKEY_USERS;
    case ovHKEY_LOCAL_MACHINE:
    default:
        return HKEY_LOCAL_MACHINE;
    }
}

long ov_reg_RegOpenKeyEx(ovHKey root, const utString& path, unsigned long options,
                         unsigned long access, ovHKey* result, int wow64) {
    long r = RegOpenKeyExU(root, path.c_str(), options, access, result);
    if (r != ERROR_SUCCESS && wow64)
        r = RegOpenKeyExU(root, path.c_str(), options, access | KEY_WOW64_32KEY, result);
    return r;
}

long ov_reg_RegOpenKeyEx64(ovHKey root, const utString& path, unsigned long options,
                           unsigned long access, ovHKey* result) {
    if (!ovRegistry::has_wow64())
        return ERROR_BADKEY;
    return RegOpenKeyExU(root, path.c_str(), options, access | KEY_WOW64_64KEY, result);
}

long ov_reg_RegOpenKeyEx32(ovHKey root, const utString& path, unsigned long options,
                           unsigned long access, ovHKey* result) {
    if (!ovRegistry::has_wow64())
        return RegOpenKeyExU(root, path.c_str(), options, access, result);
    return RegOpenKeyExU(root, path.c_str(), options, access | KEY_WOW64_32KEY, result);
}

long ov_reg_RegDeleteKeyEx(ovHKey root, const utString& path, unsigned long view) {
    if (!ovRegistry::has_wow64())
        return ERROR_BADKEY;
    int status = 0;
    const ovBuffer<wchar_t> wide = ovOsUtStringConverter().convert_utString_to_TSTR(path, status);
    if (status != 0 || wide.is_null())
        return ERROR_NO_UNICODE_TRANSLATION;
    typedef LONG(WINAPI * DeleteKeyEx)(HKEY, LPCWSTR, REGSAM, DWORD);
    const HMODULE advapi = LoadLibraryU("AdvAPI32.dll");
    if (!advapi)
        return ERROR_PROC_NOT_FOUND;
    // Looked up each time: systems without the call still load this library.
    const DeleteKeyEx fn = reinterpret_cast<DeleteKeyEx>(
        reinterpret_cast<void*>(GetProcAddress(advapi, "RegDeleteKeyExW")));
    const LONG r = fn ? fn(root, wide.text(), view, 0) : ERROR_PROC_NOT_FOUND;
    FreeLibrary(advapi);
    return r;
}
