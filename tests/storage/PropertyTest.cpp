// Document properties of compound storages: written by name, found by an
// independent reader and after a reopen; what is refused; names known to
// one object only; property sets of another type or damaged, which read as
// absent and never crash.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "kticore/storage/Property.h"
#include "tests/storage/IndependentReader.h"
#include "tests/storage/StorageSupport.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using kt::test::Names;
using kt::test::Ref;
using kt::test::ScratchDirectory;
using kt::test::StorageRef;
using kt::test::WideString;
using PropertiesRef = Ref<IKTProperty>;

const std::string kAbsent = "<absent>";
const char kSummaryStream[] = "\005SummaryInformation";

const std::vector<std::string> kAllNames = {"App name", "Author",  "Category",
                                            "Comments", "Company", "Keywords",
                                            "Last Author", "Subject", "Title"};

PropertiesRef PropertiesOf(IXStorage* storage) {
    void* out = nullptr;
    EXPECT_EQ(storage->QueryInterface(typeid(IKTProperty), &out), 1);
    return PropertiesRef(static_cast<IKTProperty*>(out));
}

// The text a property reads as; kAbsent when GetProperty gives 0, the kind
// when the value is no narrow text.
std::string Get(IKTProperty* properties, const char* name) {
    CKTVariant value;
    if (!properties->GetProperty(name, &value))
        return kAbsent;
    if (value.vt != KTVT_STR)
        return "<kind " + std::to_string(value.vt) + ">";
    return value.pszVal;
}

int Set(IKTProperty* properties, const char* name, const CKTVariant& value) {
    return properties->SetProperty(name, &value);
}

// Latin-1 text in UTF-8, as the independent reader writes it.
std::string Utf8(const std::string& latin1) {
    std::string utf8;
    for (const unsigned char c : latin1)
        if (c < 0x80) {
            utf8 += static_cast<char>(c);
        } else {
            utf8 += static_cast<char>(0xC0 | c >> 6);
            utf8 += static_cast<char>(0x80 | (c & 0x3F));
        }
    return utf8;
}

std::vector<std::string> Sorted(std::vector<std::string> names) {
    std::sort(names.begin(), names.end());
    return names;
}

TEST(StorageProperties, WrittenByNameAreWhatAnIndependentReaderAndAReopenFind) {
    struct Property {
        const char* name;
        const char* independentName;  // olefile's
        CKTVariant value;
        std::string text;  // as it reads back
    };
    const std::vector<Property> properties = {
        {"Title", "title", "A household book", "A household book"},
        {"Subject", "subject", "Kitchen and repairs", "Kitchen and repairs"},
        {"Author", "author", "Jane Doe", "Jane Doe"},
        {"Keywords", "keywords", "milk; plumber", "milk; plumber"},
        {"Comments", "comments", KTW("Caf\u00e9 wide"), "Caf\xe9 wide"},
        {"Last Author", "last_saved_by", "John Doe", "John Doe"},
        {"App name", "creating_application", "kticore demo", "kticore demo"},
        {"Category", "category", "Household", "Household"},
        {"Company", "company", "Doe & Doe", "Doe & Doe"},
    };
    ScratchDirectory directory;
    const WideString path = directory / KTW("props.stg");
    {
        StorageRef file(new_Storage(path.c_str(), 0));
        PropertiesRef written = PropertiesOf(file.get());
        for (const Property& property : properties)
            EXPECT_EQ(Set(written.get(), property.name, property.value), 1) << property.name;
    }

    // The independent reader decodes the bytes as Latin-1, which the ANSI
    // code page of the test's prefix (1252) agrees with for these texts.
    ASSERT_EQ(GetACP(), 1252u);
    std::string expected;
    for (const Property& property : properties)
        expected += std::string(property.independentName) + "=" + Utf8(property.text) + "\n";
    EXPECT_EQ(kt::test::IndependentProperties(path), expected);

    StorageRef reopened(open_Storage(path.c_str(), 1));
    PropertiesRef read = PropertiesOf(reopened.get());
    for (const Property& property : properties)
        EXPECT_EQ(Get(read.get(), property.name), property.text) << property.name;
    // A read-only storage takes no property.
    EXPECT_EQ(Set(read.get(), "Title", "changed"), 0);
    EXPECT_EQ(Get(read.get(), "Title"), "A household book");
}

