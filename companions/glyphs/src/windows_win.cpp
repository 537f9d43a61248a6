#include "ub/ubWindows.h"

#include "utf8_win.h"

#include <cstring>
#include <new>
#include <string>
#include <vector>

using ub_detail::utf8_cut;
using ub_detail::utf8_to_wide;
using ub_detail::wide_to_utf8;

namespace {

bool is_text(DWORD type) { return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ; }

// A name argument: null stays null (the W calls give it a meaning of its own).
struct WideArg {
    std::wstring text;
    bool null = false;
    bool ok = true;
    explicit WideArg(const char* s)
        : null(s == nullptr), ok(s == nullptr || utf8_to_wide(s, text)) {}
    const wchar_t* get() const { return null ? nullptr : text.c_str(); }
};

// The whole value in its stored UTF-16 form, however long.
LONG query_wide(HKEY key, const wchar_t* name, DWORD& type, std::vector<BYTE>& raw) {
    DWORD capacity = 512;
    for (;;) {
        raw.resize(capacity);
        DWORD got = capacity;
        const LONG r = RegQueryValueExW(key, name, nullptr, &type, raw.data(), &got);
        if (r == ERROR_SUCCESS) {
            raw.resize(got);
            return r;
        }
        if (r != ERROR_MORE_DATA)
            return r;
        // A value growing between calls only costs another round.
        capacity = got > capacity ? got : capacity * 2;
    }
}

// Hands a stored value to the caller as RegQueryValueExW would, text turned into UTF-8.
LONG deliver(DWORD type, const std::vector<BYTE>& raw, DWORD* type_out, BYTE* data, DWORD* size) {
    std::string text;
    const BYTE* bytes = raw.data();
    size_t n = raw.size();
    if (is_text(type)) {
        std::wstring wide(raw.size() / sizeof(wchar_t), L'\0');
        if (!wide.empty())
            std::memcpy(&wide[0], raw.data(), wide.size() * sizeof(wchar_t));
        // Text stored without its terminator still reaches the caller terminated.
        if (wide.empty() || wide.back() != L'\0')
            wide.push_back(L'\0');
        if (!wide_to_utf8(wide.data(), wide.size(), text))
            return ERROR_NO_UNICODE_TRANSLATION;
        bytes = reinterpret_cast<const BYTE*>(text.data());
        n = text.size();
    }
    if (type_out)
        *type_out = type;
    if (data) {
        if (!size)
            return ERROR_INVALID_PARAMETER;
        if (n > *size) {
            *size = static_cast<DWORD>(n);
            return ERROR_MORE_DATA;
        }
        if (n)
            std::memcpy(data, bytes, n);
    }
    if (size)
        *size = static_cast<DWORD>(n);
    return ERROR_SUCCESS;
}

// Copies a UTF-8 name into a caller's buffer of `size` bytes, cut to fit.
LONG give_name(const std::string& name, char* out, DWORD size, DWORD* written) {
    if (!out || size == 0)
        return ERROR_INVALID_PARAMETER;
    const size_t n = utf8_cut(name, size - 1);
    std::memcpy(out, name.data(), n);
    out[n] = '\0';
    if (written)
        *written = static_cast<DWORD>(n);
    return n == name.size() ? ERROR_SUCCESS : ERROR_MORE_DATA;
}

} // namespace

