// CMemParam: the parameter tree in memory. Each kind of entry is kept twice:
// a list of names gives the creation order, a map the lookup; the two stay in
// step. Names are folded to one case by the maps' hash, and two names of one
// hash are one entry.
#pragma once

#include <memory>

#include "kticore/core/ListEnum.h"
#include "kticore/core/Map.h"
#include "params/RegisteredInterfaces.h"

namespace kt::params {

class CMemParam final : public CKTUnknownImpl<IParam>, public IRegisterIface {
public:
    CMemParam();
    ~CMemParam() override;

    ULONG AddRef() override { return InternalAddRef(); }
    ULONG Release() override { return InternalRelease(); }
    int QueryInterface(const type_info& type, void** out) override;
    ULONG InternalRelease() override;

    int RegisterInterface(IKTUnknown* object, const type_info& type, int addRef) override;

    IParam* CreateSection(const char* path) override;
    IParam* GetSection(const char* path, int create) override;
    void DeleteSection(const char* path) override;
    void DeleteAllSections() override;
    CTEnum<const char*>* EnumSections() override;
    int GetValue(const char* path, tagKTVARIANT* value) override;
    void SetValue(const char* path, const tagKTVARIANT* value) override;
    void DeleteValue(const char* name) override;
    void DeleteAllValues() override;
    CTEnum<const char*>* EnumValues() override;
    void Clear() override;

private:
    // Names in creation order. Its enumerators count on the section that
    // owns the list, so a section lives while one of them does.
    class NameList : public CTListEnum<const char*, const char*> {
    public:
        explicit NameList(CMemParam& owner) : owner(owner) {}
        ULONG InternalAddRef() override { return owner.AddRef(); }
        ULONG InternalRelease() override { return owner.Release(); }
        void Append(const char* name);
        // Takes out the first name equal to `name` without regard to case
        // and hands over its copy, which may be `name` itself; null when
        // there is none.
        std::unique_ptr<const char[]> Take(const char* name);
        // Empties the list and opens it again for new names.
        void Empty();

    private:
        CMemParam& owner;
    };

    template <class V>
    class NameMap : public CTMap<const ULONG*, V> {
    public:
        V* Find(const char* name) {
            auto* node = CTMap<const ULONG*, V>::Find(Key(name));
            return node != nullptr ? &node->value : nullptr;
        }
        void Set(const char* name, const V& value) { CTMap<const ULONG*, V>::Set(Key(name), value); }
        int Remove(const char* name) { return CTMap<const ULONG*, V>::Remove(Key(name)); }
        void Empty() { this->Clear(); }

    private:
        static const ULONG* Key(const char* name) { return reinterpret_cast<const ULONG*>(name); }
    };

    // The direct sub-section of this name, or null; no reference added.
    IParam* Child(const char* name) { return Found(sections.Find(name)); }
    static IParam* Found(IParam** entry) { return entry != nullptr ? *entry : nullptr; }
    // A new empty sub-section; the map holds the one reference.
    IParam* AddChild(const char* name);

    CRegisteredInterfaces registered;
    NameList sectionNames{*this};
    NameList valueNames{*this};
    NameMap<IParam*> sections;
    NameMap<CKTVariant> values;
    // Trees are destroyed from a work list rather than by recursion, so that
    // a deep tree does not exhaust the stack: see InternalRelease.
    CMemParam* nextToDestroy = nullptr;
};

}  // namespace kt::params