TEST(StorageProperties, SetAndGetByName) {
    struct Case {
        const char* what;
        const char* name;
        CKTVariant value;
        int written;
        std::string title;  // "Title" afterwards
        std::string read;   // `name` afterwards
    };
    const std::vector<Case> cases = {
        {"narrow text", "Title", "New", 1, "New", "New"},
        {"wide text comes back narrow", "Title", KTW("Wide"), 1, "Wide", "Wide"},
        {"empty text", "Title", "", 0, "Old", "Old"},
        {"empty wide text", "Title", KTW(""), 0, "Old", "Old"},
        {"no text", "Title", CKTVariant(7L), 0, "Old", "Old"},
        {"case counts", "title", "x", 0, "Old", kAbsent},
        {"unknown name", "Manager", "x", 0, "Old", kAbsent},
        {"no name", nullptr, "x", 0, "Old", kAbsent},
        {"the other set", "Company", "Acme", 1, "Old", "Acme"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        StorageRef memory(new_Storage(nullptr, 0));
        PropertiesRef properties = PropertiesOf(memory.get());
        // A storage without property sets reads nothing; a write makes the set.
        EXPECT_EQ(Get(properties.get(), "Title"), kAbsent);
        ASSERT_EQ(Set(properties.get(), "Title", "Old"), 1);

        EXPECT_EQ(Set(properties.get(), c.name, c.value), c.written);
        EXPECT_EQ(Get(properties.get(), "Title"), c.title);
        EXPECT_EQ(Get(properties.get(), c.name), c.read);
    }
}

TEST(StorageProperties, NamesBelongToOneObject) {
    StorageRef memory(new_Storage(nullptr, 0));
    PropertiesRef first = PropertiesOf(memory.get());
    PropertiesRef second = PropertiesOf(memory.get());
    EXPECT_NE(first.get(), second.get());
    ASSERT_EQ(Set(first.get(), "Title", "Kept"), 1);

    EXPECT_EQ(first->RemoveName("Title"), 1);
    EXPECT_EQ(first->RemoveName("Title"), 0);
    EXPECT_EQ(Get(first.get(), "Title"), kAbsent);
    EXPECT_EQ(Set(first.get(), "Title", "Lost"), 0);
    EXPECT_EQ(Get(second.get(), "Title"), "Kept");

    // The enumerator keeps the names after its object is gone.
    CTEnum<const char*>* names = first->EnumProperties();
    first.reset();
    std::vector<std::string> expected = kAllNames;
    expected.erase(std::find(expected.begin(), expected.end(), "Title"));
    EXPECT_EQ(Sorted(Names(names)), expected);
    EXPECT_EQ(Sorted(Names(second->EnumProperties())), kAllNames);
}

// An OLE storage that forwards everything but has no property sets.
class CWithoutPropertySets final : public IStorage {
public:
    explicit CWithoutPropertySets(IStorage* inner) : inner(inner) { inner->AddRef(); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        if (iid == IID_IPropertySetStorage) {
            *out = nullptr;
            return E_NOINTERFACE;
        }
        return inner->QueryInterface(iid, out);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++refs; }
    ULONG STDMETHODCALLTYPE Release() override {
        if (--refs != 0)
            return refs;
        inner->Release();
        delete this;
        return 0;
    }
    HRESULT STDMETHODCALLTYPE CreateStream(LPCOLESTR a, DWORD b, DWORD c, DWORD d,
                                           IStream** e) override {
        return inner->CreateStream(a, b, c, d, e);
    }
    HRESULT STDMETHODCALLTYPE OpenStream(LPCOLESTR a, void* b, DWORD c, DWORD d,
                                         IStream** e) override {
        return inner->OpenStream(a, b, c, d, e);
    }
    HRESULT STDMETHODCALLTYPE CreateStorage(LPCOLESTR a, DWORD b, DWORD c, DWORD d,
                                            IStorage** e) override {
        return inner->CreateStorage(a, b, c, d, e);
    }
    HRESULT STDMETHODCALLTYPE OpenStorage(LPCOLESTR a, IStorage* b, DWORD c, SNB d, DWORD e,
                                          IStorage** f) override {
        return inner->OpenStorage(a, b, c, d, e, f);
    }
    HRESULT STDMETHODCALLTYPE CopyTo(DWORD a, const IID* b, SNB c, IStorage* d) override {
        return inner->CopyTo(a, b, c, d);
    }
    HRESULT STDMETHODCALLTYPE MoveElementTo(LPCOLESTR a, IStorage* b, LPCOLESTR c,
                                            DWORD d) override {
        return inner->MoveElementTo(a, b, c, d);
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD a) override { return inner->Commit(a); }
    HRESULT STDMETHODCALLTYPE Revert() override { return inner->Revert(); }
    HRESULT STDMETHODCALLTYPE EnumElements(DWORD a, void* b, DWORD c,
                                           IEnumSTATSTG** d) override {
        return inner->EnumElements(a, b, c, d);
    }
    HRESULT STDMETHODCALLTYPE DestroyElement(LPCOLESTR a) override {
        return inner->DestroyElement(a);
    }
    HRESULT STDMETHODCALLTYPE RenameElement(LPCOLESTR a, LPCOLESTR b) override {
        return inner->RenameElement(a, b);
    }
    HRESULT STDMETHODCALLTYPE SetElementTimes(LPCOLESTR a, const FILETIME* b, const FILETIME* c,
                                              const FILETIME* d) override {
        return inner->SetElementTimes(a, b, c, d);
    }
    HRESULT STDMETHODCALLTYPE SetClass(REFCLSID a) override { return inner->SetClass(a); }
    HRESULT STDMETHODCALLTYPE SetStateBits(DWORD a, DWORD b) override {
        return inner->SetStateBits(a, b);
    }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* a, DWORD b) override { return inner->Stat(a, b); }

private:
    IStorage* inner;
    ULONG refs = 1;
};

