#include "tests/plugin/TestShape.h"

#include "kticore/core/Exception.h"
#include "kticore/values/Variant.h"

namespace {

class CTestShape final : public CKTUnknownImpl<ITestShape> {
public:
    explicit CTestShape(bool storesPayload) : storesPayload(storesPayload) {}
    ~CTestShape() override { SetChild(nullptr); }

    int InternalQueryInterface(const type_info& wanted, void** out) override {
        if (wanted != typeid(IPersistXStream) && wanted != typeid(IPersistX))
            return CKTUnknownImpl<ITestShape>::InternalQueryInterface(wanted, out);
        if (out != nullptr) {
            *out = static_cast<ITestShape*>(this);
            AddRef();
        }
        return 1;
    }

    const char* GetClassName() override {
        return storesPayload ? KT_TEST_SHAPE_CLASS : KT_TEST_EMPTY_CLASS;
    }
    ULONG GetSize() override {
        if (!storesPayload)
            return 0;
        return 4 + 2 + 4 + static_cast<ULONG>(label.GetSize()) + 1 + SizeOfObject(child);
    }
    void Load(IXStream* stream) override {
        ++loads;
        if (!storesPayload)
            return;
        id = stream->ReadDWord();
        CKTVariant value;
        stream->ReadVariant(&value);
        label = value.vt == KTVT_STR ? static_cast<char*>(value) : "";
        IKTUnknown* stored = nullptr;
        ReadObjectFromXStream(stream, &stored);
        ITestShape* shape = nullptr;
        if (stored != nullptr) {
            stored->QueryInterface(typeid(ITestShape), reinterpret_cast<void**>(&shape));
            stored->Release();
        }
        SetChild(shape);
        if (shape != nullptr)
            shape->Release();
    }
    void Save(IXStream* stream) override {
        if (!storesPayload)
            return;
        stream->WriteDWord(id);
        const CKTVariant value(label);
        stream->WriteVariant(&value);
        WriteObjectToXStream(stream, child);
    }

    ULONG GetId() override { return id; }
    void SetId(ULONG newId) override { id = newId; }
    const char* GetLabel() override { return label; }
    void SetLabel(const char* newLabel) override { label = newLabel; }
    ITestShape* GetChild() override {
        if (child != nullptr)
            child->AddRef();
        return child;
    }
    void SetChild(ITestShape* newChild) override {
        if (newChild != nullptr)
            newChild->AddRef();
        if (child != nullptr)
            child->Release();
        child = newChild;
    }
    int GetLoadCount() override { return loads; }

private:
    const bool storesPayload;
    ULONG id = 0;
    CXString label;
    ITestShape* child = nullptr;
    int loads = 0;
};

}  // namespace

namespace {

int MakeShape(bool storesPayload, const type_info& iface, IKTUnknown** out) {
    auto* shape = new CTestShape(storesPayload);
    const int found = shape->QueryInterface(iface, reinterpret_cast<void**>(out));
    shape->Release();
    return found;
}

}  // namespace

KT_TEST_CLASSES_API int CLSID_TestShape(IKTUnknown*, const type_info& iface, IKTUnknown** out) {
    return MakeShape(true, iface, out);
}

KT_TEST_CLASSES_API int CLSID_TestEmpty(IKTUnknown*, const type_info& iface, IKTUnknown** out) {
    return MakeShape(false, iface, out);
}

// A factory that declines every request.
KT_TEST_CLASSES_API int CLSID_TestRefusing(IKTUnknown*, const type_info&, IKTUnknown** out) {
    *out = nullptr;
    return 0;
}

// A factory that fails loudly, as a host's factory may.
KT_TEST_CLASSES_API int CLSID_TestThrowing(IKTUnknown*, const type_info&, IKTUnknown**) {
    throw CXException(KT_TEST_THROWN_CODE);
}
