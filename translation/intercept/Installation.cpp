// Installing the table of interceptors in a module, and the modules that get
// it without asking.
#include "translation/intercept/Installation.h"

#include <cstring>

#include "kticore/translation/Interception.h"
#include "translation/intercept/ImportPatch.h"
#include "translation/intercept/Interceptors.h"

namespace kt {
namespace {

struct Interceptor {
    const char* library;
    const char* function;
    void* replacement;
    void* real;  // the function's place in the table of real functions
};

// The table holds function pointers, of the size of an address.
void* SavedAddress(const Interceptor& interceptor) {
    void* saved;
    std::memcpy(&saved, interceptor.real, sizeof saved);
    return saved;
}

void SaveAddress(const Interceptor& interceptor, void* real) { std::memcpy(interceptor.real, &real, sizeof real); }

#define KT_INTERCEPTOR(library, name)                                     \
    {library, #name, reinterpret_cast<void*>(&intercept::name),           \
     static_cast<void*>(&sys::realFunctions.name)},
const Interceptor kInterceptors[] = {KT_INTERCEPTED_FUNCTIONS(KT_INTERCEPTOR)};
#undef KT_INTERCEPTOR

// The framework modules, in every version an application may bring, and the
// common dialogs; looked up by name each time they are patched.
const char* const kFrameworkModules[] = {
    "mfc80u.dll", "mfc42d",  "mfco42d", "mfc42",    "xfc42",   "comdlg32", "mfc70d",   "mfco70d",
    "mfc70",      "mfco70",  "mfc71",   "mfco71",   "mfc80",   "mfc100ud", "mfc100u",  "mfc110ud",
    "mfc110u",    "mfc120ud", "mfc120u", "mfc130ud", "mfc130u", "mfc140ud", "mfc140u",
};

// Further framework modules, each remembered from the first installation
// that finds it loaded.
struct RememberedModule {
    const char* name;
    HMODULE module;
};
RememberedModule rememberedModules[] = {
    {"mfc80u.dll", nullptr},
    {"mfc80ud.dll", nullptr},
    {"mfc90ud.dll", nullptr},
    {"mfc90u.dll", nullptr},
};

void RememberFrameworkModules() {
    for (RememberedModule& remembered : rememberedModules)
        if (remembered.module == nullptr)
            remembered.module = GetModuleHandleA(remembered.name);
}

template <class Action>
void ForEachFrameworkModule(Action action) {
    for (const char* name : kFrameworkModules)
        if (HMODULE module = GetModuleHandleA(name))
            action(module);
    for (const RememberedModule& remembered : rememberedModules)
        // A module unloaded since is not touched.
        if (remembered.module != nullptr && GetModuleHandleA(remembered.name) == remembered.module)
            action(remembered.module);
}

// What a caller of a null module's installation gets: callable, and harmless.
int NothingInstalled() { return 0; }

// The real address of `function` of `library`, or null.
void* RealAddress(const char* library, const char* function) {
    HMODULE exporter = GetModuleHandleA(library);
    return exporter != nullptr ? reinterpret_cast<void*>(GetProcAddress(exporter, function)) : nullptr;
}

// Saves the real address whenever the function is there, before any entry
// is rewritten and also when one cannot be: the entries rewritten lead to
// the replacement, which must find the real function.
void Install(HMODULE module, const Interceptor& interceptor) {
    void* real = RealAddress(interceptor.library, interceptor.function);
    if (real == nullptr)
        return;
    SaveAddress(interceptor, real);
    RewriteImportEntries(module, real, interceptor.replacement);
}

// Takes the interceptors out of the framework modules when the library goes,
// once a dictionary has put them there. Modules that asked for themselves,
// and the library, stay as they are.
class FrameworkInstallation {
public:
    FrameworkInstallation() = default;
    FrameworkInstallation(const FrameworkInstallation&) = delete;
    FrameworkInstallation& operator=(const FrameworkInstallation&) = delete;
    ~FrameworkInstallation() {
        if (installed)
            ForEachFrameworkModule(_DeInitResTranslation);
    }

    void Install() {
        ForEachFrameworkModule(_InitResTranslation);
        installed = true;
    }

private:
    bool installed = false;
};

FrameworkInstallation frameworkInstallation;

}  // namespace

void InstallInFrameworkModules() { frameworkInstallation.Install(); }

}  // namespace kt

void* HookProc_Install(HMODULE module, const char* library, const char* function, void* replacement) {
    if (module == nullptr)
        return reinterpret_cast<void*>(&kt::NothingInstalled);
    void* real = kt::RealAddress(library, function);
    if (real == nullptr || kt::RewriteImportEntries(module, real, replacement) != kt::ImportPatch::Done)
        return nullptr;
    return real;
}

void* HookProc_UnInstall(HMODULE, const char*, const char*) { return nullptr; }

int _InitResTranslation(HMODULE module) {
    if (module == nullptr)
        return 0;
    kt::RememberFrameworkModules();
    for (const kt::Interceptor& interceptor : kt::kInterceptors)
        kt::Install(module, interceptor);
    return 1;
}

int _DeInitResTranslation(HMODULE module) {
    if (module == nullptr)
        return 0;
    for (const kt::Interceptor& interceptor : kt::kInterceptors)
        if (void* real = kt::SavedAddress(interceptor))
            kt::RewriteImportEntries(module, interceptor.replacement, real);
    return 1;
}

int Supp_InitResTranslation(HINSTANCE module) { return _InitResTranslation(module); }