TEST(StorageProperties, AnObjectThatKnowsNoNameAnswersZero) {
    const std::vector<std::pair<const char*, std::function<PropertiesRef(IXStorage*)>>> makers = {
        {"all names removed",
         [](IXStorage* storage) {
             PropertiesRef properties = PropertiesOf(storage);
             properties->RemoveAllNames();
             return properties;
         }},
        {"a storage without property sets",
         [](IXStorage* storage) {
             auto* ole = static_cast<IStorage*>(Storage_GetOLEStorage(storage));
             auto* without = new CWithoutPropertySets(ole);
             ole->Release();
             StorageRef wrapped(new_StorageByOleStorage(without));
             without->Release();
             return PropertiesOf(wrapped.get());
         }},
    };
    for (const auto& [what, make] : makers) {
        SCOPED_TRACE(what);
        StorageRef memory(new_Storage(nullptr, 0));
        ASSERT_EQ(Set(PropertiesOf(memory.get()).get(), "Title", "There"), 1);
        PropertiesRef properties = make(memory.get());
        properties->Reserved6();
        properties->Reserved7();
        EXPECT_EQ(Names(properties->EnumProperties()), std::vector<std::string>{});
        for (const std::string& name : kAllNames) {
            EXPECT_EQ(Get(properties.get(), name.c_str()), kAbsent) << name;
            EXPECT_EQ(Set(properties.get(), name.c_str(), "x"), 0) << name;
            EXPECT_EQ(properties->RemoveName(name.c_str()), 0) << name;
        }
        EXPECT_EQ(Get(PropertiesOf(memory.get()).get(), "Title"), "There");
    }
}