LONG RegOpenKeyExU(HKEY root, const char* path, DWORD options, REGSAM access, HKEY* result) {
    try {
        const WideArg p(path);
        if (!p.ok)
            return ERROR_NO_UNICODE_TRANSLATION;
        return RegOpenKeyExW(root, p.get(), options, access, result);
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

LONG RegCreateKeyU(HKEY root, const char* path, HKEY* result) {
    try {
        const WideArg p(path);
        if (!p.ok)
            return ERROR_NO_UNICODE_TRANSLATION;
        return RegCreateKeyW(root, p.get(), result);
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

LONG RegCreateKeyExU(HKEY root, const char* path, DWORD reserved, char* key_class, DWORD options,
                     REGSAM access, SECURITY_ATTRIBUTES* security, HKEY* result,
                     DWORD* disposition) {
    try {
        const WideArg p(path), c(key_class);
        if (!p.ok || !c.ok)
            return ERROR_NO_UNICODE_TRANSLATION;
        return RegCreateKeyExW(root, p.get(), reserved, const_cast<wchar_t*>(c.get()), options,
                               access, security, result, disposition);
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

LONG RegDeleteKeyU(HKEY root, const char* path) {
    try {
        const WideArg p(path);
        if (!p.ok)
            return ERROR_NO_UNICODE_TRANSLATION;
        return RegDeleteKeyW(root, p.get());
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

LONG RegDeleteValueU(HKEY key, const char* name) {
    try {
        const WideArg n(name);
        if (!n.ok)
            return ERROR_NO_UNICODE_TRANSLATION;
        return RegDeleteValueW(key, n.get());
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

LONG RegQueryValueExU(HKEY key, const char* name, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* size) {
    if (reserved || (data && !size))
        return ERROR_INVALID_PARAMETER;
    try {
        const WideArg n(name);
        if (!n.ok)
            return ERROR_NO_UNICODE_TRANSLATION;
        DWORD stored = REG_NONE;
        std::vector<BYTE> raw;
        const LONG r = query_wide(key, n.get(), stored, raw);
        if (r != ERROR_SUCCESS)
            return r;
        return deliver(stored, raw, type, data, size);
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

LONG RegSetValueExU(HKEY key, const char* name, DWORD reserved, DWORD type, const BYTE* data,
                    DWORD size) {
    if (!data && size)
        return ERROR_INVALID_PARAMETER;
    try {
        const WideArg n(name);
        if (!n.ok)
            return ERROR_NO_UNICODE_TRANSLATION;
        if (!is_text(type) || !data)
            return RegSetValueExW(key, n.get(), reserved, type, data, size);
        std::wstring wide;
        if (!utf8_to_wide(reinterpret_cast<const char*>(data), size, wide))
            return ERROR_NO_UNICODE_TRANSLATION;
        return RegSetValueExW(key, n.get(), reserved, type,
                              reinterpret_cast<const BYTE*>(wide.data()),
                              static_cast<DWORD>(wide.size() * sizeof(wchar_t)));
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

LONG RegEnumKeyU(HKEY key, DWORD index, char* name, DWORD size) {
    if (!name || size == 0)
        return ERROR_INVALID_PARAMETER;
    try {
        wchar_t wide[512]; // key names are at most 255 units
        DWORD len = 512;
        const LONG r = RegEnumKeyExW(key, index, wide, &len, nullptr, nullptr, nullptr, nullptr);
        if (r != ERROR_SUCCESS)
            return r;
        std::string text;
        if (!wide_to_utf8(wide, len, text))
            return ERROR_NO_UNICODE_TRANSLATION;
        return give_name(text, name, size, nullptr);
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

LONG RegEnumValueU(HKEY key, DWORD index, char* name, DWORD* name_size, DWORD* reserved,
                   DWORD* type, BYTE* data, DWORD* data_size) {
    if (!name || !name_size || reserved || (data && !data_size))
        return ERROR_INVALID_PARAMETER;
    try {
        std::vector<wchar_t> wide(16384); // value names are at most 16383 units
        DWORD len = static_cast<DWORD>(wide.size());
        DWORD stored = REG_NONE;
        LONG r = RegEnumValueW(key, index, wide.data(), &len, nullptr, &stored, nullptr, nullptr);
        if (r != ERROR_SUCCESS)
            return r;
        std::string text;
        if (!wide_to_utf8(wide.data(), len, text))
            return ERROR_NO_UNICODE_TRANSLATION;
        r = give_name(text, name, *name_size, name_size);
        if (type)
            *type = stored;
        if (data || data_size) {
            std::vector<BYTE> raw;
            wide.resize(len);
            wide.push_back(L'\0');
            const LONG q = query_wide(key, wide.data(), stored, raw);
            if (q != ERROR_SUCCESS)
                return q;
            const LONG d = deliver(stored, raw, type, data, data_size);
            if (d != ERROR_SUCCESS)
                return d;
        }
        return r;
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

HMODULE LoadLibraryU(const char* name) {
    try {
        std::wstring wide;
        if (!name || !utf8_to_wide(name, wide)) {
            SetLastError(name ? ERROR_NO_UNICODE_TRANSLATION : ERROR_INVALID_PARAMETER);
            return nullptr;
        }
        return LoadLibraryW(wide.c_str());
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
}

HMODULE GetModuleHandleU(const char* name) {
    try {
        const WideArg n(name);
        if (!n.ok) {
            SetLastError(ERROR_NO_UNICODE_TRANSLATION);
            return nullptr;
        }
        return GetModuleHandleW(n.get());
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
}

DWORD GetModuleFileNameU(HMODULE module, char* buffer, DWORD size) {
    if (!buffer || size == 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    try {
        std::vector<wchar_t> wide(MAX_PATH);
        DWORD len = 0;
        for (;;) {
            len = GetModuleFileNameW(module, wide.data(), static_cast<DWORD>(wide.size()));
            if (len == 0)
                return 0;
            if (len < wide.size())
                break;
            if (wide.size() >= 32768) // the longest path the system knows
                break;
            wide.resize(wide.size() * 2);
        }
        std::string text;
        if (!wide_to_utf8(wide.data(), len, text)) {
            SetLastError(ERROR_NO_UNICODE_TRANSLATION);
            return 0;
        }
        DWORD written = 0;
        if (give_name(text, buffer, size, &written) != ERROR_SUCCESS) {
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return size;
        }
        SetLastError(ERROR_SUCCESS);
        return written;
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
}

HANDLE CreateActCtxU(const ACTCTXA* context) {
    if (!context || context->cbSize < sizeof(ACTCTXA)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    try {
        const DWORD flags = context->dwFlags;
        const WideArg source(context->lpSource);
        const WideArg directory(
            flags & ACTCTX_FLAG_ASSEMBLY_DIRECTORY_VALID ? context->lpAssemblyDirectory : nullptr);
        const WideArg application(
            flags & ACTCTX_FLAG_APPLICATION_NAME_VALID ? context->lpApplicationName : nullptr);
        const bool named_resource =
            (flags & ACTCTX_FLAG_RESOURCE_NAME_VALID) && !IS_INTRESOURCE(context->lpResourceName);
        const WideArg resource(named_resource ? context->lpResourceName : nullptr);
        if (!source.ok || !directory.ok || !application.ok || !resource.ok) {
            SetLastError(ERROR_NO_UNICODE_TRANSLATION);
            return INVALID_HANDLE_VALUE;
        }
        ACTCTXW wide = {};
        wide.cbSize = sizeof(wide);
        wide.dwFlags = flags;
        wide.lpSource = source.get();
        wide.wProcessorArchitecture = context->wProcessorArchitecture;
        wide.wLangId = context->wLangId;
        wide.lpAssemblyDirectory = directory.get();
        wide.lpResourceName =
            named_resource ? resource.get() : reinterpret_cast<LPCWSTR>(context->lpResourceName);
        wide.lpApplicationName = application.get();
        wide.hModule = context->hModule;
        return CreateActCtxW(&wide);
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return INVALID_HANDLE_VALUE;
    }
}
