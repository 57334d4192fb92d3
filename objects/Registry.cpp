// The process-wide table of classes: a name, hashed, leads to the module and
// the factory that make its objects. A module registered by file name is
// found on disk at registration and loaded only when the first object of one
// of its classes is made.
#include "kticore/objects/Registry.h"

#include "kticore/core/Map.h"
#include "kticore/strings/XString.h"
#include "platform/Module.h"

namespace kt {
namespace {

struct CRegistryEntry {
    // A class of a module that is loaded: the factory is known at once.
    CRegistryEntry(HMODULE module, KTObjectFactory factory) : module(module), factory(factory) {}

    // A class of a module file that is found but not yet loaded. Throws the
    // system's message as a CXString when the file is not on the search path.
    CRegistryEntry(const char* className, const char* moduleName) : entryName(className) {
        std::string error;
        const std::string path = sys::SearchModuleFile(moduleName, error);
        if (path.empty())
            throw CXString(error.c_str());
        modulePath = path.c_str();
    }

    // Loads the module and finds the factory the first time; an entry once
    // resolved stays so. A module that loads but lacks the export stays
    // loaded and in the entry.
    KTObjectFactory Resolve() {
        if (factory != nullptr)
            return factory;
        if (module == nullptr)
            module = sys::LoadModule(modulePath);
        if (module != nullptr)
            factory = reinterpret_cast<KTObjectFactory>(sys::FindExport(module, entryName));
        return factory;
    }

    HMODULE module = nullptr;
    CXString modulePath;
    CXString entryName;
    KTObjectFactory factory = nullptr;
};

constexpr DWORD kRegistryBuckets = 1397;

using CRegistry = CTMap<const char*, CRegistryEntry*>;

CRegistry& Registry() {
    static CRegistry registry(nullptr, kRegistryBuckets);
    return registry;
}

// Enters a new entry; the map refuses once it is being destroyed.
int Insert(const char* name, CRegistryEntry* entry) {
    if (Registry().Set(name, entry))
        return 1;
    delete entry;
    return 0;
}

}  // namespace
}  // namespace kt

using kt::Registry;

int RegisterObject(const char* name, HMODULE module) {
    if (IsRegisterObject(name))
        return 1;
    auto factory = reinterpret_cast<KTObjectFactory>(kt::sys::FindExport(module, name));
    if (factory == nullptr)
        return 0;
    return kt::Insert(name, new kt::CRegistryEntry(module, factory));
}

int RegisterObject(const char* name, const char* moduleName) {
    if (IsRegisterObject(name))
        return 1;
    try {
        return kt::Insert(name, new kt::CRegistryEntry(name, moduleName));
    } catch (const CXString&) {
        return 0;
    }
}

int UnregisterObject(const char* name) { return Registry().Remove(name); }

int IsRegisterObject(const char* name) {
    kt::CRegistryEntry* entry = nullptr;
    return Registry().Lookup(name, entry);
}

int CreateObject(const char* name, IKTUnknown* outer, const type_info& iface, IKTUnknown** out) {
    *out = nullptr;
    kt::CRegistryEntry* entry = nullptr;
    if (!Registry().Lookup(name, entry))
        return 0;
    const KTObjectFactory factory = entry->Resolve();
    if (factory == nullptr)
        return 0;
    return factory(outer, iface, out);
}

int CreateObjectC(const char* name, IKTUnknown* outer, const type_info& iface, IKTUnknown** out) {
    return CreateObject(name, outer, iface, out);
}
