// Comparing, copying and dumping trees through IParam alone.
#include <string>

#include "kticore/core/Exception.h"
#include "kticore/params/ParamTools.h"
#include "params/Held.h"
#include "platform/DebugOutput.h"

namespace {

using kt::params::Held;
using NameEnum = CTEnum<const char*>;

// Calls `visit` with each name an enumerator gives; a null enumerator gives
// none.
template <class Visit>
void ForEachName(NameEnum* names, Visit visit) {
    Held<NameEnum> held(names);
    const char* name = nullptr;
    while (held && held->Next(1, &name, nullptr))
        if (!visit(name))
            return;
}

// The enumerator, which the caller must have.
NameEnum* Required(NameEnum* names) {
    if (names == nullptr)
        throw CXIFaceException(&typeid(NameEnum));
    return names;
}

}  // namespace

int Param_Cmp(IParam* a, IParam* b) {
    if (a == nullptr || b == nullptr)
        return 0;
    int equal = 1;
    ForEachName(a->EnumValues(), [&](const char* name) {
        CKTVariant mine;
        CKTVariant theirs;
        a->GetValue(name, &mine);
        equal = b->GetValue(name, &theirs) && mine == theirs;
        return equal != 0;
    });
    if (!equal)
        return 0;
    ForEachName(a->EnumSections(), [&](const char* name) {
        Held<IParam> mine(a->GetSection(name, 0));
        Held<IParam> theirs(b->GetSection(name, 0));
        equal = Param_Cmp(mine.get(), theirs.get());
        return equal != 0;
    });
    return equal;
}

void Param_CopyTo(IParam* from, IParam* to) {
    from->AddRef();
    Held<IParam> holdFrom(from);
    to->AddRef();
    Held<IParam> holdTo(to);
    ForEachName(Required(from->EnumSections()), [&](const char* name) {
        Held<IParam> source(from->GetSection(name, 0));
        if (!source)
            return true;
        Held<IParam> target(to->GetSection(name, 0));
        if (!target)
            target.Reset(to->CreateSection(name));
        if (target)
            Param_CopyTo(source.get(), target.get());
        return true;
    });
    ForEachName(Required(from->EnumValues()), [&](const char* name) {
        CKTVariant value;
        from->GetValue(name, &value);
        to->SetValue(name, &value);
        return true;
    });
}

void Dump_Param(IParam* param) {
    param->AddRef();
    Held<IParam> hold(param);
    ForEachName(Required(param->EnumValues()), [](const char* name) {
        kt::sys::DebugOutput((std::string(" ") + name + " \n").c_str());
        return true;
    });
    ForEachName(Required(param->EnumSections()), [&](const char* name) {
        Held<IParam> section(param->GetSection(name, 0));
        kt::sys::DebugOutput((std::string("--- ") + name + " ---\n").c_str());
        if (section)
            Dump_Param(section.get());
        return true;
    });
}
