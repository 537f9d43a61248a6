// WMI through the plain COM calls (the runtime here has no comutil helpers), Wow64 and
// activation contexts through calls looked up or wrapped for UTF-8.
#include "ovra/ovWindowsServices.h"

#include "common/win32.h"
#include "ub/ubWindows.h"

#include <objbase.h>
#include <oleauto.h>
#include <process.h>
#include <wbemcli.h>

#include <string>

namespace {

// The administrative WBEM locator and IWbemLocator, spelt out so no GUID library is
// needed.
const CLSID kAdministrativeLocator = {
    0xCB8555CC, 0x9128, 0x11D1, {0xAD, 0x9B, 0x00, 0xC0, 0x4F, 0xD8, 0xFD, 0xFF}};
const IID kLocatorInterface = {
    0xDC12A687, 0x737F, 0x11CF, {0x88, 0x4D, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};

template <class T> struct Com {
    T* p = nullptr;
    Com() = default;
    Com(const Com&) = delete;
    Com& operator=(const Com&) = delete;
    ~Com() {
        if (p)
            p->Release();
    }
};

struct Bstr {
    BSTR b = nullptr;
    explicit Bstr(const wchar_t* s) : b(SysAllocString(s)) {}
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    ~Bstr() { SysFreeString(b); }
};

struct Variant {
    VARIANT v;
    Variant() { VariantInit(&v); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { VariantClear(&v); }
};

std::wstring from_thread_acp(const utString& s) {
    const char* text = s.is_null() ? "" : s.c_str();
    const int n = MultiByteToWideChar(CP_THREAD_ACP, 0, text, -1, nullptr, 0);
    if (n <= 0)
        return std::wstring();
    std::wstring wide(static_cast<size_t>(n), L'\0');
    MultiByteToWideChar(CP_THREAD_ACP, 0, text, -1, &wide[0], n);
    wide.pop_back();
    return wide;
}

// The variant's text form in the ANSI code page; false when it has none.
bool variant_text(VARIANT& value, utString& out) {
    Variant text;
    if (FAILED(VariantChangeType(&text.v, &value, 0, VT_BSTR)) || V_VT(&text.v) != VT_BSTR)
        return false;
    const BSTR b = V_BSTR(&text.v);
    const int len = static_cast<int>(SysStringLen(b));
    if (len == 0) {
        out = utString("");
        return true;
    }
    const int n = WideCharToMultiByte(CP_ACP, 0, b, len, nullptr, 0, nullptr, nullptr);
    if (n <= 0)
        return false;
    std::string narrow(static_cast<size_t>(n), '\0');
    WideCharToMultiByte(CP_ACP, 0, b, len, &narrow[0], n, nullptr, nullptr);
    out = utString(narrow.c_str());
    return true;
}

} // namespace

utString ovWMI::value(const utString& class_name, const utString& property, utString& error) {
    Com<IWbemLocator> locator;
    if (FAILED(CoCreateInstance(kAdministrativeLocator, nullptr, CLSCTX_INPROC_SERVER,
                                kLocatorInterface, reinterpret_cast<void**>(&locator.p))) ||
        !locator.p) {
        error = utString("Instantiation of IWbemLocator failed");
        return utString("");
    }
    Com<IWbemServices> services;
    const Bstr space(L"root\\cimv2");
    if (FAILED(locator.p->ConnectServer(space.b, nullptr, nullptr, nullptr,
                                        WBEM_FLAG_CONNECT_USE_MAX_WAIT, nullptr, nullptr,
                                        &services.p)) ||
        !services.p) {
        error = utString("Couldn't connect to service");
        return utString("");
    }
    const Bstr language(L"WQL");
    const Bstr query((L"SELECT * FROM " + from_thread_acp(class_name)).c_str());
    Com<IEnumWbemClassObject> found;
    if (FAILED(services.p->ExecQuery(language.b, query.b, WBEM_FLAG_FORWARD_ONLY, nullptr,
                                     &found.p)) ||
        !found.p) {
        error = utString("Query failed");
        return utString("");
    }
    Com<IWbemClassObject> first;
    ULONG returned = 0;
    if (FAILED(found.p->Next(static_cast<LONG>(WBEM_INFINITE), 1, &first.p, &returned))) {
        error = utString("Enumeration failed");
        return utString("");
    }
    if (returned == 0 || !first.p) {
        error = utString("Enumeration empty");
        return utString("");
    }
    const std::wstring name = from_thread_acp(property);
    Variant value;
    utString result;
    if (FAILED(first.p->Get(name.c_str(), 0, &value.v, nullptr, nullptr)) ||
        V_VT(&value.v) == VT_NULL || !variant_text(value.v, result)) {
        error = utString("IWbemClassObject::Get failed");
        return utString("");
    }
    return result;
}

ovProcessWow64::ovProcessWow64() : m_ok(1), m_is_wow64(0) {
    get_wow64_info();
}

void ovProcessWow64::get_wow64_info() {
    m_ok = 1;
    m_is_wow64 = 0;
    typedef BOOL(WINAPI * IsWow64)(HANDLE, PBOOL);
    const HMODULE kernel = GetModuleHandleW(L"kernel32");
    const IsWow64 fn = kernel ? reinterpret_cast<IsWow64>(reinterpret_cast<void*>(
                                    GetProcAddress(kernel, "IsWow64Process")))
                              : nullptr;
    if (!fn)
        return;
    BOOL wow64 = FALSE;
    if (!fn(GetCurrentProcess(), &wow64)) {
        m_ok = 0;
        wow64 = FALSE;
    }
    m_is_wow64 = wow64 ? 1 : 0;
}

int ovProcessControl::getpid() const {
    return _getpid();
}

utString ovProcessControl::process_path() {
    const HMODULE self = GetModuleHandleU(nullptr);
    if (!self)
        return utString("");
    char path[1024] = {};
    GetModuleFileNameU(self, path, sizeof path);
    path[sizeof path - 1] = '\0';
    return utString(path);
}

static_assert(sizeof(ACTCTXA) == 56, "the 64-bit activation-context description");

ovActivationContext::ovActivationContext() : m_context(INVALID_HANDLE_VALUE), m_cookie(0) {}

ovActivationContext::ovActivationContext(const utString& module) : ovActivationContext() {
    become(module);
}

ovActivationContext::~ovActivationContext() {
    deactivate();
    if (m_context != INVALID_HANDLE_VALUE)
        ReleaseActCtx(m_context);
}

void ovActivationContext::become(const utString& module) {
    become(module, 2);
}

void ovActivationContext::become(const utString& module, int resource) {
    if (m_context != INVALID_HANDLE_VALUE) {
        ReleaseActCtx(m_context);
        m_context = INVALID_HANDLE_VALUE;
    }
    if (module.empty())
        return;
    ACTCTXA description = {};
    description.cbSize = sizeof description;
    description.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID;
    description.lpSource = module.c_str();
    description.lpResourceName = MAKEINTRESOURCEA(resource);
    m_context = CreateActCtxU(&description);
}

void ovActivationContext::activate() {
    if (m_cookie)
        deactivate();
    if (m_context == INVALID_HANDLE_VALUE)
        return;
    ULONG_PTR cookie = 0;
    if (ActivateActCtx(m_context, &cookie))
        m_cookie = cookie;
}

void ovActivationContext::deactivate() {
    if (!m_cookie)
        return;
    DeactivateActCtx(0, m_cookie);
    m_cookie = 0;
}