// Writes the summary set with the platform's own calls, with values of the
// types the library does not handle beside one it does. (The set is of
// narrow text: Wine 8 reads a narrow text that was written into a set of
// 16-bit text cut short.)
void WriteForeignSummarySet(IXStorage* storage) {
    auto* ole = static_cast<IStorage*>(Storage_GetOLEStorage(storage));
    IPropertySetStorage* sets = nullptr;
    ASSERT_EQ(ole->QueryInterface(IID_IPropertySetStorage, reinterpret_cast<void**>(&sets)), S_OK);
    ole->Release();
    IPropertyStorage* summary = nullptr;
    ASSERT_EQ(sets->Create(FMTID_SummaryInformation, nullptr, PROPSETFLAG_ANSI,
                           STGM_CREATE | STGM_SHARE_EXCLUSIVE | STGM_READWRITE, &summary),
              S_OK);
    sets->Release();
    PROPSPEC specs[3] = {};
    PROPVARIANT values[3] = {};
    const PROPID ids[3] = {2, 3, 4};  // title, subject, author
    wchar_t wide[] = L"wide title";
    char narrow[] = "narrow author";
    values[0].vt = VT_LPWSTR;
    values[0].pwszVal = wide;
    values[1].vt = VT_I4;
    values[1].lVal = 42;
    values[2].vt = VT_LPSTR;
    values[2].pszVal = narrow;
    for (int i = 0; i < 3; ++i) {
        specs[i].ulKind = PRSPEC_PROPID;
        specs[i].propid = ids[i];
    }
    EXPECT_EQ(summary->WriteMultiple(3, specs, values, 2), S_OK);
    EXPECT_EQ(summary->Commit(STGC_DEFAULT), S_OK);
    summary->Release();
}

TEST(StorageProperties, OtherTypesReadAsAbsentAndAreReplacedByText) {
    StorageRef memory(new_Storage(nullptr, 0));
    WriteForeignSummarySet(memory.get());
    PropertiesRef properties = PropertiesOf(memory.get());
    EXPECT_EQ(Get(properties.get(), "Title"), kAbsent);
    EXPECT_EQ(Get(properties.get(), "Subject"), kAbsent);
    EXPECT_EQ(Get(properties.get(), "Author"), "narrow author");
    EXPECT_EQ(Set(properties.get(), "Subject", "now text"), 1);
    EXPECT_EQ(Get(properties.get(), "Subject"), "now text");
    EXPECT_EQ(Get(properties.get(), "Author"), "narrow author");
}

TEST(StorageProperties, DamagedSetsReadAsAbsentAndAreWrittenAnew) {
    // A valid summary set of one title, as the library writes it; the cases
    // damage its bytes.
    std::string valid;
    {
        StorageRef memory(new_Storage(nullptr, 0));
        ASSERT_EQ(Set(PropertiesOf(memory.get()).get(), "Title", "Valid"), 1);
        valid = kt::test::ReadText(memory.get(), kSummaryStream);
    }
    ASSERT_GT(valid.size(), 48u);
    const auto putWord = [](std::string bytes, size_t at, DWORD word) {
        if (at + 4 <= bytes.size())
            bytes.replace(at, 4, reinterpret_cast<const char*>(&word), 4);
        return bytes;
    };
    // The set's header holds the offset of its one section at 44; the
    // section starts with its size and its number of properties.
    const DWORD section = *reinterpret_cast<const DWORD*>(valid.data() + 44);
    // A set that the platform refuses to open is made anew at a write. Wine 8
    // opens an empty stream as an empty set, which the write then goes to,
    // and writes it back in a form that it does not read again.
    const struct {
        const char* what;
        std::string bytes;
        std::string afterWrite;
    } cases[] = {
        {"empty", "", kAbsent},
        {"cut inside the header", valid.substr(0, 30), "Anew"},
        {"cut inside the section", valid.substr(0, section + 12), "Anew"},
        {"wrong byte order", putWord(valid, 0, 0), "Anew"},
        {"section beyond the end", putWord(valid, 44, 0x7FFFFFF0), "Anew"},
        {"too many properties", putWord(valid, section + 4, 0x10000000), "Anew"},
        {"property beyond the end", putWord(valid, section + 12, 0x7FFFFFF0), "Anew"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        StorageRef memory(new_Storage(nullptr, 0));
        kt::test::WriteText(memory.get(), kSummaryStream, c.bytes);
        PropertiesRef properties = PropertiesOf(memory.get());
        EXPECT_EQ(Get(properties.get(), "Title"), kAbsent);
        EXPECT_EQ(Set(properties.get(), "Title", "Anew"), 1);
        EXPECT_EQ(Get(properties.get(), "Title"), c.afterWrite);
    }
}

}  // namespace
