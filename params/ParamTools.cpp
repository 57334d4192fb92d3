// Comparing, copying and dumping trees through IParam alone, each as one walk
// over the sections (see TreeWalk.h).
#include <string>

#include "kticore/core/Exception.h"
#include "kticore/params/ParamTools.h"
#include "params/Held.h"
#include "params/TreeWalk.h"
#include "platform/DebugOutput.h"

namespace {

using kt::params::Held;
using kt::params::HoldAnother;
using kt::params::NameEnum;

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

// One section of `a` and the section of the same path in `b`.
struct SectionPair {
    Held<IParam> a;
    Held<IParam> b;
};

// Whether `b` holds every value and section of `a`: values first, then
// each section; the first difference ends the walk.
class Comparison {
public:
    NameEnum* Enter(SectionPair& pair) {
        ForEachName(pair.a->EnumValues(), [&](const char* name) {
            CKTVariant mine;
            CKTVariant theirs;
            pair.a->GetValue(name, &mine);
            equal = pair.b->GetValue(name, &theirs) && mine == theirs;
            return equal;
        });
        return equal ? pair.a->EnumSections() : nullptr;
    }
    bool Descend(SectionPair& parent, const char* name, SectionPair& child) {
        child.a.Reset(parent.a->GetSection(name, 0));
        child.b.Reset(parent.b->GetSection(name, 0));
        equal = child.a && child.b;
        return equal;
    }
    void Leave(SectionPair&) {}
    bool Done() const { return !equal; }

    bool equal = true;
};

// Sections first, then the values of each; nothing in the target goes.
class Copy {
public:
    NameEnum* Enter(SectionPair& pair) { return Required(pair.a->EnumSections()); }
    bool Descend(SectionPair& parent, const char* name, SectionPair& child) {
        child.a.Reset(parent.a->GetSection(name, 0));
        if (!child.a)
            return false;
        child.b.Reset(parent.b->GetSection(name, 0));
        if (!child.b)
            child.b.Reset(parent.b->CreateSection(name));
        return static_cast<bool>(child.b);
    }
    void Leave(SectionPair& pair) {
        ForEachName(Required(pair.a->EnumValues()), [&](const char* name) {
            CKTVariant value;
            pair.a->GetValue(name, &value);
            pair.b->SetValue(name, &value);
            return true;
        });
    }
    bool Done() const { return false; }
};

struct DumpedSection {
    Held<IParam> param;
};

// The names of the values, then a line for each section before its content.
class Dump {
public:
    NameEnum* Enter(DumpedSection& section) {
        ForEachName(Required(section.param->EnumValues()), [](const char* name) {
            kt::sys::DebugOutput((std::string(" ") + name + " \n").c_str());
            return true;
        });
        return Required(section.param->EnumSections());
    }
    bool Descend(DumpedSection& parent, const char* name, DumpedSection& child) {
        child.param.Reset(parent.param->GetSection(name, 0));
        kt::sys::DebugOutput((std::string("--- ") + name + " ---\n").c_str());
        return static_cast<bool>(child.param);
    }
    void Leave(DumpedSection&) {}
    bool Done() const { return false; }
};

}  // namespace

int Param_Cmp(IParam* a, IParam* b) {
    if (a == nullptr || b == nullptr)
        return 0;
    Comparison comparison;
    kt::params::WalkSections(SectionPair{HoldAnother(a), HoldAnother(b)}, comparison);
    return comparison.equal ? 1 : 0;
}

void Param_CopyTo(IParam* from, IParam* to) {
    Copy copy;
    kt::params::WalkSections(SectionPair{HoldAnother(from), HoldAnother(to)}, copy);
}

void Dump_Param(IParam* param) {
    Dump dump;
    kt::params::WalkSections(DumpedSection{HoldAnother(param)}, dump);
}
